// Points, vectors, segments, edges, boxes, circles and planes as values.
// The triangle record and the fan iterator are tested in triangle_test.cpp.
#include "CoutCapture.h"
#include "QuorTest.h"

#include <kelm25d/kelm25d.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <regex>

using namespace QUOR_KELM25D;
using testing::PrintToString;

namespace {

// minX, minY, maxX, maxY
using Bounds = std::array<double, 4>;

Bounds boundsOf(const Bbox2& box) {
    return {box.get_minX(), box.get_minY(), box.get_maxX(), box.get_maxY()};
}

Bbox2 makeBox(const Bounds& bounds, QuorTest* pQuorTest = nullptr) {
    Bbox2 box(pQuorTest);
    box.add(Point2(bounds[0], bounds[1], 0));
    box.add(Point2(bounds[2], bounds[3], 0));
    return box;
}

std::vector<Point2> randomPoints(unsigned count) {
    std::mt19937 engine(7 + count);
    std::uniform_real_distribution<double> coord(-1000, 1000);
    std::vector<Point2> vPoints(count);
    for (Point2& p : vPoints)
        p = Point2{coord(engine), coord(engine), coord(engine)};
    return vPoints;
}

} // namespace

TEST(Point2Comparison, EveryPairOrdersByXThenYAndZCountsInTwoComparisonsOnly) {
    const Point2 aPoint[] = {{1, 2, 3}, {1, 2, 4}, {1, 3, 0}, {2, 0, 0}, {0, 0, 0}, {-0.0, -0.0, -0.0}};
    for (const Point2& a : aPoint) {
        for (const Point2& b : aPoint) {
            const std::pair<double, double> xyA{a.x(), a.y()}, xyB{b.x(), b.y()};
            EXPECT_TRUE((a == b) == (xyA == xyB) && (a != b) == (xyA != xyB)) << a << b;
            EXPECT_TRUE((a < b) == (xyA < xyB) && (a > b) == (xyA > xyB)) << a << b;
            EXPECT_EQ(a.samePoint(b), xyA == xyB && a.z() == b.z()) << a << b;
            EXPECT_EQ(Func_ltPointXYZ()(a, b), xyA < xyB || (xyA == xyB && a.z() < b.z())) << a << b;
        }
    }
    EXPECT_TRUE(Point2(-7, 3, 100).getMaxAbs() == 7 && Point2(2, -8, 100).getMaxAbs() == 8);
}

TEST(Point2Copy, CopyOfVertexIsNoVertexAndKeepsTheRest) {
    Triangle2 triangle;
    Point2 a(0, 0, 5), b(1, 0, 6), c(0, 1, 7);
    a.setCustomIndex(42);
    triangle.setProperties(&a, &b, &c);
    const Point2 copy(a);
    b = a; // the target stops being a vertex too
    EXPECT_TRUE(copy.samePoint(a) && copy.getCustomIndex() == 42 && copy.getIncidentTriangle() == nullptr);
    EXPECT_TRUE(b.samePoint(a) && b.getCustomIndex() == 42 && b.getIncidentTriangle() == nullptr);
}

TEST(StreamOutput, EveryTypeWritesItsText) {
    const Point2 p(1.5, -2, 3);
    EXPECT_EQ(PrintToString(p), "Point2 (" + PrintToString(&p) + ",-1): 1.5, -2, 3");
    // The points inside the others have addresses of their own.
    const std::string texts = PrintToString(Vector2(1, 2, 0.25)) + '\n' + PrintToString(Segment2(p, p)) +
                              '\n' + PrintToString(Circle2(1, 2, 9));
    EXPECT_EQ(std::regex_replace(texts, std::regex("0x[0-9a-f]+"), "@"),
              "Vector2: 1, 2, 0.25\nSegment2 (@): Point2 (@,-1): 1.5, -2, 3,Point2 (@,-1): 1.5, -2, 3\n"
              "Circle2: Point2 (@,-1): 1, 2, 0, r=3");
}

TEST(Vector2Numerics, ShortVectorsNormalizeToZeroAndMaxIndexTakesTheLowestOfEqual) {
    for (const Vector2& v : {Vector2(), Vector2(1e-200, 0, 0), Vector2(NAN, 1, 0)})
        EXPECT_TRUE(normalize(v).isDegenerate()) << v;
    const std::pair<Vector2, int> aCase[] = {{{0, 0, 0}, 0},   {{1, -1, 1}, 0},  {{1, -2, 2}, 1},
                                             {{1, 2, -3}, 2},  {{NAN, 0, 0}, 1}, {{1, NAN, 2}, 2},
                                             {{-5, NAN, 2}, 0}};
    for (const auto& [v, index] : aCase)
        EXPECT_EQ(v.getMaxIndex(), index) << v;
    CoutCapture capture;
    EXPECT_THROW(Vector2(NAN, NAN, NAN).getMaxIndex(), KelmException);
}

