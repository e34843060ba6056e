/// @file
/// A circle in the xy plane.
/// It holds the squared radius, since that is what the library compares.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/export.h>

#include <cmath>
#include <iosfwd>

namespace QUOR_KELM25D {

/// A circle by centre and squared radius. Neither is checked; everything is constant time.
class KELM25D_API Circle2 {
public:
    /// The circle around a point, whose height is kept, with the given squared radius, not below 0.
    Circle2(const Point2& centre, double squaredRadius) noexcept : center(centre), sqRadius(squaredRadius) {}

    /// The circle around (x, y), height 0, with the given squared radius, not below 0.
    Circle2(double x, double y, double squaredRadius) noexcept : center(x, y, 0.0), sqRadius(squaredRadius) {}

    /// A copy of the centre.
    Point2 getCenter() const noexcept { return center; }

    /// The radius; not a number if the squared radius is negative.
    double getRadius() const noexcept { return std::sqrt(sqRadius); }

    /// The squared radius.
    double getSqRadius() const noexcept { return sqRadius; }

private:
    friend KELM25D_API std::ostream& operator<<(std::ostream& stream, const Circle2& circle);

    Point2 center;
    double sqRadius;
};

/// Writes "Circle2: centre, r=radius", the centre as Point2.
KELM25D_API std::ostream& operator<<(std::ostream& stream, const Circle2& circle);

} // namespace QUOR_KELM25D
