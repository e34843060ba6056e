// Questions to a finished triangulation: where a point lies, what meets at a vertex, the hull, the height.
// Lines over the surface are in Dt2_drape.cpp, the check of the whole mesh in Dt2_validity.cpp.

#include "Dt2.h"

#include "footPoint.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace QUOR_KELM25D {

namespace {

constexpr double steepCosine = 0.08715574274765817; // of 85 degrees: a steeper triangle gets exact heights
constexpr double wellConditioned = 1e-9;            // least ratio of the doubled area to the sum of its terms
constexpr double heightSlack = 0.001;               // rounding beyond the corners' heights that is cut off

/// The height at (x, y) of the plane through the corners; false where rounding would spoil it, since the
/// corners are nearly collinear in the plan view.
bool planeHeight(const Triangle2& t, double x, double y, double& height) noexcept {
    const Point2 &p0 = *t.getCorner(0), &p1 = *t.getCorner(1), &p2 = *t.getCorner(2);
    const double ax = p1.x() - p0.x(), ay = p1.y() - p0.y(), az = p1.z() - p0.z();
    const double cx = p2.x() - p0.x(), cy = p2.y() - p0.y(), cz = p2.z() - p0.z();
    const double t1 = ax * cy, t2 = cx * ay, d = t1 - t2;
    if (!(d > wellConditioned * (std::fabs(t1) + std::fabs(t2)))) return false;
    height = p0.z() + (ax * cz - cx * az) / d * (y - p0.y()) - (ay * cz - cy * az) / d * (x - p0.x());
    return true;
}

bool isSteep(const Triangle2& t) noexcept {
    const Point2 &p0 = *t.getCorner(0), &p1 = *t.getCorner(1), &p2 = *t.getCorner(2);
    const double ax = p1.x() - p0.x(), ay = p1.y() - p0.y(), az = p1.z() - p0.z();
    const double cx = p2.x() - p0.x(), cy = p2.y() - p0.y(), cz = p2.z() - p0.z();
    const double nx = ay * cz - az * cy, ny = az * cx - ax * cz, nz = ax * cy - ay * cx;
    return !(nz * nz >= steepCosine * steepCosine * (nx * nx + ny * ny + nz * nz));
}

} // namespace

// --- location ---------------------------------------------------------------------------------------------

Triangle2* Dt2::locate(const Point2& p) {
    if (!is2D() || !std::isfinite(p.x()) || !std::isfinite(p.y()) || isBroken("Dt2::locate()"))
        return nullptr;
    if (p.getMaxAbs() > quorTest.getRange()) quorTest.setRange(p.getMaxAbs());
    Triangle2* pT = inserter.approach(p, findStart(p));
    int edgeIdx = -1;
    const int result = locateFrom(&p, pT, edgeIdx);
    pLastFound = pT;
    if (result < 0 || result == 4) return pT;
    return quorTest.getEdgeOrientation(pT, result, &p) == ORIENTATION2_CW ? nullptr : pT;
}

Triangle2* Dt2::getAdjacentTriangle(Point2* p0, Point2* p1) const {
    KELM_CHECK(p0!=0);
    KELM_CHECK(p1!=0);
    KELM_CHECK(p0!=p1);
    std::vector<Triangle2*> vFan;
    if (p0->getIncidentTriangle() != nullptr) getIncidentTriangles(p0, vFan);
    for (Triangle2* pT : vFan) {
        if (pT->getCorner(incIndexBy1(pT->getIntraTriangleIndex(p0))) == p1) return pT;
    }
    return nullptr;
}

void Dt2::getIncidentTriangles(Point2* pVtx, std::vector<Triangle2*>& vTriangles) const {
    KELM_CHECK(pVtx!=0);
    const TriangleAroundVertexIterator start(pVtx);
    TriangleAroundVertexIterator it(start);
    do {
        if (*it != nullptr) vTriangles.push_back(*it);
        ++it;
    } while (it != start);
}

void Dt2::getIncidentVertices(Point2* pVtx, std::vector<Point2*>& vVertices) const {
    std::vector<Triangle2*> vFan;
    getIncidentTriangles(pVtx, vFan);
    std::vector<Point2*> vFound;
    for (const Triangle2* pT : vFan) {
        const int i = pT->getIntraTriangleIndex(pVtx);
        vFound.push_back(pT->getCorner(incIndexBy1(i)));
        vFound.push_back(pT->getCorner(incIndexBy2(i)));
    }
    std::sort(vFound.begin(), vFound.end());
    vFound.erase(std::unique(vFound.begin(), vFound.end()), vFound.end());
    vVertices.insert(vVertices.end(), vFound.begin(), vFound.end());
}

// --- the hull ---------------------------------------------------------------------------------------------

/// Appends the edges of the hull, counterclockwise from the lowest of the leftmost vertices; none before
/// is2D().
void Dt2::getHullEdges(std::vector<Edge2>& vEdges) {
    if (!is2D() || isBroken("Dt2::getConvexHull()")) return;
    // The corner of the box of all points lies on the hull or outside: the walk to it ends at a hull edge or
    // at a hull vertex.
    const Point2 boxCorner(extent.get_minX(), extent.get_minY(), 0.0);
    Triangle2* pT = findStart(boxCorner);
    int edgeIdx = -1;
    int hullIdx = locateFrom(&boxCorner, pT, edgeIdx);
    if (hullIdx == MeshInserter::AT_CORNER) {
        int cornerIdx = 0;
        while (*pT->getCorner(cornerIdx) != boxCorner)
            ++cornerIdx;
        hullIdx = incIndexBy1(cornerIdx); // the loop below turns from here to the hull edge
    }
    KELM_CHECK(hullIdx>-1 && hullIdx<3);

    std::vector<Edge2> vHull;
    const Point2* pStartVtx = pT->getCorner(incIndexBy2(hullIdx));
    const Point2* pVtx = pStartVtx;
    do {
        // Through the fan of the vertex to the hull edge that leaves it.
        int axisIdx = pT->getIntraTriangleIndex(pVtx);
        while (Triangle2* pN = pT->getOppositeTriangle(incIndexBy2(axisIdx))) {
            pT = pN;
            axisIdx = pT->getIntraTriangleIndex(pVtx);
        }
        vHull.emplace_back(pT, incIndexBy2(axisIdx));
        pVtx = vHull.back().getTrg();
    } while (pVtx != pStartVtx);
    const auto first = std::min_element(
        vHull.begin(), vHull.end(), [](const Edge2& a, const Edge2& b) { return *a.getSrc() < *b.getSrc(); });
    vEdges.insert(vEdges.end(), first, vHull.end());
    vEdges.insert(vEdges.end(), vHull.begin(), first);
}