TEST(Vector2Orthogonal, ResultIsTheUnitLeftNormalInEveryDirectionAndScale) {
    for (const double scale : {1e-300, 1e-8, 1.0, 1e12, 1e150}) {
        for (double angle = 0; angle < 6.3; angle += std::acos(-1.0) / 16) {
            const Vector2 v(std::cos(angle), std::sin(angle), 3), n = (v * scale).orthogonalVector();
            // One rounding each for quotient, length and division; 8 ulp leaves room for cos and sin.
            EXPECT_LE((n - Vector2(-v.y(), v.x(), 0)).length(), 8 * DBL_EPSILON) << v * scale;
        }
    }
    EXPECT_TRUE(Vector2(0, 0, 5).orthogonalVector().isDegenerate());
}

TEST(SegmentComparison, DirectionMattersInTheContainerOrderOnly) {
    const Point2 a(1, 2, 3), b(4, 6, 15), c(1, 2, -8), d(4, 7, 15);
    const Segment2 ab(a, b), ba(b, a), ad(a, d), cb(c, b);
    EXPECT_TRUE(ab == ab && ab == ba && ba == cb);
    EXPECT_FALSE(ab == ad || ab == Segment2(a, a) || ab == Segment2(b, b));
    const Func_compareSegment less;
    EXPECT_TRUE(less(&ab, &ad) && less(&ad, &ba) && less(&ab, &ba));
    EXPECT_FALSE(less(&ad, &ab) || less(&ba, &ab) || less(&ab, &cb) || less(&cb, &ab));
    Point2 v[3]; // at one place, but a pair goes by address
    const VertexPair2 p01(&v[0], &v[1]), p10(&v[1], &v[0]), p12(&v[1], &v[2]), p20(&v[2], &v[0]);
    EXPECT_TRUE(p01 == p10 && p01 < p20 && p20 < p12 && VertexPair2() < p01);
    EXPECT_FALSE(p01 == p12 || p01 == p20 || p01 < p10 || p10 < p01);
}

TEST(SquaredLengths, EveryFormAgreesAndNaNIsReported) {
    Point2 v[2] = {{0, 0, 0}, {3, 0, 4}};
    const VertexPair2 pair(&v[0], &v[1]);
    EXPECT_TRUE(pair.getSqLen2D() == 9 && pair.getSqLen25D() == 25);
    EXPECT_TRUE(Segment2(v[0], v[1]).getSqLen2D() == 9 && Segment2(v[1], v[0]).getSqLen25D() == 25);
    v[1].setZ(NAN);
    CoutCapture capture(std::cerr);
    EXPECT_TRUE(std::isnan(pair.getSqLen25D()));
    const std::string warning = "warning, sqDistance25D, nan value, no distance\n";
    EXPECT_EQ(capture.take(), warning + "p0=" + PrintToString(v[0]) + "\np1=" + PrintToString(v[1]) + "\n");
}

TEST(Edge2Handle, SidesOfAnInnerEdgeAreMirrorImages) {
    Point2 a(0, 0, 0), b(3, 0, 4), c(3, 1, 0), d(0, 1, 0);
    Triangle2 aT[2], *pT0 = nullptr, *pT1 = nullptr;
    aT[0].setPropertiesAndOppT(&a, &b, &c, nullptr, &aT[1], nullptr);
    aT[1].setPropertiesAndOppT(&d, &a, &c, &aT[0], nullptr, nullptr);
    const Edge2 inner(&aT[0], 1), other(&aT[1], 0), hull(&aT[0], 2);
    EXPECT_TRUE(inner.getSrc() == &c && inner.getTrg() == &a && other.getSrc() == &a && other.getTrg() == &c);
    int i0 = -7, i1 = -7;
    inner.getTriangles(pT0, pT1, i0, i1);
    EXPECT_TRUE(pT0 == &aT[0] && pT1 == &aT[1] && i0 == 1 && i1 == 0);
    hull.getTriangles(pT0, pT1, i0, i1);
    EXPECT_TRUE(pT0 == &aT[0] && pT1 == nullptr && i0 == 2 && i1 == -1);
    EXPECT_TRUE(inner != other && inner < hull && hull < other && !(other < inner) && !(inner < inner));
    EXPECT_TRUE(hull.getLength2D() == 9 && hull.getLength25D() == 25); // squares, whatever the names say
}

