// Readers and writers of point files, text and binary, and of binary segment files.
// Files and their bytes are binaryFile.h, whole triangulations triangulationFile.cpp.
#include <kelm25d/dataFiles.h>

#include "binaryFile.h"

#include <kelm25d/Segment2.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <locale>
#include <sstream>

namespace QUOR_KELM25D {

namespace {

constexpr std::int32_t typePointsWithHeights = 30;
constexpr std::int32_t typePointsWithoutHeights = 20;
constexpr std::int32_t typeSegmentsWithHeights = 31;
constexpr std::int32_t typeSegmentsWithoutHeights = 21;

// Takes number after number from a text, with the results of stream extraction in the C locale at many times
// its speed.
class NumberScanner {
public:
    explicit NumberScanner(const std::string& text) : pNext(text.data()), pEnd(pNext + text.size()) {}

    // False at the end of the text and at the first thing that is not a number.
    bool next(double& value);

private:
    static bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    static bool isExponentLetter(char c) { return c == 'e' || c == 'E'; }

    const char* pNext;
    const char* pEnd;
};

bool NumberScanner::next(double& value) {
    while (pNext != pEnd && isSpace(*pNext))
        ++pNext;
    const char* pBegin = pNext;
    const char* pDigits = pNext;
    if (pDigits != pEnd && (*pDigits == '+' || *pDigits == '-')) ++pDigits;
    // from_chars takes no leading plus, and takes "inf" and "nan", which are no numbers to a stream.
    if (pDigits == pEnd || !(isDigit(*pDigits) || *pDigits == '.')) return false;
    if (*pBegin == '+') ++pBegin;

    const std::from_chars_result result = std::from_chars(pBegin, pEnd, value);
    if (result.ec == std::errc::invalid_argument) return false;
    // A stream has taken the exponent's letter, and fails, when it finds no exponent behind it.
    if (result.ptr != pEnd && isExponentLetter(*result.ptr) &&
        std::none_of(pBegin, result.ptr, isExponentLetter))
        return false;
    if (result.ec == std::errc::result_out_of_range) {
        // Too small a number reads as a tiny one or zero, too large a one fails: from_chars does not tell
        // which.
        std::istringstream stream(std::string(pBegin, result.ptr));
        stream.imbue(std::locale::classic());
        if (!(stream >> value)) return false;
    }
    pNext = result.ptr;
    return true;
}

bool readWholeFile(const char* filename, std::string& text) {
    std::ifstream file(filename, std::ios::binary);
    if (!file) return false;
    std::size_t size = 0;
    while (file) {
        text.resize(std::max(fileBlockSize, 2 * size));
        file.read(&text[size], static_cast<std::streamsize>(text.size() - size));
        size += static_cast<std::size_t>(file.gcount());
    }
    text.resize(size);
    return !file.bad(); // a directory opens, but does not read
}

bool readText(const char* filename, bool bHeights, std::vector<Point2>& vPoints) {
    std::string text;
    if (!readWholeFile(filename, text)) return failWith(filename, " is unreadable");
    NumberScanner scanner(text);
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    while (scanner.next(x) && scanner.next(y) && (!bHeights || scanner.next(z)))
        vPoints.emplace_back(x, y, z);
    return true;
}

// The number, and the character that ends it.
void writeNumber(FileWriter& writer, double value, char end) {
    char text[32]; // sign, 18 digits, point and exponent make 25 at most
    const std::to_chars_result result =
        std::to_chars(text, text + sizeof text - 1, value, std::chars_format::general, 18);
    *result.ptr = end;
    writer.write(text, static_cast<std::size_t>(result.ptr + 1 - text));
}

void writeHeader(FileWriter& writer, std::int32_t type, std::size_t count) {
    writer.writeInt32(type);
    writer.writeCount(count);
    writer.writeInt32(0); // reserved
}

// What follows the type: the count, the reserved field, and the records, each given to take(pRecord).
template <class Take>
bool readList(BinaryReader& reader, std::size_t recordSize, const Take& take) {
    const std::int32_t count = reader.readInt32();
    reader.readInt32(); // reserved
    reader.readRecords(count, recordSize, take);
    return reader.close();
}

std::vector<Point2> getCopies(const std::vector<Point2*>& vPoints) {
    std::vector<Point2> vCopies;
    vCopies.reserve(vPoints.size());
    for (const Point2* pPoint : vPoints)
        vCopies.push_back(*pPoint);
    return vCopies;
}

} // namespace

bool readXY(const char* filename, std::vector<Point2>& vPoints) {
    return readText(filename, false, vPoints);
}

bool readXYZ(const char* filename, std::vector<Point2>& vPoints) {
    return readText(filename, true, vPoints);
}

bool writePointsASCII(const char* filename, const std::vector<Point2>& vPoints) {
    FileWriter writer(filename, std::ios::out);
    for (const Point2& point : vPoints) {
        writeNumber(writer, point.x(), ' ');
        writeNumber(writer, point.y(), ' ');
        writeNumber(writer, point.z(), '\n');
    }
    return writer.close();
}

bool writePointsASCII(const char* filename, const std::vector<Point2*>& vPoints) {
    return writePointsASCII(filename, getCopies(vPoints));
}

bool readPointsBIN(const char* filename, std::vector<Point2>& vPoints) {
    BinaryReader reader;
    std::int32_t type;
    if (!reader.open(filename, type)) return false;
    if (type != typePointsWithHeights && type != typePointsWithoutHeights)
        return failWith(filename, " has wrong filetype " + std::to_string(type) + ", expected: 30 or 20");
    const bool bHeights = type == typePointsWithHeights;
    return readList(reader, bHeights ? 24 : 16,
                    [&](const char* pRecord) { vPoints.push_back(getPoint(pRecord, bHeights)); });
}

bool writePointsBIN(const char* filename, const std::vector<Point2>& vPoints) {
    FileWriter writer(filename, std::ios::binary);
    writeHeader(writer, typePointsWithHeights, vPoints.size());
    for (const Point2& point : vPoints)
        writer.writePoint(point);
    return writer.close();
}

bool writePointsBIN(const char* filename, const std::vector<Point2*>& vPoints) {
    return writePointsBIN(filename, getCopies(vPoints));
}

bool readSegmentsBIN(const char* filename, std::vector<Segment2>& vSegments) {
    BinaryReader reader;
    std::int32_t type;
    if (!reader.open(filename, type)) return false;
    if (type != typeSegmentsWithHeights && type != typeSegmentsWithoutHeights) // not the words of the points
        return failWith(filename, " has wrong file type: " + std::to_string(type) + " instead of 31 or 21");
    const bool bHeights = type == typeSegmentsWithHeights;
    const std::size_t pointSize = bHeights ? 24 : 16;
    return readList(reader, 2 * pointSize, [&](const char* pRecord) {
        vSegments.emplace_back(getPoint(pRecord, bHeights), getPoint(pRecord + pointSize, bHeights));
    });
}

bool writeSegmentsBIN(const char* filename, const std::vector<Segment2>& vSegments) {
    FileWriter writer(filename, std::ios::binary);
    writeHeader(writer, typeSegmentsWithHeights, vSegments.size());
    for (const Segment2& segment : vSegments) {
        writer.writePoint(segment.getSrc());
        writer.writePoint(segment.getTrg());
    }
    return writer.close();
}

} // namespace QUOR_KELM25D
