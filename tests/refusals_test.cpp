// What bad input gets: its message, the neutral result or a failed check, and
// everything else as it was. Damaged files are in data_files_test.cpp,
// triangles that are no mesh in import_test.cpp, segments that are no ring in
// rings_test.cpp.
#include "HC2.h"
#include "random.h"
#include "ringTools.h"
#include "testing.h"

#include <cfloat>
#include <functional>

namespace {

struct Refusal {
    std::string message;        // a part of it; of a failed check the condition, in brackets
    std::function<bool()> call; // false is the neutral result
};

const std::vector<Point2> square{{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}};
const Point2 aBad[] = {{1, std::nan(""), 5}, {HUGE_VAL, 1, 5}, {1, -HUGE_VAL, 5}};

struct Refusals : testing::Test {
    Refusals() { dt.insert(square); }

    void expect(const std::vector<Refusal>& vRefusals) {
        for (const auto& [message, call] : vRefusals) {
            SCOPED_TRACE(message);
            const std::string before = describe();
            CoutCapture capture, errors(std::cerr);
            bool bResult = false, bThrown = false;
            try {
                bResult = call();
            } catch (const KelmException&) {
                bThrown = true;
            }
            const std::string text = capture.take() + errors.take();
            EXPECT_TRUE(!bResult && bThrown == (message.find("[ ") != std::string::npos));
            EXPECT_TRUE(message.empty() ? text.empty() : text.find(message) != std::string::npos) << text;
            EXPECT_EQ(before, describe());
        }
        ASSERT_VALID_MESH(dt);
    }
    std::string describe() {
        return testing::PrintToString(triangleSet(dt)) + std::to_string(dt.numberOfPoints()) + ' ' +
               std::to_string(aliveSegments(dt).size());
    }
    ConstraintGraph2* constrain(const Point2& a, const Point2& b, bool bOriented = false) {
        return dt.createConstraint({{a, b}}, CIS_CONSTRAINED_DELAUNAY, bOriented);
    }

    const ScratchDirectory scratch; // for the log of failed checks
    Kelm_2D dt, flat, other;
};

} // namespace

TEST_F(Refusals, Points) {
    Point2* pRemoved = dt.insert({1, 1, 0});
    dt.remove(pRemoved);
    EXPECT_NE(pRemoved, dt.insert({1, 1, 0})); // its storage is not used again
    std::vector<Point2*> vForeign;
    other.insert(square, vForeign);
    Point2 loose(1, 0.5, 0);
    const char* const notOurs = "Dt2::remove(), WARNING: vertex does not belong to the triangulation, return";
    expect({{"Dt2::remove(..), WARNING: pVtx==NULL, illegal, return.",
             [&] { return dt.remove(nullptr), false; }},
            {notOurs, [&] { return dt.remove(pRemoved), false; }},
            {notOurs, [&] { return dt.remove(&loose), false; }},
            {notOurs, [&] { return dt.remove(vForeign[0]), false; }}});
    EXPECT_EQ(2U, other.numberOfTriangles());
    for (const Point2& bad : aBad) {
        double aCoordinates[] = {7, 8, 0, bad.x(), bad.y(), 0};
        std::vector<Point2*> vHandles = vForeign;
        expect({{"ERROR: a coordinate is not finite, the point", [&] { return dt.insert(bad) != nullptr; }},
                {"ERROR: a coordinate is not finite, none of the points",
                 [&] { return dt.insert(2, aCoordinates, vHandles.data()), vHandles[0] || vHandles[1]; }},
                {"ERROR: a coordinate is not finite, none of the points", [&] {
                     dt.insert({{7, 8, 0}, bad, {8, 7, 0}}, vHandles);
                     return vHandles != std::vector<Point2*>(3, nullptr);
                 }}});
    }
    Point2* pWaiting = flat.insert({0, 0, 0});
    for (int i = 0; i < 2; ++i) // before there are triangles the second time does nothing
        flat.remove(pWaiting);
    EXPECT_EQ(0U, flat.numberOfPoints());
}

