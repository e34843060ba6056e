// Foot points and distances of a point from a line in the plane, with heights interpolated along it.
// Exact questions about lines belong to QuorTest, intersections to getIntersection2D.
#pragma once

#include <kelm25d/Point2.h>

namespace QUOR_KELM25D {

/// Foot of q on the line through p0 and p1 in the plane; its height is that of the line there. Equal points
/// in x and y give a warning and p0.
Point2 getFootPoint(const Point2& p0, const Point2& p1, const Point2& q);

/// Distance of q from the infinite line through p0 and p1 in the plane. Equal points give a warning and the
/// distance from p0.
double getPointLineDistance2D(const Point2& p0, const Point2& p1, const Point2& q);

/// Height at (x, y), which lies on or near the segment, interpolated along the axis of its larger extent and
/// kept between the heights of the ends.
double heightOnSegment(const Point2& p0, const Point2& p1, double x, double y) noexcept;

} // namespace QUOR_KELM25D
