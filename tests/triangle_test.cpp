// The triangle record, its measures, the circumcentre, and the walk around a vertex.
// Exactness of the predicates behind them is tested in predicates_test.cpp.
#include <kelm25d/KelmException.h>
#include <kelm25d/Orientation2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/TriangleAroundVertexIterator.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <set>
#include <sstream>
#include <vector>

using namespace QUOR_KELM25D;

namespace {

const double pi = std::acos(-1.0);

std::string address(const void* pObject) {
    std::ostringstream stream;
    stream << pObject;
    return stream.str();
}

// A triangle together with the points that it needs.
struct OwnTriangle : Triangle2 {
    std::array<Point2, 3> corners;

    OwnTriangle(const Point2& a, const Point2& b, const Point2& c) : corners{a, b, c} {
        setProperties(&corners[0], &corners[1], &corners[2]);
    }
    OwnTriangle(const OwnTriangle&) = delete;

    using Triangle2::getCC_strategy1;
    using Triangle2::getCC_strategy2;
    using Triangle2::getCommonOffset;
    using Triangle2::isAccurateCC;

    // The largest difference between the distances of a point from the corners.
    double spread(const Point2& p) const {
        std::array<double, 3> r;
        for (int i = 0; i < 3; ++i)
            r[i] = std::hypot(p.x() - corners[i].x(), p.y() - corners[i].y());
        return *std::max_element(r.begin(), r.end()) - *std::min_element(r.begin(), r.end());
    }
};

// A fan of triangles around the origin, counterclockwise; closed, or with the hull between last and first.
struct Fan {
    Point2 center{0, 0, 0};
    std::vector<Point2> vRim;
    std::vector<Triangle2> vTriangles;

    Fan(int count, bool bClosed) : vRim(bClosed ? count : count + 1), vTriangles(count) {
        const int rimCount = static_cast<int>(vRim.size());
        const double step = (bClosed ? 2 * pi : pi / 2) / count;
        for (int i = 0; i < rimCount; ++i)
            vRim[i] = Point2(std::cos(i * step), std::sin(i * step), 0);
        const auto at = [&](int i) -> Triangle2* {
            if (!bClosed && (i < 0 || i >= count)) return nullptr;
            return &vTriangles[(i + count) % count];
        };
        for (int i = 0; i < count; ++i) {
            // The centre takes each corner index in turn.
            Point2* aPoint[3] = {&center, &vRim[i], &vRim[(i + 1) % rimCount]};
            Triangle2* aOpp[3] = {nullptr, at(i + 1), at(i - 1)};
            std::rotate(aPoint, aPoint + i % 3, aPoint + 3);
            std::rotate(aOpp, aOpp + i % 3, aOpp + 3);
            vTriangles[i].setPropertiesAndOppT(aPoint[0], aPoint[1], aPoint[2], aOpp[0], aOpp[1], aOpp[2]);
        }
    }
};

} // namespace

TEST(TriangleRecord, SettersWriteWhatTheySayAndNoMore) {
    Point2 a(0, 0, 0), b(1, 0, 0), c(0, 1, 0), d(5, 5, 5);
    Triangle2 t, n0, n1, n2;
    t.setPropertiesAndOppT(&a, &b, &c, &n0, &n1, &n2);
    for (Point2* pCorner : {&a, &b, &c})
        EXPECT_EQ(pCorner->getIncidentTriangle(), &t);
    EXPECT_TRUE(t.getOppositeTriangle(0) == &n0 && t.getOppositeTriangle(1) == &n1 &&
                t.getOppositeTriangle(2) == &n2);

    Triangle2 other;
    other = t;
    EXPECT_TRUE(other.getCorner(2) == &c && other.getOppositeTriangle(2) == &n2);
    EXPECT_EQ(c.getIncidentTriangle(), &t); // copying does not move the vertices over

    t.setVertexPointer(1, &d);
    t.setOppTriangle(0, nullptr);
    EXPECT_TRUE(t.getCorner(0) == &a && t.getCorner(1) == &d && t.getCorner(2) == &c);
    EXPECT_TRUE(t.getOppositeTriangle(0) == nullptr && t.getOppositeTriangle(1) == &n1);
    EXPECT_EQ(d.getIncidentTriangle(), nullptr);

    other.setProperties(&c, &a, &b);
    EXPECT_EQ(a.getIncidentTriangle(), &other);
    other.setVertexPointer(0, &c);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(other.getOppositeTriangle(i), nullptr);
    t.clearProperties();
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(t.getCorner(i) == nullptr && t.getOppositeTriangle(i) == nullptr);
}

