/// @file
/// The version of the library that the program runs with.
/// Which may be newer than the one it was compiled with; the major number is the same.
#pragma once

#include <kelm25d/export.h>

#include <string>

namespace QUOR_KELM25D {

/// Raised with incompatible changes; also the number in the name of the shared library.
KELM25D_API int getMajorVersionNumber();

/// Raised with new functions.
KELM25D_API int getMinorVersionNumber();

/// Raised with every release.
KELM25D_API int getRevisionNumber();

/// True for a released build.
KELM25D_API bool isRelease();

/// Product, kind of build and the three numbers: "Kelm 2.5D, RELEASE, v1.78.473".
KELM25D_API std::string getKelm2DVersion();

} // namespace QUOR_KELM25D
