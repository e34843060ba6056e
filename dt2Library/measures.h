// Small measures that many files need: whether a place is one, distances and areas in the plane, angles.
// Squared lengths in space are in sqDistance25D.h, those of edges with Triangle2.
#pragma once

#include <kelm25d/Point2.h>

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

/// ax by - ay bx, or 0.0 if that is not positive or mostly rounding. The two terms are known to 3 units of
/// 2^-53 each: where they cancel to less than a billionth of their sum, only six digits are left.
inline double soundCrossProduct(double ax, double ay, double bx, double by) noexcept {
    const double t1 = ax * by, t2 = ay * bx, d = t1 - t2;
    return d > 1e-9 * (std::fabs(t1) + std::fabs(t2)) ? d : 0.0;
}

/// Whether x and y are finite; the height is not looked at.
inline bool isFinite(const Point2& p) noexcept {
    return std::isfinite(p.x()) && std::isfinite(p.y());
}

/// Right at every scale, where squares overflow or vanish.
inline double distance2D(const Point2& a, const Point2& b) noexcept {
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

/// The angle between two unit vectors, in degrees, from their product, which rounding may have made too long.
inline double angleOfCosine(double cosine) noexcept {
    return std::acos(std::clamp(cosine, -1.0, 1.0)) * 57.295779513;
}

} // namespace QUOR_KELM25D
