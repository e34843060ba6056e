// The generators of the point sets.
// Coordinates are chosen so that exactness matters: on one line, on one circle, or nearly so.

#include "pointSets.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <utility>

namespace QUOR_KELM25D {
namespace testing_support {

std::vector<PointSet> makeAllKinds(std::size_t n) {
    using Place = std::pair<double, double>;
    std::mt19937_64 random(20240601);
    const auto unit = [&] { return std::uniform_real_distribution<double>(0.0, 1.0)(random); };
    const auto normal = [&] { return std::normal_distribution<double>()(random); };
    const auto integer = [&](int a, int b) { return 1.0 * std::uniform_int_distribution<int>(a, b)(random); };
    const double side = std::ceil(std::sqrt(static_cast<double>(n)));
    double i = 0.0; // position of the point that is being made
    std::vector<PointSet> vKinds;
    const auto add = [&](const char* name, bool bGeneral, const auto& place) {
        vKinds.push_back({name, bGeneral, {}});
        for (i = 0.0; i < n; ++i) {
            const Place xy = place();
            vKinds.back().points.emplace_back(xy.first, xy.second, i);
        }
    };
    const auto addBox = [&](const char* name, double low, double size) {
        add(name, true, [&] { return Place{low + size * unit(), low + size * unit()}; });
    };
    const auto row = [&] { return std::floor(i / side); };
    const auto onGrid = [&](double noise) {
        return Place{std::fmod(i, side) + noise * unit(), row() + noise * unit()};
    };
    const auto onCircle = [](double a) { return Place{1e3 * std::cos(a), 1e3 * std::sin(a)}; };
    std::vector<Place> vCircle; // all 324 integer points on a circle of radius 5*13*17*29
    for (double x = -32045.0; x <= 32045.0; ++x) {
        const double y2 = 32045.0 * 32045.0 - x * x, y = std::round(std::sqrt(y2));
        if (y * y == y2) vCircle.insert(vCircle.end(), {{x, y}, {x, -y}});
    }

    addBox("uniform", 0, 1);
    addBox("1e-12 scale", 0, 1e-12);
    addBox("negative", -1000, 999);
    add("integer grid", false, [&] { return onGrid(0.0); });
    add("jittered grid", true, [&] { return onGrid(0.1); });
    add("clusters", true, [&] { return Place{std::fmod(i, 5) + 1e-3 * normal(), 1e-3 * normal()}; });
    add("circle", false, [&] { return onCircle(7 * unit()); });
    add("integer circle", false, [&] { return vCircle[random() % vCircle.size()]; });
    add("few lines", false, [&] {
        const double slope = std::fmod(i, 5) - 2.0, t = integer(-1000, 1000);
        return Place{t, slope * t + slope};
    });
    add("scan lines", false, [&] { return Place{unit(), row()}; });
    add("duplicates", false, [&] { return Place{integer(0, 5), integer(0, 5)}; });
    add("survey millimetres", false, [&] {
        return Place{4.5e6 + 0.001 * integer(0, 500), 5.3e6 + 0.001 * integer(0, 500)};
    });
    add("nearly collinear", false, [&] {
        const double x = 0.5 + std::ldexp(integer(0, 1 << 20), -40);
        return Place{x, x + std::ldexp(integer(-2, 2), -53)};
    });
    add("far cluster", true, [&] {
        const double offset = i < 8 ? 0 : 1e6, size = i < 8 ? 1e9 : 1e-3;
        return Place{offset + size * normal(), offset + size * normal()};
    });
    const std::size_t numOrdinary = vKinds.size();
    addBox("1e150 scale", -1e150, 2e150);
    addBox("1e300 scale", -1e300, 2e300);
    addBox("1e-160 scale", -1e-160, 2e-160);
    addBox("1e-300 scale", -1e-300, 2e-300);
    add("denormals", false, [&] { return Place{5e-324 * integer(-30, 30), 5e-324 * integer(-30, 30)}; });
    for (std::size_t numMixed : {numOrdinary, vKinds.size()}) {
        add(numMixed == numOrdinary ? "ordinary mixture" : "mixture of all", false, [&] {
            const std::size_t k = static_cast<std::size_t>(i);
            const Point2& p = vKinds[k % numMixed].points[k];
            return Place{p.x(), p.y()};
        });
    }
    return vKinds;
}

std::size_t countPlaces(const std::vector<Point2>& v) {
    return std::set<Point2>(v.begin(), v.end()).size();
}

std::set<Places> triangleSet(const Kelm_2D& dt) {
    std::set<Places> sTriangles;
    for (const Triangle2* pT : allTriangles(dt)) {
        const Point2 &a = *pT->getCorner(0), &b = *pT->getCorner(1), &c = *pT->getCorner(2);
        sTriangles.insert(Places{{a.x(), a.y()}, {b.x(), b.y()}, {c.x(), c.y()}});
    }
    return sTriangles;
}

std::vector<Point2*> hullVertices(const Kelm_2D& dt) {
    std::vector<Point2*> vHull;
    for (const Triangle2* pT : allTriangles(dt))
        for (int i = 0; i < 3; ++i)
            if (pT->getOppositeTriangle(i) == nullptr) vHull.push_back(pT->getCorner(incIndexBy1(i)));
    return vHull;
}

} // namespace testing_support
} // namespace QUOR_KELM25D
