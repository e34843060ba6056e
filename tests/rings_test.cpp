// Rings out of segments and of edges, simple polygons, and edges and parts of triangle sets; their borders
// are tested with the zones.
// Rings among constraints are tested with the constraint graphs.
#include "testing.h"

#include "ringTools.h"
#include "zoneModel.h"

#include <deque>

namespace {

using Segments = std::vector<Segment2>;
using Edges = std::vector<Edge2>;

Segments operator+(Segments v, const Segments& more) {
    v.insert(v.end(), more.begin(), more.end());
    return v;
}

bool isSame(const Segments& v, const Segments& w) {
    return std::equal(v.begin(), v.end(), w.begin(), w.end(), [](const Segment2& s, const Segment2& t) {
        return s.getSrc().samePoint(t.getSrc()) && s.getTrg().samePoint(t.getTrg());
    });
}

void shuffleAndFlip(Segments& v, std::mt19937& engine) {
    std::shuffle(v.begin(), v.end(), engine);
    for (Segment2& s : v)
        if (engine() % 2) s.swapSrcTrg();
}

// A triangulation and a random half of its triangles, whose border touches itself a lot.
struct HalfMesh {
    Kelm_2D dt;
    Triangles vAll, vHalf;

    explicit HalfMesh(const std::vector<Point2>& v) {
        dt.insert(v);
        dt.getTrianglePointers(vAll);
        std::sort(vAll.begin(), vAll.end());
        std::mt19937 engine(5);
        std::copy_if(vAll.begin(), vAll.end(), std::back_inserter(vHalf), [&](auto) { return engine() % 2; });
    }
};

Edges borderEdges(const Triangles& v) {
    const std::set<Edge2> sBorder = borderOf(v);
    return {sBorder.begin(), sBorder.end()};
}

const std::vector<Point2> square{{0, 0, 1}, {2, 0, 2}, {2, 2, 3}, {0, 2, 4}};
const Point2 far(9, 9, 0);
const Segments ring = ringOf(square), openRing(ring.begin(), ring.end() - 1);
const Segments away = ringOf({far, {10, 9, 0}, {9, 10, 0}});
const Segments touching = ringOf({square[2], {3, 2, 0}, {3, 3, 0}});

} // namespace

TEST(SortRing, AnyOrderAndDirectionGiveTheRing) {
    std::mt19937 engine(7);
    for (int n = 3; n < 60; ++n) {
        std::vector<Point2> v; // counterclockwise, star-shaped
        for (int i = 0; i < n; ++i) {
            const double r = 1.0 + engine() % 9, a = 0.3 * n + 6.28 * i / n;
            v.emplace_back(r * std::cos(a), r * std::sin(a), i);
        }
        Segments vRing = ringOf(v);
        shuffleAndFlip(vRing, engine);
        const Segments vFirst{vRing[0]};
        vRing = vRing + away; // a second ring, to be dropped
        std::shuffle(vRing.begin() + 1, vRing.end(), engine);
        Segments vRingCCW = vRing;
        EXPECT_TRUE(sortRing(vRing) && vRing.size() == v.size() && isSame({vRing[0]}, vFirst)) << n;
        for (std::size_t i = 1; i < vRing.size(); ++i)
            EXPECT_TRUE(vRing[i].getSrc().samePoint(vRing[i - 1].getTrg())) << n << ' ' << i;
        std::rotate(v.begin(), std::min_element(v.begin(), v.end()), v.end());
        EXPECT_TRUE(sortRingCCW(vRingCCW) && isSame(vRingCCW, ringOf(v))) << n;
    }
}

TEST(SortRing, WhatIsNoRingIsRefusedAndKept) {
    // Below the square and collinear with its lower side, which only counts if it is seen before the winner.
    const Segments below = ringOf({square[0], {1, -1, 0}, {1, 0, 0}});
    const std::tuple<Segments, bool, bool> aCase[] = {
        {{}, false, false}, // a ring, and with sortRingCCW
        {openRing, false, false},
        {ring + touching, false, true},
        {{ring[0], ring[0]}, true, false},
        {Segments{{square[0], square[0]}} + ring, true, false},
        {ring + below, true, false},
        {below + ring, true, true},
        {ring + Segments{{far, {INFINITY, 0, 0}}}, false, false}};
    for (const auto& [vIn, bSorted, bSortedCCW] : aCase) {
        for (const bool bCCW : {false, true}) {
            SCOPED_TRACE(testing::Message() << vIn.size() << ' ' << bCCW);
            CoutCapture capture;
            Segments v = vIn;
            const bool bRing = bCCW ? sortRingCCW(v) : sortRing(v);
            EXPECT_EQ(bRing, bCCW ? bSortedCCW : bSorted);
            EXPECT_EQ(capture.printed("WARNING: "), !bRing && !vIn.empty());
            EXPECT_TRUE(bRing || isSame(v, vIn));
        }
    }
}

