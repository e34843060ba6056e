// Fuzz target for sequences of operations on one triangulation: bytes become points, segments, splits and
// removals on a coarse integer grid, where everything degenerates, and the exact checker of the tests looks
// at the mesh after each. Readers of files are fuzzed by readers_fuzz.cpp.
//
// The first byte says what a sequence may contain. Without conforming segments and bends every alive segment
// has to be an edge of a two-dimensional mesh, at every moment after constraints have been applied.
#include "MeshChecker.h"

#include <kelm25d/kelm25d.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

using namespace QUOR_KELM25D;
using namespace QUOR_KELM25D::testing_support;

namespace {

constexpr int maxOperations = 60;

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
            doOne(input.byte());
            require(findMeshFault(*pTriangulation), operation);
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
            if (dt.createConstraint(vSegments, strategy(), code % 2 != 0) == nullptr) break;
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
            pTriangulation = std::move(pLoaded);
            vGiven.clear();
            bBent = bConforming = false;
            bWaiting = !pTriangulation->is2D();
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

    Input input;
    unsigned flags;
    std::unique_ptr<Kelm_2D> pTriangulation = std::make_unique<Kelm_2D>();
    std::vector<Segment2> vGiven; // since the last load
    bool bWaiting = false;        // alive segments may not have been applied yet
    bool bConforming = false;     // there may be conforming segments
    bool bBent = false;           // constraints may be far from their segments
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
