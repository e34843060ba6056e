// Drawings as PostScript pages, as far as their text tells; whether it is PostScript is Ghostscript's matter,
// see web/write_pictures.cpp. Pictures in space are tested in geomview_test.cpp.
#include "testing.h"

#include <locale>

using namespace std::string_literals;

namespace {

struct Drawing : testing::Test {
    const ScratchDirectory directory;
    CoutCapture capture;
};

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t n = 0;
    for (std::size_t i = text.find(part); i != std::string::npos; i = text.find(part, i + 1))
        ++n;
    return n;
}

} // namespace

TEST_F(Drawing, ColorNamesCycleWithoutYellowAndWhite) {
    Color::currentColorName = 0;
    for (unsigned i = 1; i < 32; ++i)
        ASSERT_EQ(i % 15, Color::getNextColorName());
    EXPECT_EQ(Color(0.823, 0.705, 0.549, 2, true), Color(CLIGHTBROWN, 2, true));
}

TEST_F(Drawing, EveryMeshIsDrawnInShortPathsOfOnePen) {
    for (const PointSet& set : makeAllKinds(300)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.insert(set.points);
        dt.show("mesh.ps", true);
        std::ifstream file("mesh.ps");
        std::size_t numLines = 0, numInPath = 0, numPens = 0;
        for (std::string line; std::getline(file, line);) {
            numPens += countOf(line, "0.01\tsetlinewidth");
            numLines += numPens * countOf(line, "lineto");
            numInPath = line == "stroke" ? 0 : numInPath + countOf(line, "lineto");
            ASSERT_LT(numInPath, 32U);
        }
        ASSERT_EQ(dt.is2D() ? dt.numberOfPoints() + dt.numberOfTriangles() - 1 : 0, numLines);
    }
}

TEST_F(Drawing, ObjectsComeInLayersAndEndMarksOnce) {
    Point2 a(0, 0, 0), b(10, 0, 0), c(0, 5, 0);
    const Color plain(CBLUE, 1, false), filled(CRED, 2, true);
    {
        Visualizer2 vis("layers.ps");
        Triangle2 triangle;
        triangle.setProperties(&a, &b, &c);
        vis.addObject(Label(Point2(1, 1, 0), "one\ntwo", true, 8), plain);
        vis.addObject(std::vector<Point2*>{&a, &b}, plain);
        vis.addObject(Circle2(5, 2, 4), filled);
        vis.addObject(std::vector<Segment2>{{a, b}, {b, c}}, filled);
        vis.addObject(Edge2(&triangle, 0), plain);
        vis.addObject(std::vector<Triangle2*>{&triangle}, filled);
        a = Point2(-99, 0, 0); // the picture has copies
    }
    EXPECT_TRUE(capture.printed("to complete an unfinished visualization [layers.ps]"));
    const std::string page = readFile("layers.ps");
    std::size_t at = 0; // the triangle, segments, end marks, the circle, point marks, the label with its mark
    for (const char* part :
         {"50\t200\tmoveto", "530\t200\tlineto", "closepath", "50\t200\tmoveto\n530\t200\tlineto",
          "46\t204\tmoveto", "arc", "49\t199\tmoveto", "(one)\tshow", "(two)\tshow", "lineto"}) {
        at = page.find(part, at);
        ASSERT_NE(std::string::npos, at) << part;
    }
    EXPECT_EQ(2U + 3 + 3 * 2 + 2 * 2 + 2, countOf(page, "lineto")); // three of the ends are different
    EXPECT_EQ(2U, countOf(page, "fill\n"));
}

TEST_F(Drawing, AnyTextAndAnyLocaleGiveAReadablePage) {
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\1"; }
    };
    const std::string name = "a(b\\)\n(\177.ps", wild = "((\\\t) %\r\\";
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Commas));
    Visualizer2 vis(name);
    vis.addObject(Label(Point2(0.5, 0, 0), wild, false, 8), Color(CRED, 0.125F, false));
    vis.addObject(Point2(12345678.0, 0, 0), Color(HUGE_VAL, std::nan(""), 0, 1, false));
    vis.addHeaderLine(std::string(130, '.'));
    vis.addHeaderLine(wild);
    vis.writeFile();
    std::locale::global(former);
    const std::string page = readFile(name);
    for (const std::string& text :
         {"(a\\(b\\\\\\)\\012\\(\\177.ps)"s, "(x-Range: [0.5 - 1.23457e+07] =1.23457e+07)"s,
          "(" + std::string(120, '.') + ")"})
        EXPECT_EQ(1U, countOf(page, text + "\tshow\n")) << text;
    EXPECT_EQ(2U, countOf(page, "(\\(\\(\\\\\\011\\) %\\015\\\\)\tshow\n")) << page;
    EXPECT_EQ(0U, countOf(page, "nan") + countOf(page, "inf")); // a page has no word for these
}

TEST_F(Drawing, PointsWithoutExtentAreCentredAndUnusableObjectsLeftOut) {
    for (const double half : {0.0, 3e-324, 1e300}) {
        Visualizer2 vis("odd.ps");
        for (const Point2& p : {Point2(), Point2(HUGE_VAL, 0, 0), Point2(0, std::nan(""), 0)})
            vis.addObject(Segment2(Point2(0, 0, 0), p), Color());
        vis.addObject(Circle2(0, HUGE_VAL, 1), Color());
        vis.addObject(std::vector<Point2>{{half, -half, 0}, {-half, half, 0}}, Color(CBLUE, 1, false));
        vis.writeFile();
        EXPECT_TRUE(capture.printed("leaving out objects without finite coordinates: 4"));
        const std::string page = readFile("odd.ps"); // marks reach 1 to either side
        EXPECT_EQ(half > 0 ? 1U : 0U,
                  countOf(page, "\n531\t201\tlineto") * countOf(page, "\n51\t681\tlineto"));
        EXPECT_EQ(half > 0 ? 0U : 2U, countOf(page, "\n291\t441\tlineto"));
        EXPECT_EQ(4U, countOf(page, "lineto"));
    }
}
