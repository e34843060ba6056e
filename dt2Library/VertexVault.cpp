// The vertex index: filling, searching, sorting, and the settling of duplicates.
// The order along the curve is made in hilbertSort.cpp; what is known of vertices that wait is in
// WaitingVertices.cpp.

#include "VertexVault.h"

#include "MTCtrl.h"
#include "SegmentTable.h"
#include "messages.h"
#include "prefetch.h"

#include <algorithm>
#include <cmath>
#include <iostream>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t sampleStep = 16;  // entries: four cache lines
constexpr std::size_t scansPerHash = 8; // entries looked at, in lengths of the index, before a table pays
constexpr std::size_t sharesPerThread = 8;
constexpr std::size_t notFound = 2147483647;
constexpr std::size_t prefetchDistance = 12; // points ahead while gathering them in Hilbert order

struct PointSource {
    const Point2* aPoint;
    std::size_t n;
    double x(std::size_t i) const noexcept { return aPoint[i].x(); }
    double y(std::size_t i) const noexcept { return aPoint[i].y(); }
    Point2 get(std::size_t i) const noexcept { return aPoint[i]; }
    void prefetchAt(std::size_t i) const noexcept { prefetch(aPoint + i); }
};

struct TripleSource {
    const double* xyz;
    std::size_t n;
    double x(std::size_t i) const noexcept { return xyz[3 * i]; }
    double y(std::size_t i) const noexcept { return xyz[3 * i + 1]; }
    Point2 get(std::size_t i) const noexcept { return Point2(xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]); }
    void prefetchAt(std::size_t i) const noexcept { prefetch(xyz + 3 * i); }
};

/// Computes the keys of a range of points. One of them also makes room for the handles, whose clearing takes
/// as long as a range.
template <class Source>
struct Task {
    KeyPosVector* pvKeys;
    const Source* pSource;
    const HC2* pHilbert;
    std::size_t first, last;
    std::vector<Point2*>* pvHandles; // or null: to be given its length meanwhile

    void run() {
        if (pvHandles != nullptr) pvHandles->resize(pSource->n);
        for (std::size_t i = first; i < last; ++i) {
            (*pvKeys)[i] = {pHilbert->getIdx(pSource->x(i), pSource->y(i)), static_cast<std::uint32_t>(i)};
        }
    }
};

/// Fills vertices and entries of a range of sorted positions.
template <class Source>
struct FTask {
    const KeyPosVector* pvKeys;
    const Source* pSource;
    std::vector<Point2*>* pvHandles; // or null
    IdxVtx* aEntry;                  // of position 0
    Point2* pVertex;                 // storage for the vertices, that of the first position in front
    std::size_t first, last;

    void run() {
        const KeyPosVector& vKeys = *pvKeys;
        for (std::size_t i = first; i < last; ++i) {
            if (i + prefetchDistance < last) pSource->prefetchAt(vKeys[i + prefetchDistance].pos);
            Point2* pVtx = new (pVertex + (i - first)) Point2(pSource->get(vKeys[i].pos));
            aEntry[i] = {vKeys[i].key, true, pVtx};
            if (pvHandles != nullptr) (*pvHandles)[vKeys[i].pos] = pVtx;
        }
    }
};

Triangle2* usableTriangle(const IdxVtx& entry) noexcept {
    return entry.bActive ? entry.pVtx->getIncidentTriangle() : nullptr;
}

bool isCloser(const IdxVtx& entry, const IdxVtx& other, const Point2& q) noexcept {
    const auto distance = [&](const Point2& p) {
        return std::fabs(p.x() - q.x()) + std::fabs(p.y() - q.y());
    };
    return distance(*entry.pVtx) < distance(*other.pVtx);
}

} // namespace

VertexVault::VertexVault(SimplePool<Point2>& vertexPool_, const HC2& hilbert_, QuorTest& quorTest_,
                         const int& numCPU_)
    : vertexPool(vertexPool_), hilbert(hilbert_), numCPU(numCPU_), waiting(vIdxVtxAct, quorTest_) {
}

VertexVault::~VertexVault() {
    deleteFakeCorners();
}

