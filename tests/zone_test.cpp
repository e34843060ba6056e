// Zones: every way to make one, what is refused, and that each follows its mesh; set operations, peeling and
// measures. Cutting is in cutting_test.cpp, flips within zones in surface_optimization_test.cpp.
#include "testing.h"

#include "zoneModel.h"

#include <memory>
#include <regex>

namespace {

std::vector<Segment2> circle(double x, double y, double r, unsigned n) {
    std::vector<Point2> v;
    generateCircle(n, x, y, 0.0, r, r, v);
    return ringOf(v);
}

std::set<Triangle2*> setOf(const Zone2& zone) {
    const Triangles v = trianglesOf(zone);
    return {v.begin(), v.end()};
}

/// Zones of many kinds over random points: rings, a ring with a hole given by directions, open lines, spikes.
struct Scene {
    explicit Scene(unsigned seed) : random(seed) {
        std::vector<Point2> vPoints;
        for (int i = 0; i < 400; ++i)
            vPoints.push_back(point());
        dt.insert(vPoints);
        const auto constrain = [&](const std::vector<Segment2>& v, bool bOriented) {
            return dt.createConstraint(v, CIS_CONSTRAINED_DELAUNAY, bOriented);
        };
        std::vector<Segment2> vHoled = circle(5, 5, 4, 24), vSpiked = circle(7, 3, 2, 12);
        for (Segment2 segment : circle(5, 5, 2, 16)) {
            segment.swapSrcTrg();
            vHoled.push_back(segment);
        }
        const Point2 tip(7, 3, 0);
        vSpiked.emplace_back(vSpiked[0].getSrc(), tip);
        vSpiked.emplace_back(tip, vSpiked[0].getSrc());
        vGraphs = {constrain(circle(3, 3, 2.5, 20), false), constrain(vHoled, true), constrain(vSpiked, true),
                   constrain({Segment2(point(), point()), Segment2(point(), point())}, true),
                   constrain({Segment2(point(), point())}, true)};
        add({dt.createZone(nullptr, ZL_GLOBAL), ZL_GLOBAL});
        for (ConstraintGraph2* pGraph : vGraphs)
            for (const ZoneLocation location : {ZL_INSIDE, ZL_OUTSIDE})
                add({dt.createZone(pGraph, location), location, {pGraph}});
        const std::vector<ConstraintGraph2*> vSome = {vGraphs[0], vGraphs[1]};
        add({dt.getImpl()->getZoneMgr().createZone(vSome, ZL_OUTSIDE), ZL_OUTSIDE, {vGraphs[0], vGraphs[1]}});
        for (const Point2& start : {point(), Point2(20, 20, 0), Point2(5, 5, 0)})
            add({dt.createZone(vSome, ZL_GROW, start), ZL_GROW, {vGraphs[0], vGraphs[1]}, {start}});
        static Zone2* (*const aOperation[])(Zone2*, Zone2*) = {zoneUnion, zoneIntersection, zoneDifference,
                                                               zoneSymmetricDifference};
        for (int i = 0; i < 12; ++i) {
            const ZoneModel &a = any(), &b = any();
            add({aOperation[i % 4](a.pZone, b.pZone), ZoneLocation(ZL_RESULT_UNION + i % 4), {}, {}, &a, &b});
        }
    }

    Point2 point() { return Point2(coordinate(random), coordinate(random), coordinate(random)); }
    const ZoneModel& any() { return *vModels[random() % vModels.size()]; }
    void add(const ZoneModel& model) { vModels.push_back(std::make_unique<ZoneModel>(model)); }

    void change() {
        const std::vector<Point2*> vVertices = allVertices(dt);
        const std::vector<ConstraintSegment2*> vAlive = aliveSegments(dt);
        ConstraintSegment2* pSegment = vAlive[random() % vAlive.size()];
        const Point2 &a = *pSegment->getSrc(), &b = *pSegment->getTrg();
        Point2* pVtx = vVertices[random() % vVertices.size()];
        Triangle2* pT = pVtx->getIncidentTriangle();
        switch (random() % 6) {
        case 0:
            if (!dt.isConstraint(pVtx)) dt.remove(pVtx);
            break;
        case 1:
            pSegment->insertAndSplit(bBend ? point() : Point2((a.x() + b.x()) / 2, (a.y() + b.y()) / 2, 0));
            break;
        case 2:
            dt.createConstraint({Segment2(point(), point())}, CIS_CONSTRAINED_DELAUNAY, true);
            break;
        case 3:
            if (dt.getImpl()->getMesh().canBeFlipped(pT, 0)) Mesh2::flip(pT, 0);
            break;
        default:
            dt.insert(point());
        }
    }

