// How a vertex enters the mesh: location and split by the inserter, extension of the hull here; repair on
// demand. Walk, splits and flips themselves are in MeshInserter.cpp; who chooses the start triangle in
// Mesh2.cpp for single points and in Mesh2_bulk.cpp for many.
//
// Outside the hull a new vertex is joined to all hull edges that it sees, and the edges around are flipped
// until the circles are empty again, as after a split.

#include "Mesh2.h"

#include "Fan.h"
#include "MeshListener.h"

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

namespace {

constexpr double cellShare = 1.0 / 16384; // of a cell of the curve, in the extent of the points
constexpr double walkReach = 12.0;        // in heights of a triangle: so far a walk is cheaper than a search

/// Compares with the least height, since steps across slivers bring a walk forward by next to nothing.
bool isWithinReach(const Triangle2& t, const Point2& q) noexcept {
    const Point2 &a = *t.getCorner(0), &b = *t.getCorner(1), &c = *t.getCorner(2);
    const double abX = b.x() - a.x(), abY = b.y() - a.y(), acX = c.x() - a.x(), acY = c.y() - a.y();
    const double longest = std::max({std::fabs(abX), std::fabs(abY), std::fabs(acX), std::fabs(acY)});
    const double distance = std::fabs(q.x() - a.x()) + std::fabs(q.y() - a.y());
    return distance * longest < walkReach * (abX * acY - abY * acX);
}

/// Works off a sequence of triangles in passes: flipBad(pT) flips what is bad at a triangle and puts the
/// triangles changed by that into vNext, for the next pass.
template <class FlipBad>
void repairInPasses(std::vector<Triangle2*>& vPass, std::vector<Triangle2*>& vNext, const FlipBad& flipBad) {
    while (!vPass.empty()) {
        vNext.clear();
        for (Triangle2* pT : vPass) {
            flipBad(pT);
        }
        vPass.swap(vNext);
    }
}

} // namespace

// --- location ---------------------------------------------------------------------------------------------

Triangle2* Mesh2::findStart(const Point2& q) const {
    const bool bAlive = pLastFound != nullptr && pLastFound->getCorner(0) != nullptr;
    if (bAlive && isWithinReach(*pLastFound, q)) return pLastFound;
    // The curve leaves the box of the points and comes back elsewhere: from outside, and from the outermost
    // cells, it leads astray.
    const double rimX = cellShare * extent.get_maxX() - cellShare * extent.get_minX(),
                 rimY = cellShare * extent.get_maxY() - cellShare * extent.get_minY();
    const Point2 inside(std::clamp(q.x(), extent.get_minX() + rimX, extent.get_maxX() - rimX),
                        std::clamp(q.y(), extent.get_minY() + rimY, extent.get_maxY() - rimY), 0.0);
    return vertexVault.getCloT(hilbert.getIdx(inside), inside);
}

// --- insertion --------------------------------------------------------------------------------------------

Triangle2* Mesh2::insertVertex(Point2* q, Triangle2* pStart) {
    progress.advance(1);
    const Location location = inserter.locateFrom(q, pStart);
    if (location.kind == Location::OUTSIDE) return extendHull(q, Edge2(location.pT, location.idx));
    if (location.kind == Location::AT_CORNER) {
        vertexVault.addDuplicate(q, location.pT->getCorner(location.idx));
        return location.pT;
    }
    ConstraintSegment2* pDivided =
        location.kind == Location::ON_EDGE ? segmentTable.getSegment(location.pT, location.idx) : nullptr;
    Triangle2* pNew0 = takeTriangle();
    Triangle2* pNew1 = takeTriangle();
    Triangle2* pKept = inserter.insertInside(location, q, pNew0, pNew1, !bImportMode);
    if (pDivided != nullptr) tell(&MeshListener::onEdgeDivided, pDivided, q);
    return pKept;
}

// --- outside the hull -------------------------------------------------------------------------------------

const std::vector<Edge2>& Mesh2::getVisibleHull(const Point2* q, Edge2 edge) {
    const auto isVisible = [&](const Edge2& hullEdge) {
        return quorTest.getEdgeOrientation(hullEdge.getTriangle(), hullEdge.getIndex(), q) == ORIENTATION2_CW;
    };
    vHullEdges.clear();
    for (Edge2 before = edge;;) {
        before = hullEdgeInto(before.getSrc(), before.getTriangle());
        if (!isVisible(before)) break;
        vHullEdges.push_back(before);
    }
    std::reverse(vHullEdges.begin(), vHullEdges.end());
    vHullEdges.push_back(edge);
    for (Edge2 behind = edge;;) {
        behind = hullEdgeFrom(behind.getTrg(), behind.getTriangle());
        if (!isVisible(behind)) break;
        vHullEdges.push_back(behind);
    }
    return vHullEdges;
}

