// Point files: what is written and read, byte by byte, and what damaged input gets.
// The example terrain is read in the tests of bulk insertion.
#include "CoutCapture.h"
#include "ScratchDirectory.h"

#include <kelm25d/Point2.h>
#include <kelm25d/dataFiles.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>

using namespace QUOR_KELM25D;

namespace {

const char* const filename = "points";

void writeFile(const std::string& content) {
    std::ofstream(filename, std::ios::binary) << content;
}

std::string getFile() {
    std::ifstream file(filename, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string toBytes(std::uint64_t bits, int numBytes) {
    std::string bytes;
    for (int i = 0; i < numBytes; ++i)
        bytes.push_back(static_cast<char>(bits >> (8 * i)));
    return bytes;
}

std::string toBytes(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return toBytes(bits, 8);
}

std::string getHeader(std::uint32_t type, std::uint32_t numPoints, std::uint32_t reserved = 0) {
    return toBytes(type, 4) + toBytes(numPoints, 4) + toBytes(reserved, 4);
}

std::string toBytes(const Point2& point) {
    return toBytes(point.x()) + toBytes(point.y()) + toBytes(point.z());
}

// Bit by bit, so that signed zeros count.
void expectSame(const std::vector<Point2>& vRead, const std::vector<Point2>& vExpected) {
    ASSERT_EQ(vRead.size(), vExpected.size());
    for (std::size_t i = 0; i < vRead.size(); ++i) {
        ASSERT_EQ(toBytes(vRead[i]), toBytes(vExpected[i])) << "point " << i << ": " << vRead[i];
        ASSERT_EQ(vRead[i].getCustomIndex(), -1);
    }
}

// All magnitudes, for what must come back unchanged.
std::vector<Point2> getWildPoints(int n) {
    std::mt19937_64 random(20260105);
    auto next = [&] {
        for (;;) {
            const std::uint64_t bits = random();
            double value;
            std::memcpy(&value, &bits, sizeof value);
            if (value - value == 0.0) return value;
        }
    };
    std::vector<Point2> vPoints = {
        Point2(0.0, -0.0, std::numeric_limits<double>::denorm_min()),
        Point2(std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(), 1.0 / 3.0)};
    for (int i = 0; i < n; ++i) {
        const double x = next();
        const double y = next();
        vPoints.emplace_back(x, y, next());
    }
    return vPoints;
}

std::vector<Point2*> getPointers(std::vector<Point2>& vPoints) {
    std::vector<Point2*> vPointers;
    vPointers.reserve(vPoints.size());
    for (Point2& point : vPoints)
        vPointers.push_back(&point);
    return vPointers;
}

} // namespace

TEST(PointFiles, WrittenPointsComeBackBitByBitBehindWhatIsThere) {
    ScratchDirectory scratch;
    std::vector<Point2> vPoints = getWildPoints(10000); // more than one block
    for (Point2& point : vPoints)
        point.setCustomIndex(7); // not stored
    const std::vector<Point2*> vPointers = getPointers(vPoints);
    std::vector<Point2> vExpected = {Point2(1.0, 2.0, 3.0)};
    vExpected.insert(vExpected.end(), vPoints.begin(), vPoints.end());
    for (Point2& point : vExpected)
        point.setCustomIndex(-1);

    CoutCapture capture;
    for (int form = 0; form < 4; ++form) {
        SCOPED_TRACE(form);
        const bool bBinary = form < 2;
        const bool bWritten = form == 0   ? writePointsBIN(filename, vPoints)
                              : form == 1 ? writePointsBIN(filename, vPointers)
                              : form == 2 ? writePointsASCII(filename, vPoints)
                                          : writePointsASCII(filename, vPointers);
        EXPECT_TRUE(bWritten);
        std::vector<Point2> vRead = {Point2(1.0, 2.0, 3.0)};
        EXPECT_TRUE((bBinary ? readPointsBIN : readXYZ)(filename, vRead));
        expectSame(vRead, vExpected);
    }
    EXPECT_EQ(capture.take(), "");
}

TEST(PointFiles, FormatsAreFixed) {
    ScratchDirectory scratch;
    const std::vector<Point2> vPoints = {Point2(0.1, -2.0, 1e300), Point2(4500000.001, 0.0, 3.0)};
    ASSERT_TRUE(writePointsBIN(filename, vPoints));
    EXPECT_EQ(getFile(), getHeader(30, 2) + toBytes(vPoints[0]) + toBytes(vPoints[1]));
    ASSERT_TRUE(writePointsASCII(filename, vPoints));
    EXPECT_EQ(getFile(), "0.100000000000000006 -2 1.00000000000000005e+300\n4500000.00100000016 0 3\n");
    ASSERT_TRUE(writePointsBIN(filename, std::vector<Point2>()));
    EXPECT_EQ(getFile(), getHeader(30, 0));
}

TEST(PointFiles, BinaryInputIsReadAsFarAsItGoes) {
    struct Case {
        const char* name;
        std::string content;
        std::size_t numPoints;
        std::string line;
    };
    const std::string three = toBytes(Point2(1.0, 2.0, 3.0));
    const std::string two = toBytes(1.0) + toBytes(2.0);
    const Case cases[] = {
        {"without heights", getHeader(20, 3) + two + two + two, 3, ""},
        {"reserved field and trailing bytes", getHeader(30, 1, 12345) + three + three, 1, ""},
        {"negative count", getHeader(30, 0xffffffffu) + three, 0, ""},
        {"count beyond the file", getHeader(30, 0x7fffffffu) + three + two, 1, ""},
        {"no count", toBytes(30, 4), 0, ""},
        {"segments", getHeader(31, 1) + three + three, 0,
         "points has wrong filetype 31, expected: 30 or 20\n"},
        {"empty file", "", 0, "points has wrong filetype 0, expected: 30 or 20\n"},
        {"negative type", toBytes(0xfffffffeu, 4), 0, "points has wrong filetype -2, expected: 30 or 20\n"},
    };
    ScratchDirectory scratch;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        writeFile(c.content);
        CoutCapture capture;
        std::vector<Point2> vRead;
        EXPECT_EQ(readPointsBIN(filename, vRead), c.line.empty());
        EXPECT_EQ(capture.take(), c.line);
        const double z = c.content[0] == 20 ? 0.0 : 3.0;
        expectSame(vRead, std::vector<Point2>(c.numPoints, Point2(1.0, 2.0, z)));
    }
}

TEST(PointFiles, TextIsReadUpToTheFirstThingThatIsNoNumber) {
    const Point2 a(1.0, 2.0, 3.0);
    const Point2 b(-4.5, 0.25, 6e3);
    struct Case {
        std::string content;
        std::vector<Point2> vExpected;
    };
    const Case cases[] = {
        {"", {}},
        {"1 2 3", {a}},
        {"1 2 3\n-4.5 .25 6e3\n", {a, b}},
        {"\t+1. 2.0e0 0.03E+2\r\n\r\n\v\f -4.5 25e-2\n6000", {a, b}},
        {"1 2 3 -4.5 .25", {a}},
        {"1 2 3 # -4.5 .25 6e3", {a}},
        {"1 2 3 -4.5 .25 6e3m 1 2 3", {a, b}},
        {"x 1 2 3", {}},
        {"1 2 3 inf 1 1", {a}},
        {"1 2 3 1 nan 1", {a}},
        {std::string("1 2 3\0 1 2 3", 12), {a}},
    };
    ScratchDirectory scratch;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.content);
        writeFile(c.content);
        std::vector<Point2> vRead;
        EXPECT_TRUE(readXYZ(filename, vRead));
        expectSame(vRead, c.vExpected);
    }
    writeFile("1 2 3\n4 5");
    std::vector<Point2> vRead;
    EXPECT_TRUE(readXY(filename, vRead));
    expectSame(vRead, {Point2(1.0, 2.0, 0.0), Point2(3.0, 4.0, 0.0)});
}

