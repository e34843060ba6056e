// The flood itself, and the question whether an edge stops it.
// How a flood goes on is in Flood.h.

#include "FloodBarrier.h"

#include "Flood.h"
#include "Mesh2.h"
#include "SegmentTable.h"

#include <kelm25d/ConstraintSegment2.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t smallFlood = 4096; // triangles
constexpr std::size_t lookupsPerSearch =
    10; // finding an edge is that much dearer, roughly, than looking one up

} // namespace

FloodBarrier::FloodBarrier(const SegmentTable& segmentTable_, std::vector<ConstraintGraph2*> vGraphs)
    : segmentTable(segmentTable_), sGraphs(std::move(vGraphs)) {
    std::sort(sGraphs.begin(), sGraphs.end(), std::less<ConstraintGraph2*>());
    sGraphs.erase(std::unique(sGraphs.begin(), sGraphs.end()), sGraphs.end());
    if (!sGraphs.empty() && sGraphs.front() == nullptr) sGraphs.erase(sGraphs.begin());
    bAnywhere = !sGraphs.empty();
    nextSearch = smallFlood;
}

bool FloodBarrier::isOfGraphs(const Triangle2* pT, int i) const noexcept {
    const ConstraintSegment2* pSegment = segmentTable.getSegment(pT, i);
    if (pSegment == nullptr) return false;
    return std::any_of(pSegment->sOwners.begin(), pSegment->sOwners.end(), [&](const auto& owner) {
        return std::binary_search(sGraphs.begin(), sGraphs.end(), owner.pGraph,
                                  std::less<ConstraintGraph2*>());
    });
}

/// Finds the triangles that have an edge of the graphs, unless these have more edges than a flood over the
/// triangles reached by now has looked up.
void FloodBarrier::findTrianglesAtEdges() {
    std::vector<ConstraintSegment2*> vPieces;
    for (const ConstraintGraph2* pGraph : sGraphs) {
        std::vector<ConstraintSegment2*> vOfGraph;
        pGraph->getChildConstraintSegments(vOfGraph);
        vPieces.insert(vPieces.end(), vOfGraph.begin(), vOfGraph.end());
        if (vPieces.size() > numReached / lookupsPerSearch) return;
    }
    for (const ConstraintSegment2* pPiece : vPieces) {
        const Edge2 edge = Mesh2::findEdge(pPiece->getSrc(), pPiece->getTrg());
        Triangle2 *pT0 = nullptr, *pT1 = nullptr;
        int i0 = -1, i1 = -1;
        if (edge.getTriangle() == nullptr) continue; // it waits
        edge.getTriangles(pT0, pT1, i0, i1);
        sAtEdges.insert(pT0);
        if (pT1 != nullptr) sAtEdges.insert(pT1);
    }
    bAnywhere = false;
}

void FloodBarrier::flood(std::vector<Triangle2*>& vWorkspace, std::vector<Triangle2*>& vTriangles) {
    Flood flood(vWorkspace);
    vWorkspace.clear();
    while (const Triangle2* pT = flood.next()) {
        // What has become large looks for all edges of the graphs at once, and then reads no vertices.
        if (++numReached == nextSearch && bAnywhere) {
            findTrianglesAtEdges();
            nextSearch *= 2;
        }
        const bool bAtEdge = bAnywhere || sAtEdges.contains(pT);
        for (int i = 0; i < 3; ++i) {
            Triangle2* pN = pT->getOppositeTriangle(i);
            if (pN != nullptr && !(bAtEdge && stops(pT, i))) flood.reach(pN);
        }
    }
    flood.getReached().appendTo(vTriangles);
}

} // namespace QUOR_KELM25D
