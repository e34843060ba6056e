// Points, vectors, segments, edges, boxes, circles and planes as values.
// The triangle record and the fan iterator are tested in triangle_test.cpp.
#include "QuorTest.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/Circle2.h>
#include <kelm25d/Edge2.h>
#include <kelm25d/KelmException.h>
#include <kelm25d/Plane.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/Vector2.h>
#include <kelm25d/VertexPair2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <set>
#include <sstream>

using namespace QUOR_KELM25D;

namespace {

const double maxDouble = std::numeric_limits<double>::max();
const double notANumber = std::numeric_limits<double>::quiet_NaN();

template <class T>
std::string text(const T& object) {
    std::ostringstream stream;
    stream << object;
    return stream.str();
}

std::string address(const void* pObject) {
    return text(pObject);
}

// minX, minY, maxX, maxY
using Bounds = std::array<double, 4>;

Bounds boundsOf(const Bbox2& box) {
    return {box.get_minX(), box.get_minY(), box.get_maxX(), box.get_maxY()};
}

Bbox2 makeBox(double minX, double minY, double maxX, double maxY, QuorTest* pQuorTest = nullptr) {
    Bbox2 box(pQuorTest);
    box.add(Point2(minX, minY, 0));
    box.add(Point2(maxX, maxY, 0));
    return box;
}

std::vector<Point2> randomPoints(unsigned count, unsigned seed) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> coordinate(-1000, 1000);
    std::vector<Point2> vPoints;
    for (unsigned i = 0; i < count; ++i) {
        const double x = coordinate(engine), y = coordinate(engine);
        vPoints.emplace_back(x, y, coordinate(engine));
    }
    return vPoints;
}

} // namespace

TEST(Point2Comparison, PairsOfPointsOrderByXThenYAndIgnoreZ) {
    struct Case {
        Point2 a, b;
        bool bEqual, bLess, bSame, bLessXYZ;
    };
    const Case aCase[] = {
        {{1, 2, 3}, {1, 2, 3}, true, false, true, false},
        {{1, 2, 3}, {1, 2, 4}, true, false, false, true},
        {{1, 2, 9}, {1, 3, 0}, false, true, false, true},
        {{1, 9, 9}, {2, 0, 0}, false, true, false, true},
        {{0, 0, 0}, {-0.0, -0.0, -0.0}, true, false, true, false},
        {{1, 2, 0}, {1, std::nextafter(2.0, 3.0), 0}, false, true, false, true},
    };
    const Func_ltPointXYZ ltXYZ{};
    for (const Case& c : aCase) {
        SCOPED_TRACE(text(c.a) + " | " + text(c.b));
        EXPECT_EQ(c.a == c.b, c.bEqual);
        EXPECT_EQ(c.a != c.b, !c.bEqual);
        EXPECT_EQ(c.a < c.b, c.bLess);
        EXPECT_EQ(c.b > c.a, c.bLess);
        EXPECT_FALSE(c.b < c.a);
        EXPECT_FALSE(c.a > c.b);
        EXPECT_EQ(c.a.samePoint(c.b), c.bSame);
        EXPECT_EQ(ltXYZ(c.a, c.b), c.bLessXYZ);
        EXPECT_FALSE(ltXYZ(c.b, c.a));
    }
}

TEST(Point2Copy, CopyOfVertexIsNoVertexAndKeepsTheRest) {
    Triangle2 triangle;
    Point2 a(0, 0, 5), b(1, 0, 6), c(0, 1, 7);
    a.setCustomIndex(42);
    triangle.setProperties(&a, &b, &c);
    ASSERT_EQ(a.getIncidentTriangle(), &triangle);

    const Point2 copy(a);
    EXPECT_TRUE(copy.samePoint(a));
    EXPECT_EQ(copy.getCustomIndex(), 42);
    EXPECT_EQ(copy.getIncidentTriangle(), nullptr);
    EXPECT_EQ(a.getIncidentTriangle(), &triangle);

    b = a; // the target stops being a vertex too
    EXPECT_EQ(b.getIncidentTriangle(), nullptr);
    EXPECT_EQ(b.getCustomIndex(), 42);
    EXPECT_TRUE(b.samePoint(a));
    const Point2 moved(std::move(a));
    EXPECT_EQ(moved.getIncidentTriangle(), nullptr);
}

