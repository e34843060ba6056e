// The owner of all zones of a triangulation, and the ways to make one.
// Which triangles a zone has is decided in Zone2.cpp; one that is cut out of the mesh is made by
// CookieCutter.
//
// A zone holds a rule and no triangles. A set of triangles becomes a rule by constraints along its border and
// one start point within each connected part.
#pragma once

#include "ConstraintMgr.h"

#include <kelm25d/Edge2.h>
#include <kelm25d/Zone2.h>

#include <set>
#include <vector>

namespace QUOR_KELM25D {

/// Whether such a zone is the result of a set operation.
inline bool isResult(ZoneLocation zoneLoc) noexcept {
    return zoneLoc >= ZL_RESULT_UNION && zoneLoc <= ZL_RESULT_SYMMETRIC_DIFFERENCE;
}

class ZoneMgr {
public:
    /// All is borrowed; pDt_ is what zones name as their triangulation.
    ZoneMgr(Dt2* pDt_, ConstraintMgr& constraintMgr_);
    ~ZoneMgr();
    ZoneMgr(const ZoneMgr&) = delete;
    ZoneMgr& operator=(const ZoneMgr&) = delete;

    Mesh2& getMesh() noexcept { return mesh; }
    ConstraintMgr& getConstraintMgr() noexcept { return constraintMgr; }
    Dt2* getDt2() const noexcept { return pDt; }

    /// The forms of Kelm_2D.
    Zone2* createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc);
    Zone2* createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc,
                      const Point2& startPoint);
    Zone2* createZone(const std::vector<Triangle2*>& vTriangles);
    /// ZL_INSIDE or ZL_OUTSIDE of several graphs.
    Zone2* createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc);
    /// ZL_BOUNDED, of the edges of a border, counterclockwise around the zone.
    Zone2* createZone(const std::vector<Edge2>& vEdges, ZoneLocation zoneLoc);
    void deleteZone(Zone2* pZone);

private:
    Zone2* keep(Zone2* pZone);
    bool findStartPoint(const std::vector<Triangle2*>& vComponent, Point2& startPoint);

    Dt2* pDt;
    Mesh2& mesh;
    ConstraintMgr& constraintMgr;
    std::set<Zone2*> sZones; // owned
};

} // namespace QUOR_KELM25D
