// The measures of a triangle and its circumcentre.
// Exactness of the predicates behind them is tested in predicates_test.cpp, the walk around a vertex in
// queries_test.cpp.
#include "testing.h"

#include <cfloat>

namespace {

// A triangle together with the points that it needs.
struct OwnTriangle : Triangle2 {
    Point2 a, b, c;

    OwnTriangle(const Point2& p, const Point2& q, const Point2& r) : a(p), b(q), c(r) {
        setProperties(&a, &b, &c);
    }
    OwnTriangle(const OwnTriangle&) = delete;

    using Triangle2::getCC_strategy2, Triangle2::isAccurateCC;
};

} // namespace

TEST(TriangleOnEdge, ClosedEdgeIsExact) {
    const OwnTriangle t({0, 0, 0}, {4, 0, 0}, {0, 2, 0});
    // Each with the bits of the edges that it is on.
    const std::pair<Point2, int> aCase[] = {
        {{2, 0, 9}, 4}, {{0, 0, 0}, 6}, {{2, 1, 0}, 1}, {{5, 0, 0}, 0}, {{2, DBL_TRUE_MIN, 0}, 0}};
    for (const auto& [q, edges] : aCase)
        EXPECT_EQ(t.hasOnEdge(0, q) + 2 * t.hasOnEdge(1, q) + 4 * t.hasOnEdge(2, q), edges) << q;
}

TEST(TriangleMeasures, KnownTrianglesGiveKnownValues) {
    // Sides 3, 4, 5 in the plane; lifted over one leg the area in space grows by the secant of the slope.
    OwnTriangle t({0, 0, 0}, {3, 0, 4}, {0, 4, 0}), needle({0, 0, 0}, {2, 0, 0}, {1, 0, 0});
    const Edge2 edge(&t, 0); // its lengths are squares, whatever their names say
    EXPECT_TRUE(edge.getLength2D() == 25 && edge.getLength25D() == 41);
    EXPECT_DOUBLE_EQ(t.getArea2D(), 6);
    EXPECT_DOUBLE_EQ(t.getArea25D(), 10);
    // The arcs of 4/3 and 4/5; the factor 57.295779513 carries 11 digits.
    EXPECT_NEAR(t.getInteriorAngle2D(1), 53.13010235, 1e-8);
    EXPECT_NEAR(t.getInteriorAngle25D(1), 38.65980825, 1e-8);
    EXPECT_NEAR((t.getNormalVector() - Vector2(-0.8, 0, 0.6)).length(), 0, 4 * DBL_EPSILON);
    EXPECT_TRUE(needle.getArea2D() == 0 && needle.getNormalVector().isDegenerate());
    const OwnTriangle high({1, 5, 0}, {0, 0, 0}, {2, 0, 0}), low({1, 0.5, 0}, {0, 0, 0}, {2, 0, 0});
    EXPECT_TRUE(high.getMaxIndex() == 1 && low.getMinIndex() == 1); // two are equally long
}

TEST(Circumcentre, IsAccurateUnlessFlaggedAndBisectionRescuesSlivers) {
    // Ever flatter triangles over a base of length 2 in any direction, near the origin and far from it.
    std::mt19937 engine(99);
    std::uniform_real_distribution<double> unit(0, 1);
    int aCount[2][2] = {}; // by the flag and by the height: 0 from the formula, 1 from the bisection
    for (const double shift : {0.0, 1e3, 1e7}) {
        for (double height = 1; height > 1e-15; height /= 1.2) {
            const double phi = 6.3 * unit(engine);
            const Point2 p(shift, shift, 1);
            const Vector2 base(2 * std::cos(phi), 2 * std::sin(phi), 0);
            const OwnTriangle t(p, p + base, p + base * unit(engine) + base.orthogonalVector() * height);
            const auto [cc, bAccurate] = t.getDual();
            ++aCount[bAccurate][cc.z() == 1];
            const auto r = [&c = cc](const Point2& q) { return std::sqrt(Segment2(c, q).getSqLen2D()); };
            const auto [low, high] = std::minmax({r(t.a), r(t.b), r(t.c)});
            // The flag's own tolerance, and the rounding of two distances of this size.
            EXPECT_TRUE(!bAccurate || high - low <= 1e-6 + 4 * DBL_EPSILON * high) << t << cc;
            EXPECT_TRUE(bAccurate || height < 0.01) << t << cc;
        }
    }
    EXPECT_TRUE(aCount[1][0] > 300 && aCount[1][1] > 10 && aCount[0][1] > 5);
    const double huge = 1.7e308; // differences are beyond doubles
    EXPECT_FALSE(OwnTriangle({-huge, -huge, 0}, {huge, -huge, 0}, {0, huge, 0}).getDual().second);
    EXPECT_FALSE(OwnTriangle({huge, huge, 0}, {huge, -huge, 0}, {-huge, 1, 0}).getDual().second);
}

