// A contiguous range of the Hilbert order that one worker thread inserts into the shared mesh.
// Which chunks may run at the same time is decided by InserterMT.
//
// Why chunks with disjoint influence boxes never meet. At any time a vertex p of the chunk changes only
// triangles whose circle contains p. The corners of these triangles are what will be p's neighbours, and
// whatever other points come first, these lie within the circles of the triangles that p would have got in
// the sparse mesh; those circles are covered by the circles of the sparse triangles in conflict with p and of
// their neighbours across an edge. The box of all such circles over the chunk's box is the influence box. So
// every triangle that a chunk rewrites has all corners in its box, and every triangle whose link to a
// neighbour it changes has two: with disjoint boxes no triangle belongs to two chunks. Walks read only
// triangles that have two corners in the box; a vertex whose walk would leave it is put off until the workers
// have ended.
#pragma once

#include "MeshInserter.h"
#include "QuorTest.h"
#include "hilbertSort.h"

#include <kelm25d/Bbox2.h>

#include <cstddef>
#include <vector>

namespace QUOR_KELM25D {

class Mesh2;

/// The entries of a range that are not sparse, by number: every (stride + 1)th entry is left out.
struct DenseVertices {
    const IdxVtx* aEntry;
    std::size_t stride;

    Point2* operator[](std::size_t i) const noexcept { return aEntry[i + i / stride].pVtx; }
};

/// A worker's stock of unused triangles, side by side. Taken in large pieces: workers that share a piece of
/// fresh memory wait for each other while the system clears its pages.
class FreshTriangles {
public:
    FreshTriangles(Mesh2& mesh_, int refill_) : mesh(mesh_), refill(refill_) {}

    Triangle2* take();
    /// Gives what is left back. Not while workers run.
    void giveBack();

private:
    Mesh2& mesh;
    int refill; // triangles a piece
    Triangle2* pFirst = nullptr;
    int count = 0;
};

class Chunk {
public:
    /// The range [firstIdx, lastIdx) of the dense vertices, which is not empty. frame surrounds the whole
    /// mesh; pNear is a vertex of the mesh near the range. Everything is borrowed.
    Chunk(Mesh2& mesh_, const Bbox2& frame_, const DenseVertices& denseVertices_, std::size_t firstIdx_,
          std::size_t lastIdx_, const Point2* pNear_);

    /// Computes the influence box. Only reads the mesh, so all chunks may do so at once.
    void prepare();
    /// Inserts the range with triangles from the worker's stock.
    void run(FreshTriangles& fresh);

    /// Vertices that run has inserted or found to be duplicates; the others are postponed.
    std::size_t numDone() const noexcept { return lastIdx - firstIdx - vPostponed.size(); }
    const Bbox2& getInfluenceBox() const noexcept { return influenceBox; }
    /// Inserts what could not be located within the box. Not while workers run.
    void insertPostponed();

private:
    Triangle2* getStart() const noexcept;
    Triangle2* insert(Point2* p, Triangle2* pHint, FreshTriangles& fresh);

    Mesh2& mesh;
    const Bbox2& frame;
    DenseVertices denseVertices;
    std::size_t firstIdx, lastIdx;
    const Point2* aNear[3]; // after prepare: the corners of a triangle over the box
    Bbox2 ownBox;           // of the vertices of the range
    Bbox2 influenceBox;     // of everything the chunk may touch
    QuorTest quorTest;      // of its own, since predicates keep scratch
    MeshInserter inserter;
    std::vector<Point2*> vPostponed;
};

} // namespace QUOR_KELM25D