/// q lies strictly inside hull edge edgeIdx of pT: one triangle becomes two.
Triangle2* Mesh2::splitHullEdge(Triangle2* pT, Point2* q, int edgeIdx) {
    Point2 *a = pT->getCorner(edgeIdx), *b = pT->getCorner(next(edgeIdx)), *k = pT->getCorner(prev(edgeIdx));
    Triangle2 *pOutAB = pT->getOppositeTriangle(prev(edgeIdx)),
              *pOutKA = pT->getOppositeTriangle(next(edgeIdx));
    if (ConstraintSegment2* pCSeg = segmentTable.getSegment(pT, edgeIdx))
        tell(&MeshListener::onEdgeDivided, pCSeg, q);
    Triangle2* pTn = createTriangle(q, k, a);
    pT->setPropertiesAndOppT(q, a, b, pOutAB, nullptr, pTn);
    pTn->setPropertiesAndOppT(q, k, a, pOutKA, pT, nullptr);
    MeshInserter::relink(pOutKA, pT, pTn);
    vPass.assign({pT, pTn});
    return pT;
}

/// q lies outside the hull or on it. edge is a hull edge that it sees, or the one that it is on.
Triangle2* Mesh2::extendHull(Point2* q, Edge2 edge) {
    getVisibleHull(q, edge);
    Triangle2* pResult = nullptr;
    if (vHullEdges.size() == 1 &&
        quorTest.getEdgeOrientation(edge.getTriangle(), edge.getIndex(), q) == ORIENTATION2_COLLINEAR) {
        pResult = splitHullEdge(edge.getTriangle(), q, edge.getIndex());
    } else {
        vPass.clear();
        for (const Edge2& visible : vHullEdges) {
            Triangle2* pOuter = visible.getTriangle();
            Triangle2* pTn = createTriangle(q, visible.getTrg(), visible.getSrc());
            pTn->setOppTriangle(0, pOuter);
            pOuter->setOppTriangle(visible.getIndex(), pTn);
            if (pResult != nullptr) {
                pResult->setOppTriangle(2, pTn);
                pTn->setOppTriangle(1, pResult);
            }
            pResult = pTn;
            vPass.push_back(pTn);
        }
    }
    legalizeHull(q);
    return pResult;
}

// --- flips ------------------------------------------------------------------------------------------------

/// Restores the empty circles after the extension of the hull, which creates many triangles at once: from
/// vPass, triangles that have q as corner 0.
void Mesh2::legalizeHull(const Point2* q) {
    repairInPasses(vPass, vNextPass, [&](Triangle2* pT) {
        Triangle2* pN = pT->getOppositeTriangle(0);
        if (pN == nullptr || !inserter.isInsideCircle(pN, q) || segmentTable.isConstraintEdge(pT, 0)) return;
        if (bImportMode && quorTest.getEdgeOrientation(pT, 0, q) != ORIENTATION2_COLLINEAR) return;
        flip(pT, 0);
        vNextPass.push_back(pT);
        vNextPass.push_back(pN);
    });
}

void Mesh2::repairDelaunay(std::vector<Triangle2*>& vTriangles) {
    std::vector<Triangle2*> vNext;
    repairInPasses(vTriangles, vNext, [&](Triangle2* pFromT) {
        for (int fromICI = 0; fromICI < 3; ++fromICI) {
            Triangle2* pN = pFromT->getOppositeTriangle(fromICI);
            if (pN == nullptr || !violatesCircle(pFromT, fromICI)) continue;
            KELM_CHECK(canBeFlipped(pFromT,fromICI));
            flip(pFromT, fromICI);
            vNext.push_back(pFromT);
            vNext.push_back(pN);
        }
    });
}

void Mesh2::legalizeAround(Point2* pVtx) {
    std::vector<Triangle2*> vTriangles;
    for (Fan fan(pVtx); fan.getTriangle() != nullptr; fan.advance()) {
        vTriangles.push_back(fan.getTriangle());
    }
    repairDelaunay(vTriangles);
}

/// An edge that was a constraint must have an empty circle from now on, and so must what its flip changes.
void Mesh2::legalizeEdge(const Point2* a, const Point2* b) {
    const Edge2 edge = findEdge(a, b);
    if (edge.getTriangle() == nullptr) return;
    std::vector<Triangle2*> vTriangles = {edge.getTriangle()};
    repairDelaunay(vTriangles);
}

bool Mesh2::canBeFlipped(const Triangle2* pT, int i) {
    const Triangle2* pN = pT->getOppositeTriangle(i);
    if (pN == nullptr || segmentTable.isConstraintEdge(pT, i)) return false;
    const Point2 *a = pT->getCorner(i), *b = pT->getCorner(next(i)), *c = pT->getCorner(prev(i));
    const Point2* d = pN->getCorner(pN->getIntraTriangleIndex(pT));
    return quorTest.getOrientation2Filtered(a, d, b) == ORIENTATION2_CW &&
           quorTest.getOrientation2Filtered(a, d, c) == ORIENTATION2_CCW;
}

/// Whether the neighbour across edge i, which must exist, has a corner inside the circle of pT and no
/// constraint excuses that.
bool Mesh2::violatesCircle(const Triangle2* pT, int i) {
    const Triangle2* pN = pT->getOppositeTriangle(i);
    const Point2* d = pN->getCorner(pN->getIntraTriangleIndex(pT));
    return quorTest.circleIncFiltered(pT, d) == InCircle::INSIDE && !segmentTable.isConstraintEdge(pT, i);
}

} // namespace QUOR_KELM25D
