// Foot points, line distances and heights along segments; plain double arithmetic.
// See the header for what each gives for degenerate input.

#include "footPoint.h"

#include "messages.h"

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

Point2 getFootPoint(const Point2& p0, const Point2& p1, const Point2& q) {
    if (p0 == p1) {
        printWarning("getFootPoint()", "p0==p1, invalid parameters");
        return p0;
    }
    // Scaled by the larger extent, so that short segments do not lose their length to underflow.
    const double scale = std::max(std::fabs(p1.x() - p0.x()), std::fabs(p1.y() - p0.y()));
    const double dx = (p1.x() - p0.x()) / scale, dy = (p1.y() - p0.y()) / scale;
    const double qx = (q.x() - p0.x()) / scale, qy = (q.y() - p0.y()) / scale;
    const double t = (qx * dx + qy * dy) / (dx * dx + dy * dy);
    return Point2(p0.x() + t * (p1.x() - p0.x()), p0.y() + t * (p1.y() - p0.y()),
                  p0.z() + t * (p1.z() - p0.z()));
}

double getPointLineDistance2D(const Point2& p0, const Point2& p1, const Point2& q) {
    if (p0 == p1) {
        printWarning("getPointLineDistance2D()", "p0==p1");
        return std::hypot(q.x() - p0.x(), q.y() - p0.y());
    }
    const double dx = p1.x() - p0.x(), dy = p1.y() - p0.y();
    return std::fabs(dx * (q.y() - p0.y()) - dy * (q.x() - p0.x())) / std::hypot(dx, dy);
}

double heightOnSegment(const Point2& p0, const Point2& p1, double x, double y) noexcept {
    const double dx = p1.x() - p0.x(), dy = p1.y() - p0.y();
    const double t = std::fabs(dy) > std::fabs(dx) ? (y - p0.y()) / dy : (x - p0.x()) / dx;
    const double z = p0.z() + t * (p1.z() - p0.z());
    return std::clamp(z, std::min(p0.z(), p1.z()), std::max(p0.z(), p1.z()));
}

} // namespace QUOR_KELM25D
