// Searching and entering past the filter of SegmentTable.h, which nearly always answers inline there.
// Nothing is ever erased: segments live as long as their triangulation.

#include "SegmentTable.h"

#include <functional>
#include <utility>

namespace QUOR_KELM25D {

ConstraintSegment2* SegmentTable::findInTable(const Point2* a, const Point2* b) const noexcept {
    if (std::less<const Point2*>()(b, a)) std::swap(a, b);
    const std::uint64_t hash = hashOfAddresses(a, b);
    const auto isIt = [=](const Slot& slot) {
        return slot.hash == hash && slot.pSegment->p0 == a && slot.pSegment->p1 == b;
    };
    return table.find(hash, isIt).pSegment;
}

void SegmentTable::insert(ConstraintSegment2* pSegment) {
    table.insert({hashOfAddresses(pSegment->p0, pSegment->p1), pSegment});
    pSegment->p0->constraintFilter |= bitOf(pSegment->p1);
    pSegment->p1->constraintFilter |= bitOf(pSegment->p0);
}

} // namespace QUOR_KELM25D
