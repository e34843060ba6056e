// Fuzz target for sequences of operations on one triangulation: bytes become points, segments, splits,
// removals, zones, cuts and imports on a coarse integer grid, where everything degenerates, and the exact
// checker of the tests looks at the mesh after each. Readers of files are fuzzed by readers_fuzz.cpp.
//
// The first byte says what a sequence may contain. Without conforming segments and bends every alive segment
// has to be an edge of a two-dimensional mesh, at every moment after constraints have been applied. Zones are
// compared with their rules after each operation.
#include "MeshChecker.h"
#include "zoneModel.h"

#include <kelm25d/kelm25d.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

using namespace QUOR_KELM25D;
using namespace QUOR_KELM25D::testing_support;

namespace {

constexpr int maxOperations = 60;
constexpr std::size_t maxZones = 12;

void require(const std::string& fault, int operation) {
    if (fault.empty()) return;
    std::cerr << "After operation " << operation << ": " << fault << std::endl;
    std::abort();
}

class Input {
public:
    Input(const std::uint8_t* pFirst, std::size_t size) : pNext(pFirst), pEnd(pFirst + size) {}

    bool isAtEnd() const { return pNext == pEnd; }
    unsigned byte() { return isAtEnd() ? 0 : *pNext++; }

private:
    const std::uint8_t *pNext, *pEnd;
};

class Sequence {
public:
    explicit Sequence(Input input_) : input(input_), flags(input.byte()) {}

    void run() {
        for (int operation = 0; operation < maxOperations && !input.isAtEnd(); ++operation) {
            const unsigned code = input.byte();
            if (flags >> 6 == 2 && code >= 128) {
                doOneWithZones(code);
            } else {
                doOne(code);
            }
            require(findMeshFault(*pTriangulation, bDelaunay), operation);
            for (const auto& pModel : vModels) {
                require(findZoneFault(*pTriangulation, *pModel), operation);
            }
            if (bBent) continue;
            const bool bSettled = pTriangulation->is2D() && !bConforming && !bWaiting;
            require(findConstraintFault(*pTriangulation, vGiven, nullptr, !bSettled), operation);
        }
    }

private:
    double coordinate() {
        const unsigned value = input.byte();
        // Small integers, some of them near the origin and off by a unit in the last place, or far off.
        const double integer = value % 16;
        if ((flags & 1) != 0 && value >= 240) return integer * (1 + 0x1p-52);
        return (flags & 2) != 0 ? integer + 1e9 : integer;
    }
    Point2 point() {
        const double x = coordinate(), y = coordinate();
        return Point2(x, y, 1.0 + input.byte() % 8);
    }
    ConstraintInsertionStrategy strategy() {
        // Off the grid conforming segments that nearly coincide need very many vertices.
        if ((flags & 7) != 4) return CIS_CONSTRAINED_DELAUNAY;
        const auto cis = static_cast<ConstraintInsertionStrategy>(input.byte() % 3);
        if (cis != CIS_CONSTRAINED_DELAUNAY) bConforming = true;
        return cis;
    }
    ConstraintSegment2* anyAliveSegment() {
        std::vector<ConstraintSegment2*> vAlive;
        pTriangulation->getAliveConstraintSegments(vAlive);
        return vAlive.empty() ? nullptr : vAlive[input.byte() % vAlive.size()];
    }

    void doOne(unsigned code) {
        Kelm_2D& dt = *pTriangulation;
        dt.setNumCPU(dt.is2D() ? 1 + code / 12 % 3 : 1); // or waiting vertices would stay out
        switch (code % 12) {
        case 0:
        case 1:
            dt.insert(point());
            break;
        case 2: {
            std::vector<Point2> vPoints;
            for (unsigned n = input.byte() % 12; n > 0; --n) {
                vPoints.push_back(point());
            }
            dt.insert(vPoints);
            break;
        }
        case 3: {
            std::vector<Point2*> vVertices;
            dt.getVertexPointers(vVertices);
            if (!vVertices.empty()) dt.remove(vVertices[input.byte() % vVertices.size()]);
            // The mesh may have gone, and with it all edges.
            if (!dt.is2D()) bWaiting = true;
            break;
        }
        case 4:
        case 5:
        case 6: {
            std::vector<Segment2> vSegments;
            for (unsigned n = 1 + input.byte() % 6; n > 0; --n) {
                const Point2 src = point();
                vSegments.emplace_back(src, point());
            }
            ConstraintGraph2* pGraph = dt.createConstraint(vSegments, strategy(), code % 2 != 0);
            if (pGraph == nullptr) break;
            vGraphs.push_back(pGraph);
            vGiven.insert(vGiven.end(), vSegments.begin(), vSegments.end());
            if (!dt.is2D()) bWaiting = true;
            break;
        }
        case 7:
            split();
            break;
        case 8: {
            const std::string filename = "operations_fuzz_" + std::to_string(getpid());
            auto pLoaded = std::make_unique<Kelm_2D>();
            dt.save(filename.c_str());
            pLoaded->load(filename.c_str());
            replaceBy(std::move(pLoaded));
            break;
        }
        case 9: {
            if (vGiven.empty()) break;
            const Segment2 again = vGiven[input.byte() % vGiven.size()];
            ConstraintGraph2* pGraph = dt.createConstraint({again}, strategy());
            if (!dt.is2D() || pGraph == nullptr) break;
            if ((flags & 3) != 0) bBent = true; // off the grid it may bend constraints to near vertices
            pGraph->makeDelaunay(0.5);
            break;
        }
        case 10: {
            const Point2 query = point();
            double height = 0.0;
            dt.getHeight(query.x(), query.y(), height);
            std::vector<Segment2> vLine = {Segment2(query, point())}, vDraped;
            dt.drape(vLine, vDraped, -1.0);
            break;
        }
        default:
            if (!dt.is2D()) break;
            dt.applyConstraintsAndZones();
            bWaiting = false;
        }
    }

