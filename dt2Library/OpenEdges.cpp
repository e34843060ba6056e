// Sorting by vertices, and what is done with the edges that stay open.
// The idea of both is told in the header.

#include "OpenEdges.h"

#include "messages.h"
#include "uninitialized.h"

#include <algorithm>

namespace QUOR_KELM25D {

namespace {

constexpr std::ptrdiff_t maxInsertionSort = 32;

} // namespace

// --- one edge ---------------------------------------------------------------------------------------------

std::uint32_t OpenEdges::closeOrEnter(const Edge& edge) {
    open.reserve(1);
    Edge& found = open.find(edge.getHash(), Joins{edge.source, edge.target});
    if (found.isFree()) {
        open.fill(found, edge);
        return none;
    }
    if (found.source == edge.source) {
        ++numDropped;
        return none;
    }
    const std::uint32_t id = found.id;
    open.erase(found);
    return id;
}

std::vector<OpenEdges::Edge> OpenEdges::getEdges() const {
    std::vector<Edge> vEdges;
    vEdges.reserve(open.size());
    open.forEach([&](const Edge& edge) { vEdges.push_back(edge); });
    return vEdges;
}

// --- many edges -------------------------------------------------------------------------------------------

OpenEdges::Pairs OpenEdges::closeOrEnterAll(const std::vector<std::uint32_t>& vCorners,
                                            std::size_t numVertices) {
    const std::size_t numTriangles = vCorners.size() / 3;
    if (open.size() != 0 || numTriangles > maxTriangles) {
        checkFailed("numOpen==0 && numTriangles<=maxTriangles", __FILE__, __LINE__);
    }
    // Counting sort by the lower vertex: where its edges begin, and with each edge placed, where the next one
    // goes, in the end where those of the next vertex begin.
    std::vector<std::uint32_t> vNext(numVertices + 1, 0);
    for (std::size_t k = 0; k < vCorners.size(); k += 3) {
        const std::uint32_t a = vCorners[k], b = vCorners[k + 1], c = vCorners[k + 2];
        ++vNext[std::min(b, c) + 1];
        ++vNext[std::min(c, a) + 1];
        ++vNext[std::min(a, b) + 1];
    }
    for (std::size_t vertex = 0; vertex < numVertices; ++vertex) {
        vNext[vertex + 1] += vNext[vertex];
    }
    UninitializedVector<Half> vHalves(vCorners.size());
    const auto place = [&](std::uint32_t source, std::uint32_t target, std::uint32_t id) {
        const bool bUp = source < target;
        vHalves[vNext[bUp ? source : target]++] = {bUp ? target : source, 2 * id + (bUp ? 1 : 0)};
    };
    for (std::size_t t = 0; t < numTriangles; ++t) {
        const std::uint32_t a = vCorners[3 * t], b = vCorners[3 * t + 1], c = vCorners[3 * t + 2];
        place(b, c, idOf(t, 0));
        place(c, a, idOf(t, 1));
        place(a, b, idOf(t, 2));
    }
    Pairs vClosed;
    vClosed.reserve(vCorners.size() / 2);
    Half* first = vHalves.data();
    for (std::uint32_t vertex = 0; vertex < numVertices; ++vertex) {
        Half* last = vHalves.data() + vNext[vertex];
        matchAt(vertex, first, last, vClosed);
        first = last;
    }
    return vClosed;
}

/// Goes through all edges at one lower vertex, which stand in the order they come in.
void OpenEdges::matchAt(std::uint32_t lower, Half* first, Half* last, Pairs& vClosed) {
    const auto isBefore = [](const Half& a, const Half& b) { return a.other < b.other; };
    if (last - first > maxInsertionSort) {
        std::stable_sort(first, last, isBefore);
    } else {
        for (Half* p = first; p != last; ++p) {
            std::rotate(std::upper_bound(first, p, *p, isBefore), p, p + 1);
        }
    }
    for (Half* p = first; p != last;) {
        const Half* pOpen = p++;
        for (; p != last && p->other == (pOpen != nullptr ? pOpen->other : p[-1].other); ++p) {
            if (pOpen == nullptr) {
                pOpen = p;
            } else if ((pOpen->idAndDirection + p->idAndDirection) % 2 == 0) {
                ++numDropped;
            } else {
                vClosed.emplace_back(pOpen->idAndDirection / 2, p->idAndDirection / 2);
                pOpen = nullptr;
            }
        }
        if (pOpen == nullptr) continue;
        const bool bUp = pOpen->idAndDirection % 2 == 1;
        closeOrEnter({bUp ? lower : pOpen->other, bUp ? pOpen->other : lower, pOpen->idAndDirection / 2});
    }
}

} // namespace QUOR_KELM25D
