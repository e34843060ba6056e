// The register of the vertices that the mesh generator has put inside the domain.
// A split of a constraint segment takes away again those that stand close to the new vertex.
#pragma once

#include <kelm25d/Point2.h>

#include <set>
#include <utility>

namespace QUOR_KELM25D {

class Mesh2;

class InnerVtxMgr {
public:
    void add(Point2* pVtx) { sInsertedInnerPoints.emplace(pVtx->x(), pVtx); }
    /// The vertex is no longer one of the generator's: a constraint runs through it.
    void forget(Point2* pVtx) {
        if (!sInsertedInnerPoints.empty()) sInsertedInnerPoints.erase({pVtx->x(), pVtx});
    }
    /// Forgets the vertices closer to the centre in the plane than the root of sqRadius, and takes those that
    /// no constraint uses out of the triangulation.
    void removeNear(const Point2& center, double sqRadius, Mesh2& mesh);
    void clear() { sInsertedInnerPoints.clear(); }

private:
    std::set<std::pair<double, Point2*>> sInsertedInnerPoints; // by x
};

} // namespace QUOR_KELM25D
