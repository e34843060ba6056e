// Geomview files: the objects that each write operation adds, their numbers, and what bad input gets.
// The page for the browser is tested in web_scene_test.cpp and in tests/web.
#include "testing.h"

#include <sstream>

// The words of a file with a blank behind each: Geomview knows no other difference.
static std::string getWords(const std::string& filename) {
    std::ifstream file(filename);
    std::string words;
    for (std::string word; file >> word;)
        words += word + " ";
    return words;
}

TEST(Geomview, EachOperationAddsItsObjectsAndBadInputNone) {
    const ScratchDirectory scratch;
    CoutCapture captured;
    // The edges are 9, 12 and 15 long, so the barycentre is (3, 4, 0) and a normal 12 long.
    std::vector<Point2> v = {Point2(0, 0, 0), Point2(9, 0, 0), Point2(0, 12, 0)};
    Triangle2 triangle;
    triangle.setProperties(&v[0], &v[1], &v[2]);
    const std::string color = "0 1 1 1";
    Visualizer3 out("objects.list");
    out.writeBall(v[1], 0.5);
    out.writePoint(v[2], 3, color);
    out.writePoints(std::vector<Point2*>{&v[0], &v[1]}, 5, color);
    out.writeSegments(std::vector<Edge2>{Edge2(&triangle, 2)}, color, true);
    out.writeSegments({Segment2(v[0], v[1]), Segment2(v[1], v[2])}, color, false);
    out.writeVertexPairs({{&v[1], &v[0]}, {&v[2], &v[1]}}, color);
    out.writeTriangles({&triangle}, color, true);
    out.writeTriangles(v, color, true);
    out.writeNormals({&triangle}, 0.25);
    EXPECT_EQ(captured.take(), "Visualizer3: Writing objects.list\n");
    // From here on nothing may be added.
    out.writeSegments(std::vector<Edge2>(), color, true);
    out.writePoints(std::vector<Point2*>(), 5, color);
    out.writeCubes(std::vector<Point2>(12), color);
    out.writeTriangles({v[0], v[1]}, color, true);
    out.closeFile();
    const std::string vect = "{ appearance{linewidth ",
                      dots = vect + "5} VECT 2 2 1 1 1 1 0 0 0 0 9 0 0 0 1 1 1 } ",
                      lines = vect + "1} VECT 2 4 1 2 2 1 0 0 0 0 9 0 0 9 0 0 0 12 0 0 1 1 1 } ",
                      mesh = "{ appearance { +edge } OFF 3 1 0 0 0 0 9 0 0 0 12 0 3 0 1 2 0 1 1 1 } " + vect +
                             "1} VECT 1 2 1 2 1 3 4 0 3 4 12 0 1 1 1 } ";
    EXPECT_EQ(
        getWords("objects.list"),
        "LIST { {appearance { +transparent material {alpha 0.6 diffuse 0.2 0.4 0 } } {SPHERE 0.5 9 0 0}} " +
            vect + "3} VECT 1 1 1 1 1 0 12 0 0 1 1 1 } " + dots + vect +
            "1} VECT 1 2 1 2 1 0 0 0 9 0 0 0 1 1 1 } " + dots + lines + lines + mesh + mesh + vect +
            "1} VECT 1 2 1 2 1 3 4 0 3 4 0.25 0 0 1 1 } } ");
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
    const std::vector<Point2> v(16, Point2(5.6e6 + 0.123456789, 1e-5, 123456789012345678.0));
    std::string head = "OFF 16 12 0 ";
    for (int i = 0; i < 16; ++i)
        head += "5600000.12345679 1e-05 1.23456789012346e+17 ";
    Visualizer3("cubes.list").writeCubes(v, "1 0 1 1");
    const std::string words = getWords("cubes.list");
    ASSERT_NE(words.find(head), std::string::npos) << words;
    std::istringstream faces(words.substr(words.find(head) + head.size()));
    std::set<std::pair<int, int>> sEdges;
    for (int n, a, b, c, d, color; faces >> n >> a >> b >> c >> d >> color >> color >> color >> color;)
        sEdges.insert({{a, b}, {b, c}, {c, d}, {d, a}});
    EXPECT_EQ(sEdges.size(), 48u); // 12 edges of each box, once from either side
    for (const auto& [from, to] : sEdges)
        EXPECT_EQ(sEdges.count({to, from}), 1u);
}

TEST(Geomview, TriangulationIsShownOnceItHasTriangles) {
    const ScratchDirectory scratch;
    CoutCapture captured;
    Kelm_2D dt;
    dt.showGeomview("all.list", "0 1 1 1");
    EXPECT_TRUE(captured.printed("Dt2::show(), ERROR: The triangulation is not full"));
    EXPECT_FALSE(std::filesystem::exists("all.list"));
    for (int i = 0; i < 100; ++i)
        dt.insert(Point2(i % 10, i / 10, i));
    Visualizer3 out("added.list");
    out.setBackfaces(true);
    dt.showGeomview(&out);
    out.closeFile();
    EXPECT_NE(getWords("added.list").find("material { backdiffuse .151 .0 .2 } } OFF 486 162 0 "),
              std::string::npos);
}

TEST(Geomview, NumbersThatAreNotFiniteAndNothingToWriteToAreMetWithWarnings) {
    const ScratchDirectory scratch;
    CoutCapture captured;
    Kelm_2D dt;
    for (const Point2& p : {Point2(0, 0, std::nan("")), Point2(1, 0, HUGE_VAL), Point2(0, 1, 3)})
        dt.insert(p);
    dt.writeObj("bad.obj");
    EXPECT_TRUE(captured.printed("2 heights are not finite"));
    dt.showGeomview("bad.list", "0 1 1 1");
    EXPECT_TRUE(captured.printed("2 numbers are not finite"));
    for (const std::string& words : {getWords("bad.obj"), getWords("bad.list")})
        EXPECT_TRUE(words.find("nan") == std::string::npos && words.find("inf") == std::string::npos);
    dt.writeWebScene(nullptr);
    dt.show(static_cast<Visualizer2*>(nullptr), true);
    const std::string text = captured.take();
    for (const char* warning :
         {"Dt2::writeWebScene(), WARNING: no path given", "Dt2::show(), WARNING: no visualizer"})
        EXPECT_NE(std::string::npos, text.find(warning));
    {
        Visualizer3 full("/dev/full"); // its destructor must not throw
        full.exceptions(std::ios::badbit | std::ios::failbit);
        EXPECT_THROW(
            {
                full.writeTriangles(std::vector<Point2>(30, Point2(1, 2, 3)), "0 1 1 1", true);
                full.flush();
            },
            std::ios::failure);
        Visualizer2 page("/dev/full");
        page.exceptions(std::ios::badbit | std::ios::failbit);
        EXPECT_THROW(page.writeFile(), std::ios::failure);
    }
}