    void split() {
        ConstraintSegment2* pSegment = anyAliveSegment();
        if (pSegment == nullptr) return;
        const Point2 &a = *pSegment->getSrc(), &b = *pSegment->getTrg();
        if ((flags & 8) != 0 && input.byte() % 2 != 0) {
            bBent = true;
            pSegment->insertAndSplit(point());
            return;
        }
        const Point2 middle(0.5 * (a.x() + b.x()), 0.5 * (a.y() + b.y()), 0.5 * (a.z() + b.z()));
        pSegment->splitAndRemovePrev(middle);
    }

    void replaceBy(std::unique_ptr<Kelm_2D> pOther) {
        pTriangulation = std::move(pOther);
        vGiven.clear();
        vGraphs.clear();
        vModels.clear();
        bBent = bConforming = false;
        bDelaunay = true;
        bWaiting = !pTriangulation->is2D();
    }

    // --- zones --------------------------------------------------------------------------------------------

    /// The test of peelOffIf: some triangles, the same at each call.
    struct SomeTriangles : UserPredicateT {
        explicit SomeTriangles(double modulus_) : modulus(modulus_) {}
        bool operator()(const Triangle2* pT) override {
            return std::fmod(std::fabs(7.0 * pT->getBarycenter().x()), modulus) >= 1.0;
        }
        double modulus;
    };

    void add(const ZoneModel& model) {
        if (model.pZone == nullptr || vModels.size() == maxZones) return;
        vModels.push_back(std::make_unique<ZoneModel>(model));
    }
    ConstraintGraph2* anyGraph() {
        return vGraphs.empty() ? nullptr : vGraphs[input.byte() % vGraphs.size()];
    }
    const ZoneModel* anyZone() {
        return vModels.empty() ? nullptr : vModels[input.byte() % vModels.size()].get();
    }
    std::vector<Triangle2*> someTriangles() {
        std::vector<Triangle2*> vAll, vSome;
        pTriangulation->getTrianglePointers(vAll);
        const unsigned mask = input.byte();
        for (std::size_t i = 0; i < vAll.size(); ++i) {
            if ((mask >> i % 8 & 1) != 0) vSome.push_back(vAll[i]);
        }
        return vSome;
    }
    static std::set<Triangle2*> setOf(const Zone2& zone) {
        const Triangles v = trianglesOf(zone);
        return {v.begin(), v.end()};
    }
    /// Whether every edge can be made a constraint: none was the place of one that was bent away from there.
    bool isStraight() const { return (flags & 3) == 0 && !bBent; }
    static bool hasThinTriangle(const Triangles& v) {
        return std::any_of(v.begin(), v.end(), [](const Triangle2* pT) { return pT->getArea2D() < 1e-3; });
    }

