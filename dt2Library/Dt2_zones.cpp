// Creation and deletion of zones, and the flood from a point.
// Which triangles a zone has is decided in Zone2.cpp.
//
// A zone holds a rule and no triangles. A set of triangles becomes a rule by constraints along its border and
// one start point within each connected part.

#include "Dt2.h"

#include "AddressSet.h"
#include "FloodBarrier.h"
#include "measures.h"
#include "messages.h"
#include "ringTools.h"

#include <kelm25d/Zone2.h>
#include <kelm25d/rings.h>

#include <algorithm>
#include <functional>
#include <iostream>

namespace QUOR_KELM25D {

/// Takes over a new zone.
Zone2* Dt2::keep(Zone2* pZone) {
    sZones.insert(pZone);
    return pZone;
}

void Dt2::deleteZone(Zone2* pZone) {
    if (sZones.erase(pZone) == 0) {
        printWarning("Dt2::deleteZone(..)", "trying to delete a non-existing zone");
        return;
    }
    delete pZone;
}

// --- by graphs --------------------------------------------------------------------------------------------

Zone2* Dt2::createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc) {
    if (!is2D()) {
        printWarning("Dt2::createZone",
                     "called on a triangulation which has no triangles yet. Returning NULL");
        return nullptr;
    }
    if (zoneLoc == ZL_GLOBAL || Zone2::isResult(zoneLoc)) {
        return keep(new Zone2(this, zoneLoc));
    }
    if (pConstraintGraph == nullptr) {
        printError("Dt::createZone()", // spelled so deliberately
                   "pConstraintGraph==NULL, but zoneLoc!=ZL_GLOBAL or ZL_RESULT. Returning NULL");
        return nullptr;
    }
    if (!pConstraintGraph->isOriented()) {
        printWarning("Dt2::createZone()", "The constraint graph is not oriented, returning NULL");
        return nullptr;
    }
    return keep(new Zone2(this, zoneLoc, pConstraintGraph));
}

Zone2* Dt2::createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc,
                       const Point2& startPoint) {
    if (zoneLoc != ZL_GROW) {
        printError("Dt2::createZone()", "This overloaded version of createZone accepts only ZL_GROW as "
                                        "zoneLocation. Returning NULL");
        return nullptr;
    }
    return keep(new Zone2(this, vConstraintGraphs, zoneLoc, {startPoint}));
}

Zone2* Dt2::createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc) {
    if (zoneLoc != ZL_INSIDE && zoneLoc != ZL_OUTSIDE) {
        printError("Dt2::createZone()", "This overloaded version of createZone accepts only ZL_INSIDE and "
                                        "ZL_OUTSIDE as zoneLocation. Returning NULL");
        return nullptr;
    }
    return keep(new Zone2(this, zoneLoc, vConstraintGraphs));
}

Zone2* Dt2::createZone(const std::vector<Edge2>& vEdges, ZoneLocation zoneLoc) {
    if (zoneLoc != ZL_BOUNDED) {
        printError("Dt2::createZone()", "This overloaded version of createZone accepts only ZL_BOUNDED as "
                                        "zoneLocation. Returning NULL");
        return nullptr;
    }
    if (isBroken("Dt2::createZone()")) return nullptr;
    ConstraintGraph2* pGraph = constraintMgr.createConstraintFromEdges(vEdges, CIS_CONSTRAINED_DELAUNAY);
    return keep(new Zone2(this, zoneLoc, pGraph));
}

// --- by triangles -----------------------------------------------------------------------------------------

/// A point surely inside one of the triangles: the barycentre of the first in which it is, as computed.
/// False, after messages, if there is none.
bool Dt2::findStartPoint(const std::vector<Triangle2*>& vComponent, Point2& startPoint) {
    for (const Triangle2* pT : vComponent) {
        startPoint = pT->getBarycenter();
        if (!isFinite(startPoint)) continue;
        bool bInside = true;
        for (int i = 0; i < 3; ++i) {
            bInside = bInside && quorTest.getEdgeOrientation(pT, i, &startPoint) == ORIENTATION2_CCW;
        }
        if (bInside) return true;
    }
    printWarning("Dt2::createZone()", "A connected component of the zone is almost degenerate:");
    for (const Triangle2* pT : vComponent) {
        std::cout << "Unable to handle the triangle " << *pT << std::endl;
    }
    printError("Dt2::createZone",
               "An almost degenerate part of the zone has no start point for zone growing!");
    return false;
}

Zone2* Dt2::createZone(const std::vector<Triangle2*>& vTriangles) {
    const bool bUsable = std::all_of(vTriangles.begin(), vTriangles.end(), [](const Triangle2* pT) {
        return pT != nullptr && pT->getCorner(0) != nullptr;
    });
    if (!bUsable) {
        printError("Dt2::createZone()", "A triangle is NULL or not in use any more. Returning NULL");
        return nullptr;
    }
    if (isBroken("Dt2::createZone()")) return nullptr;
    std::vector<std::vector<Triangle2*>> vvComponents;
    getConnectedComponents(vTriangles, vvComponents);
    std::vector<Point2> vStartPoints;
    std::vector<Segment2> vBorder;
    for (std::vector<Triangle2*>& vComponent : vvComponents) {
        std::sort(vComponent.begin(), vComponent.end(), std::less<Triangle2*>());
        getBorders(vComponent, vBorder);
        Point2 startPoint;
        if (findStartPoint(vComponent, startPoint)) vStartPoints.push_back(startPoint);
    }
    // Of no segments there is no graph, only a warning, and the zone stays empty; that is deliberate.
    ConstraintGraph2* pGraph = createConstraint(vBorder, CIS_CONSTRAINED_DELAUNAY, true);
    return keep(new Zone2(this, {pGraph}, ZL_GROW, vStartPoints));
}

