// The stages of a cut.
// How the pieces of a knife enter the mesh as constraints is in SegmentInserter.cpp.
//
// First every knife is traced through the triangles that it touches, all in the mesh as it is: that gives the
// points at which edges are to be divided. Then the vertices are inserted, and last the knives, each as a
// chain of constraint segments from vertex to vertex.
//
// To keep the rest of the mesh, all edges of the triangles that have a new vertex in their circle or touch a
// divided edge are made constraints before, and vertices enter without flips. A crossing is rounded and so
// may lie beside its edge, in a triangle as thin as the rounding: the edge's constraint is then divided at
// the vertex by order, and the edge itself is turned at the end.

#include "Cut.h"

#include "ConstraintMgr.h"
#include "Fan.h"
#include "Flood.h"
#include "footPoint.h"
#include "measures.h"
#include "messages.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iostream>
#include <limits>
#include <unordered_set>

namespace QUOR_KELM25D {

namespace {

constexpr double snapDistance = 1e-5; // of a crossing and a corner of its triangle

bool areBoxesApart(const Point2& p, const Point2& q, const Point2& a, const Point2& b) noexcept {
    return std::max(p.x(), q.x()) < std::min(a.x(), b.x()) ||
           std::max(a.x(), b.x()) < std::min(p.x(), q.x()) ||
           std::max(p.y(), q.y()) < std::min(a.y(), b.y()) || std::max(a.y(), b.y()) < std::min(p.y(), q.y());
}

/// A point on an edge, on the surface.
Point2 withHeightOf(const Point2& p, const Point2& q, Point2 point) noexcept {
    const double length = distance2D(p, q);
    const double share = length > 0.0 ? std::min(1.0, distance2D(p, point) / length) : 0.0;
    point.setZ(p.z() + (q.z() - p.z()) * share);
    return point;
}

/// Appends the alive pieces of a segment in order from the one of its ends on.
void appendPieces(ConstraintSegment2* pCSeg, const Point2* pFrom, std::vector<ConstraintSegment2*>& vOut) {
    struct Task {
        ConstraintSegment2* pCSeg;
        const Point2* pFrom;
    };
    std::vector<Task> vStack = {{pCSeg, pFrom}};
    std::unordered_set<const ConstraintSegment2*> sDivided; // a bent one may come up again below itself
    while (!vStack.empty()) {
        const Task task = vStack.back();
        vStack.pop_back();
        if (task.pCSeg->isAlive()) {
            vOut.push_back(task.pCSeg);
            continue;
        }
        if (!sDivided.insert(task.pCSeg).second) continue;
        ConstraintSegment2 *pKid0 = nullptr, *pKid1 = nullptr;
        Point2* pSplit = nullptr;
        task.pCSeg->getChildrenAndSplitPoint(pKid0, pKid1, pSplit);
        const auto isAtStart = [&](const ConstraintSegment2* pKid) {
            return pKid->getSrc() == task.pFrom || pKid->getTrg() == task.pFrom;
        };
        if (!isAtStart(pKid0)) std::swap(pKid0, pKid1);
        vStack.push_back({pKid1, pSplit});
        vStack.push_back({pKid0, task.pFrom});
    }
}

} // namespace

Cut::Cut(ConstraintMgr& constraintMgr_, const std::vector<Segment2>& vSegments_)
    : mesh(constraintMgr_.getMesh()), constraintMgr(constraintMgr_), vSegments(vSegments_) {
}

// --- tracing ----------------------------------------------------------------------------------------------

void Cut::trace() {
    for (Knife& knife : vKnives) {
        traceKnife(knife);
    }
}

/// Goes through all triangles that a knife touches.
void Cut::traceKnife(Knife& knife) {
    const bool bForward = knife.src < knife.trg;
    const Point2 a = bForward ? knife.src : knife.trg, b = bForward ? knife.trg : knife.src;
    std::vector<Triangle2*> vStart;
    if (Triangle2* pT = mesh.locate(a)) {
        vStart.push_back(pT);
    } else {
        if (vHull.empty()) mesh.getHullEdges(vHull);
        for (const Edge2& edge : vHull) {
            if (!areBoxesApart(*edge.getSrc(), *edge.getTrg(), a, b) &&
                mesh.getQuorTest().segmentsIntersect(edge.getSrc(), edge.getTrg(), &a, &b) !=
                    Meeting::DISJOINT) {
                vStart.push_back(edge.getTriangle());
            }
        }
    }
    Flood flood(vStart);
    TriangleSet sDone;
    while (Triangle2* pT = flood.next()) {
        sDone.insert(pT);
        for (int i = 0; i < 3; ++i) {
            Triangle2* pN = pT->getOppositeTriangle(i);
            if (pN != nullptr && sDone.contains(pN)) continue; // treated from there
            if (treatEdge(knife, a, b, pT, i) && pN != nullptr) flood.reach(pN);
        }
    }
}

/// Notes what the knife does to an edge. True if the triangle behind may be touched, too.
bool Cut::treatEdge(Knife& knife, const Point2& a, const Point2& b, Triangle2* pT, int i) {
    Point2 *p = pT->getCorner(next(i)), *q = pT->getCorner(prev(i));
    if (std::less<Point2*>()(q, p)) std::swap(p, q);
    const Meeting meeting = mesh.getQuorTest().segmentsIntersect(p, q, &a, &b);
    if (meeting == Meeting::DISJOINT) return false;
    CutEdge& edge = getCutEdge(p, q);
    if (meeting == Meeting::CROSSING) return treatCrossing(knife, a, b, edge);
    treatCollinear(knife, a, b, edge);
    return true;
}

Cut::CutEdge& Cut::getCutEdge(Point2* p, Point2* q) {
    const auto found = mCutEdge.emplace(VertexPair2(p, q), vCutEdges.size());
    if (found.second) vCutEdges.push_back({p, q, {}});
    return vCutEdges[found.first->second];
}

/// Ends of the knife within the edge divide the edge, ends of the edge within the knife the knife.
void Cut::treatCollinear(Knife& knife, const Point2& a, const Point2& b, CutEdge& edge) {
    const auto isBetween = [](const Point2& c, const Point2& end0, const Point2& end1) {
        const double length = distance2D(end0, end1);
        return distance2D(c, end0) < length && distance2D(c, end1) < length;
    };
    for (const Point2* pEnd : {&a, &b}) {
        if (isBetween(*pEnd, *edge.p, *edge.q)) edge.vPoints.push_back(withHeightOf(*edge.p, *edge.q, *pEnd));
    }
    for (Point2* pEnd : {edge.p, edge.q}) {
        if (isBetween(*pEnd, a, b)) knife.vOnSegment.push_back(pEnd);
    }
}

bool Cut::treatCrossing(Knife& knife, const Point2& a, const Point2& b, CutEdge& edge) {
    const Point2 &p = *edge.p, &q = *edge.q;
    Point2 crossing = getIntersection25D(p, q, a, b);
    if (!isFinite(crossing)) {
        printWarning("cutTriangles()", "numerical issue, no intersection point");
        std::cout << p << "<->" << q << std::endl << a << "<->" << b << std::endl;
        return false;
    }
    if (crossing == a || crossing == b)
        crossing = withHeightOf(p, q, crossing); // ends have heights of their own
    edge.vPoints.push_back(crossing);
    knife.vCutPoints.push_back(crossing);
    return true;
}

// --- protection -------------------------------------------------------------------------------------------

void Cut::protect() {
    TriangleSet sTriangles;
    bool bInside = true; // all ends lie within the hull
    for (const Knife& knife : vKnives) {
        bInside = addConflictTriangles(knife.src, sTriangles) && bInside;
        bInside = addConflictTriangles(knife.trg, sTriangles) && bInside;
        for (const Point2& point : knife.vCutPoints) {
            addConflictTriangles(point, sTriangles);
        }
    }
    VertexSet sEnds;
    for (const CutEdge& edge : vCutEdges) {
        for (const Point2* pEnd : {edge.p, edge.q}) {
            if (!sEnds.insert(pEnd)) continue;
            for (Fan fan(pEnd); fan.getTriangle() != nullptr; fan.advance()) {
                sTriangles.insert(fan.getTriangle());
            }
        }
    }
    constrainEdges(sTriangles, !bInside);
}

/// Makes the edges of triangles constraints, with bWithHull also those of the hull: what is joined to an end
/// outside must not be repaired across the hull as it is.
void Cut::constrainEdges(const TriangleSet& sTriangles, bool bWithHull) {
    ConstraintMgr::Pairs vPairs;
    const auto addEdge = [&](const Edge2& edge) {
        if (mesh.getSegmentTable().isConstraintEdge(edge.getTriangle(), edge.getIndex())) return;
        vPairs.emplace_back(edge.getSrc(), edge.getTrg());
    };
    std::vector<Edge2> vHullNow;
    if (bWithHull) mesh.getHullEdges(vHullNow);
    for (const Edge2& edge : vHullNow) {
        if (!sTriangles.contains(edge.getTriangle())) addEdge(edge);
    }
    std::vector<Triangle2*> vTriangles;
    sTriangles.appendTo(vTriangles);
    for (Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            const Triangle2* pN = pT->getOppositeTriangle(i);
            const bool bFromThere =
                pN != nullptr && std::less<const Triangle2*>()(pN, pT) && sTriangles.contains(pN);
            if (!bFromThere) addEdge(Edge2(pT, i));
        }
    }
    // They are edges already, so nothing has to be inserted.
    if (!vPairs.empty()) constraintMgr.createConstraint(vPairs, CIS_CONSTRAINED_DELAUNAY, false);
}

