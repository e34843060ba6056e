// Removal of vertices, inside the mesh and on its hull.
// The flip itself is in MeshInserter.cpp, the vault's share in VertexVault.cpp.
//
// Around an inner vertex p the edges from p are flipped away one by one, each time joining the two neighbours
// of an ear of the polygon around p, until three triangles are left, which become one. A star-shaped polygon
// always has an ear whose tip p does not lie beyond; a watch dog guards against the opposite.
//
// The neighbours of a hull vertex p form a chain from hull to hull. Wherever the chain has a strictly convex
// corner as seen from p, the edge from p to that corner is flipped away, and the corner is joined to its two
// neighbours in the chain. When no such corner is left the triangles still at p lie outside the hull of the
// others and dissolve. As with Graham's scan, each flip shortens the chain and each step without a flip moves
// on, so the cost is linear in the degree of p.
//
// In both cases the triangles that were flipped are then made Delaunay by further flips.

#include "Mesh2.h"

#include "Fan.h"
#include "MeshListener.h"
#include "messages.h"

#include <iostream>
#include <utility>

namespace QUOR_KELM25D {

void Mesh2::remove(Point2* pVtx) {
    if (pVtx == nullptr) {
        printWarning("Dt2::remove(..)", "pVtx==NULL, illegal, return.");
        return;
    }
    if (isBroken("Dt2::remove()")) return;
    if (SegmentTable::isConstraintVertex(pVtx)) {
        printWarning("Dt2::remove()", "Illegal: Can't remove a constraint vertex");
        std::cerr << *pVtx << std::endl;
        return;
    }
    tell(&MeshListener::onRemoval, pVtx);
    vertexVault.sortIfNeeded(true);
    const bool bOwn = vertexVault.isActive(pVtx); // and not a vertex of another triangulation
    if (bOwn && !is2D()) {
        vertexVault.deactivate(pVtx);
        return;
    }
    if (!bOwn || pVtx->getIncidentTriangle() == nullptr) {
        std::cout << *pVtx << std::endl;
        printWarning("Dt2::remove()", "vertex does not belong to the triangulation, return");
        return;
    }
    int degree = 0;
    Fan fan(pVtx);
    for (; fan.getTriangle() != nullptr; fan.advance()) {
        ++degree;
    }
    if (fan.hasMetHull()) {
        remove(pVtx, true);
        return;
    }
    std::vector<Triangle2*> vFlipped;
    reduceDegree(pVtx, degree, vFlipped);
    closeHole(pVtx, vFlipped);
    repairDelaunay(vFlipped);
    vRemovedVertices.push_back(pVtx);
    vertexVault.deactivate(pVtx);
}

// --- inside -----------------------------------------------------------------------------------------------

/// Flips edges away from an inner vertex until three are left.
void Mesh2::reduceDegree(const Point2* pVtx, int degree, std::vector<Triangle2*>& vFlipped) {
    Triangle2* pT = pVtx->getIncidentTriangle();
    int numTries = degree;
    for (int remaining = degree; remaining > 3;) {
        if (--numTries < 0) reportWatchDog(pVtx, degree);
        if (Triangle2* pNext = flipEar(pVtx, pT)) {
            vFlipped.push_back(pT);
            pT = pNext;
            --remaining;
            numTries = remaining + 1;
        } else {
            pT = pT->getOppositeTriangle(next(pT->getIntraTriangleIndex(pVtx)));
        }
    }
}

/// Cuts the ear off that pT and its counterclockwise neighbour form at their common edge from pVtx. The
/// result is the triangle that still has pVtx; null, and nothing changed, if that is no ear or pVtx lies
/// beyond it.
Triangle2* Mesh2::flipEar(const Point2* pVtx, Triangle2* pT) {
    const int k = next(pT->getIntraTriangleIndex(pVtx));
    Triangle2* pN = pT->getOppositeTriangle(k);
    const Point2 *a = pT->getCorner(k), *b = pT->getCorner(next(k));
    const Point2* d = pN->getCorner(pN->getIntraTriangleIndex(pT));
    if (quorTest.getOrientation2Filtered(a, d, pVtx) == ORIENTATION2_CW) return nullptr;
    if (quorTest.getOrientation2Filtered(a, b, d) != ORIENTATION2_CCW) return nullptr;
    flip(pT, k);
    return pN;
}

void Mesh2::reportWatchDog(const Point2* pVtx, int degree) const {
    tell(&MeshListener::onRemovalStuck, pVtx);
    std::cout << "vUmbrellaT.size()=" << degree << std::endl;
    KELM_CHECK(false);
}

/// Makes one triangle of the three around a vertex; vFlipped receives it.
//          c                  c         Each of the three has the vertex p and an outer edge. aT[0] becomes
//        / | \              /   \       the triangle (a, b, c), the two others go out of use, and their
//       /  p  \     ->     /     \      neighbours are linked to it.
//      / /   \ \          /       \ .
//     a---------b        a---------b
void Mesh2::closeHole(const Point2* pVtx, std::vector<Triangle2*>& vFlipped) {
    Triangle2* aT[3];
    Point2* aOuterVtx[3];
    Triangle2* aOuterT[3];
    Triangle2* pT = pVtx->getIncidentTriangle();
    for (int k = 0; k < 3; ++k) {
        const int i = pT->getIntraTriangleIndex(pVtx);
        aT[k] = pT;
        aOuterVtx[k] = pT->getCorner(next(i));
        aOuterT[k] = pT->getOppositeTriangle(i);
        pT = pT->getOppositeTriangle(next(i));
    }
    aT[0]->setPropertiesAndOppT(aOuterVtx[0], aOuterVtx[1], aOuterVtx[2], aOuterT[1], aOuterT[2], aOuterT[0]);
    MeshInserter::relink(aOuterT[1], aT[1], aT[0]);
    MeshInserter::relink(aOuterT[2], aT[2], aT[0]);
    recycleTriangle(aT[1]);
    recycleTriangle(aT[2]);
    vFlipped.push_back(aT[0]);
}

// --- on the hull ------------------------------------------------------------------------------------------

void Mesh2::remove(Point2* pVtx, bool bDeactivate) {
    if (pVtx->getIncidentTriangle() != nullptr) {
        std::vector<Triangle2*> vFlipped;
        cutEarsOff(pVtx, vFlipped);
        dissolveFan(pVtx);
        if (numberOfTriangles() == 0) {
            vertexVault.setFullDimensional(false);
            tell(&MeshListener::onAllEdgesLost);
        }
        repairDelaunay(vFlipped);
    }
    if (bDeactivate) {
        vRemovedVertices.push_back(pVtx);
        vertexVault.deactivate(pVtx);
    }
}

/// Flips away the edges from pVtx to the strictly convex corners of its chain of neighbours; vFlipped
/// receives the triangles that no longer touch it.
void Mesh2::cutEarsOff(Point2* pVtx, std::vector<Triangle2*>& vFlipped) {
    // Back to the clockwise end of the fan, then counterclockwise through it.
    Triangle2* pT = hullEdgeFrom(pVtx, pVtx->getIncidentTriangle()).getTriangle();
    for (;;) {
        // pT and its counterclockwise neighbour pN share the edge from pVtx to the chain corner in question.
        const int i = pT->getIntraTriangleIndex(pVtx);
        Triangle2* pN = pT->getOppositeTriangle(next(i));
        if (pN == nullptr) return;
        const Point2 *before = pT->getCorner(next(i)), *corner = pT->getCorner(prev(i));
        const Point2* behind = pN->getCorner(prev(pN->getIntraTriangleIndex(pVtx)));
        if (quorTest.getOrientation2Filtered(before, corner, behind) != ORIENTATION2_CCW) {
            pT = pN;
            continue;
        }
        flip(pT, next(i));
        // pT lost pVtx or pN did, whichever has the corner now.
        if (pT->hasVertex(pVtx)) std::swap(pT, pN);
        vFlipped.push_back(pT);
        // The corner before may have become convex by this.
        Triangle2* pBack = pN->getOppositeTriangle(prev(pN->getIntraTriangleIndex(pVtx)));
        pT = pBack != nullptr ? pBack : pN;
    }
}

/// Takes away all triangles of a hull vertex whose chain of neighbours is the hull of the rest.
void Mesh2::dissolveFan(Point2* pVtx) {
    std::vector<Triangle2*> vFan;
    Triangle2* pT = hullEdgeFrom(pVtx, pVtx->getIncidentTriangle()).getTriangle();
    for (; pT != nullptr; pT = pT->getOppositeTriangle(next(pT->getIntraTriangleIndex(pVtx)))) {
        vFan.push_back(pT);
    }
    // Vertices of the fan that no other triangle holds are out of the mesh: they wait again.
    for (Triangle2* pDead : vFan) {
        for (Point2* pCorner : pDead->getCorners()) {
            pCorner->setIncidentTriangle(nullptr);
        }
    }
    for (Triangle2* pDead : vFan) {
        const int i = pDead->getIntraTriangleIndex(pVtx);
        Triangle2* pOuter = pDead->getOppositeTriangle(i);
        if (pOuter == nullptr) continue;
        pOuter->setOppTriangle(pOuter->getIntraTriangleIndex(pDead), nullptr);
        pDead->getCorner(next(i))->setIncidentTriangle(pOuter);
        pDead->getCorner(prev(i))->setIncidentTriangle(pOuter);
    }
    for (Triangle2* pDead : vFan) {
        recycleTriangle(pDead);
    }
}

} // namespace QUOR_KELM25D
