// Questions to a finished mesh, beside brute force over all its triangles with exact signs.
// How meshes change is tested in insertion_test.cpp and removal_test.cpp.
#include "footPoint.h"
#include "testing.h"

namespace {

struct Mesh : Kelm_2D {
    explicit Mesh(const std::vector<Point2>& v) {
        for (const Point2& p : v)
            insert(p);
        getTrianglePointers(vTriangles);
        getVertexPointers(vVertices);
    }
    std::vector<Triangle2*> vTriangles = {nullptr}; // these lists are to be emptied first
    std::vector<Point2*> vVertices = {nullptr};
};

Point2 between(const Point2& a, const Point2& b, double t) {
    return Point2(a.x() + t * (b.x() - a.x()), a.y() + t * (b.y() - a.y()), 0.0);
}

/// Nearly all points are on one straight line, but for the rounding.
PointSet makeSlivers(unsigned seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> unit(-10, 10);
    const double slope = unit(random), shift = seed % 2 * unit(random);
    PointSet set{"slivers " + std::to_string(seed), false, {}};
    for (int i = 0; i < 35; ++i) {
        const double x = unit(random), z = unit(random);
        set.points.emplace_back(x, i < 30 ? slope * x + shift : 10 * z, z);
    }
    return set;
}

} // namespace

TEST(Location, TriangleAndHeightAgreeWithBruteForceEverywhere) {
    std::vector<PointSet> vSets = makeAllKinds(40);
    for (unsigned seed = 0; seed < 100; ++seed)
        vSets.push_back(makeSlivers(seed));
    const CoutCapture quiet;
    for (const PointSet& set : vSets) {
        SCOPED_TRACE(set.name);
        Mesh m(set.points);
        double z = 0.0;
        for (double bad : {HUGE_VAL, std::nan("")})
            EXPECT_FALSE(m.locate({bad, 0, 0}) || m.locate({0, bad, 0}) ||
                         m.getHeight(bad, 0, z, nullptr, 9));
        std::vector<Point2> v{{1e12, 1e12, 0}, {-1e12, 0, 0}, {0, -1e200, 0}, {1e308, -1e308, 0}};
        for (const Point2* p : m.vVertices) {
            ASSERT_TRUE(m.getHeight(p->x(), p->y(), z) && z == p->z() && m.locate(*p)->hasVertex(p));
            for (double to : {-HUGE_VAL, HUGE_VAL}) // places next to the vertex
                v.insert(v.end(),
                         {{std::nextafter(p->x(), to), p->y(), 0}, {p->x(), std::nextafter(p->y(), to), 0}});
            for (double t : {-0.5, 0.3, 0.5, 1.5})
                v.push_back(between(*p, *m.vVertices[v.size() % m.vVertices.size()], t));
        }
        for (const Triangle2* pT : m.vTriangles)
            for (int i = 0; i < 3; ++i)
                v.push_back(between(*pT->getCorner(i), *pT->getCorner(incIndexBy1(i)), 0.5));
        for (const Point2& q : v) {
            Triangle2* pT = m.locate(q);
            const auto holdsQ = [&](const Triangle2* pHere) {
                const Point2 &a = *pHere->getCorner(0), &b = *pHere->getCorner(1), &c = *pHere->getCorner(2);
                return exactOrientation(a, b, q) >= 0 && exactOrientation(b, c, q) >= 0 &&
                       exactOrientation(c, a, q) >= 0;
            };
            ASSERT_EQ(std::any_of(m.vTriangles.begin(), m.vTriangles.end(), holdsQ), pT != nullptr) << q;
            ASSERT_EQ(pT != nullptr, m.getHeight(q.x(), q.y(), z)) << q;
            if (pT == nullptr) continue;
            const Point2 *a = pT->getCorner(0), *b = pT->getCorner(1), *c = pT->getCorner(2);
            const auto [low, high] = std::minmax({a->z(), b->z(), c->z()});
            ASSERT_TRUE(holdsQ(pT) && low <= z && z <= high) << q << z;
            ASSERT_NEAR(QuorTest().getHeightExact(a, b, c, q.x(), q.y()), z, 1e-6) << q;
        }
    }
}

