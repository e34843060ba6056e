// The walk along a segment, its insertion by force, and the divisions of conforming insertion.
// Crossings are computed in intersection2D.cpp.
//
// Constrained insertion walks along the segment from triangle to triangle. If the walk reaches the other end,
// the triangles on its way are removed and the two polygons left and right of the segment are triangulated by
// cutting ears, which every pass finds: each vertex of such a polygon sees the segment. Then flips restore
// the empty circles everywhere but across constraints (Anglada, "An improved incremental algorithm for
// constructing restricted Delaunay triangulations", 1997, with ears instead of a recursion).
//
// If the walk meets a vertex on the segment, the segment is divided there and the pieces are treated in its
// place. If it meets another constraint, both are divided at one new vertex. Its place is rounded, so all
// pieces are treated again: whatever they meet on their slightly different ways is resolved by the same
// rules. Every decision on the way is exact, and getIntersection25D sees to it that this comes to an end.
//
// Conforming insertion forces no edge. It divides a segment at a vertex on it, at a crossing with another
// constraint, both of them, which no halving would ever reach, or else at a new vertex in its middle, and
// leaves the pieces to the next round (ConstraintMgr::apply).

#include "SegmentInserter.h"

#include "ConstraintMgr.h"
#include "Fan.h"
#include "LeafWalk.h"
#include "Mesh2.h"
#include "centerWithShift.h"
#include "messages.h"

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

namespace {

constexpr double minUlps = 10.0;   // a piece of less extent can't be halved
constexpr double usefulPass = 0.9; // the part of a chain that a pass over it may leave
constexpr double epsilon = 2.220446049250313e-16;

/// Whether two vertices are neighbours. If not, they may be swapped, so that the first has the fewer
/// triangles or nearly so. At first its are looked at: of the ends of a piece the one with the higher address
/// is mostly new, few triangles meet there, and all of them are in the cache.
bool isEdge(Point2*& pStart, Point2*& pStop) {
    constexpr int numUsual = 8;
    Fan fan(pStart), otherFan(pStop);
    for (int i = 0; fan.getTriangle() != nullptr; ++i, fan.advance()) {
        if (fan.getTriangle()->hasVertex(pStop)) return true;
        if (i < numUsual) continue;
        if (otherFan.getTriangle() == nullptr) {
            std::swap(pStart, pStop);
            return false;
        }
        if (otherFan.getTriangle()->hasVertex(pStart)) return true;
        otherFan.advance();
    }
    return false;
}

} // namespace

SegmentInserter::SegmentInserter(Mesh2& mesh_, ConstraintMgr& mgr_)
    : mesh(mesh_), mgr(mgr_), quorTest(mesh_.getQuorTest()), segmentTable(mesh_.getSegmentTable()) {
}

// --- constrained insertion --------------------------------------------------------------------------------

void SegmentInserter::applyOneCS(ConstraintSegment2* pInitialCSeg) {
    KELM_CHECK(pInitialCSeg->getCIS()==CIS_CONSTRAINED_DELAUNAY);
    KELM_CHECK(pInitialCSeg->isAlive());
    LeafWalk walk({pInitialCSeg});
    while (ConstraintSegment2* pCSeg = walk.next()) {
        treatOneCS(pCSeg, walk);
    }
}

/// Inserts a segment, or divides it at the first thing it meets; what is left to do joins the walk.
void SegmentInserter::treatOneCS(ConstraintSegment2* pCSeg, LeafWalk& walk) {
    const Obstacle met = traverseCZ(pCSeg);
    if (met.pVertex != nullptr) {
        if (divide(pCSeg, met.pVertex)) walk.push(pCSeg);
    } else if (ConstraintSegment2* pCrossingCSeg = met.crossing.pCrossingCSeg) {
        const bool bOK = divideAtCrossing(pCSeg, met.crossing);
        if (!pCrossingCSeg->isAlive()) walk.push(pCrossingCSeg);
        if (bOK || !pCSeg->isAlive()) walk.push(pCSeg);
    } else if (!vCorridor.empty()) {
        replaceCorridor(vRightChain.front().pSrc, vLeftChain.back().pSrc);
    }
}