TEST_F(Refusals, Questions) {
    Point2 loose;
    std::vector<Triangle2*> vFan;
    std::vector<Point2*> vHull;
    const Point2 p(1, 2, 3);
    const auto orientation = [](auto... points) { return getOrientation2(points...) != 0; };
    const auto orientationMT = [](auto... points) { return getOrientation2_mt(points...) != 0; };
    const Point2* pNull = nullptr;
    EXPECT_THROW(dt.getIncidentTriangles(&loose, vFan), KelmException);
    expect({{"[ p0!=p1 ", [&] { return dt.getAdjacentTriangle(&loose, &loose) != nullptr; }},
            {"[ p1!=0 ", [&] { return dt.getAdjacentTriangle(&loose, nullptr) != nullptr; }},
            {"internal debug is disbled in your version",
             [&] { return dt.internal(-7, -1000, ""), false; }}, // so spelled
            {"", [&] { return dt.internal(-7, -1, ""), dt.internal(-8, -1000, ""), false; }},
            {"Dt2::getConvexHull(), WARNING: is2D() is false, the triangulation is not full dimensional yet",
             [&] { return flat.getConvexHull(true, vHull), !vHull.empty(); }},
            {"[ p0!=0 ", [&] { return orientation(pNull, &p, &p); }},
            {"[ p1!=0 ", [&] { return orientation(&p, pNull, &p); }},
            {"[ p2!=0 ", [&] { return orientation(&p, &p, pNull); }},
            {"[ p0!=0 ", [&] { return orientationMT(pNull, &p, &p); }},
            {"[ p1!=0 ", [&] { return orientationMT(&p, pNull, &p); }},
            {"[ p2!=0 ", [&] { return orientationMT(&p, &p, pNull); }}});
}

TEST_F(Refusals, Values) {
    Bbox2 invalid, box;
    box.add(square.begin(), square.end());
    const Point2 o(0, 0, 0), e(1, 0, 0), noNumber(0, 1, NAN);
    Point2 a(o), b(e), c(noNumber);
    Triangle2 t;
    t.setProperties(&a, &b, &c);
    expect(
        {{"\n      [Kelm2D-Message] Bbox2::doIntersect(), WARNING: bbox invalid\n\n",
          [&] { return invalid.doIntersect(box); }},
         {"Bbox2::computeCenter(), WARNING: Bbox2 is invalid", [&] { return invalid.computeCenter() != o; }},
         {"Box2::operator+(), WARNING: trying to add an invalid Bbox2",
          [&] { return (box + invalid).get_maxX() != 9; }},
         {": Degenerate plane\n\n\n      [Kelm2D-Message] Kelm, , ERROR: Condition [ false failed ]",
          [&] { return Plane(o, e, e).distance(o) != 0; }},
         {"[ false failed ]", [&] { return t.getArea25D() != 0; }},
         {"warning, sqDistance25D, nan value, no distance\np0=Point2",
          [&] { return !std::isnan(t.getSquaredEdgeLength25D(0)); }},
         {"HC2::HC2(..), ERROR: invalid bitlength", [&] { return HC2(0, 0, 1, 1, 29), false; }},
         {"HC2::HC2(..), ERROR: invalid bitlength", [&] { return HC2(0, 0, 1, 1, 34), false; }}});
}

