// The squared distance of two points in space, with a warning for results that are not a number.
// In the xy plane alone nothing can be missing, so plane lengths are computed where they are needed.
#pragma once

#include <kelm25d/Point2.h>

namespace QUOR_KELM25D {

/// The squared distance over x, y and z. If it is not a number, the two points are written to the error
/// stream and the NaN is returned.
double sqDistance25D(const Point2& p0, const Point2& p1);

} // namespace QUOR_KELM25D
