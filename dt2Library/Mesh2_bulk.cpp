// Insertion of many points at once: order, start triangles, the frame of far corners, duplicates.
// One vertex enters the mesh in Mesh2_location.cpp; keys and sorting belong to VertexVault.
// The order within the Hilbert order is made by insertBisecting in MeshInserter.h.

#include "Mesh2.h"

#include "InserterMT.h"
#include "MTCtrl.h"
#include "messages.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace QUOR_KELM25D {

namespace {

constexpr double frameFactor = 1.01; // size of the frame relative to the box

/// Finds the extent of a range of points, and whether all are finite, in one pass.
struct ExtentTask {
    const Point2 *first, *last;
    double minX, minY, maxX, maxY;
    double zero; // 0, or not a number if a coordinate was not finite

    void run() {
        minX = maxX = first->x();
        minY = maxY = first->y();
        zero = 0.0;
        for (const Point2* p = first; p != last; ++p) {
            const double x = p->x(), y = p->y();
            zero += x * 0.0 + y * 0.0;
            minX = x < minX ? x : minX;
            maxX = x > maxX ? x : maxX;
            minY = y < minY ? y : minY;
            maxY = y > maxY ? y : maxY;
        }
    }
};

void reportNotFinite() {
    printError("Dt2::insert()", "a coordinate is not finite, none of the points is inserted");
}

} // namespace

void Mesh2::insertVector(const std::vector<Point2>& v, std::vector<Point2*>* pvHandles) {
    if (pvHandles != nullptr) pvHandles->clear();
    if (v.empty()) return;
    KELM_CHECK(vertexVault.dupIsClean());
    const bool bRefused = isBroken("Dt2::insert()");
    if (bRefused || !extendBox(v)) {
        if (!bRefused) reportNotFinite();
        if (pvHandles != nullptr) pvHandles->assign(v.size(), nullptr);
        return;
    }
    const bool bFramed = needsFrame(v.size()) && createFakeBox();
    insertBulk("insert vertices", v.size(), pvHandles,
               [&](std::size_t& firstIdx) { vertexVault.addVertices(v, pvHandles, firstIdx); });
    if (bFramed) removeFakeBox();
}

/// Extends the box to all points. False, and nothing done, if a coordinate is not finite.
bool Mesh2::extendBox(const std::vector<Point2>& v) {
    const int numThreads = v.size() >= VertexVault::minParallel ? numCPU : 1;
    const std::size_t numTasks = std::min(static_cast<std::size_t>(numThreads), v.size());
    std::vector<ExtentTask> vTasks;
    for (std::size_t i = 0; i < numTasks; ++i) {
        vTasks.push_back(
            {v.data() + i * v.size() / numTasks, v.data() + (i + 1) * v.size() / numTasks, 0, 0, 0, 0, 0});
    }
    runTasks(vTasks, &ExtentTask::run, numThreads);
    Bbox2 added;
    for (const ExtentTask& task : vTasks) {
        if (!(task.zero == 0.0)) return false;
        added.add(Point2(task.minX, task.minY, 0.0));
        added.add(Point2(task.maxX, task.maxY, 0.0));
    }
    coverBox(added);
    return true;
}

/// Whether a bulk insertion of n points goes into the frame of far corners. Short ones do without, since they
/// run on one thread; but vertices that wait have to go on waiting through a bulk insertion with several
/// threads. Workers know nothing of constraints and rely on empty circles: without those there is one thread.
bool Mesh2::needsFrame(std::size_t n) const noexcept {
    if (numCPU == 1 || segmentTable.size() != 0 || !bMayBeDelaunay) return false;
    return n >= minParallelInsertion || (!is2D() && vertexVault.size() != 0);
}

void Mesh2::insertArray(int numPoints, const double* aCoordinates, Point2** aHandles) {
    if (numPoints <= 0) return;
    if (aCoordinates == nullptr || aHandles == nullptr) {
        printError("Dt2::insert()", "an array is missing, none of the points is inserted");
        return;
    }
    const std::size_t n = static_cast<std::size_t>(numPoints);
    std::vector<Point2*> vHandles(n, nullptr);
    double zero = 0.0; // stays so if all coordinates are finite
    for (std::size_t i = 0; i < n; ++i) {
        zero += aCoordinates[3 * i] * 0.0 + aCoordinates[3 * i + 1] * 0.0;
    }
    if (isBroken("Dt2::insert()")) {
        // no handles
    } else if (!(zero == 0.0)) {
        reportNotFinite();
    } else if (numCPU >= 2 && numPoints >= 1000) {
        std::vector<Point2> v;
        v.reserve(n);
        for (const double* p = aCoordinates; p != aCoordinates + 3 * n; p += 3) {
            v.emplace_back(p[0], p[1], p[2]);
        }
        insertVector(v, &vHandles);
    } else {
        KELM_CHECK(vertexVault.dupIsClean());
        Bbox2 added;
        added.add(static_cast<unsigned>(numPoints), aCoordinates);
        coverBox(added);
        insertBulk("insert", n, &vHandles, [&](std::size_t& firstIdx) {
            vertexVault.addVertices(numPoints, aCoordinates, &vHandles, firstIdx);
        });
    }
    std::copy(vHandles.begin(), vHandles.end(), aHandles);
}