TEST(PointFiles, TextIsReadAsAStreamWould) {
    // Short texts over the letters that numbers are made of, each against the extraction of a stream.
    std::vector<std::string> vTexts = {"1e400 1",
                                       "-1e400 1",
                                       "1e-400 1",
                                       "-1e-400 1",
                                       "4.9e-324 1",
                                       "2e-324 1",
                                       "1e-310 1",
                                       "0x10 1",
                                       "1e 1",
                                       "1,5 1",
                                       "1_0 1",
                                       "infinity",
                                       "1d5 1",
                                       "9007199254740993 1e22",
                                       "1e99999999999 1",
                                       "1.5.5 1",
                                       "1-1 1",
                                       "00012 1",
                                       "1e+ 1",
                                       "- 1 1"};
    std::mt19937 random(20260106);
    const std::string letters = "0123456789019..ee+-E  \n";
    for (int i = 0; i < 500; ++i) {
        std::string text;
        for (unsigned n = 1 + random() % 14; n > 0; --n)
            text.push_back(letters[random() % letters.size()]);
        vTexts.push_back(text);
    }
    ScratchDirectory scratch;
    for (const std::string& text : vTexts) {
        std::vector<Point2> vExpected;
        std::istringstream stream(text);
        double x, y;
        while (stream >> x >> y)
            vExpected.emplace_back(x, y, 0.0);
        writeFile(text);
        std::vector<Point2> vRead;
        EXPECT_TRUE(readXY(filename, vRead));
        SCOPED_TRACE(text);
        expectSame(vRead, vExpected);
    }
}

TEST(PointFiles, FilesThatCannotBeOpenedOrWrittenAreReported) {
    ScratchDirectory scratch;
    std::filesystem::create_directory("folder");
    std::vector<Point2> vPoints = getWildPoints(10);
    const std::vector<Point2*> vPointers = getPointers(vPoints);
    CoutCapture capture;
    for (const std::string name : {"folder", "absent/points"}) {
        std::vector<Point2> vRead;
        EXPECT_FALSE(readXY(name.c_str(), vRead));
        EXPECT_EQ(capture.take(), name + " is unreadable\n");
        EXPECT_FALSE(readXYZ(name.c_str(), vRead));
        EXPECT_EQ(capture.take(), name + " is unreadable\n");
        EXPECT_FALSE(readPointsBIN(name.c_str(), vRead));
        EXPECT_EQ(capture.take(), name + " can't be read\n");
        EXPECT_TRUE(vRead.empty());
    }
    for (const std::string name : {"folder", "absent/points", "/dev/full"}) { // the last opens, then is full
        EXPECT_FALSE(writePointsBIN(name.c_str(), vPoints));
        EXPECT_EQ(capture.take(), name + " can't be written\n");
        EXPECT_FALSE(writePointsASCII(name.c_str(), vPointers));
        EXPECT_EQ(capture.take(), name + " can't be written\n");
    }
}