TEST(Circumcentre, BisectionFindsTheCentreInAnyTurn) {
    const Point2 aCase[][4] = {{{0, 0, 1}, {2, 0, 1}, {1, 2, 5}, {1, 0.75, 3}},  // acute, and its centre
                               {{0, 0, 0}, {4, 0, 2}, {2, 1, 9}, {2, -1.5, 1}}}; // obtuse
    for (const auto& v : aCase) {
        for (int i = 0; i < 3; ++i) {
            const OwnTriangle t(v[i], v[(i + 1) % 3], v[(i + 2) % 3]);
            Point2 cc; // gets the mean height of the longest edge
            t.getCC_strategy2(t.getMaxIndex(), 7, 8, cc);
            EXPECT_TRUE((cc - v[3]).length() < 1e-6 && t.isAccurateCC(t.getMaxIndex(), cc)) << t << cc;
        }
    }
}

TEST(TriangleOutput, OrientationCornersAndNeighboursAreWritten) {
    const std::pair<double, std::string> aCase[] = {{4, "6, area2.5D=6, CCW"},
                                                    {-4, "6, area2.5D=6, ATTENTION, CLOCKWISE CORNERS!"},
                                                    {0, "0, area2.5D=0, ATTENTION, COLLINEAR CORNERS"}};
    for (const auto& [y, text] : aCase) {
        OwnTriangle t({0, 0, 0}, {3, 0, 0}, {0, y, 0});
        t.setOppTriangle(1, &t);
        const std::string opp = "\t oppTriangle: ", self = testing::PrintToString(&t);
        EXPECT_EQ(testing::PrintToString(t), "Triangle(" + self + "): area2D=" + text +
                                                 "\n0: " + testing::PrintToString(t.a) + opp +
                                                 "0\n1: " + testing::PrintToString(t.b) + opp + self +
                                                 "\n2: " + testing::PrintToString(t.c) + opp + "0\n");
    }
}

TEST(FanIterator, CycleYieldsEveryTriangleOnceAndOneNullOnTheHull) {
    Point2 vtx, rim;
    EXPECT_THROW(TriangleAroundVertexIterator{&vtx}, KelmException);
    for (const auto& [count, bHull] : {std::pair(1, 1), {2, 1}, {3, 1}, {8, 1}, {3, 0}, {7, 0}}) {
        const int length = count + bHull;
        std::vector<Triangle2> vT(count);
        std::vector<Triangle2*> vCycle(length, nullptr); // counterclockwise, with null for the hull
        for (int i = 0; i < count; ++i)
            vCycle[i] = &vT[i];
        for (int i = 0; i < count; ++i) {
            Point2* aCorner[] = {&rim, &rim, &rim};
            aCorner[i % 3] = &vtx; // takes each corner index in turn
            vT[i].setProperties(aCorner[0], aCorner[1], aCorner[2]);
            vT[i].setOppTriangle((i + 1) % 3, vCycle[(i + 1) % length]);
            vT[i].setOppTriangle((i + 2) % 3, vCycle[(i + length - 1) % length]);
        }
        for (int start = 0; start < count; ++start) {
            TriangleAroundVertexIterator up(&vtx, &vT[start]), down = up;
            for (int k = 1; k <= 2 * length; ++k) {
                const Triangle2* pUp = vCycle[(start + k) % length];
                EXPECT_TRUE(up.previewNextTriangle() == pUp && *++up == pUp) << count << ' ' << start;
                const Triangle2* pDown = vCycle[(start + 2 * length - k) % length];
                EXPECT_TRUE(down.previewPrevTriangle() == pDown && *--down == pDown) << count << ' ' << start;
            }
        }
    }
}
