// The hash table behind SegmentTable.h; the tests that answer nearly always are inline there.
// Nothing is ever erased: segments live as long as their triangulation.

#include "SegmentTable.h"

#include <utility>

namespace QUOR_KELM25D {

namespace {

constexpr int initialBits = 6;

} // namespace

/// Of the pair with the lower address first. Products of odd 64-bit constants: addresses of pooled records
/// are multiples of a small number, and the upper bits depend on all of theirs.
std::uint64_t SegmentTable::hashOf(const Point2* p0, const Point2* p1) noexcept {
    std::uint64_t h = reinterpret_cast<std::uintptr_t>(p0) * 0x9e3779b97f4a7c15ULL;
    h = (h ^ (h >> 32) ^ reinterpret_cast<std::uintptr_t>(p1)) * 0xd6e8feb86659fd93ULL;
    return (h ^ (h >> 32)) * 0xd6e8feb86659fd93ULL;
}

ConstraintSegment2* SegmentTable::findInTable(const Point2* a, const Point2* b) const noexcept {
    if (std::less<const Point2*>()(b, a)) std::swap(a, b);
    const std::uint64_t hash = hashOf(a, b);
    for (std::size_t i = firstSlot(hash); vSlots[i].pSegment != nullptr; i = (i + 1) & (vSlots.size() - 1)) {
        ConstraintSegment2* pSegment = vSlots[i].pSegment;
        if (vSlots[i].hash == hash && pSegment->p0 == a && pSegment->p1 == b) return pSegment;
    }
    return nullptr;
}

void SegmentTable::place(const Slot& slot) noexcept {
    std::size_t i = firstSlot(slot.hash);
    while (vSlots[i].pSegment != nullptr)
        i = (i + 1) & (vSlots.size() - 1);
    vSlots[i] = slot;
}

void SegmentTable::growTo(int bits) {
    shift = 64 - bits;
    std::vector<Slot> vOld(std::size_t(1) << (64 - shift), Slot{0, nullptr});
    vOld.swap(vSlots);
    for (const Slot& slot : vOld) {
        if (slot.pSegment != nullptr) place(slot);
    }
}

void SegmentTable::reserve(std::size_t numMore) {
    int bits = vSlots.empty() ? initialBits : 64 - shift;
    while (3 * (numSegments + numMore) > (std::size_t(2) << bits)) {
        ++bits;
    }
    if ((std::size_t(1) << bits) > vSlots.size()) growTo(bits);
}

void SegmentTable::insert(ConstraintSegment2* pSegment) {
    reserve(1);
    place({hashOf(pSegment->p0, pSegment->p1), pSegment});
    pSegment->p0->constraintFilter |= bitOf(pSegment->p1);
    pSegment->p1->constraintFilter |= bitOf(pSegment->p0);
    ++numSegments;
}

} // namespace QUOR_KELM25D
