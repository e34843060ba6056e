// How a vertex enters the mesh: location and split by the inserter, extension of the hull here; repair on
// demand. Walk, splits and flips themselves are in MeshInserter.cpp; who chooses the start triangle in
// Dt2.cpp for single points and in Dt2_bulk.cpp for many.
//
// Outside the hull a new vertex is joined to all hull edges that it sees, and the edges around are flipped
// until the circles are empty again, as after a split.

#include "Dt2.h"

#include "Fan.h"
#include "messages.h"

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

} // namespace

// --- location ---------------------------------------------------------------------------------------------

/// Where the walk to q starts. Queries often come along a line or a curve: then at the triangle found last.
Triangle2* Dt2::findStart(const Point2& q) const {
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

Triangle2* Dt2::insertVertex(Point2* q, Triangle2* pStart) {
    progress.advance(1);
    Triangle2* pT = pStart;
    int edgeIdx = -1;
    const int result = inserter.locateFrom(q, pT, edgeIdx);
    if (result >= 0) return triangulateCoplanarOrDuplicate(q, pT, result);
    ConstraintSegment2* pDivided = edgeIdx >= 0 ? segmentTable.getSegment(pT, edgeIdx) : nullptr;
    Triangle2* pNew0 = takeTriangle();
    Triangle2* pNew1 = takeTriangle();
    Triangle2* pKept = inserter.insertInside(pT, q, edgeIdx, pNew0, pNew1, !bImportMode);
    if (pDivided != nullptr) pDivided->divide(q);
    return pKept;
}

/// Restores the empty circles after the extension of the hull, which creates many triangles at once: in
/// passes over vPass, triangles that have q as corner 0.
void Dt2::legalizePasses(const Point2* q) {
    while (!vPass.empty()) {
        vNextPass.clear();
        for (Triangle2* pT : vPass) {
            Triangle2* pN = pT->aOppTriangle[0];
            if (pN == nullptr || !inserter.isInsideCircle(pN, q)) continue;
            if (segmentTable.isConstraintEdge(pT, 0)) continue;
            if (bImportMode && quorTest.getEdgeOrientation(pT, 0, q) != ORIENTATION2_COLLINEAR) continue;
            flip(pT, 0);
            vNextPass.push_back(pT);
            vNextPass.push_back(pN);
        }
        vPass.swap(vNextPass);
    }
}

Triangle2* Dt2::triangulateCoplanarOrDuplicate(Point2* q, Triangle2* pT, int result) {
    if (result < 4) return extendHull(q, pT, result);
    for (Point2* pCorner : pT->aCorner) {
        if (*pCorner == *q) {
            vertexVault.addDuplicate(q, pCorner);
            return pT;
        }
    }
    printError("triangulateCoplanarOrDuplicate()", "Proxy not found");
    KELM_CHECK(false);
    return nullptr;
}

// --- outside the hull -------------------------------------------------------------------------------------

/// Appends the hull edges before the given one that q sees, walking clockwise along the hull.
void Dt2::collectHullBackward(const Point2* q, Edge2 edge) {
    Triangle2* pT = edge.getTriangle();
    int axisIdx = incIndexBy1(edge.getIndex());
    for (;;) {
        const Point2* pAxis = pT->aCorner[axisIdx];
        while (Triangle2* pN = pT->aOppTriangle[incIndexBy1(axisIdx)]) {
            pT = pN;
            axisIdx = pT->getIntraTriangleIndex(pAxis);
        }
        const int hullIdx = incIndexBy1(axisIdx);
        if (quorTest.getEdgeOrientation(pT, hullIdx, q) != ORIENTATION2_CW) return;
        vHullEdges.emplace_back(pT, hullIdx);
        axisIdx = incIndexBy1(hullIdx);
    }
}

/// Appends the hull edges behind the given one that q sees, walking counterclockwise along the hull.
void Dt2::collectHullForward(const Point2* q, Edge2 edge) {
    Triangle2* pT = edge.getTriangle();
    int axisIdx = incIndexBy2(edge.getIndex());
    for (;;) {
        const Point2* pAxis = pT->aCorner[axisIdx];
        while (Triangle2* pN = pT->aOppTriangle[incIndexBy2(axisIdx)]) {
            pT = pN;
            axisIdx = pT->getIntraTriangleIndex(pAxis);
        }
        const int hullIdx = incIndexBy2(axisIdx);
        if (quorTest.getEdgeOrientation(pT, hullIdx, q) != ORIENTATION2_CW) return;
        vHullEdges.emplace_back(pT, hullIdx);
        axisIdx = incIndexBy2(hullIdx);
    }
}

/// q lies strictly inside hull edge edgeIdx of pT: one triangle becomes two.
Triangle2* Dt2::splitHullEdge(Triangle2* pT, Point2* q, int edgeIdx) {
    const int next = incIndexBy1(edgeIdx), prev = incIndexBy2(edgeIdx);
    Point2 *a = pT->aCorner[edgeIdx], *b = pT->aCorner[next], *k = pT->aCorner[prev];
    Triangle2 *pOutAB = pT->aOppTriangle[prev], *pOutKA = pT->aOppTriangle[next];
    if (ConstraintSegment2* pCSeg = segmentTable.getSegment(pT, edgeIdx)) pCSeg->divide(q);
    Triangle2* pTn = createTriangle(q, k, a);
    pT->setPropertiesAndOppT(q, a, b, pOutAB, nullptr, pTn);
    pTn->setPropertiesAndOppT(q, k, a, pOutKA, pT, nullptr);
    MeshInserter::relink(pOutKA, pT, pTn);
    vPass.assign({pT, pTn});
    return pT;
}

/// Makes vHullEdges the hull edges visible from q, in counterclockwise hull order, from one of them on: those
/// before it, the edge itself, those behind it.
void Dt2::collectVisibleHull(const Point2* q, Edge2 edge) {
    vHullEdges.clear();
    collectHullBackward(q, edge);
    std::reverse(vHullEdges.begin(), vHullEdges.end());
    vHullEdges.push_back(edge);
    collectHullForward(q, edge);
}

Triangle2* Dt2::extendHull(Point2* q, Triangle2* pT, int edgeIdx) {
    collectVisibleHull(q, Edge2(pT, edgeIdx));
    Triangle2* pResult = nullptr;
    if (vHullEdges.size() == 1 && quorTest.getEdgeOrientation(pT, edgeIdx, q) == ORIENTATION2_COLLINEAR) {
        pResult = splitHullEdge(pT, q, edgeIdx);
    } else {
        vPass.clear();
        for (const Edge2& visible : vHullEdges) {
            Triangle2* pOuter = visible.getTriangle();
            const int k = visible.getIndex();
            Triangle2* pTn =
                createTriangle(q, pOuter->aCorner[incIndexBy2(k)], pOuter->aCorner[incIndexBy1(k)]);
            pTn->aOppTriangle[0] = pOuter;
            pOuter->aOppTriangle[k] = pTn;
            if (pResult != nullptr) {
                pResult->aOppTriangle[2] = pTn;
                pTn->aOppTriangle[1] = pResult;
            }
            pResult = pTn;
            vPass.push_back(pTn);
        }
    }
    legalizePasses(q);
    return pResult;
}

// --- flips ------------------------------------------------------------------------------------------------

bool Dt2::canBeFlipped(const Triangle2* pT, int i) {
    const Triangle2* pN = pT->aOppTriangle[i];
    if (pN == nullptr || segmentTable.isConstraintEdge(pT, i)) return false;
    const Point2 *a = pT->aCorner[i], *b = pT->aCorner[incIndexBy1(i)], *c = pT->aCorner[incIndexBy2(i)];
    const Point2* d = pN->aCorner[pN->getIntraTriangleIndex(pT)];
    return quorTest.getOrientation2Filtered(a, d, b) == ORIENTATION2_CW &&
           quorTest.getOrientation2Filtered(a, d, c) == ORIENTATION2_CCW;
}

/// Whether the neighbour across edge i, which must exist, has a corner inside the circle of pT and no
/// constraint excuses that.
bool Dt2::violatesCircle(const Triangle2* pT, int i) {
    const Triangle2* pN = pT->aOppTriangle[i];
    const Point2* d = pN->aCorner[pN->getIntraTriangleIndex(pT)];
    return quorTest.circleIncFiltered(pT, d) == 1 && !segmentTable.isConstraintEdge(pT, i);
}

/// Flips the given edges and all that are changed by that until no circle is violated.
void Dt2::legalizeEdges(std::vector<Edge2>& vStack) {
    while (!vStack.empty()) {
        Triangle2* pFromT = vStack.back().getTriangle();
        const int fromICI = vStack.back().getIndex();
        vStack.pop_back();
        Triangle2* pN = pFromT->aOppTriangle[fromICI];
        if (pN == nullptr || !violatesCircle(pFromT, fromICI)) continue;
        KELM_CHECK(canBeFlipped(pFromT,fromICI));
        flip(pFromT, fromICI);
        vStack.emplace_back(pFromT, 0);
        vStack.emplace_back(pFromT, 2);
        vStack.emplace_back(pN, 0);
        vStack.emplace_back(pN, 1);
    }
}

void Dt2::legalizeAround(Point2* pVtx) {
    std::vector<Edge2> vStack;
    for (Fan fan(pVtx); fan.getTriangle() != nullptr; fan.advance()) {
        vStack.emplace_back(fan.getTriangle(), fan.getIndex());
    }
    legalizeEdges(vStack);
}

} // namespace QUOR_KELM25D
