// Files of points, segments and triangulations: what is written comes back, and what damaged input gets.
// Input that nobody has thought of is the matter of fuzz/readers_fuzz.cpp. The example terrain is read in the
// tests of bulk insertion.
#include "testing.h"

#include <cfloat>

namespace {

const char* const filename = "points";

void writeFile(const std::string& content) {
    std::ofstream(filename, std::ios::binary) << content;
}

// Little-endian as the files are, where the tests run.
template <class... T>
std::string toBytes(T... values) {
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
    return bytes;
}

// Bit by bit, so that signed zeros count.
bool areSame(const std::vector<Point2>& vRead, const std::vector<Point2>& vExpected) {
    return std::equal(
        vRead.begin(), vRead.end(), vExpected.begin(), vExpected.end(), [](const Point2& p, const Point2& q) {
            return toBytes(p.x(), p.y(), p.z(), p.getCustomIndex()) == toBytes(q.x(), q.y(), q.z(), -1);
        });
}

// Segment files as files of the ends of their segments.
bool writeEnds(const char* name, const std::vector<Point2>& vEnds) {
    std::vector<Segment2> vSegments;
    for (std::size_t i = 0; i + 1 < vEnds.size(); i += 2)
        vSegments.emplace_back(vEnds[i], vEnds[i + 1]);
    return writeSegmentsBIN(name, vSegments);
}
bool readEnds(const char* name, std::vector<Point2>& vEnds) {
    std::vector<Segment2> vSegments(1); // stays, not cleared
    const bool bRead = readSegmentsBIN(name, vSegments);
    for (std::size_t i = 1; i < vSegments.size(); ++i)
        vEnds.insert(vEnds.end(), {vSegments[i].getSrc(), vSegments[i].getTrg()});
    return bRead;
}

// The vertices, then the ends of all alive constraint segments, both in order.
std::vector<Point2> getContents(const Kelm_2D& dt) {
    std::vector<Point2> v;
    for (const Point2* pVtx : allVertices(dt))
        v.push_back(*pVtx);
    std::sort(v.begin(), v.end());
    std::set<std::pair<Point2, Point2>> sSegments;
    for (const ConstraintSegment2* pSegment : aliveSegments(dt))
        sSegments.insert(std::minmax(*pSegment->getSrc(), *pSegment->getTrg()));
    for (const auto& [a, b] : sSegments)
        v.insert(v.end(), {a, b});
    return v;
}
bool readContents(const char* name, std::vector<Point2>& v) {
    Kelm_2D dt;
    const bool bRead = dt.load(name);
    v = getContents(dt);
    return bRead;
}

} // namespace

TEST(PointFiles, WrittenPointsComeBackBitByBitBehindWhatIsThere) {
    std::mt19937 random(20260105);
    std::uniform_real_distribution<double> mantissa(-1, 1), exponent(-1080, 1024);
    std::vector<Point2> vPoints = {{0.0, -0.0, DBL_TRUE_MIN}, {DBL_MAX, -DBL_MAX, 1.0 / 3.0}};
    const auto next = [&] { return std::ldexp(mantissa(random), static_cast<int>(exponent(random))); };
    while (vPoints.size() < 10000) // more than one block
        vPoints.push_back(Point2{next(), next(), next()});
    std::vector<Point2*> vPointers;
    for (Point2& point : vPoints)
        vPointers.push_back(&point);
    ScratchDirectory scratch;
    for (int form = 0; form < 5; ++form) {
        EXPECT_TRUE(form == 0   ? writePointsBIN(filename, vPoints)
                    : form == 1 ? writePointsBIN(filename, vPointers)
                    : form == 2 ? writePointsASCII(filename, vPoints)
                    : form == 3 ? writePointsASCII(filename, vPointers)
                                : writeEnds(filename, vPoints));
        std::vector<Point2> vRead(1);
        EXPECT_TRUE((form < 2 ? readPointsBIN : form < 4 ? readXYZ : readEnds)(filename, vRead)) << form;
        vRead.erase(vRead.begin());
        EXPECT_TRUE(areSame(vRead, vPoints)) << form;
    }
    vPoints = {{0.1, -2.0, 1e300}, {4500000.001, 0.0, 3.0}}; // and the formats themselves
    vPoints[0].setCustomIndex(7);                            // not stored
    ASSERT_TRUE(writePointsBIN(filename, vPoints));
    EXPECT_EQ(readFile(filename), toBytes(30, 2, 0, 0.1, -2.0, 1e300, 4500000.001, 0.0, 3.0));
    ASSERT_TRUE(writeEnds(filename, vPoints));
    EXPECT_EQ(readFile(filename), toBytes(31, 1, 0, 0.1, -2.0, 1e300, 4500000.001, 0.0, 3.0));
    ASSERT_TRUE(writePointsASCII(filename, vPoints));
    EXPECT_EQ(readFile(filename),
              "0.100000000000000006 -2 1.00000000000000005e+300\n4500000.00100000016 0 3\n");
}

