// Removal of a vertex on the hull.
// The flip itself is in Dt2_location.cpp.
//
// The neighbours of a hull vertex p form a chain from hull to hull. Wherever the chain has a strictly convex
// corner as seen from p, the edge from p to that corner is flipped away, and the corner is joined to its two
// neighbours in the chain. When no such corner is left the triangles still at p lie outside the hull of the
// others and dissolve. As with Graham's scan, each flip shortens the chain and each step without a flip moves
// on, so the cost is linear in the degree of p. The triangles that were flipped are then made Delaunay.

#include "Dt2.h"

#include "messages.h"

#include <utility>

namespace QUOR_KELM25D {

void Dt2::remove(Point2* pVtx, bool bDeactivate) {
    if (pVtx->getIncidentTriangle() != nullptr) {
        std::vector<Triangle2*> vFlipped;
        cutEarsOff(pVtx, vFlipped);
        dissolveFan(pVtx);
        if (numberOfTriangles() == 0) vertexVault.setFullDimensional(false);
        repairDelaunay(vFlipped);
    }
    if (bDeactivate) {
        vRemovedVertices.push_back(pVtx);
        vertexVault.deactivate(pVtx);
    }
}

/// Flips away the edges from pVtx to the strictly convex corners of its chain of neighbours; vFlipped
/// receives the triangles that no longer touch it.
void Dt2::cutEarsOff(Point2* pVtx, std::vector<Triangle2*>& vFlipped) {
    // Back to the clockwise end of the fan, then counterclockwise through it.
    Triangle2* pT = pVtx->getIncidentTriangle();
    while (Triangle2* pN = pT->aOppTriangle[incIndexBy2(pT->getIntraTriangleIndex(pVtx))]) {
        pT = pN;
    }
    for (;;) {
        // pT and its counterclockwise neighbour pN share the edge from pVtx to the chain corner in question.
        const int i = pT->getIntraTriangleIndex(pVtx);
        Triangle2* pN = pT->aOppTriangle[incIndexBy1(i)];
        if (pN == nullptr) return;
        const Point2 *before = pT->aCorner[incIndexBy1(i)], *corner = pT->aCorner[incIndexBy2(i)];
        const Point2* behind = pN->aCorner[incIndexBy2(pN->getIntraTriangleIndex(pVtx))];
        if (quorTest.getOrientation2Filtered(before, corner, behind) != ORIENTATION2_CCW) {
            pT = pN;
            continue;
        }
        flip(pT, incIndexBy1(i));
        // pT lost pVtx or pN did, whichever has the corner now.
        if (pT->hasVertex(pVtx)) std::swap(pT, pN);
        vFlipped.push_back(pT);
        // The corner before may have become convex by this.
        Triangle2* pBack = pN->aOppTriangle[incIndexBy2(pN->getIntraTriangleIndex(pVtx))];
        pT = pBack != nullptr ? pBack : pN;
    }
}

/// Takes away all triangles of a hull vertex whose chain of neighbours is the hull of the rest.
void Dt2::dissolveFan(Point2* pVtx) {
    std::vector<Triangle2*> vFan;
    Triangle2* pT = pVtx->getIncidentTriangle();
    while (Triangle2* pN = pT->aOppTriangle[incIndexBy2(pT->getIntraTriangleIndex(pVtx))]) {
        pT = pN;
    }
    for (; pT != nullptr; pT = pT->aOppTriangle[incIndexBy1(pT->getIntraTriangleIndex(pVtx))]) {
        vFan.push_back(pT);
    }
    // Vertices of the fan that no other triangle holds are out of the mesh: they wait again.
    for (Triangle2* pDead : vFan) {
        for (Point2* pCorner : pDead->aCorner) {
            pCorner->setIncidentTriangle(nullptr);
        }
    }
    for (Triangle2* pDead : vFan) {
        const int i = pDead->getIntraTriangleIndex(pVtx);
        Triangle2* pOuter = pDead->aOppTriangle[i];
        if (pOuter == nullptr) continue;
        pOuter->setOppTriangle(pOuter->getIntraTriangleIndex(pDead), nullptr);
        pDead->aCorner[incIndexBy1(i)]->setIncidentTriangle(pOuter);
        pDead->aCorner[incIndexBy2(i)]->setIncidentTriangle(pOuter);
    }
    for (Triangle2* pDead : vFan) {
        recycleTriangle(pDead);
    }
}

/// Flips in passes until no edge of the given triangles, or of those flipped on the way, violates the empty
/// circle.
void Dt2::repairDelaunay(std::vector<Triangle2*>& vCurrent) {
    std::vector<Triangle2*> vNext;
    while (!vCurrent.empty()) {
        vNext.clear();
        for (Triangle2* pT : vCurrent) {
            for (int i = 0; i < 3; ++i) {
                Triangle2* pN = pT->aOppTriangle[i];
                if (pN == nullptr) continue;
                const Point2* d = pN->aCorner[pN->getIntraTriangleIndex(pT)];
                if (quorTest.circleIncFiltered(pT, d) != 1) continue;
                flip(pT, i);
                vNext.push_back(pT);
                vNext.push_back(pN);
            }
        }
        vCurrent.swap(vNext);
    }
}

} // namespace QUOR_KELM25D
