// Fuzz target for the readers of data files: any bytes are read without a fault, and what was read is the
// same after it was written and read again. The first byte chooses the reader, the rest is the file.
// Sequences of operations on a triangulation are operations_fuzz.cpp. For Linux: the files are in memory
// only.
#include <kelm25d/ConstraintSegment2.h>
#include <kelm25d/Kelm_2D.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/dataFiles.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <set>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

using namespace QUOR_KELM25D;

namespace {

void require(bool bHolds, const char* what) {
    if (bHolds) return;
    std::cerr << "Does not hold: " << what << std::endl;
    std::abort();
}

// A file in memory that has a name as long as this process lives.
class MemoryFile {
public:
    MemoryFile() : descriptor(memfd_create("readers_fuzz", 0)) {
        require(descriptor >= 0, "files in memory can be made");
        path = "/proc/self/fd/" + std::to_string(descriptor);
    }

    const char* name() const { return path.c_str(); }
    void fill(const std::uint8_t* pBytes, std::size_t size) {
        require(ftruncate(descriptor, 0) == 0, "the input is emptied");
        require(pwrite(descriptor, pBytes, size, 0) == static_cast<ssize_t>(size), "the input is written");
    }

private:
    int descriptor;
    std::string path;
};

// All bits of the coordinates, so that signed zeros and what is not a number count.
std::string toBytes(const Point2& point) {
    const double aCoordinate[3] = {point.x(), point.y(), point.z()};
    std::string bytes(sizeof aCoordinate, '\0');
    std::memcpy(&bytes[0], aCoordinate, sizeof aCoordinate);
    return bytes;
}

std::string toBytes(const Segment2& segment) {
    return toBytes(segment.getSrc()) + toBytes(segment.getTrg());
}

template <class T>
using Reader = bool (*)(const char*, std::vector<T>&);
template <class T>
using Writer = bool (*)(const char*, const std::vector<T>&);

// A list that was read, which holds no more entries than fit into the file, comes back from another one.
template <class T>
void checkList(const MemoryFile& in, const MemoryFile& out, std::size_t maxEntries, Reader<T> read,
               Writer<T> write, Reader<T> readAgain) {
    std::vector<T> vRead;
    const bool bRead = read(in.name(), vRead);
    require(bRead || vRead.empty(), "a file of another type gives nothing");
    require(vRead.size() <= maxEntries, "no entry comes from nowhere");
    std::vector<T> vAgain;
    require(write(out.name(), vRead) && readAgain(out.name(), vAgain), "what was read can be written");
    require(std::equal(vRead.begin(), vRead.end(), vAgain.begin(), vAgain.end(),
                       [](const T& a, const T& b) { return toBytes(a) == toBytes(b); }),
            "what was written comes back");
}

// Vertices and alive constraint segments, whose ends have no order.
std::multiset<std::string> getContents(const Kelm_2D& dt) {
    std::multiset<std::string> sContents;
    std::vector<Point2*> vVertices;
    dt.getVertexPointers(vVertices);
    for (const Point2* pVtx : vVertices)
        sContents.insert(toBytes(*pVtx));
    std::vector<ConstraintSegment2*> vSegments;
    dt.getAliveConstraintSegments(vSegments);
    for (const ConstraintSegment2* pSegment : vSegments) {
        const auto ends = std::minmax({toBytes(*pSegment->getSrc()), toBytes(*pSegment->getTrg())});
        sContents.insert(ends.first + ends.second);
    }
    return sContents;
}

void checkTriangulation(const MemoryFile& in, const MemoryFile& out, std::size_t size) {
    Kelm_2D dt, again;
    const bool bLoaded = dt.load(in.name());
    const std::multiset<std::string> sContents = getContents(dt);
    require(bLoaded || sContents.empty(), "a file that is refused changes nothing");
    // Ends, crossings and pieces: n segments cross n * n times at most.
    const std::size_t maxPoints = size / 24;
    require(sContents.size() <= 3 * maxPoints * (maxPoints + 1), "no entry comes from nowhere");
    require(dt.save(out.name()) && again.load(out.name()), "what was loaded can be saved");
    require(getContents(again) == sContents, "what was saved comes back");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::cout.setstate(std::ios::failbit); // the messages of the readers are not looked at
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t size) {
    static MemoryFile in, out;
    if (size == 0) return 0;
    --size;
    in.fill(pData + 1, size);
    switch (static_cast<std::uint8_t>(pData[0] - '0') % 5) {
    case 0:
        checkList<Point2>(in, out, size / 4 + 1, readXY, writePointsASCII, readXYZ);
        break;
    case 1:
        checkList<Point2>(in, out, size / 6 + 1, readXYZ, writePointsASCII, readXYZ);
        break;
    case 2:
        checkList<Point2>(in, out, size / 16, readPointsBIN, writePointsBIN, readPointsBIN);
        break;
    case 3:
        checkList<Segment2>(in, out, size / 32, readSegmentsBIN, writeSegmentsBIN, readSegmentsBIN);
        break;
    default:
        checkTriangulation(in, out, size);
    }
    return 0;
}
