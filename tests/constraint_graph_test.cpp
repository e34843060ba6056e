// Trees of divided segments and the groups that own them: directions, order, division, Delaunay edges.
// How segments enter the mesh is in constraint_insertion_test.cpp, hard sets of them in
// constraint_stress_test.cpp.
#include "testing.h"

namespace {

using Segments = std::vector<ConstraintSegment2*>;

// Five letters in a row, x and z from 0 to 8 in steps of 2, the first row at y = 0, the next at y = 2.
Point2 place(char letter) {
    const int i = letter - 'a';
    return Point2(i % 5 * 2, i / 5 * 2, i % 5 * 2);
}

char nameOf(const Point2* pVtx) {
    for (char letter = 'a'; letter <= 'y'; ++letter)
        if (place(letter) == *pVtx) return letter;
    return '.';
}

/// "ab bc" are two segments.
std::vector<Segment2> segments(const std::string& words) {
    std::vector<Segment2> v;
    for (std::size_t i = 0; i < words.size(); i += 3)
        v.emplace_back(place(words[i]), place(words[i + 1]));
    return v;
}

/// And back again, as the graph runs; in alphabetical order if directions mean nothing.
std::string print(const ConstraintGraph2& graph, const Segments& vSegments) {
    std::string words;
    for (ConstraintSegment2* pCSeg : vSegments) {
        char a = nameOf(pCSeg->getSrc()), b = nameOf(pCSeg->getTrg());
        if (graph.isOriented() ? graph.isReverse(pCSeg) : b < a) std::swap(a, b);
        words += (words.empty() ? "" : " ") + std::string{a, b};
    }
    return words;
}

Segments originals(const ConstraintGraph2& graph) {
    Segments v(1, nullptr); // replaced
    graph.getOriginalConstraintSegments(v);
    return v;
}

std::string path(const ConstraintGraph2& graph) {
    Segments v(1, nullptr); // replaced
    graph.getChildrenInOrder(v);
    return print(graph, v);
}

struct Frame {
    explicit Frame(const std::string& letters = "", bool bTriangles = true) {
        if (bTriangles) dt.insert({{-9, -9, 0}, {29, -9, 0}, {29, 19, 0}, {-9, 19, 0}});
        for (const char letter : letters)
            at(letter);
    }
    Point2* at(char letter) { return dt.insert(place(letter)); }
    ConstraintSegment2* get(const char* ends) { return dt.getConstraintSegment(at(ends[0]), at(ends[1])); }
    ConstraintGraph2* make(const std::string& words, bool bOriented = true) {
        return dt.createConstraint(segments(words), CIS_CONSTRAINED_DELAUNAY, bOriented);
    }
    Kelm_2D dt;
};

} // namespace

TEST(ConstraintGraph, RingsAreFoundAndDirectionsOutlastDivision) {
    const struct {
        const char *input, *expected; // the originals in the order and direction of the graph
        bool bOriented, bPolygon;
    } aCase[] = {{"ab bg gf fa", "ab bg gf fa", false, true},
                 {"af fg gb ba", "ab bg gf fa", false, true}, // clockwise
                 {"bg gf ab af", "ab bg gf fa", false, true}, // in no order
                 {"af fg gb ba", "ba gb fg af", true, true},  // the user's directions in the ring's order
                 {"bg gf ab af", "ab bg gf af", true, true},  // even if they do not agree
                 {"ag gb bf fa", "ag gb bf fa", false, true}, // crossings are not looked for
                 {"gf ab gb", "gf ab gb", true, false},
                 {"ab ba", "ab", false, false},
                 {"ab bc ca", "ab bc ac", false, false},                   // flat
                 {"ab bg gf fa gh", "ab bg fg af gh", false, false},       // a dangling end
                 {"ab bg gf fa ag", "ab bg fg af ag", false, false},       // a chord
                 {"ed di ie ab bf fa", "ed di ie ab bf fa", true, false}}; // two rings
    for (const auto& c : aCase) {
        for (const bool bDividedBefore : {false, true}) {
            SCOPED_TRACE(std::string(c.input) + (bDividedBefore ? ", divided before" : ""));
            Frame frame;
            const ConstraintGraph2* pGraph = frame.make(c.input, c.bOriented);
            for (const Segment2& s : segments(c.input)) {
                const Point2 a = s.getSrc(), b = s.getTrg();
                frame.dt.insert(Point2(0.75 * a.x() + 0.25 * b.x(), 0.75 * a.y() + 0.25 * b.y(), 0));
            }
            if (bDividedBefore) pGraph = frame.make(c.input, c.bOriented);
            EXPECT_EQ(print(*pGraph, originals(*pGraph)), c.expected);
            EXPECT_EQ(pGraph->isPolygon(), c.bPolygon);
            EXPECT_EQ(pGraph->isOriented(), c.bOriented || c.bPolygon);
            ASSERT_VALID_MESH(frame.dt);
            ASSERT_VALID_CONSTRAINTS(frame.dt, segments(c.input), pGraph);
        }
    }
}

