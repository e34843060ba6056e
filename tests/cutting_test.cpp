// Knives: triangles cut along segments, with and without protection of the rest, and cookie cutters.
// The checker of constraints stands in support/MeshChecker.
#include "testing.h"

#include "zoneModel.h"

namespace {

using Pieces = std::vector<ConstraintSegment2*>;
using Knives = std::vector<Segment2>;

/// The edges by the places of their ends.
std::set<Places> edgesOf(const Kelm_2D& dt) {
    std::vector<Edge2> vEdges;
    getDirectedEdges(allTriangles(dt), vEdges);
    std::set<Places> s;
    for (const Edge2& e : vEdges)
        s.insert(Places({{e.getSrc()->x(), e.getSrc()->y()}, {e.getTrg()->x(), e.getTrg()->y()}}));
    return s;
}

struct Case {
    std::vector<Point2> points;
    Knives knives;
};

std::vector<Case> makeCases() {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> u(0.0, 10.0);
    const auto near = [&] { return Point2(u(random), u(random), u(random)); };
    const auto far = [&] { return Point2(5e5 + u(random), 4e6 + u(random), u(random)); };
    Case small, remote,
        lattice{{},
                {{{2, 3, 0}, {9, 3, 0}},         // along edges
                 {{2.5, 4, 0}, {2.75, 4, 0}},    // within one
                 {{-3, 5, 0}, {20, 5, 0}},       // over the border
                 {{4.5, 7.5, 9}, {6.5, 8, 9}}}}; // from edge to edge
    for (int i = 0; i < 300; ++i)
        small.points.push_back(near());
    for (int i = 0; i < 300; ++i) {
        remote.points.push_back(far());
        lattice.points.emplace_back(i % 17, i / 17, u(random));
    }
    for (int i = 0; i < 40; ++i) {
        const Point2 a = near();
        small.knives.emplace_back(a, Point2(a.x() + 0.1 * u(random) - 0.5, a.y() + 0.1 * u(random) - 0.5, 7));
        remote.knives.emplace_back(far(), far());
    }
    for (int i = 0; i < 12; ++i)
        lattice.knives.push_back({lattice.points[random() % 300], lattice.points[random() % 300]});
    Case through{small.points, {}}; // the hull and each other
    for (int i = 0; i < 6; ++i)
        through.knives.push_back({{-5, i * 2. - 1, 3}, {16, 9. - i, 3}});
    return {small, lattice, remote, through};
}

// With protection the surface stays, and so does every edge that no knife touches; without it the mesh stays
// Delaunay. The knives become chains of constraints.
TEST(Cutting, KnivesBecomeConstraintsOfAProtectedSurfaceOrADelaunayMesh) {
    for (const Case& test : makeCases()) {
        SCOPED_TRACE(test.points[0]);
        Kelm_2D before, dt, unprotected;
        for (Kelm_2D* pDt : {&before, &dt, &unprotected})
            pDt->insert(test.points);
        unprotected.cutTriangles(test.knives, false);
        ASSERT_VALID_MESH(unprotected);
        ASSERT_VALID_CONSTRAINTS(unprotected, {});
        Pieces vPieces;
        dt.getImpl()->CUTT_cutTriangles(test.knives, true, vPieces);
        ASSERT_VALID_MESH(dt, false);
        ASSERT_VALID_CONSTRAINTS(dt, {});

        std::vector<Point2> vPlaces;
        for (const Point2* pVtx : allVertices(dt))
            vPlaces.push_back(*pVtx);
        for (std::size_t i = 0; i < 500; ++i) { // also between the vertices
            const Point2& a = test.points[i % test.points.size()];
            const Point2& b = test.points[(7 * i + 3) % test.points.size()];
            vPlaces.emplace_back(0.7 * a.x() + 0.3 * b.x(), 0.7 * a.y() + 0.3 * b.y(), 0);
        }
        for (const Point2& p : vPlaces) {
            double z0 = 0.0, z1 = 0.0;
            if (!before.getHeight(p.x(), p.y(), z0)) continue; // beyond the hull as it was
            ASSERT_TRUE(dt.getHeight(p.x(), p.y(), z1));
            EXPECT_NEAR(z0, z1, 1e-5); // up to 10 with slopes up to 1e3 at places rounded to 1e-9 of 5e6
        }
        const auto sAfter = edgesOf(dt);
        for (const auto& edge : edgesOf(before)) {
            const Point2 p(edge.begin()->first, edge.begin()->second, 0);
            const Point2 q(edge.rbegin()->first, edge.rbegin()->second, 0);
            const auto isMet = [&](const Segment2& knife) {
                const Point2 src = knife.getSrc(), trg = knife.getTrg();
                return dt.getImpl()->getQuorTest().segmentsIntersect(&p, &q, &src, &trg) != Meeting::DISJOINT;
            };
            EXPECT_TRUE(sAfter.count(edge) != 0 ||
                        std::any_of(test.knives.begin(), test.knives.end(), isMet));
        }
        double length = 0.0, cut = 0.0;
        for (const Segment2& knife : test.knives)
            length += std::sqrt(knife.getSqLen2D());
        for (const ConstraintSegment2* pPiece : vPieces) {
            EXPECT_TRUE(pPiece->isAlive());
            cut += std::sqrt(Segment2(*pPiece->getSrc(), *pPiece->getTrg()).getSqLen2D());
        }
        EXPECT_NEAR(length, cut, 2e-7 * vPieces.size() + 1e-4); // crossings move by 1e-5 at most
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
        for (int i = 0; i < 8; ++i) {
            dt.insert({point(), point(), point(), point()});
            vLines.emplace_back(point(), point());
            vKnives.emplace_back(point(), point());
        }
        dt.createConstraint(vLines, CIS_CONSTRAINED_DELAUNAY);
        Pieces vPieces;
        dt.getImpl()->CUTT_cutTriangles(vKnives, seed % 2 == 0, vPieces);
        ASSERT_VALID_MESH(dt, seed % 2 != 0) << seed;
        // Below, most crossings snap: a piece may be bent over another and stay without an edge.
        ASSERT_EQ("", unit > 1e-3 ? findConstraintFault(dt, {}) : "") << seed;
        for (const ConstraintSegment2* pPiece : vPieces)
            ASSERT_TRUE(pPiece->isAlive());
    }
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
            Zone2* pCookie = dt.createZone_cookieCutter(ringOf(test.corners), bWithConstraints);
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
