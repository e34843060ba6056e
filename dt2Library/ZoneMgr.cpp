// Creation and deletion of zones.
// Which triangles a zone has is decided in Zone2.cpp.

#include "ZoneMgr.h"

#include "measures.h"
#include "messages.h"
#include "ringTools.h"

#include <kelm25d/rings.h>

#include <algorithm>
#include <functional>
#include <iostream>

namespace QUOR_KELM25D {

ZoneMgr::ZoneMgr(Dt2* pDt_, ConstraintMgr& constraintMgr_)
    : pDt(pDt_), mesh(constraintMgr_.getMesh()), constraintMgr(constraintMgr_) {
}

ZoneMgr::~ZoneMgr() {
    for (const Zone2* pZone : sZones) {
        delete pZone;
    }
}

/// Takes over a new zone.
Zone2* ZoneMgr::keep(Zone2* pZone) {
    sZones.insert(pZone);
    return pZone;
}

void ZoneMgr::deleteZone(Zone2* pZone) {
    if (sZones.erase(pZone) == 0) {
        printWarning("Dt2::deleteZone(..)", "trying to delete a non-existing zone");
        return;
    }
    delete pZone;
}

// --- by graphs --------------------------------------------------------------------------------------------

Zone2* ZoneMgr::createZone(ConstraintGraph2* pConstraintGraph, ZoneLocation zoneLoc) {
    if (!mesh.is2D()) {
        printWarning("Dt2::createZone",
                     "called on a triangulation which has no triangles yet. Returning NULL");
        return nullptr;
    }
    if (zoneLoc == ZL_GLOBAL || isResult(zoneLoc)) {
        return keep(new Zone2(pDt, zoneLoc));
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
    return keep(new Zone2(pDt, zoneLoc, pConstraintGraph));
}

Zone2* ZoneMgr::createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc,
                           const Point2& startPoint) {
    if (zoneLoc != ZL_GROW) {
        printError("Dt2::createZone()", "This overloaded version of createZone accepts only ZL_GROW as "
                                        "zoneLocation. Returning NULL");
        return nullptr;
    }
    return keep(new Zone2(pDt, vConstraintGraphs, zoneLoc, {startPoint}));
}

Zone2* ZoneMgr::createZone(const std::vector<ConstraintGraph2*>& vConstraintGraphs, ZoneLocation zoneLoc) {
    if (zoneLoc != ZL_INSIDE && zoneLoc != ZL_OUTSIDE) {
        printError("Dt2::createZone()", "This overloaded version of createZone accepts only ZL_INSIDE and "
                                        "ZL_OUTSIDE as zoneLocation. Returning NULL");
        return nullptr;
    }
    return keep(new Zone2(pDt, zoneLoc, vConstraintGraphs));
}

Zone2* ZoneMgr::createZone(const std::vector<Edge2>& vEdges, ZoneLocation zoneLoc) {
    if (zoneLoc != ZL_BOUNDED) {
        printError("Dt2::createZone()", "This overloaded version of createZone accepts only ZL_BOUNDED as "
                                        "zoneLocation. Returning NULL");
        return nullptr;
    }
    if (mesh.isBroken("Dt2::createZone()")) return nullptr;
    ConstraintGraph2* pGraph = constraintMgr.createConstraintFromEdges(vEdges, CIS_CONSTRAINED_DELAUNAY);
    return keep(new Zone2(pDt, zoneLoc, pGraph));
}

// --- by triangles -----------------------------------------------------------------------------------------

/// A point surely inside one of the triangles: the barycentre of the first in which it is, as computed.
/// False, after messages, if there is none.
bool ZoneMgr::findStartPoint(const std::vector<Triangle2*>& vComponent, Point2& startPoint) {
    for (const Triangle2* pT : vComponent) {
        startPoint = pT->getBarycenter();
        if (!isFinite(startPoint)) continue;
        bool bInside = true;
        for (int i = 0; i < 3; ++i) {
            bInside =
                bInside && mesh.getQuorTest().getEdgeOrientation(pT, i, &startPoint) == ORIENTATION2_CCW;
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

Zone2* ZoneMgr::createZone(const std::vector<Triangle2*>& vTriangles) {
    const bool bUsable = std::all_of(vTriangles.begin(), vTriangles.end(), [](const Triangle2* pT) {
        return pT != nullptr && pT->getCorner(0) != nullptr;
    });
    if (!bUsable) {
        printError("Dt2::createZone()", "A triangle is NULL or not in use any more. Returning NULL");
        return nullptr;
    }
    if (mesh.isBroken("Dt2::createZone()")) return nullptr;
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
    ConstraintGraph2* pGraph = constraintMgr.createUserConstraint(vBorder, CIS_CONSTRAINED_DELAUNAY, true);
    return keep(new Zone2(pDt, {pGraph}, ZL_GROW, vStartPoints));
}

} // namespace QUOR_KELM25D
