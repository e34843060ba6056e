// Cuts a zone out of the mesh with a simple polygon as the cutter.
// Zones of other kinds are made by ZoneMgr.
#pragma once

#include <kelm25d/Segment2.h>

#include <vector>

namespace QUOR_KELM25D {

class ConstraintGraph2;
class ConstraintMgr;
class Mesh2;
class Triangle2;
class Zone2;
class ZoneMgr;

class CookieCutter {
public:
    /// The zones' mesh is borrowed.
    explicit CookieCutter(ZoneMgr& zoneMgr_);

    /// The zone inside the polygon, as far as the mesh reaches; null if there is none, and for segments that
    /// are no simple polygon.
    Zone2* run(const std::vector<Segment2>& vSegments, bool bWithConstraints);

private:
    ConstraintGraph2* freezeHull();
    void keepInsideHull(ConstraintGraph2* pHullGraph, std::vector<Triangle2*>& vTriangles);

    ZoneMgr& zoneMgr;
    Mesh2& mesh;
    ConstraintMgr& constraintMgr;
};

} // namespace QUOR_KELM25D
