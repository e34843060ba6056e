// The library beside CGAL in one process: the same points, runs in turn, medians and their ratio.
// Usage: peer_compare [RUNS [POINTS]], POINTS for the insertion one by one, on which CGAL needs minutes for a
// million. CGAL's exact predicates are on, as the library's always are.

#include "benchPoints.h"

#include <kelm25d/Kelm_2D.h>

#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>

using namespace QUOR_KELM25D;

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using CgalTriangulation = CGAL::Delaunay_triangulation_2<Kernel>;
using CgalPoints = std::vector<Kernel::Point_2>;

double secondsOf(const std::function<unsigned()>& work, unsigned& numTriangles) {
    const auto start = std::chrono::steady_clock::now();
    numTriangles = work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> vTimes) {
    std::sort(vTimes.begin(), vTimes.end());
    return vTimes[vTimes.size() / 2];
}

/// Runs both in turn; each run includes construction and destruction of the triangulation.
void compare(const std::string& name, int numRuns, const std::function<unsigned()>& ours,
             const std::function<unsigned()>& peers) {
    std::vector<double> vOurs, vPeers, vRatios;
    for (int run = 0; run < numRuns; ++run) {
        unsigned numOurs = 0, numPeers = 0;
        vOurs.push_back(secondsOf(ours, numOurs));
        vPeers.push_back(secondsOf(peers, numPeers));
        vRatios.push_back(vOurs.back() / vPeers.back());
        if (numOurs != numPeers) {
            std::printf("%s: %u triangles here, %u there\n", name.c_str(), numOurs, numPeers);
            std::exit(1);
        }
    }
    std::printf("| %-28s | %9.2f | %9.2f | %5.2f |\n", name.c_str(), 1e3 * median(vOurs),
                1e3 * median(vPeers), median(vRatios));
    std::fflush(stdout);
}

CgalPoints toCgal(const std::vector<Point2>& vPoints) {
    CgalPoints vCgal;
    vCgal.reserve(vPoints.size());
    for (const Point2& p : vPoints) {
        vCgal.emplace_back(p.x(), p.y());
    }
    return vCgal;
}

void compareBulk(bench::Kind kind, int numPoints, int numRuns) {
    const std::vector<Point2> vPoints = bench::makePoints(kind, numPoints);
    const CgalPoints vCgal = toCgal(vPoints);
    const auto ours = [&] {
        Kelm_2D dt;
        std::vector<Point2*> vHandles;
        dt.insert(vPoints, vHandles);
        return dt.numberOfTriangles();
    };
    const auto peers = [&] {
        CgalTriangulation dt;
        dt.insert(vCgal.begin(), vCgal.end());
        return static_cast<unsigned>(dt.number_of_faces());
    };
    compare(bench::nameOf(kind) + ", " + std::to_string(numPoints), numRuns, ours, peers);
}

/// One by one; CGAL gets a face of the vertex before as its hint.
void compareSingle(int numPoints, int numRuns) {
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, numPoints);
    const CgalPoints vCgal = toCgal(vPoints);
    const auto ours = [&] {
        Kelm_2D dt;
        for (const Point2& p : vPoints) {
            dt.insert(p);
        }
        return dt.numberOfTriangles();
    };
    const auto peers = [&] {
        CgalTriangulation dt;
        CgalTriangulation::Face_handle hint;
        for (const Kernel::Point_2& p : vCgal) {
            hint = dt.insert(p, hint)->face();
        }
        return static_cast<unsigned>(dt.number_of_faces());
    };
    compare("one by one, " + std::to_string(numPoints), numRuns, ours, peers);
}

} // namespace

int main(int argc, char** argv) {
    const int numRuns = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    const int numSinglePoints = argc > 2 ? std::max(1, std::atoi(argv[2])) : 100000;
    std::printf("| %-28s | %9s | %9s | %5s |\n", "points", "here, ms", "CGAL, ms", "ratio");
    std::printf("|------------------------------|-----------|-----------|-------|\n");
    for (const bench::Kind kind : bench::allKinds()) {
        compareBulk(kind, 1000000, numRuns);
    }
    for (const bench::Kind kind : bench::allKinds()) {
        compareBulk(kind, 10000, 20 * numRuns);
    }
    compareSingle(numSinglePoints, 1);
    return 0;
}
