// The mesh as a file.
// Insertion is tested in insertion_test.cpp and bulk_test.cpp, the version in the consumer's check.
#include "testing.h"

TEST(ObjFile, ReadsBackAsTheSameMesh) {
    const ScratchDirectory directory;
    const CoutCapture quiet;
    for (const PointSet& set : makeAllKinds(200)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.insert(set.points);
        dt.writeObj("mesh.obj");
        std::ifstream file("mesh.obj");
        std::vector<Point2> v;
        std::set<Places> sTriangles;
        for (std::string kind, x, y, z; file >> kind >> x >> y >> z;) {
            if (kind == "v") { // each height is a position; streams do not read denormals
                v.emplace_back(std::strtod(x.c_str(), nullptr), std::strtod(y.c_str(), nullptr), 0);
                ASSERT_EQ(set.points.at(std::stoul(z)), v.back());
                continue;
            }
            const Point2 &a = v.at(std::stoul(x) - 1), &b = v.at(std::stoul(y) - 1),
                         &c = v.at(std::stoul(z) - 1);
            EXPECT_GT(exactOrientation(a, b, c), 0);
            sTriangles.insert(Places{{a.x(), a.y()}, {b.x(), b.y()}, {c.x(), c.y()}});
        }
        EXPECT_EQ(triangleSet(dt), sTriangles);
    }
}
