// A hash of pairs of vertices, for containers of the standard library that hold edges.
// The mixing is that of HashTable.h; all constraint segments stand in SegmentTable.
#pragma once

#include "HashTable.h"

#include <kelm25d/VertexPair2.h>

#include <cstddef>

namespace QUOR_KELM25D {

struct VertexPairHash {
    std::size_t operator()(const VertexPair2& pair) const noexcept {
        return standardHash(hashOfAddresses(pair.getVertex0(), pair.getVertex1()));
    }
};

} // namespace QUOR_KELM25D
