// Constraints enter the mesh: crossings, vertices on segments, waiting, halving, what may not be done, files.
// Graphs and split trees are in constraint_graph_test.cpp, hard sets of segments in
// constraint_stress_test.cpp.
#include "testing.h"

#include "centerWithShift.h"

namespace {

constexpr ConstraintInsertionStrategy aStrategy[] = {CIS_CONFORMING_SURFACE_HEIGHT, CIS_CONSTRAINED_DELAUNAY,
                                                     CIS_CONFORMING_LINEAR_HEIGHT};
const std::vector<Point2> frame{{-100, -100, 0}, {100, -100, 0}, {100, 100, 0}, {-100, 100, 0}};

Point2* vertexAt(const Kelm_2D& dt, const Point2& place) {
    for (Point2* pVtx : allVertices(dt))
        if (*pVtx == place) return pVtx;
    return nullptr;
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string fault(const Kelm_2D& dt, const std::vector<Segment2>& v) {
    const std::string mesh = findMeshFault(dt);
    return mesh.empty() ? findConstraintFault(dt, v) : mesh;
}

} // namespace

TEST(ConstraintInsertion, CrossingsTakeTheHeightOfTheFirstOrAnEndNearby) {
    const struct {
        Segment2 first, second;
        unsigned numNew, numPieces;
        Point2 meeting;
    } aCase[] = {
        {{{0, 0, 0}, {10, 0, 5}}, {{4, -3, 9}, {4, 3, 8}}, 1, 4, {4, 0, 2}},
        {{{0, 0, 8}, {8, 4, 0}}, {{0, 4, 90}, {8, 0, 90}}, 1, 4, {4, 2, 4}},
        {{{0, 0, 1}, {8, 0, 2}}, {{4, 0, 9}, {4, 5, 9}}, 0, 3, {4, 0, 9}},         // an end on the other
        {{{0, 0, 1}, {8, 0, 2}}, {{4, -5e-7, 9}, {4, 5, 9}}, 0, 3, {4, -5e-7, 9}}, // within 1e-6
        {{{0, 0, 1}, {8, 0, 5}}, {{4, -2e-6, 9}, {4, 5, 9}}, 1, 4, {4, 0, 3}},     // beyond
        {{{0, 0, 1}, {8, 0, 2}}, {{8, 0, 2}, {0, 0, 1}}, 0, 1, {8, 0, 2}},         // the same again
        {{{0, 0, 1}, {8, 0, 2}}, {{4, 0, 9}, {12, 0, 7}}, 0, 3, {8, 0, 2}},        // overlapping
    };
    for (const auto& c : aCase) {
        for (const bool bOneCall : {true, false}) {
            SCOPED_TRACE(testing::Message() << "case " << &c - aCase << ", one call: " << bOneCall);
            Kelm_2D dt;
            dt.insert(frame);
            const std::vector<Segment2> v{c.first, c.second};
            for (const Segment2& s : v) // so that all ends are there before
                dt.insert({s.getSrc(), s.getTrg()});
            const unsigned numBefore = dt.numberOfPoints();
            dt.createConstraint(bOneCall ? v : std::vector<Segment2>{v[0]}, aStrategy[1]);
            if (!bOneCall) dt.createConstraint({v[1]}, aStrategy[1]);
            ASSERT_EQ("", fault(dt, v));
            EXPECT_EQ(aliveSegments(dt).size(), c.numPieces);
            EXPECT_EQ(dt.numberOfPoints(), numBefore + c.numNew);
            const Point2* pMeeting = vertexAt(dt, c.meeting);
            ASSERT_NE(nullptr, pMeeting);
            EXPECT_TRUE(bOneCall || pMeeting->z() == c.meeting.z()); // in one call there is no first
        }
    }
}

TEST(ConstraintInsertion, SegmentsOnOneLineButForTheRoundingNeedNoNewVertices) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937_64 random(seed);
        const auto unit = [&] { return std::ldexp(static_cast<double>(random() >> 11), -53); };
        const double scale = seed % 2 == 0 ? 1 : 1e6, x = unit(), y = unit(), dx = unit(), dy = unit();
        const auto on = [&](double t) { return Point2(scale * (x + t * dx), scale * (y + t * dy), 0); };
        std::vector<Segment2> v{{{0, -scale, 0}, {-scale, 3 * scale, 0}}}; // beside them
        for (int i = 0; i < 6; ++i)
            v.push_back({on(unit()), on(unit())});
        Kelm_2D dt;
        dt.createConstraint(v, CIS_CONSTRAINED_DELAUNAY);
        ASSERT_EQ("", fault(dt, v)) << seed;
        ASSERT_GE(20U, dt.numberOfPoints()) << seed;
    }
}

