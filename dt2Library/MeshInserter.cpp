// Walk, splits, flips and repair; the header tells the whole story.
// Hull extension and the surroundings of an insertion are in Mesh2_location.cpp.

#include "MeshInserter.h"

#include "cornerIndex.h"
#include "messages.h"
#include "prefetch.h"

#include <cstdint>

namespace QUOR_KELM25D {

namespace {

constexpr std::size_t flipStackReserve = 64;
constexpr int maxOrderlySteps = 1000; // a longer walk is deemed to be circling

/// Source of the random first edge of a walk that circles; seeded anew for each walk, so that results do not
/// depend on earlier ones.
class WalkRandom {
public:
    int nextBelow3() noexcept {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<int>((state >> 33) % 3);
    }

private:
    std::uint64_t state = 1;
};

/// The index of the corner at the place of q, or -1.
int cornerAt(const Triangle2* pT, const Point2* q) noexcept {
    for (int i = 0; i < 3; ++i) {
        if (*pT->getCorner(i) == *q) return i;
    }
    return -1;
}

} // namespace

MeshInserter::MeshInserter(QuorTest& quorTest_, const SegmentTable& segmentTable_)
    : quorTest(quorTest_), segmentTable(segmentTable_) {
    vFlipStack.reserve(flipStackReserve);
}

Location MeshInserter::locateFrom(const Point2* q, Triangle2* pT, const Bbox2* pLimit) {
    const Triangle2* pStartTriangle = pT;
    KELM_CHECK(pStartTriangle!=0);
    WalkRandom walkRandom;
    int edgeIdx = -1;
    int numSteps = 0;
    int aOrder[3] = {0, 1, 2};
    int position = 0;

    for (;;) {
        int crossed = -1;
        for (; position < 3; ++position) {
            const int i = aOrder[position];
            const Orientation2 side = quorTest.getEdgeOrientation(pT, i, q);
            if (side == ORIENTATION2_CCW) continue;
            if (side == ORIENTATION2_CW) {
                crossed = i;
                break;
            }
            const int corner = cornerAt(pT, q);
            if (corner >= 0) return {pT, Location::AT_CORNER, corner};
            edgeIdx = i;
            // A later edge may still send the walk on. Within limits no hull is met, and nothing read
            // unasked.
            if (pLimit != nullptr || pT->getOppositeTriangle(i) != nullptr) continue;
            // On the supporting line of hull edge i: inside the edge, or beyond one of its ends.
            int beyond = -1;
            if (quorTest.getEdgeOrientation(pT, next(i), q) == ORIENTATION2_CW) beyond = next(i);
            if (quorTest.getEdgeOrientation(pT, prev(i), q) == ORIENTATION2_CW) beyond = prev(i);
            if (beyond < 0) return {pT, Location::OUTSIDE, i};
            if (pT->getOppositeTriangle(beyond) == nullptr) return {pT, Location::OUTSIDE, beyond};
            // A new walk from there; it can end only on the hull or at a corner.
            pT = pT->getOppositeTriangle(beyond);
            numSteps = 0;
            aOrder[0] = 0, aOrder[1] = 1, aOrder[2] = 2;
            position = -1;
        }
        if (crossed < 0) return {pT, edgeIdx < 0 ? Location::INSIDE : Location::ON_EDGE, edgeIdx};
        edgeIdx = -1;
        if (pLimit != nullptr && !(pLimit->isInBox(*pT->getCorner(next(crossed))) &&
                                   pLimit->isInBox(*pT->getCorner(prev(crossed))))) {
            return {pT, Location::LEFT_LIMIT};
        }
        Triangle2* pN = pT->getOppositeTriangle(crossed);
        if (pN == nullptr) return {pT, Location::OUTSIDE, crossed};

        // The edge just crossed is not tested again; the order of the two others alternates.
        const int j = pN->getIntraTriangleIndex(pT);
        pT = pN;
        if (++numSteps > maxOrderlySteps) {
            aOrder[0] = walkRandom.nextBelow3();
            aOrder[1] = next(aOrder[0]);
            aOrder[2] = prev(aOrder[0]);
            position = 0;
            continue;
        }
        aOrder[1] = position == 1 ? prev(j) : next(j);
        aOrder[2] = position == 1 ? next(j) : prev(j);
        position = 1;
    }
}

Triangle2* MeshInserter::approach(const Point2& q, Triangle2* pT) const noexcept {
    struct Offset {
        double x, y; // from q
    };
    const auto offsetOf = [&](const Point2* p) { return Offset{p->x() - q.x(), p->y() - q.y()}; };
    const auto side = [](const Offset& from, const Offset& to) { return to.y * from.x - from.y * to.x; };
    const double surelyBeyond = quorTest.getErrNeg();

    // The edge that q is farthest beyond, as seen by the areas.
    int crossed = 0;
    Offset aCorner[3] = {offsetOf(pT->getCorner(0)), offsetOf(pT->getCorner(1)), offsetOf(pT->getCorner(2))};
    double area = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double areaBeyond = side(aCorner[next(i)], aCorner[prev(i)]);
        if (areaBeyond < area) {
            area = areaBeyond;
            crossed = i;
        }
    }
    Offset from = aCorner[next(crossed)], to = aCorner[prev(crossed)]; // of the edge crossed
    for (int numSteps = 0; area < surelyBeyond && numSteps < maxOrderlySteps; ++numSteps) {
        Triangle2* pN = pT->getOppositeTriangle(crossed);
        if (pN == nullptr) break;
        const int j = pN->getIntraTriangleIndex(pT);
        prefetch(pN->getOppositeTriangle(next(j))); // whichever of the two is next
        prefetch(pN->getOppositeTriangle(prev(j)));
        const Offset apex = offsetOf(pN->getCorner(j));
        const double areaNext = side(from, apex), areaPrev = side(apex, to);
        const bool bNext = areaNext < areaPrev;
        area = bNext ? areaNext : areaPrev;
        crossed = bNext ? next(j) : prev(j);
        // Seen from pN the crossed edge runs the other way round: from its end to its start.
        to = bNext ? apex : to;
        from = bNext ? from : apex;
        pT = pN;
    }
    return pT;
}