/// Divides a segment at a vertex. False, after a warning, if that can't be.
bool SegmentInserter::divide(ConstraintSegment2* pCSeg, Point2* pSplit) {
    KELM_CHECK(!pCSeg->hasEnd(pSplit));
    const bool bOK = pCSeg->divide(pSplit);
    if (!bOK) {
        mgr.countFailure();
        printWarning("Dt2::treatConstraintZone()", // "numerica" is misspelled deliberately
                     "intersection point of two constraints has bad numerica accuracy!");
    }
    return bOK;
}

/// Divides both segments at their crossing, the first only if the crossing is not one of its ends. False,
/// after a warning, if one of them can't be divided.
bool SegmentInserter::divideAtCrossing(ConstraintSegment2* pCSeg, const Crossing& crossing) {
    ConstraintSegment2* pCrossingCSeg = crossing.pCrossingCSeg;
    const Point2& splitPoint = crossing.splitPoint;
    KELM_CHECK(splitPoint!=*pCrossingCSeg->getSrc() && splitPoint!=*pCrossingCSeg->getTrg());
    const bool bSplitBoth = splitPoint != *pCSeg->getSrc() && splitPoint != *pCSeg->getTrg();

    // Both count as no constraint while the vertex enters: their edges may be divided or flipped.
    pCrossingCSeg->markDead();
    if (bSplitBoth) pCSeg->markDead();
    Point2* pSplit = insertCrossing(crossing);
    pCrossingCSeg->markAlive();
    bool bOK = divide(pCrossingCSeg, pSplit);
    if (bSplitBoth) {
        pCSeg->markAlive();
        bOK = divide(pCSeg, pSplit) && bOK;
    }
    return bOK;
}

/// Makes the crossing a vertex. The edge there is no constraint any more and loses its place if it violates
/// the circle.
Point2* SegmentInserter::insertCrossing(const Crossing& crossing) {
    Triangle2 *pT0 = nullptr, *pT1 = nullptr;
    int i0 = -1, i1 = -1;
    crossing.edge.getTriangles(pT0, pT1, i0, i1);
    const Location found = mesh.locateFrom(&crossing.splitPoint, pT0);
    Point2* pSplit = mesh.insertPoint(crossing.splitPoint, found.pT);
    // A new vertex in one of the two triangles at the edge has tested it. Where triangles are as thin as the
    // rounding it may be in another one, or an old vertex.
    const bool bInside = found.kind == Location::INSIDE || found.kind == Location::ON_EDGE;
    if (!bInside || (found.pT != pT0 && found.pT != pT1)) {
        mesh.legalizeEdge(crossing.pCrossingCSeg->getSrc(), crossing.pCrossingCSeg->getTrg());
    }
    return pSplit;
}

/// Walks along a segment from one end to the first thing it meets. If that is nothing the corridor and the
/// chains at its sides are complete; the corridor is empty if the segment is an edge.
SegmentInserter::Obstacle SegmentInserter::traverseCZ(const ConstraintSegment2* pCSeg) {
    vCorridor.clear();
    vRightChain.clear();
    vLeftChain.clear();
    Point2 *pStart = pCSeg->getTrg(), *pStop = pCSeg->getSrc();
    KELM_CHECK(pStart->getIncidentTriangle()!=NULL);
    KELM_CHECK(pStop->getIncidentTriangle()!=NULL);
    if (isEdge(pStart, pStop)) return {};
    Triangle2* pT = nullptr;
    if (Point2* pAhead = leaveStart(pStart, pStop, pT)) {
        mgr.getInnerVtxMgr().forget(pAhead);
        return {pAhead};
    }
    vCorridor.push_back(pT);
    // Right of the segment the chain runs from start to stop; left of it from stop to start, built backwards.
    int exitIdx = pT->getIntraTriangleIndex(pStart);
    vRightChain.push_back({pStart, pT, prev(exitIdx)});
    vLeftChain.push_back({pT->getCorner(prev(exitIdx)), pT, next(exitIdx)});
    for (;;) {
        Triangle2* pN = pT->getOppositeTriangle(exitIdx);
        const int k = pN->getIntraTriangleIndex(pT);
        Point2 *pLeft = pN->getCorner(next(k)), *pRight = pN->getCorner(prev(k));
        if (segmentTable.isConstraintEdge(pLeft, pRight)) {
            const Point2 splitPoint = getIntersection25D(*pLeft, *pRight, *pStart, *pStop);
            if (splitPoint == *pLeft) return {pLeft};
            if (splitPoint == *pRight) return {pRight};
            return {nullptr, {splitPoint, segmentTable.findAlive(pLeft, pRight), Edge2(pN, k)}};
        }
        vCorridor.push_back(pN);
        Point2* pVtx = pN->getCorner(k);
        const Orientation2 side = quorTest.getOrientation2Filtered(pStart, pStop, pVtx);
        if (side == ORIENTATION2_COLLINEAR) {
            if (pVtx != pStop) return {pVtx}; // not forgotten as an inner vertex here, deliberately
            vRightChain.push_back({pRight, pN, next(k)});
            vLeftChain.push_back({pStop, pN, prev(k)});
            return {};
        }
        if (side == ORIENTATION2_CW) {
            vRightChain.push_back({pRight, pN, next(k)});
            exitIdx = prev(k);
        } else {
            vLeftChain.push_back({pVtx, pN, prev(k)});
            exitIdx = next(k);
        }
        pT = pN;
    }
}

