// The mesh as a drawing, as a Geomview file, as a Wavefront OBJ file and as a page for the browser.
// The pages are Visualizer2 and Visualizer3; files that can be read again are triangulationFile.h.
#pragma once

#include "MeshListener.h"

#include <string>

namespace QUOR_KELM25D {

class Mesh2;
class Visualizer2;
class Visualizer3;
class Zone2;

/// Name prefix of a debug drawing: a process-wide count in five columns, so that the files of a run stay
/// apart and in order.
std::string nextDebugPrefix();

/// What these functions do for Kelm_2D::show and its kin, messages included.
void showMesh(const Mesh2& mesh, Visualizer2* pVisualizer, bool bWithConstraints);
void showGeomview(const Mesh2& mesh, const std::string& filename, const std::string& color);
void showGeomview(const Mesh2& mesh, Visualizer3* pVisualizer);
/// With a zone its triangles only, here and in writeWebScene.
void writeObj(const Mesh2& mesh, const std::string& filename, const Zone2* pZone);
void writeWebScene(const Mesh2& mesh, const char* path, const Zone2* pZone);

/// Whether there are triangles to write; an error line if not.
bool canBeShown(const Mesh2& mesh);

/// Draws the mesh in which the removal of a vertex came to no end.
class StuckRemovalDrawing : public MeshListener {
public:
    explicit StuckRemovalDrawing(const Mesh2& mesh_) : mesh(mesh_) {}

private:
    void onRemovalStuck(const Point2* pVtx) override;

    const Mesh2& mesh;
};

} // namespace QUOR_KELM25D
