// Random numbers in a range, and points, polygons, segments and surfaces made of them; regular curves; shear.
// The generator underneath is in random.cpp. Counts are computed in std::size_t: three times a count may
// exceed unsigned int.
#include <kelm25d/Point2.h>
#include <kelm25d/Segment2.h>
#include <kelm25d/Triangle2.h>
#include <kelm25d/rings.h>
#include <kelm25d/testDataGenerators.h>

#include "Mesh2.h"
#include "messages.h"
#include "random.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <iostream>
#include <limits>
#include <string>
#include <unordered_set>

namespace QUOR_KELM25D {

namespace {

// Attempts in a row that make no segment before generateRandomSegments fails instead of running forever.
constexpr int maxFruitlessRounds = 1000000;

// The random square of a polygon is wider than the polygon's range by this factor, seen from either end.
constexpr double widening = 1.02;

// Deliberately the same factor for both limits in y, which are not symmetric about the range thereby.
constexpr double yLimitFactor = 0.98;

// Process-wide: failed attempts since the last polygon that was found.
std::size_t numPolygonRetries = 0;

// Grows with each call, by an odd number that runs through all values, so that calls within one second
// differ.
unsigned int getSeedFromTime() {
    static unsigned int numEarlierCalls = 0;
    return static_cast<unsigned int>(std::time(nullptr)) + 2654435769U * numEarlierCalls++;
}

// Never 0, which would mean a new sequence: 1 comes after the largest seed.
unsigned int getNextSeed(unsigned int seed) {
    return seed == std::numeric_limits<unsigned int>::max() ? 1 : seed + 1;
}

double getScale(double min, double max) {
    return (max - min) * (1.0 / numRandomValues);
}

// The range is checked last, deliberately: a bad one has already resized the output and seeded the generator.
void drawNumbers(std::size_t num, double min, double max, std::vector<double>& vOut, unsigned int seed) {
    vOut.resize(num);
    seedRandom(seed != 0 ? seed : getSeedFromTime());
    KELM_CHECK(min<max);
    const double scale = getScale(min, max);
    for (double& number : vOut)
        number = nextRandom() * scale + min;
}

void drawPoints(std::size_t num, double min, double max, std::vector<Point2>& vOut, unsigned int seed) {
    KELM_CHECK(min<max);
    vOut.resize(num);
    std::vector<double> vNumbers;
    drawNumbers(2 * num, min, max, vNumbers, seed);
    for (std::size_t i = 0; i < num; ++i)
        vOut[i] = Point2(vNumbers[i], vNumbers[num + i], 0.0);
}

template <class T>
const T& pickRandom(const std::vector<T>& v) {
    return v[static_cast<std::size_t>(nextRandom()) % v.size()]; // of a longer list only the first 32768
}

// The length of (dx, dy) without overflow or underflow of the squares; scaling by a power of two is exact.
double getLength2D(double dx, double dy) {
    int exponent = 0;
    std::frexp(std::max(std::fabs(dx), std::fabs(dy)), &exponent);
    dx = std::ldexp(dx, -exponent);
    dy = std::ldexp(dy, -exponent);
    return std::ldexp(std::sqrt(dx * dx + dy * dy), exponent);
}

bool isHullTriangle(const Triangle2* pT) {
    return pT->getOppositeTriangle(0) == nullptr || pT->getOppositeTriangle(1) == nullptr ||
           pT->getOppositeTriangle(2) == nullptr;
}

// A region of triangles with numSegments border edges. A triangle that joins it across an edge and brings a
// new vertex adds one border edge, and the region stays a disc: so it is enough to count vertices.
class RegionGrower {
public:
    RegionGrower(unsigned int numSegments_, double min_, double max_)
        : numSegments(numSegments_), min(min_), max(max_) {}