/// Looks around the start for the way to the stop, which is no neighbour: the triangle whose opposite edge
/// the segment crosses, or, as the result, a neighbour that lies on it.
Point2* SegmentInserter::leaveStart(const Point2* pStart, const Point2* pStop, Triangle2*& pT) {
    for (Fan fan(pStart); fan.getTriangle() != nullptr; fan.advance()) {
        pT = fan.getTriangle();
        const int i = fan.getIndex();
        Point2 *a = pT->getCorner(next(i)), *b = pT->getCorner(prev(i));
        const Orientation2 ori1 = quorTest.getOrientation2Filtered(pStart, pStop, a);
        if (ori1 == ORIENTATION2_CCW) continue; // a is left of the segment, the triangle even more so
        const Orientation2 ori2 = quorTest.getOrientation2Filtered(pStart, pStop, b);
        // Only an imported triangle may have no area.
        if (ori1 == ORIENTATION2_COLLINEAR && ori2 == ORIENTATION2_COLLINEAR) {
            if (isInBox(*pStart, *pStop, *a)) return a;
            if (isInBox(*pStart, *pStop, *b)) return b;
            continue;
        }
        if (ori1 == ORIENTATION2_COLLINEAR && ori2 == ORIENTATION2_CCW) return a;
        if (ori1 == ORIENTATION2_CW && ori2 == ORIENTATION2_COLLINEAR) return b;
        if (ori1 == ORIENTATION2_CW && ori2 == ORIENTATION2_CCW) return nullptr;
    }
    KELM_CHECK(false);
    return nullptr;
}

/// Replaces the triangles of the corridor by others in which the segment is an edge.
void SegmentInserter::replaceCorridor(Point2* pStart, Point2* pStop) {
    std::vector<Triangle2*> vNew;
    vNew.reserve(vCorridor.size());
    std::reverse(vLeftChain.begin(), vLeftChain.end());
    Triangle2* pT0 = triangulateSide(vRightChain, pStop, vNew);
    Triangle2* pT1 = triangulateSide(vLeftChain, pStart, vNew);
    pT0->setOppTriangle(1, pT1);
    pT1->setOppTriangle(1, pT0);
    for (Triangle2* pRemoved : vCorridor) {
        mesh.recycleTriangle(pRemoved);
    }
    mesh.repairDelaunay(vNew);
}

/// Makes the ear of two neighbouring edges of a chain, the second of which ends at c, a triangle that stands
/// for the first edge from now on. False, and nothing changed, if it is no ear.
//
//         b                   b         edge is a-b, behind is b-c, the new triangle (a, b, c). The holder
//       /   \               /   \       of edge, which is being removed, now holds the open edge a-c: its
//      /     \     ->      / new \      neighbour idx is the new triangle.
//     a       c           a-------c
bool SegmentInserter::cutEar(const ChainEdge& edge, const ChainEdge& behind, Point2* c,
                             std::vector<Triangle2*>& vNew) {
    Point2 *a = edge.pSrc, *b = behind.pSrc;
    if (quorTest.getOrientation2Filtered(a, b, c) != ORIENTATION2_CCW) return false;
    Triangle2* pNew = mesh.createTriangle(a, b, c);
    const auto linkOutside = [pNew](int i, const ChainEdge& chainEdge) {
        Triangle2* pOutside = chainEdge.pHolder->getOppositeTriangle(chainEdge.idx);
        pNew->setOppTriangle(i, pOutside);
        MeshInserter::relink(pOutside, chainEdge.pHolder, pNew);
    };
    linkOutside(2, edge);
    linkOutside(0, behind);
    pNew->setOppTriangle(1, edge.pHolder);
    edge.pHolder->setOppTriangle(edge.idx, pNew);
    vNew.push_back(pNew);
    return true;
}

