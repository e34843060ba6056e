// A flood over triangles that stops at the edges of some constraint graphs.
// Where it starts is decided by zones, see Zone2.cpp.
#pragma once

#include "AddressSet.h"

#include <kelm25d/ConstraintGraph2.h>
#include <kelm25d/Triangle2.h>

#include <vector>

namespace QUOR_KELM25D {

class SegmentTable;

/// The alive constraint segments of some graphs. An edge of the mesh is looked up among all segments, and the
/// few that are found know their graphs.
class FloodBarrier {
public:
    /// Graphs may be null, and those are left out. The table outlives the barrier.
    FloodBarrier(const SegmentTable& segmentTable_, std::vector<ConstraintGraph2*> vGraphs);

    bool stops(const Triangle2* pT, int i) const noexcept { return !sGraphs.empty() && isOfGraphs(pT, i); }
    /// Appends the triangles in the workspace and all that are reached from them, each once, by address, and
    /// empties the workspace. About 20 ns a triangle. The mesh must be the same at each call.
    void flood(std::vector<Triangle2*>& vWorkspace, std::vector<Triangle2*>& vTriangles);

private:
    bool isOfGraphs(const Triangle2* pT, int i) const noexcept;
    void findTrianglesAtEdges();

    const SegmentTable& segmentTable;
    std::vector<ConstraintGraph2*> sGraphs; // a set, as a sequence by address
    bool bAnywhere; // an edge of the graphs may be at any triangle, else only at those of sAtEdges
    TriangleSet sAtEdges;
    std::size_t numReached = 0; // by all floods together
    std::size_t nextSearch;     // when so many triangles have been reached
};

} // namespace QUOR_KELM25D