    std::mt19937 random;
    std::uniform_real_distribution<double> coordinate{0, 10};
    bool bBend = false; // constraints may come to run elsewhere
    Kelm_2D dt;
    std::vector<ConstraintGraph2*> vGraphs;
    std::vector<std::unique_ptr<ZoneModel>> vModels;
};

// As long as no constraint bends, bounded zones keep their areas.
TEST(Zones, FollowTheMeshThroughEveryChange) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        Scene scene(seed);
        scene.bBend = seed % 2 == 0;
        for (std::size_t i = 0, n = scene.vModels.size(); i < n; ++i) {
            const ZoneModel model = *scene.vModels[i];
            const std::set<Triangle2*> sBefore = setOf(*model.pZone);
            Zone2* pBounded = model.pZone->convertToBoundedZone();
            if (sBefore.empty() || model.location == ZL_INSIDE) {
                ASSERT_EQ(sBefore.empty() ? nullptr : model.pZone, pBounded);
                continue;
            }
            ASSERT_EQ(sBefore, setOf(*pBounded));
            scene.add({pBounded, ZL_BOUNDED, {pBounded->getConstraintGraph()}});
        }
        std::map<const Zone2*, double> mAreas;
        for (int i = 0; i < 60; ++i) {
            for (const auto& pModel : scene.vModels) {
                ASSERT_EQ("", i % 6 == 0 ? findZoneFault(scene.dt, *pModel) : "") << "seed " << seed;
                if (scene.bBend || pModel->location != ZL_BOUNDED) continue;
                const double area = pModel->pZone->getArea2D();
                ASSERT_NEAR(mAreas.emplace(pModel->pZone, area).first->second, area, 1e-9); // 500 roundings
            }
            scene.change();
        }
    }
}

// Triangles chosen at random, shuffled: borders with holes, corners that touch, many parts.
TEST(Zones, AnySetOfTrianglesBecomesAZone) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        Kelm_2D dt;
        std::uniform_real_distribution<double> coordinate(0, 10);
        for (int i = 0; i < 100; ++i)
            dt.insert(Point2(coordinate(random), coordinate(random), 0));
        const Triangles vAll = allTriangles(dt);
        Triangles vChosen;
        std::copy_if(vAll.begin(), vAll.end(), std::back_inserter(vChosen),
                     [&](Triangle2*) { return random() % 20 < seed; });
        std::shuffle(vChosen.begin(), vChosen.end(), random);
        const Zone2* pZone = dt.createZone(vChosen);
        ASSERT_EQ(ZL_GROW, pZone->getZoneLocation());
        ASSERT_EQ(std::set<Triangle2*>(vChosen.begin(), vChosen.end()), setOf(*pZone));
        std::vector<Segment2> vSegments, vBorders;
        pZone->getBoundarySegments(vSegments);
        getBorders(trianglesOf(*pZone), vBorders);
        ASSERT_TRUE(vSegments == vBorders);
        ASSERT_VALID_MESH(dt);
    }
}

/// Takes away what has less than a given area, and keeps the book.
struct SmallerThan : UserPredicateT {
    explicit SmallerThan(double limit_) : limit(limit_) {}
    bool operator()(const Triangle2* pT) override {
        vAsked.push_back(pT);
        return pT->getArea2D() < limit;
    }
    double limit;
    std::vector<const Triangle2*> vAsked;
};

TEST(Zones, PeelingTakesWhatAgreesFromOutsideInwards) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        Scene scene(seed);
        for (const auto& pModel : scene.vModels) {
            std::set<Triangle2*> sLeft = setOf(*pModel->pZone);
            if (sLeft.empty()) continue;
            const auto isShielded = [&](const Triangle2* pT) {
                return sLeft.count(pT->getOppositeTriangle(0)) + sLeft.count(pT->getOppositeTriangle(1)) +
                           sLeft.count(pT->getOppositeTriangle(2)) ==
                       3;
            };
            SmallerThan predicate(seed * 0.02);
            const Zone2* pPeeled = peelOffIf(pModel->pZone, &predicate);
            for (const Triangle2* pT : predicate.vAsked) {
                ASSERT_FALSE(isShielded(pT));
                if (pT->getArea2D() < predicate.limit) sLeft.erase(const_cast<Triangle2*>(pT));
            }
            for (const Triangle2* pT : sLeft)
                ASSERT_TRUE(isShielded(pT) || pT->getArea2D() >= predicate.limit);
            ASSERT_EQ(sLeft, pPeeled ? setOf(*pPeeled) : std::set<Triangle2*>());
        }
    }
    Scene scene(9);
    SmallerThan everything(1e9);
    CoutCapture capture;
    EXPECT_EQ(nullptr, peelOffIf(scene.any().pZone, &everything, true));
    EXPECT_TRUE(capture.printed("\nZone2::peelOffIf(), original Zone:\n numT="));
}