TEST(Point2Accessors, UnsetPointIsRecognisableAndHeightCanBeSet) {
    Point2 point;
    double x = 0, y = 0, z = 0;
    point.xyz(x, y, z);
    EXPECT_TRUE(x == -maxDouble && y == -maxDouble && z == -maxDouble);
    EXPECT_EQ(point.getCustomIndex(), -1);
    EXPECT_EQ(point.getIncidentTriangle(), nullptr);

    point = Point2(-7, 3, 100);
    point.xy(x, y);
    EXPECT_TRUE(x == -7 && y == 3);
    EXPECT_EQ(point.getMaxAbs(), 7);
    EXPECT_EQ(Point2(2, -8, 100).getMaxAbs(), 8);
    point.setZ(1);
    EXPECT_EQ(point.z(), 1);
    point.setHeight(2);
    EXPECT_EQ(point.z(), 2);
}

TEST(StreamOutput, EveryTypeWritesItsText) {
    Point2 p(1.5, -2, 3);
    p.setCustomIndex(9);
    EXPECT_EQ(text(p), "Point2 (" + address(&p) + ",9): 1.5, -2, 3");
    EXPECT_EQ(text(Vector2(1, 2, 0.25)), "Vector2: 1, 2, 0.25");

    const auto hasForm = [](const std::string& s, const std::string& begin, const std::string& end) {
        return s.compare(0, begin.size(), begin) == 0 && s.size() > end.size() &&
               s.compare(s.size() - end.size(), end.size(), end) == 0;
    };
    const Segment2 segment(Point2(0, 0, 0), Point2(1, 1, 1));
    EXPECT_PRED3(hasForm, text(segment), "Segment2 (" + address(&segment) + "): Point2 (", ",-1): 1, 1, 1");
    EXPECT_NE(text(segment).find("0, 0, 0,Point2 ("), std::string::npos);
    EXPECT_PRED3(hasForm, text(Circle2(1, 2, 9)), "Circle2: Point2 (", ",-1): 1, 2, 0, r=3");

    std::ostringstream fixed;
    fixed.precision(2);
    fixed << std::fixed << Vector2(1, 2, 3);
    EXPECT_EQ(fixed.str(), "Vector2: 1.00, 2.00, 3.00");
}

TEST(Vector2Algebra, OperatorsAgreeWithComponents) {
    const Vector2 a(1, 2, 3), b(-4, 5, 0.5);
    const auto equal = [](const Vector2& v, double x, double y, double z) {
        return v.x() == x && v.y() == y && v.z() == z;
    };
    EXPECT_TRUE(equal(a + b, -3, 7, 3.5));
    EXPECT_TRUE(equal(a - b, 5, -3, 2.5));
    EXPECT_TRUE(equal(-b, 4, -5, -0.5));
    EXPECT_TRUE(equal(a * 2, 2, 4, 6));
    EXPECT_TRUE(equal(2 * a, 2, 4, 6));
    EXPECT_TRUE(equal(a / 2, 0.5, 1, 1.5));
    EXPECT_EQ(a * b, 7.5);
    EXPECT_TRUE(equal(crossProduct(a, b), -14, -12.5, 13));
    EXPECT_TRUE(equal(Point2(5, 5, 5) - Point2(1, 2, 3), 4, 3, 2));
    EXPECT_TRUE((Point2(1, 1, 1) + a).samePoint(Point2(2, 3, 4)));
    EXPECT_TRUE((Point2(1, 1, 1) - a).samePoint(Point2(0, -1, -2)));
    EXPECT_EQ(Vector2(2, 3, 6).length(), 7);
    EXPECT_EQ(Vector2(2, 3, 6).sqLength(), 49);

    Vector2 v;
    EXPECT_TRUE(v.isDegenerate());
    v.set(0, 0, std::numeric_limits<double>::denorm_min());
    EXPECT_FALSE(v.isDegenerate());
}

