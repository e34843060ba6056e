// A hash of pairs of vertices, for hash tables of edges.
// The table of all constraint segments has its own, see SegmentTable.
#pragma once

#include <kelm25d/VertexPair2.h>

#include <cstddef>
#include <cstdint>

namespace QUOR_KELM25D {

struct VertexPairHash {
    std::size_t operator()(const VertexPair2& pair) const noexcept {
        const auto p0 = reinterpret_cast<std::uintptr_t>(pair.getVertex0());
        const auto p1 = reinterpret_cast<std::uintptr_t>(pair.getVertex1());
        return static_cast<std::size_t>((p0 * 0x9e3779b97f4a7c15ULL ^ p1) * 0xc2b2ae3d27d4eb4fULL >> 7);
    }
};

} // namespace QUOR_KELM25D
