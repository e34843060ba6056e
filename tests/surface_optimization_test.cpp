// Flips for the sake of the surface: brute force for each edge, order, passes, and odd zones and heights.
// Which triangles a zone has is tested elsewhere.
#include "testing.h"

#include <kelm25d/Zone2.h>

namespace {

struct OpenZone : Zone2 {
    explicit OpenZone(const Kelm_2D& dt) : Zone2(dt.getImpl(), ZL_GLOBAL) { getTriangles(vT); }
    using Zone2::optimize;
    std::vector<Triangle2*> vT;
};

/// Real heights times a factor, in a jittered grid under a linear map. Constraints are some diagonals and a
/// square, of which the zones are both sides.
struct Terrain {
    Terrain(const std::array<double, 6>& map, double jitter, double height) {
        std::mt19937_64 random(43);
        std::uniform_real_distribution<double> noise(0, jitter);
        std::vector<Point2> v, vReal;
        readXYZ(KELM25D_EXAMPLE_DATA_DIR "/jacksboro.xyz", vReal);
        for (unsigned i = 0; i < 1600; ++i) {
            const double x = i % 40 + noise(random), y = i / 40 + noise(random);
            v.emplace_back(map[0] * x + map[1] * y + map[2], map[3] * x + map[4] * y + map[5],
                           vReal.at(i / 40 * 403 + i % 40).z() / 74.4 * height * map[0]);
        }
        dt.insert(v);
        vSegments = {{v[165], v[195]}, {v[195], v[1395]}, {v[1395], v[1365]}, {v[1365], v[165]}};
        ConstraintGraph2* pSquare = dt.createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY);
        for (unsigned i = 0; i < 1550; i += 14)
            vSegments.emplace_back(v[i + i % 4 / 2], v[i + 41 - i % 4 / 2]);
        dt.createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY);
        pInside = dt.createZone(pSquare, ZL_INSIDE);
        pOutside = dt.createZone(pSquare, ZL_OUTSIDE);
    }
    Kelm_2D dt{3000}; // one block of memory: the order of addresses is that of creation in every run
    std::vector<Segment2> vSegments;
    Zone2 *pInside, *pOutside;
};

/// A corner, the ends of the edge opposite it, and the far corner on the other side.
std::array<Point2*, 4> quadrilateral(const Triangle2& t, int i) {
    const Triangle2& n = *t.getOppositeTriangle(i);
    return {t.getCorner(i), t.getCorner((i + 1) % 3), t.getCorner((i + 2) % 3),
            n.getCorner(n.getIntraTriangleIndex(&t))};
}

bool runsTheWrongWay(const Point2& p, const Point2& q) {
    return p.x() == q.x() || (p.x() < q.x() && p.y() > q.y()) || (p.x() > q.x() && p.y() < q.y());
}

} // namespace

TEST(SurfaceOptimization, NoLongestEdgeIsLeftThatShouldBeTheOtherDiagonal) {
    CoutCapture quiet;
    const auto relative = [](double l0, double l1) { return std::fabs(l0 - l1) / std::max(l0, l1); };
    const std::array<double, 6> aMaps[] = {
        {1, 0, 0, 0, 1, 0}, {74.4, 0, 5e5, 0, 92.66, 4e6}, {1, -1, 0, 1, 1, 0}, {1e-9, 0, 0, 0, 1e-9, 0}};
    const std::array<double, 3> aCases[] = {{0, 0, INFINITY}, {0, 1e-3, INFINITY}, {0, -1, 0}, {0, 1e-3, .01},
                                            {0, 0, .05},      {0, 0, NAN},         {0, 0, -1}, {.8, .2, 0},
                                            {.8, NAN, 0},     {.8, NAN, INFINITY}};
    for (int k = 0; k < 40; ++k) {
        SCOPED_TRACE(k);
        const auto [jitter, planar, spatial] = aCases[k % 10];
        Terrain terrain(aMaps[k / 10], jitter, 1);
        const auto before = triangleSet(terrain.dt);
        const double area = terrain.pOutside->getArea25D();
        // Cells of a grid do not disturb each other; else each flip makes the edges shorter, to an end.
        for (int run = 0; run < (jitter > 0 ? 20 : 1); ++run)
            spatial == INFINITY ? terrain.pInside->unifyGrid(planar)
                                : terrain.pInside->optimizeValleysAndRidges(planar, spatial);
        EXPECT_EQ(std::isnan(planar), before == triangleSet(terrain.dt));
        EXPECT_EQ(area, terrain.pOutside->getArea25D()); // the same triangles with the same corners
        ASSERT_TRUE(planar > .1 ? terrain.dt.checkValidity(false, "") : findMeshFault(terrain.dt).empty());
        ASSERT_VALID_CONSTRAINTS(terrain.dt, terrain.vSegments);
        std::vector<Triangle2*> vT;
        terrain.pInside->getTriangles(vT);
        for (const Triangle2* pT : vT) {
            if (!terrain.dt.getImpl()->getMesh().canBeFlipped(pT, pT->getMaxIndex())) continue;
            const auto [a, b, c, d] = quadrilateral(*pT, pT->getMaxIndex());
            const Vector2 now = *c - *b, then = *d - *a;
            const double flat = relative(std::hypot(now.x(), now.y()), std::hypot(then.x(), then.y()));
            if (planar <= 0 ? exactInCircle(*a, *b, *c, *d) != 0 : !(flat <= planar)) continue;
            const bool bDiffers = relative(now.length(), then.length()) > spatial;
            ASSERT_FALSE(bDiffers ? now.length() > then.length() : runsTheWrongWay(*b, *c));
        }
    }
}

