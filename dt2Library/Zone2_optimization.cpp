// Flips of edges for the sake of the surface in space: valleys, ridges, and the diagonals of grids.
// What a zone is stands in Zone2.cpp, the flip itself in MeshInserter.cpp.
//
// A Delaunay triangulation does not look at heights: a valley that runs across the diagonals of its triangles
// becomes a saw-tooth. Two strategies turn diagonals here. They move no vertex, touch no constraint, and need
// no more than the two triangles at an edge and, the first one, their outer neighbours.
//
// slopeValleyRidgeOptimization sums up the angles between triangles that meet at the five edges of a
// quadrilateral and flips where that sum becomes smaller and no sliver appears. Only triangles that were
// changed are looked at again, and three passes have to do: sums with rounding prove no end.
//
// optimizeValleysAndRidges and unifyGrid visit the longest edge of each triangle, the longest first, and want
// quadrilaterals whose diagonals are interchangeable in the plane. They choose the diagonal that is shorter
// in space, or the one that rises to the right. A diagonal that was made is never turned back, so they end.
#include <kelm25d/Zone2.h>

#include "AddressSet.h"
#include "VertexPairHash.h"
#include "ZoneMgr.h"
#include "cornerIndex.h"
#include "measures.h"
#include "messages.h"
#include "prefetch.h"
#include "sqDistance25D.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <unordered_set>

