// Removal of vertices, inside and on the hull, down to nothing and up again.
// That insertion is valid is tested in insertion_test.cpp and bulk_test.cpp.
#include "testing.h"

#include <chrono>

TEST(Removal, LongSequencesLeaveTheMeshOfWhatIsLeft) {
    std::mt19937_64 random(21);
    for (const PointSet& set : makeAllKinds(60)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        for (const std::size_t goal : {60, 0, 60, 2, 30, 20, 60, 2, 40, 0, 50, 5, 60, 10}) {
            const bool bHull = random() % 2 == 0, bDown = goal < dt.numberOfPoints();
            if (goal == 60) dt.insert(set.points);
            while (dt.numberOfPoints() != std::min(goal, countPlaces(set.points))) {
                std::vector<Point2*> v = hullVertices(dt);
                if (!bHull || v.empty()) dt.getVertexPointers(v);
                Point2* pVtx = bDown ? v[random() % v.size()] : nullptr;
                bDown ? dt.remove(pVtx) : void(dt.insert(set.points[random() % 60]));
                ASSERT_TRUE(!bDown || pVtx->getIncidentTriangle() == nullptr);
                ASSERT_VALID_MESH(dt);
            }
            ASSERT_VALID_MESH(dt);
            std::vector<Point2*> vLeft;
            dt.getVertexPointers(vLeft);
            Kelm_2D fresh;
            for (const Point2* pVtx : vLeft)
                fresh.insert(*pVtx);
            ASSERT_EQ(vLeft.size(), dt.numberOfPoints());
            ASSERT_TRUE(!set.bGeneral || triangleSet(fresh) == triangleSet(dt));
        }
    }
}

TEST(HullRemoval, FanOfManyTrianglesGoesInLinearTime) {
    constexpr int n = 100000;
    std::vector<Point2> v{{0.5 * n, 1e6, 0}};
    for (int i = 0; i < n; ++i)
        v.emplace_back(i, 0, 0);
    Kelm_2D dt;
    std::vector<Point2*> vHandles;
    dt.insert(v, vHandles);
    ASSERT_EQ(n - 1U, dt.numberOfTriangles());
    const auto start = std::chrono::steady_clock::now();
    dt.getImpl()->getMesh().remove(vHandles[0], true);
    // Milliseconds, where a quadratic cost takes minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_FALSE(dt.is2D());
    ASSERT_VALID_MESH(dt);
    dt.insert(v[0]);
    ASSERT_VALID_MESH(dt);
    EXPECT_EQ(n - 1U, dt.numberOfTriangles());
}

TEST(Removal, CentreOfManyCocircularVertices) {
    std::vector<Point2> v{{0, 0, 0}};
    for (const PointSet& set : makeAllKinds(2000)) {
        if (set.name == "integer circle") v.insert(v.end(), set.points.begin(), set.points.end());
    }
    Kelm_2D dt;
    std::vector<Point2*> vHandles;
    dt.insert(v, vHandles);
    ASSERT_EQ(dt.numberOfPoints() - 1, dt.numberOfTriangles()); // each has the centre
    dt.remove(vHandles[0]);
    ASSERT_VALID_MESH(dt);
}

TEST(Removal, CostsLittleAmongEqualKeysInTheUnsortedTailAndOnALine) {
    // Seconds in all, where a search through all vertices for each takes minutes.
    constexpr int n = 100000;
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> unit(0, 1);
    std::vector<Point2> v;
    for (int i = 0; i < n; ++i)
        v.emplace_back(unit(random), unit(random), 0);
    for (const double far : {1e7, 1.0}) { // beside a point far off all others share one key
        v.emplace_back(far, far, 0);
        Kelm_2D dt;
        std::vector<Point2*> vHandles;
        dt.insert(v, vHandles);
        std::vector<Point2*> vSingle;
        for (int i = 0; i < n / 4; ++i)
            vSingle.push_back(dt.insert({unit(random), unit(random), 0}));
        for (int i = 0; i < n / 2; ++i)
            dt.remove(i < n / 4 ? vSingle[static_cast<std::size_t>(i)]
                                : vHandles[static_cast<std::size_t>(i)]);
        EXPECT_EQ(v.size() - n / 4, dt.numberOfPoints());
        ASSERT_VALID_MESH(dt);
    }
    Kelm_2D line;
    std::vector<Point2*> vWaiting;
    for (int i = 0; i < n; ++i)
        vWaiting.push_back(line.insert({1.0 * i, 0, 0}));
    for (int i = 0; i < n - 10; ++i) { // from all over, the first two early
        line.remove(vWaiting[static_cast<std::size_t>(i * 7919L % n)]);
        if (i % 4 == 0) line.insert({n + 1.0 * i, 0, 0});
    }
    EXPECT_FALSE(line.is2D());
    const unsigned numLeft = 10 + (n - 10 + 3) / 4;
    EXPECT_EQ(numLeft, line.numberOfPoints());
    line.insert({5, 5, 0});
    EXPECT_EQ(numLeft - 1, line.numberOfTriangles());
    ASSERT_VALID_MESH(line);
}

TEST(Removal, MisuseWarnsAndChangesNothing) {
    CoutCapture capture;
    Kelm_2D dt;
    Point2 *p = dt.insert({0, 0, 0}), *q = dt.insert({1, 1, 0}), loose(1, 0.5, 0);
    for (int i = 0; i < 2; ++i) { // before there are triangles the second time does nothing
        dt.remove(p);
        EXPECT_EQ(1U, dt.numberOfPoints());
    }
    EXPECT_NE(p, dt.insert({0, 0, 0})); // its storage is not used again
    dt.insert({2, 0, 0});
    for (Point2* pBad : {static_cast<Point2*>(nullptr), p, &loose}) {
        dt.remove(pBad);
        EXPECT_TRUE(capture.printed(
            pBad == nullptr ? "Dt2::remove(..), WARNING: pVtx==NULL, illegal, return."
                            : "Dt2::remove(), WARNING: vertex does not belong to the triangulation, return"));
        EXPECT_EQ(1U, dt.numberOfTriangles());
        ASSERT_VALID_MESH(dt);
    }
    Kelm_2D other; // whose vertices are no vertices here
    for (const Point2& at : {Point2(0, 0, 0), Point2(3, 0, 0), Point2(0, 3, 0), Point2(1, 1, 0)}) {
        Point2* pForeign = other.insert(at);
        dt.remove(pForeign);
        EXPECT_NE("", capture.take());
    }
    EXPECT_TRUE(dt.numberOfTriangles() == 1 && other.numberOfTriangles() == 3);
    ASSERT_VALID_MESH(other);
    dt.remove(q);
    EXPECT_TRUE(!dt.is2D() && dt.numberOfTriangles() == 0 && dt.numberOfPoints() == 2);
    EXPECT_EQ("", capture.take());
}