    // False if the region can't grow to its size from the triangle that was drawn.
    bool grow(const std::vector<Triangle2*>& vTriangles) {
        if (vTriangles.empty()) return false;
        Triangle2* pFirst = pickRandom(vTriangles); // may be a hull triangle, deliberately
        vStack.push_back(pFirst);
        vRegion.push_back(pFirst);
        for (int i = 0; i < 3; ++i)
            sVertices.insert(pFirst->getCorner(i));
        while (sVertices.size() < numSegments) {
            if (vStack.empty()) return false;
            Triangle2* pTriangle = vStack.back();
            vStack.pop_back();
            addNeighbours(pTriangle);
        }
        return true;
    }

    const std::vector<Triangle2*>& getRegion() const { return vRegion; }

private:
    bool isOutside(const Point2& p) const {
        return p.x() > max || p.x() < min || p.y() > yLimitFactor * max || p.y() < yLimitFactor * min;
    }

    void addNeighbours(const Triangle2* pTriangle) {
        bool bOutside = false; // one neighbour outside bars those that follow, deliberately
        for (int i = 0; i < 3 && sVertices.size() < numSegments; ++i) {
            Triangle2* pNeighbour = pTriangle->getOppositeTriangle(i);
            if (pNeighbour == nullptr || isHullTriangle(pNeighbour)) continue;
            bool bBringsVertex = false;
            for (int j = 0; j < 3; ++j) {
                const Point2* pCorner = pNeighbour->getCorner(j);
                if (sVertices.count(pCorner) == 0) bBringsVertex = true;
                if (isOutside(*pCorner)) bOutside = true;
            }
            if (!bBringsVertex || bOutside) continue;
            vRegion.push_back(pNeighbour);
            vStack.push_back(pNeighbour);
            for (int j = 0; j < 3; ++j)
                sVertices.insert(pNeighbour->getCorner(j));
        }
    }