namespace QUOR_KELM25D {

namespace {

/// An inner edge from b to c, the far corner a of its triangle on the left, and d of the one on the right.
struct Quadrilateral {
    explicit Quadrilateral(const Edge2& edge) {
        edge.getTriangles(pT, pN, i, j);
        a = pT->getCorner(i);
        edge.getPoints(b, c);
        d = pN->getCorner(j);
    }
    Triangle2 *pT, *pN;
    int i, j; // of the edge in both
    Point2 *a, *b, *c, *d;
};

/// In the plane; the direction of the line does not matter.
bool fallsToTheRight(const Point2* p, const Point2* q) {
    const double dx = q->x() - p->x(), dy = q->y() - p->y();
    return (dx > 0.0 && dy < 0.0) || (dx < 0.0 && dy > 0.0);
}

// --- by angles between triangles --------------------------------------------------------------------------

double angle(const Vector2& unit0, const Vector2& unit1) {
    return angleOfCosine(unit0 * unit1);
}

/// The cosine of the smallest angle of a triangle (p, q, r) from the unit vectors along its sides.
double maxInnerCosine25D(const Vector2& pq, const Vector2& pr, const Vector2& qr) {
    return std::max({pq * pr, -(pq * qr), pr * qr});
}

/// The unit normal of a triangle from the unit vectors from one corner to the next and to the one after that.
/// bOK is false for a triangle without area.
Vector2 getNormalVector(const Vector2& side0, const Vector2& side1, bool& bOK) {
    const Vector2 product = crossProduct(side0, side1);
    const double length = product.length();
    bOK = length != 0.0; // a length that is not a number passes, and is found in the sum of the angles
    return product / length;
}

/// Whether turning the diagonal b-c makes the surface better: smoother without slivers, or just as good with
/// more diagonals that run one way.
bool isWorthTurning(const Quadrilateral& quad) {
    const Vector2 ab = normalize(*quad.b - *quad.a), ac = normalize(*quad.c - *quad.a),
                  ad = normalize(*quad.d - *quad.a), bc = normalize(*quad.c - *quad.b),
                  bd = normalize(*quad.d - *quad.b), cd = normalize(*quad.d - *quad.c);
    const double minBefore =
        angleOfCosine(std::max(maxInnerCosine25D(ab, ac, bc), maxInnerCosine25D(-cd, -bd, -bc)));
    const double minAfter =
        angleOfCosine(std::max(maxInnerCosine25D(ab, ad, bd), maxInnerCosine25D(ad, ac, -cd)));
    const double minLoss = minBefore - minAfter;
    if (minLoss > 0.0 && minAfter < 1.0) return false;

    bool bOK1 = false, bOK2 = false;
    const Vector2 newNormal1 = getNormalVector(ad, ac, bOK1), newNormal2 = getNormalVector(ab, ad, bOK2);
    if (!bOK1 || !bOK2) return false;
    const Vector2 normal1 = quad.pT->getNormalVector(), normal2 = quad.pN->getNormalVector();
    const double centerBefore = angle(normal1, normal2), centerAfter = angle(newNormal1, newNormal2);
    double before = centerBefore, after = centerAfter;
    const auto addOuter = [&](const Triangle2* pOuter, const Vector2& oldNormal, const Vector2& newNormal) {
        if (pOuter == nullptr) return;
        const Vector2 outerNormal = pOuter->getNormalVector();
        before += angle(outerNormal, oldNormal);
        after += angle(outerNormal, newNormal);
    };
    // One new triangle for both neighbours on a side is deliberate, though each will have one of them.
    addOuter(quad.pT->getOppositeTriangle(next(quad.i)), normal1, newNormal1);
    addOuter(quad.pT->getOppositeTriangle(prev(quad.i)), normal1, newNormal1);
    addOuter(quad.pN->getOppositeTriangle(next(quad.j)), normal2, newNormal2);
    addOuter(quad.pN->getOppositeTriangle(prev(quad.j)), normal2, newNormal2);
    const double dihedralImprovement = before - after;

    const bool bDoIt = minAfter > 40.0 && dihedralImprovement > -5.0 && centerBefore - centerAfter >= -5.0 &&
                       fallsToTheRight(quad.b, quad.c);
    if (!bDoIt && dihedralImprovement <= 0.0) return false;
    KELM_CHECK(bDoIt || dihedralImprovement>0.0);
    return bDoIt || minLoss < 0.0 || (minAfter > 17.0 && dihedralImprovement > 2.0);
}

// --- by lengths of diagonals ------------------------------------------------------------------------------

/// Their difference relative to the larger one; not a number for two zeros and two infinities.
double relativeDifference(double length0, double length1) {
    return std::fabs(length0 - length1) / std::max(length0, length1);
}

double length2D(const Point2* p, const Point2* q) {
    const double dx = q->x() - p->x(), dy = q->y() - p->y();
    return std::sqrt(dx * dx + dy * dy);
}

/// The longest edge of each triangle, in the plane and as the mesh is now; the longest first, and equal ones
/// in the order of the triangles.
std::vector<Edge2> getLongestEdges(const std::vector<Triangle2*>& vTriangles) {
    struct Candidate {
        double sqLength;
        std::uint32_t position;
        int idx;
    };
    std::vector<Candidate> vCandidates;
    vCandidates.reserve(vTriangles.size());
    for (const Triangle2* pT : vTriangles) {
        const int idx = pT->getMaxIndex();
        vCandidates.push_back(
            {pT->getSquaredEdgeLength2D(idx), static_cast<std::uint32_t>(vCandidates.size()), idx});
    }
    std::sort(vCandidates.begin(), vCandidates.end(), [](const Candidate& a, const Candidate& b) {
        return a.sqLength != b.sqLength ? a.sqLength > b.sqLength : a.position < b.position;
    });
    std::vector<Edge2> vEdges;
    vEdges.reserve(vCandidates.size());
    for (const Candidate& candidate : vCandidates) {
        vEdges.emplace_back(vTriangles[candidate.position], candidate.idx);
    }
    return vEdges;
}

/// One run over the triangles of a zone that turns diagonals within it.
class DiagonalTurner {
public:
    DiagonalTurner(Mesh2& mesh_, const Zone2& zone, double planarTolerance_)
        : mesh(mesh_), planarTolerance(planarTolerance_) {
        zone.getTriangles(vTriangles);
        sZoneTriangles = TriangleSet(vTriangles);
    }