TEST(ConstraintInsertion, EveryStrategyMeetsEveryOtherAndHalvesWithItsHeight) {
    for (int i = 0; i < 9; ++i) {
        SCOPED_TRACE(i);
        Kelm_2D dt;
        dt.insert(frame);
        dt.insert({{0.25, 1, 0}, {-0.25, -1, 0}, {33, 0, 70}}); // beside the middle, and on the segment
        const std::vector<Segment2> v0{{{-32, 0, 70}, {64, 0, 70}}}, v1{{{8, -7, 0}, {8.5, 7, 0}}};
        dt.createConstraint(v0, aStrategy[i / 3]);
        dt.applyConstraintsAndZones();
        dt.createConstraint(v1, aStrategy[i % 3]);
        ASSERT_VALID_MESH(dt);
        dt.applyConstraintsAndZones();
        ASSERT_EQ("", fault(dt, v0));
        ASSERT_EQ("", fault(dt, v1));
        int numLow = 0; // the surface is flat away from the segment's own vertices
        for (const Point2* pVtx : allVertices(dt))
            numLow += pVtx->y() == 0 && pVtx->z() < 69.999;
        EXPECT_EQ(aStrategy[i / 3] == CIS_CONFORMING_SURFACE_HEIGHT, numLow != 0);
        const unsigned numPoints = dt.numberOfPoints();
        dt.applyConstraintsAndZones();
        EXPECT_EQ(numPoints, dt.numberOfPoints());
    }
}

TEST(ConstraintInsertion, WaitsForTheThirdPointAndOutlastsTheLossOfTheMesh) {
    for (int variant = 0; variant < 12; ++variant) {
        SCOPED_TRACE(variant);
        CoutCapture capture;
        Kelm_2D dt;
        dt.setNumCPU(variant < 6 ? 1 : 2);
        dt.insert({0, 0, 1});
        const std::vector<Segment2> v{{{0, 0, 2}, {8, 6, 2}}, {{4, 3, 2}, {0, 0, 2}}};
        dt.createConstraint(v, aStrategy[variant % 3], variant % 2 == 0);
        EXPECT_TRUE(!dt.is2D() && dt.numberOfPoints() == 3) << dt.numberOfPoints();
        ASSERT_EQ("", fault(dt, v));
        dt.applyConstraintsAndZones();
        dt.getImpl()->getConstraintMgr().applyConstraintsAndZones();
        EXPECT_TRUE(has(capture.take(), "not full dimensional yet. Nothing to do\n"));
        for (const double x : {1, 2, 3}) {
            Point2* pThird = dt.insert({x, 5, 0});
            dt.applyConstraintsAndZones();
            ASSERT_EQ("", fault(dt, v));
            dt.remove(pThird);
            dt.insert({{4, 3, 8}, {0, 0, 8}}); // duplicates may not take the places of the ends
            ASSERT_EQ("", fault(dt, v));
        }
    }
}

