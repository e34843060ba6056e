/// @file
/// Former entries for the reconstruction of surfaces from point clouds, kept so that old programs still link.
/// They do nothing: reconstruction has moved to a separate library.
#pragma once

#include <kelm25d/export.h>

#include <string>
#include <vector>

namespace QUOR_KELM25D {

class Point2;

/// Deprecated. Prints that reconstruction has moved to a separate library; the output is left as it is.
/// @return false
[[deprecated("point cloud reconstruction has moved to a separate library")]] KELM25D_API bool
reconstruct(std::vector<Point2>& vPoints, std::vector<int>& vCornerIndicesOut);

/// Deprecated, like the form with indices.
[[deprecated("point cloud reconstruction has moved to a separate library")]] KELM25D_API bool
reconstruct(std::vector<Point2>& vPoints, std::vector<Point2>& vCornersOut);

/// Deprecated, like the form with indices.
[[deprecated("point cloud reconstruction has moved to a separate library")]] KELM25D_API bool
reconstruct(const std::string& filenameIn, const std::string& filenameOut);

} // namespace QUOR_KELM25D
