// Reading of zones that cover about a million triangles, in nanoseconds a triangle; import beside the
// triangulation of its points and cuts beside the same segments as constraints, in turn; surface
// optimisation. Usage: zone_compare [RUNS]

#include "benchPoints.h"
#include "compare.h"

#include <kelm25d/Kelm_2D.h>
#include <kelm25d/Zone2.h>
#include <kelm25d/testDataGenerators.h>

#include <functional>
#include <memory>

using namespace QUOR_KELM25D;

namespace {

constexpr int numPoints = 500000; // for a million triangles

ConstraintGraph2* addRing(Kelm_2D& dt, double x, double y, double radius) {
    std::vector<Point2> vCorners;
    generateCircle(1000, x, y, 0.0, radius, radius, vCorners);
    std::vector<Segment2> vRing;
    for (std::size_t i = 0; i < vCorners.size(); ++i) {
        vRing.emplace_back(vCorners[i], vCorners[(i + 1) % vCorners.size()]);
    }
    return dt.createConstraint(vRing, CIS_CONSTRAINED_DELAUNAY);
}

/// numTriangles is the number by which the time is divided; 0 for the triangles that result.
void printReading(const char* name, int numRuns, const Zone2& zone, std::size_t numTriangles = 0) {
    std::vector<double> vSeconds;
    std::size_t numResult = 0;
    for (int run = 0; run < numRuns; ++run) {
        std::vector<Triangle2*> vTriangles;
        unsigned result = 0;
        vSeconds.push_back(bench::secondsOf(
            [&] {
                zone.getTriangles(vTriangles);
                return static_cast<unsigned>(vTriangles.size());
            },
            result));
        numResult = result;
    }
    std::printf("| %-30s | %12zu | %12.1f |\n", name, numResult,
                1e9 * bench::median(vSeconds) / static_cast<double>(numTriangles ? numTriangles : numResult));
}

void readZones(int numRuns) {
    Kelm_2D dt;
    dt.insert(bench::makePoints(bench::UNIFORM, numPoints));
    ConstraintGraph2* pLarge = addRing(dt, 500.0, 500.0, 499.0);
    ConstraintGraph2* pSmall = addRing(dt, 400.0, 400.0, 300.0);
    Zone2 *pInside = dt.createZone(pLarge, ZL_INSIDE), *pOutside = dt.createZone(pSmall, ZL_OUTSIDE);
    const std::size_t numBoth = pInside->getNumberOfTriangles() + pOutside->getNumberOfTriangles();
    std::printf("\n| %-30s | %12s | %12s |\n", "zones", "triangles", "ns each");
    std::printf("|--------------------------------|--------------|--------------|\n");
    printReading("everything", numRuns, *dt.createZone(nullptr, ZL_GLOBAL));
    printReading("inside of a ring", numRuns, *pInside);
    printReading("outside of a ring", numRuns, *pOutside);
    printReading("around a point, up to a ring", numRuns,
                 *dt.createZone(pLarge, ZL_GROW, Point2(5e2, 5e2, 0)));
    printReading("union, a triangle of both", numRuns, *zoneUnion(pInside, pOutside), numBoth);
    printReading("intersection", numRuns, *zoneIntersection(pInside, pOutside), numBoth);
    printReading("difference", numRuns, *zoneDifference(pInside, pOutside), numBoth);
    printReading("symmetric difference", numRuns, *zoneSymmetricDifference(pInside, pOutside), numBoth);
}

/// The triangles of points, three corners each, in the order of the mesh or in a random one.
std::vector<Point2> makeTriples(const std::vector<Point2>& vPoints, bool bShuffled) {
    Kelm_2D dt;
    dt.insert(vPoints);
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    if (bShuffled) std::shuffle(vTriangles.begin(), vTriangles.end(), std::mt19937_64(1));
    std::vector<Point2> vTriples;
    for (const Triangle2* pT : vTriangles) {
        for (int i = 0; i < 3; ++i) {
            vTriples.push_back(*pT->getCorner(i));
        }
    }
    return vTriples;
}

void compareImport(const char* name, int numRuns, bool bShuffled) {
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, numPoints);
    std::vector<Point2> vTriples = makeTriples(vPoints, bShuffled);
    bench::compare(
        name, numRuns,
        [&] {
            Kelm_2D dt;
            dt.importTriangles(vTriples, true, false);
            return dt.numberOfTriangles();
        },
        [&] {
            Kelm_2D dt;
            dt.insert(vPoints);
            return dt.numberOfTriangles();
        });
}

