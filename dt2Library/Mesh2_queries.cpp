// Questions to a finished triangulation: where a point lies, what meets at a vertex, the hull, the height.
// Lines over the surface are in Drape.cpp, the check of the whole mesh in validity.cpp.

#include "Mesh2.h"

#include "Fan.h"
#include "footPoint.h"
#include "measures.h"
#include "messages.h"

#include <kelm25d/TriangleAroundVertexIterator.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace QUOR_KELM25D {

namespace {

constexpr double steepCosine = 0.08715574274765817; // of 85 degrees: a steeper triangle gets exact heights
constexpr double heightSlack = 0.001;               // rounding beyond the corners' heights that is cut off

/// The height at (x, y) of the plane through the corners; false where rounding would spoil it, since the
/// corners are nearly collinear in the plan view.
bool planeHeight(const Triangle2& t, double x, double y, double& height) noexcept {
    const Point2 &p0 = *t.getCorner(0), &p1 = *t.getCorner(1), &p2 = *t.getCorner(2);
    const double ax = p1.x() - p0.x(), ay = p1.y() - p0.y(), az = p1.z() - p0.z();
    const double cx = p2.x() - p0.x(), cy = p2.y() - p0.y(), cz = p2.z() - p0.z();
    const double d = soundCrossProduct(ax, ay, cx, cy);
    if (d == 0.0) return false;
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

Triangle2* Mesh2::locate(const Point2& p) {
    if (!is2D() || !isFinite(p) || isBroken("Dt2::locate()")) return nullptr;
    if (p.getMaxAbs() > quorTest.getRange()) quorTest.setRange(p.getMaxAbs());
    const Location location = locateFrom(&p, inserter.approach(p, findStart(p)));
    pLastFound = location.pT;
    const bool bOutside =
        location.kind == Location::OUTSIDE &&
        quorTest.getEdgeOrientation(location.pT, location.idx, &p) == ORIENTATION2_CW; // else on the hull
    return bOutside ? nullptr : location.pT;
}

Triangle2* Mesh2::locateUniquely(const Point2& p) {
    Triangle2* pT = locate(p);
    if (pT == nullptr) return nullptr;
    std::vector<Triangle2*> vMeeting = {pT};
    for (int i = 0; i < 3; ++i) {
        Triangle2* pN = pT->getOppositeTriangle(i);
        if (*pT->getCorner(i) == p) {
            getIncidentTriangles(pT->getCorner(i), vMeeting);
        } else if (pN != nullptr && quorTest.getEdgeOrientation(pT, i, &p) == ORIENTATION2_COLLINEAR) {
            vMeeting.push_back(pN);
        }
    }
    return *std::min_element(vMeeting.begin(), vMeeting.end(), [](const Triangle2* a, const Triangle2* b) {
        return a->getBarycenter() < b->getBarycenter();
    });
}

// --- what meets at a vertex -------------------------------------------------------------------------------

Edge2 Mesh2::findEdge(const Point2* a, const Point2* b) {
    Fan fanA(a), fanB(b);
    for (;;) {
        for (Fan* pFan : {&fanA, &fanB}) {
            Triangle2* pT = pFan->getTriangle();
            if (pT == nullptr) return Edge2();
            const int i = pFan->getIndex();
            const Point2* pOther = pFan == &fanA ? b : a;
            const bool bOut = pT->getCorner(next(i)) == pOther;
            if (bOut || pT->getCorner(prev(i)) == pOther) {
                const int edgeIdx = bOut ? prev(i) : next(i);
                Triangle2* pN = pT->getOppositeTriangle(edgeIdx);
                if (bOut == (pFan == &fanA) || pN == nullptr) return Edge2(pT, edgeIdx);
                return Edge2(pN, pN->getIntraTriangleIndex(pT));
            }
            pFan->advance();
        }
    }
}

Triangle2* Mesh2::getAdjacentTriangle(Point2* p0, Point2* p1) const {
    KELM_CHECK(p0!=0);
    KELM_CHECK(p1!=0);
    KELM_CHECK(p0!=p1);
    for (Fan fan(p0); fan.getTriangle() != nullptr; fan.advance()) {
        if (fan.getTriangle()->getCorner(next(fan.getIndex())) == p1) return fan.getTriangle();
    }
    return nullptr;
}

void Mesh2::getIncidentTriangles(Point2* pVtx, std::vector<Triangle2*>& vTriangles) const {
    KELM_CHECK(pVtx!=0);
    const TriangleAroundVertexIterator start(pVtx);
    TriangleAroundVertexIterator it(start);
    do {
        if (*it != nullptr) vTriangles.push_back(*it);
        ++it;
    } while (it != start);
}

void Mesh2::getIncidentVertices(Point2* pVtx, std::vector<Point2*>& vVertices) const {
    std::vector<Triangle2*> vFan;
    getIncidentTriangles(pVtx, vFan);
    std::vector<Point2*> vFound;
    for (const Triangle2* pT : vFan) {
        const int i = pT->getIntraTriangleIndex(pVtx);
        vFound.push_back(pT->getCorner(next(i)));
        vFound.push_back(pT->getCorner(prev(i)));
    }
    std::sort(vFound.begin(), vFound.end());
    vFound.erase(std::unique(vFound.begin(), vFound.end()), vFound.end());
    vVertices.insert(vVertices.end(), vFound.begin(), vFound.end());
}

// --- the hull ---------------------------------------------------------------------------------------------

void Mesh2::getHullEdges(std::vector<Edge2>& vEdges) {
    if (!is2D() || isBroken("Dt2::getConvexHull()")) return;
    // The corner of the box of all points lies on the hull or outside: the walk to it ends at a hull edge or
    // at a hull vertex.
    const Point2 boxCorner(extent.get_minX(), extent.get_minY(), 0.0);
    const Location location = locateFrom(&boxCorner, findStart(boxCorner));
    Edge2 edge(location.pT, location.idx);
    if (location.kind == Location::AT_CORNER) {
        edge = hullEdgeFrom(location.pT->getCorner(location.idx), location.pT);
    } else if (location.kind != Location::OUTSIDE) {
        checkFailed("hullIdx>-1 && hullIdx<3", __FILE__, __LINE__);
    }
    std::vector<Edge2> vHull;
    const Point2* pStartVtx = edge.getTrg();
    do {
        edge = hullEdgeFrom(edge.getTrg(), edge.getTriangle());
        vHull.push_back(edge);
    } while (edge.getTrg() != pStartVtx);
    const auto first = std::min_element(
        vHull.begin(), vHull.end(), [](const Edge2& a, const Edge2& b) { return *a.getSrc() < *b.getSrc(); });
    vEdges.insert(vEdges.end(), first, vHull.end());
    vEdges.insert(vEdges.end(), vHull.begin(), first);
}

void Mesh2::getConvexHull(bool bAllVertices, std::vector<Point2*>& vHull) {
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

bool Mesh2::getHeight(double x, double y, double& height, Triangle2* pApproxT, double tolerance) {
    if (!is2D() || !std::isfinite(x) || !std::isfinite(y)) return false;
    Triangle2* pT = pApproxT;
    if (pT == nullptr) {
        const Point2 query(x, y, 0.0);
        pT = locate(query);
        if (pT == nullptr) return tolerance > 0.0 && !bBroken && getHeightNearHull(query, height, tolerance);
    }
    height = heightInTriangle(*pT, x, y);
    return true;
}

double Mesh2::heightInTriangle(const Triangle2& t, double x, double y) {
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
bool Mesh2::getHeightNearHull(const Point2& query, double& height, double tolerance) {
    Triangle2* pCurTriangle = findStart(query);
    KELM_CHECK(pCurTriangle!=0);
    const Location location = locateFrom(&query, pCurTriangle);
    if (location.kind != Location::OUTSIDE) checkFailed("intState>-1 && intState<4", __FILE__, __LINE__);
    const Point2* pNearest = nullptr;
    double nearest = std::numeric_limits<double>::infinity();
    for (const Edge2& edge : getVisibleHull(&query, Edge2(location.pT, location.idx))) {
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
