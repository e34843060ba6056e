// The triangulation as a drawing of its edges.
// The page they are drawn on is Visualizer2.

#include "Dt2.h"

#include "messages.h"

#include <kelm25d/VertexPair2.h>
#include <kelm25d/Visualizer2.h>

#include <algorithm>

namespace QUOR_KELM25D {

namespace {

/// Draws each edge once, by the addresses of its ends.
void addEdges(Visualizer2& page, std::vector<VertexPair2>& vEdges, const Color& color) {
    std::sort(vEdges.begin(), vEdges.end());
    vEdges.erase(std::unique(vEdges.begin(), vEdges.end()), vEdges.end());
    for (const VertexPair2& ends : vEdges)
        page.addObject(Segment2(*ends.getVertex0(), *ends.getVertex1()), color);
}

} // namespace

// Both sides of an edge are asked, though one would do in a valid mesh: drawings are also made of broken
// ones.
void Dt2::show(Visualizer2* pVisualizer, bool bWithConstraints) const {
    if (pVisualizer == nullptr) {
        printWarning("Dt2::show()", "no visualizer given");
        return;
    }
    if (!is2D()) {
        printError("Dt2::show()", "The triangulation is not 2D, no visualization");
        return;
    }
    std::vector<Triangle2*> vTriangles;
    getTrianglePointers(vTriangles);
    std::vector<VertexPair2> vEdges, vConstraintEdges;
    vEdges.reserve(3 * vTriangles.size());
    for (const Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            Point2* pA = pT->getCorner(incIndexBy1(i));
            Point2* pB = pT->getCorner(incIndexBy2(i));
            std::vector<VertexPair2>& vOfKind =
                segmentTable.isConstraintEdge(pA, pB) ? vConstraintEdges : vEdges;
            vOfKind.emplace_back(pA, pB);
        }
    }
    addEdges(*pVisualizer, vEdges, Color(CBLACK, 0.01F, false));
    // Without emphasis thinner than the other edges, deliberately.
    addEdges(*pVisualizer, vConstraintEdges,
             bWithConstraints ? Color(CRED, 0.5F, false) : Color(CBLACK, 0.001F, false));
}

} // namespace QUOR_KELM25D
