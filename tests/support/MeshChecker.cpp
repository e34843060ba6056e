// Exact checks of a whole triangulation; see the header for the list.
// A floating point estimate with a generous bound spares the rationals in the clear cases.

#include "MeshChecker.h"

#include <algorithm>
#include <cmath>
#include <gmpxx.h>
#include <sstream>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace QUOR_KELM25D {
namespace testing_support {

namespace {

int next(int i) {
    return (i + 1) % 3;
}

int prev(int i) {
    return (i + 2) % 3;
}

// Far above the rounding of either determinant relative to the sum of its terms' magnitudes.
constexpr double generousBound = 1e-13;
constexpr double smallestTrusted = 1e-200; // below, underflow may spoil the estimate

std::string describe(const Triangle2* pT) {
    std::ostringstream text;
    text.precision(17);
    for (int i = 0; i < 3; ++i) {
        text << " (" << pT->getCorner(i)->x() << ", " << pT->getCorner(i)->y() << ")";
    }
    return text.str();
}

using Mesh = std::vector<Triangle2*>;

std::string findFaultBeforeTwoDimensional(const Kelm_2D& dt, std::vector<Point2*>& vVertices) {
    if (dt.numberOfTriangles() != 0) return "triangles before is2D";
    std::sort(vVertices.begin(), vVertices.end(), [](Point2* a, Point2* b) { return *a < *b; });
    for (std::size_t i = 0; i + 1 < vVertices.size(); ++i) {
        if (*vVertices[i] == *vVertices[i + 1]) return "two waiting vertices at one place";
        if (exactOrientation(*vVertices.front(), *vVertices[i], *vVertices.back()) != 0) {
            return "waiting vertices that are not collinear";
        }
    }
    for (const Point2* pVtx : vVertices) {
        if (pVtx->getIncidentTriangle() != nullptr) return "a waiting vertex with a triangle";
    }
    return "";
}

std::string findVertexFault(const std::vector<Point2*>& vVertices, const Mesh& vTriangles) {
    std::unordered_set<const Triangle2*> sTriangles(vTriangles.begin(), vTriangles.end());
    std::unordered_set<const Point2*> sUsed;
    for (const Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            sUsed.insert(pT->getCorner(i));
        }
    }
    if (sUsed.size() != vVertices.size()) return "vertices of the mesh and of the store differ in number";
    for (const Point2* pVtx : vVertices) {
        if (sUsed.count(pVtx) == 0) return "a vertex that no triangle has";
        const Triangle2* pT = pVtx->getIncidentTriangle();
        if (sTriangles.count(pT) == 0 || !pT->hasVertex(pVtx)) return "a bad incident triangle";
    }
    return "";
}

/// Corners, neighbours and empty circles; collects the hull as a map from each vertex to the next.
std::string findTriangleFault(const Mesh& vTriangles,
                              std::unordered_map<const Point2*, const Point2*>& mHullNext) {
    for (const Triangle2* pT : vTriangles) {
        const Point2 &a = *pT->getCorner(0), &b = *pT->getCorner(1), &c = *pT->getCorner(2);
        if (exactOrientation(a, b, c) != 1) return "a triangle that is not counterclockwise:" + describe(pT);
        for (int i = 0; i < 3; ++i) {
            const Point2 *pSrc = pT->getCorner(next(i)), *pTrg = pT->getCorner(prev(i));
            const Triangle2* pN = pT->getOppositeTriangle(i);
            if (pN == nullptr) {
                if (!mHullNext.emplace(pSrc, pTrg).second) return "a vertex with two hull edges going out";
                continue;
            }
            int j = 0;
            while (j < 3 && !(pN->getOppositeTriangle(j) == pT && pN->getCorner(next(j)) == pTrg &&
                              pN->getCorner(prev(j)) == pSrc)) {
                ++j;
            }
            if (j == 3) return "a neighbour that does not share the edge:" + describe(pT);
            if (pT < pN && exactInCircle(a, b, c, *pN->getCorner(j)) > 0) {
                return "a circle that is not empty:" + describe(pT) + " and" + describe(pN);
            }
        }
    }
    return "";
}

std::string findHullFault(const std::unordered_map<const Point2*, const Point2*>& mHullNext) {
    if (mHullNext.size() < 3) return "a hull of fewer than three edges";
    const Point2* pStart = mHullNext.begin()->first;
    const Point2* pVtx = pStart;
    std::size_t numEdges = 0;
    // Locally convex and once around: a closed polygon with no clockwise turn whose edge directions turn just
    // once is convex; the directions' turns are counted where the edges pass from below to above.
    int numTurns = 0;
    do {
        const auto itNext = mHullNext.find(pVtx);
        if (itNext == mHullNext.end()) return "a hull that is not closed";
        const auto itSecond = mHullNext.find(itNext->second);
        if (itSecond == mHullNext.end()) return "a hull that is not closed";
        const Point2 &a = *pVtx, &b = *itNext->second, &c = *itSecond->second;
        if (exactOrientation(a, b, c) < 0) return "a hull that is not convex";
        if (b < a && b < c) ++numTurns;
        pVtx = itNext->second;
        if (++numEdges > mHullNext.size()) return "a hull that does not close";
    } while (pVtx != pStart);
    if (numEdges != mHullNext.size()) return "a hull in several pieces";
    if (numTurns != 1) return "a hull that winds more than once";
    return "";
}

} // namespace

