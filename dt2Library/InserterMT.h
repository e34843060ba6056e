// Inserts a Hilbert-sorted range of vertices with several threads into one shared mesh.
// What a thread does with its share is in Chunk; a mesh with constraints never comes here.
//
// A sparse subset goes in first on the calling thread and gives the mesh its coarse shape. The rest is cut
// into many chunks, and each finds out which region it can touch at the most. Two chunks run at the same time
// only if their regions are disjoint; nothing has to be stitched afterwards. The frame of four far corners
// must stand around all points, so that no thread ever meets the hull.
#pragma once

#include "Chunk.h"
#include "VertexVault.h"

#include <kelm25d/Bbox2.h>

#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <vector>

namespace QUOR_KELM25D {

class Mesh2;

class InserterMT {
public:
    InserterMT(Mesh2& mesh_, const Bbox2& frame_, int numCPU_);
    ~InserterMT();
    InserterMT(const InserterMT&) = delete;
    InserterMT& operator=(const InserterMT&) = delete;

    /// Inserts the range; pHint is a triangle of the mesh near its first entry.
    void run(VertexVault::EntryIterator first, VertexVault::EntryIterator last, Triangle2* pHint);

private:
    void divide(VertexVault::EntryIterator first, VertexVault::EntryIterator last);
    void makeChunks(VertexVault::EntryIterator first, std::size_t numDense);
    void worker(std::size_t workerIdx);
    Chunk* getNextChunk(std::size_t workerIdx);
    Chunk* waitForNextChunk(std::size_t workerIdx);

    Mesh2& mesh;
    Bbox2 frame;
    int numCPU;
    std::size_t numChunks = 0, stride = 0;
    IdxVtxVector vSparseVtx; // every (stride + 1)th entry
    std::vector<std::unique_ptr<Chunk>> vChunks;
    std::vector<FreshTriangles> vFresh; // by worker

    std::mutex mtx;                    // guards what follows
    std::condition_variable chunkDone; // a region has become free
    std::vector<bool> vTaken;          // by chunk: started or finished
    std::size_t numWaiting = 0;        // chunks not taken
    std::vector<std::size_t> vCursors; // by worker: all chunks from its first one up to here are taken
    std::vector<Chunk*> vStartedChunks;
    std::size_t numUnreported = 0; // vertices inserted since the last report of progress
    std::exception_ptr pFailure;   // the first one of a worker
};

} // namespace QUOR_KELM25D
