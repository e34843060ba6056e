// Import of given triangles: that a mesh comes back as it was given, whatever its shape, and that nothing
// that is no mesh passes for one. What zones do is tested in the zone tests.
#include "testing.h"

#include "OpenEdges.h"
#include "Partitioner.h"

#include <array>
#include <chrono>
#include <limits>

namespace {

using Points = std::vector<Point2>;
using Corners = std::array<std::pair<double, double>, 3>;

/// Three places from the lowest on, which keeps the direction.
Corners cornersOf(const Point2& a, const Point2& b, const Point2& c) {
    Corners corners{{{a.x(), a.y()}, {b.x(), b.y()}, {c.x(), c.y()}}};
    std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
    return corners;
}

std::multiset<Corners> cornersOf(const std::vector<Triangle2*>& vTriangles) {
    std::multiset<Corners> sCorners;
    for (const Triangle2* pT : vTriangles)
        sCorners.insert(cornersOf(*pT->getCorner(0), *pT->getCorner(1), *pT->getCorner(2)));
    return sCorners;
}

void append(Points& v, const Triangle2* pT, int first) {
    for (const int i : {first, incIndexBy1(first), incIndexBy2(first)})
        v.push_back(*pT->getCorner(i));
}

/// The triangles of a triangulation, some edges of which were flipped.
std::vector<Triangle2*> flipAtRandom(Kelm_2D& dt, std::mt19937_64& random) {
    std::vector<Triangle2*> vTriangles;
    dt.getTrianglePointers(vTriangles);
    for (std::size_t k = 0; k < 2 * vTriangles.size(); ++k) {
        Triangle2* pT = vTriangles[random() % vTriangles.size()];
        const int i = static_cast<int>(random() % 3);
        if (dt.getImpl()->canBeFlipped(pT, i)) Dt2::flip(pT, i);
    }
    return vTriangles;
}

/// Empty if the zone has just the given triangles, its border is constrained, and the mesh is a triangulation
/// of the hull of its vertices, which are the given ones and numMore others.
std::string findImportFault(Kelm_2D& dt, const Zone2* pZone, const Points& vGiven, std::size_t numMore) {
    if (pZone == nullptr) return "no zone";
    if (!dt.checkValidity(false, "import")) return "bad neighbours";
    if (dt.numberOfPoints() != countPlaces(vGiven) + numMore) return "a wrong number of vertices";
    std::multiset<Corners> sGiven;
    for (std::size_t i = 0; i < vGiven.size(); i += 3)
        sGiven.insert(cornersOf(vGiven[i], vGiven[i + 1], vGiven[i + 2]));
    std::vector<Triangle2*> vZone, vAll;
    pZone->getTriangles(vZone);
    if (cornersOf(vZone) != sGiven) return "other triangles than given";
    for (Triangle2* pT : vZone)
        for (int i = 0; i < 3; ++i)
            if (!std::binary_search(vZone.begin(), vZone.end(), pT->getOppositeTriangle(i)) &&
                !dt.isConstraint(pT, i))
                return "a border that is no constraint";
    dt.getTrianglePointers(vAll);
    std::vector<Point2*> vHull;
    dt.getConvexHull(true, vHull);
    for (const Triangle2* pT : vAll)
        if (getOrientation2(pT->getCorner(0), pT->getCorner(1), pT->getCorner(2)) != ORIENTATION2_CCW)
            return "a triangle that is not counterclockwise";
    for (std::size_t i = 0, n = vHull.size(); i < n; ++i)
        if (exactOrientation(*vHull[i], *vHull[(i + 1) % n], *vHull[(i + 2) % n]) < 0)
            return "a hull that is not filled";
    return vAll.size() + 2 + vHull.size() == 2 * dt.numberOfPoints() ? "" : "Euler's formula does not hold";
}

/// n x n cells of two triangles each, without the cells (i, j) for which isMissing.
template <class IsMissing>
Points makeGrid(int n, const IsMissing& isMissing) {
    Points v;
    for (int k = 0; k < n * n; ++k) {
        const int i = k % n, j = k / n;
        const Point2 a(i, j, 0), b(i + 1, j, 0), c(i + 1, j + 1, 0), d(i, j + 1, 0);
        if (!isMissing(i, j)) v.insert(v.end(), {a, b, c, a, c, d});
    }
    return v;
}

} // namespace