/// What all bulk insertions do once the box fits: addVertices(firstIdx) fills the vault.
template <class AddVertices>
void Mesh2::insertBulk(const char* label, std::size_t numPoints, std::vector<Point2*>* pvHandles,
                       const AddVertices& addVertices) {
    const double n = static_cast<double>(numPoints);
    progress.begin(label, static_cast<int>(std::min(1.1 * n, 2147483647.0)));
    std::size_t firstIdx = 0;
    if (!is2D()) vertexVault.dropInactive(); // positions stay as they are from here on
    addVertices(firstIdx);
    progress.advance(static_cast<int>(0.1 * n));
    if (is2D()) {
        VertexVault::EntryIterator first, last;
        vertexVault.getRange(firstIdx, first, last);
        insertRange(first, last, vertexVault.getCloT(first->hcKey, *first->pVtx));
    } else {
        startTriangulation(firstIdx);
    }
    vertexVault.fixDuplicates(pvHandles);
    KELM_CHECK(vertexVault.dupIsClean());
    vertexVault.sortIfNeeded(true);
    progress.finish();
}

void Mesh2::insertRange(VertexVault::EntryIterator first, VertexVault::EntryIterator last, Triangle2* pHint) {
    // Without the frame a worker could meet the hull; below the limit threads cost more than they save.
    if (numCPU > 1 && static_cast<std::size_t>(last - first) >= minParallelInsertion &&
        vertexVault.hasFakeCorners()) {
        Bbox2 frame;
        for (std::size_t i = 0; i < 4; ++i) {
            frame.add(*vertexVault.getFakeCorner(i));
        }
        InserterMT(*this, frame, numCPU).run(first, last, pHint);
    } else {
        insertRangeSequential(first, last, pHint);
    }
}

/// Up to the wanted number of fresh triangles side by side, at least one, for one of several threads. Their
/// contents are undefined until they are used or released.
int Mesh2::createTriangles(int wanted, Triangle2*& pFirst) {
    const std::lock_guard<std::mutex> lock(mtxFreshTriangles);
    return trianglePool.allocateBlock(wanted, pFirst);
}

void Mesh2::releaseTriangles(Triangle2* pFirst, int count) {
    for (int i = 0; i < count; ++i) {
        recycleTriangle(pFirst + i);
    }
}

void Mesh2::insertRangeSequential(VertexVault::EntryIterator first, VertexVault::EntryIterator last,
                                  Triangle2* pHint) {
    insertBisecting(
        0, static_cast<std::size_t>(last - first), pHint, [&](std::size_t i) { return first[i].pVtx; },
        [&](Point2* pVtx, Triangle2* pStart) { return insertVertex(pVtx, pStart); });
}

double Mesh2::measureTriangulationTime(const std::vector<Point2>& v) const {
    // Not with timer(), whose names are shared by all triangulations and all threads.
    const auto start = std::chrono::steady_clock::now();
    Mesh2 temporary(3);
    temporary.setNumCPU(numCPU);
    temporary.insertVector(v);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// --- the frame --------------------------------------------------------------------------------------------

/// Surrounds the box with four far corners, so that no thread ever meets the hull. False, and nothing done,
/// where no box fits around the points (without extent in x or y, or next to nothing, or beyond the range of
/// doubles): they are inserted as with one thread.
bool Mesh2::createFakeBox() {
    Bbox2 frame = bbox; // a copy stays wired to quorTest: the filter has to cover the corners
    frame.enlargeRanges(frameFactor);
    // A box some few units in the last place wide is not enlarged at all.
    const bool bAround = frame.get_minX() < bbox.get_minX() && frame.get_maxX() > bbox.get_maxX() &&
                         frame.get_minY() < bbox.get_minY() && frame.get_maxY() > bbox.get_maxY();
    if (!bAround || !std::isfinite(frame.getRangeX()) || !std::isfinite(frame.getRangeY())) return false;
    vertexVault.createFakeCorners(frame);
    if (is2D()) {
        for (std::size_t i = 0; i < 4; ++i) {
            Point2* pCorner = vertexVault.getFakeCorner(i);
            insertVertex(pCorner, findStart(*pCorner));
        }
        return true;
    }
    vertexVault.setFullDimensional(true);
    Point2* aCorner[4];
    for (std::size_t i = 0; i < 4; ++i) {
        aCorner[i] = vertexVault.getFakeCorner(i);
    }
    Triangle2* pT0 = createTriangle(aCorner[0], aCorner[1], aCorner[2]);
    Triangle2* pT1 = createTriangle(aCorner[0], aCorner[2], aCorner[3]);
    pT0->setOppTriangle(1, pT1);
    pT1->setOppTriangle(2, pT0);
    return true;
}

void Mesh2::removeFakeBox() {
    if (!vertexVault.hasFakeCorners())
        checkFailed("vertexVault.vFakeBoxHandles.size()==4", __FILE__, __LINE__);
    for (std::size_t i = 0; i < 4; ++i) {
        remove(vertexVault.getFakeCorner(i), false);
    }
    vertexVault.deleteFakeCorners();
}

} // namespace QUOR_KELM25D
