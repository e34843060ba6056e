// The triangles around a vertex, each once, without the stop on the hull that the iterator has.
// For loops that look for one triangle; the exported TriangleAroundVertexIterator is for those that need the
// order.
#pragma once

#include "cornerIndex.h"

#include <kelm25d/Edge2.h>
#include <kelm25d/Triangle2.h>

namespace QUOR_KELM25D {

/// Counterclockwise from the incident triangle, all around or to the hull; then from there clockwise to the
/// hull. The mesh must not change meanwhile.
class Fan {
public:
    explicit Fan(const Point2* pVtx_) noexcept
        : pVtx(pVtx_), pStart(pVtx_->getIncidentTriangle()), pT(pStart) {}

    /// The present triangle; null when all have been visited, and for a vertex without triangles.
    Triangle2* getTriangle() const noexcept { return pT; }
    /// The index of the vertex in it.
    int getIndex() const noexcept { return pT->getIntraTriangleIndex(pVtx); }
    /// Whether the vertex lies on the hull, known when all triangles have been visited.
    bool hasMetHull() const noexcept { return bBack; }
    void advance() noexcept {
        const int i = getIndex();
        if (bBack) {
            pT = pT->getOppositeTriangle(prev(i));
            return;
        }
        pT = pT->getOppositeTriangle(next(i));
        if (pT == pStart) {
            pT = nullptr;
        } else if (pT == nullptr) {
            bBack = true;
            pT = pStart->getOppositeTriangle(prev(pStart->getIntraTriangleIndex(pVtx)));
        }
    }

private:
    const Point2* pVtx;
    Triangle2 *pStart, *pT;
    bool bBack = false; // on the way clockwise from the start
};

/// Turns around a vertex of the hull, from one of its triangles on, over the edges that side(index of the
/// vertex) names: the last of them is a hull edge.
template <class Side>
Edge2 turnToHull(const Point2* pVtx, Triangle2* pT, Side side) noexcept {
    int i = side(pT->getIntraTriangleIndex(pVtx));
    while (Triangle2* pN = pT->getOppositeTriangle(i)) {
        pT = pN;
        i = side(pT->getIntraTriangleIndex(pVtx));
    }
    return Edge2(pT, i);
}

/// The hull edge that begins at a vertex of the hull: the last one clockwise in its fan.
inline Edge2 hullEdgeFrom(const Point2* pVtx, Triangle2* pT) noexcept {
    return turnToHull(pVtx, pT, [](int i) { return prev(i); });
}

/// The hull edge that ends at a vertex of the hull: the last one counterclockwise in its fan.
inline Edge2 hullEdgeInto(const Point2* pVtx, Triangle2* pT) noexcept {
    return turnToHull(pVtx, pT, [](int i) { return next(i); });
}

} // namespace QUOR_KELM25D
