// Import of triangles: a given mesh becomes the content of an empty one, whatever its shape.
// The cutting of meshes is Cut.
#pragma once

#include "OpenEdges.h"
#include "PlaceTable.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/Segment2.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class ConstraintGraph2;
class ConstraintMgr;
class Mesh2;
class Triangle2;
class Zone2;
class ZoneMgr;

class TriangleImport {
public:
    /// The mesh of the zones is borrowed, and so are the corners, three for each triangle.
    TriangleImport(ZoneMgr& zoneMgr_, std::vector<Point2>& vPoints_);
    TriangleImport(const TriangleImport&) = delete;
    TriangleImport& operator=(const TriangleImport&) = delete;

    /// Makes the triangles the mesh and fills everything around them, to be called once. The result is their
    /// zone; null, after a message, if they are no triangulation. With bReorientIfNeeded clockwise ones are
    /// turned, in the caller's sequence too.
    Zone2* run(bool bReorientIfNeeded, bool bCreateExtendedBoundingBox);

private:
    bool checkInput(bool bReorientIfNeeded);
    bool reorient();
    void createInnerTriangles();
    void connect(std::uint32_t id0, std::uint32_t id1);
    bool createBorders(std::vector<ConstraintGraph2*>& vGraphs, std::vector<Segment2>& vBorderSegments);
    std::vector<Point2*> addBoxCorners(Mesh2& temporary);
    bool createOuterTrianglesAndConnect(const Mesh2& temporary);
    void createOuterTriangle(const std::uint32_t* aNumber);
    std::pair<std::size_t, std::size_t> countNotCCW() const;
    bool checkClosed(bool bAllCCW) const;
    bool isDisc() const;

    /// By the id of one of its edges.
    Triangle2* getTriangle(std::uint32_t id) const { return vTriangles[OpenEdges::triangleOf(id)]; }
    Segment2 getSegment(const OpenEdges::Edge& edge) const {
        return Segment2(*vVertices[edge.source], *vVertices[edge.target]);
    }
    std::vector<Segment2> getOpenSegments() const;

    // Reports of what is wrong, with drawings: TriangleImport_drawing.cpp.
    static void reportAdditionalVertex(const std::vector<Triangle2*>& vOuter, const Point2& vertex,
                                       double range);
    static void reportOpenEdges(const std::vector<Triangle2*>& vOuter,
                                const std::vector<Segment2>& vSuspects);
    void drawOpenEdges() const;

    ZoneMgr& zoneMgr;
    Mesh2& mesh;
    ConstraintMgr& constraintMgr;
    std::vector<Point2>& vPoints;
    PlaceTable places;
    Bbox2 box;                           // of the places given
    std::vector<std::uint32_t> vCorners; // places, three for each triangle given
    std::vector<Point2*> vVertices;      // by place
    std::vector<Triangle2*> vTriangles;  // in order of creation
    OpenEdges mKeyMCH;                   // with the positions in vTriangles
};

} // namespace QUOR_KELM25D
