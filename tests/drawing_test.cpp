// Drawings as PostScript pages, read back command by command.
// Pictures in space are tested elsewhere.
#include "testing.h"

#include <locale>
#include <regex>

namespace {

struct Page {
    std::string order;               // of the picture: a letter for each command that paints, pens, texts
    std::vector<double> vXs, vYs;    // of the ends of its lines
    std::vector<std::string> vTexts; // as they stand, header included
};

// Fails for every line that an interpreter would stumble over, such as one with a number that is not finite.
Page readPage(const std::string& name) {
    const std::string number = R"(-?\d+(\.\d+)?(e[-+]\d+)?\s+)",
                      text = R"(\(([^()\\]|\\[()\\]|\\[01][0-7]{2})*\))";
    const std::regex command(
        "\\s*(%.*|[a-z]+(path|restore|page|font)|stroke|fill|gsave|" + text + "\tshow|(" + number +
        "){2}(move|line)to|(" + number + "){5}arc|" + number + "setlinewidth|(" + number +
        "){3}setrgbcolor|0.3 0.3 .3 setrgbcolor|/[-a-zA-Z]+ findfont " + number + "scalefont)");
    const std::map<std::string, char> mLetters{
        {"lineto", '-'}, {"arc", 'o'}, {"stroke", '|'}, {"fill", 'f'}, {"showpage", '.'}};
    std::ifstream file(name);
    Page page;
    for (std::string line, formerLine; std::getline(file, line); formerLine = line) {
        EXPECT_TRUE(std::regex_match(line, command)) << line;
        const std::string word = line.substr(line.find_last_of(" \t") + 1);
        if (word == "show") page.vTexts.push_back(line.substr(line.find('(')));
        if (page.order.empty() && word != "stroke") continue; // the header has none
        if (mLetters.count(word) > 0) page.order += mLetters.at(word);
        if (word == "setrgbcolor") page.order += "Bgr"[std::lround(std::stod(line) * 2)];
        if (word == "show") page.order += page.vTexts.back();
        for (const std::string& end : {formerLine, line}) {
            if (word != "lineto") continue;
            page.vXs.push_back(std::stod(end));
            page.vYs.push_back(std::stod(end.substr(end.find('\t'))));
        }
    }
    return page;
}

class Drawing : public ::testing::Test {
protected:
    const ScratchDirectory directory;
    CoutCapture capture;
};

} // namespace

TEST_F(Drawing, ColorNamesCycleWithoutYellowAndWhiteAndUnknownIsBlack) {
    Color::currentColorName = 0;
    for (unsigned i = 1; i < 32; ++i)
        ASSERT_EQ(i % 15, Color::getNextColorName());
    EXPECT_EQ(Color(0.823, 0.705, 0.549, 2, true), Color(CLIGHTBROWN, 2, true));
    EXPECT_EQ(Color(0, 0, 0, 2, true), Color(static_cast<Colorname>(17), 2, true));
    EXPECT_TRUE(capture.printed("Color::Color, WARNING: Colorname unknown, returning black"));
}