    const std::size_t numSegments;
    const double min, max;
    std::vector<Triangle2*> vStack;              // of the region, neighbours not looked at yet
    std::vector<Triangle2*> vRegion;             // in the order of joining
    std::unordered_set<const Point2*> sVertices; // the corners of vRegion, as many as it has border edges
};

// Whether points drawn from lower to upper can ever give a polygon: they must differ, and if neighbours have
// to join the first triangle, at least two of the values that can be drawn must lie within the limits in y.
bool canFindPolygon(unsigned int numSegments, double min, double max, double lower, double upper) {
    const double scale = getScale(lower, upper);
    if (!(scale > 0.0) || !std::isfinite(scale)) return false;
    if (numSegments == 3) return true;
    const double first = std::ceil((yLimitFactor * min - lower) / scale);
    const double last = std::floor((yLimitFactor * max - lower) / scale);
    return std::max(first, 0.0) < std::min(last, numRandomValues - 1.0);
}

// The sum of all bumps at each point, as its height.
void addBumps(const std::vector<double>& vX, const std::vector<double>& vY,
              const std::vector<double>& vWeights, double factor, std::vector<Point2>& vPoints) {
    for (std::size_t c = 0; c < vX.size(); ++c)
        for (Point2& p : vPoints) {
            const double dx = factor * (p.x() - vX[c]); // before it is squared, so that nothing overflows
            const double dy = factor * (p.y() - vY[c]);
            const double d = std::sqrt(dx * dx + dy * dy) * vWeights[c];
            const double bump = 1.0 / std::sqrt(d * d + 1.0);
            p.setZ(c == 0 ? bump : c % 2 == 1 ? p.z() - bump : p.z() + bump);
        }
}

// Scales the heights to zmin and zmax, which rounding neither misses nor exceeds.
void scaleHeights(double zmin, double zmax, std::vector<Point2>& vPoints) {
    const auto isLower = [](const Point2& a, const Point2& b) { return a.z() < b.z(); };
    const auto extremes = std::minmax_element(vPoints.begin(), vPoints.end(), isLower);
    const double smallest = extremes.first->z();
    const double largest = extremes.second->z();
    for (Point2& p : vPoints) {
        const double part = largest > smallest ? (p.z() - smallest) / (largest - smallest) : 0.0;
        p.setZ(part == 1.0 ? zmax : std::min(part * (zmax - zmin) + zmin, zmax));
    }
}

} // namespace

void generateRandomNumbers(unsigned int num, double min, double max, std::vector<double>& vRandomNumbersOut,
                           unsigned int seed) {
    drawNumbers(num, min, max, vRandomNumbersOut, seed);
}

void generateRandomPoints(unsigned int numRandomPoints, double min, double max,
                          std::vector<Point2>& vRandomPointsOut, unsigned int seed) {
    drawPoints(numRandomPoints, min, max, vRandomPointsOut, seed);
}

void generateRandomPoints3D(unsigned int numRandomPoints, double min, double max,
                            std::vector<Point2>& vRandomPointsOut, unsigned int seed) {
    KELM_CHECK(min<max);
    const std::size_t num = numRandomPoints;
    vRandomPointsOut.resize(num);
    std::vector<double> vNumbers;
    drawNumbers(3 * num, min, max, vNumbers, seed);
    // A generator that talks: deliberate, programs read these lines.
    const std::string end = ", siz=" + std::to_string(3 * num) + '\n';
    std::cout << "after generate\n";
    for (std::size_t i = 0; i < num; ++i) {
        std::cout << "i=" + std::to_string(i) + end;
        vRandomPointsOut[i] = Point2(vNumbers[i], vNumbers[num + i], vNumbers[2 * num + i]);
    }
    std::cout << std::flush;
}

void generateRandomPolygon(unsigned int numSegments, double min, double max,
                           std::vector<Segment2>& vPolygonOut, unsigned int seed) {
    const double range = max - min;
    KELM_CHECK(numSegments>2);
    KELM_CHECK(min<max);
    KELM_CHECK(range>0);
    const double lower = max - widening * range;
    const double upper = min + widening * range;
    KELM_CHECK(canFindPolygon(numSegments, min, max, lower, upper));
    for (;; seed = getNextSeed(seed)) { // so a seed of 0 goes on as 1, deliberately
        std::vector<Point2> vPoints;
        drawPoints(50 * numPolygonRetries + 4 * std::size_t(numSegments), lower, upper, vPoints, seed);
        Mesh2 mesh(3);
        mesh.insertVector(vPoints);
        std::vector<Triangle2*> vTriangles;
        mesh.getTrianglePointers(vTriangles);
        RegionGrower grower(numSegments, min, max);
        if (grower.grow(vTriangles)) {
            numPolygonRetries = 0;
            getBorders(grower.getRegion(), vPolygonOut);
            sortRing(vPolygonOut); // fails, with its warning, only over what vPolygonOut held before
            return;
        }
        ++numPolygonRetries;
        vPolygonOut.clear();
    }
}

void generateRandomSegments(unsigned int numSegments, double min, double max, double maxLen,
                            std::vector<Segment2>& vSegmentsOut, unsigned int seed) {
    const double maxLength = maxLen; // the name that the failed condition shows
    KELM_CHECK(min<max);
    KELM_CHECK(maxLength>0);
    std::vector<Point2> vPool;
    drawPoints(2 * std::size_t(numSegments) + 100, min, max, vPool, seed);
    const std::size_t siz = vPool.size();
    KELM_CHECK(siz>=2);
    const double aFactor[] = {1.0, 0.8, 0.5};
    int numFruitless = 0;
    while (vSegmentsOut.size() < numSegments) {
        KELM_CHECK(numFruitless<maxFruitlessRounds);
        ++numFruitless;
        const Point2 a = pickRandom(vPool);
        const Point2 b = pickRandom(vPool);
        const double d = getLength2D(b.x() - a.x(), b.y() - a.y());
        if (d == 0.0) continue;
        const double factor = aFactor[nextRandom() % 3];
        const Point2 e(a.x() + (b.x() - a.x()) / d * factor * maxLength,
                       a.y() + (b.y() - a.y()) / d * factor * maxLength, 0.0);
        vPool.push_back(e);
        if (a == e) continue;
        vSegmentsOut.emplace_back(a, e);
        numFruitless = 0;
    }
}

void generateRandomSurfacePoints(unsigned int numX, unsigned int numY, unsigned int numCenters, double xmin,
                                 double ymin, double zmin, double xmax, double ymax, double zmax,
                                 std::vector<Point2>& vSurfacePointsOut, unsigned int seed) {
    const char* const where = "generateRandomSurfacePoints()";
    const double width = xmax - xmin;
    const double depth = ymax - ymin;
    if (!(width > 0.0 && depth > 0.0 && zmax - zmin > 0.0))
        return printError(where, "impossible range, returning");
    if (numX < 2 || numY < 2) return printError(where, "numX and numY must be at least 2, returning");
    if (numCenters == 0) {
        printWarning(where, "numCenters<1, changed to 1");
        numCenters = 1;
    }
    const double dx = width / (numX - 1);
    const double dy = depth / (numY - 1);
    for (unsigned int i = 0; i < numX; ++i)
        for (unsigned int j = 0; j < numY; ++j)
            vSurfacePointsOut.emplace_back(i == numX - 1 ? xmax : i * dx + xmin,
                                           j == numY - 1 ? ymax : j * dy + ymin, 0.0);

    std::vector<double> vX, vY, vWeights;
    drawNumbers(numCenters, xmin, xmax, vX, seed);
    if (seed != 0) seed = getNextSeed(seed);
    drawNumbers(numCenters, ymin, ymax, vY, seed);
    if (seed != 0) seed = getNextSeed(seed);
    drawNumbers(numCenters, 0.01, 1.0, vWeights, seed);
    addBumps(vX, vY, vWeights, 30.0 / (width + depth), vSurfacePointsOut);
    scaleHeights(zmin, zmax, vSurfacePointsOut);
}

void generateCircle(int numPoints, double x, double y, double z, double radiusX, double radiusY,
                    std::vector<Point2>& vCirclePointsOut) {
    if (numPoints == 0) return printWarning("generateCircle()", "numPoints=0");
    const double step = 6.28318 / numPoints; // a shortened 2 pi, deliberately
    for (int i = 0; i < numPoints; ++i) {
        const double t = i * step;
        vCirclePointsOut.emplace_back(std::cos(t) * radiusX + x, std::sin(t) * radiusY + y, z);
    }
}

void generateSineSegments(int numSegments, int numPeriods, double xOffset, double yOffset, double xFactor,
                          double yFactor, bool bSwapXY, std::vector<Segment2>& vSineSegmentsOut) {
    KELM_CHECK(numSegments>0);
    const double step = 2.0 * numPeriods * 3.141592653589793 / numSegments;
    const auto getPoint = [&](int i) {
        const double t = i * step;
        double v = yFactor == 0.0 ? std::fabs(std::sin(t)) : std::sin(t) * yFactor;
        v += yOffset;
        if (std::fabs(v) < 1e-13) v = 0.0;
        const double u = t * xFactor + xOffset;
        return bSwapXY ? Point2(v, u, 0.0) : Point2(u, v, 0.0);
    };
    Point2 previous = getPoint(0);
    for (int i = 0; i < numSegments; ++i) {
        const Point2 next = getPoint(i + 1);
        vSineSegmentsOut.emplace_back(previous, next);
        previous = next;
    }
}

void shear(std::vector<Point2>& vPointsInOut, double shearX, double shearY) {
    for (Point2& p : vPointsInOut)
        p = Point2(p.x() + p.y() * shearX, p.y() + p.x() * shearY, p.z()); // loses the index, deliberately
}

} // namespace QUOR_KELM25D