void compareCuts(const char* name, int numRuns, bool bWithConstraints) {
    const std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, numPoints / 5);
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> uniform(0.0, bench::sideOfSquare), angle(0.0, 6.28);
    std::vector<Segment2> vKnives;
    for (int i = 0; i < 1000; ++i) {
        const double x = uniform(random), y = uniform(random), a = angle(random);
        vKnives.emplace_back(Point2(x, y, 0.0), Point2(x + 30.0 * std::cos(a), y + 30.0 * std::sin(a), 0.0));
    }
    const auto filled = [&] {
        auto pDt = std::make_shared<Kelm_2D>();
        pDt->insert(vPoints);
        return pDt;
    };
    bench::compareMade(
        name, numRuns,
        [&]() -> bench::Work {
            return [&, pDt = filled()] {
                pDt->cutTriangles(vKnives, bWithConstraints);
                return 1;
            };
        },
        [&]() -> bench::Work {
            return [&, pDt = filled()] {
                pDt->createConstraint(vKnives, CIS_CONSTRAINED_DELAUNAY);
                return 1;
            };
        });
}

/// Flips for the surface of a wavy terrain, each on a mesh of its own.
void printOptimization(const char* name, int numRuns, const std::function<void(Zone2&)>& optimize) {
    std::vector<Point2> vPoints = bench::makePoints(bench::UNIFORM, numPoints);
    for (Point2& p : vPoints) {
        p.setZ(20.0 * std::sin(p.x() / 20.0) * std::cos(p.y() / 15.0));
    }
    std::vector<double> vSeconds;
    std::size_t numTriangles = 0;
    for (int run = 0; run < numRuns; ++run) {
        Kelm_2D dt;
        dt.insert(vPoints);
        Zone2* pZone = dt.createZone(nullptr, ZL_GLOBAL);
        numTriangles = pZone->getNumberOfTriangles();
        unsigned ignored = 0;
        vSeconds.push_back(bench::secondsOf([&] { return optimize(*pZone), 0U; }, ignored));
    }
    std::printf("| %-30s | %12zu | %12.1f |\n", name, numTriangles,
                1e9 * bench::median(vSeconds) / static_cast<double>(numTriangles));
}

} // namespace

int main(int argc, char** argv) {
    const int numRuns = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    readZones(2 * numRuns);
    bench::printHeader("import of 1,000,000 triangles", "import, ms", "points, ms");
    compareImport("in the order of a mesh", numRuns, false);
    compareImport("in random order", numRuns, true);
    bench::printHeader("1,000 segments, 100,000 points", "cut, ms", "force, ms");
    compareCuts("cut", numRuns, false);
    compareCuts("cut, the rest protected", numRuns, true);
    std::printf("\n| %-30s | %12s | %12s |\n", "surface optimisation", "triangles", "ns each");
    std::printf("|--------------------------------|--------------|--------------|\n");
    printOptimization("unifyGrid", numRuns, [](Zone2& zone) { zone.unifyGrid(0.1); });
    printOptimization("optimizeValleysAndRidges", numRuns,
                      [](Zone2& zone) { zone.optimizeValleysAndRidges(0.1, 0.05); });
    printOptimization("slopeValleyRidgeOptimization", numRuns,
                      [](Zone2& zone) { zone.slopeValleyRidgeOptimization(); });
    return 0;
}
