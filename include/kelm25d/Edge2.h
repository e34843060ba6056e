/// @file
/// A directed edge of a triangulation, as a triangle and the index of the opposite corner.
/// For the pair of end points without a side see VertexPair2.h.
#pragma once

#include <kelm25d/Triangle2.h>
#include <kelm25d/export.h>

#include <functional>

namespace QUOR_KELM25D {

/// The edge of a triangle opposite one of its corners, directed so that the triangle lies on its left.
///
/// A handle, not a pair of points: an inner edge of a triangulation has two, one from each side, and they
/// differ. The triangle belongs to the triangulation, and the handle is good until the triangle changes.
/// Everything is constant time. What reads ends or neighbours needs a triangle.
class KELM25D_API Edge2 {
public:
    /// No edge: null and -1.
    Edge2() noexcept : pT(nullptr), oppIdx(-1) {}

    /// The edge of pTriangle opposite its corner oppositeIndex, which is 0, 1 or 2.
    Edge2(Triangle2* pTriangle, int oppositeIndex) noexcept : pT(pTriangle), oppIdx(oppositeIndex) {}

    /// The triangle on the left, null for no edge.
    Triangle2* getTriangle() const noexcept { return pT; }

    /// The index of the corner opposite this edge, -1 for no edge.
    int getIndex() const noexcept { return oppIdx; }

    /// The vertex at which the edge begins.
    Point2* getSrc() const noexcept { return pT->getCorner(incIndexBy1(oppIdx)); }

    /// The vertex at which the edge ends.
    Point2* getTrg() const noexcept { return pT->getCorner(incIndexBy2(oppIdx)); }

    /// Both ends in one call.
    void getPoints(Point2*& pSrc, Point2*& pTrg) const noexcept {
        pSrc = getSrc();
        pTrg = getTrg();
    }

    /// The triangles on both sides and the edge's index in each.
    /// @param pT0,i0 get the triangle on the left and this edge's index
    /// @param pT1,i1 get the triangle on the right and the index there, null and -1 on the hull
    void getTriangles(Triangle2*& pT0, Triangle2*& pT1, int& i0, int& i1) const noexcept {
        pT0 = pT;
        i0 = oppIdx;
        pT1 = pT->getOppositeTriangle(oppIdx);
        i1 = pT1 ? pT1->getIntraTriangleIndex(pT) : -1;
    }

    /// The same triangle and the same index; the handle from the other side is a different one.
    bool operator==(const Edge2& other) const noexcept { return pT == other.pT && oppIdx == other.oppIdx; }
    /// The negation of operator==.
    bool operator!=(const Edge2& other) const noexcept { return !(*this == other); }

    /// Order by the triangle's address, then by index; valid within one run of the program.
    bool operator<(const Edge2& other) const noexcept {
        if (pT != other.pT) return std::less<Triangle2*>()(pT, other.pT);
        return oppIdx < other.oppIdx;
    }

    /// The squared length in the xy plane: 9 for an edge of length 3. The name is deliberate, callers compare
    /// squares.
    double getLength2D() const noexcept { return pT->getSquaredEdgeLength2D(oppIdx); }

    /// The squared length in space, the name again deliberate. A result that is not a number is reported on
    /// the error stream and returned.
    double getLength25D() const { return pT->getSquaredEdgeLength25D(oppIdx); }

private:
    Triangle2* pT;
    int oppIdx;
};

} // namespace QUOR_KELM25D