    void doOneWithZones(unsigned code) {
        Kelm_2D& dt = *pTriangulation;
        if (!dt.is2D()) return;
        switch (code % 8) {
        case 0:
        case 1:
            describe(code / 8 % 4);
            break;
        case 2:
            combine(input.byte() % 4);
            break;
        case 3: {
            const Triangles vSome = someTriangles();
            const Zone2* pZone = dt.createZone(vSome);
            // The centre of a thin triangle may be none of its points.
            if (isStraight() && !hasThinTriangle(vSome) &&
                setOf(*pZone) != std::set<Triangle2*>(vSome.begin(), vSome.end())) {
                require("a zone of other triangles", -1);
            }
            break;
        }
        case 4: {
            const ZoneModel* pModel = anyZone();
            if (pModel == nullptr) break;
            SomeTriangles predicate(1 + input.byte() % 4);
            const Zone2* pPeeled = peelOffIf(pModel->pZone, &predicate);
            if (pPeeled == nullptr) break;
            const std::set<Triangle2*> sAll = setOf(*pModel->pZone), sLeft = setOf(*pPeeled);
            if (!std::includes(sAll.begin(), sAll.end(), sLeft.begin(), sLeft.end())) {
                require("peeling has added triangles", -1);
            }
            break;
        }
        case 5: {
            const ZoneModel* pModel = anyZone();
            Zone2* pBounded = pModel != nullptr ? pModel->pZone->convertToBoundedZone() : nullptr;
            if (pBounded == nullptr || pBounded == pModel->pZone) break;
            if (isStraight() && setOf(*pBounded) != setOf(*pModel->pZone))
                require("a bounded zone of other triangles", -1);
            add({pBounded, ZL_BOUNDED, {pBounded->getConstraintGraph()}});
            break;
        }
        case 6:
            cut(code / 8);
            break;
        default:
            if (code / 8 % 2 != 0) {
                import();
            } else if (const ZoneModel* pModel = anyZone()) {
                bDelaunay = false;
                if (code / 16 % 3 == 0) pModel->pZone->slopeValleyRidgeOptimization();
                if (code / 16 % 3 == 1) pModel->pZone->optimizeValleysAndRidges(0.1 * (code % 3), 0.2);
                if (code / 16 % 3 == 2) pModel->pZone->unifyGrid(0.1 * (code % 3));
            }
        }
    }
    void describe(unsigned kind) {
        ConstraintGraph2* pGraph = anyGraph();
        const ZoneLocation location = kind == 0 ? ZL_INSIDE : kind == 1 ? ZL_OUTSIDE : ZL_GLOBAL;
        if (kind == 3) {
            const Point2 start = point();
            add({pTriangulation->createZone(pGraph, ZL_GROW, start), ZL_GROW, {pGraph}, {start}});
        } else if (kind == 2) {
            add({pTriangulation->createZone(pGraph, ZL_GLOBAL), ZL_GLOBAL});
        } else {
            add({pTriangulation->createZone(pGraph, location), location, {pGraph}});
        }
    }
    void combine(unsigned kind) {
        Zone2* (*const aOperation[])(Zone2*, Zone2*) = {zoneUnion, zoneIntersection, zoneDifference,
                                                        zoneSymmetricDifference};
        const ZoneModel *a = anyZone(), *b = anyZone();
        if (a == nullptr) return;
        add({aOperation[kind](a->pZone, b->pZone),
             static_cast<ZoneLocation>(ZL_RESULT_UNION + kind),
             {},
             {},
             a,
             b});
    }
    void cut(unsigned code) {
        std::vector<Segment2> vKnives;
        for (unsigned n = 1 + code / 2 % 4; n > 0; --n) {
            const Point2 src = point();
            vKnives.emplace_back(src, point());
        }
        if (code % 2 != 0) bDelaunay = false; // the triangles around stay as they are
        bBent = true;                         // crossings next to a vertex take it
        if (code / 8 % 2 == 0) {
            pTriangulation->cutTriangles(vKnives, code % 2 != 0);
            return;
        }
        vKnives = {vKnives[0], Segment2(vKnives[0].getTrg(), point())};
        vKnives.emplace_back(vKnives[1].getTrg(), vKnives[0].getSrc());
        Zone2* pCookie = pTriangulation->createZone_cookieCutter(vKnives, code % 2 != 0);
        if (pCookie != nullptr) add({pCookie, ZL_BOUNDED, {pCookie->getConstraintGraph()}});
    }
    /// Some of the triangles go on as a triangulation of their own, or any triples are tried.
    void import() {
        const unsigned kind = input.byte();
        auto pImported = std::make_unique<Kelm_2D>();
        if (kind % 4 == 0) {
            std::vector<Point2> vTriples;
            for (unsigned n = 3 * (kind / 4 % 8); n > 0; --n) {
                vTriples.push_back(point());
            }
            const bool bDone =
                pImported->importTriangles(vTriples, kind / 32 % 2 != 0, kind / 64 != 0) != nullptr;
            if (kind / 32 % 2 != 0 && bDone) require(findMeshFault(*pImported, false), -1);
            return;
        }
        const Triangles vSome = someTriangles();
        std::vector<Point2> vTriples;
        for (const Triangle2* pT : vSome) {
            for (int i = 0; i < 3; ++i) {
                vTriples.push_back(*pT->getCorner(i));
            }
        }
        if (vTriples.empty()) return;
        const Zone2* pZone = pImported->importTriangles(vTriples, kind % 4 == 1, kind / 4 % 2 != 0);
        if (pZone == nullptr || pZone->getNumberOfTriangles() != vSome.size()) require("no import", -1);
        replaceBy(std::move(pImported));
        bDelaunay = false;
    }

    Input input;
    unsigned flags;
    std::unique_ptr<Kelm_2D> pTriangulation = std::make_unique<Kelm_2D>();
    std::vector<Segment2> vGiven; // since the last load
    bool bWaiting = false;        // alive segments may not have been applied yet
    bool bConforming = false;     // there may be conforming segments
    bool bBent = false;           // constraints may be far from their segments
    bool bDelaunay = true;        // circles have to be empty
    std::vector<ConstraintGraph2*> vGraphs;
    std::vector<std::unique_ptr<ZoneModel>> vModels;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::cout.setstate(std::ios::failbit); // messages are not looked at
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t size) {
    Sequence(Input(pData, size)).run();
    return 0;
}
