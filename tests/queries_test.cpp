// Questions to a finished mesh, beside brute force over all its triangles with exact signs.
// How meshes change is tested in insertion_test.cpp and removal_test.cpp.
#include "footPoint.h"
#include "testing.h"

namespace {

struct Mesh : Kelm_2D {
    explicit Mesh(const std::vector<Point2>& v, bool bOneByOne = false) {
        if (!bOneByOne) insert(v);
        for (std::size_t i = 0; bOneByOne && i < v.size(); ++i)
            insert(v[i]);
        vTriangles = allTriangles(*this);
        vVertices = allVertices(*this);
    }
    std::vector<Triangle2*> vTriangles;
    std::vector<Point2*> vVertices;
};

Point2 between(const Point2& a, const Point2& b, double t) {
    return Point2(a.x() + t * (b.x() - a.x()), a.y() + t * (b.y() - a.y()), 0.0);
}

/// Twice the number of places where a segment meets the mesh: ends over it, vertices passed, edges crossed.
int countMeetingsTwice(Mesh& m, const Point2& s, const Point2& t) {
    int n = 2 * (m.locate(s) != nullptr) + 2 * (m.locate(t) != nullptr);
    for (const Point2* p : m.vVertices)
        n += 2 * (std::min(s, t) < *p && *p < std::max(s, t) && exactOrientation(s, t, *p) == 0);
    for (const Triangle2* pT : m.vTriangles) {
        for (int i = 0; i < 3; ++i) {
            const Point2 &a = *pT->getCorner(incIndexBy1(i)), &b = *pT->getCorner(incIndexBy2(i));
            if (exactOrientation(s, t, a) * exactOrientation(s, t, b) < 0 &&
                exactOrientation(a, b, s) * exactOrientation(a, b, t) < 0)
                n += pT->getOppositeTriangle(i) == nullptr ? 2 : 1; // an inner edge comes again
        }
    }
    return n;
}

} // namespace

TEST(Location, TriangleAndHeightAgreeWithBruteForceEverywhere) {
    for (const PointSet& set : makeAllKinds(40)) {
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
            const auto [low, high] =
                std::minmax({pT->getCorner(0)->z(), pT->getCorner(1)->z(), pT->getCorner(2)->z()});
            ASSERT_TRUE(holdsQ(pT) && low <= z && z <= high) << q << z;
        }
    }
}

TEST(Neighbours, AgreeWithTheListOfTriangles) {
    for (const PointSet& set : makeAllKinds(40)) {
        Mesh m(set.points);
        for (Point2* p : m.vVertices) {
            std::set<Point2*> sExpected;
            std::vector<Point2*> vFound;
            std::vector<Triangle2*> vFan;
            m.getIncidentTriangles(p, vFan);
            std::size_t numTriangles = 0;
            for (Triangle2* pT : m.vTriangles) {
                if (!pT->hasVertex(p)) continue;
                const int i = pT->getIntraTriangleIndex(p);
                Point2 *pNext = pT->getCorner(incIndexBy1(i)), *pPrev = pT->getCorner(incIndexBy2(i));
                Triangle2* pCCW = pT->getOppositeTriangle(incIndexBy1(i));
                sExpected.insert({pNext, pPrev});
                ASSERT_TRUE(m.getAdjacentTriangle(p, pNext) == pT && m.getAdjacentTriangle(p, pPrev) == pCCW);
                const auto it = std::find(vFan.begin(), vFan.end(), pT);
                ASSERT_TRUE(it != vFan.end() &&
                            (pCCW == nullptr || pCCW == (it + 1 != vFan.end() ? it[1] : vFan[0])));
                ++numTriangles;
            }
            ASSERT_TRUE(vFan.size() == numTriangles && vFan[0] == p->getIncidentTriangle());
            m.getIncidentVertices(p, vFound);
            ASSERT_EQ(std::vector<Point2*>(sExpected.begin(), sExpected.end()), vFound);
            for (Point2* q : m.vVertices)
                ASSERT_TRUE(p == q || sExpected.count(q) != 0 || m.getAdjacentTriangle(p, q) == nullptr);
        }
    }
}

