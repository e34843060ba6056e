/// @file
/// The record of the mesh: three corners and three neighbours, and the measures of one triangle.
/// Walking around a vertex is done by TriangleAroundVertexIterator.h; an edge as a handle is Edge2.h.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/Vector2.h>
#include <kelm25d/export.h>

#include <iosfwd>
#include <utility>

namespace QUOR_KELM25D {

/// The next corner index counterclockwise: 0 to 1, 1 to 2, 2 to 0. Only for 0, 1 and 2.
inline int incIndexBy1(int i) noexcept {
    return i == 2 ? 0 : i + 1;
}

/// The previous corner index: 0 to 2, 1 to 0, 2 to 1. Only for 0, 1 and 2.
inline int incIndexBy2(int i) noexcept {
    return i == 0 ? 2 : i - 1;
}

/// One triangle of a triangulation.
///
/// The corners stand counterclockwise in the xy plane. Edge i is the edge opposite corner i; it runs from
/// corner incIndexBy1(i) to corner incIndexBy2(i) with the triangle on its left, and opposite triangle i is
/// the neighbour across it, null on the hull. Indices are always 0, 1 or 2 and are not checked.
///
/// Triangles and their corners belong to the triangulation that handed them out. The functions that write are
/// for the library's own use; called on a triangle of a triangulation they destroy it. Everything is constant
/// time; the measures need all three corners set. 2D means the xy plane, 25D all three coordinates.
class KELM25D_API Triangle2 {
public:
    /// A triangle without corners and neighbours: six null pointers.
    Triangle2() noexcept : aCorner{nullptr, nullptr, nullptr}, aOppTriangle{nullptr, nullptr, nullptr} {}

    /// Back to six null pointers; the former corners keep their incident triangle.
    void clearProperties() noexcept {
        for (int i = 0; i < 3; ++i) {
            aCorner[i] = nullptr;
            aOppTriangle[i] = nullptr;
        }
    }

    /// Corner i; null only in a triangle that is not in use.
    Point2* getCorner(int i) const noexcept { return aCorner[i]; }

    /// All three corners, in their order: `for (Point2* pCorner : pT->getCorners())`.
    Point2* const (&getCorners() const noexcept)[3] { return aCorner; }

    /// The neighbour across edge i, null on the hull.
    Triangle2* getOppositeTriangle(int i) const noexcept { return aOppTriangle[i]; }

    /// All three neighbours, in the order of the corners opposite them; null ones on the hull.
    Triangle2* const (&getOppositeTriangles() const noexcept)[3] { return aOppTriangle; }

    /// Writes corner slot i and nothing else: the vertex's incident triangle stays as it is.
    void setVertexPointer(int i, Point2* pVertex) noexcept { aCorner[i] = pVertex; }

    /// Writes neighbour slot i and nothing else: the neighbour's own slot stays as it is.
    void setOppTriangle(int i, Triangle2* pTriangle) noexcept { aOppTriangle[i] = pTriangle; }

    /// Sets the corners, makes this the incident triangle of each, and clears the neighbours.
    /// @param pA,pB,pC counterclockwise, not null
    void setProperties(Point2* pA, Point2* pB, Point2* pC) noexcept {
        setPropertiesAndOppT(pA, pB, pC, nullptr, nullptr, nullptr);
    }

    /// Sets corners and neighbours, and makes this the incident triangle of each corner.
    /// @param pA,pB,pC counterclockwise, not null
    /// @param pOppA,pOppB,pOppC the neighbours opposite pA, pB and pC, null on the hull
    void setPropertiesAndOppT(Point2* pA, Point2* pB, Point2* pC, Triangle2* pOppA, Triangle2* pOppB,
                              Triangle2* pOppC) noexcept {
        aCorner[0] = pA;
        aCorner[1] = pB;
        aCorner[2] = pC;
        aOppTriangle[0] = pOppA;
        aOppTriangle[1] = pOppB;
        aOppTriangle[2] = pOppC;
        pA->setIncidentTriangle(this);
        pB->setIncidentTriangle(this);
        pC->setIncidentTriangle(this);
    }

    /// The index of a corner. A vertex that is not a corner yields 0: ask hasVertex first where that matters.
    int getIntraTriangleIndex(const Point2* pVertex) const noexcept {
        return 2 * static_cast<int>(aCorner[2] == pVertex) + static_cast<int>(aCorner[1] == pVertex);
    }

    /// The slot of a neighbour. A triangle that is not a neighbour yields 0.
    int getIntraTriangleIndex(const Triangle2* pTriangle) const noexcept {
        return 2 * static_cast<int>(aOppTriangle[2] == pTriangle) +
               static_cast<int>(aOppTriangle[1] == pTriangle);
    }

    /// The index of the edge that joins two corners, in either direction.
    /// @return 0, 1 or 2; -1 if there is no such edge, after writing a line that begins with "BUG" and the
    /// two vertices (not null) and the triangle to standard output
    int getIntraTriangleIndex(const Point2* pA, const Point2* pB) const {
        for (int i = 0; i < 3; ++i) {
            const Point2* pNext = aCorner[incIndexBy1(i)];
            const Point2* pPrev = aCorner[incIndexBy2(i)];
            if ((pNext == pA && pPrev == pB) || (pNext == pB && pPrev == pA)) return i;
        }
        reportMissingEdge(pA, pB);
        return -1;
    }

