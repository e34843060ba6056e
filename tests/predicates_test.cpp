// The geometric predicates against an evaluation in rationals, and the exact
// constructions. What the triangulation makes of them is tested in
// insertion_test.cpp.
#include "exactSigns.h"
#include "testing.h"

#include <cfenv>
#include <gmpxx.h>

namespace {

constexpr int numCases = 500000; // of an orientation and an in-circle test each

// 1 counterclockwise or inside, 2 clockwise or outside, 0 between.
int toResult(int sign) {
    return sign > 0 ? 1 : (sign < 0 ? 2 : 0);
}

// Makes n points on one line or one circle but for rounding and the last bits:
// on a small grid, with coordinates of very different size, or anywhere; at one
// scale after the other, from denormals to differences that overflow.
struct CaseMaker {
    std::vector<Point2> next(int n, bool bCircle) {
        static const double aScales[] = {1,     1e-3,   1e-12,  1e80,   1e150,  1e300, 2e307,
                                         1e-80, 1e-105, 1e-155, 1e-160, 1e-300, 1e-320};
        const double scale = aScales[count % 13], offset = scale <= 1 && count % 3 == 0 ? 4.5e6 * scale : 0;
        const int family = count++ / 39 % 4;
        const double ax = unit(), ay = unit(), bx = unit(), by = unit();
        std::vector<Point2> vPoints;
        for (int i = 0; i < n; ++i) {
            const double t = family == 1 ? std::ldexp(unit(), -25 * i) : 6.3 * unit() - 3.0;
            double x = ax + t * (bx - ax), y = ay + t * (by - ay);
            if (bCircle) x = bx + ax * std::cos(t), y = by + ax * std::sin(t);
            if (family == 1) x = bCircle ? 2.0 * ax * std::pow(std::sin(t / 2.0), 2) : t;
            if (family == 1) y = bCircle ? ax * std::sin(t) : t * ay;
            if (family == 0) x = std::floor(8 * unit()), y = std::floor(8 * unit());
            x = offset + scale * x, y = offset + scale * y;
            for (int k = 0; family != 0 && k < 2; ++k)
                (unit() < 0.5 ? x : y) = std::nextafter(unit() < 0.5 ? x : y, unit() - 0.5);
            vPoints.emplace_back(x, y, unit());
        }
        return vPoints;
    }
    double unit() { return std::uniform_real_distribution<double>(0.0, 1.0)(random); }

    std::mt19937_64 random{4711};
    int count = 0;
};

} // namespace

TEST(Predicates, NearDegenerateCasesAgreeWithRationals) {
    CaseMaker maker;
    for (int i = 0; i < numCases; ++i) {
        SCOPED_TRACE(i);
        std::vector<Point2> v = maker.next(4, i % 2 == 0);
        Point2 *a = &v[0], *b = &v[1], *c = &v[2], *q = &v[3];
        const int orientation = toResult(exactOrientation(*a, *b, *c));
        QuorTest quorTest;
        quorTest.updateRange(a, b, c);
        ASSERT_EQ(orientation, getOrientation2(a, b, c));
        ASSERT_EQ(orientation, getOrientation2_mt(a, b, c));
        ASSERT_EQ(orientation, quorTest.getOrientation2Filtered(a, b, c));
        ASSERT_EQ(orientation, quorTest.getOrientation2(a, b, c));
        ASSERT_EQ(orientation, quorTest.getOrientationExact(a, b, c));
        ASSERT_EQ(FE_TONEAREST, std::fegetround());
        int sign = orientation == 2 ? -1 : orientation; // stays when the coordinates do not fit
        orientationSignInIntegers({a->x(), a->y(), b->x(), b->y(), c->x(), c->y()}, sign);
        ASSERT_EQ(orientation, toResult(sign));

        if (orientation == 0) continue;
        if (orientation == 2) std::swap(*b, *c);
        Triangle2 t;
        t.setProperties(a, b, c);
        const int expected = toResult(exactInCircle(*a, *b, *c, *q));
        const std::set<double> sX{a->x(), b->x(), c->x(), q->x()}, sY{a->y(), b->y(), c->y(), q->y()};
        const bool bRectangle = sX.size() * sY.size() == 4 && *q != *a && *q != *b && *q != *c;
        ASSERT_EQ(expected, static_cast<int>(quorTest.circleIncFiltered(&t, q)));
        ASSERT_EQ(expected, static_cast<int>(quorTest.circleIncExact(&t, q)));
        // Deliberately the fourth corner of a rectangle counts as inside here only.
        ASSERT_EQ(expected == 1 || bRectangle, quorTest.circleInc(&t, q));
        sign = expected == 2 ? -1 : expected;
        inCircleSignInIntegers({a->x(), a->y(), b->x(), b->y(), c->x(), c->y(), q->x(), q->y()}, sign);
        ASSERT_EQ(expected, toResult(sign));
    }
}

