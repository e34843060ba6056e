/// @file
/// Visits the triangles around a vertex, in either direction.
/// It reads the mesh only; while it is in use the mesh must not change.
#pragma once

#include <kelm25d/Triangle2.h>
#include <kelm25d/export.h>

namespace QUOR_KELM25D {

/// An iterator over the fan of triangles around one vertex.
///
/// Around an inner vertex it goes round and round. Around a vertex on the hull the cycle has one stop more: a
/// null pointer after the last triangle of the fan, and then the triangle at the far end. So a full cycle
/// yields every triangle once, and a caller that sees null knows that the vertex is on the hull.
///
/// The vertex and the triangles belong to the triangulation. Every step is constant time except the one away
/// from the null stop, which is linear in the triangles of the vertex.
class KELM25D_API TriangleAroundVertexIterator {
public:
    /// Starts at the vertex's incident triangle. A vertex without one, such as a copy of a vertex, throws
    /// KelmException.
    /// @param pVertex not null
    explicit TriangleAroundVertexIterator(const Point2* pVertex);

    /// Starts at the given triangle, which must have the vertex as a corner.
    TriangleAroundVertexIterator(Point2* pVertex, Triangle2* pTriangle) noexcept
        : pVtx(pVertex), pTr(pTriangle), pPreTr(nullptr) {}

    /// Takes vertex and current triangle, but not where the other came from: a copy made at the null stop
    /// goes on from the vertex's incident triangle.
    TriangleAroundVertexIterator(const TriangleAroundVertexIterator& other) noexcept
        : pVtx(other.pVtx), pTr(other.pTr), pPreTr(nullptr) {}

    /// The same as copying.
    TriangleAroundVertexIterator& operator=(const TriangleAroundVertexIterator& other) noexcept {
        pVtx = other.pVtx;
        pTr = other.pTr;
        pPreTr = nullptr;
        return *this;
    }

    ~TriangleAroundVertexIterator() = default;

    /// One step counterclockwise.
    TriangleAroundVertexIterator& operator++() noexcept {
        if (pTr)
            stepCCW();
        else
            loop();
        return *this;
    }

    /// One step clockwise.
    TriangleAroundVertexIterator& operator--() noexcept {
        if (pTr)
            stepCW();
        else
            loop();
        return *this;
    }

    /// The current triangle, null at the stop on the hull.
    Triangle2* operator*() const noexcept { return pTr; }

    /// The same vertex and the same triangle.
    bool operator==(const TriangleAroundVertexIterator& other) const noexcept {
        return pVtx == other.pVtx && pTr == other.pTr;
    }
    /// The negation of operator==.
    bool operator!=(const TriangleAroundVertexIterator& other) const noexcept { return !(*this == other); }

    /// What operator++ would lead to, null included, without moving.
    Triangle2* previewNextTriangle() const noexcept;

    /// What operator-- would lead to, null included, without moving.
    Triangle2* previewPrevTriangle() const noexcept;

private:
    void stepCCW() noexcept {
        pPreTr = pTr;
        pTr = pTr->getOppositeTriangle(incIndexBy1(pTr->getIntraTriangleIndex(pVtx)));
    }

    void stepCW() noexcept {
        pPreTr = pTr;
        pTr = pTr->getOppositeTriangle(incIndexBy2(pTr->getIntraTriangleIndex(pVtx)));
    }

    void loop() noexcept;

    Point2* pVtx;
    Triangle2* pTr;    // null at the stop on the hull
    Triangle2* pPreTr; // the triangle before the last step, null before the first one
};

} // namespace QUOR_KELM25D
