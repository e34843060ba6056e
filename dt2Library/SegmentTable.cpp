// Searching and entering past the filter of SegmentTable.h, which nearly always answers inline there.
// Nothing is ever erased: segments live as long as their triangulation.

#include "SegmentTable.h"

#include <functional>
#include <utility>

namespace QUOR_KELM25D {

namespace {

/// A pair of vertices, the lower address first.
struct Pair {
    Pair(const Point2* a, const Point2* b) noexcept : p0(a), p1(b) {
        if (std::less<const Point2*>()(b, a)) std::swap(p0, p1);
    }
    std::uint64_t getHash() const noexcept { return hashOfAddresses(p0, p1); }
    template <class Slot>
    bool operator()(const Slot& slot) const noexcept {
        return slot.p0 == p0 && slot.p1 == p1;
    }

    const Point2 *p0, *p1;
};

} // namespace

/// The slot of a pair, or a free one.
const SegmentTable::Slot& SegmentTable::findInTable(const Point2* a, const Point2* b) const noexcept {
    const Pair pair(a, b);
    return table.find(pair.getHash(), pair);
}

void SegmentTable::insert(Point2* p0, Point2* p1, ConstraintSegment2* pSegment) {
    table.insert({p0, p1, pSegment, true});
    p0->constraintFilter |= bitOf(p1);
    p1->constraintFilter |= bitOf(p0);
}

void SegmentTable::setAlive(const Point2* a, const Point2* b, bool bAlive) noexcept {
    const Pair pair(a, b);
    table.find(pair.getHash(), pair).bAlive = bAlive;
}

} // namespace QUOR_KELM25D
