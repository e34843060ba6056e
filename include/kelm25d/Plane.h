/// @file
/// A plane in space, with signed distances to it.
/// Rotations between a plane's frame and the xy plane are not its subject.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/Vector2.h>
#include <kelm25d/export.h>

#include <cmath>

namespace QUOR_KELM25D {

/// The plane n*p = d with unit normal n. Distances are in the units of the coordinates. Constant time.
class KELM25D_API Plane {
public:
    /// Zero normal and d 0: no plane, every distance to it is 0.
    Plane() noexcept : d(0.0) {}

    /// The plane through p with a normal in the given direction, of any length but 0, which gives no plane.
    Plane(const Point2& p, const Vector2& direction) noexcept;

    /// The plane through three points. Seen from its positive side they stand counterclockwise.
    ///
    /// If canConstruct says no, or a coordinate is not finite, the constructor fails a check, which throws
    /// KelmException.
    Plane(const Point2& p0, const Point2& p1, const Point2& p2);

    /// Whether the three points are far enough from one line to span a plane. For collinear points rounding
    /// may leave a tiny normal; that still counts as a plane.
    static bool canConstruct(const Point2& p0, const Point2& p1, const Point2& p2) noexcept;

    /// The distance from the plane, positive on the side to which the normal points.
    double signedDistance(const Point2& p) const noexcept {
        return normal.x() * p.x() + normal.y() * p.y() + normal.z() * p.z() - d;
    }

    /// The magnitude of signedDistance.
    double distance(const Point2& p) const noexcept { return std::fabs(signedDistance(p)); }

    /// True if signedDistance is above 0; a point on the plane is on neither side.
    bool hasOnPositiveSide(const Point2& p) const noexcept { return signedDistance(p) > 0.0; }

    /// True if signedDistance is below 0.
    bool hasOnNegativeSide(const Point2& p) const noexcept { return signedDistance(p) < 0.0; }

    /// The foot of the perpendicular from p; its custom index is -1.
    Point2 projection(const Point2& p) const noexcept { return p - normal * signedDistance(p); }

private:
    Vector2 normal; // length 1, or zero for no plane
    double d;
};

} // namespace QUOR_KELM25D
