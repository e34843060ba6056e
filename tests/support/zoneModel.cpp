// The rules of zones by connected parts and ordered sets, and the comparison.
// The mesh itself is checked by MeshChecker.
#include "zoneModel.h"

#include "Dt2.h"
#include "MeshChecker.h"

#include <kelm25d/ConstraintSegment2.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace QUOR_KELM25D {
namespace testing_support {

namespace {

using Sides = std::set<std::pair<const Point2*, const Point2*>>;

/// The directed edges that a graph runs along; inside only those that it runs along once.
Sides findSides(const ConstraintGraph2& graph, bool bInside) {
    std::vector<Point2*> vEnds;
    graph.getPolygonVertices(vEnds);
    std::map<VertexPair2, int> mCount;
    for (std::size_t i = 0; i < vEnds.size(); i += 2)
        ++mCount[VertexPair2(vEnds[i], vEnds[i + 1])];
    Sides sSides;
    for (std::size_t i = 0; i < vEnds.size(); i += 2) {
        if (!bInside) sSides.emplace(vEnds[i + 1], vEnds[i]);
        if (bInside && mCount[VertexPair2(vEnds[i], vEnds[i + 1])] == 1)
            sSides.emplace(vEnds[i], vEnds[i + 1]);
    }
    return sSides;
}

} // namespace

std::vector<Segment2> ringOf(const std::vector<Point2>& vCorners) {
    std::vector<Segment2> vRing;
    for (std::size_t i = 0; i < vCorners.size(); ++i)
        vRing.emplace_back(vCorners[i], vCorners[(i + 1) % vCorners.size()]);
    return vRing;
}

Triangles trianglesOf(const Zone2& zone) {
    Triangles v;
    zone.getTriangles(v);
    return v;
}

std::set<Edge2> borderOf(const Triangles& vTriangles) {
    const std::set<Triangle2*> s(vTriangles.begin(), vTriangles.end());
    std::set<Edge2> sBorder;
    for (Triangle2* pT : s)
        for (int i = 0; i < 3; ++i)
            if (s.count(pT->getOppositeTriangle(i)) == 0) sBorder.emplace(pT, i);
    return sBorder;
}

std::map<Triangle2*, std::size_t> partsOf(const Triangles& vTriangles,
                                          const std::set<VertexPair2>& sBlocked) {
    const std::set<Triangle2*> s(vTriangles.begin(), vTriangles.end());
    std::map<Triangle2*, std::size_t> mPart;
    std::size_t numParts = 0;
    for (Triangle2* pSeed : s) {
        if (mPart.count(pSeed) != 0) continue;
        for (Triangles vStack = {pSeed}; !vStack.empty();) {
            Triangle2* pT = vStack.back();
            vStack.pop_back();
            if (!mPart.emplace(pT, numParts).second) continue;
            for (int i = 0; i < 3; ++i) {
                const Edge2 edge(pT, i);
                Triangle2* pN = pT->getOppositeTriangle(i);
                if (s.count(pN) != 0 && sBlocked.count(VertexPair2(edge.getSrc(), edge.getTrg())) == 0)
                    vStack.push_back(pN);
            }
        }
        ++numParts;
    }
    return mPart;
}

TriangleMultiset ZoneModel::getTriangles(Kelm_2D& dt) const {
    TriangleMultiset s;
    if (pOperand0 != nullptr) {
        const TriangleMultiset a = pOperand0->getTriangles(dt), b = pOperand1->getTriangles(dt);
        const auto out = std::inserter(s, s.end());
        if (location == ZL_RESULT_UNION)
            std::set_union(a.begin(), a.end(), b.begin(), b.end(), out);
        else if (location == ZL_RESULT_INTERSECTION)
            std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), out);
        else if (location == ZL_RESULT_DIFFERENCE)
            std::set_difference(a.begin(), a.end(), b.begin(), b.end(), out);
        else
            std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(), out);
        return s;
    }
    std::set<VertexPair2> sBlocked;
    for (const ConstraintGraph2* pGraph : vGraphs) {
        std::vector<ConstraintSegment2*> vPieces;
        if (pGraph != nullptr) pGraph->getChildConstraintSegments(vPieces);
        for (const ConstraintSegment2* pPiece : vPieces)
            sBlocked.emplace(pPiece->getSrc(), pPiece->getTrg());
    }
    const auto mPart = partsOf(allTriangles(dt), sBlocked);
    std::multiset<std::size_t> sChosen;
    for (const Point2& startPoint : vStartPoints)
        if (Triangle2* pT = dt.getImpl()->getMesh().locateUniquely(startPoint)) sChosen.insert(mPart.at(pT));
    if (location != ZL_GROW) {
        Sides sSides;
        for (const ConstraintGraph2* pGraph : vGraphs)
            if (pGraph != nullptr) sSides.merge(findSides(*pGraph, location != ZL_OUTSIDE));
        std::set<std::size_t> sTouched;
        for (const auto& entry : mPart)
            for (int i = 0; i < 3; ++i) {
                const Edge2 edge(entry.first, i);
                if (location == ZL_GLOBAL || sSides.count({edge.getSrc(), edge.getTrg()}) != 0)
                    sTouched.insert(entry.second);
            }
        sChosen.insert(sTouched.begin(), sTouched.end());
    }
    for (const auto& entry : mPart)
        for (std::size_t n = sChosen.count(entry.second); n > 0; --n)
            s.insert(entry.first);
    return s;
}

std::string findZoneFault(Kelm_2D& dt, const ZoneModel& model) {
    if (!dt.is2D()) return "";
    const Triangles v = trianglesOf(*model.pZone);
    if (TriangleMultiset(v.begin(), v.end()) != model.getTriangles(dt))
        return "other triangles in a zone of location " + std::to_string(model.location);
    if (model.location != ZL_GROW && !std::is_sorted(v.begin(), v.end())) return "not by address";
    std::set<Point2*> sCorners;
    double area = 0.0;
    for (const Triangle2* pT : v) {
        for (int i = 0; i < 3; ++i)
            sCorners.insert(pT->getCorner(i));
        area += pT->getArea2D();
    }
    std::vector<Point2*> vVertices;
    model.pZone->getVertices(vVertices);
    if (vVertices != std::vector<Point2*>(sCorners.begin(), sCorners.end())) return "wrong vertices";
    if (model.pZone->getArea2D() != area) return "wrong area";
    std::vector<Edge2> vBorder, vBoundary;
    model.pZone->getBorderEdges(vBorder);
    model.pZone->getBoundaryEdges(vBoundary);
    const std::set<Edge2> sBorder = borderOf(v);
    if (vBorder != std::vector<Edge2>(sBorder.begin(), sBorder.end())) return "wrong border";
    std::sort(vBoundary.begin(), vBoundary.end());
    return vBoundary == vBorder ? "" : "border and boundary differ";
}

} // namespace testing_support
} // namespace QUOR_KELM25D
