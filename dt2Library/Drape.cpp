// The way of a segment over the surface, and the thinning of what comes out.
// Heights at single places are in Mesh2_queries.cpp.
//
// The trace follows the line from s to t exactly: which edge it leaves a triangle by, and whether it runs
// through a vertex, is decided with the given ends, never with computed points. A computed crossing is only
// output. So a trace cannot get lost, whatever the rounding of the crossings. The thinning is that of Douglas
// and Peucker (1973), with distances measured in height alone.

#include "Drape.h"

#include "Mesh2.h"
#include "cornerIndex.h"
#include "footPoint.h"
#include "measures.h"

#include <algorithm>
#include <cmath>

namespace QUOR_KELM25D {

namespace {

/// Whether c, known to be on the line from a through b, lies on b's side of a. Exact.
bool isAhead(const Point2& a, const Point2& b, const Point2& c) noexcept {
    if (a.x() != b.x()) return (b.x() > a.x()) == (c.x() > a.x()) && c.x() != a.x();
    return (b.y() > a.y()) == (c.y() > a.y()) && c.y() != a.y();
}

/// Whether the segment lies beyond one side of the box as a whole.
bool isBeside(const Bbox2& box, const Point2& s, const Point2& t) noexcept {
    return std::max(s.x(), t.x()) < box.get_minX() || std::min(s.x(), t.x()) > box.get_maxX() ||
           std::max(s.y(), t.y()) < box.get_minY() || std::min(s.y(), t.y()) > box.get_maxY();
}

/// Output of the chords of a thinned polyline.
void appendThinned(const std::vector<Point2>& vLine, double zTolerance, std::vector<Segment2>& vOut) {
    std::vector<std::pair<std::size_t, std::size_t>> vStack = {{0, vLine.size() - 1}};
    while (!vStack.empty()) {
        const auto [lo, hi] = vStack.back();
        vStack.pop_back();
        std::size_t worst = lo;
        double worstDistance = zTolerance;
        for (std::size_t i = lo + 1; i < hi; ++i) {
            const double distance =
                std::fabs(vLine[i].z() - getFootPoint(vLine[lo], vLine[hi], vLine[i]).z());
            if (distance > worstDistance) {
                worstDistance = distance;
                worst = i;
            }
        }
        if (worst == lo) {
            vOut.emplace_back(vLine[lo], vLine[hi]);
            continue;
        }
        vStack.emplace_back(worst, hi);
        vStack.emplace_back(lo, worst);
    }
}

/// The way of one segment through the mesh.
class Trace {
public:
    Trace(Mesh2& mesh_, const Point2& s_, const Point2& t_, std::vector<Point2>& vPoints_)
        : mesh(mesh_), s(s_), t(t_), bAlongX(std::fabs(t_.x() - s_.x()) >= std::fabs(t_.y() - s_.y())),
          vPoints(vPoints_) {}

    /// Collects the points of the part over the hull, at least one if there is such a part. True if that is
    /// the whole segment.
    bool run() {
        bool bFromHull = false;
        if (Triangle2* pT = mesh.locate(s)) {
            startInside(pT);
        } else if (startOutside()) {
            bFromHull = true;
        } else {
            return false;
        }
        while (state != DONE && state != LEFT_HULL) {
            if (state == AT_VERTEX) {
                stepFromVertex();
            } else {
                stepThroughTriangle();
            }
        }
        return state == DONE && !bFromHull;
    }

private:
    enum State { AT_VERTEX, IN_TRIANGLE, DONE, LEFT_HULL };

    Orientation2 sideOf(const Point2* p) { return mesh.getQuorTest().getOrientation2Filtered(&s, &t, p); }
    Orientation2 targetSide(const Triangle2* pT, int i) {
        return mesh.getQuorTest().getEdgeOrientation(pT, i, &t);
    }

    /// Whether the way leads from p to q and not back, as far as doubles can tell.
    bool isOnward(const Point2& p, const Point2& q) const noexcept {
        if (bAlongX) return s.x() < t.x() ? p.x() < q.x() : p.x() > q.x();
        return s.y() < t.y() ? p.y() < q.y() : p.y() > q.y();
    }