TEST(Bbox2Add, EveryFormTakesTheFirstPointAndReportsChanges) {
    for (const unsigned count : {0u, 1u, 2u, 3u, 1000u}) {
        const std::vector<Point2> vPoints = randomPoints(count);
        std::vector<double> vCoords;
        Bbox2 oneByOne, fromPoints, fromCoords;
        Bounds bounds{DBL_MAX, DBL_MAX, -DBL_MAX, -DBL_MAX};
        EXPECT_TRUE(boundsOf(oneByOne) == bounds && !oneByOne.isValid());
        for (const Point2& p : vPoints) {
            bounds = {std::min(bounds[0], p.x()), std::min(bounds[1], p.y()), std::max(bounds[2], p.x()),
                      std::max(bounds[3], p.y())};
            const bool bOutside = !oneByOne.isInBox(p);
            EXPECT_TRUE(oneByOne.add(p) == bOutside && boundsOf(oneByOne) == bounds && oneByOne.isInBox(p));
            vCoords.insert(vCoords.end(), {p.x(), p.y(), p.z()});
        }
        for (const bool bChanged : {count > 0, false}) {
            EXPECT_EQ(fromPoints.add(vPoints.begin(), vPoints.end()), bChanged);
            EXPECT_EQ(fromCoords.add(count, vCoords.data()), bChanged);
        }
        EXPECT_TRUE(boundsOf(fromPoints) == bounds && boundsOf(fromCoords) == bounds) << count;
    }
    const Point2 inside(0.5, 0.5, 0), outside(5, 0, 0);
    for (const auto& vPointers : {std::vector{&inside, &outside}, {&outside, &inside}})
        EXPECT_TRUE(makeBox({0, 0, 1, 1}).add(vPointers.begin(), vPointers.end()));
    EXPECT_EQ(Bbox2(&inside, &inside + 1, nullptr).get_maxY(), DBL_MAX); // open upwards, deliberately
}

TEST(Bbox2Setters, BoxIsFilledOnceBothRangesAreInOrder) {
    Bbox2 box;
    box.setMinX(1);
    EXPECT_TRUE(box.isValid()); // reads nothing but minX
    box.setMinY(2);
    box.setMaxX(1);
    Bbox2 unfinished = box; // whose first point takes only what is unset
    EXPECT_TRUE(unfinished.add(Point2(5, 9, 0)) && boundsOf(unfinished) == (Bounds{1, 2, 1, 9}));
    box.setMaxY(2);
    EXPECT_FALSE(box.add(Point2(1, 2, 0)));
}

TEST(Bbox2Relations, BordersBelongToTheBox) {
    const Bbox2 box = makeBox({0, 0, 2, 1});
    for (const Bounds& bounds : {Bounds{2, 1, 3, 3}, {0.5, 0.5, 0.6, 0.6}, {-9, -9, 9, 9}, {1, -5, 1.5, 5}})
        EXPECT_TRUE(box.doIntersect(makeBox(bounds)) && makeBox(bounds).doIntersect(box)) << bounds[0];
    for (const Bounds& bounds : {Bounds{0.5, std::nextafter(1, 2), 1, 2}, {-3, 0, -1, 1}, {-1, -2, 3, -0.5}})
        EXPECT_FALSE(box.doIntersect(makeBox(bounds)) || makeBox(bounds).doIntersect(box)) << bounds[0];
}

TEST(Bbox2Invalid, MisuseWarnsAndChangesNothing) {
    QuorTest quorTest;
    Bbox2 box = makeBox({0, 0, 2, 4}), invalid(&quorTest);
    const auto line = [](const std::string& s) { return "\n      [Kelm2D-Message] " + s + "\n\n"; };
    CoutCapture capture;
    EXPECT_FALSE(box.doIntersect(invalid) || invalid.doIntersect(box));
    const std::string intersect = line("Bbox2::doIntersect(), WARNING: bbox invalid");
    EXPECT_EQ(capture.take(), intersect + intersect);
    EXPECT_EQ(invalid.computeCenter(), Point2(0, 0, 0)); // of the two sentinels
    EXPECT_EQ(capture.take(), line("Bbox2::computeCenter(), WARNING: Bbox2 is invalid"));
    EXPECT_EQ(boundsOf(box + invalid), (Bounds{0, 0, 2, 4}));
    EXPECT_EQ(capture.take(), line("Box2::operator+(), WARNING: trying to add an invalid Bbox2"));
    invalid.doubleTheBox();
    invalid.enlargeRanges(3);
    invalid.inflateIfDegenerate(1);
    EXPECT_TRUE(boundsOf(invalid) == boundsOf(Bbox2()) && quorTest.getRange() == 0);
}

