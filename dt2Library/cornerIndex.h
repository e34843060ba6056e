// The indices 0, 1 and 2 of a triangle's corners and edges, counterclockwise.
// Under these names for the library's own use; exported headers have incIndexBy1 and incIndexBy2.
#pragma once

#include <kelm25d/Triangle2.h>

namespace QUOR_KELM25D {

/// Edge i runs from corner next(i) to corner prev(i).
inline int next(int i) noexcept {
    return incIndexBy1(i);
}
inline int prev(int i) noexcept {
    return incIndexBy2(i);
}

} // namespace QUOR_KELM25D