TEST(Neighbours, AgreeWithTheListOfTriangles) {
    for (const PointSet& set : makeAllKinds(40)) {
        Mesh m(set.points);
        for (Point2* p : m.vVertices) {
            std::set<Point2*> sExpected;
            std::map<Triangle2*, Triangle2*> mNext; // counterclockwise; null, too, on the hull
            for (Triangle2* pT : m.vTriangles) {
                if (!pT->hasVertex(p)) continue;
                const int i = pT->getIntraTriangleIndex(p);
                Point2 *pNext = pT->getCorner(incIndexBy1(i)), *pPrev = pT->getCorner(incIndexBy2(i));
                Triangle2* pCCW = pT->getOppositeTriangle(incIndexBy1(i));
                sExpected.insert({pNext, pPrev});
                mNext[pT] = pCCW;
                if (pT->getOppositeTriangle(incIndexBy2(i)) == nullptr) mNext[nullptr] = pT;
                ASSERT_TRUE(m.getAdjacentTriangle(p, pNext) == pT && m.getAdjacentTriangle(p, pPrev) == pCCW);
            }
            std::vector<Triangle2*> vFan;
            m.getIncidentTriangles(p, vFan);
            ASSERT_EQ(mNext.size() - mNext.count(nullptr), vFan.size());
            TriangleAroundVertexIterator up(p, vFan[0]), down = up;
            for (std::size_t k = 1; k <= 2 * mNext.size(); ++k) {
                Triangle2 *pUp = mNext.at(*up), *pBefore = *down;
                ASSERT_TRUE(up.previewNextTriangle() == pUp && *++up == pUp);
                Triangle2* pDown = down.previewPrevTriangle();
                ASSERT_TRUE(mNext.at(pDown) == pBefore && *--down == pDown);
            }
            std::vector<Point2*> vFound;
            m.getIncidentVertices(p, vFound);
            ASSERT_EQ(std::vector<Point2*>(sExpected.begin(), sExpected.end()), vFound);
            for (Point2* q : m.vVertices)
                ASSERT_TRUE(p == q || sExpected.count(q) != 0 || !m.getAdjacentTriangle(p, q));
        }
    }
}

TEST(ConvexHull, GoesOnceAroundAllVerticesFromTheLowerLeft) {
    std::vector<PointSet> vSets = makeAllKinds(150);
    vSets.push_back({"huge", true, {{-1.7e308, -1.7e308, 0}, {1.7e308, -1.7e308, 0}, {0, 1.7e308, 0}}});
    std::mt19937_64 random(8);
    for (int i = 0; i < 2000; ++i) { // often on the border of the doubled box of those before
        vSets.push_back({"digits " + std::to_string(i), false, {}});
        for (int k = 0; k < 6; ++k)
            vSets.back().points.emplace_back(random() % 9, random() % 9, 0);
    }
    for (const PointSet& set : vSets) {
        SCOPED_TRACE(set.name);
        Mesh m(set.points);
        if (!m.is2D()) continue;
        const std::vector<Point2*> vHull = hullVertices(m);
        std::set<Point2*> sExpected(vHull.begin(), vHull.end());
        for (const bool bAll : {true, false}) {
            std::vector<Point2*> v;
            m.getConvexHull(bAll, v);
            EXPECT_TRUE(v.size() == sExpected.size() && sExpected == std::set<Point2*>(v.begin(), v.end()));
            for (std::size_t i = 0; i < v.size(); ++i) {
                Point2 *a = v[i], *b = v[(i + 1) % v.size()], *c = v[(i + 2) % v.size()];
                const int turn = exactOrientation(*a, *b, *c);
                ASSERT_TRUE(turn + bAll > 0 && !(*a < *v[0]));
                if (turn == 0) sExpected.erase(b);
            }
        }
    }
}

TEST(Height, OutsideTheHullIsTheBorderAtTheNearestPlaceWithinTolerance) {
    Mesh m({{0, 0, 3}, {8, 0, 7}, {16, 16, 5}, {4, 12, 1}, {-8, 16, 0}, {0, 32, 9}});
    // The place (x, y), the squared distance, and the height there; feet on edges and corners of the hull.
    const double aCases[][4] = {{2, -5, 25, 4}, {-3, -4, 25, 3},  {9, -1, 2, 7}, {14, 7, 5, 6},
                                {19, 16, 9, 5}, {-4, 3, 5, 2.25}, {0, 36, 16, 9}};
    for (const auto& [x, y, squaredDistance, expected] : aCases) {
        const double distance = std::sqrt(squaredDistance);
        double z = -7;
        EXPECT_FALSE(m.getHeight(x, y, z) || m.getHeight(x, y, z, nullptr, 0.999 * distance) || z != -7);
        EXPECT_TRUE(m.getHeight(x, y, z, nullptr, 1.001 * distance)) << x;
        EXPECT_NEAR(expected, z, 1e-14) << x; // of heights below 10
    }
}