TEST(BinaryFiles, AreReadAsFarAsTheyGoAndTriangulationsOnlyIfFinite) {
    const Point2 p(1, 2, 3), q(4, 0, 6), r(7, 8, 9), flat(1, 2, 0);
    const std::string two = toBytes(1.0, 2.0), P = two + toBytes(3.0), Q = toBytes(4.0, 0.0, 6.0),
                      R = toBytes(7.0, 8.0, 9.0), notPoints = "points has wrong filetype ",
                      infinite = "a coordinate is not finite";
    const auto points = readPointsBIN, ends = readEnds, all = readContents;
    // Reader, contents, the points in them, and a part of the message.
    const std::tuple<decltype(points), std::string, std::vector<Point2>, std::string> aCase[] = {
        {points, toBytes(20, 3, 0) + two + two + two, {flat, flat, flat}, ""},
        {points, toBytes(30, 1, 12345) + P + P, {p}, ""}, // reserved field, trailing bytes
        {points, toBytes(30, -1, 0) + P, {}, ""},
        {points, toBytes(30, 0x7fffffff, 0) + P + two, {p}, ""},
        {points, toBytes(31, 1, 0) + P, {}, notPoints + "31, expected: 30 or 20\n"},
        {points, "\x1e", {}, notPoints + "0, expected: 30 or 20\n"}, // a part of a number is none
        {ends, toBytes(21, 2, 0) + two + two + two + two, {flat, flat, flat, flat}, ""},
        {ends, toBytes(31, 1, 12345) + P + Q + P, {p, q}, ""},
        {ends, toBytes(30, 2, 0) + P + P, {}, "points has wrong file type: 30 instead of 31 or 21\n"},
        {all, toBytes(301, 1) + P + toBytes(1) + Q + R + "more", {p, q, r, q, r}, ""}, // ends are vertices
        {all, toBytes(301, 0x7fffffff) + P + Q + toBytes(1.0), {p, q}, ""},
        {all, toBytes(301, -2, 1) + Q + R, {q, r, q, r}, ""},
        {all, toBytes(301, 0, 0x7fffffff) + Q + R + Q + toBytes(1.0), {q, r, q, r}, ""},
        {all, toBytes(301, 0, -1) + Q + R, {}, ""},
        {all, toBytes(301), {}, ""},
        {all, toBytes(30, 1, 0) + P, {}, "points should have type 301 but has 30\n"},
        {all, toBytes(301, 2) + P + toBytes(std::nan(""), 0.0, 0.0) + toBytes(0), {}, infinite},
        {all, toBytes(301, 2) + P + Q + toBytes(1) + P + toBytes(0.0, -HUGE_VAL, 0.0), {}, infinite}};
    ScratchDirectory scratch;
    for (const auto& [read, content, vExpected, message] : aCase) {
        writeFile(content);
        CoutCapture capture;
        std::vector<Point2> vRead;
        EXPECT_EQ(read(filename, vRead), message.empty());
        const std::string printed = capture.take();
        EXPECT_TRUE(message.empty() ? printed.empty() : printed.find(message) != std::string::npos)
            << printed;
        EXPECT_TRUE(areSame(vRead, vExpected)) << testing::PrintToString(content);
    }
}