    /// Adds a point that is known exactly. Computed crossings whose rounding went past it give way.
    void addExact(const Point2& p) {
        while (vPoints.size() > numSettled && !isOnward(vPoints.back(), p)) {
            vPoints.pop_back();
        }
        vPoints.push_back(p);
        numSettled = vPoints.size();
    }

    void goTo(Point2* pVtx_) {
        pVtx = pVtx_;
        state = AT_VERTEX;
        addExact(*pVtx);
        if (*pVtx == t) state = DONE;
    }

    /// Ends at the target, which lies in pT.
    void finishIn(const Triangle2* pT) {
        addExact(Point2(t.x(), t.y(), mesh.heightInTriangle(*pT, t.x(), t.y())));
        state = DONE;
    }

    /// Crosses edge i of pT between its ends.
    void cross(const Triangle2* pT, int i) {
        // A source on this very edge is the crossing, and is there already.
        if (mesh.getQuorTest().getEdgeOrientation(pT, i, &s) != ORIENTATION2_COLLINEAR) addCrossing(pT, i);
        pTriangle = pT->getOppositeTriangle(i);
        if (pTriangle == nullptr) {
            state = LEFT_HULL;
            return;
        }
        entryIdx = pTriangle->getIntraTriangleIndex(pT);
        state = IN_TRIANGLE;
    }

    void addCrossing(const Triangle2* pT, int i) {
        const Point2 *a = pT->getCorner(next(i)), *b = pT->getCorner(prev(i));
        double x = 0.0, y = 0.0;
        getIntersection2D(&s, &t, a, b, x, y);
        if (!vPoints.empty() && !isOnward(vPoints.back(), Point2(x, y, 0.0))) return; // rounding led back
        vPoints.emplace_back(x, y, heightOnSegment(*a, *b, x, y));
    }

    void startInside(Triangle2* pT) {
        for (Point2* pCorner : pT->getCorners()) {
            if (*pCorner == s) {
                goTo(pCorner);
                return;
            }
        }
        addExact(Point2(s.x(), s.y(), mesh.heightInTriangle(*pT, s.x(), s.y())));
        for (int i = 0; i < 3; ++i) {
            if (targetSide(pT, i) != ORIENTATION2_CW) continue;
            // The target is beyond edge i; the segment leaves here if it passes between the ends.
            Point2 *a = pT->getCorner(next(i)), *b = pT->getCorner(prev(i));
            const Orientation2 sideA = sideOf(a), sideB = sideOf(b);
            if (sideA == ORIENTATION2_CCW || sideB == ORIENTATION2_CW) continue;
            if (sideA == ORIENTATION2_COLLINEAR && isAhead(s, t, *a)) {
                goTo(a);
            } else if (sideB == ORIENTATION2_COLLINEAR && isAhead(s, t, *b)) {
                goTo(b);
            } else if (sideA == ORIENTATION2_COLLINEAR || sideB == ORIENTATION2_COLLINEAR) {
                continue;
            } else {
                cross(pT, i);
            }
            return;
        }
        finishIn(pT);
    }

    /// Finds the hull edge by which a segment from outside enters; false if it misses the hull.
    bool startOutside() {
        const Location location = mesh.locateFrom(&s, mesh.findStart(s));
        for (const Edge2& edge : mesh.getVisibleHull(&s, Edge2(location.pT, location.idx))) {
            if (targetSide(edge.getTriangle(), edge.getIndex()) == ORIENTATION2_CW) continue;
            Point2 *a = edge.getSrc(), *b = edge.getTrg();
            const Orientation2 sideA = sideOf(a), sideB = sideOf(b);
            if (sideA == ORIENTATION2_CW || sideB == ORIENTATION2_CCW) continue;
            if (sideA == ORIENTATION2_COLLINEAR) {
                goTo(a);
            } else if (sideB == ORIENTATION2_COLLINEAR) {
                goTo(b);
            } else {
                addCrossing(edge.getTriangle(), edge.getIndex());
                pTriangle = edge.getTriangle();
                entryIdx = edge.getIndex();
                state = targetSide(pTriangle, entryIdx) == ORIENTATION2_CCW ? IN_TRIANGLE : DONE;
            }
            return true;
        }
        return false;
    }

