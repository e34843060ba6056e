// The squared distance of two points in space.
// See sqDistance25D.h.
#include "sqDistance25D.h"

#include <cmath>
#include <iostream>

namespace QUOR_KELM25D {

double sqDistance25D(const Point2& p0, const Point2& p1) {
    const double dx = p0.x() - p1.x();
    const double dy = p0.y() - p1.y();
    const double dz = p0.z() - p1.z();
    const double sum = dx * dx + dy * dy + dz * dz;
    if (std::isnan(sum))
        std::cerr << "warning, sqDistance25D, nan value, no distance\np0=" << p0 << "\np1=" << p1 << '\n';
    return sum;
}

} // namespace QUOR_KELM25D