// --- adding -----------------------------------------------------------------------------------------------

void VertexVault::addVertex(std::uint32_t key, Point2* pVtx) {
    vIdxVtxAct.push_back({key, true, pVtx});
}

void VertexVault::addVertices(const std::vector<Point2>& vPoints, std::vector<Point2*>* pvHandles,
                              std::size_t& firstIdx) {
    addFrom(PointSource{vPoints.data(), vPoints.size()}, pvHandles, firstIdx);
}

void VertexVault::addVertices(int n, const double* xyz, std::vector<Point2*>* pvHandles,
                              std::size_t& firstIdx) {
    addFrom(TripleSource{xyz, static_cast<std::size_t>(n)}, pvHandles, firstIdx);
}

template <class Source>
void VertexVault::addFrom(const Source& source, std::vector<Point2*>* pvHandles, std::size_t& firstIdx) {
    const std::size_t n = source.n;
    firstIdx = vIdxVtxAct.size();
    const int numThreads = n >= minParallel && n > 10 * static_cast<std::size_t>(numCPU) ? numCPU : 1;
    // Several shares a thread: one that the system interrupts leaves the rest to the others.
    const std::size_t numShares =
        numThreads == 1 ? 1 : sharesPerThread * static_cast<std::size_t>(numThreads);
    const std::size_t share = std::max<std::size_t>(1, n / numShares);

    KeyPosVector vKeys(n);
    std::vector<Task<Source>> vKeyTasks;
    for (std::size_t first = 0; first < n; first += share) {
        vKeyTasks.push_back(
            {&vKeys, &source, &hilbert, first, std::min(first + share, n), first == 0 ? pvHandles : nullptr});
    }
    runTasks(vKeyTasks, &Task<Source>::run, numThreads);
    sortKeys(vKeys, numThreads);
    refineEqualKeys(
        vKeys, [&](std::uint32_t i) { return source.x(i); }, [&](std::uint32_t i) { return source.y(i); });

    // The pool has no lock: all storage is taken here, block by block, before the workers start.
    vIdxVtxAct.resize(firstIdx + n);
    std::vector<FTask<Source>> vFillTasks;
    for (std::size_t position = 0; position < n;) {
        Point2* pBlock = nullptr;
        const int count =
            vertexPool.allocateBlock(static_cast<int>(std::min<std::size_t>(n - position, share)), pBlock);
        const std::size_t end = position + static_cast<std::size_t>(count);
        vFillTasks.push_back(
            {&vKeys, &source, pvHandles, vIdxVtxAct.data() + firstIdx, pBlock, position, end});
        position = end;
    }
    runTasks(vFillTasks, &FTask<Source>::run, numThreads);
}

// --- searching --------------------------------------------------------------------------------------------

/// The first position in the sorted part whose key is not below the given one, or the last position if there
/// is none; 0 if that part is empty. Entries that are out of order after a sort in four parts may lead it
/// astray, which costs time only.
std::size_t VertexVault::lowerBound(std::uint32_t key) const noexcept {
    if (numSorted == 0) return 0;
    const std::uint32_t* base = vKeySamples.data();
    for (std::size_t n = vKeySamples.size(); n > 1;) {
        const std::size_t half = n / 2;
        base = base[half] < key ? base + half : base;
        n -= half;
    }
    // At the last sample below the key: the answer is within one step behind it.
    std::size_t i = static_cast<std::size_t>(base - vKeySamples.data()) * sampleStep;
    const std::size_t last = std::min(i + sampleStep, numSorted - 1);
    while (i < last && vIdxVtxAct[i].hcKey < key)
        ++i;
    return i;
}