TEST(Drape, PiecesFollowTheSurface) {
    std::mt19937_64 random(31);
    for (const PointSet& set : makeAllKinds(50)) {
        if (set.name == "1e300 scale") break; // distances overflow or underflow from here on
        const bool bLattice = set.name == "integer grid" || set.name == "duplicates";
        Mesh m(set.points);
        double steepest = 0.0, size = 0.0;
        for (const Triangle2* pT : m.vTriangles) {
            const Vector2 n = pT->getNormalVector();
            steepest = std::max(steepest, std::hypot(n.x(), n.y()) / n.z());
            size = std::max(size, pT->getCorner(0)->getMaxAbs());
        }
        const double delta = 1e-12 * size; // ten roundings, a hundredfold where lines are almost parallel
        std::vector<Segment2> vOut;
        for (int i = 0; i < 1000; ++i) {
            std::shuffle(m.vVertices.begin(), m.vVertices.end(), random);
            const auto unit = [&] { return std::uniform_real_distribution<double>(-0.4, 1.4)(random); };
            // A vertex, or a place that rounding does not put next to an edge; on the lattice exactly on the
            // line of two vertices.
            const auto place = [&](int k, bool bVertex) {
                const Point2 &a = *m.vVertices[k], &b = *m.vVertices[k + 1], &c = *m.vVertices[k + 2];
                if (bLattice) return between(a, b, 0.25 * (random() % 9) - 0.5);
                return bVertex ? a : between(between(a, b, unit()), c, unit());
            };
            const Point2 s = place(0, i % 3 == 0), t = place(bLattice && i % 2 ? 0 : 3, i % 2 == 0);
            const bool bSrc = m.locate(s) != nullptr, bTrg = m.locate(t) != nullptr;
            const std::size_t first = vOut.size(); // output is appended
            std::vector<Segment2> vIn{{s, t}, {s, s}};
            SCOPED_TRACE(testing::Message() << set.name << vIn[0]);
            ASSERT_EQ(s == t || (bSrc && bTrg), m.drape(vIn, vOut, -1.0));
            const bool bMeets =
                s != t && (bSrc + bTrg > 1 || (set.bGeneral && m.locate(between(s, t, 0.5)) != nullptr));
            const std::size_t numPieces = vOut.size() - first;
            ASSERT_TRUE(bMeets ? numPieces > 0 : s != t || numPieces == 0);
            if (numPieces == 0) continue;
            ASSERT_TRUE((!bSrc || s == vOut[first].getSrc()) && (!bTrg || t == vOut.back().getTrg()));
            double length = -std::sqrt(Segment2(vOut[first].getSrc(), vOut.back().getTrg()).getSqLen2D());
            for (std::size_t k = first; k < vOut.size(); ++k) {
                ASSERT_TRUE(k == first || vOut[k - 1].getTrg().samePoint(vOut[k].getSrc()));
                length += std::sqrt(vOut[k].getSqLen2D());
                const Point2 src = vOut[k].getSrc(), trg = vOut[k].getTrg();
                for (const Point2& p : {src, trg, src + (trg - src) * 0.5}) { // in one triangle
                    double z = 0.0;
                    ASSERT_LE(getPointLineDistance2D(s, t, p), delta);
                    ASSERT_TRUE(m.getHeight(p.x(), p.y(), z, nullptr, delta));
                    ASSERT_NEAR(z, p.z(), delta * steepest + 1e-12); // of heights up to 50
                }
            }
            ASSERT_NEAR(0.0, length, delta * numPieces);
        }
    }
}