TEST(ConstraintInsertion, LaterPointsDivideConstraintsAndOnlyOthersCanBeRemovedAgain) {
    for (const int numCPU : {1, 4}) {
        std::mt19937_64 random(5);
        Kelm_2D dt;
        dt.setNumCPU(numCPU);
        const Point2 o(0, 0, 0);
        const std::vector<Segment2> v{{o, {4096, 0, 0}}, {o, {4096, 2048, 0}}, {{7, 4, 0}, {4096, 4, 0}}};
        dt.createConstraint(v, CIS_CONSTRAINED_DELAUNAY);
        std::vector<Point2> vPoints; // with the height 1 on constraints, else 2
        for (int i = 0; i < 500; ++i) {
            const double x = static_cast<double>(random() % 4080 + 9);
            vPoints.insert(vPoints.end(), {{x, 0, 1}, {x, x / 2, 1}, {x, std::nextafter(4, 5), 2}});
            if (i % 100 == 0) vPoints.insert(vPoints.end(), {{x, -x, 2}, {x, 5000 + x, 2}}); // the hull grows
        }
        dt.insert(vPoints);
        ASSERT_EQ("", fault(dt, v));
        std::vector<Point2*> vVertices = allVertices(dt);
        std::shuffle(vVertices.begin(), vVertices.end(), random);
        const std::string refusal = "Dt2::remove(), WARNING: Illegal: Can't remove a constraint vertex\n";
        for (Point2* pVtx : vVertices) {
            CoutCapture out, err(std::cerr);
            const bool bEnd = pVtx->z() < 2;
            const unsigned numExpected = dt.numberOfPoints() - (bEnd ? 0 : 1);
            dt.remove(pVtx);
            ASSERT_TRUE(out.printed(refusal) == bEnd && err.printed("Point2 (") == bEnd) << *pVtx;
            ASSERT_EQ(numExpected, dt.numberOfPoints());
            ASSERT_EQ("", pVtx->x() < 4000 ? "" : fault(dt, v));
        }
        ASSERT_EQ("", fault(dt, v));
    }
}

TEST(ConstraintApply, GivesUpWithoutDigitsAndTheCheckReportsWhatIsMissing) {
    const ScratchDirectory scratch;
    CoutCapture capture;
    const double m = std::ldexp(1, 52); // where doubles are integers
    Kelm_2D dt;
    dt.insert({{m - 99, m - 99, 0}, {m + 99, m - 99, 0}, {m, m + 99, 0}, {m + 1, m, 0}, {m + 2, m + 1, 0}});
    dt.createConstraint({{{m, m, 0}, {m + 3, m + 1, 0}}}, CIS_CONFORMING_SURFACE_HEIGHT);
    capture.take();
    dt.applyConstraintsAndZones();
    EXPECT_FALSE(dt.checkValidity(true, "lost"));
    const std::string printed = capture.take();
    for (const char* text : {"giving up. Incorrect result!\n", "(alive): 1, contained: 0, missing: 1\n",
                             "\nNot contained: ConstraintSegment2 label "})
        EXPECT_TRUE(has(printed, text)) << printed;
    EXPECT_TRUE(has(std::filesystem::directory_iterator(".")->path().string(), "_checkValidityFail_lost.ps"));
    ASSERT_VALID_MESH(dt);
}

TEST(ConstraintApply, ProgressIsThatOfTheWholeAndOfNothingInside) {
    struct : MsgBase {
        void update(MsgType, const std::string& s, double value) override { mValues[s].push_back(value); }
        std::map<std::string, std::vector<double>> mValues;
    } receiver;
    Kelm_2D dt;
    dt.insert(frame);
    dt.subscribe(MSG_PROGRESS, &receiver);
    std::vector<Segment2> v;
    for (int i = 0; i < 200; ++i)
        v.push_back({{i * 0.3, i % 7 * 0.2, 0}, {i * 0.3 + 2, 5 - i % 3 * 0.1, 0}});
    dt.createConstraint(v, CIS_CONFORMING_LINEAR_HEIGHT);
    dt.applyConstraintsAndZones();
    EXPECT_EQ(2U, receiver.mValues.size());
    for (const auto& [label, values] : receiver.mValues) {
        EXPECT_TRUE(values.size() >= 90 && values.back() == 1.0) << label;
        EXPECT_TRUE(std::is_sorted(values.begin(), values.end())) << label;
    }
}

