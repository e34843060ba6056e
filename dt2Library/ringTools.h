// Rings of edges and connected sets of triangles, for the library's own classes.
// What callers may use, and the rings that may touch themselves, is in kelm25d/rings.h.
#pragma once

#include <kelm25d/Edge2.h>
#include <kelm25d/VertexPair2.h>

#include <set>
#include <vector>

namespace QUOR_KELM25D {

/// Sorts edges into a ring from the leftmost source, of those the lowest. Edges meet in a vertex; of several
/// that leave one the first is taken, and edges off the ring are dropped. Edges with equal ends do not count.
/// False, without a message and with vEdges as it was, for fewer than three edges and for a chain that ends
/// or comes back to another vertex than its first.
bool sortRingEdges(std::vector<Edge2>& vEdges);

/// Appends the border of a set of triangles: of each in turn the edges 0, 1 and 2 behind which there is no
/// triangle of the set. Linear.
void appendBorderEdges(const std::vector<Triangle2*>& vT, std::vector<Edge2>& vEdgesOut);

/// Appends the sets into which triangles fall that are connected over edges; a common vertex alone does not
/// connect. The set of the triangle with the lowest address is the first, and so on. A triangle that is given
/// twice is taken once, with a warning.
void getConnectedComponents(const std::vector<Triangle2*>& vT,
                            std::vector<std::vector<Triangle2*>>& vvComponentsOut);

/// The same, where edges between the vertices of a pair in sBlockedEdges do not connect.
void getConnectedComponents(const std::vector<Triangle2*>& vT,
                            std::vector<std::vector<Triangle2*>>& vvComponentsOut,
                            const std::set<VertexPair2>& sBlockedEdges);

} // namespace QUOR_KELM25D
