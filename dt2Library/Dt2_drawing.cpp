// The triangulation as a drawing of its edges.
// The page they are drawn on is Visualizer2.

#include "Dt2.h"

#include "messages.h"

#include <kelm25d/Visualizer2.h>

#include <algorithm>
#include <functional>

namespace QUOR_KELM25D {

namespace {

// The ends of an edge, the lower address first. The order of these pairs is the order of drawing.
using EdgeEnds = std::pair<const Point2*, const Point2*>;

void addEdges(Visualizer2& page, const std::vector<EdgeEnds>& vEdges, const Color& color) {
    for (const EdgeEnds& ends : vEdges)
        page.addObject(Segment2(*ends.first, *ends.second), color);
}

void sortUnique(std::vector<EdgeEnds>& vEdges) {
    const std::less<const Point2*> isLower;
    std::sort(vEdges.begin(), vEdges.end(), [&](const EdgeEnds& a, const EdgeEnds& b) {
        return a.first != b.first ? isLower(a.first, b.first) : isLower(a.second, b.second);
    });
    vEdges.erase(std::unique(vEdges.begin(), vEdges.end()), vEdges.end());
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
    std::vector<EdgeEnds> vEdges, vConstraintEdges;
    vEdges.reserve(3 * vTriangles.size());
    for (const Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            const Point2* pA = pT->getCorner(incIndexBy1(i));
            const Point2* pB = pT->getCorner(incIndexBy2(i));
            std::vector<EdgeEnds>& vOfKind =
                segmentTable.isConstraintEdge(pA, pB) ? vConstraintEdges : vEdges;
            vOfKind.push_back(std::less<const Point2*>()(pA, pB) ? EdgeEnds(pA, pB) : EdgeEnds(pB, pA));
        }
    }
    sortUnique(vEdges);
    sortUnique(vConstraintEdges);
    addEdges(*pVisualizer, vEdges, Color(CBLACK, 0.01F, false));
    // Without emphasis thinner than the other edges, deliberately.
    addEdges(*pVisualizer, vConstraintEdges,
             bWithConstraints ? Color(CRED, 0.5F, false) : Color(CBLACK, 0.001F, false));
}

} // namespace QUOR_KELM25D