TEST(TriangleIndex, CornersNeighboursAndEdgesAreFoundAndStrangersYieldZero) {
    Point2 aPoint[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    Point2 stranger(0, 0, 0);
    Triangle2 t, aNeighbour[3], foreign;
    t.setPropertiesAndOppT(&aPoint[0], &aPoint[1], &aPoint[2], &aNeighbour[0], &aNeighbour[1],
                           &aNeighbour[2]);
    for (int i = 0; i < 3; ++i) {
        const int next = (i + 1) % 3, prev = (i + 2) % 3;
        EXPECT_TRUE(incIndexBy1(i) == next && incIndexBy2(i) == prev);
        EXPECT_EQ(t.getIntraTriangleIndex(&aPoint[i]), i);
        EXPECT_EQ(t.getIntraTriangleIndex(&aNeighbour[i]), i);
        EXPECT_EQ(t.getIntraTriangleIndex(&aPoint[next], &aPoint[prev]), i);
        EXPECT_EQ(t.getIntraTriangleIndex(&aPoint[prev], &aPoint[next]), i);
        EXPECT_TRUE(t.hasVertex(&aPoint[i]) && t.hasVertex(aPoint[i]));
    }
    EXPECT_EQ(t.getIntraTriangleIndex(&stranger), 0);
    EXPECT_EQ(t.getIntraTriangleIndex(&foreign), 0);
    EXPECT_FALSE(t.hasVertex(&stranger));
    EXPECT_TRUE(t.hasVertex(stranger));            // the same place
    EXPECT_FALSE(t.hasVertex(Point2(0, 0, 1e-9))); // z counts

    testing::internal::CaptureStdout();
    EXPECT_EQ(t.getIntraTriangleIndex(&aPoint[0], &stranger), -1);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(output.find("BUG: Triangle2::getIntraTriangleIndex failed for\nPoint2 ("), 0u);
    EXPECT_NE(output.find(address(&stranger)), std::string::npos);
    EXPECT_NE(output.find("\nTriangle(" + address(&t)), std::string::npos);
}

TEST(TriangleOnEdge, ClosedEdgeIsExact) {
    const OwnTriangle t({0, 0, 0}, {4, 0, 0}, {0, 2, 0});
    struct Case {
        Point2 q;
        bool aOn[3];
    };
    const double up = std::numeric_limits<double>::denorm_min();
    const Case aCase[] = {
        {{2, 0, 9}, {false, false, true}},   {{0, 0, 0}, {false, true, true}},
        {{4, 0, 0}, {true, false, true}},    {{2, 1, 0}, {true, false, false}},
        {{0, 1, 0}, {false, true, false}},   {{1, 0.5, 0}, {false, false, false}},
        {{5, 0, 0}, {false, false, false}},  {{-1, 0, 0}, {false, false, false}},
        {{2, up, 0}, {false, false, false}}, {{6, -1, 0}, {false, false, false}},
    };
    for (const Case& c : aCase)
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(t.hasOnEdge(i, c.q), c.aOn[i]) << c.q << " edge " << i;
}

TEST(TriangleMeasures, KnownTrianglesGiveKnownValues) {
    // Sides 3, 4, 5 in the plane; lifted over one leg the area in space grows by the secant of the slope.
    const OwnTriangle t({0, 0, 0}, {3, 0, 4}, {0, 4, 0});
    const double aSqLen2D[3] = {25, 16, 9}, aSqLen25D[3] = {41, 16, 25};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(t.getSquaredEdgeLength(i), aSqLen2D[i]);
        EXPECT_EQ(t.getSquaredEdgeLength2D(i), aSqLen2D[i]);
        EXPECT_EQ(t.getSquaredEdgeLength25D(i), aSqLen25D[i]);
    }
    EXPECT_EQ(t.getMaxSqEdgeLen2D(), 25);
    EXPECT_EQ(t.getMaxIndex(), 0);
    EXPECT_EQ(t.getMinIndex(), 2);
    EXPECT_DOUBLE_EQ(t.getArea2D(), 6);
    EXPECT_DOUBLE_EQ(t.getArea25D(), 10);
    EXPECT_TRUE(t.getBarycenter().samePoint(Point2(3 / 3.0, 4 / 3.0, 4 / 3.0)));
    // The factor 57.295779513 carries 11 digits.
    EXPECT_NEAR(t.getInteriorAngle2D(0), 90, 1e-8);
    EXPECT_NEAR(t.getInteriorAngle2D(1), std::atan2(4, 3) * 180 / pi, 1e-8);
    EXPECT_NEAR(t.getInteriorAngle25D(1), std::atan2(4, 5) * 180 / pi, 1e-8);
    EXPECT_NEAR((t.getNormalVector() - Vector2(-0.8, 0, 0.6)).length(), 0, 1e-15);

    const OwnTriangle needle({0, 0, 0}, {2, 0, 0}, {1, 0, 0});
    EXPECT_EQ(needle.getArea2D(), 0.0);
    EXPECT_TRUE(needle.getNormalVector().isDegenerate());
    EXPECT_EQ(needle.getInteriorAngle2D(0), 0);
    EXPECT_NEAR(needle.getInteriorAngle2D(2), 180, 1e-8);
}