int exactOrientation(const Point2& a, const Point2& b, const Point2& c) {
    const double t1 = (a.x() - c.x()) * (b.y() - c.y()), t2 = (a.y() - c.y()) * (b.x() - c.x());
    const double bound = (std::fabs(t1) + std::fabs(t2)) * generousBound;
    if (bound > smallestTrusted && std::isfinite(bound) && std::fabs(t1 - t2) > bound)
        return t1 > t2 ? 1 : -1;
    const mpq_class cx = c.x(), cy = c.y();
    const mpq_class exact1 = (mpq_class(a.x()) - cx) * (mpq_class(b.y()) - cy);
    const mpq_class exact2 = (mpq_class(a.y()) - cy) * (mpq_class(b.x()) - cx);
    return exact1 > exact2 ? 1 : (exact1 < exact2 ? -1 : 0);
}

int exactInCircle(const Point2& a, const Point2& b, const Point2& c, const Point2& d) {
    const Point2* aCorner[3] = {&a, &b, &c};
    double det = 0.0, permanent = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double x = aCorner[i]->x() - d.x(), y = aCorner[i]->y() - d.y();
        const double x1 = aCorner[next(i)]->x() - d.x(), y1 = aCorner[next(i)]->y() - d.y();
        const double x2 = aCorner[prev(i)]->x() - d.x(), y2 = aCorner[prev(i)]->y() - d.y();
        det += (x * x + y * y) * (x1 * y2 - x2 * y1);
        permanent += (x * x + y * y) * (std::fabs(x1 * y2) + std::fabs(x2 * y1));
    }
    const double bound = permanent * generousBound;
    if (bound > smallestTrusted && std::isfinite(bound) && std::fabs(det) > bound) return det > 0 ? 1 : -1;
    mpq_class x[3], y[3], lift[3];
    for (int i = 0; i < 3; ++i) {
        x[i] = mpq_class(aCorner[i]->x()) - mpq_class(d.x());
        y[i] = mpq_class(aCorner[i]->y()) - mpq_class(d.y());
        lift[i] = x[i] * x[i] + y[i] * y[i];
    }
    mpq_class sum = 0;
    for (int i = 0; i < 3; ++i) {
        sum += lift[i] * (x[next(i)] * y[prev(i)] - x[prev(i)] * y[next(i)]);
    }
    return sgn(sum);
}

std::string findMeshFault(const Kelm_2D& dt) {
    std::vector<Point2*> vVertices;
    Mesh vTriangles;
    dt.getVertexPointers(vVertices);
    dt.getTrianglePointers(vTriangles);
    if (vVertices.size() != dt.numberOfPoints()) return "numberOfPoints is wrong";
    if (vTriangles.size() != dt.numberOfTriangles()) return "numberOfTriangles is wrong";
    if (!dt.is2D()) return findFaultBeforeTwoDimensional(dt, vVertices);
    std::string fault = findVertexFault(vVertices, vTriangles);
    std::unordered_map<const Point2*, const Point2*> mHullNext;
    if (fault.empty()) fault = findTriangleFault(vTriangles, mHullNext);
    if (fault.empty()) fault = findHullFault(mHullNext);
    if (!fault.empty()) return fault;
    if (vTriangles.size() + mHullNext.size() + 2 != 2 * vVertices.size()) return "Euler's formula fails";
    return "";
}

} // namespace testing_support
} // namespace QUOR_KELM25D
