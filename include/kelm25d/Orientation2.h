/// @file
/// Exact orientation of three points in the xy plane.
/// The predicate object that does the work is internal; see getOrientation2 and getOrientation2_mt.
#pragma once

#include <kelm25d/export.h>

#include <string>

namespace QUOR_KELM25D {

class Point2;

/// The side of a directed line on which a point lies. The values are fixed.
enum Orientation2 {
    ORIENTATION2_COLLINEAR = 0, ///< the three points lie on one line
    ORIENTATION2_CCW = 1,       ///< counterclockwise: the third point lies to the left of first to second
    ORIENTATION2_CW = 2         ///< clockwise: the third point lies to the right of first to second
};

/// The enumerator's name as text, for example "ORIENTATION2_CCW"; "UNKNOWN" for any other value.
KELM25D_API std::string getString(Orientation2 orientation);

/// Orientation of the triple (p0, p1, p2) in the xy plane; heights are ignored.
///
/// The answer is exact for all finite coordinates: floating point filters settle the clear cases, exact
/// arithmetic the rest. Two or three equal points are collinear.
///
/// One process-wide object holds the filter, so this function is for one thread at a time. It is the faster
/// of the two forms.
/// @param p0,p1,p2 not null; a null pointer fails a check and throws KelmException
KELM25D_API Orientation2 getOrientation2(const Point2* p0, const Point2* p1, const Point2* p2);

/// The same as getOrientation2, safe to call from several threads at once.
KELM25D_API Orientation2 getOrientation2_mt(const Point2* p0, const Point2* p1, const Point2* p2);

} // namespace QUOR_KELM25D
