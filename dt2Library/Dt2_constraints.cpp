// How one constraint segment enters the mesh, by force or by new vertices, and what the facade asks about
// constraints.
// Which segments there are, and when each is inserted, is decided in ConstraintMgr.cpp; how they are divided
// in ConstraintSegment2.cpp.
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

#include "Dt2.h"

#include "Fan.h"
#include "LeafWalk.h"
#include "centerWithShift.h"
#include "messages.h"

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

namespace {

constexpr double minUlps = 10.0;   // a piece of less extent can't be halved
constexpr double usefulPass = 0.9; // the part of a chain that a pass over it may leave
constexpr double epsilon = 2.220446049250313e-16;

} // namespace

// --- the facade's questions -------------------------------------------------------------------------------

ConstraintGraph2* Dt2::createConstraint(const std::vector<Segment2>& vSegments,
                                        ConstraintInsertionStrategy cis, bool bOrientedSegments) {
    if (vSegments.empty()) {
        printWarning("Dt2::createConstraint(..)", "vSegments is empty, returning NULL");
        return nullptr;
    }
    if (isBroken("Dt2::createConstraint(..)")) return nullptr;
    return bOrientedSegments ? constraintMgr.createOrientedConstraint(vSegments, cis)
                             : constraintMgr.createConstraint(vSegments, cis);
}

void Dt2::applyConstraintsAndZones() {
    if (!is2D()) {
        printWarning("Dt2::applyConstraintsAndZones()",
                     "The triangulation is not full dimensional yet. Nothing to do");
        return;
    }
    if (!isBroken("Dt2::applyConstraintsAndZones()")) constraintMgr.apply();
}

bool Dt2::isConstraint(const Point2* p0, const Point2* p1) const {
    return p0 != nullptr && p1 != nullptr && constraintMgr.isConstraintEdge(p0, p1);
}

bool Dt2::isConstraint(const Triangle2* pT, int ith) const {
    if (pT == nullptr || ith < 0 || ith > 2) return false;
    return isConstraint(pT->getCorner(incIndexBy1(ith)), pT->getCorner(incIndexBy2(ith)));
}

bool Dt2::isConstraint(const Point2* pVtx) const {
    return pVtx != nullptr && constraintMgr.isConstraintVertex(pVtx);
}

ConstraintSegment2* Dt2::getConstraintSegment(const Point2* p0, const Point2* p1) const {
    return p0 != nullptr && p1 != nullptr ? constraintMgr.getAliveSegment(p0, p1) : nullptr;
}

/// The edge between two vertices, from a to b if there is a triangle on the left, else from b to a; no edge
/// if there is none. Linear in the smaller number of neighbours.
Edge2 Dt2::findEdge(const Point2* a, const Point2* b) {
    Fan fanA(a), fanB(b);
    for (;;) {
        for (Fan* pFan : {&fanA, &fanB}) {
            Triangle2* pT = pFan->getTriangle();
            if (pT == nullptr) return Edge2();
            const int i = pFan->getIndex();
            const Point2* pOther = pFan == &fanA ? b : a;
            const bool bOut = pT->getCorner(incIndexBy1(i)) == pOther;
            if (bOut || pT->getCorner(incIndexBy2(i)) == pOther) {
                const int edgeIdx = bOut ? incIndexBy2(i) : incIndexBy1(i);
                Triangle2* pN = pT->getOppositeTriangle(edgeIdx);
                if (bOut == (pFan == &fanA) || pN == nullptr) return Edge2(pT, edgeIdx);
                return Edge2(pN, pN->getIntraTriangleIndex(pT));
            }
            pFan->advance();
        }
    }
}

// --- constrained insertion --------------------------------------------------------------------------------

void Dt2::newCDT_applyOneCS(ConstraintSegment2* pInitialCSeg) {
    KELM_CHECK(pInitialCSeg->getCIS()==CIS_CONSTRAINED_DELAUNAY);
    KELM_CHECK(pInitialCSeg->isAlive());
    LeafWalk walk({pInitialCSeg});
    while (ConstraintSegment2* pCSeg = walk.next()) {
        newCDT_treatOneCS(pCSeg, walk);
    }
}