Triangle2* VertexVault::getCloT(std::uint32_t key, const Point2& q) const {
    KELM_CHECK(bFullDimensional);
    KELM_CHECK(!vIdxVtxAct.empty());
    if (numSorted != 0) {
        std::size_t found = lowerBound(key);
        // The neighbours on the curve on both sides of q: the closer one saves steps of the walk.
        if (found > 0 && isCloser(vIdxVtxAct[found - 1], vIdxVtxAct[found], q)) --found;
        for (std::size_t i = found; i < numSorted; ++i) {
            if (Triangle2* pT = usableTriangle(vIdxVtxAct[i])) return pT;
        }
        for (std::size_t i = found; i-- > 0;) {
            if (Triangle2* pT = usableTriangle(vIdxVtxAct[i])) return pT;
        }
    }
    if (hasFakeCorners()) {
        const Point2* pFakeCorner = vFakeBoxHandles.front();
        Triangle2* pFakeT = pFakeCorner->getIncidentTriangle();
        KELM_CHECK(pFakeT!=0);
        return pFakeT;
    }
    Triangle2* pT = nullptr;
    std::uint32_t best = 0;
    for (std::size_t i = numSorted; i < vIdxVtxAct.size(); ++i) {
        const IdxVtx& entry = vIdxVtxAct[i];
        const std::uint32_t difference = entry.hcKey > key ? entry.hcKey - key : key - entry.hcKey;
        if ((pT == nullptr || difference < best) && usableTriangle(entry) != nullptr) {
            pT = usableTriangle(entry);
            best = difference;
        }
    }
    if (pT == nullptr) {
        printError("Vault", "getCloT() failed");
        KELM_CHECK(false);
    }
    return pT;
}

/// Position of the active entry that matches, or npos: the run of equal keys first, then everything from the
/// end, which finds the unsorted tail and what a sort in four parts displaced.
template <class Matches>
std::size_t VertexVault::findActive(std::uint32_t key, const Matches& matches) const {
    const auto isIt = [&](std::size_t i) {
        ++numScanned;
        return vIdxVtxAct[i].bActive && matches(*vIdxVtxAct[i].pVtx);
    };
    const std::size_t found = lowerBound(key);
    for (std::size_t i = found; i < numSorted && vIdxVtxAct[i].hcKey <= key; ++i) {
        if (isIt(i)) return i;
    }
    for (std::size_t i = found; i-- > 0 && vIdxVtxAct[i].hcKey == key;) {
        if (isIt(i)) return i;
    }
    for (std::size_t i = vIdxVtxAct.size(); i-- > 0;) {
        if (isIt(i)) return i;
    }
    return npos;
}

/// Position of the vertex's active entry, or npos.
std::size_t VertexVault::findVertex(const Point2* pQuery) const {
    const auto isAt = [&](std::size_t i) {
        return i < vIdxVtxAct.size() && vIdxVtxAct[i].bActive && vIdxVtxAct[i].pVtx == pQuery;
    };
    if (isAt(lastFound)) return lastFound;
    if (numScanned > scansPerHash * vIdxVtxAct.size()) {
        // Long runs of one key or a long unsorted tail: from now on by a table, until entries move.
        for (; numPlaced < vIdxVtxAct.size(); ++numPlaced) {
            mPosition[vIdxVtxAct[numPlaced].pVtx] = numPlaced;
        }
        const auto it = mPosition.find(pQuery);
        lastFound = it != mPosition.end() && isAt(it->second) ? it->second : npos;
    } else {
        lastFound = findActive(hilbert.getIdx(*pQuery), [&](const Point2& vtx) { return &vtx == pQuery; });
    }
    return lastFound;
}

std::size_t VertexVault::getIdxOfActiveVtx(const Point2* pQuery) const {
    const std::size_t i = findVertex(pQuery);
    if (i != npos) return i;
    printError("VertexVault::getIdxOfActiveVtx", "pQuery not found");
    return notFound;
}

Point2* VertexVault::getVertexPointer(const Point2& point) const {
    const std::size_t i = findActive(hilbert.getIdx(point), [&](const Point2& vtx) { return vtx == point; });
    return i != npos ? vIdxVtxAct[i].pVtx : nullptr;
}

/// What was known of positions is so no more.
void VertexVault::entriesMoved() {
    vKeySamples.clear();
    for (std::size_t i = 0; i < numSorted; i += sampleStep) {
        vKeySamples.push_back(vIdxVtxAct[i].hcKey);
    }
    waiting.forget();
    PositionMap().swap(mPosition);
    numPlaced = numScanned = 0;
}

