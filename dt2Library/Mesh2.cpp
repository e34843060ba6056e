// Construction of a mesh, insertion of single points, the start, reading and settings.
// Bulk insertion is in Mesh2_bulk.cpp, what happens to triangles in Mesh2_location.cpp.

#include "Mesh2.h"

#include "measures.h"
#include "messages.h"

#include <algorithm>
#include <thread>

namespace QUOR_KELM25D {

namespace {

// A block of the pools is at most this many records; the numbers bound one allocation.
constexpr int maxVerticesPerBlock = 3125000;
constexpr int maxTrianglesPerBlock = 4166666;
constexpr unsigned hilbertBits = 30;

int toBlockSize(double numRecords) noexcept {
    return static_cast<int>(std::min(numRecords, 2147483647.0));
}

} // namespace

Mesh2::Mesh2(unsigned numExpectedVertices)
    : hilbert(0.0, 0.0, 0.0, 0.0, hilbertBits), vertexVault(vertexPool, hilbert, quorTest, numCPU),
      bbox(&quorTest), progress("DT2") {
    const unsigned numExpected = std::max(3U, numExpectedVertices);
    vertexPool.init(toBlockSize(numExpected), maxVerticesPerBlock);
    trianglePool.init(toBlockSize(2.0 * numExpected + 10.0), maxTrianglesPerBlock);
}

Mesh2::~Mesh2() = default;

bool Mesh2::isBroken(const char* where) const {
    if (bBroken) {
        printError(where,
                   "the triangles imported are no triangulation, they can only be read, drawn and saved");
    }
    return bBroken;
}

// --- single points ----------------------------------------------------------------------------------------

/// To be called before points are inserted, with their box. Doubling the own one keeps it from growing often:
/// a point inside the doubled box costs nothing.
void Mesh2::coverBox(const Bbox2& added) {
    extent.add(added.getMinPoint());
    extent.add(added.getMaxPoint());
    const bool bGrown = bbox.add(added.getMinPoint());
    if (!bbox.add(added.getMaxPoint()) && !bGrown) return;
    bbox.doubleTheBox(); // and with it the filter of quorTest
    hilbert = HC2(bbox.get_minX(), bbox.get_minY(), bbox.get_maxX(), bbox.get_maxY(), hilbertBits);
    vertexVault.rekey();
}

Point2* Mesh2::insertPoint(const Point2& p, Triangle2* pNear) {
    if (isBroken("Dt2::insert()")) return nullptr;
    if (!isFinite(p)) {
        printError("Dt2::insert()", "a coordinate is not finite, the point is not inserted");
        return nullptr;
    }
    Bbox2 added;
    added.add(p);
    coverBox(added);
    if (!is2D()) {
        if (Point2* pExisting = vertexVault.findWaiting(p)) return pExisting;
    }
    Point2* pVtx = vertexVault.makeVertex(p);
    const std::uint32_t key = hilbert.getIdx(p);
    if (!is2D()) {
        vertexVault.addVertex(key, pVtx);
        // Vertices that had to wait through a bulk insertion may turn out to be duplicates only now.
        if (startTriangulation(vertexVault.size())) vertexVault.fixDuplicates(nullptr);
        return pVtx;
    }
    Triangle2* pStart = pNear != nullptr ? pNear : findStart(p);
    vertexVault.addVertex(key, pVtx);
    pLastFound = insertVertex(pVtx, pStart);
    if (!vertexVault.dupIsClean()) return vertexVault.resolveDuplicate(pVtx);
    vertexVault.sortIfNeeded(true);
    return pVtx;
}

/// The first triangle from three vertices that are not collinear, and then all that wait: the first
/// numPreExistingVtx of the index before the others. False, and nothing changed, if there is no such triple.
bool Mesh2::startTriangulation(std::size_t numPreExistingVtx) {
    using std::distance; // the checks print their conditions as they stand
    if (is2D()) checkFailed("!vertexVault.bFullDimensional", __FILE__, __LINE__);
    Point2 *a = nullptr, *b = nullptr, *c = nullptr;
    if (!vertexVault.getFirstTriple(a, b, c)) return false;
    // Vertices that came one by one wait in the order they came in: walks between them would cross the mesh.
    const bool bAll = numPreExistingVtx == vertexVault.size();
    vertexVault.dropInactive();
    if (bAll) numPreExistingVtx = vertexVault.size();
    vertexVault.orderFront(numPreExistingVtx);
    if (segmentTable.size() != 0) {
        numPreExistingVtx = vertexVault.orderConstraintVerticesFirst();
        vertexVault.getFirstTriple(a, b, c); // so that none of them is a duplicate of a constraint's end
    }
    vertexVault.setFullDimensional(true);
    Triangle2* pFirst = createTriangle(a, b, c);
    VertexVault::EntryIterator startIt, stopIt;
    vertexVault.getRange(0, startIt, stopIt);
    KELM_CHECK(numPreExistingVtx<=(size_t)distance(startIt,stopIt));
    // The three corners are met again among the entries and recognised as already present.
    const auto middle = startIt + static_cast<std::ptrdiff_t>(numPreExistingVtx);
    if (startIt != middle) insertRange(startIt, middle, pFirst);
    if (middle != stopIt) insertRange(middle, stopIt, pFirst);
    return true;
}

// --- triangles and vertices of one's own ------------------------------------------------------------------

/// Storage for one more triangle, its contents undefined.
Triangle2* Mesh2::takeTriangle() {
    if (vDeadTriangles.empty()) return trianglePool.allocate();
    Triangle2* pT = vDeadTriangles.back();
    vDeadTriangles.pop_back();
    return pT;
}

Triangle2* Mesh2::createTriangle(Point2* a, Point2* b, Point2* c) {
    Triangle2* pT = takeTriangle();
    pT->setProperties(a, b, c);
    return pT;
}

/// A triangle in use has corners; a cleared one waits for its next use.
void Mesh2::recycleTriangle(Triangle2* pT) {
    pT->clearProperties();
    vDeadTriangles.push_back(pT);
}

void Mesh2::addVertices(const std::vector<Point2>& vPlaces, std::vector<Point2*>& vVertices) {
    Bbox2 box;
    box.add(vPlaces.begin(), vPlaces.end());
    coverBox(box);
    vertexVault.dropInactive();
    std::size_t firstIdx = 0;
    vertexVault.addVertices(vPlaces, &vVertices, firstIdx);
}

// --- reading and settings ---------------------------------------------------------------------------------

unsigned Mesh2::numberOfTriangles() const {
    const std::size_t numAllT = trianglePool.size(), numDeadT = vDeadTriangles.size();
    KELM_CHECK(numDeadT<=numAllT);
    return static_cast<unsigned>(numAllT - numDeadT);
}

void Mesh2::getTrianglePointers(std::vector<Triangle2*>& vTriangles) const {
    vTriangles.clear();
    if (!is2D()) return;
    vTriangles.reserve(numberOfTriangles());
    trianglePool.forEach([&](Triangle2& t) {
        if (t.getCorner(0) != nullptr) vTriangles.push_back(&t);
    });
}

void Mesh2::getVertexPointers(std::vector<Point2*>& vVertices) const {
    vertexVault.getVertexPointers(vVertices);
}

int Mesh2::setNumCPU(int numCPU_) {
    if (numCPU_ > 0) {
        numCPU = numCPU_;
    } else if (numCPU_ < 0) {
        numCPU = 1;
    } else {
        KELM_CHECK(numCPU_==0);
        numCPU = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    }
    return numCPU;
}

} // namespace QUOR_KELM25D