/// Inserts a segment, or divides it at the first thing it meets; what is left to do joins the walk.
void Dt2::newCDT_treatOneCS(ConstraintSegment2* pCSeg, LeafWalk& walk) {
    Crossing crossing;
    if (Point2* pExistingVertex = newCDT_traverseCZ(pCSeg, crossing)) {
        if (newCDT_divide(pCSeg, pExistingVertex)) walk.push(pCSeg);
    } else if (ConstraintSegment2* pCrossingCSeg = crossing.pCrossingCSeg) {
        const bool bOK = newCDT_divideAtCrossing(pCSeg, crossing);
        if (!pCrossingCSeg->isAlive()) walk.push(pCrossingCSeg);
        if (bOK || !pCSeg->isAlive()) walk.push(pCSeg);
    }
}

/// Divides a segment at a vertex. False, after a warning, if that can't be.
bool Dt2::newCDT_divide(ConstraintSegment2* pCSeg, Point2* pSplit) {
    KELM_CHECK(!pCSeg->hasEnd(pSplit));
    const bool bOK = pCSeg->divide(pSplit);
    if (!bOK) {
        constraintMgr.countFailure();
        printWarning("Dt2::treatConstraintZone()", // "numerica" is misspelled deliberately
                     "intersection point of two constraints has bad numerica accuracy!");
    }
    return bOK;
}

/// Divides both segments at their crossing, the first only if the crossing is not one of its ends. False,
/// after a warning, if one of them can't be divided.
bool Dt2::newCDT_divideAtCrossing(ConstraintSegment2* pCSeg, const Crossing& crossing) {
    ConstraintSegment2* pCrossingCSeg = crossing.pCrossingCSeg;
    const Point2& splitPoint = crossing.splitPoint;
    KELM_CHECK(splitPoint!=*pCrossingCSeg->getSrc() && splitPoint!=*pCrossingCSeg->getTrg());
    const bool bSplitBoth = splitPoint != *pCSeg->getSrc() && splitPoint != *pCSeg->getTrg();

    // Both count as no constraint while the vertex enters: their edges may be divided or flipped.
    pCrossingCSeg->markDead();
    if (bSplitBoth) pCSeg->markDead();
    Point2* pSplit = newCDT_insertCrossing(crossing);
    pCrossingCSeg->markAlive();
    bool bOK = newCDT_divide(pCrossingCSeg, pSplit);
    if (bSplitBoth) {
        pCSeg->markAlive();
        bOK = newCDT_divide(pCSeg, pSplit) && bOK;
    }
    return bOK;
}

/// Makes the crossing a vertex. The edge there is no constraint any more and loses its place if it violates
/// the circle.
Point2* Dt2::newCDT_insertCrossing(const Crossing& crossing) {
    Triangle2 *pT0 = nullptr, *pT1 = nullptr;
    int i0 = -1, i1 = -1, edgeIdx = -1;
    crossing.edge.getTriangles(pT0, pT1, i0, i1);
    Triangle2* pFound = pT0;
    const int result = locateFrom(&crossing.splitPoint, pFound, edgeIdx);
    Point2* pSplit = insertPoint(crossing.splitPoint, pFound);
    // A new vertex in one of the two triangles at the edge has tested it. Where triangles are as thin as the
    // rounding it may be in another one, or an old vertex.
    if (result != MeshInserter::INSIDE || (pFound != pT0 && pFound != pT1)) {
        newCDT_legalizeEdge(crossing.pCrossingCSeg->getSrc(), crossing.pCrossingCSeg->getTrg());
    }
    return pSplit;
}

/// Makes a segment an edge if nothing is in the way. Otherwise nothing is changed, and the result is as of
/// newCDT_walk.
Point2* Dt2::newCDT_traverseCZ(const ConstraintSegment2* pCSeg, Crossing& crossing) {
    Point2* pMet = newCDT_walk(pCSeg, crossing);
    if (pMet == nullptr && crossing.pCrossingCSeg == nullptr && !vCorridor.empty()) {
        newCDT_replaceCorridor(vRightChain.front().pSrc, vLeftChain.back().pSrc);
    }
    return pMet;
}