/// Adds the triangles that have the point in their circle, or on it. False if it lies outside the hull.
bool Cut::addConflictTriangles(const Point2& point, TriangleSet& sTriangles) {
    Triangle2* pStart = mesh.locate(point);
    if (pStart == nullptr) return false;
    Flood flood({pStart});
    while (const Triangle2* pT = flood.next()) {
        const bool bInConflict =
            pT == pStart || mesh.getQuorTest().circleIncFiltered(pT, &point) != InCircle::OUTSIDE;
        if (!bInConflict) continue;
        sTriangles.insert(pT);
        for (Triangle2* pN : pT->getOppositeTriangles()) {
            if (pN != nullptr) flood.reach(pN);
        }
    }
    return true;
}

// --- vertices ---------------------------------------------------------------------------------------------

void Cut::insertVertices() {
    const auto isBefore = [](const std::pair<Point2, Point2*>& a, const std::pair<Point2, Point2*>& b) {
        return a.first < b.first;
    };
    const auto isSame = [](const std::pair<Point2, Point2*>& a, const std::pair<Point2, Point2*>& b) {
        return a.first == b.first;
    };
    for (const CutEdge& edge : vCutEdges) {
        for (const Point2& point : edge.vPoints) {
            vVertices.emplace_back(point, nullptr);
        }
    }
    std::stable_sort(vVertices.begin(), vVertices.end(), isBefore);
    vVertices.erase(std::unique(vVertices.begin(), vVertices.end(), isSame), vVertices.end());
    for (auto& entry : vVertices) {
        entry.second = makeVertex(entry.first);
    }
}

