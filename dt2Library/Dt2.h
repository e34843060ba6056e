// One triangulation: the mesh with its constraints and zones, and the doors to the features that work on
// them. The public face is Kelm_2D. What the mesh itself can do is Mesh2; a feature is an object of its own
// that borrows what it needs, and has one or two doors here.
#pragma once

#include "ConstraintMgr.h"
#include "Mesh2.h"
#include "ZoneMgr.h"
#include "meshOutput.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class Dt2 {
public:
    /// numExpectedVertices sizes the first blocks of the pools and is no limit.
    explicit Dt2(unsigned numExpectedVertices);
    Dt2(const Dt2&) = delete;
    Dt2& operator=(const Dt2&) = delete;

    Mesh2& getMesh() noexcept { return mesh; }
    const Mesh2& getMesh() const noexcept { return mesh; }
    QuorTest& getQuorTest() noexcept { return mesh.getQuorTest(); }
    ConstraintMgr& getConstraintMgr() noexcept { return constraintMgr; }
    const ConstraintMgr& getConstraintMgr() const noexcept { return constraintMgr; }
    InnerVtxMgr& getInnerVtxMgr() noexcept { return constraintMgr.getInnerVtxMgr(); }
    ZoneMgr& getZoneMgr() noexcept { return zoneMgr; }

    const std::string& getName() const noexcept { return name; }
    void setName(const std::string& name_) { name = name_; }
    void setDev(const std::string& key, int iValue, double dValue);

    // --- features ------------------------------------------------------------------------------------------

    /// Drape.
    bool drape(const std::vector<Segment2>& vIn, std::vector<Segment2>& vOut, double zTolerance);
    /// TriangleImport.
    Zone2* CAT_importTriangles(std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                               bool bCreateExtendedBoundingBox);
    /// Cut: the pieces of each knife are appended.
    void CUTT_cutTriangles(const std::vector<Segment2>& vSegments, bool bWithConstraints,
                           std::vector<ConstraintSegment2*>& vCSegsOut);
    /// Cut: makes pA to pB a chain of constraint segments through vertices, which the result has in order.
    void CUTT_insertConstraintSegments(Point2* pA, Point2* pB, const std::vector<Point2*>& vSplitPoints,
                                       std::vector<Point2*>& vSortedPoints);
    /// CookieCutter.
    Zone2* createZone_cookieCutter(const std::vector<Segment2>& vSegments, bool bWithConstraints);

private:
    // Each of these uses those before it.
    Mesh2 mesh;
    StuckRemovalDrawing stuckRemovalDrawing{mesh};
    ConstraintMgr constraintMgr{mesh, this};
    ZoneMgr zoneMgr{this, constraintMgr};

    std::string name;
    std::map<std::string, std::pair<int, double>> mDevSettings; // written by setDev, read by nothing
};

} // namespace QUOR_KELM25D
