// Rings of edges, which meet in a vertex, and the borders, edges and connected parts of triangle sets.
// Rings of segments, which meet at a place, are in rings.cpp.
//
// edgesToPolygons takes one chain after the other out of the loose edges. Each begins at the lowest of the
// leftmost vertices, and at each vertex the triangles are gone through counterclockwise from the edge that
// leads there: the first edge found is the sharpest right turn, decided by neighbourhood alone. Since edges
// are only taken away, the leftmost vertex only moves to the right, and one pass over the vertices in this
// order serves all chains.
#include <kelm25d/rings.h>

#include <kelm25d/Orientation2.h>
#include <kelm25d/TriangleAroundVertexIterator.h>

#include "Flood.h"
#include "cornerIndex.h"
#include "messages.h"
#include "ringTools.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace QUOR_KELM25D {

namespace {

constexpr std::less<const Point2*> isLower;

/// The edges that are in no chain yet.
class LooseEdges {
public:
    explicit LooseEdges(const std::vector<Edge2>& vEdges);

    bool empty() const { return numLeft == 0; }

    /// Takes out the chain that begins at the lowest of the leftmost vertices.
    std::vector<Edge2> extractPolygon();

private:
    struct Vertex {
        Point2* pVtx;
        std::size_t first, last;    // its leaving edges in vEntries, also those that are taken
        std::size_t numLeaving = 0; // the edges left that begin here
        std::size_t numAtEnds = 0;  // and those left that begin or end here
    };
    struct Entry {
        Edge2 edge;
        Point2* pSrc;
        Point2* pTrg;
        bool bTaken = false;
    };

    Vertex& vertexOf(const Point2* pVtx) {
        return *std::lower_bound(vVertices.begin(), vVertices.end(), pVtx,
                                 [](const Vertex& vtx, const Point2* p) { return isLower(vtx.pVtx, p); });
    }
    /// The first entry from c to pTrg; if there is none, where it would stand.
    std::size_t findEntry(const Vertex& c, const Point2* pTrg) const;
    const Vertex& findMinVertex();
    Edge2 findMostClockwise(const Vertex& minVtx) const;
    void erase(Vertex& c, const Edge2& lastEdge);
    Edge2 findSharpestRightTurn(const Vertex& c, const Edge2& lastEdge) const;

