// The steps of a cookie cutter.
// The cut itself is Cut, its zone one of given triangles.

#include "CookieCutter.h"

#include "AddressSet.h"
#include "Cut.h"
#include "ZoneMgr.h"
#include "messages.h"

#include <kelm25d/rings.h>

#include <algorithm>

namespace QUOR_KELM25D {

namespace {

/// The ends of segments, each place once, by x, then y.
std::vector<Point2> collectEnds(const std::vector<Segment2>& vSegments) {
    std::vector<Point2> vEnds;
    for (const Segment2& segment : vSegments) {
        vEnds.push_back(segment.getSrc());
        vEnds.push_back(segment.getTrg());
    }
    std::sort(vEnds.begin(), vEnds.end());
    vEnds.erase(std::unique(vEnds.begin(), vEnds.end()), vEnds.end());
    return vEnds;
}

} // namespace

CookieCutter::CookieCutter(ZoneMgr& zoneMgr_)
    : zoneMgr(zoneMgr_), mesh(zoneMgr_.getMesh()), constraintMgr(zoneMgr_.getConstraintMgr()) {
}

Zone2* CookieCutter::run(const std::vector<Segment2>& vSegments, bool bWithConstraints) {
    if (mesh.isBroken("Dt2::createZone_cookieCutter()") || !isSimplePolygon(vSegments)) return nullptr;
    std::vector<Point2> vOutside;
    for (const Point2& end : collectEnds(vSegments)) {
        if (mesh.locate(end) == nullptr) vOutside.push_back(end);
    }
    ConstraintGraph2* pHullGraph = nullptr;
    if (!vOutside.empty()) {
        pHullGraph = freezeHull();
        mesh.insertVector(vOutside);
    }
    std::vector<ConstraintSegment2*> vCSegs;
    Cut(constraintMgr, vSegments).run(bWithConstraints, vCSegs);
    ConstraintMgr::Pairs vPairs;
    for (const ConstraintSegment2* pCSeg : vCSegs) {
        vPairs.emplace_back(pCSeg->getSrc(), pCSeg->getTrg());
    }
    if (vPairs.empty()) return nullptr;
    Zone2* pInside =
        zoneMgr.createZone(constraintMgr.createConstraint(vPairs, CIS_CONSTRAINED_DELAUNAY, true), ZL_INSIDE);
    if (pInside == nullptr) return nullptr;
    std::vector<Triangle2*> vTriangles;
    pInside->getTriangles(vTriangles);
    if (!vOutside.empty()) keepInsideHull(pHullGraph, vTriangles);
    if (vTriangles.empty()) return nullptr;
    Zone2* pZone = zoneMgr.createZone(vTriangles);
    return pZone != nullptr ? pZone->convertToBoundedZone() : nullptr;
}

/// Makes the edges of the hull constraints, so that the triangles stay when points outside come. Null, after
/// a warning, before is2D().
ConstraintGraph2* CookieCutter::freezeHull() {
    std::vector<Edge2> vEdges;
    mesh.getHullEdges(vEdges);
    if (vEdges.empty()) {
        printWarning("Dt2::createConstraint(..)", "vEdges is empty, returning NULL");
        return nullptr;
    }
    return constraintMgr.createConstraintFromEdges(vEdges, CIS_CONSTRAINED_DELAUNAY);
}

/// Drops the triangles outside the hull that was frozen, which may have vertices on it and none of the new
/// ones; without such a hull all are outside.
void CookieCutter::keepInsideHull(ConstraintGraph2* pHullGraph, std::vector<Triangle2*>& vTriangles) {
    TriangleSet sInside;
    if (pHullGraph != nullptr) {
        std::vector<Triangle2*> vInside;
        Zone2(zoneMgr.getDt2(), ZL_INSIDE, pHullGraph).getTriangles(vInside);
        sInside = TriangleSet(vInside);
    }
    const auto isOutside = [&](const Triangle2* pT) { return !sInside.contains(pT); };
    vTriangles.erase(std::remove_if(vTriangles.begin(), vTriangles.end(), isOutside), vTriangles.end());
}

} // namespace QUOR_KELM25D
