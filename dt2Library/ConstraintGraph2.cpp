// Groups of constraint segments: the test for a polygon, directions, the way down to the alive pieces, and
// the division into Delaunay edges.
// Directions are kept with the owners of each segment, see ConstraintSegment2.h: a lookup there is a look at
// a sequence that mostly has one element.

#include <kelm25d/ConstraintGraph2.h>

#include "ConstraintMgr.h"
#include "HashTable.h"
#include "LeafWalk.h"
#include "footPoint.h"
#include "measures.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iostream>

namespace QUOR_KELM25D {

namespace {

// Of makeDelaunay: an apex this close to a segment takes the place of the split point.
constexpr double nearApex = 0.001;
constexpr double nearRatio = 0.01;
constexpr double touchingApex = 1e-6;
// Constraints that all but coincide may divide one another by a unit in the last place in every round.
constexpr int maxRounds = 499;

/// The one or two segments at each vertex.
class IncidenceTable {
public:
    struct Entry {
        const Point2* pVtx = nullptr;
        ConstraintSegment2* aSegment[2] = {nullptr, nullptr};
        bool isFree() const noexcept { return pVtx == nullptr; }
        std::uint64_t getHash() const noexcept { return hashOfAddress(pVtx); }
    };

    explicit IncidenceTable(std::size_t maxVertices) : table(maxVertices) {}

