// Walk, splits, flips and repair; the header tells the whole story.
// Hull extension and the surroundings of an insertion are in Dt2_location.cpp.

#include "MeshInserter.h"

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

bool isAtCorner(const Triangle2* pT, const Point2* q) noexcept {
    return *pT->getCorner(0) == *q || *pT->getCorner(1) == *q || *pT->getCorner(2) == *q;
}

} // namespace

MeshInserter::MeshInserter(QuorTest& quorTest_, const SegmentTable& segmentTable_)
    : quorTest(quorTest_), segmentTable(segmentTable_) {
    vFlipStack.reserve(flipStackReserve);
}

int MeshInserter::locateFrom(const Point2* q, Triangle2*& pT, int& edgeIdx, const Bbox2* pLimit) {
    Triangle2* pStartTriangle = pT;
    KELM_CHECK(pStartTriangle!=0);
    WalkRandom walkRandom;
    bool bOnHullLine = false; // the caller's edgeIdx is settled then, deliberately
    int numSteps = 0;
    int aOrder[3] = {0, 1, 2};
    int position = 0;
    edgeIdx = -1;

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
            if (isAtCorner(pT, q)) return AT_CORNER;
            if (!bOnHullLine) edgeIdx = i;
            // A later edge may still send the walk on. Within limits no hull is met, and nothing read
            // unasked.
            if (pLimit != nullptr || pT->getOppositeTriangle(i) != nullptr) continue;
            // On the supporting line of hull edge i: inside the edge, or beyond one of its ends.
            const int next = incIndexBy1(i), prev = incIndexBy2(i);
            int beyond = -1;
            if (quorTest.getEdgeOrientation(pT, next, q) == ORIENTATION2_CW) beyond = next;
            if (quorTest.getEdgeOrientation(pT, prev, q) == ORIENTATION2_CW) beyond = prev;
            if (beyond < 0) return i;
            if (pT->getOppositeTriangle(beyond) == nullptr) return beyond;
            // A new walk from there; it can end only on the hull or at a corner.
            pT = pT->getOppositeTriangle(beyond);
            bOnHullLine = true;
            numSteps = 0;
            aOrder[0] = 0, aOrder[1] = 1, aOrder[2] = 2;
            position = -1;
        }
        if (crossed < 0) return INSIDE;
        if (!bOnHullLine) edgeIdx = -1;
        if (pLimit != nullptr && !(pLimit->isInBox(*pT->getCorner(incIndexBy1(crossed))) &&
                                   pLimit->isInBox(*pT->getCorner(incIndexBy2(crossed))))) {
            return LEFT_LIMIT;
        }
        Triangle2* pN = pT->getOppositeTriangle(crossed);
        if (pN == nullptr) return crossed;

        // The edge just crossed is not tested again; the order of the two others alternates.
        const int j = pN->getIntraTriangleIndex(pT);
        pT = pN;
        if (++numSteps > maxOrderlySteps) {
            aOrder[0] = walkRandom.nextBelow3();
            aOrder[1] = incIndexBy1(aOrder[0]);
            aOrder[2] = incIndexBy2(aOrder[0]);
            position = 0;
            continue;
        }
        aOrder[1] = position == 1 ? incIndexBy2(j) : incIndexBy1(j);
        aOrder[2] = position == 1 ? incIndexBy1(j) : incIndexBy2(j);
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
        const double areaBeyond = side(aCorner[incIndexBy1(i)], aCorner[incIndexBy2(i)]);
        if (areaBeyond < area) {
            area = areaBeyond;
            crossed = i;
        }
    }
    Offset from = aCorner[incIndexBy1(crossed)], to = aCorner[incIndexBy2(crossed)]; // of the edge crossed
    for (int numSteps = 0; area < surelyBeyond && numSteps < maxOrderlySteps; ++numSteps) {
        Triangle2* pN = pT->getOppositeTriangle(crossed);
        if (pN == nullptr) break;
        const int j = pN->getIntraTriangleIndex(pT);
        prefetch(pN->getOppositeTriangle(incIndexBy1(j))); // whichever of the two is next
        prefetch(pN->getOppositeTriangle(incIndexBy2(j)));
        const Offset apex = offsetOf(pN->getCorner(j));
        const double areaNext = side(from, apex), areaPrev = side(apex, to);
        const bool bNext = areaNext < areaPrev;
        area = bNext ? areaNext : areaPrev;
        crossed = bNext ? incIndexBy1(j) : incIndexBy2(j);
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

Triangle2* MeshInserter::splitEdge(Triangle2* pT, Point2* q, int edgeIdx, Triangle2* pT3, Triangle2* pT4) {
    Triangle2* pNeigA = pT->getOppositeTriangle(edgeIdx);
    KELM_CHECK(pNeigA!=0);
    const int j = pNeigA->getIntraTriangleIndex(pT);
    const int next = incIndexBy1(edgeIdx), prev = incIndexBy2(edgeIdx);
    Point2 *a = pT->getCorner(edgeIdx), *b = pT->getCorner(next), *k = pT->getCorner(prev),
           *d = pNeigA->getCorner(j);
    Triangle2 *pOutKA = pT->getOppositeTriangle(next), *pOutAB = pT->getOppositeTriangle(prev);
    Triangle2 *pOutBD = pNeigA->getOppositeTriangle(incIndexBy1(j)),
              *pOutDK = pNeigA->getOppositeTriangle(incIndexBy2(j));

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

void MeshInserter::flip(Triangle2* pT, int i) {
    Triangle2* pN = pT->getOppositeTriangle(i);
    const int j = pN->getIntraTriangleIndex(pT);
    const int nextI = incIndexBy1(i), prevI = incIndexBy2(i), nextJ = incIndexBy1(j), prevJ = incIndexBy2(j);
    Point2 *a = pT->getCorner(i), *b = pT->getCorner(nextI), *c = pT->getCorner(prevI), *d = pN->getCorner(j);
    Triangle2 *pOppTn = pT->getOppositeTriangle(nextI), *pOppTp = pT->getOppositeTriangle(prevI);
    Triangle2 *pOppNn = pN->getOppositeTriangle(nextJ), *pOppNp = pN->getOppositeTriangle(prevJ);
    pT->setPropertiesAndOppT(a, b, d, pOppNn, pN, pOppTp);
    pN->setPropertiesAndOppT(a, d, c, pOppNp, pOppTn, pT);
    relink(pOppTn, pT, pN);
    relink(pOppNn, pN, pT);
}

} // namespace QUOR_KELM25D