TEST(Vector2Normalize, LengthNotAboveZeroGivesZeroVector) {
    for (const Vector2& v : {Vector2(), Vector2(1e-200, 0, 0), Vector2(notANumber, 1, 0)})
        EXPECT_TRUE(normalize(v).isDegenerate()) << v;
    EXPECT_TRUE((normalize(Vector2(0, -5, 0)) - Vector2(0, -1, 0)).isDegenerate());
}

TEST(Vector2MaxIndex, TiesGoToTheLowerIndexAndNothingButNaNFails) {
    struct Case {
        Vector2 v;
        int index;
    };
    const Case aCase[] = {{{0, 0, 0}, 0},          {{1, -1, 1}, 0},         {{1, -2, 2}, 1},
                          {{1, 2, -3}, 2},         {{notANumber, 0, 0}, 1}, {{1, notANumber, 2}, 2},
                          {{-5, notANumber, 2}, 0}};
    for (const Case& c : aCase)
        EXPECT_EQ(c.v.getMaxIndex(), c.index) << c.v;

    testing::internal::CaptureStdout();
    EXPECT_THROW(Vector2(notANumber, notANumber, notANumber).getMaxIndex(), KelmException);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Condition [ false failed ]"), std::string::npos);
}

TEST(Vector2Orthogonal, ResultIsTheUnitLeftNormalInEveryDirectionAndScale) {
    EXPECT_TRUE(Vector2(0, 0, 5).orthogonalVector().isDegenerate());
    for (const double scale : {1e-300, 1e-8, 1.0, 1e12, 1e150}) {
        for (int step = 0; step < 32; ++step) {
            const double angle = step * std::acos(-1.0) / 16;
            const Vector2 v(std::cos(angle), std::sin(angle), 3);
            const Vector2 n = (v * scale).orthogonalVector();
            SCOPED_TRACE(text(v * scale));
            // One rounding each for the quotient, the length and the division; 8 ulp leaves room for cos and
            // sin.
            const double tolerance = 8 * std::numeric_limits<double>::epsilon();
            EXPECT_NEAR(n.x(), -v.y(), tolerance);
            EXPECT_NEAR(n.y(), v.x(), tolerance);
            EXPECT_EQ(n.z(), 0);
        }
    }
}

TEST(Segment2Comparison, DirectionAndHeightDoNotMatterForEquality) {
    const Point2 a(1, 2, 3), b(4, 6, 15), c(1, 2, -8), d(4, 7, 15);
    EXPECT_TRUE(Segment2(a, b) == Segment2(a, b));
    EXPECT_TRUE(Segment2(a, b) == Segment2(b, a));
    EXPECT_TRUE(Segment2(a, b) == Segment2(b, c));
    EXPECT_FALSE(Segment2(a, b) == Segment2(a, d));
    EXPECT_FALSE(Segment2(a, b) == Segment2(a, a));

    Segment2 segment(a, b);
    segment.swapSrcTrg();
    EXPECT_TRUE(segment.getSrc().samePoint(b) && segment.getTrg().samePoint(a));

    // Unlike equality the container order keeps a segment and its reverse apart.
    const Segment2 ab(a, b), ba(b, a), ad(a, d), cb(c, b);
    const std::set<const Segment2*, Func_compareSegment> sSegments{&ba, &ad, &ab, &cb};
    EXPECT_EQ(std::vector<const Segment2*>(sSegments.begin(), sSegments.end()),
              (std::vector<const Segment2*>{&ab, &ad, &ba}));
}