TEST(Predicates, ConstructionsAreTheNearestDoubles) {
    CaseMaker maker;
    QuorTest quorTest;
    for (int i = 0; i < 3000; ++i) {
        const std::vector<Point2> v = maker.next(4, i % 2 != 0); // nearly collinear ones too
        const mpq_class x[] = {v[0].x(), v[1].x(), v[2].x(), v[3].x()};
        const mpq_class y[] = {v[0].y(), v[1].y(), v[2].y(), v[3].y()};
        const auto cross = [&](int a, int b, int p, int q) -> mpq_class {
            return (x[b] - x[a]) * (y[q] - y[p]) - (y[b] - y[a]) * (x[q] - x[p]);
        };
        const mpq_class denominator = cross(0, 1, 2, 3), area = cross(0, 1, 0, 2), z = v[0].z();
        if (denominator == 0 || area == 0) continue;
        const mpq_class t = cross(0, 2, 2, 3) / denominator;
        double aFound[3];
        quorTest.getIntersectionCoords(&v[0], &v[1], &v[2], &v[3], aFound[0], aFound[1]);
        aFound[2] = quorTest.getHeightExact(&v[0], &v[1], &v[2], v[3].x(), v[3].y());
        const mpq_class aExact[] = {
            x[0] + t * (x[1] - x[0]), y[0] + t * (y[1] - y[0]),
            z + (cross(0, 3, 0, 2) * (v[1].z() - z) + cross(0, 1, 0, 3) * (v[2].z() - z)) / area};
        for (int k = 0; k < 3; ++k) {
            for (double side : {-1e308, 1e308}) {
                if (std::fabs(aFound[k]) > 1e308) continue;
                EXPECT_LE(abs(aFound[k] - aExact[k]), abs(std::nextafter(aFound[k], side) - aExact[k]));
            }
        }
    }
}

TEST(Predicates, SegmentsMeetInAllPositions) {
    const Point2 o(0, 0, 0), e(4, 0, 0), n(0, 4, 0), ne(4, 4, 0), m(2, 2, 0), far(9, 9, 0);
    constexpr Meeting apart = Meeting::DISJOINT, overlap = Meeting::OVERLAP, cross = Meeting::CROSSING;
    struct Case {
        Point2 a, b, c, d;
        Meeting expected;
        double x, y; // of getIntersection2D; none for parallel ones
    };
    const Case aCases[] = {{o, ne, e, n, cross, 2, 2},     {o, ne, n, m, cross, 2, 2},
                           {o, e, e, n, cross, 4, 0},      {o, m, m, far, overlap, 2, 2},
                           {o, e, m, ne, apart, 0, 0}, // the end nearest to the lines' intersection
                           {o, m, ne, far, apart, NAN, 0}, {o, ne, m, far, overlap, NAN, 0},
                           {o, e, n, ne, apart, NAN, 0}};
    for (const auto& [a, b, c, d, expected, expectedX, expectedY] : aCases) {
        SCOPED_TRACE(testing::Message() << a << b << c << d);
        EXPECT_TRUE(expected == QuorTest().segmentsIntersect(&a, &b, &c, &d));
        EXPECT_TRUE(expected == QuorTest().segmentsIntersect(&d, &c, &a, &b));
        if (std::isnan(expectedX)) continue;
        double x = 0.0, y = 0.0;
        getIntersection2D(&a, &b, &c, &d, x, y);
        EXPECT_TRUE(x == expectedX && y == expectedY);
    }
}
