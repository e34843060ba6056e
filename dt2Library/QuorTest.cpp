// The stages of the predicates behind the inline filters, and the exact constructions.
// The robust line intersection for general callers is in intersection2D.cpp.

#include "QuorTest.h"

#include "cornerIndex.h"
#include "exactSigns.h"
#include "messages.h"

#include <algorithm>
#include <cfenv>
#include <limits>

namespace QUOR_KELM25D {

namespace {

// Computations under a rounding mode other than to nearest go through volatile variables: the compiler may
// then neither move them across fesetround nor evaluate them at compile time.
class RoundingMode {
public:
    RoundingMode() noexcept : saved(std::fegetround()) {}
    ~RoundingMode() { std::fesetround(saved); }
    RoundingMode(const RoundingMode&) = delete;
    RoundingMode& operator=(const RoundingMode&) = delete;
    void set(int mode) noexcept { std::fesetround(mode); }

private:
    int saved;
};

/// One product of two differences, (a-b)*(c-d), bounded from either side.
class DifferenceProduct {
public:
    DifferenceProduct(double a_, double b_, double c_, double d_) noexcept
        : a(a_), b(b_), c(c_), d(d_), bFirstNegative(b_ > a_), bSecondNegative(d_ > c_) {}

    double upper(RoundingMode& mode) const noexcept {
        return isNegative() ? towardZero(mode) : awayFromZero(mode);
    }
    double lower(RoundingMode& mode) const noexcept {
        return isNegative() ? awayFromZero(mode) : towardZero(mode);
    }

private:
    bool isNegative() const noexcept { return bFirstNegative != bSecondNegative; }

    double towardZero(RoundingMode& mode) const noexcept {
        mode.set(FE_TOWARDZERO);
        volatile double first = a, second = c;
        first = first - b;
        second = second - d;
        volatile double product = first * second;
        return product;
    }

    double awayFromZero(RoundingMode& mode) const noexcept {
        mode.set(FE_UPWARD);
        volatile double first = bFirstNegative ? b : a, second = bSecondNegative ? d : c;
        first = first - (bFirstNegative ? a : b);
        second = second - (bSecondNegative ? c : d);
        volatile double product = first * second;
        return isNegative() ? -product : product;
    }