    std::vector<Entry> vEntries;        // by source, then target, both by address
    std::vector<Vertex> vVertices;      // by address
    std::vector<std::size_t> vFromLeft; // indices of vVertices by x, then y, then address
    std::size_t leftmost = 0;           // in vFromLeft; no edge is left at the vertices before it
    std::size_t numLeft;
};

LooseEdges::LooseEdges(const std::vector<Edge2>& vEdges) : numLeft(vEdges.size()) {
    std::vector<Point2*> vEnds;
    for (const Edge2& edge : vEdges) {
        vEntries.push_back({edge, edge.getSrc(), edge.getTrg()});
        vEnds.push_back(edge.getSrc());
        vEnds.push_back(edge.getTrg());
    }
    std::sort(vEntries.begin(), vEntries.end(), [](const Entry& a, const Entry& b) {
        return a.pSrc != b.pSrc ? isLower(a.pSrc, b.pSrc) : isLower(a.pTrg, b.pTrg);
    });
    std::sort(vEnds.begin(), vEnds.end(), isLower);
    vEnds.erase(std::unique(vEnds.begin(), vEnds.end()), vEnds.end());
    std::size_t position = 0;
    for (Point2* pVtx : vEnds) {
        const std::size_t first = position;
        while (position < vEntries.size() && vEntries[position].pSrc == pVtx)
            ++position;
        vFromLeft.push_back(vVertices.size());
        vVertices.push_back({pVtx, first, position, position - first});
    }
    for (const Entry& entry : vEntries) {
        ++vertexOf(entry.pSrc).numAtEnds;
        ++vertexOf(entry.pTrg).numAtEnds;
    }
    std::stable_sort(vFromLeft.begin(), vFromLeft.end(), [this](std::size_t i, std::size_t j) {
        return *vVertices[i].pVtx < *vVertices[j].pVtx;
    });
}

std::size_t LooseEdges::findEntry(const Vertex& c, const Point2* pTrg) const {
    const auto begin = vEntries.begin();
    const auto it = std::lower_bound(
        begin + static_cast<std::ptrdiff_t>(c.first), begin + static_cast<std::ptrdiff_t>(c.last), pTrg,
        [](const Entry& entry, const Point2* p) { return isLower(entry.pTrg, p); });
    return static_cast<std::size_t>(it - begin);
}

const LooseEdges::Vertex& LooseEdges::findMinVertex() {
    while (vVertices[vFromLeft[leftmost]].numAtEnds == 0)
        ++leftmost;
    return vVertices[vFromLeft[leftmost]];
}

Edge2 LooseEdges::findMostClockwise(const Vertex& minVtx) const {
    const Point2* pMinVtx = minVtx.pVtx;
    std::vector<Edge2> vEdge;
    for (std::size_t i = minVtx.first; i < minVtx.last; ++i)
        if (!vEntries[i].bTaken) vEdge.push_back(vEntries[i].edge);
    while (vEdge.size() > 1) {
        Edge2 &masterEdge = vEdge.front(), &slaveEdge = vEdge.back();
        KELM_CHECK(pMinVtx==masterEdge.getSrc());
        KELM_CHECK(pMinVtx==slaveEdge.getSrc());
        const Orientation2 o = getOrientation2(pMinVtx, masterEdge.getTrg(), slaveEdge.getTrg());
        if (o == ORIENTATION2_COLLINEAR) KELM_CHECK(false);
        if (o == ORIENTATION2_CW) std::swap(masterEdge, slaveEdge);
        vEdge.pop_back();
    }
    // Fails as well if the vertex is only a target of edges; that is deliberate.
    KELM_CHECK(vEdge.size()==1);
    return vEdge.front();
}

void LooseEdges::erase(Vertex& c, const Edge2& lastEdge) {
    Point2* pTrg = lastEdge.getTrg();
    int numErased = 0;
    for (std::size_t i = findEntry(c, pTrg); i < c.last && vEntries[i].pTrg == pTrg; ++i) {
        if (vEntries[i].bTaken || vEntries[i].edge != lastEdge) continue;
        vEntries[i].bTaken = true;
        ++numErased;
    }
    KELM_CHECK(numErased==1);
    --numLeft;
    --c.numLeaving;
    --c.numAtEnds;
    --vertexOf(pTrg).numAtEnds;
}

Edge2 LooseEdges::findSharpestRightTurn(const Vertex& c, const Edge2& lastEdge) const {
    const TriangleAroundVertexIterator start(c.pVtx, lastEdge.getTriangle());
    TriangleAroundVertexIterator it = start;
    do {
        ++it; // over lastEdge at first, so that its source is the first corner looked at
        const Triangle2* pT = *it;
        if (!pT) continue;
        const Point2* pCorner = pT->getCorner(next(pT->getIntraTriangleIndex(c.pVtx)));
        for (std::size_t i = findEntry(c, pCorner); i < c.last && vEntries[i].pTrg == pCorner; ++i) {
            if (vEntries[i].bTaken) continue;
            const Edge2& outEdge = vEntries[i].edge;
            KELM_CHECK(outEdge!=lastEdge);
            return outEdge;
        }
    } while (it != start);
    checkFailed("bFound", __FILE__, __LINE__);
}

std::vector<Edge2> LooseEdges::extractPolygon() {
    const Vertex& minVtx = findMinVertex();
    std::vector<Edge2> vChain;
    Edge2 lastEdge = findMostClockwise(minVtx);
    for (;;) {
        vChain.push_back(lastEdge);
        erase(vertexOf(lastEdge.getSrc()), lastEdge);
        const Vertex& c = vertexOf(lastEdge.getTrg());
        if (c.pVtx == minVtx.pVtx || c.numLeaving == 0) return vChain;
        lastEdge = findSharpestRightTurn(c, lastEdge);
    }
}

} // namespace

bool sortRingEdges(std::vector<Edge2>& vEdges) {
    struct Entry {
        const Point2* pSrc;
        Edge2 edge;
    };
    std::vector<Entry> vEntries;
    const Point2* pStart = nullptr;
    for (const Edge2& edge : vEdges) {
        const Point2* pSrc = edge.getSrc();
        if (pSrc == edge.getTrg()) continue;
        if (!pStart || *pSrc < *pStart) pStart = pSrc;
        vEntries.push_back({pSrc, edge});
    }
    if (vEntries.size() < 3) return false;
    std::stable_sort(vEntries.begin(), vEntries.end(),
                     [](const Entry& a, const Entry& b) { return isLower(a.pSrc, b.pSrc); });
    std::vector<Edge2> vChain;
    const Point2* pVtx = pStart;
    do {
        const auto it =
            std::lower_bound(vEntries.begin(), vEntries.end(), pVtx,
                             [](const Entry& entry, const Point2* p) { return isLower(entry.pSrc, p); });
        if (it == vEntries.end() || it->pSrc != pVtx) return false;
        // A longer walk than there are edges goes round in a ring without the start.
        if (vChain.size() == vEntries.size()) return false;
        vChain.push_back(it->edge);
        pVtx = it->edge.getTrg();
    } while (pVtx != pStart);
    vEdges.swap(vChain);
    return true;
}

