// Removal of the mesh generator's vertices around a place.
// The removal of one vertex is in Mesh2_removal.cpp.

#include "InnerVtxMgr.h"

#include "Mesh2.h"

#include <cmath>
#include <vector>

namespace QUOR_KELM25D {

void InnerVtxMgr::removeNear(const Point2& center, double sqRadius, Mesh2& mesh) {
    const double r = std::sqrt(sqRadius);
    std::vector<Point2*> vNear;
    for (auto it = sInsertedInnerPoints.lower_bound({center.x() - r, nullptr});
         it != sInsertedInnerPoints.end() && it->first <= center.x() + r;) {
        const double dx = it->second->x() - center.x(), dy = it->second->y() - center.y();
        if (dx * dx + dy * dy < sqRadius) {
            vNear.push_back(it->second);
            it = sInsertedInnerPoints.erase(it);
        } else {
            ++it;
        }
    }
    for (Point2* pVtx : vNear) {
        if (!SegmentTable::isConstraintVertex(pVtx)) mesh.remove(pVtx);
    }
}

} // namespace QUOR_KELM25D
