// Geomview files: the objects that each write operation adds, their numbers, and what can't be written.
// The page for the browser is tested in web_scene_test.cpp and in tests/web.
#include "testing.h"

#include <functional>
#include <regex>
#include <sstream>

namespace {

// The words of a file with one blank between them: Geomview knows no other difference.
std::string getWords(const std::string& filename) {
    return std::regex_replace(readFile(filename), std::regex("\\s+"), " ");
}

} // namespace

TEST(Geomview, EachOperationWritesItsPlaces) {
    const ScratchDirectory scratch;
    const CoutCapture quiet;
    // The edges are 9, 12 and 15 long, so the barycentre is (3, 4, 0) and a normal 12 long.
    std::vector<Point2> v = {Point2(0, 0, 0), Point2(9, 0, 0), Point2(0, 12, 0)};
    Triangle2 triangle;
    triangle.setProperties(&v[0], &v[1], &v[2]);
    const std::string lines = "VECT 2 4 1 2 2 1 0 0 0 0 9 0 0 9 0 0 0 12 0 0 1 1 1 } } ",
                      mesh = "OFF 3 1 0 0 0 0 9 0 0 0 12 0 3 0 1 2 0 1 1 1 } { appearance{linewidth 1} "
                             "VECT 1 2 1 2 1 3 4 0 3 4 12 0 1 1 1 } } ",
                      dots = "{linewidth 5} VECT 2 2 1 1 1 1 0 0 0 0 9 0 0 0 1 1 1 } } ";
    const std::string color = "0 1 1 1";
    const std::vector<Point2*> vEnds{&v[0], &v[1]};
    const std::vector<Edge2> vEdges{{&triangle, 2}};
    const std::vector<Segment2> vSegments{{v[0], v[1]}, {v[1], v[2]}};
    const std::vector<VertexPair2> vPairs{{&v[1], &v[0]}, {&v[2], &v[1]}};
    const std::pair<std::string, std::function<void(Visualizer3&)>> aCase[] = {
        {"{SPHERE 0.5 9 0 0}} } ", [&](auto& out) { out.writeBall(v[1], 0.5); }},
        {"{linewidth 3} VECT 1 1 1 1 1 0 12 0 0 1 1 1 } } ",
         [&](auto& out) { out.writePoint(v[2], 3, color); }},
        {dots, [&](auto& out) { out.writePoints(vEnds, 5, color); }},
        {dots, [&](auto& out) { out.writeSegments(vEdges, color, true); }},
        {lines, [&](auto& out) { out.writeSegments(vSegments, color, false); }},
        {lines, [&](auto& out) { out.writeVertexPairs(vPairs, color); }},
        {mesh, [&](auto& out) { out.writeTriangles({&triangle}, color, true); }},
        {mesh, [&](auto& out) { out.writeTriangles(v, color, true); }},
        {"VECT 1 2 1 2 1 3 4 0 3 4 0.25 0 0 1 1 } } ",
         [&](auto& out) { out.writeNormals({&triangle}, 0.25); }}};
    for (const auto& [end, write] : aCase) {
        {
            Visualizer3 out("objects.list");
            write(out);
        }
        const std::string words = getWords("objects.list");
        EXPECT_TRUE(words.find("LIST { ") == 0 && words.rfind(end) == words.size() - end.size()) << words;
    }
}

TEST(Geomview, CubesAreClosedBoxesAndNumbersHave15Digits) {
    const ScratchDirectory scratch;
    const CoutCapture quiet;
    const std::vector<Point2> v(16, Point2(5.6e6 + 0.123456789, 1e-5, 123456789012345678.0));
    Visualizer3("cubes.list").writeCubes(v, "1 0 1 1");
    const std::string words = getWords("cubes.list");
    EXPECT_NE(words.find("OFF 16 12 0 5600000.12345679 1e-05 1.23456789012346e+17 "), std::string::npos);
    std::istringstream faces(words.substr(words.rfind("e+17 ") + 5));
    std::set<std::pair<int, int>> sEdges;
    for (int n, a, b, c, d, color; faces >> n >> a >> b >> c >> d >> color >> color >> color >> color;)
        sEdges.insert({{a, b}, {b, c}, {c, d}, {d, a}});
    EXPECT_EQ(sEdges.size(), 48u); // 12 edges of each box, once from either side
    for (const auto& [from, to] : sEdges)
        EXPECT_EQ(sEdges.count({to, from}), 1u);
}

TEST(Geomview, MeshIsShownWholeWithNumbersThatAreFinite) {
    const ScratchDirectory scratch;
    const CoutCapture quiet;
    Kelm_2D dt;
    for (int i = 0; i < 100; ++i)
        dt.insert(Point2(i % 10, i / 10, i == 7 ? std::nan("") : i == 8 ? HUGE_VAL : i));
    Visualizer3 out("added.list");
    out.setBackfaces(true);
    dt.showGeomview(&out);
    out.closeFile();
    dt.writeObj("bad.obj");
    const std::string words = getWords("added.list") + getWords("bad.obj");
    EXPECT_NE(words.find("material { backdiffuse .151 .0 .2 } } OFF 486 162 0 "), std::string::npos);
    EXPECT_TRUE(words.find("nan") == std::string::npos && words.find("inf") == std::string::npos);
}

TEST(Geomview, FullDiskThrowsWhereAskedToButNotFromDestructors) {
    const CoutCapture quiet;
    Visualizer3 full("/dev/full");
    Visualizer2 page("/dev/full");
    full.exceptions(std::ios::badbit | std::ios::failbit);
    page.exceptions(std::ios::badbit | std::ios::failbit);
    full.writeBall({1, 2, 3}, 4);
    EXPECT_THROW(full.flush(), std::ios::failure);
    EXPECT_THROW(page.writeFile(), std::ios::failure);
}
