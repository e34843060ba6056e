// What bad input gets: its message, the neutral result or a failed check, and
// everything else as it was. Damaged files are in data_files_test.cpp,
// triangles that are no mesh in import_test.cpp, segments that are no ring in
// rings_test.cpp.
#include "HC2.h"
#include "random.h"
#include "ringTools.h"
#include "testing.h"
#include "zoneModel.h"

#include <cfloat>
#include <functional>

namespace {

// The call, which looks at its result itself, and a part of the message. Of a failed check that is the
// condition, in brackets.
using Refusal = std::pair<std::string, std::function<void()>>;

void expectAll(const Kelm_2D& dt, const std::vector<Refusal>& vRefusals) {
    const auto getState = [&] { return std::tuple(triangleSet(dt), dt.numberOfPoints(), aliveSegments(dt)); };
    const auto before = getState();
    for (const auto& [message, call] : vRefusals) {
        SCOPED_TRACE(message);
        CoutCapture capture, errors(std::cerr);
        if (message.find("[ ") == std::string::npos)
            call();
        else
            EXPECT_THROW(call(), KelmException);
        const std::string text = capture.take() + errors.take();
        EXPECT_TRUE(message.empty() ? text.empty() : text.find(message) != std::string::npos) << text;
        EXPECT_TRUE(before == getState());
    }
    ASSERT_VALID_MESH(dt);
}

} // namespace