TEST(ConvexHull, GoesOnceAroundAllVerticesFromTheLowerLeft) {
    std::vector<std::vector<Point2>> vSets = {
        {{0, 0, 0}, {2, 2, 0}, {-1, -1, 0}, {0, 2, 0}}, // the box meets the hull
        {{1e15, 1e15, 0}, {1e15 + 0.125, 1e15, 0}, {1e15, 1e15 + 0.125, 0}},
        {{5e-324, 0, 0}, {0, 5e-324, 0}, {0, 0, 0}}, // and the ends of doubles
        {{-1.7e308, -1.7e308, 0}, {1.7e308, -1.7e308, 0}, {0, 1.7e308, 0}}};
    for (const PointSet& set : makeAllKinds(150))
        vSets.push_back(set.points);
    std::mt19937_64 random(8);
    const auto digit = [&] { return static_cast<double>(random() % 9); };
    for (int i = 0; i < 2000; ++i) { // often on the border of the doubled box of those before
        vSets.emplace_back(6);
        for (Point2& p : vSets.back())
            p = Point2(digit(), digit(), 0);
    }
    for (const std::vector<Point2>& vPoints : vSets) {
        SCOPED_TRACE(&vPoints - vSets.data());
        Mesh m(vPoints, vPoints.size() < 150);
        if (!m.is2D()) continue;
        Bbox2 box;
        for (const bool bAll : {true, false}) {
            std::vector<Point2*> v;
            m.getConvexHull(bAll, v);
            ASSERT_TRUE(std::set<Point2*>(v.begin(), v.end()).size() == v.size() && v.size() >= 3);
            box.add(v.begin(), v.end());
            for (std::size_t i = 0; i < v.size(); ++i) {
                const Point2 &a = *v[i], &b = *v[(i + 1) % v.size()], &c = *v[(i + 2) % v.size()];
                ASSERT_TRUE(bAll || exactOrientation(a, b, c) > 0);
                for (const Point2* p : m.vVertices) {
                    const int side = exactOrientation(a, b, *p);
                    const bool bInEdge = side == 0 && std::min(a, b) < *p && *p < std::max(a, b);
                    ASSERT_TRUE(side >= 0 && !(*p < *v[0]) && !(bAll && bInEdge)) << *p;
                }
            }
        }
        EXPECT_TRUE(box.getMinPoint() == m.computeBoundingBox().getMinPoint() &&
                    box.getMaxPoint() == m.computeBoundingBox().getMaxPoint());
    }
}

TEST(Queries, SliversAlongARoundedLineKeepHeightsAndDrapedLinesInOrder) {
    std::mt19937_64 random(17);
    std::uniform_real_distribution<double> unit(-10, 10);
    QuorTest exact;
    CoutCapture capture;
    for (int round = 0; round < 200; ++round) {
        const double slope = unit(random), shift = round % 2 * unit(random);
        std::vector<Point2> v;
        for (int i = 0; i < 30; ++i) {
            const double x = unit(random);
            v.emplace_back(x, slope * x + shift, unit(random)); // on a straight line but for the rounding
        }
        for (int i = 0; i < 5; ++i)
            v.emplace_back(unit(random), 10 * unit(random), unit(random));
        Mesh m(v);
        exact.setRange(1e3);
        std::vector<Segment2> vIn, vOut;
        for (unsigned i = 0; i < 60; ++i) {
            const double x = unit(random);
            const Point2 p(x, slope * x + shift, 0);
            vIn.insert(vIn.end(), {{p, v[i % v.size()]}, {v[i % v.size()], p}});
            const Triangle2* pT = m.locate(p);
            double z = 0.0;
            if (pT == nullptr) continue;
            ASSERT_TRUE(m.getHeight(p.x(), p.y(), z));
            const Point2 *a = pT->getCorner(0), *b = pT->getCorner(1), *c = pT->getCorner(2);
            ASSERT_NEAR(exact.getHeightExact(a, b, c, p.x(), p.y()), z, 1e-6);
        }
        for (std::size_t i = 0; i < 2 * vIn.size(); ++i) {
            std::vector<Segment2> vOne{vIn[i / 2]};
            vOut.clear();
            m.drape(vOne, vOut, i % 2 == 0 ? -1.0 : 0.0);
            const Vector2 way = vOne[0].getTrg() - vOne[0].getSrc();
            for (const Segment2& piece : vOut) {
                const Vector2 step = piece.getTrg() - piece.getSrc();
                const bool bAlongX = std::fabs(way.x()) >= std::fabs(way.y());
                ASSERT_GT(bAlongX ? step.x() * way.x() : step.y() * way.y(), 0.0) << vOne[0];
            }
        }
        m.drape(vIn, vIn, 0.5); // one sequence for both
    }
    EXPECT_EQ("", capture.take());
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
            const int numPieces = s == t ? 0 : std::max(countMeetingsTwice(m, s, t) / 2 - 1, 0);
            ASSERT_EQ(first + numPieces, vOut.size());
            if (numPieces == 0) continue;
            ASSERT_TRUE((!bSrc || s == vOut[first].getSrc()) && (!bTrg || t == vOut.back().getTrg()));
            double length = -std::sqrt(Segment2(vOut[first].getSrc(), vOut.back().getTrg()).getSqLen2D());
            for (std::size_t k = first; k < vOut.size(); ++k) {
                ASSERT_TRUE(k == first || vOut[k - 1].getTrg().samePoint(vOut[k].getSrc()));
                length += std::sqrt(vOut[k].getSqLen2D());
                for (const Point2& p : {vOut[k].getSrc(), vOut[k].getTrg()}) {
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
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        const std::string name = entry.path().filename().string().substr(5); // behind the count
        EXPECT_TRUE(name == "_badEmptyCircle.ps" || name == "_currentState.ps") << name;
    }
    EXPECT_FALSE(std::filesystem::is_empty("."));
    capture.take();
    m.statistics("hill");
    const std::string title = "\n\n\n********* MESH STATISTICS (hill) **********\n\nNumber of triangles: ";
    EXPECT_EQ(0U, capture.take().find(title + std::to_string(m.vTriangles.size())));
}
