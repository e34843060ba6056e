// Points, boxes and planes as values.
// The triangle record is tested in triangle_test.cpp.
#include "testing.h"

#include <array>
#include <cfloat>
#include <regex>

using testing::PrintToString;

namespace {

using Bounds = std::array<double, 4>; // minX, minY, maxX, maxY

Bounds boundsOf(const Bbox2& box) {
    return {box.get_minX(), box.get_minY(), box.get_maxX(), box.get_maxY()};
}

Bbox2 makeBox(const Bounds& bounds) {
    Bbox2 box;
    box.add(Point2(bounds[0], bounds[1], 0));
    box.add(Point2(bounds[2], bounds[3], 0));
    return box;
}

} // namespace

TEST(Point2Copy, CopyOfVertexIsNoVertexAndKeepsTheRest) {
    Triangle2 triangle;
    Point2 a(0, 0, 5), b(1, 0, 6), c(0, 1, 7);
    a.setCustomIndex(42);
    triangle.setProperties(&a, &b, &c);
    b = a; // the target stops being a vertex too
    for (const Point2& copy : {Point2(a), b})
        EXPECT_TRUE(copy.samePoint(a) && copy.getCustomIndex() == 42 && !copy.getIncidentTriangle());
}

TEST(StreamOutput, EveryTypeWritesItsText) {
    const Point2 p(1.5, -2, 3);
    const std::string texts = PrintToString(Vector2(1, 2, 0.25)) + '\n' + PrintToString(Segment2(p, p)) +
                              '\n' + PrintToString(Circle2(1, 2, 9));
    EXPECT_EQ(std::regex_replace(texts, std::regex("0x[0-9a-f]+"), "@"),
              "Vector2: 1, 2, 0.25\nSegment2 (@): Point2 (@,-1): 1.5, -2, 3,Point2 (@,-1): 1.5, -2, "
              "3\nCircle2: Point2 (@,-1): 1, 2, 0, r=3");
}

TEST(Vector2Orthogonal, ResultIsTheUnitLeftNormalInEveryDirectionAndScale) {
    for (const double scale : {1e-300, 1e-8, 1.0, 1e12, 1e150}) {
        for (double angle = 0; angle < 6.3; angle += std::acos(-1.0) / 16) {
            const Vector2 v(std::cos(angle), std::sin(angle), 3), n = (v * scale).orthogonalVector();
            // One rounding each for quotient, length and division; 8 ulp leaves room
            // for cos and sin.
            EXPECT_LE((n - Vector2(-v.y(), v.x(), 0)).length(), 8 * DBL_EPSILON) << v * scale;
        }
    }
    for (const Vector2& v : {Vector2(0, 0, 5), Vector2(1e-200, 0, 0), Vector2(NAN, 1, 0)}) // have none
        EXPECT_TRUE((v.z() == 5 ? v.orthogonalVector() : normalize(v)).isDegenerate()) << v;
}

TEST(Edge2Handle, SidesAreMirrorImagesAndLengthsAreSquares) {
    Point2 a(0, 0, 0), b(3, 0, 4), c(3, 1, 0), d(0, 1, 0);
    Triangle2 aT[2], *pT0 = nullptr, *pT1 = nullptr;
    aT[0].setPropertiesAndOppT(&a, &b, &c, nullptr, &aT[1], nullptr);
    aT[1].setPropertiesAndOppT(&d, &a, &c, &aT[0], nullptr, nullptr);
    const Edge2 hull(&aT[0], 2);
    int i0 = -7, i1 = -7;
    Edge2(&aT[0], 1).getTriangles(pT0, pT1, i0, i1);
    EXPECT_TRUE(pT0 == &aT[0] && pT1 == &aT[1] && i0 == 1 && i1 == 0);
    hull.getTriangles(pT0, pT1, i0, i1);
    EXPECT_TRUE(pT0 == &aT[0] && pT1 == nullptr && i0 == 2 && i1 == -1);
    EXPECT_TRUE(hull.getLength2D() == 9 && hull.getLength25D() == 25); // whatever the names say
}

