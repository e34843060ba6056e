// Files that are written and read block by block, with little-endian fields on every machine.
// What the fields mean stands with the formats, in dataFiles.cpp and triangulationFile.cpp.
#pragma once

#include <kelm25d/Point2.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

namespace QUOR_KELM25D {

/// Prints the file name with the text behind it as one line. Always false, the result of whoever fails.
bool failWith(const char* filename, const std::string& text);

/// Bytes of a file that are in memory at once.
constexpr std::size_t fileBlockSize = std::size_t(1) << 16;

/// A file that is written from front to back, text or binary. Failures show in close().
class FileWriter {
public:
    /// Opens the file, replacing one that exists. The name has to stay until close().
    FileWriter(const char* filename, std::ios::openmode mode);

    void write(const char* pBytes, std::size_t size) {
        if (block.size() + size > fileBlockSize) flush();
        block.append(pBytes, size);
    }
    void writeInt32(std::int32_t value);
    /// A count that its field of 32 bits cannot hold is a failure of the file.
    void writeCount(std::size_t count);
    /// x, y and z.
    void writePoint(const Point2& point);
    /// False, with the line "FILENAME can't be written", if the file is not complete: a full disk shows no
    /// later than here.
    bool close();

private:
    void flush();

    const char* name;
    std::ofstream file;
    std::string block;
};

/// A binary file that is read from front to back. It starts with a number that tells its type.
class BinaryReader {
public:
    /// Opens the file, whose name has to stay until close(), and reads the type, 0 if the file is too short.
    /// False, with the line "FILENAME can't be read", if that fails.
    bool open(const char* filename, std::int32_t& type);

    /// A field that the file is too short for reads as 0.
    std::int32_t readInt32();
    /// Calls take(pRecord) for each of numRecords records, of which a short file gives those that are
    /// complete, and a negative number gives none. The number comes from the file and may be anything, so
    /// nothing is allocated by it.
    template <class Take>
    void readRecords(std::int32_t numRecords, std::size_t recordSize, const Take& take);
    /// False, with the line "FILENAME can't be read", if the medium has failed on the way. A file that was
    /// too short is no failure.
    bool close();

private:
    const char* name = nullptr;
    std::ifstream file;
};

template <class Bits>
Bits getLittleEndian(const char* pBytes) {
    Bits bits = 0;
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
        bits |= static_cast<Bits>(static_cast<unsigned char>(pBytes[i])) << (8 * i);
    return bits;
}

inline double getDouble(const char* pBytes) {
    const std::uint64_t bits = getLittleEndian<std::uint64_t>(pBytes);
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// The coordinates at the front of a record; the height is 0.0 if the record has none.
inline Point2 getPoint(const char* pRecord, bool bHeight) {
    return Point2(getDouble(pRecord), getDouble(pRecord + 8), bHeight ? getDouble(pRecord + 16) : 0.0);
}

template <class Take>
void BinaryReader::readRecords(std::int32_t numRecords, std::size_t recordSize, const Take& take) {
    std::size_t numLeft = numRecords > 0 ? static_cast<std::size_t>(numRecords) : 0;
    const std::size_t recordsInBlock = std::min(numLeft, fileBlockSize / recordSize);
    std::string block(recordsInBlock * recordSize, '\0');
    while (numLeft > 0 && file) {
        const std::size_t numWanted = std::min(numLeft, recordsInBlock);
        file.read(&block[0], static_cast<std::streamsize>(numWanted * recordSize));
        const std::size_t numRead = static_cast<std::size_t>(file.gcount()) / recordSize;
        for (std::size_t i = 0; i < numRead; ++i)
            take(block.data() + i * recordSize);
        numLeft -= numWanted;
    }
}

} // namespace QUOR_KELM25D
