// The tree of splits of a constraint segment, a ConstraintSegment2: owners, leaves, and the division at a
// vertex.
// How a segment's edge enters the mesh is in SegmentInserter.cpp.

#include <kelm25d/ConstraintSegment2.h>

#include "ConstraintMgr.h"
#include "measures.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <ostream>
#include <unordered_set>

namespace QUOR_KELM25D {

namespace {

int nextLabel = 0; // one counter for all triangulations, never reset and not guarded, deliberately

const char* const runsBackText =
    "the point lies on the segment's line beyond an end, the segment is not divided";

/// Whether p stands beyond an end by no more than the rounding of a computed point, as a + 1.0 * (b - a) may:
/// the end is meant then. A piece to a place just beside it would cross what ends there.
bool isMeantForEnd(const Point2& end, const Point2& otherEnd, const Point2& p) {
    const double rounding = 0x1p-50 * end.getMaxAbs();
    return std::fabs(end.x() - p.x()) <= rounding && std::fabs(end.y() - p.y()) <= rounding &&
           distance2D(otherEnd, p) >= distance2D(otherEnd, end);
}

/// Whether c lies on the line through a and b, outside the segment: a constraint bent there would run back
/// over itself.
bool runsBack(const Point2& a, const Point2& b, const Point2& c) {
    return !isInBox(a, b, c) && std::isfinite(c.x()) && std::isfinite(c.y()) &&
           getOrientation2_mt(&a, &b, &c) == ORIENTATION2_COLLINEAR;
}

} // namespace

ConstraintSegment2::ConstraintSegment2(Point2* p0_, Point2* p1_, ConstraintInsertionStrategy cis_)
    : label(nextLabel++), cis(cis_), p0(p0_), p1(p1_) {
    KELM_CHECK(p0<p1);
}

ConstraintMgr& ConstraintSegment2::getMgr() const noexcept {
    return sOwners.front().pGraph->mgr;
}

void ConstraintSegment2::skipLabel() noexcept {
    ++nextLabel;
}

// --- owners -----------------------------------------------------------------------------------------------

const ConstraintSegment2::Owner*
ConstraintSegment2::findOwner(const ConstraintGraph2* pGraph) const noexcept {
    const auto it = std::lower_bound(
        sOwners.begin(), sOwners.end(), pGraph,
        [](const Owner& owner, const ConstraintGraph2* p) { return owner.pGraph->number < p->number; });
    return it != sOwners.end() && it->pGraph == pGraph ? &*it : nullptr;
}

/// A graph that takes over a dead segment owns its whole subtree.
void ConstraintSegment2::addOwnerRec(ConstraintGraph2* pGraph) {
    std::vector<ConstraintSegment2*> vStack = {this};
    while (!vStack.empty()) {
        ConstraintSegment2* pSegment = vStack.back();
        vStack.pop_back();
        if (pSegment->findOwner(pGraph) != nullptr) continue; // and so is what is below it
        std::vector<Owner>& sOthers = pSegment->sOwners;
        const auto it = std::upper_bound(
            sOthers.begin(), sOthers.end(), pGraph,
            [](const ConstraintGraph2* p, const Owner& owner) { return p->number < owner.pGraph->number; });
        sOthers.insert(it, Owner{pGraph, false, false});
        if (pSegment->aChild[0] == nullptr) continue;
        vStack.push_back(pSegment->aChild[0]);
        vStack.push_back(pSegment->aChild[1]);
    }
}

// --- the tree ---------------------------------------------------------------------------------------------

void ConstraintSegment2::getChildrenRec(std::vector<ConstraintSegment2*>& vChildrenOut) const {
    if (aChild[0] == nullptr) checkFailed("vChildren.size()==2", __FILE__, __LINE__);
    std::vector<ConstraintSegment2*> vStack = {aChild[1], aChild[0]};
    while (!vStack.empty()) {
        ConstraintSegment2* pSegment = vStack.back();
        vStack.pop_back();
        if (pSegment->isAlive()) {
            vChildrenOut.push_back(pSegment);
        } else if (pSegment->aChild[0] != nullptr) {
            vStack.push_back(pSegment->aChild[1]);
            vStack.push_back(pSegment->aChild[0]);
        }
    }
}

void ConstraintSegment2::getChildrenAndSplitPoint(ConstraintSegment2*& pKid0, ConstraintSegment2*& pKid1,
                                                  Point2*& pSplit) const {
    if (aChild[0] == nullptr) {
        printWarning("ConstraintSegment2::getChildrenAndSplitPoint()", "*this is still alive!");
        return;
    }
    pKid0 = aChild[0];
    pKid1 = aChild[1];
    pSplit = pKid1->hasEnd(pKid0->p0) ? pKid0->p0 : pKid1->hasEnd(pKid0->p1) ? pKid0->p1 : nullptr;
}

/// Whether this segment is pRoot or stands in the tree below it.
bool ConstraintSegment2::isBelow(const ConstraintSegment2* pRoot) const {
    std::unordered_set<const ConstraintSegment2*> sVisited;
    std::vector<const ConstraintSegment2*> vStack = {pRoot};
    while (!vStack.empty()) {
        const ConstraintSegment2* pSegment = vStack.back();
        vStack.pop_back();
        if (pSegment == this) return true;
        if (pSegment->aChild[0] == nullptr || !sVisited.insert(pSegment).second) continue;
        vStack.push_back(pSegment->aChild[0]);
        vStack.push_back(pSegment->aChild[1]);
    }
    return false;
}

// --- division ---------------------------------------------------------------------------------------------

/// Makes the two pieces to pSplit the children. False, and nothing changed, if one of them contains this
/// segment: a bent constraint that runs back over itself would never come to an end.
bool ConstraintSegment2::divide(Point2* pSplit) {
    ConstraintMgr& mgr = getMgr();
    for (Point2* pEnd : {p0, p1}) {
        const ConstraintSegment2* pExisting = mgr.findSegment(pEnd, pSplit);
        if (pExisting != nullptr && pExisting->aChild[0] != nullptr && isBelow(pExisting)) {
            printError("ConstraintSegment2::divide()",
                       "a piece would contain the segment, it is not divided");
            return false;
        }
    }
    mgr.countDivision();
    aChild[0] = mgr.getSegment(p0, pSplit, cis);
    aChild[1] = mgr.getSegment(p1, pSplit, cis);
    if (aChild[0]->sOwners.empty() && aChild[1]->sOwners.empty()) {
        // Two new pieces, as mostly: each owner runs along them as it does here.
        for (ConstraintSegment2* pChild : aChild) {
            pChild->sOwners = sOwners;
            for (Owner& owner : pChild->sOwners) {
                owner.bReverse = owner.bReverse == isParallelTo(pChild);
            }
        }
        return true;
    }
    for (const Owner& owner : sOwners) {
        aChild[0]->addOwnerRec(owner.pGraph);
        aChild[1]->addOwnerRec(owner.pGraph);
        owner.pGraph->fillChildFlags(this);
    }
    return true;
}

bool ConstraintSegment2::split_combinatorialOnly(Point2* pSplit) {
    KELM_CHECK(pSplit!=0);
    KELM_CHECK(isAlive());
    KELM_CHECK(p0!=pSplit && p1!=pSplit);
    KELM_CHECK(!sOwners.empty());
    if (runsBack(*p0, *p1, *pSplit)) {
        printError("ConstraintSegment2::split_combinatorialOnly()", runsBackText);
        return false;
    }
    ConstraintMgr& mgr = getMgr();
    if (mgr.getMesh().is2D() && pSplit->getIncidentTriangle() == nullptr) {
        printError("ConstraintSegment2::split_combinatorialOnly()",
                   "the vertex is not part of the mesh, the segment is not divided");
        return false;
    }
    if (!divide(pSplit)) return false;
    mgr.addLeftInMesh(this);
    return true;
}

Point2* ConstraintSegment2::insertAndSplit(const Point2& point) {
    KELM_CHECK(bAlive);
    if (aChild[0] != nullptr) checkFailed("vChildren.empty()", __FILE__, __LINE__);
    KELM_CHECK(!sOwners.empty());
    ConstraintMgr& mgr = getMgr();
    Mesh2& mesh = mgr.getMesh();
    if (isMeantForEnd(*p0, *p1, point)) return p0;
    if (isMeantForEnd(*p1, *p0, point)) return p1;
    if (runsBack(*p0, *p1, point)) {
        printError("ConstraintSegment2::insertAndSplit()", runsBackText);
        return nullptr;
    }
    bAlive = false; // the edge counts as none while the point enters, and may be divided or flipped
    Point2* pSplit = mesh.insertPoint(point, p0->getIncidentTriangle());
    if (pSplit == nullptr || hasEnd(pSplit) || !divide(pSplit)) {
        bAlive = true;
        return pSplit != nullptr && hasEnd(pSplit) ? pSplit : nullptr;
    }
    if (!mesh.is2D()) return pSplit;
    mesh.legalizeEdge(p0, p1); // it may still be there, if the point lies off it
    for (ConstraintSegment2* pChild : aChild) {
        mgr.applyOne(pChild);
    }
    mesh.legalizeAround(pSplit);
    return pSplit;
}

bool ConstraintSegment2::splitAndRemovePrev(const Point2& point) {
    const Point2* pNew = insertAndSplit(point);
    if (pNew == nullptr) return false;
    const double dx = pNew->x() - p0->x(), dy = pNew->y() - p0->y();
    getMgr().getInnerVtxMgr().removeNear(*pNew, dx * dx + dy * dy, getMgr().getMesh());
    return true;
}

std::ostream& operator<<(std::ostream& stream, const ConstraintSegment2& segment) {
    stream << "ConstraintSegment2 label " << segment.label << ", " << &segment << ": (" << segment.p0 << ","
           << segment.p1 << ")\n";
    if (segment.isAlive()) {
        stream << " [alive]\n";
    } else {
        stream << " [DEAD, numChildren=" << (segment.aChild[0] != nullptr ? 2 : 0) << "]\n";
    }
    return stream << *segment.p0 << '\n'
                  << *segment.p1 << '\n'
                  << "length="
                  << std::hypot(segment.p0->x() - segment.p1->x(), segment.p0->y() - segment.p1->y());
}

} // namespace QUOR_KELM25D
