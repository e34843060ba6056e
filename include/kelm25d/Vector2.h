/// @file
/// A vector with three components, and its arithmetic with points.
/// It has no identity and no place: a place is a Point2.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/export.h>

#include <cmath>
#include <iosfwd>

namespace QUOR_KELM25D {

/// A direction or difference in space. Components are in the units of the coordinates it comes from.
/// Everything is constant time.
class KELM25D_API Vector2 {
public:
    /// The zero vector.
    Vector2() noexcept : dX(0.0), dY(0.0), dZ(0.0) {}

    /// The vector (x, y, z).
    Vector2(double x, double y, double z) noexcept : dX(x), dY(y), dZ(z) {}

    /// The x component.
    double x() const noexcept { return dX; }
    /// The y component.
    double y() const noexcept { return dY; }
    /// The z component.
    double z() const noexcept { return dZ; }

    /// Replaces all three components.
    void set(double x, double y, double z) noexcept {
        dX = x;
        dY = y;
        dZ = z;
    }

    /// The squared length over all three components.
    double sqLength() const noexcept { return dX * dX + dY * dY + dZ * dZ; }

    /// The length over all three components.
    double length() const noexcept { return std::sqrt(sqLength()); }

    /// True if all three components are exactly 0.
    bool isDegenerate() const noexcept { return dX == 0.0 && dY == 0.0 && dZ == 0.0; }

    /// The index (0, 1, 2) of the component of largest magnitude; of equal ones the lowest. Components that
    /// are not numbers do not count; if all three are not, a check fails and throws KelmException.
    int getMaxIndex() const;

    /// The dot product over all three components.
    double operator*(const Vector2& other) const noexcept {
        return dX * other.dX + dY * other.dY + dZ * other.dZ;
    }

    /// This vector, every component multiplied by the factor.
    Vector2 operator*(double factor) const noexcept { return Vector2(dX * factor, dY * factor, dZ * factor); }

    /// This vector, every component divided by the divisor; division by 0 gives what IEEE arithmetic gives.
    Vector2 operator/(double divisor) const noexcept {
        return Vector2(dX / divisor, dY / divisor, dZ / divisor);
    }

    /// The left-hand normal of (x, y) in the xy plane: length 1, z 0, a quarter turn counterclockwise. The z
    /// component is ignored. The zero vector if x and y are both 0. Components must be finite. The side is
    /// decided by getOrientation2, so this is for one thread at a time.
    Vector2 orthogonalVector() const;

private:
    double dX;
    double dY;
    double dZ;
};

/// The vector, every component multiplied by the factor.
inline Vector2 operator*(double factor, const Vector2& v) noexcept {
    return v * factor;
}

/// The sum of two vectors.
inline Vector2 operator+(const Vector2& a, const Vector2& b) noexcept {
    return Vector2(a.x() + b.x(), a.y() + b.y(), a.z() + b.z());
}

/// The difference of two vectors.
inline Vector2 operator-(const Vector2& a, const Vector2& b) noexcept {
    return Vector2(a.x() - b.x(), a.y() - b.y(), a.z() - b.z());
}

/// The opposite vector.
inline Vector2 operator-(const Vector2& v) noexcept {
    return Vector2(-v.x(), -v.y(), -v.z());
}

/// The vector from b to a, heights included.
inline Vector2 operator-(const Point2& a, const Point2& b) noexcept {
    return Vector2(a.x() - b.x(), a.y() - b.y(), a.z() - b.z());
}

/// The point moved by the vector; its custom index is -1.
inline Point2 operator+(const Point2& point, const Vector2& v) noexcept {
    return Point2(point.x() + v.x(), point.y() + v.y(), point.z() + v.z());
}

/// The point moved against the vector; its custom index is -1.
inline Point2 operator-(const Point2& point, const Vector2& v) noexcept {
    return Point2(point.x() - v.x(), point.y() - v.y(), point.z() - v.z());
}

/// The cross product a x b, by the right-hand rule.
inline Vector2 crossProduct(const Vector2& a, const Vector2& b) noexcept {
    return Vector2(a.y() * b.z() - a.z() * b.y(), a.z() * b.x() - a.x() * b.z(),
                   a.x() * b.y() - a.y() * b.x());
}

/// The vector divided by its length; the zero vector if the length is not above 0.0, which includes lengths
/// that are not a number and components so small that their squares vanish.
inline Vector2 normalize(const Vector2& v) noexcept {
    const double len = v.length();
    return len > 0.0 ? v / len : Vector2();
}

/// Writes "Vector2: x, y, z" in the stream's current number format.
KELM25D_API std::ostream& operator<<(std::ostream& stream, const Vector2& v);

} // namespace QUOR_KELM25D
