// Removal of vertices, inside and on the hull, down to nothing and up again, in long sequences of all
// operations that change a mesh. Each insertion on its own is tested in insertion_test.cpp and bulk_test.cpp.
#include "testing.h"

TEST(Removal, LongSequencesLeaveTheMeshOfWhatIsLeft) {
    std::mt19937_64 random(21);
    for (const PointSet& set : makeAllKinds(60)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.getImpl()->getMesh().setMinParallelInsertion(20);
        for (const std::size_t goal : {7, 60, 0, 60, 2, 30, 20, 60, 2, 40, 0, 50, 5, 60, 10}) {
            const bool bHull = random() % 2 == 0, bDown = goal < dt.numberOfPoints();
            dt.setNumCPU(dt.is2D() ? 1 + random() % 3 : 1); // or waiting vertices would stay out
            std::vector<Point2*> vHandles;
            if (goal == 60) dt.insert(set.points, vHandles);
            for (std::size_t i = 0; i < vHandles.size(); ++i)
                ASSERT_EQ(set.points[i], *vHandles[i]);
            while (dt.numberOfPoints() != std::min(goal, countPlaces(set.points))) {
                std::vector<Point2*> v = hullVertices(dt);
                if (!bHull || v.empty()) dt.getVertexPointers(v);
                Point2* pVtx = bDown ? v[random() % v.size()] : nullptr;
                bDown ? dt.remove(pVtx) : void(dt.insert(set.points[random() % 60]));
                ASSERT_TRUE(!bDown || pVtx->getIncidentTriangle() == nullptr);
                ASSERT_VALID_MESH(dt);
            }
            ASSERT_VALID_MESH(dt);
            Kelm_2D fresh;
            for (const Point2* pVtx : allVertices(dt))
                fresh.insert(*pVtx);
            ASSERT_EQ(fresh.numberOfPoints(), dt.numberOfPoints());
            ASSERT_TRUE(!set.bGeneral || triangleSet(fresh) == triangleSet(dt));
        }
    }
}

TEST(Removal, CentreOfManyCocircularVertices) {
    Kelm_2D dt;
    for (const PointSet& set : makeAllKinds(2000))
        if (set.name == "integer circle") dt.insert(set.points);
    Point2* pCentre = dt.insert({0, 0, 0});
    ASSERT_EQ(dt.numberOfPoints() - 1, dt.numberOfTriangles()); // each has the centre
    dt.remove(pCentre);
    ASSERT_VALID_MESH(dt);
}