TEST(PointFiles, TextIsReadAsAStreamWould) {
    // Chosen texts between bars, and random ones over the letters that numbers are made of.
    std::istringstream chosen(
        "|1 2 3|1 2 3\n-4.5 .25 6e3\n|\t+1. 2.0e0 0.03E+2\r\n\r\n\v\f -4.5 25e-2\n6000|1 2 3 # 4 5 6|"
        "1 2 6e3m 1 2 3|x 1 2|1 2 3 inf 1|1 2 nan 1|1e400 1|-1e400 1|1e-400 1|"
        "-1e-400 1|4.9e-324 1|2e-324 1|1e-310 1|0x10 1|1e 1|1_0 1|infinity|"
        "9007199254740993 1e22|1e99999999999 1|1.5.5 1|1e+ 1|- 1 1");
    std::mt19937 random(20260106);
    const std::string letters = "0123456789019..ee+-E  \n";
    ScratchDirectory scratch;
    for (int i = 0; i < 500; ++i) {
        std::string text;
        if (!std::getline(chosen, text, '|'))
            for (unsigned n = 1 + random() % 14; n > 0; --n)
                text.push_back(letters[random() % letters.size()]);
        writeFile(text);
        for (const bool bHeights : {false, true}) {
            std::vector<Point2> vRead, vExpected;
            double x, y, z = 0;
            for (std::istringstream stream(text); stream >> x >> y && (!bHeights || stream >> z);)
                vExpected.emplace_back(x, y, z);
            EXPECT_TRUE((bHeights ? readXYZ : readXY)(filename, vRead) && areSame(vRead, vExpected)) << text;
        }
    }
}

TEST(PointFiles, FilesThatCannotBeOpenedOrWrittenAreReported) {
    ScratchDirectory scratch;
    std::filesystem::create_directory("folder");
    std::vector<Point2> vPoints(10);
    Kelm_2D dt;
    CoutCapture capture;
    for (const std::string name : {"folder", "absent/points"}) {
        for (const auto read : {readXY, readXYZ, readPointsBIN, readEnds})
            EXPECT_FALSE(read(name.c_str(), vPoints));
        EXPECT_FALSE(dt.load(name.c_str()));
        const std::string text = name + " is unreadable\n", binary = name + " can't be read\n";
        EXPECT_EQ(capture.take(), text + text + binary + binary + binary);
    }
    EXPECT_EQ(vPoints.size(), 10u);
    for (const std::string name : {"folder", "absent/points", "/dev/full"}) { // the last opens, then is full
        EXPECT_FALSE(writePointsBIN(name.c_str(), vPoints) || writePointsASCII(name.c_str(), vPoints) ||
                     writeEnds(name.c_str(), vPoints) || dt.save(name.c_str()));
        const std::string line = name + " can't be written\n";
        EXPECT_EQ(capture.take(), line + line + line + line);
    }
}

TEST(TriangulationFiles, VerticesAndPiecesOfConstraintsComeBackBitByBit) {
    ScratchDirectory scratch;
    std::mt19937 random(20260107);
    std::uniform_real_distribution<double> coordinate(-1000, 1000);
    const auto next = [&] { return Point2{coordinate(random), coordinate(random), coordinate(random)}; };
    std::vector<Point2> vTerrain(3000);
    std::generate(vTerrain.begin(), vTerrain.end(), next);
    std::vector<Segment2> vLong;
    while (vLong.size() < 12) // they cross each other, and edges
        vLong.emplace_back(next(), next());
    const std::vector<Point2> vLine = {{0, 0, -0.0}, {-0.0, 2, 1e-310}, {0, 1, DBL_MAX}};
    const std::pair<std::vector<Point2>, std::vector<Segment2>> aCase[] = {
        {{}, {}},          {vTerrain, {}}, {vLine, {}}, {vLine, {{vLine[0], vLine[1]}}},
        {vTerrain, vLong}, {{}, vLong}};
    for (const auto& [vPoints, vSegments] : aCase) {
        Kelm_2D dt;
        dt.insert(vPoints);
        if (!vSegments.empty()) dt.createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY);
        std::vector<Point2> vRead;
        ASSERT_TRUE(dt.save(filename) && readContents(filename, vRead));
        EXPECT_TRUE(areSame(vRead, getContents(dt)));
        ASSERT_TRUE(dt.load(filename)); // added to what is there, which is the same
        EXPECT_TRUE(areSame(vRead, getContents(dt)));
    }
}