TEST(Drape, PiecesAlongSliversGoForwardWithoutAWord) {
    CoutCapture capture;
    for (unsigned seed = 0; seed < 200; ++seed) {
        Mesh m(makeSlivers(seed).points);
        for (const Point2* p : m.vVertices) { // moved onto the line of most
            const Point2 &a = *m.vVertices[0], q = between(a, *m.vVertices[1], 0.1 * p->x());
            for (const Segment2& whole : {Segment2(q, a), Segment2(a, q), Segment2(q, *p), Segment2(*p, q)}) {
                std::vector<Segment2> v{whole};
                m.drape(v, v, seed % 4 - 1.0); // one sequence for both
                const Vector2 way = whole.getTrg() - whole.getSrc();
                for (const Segment2& piece : v) {
                    const Vector2 step = piece.getTrg() - piece.getSrc();
                    ASSERT_GT(step.x() * way.x() + step.y() * way.y(), 0.0) << seed << piece;
                }
            }
        }
    }
    EXPECT_EQ("", capture.take());
}

TEST(Drape, ThinningOfTerrainKeepsHeightsWithinTolerance) {
    std::vector<Point2> v;
    ASSERT_TRUE(readXYZ(KELM25D_EXAMPLE_DATA_DIR "/jacksboro.xyz", v));
    Mesh m(v);
    const Bbox2 box = m.computeBoundingBox();
    std::vector<Segment2> vIn{{box.getMinPoint(), box.getMaxPoint()}}, vFull;
    EXPECT_TRUE(m.drape(vIn, vFull, -1.0));
    std::size_t numBefore = vFull.size() + 1;
    for (const double tolerance : {0.0, 0.5, 5.0, 50.0, 1e4}) {
        std::vector<Segment2> vThin;
        m.drape(vIn, vThin, tolerance);
        std::size_t k = 0;
        for (const Segment2& piece : vFull) {
            const Point2 p = piece.getTrg(), a = vThin.at(k).getSrc(), b = vThin[k].getTrg();
            const double z = a.z() + (p.x() - a.x()) / (b.x() - a.x()) * (b.z() - a.z());
            ASSERT_NEAR(z, p.z(), tolerance + 1e-9); // rounding of heights about 1000
            k += p.samePoint(b);
        }
        ASSERT_TRUE(vThin.size() == k && k < numBefore) << tolerance; // chords end at ends of pieces
        numBefore = k;
    }
    EXPECT_EQ(1U, numBefore);
}

TEST(Validity, TellsWhatIsBrokenUntilItIsMended) {
    const ScratchDirectory directory; // for the drawings
    CoutCapture capture;
    EXPECT_TRUE(Kelm_2D().checkValidity(true, "void"));
    for (const PointSet& set : makeAllKinds(40))
        EXPECT_TRUE(Mesh(set.points).checkValidity(true, set.name)) << set.name;
    Mesh m(makeAllKinds(60)[0].points);
    const auto isInner = [&](Triangle2* p) {
        return m.getImpl()->getMesh().canBeFlipped(p, 0) && p->getOppositeTriangle(1);
    };
    Triangle2* pT = *std::find_if(m.vTriangles.begin(), m.vTriangles.end(), isInner);
    Triangle2 *pN = pT->getOppositeTriangle(0), saved = *pT;
    const char* const aText[] = {
        "Less than three different corners", "Inconsistent neighborships:",
        "Neighbor found but inconsistent intra triangle indices:", "Sphere inclusion test failed "};
    for (int k = 0; k < 4; ++k) {
        if (k == 0) pT->setVertexPointer(0, pT->getCorner(1));
        if (k == 1) pT->setOppTriangle(0, nullptr);
        if (k == 2) pT->setOppTriangle(0, saved.getOppositeTriangle(1)), pT->setOppTriangle(1, pN);
        if (k == 3) Mesh2::flip(pT, 0);
        EXPECT_EQ(k == 3, m.checkValidity(false, "m"));
        EXPECT_FALSE(k == 3 && m.checkValidity(true, "m"));
        EXPECT_TRUE(capture.printed(std::string("Kelm_2D::CheckValidity(m), ERROR: ") + aText[k]));
        k == 3 ? Mesh2::flip(pT, pT->getIntraTriangleIndex(pN)) : void(*pT = saved);
        ASSERT_VALID_MESH(m);
    }
    EXPECT_FALSE(std::filesystem::is_empty("."));
    m.statistics("hill");
    const std::string title = " MESH STATISTICS (hill) **********\n\nNumber of triangles: ";
    EXPECT_TRUE(capture.printed(title + std::to_string(m.vTriangles.size())));
}
