// The point in the middle of a segment, put on its line as exactly as doubles allow.
// Crossings of segments are computed in intersection2D.cpp.
#pragma once

#include <kelm25d/Point2.h>

namespace QUOR_KELM25D {

class QuorTest;

/// The midpoint of a and b in x, y and z. Its x and y are corrected by no more than 0.001, and a hundredth of
/// the extent, so that the point is on the line or next to it; custom index -1.
Point2 centerWithShift(const Point2& a, const Point2& b, QuorTest& quorTest);

} // namespace QUOR_KELM25D
