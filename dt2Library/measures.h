// Small measures that many files need: whether a place is one, distances in the plane, angles in degrees.
// Squared lengths in space are in sqDistance25D.h, those of edges with Triangle2.
#pragma once

#include <kelm25d/Point2.h>

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

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