void Dt2::getConvexHull(bool bAllVertices, std::vector<Point2*>& vHull) {
    if (!is2D()) {
        printWarning("Dt2::getConvexHull()",
                     "is2D() is false, the triangulation is not full dimensional yet");
        return;
    }
    std::vector<Edge2> vEdges;
    getHullEdges(vEdges);
    std::vector<Point2*> vConvexHullPoints;
    for (const Edge2& edge : vEdges) {
        vConvexHullPoints.push_back(edge.getSrc());
    }
    if (bAllVertices) {
        vHull.insert(vHull.end(), vConvexHullPoints.begin(), vConvexHullPoints.end());
        return;
    }
    // The first vertex is the lowest of the leftmost ones, a corner; collinear ones behind a corner are left
    // out.
    const Point2* pCorner = nullptr;
    for (std::size_t i = 0; i < vConvexHullPoints.size(); ++i) {
        Point2* pHere = vConvexHullPoints[i];
        const Point2* pNext = vConvexHullPoints[(i + 1) % vConvexHullPoints.size()];
        if (pCorner != nullptr &&
            quorTest.getOrientation2Filtered(pCorner, pHere, pNext) == ORIENTATION2_COLLINEAR) {
            continue;
        }
        vHull.push_back(pHere);
        pCorner = pHere;
    }
}

// --- heights ----------------------------------------------------------------------------------------------

bool Dt2::getHeight(double x, double y, double& height, Triangle2* pApproxT, double tolerance) {
    if (!is2D() || !std::isfinite(x) || !std::isfinite(y)) return false;
    Triangle2* pT = pApproxT;
    if (pT == nullptr) {
        const Point2 query(x, y, 0.0);
        pT = locate(query);
        if (pT == nullptr)
            return tolerance > 0.0 && !bImportFailed && getHeightNearHull(query, height, tolerance);
    }
    height = heightInTriangle(*pT, x, y);
    return true;
}

double Dt2::heightInTriangle(const Triangle2& t, double x, double y) {
    const Point2 *p0 = t.getCorner(0), *p1 = t.getCorner(1), *p2 = t.getCorner(2);
    for (const Point2* p : {p0, p1, p2}) {
        if (p->x() == x && p->y() == y) return p->z();
    }
    // Heights are the caller's and were never looked at: exact arithmetic takes finite ones only.
    for (const Point2* p : {p0, p1, p2}) {
        if (!std::isfinite(p->z())) return std::numeric_limits<double>::quiet_NaN();
    }
    const double minZ = std::min({p0->z(), p1->z(), p2->z()}), maxZ = std::max({p0->z(), p1->z(), p2->z()});
    if (minZ == maxZ) return minZ;
    double height = 0.0;
    if (isSteep(t)) {
        height = quorTest.getHeightExact(p0, p1, p2, x, y);
        KELM_CHECK(height<=maxZ);
        KELM_CHECK(height>=minZ);
        return height;
    }
    if (!planeHeight(t, x, y, height)) height = quorTest.getHeightExact(p0, p1, p2, x, y);
    if (height > maxZ && height - maxZ < heightSlack) return maxZ;
    if (height < minZ && minZ - height < heightSlack) return minZ;
    return height >= minZ && height <= maxZ ? height : quorTest.getHeightExact(p0, p1, p2, x, y);
}

/// The height of the hull's border at the place next to a point outside, if that is within the tolerance.
bool Dt2::getHeightNearHull(const Point2& query, double& height, double tolerance) {
    Triangle2* pCurTriangle = findStart(query);
    KELM_CHECK(pCurTriangle!=0);
    int edgeIdx = -1;
    const int intState = locateFrom(&query, pCurTriangle, edgeIdx);
    KELM_CHECK(intState>-1 && intState<4);
    collectVisibleHull(&query, Edge2(pCurTriangle, intState));

    const Point2* pNearest = nullptr;
    double nearest = std::numeric_limits<double>::infinity();
    for (const Edge2& edge : vHullEdges) {
        const Point2 &src = *edge.getSrc(), &trg = *edge.getTrg();
        const Point2 foot = getFootPoint(src, trg, query);
        if (isOnSegment(src, trg, foot)) {
            if (std::hypot(foot.x() - query.x(), foot.y() - query.y()) > tolerance) return false;
            height = heightOnSegment(src, trg, foot.x(), foot.y());
            return true;
        }
        for (const Point2* pEnd : {&src, &trg}) {
            const double distance = std::hypot(pEnd->x() - query.x(), pEnd->y() - query.y());
            if (distance < nearest) {
                nearest = distance;
                pNearest = pEnd;
            }
        }
    }
    if (pNearest == nullptr || nearest > tolerance) return false;
    height = pNearest->z();
    return true;
}

} // namespace QUOR_KELM25D
