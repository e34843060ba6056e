// The inner loop of the library: walking to a vertex, the three ways it enters the mesh, flips and repair.
// Who chooses the start triangle is in Dt2.cpp for single points and in Dt2_bulk.cpp for many.
//
// A new vertex q is located by a remembering walk (Devillers, Pion, Teillaud, "Walking in a Triangulation",
// 2002). Inside a triangle it splits one into three, on an inner edge two into four; outside the hull it is
// joined to all hull edges that it sees. Then edges that violate the empty circle are flipped (Lawson, 1977):
// every triangle to be checked has q as corner 0, so the edge in question is its edge 0, and after a flip
// both triangles have q as corner 0 again. An in-circle value that is exactly zero does not flip, with the
// exception of axis-parallel rectangles (see QuorTest::circleInc).

#include "Dt2.h"

#include "messages.h"

#include <algorithm>
#include <cstdint>

namespace QUOR_KELM25D {

namespace {

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

/// Tells a neighbour, if there is one, that pOld was replaced by pNew.
void relink(Triangle2* pNeighbour, const Triangle2* pOld, Triangle2* pNew) noexcept {
    if (pNeighbour != nullptr) pNeighbour->setOppTriangle(pNeighbour->getIntraTriangleIndex(pOld), pNew);
}

} // namespace

// --- the walk ---------------------------------------------------------------------------------------------

int Dt2::locateFrom(const Point2* q, Triangle2*& pT, int& edgeIdx) {
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
            if (isAtCorner(pT, q)) return 4;
            if (!bOnHullLine) edgeIdx = i;
            if (pT->aOppTriangle[i] != nullptr) continue; // a later edge may still send the walk on
            // On the supporting line of hull edge i: inside the edge, or beyond one of its ends.
            const int next = incIndexBy1(i), prev = incIndexBy2(i);
            int beyond = -1;
            if (quorTest.getEdgeOrientation(pT, next, q) == ORIENTATION2_CW) beyond = next;
            if (quorTest.getEdgeOrientation(pT, prev, q) == ORIENTATION2_CW) beyond = prev;
            if (beyond < 0) return i;
            if (pT->aOppTriangle[beyond] == nullptr) return beyond;
            // A new walk from there; it can end only on the hull or at a corner.
            pT = pT->aOppTriangle[beyond];
            bOnHullLine = true;
            numSteps = 0;
            aOrder[0] = 0, aOrder[1] = 1, aOrder[2] = 2;
            position = -1;
        }
        if (crossed < 0) return -1;
        if (!bOnHullLine) edgeIdx = -1;
        Triangle2* pN = pT->aOppTriangle[crossed];
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

// --- insertion --------------------------------------------------------------------------------------------

Triangle2* Dt2::insertVertex(Point2* q, Triangle2* pStart) {
    progress.advance(1);
    Triangle2* pT = pStart;
    int edgeIdx = -1;
    const int result = locateFrom(q, pT, edgeIdx);
    if (result >= 0) return triangulateCoplanarOrDuplicate(q, pT, result);
    Triangle2* pKept = edgeIdx < 0 ? splitTriangle(pT, q) : splitEdge(pT, q, edgeIdx);
    legalizeFlipStack(q);
    return pKept;
}

/// Whether q is inside the circle through the corners of pT, or completes an axis-parallel rectangle.
inline bool Dt2::isInsideCircle(const Triangle2* pT, const Point2* q) {
    const int result = QuorTest::circleIncFilter(pT->aCorner[0], pT->aCorner[1], pT->aCorner[2], q);
    return result != 0 ? result == 1 : quorTest.circleInc(pT, q);
}

/// Works off the stack of triangles that have q as corner 0, last in first out.
void Dt2::legalizeFlipStack(const Point2* q) {
    while (!vFlipStack.empty()) {
        Triangle2* pT = vFlipStack.back();
        Triangle2* pN = pT->aOppTriangle[0];
        if (pN == nullptr || !isInsideCircle(pN, q)) {
            vFlipStack.pop_back();
            continue;
        }
        flip(pT, 0);
        vFlipStack.push_back(pN); // pT stays under it: its edge 0 is a new one
    }
}

/// The same after the extension of the hull, which creates many triangles at once: in passes over vPass.
void Dt2::legalizePasses(const Point2* q) {
    while (!vPass.empty()) {
        vNextPass.clear();
        for (Triangle2* pT : vPass) {
            Triangle2* pN = pT->aOppTriangle[0];
            if (pN == nullptr || !isInsideCircle(pN, q)) continue;
            flip(pT, 0);
            vNextPass.push_back(pT);
            vNextPass.push_back(pN);
        }
        vPass.swap(vNextPass);
    }
}

Triangle2* Dt2::splitTriangle(Triangle2* pT, Point2* q) {
    Point2 *a = pT->aCorner[0], *b = pT->aCorner[1], *c = pT->aCorner[2];
    Triangle2 *pOppA = pT->aOppTriangle[0], *pOppB = pT->aOppTriangle[1], *pOppC = pT->aOppTriangle[2];
    Triangle2* pT1 = createTriangle(q, b, c);
    Triangle2* pT2 = createTriangle(q, c, a);
    pT->setPropertiesAndOppT(q, a, b, pOppC, pT1, pT2);
    pT1->aOppTriangle[0] = pOppA, pT1->aOppTriangle[1] = pT2, pT1->aOppTriangle[2] = pT;
    pT2->aOppTriangle[0] = pOppB, pT2->aOppTriangle[1] = pT, pT2->aOppTriangle[2] = pT1;
    relink(pOppA, pT, pT1);
    relink(pOppB, pT, pT2);
    c->setIncidentTriangle(pT2);
    if (pOppC != nullptr) vFlipStack.push_back(pT);
    if (pOppA != nullptr) vFlipStack.push_back(pT1);
    if (pOppB != nullptr) vFlipStack.push_back(pT2);
    return pT;
}

Triangle2* Dt2::splitEdge(Triangle2* pT, Point2* q, int edgeIdx) {
    Triangle2* pNeigA = pT->aOppTriangle[edgeIdx];
    KELM_CHECK(pNeigA!=0);
    const int j = pNeigA->getIntraTriangleIndex(pT);
    const int next = incIndexBy1(edgeIdx), prev = incIndexBy2(edgeIdx);
    Point2 *a = pT->aCorner[edgeIdx], *b = pT->aCorner[next], *k = pT->aCorner[prev], *d = pNeigA->aCorner[j];
    Triangle2 *pOutKA = pT->aOppTriangle[next], *pOutAB = pT->aOppTriangle[prev];
    Triangle2 *pOutBD = pNeigA->aOppTriangle[incIndexBy1(j)], *pOutDK = pNeigA->aOppTriangle[incIndexBy2(j)];

    Triangle2* pT3 = createTriangle(q, b, d);
    Triangle2* pT4 = createTriangle(q, d, k);
    pT->setPropertiesAndOppT(q, k, a, pOutKA, pNeigA, pT4);
    pNeigA->setPropertiesAndOppT(q, a, b, pOutAB, pT3, pT);
    pT3->setPropertiesAndOppT(q, b, d, pOutBD, pT4, pNeigA);
    pT4->setPropertiesAndOppT(q, d, k, pOutDK, pT, pT3);
    // pOutAB and pOutBD may be one triangle, which then knows both old ones: first the links to pNeigA.
    relink(pOutBD, pNeigA, pT3);
    relink(pOutDK, pNeigA, pT4);
    relink(pOutAB, pT, pNeigA);
    for (Triangle2* pNew : {pT, pNeigA, pT3, pT4}) {
        if (pNew->aOppTriangle[0] != nullptr) vFlipStack.push_back(pNew);
    }
    return pT;
}

Triangle2* Dt2::triangulateCoplanarOrDuplicate(Point2* q, Triangle2* pT, int result) {
    if (result < 4) return extendHull(q, pT, result);
    for (Point2* pCorner : pT->aCorner) {
        if (*pCorner == *q) {
            vertexVault.addDuplicate(q, pCorner);
            return pT;
        }
    }
    printError("triangulateCoplanarOrDuplicate()", "Proxy not found");
    KELM_CHECK(false);
    return nullptr;
}

// --- outside the hull -------------------------------------------------------------------------------------

/// Appends the hull edges before the given one that q sees, walking clockwise along the hull.
void Dt2::collectHullBackward(const Point2* q, Edge2 edge) {
    Triangle2* pT = edge.getTriangle();
    int axisIdx = incIndexBy1(edge.getIndex());
    for (;;) {
        const Point2* pAxis = pT->aCorner[axisIdx];
        while (Triangle2* pN = pT->aOppTriangle[incIndexBy1(axisIdx)]) {
            pT = pN;
            axisIdx = pT->getIntraTriangleIndex(pAxis);
        }
        const int hullIdx = incIndexBy1(axisIdx);
        if (quorTest.getEdgeOrientation(pT, hullIdx, q) != ORIENTATION2_CW) return;
        vHullEdges.emplace_back(pT, hullIdx);
        axisIdx = incIndexBy1(hullIdx);
    }
}

/// Appends the hull edges behind the given one that q sees, walking counterclockwise along the hull.
void Dt2::collectHullForward(const Point2* q, Edge2 edge) {
    Triangle2* pT = edge.getTriangle();
    int axisIdx = incIndexBy2(edge.getIndex());
    for (;;) {
        const Point2* pAxis = pT->aCorner[axisIdx];
        while (Triangle2* pN = pT->aOppTriangle[incIndexBy2(axisIdx)]) {
            pT = pN;
            axisIdx = pT->getIntraTriangleIndex(pAxis);
        }
        const int hullIdx = incIndexBy2(axisIdx);
        if (quorTest.getEdgeOrientation(pT, hullIdx, q) != ORIENTATION2_CW) return;
        vHullEdges.emplace_back(pT, hullIdx);
        axisIdx = incIndexBy2(hullIdx);
    }
}

/// q lies strictly inside hull edge edgeIdx of pT: one triangle becomes two.
Triangle2* Dt2::splitHullEdge(Triangle2* pT, Point2* q, int edgeIdx) {
    const int next = incIndexBy1(edgeIdx), prev = incIndexBy2(edgeIdx);
    Point2 *a = pT->aCorner[edgeIdx], *b = pT->aCorner[next], *k = pT->aCorner[prev];
    Triangle2 *pOutAB = pT->aOppTriangle[prev], *pOutKA = pT->aOppTriangle[next];
    Triangle2* pTn = createTriangle(q, k, a);
    pT->setPropertiesAndOppT(q, a, b, pOutAB, nullptr, pTn);
    pTn->setPropertiesAndOppT(q, k, a, pOutKA, pT, nullptr);
    relink(pOutKA, pT, pTn);
    vPass.assign({pT, pTn});
    return pT;
}

Triangle2* Dt2::extendHull(Point2* q, Triangle2* pT, int edgeIdx) {
    // The visible edges in counterclockwise hull order: backward ones reversed, the edge itself, forward
    // ones.
    vHullEdges.clear();
    const Edge2 edge(pT, edgeIdx);
    collectHullBackward(q, edge);
    std::reverse(vHullEdges.begin(), vHullEdges.end());
    vHullEdges.push_back(edge);
    collectHullForward(q, edge);

    Triangle2* pResult = nullptr;
    if (vHullEdges.size() == 1 && quorTest.getEdgeOrientation(pT, edgeIdx, q) == ORIENTATION2_COLLINEAR) {
        pResult = splitHullEdge(pT, q, edgeIdx);
    } else {
        vPass.clear();
        for (const Edge2& visible : vHullEdges) {
            Triangle2* pOuter = visible.getTriangle();
            const int k = visible.getIndex();
            Triangle2* pTn =
                createTriangle(q, pOuter->aCorner[incIndexBy2(k)], pOuter->aCorner[incIndexBy1(k)]);
            pTn->aOppTriangle[0] = pOuter;
            pOuter->aOppTriangle[k] = pTn;
            if (pResult != nullptr) {
                pResult->aOppTriangle[2] = pTn;
                pTn->aOppTriangle[1] = pResult;
            }
            pResult = pTn;
            vPass.push_back(pTn);
        }
    }
    legalizePasses(q);
    return pResult;
}

// --- flips ------------------------------------------------------------------------------------------------

void Dt2::flip(Triangle2* pT, int i) {
    Triangle2* pN = pT->aOppTriangle[i];
    const int j = pN->getIntraTriangleIndex(pT);
    const int nextI = incIndexBy1(i), prevI = incIndexBy2(i), nextJ = incIndexBy1(j), prevJ = incIndexBy2(j);
    Point2 *a = pT->aCorner[i], *b = pT->aCorner[nextI], *c = pT->aCorner[prevI], *d = pN->aCorner[j];
    Triangle2 *pOppTn = pT->aOppTriangle[nextI], *pOppTp = pT->aOppTriangle[prevI];
    Triangle2 *pOppNn = pN->aOppTriangle[nextJ], *pOppNp = pN->aOppTriangle[prevJ];
    pT->setPropertiesAndOppT(a, b, d, pOppNn, pN, pOppTp);
    pN->setPropertiesAndOppT(a, d, c, pOppNp, pOppTn, pT);
    relink(pOppTn, pT, pN);
    relink(pOppNn, pN, pT);
}

bool Dt2::canBeFlipped(const Triangle2* pT, int i) {
    const Triangle2* pN = pT->aOppTriangle[i];
    if (pN == nullptr) return false;
    const Point2 *a = pT->aCorner[i], *b = pT->aCorner[incIndexBy1(i)], *c = pT->aCorner[incIndexBy2(i)];
    const Point2* d = pN->aCorner[pN->getIntraTriangleIndex(pT)];
    return quorTest.getOrientation2Filtered(a, d, b) == ORIENTATION2_CW &&
           quorTest.getOrientation2Filtered(a, d, c) == ORIENTATION2_CCW;
}

void Dt2::legalizeAround(Point2* pVtx) {
    std::vector<Edge2> vStack;
    const auto pushEdge = [&](Triangle2* pT, int i) {
        if (pT->aOppTriangle[i] != nullptr) vStack.emplace_back(pT, i);
    };
    TriangleAroundVertexIterator it(pVtx), itStart(it);
    do {
        if (Triangle2* pT = *it) pushEdge(pT, pT->getIntraTriangleIndex(pVtx));
        ++it;
    } while (it != itStart);
    while (!vStack.empty()) {
        Triangle2* pFromT = vStack.back().getTriangle();
        const int fromICI = vStack.back().getIndex();
        vStack.pop_back();
        Triangle2* pN = pFromT->aOppTriangle[fromICI];
        if (pN == nullptr) continue;
        const Point2* d = pN->aCorner[pN->getIntraTriangleIndex(pFromT)];
        if (quorTest.circleIncFiltered(pFromT, d) != 1) continue;
        KELM_CHECK(canBeFlipped(pFromT,fromICI));
        flip(pFromT, fromICI);
        pushEdge(pFromT, 0);
        pushEdge(pFromT, 2);
        pushEdge(pN, 0);
        pushEdge(pN, 1);
    }
}

} // namespace QUOR_KELM25D