    /// True if the vertex itself, and not just a point at its place, is a corner.
    bool hasVertex(const Point2* pVertex) const noexcept {
        return aCorner[0] == pVertex || aCorner[1] == pVertex || aCorner[2] == pVertex;
    }

    /// True if a corner has exactly the x, y and z of the point.
    bool hasVertex(const Point2& point) const noexcept {
        return aCorner[0]->samePoint(point) || aCorner[1]->samePoint(point) || aCorner[2]->samePoint(point);
    }

    /// True if the point lies on edge i, its ends included, in the xy plane. Exact; for one thread at a time.
    bool hasOnEdge(int i, const Point2& point) const;

    /// The mean of the corners in x, y and z.
    Point2 getBarycenter() const noexcept;

    /// The area in the xy plane, in squared units of the coordinates; 0.0 for a degenerate triangle. Heron's
    /// formula. An area that is not a number is reported on standard output and fails a check, which throws
    /// KelmException.
    double getArea2D() const;

    /// The area in space, the terrain surface of this triangle; otherwise as getArea2D.
    double getArea25D() const;

    /// The interior angle at corner i in the xy plane, in degrees, 0 to 180. 90 if the corner coincides with
    /// another one.
    double getInteriorAngle2D(int i) const noexcept;

    /// The interior angle at corner i in space; otherwise as getInteriorAngle2D.
    double getInteriorAngle25D(int i) const noexcept;

    /// The squared length of edge i in the xy plane.
    double getSquaredEdgeLength(int i) const noexcept {
        const Point2& a = *aCorner[incIndexBy1(i)];
        const Point2& b = *aCorner[incIndexBy2(i)];
        const double dx = a.x() - b.x();
        const double dy = a.y() - b.y();
        return dx * dx + dy * dy;
    }

    /// The same as getSquaredEdgeLength.
    double getSquaredEdgeLength2D(int i) const noexcept { return getSquaredEdgeLength(i); }

    /// The squared length of edge i in space. A result that is not a number is reported on the error stream
    /// and returned.
    double getSquaredEdgeLength25D(int i) const;

    /// The largest squared edge length in the xy plane.
    double getMaxSqEdgeLen2D() const noexcept { return getSquaredEdgeLength(getMaxIndex()); }

    /// The index of the longest edge in the xy plane; of equally long ones the lowest.
    int getMaxIndex() const noexcept;

    /// The index of the shortest edge in the xy plane; of equally short ones the lowest.
    int getMinIndex() const noexcept;

    /// The unit normal of the plane of the corners, pointing upwards for counterclockwise corners; the zero
    /// vector if the corners lie on one line in space.
    Vector2 getNormalVector() const noexcept;

    /// The circumcentre in the xy plane, and whether it may be relied on.
    ///
    /// The centre comes from the determinant formula in shifted coordinates or, where that is not accurate,
    /// from a bisection along the perpendicular bisector of the longest edge, which survives slivers. The
    /// flag says that the centre has the same distance from all corners within 1e-6 and that only the longest
    /// edge may have it on its outer side. The tolerance is absolute: it does not grow with the triangle.
    ///
    /// The height of the result is 0 from the formula and the mean height of the longest edge's ends from the
    /// bisection; its custom index is -1. For finite corners it never fails: without the flag use another
    /// point. For one thread at a time.
    std::pair<Point2, bool> getDual() const;

protected:
    /// Heron's area from three edge lengths: 0.0 if no triangle has them, a failed check if one is not a
    /// number.
    double computeArea(double l0, double l1, double l2) const;

    /// The circumcentre by determinants, with the corners shifted by (-ox, -oy) during the computation.
    /// @return false, and cc untouched, if the denominator is exactly 0
    bool getCC_strategy1(double ox, double oy, Point2& cc) const noexcept;

    /// The circumcentre by bisection along the perpendicular bisector of edge ici, which must be the longest.
    void getCC_strategy2(int ici, double ox, double oy, Point2& cc) const;

    /// A shift that centres the arithmetic: in x and in y the mean of the coordinates of smallest and of
    /// largest magnitude.
    void getCommonOffset(double& ox, double& oy) const noexcept;

    /// Whether cc is equally far from all corners within 1e-6 and not outside the two edges that meet at
    /// corner ici. False for a centre that is not finite.
    bool isAccurateCC(int ici, const Point2& cc) const;

private:
    void reportMissingEdge(const Point2* pA, const Point2* pB) const;

    Point2* aCorner[3];         // counterclockwise, all null or none
    Triangle2* aOppTriangle[3]; // [i] lies across the edge opposite corner i, null on the hull
};

static_assert(sizeof(Triangle2) == 6 * sizeof(void*), "a triangle is six pointers and no more");

/// Writes areas, orientation and, one line each, the corners with the addresses of the neighbours. All
/// corners must be set. For one thread at a time.
KELM25D_API std::ostream& operator<<(std::ostream& stream, const Triangle2& triangle);

} // namespace QUOR_KELM25D
