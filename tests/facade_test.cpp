// The mesh as a file.
// Insertion is tested in insertion_test.cpp and bulk_test.cpp, the version in the consumer's check.
#include "testing.h"

TEST(Facade, SettingsAndReadersAnswerAsWrittenDown) {
    const CoutCapture quiet;
    Kelm_2D dt(0);
    EXPECT_TRUE(dt.setNumCPU(5) == 5 && dt.setNumCPU(-5) == 1 && dt.setNumCPU(0) >= 1 && dt.getName() == "");
    dt.setName("hill");
    EXPECT_EQ("hill", dt.getName());
    std::vector<Point2> vPoints(1), vCorners;
    std::vector<int> vIndices;
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    EXPECT_FALSE(reconstruct(vPoints, vCorners) || reconstruct(vPoints, vIndices) || reconstruct("a", "b"));
    std::vector<Triangle2*> vTriangles(3);
    std::vector<Point2*> vVertices(3);
    dt.insert(vCorners);
    dt.getTrianglePointers(vTriangles);
    dt.getVertexPointers(vVertices);
    EXPECT_TRUE(vTriangles.empty() && vVertices.empty() && !dt.is2D());
    EXPECT_EQ(ORIENTATION2_CCW, dt.getOrientation({0, 0, 0}, {1, 0, 0}, {0, 1e-300, 0}));
}

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