TEST(SortRingCCW, RingThatTouchesItselfIsFollowedOnTheOuterSide) {
    // Squares along a diagonal, each touching the next one: up on their right sides and down on their left.
    std::mt19937 engine(11);
    for (int n = 2; n < 30; ++n) {
        std::vector<Point2> vOuter;
        Segments v;
        for (double i = 0; i < n; ++i) {
            v = v + ringOf({{i, i, 0}, {i + 1, i, 0}, {i + 1, i + 1, 0}, {i, i + 1, 0}});
            vOuter.insert(vOuter.end(), {{i, i, 0}, {i + 1, i, 0}});
        }
        for (double i = n; i > 0; --i)
            vOuter.insert(vOuter.end(), {{i, i, 0}, {i - 1, i, 0}});
        shuffleAndFlip(v, engine);
        EXPECT_TRUE(sortRingCCW(v) && isSame(v, ringOf(vOuter))) << n;
    }
    // At q nothing goes to the right; the upper left one is taken, and the loop of the others is left out.
    const Point2 p(0, 0, 0), q(2, 0, 0), upperLeft(1, 3, 0);
    Segments v = ringOf({q, {3, 3, 0}, {2, 3, 0}}) + ringOf({p, q, upperLeft});
    EXPECT_TRUE(sortRingCCW(v) && isSame(v, ringOf({p, q, upperLeft})));
}

TEST(SortRingEdges, ChainFromTheLeftmostSourceOrFailure) {
    // Pairs of points at (i, 0), and the positions of those in the ring; none for failure.
    const std::pair<std::vector<std::pair<int, int>>, std::vector<int>> aCase[] = {
        {{{2, 1}, {3, 2}, {1, 3}}, {2, 1, 0}},
        {{{3, 4}, {1, 3}, {2, 2}, {4, 1}, {3, 1}, {7, 8}}, {1, 0, 3}}, // the first of two; others are dropped
        {{{1, 2}, {2, 2}, {2, 1}}, {}},
        {{{1, 2}, {2, 3}, {3, 4}}, {}},
        {{{1, 2}, {2, 3}, {3, 4}, {4, 2}}, {}}}; // round and round without the start
    for (const auto& [vPairs, vPositions] : aCase) {
        std::vector<Point2> vVtx;
        for (int i = 0; i < 9; ++i)
            vVtx.emplace_back(i, 0, 0);
        std::deque<Triangle2> triangles; // one for each edge: neighbours play no part
        Edges vIn, vExpected;
        for (const auto& [i, j] : vPairs) {
            triangles.emplace_back();
            triangles.back().setVertexPointer(1, &vVtx[i]);
            triangles.back().setVertexPointer(2, &vVtx[j]);
            vIn.emplace_back(&triangles.back(), 0);
        }
        for (const int i : vPositions)
            vExpected.push_back(vIn[i]);
        Edges v = vIn;
        EXPECT_EQ(sortRingEdges(v), !vPositions.empty());
        EXPECT_TRUE(v == (vPositions.empty() ? vIn : vExpected)) << vPairs.size();
    }
}

