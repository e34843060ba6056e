// Geomview files: the objects that each write operation adds, their numbers, and what bad input gets.
// The page for the browser is tested in web_scene_test.cpp and in tests/web.
#include "CoutCapture.h"
#include "ScratchDirectory.h"

#include <kelm25d/Kelm_2D.h>
#include <kelm25d/Visualizer3.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <limits>
#include <set>
#include <sstream>

using namespace QUOR_KELM25D;

// The words of a file with a blank behind each: Geomview knows no other difference.
static std::string getWords(const std::string& filename) {
    std::ifstream file(filename);
    std::string words;
    for (std::string word; file >> word;)
        words += word + " ";
    return words;
}

TEST(Geomview, EachOperationAddsItsObjects) {
    const ScratchDirectory scratch;
    CoutCapture captured;
    // The edges are 9, 12 and 15 long, so the barycentre is (3, 4, 0) and a normal 12 long.
    std::vector<Point2> v = {Point2(0, 0, 0), Point2(9, 0, 0), Point2(0, 12, 0)};
    Triangle2 triangle;
    triangle.setProperties(&v[0], &v[1], &v[2]);
    const std::string color = "0 1 1 1";
    Visualizer3 out("objects.list");
    out.writeBall(v[1], 0.5);
    std::string expected =
        "LIST { {appearance { +transparent material {alpha 0.6 diffuse 0.2 0.4 0 } } {SPHERE 0.5 9 0 0}} ";
    const std::string dots = "{ appearance{linewidth 5} VECT 2 2 1 1 1 1 0 0 0 0 9 0 0 0 1 1 1 } ";
    out.writePoint(v[2], 3, color);
    out.writePoints(std::vector<Point2>{v[0], v[1]}, 5, color);
    out.writePoints(std::vector<Point2*>{&v[0], &v[1]}, 5, color);
    expected += "{ appearance{linewidth 3} VECT 1 1 1 1 1 0 12 0 0 1 1 1 } " + dots + dots;
    const std::string line = "{ appearance{linewidth 1} VECT 1 2 1 2 1 0 0 0 9 0 0 0 1 1 1 } " + dots;
    out.writeSegment(v[0], v[1], color, true);
    out.writeSegments(std::vector<Edge2>{Edge2(&triangle, 2)}, color, true);
    const std::string lines =
        "{ appearance{linewidth 1} VECT 2 4 1 2 2 1 0 0 0 0 9 0 0 9 0 0 0 12 0 0 1 1 1 } ";
    out.writeSegments({Segment2(v[0], v[1]), Segment2(v[1], v[2])}, color, false);
    out.writeVertexPairs({{&v[1], &v[0]}, {&v[2], &v[1]}}, color);
    expected += line + line + lines + lines;
    const std::string mesh = "{ appearance { +edge } OFF 3 1 0 0 0 0 9 0 0 0 12 0 3 0 1 2 0 1 1 1 } ";
    const std::string normal = "{ appearance{linewidth 1} VECT 1 2 1 2 1 3 4 0 3 4 12 0 1 1 1 } ";
    out.writeTriangle(triangle, color);
    out.writeTriangles({&triangle}, color, true);
    out.writeTriangles(v, color, true);
    out.writeNormals({&triangle}, 0.25);
    expected += mesh + mesh + normal + mesh + normal;
    expected += "{ appearance{linewidth 1} VECT 1 2 1 2 1 3 4 0 3 4 0.25 0 0 1 1 } ";
    EXPECT_EQ(captured.take(), "Visualizer3: Writing objects.list\n");
    // From here on nothing may be added.
    out.writeSegments(std::vector<Edge2>(), color, true);
    out.writePoints(std::vector<Point2*>(), 5, color);
    out.writeCubes(std::vector<Point2>(12), color);
    out.writeTriangles({v[0], v[1]}, color, true);
    out.closeFile();
    EXPECT_EQ(getWords("objects.list"), expected + "} ");
    out.openFile("missing/objects.list");
    const std::string said = captured.take();
    for (const char* text :
         {"WARNING: Visualizer3::writePoints: no points", "must be a multiple of 8, it is 12",
          "must be a multiple of 3, it is 2", "WARNING: missing/objects.list not writeable"})
        EXPECT_NE(said.find(text), std::string::npos) << said;
}

TEST(Geomview, CubesAreClosedBoxesAndNumbersHave15Digits) {
    const ScratchDirectory scratch;
    const CoutCapture captured;
    std::vector<Point2> v;
    std::ostringstream expected;
    expected.precision(15);
    for (double z : {1.0 / 3, std::numeric_limits<double>::max(), -0.0, 123456789012345678.0}) {
        for (double side : {0.0, 1.0, 2.0, 3.0})
            v.emplace_back(side == 1 || side == 2 ? 5.6e6 + 0.123456789 : 1e-5, side >= 2 ? 1e15 : 0.1, z);
    }
    for (const Point2& p : v)
        expected << " " << p.x() << " " << p.y() << " " << p.z();
    Visualizer3("cubes.list").writeCubes(v, "1 0 1 1");
    EXPECT_NE(getWords("cubes.list").find("OFF 16 12 0" + expected.str() + " 4 "), std::string::npos);
    std::set<std::pair<int, int>> sEdges;
    std::ifstream file("cubes.list");
    for (std::string text; std::getline(file, text);) {
        int a[4];
        if (std::sscanf(text.c_str(), "4 %d %d %d %d", &a[0], &a[1], &a[2], &a[3]) != 4) continue;
        for (int i = 0; i < 4; ++i)
            sEdges.emplace(a[i], a[(i + 1) % 4]);
    }
    EXPECT_EQ(sEdges.size(), 48u); // 12 edges of each box, once from either side
    for (const auto& edge : sEdges)
        EXPECT_EQ(sEdges.count({edge.second, edge.first}), 1u);
}

TEST(Geomview, TriangulationIsShownOnceItHasTriangles) {
    const ScratchDirectory scratch;
    CoutCapture captured;
    Kelm_2D dt;
    dt.showGeomview("all.list", "0 1 1 1");
    EXPECT_NE(captured.take().find("Dt2::show(), ERROR: The triangulation is not full"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists("all.list"));
    for (int i = 0; i < 100; ++i)
        dt.insert(Point2(i % 10, i / 10, i));
    dt.showGeomview("all.list", "0 1 1 1");
    EXPECT_EQ(getWords("all.list").rfind("LIST { { appearance { +edge } OFF 486 162 0 ", 0), 0u);
    Visualizer3 out("added.list");
    out.setBackfaces(true);
    dt.showGeomview(&out);
    out.closeFile();
    EXPECT_NE(getWords("added.list").find("{ backdiffuse .151 .0 .2 } } OFF 486 162 0 "), std::string::npos);
}
