// The mesh in space: as a Geomview file, and as a directory with a page for the browser.
// The mesh of that page is written by writeObj in meshObj.cpp.

#include "meshOutput.h"

#include "Mesh2.h"
#include "messages.h"

#include <kelm25d/Visualizer3.h>
#include <kelm25d/webScene.h>

#include <iostream>

namespace QUOR_KELM25D {

namespace {

const char* const terrainColor = "0.79 0.65 0.09 1"; // the ochre that the page of the web scene uses, too

void writeAllTriangles(const Mesh2& mesh, Visualizer3& visualizer, const std::string& color) {
    std::vector<Triangle2*> vTriangles;
    mesh.getTrianglePointers(vTriangles);
    visualizer.writeTriangles(vTriangles, color, false);
}

} // namespace

void showGeomview(const Mesh2& mesh, const std::string& filename, const std::string& color) {
    if (!canBeShown(mesh)) return;
    Visualizer3 visualizer(filename);
    writeAllTriangles(mesh, visualizer, color);
}

void showGeomview(const Mesh2& mesh, Visualizer3* pVisualizer) {
    if (!pVisualizer) {
        printWarning("Dt2::showGeomview()", "no visualizer given");
        return;
    }
    if (canBeShown(mesh)) writeAllTriangles(mesh, *pVisualizer, terrainColor);
}

void writeWebScene(const Mesh2& mesh, const char* path, const Zone2* pZone) {
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
    writeObj(mesh, std::string(path) + "/3d.obj", pZone);
}

} // namespace QUOR_KELM25D
