// The geometric predicates: orientation and in-circle, exact for all finite coordinates, and the few exact
// constructions that the triangulation needs.
// Sign computations in integers are in exactSigns.h; the exported free functions in Orientation2.h.
//
// The ladder. A question is first asked in double arithmetic with an error bound; an answer outside the bound
// is final. What is left goes to integers of fixed width when the coordinates share a binary grid that is
// fine enough (regular grids, cocircular and collinear data almost always do), then to intervals with
// directed rounding (orientation only), and in the end to GMP rationals. Each stage either knows the sign or
// passes the question on, so the result is never wrong, only slow.
//
// The two-stage orientation filter: a static bound for coordinates up to `range` (12 eps range^2) costs one
// compare, a bound relative to the two products settles small triangles far from the origin.
// The filters are the static and dynamic bounds of Shewchuk, "Adaptive Precision Floating-Point Arithmetic
// and Fast Robust Geometric Predicates" (1997), with an absolute term for underflow.
#pragma once

#include "cornerIndex.h"

#include <kelm25d/Orientation2.h>
#include <kelm25d/Triangle2.h>

#include <cmath>
#include <gmp.h>

namespace QUOR_KELM25D {

/// Where a point lies with respect to the circle through three others.
enum class InCircle { ON, INSIDE, OUTSIDE, UNDECIDED /* only as the answer of a filter */ };

/// How two segments meet.
enum class Meeting { DISJOINT, OVERLAP /* on one line */, CROSSING /* or touching */ };

/// One set of predicates with its scratch. For one thread at a time: the exact stage writes scratch
/// rationals.
class QuorTest {
public:
    QuorTest() noexcept = default;
    ~QuorTest();
    QuorTest(const QuorTest&) = delete;
    QuorTest& operator=(const QuorTest&) = delete;

    /// Sets the static orientation filter for coordinates of magnitude up to r.
    void setRange(double r) noexcept;
    /// Widens the static filter when the three points leave it. The sum of the magnitudes, and not the
    /// maximum, is deliberate; it errs to the safe side.
    void updateRange(const Point2* p0, const Point2* p1, const Point2* p2) noexcept;
    double getRange() const noexcept { return range; }
    double getErrPos() const noexcept { return errPos; }
    double getErrNeg() const noexcept { return errNeg; }

    /// Orientation without the static filter.
    Orientation2 getOrientation2(const Point2* p0, const Point2* p1, const Point2* p2);
    /// Orientation behind the static filter; the points must lie within the range.
    Orientation2 getOrientation2Filtered(const Point2* p0, const Point2* p1, const Point2* p2);
    /// Side of q with respect to edge i of t: orientation of (corner next(i), corner prev(i), q).
    Orientation2 getEdgeOrientation(const Triangle2* t, int i, const Point2* q);
    /// Orientation in rational arithmetic alone.
    Orientation2 getOrientationExact(const Point2* p0, const Point2* p1, const Point2* p2);

    /// The filter of the in-circle test of q against the counterclockwise triangle (a, b, c): INSIDE, OUTSIDE
    /// or UNDECIDED.
    static InCircle circleIncFilter(const Point2* a, const Point2* b, const Point2* c,
                                    const Point2* q) noexcept;
    /// In-circle test of q against t, always decided.
    InCircle circleIncFiltered(const Triangle2* t, const Point2* q);
    /// The same without the filter.
    InCircle circleIncExact(const Triangle2* t, const Point2* q);
    /// Strictly inside, or the fourth corner of an axis-parallel rectangle. Deliberately different from
    /// circleIncExact there: on a regular grid the diagonal of a cell always turns to the newest point.
    bool circleInc(const Triangle2* t, const Point2* q);

    /// Height at (x, y) of the plane through three points that are not collinear in the plan view.
    double getHeightExact(const Point2* p0, const Point2* p1, const Point2* p2, double x, double y);
    /// Intersection of the lines (p0, p1) and (q0, q1), each coordinate rounded once. Parallel lines fail a
    /// check.
    void getIntersectionCoords(const Point2* p0, const Point2* p1, const Point2* q0, const Point2* q1,
                               double& x, double& y);
    Meeting segmentsIntersect(const Point2* a, const Point2* b, const Point2* c, const Point2* d);
    /// Sign of the 3D determinant of (a-d, b-d, c-d) in plain double: 1 positive, 2 negative, 0 zero.
    static int getOrientation3(const Point2* a, const Point2* b, const Point2* c, const Point2* d) noexcept;

private:
    enum { numCircleRes = 6, numCircleIn = 30, numCutIn = 29, numOrientIn = 6, numOrientRes = 6 };

    void initBank();
    void initCut();
    InCircle circleIncRational(const Triangle2* t, const Point2* q);

