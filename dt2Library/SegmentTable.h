// All constraint segments by their ends: the question of every flip whether an edge is constrained.
// The segments themselves are made and owned by ConstraintMgr.
//
// Each vertex keeps a filter of 32 bits: one is set for every segment that ends there, chosen by the other
// end. A pair of vertices without segment mostly finds one of its two bits clear, and the flip that asks has
// just read both vertices, so the common negative answer costs no memory access. What is left goes to a hash
// table with linear probing of the pairs' full hash values.
#pragma once

#include <kelm25d/ConstraintSegment2.h>
#include <kelm25d/Triangle2.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace QUOR_KELM25D {

class SegmentTable {
public:
    std::size_t size() const noexcept { return numSegments; }

    /// Whether an alive segment joins the two vertices.
    bool isConstraintEdge(const Point2* a, const Point2* b) const noexcept {
        return findAlive(a, b) != nullptr;
    }
    bool isConstraintEdge(const Triangle2* pT, int i) const noexcept {
        return isConstraintEdge(pT->getCorner(incIndexBy1(i)), pT->getCorner(incIndexBy2(i)));
    }
    /// The alive segment that edge i of the triangle is, or null.
    ConstraintSegment2* getSegment(const Triangle2* pT, int i) const noexcept {
        return findAlive(pT->getCorner(incIndexBy1(i)), pT->getCorner(incIndexBy2(i)));
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
    void reserve(std::size_t numMore);
    /// Adds a segment whose pair is not present.
    void insert(ConstraintSegment2* pSegment);

private:
    struct Slot {
        std::uint64_t hash;
        ConstraintSegment2* pSegment; // null: free
    };

    /// The bit that stands for a vertex in the filters of others.
    static unsigned bitOf(const Point2* pVtx) noexcept {
        return 1U << (reinterpret_cast<std::uintptr_t>(pVtx) * 0x9e3779b97f4a7c15ULL >> 59);
    }
    static bool mayBeSegment(const Point2* a, const Point2* b) noexcept {
        return (a->constraintFilter & bitOf(b)) != 0 && (b->constraintFilter & bitOf(a)) != 0;
    }
    ConstraintSegment2* findInTable(const Point2* a, const Point2* b) const noexcept;
    static std::uint64_t hashOf(const Point2* p0, const Point2* p1) noexcept;
    std::size_t firstSlot(std::uint64_t hash) const noexcept {
        return static_cast<std::size_t>(hash >> shift);
    }
    void place(const Slot& slot) noexcept;
    void growTo(int bits);

    std::vector<Slot> vSlots; // a power of two, at most two thirds of them taken
    int shift = 64;           // leaves the bits that number the slots
    std::size_t numSegments = 0;
};

} // namespace QUOR_KELM25D