TEST(Import, PartsOfMeshesComeBackAndGrowOn) {
    CoutCapture out, errors(std::cerr);
    for (unsigned seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        const auto below = [&](double end) { return std::uniform_real_distribution<double>(0, end)(random); };
        const bool bLattice = seed % 2 == 0, bReorient = seed % 3 == 0, bBox = seed % 5 == 0;
        const auto randomPoint = [&] {
            const double x = below(9), y = below(9);
            return bLattice ? Point2(std::floor(x), std::floor(y), 0) : Point2(x, y, 0);
        };
        Kelm_2D source, dt;
        source.insert(Point2(0, 0, 0));
        for (double k = below(60); k > -3; --k)
            source.insert(randomPoint());
        if (!source.is2D()) continue;
        std::vector<Triangle2*> vTriangles = flipAtRandom(source, random);
        std::shuffle(vTriangles.begin(), vTriangles.end(), random);
        Points v;
        const double kept = below(1.2); // from single triangles over islands, holes and pinches to all
        for (const Triangle2* pT : vTriangles)
            if (v.empty() || below(1) < kept) append(v, pT, static_cast<int>(random() % 3));
        const Points vOrdered(v);
        for (std::size_t i = 0; bReorient && i < v.size(); i += 3)
            if (random() % 2 == 0) std::swap(v[i], v[i + 1]);
        const Zone2* pZone = dt.importTriangles(v, bReorient, bBox);
        ASSERT_EQ("", findImportFault(dt, pZone, v, bBox ? 4 : 0));
        ASSERT_EQ("", findImportFault(dt, pZone, vOrdered, bBox ? 4 : 0)); // turned round where needed only
        const double area = pZone->getArea2D();
        for (int k = 0; k < 12; ++k) {
            Point2* pNew = dt.insert(randomPoint());
            ASSERT_TRUE(dt.locate(*pNew)->hasVertex(pNew));
            if (k % 3 == 0) dt.remove(pNew);
        }
        dt.createConstraint({{randomPoint(), randomPoint()}}, CIS_CONSTRAINED_DELAUNAY);
        ASSERT_TRUE(dt.checkValidity(false, "later"));
        ASSERT_NEAR(area, pZone->getArea2D(), 1e-9);
    }
}