void edgesToPolygons(const std::vector<Edge2>& vEdges, std::vector<std::vector<Edge2>>& vvPolygonsOut,
                     std::vector<Edge2>& vRemainingOut) {
    const std::size_t siz = vEdges.size();
    std::size_t sumRet = 0;
    LooseEdges loose(vEdges);
    std::vector<std::vector<Edge2>> vvClosed;
    std::vector<Edge2> vOpen;
    while (!loose.empty()) {
        std::vector<Edge2> vChain = loose.extractPolygon();
        sumRet += vChain.size();
        if (vChain.size() >= 2 && vChain.front().getSrc() == vChain.back().getTrg())
            vvClosed.push_back(std::move(vChain));
        else
            vOpen.insert(vOpen.end(), vChain.begin(), vChain.end());
    }
    KELM_CHECK(siz==sumRet);
    vvPolygonsOut.insert(vvPolygonsOut.end(), std::make_move_iterator(vvClosed.begin()),
                         std::make_move_iterator(vvClosed.end()));
    vRemainingOut.insert(vRemainingOut.end(), vOpen.begin(), vOpen.end());
}

void appendBorderEdges(const std::vector<Triangle2*>& vT, std::vector<Edge2>& vEdgesOut) {
    const TriangleSet sT(vT);
    for (Triangle2* pT : vT) {
        for (int i = 0; i < 3; ++i) {
            const Triangle2* pOpp = pT->getOppositeTriangle(i);
            if (!pOpp || !sT.contains(pOpp)) vEdgesOut.emplace_back(pT, i);
        }
    }
}

void getBorders(const std::vector<Triangle2*>& vT, std::vector<Segment2>& vBorderSegmentsOut) {
    std::vector<Edge2> vEdges;
    appendBorderEdges(vT, vEdges);
    for (const Edge2& edge : vEdges) {
        vBorderSegmentsOut.emplace_back(*edge.getSrc(), *edge.getTrg());
    }
}

void getDirectedEdges(const std::vector<Triangle2*>& vT, std::vector<Edge2>& vEdgesOut) {
    for (Triangle2* pT : vT)
        for (int i = 0; i < 3; ++i)
            vEdgesOut.emplace_back(pT, i);
}

void getUndirectedEdges(const std::vector<Triangle2*>& vT, std::vector<Edge2>& vEdgesOut) {
    struct Keyed {
        VertexPair2 ends;
        Edge2 edge;
    };
    getDirectedEdges(vT, vEdgesOut);
    std::vector<Keyed> vKeyed;
    vKeyed.reserve(vEdgesOut.size());
    for (const Edge2& edge : vEdgesOut)
        vKeyed.push_back({VertexPair2(edge.getSrc(), edge.getTrg()), edge});
    // By side at last, so that equal edges are neighbours even if the other half is there as well.
    std::sort(vKeyed.begin(), vKeyed.end(), [](const Keyed& a, const Keyed& b) {
        return a.ends == b.ends ? a.edge < b.edge : a.ends < b.ends;
    });
    vEdgesOut.clear();
    // Both halves of an inner edge stay; that is deliberate.
    for (const Keyed& keyed : vKeyed)
        if (vEdgesOut.empty() || vEdgesOut.back() != keyed.edge) vEdgesOut.push_back(keyed.edge);
}

void getConnectedComponents(const std::vector<Triangle2*>& vT,
                            std::vector<std::vector<Triangle2*>>& vvComponentsOut) {
    getConnectedComponents(vT, vvComponentsOut, {});
}

void getConnectedComponents(const std::vector<Triangle2*>& vT,
                            std::vector<std::vector<Triangle2*>>& vvComponentsOut,
                            const std::set<VertexPair2>& sBlockedEdges) {
    const TriangleSet sOwn(vT);
    std::vector<Triangle2*> vSeeds;
    sOwn.appendTo(vSeeds);
    const auto isBlocked = [&](const Triangle2* pT, int i) {
        return sBlockedEdges.count(VertexPair2(pT->getCorner(next(i)), pT->getCorner(prev(i)))) != 0;
    };
    Flood flood;
    for (Triangle2* pSeed : vSeeds) {
        const std::size_t numBefore = flood.getSequence().size();
        if (!flood.reach(pSeed)) continue;
        while (const Triangle2* pT = flood.next()) {
            for (int i = 0; i < 3; ++i) {
                Triangle2* pN = pT->getOppositeTriangle(i);
                if (pN == nullptr || !sOwn.contains(pN)) continue;
                if (sBlockedEdges.empty() || !isBlocked(pT, i)) flood.reach(pN);
            }
        }
        const std::vector<Triangle2*>& vReached = flood.getSequence();
        vvComponentsOut.emplace_back(vReached.begin() + static_cast<std::ptrdiff_t>(numBefore),
                                     vReached.end());
    }
    if (vSeeds.size() != vT.size()) printWarning("getConnectedComponents", " wrong number of triangles");
}

} // namespace QUOR_KELM25D
