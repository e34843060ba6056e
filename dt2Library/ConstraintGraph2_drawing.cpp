// A constraint graph as a drawing of its alive pieces.
// The page is Visualizer2.

#include <kelm25d/ConstraintGraph2.h>

#include "messages.h"

#include <kelm25d/Visualizer2.h>

namespace QUOR_KELM25D {

void ConstraintGraph2::show(const std::string& filename) const {
    Visualizer2 visualizer(filename);
    show(&visualizer, Color(1.0, 0.0, 0.0, 0.5, false));
    visualizer.writeFile();
}

void ConstraintGraph2::show(Visualizer2* pVisualizer, const Color& color) const {
    if (pVisualizer == nullptr) {
        printWarning("ConstraintGraph2::show()", "no visualizer given");
        return;
    }
    std::vector<Point2*> vVertices;
    getPolygonVertices(vVertices);
    for (std::size_t i = 0; i < vVertices.size(); i += 2) {
        pVisualizer->addObject(Segment2(*vVertices[i], *vVertices[i + 1]), color);
    }
}

} // namespace QUOR_KELM25D
