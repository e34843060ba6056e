// The way of the fan iterator across the hull, and its previews.
// Ordinary steps are inline in the header.
#include <kelm25d/TriangleAroundVertexIterator.h>

#include "cornerIndex.h"

#include <kelm25d/KelmException.h>

namespace QUOR_KELM25D {

TriangleAroundVertexIterator::TriangleAroundVertexIterator(const Point2* pVertex)
    : pVtx(const_cast<Point2*>(pVertex)), pTr(pVertex->getIncidentTriangle()), pPreTr(nullptr) {
    if (!pTr) throw KelmException();
}

// Turns a fan that ends at the hull into a cycle: from the last real triangle to the other end of the fan.
void TriangleAroundVertexIterator::loop() noexcept {
    if (!pPreTr) pPreTr = pVtx->getIncidentTriangle();
    if (!pPreTr) return;
    const int i = pPreTr->getIntraTriangleIndex(pVtx);
    pTr = pPreTr;
    if (pPreTr->getOppositeTriangle(next(i))) {
        while (pTr)
            stepCCW();
    } else if (pPreTr->getOppositeTriangle(prev(i))) {
        while (pTr)
            stepCW();
    }
    pTr = pPreTr;
}

Triangle2* TriangleAroundVertexIterator::previewNextTriangle() const noexcept {
    TriangleAroundVertexIterator scratch(*this);
    scratch.pPreTr = pPreTr;
    return *++scratch;
}

Triangle2* TriangleAroundVertexIterator::previewPrevTriangle() const noexcept {
    TriangleAroundVertexIterator scratch(*this);
    scratch.pPreTr = pPreTr;
    return *--scratch;
}

} // namespace QUOR_KELM25D
