// Readers and writers of point files, text and binary.
// Nothing of a triangulation but its points passes through here.
#include <kelm25d/Point2.h>
#include <kelm25d/dataFiles.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace QUOR_KELM25D {

namespace {

constexpr std::int32_t typeWithHeights = 30;
constexpr std::int32_t typeWithoutHeights = 20;

// Bytes of a file that are in memory at once, for what is read or written record by record.
constexpr std::size_t blockSize = std::size_t(1) << 16;

bool failWith(const char* filename, const char* text) {
    std::cout << filename << text << std::endl;
    return false;
}

template <class Bits>
void appendBits(std::string& buffer, Bits bits) {
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
        buffer.push_back(static_cast<char>((bits >> (8 * i)) & 0xff));
}

void appendInt32(std::string& buffer, std::int32_t value) {
    appendBits(buffer, static_cast<std::uint32_t>(value));
}

void appendDouble(std::string& buffer, double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    appendBits(buffer, bits);
}

template <class Bits>
Bits getBits(const char* pBytes) {
    Bits bits = 0;
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
        bits |= static_cast<Bits>(static_cast<unsigned char>(pBytes[i])) << (8 * i);
    return bits;
}

double getDouble(const char* pBytes) {
    const std::uint64_t bits = getBits<std::uint64_t>(pBytes);
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// A field that the file is too short for reads as 0.
std::int32_t readInt32(std::istream& file) {
    char bytes[4] = {};
    file.read(bytes, sizeof bytes);
    return static_cast<std::int32_t>(getBits<std::uint32_t>(bytes));
}

// Reads up to numPoints records of two or three doubles. The count comes from the file and may be anything,
// so memory grows with what is read and not with what is announced.
void readRecords(std::istream& file, std::int32_t numPoints, bool bHeights, std::vector<Point2>& vPoints) {
    const std::size_t recordSize = bHeights ? 24 : 16;
    const std::size_t recordsInBlock = blockSize / recordSize;
    std::string block(recordsInBlock * recordSize, '\0');
    std::size_t numLeft = static_cast<std::size_t>(numPoints);
    while (numLeft > 0 && file) {
        const std::size_t numWanted = std::min(numLeft, recordsInBlock);
        file.read(&block[0], static_cast<std::streamsize>(numWanted * recordSize));
        const std::size_t numRead = static_cast<std::size_t>(file.gcount()) / recordSize;
        for (std::size_t i = 0; i < numRead; ++i) {
            const char* pRecord = block.data() + i * recordSize;
            vPoints.emplace_back(getDouble(pRecord), getDouble(pRecord + 8),
                                 bHeights ? getDouble(pRecord + 16) : 0.0);
        }
        numLeft -= numWanted;
    }
}

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
        text.resize(std::max(blockSize, 2 * size));
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

void appendNumber(std::string& buffer, double value) {
    char digits[32]; // sign, 18 digits, point and exponent make 25 at most
    const std::to_chars_result result =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 18);
    buffer.append(digits, result.ptr);
}

// Opens, writes what append(buffer, point) makes of each point behind the header, and closes.
template <class Append>
bool writePoints(const char* filename, std::ios::openmode mode, const std::string& header,
                 const std::vector<Point2>& vPoints, Append append) {
    std::ofstream file(filename, mode | std::ios::trunc);
    std::string buffer = header;
    for (const Point2& point : vPoints) {
        append(buffer, point);
        if (buffer.size() >= blockSize) {
            file.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
            buffer.clear();
        }
    }
    file.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    file.close(); // a full disk shows no later than here
    return file ? true : failWith(filename, " can't be written");
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
    return writePoints(filename, std::ios::out, "", vPoints, [](std::string& buffer, const Point2& point) {
        appendNumber(buffer, point.x());
        buffer.push_back(' ');
        appendNumber(buffer, point.y());
        buffer.push_back(' ');
        appendNumber(buffer, point.z());
        buffer.push_back('\n');
    });
}

bool writePointsASCII(const char* filename, const std::vector<Point2*>& vPoints) {
    return writePointsASCII(filename, getCopies(vPoints));
}

bool readPointsBIN(const char* filename, std::vector<Point2>& vPoints) {
    std::ifstream file(filename, std::ios::binary);
    const std::int32_t type = file ? readInt32(file) : 0;
    if (!file.is_open() || file.bad()) return failWith(filename, " can't be read");
    if (type != typeWithHeights && type != typeWithoutHeights) {
        std::cout << filename << " has wrong filetype " << type << ", expected: 30 or 20" << std::endl;
        return false;
    }
    const std::int32_t numPoints = readInt32(file);
    readInt32(file); // reserved
    if (numPoints > 0) readRecords(file, numPoints, type == typeWithHeights, vPoints);
    return true;
}

bool writePointsBIN(const char* filename, const std::vector<Point2>& vPoints) {
    if (vPoints.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        return failWith(filename, " can't be written");
    std::string header;
    appendInt32(header, typeWithHeights);
    appendInt32(header, static_cast<std::int32_t>(vPoints.size()));
    appendInt32(header, 0); // reserved
    return writePoints(filename, std::ios::binary, header, vPoints,
                       [](std::string& buffer, const Point2& point) {
                           appendDouble(buffer, point.x());
                           appendDouble(buffer, point.y());
                           appendDouble(buffer, point.z());
                       });
}

bool writePointsBIN(const char* filename, const std::vector<Point2*>& vPoints) {
    return writePointsBIN(filename, getCopies(vPoints));
}

} // namespace QUOR_KELM25D
