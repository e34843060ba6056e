// The point sets and segments of the benchmarks: made once per size, the same for every library.
// Seeds are fixed; the order is random, as a caller's often is, but for scan lines and polygons.
#pragma once

#include <kelm25d/Point2.h>
#include <kelm25d/Segment2.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace bench {

using QUOR_KELM25D::Point2;
using QUOR_KELM25D::Segment2;

/// The side of the square of uniform points and of segments; it starts at the origin.
constexpr double sideOfSquare = 1000.0;
constexpr double pi = 3.14159265358979323846;

enum Kind { UNIFORM, GRID, CLUSTERS, SCAN_LINES };

inline const std::vector<Kind>& allKinds() {
    static const std::vector<Kind> vKinds = {UNIFORM, GRID, CLUSTERS, SCAN_LINES};
    return vKinds;
}

inline std::string nameOf(Kind kind) {
    static const char* const aName[] = {"uniform", "grid", "clusters", "scan lines"};
    return aName[kind];
}

/// About n points: uniform in a square; a square integer grid; a hundred Gaussian clusters; parallel lines of
/// points at random places, one line after another.
inline std::vector<Point2> makePoints(Kind kind, int n) {
    std::mt19937_64 random(20261121);
    std::uniform_real_distribution<double> uniform(0.0, sideOfSquare);
    std::normal_distribution<double> normal(0.0, 3.0);
    const int side = static_cast<int>(std::lround(std::sqrt(static_cast<double>(n))));
    std::vector<Point2> vPoints;
    vPoints.reserve(static_cast<std::size_t>(n));
    switch (kind) {
    case UNIFORM:
        for (int i = 0; i < n; ++i) {
            const double x = uniform(random), y = uniform(random);
            vPoints.emplace_back(x, y, 0.0);
        }
        break;
    case GRID:
        for (int i = 0; i < side * side; ++i) {
            vPoints.emplace_back(i / side, i % side, 0.0);
        }
        std::shuffle(vPoints.begin(), vPoints.end(), random);
        break;
    case CLUSTERS:
        for (int i = 0; i < n; ++i) {
            const int cluster = i % 100;
            const double x = cluster * 7919 % 1000 + normal(random),
                         y = cluster * 104729 % 1009 + normal(random);
            vPoints.emplace_back(x, y, 0.0);
        }
        break;
    case SCAN_LINES:
        for (int i = 0; i < side * side; ++i) {
            vPoints.emplace_back(i / side, uniform(random), 0.0);
        }
        break;
    }
    return vPoints;
}

/// n simple polygons of ten segments, n a square number, one after the other through a square grid of cells:
/// each has its corners at random distances from the centre of its cell and stays inside it.
inline std::vector<std::vector<Segment2>> makePolygons(int n) {
    std::mt19937_64 random(20261122);
    const int numSide = static_cast<int>(std::lround(std::sqrt(static_cast<double>(n)))), numCorners = 10;
    const double cell = sideOfSquare / numSide;
    std::uniform_real_distribution<double> radius(0.1 * cell, 0.49 * cell);
    std::vector<std::vector<Segment2>> vPolygons;
    for (int i = 0; i < numSide * numSide; ++i) {
        const double x = (i / numSide + 0.5) * cell, y = (i % numSide + 0.5) * cell;
        std::vector<Point2> vCorners;
        for (int k = 0; k < numCorners; ++k) {
            const double r = radius(random), angle = 2.0 * pi * k / numCorners;
            vCorners.emplace_back(x + r * std::cos(angle), y + r * std::sin(angle), 0.0);
        }
        vPolygons.emplace_back();
        for (int k = 0; k < numCorners; ++k) {
            vPolygons.back().emplace_back(vCorners[k], vCorners[(k + 1) % numCorners]);
        }
    }
    return vPolygons;
}

/// n segments of one length at random angles, inside the square of uniform points; they cross each other.
inline std::vector<Segment2> makeSegments(int n, double length) {
    std::mt19937_64 random(20261123);
    std::uniform_real_distribution<double> uniform(0.5 * length, sideOfSquare - 0.5 * length), turn(0.0, pi);
    std::vector<Segment2> vSegments;
    for (int i = 0; i < n; ++i) {
        const double x = uniform(random), y = uniform(random), angle = turn(random);
        const double dx = 0.5 * length * std::cos(angle), dy = 0.5 * length * std::sin(angle);
        vSegments.emplace_back(Point2(x - dx, y - dy, 0.0), Point2(x + dx, y + dy, 0.0));
    }
    return vSegments;
}

/// n segments that don't meet, n a square number: one at random in each cell of a square grid.
inline std::vector<Segment2> makeSeparateSegments(int n) {
    std::mt19937_64 random(20261124);
    const int numSide = static_cast<int>(std::lround(std::sqrt(static_cast<double>(n))));
    const double cell = sideOfSquare / numSide;
    std::uniform_real_distribution<double> uniform(0.0, cell);
    std::vector<Segment2> vSegments;
    const auto makeEnd = [&](int i) {
        const double x = i / numSide * cell + uniform(random), y = i % numSide * cell + uniform(random);
        return Point2(x, y, 0.0);
    };
    for (int i = 0; i < numSide * numSide; ++i) {
        const Point2 source = makeEnd(i), target = makeEnd(i);
        vSegments.emplace_back(source, target);
    }
    return vSegments;
}

} // namespace bench