TEST(SquaredLengths, EveryFormAgreesAndNaNIsReported) {
    Point2 a(0, 0, 0), b(3, 0, 4), c(0, 1, 0);
    Triangle2 triangle;
    triangle.setProperties(&a, &b, &c);
    const Edge2 edge(&triangle, 2);
    EXPECT_EQ(edge.getLength2D(), 9);
    EXPECT_EQ(edge.getLength25D(), 25);
    EXPECT_EQ(Segment2(a, b).getSqLen2D(), 9);
    EXPECT_EQ(Segment2(a, b).getSqLen25D(), 25);
    EXPECT_EQ(VertexPair2(&a, &b).getSqLen2D(), 9);
    EXPECT_EQ(VertexPair2(&a, &b).getSqLen25D(), 25);

    b.setZ(notANumber);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(std::isnan(VertexPair2(&a, &b).getSqLen25D()));
    const std::string report = testing::internal::GetCapturedStderr();
    EXPECT_EQ(report.find("warning, sqDistance25D, nan value, no distance\np0=Point2 ("), 0u);
    EXPECT_NE(report.find("\np1=Point2 ("), std::string::npos);
    EXPECT_TRUE(report.find(text(a)) != std::string::npos && report.find(text(b)) != std::string::npos);

    testing::internal::CaptureStderr();
    EXPECT_TRUE(std::isnan(Segment2(a, b).getSqLen25D()) && std::isnan(edge.getLength25D()));
    EXPECT_EQ(VertexPair2(&a, &b).getSqLen2D(), 9);
    const std::string reports = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(reports.begin(), reports.end(), '\n'), 6);
}

TEST(VertexPair2Order, PairIsUndirectedAndSortsByAddress) {
    Point2 aPoint[3];
    const VertexPair2 p01(&aPoint[0], &aPoint[1]), p10(&aPoint[1], &aPoint[0]), p12(&aPoint[1], &aPoint[2]),
        p02(&aPoint[2], &aPoint[0]);
    EXPECT_TRUE(p01 == p10);
    EXPECT_EQ(p10.getVertex0(), &aPoint[0]);
    EXPECT_EQ(p10.getVertex1(), &aPoint[1]);
    EXPECT_FALSE(p01 == p12); // equal coordinates, other vertices
    EXPECT_TRUE(p01 < p02 && p02 < p12 && VertexPair2() < p01);
    EXPECT_FALSE(p01 < p10 || p10 < p01);
}

TEST(Edge2Handle, SidesOfAnInnerEdgeAreMirrorImages) {
    Point2 a(0, 0, 0), b(1, 0, 0), c(1, 1, 0), d(0, 1, 0);
    Triangle2 aTriangle[2];
    aTriangle[0].setPropertiesAndOppT(&a, &b, &c, nullptr, &aTriangle[1], nullptr);
    aTriangle[1].setPropertiesAndOppT(&d, &a, &c, &aTriangle[0], nullptr, nullptr);

    const Edge2 inner(&aTriangle[0], 1), other(&aTriangle[1], 0), hull(&aTriangle[0], 2);
    Point2 *pSrc = nullptr, *pTrg = nullptr;
    inner.getPoints(pSrc, pTrg);
    EXPECT_TRUE(pSrc == &c && pTrg == &a);
    EXPECT_TRUE(other.getSrc() == &a && other.getTrg() == &c);
    EXPECT_EQ(getOrientation2(pSrc, pTrg, &b), ORIENTATION2_CCW);

    Triangle2 *pT0 = nullptr, *pT1 = nullptr;
    int i0 = -7, i1 = -7;
    inner.getTriangles(pT0, pT1, i0, i1);
    EXPECT_TRUE(pT0 == &aTriangle[0] && pT1 == &aTriangle[1] && i0 == 1 && i1 == 0);
    hull.getTriangles(pT0, pT1, i0, i1);
    EXPECT_TRUE(pT0 == &aTriangle[0] && pT1 == nullptr && i0 == 2 && i1 == -1);

    EXPECT_TRUE(inner != other && inner == Edge2(&aTriangle[0], 1));
    EXPECT_TRUE(inner < hull && hull < other && inner < other && !(other < inner) && !(inner < inner));
    EXPECT_TRUE(Edge2().getTriangle() == nullptr && Edge2().getIndex() == -1);
}