    /// False for a third segment at the vertex.
    bool add(const Point2* pVtx, ConstraintSegment2* pSegment) {
        Entry& entry = at(pVtx);
        if (entry.isFree()) {
            table.fill(entry, {pVtx, {pSegment, nullptr}});
            return true;
        }
        if (entry.aSegment[1] != nullptr) return false;
        entry.aSegment[1] = pSegment;
        return true;
    }
    /// The vertex's entry, or the free one where it belongs.
    Entry& at(const Point2* pVtx) noexcept {
        return table.find(hashOfAddress(pVtx), [=](const Entry& entry) { return entry.pVtx == pVtx; });
    }

private:
    HashTable<Entry> table;
};

template <class Pointer>
void sortUnique(std::vector<Pointer>& v) {
    std::sort(v.begin(), v.end(), std::less<Pointer>());
    v.erase(std::unique(v.begin(), v.end()), v.end());
}

/// Where to divide a segment that is no Delaunay edge: in the middle, at an apex that all but lies on it, or
/// next to one.
Point2 chooseSplitPoint(const Point2& p0, const Point2& p1, const Point2* const (&aApex)[2]) {
    Point2 split(0.5 * p0.x() + 0.5 * p1.x(), 0.5 * p0.y() + 0.5 * p1.y(), 0.5 * p0.z() + 0.5 * p1.z());
    for (const Point2* pApex : aApex) {
        if (!isOnSegment(p0, p1, *pApex)) continue;
        const Point2 foot = getFootPoint(p0, p1, *pApex);
        if (foot == p0 || foot == p1) continue;
        const double h = distance2D(*pApex, foot), d0 = distance2D(foot, p0), d1 = distance2D(foot, p1);
        const bool bTouching = (h < nearApex && h / d0 < nearRatio && h / d1 < nearRatio) || h < touchingApex;
        if (bTouching && isProgress(p0, p1, *pApex)) return *pApex;
        const bool bNear = h / distance2D(p0, p1) < nearRatio && isOnSegment(p0, p1, foot);
        if (bNear && isProgress(p0, p1, foot)) split = foot;
    }
    return split;
}

} // namespace

// --- construction -----------------------------------------------------------------------------------------

/// What both constructors begin with.
void ConstraintGraph2::own(const Segments& vSegments) {
    for (ConstraintSegment2* pCSeg : vSegments) {
        pCSeg->addOwnerRec(this);
    }
    bIsPolygon = checkAndSortPolygon(vSegments);
    if (!bIsPolygon) vCSegParents = vSegments;
}

ConstraintGraph2::ConstraintGraph2(ConstraintMgr& mgr_, const Segments& vSegments,
                                   ConstraintInsertionStrategy cis_)
    : mgr(mgr_), pDt(mgr_.getDt2()), cis(cis_), number(mgr_.getNumberOfGraphs()) {
    own(vSegments);
    bOriented = bIsPolygon; // counterclockwise then
    if (!bIsPolygon) {
        for (ConstraintSegment2* pCSeg : vSegments) {
            setReverse(pCSeg, false);
        }
    }
    for (ConstraintSegment2* pCSeg : vSegments) {
        fillChildFlags(pCSeg);
    }
}

/// The user's directions override those of a polygon, which keeps its order all the same. Of a segment given
/// twice the first direction holds.
ConstraintGraph2::ConstraintGraph2(ConstraintMgr& mgr_, const Segments& vSegments,
                                   const std::vector<bool>& vReverse, ConstraintInsertionStrategy cis_)
    : mgr(mgr_), pDt(mgr_.getDt2()), cis(cis_), number(mgr_.getNumberOfGraphs()), bOriented(true) {
    own(vSegments);
    for (std::size_t i = vSegments.size(); i-- > 0;) {
        setReverse(vSegments[i], vReverse[i]);
    }
    for (ConstraintSegment2* pCSeg : vSegments) {
        fillChildFlags(pCSeg);
    }
}

/// Whether the segments form one ring. Then they become the parents, counterclockwise from the leftmost
/// vertex on, with their directions.
bool ConstraintGraph2::checkAndSortPolygon(const Segments& vSegments) {
    if (vSegments.size() < 3) return false;
    IncidenceTable incidences(2 * vSegments.size());
    Point2* pLeftmost = vSegments.front()->p0;
    for (ConstraintSegment2* pCSeg : vSegments) {
        for (Point2* pEnd : {pCSeg->p0, pCSeg->p1}) {
            if (!incidences.add(pEnd, pCSeg)) return false;
            if (*pEnd < *pLeftmost) pLeftmost = pEnd;
        }
    }
    const auto otherEnd = [](const ConstraintSegment2* pCSeg, const Point2* pVtx) {
        return pCSeg->p0 == pVtx ? pCSeg->p1 : pCSeg->p0;
    };
    const IncidenceTable::Entry& first = incidences.at(pLeftmost);
    ConstraintSegment2 *pA = first.aSegment[0], *pB = first.aSegment[1];
    if (pB == nullptr) return false;
    const Orientation2 turn = mgr.getMesh().getQuorTest().getOrientation2Filtered(
        pLeftmost, otherEnd(pA, pLeftmost), otherEnd(pB, pLeftmost));
    if (turn == ORIENTATION2_COLLINEAR) return false;
    ConstraintSegment2* pCSeg = turn == ORIENTATION2_CCW ? pA : pB;
    Point2* pVtx = pLeftmost;
    Segments vRing;
    do {
        setReverse(pCSeg, pCSeg->p1 == pVtx);
        vRing.push_back(pCSeg);
        pVtx = otherEnd(pCSeg, pVtx);
        const IncidenceTable::Entry& entry = incidences.at(pVtx);
        pCSeg = entry.aSegment[entry.aSegment[0] == pCSeg ? 1 : 0];
        if (pCSeg == nullptr) return false;
    } while (pVtx != pLeftmost);
    if (vRing.size() != vSegments.size()) return false;
    vCSegParents.swap(vRing);
    return true;
}

// --- directions -------------------------------------------------------------------------------------------

void ConstraintGraph2::setReverse(ConstraintSegment2* pSegment, bool bReverse) {
    auto* pOwner = const_cast<ConstraintSegment2::Owner*>(pSegment->findOwner(this));
    pOwner->bReverse = bReverse;
    pOwner->bDirected = true;
}

/// Gives the tree below a segment of known direction its directions. What has one keeps it, and so does what
/// is below that: where a bent constraint runs over itself the first direction holds.
void ConstraintGraph2::fillChildFlags(ConstraintSegment2* pParent) {
    Segments vDivided; // below the parent; mostly there are none
    for (ConstraintSegment2* pCSeg = pParent;;) {
        for (ConstraintSegment2* pChild : pCSeg->aChild) {
            if (pChild == nullptr) break;
            if (pChild->findOwner(this)->bDirected) continue;
            setReverse(pChild, pCSeg->isParallelTo(pChild) == isReverse(pCSeg));
            if (pChild->aChild[0] != nullptr) vDivided.push_back(pChild);
        }
        if (vDivided.empty()) return;
        pCSeg = vDivided.back();
        vDivided.pop_back();
    }
}

bool ConstraintGraph2::isReverse(ConstraintSegment2* pSegment) const {
    const ConstraintSegment2::Owner* pOwner = pSegment != nullptr ? pSegment->findOwner(this) : nullptr;
    if (pOwner == nullptr || !pOwner->bDirected) checkFailed("q_it!=mCSegReverse.end()", __FILE__, __LINE__);
    return pOwner->bReverse;
}

bool ConstraintGraph2::isConstraint(ConstraintSegment2* pSegment) const {
    return pSegment != nullptr && pSegment->isAlive() && pSegment->findOwner(this) != nullptr;
}

bool ConstraintGraph2::isConstraint(Point2* p0, Point2* p1) const {
    ConstraintSegment2::skipLabel(); // once a segment was made for the search; the number is kept
                                     // deliberately
    if (p0 == nullptr || p1 == nullptr) return false;
    return isConstraint(mgr.getAliveSegment(p0, p1));
}

// --- reading ----------------------------------------------------------------------------------------------

void ConstraintGraph2::getOriginalConstraintSegments(Segments& vSegmentsOut) const {
    vSegmentsOut = vCSegParents;
    sortUnique(vSegmentsOut);
    if (vSegmentsOut.size() == vCSegParents.size()) vSegmentsOut = vCSegParents;
}

void ConstraintGraph2::getChildConstraintSegments(Segments& vSegmentsOut) const {
    LeafWalk walk(vCSegParents);
    while (ConstraintSegment2* pLeaf = walk.next()) {
        vSegmentsOut.push_back(pLeaf);
    }
    sortUnique(vSegmentsOut);
}

void ConstraintGraph2::getDirectChildren(ConstraintSegment2* pParent, ConstraintSegment2*& pChild0,
                                         ConstraintSegment2*& pChild1) const {
    pChild0 = pParent->aChild[0];
    pChild1 = pParent->aChild[1];
    if (pChild0 == nullptr) return;
    const Point2* pSrc = isReverse(pParent) ? pParent->p1 : pParent->p0;
    if (pChild1->hasEnd(pSrc)) std::swap(pChild0, pChild1);
}

void ConstraintGraph2::getChildrenInOrder(Segments& vSegmentsOut) const {
    vSegmentsOut.clear();
    Segments vStack(vCSegParents.rbegin(), vCSegParents.rend());
    while (!vStack.empty()) {
        ConstraintSegment2* pCSeg = vStack.back();
        vStack.pop_back();
        if (pCSeg->isAlive()) {
            vSegmentsOut.push_back(pCSeg);
            continue;
        }
        ConstraintSegment2 *pKid0 = nullptr, *pKid1 = nullptr;
        getDirectChildren(pCSeg, pKid0, pKid1);
        KELM_CHECK(pKid0!=0 && pKid1!=0);
        vStack.push_back(pKid1);
        vStack.push_back(pKid0);
    }
}

void ConstraintGraph2::getPolygonVertices(std::vector<Point2*>& vVerticesOut) const {
    Segments vPieces;
    getChildrenInOrder(vPieces);
    for (ConstraintSegment2* pCSeg : vPieces) {
        const bool bReverse = isReverse(pCSeg);
        vVerticesOut.push_back(bReverse ? pCSeg->p1 : pCSeg->p0);
        vVerticesOut.push_back(bReverse ? pCSeg->p0 : pCSeg->p1);
    }
}

// --- Delaunay edges ---------------------------------------------------------------------------------------

bool ConstraintGraph2::makeDelaunay(double minLength) {
    bool bAllDelaunay = true, bChanged = true;
    for (int round = 0; bChanged; ++round) {
        if (round == maxRounds) {
            printWarning("ConstraintGraph2::makeDelaunay()", "insufficient numeric accuracy, giving up");
            return false;
        }
        bChanged = false;
        Segments vStack;
        getChildConstraintSegments(vStack);
        while (!vStack.empty()) {
            ConstraintSegment2* pCSeg = vStack.back();
            vStack.pop_back();
            if (!pCSeg->isAlive()) {
                pCSeg->getChildrenRec(vStack);
                continue;
            }
            const std::size_t numBefore = vStack.size();
            if (!makeDelaunay(pCSeg, minLength * minLength, vStack)) bAllDelaunay = false;
            if (vStack.size() != numBefore) bChanged = true;
        }
    }
    return bAllDelaunay;
}

/// Divides one alive piece, whose children go to the stack, unless it is a Delaunay edge. False if it is none
/// and can't be divided.
bool ConstraintGraph2::makeDelaunay(ConstraintSegment2* pCSeg, double sqMin, Segments& vStack) {
    const Edge2 edge = Mesh2::findEdge(pCSeg->p0, pCSeg->p1);
    Triangle2 *pT0 = edge.getTriangle(), *pT1 = nullptr;
    if (pT0 != nullptr) pT1 = pT0->getOppositeTriangle(edge.getIndex());
    if (pT0 == nullptr || pT1 == nullptr) return true; // on the hull
    const Point2* const aApex[2] = {pT0->getCorner(edge.getIndex()),
                                    pT1->getCorner(pT1->getIntraTriangleIndex(pT0))};
    if (mgr.getMesh().getQuorTest().circleIncFiltered(pT0, aApex[1]) != InCircle::INSIDE) return true;

    const Point2 &p0 = *pCSeg->p0, &p1 = *pCSeg->p1;
    const double dx = p0.x() - p1.x(), dy = p0.y() - p1.y(), dz = p0.z() - p1.z();
    if (dx * dx + dy * dy + dz * dz < sqMin) return false;
    Point2 split = chooseSplitPoint(p0, p1, aApex);
    split.setCustomIndex(-1);
    const Point2* pVtx = pCSeg->insertAndSplit(split);
    if (pVtx == nullptr || pCSeg->hasEnd(pVtx)) return false; // too short for a point between its ends
    KELM_CHECK(!pCSeg->isAlive());
    vStack.push_back(pCSeg->aChild[0]);
    vStack.push_back(pCSeg->aChild[1]);
    return true;
}

} // namespace QUOR_KELM25D
