// Different places in the plane, numbered in the order in which they are met first.
// Heights and custom indices are those of the first point at a place; vertices are made of them elsewhere.
//
// A hash table of the coordinates. A long sequence is looked up in blocks: while one is compared, the memory
// that the next one will read is on its way.
#pragma once

#include "HashTable.h"

#include <kelm25d/Point2.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace QUOR_KELM25D {

class PlaceTable {
public:
    static constexpr std::uint32_t none = 0xffffffffU;

    /// Makes room for about that many places; if there are more it grows.
    explicit PlaceTable(std::size_t numExpected) : table(numExpected) { vPlaces.reserve(numExpected); }

    /// By number: the first point at each place.
    const std::vector<Point2>& getPlaces() const noexcept { return vPlaces; }

    /// The number of a point's place, which is added if it is new. Coordinates must be numbers.
    std::uint32_t add(const Point2& p) {
        table.reserve(1);
        return addAt(hashOf(p), p);
    }
    /// The same for a sequence: its numbers are appended in its order.
    void add(const std::vector<Point2>& v, std::vector<std::uint32_t>& vNumbers);
    /// The number of a point's place; none if it is not here.
    std::uint32_t find(const Point2& p) const noexcept { return table.find(hashOf(p), IsAt{p}).number; }

private:
    static constexpr std::size_t blockLength = 16;

    struct Slot {
        double x = 0.0, y = 0.0;
        std::uint32_t number = none;
        bool isFree() const noexcept { return number == none; }
        std::uint64_t getHash() const noexcept { return hashOfPlace(x, y); }
    };
    struct IsAt {
        const Point2& p;
        bool operator()(const Slot& slot) const noexcept { return slot.x == p.x() && slot.y == p.y(); }
    };

    static std::uint64_t hashOf(const Point2& p) noexcept { return hashOfPlace(p.x(), p.y()); }
    /// Only where there is room for one more.
    std::uint32_t addAt(std::uint64_t hash, const Point2& p) {
        Slot& slot = table.find(hash, IsAt{p});
        if (slot.isFree()) {
            table.fill(slot, {p.x(), p.y(), static_cast<std::uint32_t>(vPlaces.size())});
            vPlaces.push_back(p);
        }
        return slot.number;
    }

    std::vector<Point2> vPlaces;
    HashTable<Slot> table;
};

inline void PlaceTable::add(const std::vector<Point2>& v, std::vector<std::uint32_t>& vNumbers) {
    std::uint64_t aHash[2 * blockLength] = {}; // of two blocks in turn
    const auto blockEnd = [&](std::size_t first) { return std::min(first + blockLength, v.size()); };
    const auto fetchBlock = [&](std::size_t first) {
        for (std::size_t i = first; i < blockEnd(first); ++i) {
            std::uint64_t& hash = aHash[i % (2 * blockLength)];
            hash = hashOf(v[i]);
            table.prefetchSlot(hash);
        }
    };
    const std::size_t numBefore = vNumbers.size();
    vNumbers.resize(numBefore + v.size());
    fetchBlock(0);
    for (std::size_t first = 0; first < v.size(); first += blockLength) {
        table.reserve(blockLength);
        fetchBlock(first + blockLength);
        for (std::size_t i = first; i < blockEnd(first); ++i) {
            vNumbers[numBefore + i] = addAt(aHash[i % (2 * blockLength)], v[i]);
        }
    }
}

} // namespace QUOR_KELM25D