bool VertexVault::getFirstTriple(Point2*& a, Point2*& b, Point2*& c) {
    KELM_CHECK(!bFullDimensional);
    return waiting.getFirstTriple(a, b, c);
}

// --- reading ----------------------------------------------------------------------------------------------

void VertexVault::getRange(std::size_t firstIdx, EntryIterator& begin, EntryIterator& end) const {
    begin = vIdxVtxAct.data() + firstIdx;
    end = vIdxVtxAct.data() + vIdxVtxAct.size();
}

void VertexVault::getVertexPointers(std::vector<Point2*>& vVertices) const {
    vVertices.clear();
    vVertices.reserve(numberOfPoints());
    for (const IdxVtx& entry : vIdxVtxAct) {
        if (entry.bActive) vVertices.push_back(entry.pVtx);
    }
}

Triangle2* VertexVault::getOneValidTriangle() const noexcept {
    if (!bFullDimensional) return nullptr;
    for (const IdxVtx& entry : vIdxVtxAct) {
        if (Triangle2* pT = usableTriangle(entry)) return pT;
    }
    return nullptr;
}

Bbox2 VertexVault::computeBoundingBox() const {
    Bbox2 box;
    for (const IdxVtx& entry : vIdxVtxAct) {
        if (entry.bActive) box.add(*entry.pVtx);
    }
    return box;
}

// --- upkeep -----------------------------------------------------------------------------------------------

void VertexVault::setFullDimensional(bool bFull) noexcept {
    bFullDimensional = bFull;
    waiting.forget();
}

void VertexVault::deactivateEntry(IdxVtx& entry) noexcept {
    entry.bActive = false;
    ++numInactive;
}

void VertexVault::deactivate(Point2* pVtx) {
    ++numDeactivated;
    pVtx->setIncidentTriangle(nullptr);
    const std::size_t i = getIdxOfActiveVtx(pVtx);
    if (i == notFound) return;
    deactivateEntry(vIdxVtxAct[i]);
    if (bFullDimensional) return;
    waiting.entryLeft(i);
    if (2 * numInactive > vIdxVtxAct.size()) dropInactive();
}

void VertexVault::dropInactive() {
    if (numInactive == 0) return;
    const auto isInactive = [](const IdxVtx& entry) { return !entry.bActive; };
    const auto sortedEnd = vIdxVtxAct.begin() + static_cast<std::ptrdiff_t>(numSorted);
    numSorted -= static_cast<std::size_t>(std::count_if(vIdxVtxAct.begin(), sortedEnd, isInactive));
    vIdxVtxAct.erase(std::remove_if(vIdxVtxAct.begin(), vIdxVtxAct.end(), isInactive), vIdxVtxAct.end());
    numInactive = 0;
    entriesMoved();
}

void VertexVault::rekey() {
    for (IdxVtx& entry : vIdxVtxAct) {
        entry.hcKey = hilbert.getIdx(*entry.pVtx);
    }
    numSorted = 0;
    sortIfNeeded(false);
}

void VertexVault::sortIfNeeded(bool bConditional) {
    const bool bLongTail = static_cast<double>(vIdxVtxAct.size()) > 1.35 * static_cast<double>(numSorted);
    const bool bManyRemoved = numDeactivated > numSorted / 2 && numDeactivated > 1000;
    if (bConditional && !bLongTail && !bManyRemoved) return;
    numDeactivated = 0;
    sortEntries(vIdxVtxAct, numSorted, numCPU);
    while (!vIdxVtxAct.empty() && !vIdxVtxAct.back().bActive) {
        vIdxVtxAct.pop_back();
        --numInactive;
    }
    numSorted = vIdxVtxAct.size();
    entriesMoved();
}

std::size_t VertexVault::orderConstraintVerticesFirst() {
    const auto itOther = std::stable_partition(vIdxVtxAct.begin(), vIdxVtxAct.end(), [](const IdxVtx& entry) {
        return SegmentTable::isConstraintVertex(entry.pVtx);
    });
    numSorted = 0;
    entriesMoved();
    return static_cast<std::size_t>(itOther - vIdxVtxAct.begin());
}

