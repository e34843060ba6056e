// Robust intersection of two lines that are known to meet within their segments.
// The exact construction itself is QuorTest::getIntersectionCoords; here is the road that avoids it.

#include "QuorTest.h"

#include "footPoint.h"

#include <kelm25d/Bbox2.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>

namespace QUOR_KELM25D {

namespace {

constexpr double minRun = 1e-50;           // a smaller |dx| counts as a vertical line
constexpr double verticalSlope = 100000.0; // the slope that stands for it
// The denominator of a crossing is px qx (s2 - s1) for slopes s1 and s2: the difference of two products, each
// known to 3 u = 3 * 2^-53. Its relative error is at most 3 u (|s1| + |s2|) / |s1 - s2|. Unless both slopes
// are steep, that is largest for two of about steepSlope: 3 u * 2000 / 0.01, below 1e-10. So ten digits are
// left of the place relative to the centre; a result off one of the segments is computed again, exactly.
constexpr double steepSlope = 1000.0;
constexpr double minSlopeDifference = 0.01;
constexpr double roundingOfCrossing = 0x1p-51; // relative to the coordinates
constexpr double sqSnapDistance = 1e-12;       // of a crossing and an end

double squaredDistance2D(const Point2& a, const Point2& b) noexcept {
    const double dx = a.x() - b.x(), dy = a.y() - b.y();
    return dx * dx + dy * dy;
}

double slopeOf(const Point2& a, const Point2& b) noexcept {
    const double dx = b.x() - a.x();
    return std::fabs(dx) > minRun ? (b.y() - a.y()) / dx : verticalSlope;
}

/// The intersection in double arithmetic around the centre of the shorter segment, since next to it all
/// cancellation is harmless; false where the result would be poor.
bool intersectInDouble(const Point2* const (&aEnd)[4], Point2& result) {
    const bool bFirst = squaredDistance2D(*aEnd[0], *aEnd[1]) < squaredDistance2D(*aEnd[2], *aEnd[3]);
    Bbox2 box;
    box.add(*aEnd[bFirst ? 0 : 2]);
    box.add(*aEnd[bFirst ? 1 : 3]);
    const Point2 center = box.computeCenter();
    Point2 a[4];
    for (int i = 0; i < 4; ++i) {
        a[i] = Point2(aEnd[i]->x() - center.x(), aEnd[i]->y() - center.y(), 0.0);
    }
    const double s1 = slopeOf(a[0], a[1]), s2 = slopeOf(a[2], a[3]);
    if (std::isinf(s1) || std::isinf(s2)) return false;
    if (std::fabs(s1) > steepSlope && std::fabs(s2) > steepSlope) return false;
    if (std::fabs(s1 - s2) < minSlopeDifference) return false;

    const double crossP = a[0].x() * a[1].y() - a[0].y() * a[1].x();
    const double crossQ = a[2].x() * a[3].y() - a[2].y() * a[3].x();
    const double px = a[0].x() - a[1].x(), py = a[0].y() - a[1].y();
    const double qx = a[2].x() - a[3].x(), qy = a[2].y() - a[3].y();
    const double denominator = px * qy - py * qx;
    if (denominator == 0.0) return false;
    result = Point2((crossP * qx - px * crossQ) / denominator + center.x(),
                    (crossP * qy - py * crossQ) / denominator + center.y(), 0.0);
    return std::isfinite(result.x()) && std::isfinite(result.y());
}

Point2 intersectExactly(const Point2* const (&aEnd)[4]) {
    static std::mutex mtx;
    static QuorTest sharedQuorTest;
    const std::lock_guard<std::mutex> lock(mtx);
    double x = 0.0, y = 0.0;
    sharedQuorTest.getIntersectionCoords(aEnd[0], aEnd[1], aEnd[2], aEnd[3], x, y);
    return Point2(x, y, 0.0);
}

/// Whether c is no farther from the line of a and b than the rounding of a crossing is.
bool isAllButOnLine(const Point2& a, const Point2& b, const Point2& c) noexcept {
    const double dx = b.x() - a.x(), dy = b.y() - a.y();
    const double doubleArea = dx * (c.y() - a.y()) - dy * (c.x() - a.x());
    const double rounding = roundingOfCrossing * std::max({a.getMaxAbs(), b.getMaxAbs(), c.getMaxAbs()});
    return std::fabs(doubleArea) <= rounding * std::max(std::fabs(dx), std::fabs(dy));
}

} // namespace

bool isInBox(const Point2& a, const Point2& b, const Point2& c) noexcept {
    return c.x() >= std::fmin(a.x(), b.x()) && c.x() <= std::fmax(a.x(), b.x()) &&
           c.y() >= std::fmin(a.y(), b.y()) && c.y() <= std::fmax(a.y(), b.y());
}

bool isProgress(const Point2& a, const Point2& b, const Point2& c) noexcept {
    if (isInBox(a, b, c)) return true;
    const double length = squaredDistance2D(a, b);
    return squaredDistance2D(a, c) < length && squaredDistance2D(b, c) < length;
}

bool isOnSegment(const Point2& a, const Point2& b, const Point2& c) noexcept {
    if (c == a || c == b) return true;
    const double length = squaredDistance2D(a, b);
    return length >= squaredDistance2D(a, c) && length >= squaredDistance2D(b, c);
}

void getIntersection2D(const Point2* p0, const Point2* p1, const Point2* q0, const Point2* q1, double& x,
                       double& y) {
    for (const Point2* p : {p0, p1}) {
        if (*p == *q0 || *p == *q1) {
            p->xy(x, y);
            return;
        }
    }
    const Point2* const aEnd[4] = {p0, p1, q0, q1};
    const auto isOnBoth = [&](const Point2& c) {
        return isOnSegment(*p0, *p1, c) && isOnSegment(*q0, *q1, c);
    };
    Point2 result;
    if (!intersectInDouble(aEnd, result) || !isOnBoth(result)) {
        result = intersectExactly(aEnd);
        if (!isOnBoth(result)) {
            const Point2* pNearest = p0;
            for (const Point2* p : {p1, q0, q1}) {
                const double distance = squaredDistance2D(*p, result);
                const double best = squaredDistance2D(*pNearest, result);
                if (distance < best || (distance == best && Func_ltPointXYZ()(*p, *pNearest))) pNearest = p;
            }
            result = *pNearest;
        }
    }
    result.xy(x, y);
}

Point2 getIntersection25D(const Point2& c0, const Point2& c1, const Point2& s, const Point2& t) {
    const auto isGood = [&](const Point2& c) { return isProgress(c0, c1, c) && isProgress(s, t, c); };
    double x = 0.0, y = 0.0;
    getIntersection2D(&c0, &c1, &s, &t, x, y);
    Point2 crossing(x, y, 0.0);
    const Point2* pNearest = nullptr;
    double nearest = std::numeric_limits<double>::infinity();
    const auto tryEnd = [&](const Point2& end, const Point2& a, const Point2& b) {
        const double distance = squaredDistance2D(end, crossing);
        if (distance >= nearest || (distance >= sqSnapDistance && !isAllButOnLine(a, b, end))) return;
        if (!isOnSegment(a, b, end) || !isGood(end)) return;
        nearest = distance;
        pNearest = &end;
    };
    tryEnd(c0, s, t);
    tryEnd(c1, s, t);
    tryEnd(s, c0, c1);
    tryEnd(t, c0, c1);
    if (pNearest != nullptr) return *pNearest;

    if (!isGood(crossing)) {
        // Rounded once from the exact place, which lies in both boxes, the crossing does so too.
        const Point2* const aEnd[4] = {&c0, &c1, &s, &t};
        crossing = intersectExactly(aEnd);
    }
    crossing.setZ(heightOnSegment(c0, c1, crossing.x(), crossing.y()));
    return crossing;
}

} // namespace QUOR_KELM25D
