// All constraint segments by their ends: the question of every flip whether an edge is constrained.
// The segments themselves are made and owned by ConstraintMgr.
//
// Each vertex keeps a filter of 32 bits: one is set for every segment that ends there, chosen by the other
// end. A pair of vertices without segment mostly finds one of its two bits clear, and the flip that asks has
// just read both vertices, so the common negative answer costs no memory access. What is left goes to a hash
// table that keeps the pairs' full hash values, so that a search reads no segment but the one that is found.
#pragma once

#include "HashTable.h"
#include "cornerIndex.h"

#include <kelm25d/ConstraintSegment2.h>
#include <kelm25d/Triangle2.h>

#include <cstddef>
#include <cstdint>

namespace QUOR_KELM25D {

class SegmentTable {
public:
    std::size_t size() const noexcept { return table.size(); }

    /// Whether an alive segment joins the two vertices.
    bool isConstraintEdge(const Point2* a, const Point2* b) const noexcept {
        return findAlive(a, b) != nullptr;
    }
    bool isConstraintEdge(const Triangle2* pT, int i) const noexcept {
        return isConstraintEdge(pT->getCorner(next(i)), pT->getCorner(prev(i)));
    }
    /// The alive segment that edge i of the triangle is, or null.
    ConstraintSegment2* getSegment(const Triangle2* pT, int i) const noexcept {
        return findAlive(pT->getCorner(next(i)), pT->getCorner(prev(i)));
    }

    /// Whether any segment, alive or dead, ends at the vertex.
    static bool isConstraintVertex(const Point2* pVtx) noexcept { return pVtx->constraintFilter != 0; }

    /// The segment between two vertices in either order, alive or dead, or null.
    ConstraintSegment2* find(const Point2* a, const Point2* b) const noexcept {
        return mayBeSegment(a, b) ? findInTable(a, b) : nullptr;
    }
    /// The same if it is alive, else null.
    ConstraintSegment2* findAlive(const Point2* a, const Point2* b) const noexcept {
        ConstraintSegment2* pSegment = find(a, b);
        return pSegment != nullptr && pSegment->isAlive() ? pSegment : nullptr;
    }
    /// Makes room for so many more segments.
    void reserve(std::size_t numMore) { table.reserve(numMore); }
    /// Adds a segment whose pair is not present.
    void insert(ConstraintSegment2* pSegment);

private:
    struct Slot {
        std::uint64_t hash = 0;
        ConstraintSegment2* pSegment = nullptr;
        bool isFree() const noexcept { return pSegment == nullptr; }
        std::uint64_t getHash() const noexcept { return hash; }
    };
    static constexpr std::size_t maxLoadPercent = 66; // only few searches come past the filter

    /// The bit that stands for a vertex in the filters of others.
    static unsigned bitOf(const Point2* pVtx) noexcept { return 1U << (hashOfAddress(pVtx) >> 59); }
    static bool mayBeSegment(const Point2* a, const Point2* b) noexcept {
        return (a->constraintFilter & bitOf(b)) != 0 && (b->constraintFilter & bitOf(a)) != 0;
    }
    ConstraintSegment2* findInTable(const Point2* a, const Point2* b) const noexcept;

    HashTable<Slot, maxLoadPercent> table;
};

} // namespace QUOR_KELM25D