void VertexVault::orderFront(std::size_t n) {
    KeyPosVector vKeys(n);
    for (std::size_t i = 0; i < n; ++i) {
        vKeys[i] = {vIdxVtxAct[i].hcKey, static_cast<std::uint32_t>(i)};
    }
    sortKeys(vKeys, numCPU);
    refineEqualKeys(
        vKeys, [&](std::uint32_t i) { return vIdxVtxAct[i].pVtx->x(); },
        [&](std::uint32_t i) { return vIdxVtxAct[i].pVtx->y(); });
    const IdxVtxVector vUnordered(vIdxVtxAct.begin(), vIdxVtxAct.begin() + static_cast<std::ptrdiff_t>(n));
    for (std::size_t i = 0; i < n; ++i) {
        vIdxVtxAct[i] = vUnordered[vKeys[i].pos];
    }
    numSorted = std::max(n, numSorted);
    entriesMoved();
}

// --- duplicates -------------------------------------------------------------------------------------------

/// Those among vertices that wait, whom nobody has met.
void VertexVault::addWaitingDuplicates() {
    if (!duplicates.empty()) checkFailed("mRedundant2UniqueVtx.empty()", __FILE__, __LINE__);
    for (const WaitingVertices::Duplicate& duplicate : waiting.findDuplicates()) {
        IdxVtx& entry = vIdxVtxAct[duplicate.position];
        deactivateEntry(entry);
        duplicates.add(entry.pVtx, duplicate.pExisting);
    }
}

/// Takes the redundant vertices of a mesh out of the index.
void VertexVault::deactivateRedundant() {
    std::size_t numFoundInIdxVtxAct = 0;
    // From the end: they have just been added, but for vertices that had waited and met the mesh only now.
    for (std::size_t i = vIdxVtxAct.size(); i-- > 0 && numFoundInIdxVtxAct < duplicates.size();) {
        IdxVtx& entry = vIdxVtxAct[i];
        if (!entry.bActive || usableTriangle(entry) != nullptr) continue;
        if (duplicates.find(entry.pVtx) == nullptr) continue;
        deactivateEntry(entry);
        ++numFoundInIdxVtxAct;
    }
    if (duplicates.size() == numFoundInIdxVtxAct) return;
    std::cout << "BUG: mRedundant2UniqueVtx.size()=" << duplicates.size() << std::endl
              << "     numFoundInIdxVtxAct=" << numFoundInIdxVtxAct << std::endl;
    checkFailed("mRedundant2UniqueVtx.size()==numFoundInIdxVtxAct", __FILE__, __LINE__);
}

void VertexVault::fixDuplicates(std::vector<Point2*>* pvHandles) {
    if (!bFullDimensional) addWaitingDuplicates();
    if (duplicates.empty()) return;
    duplicates.sort();
    if (bFullDimensional) deactivateRedundant();
    if (pvHandles != nullptr) duplicates.replaceHandles(*pvHandles);
    duplicates.clear();
    if (!bFullDimensional) sortIfNeeded(false);
}

Point2* VertexVault::resolveDuplicate(Point2* pNew) {
    Point2* pExisting = duplicates.getOnly(pNew);
    KELM_CHECK(vIdxVtxAct.back().pVtx==pNew);
    deactivateEntry(vIdxVtxAct.back());
    duplicates.clear();
    return pExisting;
}

// --- the frame --------------------------------------------------------------------------------------------

void VertexVault::createFakeCorners(const Bbox2& box) {
    KELM_CHECK(vFakeBoxHandles.empty());
    std::vector<Point2> vCorners;
    box.getCorners(vCorners);
    for (const Point2& corner : vCorners) {
        vFakeBoxHandles.push_back(new Point2(corner));
    }
}

Point2* VertexVault::getFakeCorner(std::size_t i) const {
    KELM_CHECK(vFakeBoxHandles.size()>i);
    return vFakeBoxHandles[i];
}

void VertexVault::deleteFakeCorners() {
    while (!vFakeBoxHandles.empty()) {
        delete vFakeBoxHandles.back();
        vFakeBoxHandles.pop_back();
    }
}

} // namespace QUOR_KELM25D