// Islands with lakes, nested: what the ring of each island encloses has the area of the ring.
TEST(Zones, NestedRingsEncloseTheirAreas) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> offset(-950, 950);
    Kelm_2D dt;
    for (int i = 0; i < 8000; ++i) // for zones of many triangles, which are flooded in another way
        dt.insert(Point2(4e6 + offset(random), 5e5 + offset(random), 0));
    std::vector<ConstraintGraph2*> vRings;
    std::vector<double> vAreas;
    for (const double radius : {900.0, 600.0, 400.0, 250.0, 100.0}) {
        vRings.push_back(dt.createConstraint(circle(4e6, 5e5, radius, 300), CIS_CONSTRAINED_DELAUNAY));
        vAreas.push_back(150 * radius * radius * std::sin(std::acos(-1) / 150));
    }
    Zone2* pStripes = nullptr; // the first ring without the second, with the third, and so on
    for (std::size_t i = 0; i < vRings.size(); ++i) {
        Zone2* pInside = dt.createZone(vRings[i], ZL_INSIDE);
        EXPECT_NEAR(vAreas[i], pInside->getArea2D(), 1e-6 * vAreas[i]);
        pStripes = i == 0 ? pInside : zoneSymmetricDifference(pStripes, pInside);
        ASSERT_EQ("", findZoneFault(dt, {pInside, ZL_INSIDE, {vRings[i]}}));
        for (const Point2& start : {Point2(4e6, 5e5, 0), Point2(4e6 + 920, 5e5, 0)}) { // in and out of each
            Zone2* pGrown = dt.createZone({vRings[i]}, ZL_GROW, start);
            ASSERT_EQ("", findZoneFault(dt, {pGrown, ZL_GROW, {vRings[i]}, {start}}));
        }
        const Zone2* pOutside = dt.createZone(vRings[i], ZL_OUTSIDE);
        EXPECT_EQ(dt.numberOfTriangles(), pInside->getNumberOfTriangles() + pOutside->getNumberOfTriangles());
    }
    EXPECT_NEAR(vAreas[0] - vAreas[1] + vAreas[2] - vAreas[3] + vAreas[4], pStripes->getArea2D(),
                1e-6 * vAreas[0]);
    EXPECT_EQ(4e6 + 900, pStripes->getBoundingBox().get_maxX());
    EXPECT_FALSE(zoneDifference(pStripes, pStripes)->getBoundingBox().isValid());
    Zone2* pMany = pStripes; // chains of results are evaluated without recursion, and each zone once
    for (int i = 0; i < 20000; ++i)
        pMany = i % 2 == 0 ? zoneUnion(pMany, pMany) : zoneUnion(dt.createZone(Triangles()), pMany);
    EXPECT_EQ(pStripes->getNumberOfTriangles(), pMany->getNumberOfTriangles());
}

TEST(Zones, StatisticsAndFilesShowTheZone) {
    Kelm_2D dt;
    dt.insert({{0, 0, 0}, {4, 0, 0}, {2, 5, 0}, {2, -5, 5}}); // two triangles, 45 degrees over the x axis
    Zone2 *pAll = dt.createZone(nullptr, ZL_GLOBAL), *pFirst = dt.createZone({dt.locate({2, 1, 0})});
    const ScratchDirectory scratch;
    CoutCapture capture;
    pFirst->statistics("one");
    EXPECT_TRUE(capture.printed("(one) **********\n\nNumber of triangles: 1\n"));
    pAll->analyzeAngles();
    EXPECT_TRUE(capture.printed("Average angle=45\nAverage angle >10=45\nNumAngleGt10=2\n"));
    dt.writeObj("zone.obj", pFirst);
    pAll->showGeomview("zone.list", "0 1 1 1");
    pFirst->show("border.ps", false, true);
    pFirst->show("full.ps", true, true);
    const auto countOf = [](const std::string& filename, const std::string& part) {
        const std::string text = readFile(filename);
        const std::regex all(part);
        return std::distance(std::sregex_iterator(text.begin(), text.end(), all), {});
    };
    EXPECT_EQ(3, countOf("zone.obj", "v "));
    EXPECT_EQ(1, countOf("zone.obj", "f 1 2 3"));
    EXPECT_EQ(2, countOf("zone.list", " 0 1 1 1"));
    EXPECT_EQ(countOf("border.ps", "lineto") + 2, countOf("full.ps", "lineto")); // of five edges, not three
}

} // namespace
