// Bisection of a coordinate by the exact orientation against a line.
// See the header for what it is good for.

#include "centerWithShift.h"

#include "QuorTest.h"
#include "messages.h"

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

namespace {

constexpr double maxShift = 0.001;
constexpr double maxShiftOfExtent = 0.01;
constexpr int maxSteps = 1000;

double shiftFor(double extent) noexcept {
    return std::min(maxShift, maxShiftOfExtent * extent);
}

/// The value within the tolerance around the given one for which the orientation changes. sideOf(value) is
/// the orientation of the point with that value. The value itself if there is none.
template <class SideOf>
double bisect(double value, double tolerance, const SideOf& sideOf) {
    double low = value - tolerance, high = value + tolerance;
    const Orientation2 sideLow = sideOf(low), sideHigh = sideOf(high);
    if (sideLow == sideHigh || sideLow == ORIENTATION2_COLLINEAR || sideHigh == ORIENTATION2_COLLINEAR) {
        return value;
    }
    for (int step = 0; step < maxSteps; ++step) {
        const Orientation2 side = sideOf(value);
        if (side == ORIENTATION2_COLLINEAR) return value;
        (side == sideLow ? low : high) = value;
        const double middle = 0.5 * low + 0.5 * high;
        if (middle == value || middle == low || middle == high) return value;
        value = middle;
    }
    printWarning("tools, getBetterX()", "unexpected behavior, observe!");
    return value;
}

} // namespace

Point2 centerWithShift(const Point2& a, const Point2& b, QuorTest& quorTest) {
    double x = 0.5 * a.x() + 0.5 * b.x(), y = 0.5 * a.y() + 0.5 * b.y();
    const double extentX = std::fabs(a.x() - b.x()), extentY = std::fabs(a.y() - b.y());
    const auto sideOf = [&](double px, double py) {
        const Point2 p(px, py, 0.0);
        return quorTest.getOrientation2(&a, &b, &p);
    };
    const auto betterX = [&] {
        x = bisect(x, shiftFor(extentX), [&](double value) { return sideOf(value, y); });
    };
    const auto betterY = [&] {
        y = bisect(y, shiftFor(extentY), [&](double value) { return sideOf(x, value); });
    };
    // The axis of the smaller extent first: there a step of the coordinate means the least along the line.
    if (extentX < extentY) {
        betterX();
        betterY();
    } else {
        betterY();
        betterX();
    }
    return Point2(x, y, 0.5 * a.z() + 0.5 * b.z());
}

} // namespace QUOR_KELM25D
