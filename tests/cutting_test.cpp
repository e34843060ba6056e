// Knives: triangles cut along segments, with and without protection of the rest, and cookie cutters.
// The checker of constraints stands in support/MeshChecker.
#include "testing.h"

#include "zoneModel.h"

#include <numeric>

namespace {

using Pieces = std::vector<ConstraintSegment2*>;
using Knives = std::vector<Segment2>;

double areaOf(const Kelm_2D& dt) {
    Triangles v;
    dt.getTrianglePointers(v);
    return std::accumulate(v.begin(), v.end(), 0.0,
                           [](double sum, const Triangle2* pT) { return sum + pT->getArea2D(); });
}

/// The edges by the places of their ends.
std::set<Places> edgesOf(const Kelm_2D& dt) {
    Triangles v;
    dt.getTrianglePointers(v);
    std::vector<Edge2> vEdges;
    getDirectedEdges(v, vEdges);
    std::set<Places> s;
    for (const Edge2& e : vEdges)
        s.insert(Places({{e.getSrc()->x(), e.getSrc()->y()}, {e.getTrg()->x(), e.getTrg()->y()}}));
    return s;
}

struct Case {
    std::string name;
    std::vector<Point2> points;
    Knives knives;
};

std::vector<Case> makeCases() {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> u(0.0, 10.0);
    const auto point = [&](double x0, double y0) {
        return Point2(x0 + u(random), y0 + u(random), u(random));
    };
    std::vector<Point2> vUniform, vFar, vGrid;
    Knives vShort, vThrough, vOnGrid, vFarKnives, vFan;
    for (int i = 0; i < 300; ++i) {
        vUniform.push_back(point(0, 0));
        vFar.push_back(point(5e5, 4e6));
        vGrid.emplace_back(i % 17, i / 17, u(random));
    }
    for (int i = 0; i < 40; ++i) {
        const Point2 a = point(0, 0), b = point(0, 0);
        vShort.emplace_back(a, Point2(a.x() + 0.1 * (b.x() - 5), a.y() + 0.1 * (b.y() - 5), 7));
        vFarKnives.emplace_back(point(5e5, 4e6), point(5e5, 4e6));
    }
    for (int i = 0; i < 6; ++i)
        vThrough.emplace_back(Point2(-5, i * 2 - 1, 3), Point2(16, 9 - i, 3));
    for (int i = 0; i < 12; ++i)
        vOnGrid.emplace_back(Point2(random() % 17, random() % 17, 0),
                             Point2(random() % 17, random() % 17, 0));
    for (int i = 0; i < 9; ++i)
        vFan.emplace_back(Point2(8, 8, 0), Point2(8 + 6 * std::cos(i), 8 + 6 * std::sin(i), 0));
    const Knives vAlong = {Segment2({2, 3, 0}, {9, 3, 0}), Segment2({2.5, 4, 0}, {2.75, 4, 0}),
                           Segment2({3, 0, 0}, {3, 16, 0}), Segment2({-3, 5, 0}, {20, 5, 0}),
                           Segment2({1, 1, 0}, {1, 1, 9})};
    return {{"short knives", vUniform, vShort},
            {"through the hull and each other", vUniform, vThrough},
            {"through and along lattice edges", vGrid, vOnGrid},
            {"along edges, within one, over the border, without length", vGrid, vAlong},
            {"from one vertex", vGrid, vFan},
            {"far from the origin", vFar, vFarKnives}};
}

// The surface stays, and so does every edge that no knife touches; the knives are chains of constraints.
TEST(Cutting, ProtectedSurfaceStaysAsItIs) {
    for (const Case& test : makeCases()) {
        SCOPED_TRACE(test.name);
        Kelm_2D before, dt;
        before.insert(test.points);
        dt.insert(test.points);
        Pieces vPieces;
        dt.getImpl()->CUTT_cutTriangles(test.knives, true, vPieces);
        ASSERT_TRUE(dt.checkValidity(false, "cut"));
        ASSERT_VALID_MESH(dt, false);
        ASSERT_VALID_CONSTRAINTS(dt, {});

        std::vector<Point2*> vVertices;
        dt.getVertexPointers(vVertices);
        for (const Point2* pVtx : vVertices) {
            double height = 0.0;
            // Heights to 10 with slopes up to 1e3 at places rounded to 1e-9 of 5e6.
            if (before.getHeight(pVtx->x(), pVtx->y(), height)) {
                EXPECT_NEAR(height, pVtx->z(), 1e-5);
            }
        }
        for (int i = 0; i < 500; ++i) { // also between the vertices
            const Point2& a = test.points[i % test.points.size()];
            const Point2& b = test.points[(7 * i + 3) % test.points.size()];
            const double x = 0.7 * a.x() + 0.3 * b.x(), y = 0.7 * a.y() + 0.3 * b.y();
            double z0 = 0.0, z1 = 0.0;
            ASSERT_TRUE(before.getHeight(x, y, z0) && dt.getHeight(x, y, z1));
            EXPECT_NEAR(z0, z1, 1e-5);
        }
        const auto sBefore = edgesOf(before), sAfter = edgesOf(dt);
        for (const auto& edge : sBefore) {
            const auto& a = *edge.begin();
            const auto& b = *edge.rbegin();
            const Point2 p(a.first, a.second, 0), q(b.first, b.second, 0);
            const bool bMet = std::any_of(test.knives.begin(), test.knives.end(), [&](const Segment2& knife) {
                const Point2 src = knife.getSrc(), trg = knife.getTrg();
                return dt.getImpl()->getQuorTest().segmentsIntersect(&p, &q, &src, &trg) != Meeting::DISJOINT;
            });
            EXPECT_TRUE(bMet || sAfter.count(edge) != 0);
        }
        double length = 0.0, cut = 0.0;
        for (const Segment2& knife : test.knives)
            length += std::sqrt(knife.getSqLen2D());
        for (const ConstraintSegment2* pPiece : vPieces) {
            EXPECT_TRUE(pPiece->isAlive());
            cut += std::sqrt(Segment2(*pPiece->getSrc(), *pPiece->getTrg()).getSqLen2D());
        }
        EXPECT_NEAR(length, cut, 1e-4); // crossings move by 1e-5 at most
    }
}

TEST(Cutting, WithoutProtectionTheMeshStaysDelaunay) {
    for (const Case& test : makeCases()) {
        SCOPED_TRACE(test.name);
        Kelm_2D dt;
        dt.insert(test.points);
        dt.cutTriangles(test.knives, false);
        ASSERT_VALID_MESH(dt);
        ASSERT_VALID_CONSTRAINTS(dt, {});
    }
}

TEST(Cutting, KnivesThatMeetConstraintsAndScalesFarFromOne) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        const int aPower[] = {-200, -161, -6, -4, -2, 0, 1, 3, 6, 9, 155, 200, 306};
        const double unit = std::pow(10.0, aPower[seed % 13]);
        const auto point = [&] {
            return Point2(unit * (random() % 12), unit * (random() % 12), random() % 5);
        };
        Kelm_2D dt;
        Knives vLines, vKnives;
        for (int i = 0; i < 30; ++i)
            dt.insert(point());
        for (int i = 0; i < 8; ++i) {
            vLines.emplace_back(point(), point());
            vKnives.emplace_back(point(), point());
        }
        dt.createConstraint(vLines, CIS_CONSTRAINED_DELAUNAY);
        Pieces vPieces;
        dt.getImpl()->CUTT_cutTriangles(vKnives, seed % 2 == 0, vPieces);
        ASSERT_VALID_MESH(dt, seed % 2 != 0) << seed;
        // Where most crossings snap a piece may be bent over another and stay without an edge, after a
        // warning.
        if (unit > 1e-3) {
            ASSERT_VALID_CONSTRAINTS(dt, {}) << seed;
        }
        for (const ConstraintSegment2* pPiece : vPieces)
            ASSERT_TRUE(pPiece->isAlive());
    }
}