TEST(Import, WhatIsNoMeshGivesNull) {
    const double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
    const Point2 a(0, 0, 0), b(4, 0, 0), c(4, 4, 0), d(0, 4, 0), e(2, 2, 0), f(2, 1, 0), m(2, 0, 0);
    // Two pairs of opposite triangles beside two good ones.
    const Point2 g(2, 3, 0), h(1, 3, 0), i(1, 1, 0), j(2, 1, 0), k(3, 1, 0);
    const Points vFolded{e, h, i, g, h, e, j, e, i, k, g, e, h, e, i, h, g, e};
    const std::string noTriples = "3 points per triangle please!", notClosed = "bug. If your data is clean",
                      invalid = "Invalid input data detected\n\nOpen edges (_possibly_ causing the problem) "
                                "are\nEdge(",
                      crossing = "Additional vertex (possibly due to a selfintersection)";
    const struct {
        const char* name;
        Points v;
        bool bReorient;
        std::string text, drawing; // without a drawing nothing was changed
    } aCases[] = {
        {"no points", {}, false, noTriples, ""},
        {"four points", {a, b, c, d}, true, noTriples, ""},
        {"not a number", {a, b, {4, nan, 0}}, false, "a coordinate is not finite", ""},
        {"infinite", {a, b, {inf, 4, 0}}, true, "a coordinate is not finite", ""},
        {"too large for the box", {a, b, {1e308, 1.7e308, 0}}, false, "too large", ""},
        {"equal corners", {a, b, c, a, {-0.0, 0, 0}, d}, false, "triangle no. 1 has two equal corners", ""},
        {"collinear", {a, c, b, a, e, c}, true, "WARNING: collinear triangle no. 1", "-"},
        {"only collinear", {a, m, b}, false, "BUG: Not a simple polygon! Returning NULL", "-"},
        {"crossing borders", {a, b, c, b, c, d}, true, crossing, "invalidInput.ps"},
        {"small one inside a large one",
         {a, b, c, {2, 1, 0}, {3, 1, 0}, {3, 2, 0}},
         true,
         invalid,
         "openEdges.ps"},
        {"given twice", {a, b, c, a, b, c}, true, notClosed, "bug.ps"},
        {"three at one edge", {a, b, c, a, b, d, a, b, f}, true, "", "-"},
        {"clockwise", {a, c, b}, false, notClosed, "bug.ps"},
        {"one of two clockwise", {a, b, c, a, d, c}, false, "", "-"},
        {"vertex on an edge", {a, b, c, a, m, {0, -4, 0}, m, b, {4, -4, 0}}, true, invalid, "openEdges.ps"},
        {"closed, but no disc", vFolded, false, notClosed, "bug.ps"},
    };
    for (const auto& test : aCases) {
        SCOPED_TRACE(test.name);
        const ScratchDirectory scratch;
        CoutCapture out;
        Points v(test.v);
        Kelm_2D dt;
        EXPECT_EQ(nullptr, dt.importTriangles(v, test.bReorient, false));
        const std::string printed = out.take();
        EXPECT_NE(std::string::npos, printed.find(test.text)) << printed;
        EXPECT_EQ(test.drawing.size() > 1, !test.drawing.empty() && std::filesystem::exists(test.drawing))
            << printed;
        if (!test.drawing.empty()) continue;
        Points vGood{a, b, c};
        EXPECT_EQ("", findImportFault(dt, dt.importTriangles(vGood, false, false), vGood, 0));
        EXPECT_EQ(nullptr, dt.importTriangles(vGood, false, false));
        EXPECT_TRUE(out.printed("createArbitraryTriangles(..), ERROR: This method requires an empty"));
    }
    Points vClosed{a, b, c, a, c, b};
    EXPECT_THROW(Kelm_2D().importTriangles(vClosed, false, false), KelmException);
}

TEST(Import, FirstPointOfAPlaceCountsAndCollinearTriplesCloseTheMesh) {
    // A collinear triple joins one triangle above to two below.
    Points v{{0, 0, 7}, {4, 0, 1},  {2, 3, 1}, {-0.0, 0, 8}, {1, -3, 1}, {2, 0, 5},
             {2, 0, 6}, {1, -3, 9}, {4, 0, 2}, {0, 0, 1},    {2, 0, 1},  {4, 0, 1}};
    v[0].setCustomIndex(42);
    v[3].setCustomIndex(43);
    CoutCapture out;
    Kelm_2D dt;
    const Zone2* pZone = dt.importTriangles(v, false, false);
    ASSERT_NE(nullptr, pZone);
    EXPECT_TRUE(dt.checkValidity(false, "collinear"));
    EXPECT_EQ(4U, pZone->getNumberOfTriangles());
    std::vector<Point2*> vVertices;
    dt.getVertexPointers(vVertices);
    std::map<std::pair<double, double>, std::pair<double, int>> mFound;
    for (const Point2* pVtx : vVertices)
        mFound[{pVtx->x(), pVtx->y()}] = {pVtx->z(), pVtx->getCustomIndex()};
    const auto first = mFound[{0, 0}], middle = mFound[{2, 0}];
    EXPECT_TRUE(mFound.size() == 5 && first == std::make_pair(7.0, 42) && middle == std::make_pair(5.0, -1));
}

