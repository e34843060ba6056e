// The triangles around a vertex, each once, without the stop on the hull that the iterator has.
// For loops that look for one triangle; the exported TriangleAroundVertexIterator is for those that need the
// order.
#pragma once

#include <kelm25d/Triangle2.h>

namespace QUOR_KELM25D {

/// Counterclockwise from the incident triangle, all around or to the hull; then from there clockwise to the
/// hull. The mesh must not change meanwhile.
class Fan {
public:
    explicit Fan(const Point2* pVtx_) noexcept
        : pVtx(pVtx_), pStart(pVtx_->getIncidentTriangle()), pT(pStart) {}

    const Point2* getVertex() const noexcept { return pVtx; }
    /// The present triangle; null when all have been visited, and for a vertex without triangles.
    Triangle2* getTriangle() const noexcept { return pT; }
    /// The index of the vertex in it.
    int getIndex() const noexcept { return pT->getIntraTriangleIndex(pVtx); }
    void advance() noexcept {
        const int i = getIndex();
        if (bBack) {
            pT = pT->getOppositeTriangle(incIndexBy2(i));
            return;
        }
        pT = pT->getOppositeTriangle(incIndexBy1(i));
        if (pT == pStart) {
            pT = nullptr;
        } else if (pT == nullptr) {
            bBack = true;
            pT = pStart->getOppositeTriangle(incIndexBy2(pStart->getIntraTriangleIndex(pVtx)));
        }
    }

private:
    const Point2* pVtx;
    Triangle2 *pStart, *pT;
    bool bBack = false; // on the way clockwise from the start
};

} // namespace QUOR_KELM25D