TEST_F(Refusals, Constraints) {
    const Segment2 point({1, 2, 3}, {1, 2, 4}), good({1, 1, 0}, {5, 5, 0});
    const std::vector<Segment2> vNone, vPoint{point}, vGood{good}, vBoth{good, point},
        vNaN{good, {{1, 1, 0}, aBad[0]}}, vInfinite{{aBad[2], {1, 0, 0}}, good};
    // The number of segments, or -1 without a graph, in a mesh of its own.
    const auto create = [](const std::vector<Segment2>& v, int cis, bool bOriented) {
        Kelm_2D fresh;
        fresh.insert(square);
        const bool bGraph =
            fresh.createConstraint(v, static_cast<ConstraintInsertionStrategy>(cis), bOriented) != nullptr;
        EXPECT_TRUE(bGraph == (fresh.numberOfPoints() != 4) && findMeshFault(fresh).empty());
        return bGraph ? static_cast<int>(aliveSegments(fresh).size()) : -1;
    };
    const char* const skipped = "ConstraingMgr::createConstraint, WARNING: (0) Identical source and "
                                "endpoint, a constraint segment has been skipped.\n";
    const char* const notFinite = "ERROR: a coordinate is not finite, none of the points is inserted\n";
    expect({{"createConstraint(), WARNING: You have not supplied any segments. Returning",
             [&] { return create(vNone, 1, false) != -1; }},
            {skipped, [&] { return create(vPoint, 1, false) != 0; }},
            {skipped, [&] { return create(vBoth, 1, false) != 1; }},
            {"", [&] { return create(vBoth, 1, true) != 1; }},
            {notFinite, [&] { return create(vNaN, 1, false) != -1; }},
            {notFinite, [&] { return create(vInfinite, 0, true) != -1; }},
            {"ConstraintMgr::apply(), ERROR: Unknown CIS\n", [&] { return create(vGood, 3, false) != 1; }},
            {"Dt2::createConstraint(..), WARNING: vSegments is empty, returning NULL\n", [&] {
                 return dt.getImpl()->getConstraintMgr().createUserConstraint(vNone, CIS_CONSTRAINED_DELAUNAY,
                                                                              false);
             }}});
    Point2* pMiddle = dt.insert({3, 1, 0}); // divides the first of the next ones
    ConstraintGraph2 *pGraph = constrain({1, 1, 0}, {5, 1, 0}, true),
                     *pOther = constrain({1, 5, 0}, {5, 5, 0});
    std::vector<ConstraintSegment2*> v, vOther;
    pGraph->getOriginalConstraintSegments(v);
    pOther->getOriginalConstraintSegments(vOther);
    ConstraintSegment2 *pDead = v[0], *pForeign = vOther[0];
    ConstraintSegment2 *pHalf = dt.getConstraintSegment(dt.insert({1, 1, 0}), pMiddle), *pKid0 = pDead,
                       *pKid1 = pHalf;
    Point2 *pSplit = pHalf->insertAndSplit({2, 1, 0}), *pKept = pSplit;
    const Point2 onDead(4, 1, 0), onHalf(1.5, 1, 0);
    expect({{"[ pSplit!=0 ", [&] { return pForeign->split_combinatorialOnly(nullptr); }},
            {"[ isAlive() ", [&] { return pDead->split_combinatorialOnly(pForeign->getTrg()); }},
            {"[ p0!=pSplit && p1!=pSplit ",
             [&] { return pForeign->split_combinatorialOnly(pForeign->getTrg()); }},
            {"[ vChildren.empty() ", [&] { return pDead->insertAndSplit(onDead) != nullptr; }},
            {"[ bAlive ", [&] { return pHalf->insertAndSplit(onHalf) != nullptr; }},
            {"[ vChildren.size()==2 ", [&] { return pForeign->getChildrenRec(v), true; }},
            {"[ q_it!=mCSegReverse.end() ", [&] { return pGraph->isReverse(pForeign); }},
            {"",
             [&] { return pOther->isConstraint(pSplit, pHalf->getSrc()) || pGraph->isConstraint(pForeign); }},
            {"2::getChildrenAndSplitPoint(), WARNING: *this is still alive!\n", [&] {
                 pForeign->getChildrenAndSplitPoint(pKid0, pKid1, pSplit);
                 return pKid0 != pDead || pKid1 != pHalf || pSplit != pKept;
             }}});
}

