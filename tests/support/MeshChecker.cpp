// Exact checks of a whole triangulation; see the header for the list.
// A floating point estimate with a generous bound spares the rationals in the clear cases.

#include "MeshChecker.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gmpxx.h>
#include <initializer_list>
#include <iterator>
#include <map>
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
    for (std::size_t i = 0; i + 1 < vVertices.size(); ++i) {
        if (*vVertices[i] == *vVertices[i + 1]) return "two waiting vertices at one place";
        if (exactOrientation(*vVertices.front(), *vVertices[i], *vVertices.back()) != 0)
            return "waiting vertices that are not collinear";
    }
    for (const Point2* pVtx : vVertices)
        if (pVtx->getIncidentTriangle() != nullptr) return "a waiting vertex with a triangle";
    return "";
}

std::string findVertexFault(const std::vector<Point2*>& vVertices, const Mesh& vTriangles) {
    std::unordered_set<const Triangle2*> sTriangles(vTriangles.begin(), vTriangles.end());
    std::unordered_set<const Point2*> sUsed;
    for (const Triangle2* pT : vTriangles)
        for (int i = 0; i < 3; ++i)
            sUsed.insert(pT->getCorner(i));
    if (sUsed.size() != vVertices.size()) return "vertices of the mesh and of the store differ in number";
    for (const Point2* pVtx : vVertices) {
        const Triangle2* pT = pVtx->getIncidentTriangle();
        if (sTriangles.count(pT) == 0 || !pT->hasVertex(pVtx)) return "a bad incident triangle";
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
    const Point2 *pStart = mHullNext.begin()->first, *pVtx = pStart;
    // Locally convex and once around: a closed polygon with no clockwise turn whose edge directions turn just
    // once is convex; the directions' turns are counted where the edges pass from below to above.
    int numTurns = 0;
    for (std::size_t i = 0; i < mHullNext.size(); ++i) {
        if (i > 0 && pVtx == pStart) return "a hull in several pieces";
        const auto itNext = mHullNext.find(pVtx);
        const auto itSecond = itNext == mHullNext.end() ? itNext : mHullNext.find(itNext->second);
        if (itSecond == mHullNext.end()) return "a hull that is not closed";
        const Point2 &a = *pVtx, &b = *itNext->second, &c = *itSecond->second;
        if (exactOrientation(a, b, c) < 0) return "a hull that is not convex";
        numTurns += b < a && b < c;
        pVtx = &b;
    }
    if (pVtx != pStart) return "a hull that does not close";
    if (numTurns != 1) return "a hull that winds more than once";
    return "";
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

std::string findSegmentFault(const Kelm_2D& dt, const Segments& vAll, const SegmentMap& mAll) {
    for (ConstraintSegment2* pSegment : vAll) {
        Point2 *p0 = pSegment->getSrc(), *p1 = pSegment->getTrg();
        if (!std::less<const Point2*>()(p0, p1)) return "ends out of order:" + describe(pSegment);
        if (pSegment->getNumberOfOwners() == 0) return "a segment without owner:" + describe(pSegment);
        if (isLookupWrong(dt, p0, p1, pSegment->isAlive() ? pSegment : nullptr))
            return "a wrong answer about a segment:" + describe(pSegment);
        if (pSegment->isAlive()) continue;
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

std::string findEdgeFault(const Kelm_2D& dt, const Segments& vAlive) {
    SegmentMap mMissing = mapByEnds(vAlive);
    for (const Triangle2* pT : allTriangles(dt))
        for (int i = 0; i < 3; ++i)
            mMissing.erase(pairOf(pT->getCorner(i), pT->getCorner(incIndexBy1(i))));
    return mMissing.empty() ? "" : "an alive segment that is no edge:" + describe(mMissing.begin()->second);
}

/// Appends all segments of the split tree below, in the order of the walk, a parent before its children. The
/// children have been checked before: the alive ones among these are a chain from end to end.
/// @return false if a segment is a piece of itself
bool walk(const Step& root, std::size_t numSegments, std::vector<Step>& vSteps) {
    std::vector<std::pair<Step, std::size_t>> vStack{{root, 0}}; // with its depth in the tree
    while (!vStack.empty()) {
        const Step step = vStack.back().first;
        const std::size_t depth = vStack.back().second;
        vStack.pop_back();
        if (depth > numSegments) return false;
        vSteps.push_back(step);
        if (step.first->isAlive()) continue;
        const auto [kid0, kid1] = childrenOf(step);
        vStack.push_back({kid1, depth + 1});
        vStack.push_back({kid0, depth + 1});
    }
    return true;
}

/// What is wrong with a graph if it runs along its originals as the given steps do. Empty as well if it then
/// runs along one place in both directions, since there is no order to compare then.
std::string findOrderFault(const ConstraintGraph2& graph, const std::vector<Step>& vOriginals,
                           std::size_t numSegments) {
    std::vector<Step> vSteps;
    for (const Step& step : vOriginals)
        walk(step, numSegments, vSteps);
    std::unordered_map<ConstraintSegment2*, const Point2*> mStart;
    Segments vExpected, vOrdered;
    std::vector<const Point2*> vExpectedVertices;
    for (const Step& step : vSteps) {
        if (mStart.insert(step).first->second != step.second) return "";
        if (!step.first->isAlive()) continue;
        vExpected.push_back(step.first);
        vExpectedVertices.insert(vExpectedVertices.end(), {step.second, otherEnd(step)});
    }
    for (const Step& step : vSteps) {
        if (graph.isReverse(step.first) != (step.second == step.first->getTrg()))
            return "a wrong direction:" + describe(step.first);
        ConstraintSegment2 *pKid0 = nullptr, *pKid1 = nullptr;
        graph.getDirectChildren(step.first, pKid0, pKid1);
        if ((pKid0 == nullptr) != step.first->isAlive() ||
            (pKid0 != nullptr && pKid0->getSrc() != step.second && pKid0->getTrg() != step.second))
            return "children out of order:" + describe(step.first);
    }
    graph.getChildrenInOrder(vOrdered);
    if (vOrdered != vExpected) return "pieces out of order";
    std::vector<Point2*> vVertices;
    graph.getPolygonVertices(vVertices);
    if (!std::equal(vVertices.begin(), vVertices.end(), vExpectedVertices.begin(), vExpectedVertices.end()))
        return "polygon vertices out of order";
    return "";
}

/// vInput holds the graph's segments as they were given.
std::string findGraphFault(const ConstraintGraph2& graph, const std::vector<Step>& vInput,
                           std::size_t numSegments) {
    const auto sorted = [](Segments v) {
        std::sort(v.begin(), v.end());
        v.erase(std::unique(v.begin(), v.end()), v.end());
        return v;
    };
    Segments vOriginals, vGiven, vPieces, vExpected;
    graph.getOriginalConstraintSegments(vOriginals);
    std::vector<Step> vSteps;
    for (const Step& step : vInput) {
        vGiven.push_back(step.first);
        walk(step, numSegments, vSteps);
    }
    if (sorted(vOriginals) != sorted(vGiven)) return "a graph with other originals";
    for (const Step& step : vSteps) {
        if (!step.first->isAlive()) continue;
        vExpected.push_back(step.first);
        if (!graph.isConstraint(step.first) ||
            !graph.isConstraint(step.first->getTrg(), step.first->getSrc()))
            return "a piece that its graph does not know:" + describe(step.first);
    }
    graph.getChildConstraintSegments(vPieces);
    if (vPieces != sorted(vExpected)) return "a graph with other pieces";
    if (sorted(vGiven).size() != vGiven.size()) return ""; // some given twice, perhaps in both directions
    if (!graph.isPolygon() && vOriginals != vGiven) return "a graph with another order";

    // A graph runs as given, or like its segments if directions mean nothing, or around a polygon.
    const std::map<ConstraintSegment2*, const Point2*> mGiven(vInput.begin(), vInput.end());
    std::vector<Step> vPlain, vRing;
    for (ConstraintSegment2* pSegment : vOriginals)
        vPlain.push_back({pSegment, graph.isOriented() ? mGiven.at(pSegment) : pSegment->getSrc()});
    for (std::size_t i = 0; graph.isPolygon() && i < vOriginals.size(); ++i) {
        ConstraintSegment2 *pSegment = vOriginals[i], *pNext = vOriginals[(i + 1) % vOriginals.size()];
        const bool bBack = pSegment->getSrc() == pNext->getSrc() || pSegment->getSrc() == pNext->getTrg();
        vRing.push_back({pSegment, bBack ? pSegment->getTrg() : pSegment->getSrc()});
        const Point2* pEnd = otherEnd(vRing.back());
        if (pEnd != pNext->getSrc() && pEnd != pNext->getTrg()) return "a polygon that is no ring";
    }
    const std::string fault = findOrderFault(graph, vPlain, numSegments);
    return fault.empty() || !graph.isPolygon() ? fault : findOrderFault(graph, vRing, numSegments);
}

/// The sign of a determinant is safe: its rounding stays far below the bound, relative to the sum of its
/// terms' magnitudes, and neither overflow nor underflow has spoilt it.
bool isTrusted(double det, double permanent) {
    const double bound = permanent * 1e-13;
    return bound > 1e-200 && std::isfinite(bound) && std::fabs(det) > bound;
}

/// All coordinates are integers so small that the determinant is exact in doubles.
bool isExactInDoubles(std::initializer_list<const Point2*> v, double permanent) {
    const auto isInteger = [](double x) { return x == std::trunc(x) && std::fabs(x) < 0x1p50; };
    return permanent < 0x1p52 && std::all_of(v.begin(), v.end(), [&](const Point2* p) {
               return isInteger(p->x()) && isInteger(p->y());
           });
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
    const Point2* aCorner[3] = {&a, &b, &c};
    double det = 0.0, permanent = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double x = aCorner[i]->x() - d.x(), y = aCorner[i]->y() - d.y();
        const double x1 = aCorner[incIndexBy1(i)]->x() - d.x(), y1 = aCorner[incIndexBy1(i)]->y() - d.y();
        const double x2 = aCorner[incIndexBy2(i)]->x() - d.x(), y2 = aCorner[incIndexBy2(i)]->y() - d.y();
        det += (x * x + y * y) * (x1 * y2 - x2 * y1);
        permanent += (x * x + y * y) * (std::fabs(x1 * y2) + std::fabs(x2 * y1));
    }
    if (isTrusted(det, permanent) || isExactInDoubles({&a, &b, &c, &d}, permanent))
        return (det > 0) - (det < 0);
    mpq_class x[3], y[3], lift[3];
    for (int i = 0; i < 3; ++i) {
        x[i] = mpq_class(aCorner[i]->x()) - mpq_class(d.x());
        y[i] = mpq_class(aCorner[i]->y()) - mpq_class(d.y());
        lift[i] = x[i] * x[i] + y[i] * y[i];
    }
    mpq_class sum = 0;
    for (int i = 0; i < 3; ++i)
        sum += lift[i] * (x[incIndexBy1(i)] * y[incIndexBy2(i)] - x[incIndexBy2(i)] * y[incIndexBy1(i)]);
    return sgn(sum);
}

std::string findMeshFault(const Kelm_2D& dt, bool bEmptyCircles) {
    std::vector<Point2*> vVertices = allVertices(dt);
    const Mesh vTriangles = allTriangles(dt);
    if (vVertices.size() != dt.numberOfPoints()) return "numberOfPoints is wrong";
    if (vTriangles.size() != dt.numberOfTriangles()) return "numberOfTriangles is wrong";
    std::string fault = findConstraintVertexFault(dt, vVertices);
    if (!fault.empty()) return fault;
    if (!dt.is2D()) return findFaultBeforeTwoDimensional(dt, vVertices);
    fault = findVertexFault(vVertices, vTriangles);
    std::unordered_map<const Point2*, const Point2*> mHullNext;
    if (fault.empty()) fault = findTriangleFault(dt, vTriangles, bEmptyCircles, mHullNext);
    if (fault.empty()) fault = findHullFault(mHullNext);
    if (!fault.empty()) return fault;
    if (vTriangles.size() + mHullNext.size() + 2 != 2 * vVertices.size()) return "Euler's formula fails";
    return "";
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
    std::string fault = findSegmentFault(dt, vAll, mAll);
    if (fault.empty() && !bMayWait && dt.is2D()) fault = findEdgeFault(dt, vAlive);
    if (!fault.empty()) return fault;

    std::map<Point2, const Point2*> mPlaces;
    for (const Point2* pVtx : allVertices(dt))
        mPlaces[*pVtx] = pVtx;
    std::vector<Step> vInput, vSteps;
    for (const Segment2& segment : vSegments) {
        if (segment.getSrc() == segment.getTrg()) continue;
        const Point2 *pSrc = mPlaces[segment.getSrc()], *pTrg = mPlaces[segment.getTrg()];
        if (pSrc == nullptr || pTrg == nullptr) return "an end that is no vertex";
        ConstraintSegment2* pRoot = find(mAll, pairOf(pSrc, pTrg));
        if (pRoot == nullptr) return "a given segment that is no constraint";
        vSteps.clear();
        vInput.push_back({pRoot, pSrc});
        if (!walk(vInput.back(), vAll.size(), vSteps)) return "a segment that is a piece of itself";
        for (const Step& step : vSteps) {
            if (step.first->isAlive()) continue;
            if (!isNear(*childrenOf(step).second.second, *step.second, *otherEnd(step)))
                return "a split far from the segment:" + describe(step.first);
        }
    }
    return pGraph == nullptr ? "" : findGraphFault(*pGraph, vInput, vAll.size());
}

} // namespace testing_support
} // namespace QUOR_KELM25D