/// The vertex for a crossing: a corner of its triangle that all but coincides, else a new one. Where
/// triangles are as thin as the rounding the corner may be one of a triangle behind.
Point2* Cut::makeVertex(const Point2& point) {
    Triangle2* pLocated = mesh.locate(point);
    Point2* pNearest = nullptr;
    double nearest = std::numeric_limits<double>::max();
    const auto consider = [&](Point2* pCandidate) {
        const double distance = distance2D(*pCandidate, point);
        if (distance >= nearest) return;
        nearest = distance;
        pNearest = pCandidate;
    };
    Flood flood;
    if (pLocated != nullptr) {
        flood.reach(pLocated);
    } else {
        std::vector<Edge2> vHullNow;
        mesh.getHullEdges(vHullNow);
        for (const Edge2& edge : vHullNow) {
            consider(edge.getSrc());
        }
    }
    while (const Triangle2* pT = nearest > 0.0 ? flood.next() : nullptr) {
        for (int i = 0; i < 3; ++i) {
            consider(pT->getCorner(i));
            Triangle2* pN = pT->getOppositeTriangle(i);
            if (pN == nullptr || flood.getReached().contains(pN)) continue;
            const Point2 &p = *pT->getCorner(next(i)), &q = *pT->getCorner(prev(i));
            const Point2 foot = getFootPoint(p, q, point);
            if (distance2D(foot, point) < snapDistance && isOnSegment(p, q, foot)) flood.reach(pN);
        }
    }
    return nearest < snapDistance ? pNearest : mesh.insertPoint(point, pLocated);
}

Point2* Cut::vertexAt(const Point2& point) const {
    const auto it = std::lower_bound(
        vVertices.begin(), vVertices.end(), point,
        [](const std::pair<Point2, Point2*>& entry, const Point2& p) { return entry.first < p; });
    return it->second;
}

// --- constraints ------------------------------------------------------------------------------------------

void Cut::divideEdges() {
    for (const CutEdge& edge : vCutEdges) {
        if (edge.vPoints.empty()) continue;
        std::vector<Point2*> vSplitPoints, vSortedPoints;
        for (const Point2& point : edge.vPoints) {
            vSplitPoints.push_back(vertexAt(point));
        }
        insertChain(constraintMgr, edge.p, edge.q, vSplitPoints, vSortedPoints);
    }
}