TEST(TriangleMeasures, EquallyLongEdgesGoToTheLowerIndex) {
    const Point2 a(0, 0, 0), b(2, 0, 0), c(1, 5, 0), d(1, 0.5, 0);
    const Point2 aTip[] = {c, d};
    for (const Point2& tip : aTip) {
        const bool bTall = tip == c; // two long edges, or two short ones
        const Point2 aCorner[3] = {a, b, tip};
        for (int turn = 0; turn < 3; ++turn) {
            const OwnTriangle t(aCorner[turn], aCorner[(turn + 1) % 3], aCorner[(turn + 2) % 3]);
            const int base = (5 - turn) % 3; // the edge opposite the tip
            const int equal = base == 0 ? 1 : 0;
            EXPECT_EQ(t.getMaxIndex(), bTall ? equal : base) << turn;
            EXPECT_EQ(t.getMinIndex(), bTall ? base : equal) << turn;
        }
    }
}

TEST(TriangleArea, NaNIsReportedAndFailsTheCheck) {
    const OwnTriangle t({0, 0, 0}, {1, 0, std::nan("")}, {0, 1, 0});
    EXPECT_DOUBLE_EQ(t.getArea2D(), 0.5);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_THROW(t.getArea25D(), KelmException);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_NE(testing::internal::GetCapturedStderr().find("sqDistance25D"), std::string::npos);
    size_t position = 0;
    for (const char* expected :
         {"Triangle2::computeArea(), WARNING: invalid value, no area for this triangle", "ownHalfCircf=",
          "Corners are: ", "Point2 (", "len0=", "len1=1", "len2=", "Condition [ false failed ]"}) {
        position = output.find(expected, position);
        ASSERT_NE(position, std::string::npos) << expected;
    }
}

TEST(TriangleOutput, OrientationCornersAndNeighboursAreWritten) {
    Point2 a(0, 0, 0), b(3, 0, 0), c(0, 4, 0), d(6, 0, 0);
    Triangle2 neighbour;
    struct Case {
        Point2 *pB, *pC;
        std::string head;
    };
    const Case aCase[] = {{&b, &c, "area2D=6, area2.5D=6, CCW\n0: Point2 ("},
                          {&c, &b, "area2D=6, area2.5D=6, ATTENTION, CLOCKWISE CORNERS!\n"},
                          {&b, &d, "area2D=0, area2.5D=0, ATTENTION, COLLINEAR CORNERS\n"}};
    for (const Case& testCase : aCase) {
        Triangle2 t;
        t.setPropertiesAndOppT(&a, testCase.pB, testCase.pC, nullptr, &neighbour, nullptr);
        std::ostringstream stream;
        stream << t;
        EXPECT_EQ(stream.str().find("Triangle(" + address(&t) + "): " + testCase.head), 0u) << stream.str();
        EXPECT_NE(stream.str().find("\t oppTriangle: " + address(&neighbour) + "\n2: "), std::string::npos);
    }
}

