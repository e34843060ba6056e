// Borders, cuts through holes, and the dealing out of triangles that touch in a vertex.
// What the parts are good for is told in the header.
//
// A cut goes through the median of border vertices, so that it leaves about half of the holes or pinches on
// either side and n triangles cost n log n. Which way it goes alternates in the whole
// process: how a set is divided depends on what was divided before, deliberately.

#include "Partitioner.h"

#include "Flood.h"
#include "messages.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <iterator>
#include <utility>

namespace QUOR_KELM25D {

namespace {

std::atomic<bool> bSplitAlongX{true};
constexpr std::size_t smallSet = 64;   // needs no cut
constexpr std::size_t usefulShare = 4; // if less than one in so many was taken, the rest is cut

constexpr std::less<const Point2*> isLower;

using Parts = std::vector<std::vector<Triangle2*>>;

/// Appends the sets into which triangles fall that are connected over edges, in the order of the first
/// triangle of each. With bIsolated none has a neighbour that is not among them.
void appendConnected(std::vector<Triangle2*>&& vT, bool bIsolated, Parts& vPartsOut) {
    TriangleSet sOwn;
    if (!bIsolated) sOwn = TriangleSet(vT);
    Flood flood;
    for (Triangle2* pFirst : vT) {
        const std::size_t numBefore = flood.getSequence().size();
        if (!flood.reach(pFirst)) continue;
        while (const Triangle2* pT = flood.next()) {
            for (Triangle2* pN : pT->getOppositeTriangles()) {
                if (pN != nullptr && (bIsolated || sOwn.contains(pN))) flood.reach(pN);
            }
        }
        const std::vector<Triangle2*>& vReached = flood.getSequence();
        if (vReached.size() - numBefore == vT.size()) {
            vPartsOut.push_back(std::move(vT)); // in its own order, which is mostly that of the memory
            return;
        }
        vPartsOut.emplace_back(vReached.begin() + static_cast<std::ptrdiff_t>(numBefore), vReached.end());
    }
}

/// Cuts a set in two along a line through the median of some vertices.
void cutAtMedian(std::vector<Triangle2*>&& vT, std::vector<Point2*>& vVertices, Parts& vPartsOut) {
    const bool bAlongX = !bSplitAlongX;
    bSplitAlongX = bAlongX;
    const auto coordinate = [bAlongX](const Point2* pVtx) { return bAlongX ? pVtx->x() : pVtx->y(); };
    const auto median = vVertices.begin() + static_cast<std::ptrdiff_t>(vVertices.size() / 2);
    std::nth_element(vVertices.begin(), median, vVertices.end(),
                     [&](const Point2* a, const Point2* b) { return coordinate(a) < coordinate(b); });
    const double pivot = coordinate(*median);
    std::vector<Triangle2*> aPart[2];
    for (Triangle2* pT : vT) {
        aPart[pivot > coordinate(pT->getCorner(0)) ? 0 : 1].push_back(pT);
    }
    if (aPart[0].empty() || aPart[1].empty()) {
        const std::size_t mid = vT.size() / 2;
        const std::vector<Triangle2*>& vComponentT = vT;
        KELM_CHECK(mid>0 && mid<vComponentT.size());
        const auto middle = vT.begin() + static_cast<std::ptrdiff_t>(mid);
        aPart[0].assign(vT.begin(), middle);
        aPart[1].assign(middle, vT.end());
    }
    appendConnected(std::move(aPart[0]), false, vPartsOut);
    appendConnected(std::move(aPart[1]), false, vPartsOut);
}

} // namespace

// --- one component ----------------------------------------------------------------------------------------

/// The edges without a triangle of this set on the right, by source.
void ConnectedComponent::collectBorder() {
    TriangleSet sOwn;
    if (!bIsolated) sOwn = TriangleSet(vComponentT);
    for (Triangle2* pT : vComponentT) {
        for (int i = 0; i < 3; ++i) {
            const Triangle2* pN = pT->getOppositeTriangle(i);
            if (pN != nullptr && (bIsolated || sOwn.contains(pN))) continue;
            const Edge2 edge(pT, i);
            vBorderEdges.push_back({edge.getSrc(), edge});
        }
    }
    std::stable_sort(vBorderEdges.begin(), vBorderEdges.end(),
                     [](const Leaving& a, const Leaving& b) { return isLower(a.pSrc, b.pSrc); });
}

/// Walks along the border from the source with the highest address until it comes back there. The result is
/// the sources that were not passed. No vertex may be the source of two edges.
std::vector<Point2*> ConnectedComponent::walkBorder() {
    Point2* pStartVtx = vBorderEdges.empty() ? nullptr : vBorderEdges.back().pSrc;
    KELM_CHECK(pStartVtx!=0);
    std::vector<bool> vPassed(vBorderEdges.size(), false);
    vOrderedBorder.reserve(vBorderEdges.size());
    for (std::size_t i = vBorderEdges.size() - 1;;) {
        vPassed[i] = true;
        vOrderedBorder.push_back(vBorderEdges[i].edge);
        const Point2* pVtx = vBorderEdges[i].edge.getTrg();
        if (pVtx == pStartVtx) break;
        const auto it = std::lower_bound(
            vBorderEdges.begin(), vBorderEdges.end(), pVtx,
            [](const Leaving& leaving, const Point2* p) { return isLower(leaving.pSrc, p); });
        i = static_cast<std::size_t>(it - vBorderEdges.begin());
    }
    std::vector<Point2*> vOffRing;
    for (std::size_t i = 0; i < vBorderEdges.size(); ++i) {
        if (!vPassed[i]) vOffRing.push_back(vBorderEdges[i].pSrc);
    }
    return vOffRing;
}

/// Collects the border. Both results are empty if that is one simple ring; vOffRing stays so as well if there
/// are pinches.
void ConnectedComponent::examineBorder(std::vector<Point2*>& vPinches, std::vector<Point2*>& vOffRing) {
    collectBorder();
    for (std::size_t i = 1; i < vBorderEdges.size(); ++i) {
        Point2* pSrc = vBorderEdges[i].pSrc;
        if (pSrc != vBorderEdges[i - 1].pSrc) continue;
        if (vPinches.empty() || vPinches.back() != pSrc) vPinches.push_back(pSrc);
    }
    if (vPinches.empty()) vOffRing = walkBorder();
}

bool ConnectedComponent::isSimple() {
    std::vector<Point2*> vPinches, vOffRing;
    examineBorder(vPinches, vOffRing);
    return vPinches.empty() && vOffRing.empty();
}

bool ConnectedComponent::split(Parts& vPartsOut) {
    std::vector<Point2*> vPinches, vOffRing;
    examineBorder(vPinches, vOffRing);
    if (!vPinches.empty()) {
        splitAtPinches(vPinches, vPartsOut);
    } else if (!vOffRing.empty()) {
        cutAtMedian(std::move(vComponentT), vOffRing, vPartsOut);
    } else {
        return false;
    }
    return true;
}

/// Deals the triangles around each pinch out, one to a part, and leaves all others together, unless these are
/// nearly all: then they are cut in two, since taking one pinch away may make the next, on and on.
void ConnectedComponent::splitAtPinches(const std::vector<Point2*>& vPinches, Parts& vPartsOut) const {
    const VertexSet sPinches(vPinches);
    std::vector<std::pair<Point2*, Triangle2*>> vAtPinch;
    for (Triangle2* pT : vComponentT) {
        for (Point2* pCorner : pT->getCorners()) {
            if (sPinches.contains(pCorner)) vAtPinch.emplace_back(pCorner, pT);
        }
    }
    std::stable_sort(vAtPinch.begin(), vAtPinch.end(),
                     [](const auto& a, const auto& b) { return isLower(a.first, b.first); });
    Parts vDealt;
    TriangleSet sTaken;
    std::size_t k = 0;
    const Point2* pPinch = nullptr;
    for (const auto& [pVtx, pT] : vAtPinch) {
        if (pVtx != pPinch) k = 0;
        pPinch = pVtx;
        if (!sTaken.insert(pT)) continue;
        if (k == vDealt.size()) vDealt.emplace_back();
        vDealt[k++].push_back(pT);
    }
    std::move(vDealt.begin(), vDealt.end(), std::back_inserter(vPartsOut));
    std::vector<Triangle2*> vRest;
    for (Triangle2* pT : vComponentT) {
        if (!sTaken.contains(pT)) vRest.push_back(pT);
    }
    if (vRest.size() < smallSet || sTaken.size() >= vComponentT.size() / usefulShare) {
        vPartsOut.push_back(std::move(vRest));
        return;
    }
    std::vector<Point2*> vBorder;
    for (const Leaving& leaving : vBorderEdges) {
        vBorder.push_back(leaving.pSrc);
    }
    cutAtMedian(std::move(vRest), vBorder, vPartsOut);
}

// --- all of them ------------------------------------------------------------------------------------------

Partitioner::Partitioner(const std::vector<Triangle2*>& vTriangles) {
    // If the border is one ring, so is the whole, but for parts without any, which fail later: no search is
    // needed.
    ConnectedComponent whole(vTriangles, true);
    if (whole.isSimple()) {
        vComponents.push_back(std::move(whole));
        return;
    }
    const std::size_t orgSiz = vTriangles.size();
    Parts vParts;
    appendConnected(std::vector<Triangle2*>(vTriangles), true, vParts);
    std::vector<ConnectedComponent> vWork;
    const auto addWork = [&](bool bIsolated) {
        for (std::vector<Triangle2*>& vPart : vParts) {
            if (!vPart.empty()) vWork.emplace_back(std::move(vPart), bIsolated);
        }
        vParts.clear();
    };
    addWork(true);
    while (!vWork.empty()) {
        ConnectedComponent component = std::move(vWork.back());
        vWork.pop_back();
        if (component.split(vParts)) {
            addWork(false);
        } else {
            vComponents.push_back(std::move(component));
        }
    }
    std::size_t splitSiz = 0;
    for (const ConnectedComponent& component : vComponents) {
        splitSiz += component.size();
    }
    KELM_CHECK(splitSiz==orgSiz);
}

} // namespace QUOR_KELM25D