TEST(Refusals, GiveMessageAndNeutralResultAndChangeNothing) {
    const ScratchDirectory scratch; // for the log of failed checks
    Kelm_2D dt, flat, other, spare;
    const std::vector<Point2> square{{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}};
    const std::vector<Point2> vBad{{1, 2, 5}, {1, NAN, 5}, {-HUGE_VAL, 1, 5}};
    const Point2 o(0, 0, 0), e(1, 0, 0), p(1, 2, 3), above(1, 2, 5);

    // Points: one was removed, one waits no more, and others have heights that are not finite.
    dt.insert(square);
    spare.insert(square);
    Point2 *pRemoved = dt.insert({7, 3, 0}), *pWaiting = flat.insert(p), loose(1, 0.5, 0);
    dt.remove(pRemoved);
    flat.remove(pWaiting);
    Point2 *pAgain = dt.insert({7, 3, 0}), *pForeign = other.insert({0, 0, NAN});
    other.insert({{9, 0, HUGE_VAL}, {9, 9, 0}});
    std::vector<Point2*> vHandles{&loose, &loose}, vNull(3, nullptr), vHull;
    double aBad[] = {7, 8, 0, 1, HUGE_VAL, 0};

    // Values.
    Bbox2 invalid, box;
    box.add(square.begin(), square.end());
    Point2 a(o), b(e), c(0, 1, NAN);
    Triangle2 triangle;
    triangle.setProperties(&a, &b, &c);

    // Constraints: the first one is divided at a vertex, and a half of it once more.
    const auto constrain = [](Kelm_2D& mesh, const std::vector<Segment2>& v, int cis, bool bOriented) {
        return mesh.createConstraint(v, static_cast<ConstraintInsertionStrategy>(cis), bOriented);
    };
    const Segment2 good({1, 7, 0}, {5, 7, 0}), point({1, 7, 0}, {1, 7, 1});
    const std::vector<Segment2> vNoSegments, vPoint{point}, vGood{good}, vGoodAndPoint{good, point},
        vNaN{{o, p}, {p, vBad[1]}}, vInfinite{{vBad[2], e}, {o, p}};
    Point2* pMiddle = dt.insert({3, 1, 0});
    ConstraintGraph2 *pGraph = constrain(dt, {{{1, 1, 0}, {5, 1, 0}}}, 1, true),
                     *pOther = constrain(dt, vGood, 1, false);
    std::vector<ConstraintSegment2*> v, vOther;
    pGraph->getOriginalConstraintSegments(v);
    pOther->getOriginalConstraintSegments(vOther);
    ConstraintSegment2 *pDead = v[0], *pWhole = vOther[0], *pKid = pDead,
                       *pHalf = dt.getConstraintSegment(dt.insert({1, 1, 0}), pMiddle);
    Point2 *pSplit = pHalf->insertAndSplit({2, 1, 0}), *pKept = pSplit;
    const Point2 onDead(4, 1, 0), onHalf(1.5, 1, 0);
    ConstraintMgr& constraintMgr = dt.getImpl()->getConstraintMgr();
    const auto cis = CIS_CONSTRAINED_DELAUNAY;

    // Zones.
    ConstraintGraph2 *pRing = constrain(dt, ringOf({{2, 2, 0}, {6, 2, 0}, {4, 6, 0}}), 1, false),
                     *pLine = constrain(dt, {{{8, 1, 0}, {8, 8, 0}}}, 1, false);
    const std::vector<ConstraintGraph2*> vNone, vBoth{pRing, pLine};
    Dt2& impl = *dt.getImpl();
    ZoneMgr& zoneMgr = impl.getZoneMgr();
    Zone2 wrong(&impl, static_cast<ZoneLocation>(9)), several(&impl, vBoth, ZL_GROW, {}),
        none(&impl, ZL_GLOBAL);
    Zone2 *pRingZone = dt.createZone(pRing, ZL_INSIDE), *pOtherZone = other.createZone(nullptr, ZL_GLOBAL),
          *pFlat = flat.createZone(constrain(flat, {{o, {1, 1, 0}}}, 1, true), ZL_GROW, {1, 1, 0});
    EXPECT_EQ(pRing, pRingZone->getConstraintGraph());
    struct OpenZone : Zone2 {
        using Zone2::optimize, Zone2::Zone2;
    } open(&impl, ZL_GLOBAL);
    std::vector<Triangle2*> vT = allTriangles(dt), vChanged = vT;
    const std::string foreign = "The zones must belong to the same triangulation! Returning NULL",
                      only = "Dt2::createZone(), ERROR: This overloaded version of createZone accepts only ";

    // Edges of one triangle, from the lower left corner on.
    const std::vector<Triangle2*> vTwice(2, allTriangles(other)[0]), vNoTriangles;
    std::vector<Edge2> vRing{{vTwice[0], 0}, {vTwice[0], 1}, {vTwice[0], 2}}, vRest, vNoEdges;
    ASSERT_TRUE(sortRingEdges(vRing));
    const std::vector<Edge2> vToStart{vRing[1], vRing[2]}, vAgain{vRing[0], vRing[1], vRing[1]},
        vSame{vRing[0], vRing[0]};
    std::vector<std::vector<Edge2>> vvChains;
    std::vector<std::vector<Triangle2*>> vvT;

    // Drawings.
    Visualizer3 out("objects.list");
    Visualizer2 page("page.ps"), closed("closed.ps");
    for (int i = 0; i < 10; ++i)
        page.addHeaderLine("line");
    closed.writeFile();
    const auto empty = out.tellp();

    // Generators.
    std::vector<Segment2> vSegments;
    std::vector<Point2> vPoints;
    std::vector<double> vNumbers(7);
    seedRandom(4);
    const int first = nextRandom();
    const auto surface = [&](unsigned numX, unsigned numCenters, double width, double height) {
        std::vector<Point2> vSurface;
        seedRandom(4);
        generateRandomSurfacePoints(numX, 9, numCenters, 0, 0, 0, width, 1, height, vSurface, 5);
        return vSurface.empty() && nextRandom() == first ? 0.0 : vSurface[3].z(); // no number is drawn
    };

    const char* notOurs = "Dt2::remove(), WARNING: vertex does not belong to the triangulation, return";
    const char* notFinite = "ERROR: a coordinate is not finite, none of the points";
    const char* noGraph = "Dt2::createConstraint(..), WARNING: vSegments is empty, returning NULL";
    const char* skipped = "ConstraingMgr::createConstraint, WARNING: (0) Identical source and endpoint, a "
                          "constraint segment has been skipped.\n";
    const char* notShown = "Dt2::show(), ERROR: The triangulation is not full dimensional yet";
    const char* noSurface = " generateRandomSurfacePoints(), ERROR: impossible range, returning\n";
    expectAll(
        dt,
        {{"Dt2::remove(..), WARNING: pVtx==NULL, illegal, return.", [&] { dt.remove(nullptr); }},
         {notOurs, [&] { dt.remove(pRemoved); }},
         {"", [&] { EXPECT_FALSE(pAgain == pRemoved); }}, // its storage is not used again
         {notOurs, [&] { dt.remove(&loose); }},
         {notOurs, [&] { dt.remove(pForeign); }},
         {notOurs, [&] { flat.remove(pWaiting); }}, // before there are triangles
         {"ERROR: a coordinate is not finite, the point", [&] { EXPECT_FALSE(dt.insert(vBad[1])); }},
         {notFinite,
          [&] { EXPECT_FALSE((dt.insert(2, aBad, vHandles.data()), vHandles[0] || vHandles[1])); }},
         {notFinite, [&] { EXPECT_FALSE((dt.insert(vBad, vHandles), vHandles != vNull)); }},

         {"[ p0!=p1 ", [&] { dt.getAdjacentTriangle(&loose, &loose); }},
         {"[ p1!=0 ", [&] { dt.getAdjacentTriangle(&loose, nullptr); }},
         {"internal debug is disbled in your version", [&] { dt.internal(-7, -1000, ""); }}, // so spelled
         {"", [&] { dt.internal(-7, -1, ""), dt.internal(-8, -1000, ""); }},
         {"Dt2::getConvexHull(), WARNING: is2D() is false, the triangulation is not full dimensional yet",
          [&] { EXPECT_FALSE((flat.getConvexHull(true, vHull), vHull.size())); }},
         {"[ p0!=0 ", [&] { getOrientation2(nullptr, &p, &p); }},
         {"[ p1!=0 ", [&] { getOrientation2(&p, nullptr, &p); }},
         {"[ p2!=0 ", [&] { getOrientation2(&p, &p, nullptr); }},
         {"[ p1!=0 ", [&] { getOrientation2_mt(&p, nullptr, &p); }},

         {"\n      [Kelm2D-Message] Bbox2::doIntersect(), WARNING: bbox invalid\n\n",
          [&] { EXPECT_FALSE(invalid.doIntersect(box)); }},
         {"Bbox2::computeCenter(), WARNING: Bbox2 is invalid",
          [&] { EXPECT_EQ(o, invalid.computeCenter()); }},
         {"Box2::operator+(), WARNING: trying to add an invalid Bbox2",
          [&] { EXPECT_EQ(9, (box + invalid).get_maxX()); }},
         {": Degenerate plane\n\n\n      [Kelm2D-Message] Kelm, , ERROR: Condition [ false failed ]",
          [&] { Plane(o, e, e).distance(o); }},
         {"[ false failed ]", [&] { triangle.getArea25D(); }},
         {"warning, sqDistance25D, nan value, no distance\np0=Point2",
          [&] { EXPECT_TRUE(std::isnan(triangle.getSquaredEdgeLength25D(0))); }},
         {"HC2::HC2(..), ERROR: invalid bitlength", [&] { HC2(0, 0, 1, 1, 29); }},
         {"HC2::HC2(..), ERROR: invalid bitlength", [&] { HC2(0, 0, 1, 1, 34); }},

         {"createConstraint(), WARNING: You have not supplied any segments. Returning",
          [&] { EXPECT_FALSE(constrain(dt, vNoSegments, 1, false)); }},
         {skipped, [&] { EXPECT_TRUE(constrain(dt, vPoint, 1, false)); }},
         {skipped, [&] { EXPECT_TRUE(constrain(dt, vGoodAndPoint, 1, false)); }},
         {"", [&] { EXPECT_TRUE(constrain(dt, vGoodAndPoint, 1, true)); }},
         {notFinite, [&] { EXPECT_FALSE(constrain(dt, vNaN, 1, false)); }},
         {notFinite, [&] { EXPECT_FALSE(constrain(dt, vInfinite, 0, true)); }},
         {"ConstraintMgr::apply(), ERROR: Unknown CIS\n",
          [&] { EXPECT_TRUE(constrain(spare, vGood, 3, false)); }},
         {"", [&] { EXPECT_EQ(1U, aliveSegments(spare).size()); }},
         {noGraph, [&] { EXPECT_FALSE(constraintMgr.createUserConstraint(vNoSegments, cis, false)); }},
         {"[ pSplit!=0 ", [&] { pWhole->split_combinatorialOnly(nullptr); }},
         {"[ isAlive() ", [&] { pDead->split_combinatorialOnly(pWhole->getTrg()); }},
         {"[ p0!=pSplit && p1!=pSplit ", [&] { pWhole->split_combinatorialOnly(pWhole->getTrg()); }},
         {"[ vChildren.empty() ", [&] { pDead->insertAndSplit(onDead); }},
         {"[ bAlive ", [&] { pHalf->insertAndSplit(onHalf); }},
         {"[ vChildren.size()==2 ", [&] { pWhole->getChildrenRec(v); }},
         {"[ q_it!=mCSegReverse.end() ", [&] { pGraph->isReverse(pWhole); }},
         {"", [&] { EXPECT_FALSE(pOther->isConstraint(pSplit, pHalf->getSrc())); }},
         {"", [&] { EXPECT_FALSE(pGraph->isConstraint(pWhole)); }},
         {"2::getChildrenAndSplitPoint(), WARNING: *this is still alive!\n",
          [&] { pWhole->getChildrenAndSplitPoint(pKid, pKid, pSplit); }},

         {"Dt2::createZone, WARNING: called on a triangulation which has no triangles yet. Returning NULL",
          [&] { EXPECT_FALSE(flat.createZone(nullptr, ZL_GLOBAL, false)); }},
         {"Dt::createZone(), ERROR: pConstraintGraph==NULL, but zoneLoc!=ZL_GLOBAL or ZL_RESULT. Returning "
          "NULL",
          [&] { EXPECT_FALSE(dt.createZone(nullptr, ZL_INSIDE, false)); }},
         {"Kelm_2D::createZone(..), WARNING: No zone created, returning NULL (bVerbose==true)",
          [&] { EXPECT_FALSE(dt.createZone(pLine, ZL_OUTSIDE)); }},
         {"Dt2::createZone(), WARNING: The constraint graph is not oriented, returning NULL",
          [&] { EXPECT_FALSE(dt.createZone(pLine, ZL_OUTSIDE, false)); }},
         {only + "ZL_GROW", [&] { EXPECT_FALSE(dt.createZone(pRing, ZL_INSIDE, Point2(1, 1, 0))); }},
         {only + "ZL_INSIDE and ZL_OUTSIDE", [&] { EXPECT_FALSE(zoneMgr.createZone(vBoth, ZL_GROW)); }},
         {only + "ZL_BOUNDED", [&] { EXPECT_FALSE(zoneMgr.createZone(vNoEdges, ZL_GROW)); }},
         {"A triangle is NULL", [&] { EXPECT_FALSE(dt.createZone(std::vector<Triangle2*>(1, nullptr))); }},
         {noGraph, [&] { EXPECT_TRUE(dt.createZone(vNoTriangles)); }},
         {"Zone2::getConstraintGraph(), WARNING: There is more than one constraint graph, use "
          "Zone2::getConstraintGraphs() instead. Returning NULL",
          [&] { EXPECT_FALSE(several.getConstraintGraph()); }},
         {"", [&] { EXPECT_FALSE(none.getConstraintGraph()); }},
         {"Zone2::getTriangles(), WARNING: is2D() is false, nothing to return",
          [&] { EXPECT_FALSE(pFlat->getNumberOfTriangles()); }},
         {"Zone2::getTriangles(), ERROR: unknown zoneLoc value",
          [&] { EXPECT_FALSE(wrong.getNumberOfTriangles()); }},
         {"Zone2::convertToBoundedZone(), WARNING: No triangles available, returning NULL",
          [&] { EXPECT_FALSE(several.convertToBoundedZone()); }},
         {"Zone2::zoneUnion(...), ERROR: " + foreign,
          [&] { EXPECT_FALSE(zoneUnion(pRingZone, pOtherZone)); }},
         {"zoneUnion(...), ERROR: " + foreign, [&] { EXPECT_FALSE(zoneDifference(pRingZone, pOtherZone)); }},
         {"A zone is NULL! Returning NULL", [&] { EXPECT_FALSE(zoneIntersection(pRingZone, nullptr)); }},
         {"peelOffIf(), WARNING: Input zone is NULL, returning NULL",
          [&] { EXPECT_FALSE(peelOffIf(nullptr, nullptr)); }},
         {"Dt2::deleteZone(..), WARNING: trying to delete a non-existing zone",
          [&] { dt.deleteZone(pOtherZone); }},
         {"", [&] { EXPECT_FALSE(dt.createZone(nullptr, ZL_RESULT_UNION)->getNumberOfTriangles()); }},
         {"zoneLoc=3\n\n      [Kelm2D-Message] Zone2::Zone2(..), ERROR: The ZoneLocation for this "
          "constructor "
          "can only be one of ZL_INSIDE, ZL_OUTSIDE, ZL_BOUNDED\n\n\n      [Kelm2D-Message] Kelm, , ERROR: "
          "Condition [ ",
          [&] { dt.createZone(pRing, ZL_GROW); }},
         {"[ false failed ]", [&] { Zone2(&impl, ZL_BOUNDED, vBoth); }},
         {"Zone2::Zone2(..), ERROR: vConstraintGraphs is empty", [&] { Zone2(&impl, ZL_INSIDE, vNone); }},
         {"Zone2::Zone2(..), ERROR: One of the ConstraintGraphs is not oriented!",
          [&] { Zone2(&impl, ZL_OUTSIDE, vBoth); }},
         {"[ vChangedT.empty() ", [&] { open.optimize(vT, vChanged); }},

         {"Dt2::CUTT_cutTriangles(..), WARNING: The triangulation is not 2D yet, nothing to do",
          [&] { flat.cutTriangles(o, p, true); }},
         {"Dt2::CUTT_cutTriangles(..), WARNING: No or only degenerate segments, nothing to do",
          [&] { dt.cutTriangles(p, above, true); }},
         {"Dt2::CUTT_cutTriangles(..), ERROR: a coordinate is not finite",
          [&] { dt.cutTriangles(p, vBad[1], true); }},
         {"", [&] { dt.cutTriangles(vNoSegments, true); }},
         {"", [&] { EXPECT_FALSE((edgesToPolygons(vNoEdges, vvChains, vRest), vvChains.size())); }},
         {"[ vEdge.size()==1 ", [&] { edgesToPolygons(vToStart, vvChains, vRest); }},
         {"[ numErased==1 ", [&] { edgesToPolygons(vAgain, vvChains, vRest); }},
         {"[ false ", [&] { edgesToPolygons(vSame, vvChains, vRest); }},
         {"", [&] { EXPECT_FALSE((getConnectedComponents(vNoTriangles, vvT), vvT.size())); }},
         {"getConnectedComponents, WARNING:  wrong number of triangles\n",
          [&] {
              EXPECT_FALSE((getConnectedComponents(vTwice, vvT), vvT.size() != 1 || vvT[0].size() != 1));
          }},

         {notShown, [&] { EXPECT_FALSE((flat.writeObj("flat"), std::filesystem::exists("flat"))); }},
         {notShown, [&] { flat.showGeomview("flat", "0 1 1 1"); }},
         {"Dt2::show(), ERROR: The triangulation is not 2D, no visualization",
          [&] { flat.show(&page, true); }},
         {"Dt2::show(), WARNING: no visualizer", [&] { dt.show(nullptr, true); }},
         {"Dt2::writeWebScene(), WARNING: no path given", [&] { dt.writeWebScene(nullptr); }},
         {"2 heights are not finite", [&] { other.writeObj("odd.obj"); }},
         {"2 numbers are not finite", [&] { other.showGeomview("odd.list", "0 1 1 1"); }},
         {"", [&] { out.writeSegments(vNoEdges, "", true); }},
         {"WARNING: Visualizer3::writePoints: no points", [&] { out.writePoints(vPoints, 5, ""); }},
         {"must be a multiple of 8, it is 12", [&] { out.writeCubes(std::vector<Point2>(12), ""); }},
         {"must be a multiple of 3, it is 4",
          [&] { EXPECT_FALSE((out.writeTriangles(square, "", true), out.tellp() != empty)); }},
         {"WARNING: missing/objects.list not writeable", [&] { out.openFile("missing/objects.list"); }},
         {"WARNING: skipping text [\"last\"], maximum number of header lines reached",
          [&] { page.addHeaderLine("last"); }},
         {"Visualizer2::writeFile(), WARNING: No effect. File has already been closed",
          [&] { closed.writeFile(); }},
         {"[ !bFileClosed ", [&] { closed.addHeaderLine("late"); }},
         {"Color::Color, WARNING: Colorname unknown, returning black",
          [] { EXPECT_FALSE(Color(static_cast<Colorname>(17), 2, true) != Color(0, 0, 0, 2, true)); }},

         {"[ numSegments>2 ", [&] { generateRandomPolygon(2, 0, 1, vSegments, 1); }},
         {"[ canFindPolygon", [&] { generateRandomPolygon(3, 0, 4.9e-324, vSegments, 1); }},   // one place
         {"[ canFindPolygon", [&] { generateRandomPolygon(3, -1e308, 1e308, vSegments, 1); }}, // infinite
         {"[ canFindPolygon", [&] { generateRandomPolygon(4, 1000, 1001, vSegments, 1); }},    // too high
         {"[ canFindPolygon", [&] { generateRandomPolygon(4, -1001, -1000, vSegments, 1); }},  // and above
         {"[ min<max ", [&] { generateRandomPolygon(20, 1, NAN, vSegments, 1); }},
         {"[ min<max ", [&] { generateRandomSegments(1, 1, NAN, 3, vSegments, 1); }},
         {"[ min<max ", [&] { generateRandomPoints(3, 1, NAN, vPoints, 4); }},
         {"[ min<max ", [&] { generateRandomPoints3D(3, 1, NAN, vPoints, 4); }},
         {"[ maxLength>0 ", [&] { generateRandomSegments(1, 0, 1, NAN, vSegments, 1); }},
         {"[ numFruitless",
          [&] { generateRandomSegments(1, 0, 4.9e-324, 1, vSegments, 1); }}, // all points in one place
         {"[ numFruitless", [&] { generateRandomSegments(1, 1e6, 2e6, 1e-12, vSegments, 1); }}, // no length
         {"[ numSegments>0 ", [&] { generateSineSegments(0, 1, 0, 0, 1, 1, false, vSegments); }},
         {noSurface, [&] { EXPECT_FALSE(surface(2, 1, 1, 0)); }},
         {noSurface, [&] { EXPECT_FALSE(surface(0, 1, NAN, 1)); }},
         {"numX and numY must be at least 2, returning", [&] { EXPECT_FALSE(surface(1, 1, 1, 1)); }},
         {"generateCircle(), WARNING: numPoints=0\n",
          [&] { EXPECT_FALSE((generateCircle(0, 1, 2, 3, 4, 5, vPoints), vPoints.size())); }},
         {"generateRandomSurfacePoints(), WARNING: numCenters<1, changed to 1\n",
          [&] { EXPECT_FALSE(surface(9, 0, 1, 1) - surface(9, 1, 1, 1)); }},
         {"[ min<max ",
          [&] { generateRandomNumbers(3, 1, 1, vNumbers, 4); }}}); // sized and seeded, deliberately
    for (const char* word : {"nan", "inf"})
        EXPECT_EQ(std::string::npos, (readFile("odd.obj") + readFile("odd.list")).find(word));
    EXPECT_THROW(dt.getIncidentTriangles(&loose, vT), KelmException);
    EXPECT_TRUE(pKid == pDead && pSplit == pKept);
    EXPECT_TRUE(vSegments.empty() && vPoints.empty() && vNumbers.size() == 3 && nextRandom() == first);
}