    void stepFromVertex() {
        std::vector<Triangle2*> vFan;
        mesh.getIncidentTriangles(pVtx, vFan);
        for (Triangle2* pT : vFan) {
            const int i = pT->getIntraTriangleIndex(pVtx);
            Point2 *a = pT->getCorner(next(i)), *b = pT->getCorner(prev(i));
            const Orientation2 sideA = sideOf(a), sideB = sideOf(b);
            for (Point2* pAlong : {a, b}) {
                if ((pAlong == a ? sideA : sideB) != ORIENTATION2_COLLINEAR || !isAhead(*pVtx, t, *pAlong))
                    continue;
                // Along an edge: to its end, or to the target if that comes first.
                if (*pAlong != t && !isAhead(*pAlong, *pVtx, t)) {
                    goTo(pAlong);
                } else {
                    finishIn(pT);
                }
                return;
            }
            if (sideA != ORIENTATION2_CW || sideB != ORIENTATION2_CCW) continue;
            if (targetSide(pT, i) != ORIENTATION2_CW) {
                finishIn(pT);
            } else {
                cross(pT, i);
            }
            return;
        }
        state = LEFT_HULL;
    }

    void stepThroughTriangle() {
        const Triangle2* pT = pTriangle;
        if (targetSide(pT, next(entryIdx)) != ORIENTATION2_CW &&
            targetSide(pT, prev(entryIdx)) != ORIENTATION2_CW) {
            finishIn(pT);
            return;
        }
        Point2* pApex = pT->getCorner(entryIdx);
        const Orientation2 side = sideOf(pApex);
        if (side == ORIENTATION2_COLLINEAR) {
            goTo(pApex);
        } else {
            // Edge next joins corner prev, to the right of the way, to the apex; edge prev the apex to corner
            // next.
            cross(pT, side == ORIENTATION2_CCW ? next(entryIdx) : prev(entryIdx));
        }
    }

    Mesh2& mesh;
    const Point2& s;
    const Point2& t;
    bool bAlongX; // the longer extent of the segment
    std::vector<Point2>& vPoints;
    std::size_t numSettled = 0; // points up to the last exact one
    State state = DONE;
    Point2* pVtx = nullptr;               // in AT_VERTEX
    const Triangle2* pTriangle = nullptr; // in IN_TRIANGLE: entered through edge entryIdx
    int entryIdx = -1;
};

} // namespace

Drape::Drape(Mesh2& mesh_, double zTolerance_) : mesh(mesh_), zTolerance(zTolerance_) {
}

bool Drape::run(const std::vector<Segment2>& vIn, std::vector<Segment2>& vOut) {
    if (!mesh.is2D() || mesh.isBroken("Dt2::drape()")) return vIn.empty();
    QuorTest& quorTest = mesh.getQuorTest();
    bool bComplete = true;
    std::vector<Point2> vPoints;
    std::vector<Segment2> vPieces; // the caller may have passed one sequence for both
    for (const Segment2& segment : vIn) {
        const Point2 s = segment.getSrc(), t = segment.getTrg();
        if (s == t) continue;
        if (!isFinite(s) || !isFinite(t) || isBeside(mesh.getExtent(), s, t)) {
            bComplete = false;
            continue;
        }
        quorTest.setRange(std::max({quorTest.getRange(), s.getMaxAbs(), t.getMaxAbs()}));
        vPoints.clear();
        if (!Trace(mesh, s, t, vPoints).run()) bComplete = false;
        if (vPoints.size() < 2) continue;
        if (zTolerance < 0.0) {
            for (std::size_t i = 0; i + 1 < vPoints.size(); ++i) {
                vPieces.emplace_back(vPoints[i], vPoints[i + 1]);
            }
        } else {
            appendThinned(vPoints, zTolerance, vPieces);
        }
    }
    vOut.insert(vOut.end(), vPieces.begin(), vPieces.end());
    return bComplete;
}

} // namespace QUOR_KELM25D