TEST(ConstraintSegment, InsertAndSplitTakesThePointOrRefusesIt) {
    const char *beyond = "line beyond an end, the segment is not divided", *infinite = "is not finite";
    const struct {
        Point2 point;
        const char *path, *error; // no error and the same path for a point at an end
    } aCase[] = {{{5, 0, 0}, "b. .e", ""},     {{4, -3, 0}, "b. .e", ""},    {{20, 30, 0}, "b. .e", ""},
                 {place('r'), "br r. .e", ""}, {place('l'), "bg gl le", ""}, {place('b'), "be", ""},
                 {place('e'), "be", ""},       {place('a'), "be", beyond},   {{9, 0, 0}, "be", beyond},
                 {{4, NAN, 0}, "be", infinite}};
    for (const auto& c : aCase) {
        for (const bool bTriangles : {c.point.y() != 0, true}) { // without them only points on the line
            SCOPED_TRACE(c.path + std::string(c.error));
            Frame frame(bTriangles ? "rg" : "", bTriangles);
            if (bTriangles) frame.make("in");
            const ConstraintGraph2 *pThere = frame.make("be"), *pBack = frame.make("eb");
            ConstraintSegment2* pCSeg = originals(*pThere)[0];
            CoutCapture output;
            const Point2* pVtx = pCSeg->insertAndSplit(c.point);
            EXPECT_EQ(pVtx != nullptr && *pVtx == c.point, *c.error == 0);
            EXPECT_TRUE(output.printed(c.error));
            if (!bTriangles) frame.at('y'), frame.dt.applyConstraintsAndZones();
            ASSERT_VALID_MESH(frame.dt);
            ASSERT_VALID_CONSTRAINTS(frame.dt, {});
            const std::string back = path(*pBack);
            EXPECT_EQ(path(*pThere), c.path);
            EXPECT_EQ(std::string(back.rbegin(), back.rend()), c.path);
            ASSERT_EQ(pCSeg->isAlive(), std::string(c.path) == "be");
        }
    }
}

TEST(ConstraintSegment, SplitAndRemovePrevTakesTheGeneratorsVerticesCloserThanAnEnd) {
    Frame frame;
    InnerVtxMgr& inner = frame.dt.getImpl()->getInnerVtxMgr();
    std::vector<Point2> vPlaces;
    std::vector<Point2*> v;
    for (int x = -2; x < 10; ++x)
        for (int y = -5; y < 5; ++y)
            if (y != 0) vPlaces.emplace_back(x, y, 0);
    frame.dt.insert(vPlaces, v);
    for (Point2* pVtx : v)
        inner.add(pVtx);
    frame.make("ae in");
    inner.forget(v[60]);
    ConstraintSegment2* pCSeg = frame.get("ae");
    EXPECT_TRUE(pCSeg->splitAndRemovePrev(*pCSeg->getSrc())); // removes nothing
    EXPECT_EQ(v.size() + 6, frame.dt.numberOfPoints());
    EXPECT_TRUE(pCSeg->splitAndRemovePrev(place('c')));
    for (std::size_t i = 0; i < v.size(); ++i) {
        const bool bClose = std::hypot(vPlaces[i].x() - 4, vPlaces[i].y()) < 4;
        const bool bUsed = vPlaces[i].x() == 6 && vPlaces[i].y() >= 2;
        EXPECT_EQ(v[i]->getIncidentTriangle() != nullptr, !bClose || bUsed || i == 60) << vPlaces[i];
    }
    inner.clear();
    inner.removeNear(place('c'), 1e6, frame.dt.getImpl()->getMesh()); // knows of none
    ASSERT_VALID_MESH(frame.dt);
    EXPECT_FALSE(frame.get("ac")->splitAndRemovePrev({9, 0, 0}));
}