TEST(Bbox2Add, FreshBoxTakesFirstPointAndReportsChanges) {
    Bbox2 box;
    EXPECT_EQ(boundsOf(box), (Bounds{maxDouble, maxDouble, -maxDouble, -maxDouble}));
    EXPECT_FALSE(box.isValid());
    EXPECT_FALSE(box.isInBox(Point2(0, 0, 0)));
    EXPECT_FALSE(box.isInBox(Point2()));

    struct Case {
        Point2 point;
        bool bChanged;
        Bounds bounds;
    };
    const Case aCase[] = {
        {{1, 2, 0}, true, {1, 2, 1, 2}},    {{1, 2, 9}, false, {1, 2, 1, 2}},
        {{0, 5, 0}, true, {0, 2, 1, 5}},    {{0.5, 3, 0}, false, {0, 2, 1, 5}},
        {{3, 2, 0}, true, {0, 2, 3, 5}},    {{2, -1, 0}, true, {0, -1, 3, 5}},
        {{-1, 6, 0}, true, {-1, -1, 3, 6}},
    };
    for (const Case& c : aCase) {
        EXPECT_EQ(box.add(c.point), c.bChanged) << c.point;
        EXPECT_EQ(boundsOf(box), c.bounds) << c.point;
        EXPECT_TRUE(box.isValid() && box.isInBox(c.point));
    }
}

TEST(Bbox2Add, RangeFormsEqualPointByPoint) {
    for (const unsigned count : {0u, 1u, 2u, 3u, 1000u}) {
        SCOPED_TRACE(count);
        const std::vector<Point2> vPoints = randomPoints(count, 7 + count);
        std::vector<Point2*> vPointers;
        std::vector<double> vCoords;
        Bbox2 expected, fromPoints, fromPointers, fromCoords;
        for (const Point2& point : vPoints) {
            expected.add(point);
            vPointers.push_back(const_cast<Point2*>(&point));
            vCoords.insert(vCoords.end(), {point.x(), point.y(), point.z()});
        }
        for (const bool bFirstTime : {true, false}) {
            const bool bChanged = bFirstTime && count > 0;
            EXPECT_EQ(fromPoints.add(vPoints.begin(), vPoints.end()), bChanged);
            EXPECT_EQ(fromPointers.add(vPointers.cbegin(), vPointers.cend()), bChanged);
            EXPECT_EQ(fromCoords.add(count, vCoords.data()), bChanged);
        }
        EXPECT_EQ(boundsOf(fromPoints), boundsOf(expected));
        EXPECT_EQ(boundsOf(fromPointers), boundsOf(expected));
        EXPECT_EQ(boundsOf(fromCoords), boundsOf(expected));
    }
    Bbox2 box = makeBox(0, 0, 1, 1);
    const std::vector<Point2> vOutsideFirst{{5, 0, 0}, {0.5, 0.5, 0}},
        vOutsideLast{{0.5, 0.5, 0}, {0, -5, 0}};
    EXPECT_TRUE(box.add(vOutsideFirst.begin(), vOutsideFirst.end()));
    EXPECT_TRUE(box.add(vOutsideLast.begin(), vOutsideLast.end()));
    EXPECT_EQ(boundsOf(box), (Bounds{0, -5, 5, 1}));
}

TEST(Bbox2RangeConstructor, MaxYStaysOpen) {
    const std::vector<Point2> vPoints{{1, 2, 0}, {-3, 7, 0}, {2, -4, 0}};
    const Bbox2 box(vPoints.begin(), vPoints.end(), nullptr);
    EXPECT_EQ(boundsOf(box), (Bounds{-3, -4, 2, maxDouble}));
    EXPECT_FALSE(Bbox2(vPoints.begin(), vPoints.begin(), nullptr).isValid());
}