void Cut::insertKnives() {
    for (Knife& knife : vKnives) {
        for (Point2* pEnd : {&knife.src, &knife.trg}) {
            double height = 0.0;
            // An end that is outside by rounding alone is meant to be on the hull.
            const double rounding = 0x1p-48 * pEnd->getMaxAbs();
            if (mesh.getHeight(pEnd->x(), pEnd->y(), height, nullptr, rounding)) pEnd->setZ(height);
        }
        Point2* pSrc = mesh.insertPoint(knife.src);
        Point2* pTrg = mesh.insertPoint(knife.trg);
        std::vector<Point2*> vSplitPoints(knife.vOnSegment), vSortedPoints;
        for (const Point2& point : knife.vCutPoints) {
            vSplitPoints.push_back(vertexAt(point));
        }
        insertChain(constraintMgr, pSrc, pTrg, vSplitPoints, vSortedPoints);
        KELM_CHECK(vSortedPoints.size()>1);
        for (std::size_t i = 1; i < vSortedPoints.size(); ++i) {
            ConstraintSegment2* pCSeg = constraintMgr.findSegment(vSortedPoints[i - 1], vSortedPoints[i]);
            KELM_CHECK(pCSeg!=0);
            vPieces.push_back({pCSeg, vSortedPoints[i - 1]});
        }
    }
}

void Cut::getPieces(std::vector<ConstraintSegment2*>& vCSegsOut) const {
    for (const Piece& piece : vPieces) {
        appendPieces(piece.pCSeg, piece.pFrom, vCSegsOut);
    }
}

// --- the whole --------------------------------------------------------------------------------------------

void Cut::run(bool bWithConstraints, std::vector<ConstraintSegment2*>& vCSegsOut) {
    const char* const where = "Dt2::CUTT_cutTriangles(..)";
    if (vSegments.empty()) return;
    if (!mesh.is2D()) {
        printWarning(where, "The triangulation is not 2D yet, nothing to do");
        return;
    }
    const bool bFinite = std::all_of(vSegments.begin(), vSegments.end(), [](const Segment2& segment) {
        return isFinite(segment.getSrc()) && isFinite(segment.getTrg());
    });
    if (!bFinite) {
        printError(where, "a coordinate is not finite, nothing is cut");
        return;
    }
    if (mesh.isBroken(where)) return;
    const MuteProgress mute(mesh.getProgress());
    constraintMgr.applyConstraintsAndZones();
    for (const Segment2& segment : vSegments) {
        if (segment.getSrc() == segment.getTrg()) continue;
        vKnives.push_back({segment.getSrc(), segment.getTrg(), {}, {}});
    }
    if (vKnives.empty()) {
        printWarning(where, "No or only degenerate segments, nothing to do");
        return;
    }
    trace();
    {
        const ImportMode importMode(mesh, bWithConstraints);
        if (bWithConstraints) protect();
        insertVertices();
        if (bWithConstraints) divideEdges();
        insertKnives();
    }
    // What is to stay is constrained by now. Conforming segments need flips.
    constraintMgr.applyConstraintsAndZones();
    getPieces(vCSegsOut);
}

void insertChain(ConstraintMgr& constraintMgr, Point2* pA, Point2* pB,
                 const std::vector<Point2*>& vSplitPoints, std::vector<Point2*>& vSortedPoints) {
    const bool bForward = std::less<Point2*>()(pA, pB);
    Point2 *pStart = bForward ? pA : pB, *pEnd = bForward ? pB : pA;
    std::vector<std::pair<double, Point2*>> vOrder;
    for (Point2* pVtx : vSplitPoints) {
        if (pVtx != pStart && pVtx != pEnd) vOrder.emplace_back(distance2D(*pStart, *pVtx), pVtx);
    }
    std::sort(vOrder.begin(), vOrder.end());
    vOrder.erase(std::unique(vOrder.begin(), vOrder.end()), vOrder.end());
    vSortedPoints = {pStart};
    for (const auto& entry : vOrder) {
        vSortedPoints.push_back(entry.second);
    }
    vSortedPoints.push_back(pEnd);

    // An edge that is a constraint is divided without geometry, so that it gets exactly these vertices.
    ConstraintSegment2* pCSeg = constraintMgr.getAliveSegment(pStart, pEnd);
    for (std::size_t i = 1; i + 1 < vSortedPoints.size() && pCSeg != nullptr; ++i) {
        Point2* pSplit = vSortedPoints[i];
        if (!pCSeg->split_combinatorialOnly(pSplit)) break;
        pCSeg = constraintMgr.getAliveSegment(pSplit, pEnd);
    }
    // Otherwise, and where that could not be, the pieces are inserted.
    ConstraintMgr::Pairs vPairs;
    for (std::size_t i = 1; i < vSortedPoints.size(); ++i) {
        Point2 *pSrc = vSortedPoints[i - 1], *pTrg = vSortedPoints[i];
        if (constraintMgr.findSegment(pSrc, pTrg) == nullptr) vPairs.emplace_back(pSrc, pTrg);
    }
    if (!vPairs.empty()) constraintMgr.createConstraint(vPairs, CIS_CONSTRAINED_DELAUNAY, true);
}

} // namespace QUOR_KELM25D
