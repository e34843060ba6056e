// Long random sequences of all operations that change a mesh.
// Each on its own is tested in insertion_test.cpp, bulk_test.cpp and removal_test.cpp.
#include "testing.h"

TEST(Soak, RandomOperationsKeepTheMeshValid) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr unsigned numMeshes = 12;
#else
    constexpr unsigned numMeshes = 100;
#endif
    for (unsigned seed = 1; seed <= numMeshes; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937_64 random(seed);
        Kelm_2D dt;
        double size = 8.0; // half of the points are on the integer grid, with many duplicates at first
        const auto place = [&] {
            const double x = size * std::ldexp(1.0 * random(), -64),
                         y = size * std::ldexp(1.0 * random(), -64);
            return random() % 2 != 0 ? Point2(x, y, 0) : Point2(std::round(x), -std::round(y), 0);
        };
        for (int i = 1; i <= 5000; ++i) {
            const unsigned choice = random() % 1000;
            std::vector<Point2*> vVertices;
            if (choice < 2) {
                size *= 1.5;
            } else if (choice < 20) {
                dt.setNumCPU(dt.is2D() ? 1 + random() % 3 : 1); // or waiting vertices would stay out
                std::vector<Point2> v(random() % 30);
                std::generate(v.begin(), v.end(), place);
                dt.insert(v);
            } else if (choice < 600 + 100 * (seed % 4)) {
                const Point2 p = place();
                ASSERT_EQ(p, *dt.insert(p));
            } else if (dt.numberOfPoints() != 0) {
                vVertices = hullVertices(dt);
                if (!dt.is2D()) dt.getVertexPointers(vVertices);
                dt.getImpl()->getMesh().remove(vVertices[random() % vVertices.size()], true);
            }
            if (i == 2500) {
                ASSERT_VALID_MESH(dt);
            }
        }
        ASSERT_VALID_MESH(dt);
    }
}
