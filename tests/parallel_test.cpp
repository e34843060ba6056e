// Bulk insertion with several threads: the same mesh as with one, whatever the points and the number of
// threads. Keys and sorts on threads are tested with the vault and in hilbert_test.cpp.

#include "testing.h"

namespace {

void insertInParallel(Kelm_2D& dt, int numCPU, const std::vector<Point2>& v, std::vector<Point2*>& vHandles) {
    dt.setNumCPU(numCPU);
    dt.getImpl()->getMesh().setMinParallelInsertion(1000);
    dt.insert(v, vHandles);
    ASSERT_VALID_MESH(dt);
    for (std::size_t i = 0; i < v.size(); ++i)
        ASSERT_EQ(v[i], *vHandles[i]);
}

} // namespace

TEST(ParallelInsertion, RepeatedOnesGrowTheMeshAndHullRemovalStillWorks) {
    for (int numCPU : {2, 8}) {
        Kelm_2D dt;
        std::vector<Point2*> vHandles;
        for (unsigned round = 0; round < 6; ++round) {
            SCOPED_TRACE(testing::Message() << "CPUs: " << numCPU << ", round " << round);
            // Each round covers the one before and reaches further; every third point was there already.
            std::mt19937_64 random(round);
            std::uniform_real_distribution<double> uniform(-100.0 * (round + 1), 50.0 * (round + 1));
            std::vector<Point2> v;
            for (unsigned i = 0; i < 3000; ++i) {
                const double x = uniform(random), y = uniform(random);
                const Point2 fresh(round % 2 == 0 ? x : std::floor(x), y, i);
                v.push_back(i % 3 == 0 && round != 0 ? *vHandles[i] : fresh);
            }
            insertInParallel(dt, numCPU, v, vHandles);
        }
        for (unsigned i = 0; i < 300; ++i)
            dt.remove(vHandles[9 * i + 1]);
        ASSERT_VALID_MESH(dt);
    }
}

TEST(ParallelInsertion, RandomShapesManyTimesOver) {
    // Small runs with many chunks in conflict: strips, blobs far apart, lines, all on shifting coordinates.
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937_64 random(seed);
        std::uniform_real_distribution<double> uniform(0.0, 1.0);
        const double width = std::pow(10.0, uniform(random) * 6 - 3), shift = (uniform(random) - 0.5) * 1e7;
        std::vector<Point2> v;
        for (unsigned i = 0; i < 2500; ++i) {
            const double blob = i % (1 + seed % 7) * 50.0 * width;
            const double x = shift + blob + width * uniform(random), y = uniform(random);
            v.emplace_back(seed % 3 == 0 ? std::round(x) : x, seed % 5 == 0 ? std::round(y * 30) : y - shift,
                           0.0);
        }
        Kelm_2D dt;
        std::vector<Point2*> vHandles;
        insertInParallel(dt, 2 + static_cast<int>(seed % 4), v, vHandles);
    }
}

TEST(ParallelInsertion, BoxOfAFewUnitsInTheLastPlaceLosesNoPoint) {
    // No frame fits around such a box between neighbouring doubles.
    for (double base : {1e16, 9007199254740992.0, 1.0, -1e16}) {
        const double step = std::nextafter(std::fabs(base), INFINITY) - std::fabs(base);
        for (int side : {2, 3, 6, 41}) {
            SCOPED_TRACE(testing::Message() << base << ", " << side << " doubles wide");
            std::vector<Point2> v;
            for (int i = 0; i < 2000; ++i)
                v.emplace_back(base + i % side * step, base + i / side % side * step, i);
            Kelm_2D dt;
            std::vector<Point2*> vHandles;
            insertInParallel(dt, 2, v, vHandles);
        }
    }
}
