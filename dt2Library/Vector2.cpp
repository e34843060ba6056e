// The parts of Vector2 that need a predicate or a check, and its stream output.
// The arithmetic is inline in the header.
#include <kelm25d/Vector2.h>

#include "messages.h"

#include <kelm25d/Orientation2.h>

#include <ostream>

namespace QUOR_KELM25D {

int Vector2::getMaxIndex() const {
    const double aComponent[3] = {dX, dY, dZ};
    int maxIndex = -1;
    double maxAbs = -1.0;
    for (int i = 0; i < 3; ++i) {
        if (std::fabs(aComponent[i]) > maxAbs) {
            maxAbs = std::fabs(aComponent[i]);
            maxIndex = i;
        }
    }
    if (maxIndex < 0) KELM_CHECK(false);
    return maxIndex;
}

Vector2 Vector2::orthogonalVector() const {
    if (dX == 0.0 && dY == 0.0) return Vector2();
    // The quotient has the larger component below, so it neither overflows nor loses the direction.
    const bool bPivotX = std::fabs(dX) > std::fabs(dY);
    const Vector2 candidate = normalize(bPivotX ? Vector2(-dY / dX, 1.0, 0.0) : Vector2(1.0, -dX / dY, 0.0));

    const Point2 origin(0.0, 0.0, 0.0);
    const Point2 tip(dX, dY, 0.0);
    const Point2 side(candidate.x(), candidate.y(), 0.0);
    const Orientation2 orientation = getOrientation2_mt(&origin, &tip, &side);
    if (orientation == ORIENTATION2_COLLINEAR) KELM_CHECK(false);
    return orientation == ORIENTATION2_CCW ? candidate : -candidate;
}

std::ostream& operator<<(std::ostream& stream, const Vector2& v) {
    return stream << "Vector2: " << v.x() << ", " << v.y() << ", " << v.z();
}

} // namespace QUOR_KELM25D
