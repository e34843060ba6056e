// Exact checks of a whole triangulation; see the header for the list.
// A floating point estimate with a generous bound spares the rationals in the clear cases.

#include "MeshChecker.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gmpxx.h>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {
namespace testing_support {

namespace {

/// A triangle or a segment with all digits.
template <class T>
std::string describe(const T* p) {
    std::ostringstream text;
    text.precision(17);
    text << ' ' << *p;
    return text.str();
}

template <class T>
std::vector<T*> collect(const Kelm_2D& dt, void (Kelm_2D::*append)(std::vector<T*>&) const) {
    std::vector<T*> v;
    (dt.*append)(v);
    return v;
}

using Mesh = std::vector<Triangle2*>;
using Segments = std::vector<ConstraintSegment2*>;
using VertexPair = std::pair<const Point2*, const Point2*>; // the lower address first

VertexPair pairOf(const Point2* a, const Point2* b) {
    return std::less<const Point2*>()(a, b) ? VertexPair(a, b) : VertexPair(b, a);
}

using SegmentMap = std::map<VertexPair, ConstraintSegment2*>;

SegmentMap mapByEnds(const Segments& vSegments) {
    SegmentMap mSegments;
    for (ConstraintSegment2* pSegment : vSegments)
        mSegments.emplace(VertexPair(pSegment->getSrc(), pSegment->getTrg()), pSegment);
    return mSegments;
}

ConstraintSegment2* find(const SegmentMap& mSegments, const VertexPair& pair) {
    const auto it = mSegments.find(pair);
    return it == mSegments.end() ? nullptr : it->second;
}

/// What the lookups say about an edge, against the list of alive segments.
bool isLookupWrong(const Kelm_2D& dt, Point2* a, Point2* b, const ConstraintSegment2* pAlive) {
    const bool bAlive = pAlive != nullptr;
    return dt.isConstraint(a, b) != bAlive || dt.isConstraint(b, a) != bAlive ||
           dt.getConstraintSegment(a, b) != pAlive || dt.getConstraintSegment(b, a) != pAlive;
}

std::string findConstraintVertexFault(const Kelm_2D& dt, const std::vector<Point2*>& vVertices) {
    const Segments vAll = collect(dt, &Kelm_2D::getAliveAndDeadConstraintSegments);
    std::unordered_set<const Point2*> sEnds;
    for (const ConstraintSegment2* pSegment : vAll)
        sEnds.insert({pSegment->getSrc(), pSegment->getTrg()});
    for (Point2* pVtx : vVertices)
        if (dt.isConstraint(pVtx) != (sEnds.erase(pVtx) != 0)) return "isConstraint of a vertex is wrong";
    return sEnds.empty() ? "" : "an end of a constraint segment that is no vertex";
}

std::string findFaultBeforeTwoDimensional(const Kelm_2D& dt, std::vector<Point2*>& vVertices) {
    if (dt.numberOfTriangles() != 0) return "triangles before is2D";
    std::sort(vVertices.begin(), vVertices.end(), [](Point2* a, Point2* b) { return *a < *b; });
    for (std::size_t i = 0; i < vVertices.size(); ++i) {
        if (i > 0 && *vVertices[i - 1] == *vVertices[i]) return "two waiting vertices at one place";
        if (exactOrientation(*vVertices.front(), *vVertices[i], *vVertices.back()) != 0)
            return "waiting vertices that are not collinear";
        if (vVertices[i]->getIncidentTriangle() != nullptr) return "a waiting vertex with a triangle";
    }
    return "";
}

/// Corners, neighbours, constrained edges and empty circles; collects the hull as a map from each vertex to
/// the next.
std::string findTriangleFault(const Kelm_2D& dt, const Mesh& vTriangles, bool bEmptyCircles,
                              std::unordered_map<const Point2*, const Point2*>& mHullNext) {
    const SegmentMap mAlive = mapByEnds(aliveSegments(dt));
    for (Triangle2* pT : vTriangles) {
        const Point2 &a = *pT->getCorner(0), &b = *pT->getCorner(1), &c = *pT->getCorner(2);
        if (exactOrientation(a, b, c) != 1) return "a triangle that is not counterclockwise:" + describe(pT);
        for (int i = 0; i < 3; ++i) {
            Point2 *pSrc = pT->getCorner(incIndexBy1(i)), *pTrg = pT->getCorner(incIndexBy2(i));
            const Triangle2* pN = pT->getOppositeTriangle(i);
            const ConstraintSegment2* pSegment = find(mAlive, pairOf(pSrc, pTrg));
            if (dt.isConstraint(pT, i) != (pSegment != nullptr) || isLookupWrong(dt, pSrc, pTrg, pSegment))
                return "a wrong answer whether an edge is a constraint:" + describe(pT);
            if (pN == nullptr) {
                if (!mHullNext.emplace(pSrc, pTrg).second) return "a vertex with two hull edges going out";
                continue;
            }
            int j = 0; // of the edge there
            while (j < 3 && (pN->getOppositeTriangle(j) != pT || pN->getCorner(incIndexBy1(j)) != pTrg))
                ++j;
            if (j == 3 || pN->getCorner(incIndexBy2(j)) != pSrc)
                return "a neighbour that does not share the edge:" + describe(pT);
            if (bEmptyCircles && pSegment == nullptr && pT < pN &&
                exactInCircle(a, b, c, *pN->getCorner(j)) > 0)
                return "a circle that is not empty:" + describe(pT) + " and" + describe(pN);
        }
    }
    return "";
}

std::string findHullFault(const std::unordered_map<const Point2*, const Point2*>& mHullNext) {
    if (mHullNext.size() < 3) return "a hull of fewer than three edges";
    // Locally convex and once around: a closed polygon with no clockwise turn whose edge directions turn just
    // once is convex; the directions' turns are counted where the edges pass from below to above. Every hull
    // vertex has an edge that comes and one that goes, since neighbours are symmetric.
    const Point2 *const pStart = mHullNext.begin()->first, *pVtx = pStart;
    std::size_t numEdges = 0;
    int numTurns = 0;
    do {
        const Point2 &a = *pVtx, &b = *mHullNext.at(&a), &c = *mHullNext.at(&b);
        if (exactOrientation(a, b, c) < 0) return "a hull that is not convex";
        numTurns += b < a && b < c;
        ++numEdges;
        pVtx = &b;
    } while (pVtx != pStart && numEdges < mHullNext.size());
    if (pVtx != pStart || numEdges != mHullNext.size()) return "a hull that is no ring";
    return numTurns == 1 ? "" : "a hull that winds more than once";
}

/// A segment and the end at which a walk enters it.
using Step = std::pair<ConstraintSegment2*, const Point2*>;

const Point2* otherEnd(const Step& step) {
    return step.first->getSrc() == step.second ? step.first->getTrg() : step.first->getSrc();
}

bool joins(const ConstraintSegment2* pSegment, const Point2* a, const Point2* b) {
    return pSegment != nullptr && VertexPair(pSegment->getSrc(), pSegment->getTrg()) == pairOf(a, b);
}

/// The children of a dead segment in the order of the walk: the second is entered where they meet.
std::pair<Step, Step> childrenOf(const Step& step) {
    ConstraintSegment2 *pKid0 = nullptr, *pKid1 = nullptr;
    Point2* pSplit = nullptr;
    step.first->getChildrenAndSplitPoint(pKid0, pKid1, pSplit);
    if (!joins(pKid0, step.second, pSplit)) std::swap(pKid0, pKid1);
    return {{pKid0, step.second}, {pKid1, pSplit}};
}

/// A crossing is rounded to doubles, which moves it by less than one unit in the last place of each
/// coordinate, or takes an end that is closer than 1e-6 or than a few units, for which there are eight here,
/// with those that this function itself loses. That is for each split: the pieces are what the splits below
/// are measured against, so that the deviations from an original add up.
bool isNear(const Point2& s, const Point2& a, const Point2& b) {
    const double dx = b.x() - a.x(), dy = b.y() - a.y(), sx = s.x() - a.x(), sy = s.y() - a.y();
    const double length = std::hypot(dx, dy), ex = dx / length, ey = dy / length;
    const double along = std::clamp(ex * sx + ey * sy, 0.0, length);
    const double distance = std::hypot(sx - along * ex, sy - along * ey);
    const double magnitude = std::max({a.getMaxAbs(), b.getMaxAbs(), s.getMaxAbs()});
    return distance <= 1.000001e-6 + std::ldexp(magnitude, -49);
}

std::string findSegmentFault(const Kelm_2D& dt, const Segments& vAll, const SegmentMap& mAll, bool bMayWait) {
    std::set<VertexPair> sEdges;
    for (const Triangle2* pT : allTriangles(dt))
        for (int i = 0; i < 3; ++i)
            sEdges.insert(pairOf(pT->getCorner(i), pT->getCorner((i + 1) % 3)));
    for (ConstraintSegment2* pSegment : vAll) {
        Point2 *p0 = pSegment->getSrc(), *p1 = pSegment->getTrg();
        if (!std::less<const Point2*>()(p0, p1)) return "ends out of order:" + describe(pSegment);
        if (pSegment->getNumberOfOwners() == 0) return "a segment without owner:" + describe(pSegment);
        if (isLookupWrong(dt, p0, p1, pSegment->isAlive() ? pSegment : nullptr))
            return "a wrong answer about a segment:" + describe(pSegment);
        if (pSegment->isAlive()) {
            if (!bMayWait && sEdges.count({p0, p1}) == 0)
                return "an alive segment that is no edge:" + describe(pSegment);
            continue;
        }
        const auto [kid0, kid1] = childrenOf({pSegment, p0});
        const Point2* pSplit = kid1.second;
        if (pSplit == p0 || pSplit == p1 || !joins(kid0.first, p0, pSplit) || !joins(kid1.first, pSplit, p1))
            return "a dead segment without two children that join its ends:" + describe(pSegment);
        for (const Step& kid : {kid0, kid1})
            if (find(mAll, {kid.first->getSrc(), kid.first->getTrg()}) != kid.first)
                return "a child that is not listed:" + describe(pSegment);
    }
    return "";
}

/// Appends all segments of the split tree below, in the order of the walk, a parent before its children. The
/// children have been checked before: the alive ones among these are a chain from end to end.
/// @return false if a segment is a piece of itself
bool walk(const Step& root, std::vector<Step>& vSteps) {
    std::vector<Step> vStack{root};
    while (!vStack.empty()) {
        const Step step = vStack.back();
        vStack.pop_back();
        if (vSteps.size() > 1000000) return false;
        vSteps.push_back(step);
        if (step.first->isAlive()) continue;
        const auto [kid0, kid1] = childrenOf(step);
        vStack.push_back(kid1);
        vStack.push_back(kid0);
    }
    return true;
}

/// What is wrong with a graph that was made of the given segments. Which way it runs along each of them it
/// says itself; their pieces have to follow.
std::string findGraphFault(const ConstraintGraph2& graph, const Segments& vGiven) {
    Segments vOriginals, vPieces, vOrdered, vExpected;
    graph.getOriginalConstraintSegments(vOriginals);
    graph.getChildConstraintSegments(vPieces);
    graph.getChildrenInOrder(vOrdered);
    const auto setOf = [](const Segments& v) { return std::set<ConstraintSegment2*>(v.begin(), v.end()); };
    if (setOf(vOriginals) != setOf(vGiven)) return "a graph with other originals";
    std::vector<Step> vSteps;
    for (ConstraintSegment2* pSegment : vOriginals)
        walk({pSegment, graph.isReverse(pSegment) ? pSegment->getTrg() : pSegment->getSrc()}, vSteps);
    std::map<ConstraintSegment2*, const Point2*> mStart;
    bool bOneWay = true;
    std::vector<const Point2*> vExpectedVertices;
    for (const Step& step : vSteps) {
        bOneWay = bOneWay && mStart.insert(step).first->second == step.second;
        if (!step.first->isAlive()) continue;
        if (!graph.isConstraint(step.first) ||
            !graph.isConstraint(step.first->getTrg(), step.first->getSrc()))
            return "a piece that its graph does not know:" + describe(step.first);
        vExpected.push_back(step.first);
        vExpectedVertices.insert(vExpectedVertices.end(), {step.second, otherEnd(step)});
    }
    const std::set<ConstraintSegment2*> sExpected = setOf(vExpected);
    if (vPieces != Segments(sExpected.begin(), sExpected.end())) return "a graph with other pieces";
    // One that is given twice, or a place in both directions, has no order.
    if (!bOneWay || vOriginals.size() != vGiven.size()) return "";
    for (const Step& step : vSteps) {
        if (graph.isReverse(step.first) != (step.second == step.first->getTrg()))
            return "a wrong direction:" + describe(step.first);
    }
    if (vOrdered != vExpected) return "pieces out of order";
    std::vector<Point2*> vVertices;
    graph.getPolygonVertices(vVertices);
    if (!std::equal(vVertices.begin(), vVertices.end(), vExpectedVertices.begin(), vExpectedVertices.end()))
        return "polygon vertices out of order";
    return "";
}

/// The sign of a determinant is safe: its rounding stays far below the bound, relative to the sum of its
/// terms' magnitudes, and neither overflow nor underflow has spoilt it.
bool isTrusted(double det, double permanent) {
    const double bound = permanent * 1e-13;
    return bound > 1e-200 && std::isfinite(bound) && std::fabs(det) > bound;
}

/// The determinant of a point in a circle, and the sum of its terms' magnitudes.
template <class Number>
std::pair<Number, Number> inCircle(const Point2* const (&aCorner)[3], const Point2& d) {
    using std::abs;
    Number x[3], y[3], det = 0, permanent = 0;
    for (int i = 0; i < 3; ++i) {
        x[i] = Number(aCorner[i]->x()) - Number(d.x());
        y[i] = Number(aCorner[i]->y()) - Number(d.y());
    }
    for (int i = 0; i < 3; ++i) {
        const Number lift = x[i] * x[i] + y[i] * y[i];
        const Number t1 = x[incIndexBy1(i)] * y[incIndexBy2(i)], t2 = x[incIndexBy2(i)] * y[incIndexBy1(i)];
        det += lift * (t1 - t2);
        permanent += lift * (abs(t1) + abs(t2));
    }
    return {det, permanent};
}

} // namespace

std::vector<Triangle2*> allTriangles(const Kelm_2D& dt) {
    return collect(dt, &Kelm_2D::getTrianglePointers);
}

std::vector<Point2*> allVertices(const Kelm_2D& dt) {
    return collect(dt, &Kelm_2D::getVertexPointers);
}

std::vector<ConstraintSegment2*> aliveSegments(const Kelm_2D& dt) {
    return collect(dt, &Kelm_2D::getAliveConstraintSegments);
}

int exactOrientation(const Point2& a, const Point2& b, const Point2& c) {
    const double t1 = (a.x() - c.x()) * (b.y() - c.y()), t2 = (a.y() - c.y()) * (b.x() - c.x());
    if (isTrusted(t1 - t2, std::fabs(t1) + std::fabs(t2))) return t1 > t2 ? 1 : -1;
    const mpq_class cx = c.x(), cy = c.y();
    const mpq_class exact1 = (mpq_class(a.x()) - cx) * (mpq_class(b.y()) - cy);
    const mpq_class exact2 = (mpq_class(a.y()) - cy) * (mpq_class(b.x()) - cx);
    return (exact1 > exact2) - (exact1 < exact2);
}

int exactInCircle(const Point2& a, const Point2& b, const Point2& c, const Point2& d) {
    const Point2* const aCorner[3] = {&a, &b, &c};
    const auto [det, permanent] = inCircle<double>(aCorner, d);
    return isTrusted(det, permanent) ? (det > 0) - (det < 0) : sgn(inCircle<mpq_class>(aCorner, d).first);
}

std::string findMeshFault(const Kelm_2D& dt, bool bEmptyCircles) {
    std::vector<Point2*> vVertices = allVertices(dt);
    const Mesh vTriangles = allTriangles(dt);
    if (vVertices.size() != dt.numberOfPoints()) return "numberOfPoints is wrong";
    if (vTriangles.size() != dt.numberOfTriangles()) return "numberOfTriangles is wrong";
    std::string fault = findConstraintVertexFault(dt, vVertices);
    if (!fault.empty()) return fault;
    if (!dt.is2D()) return findFaultBeforeTwoDimensional(dt, vVertices);
    const std::unordered_set<const Triangle2*> sTriangles(vTriangles.begin(), vTriangles.end());
    for (const Point2* pVtx : vVertices) {
        const Triangle2* pT = pVtx->getIncidentTriangle();
        if (sTriangles.count(pT) == 0 || !pT->hasVertex(pVtx)) return "a bad incident triangle";
    }
    std::unordered_map<const Point2*, const Point2*> mHullNext;
    fault = findTriangleFault(dt, vTriangles, bEmptyCircles, mHullNext);
    if (fault.empty()) fault = findHullFault(mHullNext);
    if (!fault.empty()) return fault;
    const bool bEuler = vTriangles.size() + mHullNext.size() + 2 == 2 * vVertices.size();
    return bEuler ? "" : "Euler's formula fails";
}

std::string findConstraintFault(const Kelm_2D& dt, const std::vector<Segment2>& vSegments,
                                const ConstraintGraph2* pGraph, bool bMayWait) {
    const Segments vAlive = aliveSegments(dt);
    const Segments vAll = collect(dt, &Kelm_2D::getAliveAndDeadConstraintSegments);
    Segments vExpected;
    const auto isNotBefore = [](const auto* a, const auto* b) { return !(*a < *b); };
    if (std::adjacent_find(vAll.begin(), vAll.end(), isNotBefore) != vAll.end())
        return "segments out of order or twice";
    std::copy_if(vAll.begin(), vAll.end(), std::back_inserter(vExpected),
                 [](const ConstraintSegment2* pSegment) { return pSegment->isAlive(); });
    if (vAlive != vExpected) return "the alive segments are not those of all that are alive";
    const SegmentMap mAll = mapByEnds(vAll);
    const std::string fault = findSegmentFault(dt, vAll, mAll, bMayWait || !dt.is2D());
    if (!fault.empty()) return fault;

    std::map<Point2, const Point2*> mPlaces;
    for (const Point2* pVtx : allVertices(dt))
        mPlaces[*pVtx] = pVtx;
    Segments vRoots;
    for (const Segment2& segment : vSegments) {
        if (segment.getSrc() == segment.getTrg()) continue;
        const Point2 *pSrc = mPlaces[segment.getSrc()], *pTrg = mPlaces[segment.getTrg()];
        if (pSrc == nullptr || pTrg == nullptr) return "an end that is no vertex";
        ConstraintSegment2* pRoot = find(mAll, pairOf(pSrc, pTrg));
        if (pRoot == nullptr) return "a given segment that is no constraint";
        vRoots.push_back(pRoot);
        std::vector<Step> vSteps;
        if (!walk({pRoot, pSrc}, vSteps)) return "a segment that is a piece of itself";
        for (const Step& step : vSteps) {
            if (step.first->isAlive()) continue;
            if (!isNear(*childrenOf(step).second.second, *step.second, *otherEnd(step)))
                return "a split far from the segment:" + describe(step.first);
        }
    }
    return pGraph == nullptr ? "" : findGraphFault(*pGraph, vRoots);
}

} // namespace testing_support
} // namespace QUOR_KELM25D