TEST(Cutting, ThousandsOfKnives) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> u(0.0, 1000.0);
    std::vector<Point2> vPoints;
    Knives vKnives;
    for (int i = 0; i < 5000; ++i)
        vPoints.emplace_back(u(random), u(random), u(random));
    for (int i = 0; i < 3000; ++i) {
        const Point2 a(u(random), u(random), 0);
        vKnives.emplace_back(a, Point2(a.x() + 0.02 * u(random) - 10, a.y() + 0.02 * u(random) - 10, 0));
    }
    Kelm_2D dt;
    dt.insert(vPoints);
    const double area = areaOf(dt);
    dt.cutTriangles(vKnives, true);
    ASSERT_VALID_MESH(dt, false);
    ASSERT_VALID_CONSTRAINTS(dt, {});
    EXPECT_LE(area, areaOf(dt) + 1e-6);
}

TEST(Cutting, RefusalsSayWhatIsWrong) {
    Kelm_2D flat, dt;
    dt.insert({{0, 0, 0}, {9, 0, 0}, {0, 9, 0}});
    CoutCapture capture;
    flat.cutTriangles({0, 0, 0}, {1, 1, 0}, true);
    EXPECT_TRUE(capture.printed(
        "Dt2::CUTT_cutTriangles(..), WARNING: The triangulation is not 2D yet, nothing to do"));
    dt.cutTriangles({1, 1, 0}, {1, 1, 5}, true);
    EXPECT_TRUE(capture.printed(
        "Dt2::CUTT_cutTriangles(..), WARNING: No or only degenerate segments, nothing to do"));
    dt.cutTriangles({1, 1, 0}, {1, std::nan(""), 5}, true);
    EXPECT_TRUE(capture.printed("Dt2::CUTT_cutTriangles(..), ERROR: a coordinate is not finite"));
    dt.cutTriangles(Knives(), true);
    EXPECT_EQ("", capture.take());
    EXPECT_EQ(3u, dt.numberOfPoints());
}