TEST(Bbox2Queries, UnionBoundsAndCornersHaveTheirOrder) {
    Bbox2 box = makeBox({0, 1, 5, 1.5}), fresh;
    for (const Bbox2& result : {box + makeBox({-3, 1.2, 2, 2}), box, fresh + box, fresh})
        EXPECT_EQ(boundsOf(result), (Bounds{-3, 1, 5, 2})); // also what stood on the left
    EXPECT_FALSE(fresh.add(Point2(0, 1, 0)));               // it counts as filled now
    Bounds b{};
    box.getBounds(b[0], b[1], b[2], b[3]);
    EXPECT_EQ(b, (Bounds{-3, 5, 1, 2}));
    std::vector<Point2> vPoints{box.computeCenter()};
    box.getCorners(vPoints); // appends, like the next
    box.getOffsetCorners(0.5, vPoints);
    const double aXY[] = {1, 1.5, -3, 1, 5, 1, 5, 2, -3, 2, -3.5, 0.5, 5.5, 0.5, 5.5, 2.5, -3.5, 2.5};
    for (int i = 0; i < 9; ++i)
        EXPECT_TRUE(vPoints.at(i).samePoint(Point2(aXY[2 * i], aXY[2 * i + 1], 0))) << vPoints[i];
}

TEST(Bbox2Growth, RangesGrowAboutTheCentreAndSetTheFilter) {
    using Grown = std::pair<Bounds, double>; // the second is the filter's range
    const auto grow = [](const Bounds& start, std::initializer_list<double> factors) {
        QuorTest quorTest;
        Bbox2 box = makeBox(start, &quorTest);
        for (const double factor : factors)
            factor == 2 ? box.doubleTheBox() : box.enlargeRanges(factor);
        return Grown(boundsOf(box), quorTest.getRange());
    };
    EXPECT_EQ(grow({-1, -4, 3, 0}, {2, 1.5}), Grown({-5, -8, 7, 4}, 8));
    EXPECT_EQ(grow({-4, 2, -4, 2}, {2}), Grown({-4, 2, -4, 2}, 4));
    // A maximum below zero counts with its magnitude when enlarging, with its sign when doubling. The two
    // differ only in a box inside out, which a factor of -1 makes.
    EXPECT_EQ(grow({-9, -5, -1, -5}, {-1}), Grown({-1, -5, -9, -5}, 9));
    EXPECT_EQ(grow({-9, -5, -1, -5}, {-1, 2}), Grown({3, -5, -13, -5}, 5));
    Bbox2 point = makeBox({1, 2, 1, 2}), line = makeBox({0, 5, 3, 5});
    point.inflateIfDegenerate(0.5);
    line.inflateIfDegenerate(0.5);
    EXPECT_TRUE(boundsOf(point) == (Bounds{1, 2, 1.5, 2.5}) && boundsOf(line) == (Bounds{0, 5, 3, 5.5}));
}

TEST(PlaneDistance, SignFollowsTheNormalAndProjectionLiesOnThePlane) {
    const std::vector<Point2> v = randomPoints(3);
    const Vector2 n = crossProduct(v[1] - v[0], v[2] - v[0]);
    const Plane byPoints(v[0], v[1], v[2]), byNormal(v[0], n);
    for (const Point2& p : randomPoints(50)) {
        // A few dozen roundings of coordinates up to 1e3, 1e-13 each.
        EXPECT_NEAR(byPoints.signedDistance(p), byNormal.signedDistance(p), 1e-10);
        EXPECT_NEAR(byPoints.distance(byPoints.projection(p)), 0, 1e-10);
        EXPECT_NEAR((p - byPoints.projection(p)).length(), byPoints.distance(p), 1e-10);
        EXPECT_EQ(byPoints.hasOnPositiveSide(p), (p - v[0]) * n > 0);
        EXPECT_NE(byPoints.hasOnNegativeSide(p), byPoints.hasOnPositiveSide(p));
    }
    EXPECT_FALSE(Plane().hasOnPositiveSide(v[0]) || Plane().hasOnNegativeSide(v[0])); // distance 0 everywhere
}

TEST(PlaneConstruction, CollinearPointsFailAndCanConstructSaysSoFirst) {
    const Point2 o(0, 0, 0), e(1, 0, 0);
    for (const Point2& p : {Point2(0, 0, 1), Point2(0, 1e9, 0), Point2(0, 1e-9, 0), Point2(2, 1e-12, 0)})
        EXPECT_TRUE(Plane::canConstruct(o, e, p) && Plane(o, e, p).distance(o) == 0) << p;
    for (const Point2& p : {Point2(2, 0, 0), e, o, Point2(0, DBL_MAX, DBL_MAX), Point2(0, 1, NAN)}) {
        CoutCapture capture;
        EXPECT_FALSE(Plane::canConstruct(o, e, p) || Plane::canConstruct(o, p, e)) << p;
        EXPECT_THROW(Plane(o, e, p), KelmException) << p;
        EXPECT_TRUE(std::regex_search(capture.take(), std::regex(": Degenerate plane\n[^]* false failed")));
    }
}
