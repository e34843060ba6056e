// The mesh as a drawing of its edges, and drawings for debugging.
// The page they are drawn on is Visualizer2.

#include "meshOutput.h"

#include "Mesh2.h"
#include "cornerIndex.h"
#include "messages.h"

#include <kelm25d/VertexPair2.h>
#include <kelm25d/Visualizer2.h>

#include <algorithm>
#include <atomic>
#include <iomanip>
#include <sstream>

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

std::string nextDebugPrefix() {
    static std::atomic<int> counter{0};
    std::ostringstream prefix;
    prefix << std::setw(5) << ++counter << '_';
    return prefix.str();
}

// Both sides of an edge are asked, though one would do in a valid mesh: drawings are also made of broken
// ones.
void showMesh(const Mesh2& mesh, Visualizer2* pVisualizer, bool bWithConstraints) {
    if (pVisualizer == nullptr) {
        printWarning("Dt2::show()", "no visualizer given");
        return;
    }
    if (!mesh.is2D()) {
        printError("Dt2::show()", "The triangulation is not 2D, no visualization");
        return;
    }
    std::vector<Triangle2*> vTriangles;
    mesh.getTrianglePointers(vTriangles);
    std::vector<VertexPair2> vEdges, vConstraintEdges;
    vEdges.reserve(3 * vTriangles.size());
    for (const Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            Point2* pA = pT->getCorner(next(i));
            Point2* pB = pT->getCorner(prev(i));
            std::vector<VertexPair2>& vOfKind =
                mesh.getSegmentTable().isConstraintEdge(pA, pB) ? vConstraintEdges : vEdges;
            vOfKind.emplace_back(pA, pB);
        }
    }
    addEdges(*pVisualizer, vEdges, Color(CBLACK, 0.01F, false));
    // Without emphasis thinner than the other edges, deliberately.
    addEdges(*pVisualizer, vConstraintEdges,
             bWithConstraints ? Color(CRED, 0.5F, false) : Color(CBLACK, 0.001F, false));
}

void StuckRemovalDrawing::onRemovalStuck(const Point2* pVtx) {
    Visualizer2 visualizer(nextDebugPrefix() + "watchDogFailed.ps");
    showMesh(mesh, &visualizer, true);
    visualizer.addObject(*pVtx, Color(1, 0, 0, 0.1, false));
    visualizer.writeFile();
}

} // namespace QUOR_KELM25D
