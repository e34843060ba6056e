// Location and heights on a terrain beside CGAL, in one process, runs in turn.
// Usage: query_compare [RUNS [POINTS]]. As many queries as points, in random order and along a Hilbert curve.
//
// CGAL answers queries in random order with Triangulation_hierarchy_2, sorted ones with
// Delaunay_triangulation_2 and the previous answer as hint. Kelm_2D keeps no hint between calls; its search
// starts at the vertex index.

#include "benchPoints.h"
#include "cgalPoints.h"
#include "compare.h"

#include <kelm25d/Kelm_2D.h>

#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Triangulation_hierarchy_2.h>
#include <CGAL/hilbert_sort.h>

#include <cmath>

using namespace QUOR_KELM25D;

namespace {

using bench::CgalPoints;
using bench::Kernel;
using Triangulation = CGAL::Delaunay_triangulation_2<Kernel>;
using HierarchyVertexBase =
    CGAL::Triangulation_hierarchy_vertex_base_2<CGAL::Triangulation_vertex_base_2<Kernel>>;
using HierarchyBase =
    CGAL::Delaunay_triangulation_2<Kernel, CGAL::Triangulation_data_structure_2<HierarchyVertexBase>>;
using Hierarchy = CGAL::Triangulation_hierarchy_2<HierarchyBase>;

std::vector<Point2> makeTerrain(int numPoints) {
    std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, numPoints);
    for (Point2& p : vPoints) {
        p.setZ(40.0 * std::sin(p.x() * 0.02) * std::cos(p.y() * 0.03));
    }
    return vPoints;
}

/// Somewhat beyond the terrain, so that some queries lie outside.
CgalPoints makeQueries(int numQueries) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> uniform(-5.0, 1005.0);
    CgalPoints vQueries;
    for (int i = 0; i < numQueries; ++i) {
        const double x = uniform(random), y = uniform(random);
        vQueries.emplace_back(x, y);
    }
    return vQueries;
}

unsigned countLocated(Kelm_2D& dt, const CgalPoints& vQueries) {
    unsigned numInside = 0;
    for (const Kernel::Point_2& q : vQueries) {
        numInside += dt.locate(Point2(q.x(), q.y(), 0.0)) != nullptr;
    }
    return numInside;
}

unsigned countHeights(Kelm_2D& dt, const CgalPoints& vQueries) {
    unsigned numInside = 0;
    double height = 0.0;
    for (const Kernel::Point_2& q : vQueries) {
        numInside += dt.getHeight(q.x(), q.y(), height);
    }
    return numInside;
}

} // namespace

int main(int argc, char** argv) {
    const int numRuns = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    const int numPoints = argc > 2 ? std::max(3, std::atoi(argv[2])) : 1000000;
    const std::vector<Point2> vTerrain = makeTerrain(numPoints);
    const CgalPoints vRandom = makeQueries(numPoints);
    CgalPoints vSorted = vRandom;
    CGAL::hilbert_sort(vSorted.begin(), vSorted.end(), Kernel());

    Kelm_2D dt;
    dt.insert(vTerrain);
    CgalPoints vCgalTerrain;
    for (const Point2& p : vTerrain) {
        vCgalTerrain.emplace_back(p.x(), p.y());
    }
    const Triangulation plain(vCgalTerrain.begin(), vCgalTerrain.end());
    Hierarchy hierarchy;
    hierarchy.insert(vCgalTerrain.begin(), vCgalTerrain.end());

    const auto locateByHierarchy = [&] {
        unsigned numInside = 0;
        for (const Kernel::Point_2& q : vRandom) {
            numInside += !hierarchy.is_infinite(hierarchy.locate(q));
        }
        return numInside;
    };
    const auto locateByHint = [&] {
        unsigned numInside = 0;
        Triangulation::Face_handle hint;
        for (const Kernel::Point_2& q : vSorted) {
            hint = plain.locate(q, hint);
            numInside += !plain.is_infinite(hint);
        }
        return numInside;
    };
    const std::string size = std::to_string(numPoints);
    bench::printHeader(("queries, " + size).c_str(), "here, ms", "CGAL, ms");
    bench::compare(
        "locate, random, hierarchy", numRuns, [&] { return countLocated(dt, vRandom); }, locateByHierarchy);
    bench::compare(
        "locate, sorted, hint", numRuns, [&] { return countLocated(dt, vSorted); }, locateByHint);
    bench::printHeader(("heights, " + size).c_str(), "height, ms", "locate, ms");
    bench::compare(
        "getHeight, random", numRuns, [&] { return countHeights(dt, vRandom); },
        [&] { return countLocated(dt, vRandom); });
    bench::compare(
        "getHeight, sorted", numRuns, [&] { return countHeights(dt, vSorted); },
        [&] { return countLocated(dt, vSorted); });
    return 0;
}
