// Loads that take a fraction of a second as they should, and minutes where a cost grows with the square of
// their size. What the operations do is tested with each of them.
#include "testing.h"

#include <chrono>
#include <functional>

namespace {

constexpr int n = 100000;

std::vector<Point2> makeLine() {
    std::vector<Point2> v;
    for (int i = 0; i < n; ++i)
        v.emplace_back(i, 0, 0);
    std::shuffle(v.begin(), v.end(), std::mt19937_64(3));
    return v;
}

// Each walk over the fan of the line would be as long as the line, but for the order.
void insertLineThenApex(Kelm_2D& dt, double height, bool bBulkAtLast) {
    for (const Point2& p : makeLine())
        dt.insert(p);
    dt.insert(std::vector<Point2>(bBulkAtLast ? 2 : 0, {6, height, 0}));
    for (int i = 0; i < 2; ++i)
        dt.getImpl()->getMesh().remove(dt.insert({5, height, 0}), true);
    dt.insert({5, height, 0});
    ASSERT_TRUE(dt.is2D());
}

void removeFromWaitingLine(Kelm_2D& dt) {
    std::vector<Point2*> vWaiting;
    for (const Point2& p : makeLine())
        vWaiting.push_back(dt.insert(p));
    for (int i = 0; i < n - 10; ++i) {
        dt.remove(vWaiting[static_cast<std::size_t>(i)]);
        if (i % 4 == 0) dt.insert({n + 1.0 * i, 0, 0});
    }
    dt.insert({5, 5, 0});
    ASSERT_EQ(dt.numberOfPoints() - 2, dt.numberOfTriangles());
}

// Half of them in the sorted part of the index, half in its tail; beside a point far off all share one key.
void removeAmongMany(Kelm_2D& dt, double far) {
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> unit(0, 1);
    std::vector<Point2> v(n, {far, far, 0});
    std::generate(v.begin() + 1, v.end(), [&] { return Point2(unit(random), unit(random), 0); });
    std::vector<Point2*> vHandles;
    dt.insert(v, vHandles);
    for (int i = 0; i < n / 4; ++i)
        vHandles.push_back(dt.insert({unit(random), unit(random), 0}));
    std::reverse(vHandles.begin(), vHandles.end());
    for (int i = 0; i < n / 2; ++i)
        dt.remove(vHandles[static_cast<std::size_t>(i)]);
}

// The hub has the highest address.
void constrainSpokes(Kelm_2D& dt, ConstraintInsertionStrategy cis) {
    std::vector<Point2> vRing;
    std::vector<Segment2> vSpokes;
    for (int i = 0; i < n; ++i) {
        const double angle = i * 2 * 3.14159265358979 / n;
        vRing.emplace_back(std::cos(angle), std::sin(angle), 0);
        vSpokes.push_back({vRing.back(), {0, 0, 0}});
    }
    dt.insert(vRing);
    dt.insert({0, 0, 0});
    dt.createConstraint(vSpokes, cis);
    dt.applyConstraintsAndZones();
}

void constrainValley(Kelm_2D& dt) {
    std::vector<Point2> v{{-1000, 0, 0}, {1000, 0, 0}, {0.5, -1, 0}};
    for (int i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / n - 0.5;
        v.emplace_back(t, 0.1 + t * t, 0);
    }
    dt.insert(v);
    dt.createConstraint({{v[0], v[1]}}, CIS_CONSTRAINED_DELAUNAY);
}

void importGridWithHoles(Kelm_2D& dt) {
    std::vector<Point2> v;
    for (int k = 0; k < n; ++k) {
        const int i = k % 300, j = k / 300;
        const Point2 a(i, j, 0), c(i + 1, j + 1, 0);
        if (i % 3 != 1 || j % 3 != 1)
            v.insert(v.end(), {a, {i + 1.0, 1.0 * j, 0}, c, a, c, {1.0 * i, j + 1.0, 0}});
    }
    ASSERT_NE(nullptr, dt.importTriangles(v, true, false));
}

} // namespace

TEST(Scaling, LargeLoadsTakeLittleTime) {
    const std::pair<const char*, std::function<void(Kelm_2D&)>> aLoad[] = {
        {"line, apexes in bulk", [](Kelm_2D& dt) { insertLineThenApex(dt, 1, true); }},
        {"line, apex so far off that the line has one key",
         [](Kelm_2D& dt) { insertLineThenApex(dt, 1e9, false); }},
        {"removal from a line", removeFromWaitingLine},
        {"removal among many keys", [](Kelm_2D& dt) { removeAmongMany(dt, 1); }},
        {"removal among equal keys", [](Kelm_2D& dt) { removeAmongMany(dt, 1e7); }},
        {"spokes", [](Kelm_2D& dt) { constrainSpokes(dt, CIS_CONSTRAINED_DELAUNAY); }},
        {"spokes, surface", [](Kelm_2D& dt) { constrainSpokes(dt, CIS_CONFORMING_SURFACE_HEIGHT); }},
        {"corridor", constrainValley},
        {"import with holes", importGridWithHoles}};
    for (const auto& [name, run] : aLoad) {
        SCOPED_TRACE(name);
        Kelm_2D dt;
        const auto start = std::chrono::steady_clock::now();
        ASSERT_NO_FATAL_FAILURE(run(dt));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)); // for sanitizers, too
        ASSERT_VALID_MESH(dt);
    }
}