Triangle2* MeshInserter::splitTriangle(Triangle2* pT, Point2* q, Triangle2* pT1, Triangle2* pT2) {
    Point2 *a = pT->getCorner(0), *b = pT->getCorner(1), *c = pT->getCorner(2);
    Triangle2 *pOppA = pT->getOppositeTriangle(0), *pOppB = pT->getOppositeTriangle(1),
              *pOppC = pT->getOppositeTriangle(2);
    pT1->setPropertiesAndOppT(q, b, c, pOppA, pT2, pT);
    pT2->setPropertiesAndOppT(q, c, a, pOppB, pT, pT1);
    pT->setPropertiesAndOppT(q, a, b, pOppC, pT1, pT2);
    relink(pOppA, pT, pT1);
    relink(pOppB, pT, pT2);
    if (pOppC != nullptr) vFlipStack.push_back(pT);
    if (pOppA != nullptr) vFlipStack.push_back(pT1);
    if (pOppB != nullptr) vFlipStack.push_back(pT2);
    return pT;
}

//         a                     a           pT is (a, b, k) from some corner on, pNeigA (d, k, b).
//       /   \                 / | \         pT becomes (q, k, a), pNeigA (q, a, b), pT3 (q, b, d) and
//     /  pT   \        pNeigA   |   pT      pT4 (q, d, k): q is corner 0 of all, and their outer
//    b----q----k   ->     b-----q-----k     edges are edge 0.
//     \ pNeigA /            pT3 | pT4 .
//       \   /                 \ | / .
//         d                     d .
Triangle2* MeshInserter::splitEdge(Triangle2* pT, Point2* q, int edgeIdx, Triangle2* pT3, Triangle2* pT4) {
    Triangle2* pNeigA = pT->getOppositeTriangle(edgeIdx);
    KELM_CHECK(pNeigA!=0);
    const int j = pNeigA->getIntraTriangleIndex(pT);
    Point2 *a = pT->getCorner(edgeIdx), *b = pT->getCorner(next(edgeIdx)), *k = pT->getCorner(prev(edgeIdx)),
           *d = pNeigA->getCorner(j);
    Triangle2 *pOutKA = pT->getOppositeTriangle(next(edgeIdx)),
              *pOutAB = pT->getOppositeTriangle(prev(edgeIdx));
    Triangle2 *pOutBD = pNeigA->getOppositeTriangle(next(j)), *pOutDK = pNeigA->getOppositeTriangle(prev(j));

    pT->setPropertiesAndOppT(q, k, a, pOutKA, pNeigA, pT4);
    pNeigA->setPropertiesAndOppT(q, a, b, pOutAB, pT3, pT);
    pT3->setPropertiesAndOppT(q, b, d, pOutBD, pT4, pNeigA);
    pT4->setPropertiesAndOppT(q, d, k, pOutDK, pT, pT3);
    // pOutAB and pOutBD may be one triangle, which then knows both old ones: first the links to pNeigA.
    relink(pOutBD, pNeigA, pT3);
    relink(pOutDK, pNeigA, pT4);
    relink(pOutAB, pT, pNeigA);
    for (Triangle2* pNew : {pT, pNeigA, pT3, pT4}) {
        if (pNew->getOppositeTriangle(0) != nullptr) vFlipStack.push_back(pNew);
    }
    return pT;
}

/// Works off the stack of triangles that have q as corner 0, last in first out.
void MeshInserter::legalize(const Point2* q) {
    while (!vFlipStack.empty()) {
        Triangle2* pT = vFlipStack.back();
        Triangle2* pN = pT->getOppositeTriangle(0);
        if (pN == nullptr || !isInsideCircle(pN, q) || segmentTable.isConstraintEdge(pT, 0)) {
            vFlipStack.pop_back();
            continue;
        }
        flip(pT, 0);
        vFlipStack.push_back(pN); // pT stays under it: its edge 0 is a new one
    }
}

//         a                    a        What stood at index i of pT, here a, stands at index 0 of both
//       /   \                / | \      afterwards. Of the four neighbours outside only those across
//      / pT  \              /  |  \     a-c and b-d get another one.
//     b-------c     ->     b pT|pN c
//      \ pN  / .            \  |  / .
//       \   / .              \ | / .
//         d                    d .
void MeshInserter::flip(Triangle2* pT, int i) {
    Triangle2* pN = pT->getOppositeTriangle(i);
    const int j = pN->getIntraTriangleIndex(pT);
    Point2 *a = pT->getCorner(i), *b = pT->getCorner(next(i)), *c = pT->getCorner(prev(i)),
           *d = pN->getCorner(j);
    Triangle2 *pOppTn = pT->getOppositeTriangle(next(i)), *pOppTp = pT->getOppositeTriangle(prev(i));
    Triangle2 *pOppNn = pN->getOppositeTriangle(next(j)), *pOppNp = pN->getOppositeTriangle(prev(j));
    pT->setPropertiesAndOppT(a, b, d, pOppNn, pN, pOppTp);
    pN->setPropertiesAndOppT(a, d, c, pOppNp, pOppTn, pT);
    relink(pOppTn, pT, pN);
    relink(pOppNn, pN, pT);
}

} // namespace QUOR_KELM25D