TEST(Circumcentre, OrdinaryTrianglesAreAccurateWhereverTheyLie) {
    std::mt19937 engine(4711);
    std::uniform_real_distribution<double> angle(0, 2 * pi), offset(-1e6, 1e6), radius(0.01, 100);
    for (int round = 0; round < 2000; ++round) {
        std::array<double, 3> a{angle(engine), angle(engine), angle(engine)};
        std::sort(a.begin(), a.end());
        const double arcs[3] = {a[1] - a[0], a[2] - a[1], 2 * pi - a[2] + a[0]};
        if (*std::min_element(arcs, arcs + 3) < 0.2) continue;
        const double cx = offset(engine), cy = offset(engine), r = radius(engine);
        const auto on = [&](double phi) {
            return Point2(cx + r * std::cos(phi), cy + r * std::sin(phi), phi);
        };
        const OwnTriangle t(on(a[0]), on(a[1]), on(a[2]));
        const auto [cc, bAccurate] = t.getDual();
        SCOPED_TRACE(round);
        EXPECT_TRUE(bAccurate);
        // Corners at 1e6 are rounded by 1e-10; arcs of 0.2 and more magnify that less than a hundredfold.
        EXPECT_NEAR(cc.x(), cx, 1e-8);
        EXPECT_NEAR(cc.y(), cy, 1e-8);
        EXPECT_TRUE(cc.z() == 0 && cc.getCustomIndex() == -1);
    }
}

TEST(Circumcentre, BothStrategiesFindTheCentreOfAcuteRightAndObtuseTriangles) {
    struct Case {
        Point2 a, b, c;
        double x, y;
    };
    const Case aCase[] = {
        {{0, 0, 0}, {2, 0, 0}, {1, 2, 0}, 1, 0.75}, // acute
        {{0, 0, 0}, {4, 0, 6}, {0, 2, 2}, 2, 1},    // right: the middle of the hypotenuse
        {{0, 0, 0}, {4, 0, 0}, {2, 1, 0}, 2, -1.5}, // obtuse
        {{1e6, 1e6, 0}, {1e6 + 4, 1e6, 0}, {1e6, 1e6 + 2, 0}, 1e6 + 2, 1e6 + 1},
    };
    for (const Case& c : aCase) {
        for (int turn = 0; turn < 3; ++turn) {
            const Point2 aCorner[3] = {c.a, c.b, c.c};
            const OwnTriangle t(aCorner[turn], aCorner[(turn + 1) % 3], aCorner[(turn + 2) % 3]);
            SCOPED_TRACE(testing::Message() << t);
            double ox = 0, oy = 0;
            t.getCommonOffset(ox, oy);
            Point2 cc1, cc2;
            ASSERT_TRUE(t.getCC_strategy1(ox, oy, cc1));
            t.getCC_strategy2(t.getMaxIndex(), ox, oy, cc2);
            for (const Point2& cc : {cc1, cc2}) {
                EXPECT_TRUE(t.isAccurateCC(t.getMaxIndex(), cc));
                EXPECT_NEAR(cc.x(), c.x, 1e-6);
                EXPECT_NEAR(cc.y(), c.y, 1e-6);
            }
            const int longest = t.getMaxIndex();
            EXPECT_EQ(cc2.z(), (t.corners[(longest + 1) % 3].z() + t.corners[(longest + 2) % 3].z()) / 2);
            EXPECT_TRUE(t.getDual().second);
        }
    }
}

