// The doors of a triangulation.
// Behind each stands the class that is named with it in the header.

#include "Dt2.h"

#include "CookieCutter.h"
#include "Cut.h"
#include "Drape.h"
#include "TriangleImport.h"

namespace QUOR_KELM25D {

Dt2::Dt2(unsigned numExpectedVertices) : mesh(numExpectedVertices) {
    mesh.addListener(&stuckRemovalDrawing);
}

/// Here, where a triangulation is more than a name.
ZoneMgr* Zone2::managerOf(Dt2* pDt) noexcept {
    return pDt != nullptr ? &pDt->getZoneMgr() : nullptr;
}

void Dt2::setDev(const std::string& key, int iValue, double dValue) {
    mDevSettings[key] = std::make_pair(iValue, dValue);
}

bool Dt2::drape(const std::vector<Segment2>& vIn, std::vector<Segment2>& vOut, double zTolerance) {
    return Drape(mesh, zTolerance).run(vIn, vOut);
}

Zone2* Dt2::CAT_importTriangles(std::vector<Point2>& vPoints, bool bReorientIfNeeded,
                                bool bCreateExtendedBoundingBox) {
    return TriangleImport(zoneMgr, vPoints).run(bReorientIfNeeded, bCreateExtendedBoundingBox);
}

void Dt2::CUTT_cutTriangles(const std::vector<Segment2>& vSegments, bool bWithConstraints,
                            std::vector<ConstraintSegment2*>& vCSegsOut) {
    Cut(constraintMgr, vSegments).run(bWithConstraints, vCSegsOut);
}

void Dt2::CUTT_insertConstraintSegments(Point2* pA, Point2* pB, const std::vector<Point2*>& vSplitPoints,
                                        std::vector<Point2*>& vSortedPoints) {
    insertChain(constraintMgr, pA, pB, vSplitPoints, vSortedPoints);
}

Zone2* Dt2::createZone_cookieCutter(const std::vector<Segment2>& vSegments, bool bWithConstraints) {
    return CookieCutter(zoneMgr).run(vSegments, bWithConstraints);
}

} // namespace QUOR_KELM25D
