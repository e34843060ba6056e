// The point sets of the benchmarks: made once per size, the same for every library.
// Seeds are fixed; the order of the points is random, as a caller's often is, but for the scan lines.
#pragma once

#include <kelm25d/Point2.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace bench {

using QUOR_KELM25D::Point2;

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
    std::uniform_real_distribution<double> uniform(0.0, 1000.0);
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

} // namespace bench