TEST(Bbox2Setters, BoxIsFilledOnceBothRangesAreInOrder) {
    Bbox2 box;
    box.setMinX(1);
    EXPECT_TRUE(box.isValid()); // reads nothing but minX
    box.setMinY(2);
    box.setMaxX(3);
    Bbox2 unfinished = box;
    EXPECT_TRUE(unfinished.add(Point2(2, 9, 0)));
    EXPECT_EQ(boundsOf(unfinished), (Bounds{1, 2, 3, 9}));
    box.setMaxY(4);
    EXPECT_FALSE(box.add(Point2(2, 3, 0))); // counts as filled, so an inner point changes nothing

    // A box that setters have turned inside out still comes to hold what is added to it.
    box.setMinX(10);
    EXPECT_TRUE(box.add(Point2(5, 3, 0)));
    EXPECT_TRUE(box.isInBox(Point2(5, 3, 0)));
}

TEST(Bbox2Relations, BordersBelongToTheBox) {
    const Bbox2 box = makeBox(0, 0, 2, 1);
    struct Case {
        Bbox2 other;
        bool bIntersects;
    };
    const double above = std::nextafter(1.0, 2.0);
    const Case aCase[] = {
        {makeBox(2, 1, 3, 3), true},    {makeBox(0.5, 0.5, 0.6, 0.6), true},
        {makeBox(-9, -9, 9, 9), true},  {makeBox(0.5, above, 1, 2), false},
        {makeBox(-3, 0, -1, 1), false}, {makeBox(-1, -2, 3, -0.5), false},
        {makeBox(1, -5, 1.5, 5), true},
    };
    for (const Case& c : aCase) {
        EXPECT_EQ(box.doIntersect(c.other), c.bIntersects) << c.other.getMinPoint();
        EXPECT_EQ(c.other.doIntersect(box), c.bIntersects) << c.other.getMinPoint();
    }
    EXPECT_TRUE(box.isInBox(Point2(2, 0, 99)));
    EXPECT_FALSE(box.isInBox(Point2(2, above, 0)));
}

TEST(Bbox2Invalid, MisuseWarnsAndChangesNothing) {
    const Bbox2 invalid;
    Bbox2 box = makeBox(0, 0, 2, 4);
    const std::string prefix = "\n      [Kelm2D-Message] ";

    testing::internal::CaptureStdout();
    EXPECT_FALSE(box.doIntersect(invalid));
    EXPECT_FALSE(invalid.doIntersect(box));
    const std::string intersect = prefix + "Bbox2::doIntersect(), WARNING: bbox invalid\n\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), intersect + intersect);

    testing::internal::CaptureStdout();
    EXPECT_TRUE(invalid.computeCenter().samePoint(Point2(0, 0, 0))); // of the two sentinels
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              prefix + "Bbox2::computeCenter(), WARNING: Bbox2 is invalid\n\n");

    testing::internal::CaptureStdout();
    EXPECT_EQ(boundsOf(box + invalid), (Bounds{0, 0, 2, 4}));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              prefix + "Box2::operator+(), WARNING: trying to add an invalid Bbox2\n\n");

    QuorTest quorTest;
    Bbox2 wired(&quorTest);
    wired.doubleTheBox();
    wired.enlargeRanges(3);
    wired.inflateIfDegenerate(1);
    EXPECT_EQ(boundsOf(wired), boundsOf(invalid));
    EXPECT_EQ(quorTest.getRange(), 0);
}

TEST(Bbox2Union, ResultIsWrittenIntoTheLeftSide) {
    Bbox2 left = makeBox(0, 0, 1, 1);
    EXPECT_EQ(boundsOf(left + makeBox(-1, 0.5, 0.5, 3)), (Bounds{-1, 0, 1, 3}));
    EXPECT_EQ(boundsOf(left), (Bounds{-1, 0, 1, 3}));

    Bbox2 fresh;
    EXPECT_EQ(boundsOf(fresh + left), boundsOf(left));
    EXPECT_FALSE(fresh.add(Point2(0, 1, 0))); // it counts as filled now
}