TEST_F(Refusals, Zones) {
    const Point2 a(2, 2, 0), b(6, 2, 0), c(4, 6, 0);
    ConstraintGraph2 *pRing = dt.createConstraint({{a, b}, {b, c}, {c, a}}, CIS_CONSTRAINED_DELAUNAY),
                     *pLine = constrain({1, 1, 0}, {1, 8, 0});
    Dt2& impl = *dt.getImpl();
    const std::vector<ConstraintGraph2*> vNone, vBoth = {pRing, pLine};
    Zone2 wrong(&impl, static_cast<ZoneLocation>(9)), several(&impl, vBoth, ZL_GROW, {}),
        none(&impl, ZL_GLOBAL);
    Zone2* pRingZone = dt.createZone(pRing, ZL_INSIDE);
    EXPECT_EQ(pRing, pRingZone->getConstraintGraph());
    const std::vector<Segment2> vFlat{{{0, 0, 0}, {1, 1, 0}}};
    Zone2* pFlat =
        flat.createZone(flat.createConstraint(vFlat, CIS_CONSTRAINED_DELAUNAY, true), ZL_GROW, {1, 1, 0});
    other.insert(square);
    Zone2* pOther = other.createZone(nullptr, ZL_GLOBAL);
    struct OpenZone : Zone2 {
        using Zone2::optimize, Zone2::Zone2;
    } open(&impl, ZL_GLOBAL);
    std::vector<Triangle2*> vT = allTriangles(dt), vChanged = vT;
    const std::string foreign = "The zones must belong to the same triangulation! Returning NULL",
                      only = "Dt2::createZone(), ERROR: This overloaded version of createZone accepts only ";
    expect(
        {{"Dt2::createZone, WARNING: called on a triangulation which has no triangles yet. Returning NULL",
          [&] { return flat.createZone(nullptr, ZL_GLOBAL, false); }},
         {"Dt::createZone(), ERROR: pConstraintGraph==NULL, but zoneLoc!=ZL_GLOBAL or ZL_RESULT. "
          "Returning NULL",
          [&] { return dt.createZone(nullptr, ZL_INSIDE, false); }},
         {"Kelm_2D::createZone(..), WARNING: No zone created, returning NULL (bVerbose==true)",
          [&] { return dt.createZone(pLine, ZL_OUTSIDE); }},
         {"Dt2::createZone(), WARNING: The constraint graph is not oriented, returning NULL",
          [&] { return dt.createZone(pLine, ZL_OUTSIDE, false); }},
         {only + "ZL_GROW", [&] { return dt.createZone(pRing, ZL_INSIDE, Point2(1, 1, 0)); }},
         {only + "ZL_INSIDE and ZL_OUTSIDE", [&] { return impl.getZoneMgr().createZone(vBoth, ZL_GROW); }},
         {only + "ZL_BOUNDED", [&] { return impl.getZoneMgr().createZone(std::vector<Edge2>(), ZL_GROW); }},
         {"A triangle is NULL", [&] { return dt.createZone(std::vector<Triangle2*>(1, nullptr)); }},
         {"Dt2::createConstraint(..), WARNING: vSegments is empty, returning NULL",
          [&] { return dt.createZone(std::vector<Triangle2*>()) == nullptr; }},
         {"Zone2::getConstraintGraph(), WARNING: There is more than one constraint graph, use "
          "Zone2::getConstraintGraphs() instead. Returning NULL",
          [&] { return several.getConstraintGraph(); }},
         {"", [&] { return none.getConstraintGraph(); }},
         {"Zone2::getTriangles(), WARNING: is2D() is false, nothing to return",
          [&] { return pFlat->getNumberOfTriangles(); }},
         {"Zone2::getTriangles(), ERROR: unknown zoneLoc value",
          [&] { return wrong.getNumberOfTriangles(); }},
         {"Zone2::convertToBoundedZone(), WARNING: No triangles available, returning NULL",
          [&] { return several.convertToBoundedZone(); }},
         {"Zone2::zoneUnion(...), ERROR: " + foreign, [&] { return zoneUnion(pRingZone, pOther); }},
         {"zoneUnion(...), ERROR: " + foreign, [&] { return zoneDifference(pRingZone, pOther); }},
         {"A zone is NULL! Returning NULL", [&] { return zoneIntersection(pRingZone, nullptr); }},
         {"peelOffIf(), WARNING: Input zone is NULL, returning NULL",
          [&] { return peelOffIf(nullptr, nullptr); }},
         {"Dt2::deleteZone(..), WARNING: trying to delete a non-existing zone",
          [&] { return dt.deleteZone(pOther), false; }},
         {"", [&] { return dt.createZone(nullptr, ZL_RESULT_UNION)->getNumberOfTriangles(); }},
         {"zoneLoc=3\n\n      [Kelm2D-Message] Zone2::Zone2(..), ERROR: The ZoneLocation for this "
          "constructor can only be one of ZL_INSIDE, ZL_OUTSIDE, ZL_BOUNDED\n\n\n      [Kelm2D-Message] "
          "Kelm, , ERROR: Condition [ ",
          [&] { return dt.createZone(pRing, ZL_GROW); }},
         {"[ false failed ]", [&] { return Zone2(&impl, ZL_BOUNDED, vBoth), true; }},
         {"Zone2::Zone2(..), ERROR: vConstraintGraphs is empty",
          [&] { return Zone2(&impl, ZL_INSIDE, vNone), false; }},
         {"Zone2::Zone2(..), ERROR: One of the ConstraintGraphs is not oriented!",
          [&] { return Zone2(&impl, ZL_OUTSIDE, vBoth), false; }},
         {"[ vChangedT.empty() ", [&] { return open.optimize(vT, vChanged), true; }}});
}

