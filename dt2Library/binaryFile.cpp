// Bytes of little-endian fields, and the files that hold them.
// Formats are not known here: see dataFiles.cpp and triangulationFile.cpp.
#include "binaryFile.h"

#include <cstring>
#include <iostream>
#include <limits>

namespace QUOR_KELM25D {

namespace {

template <class Bits>
void putBits(char* pBytes, Bits bits) {
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
        pBytes[i] = static_cast<char>((bits >> (8 * i)) & 0xff);
}

void putDouble(char* pBytes, double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    putBits(pBytes, bits);
}

} // namespace

bool failWith(const char* filename, const std::string& text) {
    std::cout << filename << text << std::endl;
    return false;
}

// --- FileWriter -------------------------------------------------------------------------------------------

FileWriter::FileWriter(const char* filename, std::ios::openmode mode)
    : name(filename), file(filename, mode | std::ios::trunc) {
    block.reserve(fileBlockSize);
}

void FileWriter::writeInt32(std::int32_t value) {
    char bytes[4];
    putBits(bytes, static_cast<std::uint32_t>(value));
    write(bytes, sizeof bytes);
}

void FileWriter::writeCount(std::size_t count) {
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        file.setstate(std::ios::failbit);
    writeInt32(static_cast<std::int32_t>(count));
}

void FileWriter::writePoint(const Point2& point) {
    char bytes[24];
    putDouble(bytes, point.x());
    putDouble(bytes + 8, point.y());
    putDouble(bytes + 16, point.z());
    write(bytes, sizeof bytes);
}

bool FileWriter::close() {
    flush();
    file.close();
    return file ? true : failWith(name, " can't be written");
}

void FileWriter::flush() {
    file.write(block.data(), static_cast<std::streamsize>(block.size()));
    block.clear();
}

// --- BinaryReader -----------------------------------------------------------------------------------------

bool BinaryReader::open(const char* filename, std::int32_t& type) {
    name = filename;
    file.open(filename, std::ios::binary);
    if (!file.is_open()) return failWith(name, " can't be read");
    type = readInt32();
    return file.bad() ? failWith(name, " can't be read") : true; // a directory opens, but does not read
}

std::int32_t BinaryReader::readInt32() {
    char bytes[4];
    if (!file.read(bytes, sizeof bytes)) return 0;
    return static_cast<std::int32_t>(getLittleEndian<std::uint32_t>(bytes));
}

bool BinaryReader::close() {
    const bool bIntact = !file.bad();
    file.close();
    return bIntact ? true : failWith(name, " can't be read");
}

} // namespace QUOR_KELM25D
