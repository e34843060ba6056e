/// @file
/// The export macro of the library.
/// Nothing else: the version stands in version.h.
#pragma once

#if defined(_WIN32)
#if defined(kelm25d_EXPORTS)
#define KELM25D_API __declspec(dllexport)
#else
#define KELM25D_API __declspec(dllimport)
#endif
#else
#define KELM25D_API __attribute__((visibility("default")))
#endif
