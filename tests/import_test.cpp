// Import of given triangles: that a mesh comes back as it was given, whatever its shape, and that nothing
// that is no mesh passes for one. What zones do is tested in the zone tests.
#include "testing.h"

namespace {

using Points = std::vector<Point2>;

std::set<Places> trianglesOf(const Points& v) {
    std::set<Places> sTriangles;
    for (std::size_t i = 0; i < v.size(); i += 3)
        sTriangles.insert(
            Places{{v[i].x(), v[i].y()}, {v[i + 1].x(), v[i + 1].y()}, {v[i + 2].x(), v[i + 2].y()}});
    return sTriangles;
}

void append(Points& v, const Triangle2* pT, int first) {
    for (const int i : {first, incIndexBy1(first), incIndexBy2(first)})
        v.push_back(*pT->getCorner(i));
}

/// The triangles of a triangulation, some edges of which were flipped.
std::vector<Triangle2*> flipAtRandom(Kelm_2D& dt, std::mt19937_64& random) {
    std::vector<Triangle2*> vTriangles = allTriangles(dt);
    for (std::size_t k = 0; k < 2 * vTriangles.size(); ++k) {
        Triangle2* pT = vTriangles[random() % vTriangles.size()];
        const int i = static_cast<int>(random() % 3);
        if (dt.getImpl()->getMesh().canBeFlipped(pT, i)) Mesh2::flip(pT, i);
    }
    return vTriangles;
}

/// Empty if the zone has just the given triangles, its border is constrained, and the mesh is a triangulation
/// of the hull of its vertices, which are the given ones and numMore others.
std::string findImportFault(Kelm_2D& dt, const Zone2* pZone, const Points& vGiven, std::size_t numMore) {
    if (pZone == nullptr) return "no zone";
    if (dt.numberOfPoints() != countPlaces(vGiven) + numMore) return "a wrong number of vertices";
    std::vector<Triangle2*> vZone;
    pZone->getTriangles(vZone);
    Points vFound;
    for (Triangle2* pT : vZone) {
        append(vFound, pT, 0);
        for (int i = 0; i < 3; ++i)
            if (!std::binary_search(vZone.begin(), vZone.end(), pT->getOppositeTriangle(i)) &&
                !dt.isConstraint(pT, i))
                return "a border that is no constraint";
    }
    if (vFound.size() != vGiven.size() || trianglesOf(vFound) != trianglesOf(vGiven))
        return "other triangles than given";
    return findMeshFault(dt, false);
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
        for (int k = 0; k < 3 && seed % 7 == 0; ++k) // a triangulation may also have become empty
            dt.insert(randomPoint());
        for (Point2* pVtx : allVertices(dt))
            dt.remove(pVtx);
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
    const Point2 a(0, 0, 0), b(4, 0, 0), c(4, 4, 0), d(0, 4, 0), e(2, 2, 0), f(2, 1, 0), m(2, 0, 0);
    // Two pairs of opposite triangles beside two good ones.
    const Point2 g(2, 3, 0), h(1, 3, 0), i(1, 1, 0), j(2, 1, 0), k(3, 1, 0), l(2, -1, 0);
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
        {"not finite", {a, b, {4, HUGE_VAL, 0}}, false, "a coordinate is not finite", ""},
        {"too large for the box", {a, b, {1e308, 1.7e308, 0}}, false, "too large", ""},
        {"equal corners", {a, b, c, a, {-0.0, 0, 0}, d}, false, "triangle no. 1 has two equal corners", ""},
        {"collinear", {a, c, b, a, e, c}, true, "WARNING: collinear triangle no. 1", "-"},
        {"only collinear", {a, m, b}, false, "BUG: Not a simple polygon! Returning NULL", "-"},
        {"crossing borders", {a, b, c, b, c, d}, true, crossing, "invalidInput.ps"},
        {"one inside", {a, b, c, j, k, {3, 2, 0}}, true, invalid, "openEdges.ps"},
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
    Points vInsideOut{a, b, l, b, c, l, c, d, l, d, a, l};
    CoutCapture out;
    Kelm_2D folded;
    Zone2* pFolded = folded.importTriangles(vInsideOut, false, false);
    ASSERT_NE(nullptr, pFolded);
    EXPECT_TRUE(out.printed("clockwise triangles: 1, the triangulation can only be read"));
    const auto sBefore = triangleSet(folded);
    std::vector<Segment2> vLine{Segment2(a, c)}, vDraped;
    EXPECT_FALSE(folded.drape(vLine, vDraped, -1.0));
    EXPECT_EQ(nullptr, folded.insert({9, 9, 0}));
    EXPECT_EQ(nullptr, folded.createConstraint(vLine, CIS_CONSTRAINED_DELAUNAY));
    pFolded->unifyGrid(1.0);
    folded.cutTriangles(vLine, true);
    folded.remove(hullVertices(folded)[0]);
    EXPECT_EQ(sBefore, triangleSet(folded));
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
    std::vector<Point2*> vVertices = allVertices(dt);
    dt.createConstraint({Segment2({-1, 0, 0}, {2, 0, 0})}, CIS_CONSTRAINED_DELAUNAY); // along the triple
    EXPECT_TRUE(dt.checkValidity(false, "along"));
    std::sort(vVertices.begin(), vVertices.end(), [](Point2* p, Point2* q) { return *p < *q; });
    ASSERT_EQ(5U, vVertices.size());
    EXPECT_TRUE(vVertices[0]->z() == 7.0 && vVertices[0]->getCustomIndex() == 42);
    EXPECT_TRUE(vVertices[2]->z() == 5.0 && vVertices[2]->getCustomIndex() == -1);
}

TEST(Import, ManyHolesAndPinchesComeBack) {
    CoutCapture out;
    std::mt19937_64 random(7);
    Points vReal, vSquares;
    ASSERT_TRUE(readXYZ(KELM25D_EXAMPLE_DATA_DIR "/jacksboro.xyz", vReal));
    for (int k = 0; k < 151 * 151; ++k)
        vSquares.emplace_back(k % 151, k / 151, 0.0);
    for (const int kind : {0, 1, 2, 3, 4}) {
        SCOPED_TRACE(kind);
        Kelm_2D source, dt;
        source.insert(kind == 0 ? vReal : vSquares);
        Points v;
        for (const Triangle2* pT : kind == 0 ? flipAtRandom(source, random) : allTriangles(source)) {
            const int i = static_cast<int>(pT->getBarycenter().x()),
                      j = static_cast<int>(pT->getBarycenter().y());
            const bool aLeftOut[] = {random() % 10 == 0, i % 3 == 1 && j % 3 == 1, (i + j) % 2 == 0,
                                     (i | j) % 2 == 0, i == j && i % 149 != 0};
            if (!aLeftOut[kind]) append(v, pT, 0);
        }
        EXPECT_EQ("", findImportFault(dt, dt.importTriangles(v, true, false), v, 0));
    }
}