TEST(Circumcentre, SliverFlagIsHonestAndBisectionRescuesSome) {
    // Ever flatter triangles over a base of length 2 in any direction, near the origin and far from it.
    std::mt19937 engine(99);
    std::uniform_real_distribution<double> unit(0, 1);
    int accurateCount = 0, rescuedCount = 0, rejectedCount = 0;
    for (const double shift : {0.0, 1e3, 1e7}) {
        for (double height = 1; height > 1e-15; height /= 1.2) {
            const double phi = 2 * pi * unit(engine), foot = 2 * unit(engine);
            const auto at = [&](double along, double across) {
                return Point2(shift + std::cos(phi) * along - std::sin(phi) * across,
                              shift + std::sin(phi) * along + std::cos(phi) * across, 0);
            };
            const OwnTriangle t(at(0, 0), at(2, 0), at(foot, height));
            double ox = 0, oy = 0;
            t.getCommonOffset(ox, oy);
            Point2 formula;
            const bool bFormula =
                t.getCC_strategy1(ox, oy, formula) && t.isAccurateCC(t.getMaxIndex(), formula);
            const auto [cc, bAccurate] = t.getDual();
            ++(bFormula ? accurateCount : bAccurate ? rescuedCount : rejectedCount);
            // The flag's own tolerance, and the rounding of two distances of this size.
            const double distance = std::hypot(cc.x() - t.corners[0].x(), cc.y() - t.corners[0].y());
            const double tolerance = 1e-6 + 4 * std::numeric_limits<double>::epsilon() * distance;
            EXPECT_TRUE(!bAccurate || t.spread(cc) <= tolerance) << t << cc;
            EXPECT_TRUE(!bFormula || bAccurate);
        }
    }
    EXPECT_GT(accurateCount, 300);
    EXPECT_GT(rescuedCount, 10);
    EXPECT_GT(rejectedCount, 5);
}

TEST(Circumcentre, DegenerateCornersGiveNoFormulaAndNoFailure) {
    const Point2 aCase[][3] = {{{0, 0, 0}, {1, 1, 0}, {3, 3, 0}},
                               {{0, 0, 0}, {0, 0, 0}, {1, 0, 0}},
                               {{7, 7, 0}, {7, 7, 0}, {7, 7, 0}}};
    for (const auto& corners : aCase) {
        const OwnTriangle t(corners[0], corners[1], corners[2]);
        Point2 cc(1, 2, 3);
        EXPECT_FALSE(t.getCC_strategy1(0, 0, cc));
        EXPECT_TRUE(cc.samePoint(Point2(1, 2, 3)));
        EXPECT_NO_THROW(t.getDual());
    }
    // All corners in one place: there is no bisector, the centre is no number, and the flag must say so.
    const OwnTriangle point(aCase[2][0], aCase[2][1], aCase[2][2]);
    EXPECT_FALSE(point.getDual().second);
}

TEST(FanIterator, CycleYieldsEveryTriangleOnceAndOneNullOnTheHull) {
    for (const bool bClosed : {true, false}) {
        for (int count = bClosed ? 3 : 1; count < 9; ++count) {
            Fan fan(count, bClosed);
            std::vector<Triangle2*> vCycle; // counterclockwise
            for (Triangle2& triangle : fan.vTriangles)
                vCycle.push_back(&triangle);
            if (!bClosed) vCycle.push_back(nullptr);
            const int length = static_cast<int>(vCycle.size());

            for (int start = 0; start < count; ++start) {
                for (const int step : {1, -1}) {
                    SCOPED_TRACE(testing::Message()
                                 << bClosed << ' ' << count << ' ' << start << ' ' << step);
                    TriangleAroundVertexIterator it(&fan.center, &fan.vTriangles[start]);
                    for (int k = 1; k <= 2 * length; ++k) {
                        Triangle2* pExpected = vCycle[((start + step * k) % length + length) % length];
                        const Triangle2* pPreview =
                            step > 0 ? it.previewNextTriangle() : it.previewPrevTriangle();
                        EXPECT_EQ(pPreview, pExpected);
                        EXPECT_EQ(*(step > 0 ? ++it : --it), pExpected);
                    }
                }
            }
        }
    }
}

TEST(FanIterator, CopiesComparisonsAndVerticesWithoutTriangle) {
    Fan fan(3, false);
    const Point2* pCenter = &fan.center;
    TriangleAroundVertexIterator it(pCenter), other(&fan.center, &fan.vTriangles[0]);
    EXPECT_EQ(*it, fan.center.getIncidentTriangle());
    EXPECT_TRUE(it != other);
    other = it;
    EXPECT_TRUE(it == other);
    EXPECT_TRUE(it != TriangleAroundVertexIterator(&fan.vRim[3], *it)); // same triangle, other vertex
    while (*it)
        ++it;
    TriangleAroundVertexIterator copyAtNull(it);
    std::set<Triangle2*> sSeen;
    for (int i = 0; i < 8; ++i)
        sSeen.insert(*++copyAtNull);
    EXPECT_EQ(sSeen.size(), 4u);

    const Point2 copy(fan.center);
    EXPECT_THROW(TriangleAroundVertexIterator{&copy}, KelmException);
}