/// Whether two vertices are neighbours. If not, they may be swapped, so that the first has the fewer
/// triangles or nearly so. At first its are looked at: of the ends of a piece the one with the higher address
/// is mostly new, few triangles meet there, and all of them are in the cache.
bool Dt2::newCDT_isEdge(Point2*& pStart, Point2*& pStop) {
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

/// Walks along a segment from one end to the first thing it meets: the result is a vertex on the
/// segment, or null and a crossing with another constraint. If it meets nothing the corridor and the chains
/// at its sides are complete; the corridor is empty if the segment is an edge.
Point2* Dt2::newCDT_walk(const ConstraintSegment2* pCSeg, Crossing& crossing) {
    vCorridor.clear();
    vRightChain.clear();
    vLeftChain.clear();
    Point2 *pStart = pCSeg->getTrg(), *pStop = pCSeg->getSrc();
    KELM_CHECK(pStart->getIncidentTriangle()!=NULL);
    KELM_CHECK(pStop->getIncidentTriangle()!=NULL);
    if (newCDT_isEdge(pStart, pStop)) return nullptr;
    Triangle2* pT = nullptr;
    if (Point2* pAhead = newCDT_leaveStart(pStart, pStop, pT)) {
        innerVtxMgr.forget(pAhead);
        return pAhead;
    }
    vCorridor.push_back(pT);
    // Right of the segment the chain runs from start to stop; left of it from stop to start, built backwards.
    int exitIdx = pT->getIntraTriangleIndex(pStart);
    vRightChain.push_back({pStart, pT, incIndexBy2(exitIdx)});
    vLeftChain.push_back({pT->getCorner(incIndexBy2(exitIdx)), pT, incIndexBy1(exitIdx)});
    for (;;) {
        Triangle2* pN = pT->getOppositeTriangle(exitIdx);
        const int k = pN->getIntraTriangleIndex(pT);
        Point2 *pLeft = pN->getCorner(incIndexBy1(k)), *pRight = pN->getCorner(incIndexBy2(k));
        if (segmentTable.isConstraintEdge(pLeft, pRight)) {
            crossing.splitPoint = getIntersection25D(*pLeft, *pRight, *pStart, *pStop);
            if (crossing.splitPoint == *pLeft) return pLeft;
            if (crossing.splitPoint == *pRight) return pRight;
            crossing.pCrossingCSeg = constraintMgr.getAliveSegment(pLeft, pRight);
            crossing.edge = Edge2(pN, k);
            return nullptr;
        }
        vCorridor.push_back(pN);
        Point2* pVtx = pN->getCorner(k);
        const Orientation2 side = quorTest.getOrientation2Filtered(pStart, pStop, pVtx);
        if (side == ORIENTATION2_COLLINEAR) {
            if (pVtx != pStop) return pVtx; // not forgotten as an inner vertex here, deliberately
            vRightChain.push_back({pRight, pN, incIndexBy1(k)});
            vLeftChain.push_back({pStop, pN, incIndexBy2(k)});
            return nullptr;
        }
        if (side == ORIENTATION2_CW) {
            vRightChain.push_back({pRight, pN, incIndexBy1(k)});
            exitIdx = incIndexBy2(k);
        } else {
            vLeftChain.push_back({pVtx, pN, incIndexBy2(k)});
            exitIdx = incIndexBy1(k);
        }
        pT = pN;
    }
}

/// Looks around the start for the way to the stop, which is no neighbour: the triangle whose opposite edge
/// the segment crosses, or, as the result, a neighbour that lies on it.
Point2* Dt2::newCDT_leaveStart(const Point2* pStart, const Point2* pStop, Triangle2*& pT) {
    for (Fan fan(pStart); fan.getTriangle() != nullptr; fan.advance()) {
        pT = fan.getTriangle();
        const int i = fan.getIndex();
        Point2 *a = pT->getCorner(incIndexBy1(i)), *b = pT->getCorner(incIndexBy2(i));
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
void Dt2::newCDT_replaceCorridor(Point2* pStart, Point2* pStop) {
    std::vector<Triangle2*> vNew;
    vNew.reserve(vCorridor.size());
    std::reverse(vLeftChain.begin(), vLeftChain.end());
    Triangle2* pT0 = newCDT_triangulateSide(vRightChain, pStop, vNew);
    Triangle2* pT1 = newCDT_triangulateSide(vLeftChain, pStart, vNew);
    pT0->setOppTriangle(1, pT1);
    pT1->setOppTriangle(1, pT0);
    for (Triangle2* pRemoved : vCorridor) {
        recycleTriangle(pRemoved);
    }
    repairDelaunay(vNew);
}

/// Cuts ears off a chain of edges that ends at pEnd until one edge is left; the result is the triangle at it,
/// which has it as edge 1. The chain's triangles are those being removed: each still holds the link to the
/// neighbour outside, and two of them stand for each other where an edge has both its sides in the corridor.
Triangle2* Dt2::newCDT_triangulateSide(std::vector<ChainEdge>& vChain, Point2* pEnd,
                                       std::vector<Triangle2*>& vNew) {
    const auto linkOutside = [](Triangle2* pNew, int i, const ChainEdge& edge) {
        Triangle2* pOutside = edge.pHolder->getOppositeTriangle(edge.idx);
        pNew->setOppTriangle(i, pOutside);
        MeshInserter::relink(pOutside, edge.pHolder, pNew);
    };
    // Makes the ear of two neighbouring edges a triangle and the first of them the new open edge, if it is
    // one.
    const auto cutEar = [&](const ChainEdge& edge, const ChainEdge& next, Point2* c) {
        Point2 *a = edge.pSrc, *b = next.pSrc;
        if (quorTest.getOrientation2Filtered(a, b, c) != ORIENTATION2_CCW) return false;
        Triangle2* pNew = createTriangle(a, b, c);
        linkOutside(pNew, 2, edge);
        linkOutside(pNew, 0, next);
        pNew->setOppTriangle(1, edge.pHolder);
        edge.pHolder->setOppTriangle(edge.idx, pNew);
        vNew.push_back(pNew);
        return true;
    };
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
                while (numKept > 1 && cutEar(vChain[numKept - 2], vChain[numKept - 1], endOf(i))) {
                    --numKept;
                }
            } else if (i + 1 < vChain.size() && cutEar(vChain[numKept - 1], vChain[i + 1], endOf(i + 1))) {
                ++i;
            }
        }
        KELM_CHECK(numKept<vChain.size());
        bGoBack = numKept > usefulPass * vChain.size();
        vChain.resize(numKept);
    }
    return vNew.back();
}