// The cookie is what lies within the polygon and within the hull as it was.
TEST(Cutting, CookieCutterLeavesTheRestOutside) {
    struct {
        const char* name;
        std::vector<Point2> corners;
        double area; // of a cookie of a square from 0 to 10; 0 for none
    } const aCase[] = {
        {"inside", {{2, 2, 0}, {7, 3, 0}, {4, 8, 0}}, 14},
        {"corner over the border", {{5, 5, 0}, {15, 5, 0}, {15, 15, 0}, {5, 15, 0}}, 25},
        {"all corners outside", {{-5, 5, 0}, {5, -5, 0}, {15, 5, 0}, {5, 15, 0}}, 100},
        {"all around", {{-5, -5, 0}, {15, -5, 0}, {15, 15, 0}, {-5, 15, 0}}, 100},
        {"strip across", {{-5, 4, 0}, {15, 4, 0}, {15, 6, 0}, {-5, 6, 0}}, 20},
        {"outside", {{12, 2, 0}, {17, 3, 0}, {14, 8, 0}}, 0},
        {"crosses itself", {{2, 2, 0}, {7, 7, 0}, {7, 2, 0}, {2, 7, 0}}, 0},
        {"edge on the border", {{0, 2, 0}, {5, 5, 0}, {0, 8, 0}}, 15},
    };
    std::mt19937 random(2);
    std::uniform_real_distribution<double> u(0.0, 10.0);
    std::vector<Point2> vPoints = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
    for (int i = 0; i < 100; ++i)
        vPoints.emplace_back(u(random), u(random), u(random));
    for (const auto& test : aCase) {
        for (const bool bWithConstraints : {false, true}) {
            SCOPED_TRACE(test.name);
            Kelm_2D dt;
            dt.insert(vPoints);
            Knives vPolygon;
            for (std::size_t i = 0; i < test.corners.size(); ++i)
                vPolygon.emplace_back(test.corners[i], test.corners[(i + 1) % test.corners.size()]);
            Zone2* pCookie = dt.createZone_cookieCutter(vPolygon, bWithConstraints);
            ASSERT_VALID_MESH(dt, !bWithConstraints);
            ASSERT_EQ(test.area == 0, pCookie == nullptr);
            if (pCookie == nullptr) continue;
            EXPECT_EQ(ZL_BOUNDED, pCookie->getZoneLocation());
            EXPECT_NEAR(test.area, pCookie->getArea2D(), 1e-9);
            ASSERT_EQ("", findZoneFault(dt, {pCookie, ZL_BOUNDED, {pCookie->getConstraintGraph()}}));
        }
    }
}

} // namespace
