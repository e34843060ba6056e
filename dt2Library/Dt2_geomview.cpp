// The triangulation in space: as a Geomview file, and as a directory with a page for the browser.
// The mesh of that page is written by writeObj in Dt2_output.cpp.
#include "Dt2.h"

#include "messages.h"

#include <kelm25d/Visualizer3.h>
#include <kelm25d/webScene.h>

#include <iostream>

namespace QUOR_KELM25D {

namespace {

const char* const terrainColor = "0.79 0.65 0.09 1"; // the ochre that the page of the web scene uses, too

void writeAllTriangles(const Dt2& dt, Visualizer3& visualizer, const std::string& color) {
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    visualizer.writeTriangles(vTriangles, color, false);
}

} // namespace

void Dt2::showGeomview(const std::string& filename, const std::string& color) const {
    if (!canBeShown()) return;
    Visualizer3 visualizer(filename);
    writeAllTriangles(*this, visualizer, color);
}

void Dt2::showGeomview(Visualizer3* pVisualizer) const {
    if (!pVisualizer) {
        printWarning("Dt2::showGeomview()", "no visualizer given");
        return;
    }
    if (canBeShown()) writeAllTriangles(*this, *pVisualizer, terrainColor);
}

void Dt2::writeWebScene(const char* path, const Zone2* pZone) const {
    if (path == nullptr) {
        printWarning("Dt2::writeWebScene()", "no path given");
        return;
    }
    if (!createDirectory(path)) {
        printWarning("Dt2::writeWebScene()", std::string("Can't create directory ") + path);
        return;
    }
    std::cout << "writeWebScene: Creating " << path << std::endl;
    for (const char* name : {"index.html", "jsc3d.js", "jsc3d.ctm.js", "jsc3d.touch.js"})
        fileReplicate(name, path);
    writeObj(std::string(path) + "/3d.obj", pZone);
}

} // namespace QUOR_KELM25D
