// Points inserted one by one: every kind of data, flips and the walk.
// Many points at once are in bulk_test.cpp, long lines in scaling_test.cpp.
#include "testing.h"

TEST(SingleInsertion, MeshIsValidAfterEachPointOfEachKindInEachOrder) {
    for (PointSet& set : makeAllKinds(64)) {
        for (int order = 0; order < 4; ++order) {
            SCOPED_TRACE(testing::Message() << set.name << ", order " << order);
            if (order == 1) std::sort(set.points.begin(), set.points.end());
            if (order == 2) std::reverse(set.points.begin(), set.points.end());
            if (order == 3) std::shuffle(set.points.begin(), set.points.end(), std::mt19937_64(7));
            Kelm_2D dt;
            std::map<Point2, Point2*> mVertices;
            for (const Point2& p : set.points) {
                Point2* pVtx = dt.insert(p);
                const auto known = mVertices.emplace(p, pVtx).first; // the first height at this place stays
                ASSERT_TRUE(known->second == pVtx && known->first.samePoint(*pVtx));
                ASSERT_EQ(mVertices.size(), dt.numberOfPoints());
                ASSERT_VALID_MESH(dt);
            }
        }
    }
}

TEST(Flips, AreUndoneByLegalizingAndAllowedExactlyInConvexQuadrilaterals) {
    for (const PointSet& set : makeAllKinds(50)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.insert(set.points);
        Mesh2& mesh = dt.getImpl()->getMesh();
        const std::vector<Triangle2*> vTriangles = allTriangles(dt);
        for (std::size_t k = 0; k < 3 * vTriangles.size(); ++k) {
            Triangle2* pT = vTriangles[k / 3];
            const int i = static_cast<int>(k % 3);
            Triangle2* pN = pT->getOppositeTriangle(i);
            Point2 *a = pT->getCorner(i), *b = pT->getCorner((i + 1) % 3), *c = pT->getCorner((i + 2) % 3);
            const Point2* d = pN != nullptr ? pN->getCorner(pN->getIntraTriangleIndex(pT)) : nullptr;
            const bool bConvex =
                d != nullptr && exactOrientation(*a, *b, *d) > 0 && exactOrientation(*a, *d, *c) > 0;
            ASSERT_EQ(bConvex, mesh.canBeFlipped(pT, i));
            if (!bConvex) continue;
            mesh.flip(pT, i);
            ASSERT_TRUE(pT->getCorner(0) == a && pN->getCorner(0) == a && pT->getOppositeTriangle(1) == pN);
            mesh.legalizeAround(b);
            ASSERT_VALID_MESH(dt);
        }
    }
}

TEST(Walk, EndsAtTheRightPlaceEvenAfterManySteps) {
    std::mt19937_64 random(11);
    const auto pick = [&](const auto& v) { return v[random() % v.size()]; };
    std::vector<PointSet> vSets = makeAllKinds(300);
    vSets.push_back({"strip", false, {}});
    for (int i = 0; i < 6000; ++i)
        vSets.back().points.emplace_back(i / 2, i % 2, 0);
    for (const PointSet& set : vSets) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.insert(set.points);
        const std::vector<Triangle2*> vTriangles = allTriangles(dt);
        for (int i = 0; i < 300; ++i) { // to vertices, on grid lines, outside and anywhere
            const double sx = i % 3 / 3.5, sy = i % 2 / 2.0; // shares of another place
            const Point2 a = pick(set.points), b = pick(set.points);
            const Point2 q(1.1 * sx * b.x() + (1 - sx) * a.x(), sy * b.y() + (1 - sy) * a.y(), 0);
            const Location found = dt.getImpl()->getMesh().locateFrom(&q, pick(vTriangles));
            for (int k = 0; k < 3; ++k) {
                const auto& c = found.pT->getCorners();
                const int side = exactOrientation(*c[(k + 1) % 3], *c[(k + 2) % 3], q);
                const bool bHere = found.kind == Location::AT_CORNER ? *c[k] == q : side == 0;
                if (found.kind != Location::OUTSIDE)
                    ASSERT_TRUE(side >= 0 && bHere == (k == found.idx));
                else
                    ASSERT_TRUE(k != found.idx || (side <= 0 && !found.pT->getOppositeTriangle(k)));
            }
        }
    }
}
