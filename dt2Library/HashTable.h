// The hash table of the library, and the mixing of what it is searched by.
// Sets of records that stand side by side in a pool are in AddressSet.h; it finds its pages here.
//
// Open addressing with linear probing: a search begins at the slot that the upper bits of the hash value
// number, and ends at what is sought or at a free slot, which is where that belongs. While no more than half
// of the slots are taken it mostly reads one cache line. Records are plain and stand in the slots themselves,
// so nothing is allocated for one, and growth copies them. An erased record leaves no mark: those behind it
// that its slot had driven away move up, so that searches do not lengthen with the table's age (Knuth, The
// Art of Computer Programming 3, section 6.4, algorithm R).
//
// Mixing is multiplication by odd 64-bit constants: one to one, and the upper bits of a product depend on all
// bits of its factor, the lower ones only on those below. So a table takes the upper bits, and of two numbers
// the first product is folded onto its lower half before the second number joins it. One product will do for
// addresses: those of pooled records are multiples of a small number, and the golden ratio puts multiples far
// from each other.
#pragma once

#include "prefetch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace QUOR_KELM25D {

// --- mixing -----------------------------------------------------------------------------------------------

namespace detail {

constexpr std::uint64_t goldenRatio = 0x9e3779b97f4a7c15ULL; // its fraction, of 2^64
constexpr std::uint64_t secondFactor = 0xd6e8feb86659fd93ULL;

inline std::uint64_t foldAndMultiply(std::uint64_t h) noexcept {
    return (h ^ (h >> 32)) * secondFactor;
}

inline std::uint64_t hashOfTwo(std::uint64_t a, std::uint64_t b) noexcept {
    const std::uint64_t h = a * goldenRatio;
    return foldAndMultiply((h ^ (h >> 32) ^ b) * secondFactor);
}

inline std::uint64_t bitsOf(double v) noexcept {
    v += 0.0; // the two zeros are equal and must hash alike
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return bits;
}

} // namespace detail

inline std::uint64_t hashOfNumber(std::uint64_t number) noexcept {
    return number * detail::goldenRatio;
}
inline std::uint64_t hashOfNumbers(std::uint32_t a, std::uint32_t b) noexcept {
    return detail::foldAndMultiply((std::uint64_t(a) << 32 | b) * detail::goldenRatio);
}
inline std::uint64_t hashOfAddress(const void* p) noexcept {
    return hashOfNumber(reinterpret_cast<std::uintptr_t>(p));
}
/// Of an ordered pair: whoever wants both orders to be alike puts the lower address first.
inline std::uint64_t hashOfAddresses(const void* p0, const void* p1) noexcept {
    return detail::hashOfTwo(reinterpret_cast<std::uintptr_t>(p0), reinterpret_cast<std::uintptr_t>(p1));
}
inline std::uint64_t hashOfPlace(double x, double y) noexcept {
    return detail::hashOfTwo(detail::bitsOf(x), detail::bitsOf(y));
}

/// What the containers of the standard library want of a hash value: they may take the lower bits.
inline std::size_t standardHash(std::uint64_t hash) noexcept {
    return static_cast<std::size_t>(hash >> 32);
}

// --- the table --------------------------------------------------------------------------------------------

/// A table of plain records. A default-constructed Slot is free; isFree() tells so, and getHash() is the hash
/// value of one that is taken. References into the table are valid until a record is inserted or erased.
template <class Slot, std::size_t maxLoadPercent = 50>
class HashTable {
public:
    /// With room for that many records; if there are more it grows.
    explicit HashTable(std::size_t numExpected = 0) { grow(numExpected); }

    std::size_t size() const noexcept { return numTaken; }

    /// The slot whose record matches, or the free one where that belongs. matches(slot) is asked of records
    /// only, and must compare all: different records may share a hash value.
    template <class Matches>
    const Slot& find(std::uint64_t hash, const Matches& matches) const noexcept {
        return vSlots[findIndex(hash, matches)];
    }
    /// The same to be changed. Whoever wants to fill a free slot makes room before, and calls fill.
    template <class Matches>
    Slot& find(std::uint64_t hash, const Matches& matches) noexcept {
        return vSlots[findIndex(hash, matches)];
    }
    /// A hint that a record with this hash value will be sought soon.
    void prefetchSlot(std::uint64_t hash) const noexcept { prefetch(&vSlots[firstIndex(hash)]); }

    /// Makes room for so many more records.
    void reserve(std::size_t numMore) {
        if (numTaken + numMore > maxTaken) grow(numTaken + numMore);
    }
    /// Puts a record into the free slot that a search for it has found.
    void fill(Slot& slot, const Slot& record) noexcept {
        slot = record;
        ++numTaken;
    }
    /// Adds a record that is known to be new.
    void insert(const Slot& record) {
        reserve(1);
        fill(find(record.getHash(), isNone), record);
    }
    /// Takes the record in a slot out; those behind move up, so that no search meets a gap.
    void erase(Slot& slot) noexcept;

    /// Calls visit(record) for all, in no order that means anything.
    template <class Visit>
    void forEach(const Visit& visit) const {
        for (const Slot& slot : vSlots) {
            if (!slot.isFree()) visit(slot);
        }
    }

private:
    static constexpr int minBits = 4;

    static bool isNone(const Slot&) noexcept { return false; }
    std::size_t firstIndex(std::uint64_t hash) const noexcept {
        return static_cast<std::size_t>(hash >> shift);
    }
    std::size_t indexAfter(std::size_t i) const noexcept { return (i + 1) & (vSlots.size() - 1); }
    template <class Matches>
    std::size_t findIndex(std::uint64_t hash, const Matches& matches) const noexcept {
        std::size_t i = firstIndex(hash);
        while (!vSlots[i].isFree() && !matches(vSlots[i])) {
            i = indexAfter(i);
        }
        return i;
    }
    void grow(std::size_t numWanted);

    std::vector<Slot> vSlots; // a power of two
    int shift = 64;           // leaves the bits that number the slots
    std::size_t numTaken = 0;
    std::size_t maxTaken = 0; // before it grows
};

template <class Slot, std::size_t maxLoadPercent>
void HashTable<Slot, maxLoadPercent>::erase(Slot& slot) noexcept {
    auto hole = static_cast<std::size_t>(&slot - vSlots.data());
    const std::size_t mask = vSlots.size() - 1;
    for (std::size_t i = indexAfter(hole); !vSlots[i].isFree(); i = indexAfter(i)) {
        const std::size_t first = firstIndex(vSlots[i].getHash());
        if (((i - first) & mask) < ((i - hole) & mask)) continue; // its search begins behind the hole
        vSlots[hole] = vSlots[i];
        hole = i;
    }
    vSlots[hole] = Slot();
    --numTaken;
}

template <class Slot, std::size_t maxLoadPercent>
void HashTable<Slot, maxLoadPercent>::grow(std::size_t numWanted) {
    int bits = std::max(minBits, 64 - shift);
    while ((std::size_t(maxLoadPercent) << bits) < 100 * numWanted) {
        ++bits;
    }
    std::vector<Slot> vOld(std::size_t(1) << bits);
    vOld.swap(vSlots);
    shift = 64 - bits;
    maxTaken = (std::size_t(maxLoadPercent) << bits) / 100;
    for (const Slot& slot : vOld) {
        if (!slot.isFree()) find(slot.getHash(), isNone) = slot;
    }
}

} // namespace QUOR_KELM25D
