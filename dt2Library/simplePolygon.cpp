// The test whether segments are a simple polygon, by a triangulation of their own.
// The sorting of rings, which needs none, is in rings.cpp.

#include <kelm25d/rings.h>

#include "ConstraintMgr.h"
#include "measures.h"

#include <algorithm>

namespace QUOR_KELM25D {

bool isSimplePolygon(const std::vector<Segment2>& vSegments) {
    std::vector<Segment2> vProper;
    std::vector<Point2> vEnds;
    for (const Segment2& segment : vSegments) {
        if (!isFinite(segment.getSrc()) || !isFinite(segment.getTrg())) return false;
        if (segment.getSrc() == segment.getTrg()) continue;
        vProper.push_back(segment);
        vEnds.push_back(segment.getSrc());
        vEnds.push_back(segment.getTrg());
    }
    if (vProper.empty()) return false;
    std::sort(vEnds.begin(), vEnds.end());
    for (std::size_t i = 0; i < vEnds.size(); i += 2)
        if (vEnds[i] != vEnds[i + 1]) return false;

    Mesh2 mesh(3);
    ConstraintMgr constraintMgr(mesh);
    const ConstraintGraph2* pGraph =
        constraintMgr.createUserConstraint(vProper, CIS_CONSTRAINED_DELAUNAY, false);
    if (!pGraph) return false;
    std::vector<ConstraintSegment2*> vChildren;
    pGraph->getChildrenInOrder(vChildren);
    return vChildren.size() == vProper.size();
}

} // namespace QUOR_KELM25D
