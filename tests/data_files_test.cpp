// Point files: what is written and read, byte by byte, and what damaged input gets.
// The example terrain is read in the tests of bulk insertion.
#include "testing.h"

#include <cfloat>

using namespace std::string_literals;

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
    for (int form = 0; form < 4; ++form) {
        EXPECT_TRUE(form == 0   ? writePointsBIN(filename, vPoints)
                    : form == 1 ? writePointsBIN(filename, vPointers)
                    : form == 2 ? writePointsASCII(filename, vPoints)
                                : writePointsASCII(filename, vPointers));
        std::vector<Point2> vRead(1);
        EXPECT_TRUE((form < 2 ? readPointsBIN : readXYZ)(filename, vRead)) << form;
        vRead.erase(vRead.begin());
        EXPECT_TRUE(areSame(vRead, vPoints)) << form;
    }
    vPoints = {{0.1, -2.0, 1e300}, {4500000.001, 0.0, 3.0}}; // and the formats themselves
    vPoints[0].setCustomIndex(7);                            // not stored
    ASSERT_TRUE(writePointsBIN(filename, vPoints));
    EXPECT_EQ(readFile(filename), toBytes(30, 2, 0, 0.1, -2.0, 1e300, 4500000.001, 0.0, 3.0));
    ASSERT_TRUE(writePointsASCII(filename, vPoints));
    EXPECT_EQ(readFile(filename),
              "0.100000000000000006 -2 1.00000000000000005e+300\n4500000.00100000016 0 3\n");
}

TEST(PointFiles, BinaryInputIsReadAsFarAsItGoes) {
    const std::string two = toBytes(1.0, 2.0), three = toBytes(1.0, 2.0, 3.0);
    // Contents, the number of points in them, and the type in the message.
    const std::tuple<std::string, int, std::string> aCase[] = {
        {toBytes(20, 3, 0) + two + two + two, 3, ""},
        {toBytes(30, 1, 12345) + three + three, 1, ""}, // reserved field, trailing bytes
        {toBytes(30, -1, 0) + three, 0, ""},
        {toBytes(30, 0x7fffffff, 0) + three + two, 1, ""},
        {toBytes(30), 0, ""},
        {toBytes(31, 1, 0) + three, 0, "31"},
        {"", 0, "0"}};
    ScratchDirectory scratch;
    for (const auto& [content, numPoints, type] : aCase) {
        writeFile(content);
        CoutCapture capture;
        std::vector<Point2> vRead;
        EXPECT_EQ(readPointsBIN(filename, vRead), type.empty());
        const std::string line = "points has wrong filetype " + type + ", expected: 30 or 20\n";
        EXPECT_EQ(capture.take(), type.empty() ? "" : line);
        EXPECT_TRUE(areSame(vRead, std::vector<Point2>(numPoints, {1, 2, content[0] == 20 ? 0.0 : 3.0})));
    }
}

TEST(PointFiles, TextIsReadAsAStreamWould) {
    // Chosen texts between bars, and random ones over the letters that numbers are made of.
    std::istringstream chosen(
        "|1 2 3|1 2 3\n-4.5 .25 6e3\n|\t+1. 2.0e0 0.03E+2\r\n\r\n\v\f -4.5 25e-2\n6000|1 2 3 # 4 5 6|"
        "1 2 6e3m 1 2 3|x 1 2|1 2 3 inf 1|1 2 nan 1|1 2 3\0 1 2 3|1e400 1|-1e400 1|1e-400 1|"
        "-1e-400 1|4.9e-324 1|2e-324 1|1e-310 1|0x10 1|1e 1|1,5 1|1_0 1|infinity|1d5 1|"
        "9007199254740993 1e22|1e99999999999 1|1.5.5 1|1-1 1|00012 1|1e+ 1|- 1 1"s);
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
    CoutCapture capture;
    for (const std::string name : {"folder", "absent/points"}) {
        for (const auto read : {readXY, readXYZ, readPointsBIN})
            EXPECT_FALSE(read(name.c_str(), vPoints));
        const std::string line = name + " is unreadable\n";
        EXPECT_EQ(capture.take(), line + line + name + " can't be read\n");
    }
    EXPECT_EQ(vPoints.size(), 10u);
    for (const std::string name : {"folder", "absent/points", "/dev/full"}) { // the last opens, then is full
        EXPECT_FALSE(writePointsBIN(name.c_str(), vPoints) || writePointsASCII(name.c_str(), vPoints));
        EXPECT_EQ(capture.take(), name + " can't be written\n" + name + " can't be written\n");
    }
}