TEST(UnifyGrid, TurnsTheLongestEdgeFirstAndForGood) {
    std::vector<Point2> vCircle;
    for (const PointSet& set : makeAllKinds(2400))
        if (set.name == "integer circle") vCircle = set.points;
    for (auto it = vCircle.begin(); it != vCircle.end(); it += 8) {
        Kelm_2D dt;
        dt.insert(std::vector<Point2>(it, it + 8));
        const OpenZone all(dt);
        const Point2 start = all.vT[0]->getBarycenter();
        Zone2 twice(dt.getImpl(), {}, ZL_GROW, {start, start}); // each edge is looked at again
        std::map<double, std::array<Point2*, 4>> mCandidates;   // the first one of each length
        for (Triangle2* pT : all.vT) {
            const Edge2 edge(pT, pT->getMaxIndex());
            if (pT->getOppositeTriangle(edge.getIndex()) && runsTheWrongWay(*edge.getSrc(), *edge.getTrg()))
                mCandidates.emplace(edge.getLength2D(), quadrilateral(*pT, edge.getIndex()));
        }
        if (mCandidates.empty()) continue;
        const auto [a, b, c, d] = mCandidates.rbegin()->second;
        twice.unifyGrid(0);
        ASSERT_TRUE(dt.getAdjacentTriangle(a, d) != nullptr && dt.getAdjacentTriangle(b, c) == nullptr);
        ASSERT_VALID_MESH(dt);
    }
}

TEST(SlopeOptimization, TurnsAtMostOneEdgeOfATriangleByItsAngles) {
    const struct {
        double jitter, height, scale;
        int numTurned; // counted once: the limits of the angles and their order decide it
    } aCases[] = {{0, 0, 1, 712}, {.6, .02, 1, 3}, {.9, 1, 1e-5, 163}, {.9, 10, 1e6, 504}, {.6, .3, 1, 60}};
    for (const auto& c : aCases) {
        CoutCapture quiet;
        Terrain terrain({c.scale, 0, 5 * c.scale, 0, c.scale, 7 * c.scale}, c.jitter, c.height);
        OpenZone zone(terrain.dt);
        int numTurned = 0;
        for (Triangle2* pT : zone.vT) {
            const std::set<Triangle2*> sNear{pT, pT->getOppositeTriangle(0), pT->getOppositeTriangle(1),
                                             pT->getOppositeTriangle(2)};
            std::vector<Triangle2*> vOne{pT}, vChanged;
            zone.optimize(vOne, vChanged);
            if (vChanged.empty()) continue;
            ++numTurned;
            ASSERT_TRUE(vChanged.size() == 2 && vChanged[0] < vChanged[1]);
            ASSERT_TRUE(sNear.count(vChanged[0]) == 1 && sNear.count(vChanged[1]) == 1);
        }
        EXPECT_EQ(c.numTurned, numTurned) << c.jitter << ' ' << c.height;
        ASSERT_TRUE(terrain.dt.checkValidity(false, ""));
        ASSERT_VALID_CONSTRAINTS(terrain.dt, terrain.vSegments);
    }
}

TEST(SlopeOptimization, MakesUpToThreePassesOverWhatChanged) {
    Terrain terrain({1, 0, 0, 0, 1, 0}, .5, 3), byHand({1, 0, 0, 0, 1, 0}, .5, 3); // more would change more
    OpenZone zone(terrain.dt), zoneByHand(byHand.dt);
    CoutCapture quiet;
    zone.slopeValleyRidgeOptimization();
    std::vector<Triangle2*> vChanged, &vT = zoneByHand.vT;
    for (int pass = 0; pass < 3; ++pass, vChanged.clear()) {
        zoneByHand.optimize(vT, vChanged);
        vT.swap(vChanged);
        EXPECT_EQ(vT.end(), std::adjacent_find(vT.begin(), vT.end(), std::greater_equal<>()));
    }
    EXPECT_EQ(triangleSet(byHand.dt), triangleSet(terrain.dt));
}

TEST(SlopeOptimization, KeepsEdgesAtHeightsThatAreNoNumbersAndFailsAtInfiniteOnes) {
    CoutCapture out, err(std::cerr);
    ScratchDirectory scratch;
    for (const double height : {double(NAN), double(INFINITY)}) {
        Kelm_2D dt;
        OpenZone zone(dt); // without triangles yet
        zone.slopeValleyRidgeOptimization();
        dt.insert({{0, 0, 0}, {2, 0, 0}, {3, 2, height}, {0, 2, 0}});
        const auto before = triangleSet(dt);
        try {
            zone.slopeValleyRidgeOptimization();
        } catch (const KelmException&) {}
        EXPECT_EQ(std::isinf(height), out.printed("bDoIt || dihedralImprovement>0.0"));
        EXPECT_EQ(before, triangleSet(dt));
        zone.optimizeValleysAndRidges(INFINITY, 0);
        EXPECT_EQ(std::isnan(height), err.printed("warning, sqDistance25D, nan value"));
    }
}