    /// Turns the diagonals of which isWanted(quadrilateral) says so, where that is possible. An edge that was
    /// chosen by its triangle and index is, after flips around, whatever edge has that index.
    template <class Wanted>
    void run(const Wanted& isWanted) {
        const std::vector<Edge2> vEdges = getLongestEdges(vTriangles);
        for (std::size_t k = 0; k < vEdges.size(); ++k) {
            prefetchAhead(vEdges, k);
            if (isOnHull(vEdges[k])) continue;
            const Quadrilateral quad(vEdges[k]);
            if (isWanted(quad) && canBeTurned(quad)) turn(quad);
        }
    }

private:
    static bool isOnHull(const Edge2& edge) {
        return edge.getTriangle()->getOppositeTriangle(edge.getIndex()) == nullptr;
    }
    /// Edges in the order of their lengths lie all over the memory.
    static void prefetchAhead(const std::vector<Edge2>& vEdges, std::size_t k) {
        constexpr std::size_t distance = 8;
        if (k + 3 * distance < vEdges.size()) prefetch(vEdges[k + 3 * distance].getTriangle());
        if (k + 2 * distance < vEdges.size()) {
            const Edge2& edge = vEdges[k + 2 * distance];
            prefetch(edge.getTriangle()->getOppositeTriangle(edge.getIndex()));
            prefetch(edge.getSrc());
            prefetch(edge.getTrg());
        }
        if (k + distance < vEdges.size() && !isOnHull(vEdges[k + distance])) {
            const Quadrilateral quad(vEdges[k + distance]);
            prefetch(quad.a);
            prefetch(quad.d);
        }
    }
    bool canBeTurned(const Quadrilateral& quad) {
        return sZoneTriangles.contains(quad.pN) && mesh.canBeFlipped(quad.pT, quad.i) &&
               isInterchangeable(quad) && sNewDiagonals.count(VertexPair2(quad.b, quad.c)) == 0;
    }
    /// Whether the diagonals are so in the plane. A tolerance that is not a number allows nothing.
    bool isInterchangeable(const Quadrilateral& quad) {
        if (planarTolerance <= 0.0)
            return mesh.getQuorTest().circleIncFiltered(quad.pT, quad.d) == InCircle::ON;
        return relativeDifference(length2D(quad.b, quad.c), length2D(quad.a, quad.d)) <= planarTolerance;
    }
    void turn(const Quadrilateral& quad) {
        sNewDiagonals.emplace(quad.a, quad.d);
        if (planarTolerance > 0.0) mesh.setNotDelaunay();
        Mesh2::flip(quad.pT, quad.i);
    }

    Mesh2& mesh;
    double planarTolerance;
    std::vector<Triangle2*> vTriangles;
    TriangleSet sZoneTriangles; // stays right: both triangles of every flip are elements
    std::unordered_set<VertexPair2, VertexPairHash> sNewDiagonals;
};

/// The rule for directions: only what is horizontal or rises to the right may stay.
bool runsTheWrongWay(const Quadrilateral& quad) {
    return quad.b->x() == quad.c->x() || fallsToTheRight(quad.b, quad.c);
}

} // namespace

void Zone2::slopeValleyRidgeOptimization() {
    if (pMgr->getMesh().isBroken("Zone2::slopeValleyRidgeOptimization()")) return;
    constexpr int maxNumPasses = 3;
    analyzeAngles();
    std::vector<Triangle2*> vWorkList, vChangedT;
    getTriangles(vWorkList);
    for (int pass = 0; pass < maxNumPasses; ++pass) {
        optimize(vWorkList, vChangedT);
        if (vChangedT.empty()) break;
        vWorkList.swap(vChangedT);
        vChangedT.clear();
    }
    analyzeAngles();
}

void Zone2::optimize(std::vector<Triangle2*>& vT, std::vector<Triangle2*>& vChangedT) {
    KELM_CHECK(vChangedT.empty());
    Mesh2& mesh = pMgr->getMesh();
    for (Triangle2* pT : vT) {
        const int longest = pT->getMaxIndex();
        for (int k = 0; k < 3; ++k) {
            const int i = (longest + k) % 3;
            if (!mesh.canBeFlipped(pT, i)) continue;
            const Quadrilateral quad(Edge2(pT, i));
            if (!isWorthTurning(quad)) continue;
            mesh.setNotDelaunay();
            Mesh2::flip(pT, i);
            vChangedT.push_back(pT);
            vChangedT.push_back(quad.pN);
            break;
        }
    }
    std::sort(vChangedT.begin(), vChangedT.end(), std::less<Triangle2*>());
    vChangedT.erase(std::unique(vChangedT.begin(), vChangedT.end()), vChangedT.end());
}

void Zone2::optimizeValleysAndRidges(double planarTolerance, double spatialThreshold) {
    if (pMgr->getMesh().isBroken("Zone2::optimizeValleysAndRidges()")) return;
    DiagonalTurner(pMgr->getMesh(), *this, planarTolerance).run([&](const Quadrilateral& quad) {
        const double present = std::sqrt(sqDistance25D(*quad.b, *quad.c));
        const double other = std::sqrt(sqDistance25D(*quad.a, *quad.d));
        // Lengths that can't be compared are taken for the same.
        if (relativeDifference(present, other) > spatialThreshold) return present > other;
        return runsTheWrongWay(quad);
    });
}

void Zone2::unifyGrid(double planarTolerance) {
    if (pMgr->getMesh().isBroken("Zone2::unifyGrid()")) return;
    DiagonalTurner(pMgr->getMesh(), *this, planarTolerance).run(runsTheWrongWay);
}

} // namespace QUOR_KELM25D
