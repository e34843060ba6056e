// What is derived from the triangles of zones: set operations, peeling, areas, statistics.
// Which triangles a zone has is decided in Zone2.cpp, also those of a set operation.

#include <kelm25d/Zone2.h>

#include "AddressSet.h"
#include "Histogram.h"
#include "ZoneMgr.h"
#include "measures.h"
#include "messages.h"

#include <kelm25d/UserPredicateT.h>
#include <kelm25d/Vector2.h>

#include <algorithm>
#include <functional>
#include <iostream>

namespace QUOR_KELM25D {

namespace {

constexpr double smallAngle = 10.0; // of analyzeAngles, in degrees

template <class Area>
double sumOfAreas(const Zone2& zone, Area&& area) {
    std::vector<Triangle2*> vTriangles;
    zone.getTriangles(vTriangles);
    double sum = 0.0;
    for (const Triangle2* pT : vTriangles) {
        sum += area(*pT);
    }
    return sum;
}

void printCounts(std::size_t numTriangles, const Zone2& zone) {
    std::cout << " numT=" << numTriangles << '\n'
              << " area2D=" << zone.getArea2D() << '\n'
              << " area25D=" << zone.getArea25D() << std::endl;
}

/// Whether a triangle and all that lie around it are in the set.
bool isInterior(const TriangleSet& sTriangles, const Triangle2* pT) {
    const auto& aN = pT->getOppositeTriangles();
    return std::all_of(aN, aN + 3,
                       [&](const Triangle2* pN) { return pN != nullptr && sTriangles.contains(pN); });
}

} // namespace

UserPredicateT::~UserPredicateT() = default;

// --- set operations ---------------------------------------------------------------------------------------

Zone2* Zone2::combine(Zone2* pZone0, Zone2* pZone1, ZoneLocation zoneLoc, const char* where) {
    if (pZone0 == nullptr || pZone1 == nullptr) {
        printError(where, "A zone is NULL! Returning NULL");
        return nullptr;
    }
    if (pZone0->pDt != pZone1->pDt) {
        printError(where, "The zones must belong to the same triangulation! Returning NULL");
        return nullptr;
    }
    Zone2* pResult = pZone0->pMgr->createZone(static_cast<ConstraintGraph2*>(nullptr), zoneLoc);
    if (pResult != nullptr) pResult->vInputZones = {pZone0, pZone1};
    return pResult;
}

Zone2* zoneUnion(Zone2* pZone0, Zone2* pZone1) {
    return Zone2::combine(pZone0, pZone1, ZL_RESULT_UNION, "Zone2::zoneUnion(...)");
}

// The other three name the first one in their messages, deliberately.

Zone2* zoneIntersection(Zone2* pZone0, Zone2* pZone1) {
    return Zone2::combine(pZone0, pZone1, ZL_RESULT_INTERSECTION, "zoneUnion(...)");
}

Zone2* zoneDifference(Zone2* pZone0, Zone2* pZone1) {
    return Zone2::combine(pZone0, pZone1, ZL_RESULT_DIFFERENCE, "zoneUnion(...)");
}

Zone2* zoneSymmetricDifference(Zone2* pZone0, Zone2* pZone1) {
    return Zone2::combine(pZone0, pZone1, ZL_RESULT_SYMMETRIC_DIFFERENCE, "zoneUnion(...)");
}

// --- peeling ----------------------------------------------------------------------------------------------

Zone2* peelOffIf(Zone2* pZone, UserPredicateT* pPredicate, bool bVerbose) {
    if (pZone == nullptr) {
        printWarning("peelOffIf()", "Input zone is NULL, returning NULL");
        return nullptr;
    }
    if (pPredicate == nullptr) {
        printWarning("peelOffIf()", "Predicate is NULL, returning NULL");
        return nullptr;
    }
    std::vector<Triangle2*> vStack;
    pZone->getTriangles(vStack);
    if (bVerbose) {
        std::cout << "\nZone2::peelOffIf(), original Zone:\n";
        printCounts(vStack.size(), *pZone);
    }
    if (vStack.empty()) {
        printWarning("peelOffIf()", "Input zone is empty, returning NULL");
        return nullptr;
    }
    TriangleSet sLeft(vStack);
    while (!vStack.empty()) {
        const Triangle2* pT = vStack.back();
        vStack.pop_back();
        // A triangle that was taken off and comes up again is asked about again, deliberately.
        if (isInterior(sLeft, pT) || !(*pPredicate)(pT) || !sLeft.erase(pT)) continue;
        for (Triangle2* pN : pT->getOppositeTriangles()) {
            if (pN != nullptr && sLeft.contains(pN)) vStack.push_back(pN);
        }
    }
    if (sLeft.empty()) return nullptr;
    std::vector<Triangle2*> vLeft;
    sLeft.appendTo(vLeft);
    Zone2* pResult = pZone->pMgr->createZone(vLeft);
    if (bVerbose && pResult != nullptr) {
        std::cout << "Output Zone:\n";
        printCounts(pResult->getNumberOfTriangles(), *pResult);
    }
    return pResult;
}

// --- measures ---------------------------------------------------------------------------------------------

double Zone2::getArea2D() const {
    return sumOfAreas(*this, [](const Triangle2& t) { return t.getArea2D(); });
}

double Zone2::getArea25D() const {
    return sumOfAreas(*this, [](const Triangle2& t) { return t.getArea25D(); });
}

Bbox2 Zone2::getBoundingBox() const {
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    Bbox2 box;
    for (const Triangle2* pT : vTriangles) {
        for (const Point2* pCorner : pT->getCorners()) {
            box.add(*pCorner);
        }
    }
    return box;
}

// --- statistics -------------------------------------------------------------------------------------------

void Zone2::statistics(const std::string& name) const {
    std::cout << "\n\n\n********* ZONE STATISTICS (" << name << ") **********\n\n";
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    printAngles(vTriangles);
}

void Zone2::analyzeAngles() {
    std::vector<Triangle2*> vTriangles;
    getTriangles(vTriangles);
    // A region that is there twice has its edges once.
    std::sort(vTriangles.begin(), vTriangles.end(), std::less<Triangle2*>());
    vTriangles.erase(std::unique(vTriangles.begin(), vTriangles.end()), vTriangles.end());
    double sum = 0.0, sumGt10 = 0.0;
    unsigned numAngles = 0, numAnglesGt10 = 0;
    for (const Triangle2* pT : vTriangles) {
        const Vector2 normal = pT->getNormalVector();
        for (const Triangle2* pN : pT->getOppositeTriangles()) {
            if (pN == nullptr) continue;
            const double angle = angleOfCosine(normal * pN->getNormalVector());
            sum += angle;
            ++numAngles;
            if (!(angle > smallAngle)) continue;
            sumGt10 += angle;
            ++numAnglesGt10;
        }
    }
    std::cout << "\nanalyzeAngles(): \n"
              << "Average angle=" << sum / numAngles << '\n'
              << "Average angle >10=" << sumGt10 / numAnglesGt10 << '\n'
              << "NumAngleGt10=" << numAnglesGt10 << std::endl;
}

} // namespace QUOR_KELM25D