    const volatile double a, b, c, d;
    const bool bFirstNegative, bSecondNegative;
};

Orientation2 fromSign(int sign) noexcept {
    return sign > 0 ? ORIENTATION2_CCW : (sign < 0 ? ORIENTATION2_CW : ORIENTATION2_COLLINEAR);
}

InCircle insideFromSign(int sign) noexcept {
    return sign > 0 ? InCircle::INSIDE : (sign < 0 ? InCircle::OUTSIDE : InCircle::ON);
}

/// The sign of the orientation determinant by interval arithmetic: 1, -1, or 0 for undecided.
int orientationSignInIntervals(const Point2* p0, const Point2* p1, const Point2* p2) noexcept {
    RoundingMode mode;
    const DifferenceProduct t1(p0->x(), p2->x(), p1->y(), p2->y());
    const DifferenceProduct t2(p0->y(), p2->y(), p1->x(), p2->x());
    volatile double first = t1.upper(mode), second = t2.lower(mode);
    mode.set(FE_UPWARD);
    volatile double bound = first - second;
    if (0.0 > bound) return -1;
    first = t1.lower(mode);
    second = t2.upper(mode);
    mode.set(FE_DOWNWARD);
    bound = first - second;
    return bound > 0.0 ? 1 : 0;
}

/// Whether the three corners and q are the corners of an axis-parallel rectangle.
bool isAxisParallelRectangle(const Triangle2* t, const Point2* q) noexcept {
    int numEqualX = 0, numEqualY = 0;
    double aX[3], aY[3];
    int numX = 0, numY = 0;
    for (const Point2* p : t->getCorners()) {
        if (p->x() == q->x()) {
            ++numEqualX;
        } else {
            aX[numX++] = p->x();
        }
        if (p->y() == q->y()) {
            ++numEqualY;
        } else {
            aY[numY++] = p->y();
        }
    }
    return numEqualX == 1 && numEqualY == 1 && aX[0] == aX[1] && aY[0] == aY[1];
}

/// The double nearest to a rational; GMP's own conversion truncates.
double roundToDouble(const mpq_t rational) {
    const double truncated = mpq_get_d(rational);
    const double away =
        std::nextafter(truncated, mpq_sgn(rational) < 0 ? -std::numeric_limits<double>::infinity()
                                                        : std::numeric_limits<double>::infinity());
    if (!std::isfinite(away)) return truncated;
    mpq_t middle, other;
    mpq_init(middle);
    mpq_init(other);
    mpq_set_d(middle, truncated);
    mpq_set_d(other, away);
    mpq_add(middle, middle, other);
    mpq_div_2exp(middle, middle, 1);
    const int compared = mpq_sgn(rational) < 0 ? mpq_cmp(middle, rational) : mpq_cmp(rational, middle);
    mpq_clear(other);
    mpq_clear(middle);
    return compared > 0 ? away : truncated;
}

} // namespace

QuorTest::~QuorTest() {
    const auto clear = [](mpq_t* aBank, int n) {
        for (int i = 0; i < n; ++i) {
            mpq_clear(aBank[i]);
        }
    };
    if (bBankInit) {
        clear(circleRes, numCircleRes);
        clear(circleIn, numCircleIn);
        clear(orientIn, numOrientIn);
        clear(orientRes, numOrientRes);
    }
    if (bCutInit) clear(cutIn, numCutIn);
}

void QuorTest::initBank() {
    if (bBankInit) return;
    const auto init = [](mpq_t* aBank, int n) {
        for (int i = 0; i < n; ++i) {
            mpq_init(aBank[i]);
        }
    };
    init(circleRes, numCircleRes);
    init(circleIn, numCircleIn);
    init(orientIn, numOrientIn);
    init(orientRes, numOrientRes);
    bBankInit = true;
}

void QuorTest::initCut() {
    if (bCutInit) return;
    for (mpq_t& rational : cutIn) {
        mpq_init(rational);
    }
    bCutInit = true;
}

void QuorTest::setRange(double r) noexcept {
    constexpr double eps = 0x1p-52;
    const double e1 = 2 * eps, e2 = 4 * eps, e3 = 8 * eps;
    // Differences reach 2r with a relative rounding error of eps/2 each, their products 4r^2: the two
    // products together are off by at most 12 eps r^2. The last factor covers the terms of second order in
    // eps, the lower limit the underflow of the products.
    double bound = (0.5 * e3 + (0.5 * e2 + e1) * 2.0) * r * r * (1.0 + 4.0 * eps);
    if (r != 0.0) bound = std::max(bound, 0x1p-1000);
    errPos = bound;
    errNeg = -bound;
    range = std::fabs(r);
}

void QuorTest::updateRange(const Point2* p0, const Point2* p1, const Point2* p2) noexcept {
    double sum = 0.0;
    for (const Point2* p : {p0, p1, p2}) {
        const double magnitude = p->getMaxAbs();
        if (magnitude > range) sum += magnitude;
    }
    if (sum > range) setRange(sum);
}

Orientation2 QuorTest::getOrientation2(const Point2* p0, const Point2* p1, const Point2* p2) {
    const double t1 = (p0->x() - p2->x()) * (p1->y() - p2->y());
    const double t2 = (p0->y() - p2->y()) * (p1->x() - p2->x());
    const double d = t1 - t2;
    // Relative to the products, (3 + 16 u) u with u = 2^-53, rounded up; the second term is for underflow.
    const double bound = (std::fabs(t1) + std::fabs(t2)) * 3.3306690738754716e-16 + 0x1p-1000;
    if (d > bound) return ORIENTATION2_CCW;
    if (-bound > d) return ORIENTATION2_CW;

    if (p0->x() == p1->x() && p1->x() == p2->x()) return ORIENTATION2_COLLINEAR;
    if (p0->y() == p1->y() && p1->y() == p2->y()) return ORIENTATION2_COLLINEAR;

    int sign = 0;
    if (orientationSignInIntegers({p0->x(), p0->y(), p1->x(), p1->y(), p2->x(), p2->y()}, sign)) {
        return fromSign(sign);
    }
    sign = orientationSignInIntervals(p0, p1, p2);
    return sign != 0 ? fromSign(sign) : getOrientationExact(p0, p1, p2);
}

Orientation2 QuorTest::getOrientationExact(const Point2* p0, const Point2* p1, const Point2* p2) {
    initBank();
    const Point2* aPoint[3] = {p0, p1, p2};
    for (int i = 0; i < 3; ++i) {
        mpq_set_d(orientIn[2 * i], aPoint[i]->x());
        mpq_set_d(orientIn[2 * i + 1], aPoint[i]->y());
    }
    mpq_sub(orientRes[0], orientIn[0], orientIn[4]);
    mpq_sub(orientRes[1], orientIn[3], orientIn[5]);
    mpq_sub(orientRes[2], orientIn[1], orientIn[5]);
    mpq_sub(orientRes[3], orientIn[2], orientIn[4]);
    mpq_mul(orientRes[4], orientRes[0], orientRes[1]);
    mpq_mul(orientRes[5], orientRes[2], orientRes[3]);
    return fromSign(mpq_cmp(orientRes[4], orientRes[5]));
}

InCircle QuorTest::circleIncFiltered(const Triangle2* t, const Point2* q) {
    const InCircle side = circleIncFilter(t->getCorner(0), t->getCorner(1), t->getCorner(2), q);
    return side != InCircle::UNDECIDED ? side : circleIncExact(t, q);
}

InCircle QuorTest::circleIncExact(const Triangle2* t, const Point2* q) {
    if (isAxisParallelRectangle(t, q)) return InCircle::ON;
    int sign = 0;
    const Point2 *a = t->getCorner(0), *b = t->getCorner(1), *c = t->getCorner(2);
    if (inCircleSignInIntegers({a->x(), a->y(), b->x(), b->y(), c->x(), c->y(), q->x(), q->y()}, sign)) {
        return insideFromSign(sign);
    }
    return circleIncRational(t, q);
}

bool QuorTest::circleInc(const Triangle2* t, const Point2* q) {
    if (isAxisParallelRectangle(t, q)) return true;
    return circleIncExact(t, q) == InCircle::INSIDE;
}

InCircle QuorTest::circleIncRational(const Triangle2* t, const Point2* q) {
    initBank();
    mpq_t* const aIn = circleIn;        // 0-5: corners, 6-7: q
    mpq_t* const aDiff = circleIn + 8;  // adx, ady, bdx, bdy, cdx, cdy
    mpq_t* const aLift = circleIn + 14; // of a, b, c
    mpq_t& scratch = circleIn[17];
    mpq_set_d(aIn[6], q->x());
    mpq_set_d(aIn[7], q->y());
    for (int i = 0; i < 3; ++i) {
        mpq_set_d(aIn[2 * i], t->getCorner(i)->x());
        mpq_set_d(aIn[2 * i + 1], t->getCorner(i)->y());
        mpq_sub(aDiff[2 * i], aIn[2 * i], aIn[6]);
        mpq_sub(aDiff[2 * i + 1], aIn[2 * i + 1], aIn[7]);
        mpq_mul(aLift[i], aDiff[2 * i], aDiff[2 * i]);
        mpq_mul(scratch, aDiff[2 * i + 1], aDiff[2 * i + 1]);
        mpq_add(aLift[i], aLift[i], scratch);
    }
    for (int i = 0; i < 3; ++i) {
        const int j = next(i), k = prev(i);
        mpq_mul(circleRes[i], aDiff[2 * j], aDiff[2 * k + 1]);
        mpq_mul(scratch, aDiff[2 * k], aDiff[2 * j + 1]);
        mpq_sub(circleRes[i], circleRes[i], scratch);
        mpq_mul(circleRes[i], circleRes[i], aLift[i]);
    }
    mpq_add(circleRes[3], circleRes[0], circleRes[1]);
    mpq_add(circleRes[3], circleRes[3], circleRes[2]);
    return insideFromSign(mpq_sgn(circleRes[3]));
}

double QuorTest::getHeightExact(const Point2* p0, const Point2* p1, const Point2* p2, double x, double y) {
    initCut();
    // a = p1-p0 in 3-5, c = p2-p0 in 6-8, p0 in 0-2.
    mpq_set_d(cutIn[0], p0->x());
    mpq_set_d(cutIn[1], p0->y());
    mpq_set_d(cutIn[2], p0->z());
    const Point2* aOther[2] = {p1, p2};
    for (int i = 0; i < 2; ++i) {
        mpq_t* const aDiff = cutIn + 3 + 3 * i;
        mpq_set_d(aDiff[0], aOther[i]->x());
        mpq_set_d(aDiff[1], aOther[i]->y());
        mpq_set_d(aDiff[2], aOther[i]->z());
        for (int k = 0; k < 3; ++k) {
            mpq_sub(aDiff[k], aDiff[k], cutIn[k]);
        }
    }
    mpq_t* const a = cutIn + 3;
    mpq_t* const c = cutIn + 6;
    mpq_t& scratch = cutIn[9];
    const auto minorOf = [&](mpq_t& result, int i, int j) { // a[i]*c[j] - c[i]*a[j]
        mpq_mul(result, a[i], c[j]);
        mpq_mul(scratch, c[i], a[j]);
        mpq_sub(result, result, scratch);
    };
    minorOf(cutIn[10], 0, 1); // D
    minorOf(cutIn[11], 0, 2);
    minorOf(cutIn[12], 1, 2);
    mpq_set_d(cutIn[13], x);
    mpq_sub(cutIn[13], cutIn[13], cutIn[0]);
    mpq_set_d(cutIn[14], y);
    mpq_sub(cutIn[14], cutIn[14], cutIn[1]);
    mpq_mul(cutIn[11], cutIn[11], cutIn[14]);
    mpq_mul(cutIn[12], cutIn[12], cutIn[13]);
    mpq_sub(cutIn[11], cutIn[11], cutIn[12]);
    mpq_div(cutIn[11], cutIn[11], cutIn[10]);
    mpq_add(cutIn[11], cutIn[11], cutIn[2]);
    return roundToDouble(cutIn[11]);
}

void QuorTest::getIntersectionCoords(const Point2* p0, const Point2* p1, const Point2* q0, const Point2* q1,
                                     double& x, double& y) {
    initCut();
    const Point2* aPoint[4] = {p0, p1, q0, q1};
    for (int i = 0; i < 4; ++i) {
        mpq_set_d(cutIn[2 * i], aPoint[i]->x());
        mpq_set_d(cutIn[2 * i + 1], aPoint[i]->y());
    }
    mpq_t& scratch = cutIn[8];
    const auto crossOf = [&](mpq_t& result, mpq_t& ax, mpq_t& ay, mpq_t& bx, mpq_t& by) { // ax*by - ay*bx
        mpq_mul(result, ax, by);
        mpq_mul(scratch, ay, bx);
        mpq_sub(result, result, scratch);
    };
    mpq_t& crossP = cutIn[9];
    mpq_t& crossQ = cutIn[10];
    crossOf(crossP, cutIn[0], cutIn[1], cutIn[2], cutIn[3]);
    crossOf(crossQ, cutIn[4], cutIn[5], cutIn[6], cutIn[7]);
    mpq_t* const aDiff = cutIn + 11; // p0-p1, then q0-q1
    for (int k = 0; k < 2; ++k) {
        mpq_sub(aDiff[k], cutIn[k], cutIn[2 + k]);
        mpq_sub(aDiff[2 + k], cutIn[4 + k], cutIn[6 + k]);
    }
    mpq_t& denominator = cutIn[15];
    crossOf(denominator, aDiff[0], aDiff[1], aDiff[2], aDiff[3]);
    if (mpq_sgn(denominator) == 0) {
        printError("QuorTest::getIntersectionCoords()", "denom=0 -> parallel segments");
        KELM_CHECK(false);
    }
    double aResult[2];
    for (int k = 0; k < 2; ++k) {
        mpq_t& numerator = cutIn[16 + k];
        mpq_mul(numerator, crossP, aDiff[2 + k]);
        mpq_mul(scratch, aDiff[k], crossQ);
        mpq_sub(numerator, numerator, scratch);
        mpq_div(numerator, numerator, denominator);
        aResult[k] = roundToDouble(numerator);
    }
    x = aResult[0];
    y = aResult[1];
}

Meeting QuorTest::segmentsIntersect(const Point2* a, const Point2* b, const Point2* c, const Point2* d) {
    updateRange(a, b, c);
    updateRange(a, b, d);
    const Orientation2 o1 = getOrientation2Filtered(a, b, c);
    const Orientation2 o2 = getOrientation2Filtered(a, b, d);
    if (o1 == o2) {
        if (o1 != ORIENTATION2_COLLINEAR) return Meeting::DISJOINT;
        const bool bOverlap = isOnSegment(*a, *b, *c) || isOnSegment(*a, *b, *d) || isOnSegment(*c, *d, *a) ||
                              isOnSegment(*c, *d, *b);
        return bOverlap ? Meeting::OVERLAP : Meeting::DISJOINT;
    }
    const bool bCrossing = getOrientation2Filtered(c, d, a) != getOrientation2Filtered(c, d, b);
    return bCrossing ? Meeting::CROSSING : Meeting::DISJOINT;
}

int QuorTest::getOrientation3(const Point2* a, const Point2* b, const Point2* c, const Point2* d) noexcept {
    const double ax = a->x() - d->x(), ay = a->y() - d->y(), az = a->z() - d->z();
    const double bx = b->x() - d->x(), by = b->y() - d->y(), bz = b->z() - d->z();
    const double cx = c->x() - d->x(), cy = c->y() - d->y(), cz = c->z() - d->z();
    const double det = ax * (by * cz - bz * cy) - ay * (bx * cz - bz * cx) + az * (bx * cy - by * cx);
    return det > 0.0 ? 1 : (det < 0.0 ? 2 : 0);
}

std::string getString(Orientation2 orientation) {
    switch (orientation) {
    case ORIENTATION2_COLLINEAR:
        return "ORIENTATION2_COLLINEAR";
    case ORIENTATION2_CCW:
        return "ORIENTATION2_CCW";
    case ORIENTATION2_CW:
        return "ORIENTATION2_CW";
    }
    return "UNKNOWN";
}

namespace {

Orientation2 orientationWith(QuorTest& quorTest, const Point2* p0, const Point2* p1, const Point2* p2) {
    KELM_CHECK(p0!=0);
    KELM_CHECK(p1!=0);
    KELM_CHECK(p2!=0);
    quorTest.updateRange(p0, p1, p2);
    return quorTest.getOrientation2Filtered(p0, p1, p2);
}

} // namespace

Orientation2 getOrientation2(const Point2* p0, const Point2* p1, const Point2* p2) {
    static QuorTest sharedQuorTest;
    return orientationWith(sharedQuorTest, p0, p1, p2);
}

Orientation2 getOrientation2_mt(const Point2* p0, const Point2* p1, const Point2* p2) {
    QuorTest quorTest;
    return orientationWith(quorTest, p0, p1, p2);
}

} // namespace QUOR_KELM25D
