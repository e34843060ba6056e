// The library beside CGAL in one process: the same points, runs in turn, medians and their ratio.
// Usage: peer_compare [RUNS [POINTS]], POINTS for the insertion one by one, on which CGAL needs minutes for a
// million. CGAL's exact predicates are on, as the library's always are.

#include "benchPoints.h"
#include "cgalPoints.h"
#include "compare.h"

#include <kelm25d/Kelm_2D.h>

#include <CGAL/Delaunay_triangulation_2.h>

#include <cstdlib>

using namespace QUOR_KELM25D;

namespace {

using bench::CgalPoints;
using bench::Kernel;
using bench::toCgal;
using CgalTriangulation = CGAL::Delaunay_triangulation_2<Kernel>;

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
    bench::compare(bench::nameOf(kind) + ", " + std::to_string(numPoints), numRuns, ours, peers);
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
    bench::compare("one by one, " + std::to_string(numPoints), numRuns, ours, peers);
}

} // namespace

int main(int argc, char** argv) {
    const int numRuns = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    const int numSinglePoints = argc > 2 ? std::max(1, std::atoi(argv[2])) : 100000;
    bench::printHeader("insertion of points", "here, ms", "CGAL, ms");
    for (const bench::Kind kind : bench::allKinds()) {
        compareBulk(kind, 1000000, numRuns);
    }
    for (const bench::Kind kind : bench::allKinds()) {
        compareBulk(kind, 10000, 20 * numRuns);
    }
    compareSingle(numSinglePoints, 1);
    return 0;
}
