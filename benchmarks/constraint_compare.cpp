// Constraints beside CGAL in one process: the same points and segments, runs in turn, medians and ratios.
// Usage: constraint_compare [RUNS [COAST]], each line of the file COAST a segment: x0 y0 z0 x1 y1 z1.
//
// Both go from coordinates to the finished constrained triangulation. CGAL is used in the fastest way of
// those tried, insert_constraints of segments or of indices, sorted or not, among them: a loop that locates
// each end from the one before and takes a corner over from the segment before. Segments in random order are
// sorted along a curve for it, in its time. Rows with "hierarchy" are beside
// Constrained_triangulation_plus_2, which knows the pieces of each segment as Kelm_2D does; "plain" is
// without. The two round crossings in different ways, so where segments cross the numbers of triangles need
// to agree only nearly.

#include "benchPoints.h"
#include "cgalPoints.h"
#include "compare.h"

#include <kelm25d/Bbox2.h>
#include <kelm25d/ConstraintInsertionStrategy.h>
#include <kelm25d/Kelm_2D.h>

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Constrained_triangulation_plus_2.h>
#include <CGAL/Spatial_sort_traits_adapter_2.h>
#include <CGAL/property_map.h>
#include <CGAL/spatial_sort.h>

#include <cstdlib>
#include <fstream>
#include <memory>

using namespace QUOR_KELM25D;

namespace {

using bench::CgalPoints;
using bench::Kernel;
using bench::toCgal;
using CgalSegments = std::vector<std::pair<Kernel::Point_2, Kernel::Point_2>>;
using Disjoint = CGAL::Constrained_Delaunay_triangulation_2<Kernel>;
using Crossing =
    CGAL::Constrained_Delaunay_triangulation_2<Kernel, CGAL::Default, CGAL::Exact_predicates_tag>;
using Hierarchy = CGAL::Constrained_triangulation_plus_2<Crossing>;

enum Order { POINTS_FIRST, SEGMENTS_FIRST };

struct Scene {
    std::string name;
    std::vector<Point2> vPoints;
    std::vector<Segment2> vSegments;
    bool bRandomOrder; // of the segments
    double tolerance;  // of the number of triangles, as a part of it
};

CgalSegments toCgal(const std::vector<Segment2>& vSegments) {
    CgalSegments vCgal;
    vCgal.reserve(vSegments.size());
    for (const Segment2& segment : vSegments) {
        const Point2 p = segment.getSrc(), q = segment.getTrg();
        vCgal.emplace_back(Kernel::Point_2(p.x(), p.y()), Kernel::Point_2(q.x(), q.y()));
    }
    return vCgal;
}

template <class Triangulation>
void insertSegments(Triangulation& dt, const CgalSegments& vSegments) {
    typename Triangulation::Vertex_handle source, target;
    for (const auto& [p, q] : vSegments) {
        if (target == nullptr) {
            source = dt.insert(p);
        } else {
            source = target->point() == p ? target : dt.insert(p, target->face());
        }
        target = dt.insert(q, source->face());
        if (source != target) {
            dt.insert_constraint(source, target);
        }
    }
}

template <class Triangulation>
unsigned insertIntoCgal(const CgalPoints& vPoints, CgalSegments vSegments, bool bSort, Order order) {
    Triangulation dt;
    if (order == POINTS_FIRST) {
        dt.insert(vPoints.begin(), vPoints.end());
    }
    if (bSort) {
        using Source = CGAL::First_of_pair_property_map<CgalSegments::value_type>;
        CGAL::spatial_sort(vSegments.begin(), vSegments.end(),
                           CGAL::Spatial_sort_traits_adapter_2<Kernel, Source>());
    }
    insertSegments(dt, vSegments);
    if (order == SEGMENTS_FIRST) {
        dt.insert(vPoints.begin(), vPoints.end());
    }
    return static_cast<unsigned>(dt.number_of_faces());
}

unsigned insertHere(const Scene& scene, Order order) {
    Kelm_2D dt;
    if (order == POINTS_FIRST) {
        dt.insert(scene.vPoints);
    }
    dt.createConstraint(scene.vSegments, CIS_CONSTRAINED_DELAUNAY);
    if (order == SEGMENTS_FIRST) {
        dt.insert(scene.vPoints);
    }
    return dt.numberOfTriangles();
}

template <class Triangulation>
void compareScene(const Scene& scene, int numRuns, Order order, const std::string& remark = "") {
    const CgalPoints vPoints = toCgal(scene.vPoints);
    const CgalSegments vSegments = toCgal(scene.vSegments);
    bench::compare(
        scene.name + remark, numRuns, [&] { return insertHere(scene, order); },
        [&] { return insertIntoCgal<Triangulation>(vPoints, vSegments, scene.bRandomOrder, order); },
        scene.tolerance);
}

/// Each polygon in a call of its own here, so that it gets a graph of its own.
void comparePolygonByPolygon(const Scene& scene, int numRuns,
                             const std::vector<std::vector<Segment2>>& vPolygons) {
    const CgalPoints vPoints = toCgal(scene.vPoints);
    const CgalSegments vSegments = toCgal(scene.vSegments);
    const auto ours = [&] {
        Kelm_2D dt;
        dt.insert(scene.vPoints);
        for (const std::vector<Segment2>& vPolygon : vPolygons) {
            dt.createConstraint(vPolygon, CIS_CONSTRAINED_DELAUNAY);
        }
        return dt.numberOfTriangles();
    };
    const auto peers = [&] { return insertIntoCgal<Disjoint>(vPoints, vSegments, false, POINTS_FIRST); };
    bench::compare(scene.name + ", a call each", numRuns, ours, peers);
}

/// Bulk insertion alone, into a triangulation with constraints and into one that has only their ends.
void compareBulk(const std::vector<Point2>& vPoints, int numRuns) {
    const std::vector<Segment2> vSegments = bench::makeSeparateSegments(10000);
    std::vector<Point2> vEnds;
    for (const Segment2& segment : vSegments) {
        vEnds.push_back(segment.getSrc());
        vEnds.push_back(segment.getTrg());
    }
    const auto insertInto = [&](const std::shared_ptr<Kelm_2D>& pDt) {
        return [&vPoints, pDt] {
            pDt->insert(vPoints);
            return pDt->numberOfTriangles();
        };
    };
    const auto withConstraints = [&] {
        const auto pDt = std::make_shared<Kelm_2D>();
        pDt->createConstraint(vSegments, CIS_CONSTRAINED_DELAUNAY);
        return insertInto(pDt);
    };
    const auto withEnds = [&] {
        const auto pDt = std::make_shared<Kelm_2D>();
        pDt->insert(vEnds);
        return insertInto(pDt);
    };
    bench::compareMade("1,000,000 points", numRuns, withConstraints, withEnds);
}

std::vector<Segment2> readSegments(const char* path) {
    std::ifstream file(path);
    std::vector<Segment2> vSegments;
    double x0, y0, z0, x1, y1, z1;
    while (file >> x0 >> y0 >> z0 >> x1 >> y1 >> z1) {
        vSegments.emplace_back(Point2(x0, y0, z0), Point2(x1, y1, z1));
    }
    if (vSegments.empty()) {
        std::printf("%s: no segments\n", path);
        std::exit(1);
    }
    return vSegments;
}

std::vector<Point2> makePointsAround(const std::vector<Segment2>& vSegments, int numPoints) {
    Bbox2 box;
    for (const Segment2& segment : vSegments) {
        box.add(segment.getSrc());
        box.add(segment.getTrg());
    }
    std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, numPoints);
    for (Point2& p : vPoints) {
        const double x = p.x() / bench::sideOfSquare, y = p.y() / bench::sideOfSquare;
        p = Point2(box.get_minX() + x * box.getRangeX(), box.get_minY() + y * box.getRangeY(), 0.0);
    }
    return vPoints;
}