TEST_F(Refusals, CutsAndEdges) {
    const Point2 a(1, 1, 0), b(5, 5, 0), above(1, 1, 5);
    other.insert({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    const std::vector<Triangle2*> vTwice(2, allTriangles(other)[0]);
    std::vector<Edge2> e{{vTwice[0], 0}, {vTwice[0], 1}, {vTwice[0], 2}}, vRest;
    ASSERT_TRUE(sortRingEdges(e)); // from the lower left corner
    const std::vector<Edge2> vToStart{e[1], e[2]}, vAgain{e[0], e[1], e[1]}, vSame{e[0], e[0]};
    std::vector<std::vector<Edge2>> vvChains;
    std::vector<std::vector<Triangle2*>> vvT;
    const auto findPolygons = [&](const std::vector<Edge2>& v) {
        edgesToPolygons(v, vvChains, vRest);
        return !vvChains.empty() || !vRest.empty();
    };
    expect({{"Dt2::CUTT_cutTriangles(..), WARNING: The triangulation is not 2D yet, nothing to do",
             [&] { return flat.cutTriangles(a, b, true), false; }},
            {"Dt2::CUTT_cutTriangles(..), WARNING: No or only degenerate segments, nothing to do",
             [&] { return dt.cutTriangles(a, above, true), false; }},
            {"Dt2::CUTT_cutTriangles(..), ERROR: a coordinate is not finite",
             [&] { return dt.cutTriangles(a, aBad[0], true), false; }},
            {"", [&] { return dt.cutTriangles(std::vector<Segment2>(), true), false; }},
            {"", [&] { return findPolygons({}); }},
            {"[ vEdge.size()==1 ", [&] { return findPolygons(vToStart); }},
            {"[ numErased==1 ", [&] { return findPolygons(vAgain); }},
            {"[ false ", [&] { return findPolygons(vSame); }},
            {"", [&] { return getConnectedComponents({}, vvT), !vvT.empty(); }},
            {"getConnectedComponents, WARNING:  wrong number of triangles\n", [&] {
                 getConnectedComponents(vTwice, vvT);
                 return vvT.size() != 1 || vvT[0].size() != 1;
             }}});
}

TEST_F(Refusals, Drawings) {
    std::vector<Point2> v = square;
    v[0].setZ(std::nan(""));
    v[1].setZ(HUGE_VAL);
    v.pop_back();
    other.insert(v);
    Visualizer3 out("objects.list");
    Visualizer2 page("page.ps"), closed("closed.ps");
    for (int i = 0; i < 10; ++i)
        page.addHeaderLine("line");
    closed.writeFile();
    const std::vector<Point2> vTwo(2);
    out.flush();
    const std::string empty = readFile("objects.list");
    expect(
        {{"Dt2::show(), ERROR: The triangulation is not full dimensional yet",
          [&] { return flat.writeObj("flat.obj"), std::filesystem::exists("flat.obj"); }},
         {"Dt2::show(), ERROR: The triangulation is not full",
          [&] { return flat.showGeomview("flat", "0 1 1 1"), std::filesystem::exists("flat"); }},
         {"Dt2::show(), ERROR: The triangulation is not 2D, no visualization",
          [&] { return flat.show(&page, true), false; }},
         {"Dt2::show(), WARNING: no visualizer", [&] { return dt.show(nullptr, true), false; }},
         {"Dt2::writeWebScene(), WARNING: no path given", [&] { return dt.writeWebScene(nullptr), false; }},
         {"2 heights are not finite", [&] { return other.writeObj("odd"), false; }},
         {"2 numbers are not finite", [&] { return other.showGeomview("odd", "0 1 1 1"), false; }},
         {"", [&] { return out.writeSegments(std::vector<Edge2>(), "", true), false; }},
         {"WARNING: Visualizer3::writePoints: no points",
          [&] { return out.writePoints(std::vector<Point2*>(), 5, ""), false; }},
         {"must be a multiple of 8, it is 12",
          [&] { return out.writeCubes(std::vector<Point2>(12), ""), false; }},
         {"must be a multiple of 3, it is 2",
          [&] { return out.writeTriangles(vTwo, "", true), out.flush(), readFile("objects.list") != empty; }},
         {"WARNING: missing/objects.list not writeable",
          [&] { return out.openFile("missing/objects.list"), false; }},
         {"WARNING: skipping text [\"last\"], maximum number of header lines reached",
          [&] { return page.addHeaderLine("last"), false; }},
         {"Visualizer2::writeFile(), WARNING: No effect. File has already been closed",
          [&] { return closed.writeFile(), false; }},
         {"[ !bFileClosed ", [&] { return closed.addHeaderLine("late"), true; }},
         {"Color::Color, WARNING: Colorname unknown, returning black",
          [] { return Color(static_cast<Colorname>(17), 2, true) != Color(0, 0, 0, 2, true); }}});
}

TEST_F(Refusals, Generators) {
    std::vector<Segment2> v;
    std::vector<Point2> vPoints;
    std::vector<double> vNumbers(7);
    seedRandom(4);
    const int first = nextRandom();
    const auto polygon = [&](unsigned n, double min, double max) {
        return generateRandomPolygon(n, min, max, v, 1), true;
    };
    const auto segments = [&](double min, double max, double maxLength) {
        return generateRandomSegments(1, min, max, maxLength, v, 1), true;
    };
    const auto surface = [&](unsigned numX, double width, double height) {
        seedRandom(4); // no number is drawn
        generateRandomSurfacePoints(numX, 2, 0, 0, 0, 0, width, 1, height, vPoints, 5);
        return !vPoints.empty() || nextRandom() != first;
    };
    const char* const impossible = " generateRandomSurfacePoints(), ERROR: impossible range, returning\n";
    expect({{"[ numSegments>2 ", [&] { return polygon(2, 0, 1); }},
            {"[ canFindPolygon", [&] { return polygon(3, 0, 4.9e-324); }},   // all points in one place
            {"[ canFindPolygon", [&] { return polygon(3, -1e308, 1e308); }}, // infinite coordinates
            {"[ canFindPolygon", [&] { return polygon(4, 1000, 1001); }},    // limits in y below all points
            {"[ canFindPolygon", [&] { return polygon(4, -1001, -1000); }},  // and above
            {"[ maxLength>0 ", [&] { return segments(0, 1, -1); }},
            {"[ maxLength>0 ", [&] { return segments(0, 1, NAN); }},
            {"[ numFruitless", [&] { return segments(0, 4.9e-324, 1); }},  // all points in one place
            {"[ numFruitless", [&] { return segments(1e6, 2e6, 1e-12); }}, // ends rounded to starts
            {"[ numSegments>0 ", [&] { return generateSineSegments(0, 1, 0, 0, 1, 1, false, v), true; }},
            {impossible, [&] { return surface(2, 0, 1); }},
            {impossible, [&] { return surface(2, 1, -1); }},
            {impossible, [&] { return surface(0, NAN, 1); }},
            {"numX and numY must be at least 2, returning", [&] { return surface(1, 1, 1); }},
            {"generateCircle(), WARNING: numPoints=0\n",
             [&] { return generateCircle(0, 1, 2, 3, 4, 5, vPoints), !vPoints.empty(); }},
            {"generateRandomSurfacePoints(), WARNING: numCenters<1, changed to 1\n", [&] {
                 std::vector<Point2> vOne;
                 generateRandomSurfacePoints(9, 9, 0, 0, 0, 0, 1, 1, 1, vPoints, 5);
                 generateRandomSurfacePoints(9, 9, 1, 0, 0, 0, 1, 1, 1, vOne, 5);
                 return !std::equal(vOne.begin(), vOne.end(), vPoints.begin(), vPoints.end(),
                                    [](const Point2& a, const Point2& b) { return a.samePoint(b); });
             }}});
    for (const double max : {1.0, 0.5, double(NAN)})
        expect({{"[ min<max ", [&] { return generateRandomNumbers(3, 1, max, vNumbers, 4), true; }},
                {"[ min<max ", [&] { return generateRandomPoints(3, 1, max, vPoints, 4), true; }},
                {"[ min<max ", [&] { return generateRandomPoints3D(3, 1, max, vPoints, 4), true; }},
                {"[ min<max ", [&] { return segments(1, max, 3); }},
                {"[ min<max ", [&] { return polygon(20, 1, max); }}});
    EXPECT_THROW(generateRandomNumbers(3, 1, 1, vNumbers, 4), KelmException);
    EXPECT_TRUE(v.empty() && vNumbers.size() == 3 && nextRandom() == first); // sized and seeded, deliberately
}