    // Initialised on the first exact computation, so that an object that never leaves the filters costs
    // nothing; kept between calls, so that exact computations allocate only inside GMP.
    mpq_t circleRes[numCircleRes];
    mpq_t circleIn[numCircleIn];
    mpq_t cutIn[numCutIn];
    mpq_t orientIn[numOrientIn];
    mpq_t orientRes[numOrientRes];
    double errPos = 0.0; // static filter bound; errNeg == -errPos
    double errNeg = 0.0;
    double range = 0.0;     // largest coordinate magnitude that the bound covers
    bool bBankInit = false; // circleRes, circleIn, orientIn and orientRes are initialised
    bool bCutInit = false;  // cutIn is initialised
};

inline Orientation2 QuorTest::getOrientation2Filtered(const Point2* p0, const Point2* p1, const Point2* p2) {
    const double d = (p1->y() - p2->y()) * (p0->x() - p2->x()) - (p0->y() - p2->y()) * (p1->x() - p2->x());
    if (d > errPos) return ORIENTATION2_CCW;
    if (errNeg > d) return ORIENTATION2_CW;
    return getOrientation2(p0, p1, p2);
}

inline Orientation2 QuorTest::getEdgeOrientation(const Triangle2* t, int i, const Point2* q) {
    return getOrientation2Filtered(t->getCorner(next(i)), t->getCorner(prev(i)), q);
}

inline InCircle QuorTest::circleIncFilter(const Point2* a, const Point2* b, const Point2* c,
                                          const Point2* q) noexcept {
    const double adx = a->x() - q->x(), ady = a->y() - q->y();
    const double bdx = b->x() - q->x(), bdy = b->y() - q->y();
    const double cdx = c->x() - q->x(), cdy = c->y() - q->y();
    const double bdxcdy = bdx * cdy, cdxbdy = cdx * bdy;
    const double cdxady = cdx * ady, adxcdy = adx * cdy;
    const double adxbdy = adx * bdy, bdxady = bdx * ady;
    const double alift = adx * adx + ady * ady;
    const double blift = bdx * bdx + bdy * bdy;
    const double clift = cdx * cdx + cdy * cdy;
    const double det = alift * (bdxcdy - cdxbdy) + blift * (cdxady - adxcdy) + clift * (adxbdy - bdxady);
    const double permanent = (std::fabs(bdxcdy) + std::fabs(cdxbdy)) * alift +
                             (std::fabs(cdxady) + std::fabs(adxcdy)) * blift +
                             (std::fabs(adxbdy) + std::fabs(bdxady)) * clift;
    // The relative term bounds the rounding, in units u = 2^-53: 1 for each difference of coordinates, so 3
    // for each product of two and 4 for the difference of two such, relative to the sum of their magnitudes;
    // 4 for a lift, the sum of two squares; 4 + 4 + 1 for a lift times that, and 2 more for the sum of three.
    // That is 11 u of the permanent. The terms of second order in u and the rounding of the permanent itself
    // are far below another u; 3.33e-15 is 30 u. Each product may lose 2^-1074 to underflow, multiplied later
    // by at most the sum of the lifts: the second term is far above that, and far below any permanent that
    // ordinary coordinates give. Overflow makes the bound infinite: undecided.
    const double bound = permanent * 3.33e-15 + (alift + blift + clift + 1.0) * 0x1p-900;
    if (det > bound) return InCircle::INSIDE;
    if (-bound > det) return InCircle::OUTSIDE;
    return InCircle::UNDECIDED;
}

/// Intersection point of the segments' lines for callers that know the segments to meet: the point lies on
/// both segments, or it is the nearest of the four end points. Heights are ignored. Thread safe.
void getIntersection2D(const Point2* p0, const Point2* p1, const Point2* q0, const Point2* q1, double& x,
                       double& y);

/// Crossing of the constraints (c0, c1), which was there first, and (s, t), with a height, for callers that
/// know the two to cross. An end of one that lies beside the other, closer than 1e-6 to the crossing, is
/// taken itself. So is one that is all but on the other: constraints that nearly coincide would cross again
/// and again if each crossing were a new place next to them. Otherwise the height is that of the first
/// constraint and the custom index is -1. The result is a progress for both. Thread safe.
Point2 getIntersection25D(const Point2& c0, const Point2& c1, const Point2& s, const Point2& t);

/// Whether dividing the segment of a and b at c, unless that is an end, gives shorter pieces or ones with
/// smaller boxes. Lengths as they are computed never grow along such divisions, and boxes shrink while
/// lengths stay: so no segment comes to contain itself, and divisions end whatever the rounding.
bool isProgress(const Point2& a, const Point2& b, const Point2& c) noexcept;

/// Whether c lies in the box of a and b, borders included.
bool isInBox(const Point2& a, const Point2& b, const Point2& c) noexcept;

/// Whether c, which is known to lie near the line of a and b, lies between them: a distance test in the
/// plane, not a collinearity test.
bool isOnSegment(const Point2& a, const Point2& b, const Point2& c) noexcept;

} // namespace QUOR_KELM25D
