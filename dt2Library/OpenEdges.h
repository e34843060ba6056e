// The edges of a mesh under construction that have a triangle on their left and none on their right yet.
// Vertices and triangles appear by number only; who makes two triangles neighbours is Dt2_import.cpp.
//
// Many triangles at once are sorted by the lower vertex of each edge: two passes over memory, where searches
// for one edge after the other would miss the cache each time. What is open then is few, and stands in a hash
// table with linear probing for triangles that come one by one. Both directions of an edge hash alike, so
// that one search finds the edge that a new one closes, the one it repeats, or the place to enter it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class OpenEdges {
public:
    static constexpr std::uint32_t none = 0xffffffffU;
    static constexpr std::size_t maxTriangles = std::size_t(1) << 29;

    /// A directed edge between two vertices, which are different.
    struct Edge {
        std::uint32_t source, target;
        std::uint32_t id = none; // of the triangle on the left, and the edge's index there; see idOf
    };
    using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    static std::uint32_t idOf(std::size_t triangle, int i) noexcept {
        return static_cast<std::uint32_t>(4 * triangle) + static_cast<std::uint32_t>(i);
    }
    static std::size_t triangleOf(std::uint32_t id) noexcept { return id / 4; }
    static int indexOf(std::uint32_t id) noexcept { return static_cast<int>(id % 4); }

    OpenEdges() : vSlots(initialSlots) {}

    std::size_t size() const noexcept { return numOpen; }
    /// How many edges were not entered, because the same one was open already.
    std::size_t getNumDropped() const noexcept { return numDropped; }
    /// All open edges, in no order that means anything.
    std::vector<Edge> getEdges() const;
    /// Whether the edge that runs the other way is open.
    bool isClosing(std::uint32_t source, std::uint32_t target) const noexcept {
        const Edge& found = vSlots[findSlot(source, target)];
        return found.id != none && found.source == target;
    }
    /// Takes out the edge that runs the other way: the result is its id. If there is none the new edge is
    /// entered and the result is none; one that is open already keeps its id.
    std::uint32_t closeOrEnter(const Edge& edge);
    /// Does the same with the edges of many triangles, one after the other. vCorners has three vertices for
    /// each; vertices are numbered below numVertices. Only while nothing is open. The result is the ids of
    /// edges that close each other.
    Pairs closeOrEnterAll(const std::vector<std::uint32_t>& vCorners, std::size_t numVertices);

private:
    /// An edge as it stands with its lower vertex.
    struct Half {
        std::uint32_t other;          // the higher vertex
        std::uint32_t idAndDirection; // twice the id, and one more if the edge begins at the lower vertex
    };

    void matchAt(std::uint32_t lower, Half* first, Half* last, Pairs& vClosed);
    std::size_t firstSlot(std::uint32_t a, std::uint32_t b) const noexcept;
    std::size_t findSlot(std::uint32_t a, std::uint32_t b) const noexcept;
    void erase(std::size_t hole) noexcept;
    void grow();

    static constexpr std::size_t initialSlots = 256;

    std::vector<Edge> vSlots; // a power of two, at most half of them taken
    std::size_t numOpen = 0;
    std::size_t numDropped = 0;
};

} // namespace QUOR_KELM25D
