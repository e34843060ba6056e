// The edges of a mesh under construction that have a triangle on their left and none on their right yet.
// Vertices and triangles appear by number only; who makes two triangles neighbours is TriangleImport.cpp.
//
// Many triangles at once are sorted by the lower vertex of each edge: two passes over memory, where searches
// for one edge after the other would miss the cache each time. What is open then is few, and stands in a hash
// table for triangles that come one by one. Both directions of an edge hash alike, so that one search finds
// the edge that a new one closes, the one it repeats, or the place to enter it.
#pragma once

#include "HashTable.h"

#include <algorithm>
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
        bool isFree() const noexcept { return id == none; }
        std::uint64_t getHash() const noexcept { return hashOf(source, target); }
    };
    using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    static std::uint32_t idOf(std::size_t triangle, int i) noexcept {
        return static_cast<std::uint32_t>(4 * triangle) + static_cast<std::uint32_t>(i);
    }
    static std::size_t triangleOf(std::uint32_t id) noexcept { return id / 4; }
    static int indexOf(std::uint32_t id) noexcept { return static_cast<int>(id % 4); }

    std::size_t size() const noexcept { return open.size(); }
    /// How many edges were not entered, because the same one was open already.
    std::size_t getNumDropped() const noexcept { return numDropped; }
    /// All open edges, in no order that means anything.
    std::vector<Edge> getEdges() const;
    /// Whether the edge that runs the other way is open.
    bool isClosing(std::uint32_t source, std::uint32_t target) const noexcept {
        const Edge& found = open.find(hashOf(source, target), Joins{source, target});
        return !found.isFree() && found.source == target;
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

    /// Asks for the edge in either direction.
    struct Joins {
        std::uint32_t a, b;
        bool operator()(const Edge& edge) const noexcept {
            return (edge.source == a && edge.target == b) || (edge.source == b && edge.target == a);
        }
    };

    static std::uint64_t hashOf(std::uint32_t a, std::uint32_t b) noexcept {
        return hashOfNumbers(std::min(a, b), std::max(a, b));
    }
    void matchAt(std::uint32_t lower, Half* first, Half* last, Pairs& vClosed);

    HashTable<Edge> open;
    std::size_t numDropped = 0;
};

} // namespace QUOR_KELM25D
