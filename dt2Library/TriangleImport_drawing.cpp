// What is told of triangles that can't be imported, with a drawing of each kind of fault.
// The import itself is TriangleImport.cpp.

#include "TriangleImport.h"

#include "meshOutput.h"
#include "messages.h"

#include <kelm25d/Visualizer2.h>

#include <iostream>
#include <sstream>

namespace QUOR_KELM25D {

namespace {

constexpr double circleShare = 0.01; // radius of a mark in a drawing, in ranges of the box

const char* const outerPlace = "CAT_createOuterTrianglesAndConnect()";
const char* const drawingHint = "You may want to use the postscript visualization file to debug the data";

} // namespace

void TriangleImport::reportAdditionalVertex(const std::vector<Triangle2*>& vOuter, const Point2& vertex,
                                            double range) {
    printError(outerPlace, "Additional vertex (possibly due to a selfintersection)");
    std::cout << vertex << '\n' << drawingHint << std::endl;
    const double radius = circleShare * range;
    Visualizer2 visualizer("invalidInput.ps");
    visualizer.addObject(vOuter, Color(CBLACK, 0.1F, false));
    visualizer.addObject(Circle2(vertex, radius * radius), Color(CRED, 0.5F, false));
    visualizer.writeFile();
}

void TriangleImport::reportOpenEdges(const std::vector<Triangle2*>& vOuter,
                                     const std::vector<Segment2>& vSuspects) {
    printError(outerPlace, "Invalid input data detected");
    std::ostringstream text;
    text << "Open edges (_possibly_ causing the problem) are\n";
    for (const Segment2& segment : vSuspects) {
        text << "Edge(" << segment.getSrc() << ", " << segment.getTrg() << ")\n";
    }
    if (!vSuspects.empty()) std::cout << text.str();
    std::cout << '\n' << drawingHint << std::endl;
    Visualizer2 visualizer("openEdges.ps");
    visualizer.addObject(vOuter, Color(CBLACK, 0.1F, false));
    visualizer.addObject(vSuspects, Color(CRED, 0.5F, false));
    visualizer.writeFile();
}

void TriangleImport::drawOpenEdges() const {
    Visualizer2 visualizer("bug.ps");
    showMesh(mesh, &visualizer, false);
    visualizer.addObject(getOpenSegments(), Color(CRED, 0.5F, false));
    visualizer.writeFile();
}

} // namespace QUOR_KELM25D