TEST(EdgesToPolygons, BordersBecomeChainsBySharpestRightTurns) {
    int numChoices = 0;
    for (const PointSet& set : makeAllKinds(60)) {
        const HalfMesh mesh(set.points);
        Edges vEdges = borderEdges(mesh.vHalf), vRest, v;
        std::shuffle(vEdges.begin(), vEdges.end(), std::mt19937(3));
        std::vector<Edges> vvChains;
        edgesToPolygons(vEdges, vvChains, vRest);
        for (const Edges& vChain : vvChains)
            v.insert(v.end(), vChain.begin(), vChain.end());
        ASSERT_TRUE(vRest.empty() && std::is_permutation(vEdges.begin(), vEdges.end(), v.begin(), v.end()));
        std::size_t k = 0; // the edges that were taken, of those in v
        for (const Edges& vChain : vvChains) {
            const Point2 *pMin = vChain[0].getSrc(), *pLast = pMin;
            const Point2 below(pMin->x(), pMin->y() - 1, 0), *pBack = &below;
            for (const Edge2& edge : vChain) {
                const Point2 *pSrc = edge.getSrc(), *pTrg = edge.getTrg();
                EXPECT_TRUE(pSrc == pLast && (pSrc == pMin) == (edge == vChain[0]));
                ++k;
                // No edge that was left leads into the sector from the way back to the edge that was taken.
                const bool bWide = exactOrientation(*pSrc, *pBack, *pTrg) < 0; // more than half a turn
                for (std::size_t other = k; other < v.size(); ++other) {
                    EXPECT_FALSE(*v[other].getSrc() < *pMin);
                    if (v[other].getSrc() != pSrc) continue;
                    const bool bLeftOfBack = exactOrientation(*pSrc, *pBack, *v[other].getTrg()) > 0;
                    const bool bRightOfTaken = exactOrientation(*pSrc, *pTrg, *v[other].getTrg()) < 0;
                    EXPECT_FALSE(bWide ? bLeftOfBack || bRightOfTaken : bLeftOfBack && bRightOfTaken);
                    ++numChoices;
                }
                pBack = pSrc;
                pLast = pTrg;
            }
            EXPECT_EQ(pLast, pMin);
        }
    }
    EXPECT_GT(numChoices, 100);
}

TEST(IsSimplePolygon, ClosedAndWithoutCrossing) {
    const std::pair<bool, Segments> aCase[] = {
        {true, ring},
        {true, ring + Segments{{far, {9, 9, 5}}}}, // equal but for the height: left out
        {true, ring + touching},
        {true, ring + ring},                         // the same constraints twice
        {true, ringOf({far, {8, 8, 0}, {5, 5, 0}})}, // on one line
        {false, {}},
        {false, openRing},
        {false, ringOf({square[0], square[2], square[1], square[3]})},
        {false, ring + ringOf({{1, 1, 0}, {5, 1, 0}, {5, 2, 0}})},
        {false, ring + ringOf({{2, 1, 0}, {5, 0, 0}, {5, 2, 0}})}, // a corner on a side
        {false, ring + ringOf({{NAN, 0, 0}, far})}};
    std::mt19937 engine(2);
    for (std::size_t i = 0; i < std::size(aCase); ++i) {
        Segments v = aCase[i].second;
        shuffleAndFlip(v, engine);
        CoutCapture capture;
        EXPECT_EQ(isSimplePolygon(v), aCase[i].first) << i;
        EXPECT_EQ(capture.take(), "") << i;
    }
}

TEST(TriangleSets, EdgesAndComponentsAreThoseOfBruteForce) {
    const HalfMesh mesh(makeAllKinds(60)[0].points);
    const auto pairOf = [](const Edge2& edge) { return VertexPair2(edge.getSrc(), edge.getTrg()); };
    Edges v, vDirected;
    getDirectedEdges(mesh.vHalf, v); // these are sorted along, and then there twice
    getDirectedEdges(mesh.vAll, vDirected);
    getUndirectedEdges(mesh.vAll, v);
    EXPECT_TRUE(std::is_permutation(v.begin(), v.end(), vDirected.begin(), vDirected.end()));
    EXPECT_TRUE(std::is_sorted(v.begin(), v.end(), [&](auto a, auto b) { return pairOf(a) < pairOf(b); }));

    std::set<VertexPair2> sBlocked;
    for (std::size_t i = 0; i < mesh.vHalf.size(); i += 7)
        sBlocked.insert(pairOf(Edge2(mesh.vHalf[i], 2)));
    for (const std::set<VertexPair2>& s : {std::set<VertexPair2>(), sBlocked}) {
        std::vector<Triangles> vv;
        getConnectedComponents(mesh.vHalf, vv, s);
        std::map<Triangle2*, std::size_t> mComponent;
        for (std::size_t c = 0; c < vv.size(); ++c)
            for (Triangle2* pT : vv[c])
                EXPECT_TRUE(mComponent.emplace(pT, c).second);
        EXPECT_TRUE(mComponent == partsOf(mesh.vHalf, s) && vv.size() > 5);
    }
}
