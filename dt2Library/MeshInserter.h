// The inner loop of insertion: the walk to a vertex, the splits of a triangle and of an edge, flips and
// repair. It never extends the hull and owns no triangles: Mesh2 does both, and Chunk on worker threads lends
// it triangles.
//
// A new vertex q is located by a remembering walk (Devillers, Pion, Teillaud, "Walking in a Triangulation",
// 2002). Inside a triangle it splits one into three, on an inner edge two into four. Then edges that violate
// the empty circle are flipped (Lawson, 1977): every triangle to be checked has q as corner 0, so the edge in
// question is its edge 0, and after a flip both triangles have q as corner 0 again. An in-circle value that
// is exactly zero does not flip, with the exception of axis-parallel rectangles (see QuorTest::circleInc).
//
// Several inserters may work on one mesh at once if no triangle that one of them visits has two corners in
// reach of another: they share nothing else. A walk can be kept within a box for that purpose.
#pragma once

#include "QuorTest.h"
#include "SegmentTable.h"
#include "messages.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/Triangle2.h>

#include <cstddef>
#include <vector>

namespace QUOR_KELM25D {

/// Where a walk to a point has ended: at a triangle, and at an edge or a corner of it.
struct Location {
    enum Kind {
        INSIDE,    // of the triangle
        ON_EDGE,   // on inner edge idx
        AT_CORNER, // at the place of corner idx
        OUTSIDE,   // of the hull, or on it: idx is the hull edge to start from
        LEFT_LIMIT // the next step would have crossed an edge with an end outside the limit
    };
    Triangle2* pT;
    Kind kind;
    int idx = -1;
};

class MeshInserter {
public:
    /// segmentTable_ knows the constrained edges, which are never flipped. Both outlive the inserter.
    MeshInserter(QuorTest& quorTest_, const SegmentTable& segmentTable_);
    MeshInserter(const MeshInserter&) = delete;
    MeshInserter& operator=(const MeshInserter&) = delete;

    /// Walks from a triangle to q. With a limit, the hull must lie outside it; the walk then never crosses an
    /// edge with an end outside.
    Location locateFrom(const Point2* q, Triangle2* pT, const Bbox2* pLimit = nullptr);

    /// Walks from pT towards q as far as the static filter leads, mostly to the triangle that holds q: a
    /// start for locateFrom, which settles the rest. Makes fewer steps, and each with one branch only: pays
    /// where the mesh is in the cache or the way is long.
    Triangle2* approach(const Point2& q, Triangle2* pT) const noexcept;

    /// Splits at q, which a walk has found INSIDE or ON_EDGE, with two fresh triangles, and restores the
    /// empty circles, unless the mesh is to stay as it is otherwise. The result is a triangle near q.
    Triangle2* insertInside(const Location& location, Point2* q, Triangle2* pNew0, Triangle2* pNew1,
                            bool bLegalize = true) {
        Triangle2* pKept = location.kind == Location::INSIDE
                               ? splitTriangle(location.pT, q, pNew0, pNew1)
                               : splitEdge(location.pT, q, location.idx, pNew0, pNew1);
        if (bLegalize) {
            legalize(q);
        } else {
            vFlipStack.clear();
        }
        return pKept;
    }
    /// Splits pT at q, which lies inside, into three: pT and two fresh triangles. The result has q.
    Triangle2* splitTriangle(Triangle2* pT, Point2* q, Triangle2* pT1, Triangle2* pT2);
    /// Splits inner edge edgeIdx of pT at q, which lies on it: two triangles become four. The result has q.
    Triangle2* splitEdge(Triangle2* pT, Point2* q, int edgeIdx, Triangle2* pT3, Triangle2* pT4);
    /// Restores the empty circles around q after a split.
    void legalize(const Point2* q);

    /// Whether q is inside the circle through the corners of pT, or completes an axis-parallel rectangle.
    bool isInsideCircle(const Triangle2* pT, const Point2* q) {
        const InCircle side =
            QuorTest::circleIncFilter(pT->getCorner(0), pT->getCorner(1), pT->getCorner(2), q);
        return side != InCircle::UNDECIDED ? side == InCircle::INSIDE : quorTest.circleInc(pT, q);
    }

    /// Turns edge i of pT around without any test. What stood at index i of pT then stands at index 0 of both
    /// triangles.
    static void flip(Triangle2* pT, int i);
    /// Tells a neighbour, if there is one, that pOld was replaced by pNew.
    static void relink(Triangle2* pNeighbour, const Triangle2* pOld, Triangle2* pNew) noexcept {
        if (pNeighbour != nullptr) pNeighbour->setOppTriangle(pNeighbour->getIntraTriangleIndex(pOld), pNew);
    }

private:
    QuorTest& quorTest;
    const SegmentTable& segmentTable;
    // Triangles with q as corner 0, to be checked; empty between insertions.
    std::vector<Triangle2*> vFlipStack;
};

/// Inserts vertices first to last of a sequence in Hilbert order: the middle one, then the left half, then
/// the right half, so that each starts its walk at a triangle close by; short ranges in order. vertexAt(i) is
/// a vertex, insert(pVtx, pHint) inserts it and gives a triangle near it. So is the result to the last one.
template <class VertexAt, class Insert>
Triangle2* insertBisecting(std::size_t first, std::size_t last, Triangle2* pHint, const VertexAt& vertexAt,
                           const Insert& insert) {
    constexpr std::size_t minBisection = 16;
    if (last - first < minBisection) {
        for (; first != last; ++first) {
            pHint = insert(vertexAt(first), pHint);
        }
        return pHint;
    }
    const std::size_t middle = first + (last - first) / 2;
    pHint = insert(vertexAt(middle), pHint);
    insertBisecting(first, middle, pHint, vertexAt, insert);
    Triangle2* pIncT = vertexAt(middle)->getIncidentTriangle();
    if (pIncT == nullptr) pIncT = pHint; // a duplicate, or put off
    KELM_CHECK(pIncT!=NULL);
    return insertBisecting(middle + 1, last, pIncT, vertexAt, insert);
}

} // namespace QUOR_KELM25D