TEST(Import, ManyHolesAndPinchesCostLittle) {
    CoutCapture out;
    constexpr int n = 250;
    Points vReal;
    ASSERT_TRUE(readXYZ(KELM25D_EXAMPLE_DATA_DIR "/jacksboro.xyz", vReal));
    Kelm_2D source;
    source.insert(vReal);
    std::mt19937_64 random(7);
    Points vTerrain;
    for (const Triangle2* pT : flipAtRandom(source, random))
        if (random() % 10 != 0) append(vTerrain, pT, 0);
    const Points aMeshes[] = {vTerrain,
                              makeGrid(n, [](int i, int j) { return i % 5 == 2 && j % 5 == 2; }),
                              makeGrid(n, [](int i, int j) { return i % 3 == 1 && j % 3 == 1; }),
                              makeGrid(n, [](int i, int j) { return (i + j) % 2 == 0; }),
                              makeGrid(n, [](int i, int j) { return (i | j) % 2 != 0; }),
                              makeGrid(n, [](int i, int j) { return i == j && i % (n - 1) != 0; })};
    for (Points v : aMeshes) {
        SCOPED_TRACE(v.size());
        const auto start = std::chrono::steady_clock::now();
        Kelm_2D dt;
        const Zone2* pZone = dt.importTriangles(v, true, false);
        // Well below a second, where a quadratic cost takes minutes; sanitizers are slower.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        EXPECT_EQ("", findImportFault(dt, pZone, v, 0));
    }
}

TEST(OpenEdges, ManyAtOnceAreAsOneAfterTheOther) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        const unsigned numVertices = 3 + random() % 40;
        std::vector<std::uint32_t> vCorners;
        for (unsigned k = random() % 300; k > 0; --k) {
            const unsigned a = random() % 3 == 0 ? 0 : random() % numVertices,
                           b = 1 + random() % (numVertices - 1), c = 1 + random() % (numVertices - 2);
            const unsigned second = (a + b) % numVertices; // b != 0: not a
            const unsigned third = (a + (c < b ? c : c + 1)) % numVertices;
            vCorners.insert(vCorners.end(), {a, second, third});
        }
        using Key = std::pair<std::uint32_t, std::uint32_t>;
        std::map<Key, std::uint32_t> mExpected;
        OpenEdges single, all;
        OpenEdges::Pairs vSingle, vAll = all.closeOrEnterAll(vCorners, numVertices);
        std::size_t numDropped = 0;
        for (std::size_t k = 0; k < vCorners.size(); ++k) {
            const int i = static_cast<int>(k % 3);
            const std::uint32_t *aCorner = &vCorners[k - k % 3], id = OpenEdges::idOf(k / 3, i);
            const Key key(aCorner[incIndexBy1(i)], aCorner[incIndexBy2(i)]), reverse(key.second, key.first);
            const auto it = mExpected.find(reverse);
            ASSERT_EQ(it != mExpected.end(), single.isClosing(key.first, key.second));
            ASSERT_EQ(it != mExpected.end() ? it->second : OpenEdges::none,
                      single.closeOrEnter({key.first, key.second, id}));
            if (it != mExpected.end()) {
                vSingle.emplace_back(it->second, id);
                mExpected.erase(it);
            } else if (!mExpected.emplace(key, id).second) {
                ++numDropped;
            }
        }
        std::sort(vSingle.begin(), vSingle.end());
        std::sort(vAll.begin(), vAll.end());
        ASSERT_EQ(vSingle, vAll);
        for (const OpenEdges* pOpen : {&single, &all}) {
            std::map<Key, std::uint32_t> mFound;
            for (const OpenEdges::Edge& edge : pOpen->getEdges())
                mFound[{edge.source, edge.target}] = edge.id;
            ASSERT_EQ(mExpected, mFound);
            ASSERT_EQ(numDropped, pOpen->getNumDropped());
            ASSERT_EQ(mExpected.size(), pOpen->size());
        }
    }
}
