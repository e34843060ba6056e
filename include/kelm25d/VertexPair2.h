/// @file
/// An undirected pair of vertices, comparable by address.
/// It knows no triangle: the edge of a triangle is an Edge2.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/export.h>

#include <functional>

namespace QUOR_KELM25D {

/// Two vertices, the one with the lower address first, so that the order of the arguments does not matter.
///
/// The points stay with their owner and must outlive the pair. Order is valid within one run of the program
/// only. Everything is constant time; lengths need both points.
class KELM25D_API VertexPair2 {
public:
    /// Two null pointers.
    VertexPair2() noexcept : pVtx0(nullptr), pVtx1(nullptr) {}

    /// The pair of the two, in either order.
    VertexPair2(Point2* pA, Point2* pB) noexcept : pVtx0(pA), pVtx1(pB) {
        if (std::less<Point2*>()(pB, pA)) {
            pVtx0 = pB;
            pVtx1 = pA;
        }
    }

    /// The vertex with the lower address, null in an empty pair.
    Point2* getVertex0() const noexcept { return pVtx0; }
    /// The vertex with the higher address, null in an empty pair.
    Point2* getVertex1() const noexcept { return pVtx1; }

    /// The same two vertices; points that merely lie at the same place do not count.
    bool operator==(const VertexPair2& other) const noexcept {
        return pVtx0 == other.pVtx0 && pVtx1 == other.pVtx1;
    }

    /// Order by the lower, then by the higher address.
    bool operator<(const VertexPair2& other) const noexcept {
        if (pVtx0 != other.pVtx0) return std::less<Point2*>()(pVtx0, other.pVtx0);
        return std::less<Point2*>()(pVtx1, other.pVtx1);
    }

    /// The squared distance in the xy plane.
    double getSqLen2D() const noexcept {
        const double dx = pVtx0->x() - pVtx1->x();
        const double dy = pVtx0->y() - pVtx1->y();
        return dx * dx + dy * dy;
    }

    /// The squared distance in space. A result that is not a number is reported on the error stream and
    /// returned.
    double getSqLen25D() const;

private:
    Point2* pVtx0; // never the higher address
    Point2* pVtx1;
};

} // namespace QUOR_KELM25D