TEST(ConstraintFiles, DebugFilesHoldThePiecesOfEachGraphAndDrawingsTellThemFromOtherEdges) {
    const ScratchDirectory scratch;
    const CoutCapture capture;
    Kelm_2D dt;
    dt.insert(frame);
    dt.createConstraint({{{0, 0, 0.1}, {8, 0, 1}}}, CIS_CONSTRAINED_DELAUNAY);
    dt.createConstraint({{{4, -1, 0}, {4, 1, 0}}, {{9, 9, 1}, {9.5, 9, 1}}}, CIS_CONSTRAINED_DELAUNAY);
    const ConstraintMgr& mgr = dt.getImpl()->getConstraintMgr();
    mgr.writeConstraints("missing/a"); // ignored
    mgr.writeConstraints("a");
    mgr.writeConstraintsBIN("a");
    for (const std::string name : {"a_c0", "a_c1"}) {
        std::vector<Segment2> vPieces;
        ASSERT_TRUE(readSegmentsBIN((name + "_con.bin").c_str(), vPieces));
        const std::string text = readFile(name + ".con");
        EXPECT_EQ(static_cast<int>(vPieces.size()), std::count(text.begin(), text.end(), '\n'));
        for (const Segment2& s : vPieces)
            EXPECT_TRUE(dt.isConstraint(vertexAt(dt, s.getSrc()), vertexAt(dt, s.getTrg())));
    }
    EXPECT_TRUE(has(readFile("a_c0.con"), "0\t0\t0.1000000000000000055511151231257827"));
    for (const bool bWith : {true, false}) {
        dt.show("page.ps", bWith);
        EXPECT_EQ(bWith, has(readFile("page.ps"), "\n1\t0\t0\tsetrgbcolor\n0.5\tsetlinewidth\n"));
    }
}

TEST(ConstraintInsertion, SplitsThatLeaveTheMeshAloneAreMendedByApply) {
    Kelm_2D dt;
    dt.insert({{-10, -10, 0}, {20, -10, 0}, {5, 30, 0}});
    Point2* pSplit = dt.insert({0, 4, 0});
    dt.insert({0, -1, 0});
    dt.createConstraint({{{-8, 0, 0}, {8, 0, 0}}}, CIS_CONSTRAINED_DELAUNAY);
    Point2 outside(0, 4, 0); // no vertex
    CoutCapture capture;
    ConstraintSegment2* pSegment = aliveSegments(dt)[0];
    EXPECT_FALSE(pSegment->split_combinatorialOnly(&outside));
    EXPECT_TRUE(pSegment->split_combinatorialOnly(pSplit));
    dt.applyConstraintsAndZones();
    EXPECT_TRUE(dt.checkValidity(true, "mended"));
    ASSERT_VALID_MESH(dt);
}

TEST(CenterWithShift, TheLineRunsBetweenTheResultAndTheNextDouble) {
    std::mt19937_64 random(3);
    QuorTest quorTest;
    quorTest.setRange(1e6);
    for (int i = 0; i < 4000; ++i) {
        const auto coordinate = [&] { return std::ldexp(static_cast<double>(random() >> 11), i % 30 - 63); };
        const Point2 a(coordinate(), coordinate(), 1), b(coordinate(), coordinate(), 4);
        const Point2 c = centerWithShift(a, b, quorTest);
        const double dx = std::fabs(a.x() - b.x()), dy = std::fabs(a.y() - b.y());
        EXPECT_EQ(2.5, c.z());
        EXPECT_LE(std::fabs(c.x() - 0.5 * (a.x() + b.x())), std::min(0.001, 0.01 * dx));
        EXPECT_LE(std::fabs(c.y() - 0.5 * (a.y() + b.y())), std::min(0.001, 0.01 * dy));
        const int side = exactOrientation(a, b, c); // the axis of the larger extent is corrected last
        const auto isBetween = [&](double to) {
            const double x = dx < dy ? c.x() : std::nextafter(c.x(), to);
            const double y = dx < dy ? std::nextafter(c.y(), to) : c.y();
            return exactOrientation(a, b, {x, y, 0}) != side;
        };
        EXPECT_TRUE(side == 0 || isBetween(HUGE_VAL) || isBetween(-HUGE_VAL)) << i;
    }
}