/// Cuts ears off a chain of edges that ends at pEnd until one edge is left; the result is the triangle at it,
/// which has it as edge 1. The chain's triangles are those being removed: each still holds the link to the
/// neighbour outside, and two of them stand for each other where an edge has both its sides in the corridor.
Triangle2* SegmentInserter::triangulateSide(std::vector<ChainEdge>& vChain, Point2* pEnd,
                                            std::vector<Triangle2*>& vNew) {
    // Passes over the chain that skip the edge just made give triangles of good shape. Where few ears are
    // left at a time, as in a valley, going back to the edge before after each cut gives all of them in one
    // pass.
    for (bool bGoBack = false; vChain.size() > 1;) {
        std::size_t numKept = 0;
        for (std::size_t i = 0; i < vChain.size(); ++i) {
            vChain[numKept++] = vChain[i];
            const auto endOf = [&](std::size_t k) {
                return k + 1 < vChain.size() ? vChain[k + 1].pSrc : pEnd;
            };
            if (bGoBack) {
                while (numKept > 1 && cutEar(vChain[numKept - 2], vChain[numKept - 1], endOf(i), vNew)) {
                    --numKept;
                }
            } else if (i + 1 < vChain.size() &&
                       cutEar(vChain[numKept - 1], vChain[i + 1], endOf(i + 1), vNew)) {
                ++i;
            }
        }
        KELM_CHECK(numKept<vChain.size());
        bGoBack = numKept > usefulPass * vChain.size();
        vChain.resize(numKept);
    }
    return vNew.back();
}

// --- conforming insertion ---------------------------------------------------------------------------------

void SegmentInserter::insertSegmentConformingDelaunay(ConstraintSegment2* pCSeg) {
    const Point2 *a = pCSeg->getSrc(), *b = pCSeg->getTrg();
    const auto giveUp = [this] {
        mgr.countFailure();
        printWarning("Dt2::insertSegmentConformingDelaunay()",
                     "Double precision arithmetic does not allow to split a segment further, giving up. "
                     "Incorrect result!");
    };
    const Obstacle met = traverseCZ(pCSeg);
    if (met.pVertex != nullptr) {
        divide(pCSeg, met.pVertex); // the pieces are left to the next round
        return;
    }
    if (ConstraintSegment2* pCrossingCSeg = met.crossing.pCrossingCSeg) {
        divideAtCrossing(pCSeg, met.crossing);
        // The one that was forced in stays so.
        if (pCrossingCSeg->getCIS() == CIS_CONSTRAINED_DELAUNAY) mgr.applyOne(pCrossingCSeg);
        return;
    }
    if (vCorridor.empty()) return; // it is an edge
    const double maxAbsCoordinate = std::max(a->getMaxAbs(), b->getMaxAbs());
    const double ulp =
        std::ldexp(epsilon, static_cast<int>(std::ceil(std::log(maxAbsCoordinate) / std::log(2.0))));
    if (minUlps * ulp > std::fabs(a->x() - b->x()) && minUlps * ulp > std::fabs(a->y() - b->y())) {
        giveUp();
        return;
    }
    Point2 center = centerWithShift(*a, *b, quorTest);
    double height = 0.0;
    if (pCSeg->getCIS() == CIS_CONFORMING_SURFACE_HEIGHT &&
        mesh.getHeight(center.x(), center.y(), height, nullptr, 0.0)) {
        center.setZ(height);
    }
    Point2* pNew = mesh.insertPoint(center);
    if (pCSeg->hasEnd(pNew) || !pCSeg->divide(pNew)) giveUp();
}

} // namespace QUOR_KELM25D
