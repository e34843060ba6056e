// Robust intersection of two lines that are known to meet within their segments.
// The exact construction itself is QuorTest::getIntersectionCoords; here is the road that avoids it.

#include "QuorTest.h"

#include <kelm25d/Bbox2.h>

#include <cmath>
#include <mutex>

namespace QUOR_KELM25D {

namespace {

constexpr double minRun = 1e-50;           // a smaller |dx| counts as a vertical line
constexpr double verticalSlope = 100000.0; // the slope that stands for it
constexpr double steepSlope = 1000.0;
constexpr double minSlopeDifference = 0.01;

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
    return true;
}

Point2 intersectExactly(const Point2* const (&aEnd)[4]) {
    static std::mutex mtx;
    static QuorTest sharedQuorTest;
    const std::lock_guard<std::mutex> lock(mtx);
    double x = 0.0, y = 0.0;
    sharedQuorTest.getIntersectionCoords(aEnd[0], aEnd[1], aEnd[2], aEnd[3], x, y);
    return Point2(x, y, 0.0);
}

} // namespace

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

} // namespace QUOR_KELM25D