TEST(Bbox2, EveryFormOfAddTakesTheFirstPointAndReportsChanges) {
    for (const unsigned count : {0U, 1U, 2U, 1000U}) {
        std::vector<double> vCoords;
        Bbox2 oneByOne, fromPoints, fromCoords;
        const std::vector<Point2> vPoints = makeAllKinds(count)[2].points; // no coordinate is positive
        for (const Point2& p : vPoints) {
            const bool bOutside = !oneByOne.isInBox(p);
            EXPECT_TRUE(oneByOne.add(p) == bOutside && oneByOne.isInBox(p)) << p;
            vCoords.insert(vCoords.end(), {p.x(), p.y(), p.z()});
        }
        for (const bool bChanged : {count > 0, false}) {
            EXPECT_EQ(fromPoints.add(vPoints.begin(), vPoints.end()), bChanged);
            EXPECT_EQ(fromCoords.add(count, vCoords.data()), bChanged);
        }
        EXPECT_TRUE(boundsOf(fromPoints) == boundsOf(oneByOne) && boundsOf(fromCoords) == boundsOf(oneByOne));
    }
    const Point2 p;
    EXPECT_EQ(Bbox2(&p, &p + 1, nullptr).get_maxY(), DBL_MAX); // open upwards, deliberately
}

TEST(Bbox2, BordersBelongToTheBox) {
    const Bbox2 box = makeBox({0, 0, 2, 1});
    for (const Bounds& bounds : {Bounds{2, 1, 3, 3}, {-9, -9, 9, 9}, {1, -5, 1.5, 5}})
        EXPECT_TRUE(box.doIntersect(makeBox(bounds)) && makeBox(bounds).doIntersect(box)) << bounds[0];
    for (const Bounds& bounds : {Bounds{0.5, std::nextafter(1, 2), 1, 2}, {-3, 0, -1, 1}})
        EXPECT_FALSE(box.doIntersect(makeBox(bounds)) || makeBox(bounds).doIntersect(box)) << bounds[0];
}

TEST(Bbox2, GrowsByUnionAndAboutItsCentreAndSetsTheFilter) {
    QuorTest quorTest;
    Bbox2 box = makeBox({0, 1, 5, 1.5}), fresh(&quorTest);
    fresh.doubleTheBox(); // nothing yet
    for (const Bbox2& result : {box + makeBox({-3, 1.2, 2, 2}), box, fresh + box, fresh})
        EXPECT_EQ(boundsOf(result), (Bounds{-3, 1, 5, 2})); // also what stood on the left
    EXPECT_FALSE(fresh.add(Point2(0, 1, 0)));               // it counts as filled now
    fresh.doubleTheBox();
    EXPECT_TRUE(boundsOf(fresh) == (Bounds{-7, 0.5, 9, 2.5}) && quorTest.getRange() == 9);
    fresh.enlargeRanges(1.5);
    EXPECT_TRUE(boundsOf(fresh) == (Bounds{-11, 0, 13, 3}) && quorTest.getRange() == 13);
    std::vector<Point2> vCorners;
    box.getCorners(vCorners);
    EXPECT_EQ(vCorners, (std::vector<Point2>{{-3, 1, 0}, {5, 1, 0}, {5, 2, 0}, {-3, 2, 0}}));
}

TEST(Plane, SignFollowsTheNormalAndCollinearPointsCannotBeUsed) {
    const std::vector<Point2> v = makeAllKinds(50)[2].points;
    const Plane plane(v[0], v[1], v[2]);
    const Vector2 n = normalize(crossProduct(v[1] - v[0], v[2] - v[0]));
    for (const Point2& p : v) {
        const Point2 foot = plane.projection(p);
        // A few dozen roundings of coordinates up to 1e3, 1e-13 each.
        EXPECT_NEAR(plane.signedDistance(p), (p - v[0]) * n, 1e-10);
        EXPECT_NEAR(Plane(v[0], n).signedDistance(p), (p - v[0]) * n, 1e-10);
        EXPECT_NEAR((p - foot).length(), plane.distance(p), 1e-10);
        EXPECT_NEAR(plane.distance(foot), 0, 1e-10);
    }
    const Point2 o(0, 0, 0), e(1, 0, 0);
    for (const Point2& p : {Point2(0, 1e9, 0), Point2(0, 1e-9, 0), Point2(2, 1e-12, 0)})
        EXPECT_TRUE(Plane::canConstruct(o, e, p) && Plane(o, e, p).hasOnPositiveSide({0, 0, 1e-9})) << p;
    const ScratchDirectory directory; // for the log of failed checks
    const CoutCapture quiet;
    for (const Point2& p : {Point2(2, 0, 0), e, o, Point2(0, DBL_MAX, DBL_MAX), Point2(0, 1, NAN)}) {
        EXPECT_FALSE(Plane::canConstruct(o, e, p) || Plane::canConstruct(o, p, e)) << p;
        EXPECT_THROW(Plane(o, e, p), KelmException) << p;
    }
}