TEST(ConstraintGraph, MakeDelaunayChoosesTheMiddleTheFootOrTheApex) {
    const struct {
        Point2 above, below, split; // none if it stays in one piece
        double minLength;
        bool bResult;
    } aCase[] = {
        {{4, 9, 0}, {4, -9, 0}, {}, 0, true},
        {{4, 1, 5}, {4, -1, 5}, {4, 0, 4}, 11.313, true}, // the middle; lengths are those in space
        {{4, 1, 5}, {4, -1, 5}, {}, 11.314, false},
        {{3, 0.0625, 5}, {4, -1, 5}, {3, 0, 3}, 0, true},                 // the foot of a near apex
        {{3, 0.0005, 5}, {4, -1, 5}, {3, 0.0005, 5}, 0, true},            // one that all but lies on it
        {{0x1p-7, 0x1p-11, 5}, {4, -1, 5}, {0x1p-7, 0, 0x1p-7}, 0, true}, // but not as near to an end
        {{5e-6, 9e-7, 5}, {4, -1, 5}, {5e-6, 9e-7, 5}, 0, true},          // unless it is below 1e-6
        {{-0.5, 1e-4, 5}, {4, -3e-4, 5}, {4, -3e-4, 5}, 0, true}};        // one beyond an end does not count
    for (const auto& c : aCase) {
        SCOPED_TRACE(::testing::Message() << c.above << ' ' << c.below << ' ' << c.minLength);
        Kelm_2D dt;
        dt.insert({c.above, c.below});
        ConstraintGraph2* pGraph = dt.createConstraint(segments("ae"), CIS_CONSTRAINED_DELAUNAY, true);
        EXPECT_EQ(pGraph->makeDelaunay(c.minLength), c.bResult);
        std::vector<Point2*> v;
        pGraph->getPolygonVertices(v);
        const auto isSplit = [&](const Point2* pVtx) { return pVtx->samePoint(c.split); };
        EXPECT_EQ(std::count_if(v.begin(), v.end(), isSplit), c.split == Point2() ? 0 : 2);
        EXPECT_TRUE(v.size() == 2 || c.split != Point2());
        EXPECT_TRUE(std::all_of(v.begin(), v.end(), [](const Point2* pVtx) { return pVtx->x() >= 0; }));
        ASSERT_VALID_MESH(dt);
    }
}

TEST(ConstraintGraph, RandomBentSegmentsKnowTheirOwnersAndBecomeDelaunayEdges) {
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        const double minLength = seed % 3 == 0 ? 0.0 : 0.05;
        const unsigned numPlaces = seed % 2 == 0 ? 6 : 1000003;
        const auto coordinate = [&] { return double(random() % numPlaces) / numPlaces; };
        const auto anywhere = [&] { return Point2(coordinate(), coordinate(), 0); };
        Kelm_2D dt;
        std::vector<ConstraintGraph2*> vGraphs;
        std::map<ConstraintSegment2*, unsigned> mOwners;
        Segments vPieces;
        bool bResult = false;
        CoutCapture output;
        for (int step = 0; step < 10; ++step) {
            const Point2 a = anywhere(), b = anywhere(), c = anywhere();
            vGraphs.push_back(dt.createConstraint({{a, b}, {b, c}}, CIS_CONSTRAINED_DELAUNAY, step % 2 == 0));
            const Segments vAlive = aliveSegments(dt);
            vAlive.at(random() % vAlive.size())->insertAndSplit(anywhere());
            bResult = vGraphs[0]->makeDelaunay(minLength);
            ASSERT_VALID_MESH(dt);
        }
        for (std::size_t i = vGraphs.size(); i-- > 0;) {
            vPieces.clear(); // those of the first graph at last
            vGraphs[i]->getChildConstraintSegments(vPieces);
            for (ConstraintSegment2* pCSeg : vPieces)
                ++mOwners[pCSeg];
        }
        for (ConstraintSegment2* pCSeg : aliveSegments(dt))
            ASSERT_EQ(mOwners[pCSeg], pCSeg->getNumberOfOwners()) << *pCSeg;
        const bool bRefused = output.printed("not divided");
        for (const ConstraintSegment2* pCSeg : vPieces) {
            const Edge2 edge = Mesh2::findEdge(pCSeg->getSrc(), pCSeg->getTrg());
            Triangle2 *pT = edge.getTriangle(), *pN = pT ? pT->getOppositeTriangle(edge.getIndex()) : pT;
            if (pN == nullptr) continue; // on the hull, or what a refused division has left
            const Point2& apex = *pN->getCorner(pN->getIntraTriangleIndex(pT));
            if (exactInCircle(*pT->getCorner(0), *pT->getCorner(1), *pT->getCorner(2), apex) <= 0) continue;
            EXPECT_TRUE(!bResult && (bRefused || std::sqrt(edge.getLength2D()) < minLength)) << *pCSeg;
        }
    }
}

TEST(ConstraintGraph, DeepTreesAndManyOwnersCostLittle) {
    // Tenths of a second, where a recursion overflows the stack and a quadratic cost takes minutes.
    constexpr int n = 50000;
    Frame deep, shared;
    const ConstraintGraph2* pGraph = deep.make("ea");
    for (int i = 1; i < n; ++i)
        deep.dt.insert(Point2(8.0 * i / n, 0, 0));
    std::vector<Point2*> v, vBack;
    pGraph->getPolygonVertices(v);
    deep.make("ae")->getPolygonVertices(vBack); // of a dead segment
    EXPECT_EQ(2U * n, v.size());
    EXPECT_TRUE(std::equal(v.begin(), v.end(), vBack.rbegin(), vBack.rend()));
    for (int i = 0; i < n; ++i)
        shared.make("ae");
    EXPECT_EQ(unsigned(n), shared.get("ae")->getNumberOfOwners());
}