TEST(Bbox2Queries, BoundsRangesAndCorners) {
    const Bbox2 box = makeBox(-3, 1, 5, 2);
    double xMin = 0, xMax = 0, yMin = 0, yMax = 0;
    box.getBounds(xMin, xMax, yMin, yMax);
    EXPECT_EQ((Bounds{xMin, xMax, yMin, yMax}), (Bounds{-3, 5, 1, 2}));
    EXPECT_EQ((Bounds{box.getMinCoord(), box.getMaxCoord(), box.getRangeX(), box.getRangeY()}),
              (Bounds{-3, 5, 8, 1}));
    EXPECT_EQ(box.getMaxRange(), 8);
    EXPECT_TRUE(box.getMinPoint().samePoint(Point2(-3, 1, 0)));
    EXPECT_TRUE(box.getMaxPoint().samePoint(Point2(5, 2, 0)));
    EXPECT_TRUE(box.computeCenter().samePoint(Point2(1, 1.5, 0)));

    std::vector<Point2> vCorners;
    box.getCorners(vCorners);
    box.getOffsetCorners(0.5, vCorners); // appends
    const Point2 aExpected[] = {{-3, 1, 0},     {5, 1, 0},     {5, 2, 0},     {-3, 2, 0},
                                {-3.5, 0.5, 0}, {5.5, 0.5, 0}, {5.5, 2.5, 0}, {-3.5, 2.5, 0}};
    ASSERT_EQ(vCorners.size(), 8u);
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(vCorners[i].samePoint(aExpected[i])) << i;
}

TEST(Bbox2Growth, RangesGrowAboutTheCentreAndSetTheFilter) {
    QuorTest quorTest;
    Bbox2 box = makeBox(-1, -2, 3, 0, &quorTest);
    box.doubleTheBox();
    EXPECT_EQ(boundsOf(box), (Bounds{-3, -3, 5, 1}));
    EXPECT_EQ(quorTest.getRange(), 5);
    box.enlargeRanges(1.5);
    EXPECT_EQ(boundsOf(box), (Bounds{-5, -4, 7, 2}));
    EXPECT_EQ(quorTest.getRange(), 7);

    Bbox2 onePoint = makeBox(-4, 2, -4, 2, &quorTest);
    Bbox2 copy = onePoint; // keeps the filter
    copy.doubleTheBox();
    EXPECT_EQ(boundsOf(copy), (Bounds{-4, 2, -4, 2}));
    EXPECT_EQ(quorTest.getRange(), 4);

    // A maximum below zero counts with its sign when doubling, with its magnitude when enlarging. The two
    // differ only in a box inside out, which setters can make.
    Bbox2 reversed(&quorTest);
    reversed.setMinX(-1);
    reversed.setMaxX(-9);
    reversed.setMinY(0);
    reversed.setMaxY(0);
    Bbox2 doubled = reversed;
    doubled.doubleTheBox();
    EXPECT_EQ(quorTest.getRange(), 3);
    reversed.enlargeRanges(1);
    EXPECT_EQ(quorTest.getRange(), 9);
}

TEST(Bbox2Inflate, OnlyRangesWithoutExtentGrow) {
    Bbox2 point = makeBox(1, 2, 1, 2), line = makeBox(0, 5, 3, 5);
    point.inflateIfDegenerate(0.5);
    line.inflateIfDegenerate(0.5);
    EXPECT_EQ(boundsOf(point), (Bounds{1, 2, 1.5, 2.5}));
    EXPECT_EQ(boundsOf(line), (Bounds{0, 5, 3, 5.5}));
}

