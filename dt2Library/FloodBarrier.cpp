// The flood itself, and the question whether an edge stops it.
// Sets of triangles are in AddressSet.h.

#include "FloodBarrier.h"

#include "AddressSet.h"
#include "SegmentTable.h"
#include "prefetch.h"

#include <algorithm>
#include <functional>

namespace QUOR_KELM25D {

FloodBarrier::FloodBarrier(const SegmentTable& segmentTable_, std::vector<ConstraintGraph2*> vGraphs)
    : segmentTable(segmentTable_), sGraphs(std::move(vGraphs)) {
    std::sort(sGraphs.begin(), sGraphs.end(), std::less<ConstraintGraph2*>());
    sGraphs.erase(std::unique(sGraphs.begin(), sGraphs.end()), sGraphs.end());
    if (!sGraphs.empty() && sGraphs.front() == nullptr) sGraphs.erase(sGraphs.begin());
}

bool FloodBarrier::isOfGraphs(const Triangle2* pT, int i) const noexcept {
    const ConstraintSegment2* pSegment = segmentTable.getSegment(pT, i);
    if (pSegment == nullptr) return false;
    return std::any_of(pSegment->sOwners.begin(), pSegment->sOwners.end(), [&](const auto& owner) {
        return std::binary_search(sGraphs.begin(), sGraphs.end(), owner.pGraph,
                                  std::less<ConstraintGraph2*>());
    });
}

void FloodBarrier::flood(std::vector<Triangle2*>& vWorkspace, std::vector<Triangle2*>& vTriangles) const {
    TriangleSet sVisited;
    std::vector<Triangle2*> vReached; // in the order of reaching them: breadth first
    for (Triangle2* pSeed : vWorkspace) {
        if (sVisited.insert(pSeed)) vReached.push_back(pSeed);
    }
    vWorkspace.clear();
    for (std::size_t next = 0; next < vReached.size(); ++next) {
        const Triangle2* pT = vReached[next];
        for (int i = 0; i < 3; ++i) {
            Triangle2* pN = pT->getOppositeTriangle(i);
            if (pN == nullptr || stops(pT, i) || !sVisited.insert(pN)) continue;
            prefetchRecord(pN); // its turn comes much later, and then it is there
            vReached.push_back(pN);
        }
    }
    sVisited.appendTo(vTriangles);
}

} // namespace QUOR_KELM25D