TEST_F(Drawing, EveryMeshFillsTheSquareWithShortPathsOfOnePen) {
    for (const PointSet& set : makeAllKinds(300)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.insert(set.points);
        dt.show("mesh.ps", true);
        EXPECT_EQ(!dt.is2D(),
                  capture.printed("Dt2::show(), ERROR: The triangulation is not 2D, no visualization"));
        const Page page = readPage("mesh.ps");
        EXPECT_EQ(std::string::npos, page.order.find(std::string(32, '-')));
        ASSERT_EQ(dt.is2D() ? 2 * (dt.numberOfPoints() + dt.numberOfTriangles() - 1) : 0, page.vXs.size());
        EXPECT_EQ(dt.is2D() ? 1 : 0, std::count(page.order.begin(), page.order.end(), 'B'));
        if (!dt.is2D()) continue;
        const auto [left, right] = std::minmax_element(page.vXs.begin(), page.vXs.end());
        const auto [low, high] = std::minmax_element(page.vYs.begin(), page.vYs.end());
        EXPECT_TRUE(*left == 50 && *low == 200 && std::max(*right - 50, *high - 200) == 480);
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
        vis.addObject(Label(Point2(1, 1, 0), "no size", false, 0), plain);
        vis.addObject(std::vector<Point2*>{&a, &b}, plain);
        vis.addObject(Circle2(5, 2, 4), filled);
        vis.addObject(std::vector<Segment2>{{a, b}, {b, c}}, filled);
        vis.addObject(Edge2(&triangle, 0), plain);
        vis.addObject(std::vector<Triangle2*>{&triangle}, filled);
        a = Point2(-99, 0, 0); // the picture has copies
    }
    EXPECT_TRUE(capture.printed("to complete an unfinished visualization [layers.ps]"));
    const Page page = readPage("layers.ps");
    // The triangle, segments, three end marks, the circle, two point marks, the label with its mark.
    EXPECT_EQ("|r--fg||r--|B-|r------of||B----(one)\tshow|(two)\tshow|--|.", page.order);
    const std::vector<double> vXs{50, 530, 530, 50, 50, 530, 530, 50, 530, 50, 46, 54}; // then more marks
    EXPECT_TRUE(std::equal(vXs.begin(), vXs.end(), page.vXs.begin()));
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
    vis.addObject(Point2(12345678.0, 0, 0), Color());
    for (int i = 0; i < 11; ++i)
        vis.addHeaderLine(i == 0 ? std::string(130, '.') : wild);
    EXPECT_TRUE(capture.printed("WARNING: skipping text [\"" + wild + "\"], maximum number of he"));
    vis.writeFile();
    std::locale::global(former);
    std::vector<std::string> vTexts(15, "(\\(\\(\\\\\\011\\) %\\015\\\\)\tshow"); // nine lines and the label
    vTexts[0] = "(a\\(b\\\\\\)\\012\\(\\177.ps)\tshow";
    vTexts[1] = "(Quor Kelm 2.5D, )\tshow";
    vTexts[2] = "(x-Range: [0.5 - 1.23457e+07] =1.23457e+07)\tshow";
    vTexts[3] = "(y-Range: [0 - 0] =0)\tshow";
    vTexts[4] = '(' + std::string(120, '.') + ")\tshow";
    EXPECT_EQ(vTexts, readPage(name).vTexts);
    vis.writeFile();
    EXPECT_TRUE(
        capture.printed("Visualizer2::writeFile(), WARNING: No effect. File has already been closed"));
    EXPECT_THROW(vis.addHeaderLine("late"), KelmException);
}

TEST_F(Drawing, PointsWithoutExtentAreCentredAndUnusableObjectsLeftOut) {
    const Color color(HUGE_VAL, std::nan(""), 0, 1, false); // a page has no word for these either
    for (const double half : {0.0, 3e-324, 1e300}) {
        Visualizer2 vis("odd.ps");
        for (const Point2& p : {Point2(), Point2(HUGE_VAL, 0, 0), Point2(0, std::nan(""), 0)}) {
            vis.addObject(Segment2(Point2(0, 0, 0), p), color);
            vis.addObject(Circle2(p, 1), color);
        }
        vis.addObject(Circle2(0, 0, -1), color);
        vis.addObject(std::vector<Point2>{{half, -half, 0}, {-half, half, 0}}, color);
        vis.writeFile();
        EXPECT_TRUE(capture.printed("leaving out objects without finite coordinates: 7"));
        const double right = half > 0 ? 530 : 290, left = 580 - right; // marks reach 1 to either side
        EXPECT_EQ((std::vector<double>{right - 1, right + 1, right - 1, right + 1, left - 1, left + 1,
                                       left - 1, left + 1}),
                  readPage("odd.ps").vXs);
    }
    Visualizer2("none.ps").writeFile();
    EXPECT_EQ("|.", readPage("none.ps").order);
}
