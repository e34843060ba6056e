// The organiser of a parallel insertion: sparse vertices, chunks, and who may run when.
// The region of a chunk is computed in Chunk::prepare.

#include "InserterMT.h"

#include "MTCtrl.h"
#include "Mesh2.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <system_error>
#include <thread>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t sparsePerChunk = 5;
constexpr std::size_t maxTail =
    1000; // a remainder below this, and below a third of a chunk, joins the last chunk
constexpr std::size_t minRefill = 100, maxRefill = 40000; // fresh triangles a worker takes at a time

} // namespace

InserterMT::InserterMT(Mesh2& mesh_, const Bbox2& frame_, int numCPU_)
    : mesh(mesh_), frame(frame_), numCPU(numCPU_) {
}

InserterMT::~InserterMT() = default;

void InserterMT::run(VertexVault::EntryIterator first, VertexVault::EntryIterator last, Triangle2* pHint) {
    divide(first, last);
    KELM_CHECK(!vSparseVtx.empty());
    mesh.insertRangeSequential(vSparseVtx.data(), vSparseVtx.data() + vSparseVtx.size(), pHint);
    makeChunks(first, static_cast<std::size_t>(last - first) - vSparseVtx.size());

    std::vector<Chunk*> vPointers;
    for (const auto& pChunk : vChunks) {
        vPointers.push_back(pChunk.get());
    }
    MTCtrl<Chunk>(vPointers.begin(), vPointers.end()).run(&Chunk::prepare, numCPU);

    // Each worker goes along the curve from a place of its own, so that what it needs next is in its cache.
    const std::size_t numWorkers = std::min(static_cast<std::size_t>(numCPU), vChunks.size());
    const std::size_t perWorker = 2 * static_cast<std::size_t>(last - first) / numWorkers;
    const int refill = static_cast<int>(std::clamp<std::size_t>(perWorker / 8, minRefill, maxRefill));
    numWaiting = vChunks.size();
    vTaken.assign(vChunks.size(), false);
    for (std::size_t i = 0; i < numWorkers; ++i) {
        vCursors.push_back(i * vChunks.size() / numWorkers);
        vFresh.emplace_back(mesh, refill);
    }
    KELM_CHECK(vStartedChunks.empty());
    std::vector<std::thread> vThreads;
    vThreads.reserve(numWorkers);
    try {
        for (std::size_t i = 1; i < numWorkers; ++i) {
            vThreads.emplace_back(&InserterMT::worker, this, i);
        }
    } catch (const std::system_error&) {
        // No more threads to be had: those that run do all the work.
    }
    worker(0); // this thread takes part
    for (std::thread& thread : vThreads) {
        thread.join();
    }
    mesh.getProgress().advanceSteps(numUnreported);
    if (pFailure) std::rethrow_exception(pFailure);

    for (FreshTriangles& fresh : vFresh) {
        fresh.giveBack();
    }
    for (const auto& pChunk : vChunks) {
        pChunk->insertPostponed();
    }
}

void InserterMT::divide(VertexVault::EntryIterator first, VertexVault::EntryIterator last) {
    const std::size_t n = static_cast<std::size_t>(last - first);
    numChunks = static_cast<std::size_t>(2.0 * std::sqrt(static_cast<double>(n)));
    const std::size_t numSparse = std::min(sparsePerChunk * numChunks, n / 2);
    stride = n / numSparse;
    for (std::size_t i = stride; i < n; i += stride + 1) {
        vSparseVtx.push_back(first[i]);
    }
}

void InserterMT::makeChunks(VertexVault::EntryIterator first, std::size_t d) {
    const DenseVertices denseVertices{first, stride};
    const std::size_t chunkSize = d / numChunks, tailLimit = chunkSize / 3;
    for (std::size_t from = 0; from < d;) {
        std::size_t end = std::min(from + chunkSize, d);
        const std::size_t rest = d - end;
        if (rest < maxTail && rest <= tailLimit) end = d;
        // The sparse vertex next to the chunk's first vertex; a duplicate has no triangle.
        std::size_t near = std::min(from / stride, vSparseVtx.size() - 1);
        while (near > 0 && vSparseVtx[near].pVtx->getIncidentTriangle() == nullptr)
            --near;
        const Point2* pNear = vSparseVtx[near].pVtx;
        if (pNear->getIncidentTriangle() == nullptr) pNear = mesh.getFakeCorner();
        vChunks.emplace_back(new Chunk(mesh, frame, denseVertices, from, end, pNear));
        from = end;
    }
}

void InserterMT::worker(std::size_t workerIdx) {
    try {
        while (Chunk* pChunk = waitForNextChunk(workerIdx)) {
            pChunk->run(vFresh[workerIdx]);
            std::size_t numToReport = 0;
            {
                const std::lock_guard<std::mutex> lock(mtx);
                vStartedChunks.erase(std::find(vStartedChunks.begin(), vStartedChunks.end(), pChunk));
                chunkDone.notify_all();
                numUnreported += pChunk->numDone();
                if (workerIdx == 0) std::swap(numToReport, numUnreported);
            }
            mesh.getProgress().advanceSteps(numToReport); // receivers are called on the calling thread only
        }
    } catch (...) {
        const std::lock_guard<std::mutex> lock(mtx);
        if (!pFailure) pFailure = std::current_exception();
        numWaiting = 0; // the others end after what they are at
        chunkDone.notify_all();
    }
}

/// Null when no chunk is left to start.
Chunk* InserterMT::waitForNextChunk(std::size_t workerIdx) {
    std::unique_lock<std::mutex> lock(mtx);
    for (;;) {
        if (numWaiting == 0) return nullptr;
        if (Chunk* pChunk = getNextChunk(workerIdx)) return pChunk;
        chunkDone.wait(lock);
    }
}

/// The next waiting chunk, from the worker's cursor on and round, that keeps clear of all started ones; null
/// if there is none. Under the lock.
Chunk* InserterMT::getNextChunk(std::size_t workerIdx) {
    std::size_t& cursor = vCursors[workerIdx];
    while (vTaken[cursor]) {
        cursor = (cursor + 1) % vChunks.size();
    }
    for (std::size_t k = 0; k < vChunks.size(); ++k) {
        const std::size_t i = (cursor + k) % vChunks.size();
        if (vTaken[i]) continue;
        Chunk* pChunk = vChunks[i].get();
        const bool bFree =
            std::none_of(vStartedChunks.begin(), vStartedChunks.end(), [&](const Chunk* pStarted) {
                return pStarted->getInfluenceBox().doIntersect(pChunk->getInfluenceBox());
            });
        if (!bFree) continue;
        vTaken[i] = true;
        --numWaiting;
        vStartedChunks.push_back(pChunk);
        return pChunk;
    }
    return nullptr;
}

} // namespace QUOR_KELM25D