/// An edge that was a constraint must have an empty circle from now on, and so must what its flip changes.
void Dt2::newCDT_legalizeEdge(const Point2* a, const Point2* b) {
    const Edge2 edge = findEdge(a, b);
    if (edge.getTriangle() == nullptr) return;
    std::vector<Edge2> vStack = {edge};
    legalizeEdges(vStack);
}

// --- conforming insertion ---------------------------------------------------------------------------------

void Dt2::insertSegmentConformingDelaunay(ConstraintSegment2* pCSeg) {
    const Point2 *a = pCSeg->getSrc(), *b = pCSeg->getTrg();
    const auto giveUp = [this] {
        constraintMgr.countFailure();
        printWarning("Dt2::insertSegmentConformingDelaunay()",
                     "Double precision arithmetic does not allow to split a segment further, giving up. "
                     "Incorrect result!");
    };
    Crossing crossing;
    if (Point2* pExistingVertex = newCDT_walk(pCSeg, crossing)) {
        newCDT_divide(pCSeg, pExistingVertex); // the pieces are left to the next round
        return;
    }
    if (ConstraintSegment2* pCrossingCSeg = crossing.pCrossingCSeg) {
        newCDT_divideAtCrossing(pCSeg, crossing);
        // The one that was forced in stays so.
        if (pCrossingCSeg->getCIS() == CIS_CONSTRAINED_DELAUNAY) constraintMgr.applyOne(pCrossingCSeg);
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
        getHeight(center.x(), center.y(), height, nullptr, 0.0)) {
        center.setZ(height);
    }
    Point2* pNew = insertPoint(center);
    if (pCSeg->hasEnd(pNew) || !pCSeg->divide(pNew)) giveUp();
}

} // namespace QUOR_KELM25D
