// A zone as a drawing of its triangles and as a Geomview file.
// The pages are Visualizer2 and Visualizer3.

#include <kelm25d/Zone2.h>

#include "ZoneMgr.h"
#include "meshOutput.h"
#include "messages.h"

#include <kelm25d/ConstraintGraph2.h>
#include <kelm25d/VertexPair2.h>
#include <kelm25d/Visualizer2.h>
#include <kelm25d/Visualizer3.h>

#include <algorithm>
#include <functional>
#include <iostream>

namespace QUOR_KELM25D {

namespace {

/// The edges of triangles, each once, by the addresses of their ends.
std::vector<VertexPair2> collectEdges(const std::vector<Triangle2*>& vTriangles) {
    std::vector<VertexPair2> vEdges;
    vEdges.reserve(3 * vTriangles.size());
    for (const Triangle2* pT : vTriangles) {
        Point2* aCorner[3] = {pT->getCorner(0), pT->getCorner(1), pT->getCorner(2)};
        std::sort(aCorner, aCorner + 3, std::less<Point2*>());
        const Point2 *p0 = aCorner[0], *p1 = aCorner[1], *p2 = aCorner[2];
        KELM_CHECK(p0<p1 && p1<p2);
        vEdges.emplace_back(aCorner[0], aCorner[1]);
        vEdges.emplace_back(aCorner[1], aCorner[2]);
        vEdges.emplace_back(aCorner[0], aCorner[2]);
    }
    std::sort(vEdges.begin(), vEdges.end());
    vEdges.erase(std::unique(vEdges.begin(), vEdges.end()), vEdges.end());
    return vEdges;
}

} // namespace

void Zone2::show(const std::string& postscriptFilename, bool bShowFull, bool bWithConstraints) const {
    Visualizer2 visualizer(postscriptFilename);
    show(&visualizer, bShowFull, bWithConstraints);
    visualizer.writeFile();
}

void Zone2::show(Visualizer2* pVisualizer, bool bShowFull, bool bWithConstraints) const {
    if (pVisualizer == nullptr) {
        printWarning("Zone2::show()", "no visualizer given");
        return;
    }
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    for (const Triangle2* pT : vTriangles) {
        pVisualizer->addObject(*pT, Color(0.94, 0.9, 0.55, 0.01, true));
    }
    const std::vector<VertexPair2> vEdges = collectEdges(vTriangles);
    if (bShowFull) {
        showMesh(pMgr->getMesh(), pVisualizer, bWithConstraints);
        return;
    }
    for (const VertexPair2& edge : vEdges) {
        const Point2 *a = edge.getVertex0(), *b = edge.getVertex1();
        const bool bEmphasized = bWithConstraints && pMgr->getMesh().getSegmentTable().isConstraintEdge(a, b);
        pVisualizer->addObject(Segment2(*a, *b),
                               bEmphasized ? Color(CRED, 0.5F, false) : Color(CBLACK, 0.001F, false));
    }
}

void Zone2::showGeomview(const std::string& filename, const std::string& color) const {
    Visualizer3 visualizer(filename);
    showGeomview(&visualizer, color);
}

void Zone2::showGeomview(Visualizer3* pVisualizer, const std::string& color) const {
    if (pVisualizer == nullptr) {
        printWarning("Zone2::showGeomview()", "no visualizer given");
        return;
    }
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    pVisualizer->writeTriangles(vTriangles, color, false);
}

void Zone2::debug(std::string name) {
    if (name.empty()) name = "debug.ps";
    std::cout << "This is Zone2::debug()" << std::endl;
    Visualizer2 visualizer(name);
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    for (const Triangle2* pT : vTriangles) {
        visualizer.addObject(*pT, Color(0.3, 0.3, 0.3, 0.05, false));
    }
    for (const ConstraintGraph2* pGraph : vConstraintGraphs) {
        if (pGraph == nullptr) continue;
        std::vector<ConstraintSegment2*> vPieces;
        pGraph->getChildConstraintSegments(vPieces);
        visualizer.addObject(vPieces, Color(1.0, 0.0, 0.0, 0.5, false));
    }
    visualizer.writeFile();
}

} // namespace QUOR_KELM25D
