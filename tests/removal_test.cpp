// Removal of hull vertices, down to nothing and up again.
// That insertion is valid is tested in insertion_test.cpp and bulk_test.cpp.
#include "Dt2.h"
#include "pointSets.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

using namespace QUOR_KELM25D;
using namespace QUOR_KELM25D::testing_support;

TEST(HullRemoval, MeshIsValidDownToNothingAndUpAgain) {
    std::mt19937_64 random(21);
    for (const PointSet& set : makeAllKinds(50)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.insert(set.points);
        for (int round = 0; round < 3; ++round) {
            for (unsigned n = dt.numberOfPoints(); n > 0; --n) {
                std::vector<Point2*> vCandidates = hullVertices(dt);
                if (vCandidates.empty()) dt.getVertexPointers(vCandidates);
                Point2* pVtx = vCandidates[random() % vCandidates.size()];
                dt.getImpl()->remove(pVtx, true);
                ASSERT_EQ(nullptr, pVtx->getIncidentTriangle());
                ASSERT_EQ(n - 1, dt.numberOfPoints());
                ASSERT_VALID_MESH(dt);
                if (round == 0 && n == 20) break; // up again from the middle too
            }
            dt.setNumCPU(1 + round);
            if (round != 1) dt.insert(set.points);
            for (const Point2& p : set.points) {
                dt.insert(p);
                ASSERT_VALID_MESH(dt);
            }
            ASSERT_EQ(countPlaces(set.points), dt.numberOfPoints());
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
    dt.getImpl()->remove(vHandles[0], true);
    // Milliseconds, where a quadratic cost takes minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
    EXPECT_FALSE(dt.is2D());
    ASSERT_VALID_MESH(dt);
    dt.insert(v[0]);
    ASSERT_VALID_MESH(dt);
    EXPECT_EQ(n - 1U, dt.numberOfTriangles());
}