TEST(Circle2Values, RadiusIsTheRootOfTheStoredSquare) {
    const Circle2 circle(Point2(1, 2, 3), 6.25);
    EXPECT_TRUE(circle.getCenter().samePoint(Point2(1, 2, 3)));
    EXPECT_EQ(circle.getRadius(), 2.5);
    EXPECT_EQ(circle.getSqRadius(), 6.25);
    EXPECT_EQ(Circle2(1, 2, 4).getCenter().z(), 0);
}

TEST(PlaneDistance, SignFollowsTheNormalAndProjectionLiesOnThePlane) {
    const Plane plane(Point2(0, 0, 2), Point2(1, 0, 2), Point2(0, 1, 2));
    EXPECT_EQ(plane.signedDistance(Point2(5, 5, 5)), 3);
    EXPECT_EQ(plane.signedDistance(Point2(5, 5, -1)), -3);
    EXPECT_EQ(plane.distance(Point2(5, 5, -1)), 3);
    EXPECT_TRUE(plane.hasOnPositiveSide(Point2(0, 0, 3)) && plane.hasOnNegativeSide(Point2(0, 0, 1)));
    EXPECT_FALSE(plane.hasOnPositiveSide(Point2(9, 9, 2)) || plane.hasOnNegativeSide(Point2(9, 9, 2)));
    EXPECT_EQ(Plane().distance(Point2(1, 2, 3)), 0);

    for (const Point2& p : randomPoints(50, 11)) {
        const std::vector<Point2> v = randomPoints(3, 12);
        const Plane byPoints(v[0], v[1], v[2]);
        const Plane byNormal(v[0], crossProduct(v[1] - v[0], v[2] - v[0]));
        // Coordinates up to 1e3, a few dozen roundings of 1e-13 each.
        EXPECT_NEAR(byPoints.signedDistance(p), byNormal.signedDistance(p), 1e-10);
        EXPECT_NEAR(byPoints.distance(byPoints.projection(p)), 0, 1e-10);
        EXPECT_NEAR((p - byPoints.projection(p)).length(), byPoints.distance(p), 1e-10);
        EXPECT_EQ(byPoints.projection(p).getCustomIndex(), -1);
    }
}

TEST(PlaneConstruction, CollinearPointsFailAndCanConstructSaysSoFirst) {
    struct Case {
        Point2 p0, p1, p2;
        bool bSpans;
    };
    const Case aCase[] = {
        {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, false},     {{0, 0, 0}, {1, 1, 1}, {1, 1, 1}, false},
        {{1, 1, 1}, {1, 1, 1}, {2, 5, 6}, false},     {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, true},
        {{0, 0, 0}, {1e-9, 0, 0}, {0, 1e9, 0}, true}, {{0, 0, 0}, {1, 0, 0}, {2, 1e-12, 0}, true},
    };
    for (const Case& c : aCase) {
        SCOPED_TRACE(text(c.p1) + " | " + text(c.p2));
        EXPECT_EQ(Plane::canConstruct(c.p0, c.p1, c.p2), c.bSpans);
        if (c.bSpans) {
            EXPECT_EQ(Plane(c.p0, c.p1, c.p2).distance(c.p0), 0);
            continue;
        }
        testing::internal::CaptureStdout();
        EXPECT_THROW(Plane(c.p0, c.p1, c.p2), KelmException);
        const std::string output = testing::internal::GetCapturedStdout();
        EXPECT_NE(output.find(", ERROR: Degenerate plane\n"), std::string::npos);
        EXPECT_NE(output.find("Condition [ false failed ]"), std::string::npos);
    }
    testing::internal::CaptureStdout();
    EXPECT_THROW(Plane(Point2(0, 0, 0), Point2(1, 0, 0), Point2(0, maxDouble, maxDouble)), KelmException);
    EXPECT_THROW(Plane(Point2(0, 0, 0), Point2(1, 0, 0), Point2(0, 1, notANumber)), KelmException);
    testing::internal::GetCapturedStdout();
}
