// Construction of planes.
// Distances and projection are inline in the header.
#include <kelm25d/Plane.h>

#include "messages.h"

#include <string>

namespace QUOR_KELM25D {

namespace {

// Normalised first, so that the cross product's length is the sine of the angle, whatever the scale.
Vector2 spannedNormal(const Point2& p0, const Point2& p1, const Point2& p2) noexcept {
    return crossProduct(normalize(p1 - p0), normalize(p2 - p0));
}

double dot(const Vector2& v, const Point2& p) noexcept {
    return v * Vector2(p.x(), p.y(), p.z());
}

} // namespace

Plane::Plane(const Point2& p, const Vector2& direction) noexcept
    : normal(normalize(direction)), d(dot(normal, p)) {
}

Plane::Plane(const Point2& p0, const Point2& p1, const Point2& p2) : d(0.0) {
    const Vector2 spanned = spannedNormal(p0, p1, p2);
    const double spannedLen = spanned.length();
    if (spannedLen == 0.0) {
        printError("Plane::Plane(), line " + std::to_string(__LINE__), "Degenerate plane");
        KELM_CHECK(false);
    }
    normal = spanned / spannedLen;
    const double vecLen = normal.length();
    KELM_CHECK(vecLen>.99 && vecLen<1.01);
    d = dot(normal, p0);
}

bool Plane::canConstruct(const Point2& p0, const Point2& p1, const Point2& p2) noexcept {
    return spannedNormal(p0, p1, p2).length() > 0.0;
}

} // namespace QUOR_KELM25D