std::vector<Segment2> joined(const std::vector<std::vector<Segment2>>& vPolygons) {
    std::vector<Segment2> vSegments;
    for (const std::vector<Segment2>& vPolygon : vPolygons) {
        vSegments.insert(vSegments.end(), vPolygon.begin(), vPolygon.end());
    }
    return vSegments;
}

} // namespace

int main(int argc, char** argv) {
    const int numRuns = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, 1000000);
    const std::vector<std::vector<Segment2>> vPolygons = bench::makePolygons(10000);
    const double percent = 0.01 * bench::sideOfSquare;
    const Scene polygons = {"10,000 polygons", vPoints, joined(vPolygons), false, 0.0};
    const Scene few = {"3,000 crossings", vPoints, bench::makeSegments(10000, percent), true, 1e-5};
    const Scene many = {"370,000 crossings", {}, bench::makeSegments(10000, 10.0 * percent), true, 1e-4};
    Scene coast = {"coast", {}, {}, false, 1e-4}, coastAndPoints = coast;
    if (argc > 2) {
        coast.vSegments = readSegments(argv[2]);
        coastAndPoints = {"coast, 200,000 points", makePointsAround(coast.vSegments, 200000), coast.vSegments,
                          false, 1e-4};
    }

    bench::printHeader("points, then segments", "here, ms", "CGAL, ms");
    compareScene<Disjoint>(polygons, numRuns, POINTS_FIRST);
    comparePolygonByPolygon(polygons, numRuns, vPolygons);
    compareScene<Hierarchy>(few, numRuns, POINTS_FIRST, ", hierarchy");
    compareScene<Hierarchy>(many, numRuns, POINTS_FIRST, ", hierarchy");
    compareScene<Crossing>(many, numRuns, POINTS_FIRST, ", plain");
    if (argc > 2) {
        compareScene<Crossing>(coast, 20 * numRuns, POINTS_FIRST);
        compareScene<Crossing>(coastAndPoints, numRuns, POINTS_FIRST);
    }
    bench::printHeader("segments, then points", "here, ms", "CGAL, ms");
    compareScene<Disjoint>(polygons, numRuns, SEGMENTS_FIRST);
    compareScene<Hierarchy>(few, numRuns, SEGMENTS_FIRST, ", hierarchy");
    if (argc > 2) {
        compareScene<Crossing>(coastAndPoints, numRuns, SEGMENTS_FIRST);
    }
    bench::printHeader("points into 10,000 segments", "segments, ms", "ends, ms");
    compareBulk(vPoints, numRuns);
    return 0;
}