/// The triangle at a point; of several that meet there always the same one, that with the leftmost centre.
/// Null outside the hull.
Triangle2* Dt2::getStartTriangle(const Point2& point) {
    Triangle2* pT = locate(point);
    if (pT == nullptr) return nullptr;
    std::vector<Triangle2*> vMeeting = {pT};
    for (int i = 0; i < 3; ++i) {
        if (*pT->aCorner[i] == point) {
            getIncidentTriangles(pT->aCorner[i], vMeeting);
        } else if (pT->aOppTriangle[i] != nullptr &&
                   quorTest.getEdgeOrientation(pT, i, &point) == ORIENTATION2_COLLINEAR) {
            vMeeting.push_back(pT->aOppTriangle[i]);
        }
    }
    return *std::min_element(vMeeting.begin(), vMeeting.end(), [](const Triangle2* a, const Triangle2* b) {
        return a->getBarycenter() < b->getBarycenter();
    });
}

void Dt2::growZoneArea(const std::vector<ConstraintGraph2*>& vConstraintGraphs,
                       const std::vector<Point2>& vPoints, std::vector<Triangle2*>& vTriangles) {
    FloodBarrier barrier(segmentTable, vConstraintGraphs);
    for (const Point2& point : vPoints) {
        Triangle2* pStartT = getStartTriangle(point);
        if (pStartT == nullptr) continue; // outside the hull
        std::vector<Triangle2*> vWorkspace = {pStartT};
        barrier.flood(vWorkspace, vTriangles);
    }
}

// --- by a polygon -----------------------------------------------------------------------------------------

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

Zone2* Dt2::createZone_cookieCutter(const std::vector<Segment2>& vSegments, bool bWithConstraints) {
    if (isBroken("Dt2::createZone_cookieCutter()") || !isSimplePolygon(vSegments)) return nullptr;
    std::vector<Point2> vOutside;
    for (const Point2& end : collectEnds(vSegments)) {
        if (locate(end) == nullptr) vOutside.push_back(end);
    }
    ConstraintGraph2* pHullGraph = nullptr;
    if (!vOutside.empty()) {
        pHullGraph = freezeHull();
        insertVector(vOutside);
    }
    std::vector<ConstraintSegment2*> vCSegs;
    CUTT_cutTriangles(vSegments, bWithConstraints, vCSegs);
    ConstraintMgr::Pairs vPairs;
    for (const ConstraintSegment2* pCSeg : vCSegs) {
        vPairs.emplace_back(pCSeg->getSrc(), pCSeg->getTrg());
    }
    if (vPairs.empty()) return nullptr;
    Zone2* pInside =
        createZone(constraintMgr.createConstraint(vPairs, CIS_CONSTRAINED_DELAUNAY, true), ZL_INSIDE);
    if (pInside == nullptr) return nullptr;
    std::vector<Triangle2*> vTriangles;
    pInside->getTriangles(vTriangles);
    if (!vOutside.empty()) keepInsideHull(pHullGraph, vTriangles);
    if (vTriangles.empty()) return nullptr;
    Zone2* pZone = createZone(vTriangles);
    return pZone != nullptr ? pZone->convertToBoundedZone() : nullptr;
}

/// Makes the edges of the hull constraints, so that the triangles stay when points outside come. Null, after
/// a warning, before is2D().
ConstraintGraph2* Dt2::freezeHull() {
    std::vector<Edge2> vEdges;
    getHullEdges(vEdges);
    if (vEdges.empty()) {
        printWarning("Dt2::createConstraint(..)", "vEdges is empty, returning NULL");
        return nullptr;
    }
    return constraintMgr.createConstraintFromEdges(vEdges, CIS_CONSTRAINED_DELAUNAY);
}

/// Drops the triangles outside the hull that was frozen, which may have vertices on it and none of the new
/// ones; without such a hull all are outside.
void Dt2::keepInsideHull(ConstraintGraph2* pHullGraph, std::vector<Triangle2*>& vTriangles) {
    TriangleSet sInside;
    if (pHullGraph != nullptr) {
        std::vector<Triangle2*> vInside;
        Zone2(this, ZL_INSIDE, pHullGraph).getTriangles(vInside);
        sInside = TriangleSet(vInside);
    }
    const auto isOutside = [&](const Triangle2* pT) { return !sInside.contains(pT); };
    vTriangles.erase(std::remove_if(vTriangles.begin(), vTriangles.end(), isOutside), vTriangles.end());
}

} // namespace QUOR_KELM25D
