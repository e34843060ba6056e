// Different places in the plane, numbered in the order in which they are met first.
// Heights and custom indices are those of the first point at a place; vertices are made of them elsewhere.
//
// A hash table of the coordinates with linear probing. A long sequence is looked up in blocks: while one is
// compared, the memory that the next one will read is on its way.
#pragma once

#include "prefetch.h"

#include <kelm25d/Point2.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace QUOR_KELM25D {

class PlaceTable {
public:
    static constexpr std::uint32_t none = 0xffffffffU;

    /// Makes room for about that many places; if there are more it grows.
    explicit PlaceTable(std::size_t numExpected) {
        std::size_t numSlots = minSlots;
        while (numSlots < 2 * numExpected) {
            numSlots *= 2;
        }
        vSlots.resize(numSlots);
        vPlaces.reserve(numExpected);
    }

    /// By number: the first point at each place.
    const std::vector<Point2>& getPlaces() const noexcept { return vPlaces; }

    /// The number of a point's place, which is added if it is new. Coordinates must be numbers.
    std::uint32_t add(const Point2& p) {
        makeRoom(1);
        return addAt(hashOf(p), p);
    }
    /// The same for a sequence: its numbers are appended in its order.
    void add(const std::vector<Point2>& v, std::vector<std::uint32_t>& vNumbers);
    /// The number of a point's place; none if it is not here.
    std::uint32_t find(const Point2& p) const noexcept { return vSlots[findSlot(hashOf(p), p)].number; }

private:
    static constexpr std::size_t minSlots = 64;
    static constexpr std::size_t blockLength = 16;

    struct Slot {
        double x = 0.0, y = 0.0;
        std::uint32_t number = none;
    };

    static std::uint64_t bitsOf(double v) noexcept {
        v += 0.0; // the two zeros are equal and must hash alike
        std::uint64_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        return bits;
    }
    static std::size_t hashOf(const Point2& p) noexcept {
        std::uint64_t h = bitsOf(p.x()) * 0x9e3779b97f4a7c15ULL;
        h = (h ^ (h >> 32) ^ bitsOf(p.y())) * 0xd6e8feb86659fd93ULL;
        return static_cast<std::size_t>((h ^ (h >> 32)) * 0xd6e8feb86659fd93ULL >> 32);
    }
    std::size_t firstSlot(std::size_t hash) const noexcept { return hash & (vSlots.size() - 1); }
    /// The slot of a place, or the free one where it belongs.
    std::size_t findSlot(std::size_t hash, const Point2& p) const noexcept {
        std::size_t i = firstSlot(hash);
        while (vSlots[i].number != none && !(vSlots[i].x == p.x() && vSlots[i].y == p.y())) {
            i = (i + 1) & (vSlots.size() - 1);
        }
        return i;
    }
    std::uint32_t addAt(std::size_t hash, const Point2& p) {
        Slot& slot = vSlots[findSlot(hash, p)];
        if (slot.number == none) {
            slot = {p.x(), p.y(), static_cast<std::uint32_t>(vPlaces.size())};
            vPlaces.push_back(p);
        }
        return slot.number;
    }
    void makeRoom(std::size_t numMore) {
        if (2 * (vPlaces.size() + numMore) <= vSlots.size()) return;
        std::vector<Slot> vOld(2 * vSlots.size());
        vOld.swap(vSlots);
        for (const Slot& slot : vOld) {
            if (slot.number != none)
                vSlots[findSlot(hashOf(vPlaces[slot.number]), vPlaces[slot.number])] = slot;
        }
    }

    std::vector<Point2> vPlaces;
    std::vector<Slot> vSlots; // a power of two, at most half of them taken
};

inline void PlaceTable::add(const std::vector<Point2>& v, std::vector<std::uint32_t>& vNumbers) {
    std::size_t aHash[2 * blockLength] = {}; // of two blocks in turn
    const auto blockEnd = [&](std::size_t first) { return std::min(first + blockLength, v.size()); };
    const auto fetchBlock = [&](std::size_t first) {
        for (std::size_t i = first; i < blockEnd(first); ++i) {
            std::size_t& hash = aHash[i % (2 * blockLength)];
            hash = hashOf(v[i]);
            prefetch(&vSlots[firstSlot(hash)]);
        }
    };
    const std::size_t numBefore = vNumbers.size();
    vNumbers.resize(numBefore + v.size());
    fetchBlock(0);
    for (std::size_t first = 0; first < v.size(); first += blockLength) {
        makeRoom(blockLength);
        fetchBlock(first + blockLength);
        for (std::size_t i = first; i < blockEnd(first); ++i) {
            vNumbers[numBefore + i] = addAt(aHash[i % (2 * blockLength)], v[i]);
        }
    }
}

} // namespace QUOR_KELM25D
