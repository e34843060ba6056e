// Many points at once, with one thread and with several: every kind of data, handles, waiting vertices.
// The sorts on their own are in hilbert_test.cpp.
#include "testing.h"

namespace {

// The mesh holds just these points, and the handles stand for their places in input order.
void expectAll(const Kelm_2D& dt, const std::vector<Point2>& v, const std::vector<Point2*>& vHandles) {
    ASSERT_VALID_MESH(dt);
    EXPECT_EQ(countPlaces(v), dt.numberOfPoints());
    ASSERT_TRUE(std::equal(v.begin(), v.end(), vHandles.begin(), vHandles.end(),
                           [](const Point2& p, const Point2* pVtx) { return p == *pVtx; }));
}

} // namespace

TEST(BulkInsertion, EachKindIsValidFromVectorAndArrayWithAnyNumberOfThreads) {
    std::vector<PointSet> vSets = makeAllKinds(2500);
    for (int side = 2; side < 45; side += 7) { // so few units in the last place that no frame fits around
        vSets.push_back({"units " + std::to_string(side), false, {}});
        for (int i = 0; i < 2500; ++i)
            vSets.back().points.emplace_back(1e16 + 2.0 * (i % side), 2.0 * (i / side % side) - 1e16, i);
    }
    for (const Point2& d : {Point2(1, 0, 0), Point2(0, 1, 0), Point2(3, 7, 0), Point2(0, 0, 0)}) {
        for (int n : {1, 2, 3, 10, 1500}) {
            vSets.push_back({"line of " + std::to_string(n), false, {}});
            for (int i = 0; i < n; ++i)
                vSets.back().points.emplace_back(5 + i * 7 % 500 * d.x(), 6 + i * 7 % 500 * d.y(), i);
        }
    }
    for (const PointSet& set : vSets) {
        std::set<Places> sExpected;
        for (int numCPU : {1, 2, 3, 4, 8}) {
            SCOPED_TRACE(testing::Message() << set.name << ", CPUs: " << numCPU);
            Kelm_2D dt, fromArray;
            for (Kelm_2D* pDt : {&dt, &fromArray}) {
                EXPECT_EQ(numCPU, pDt->setNumCPU(numCPU));
                pDt->getImpl()->getMesh().setMinParallelInsertion(1000);
            }
            std::vector<Point2> v = set.points;
            std::vector<Point2*> vHandles(7, nullptr);
            std::vector<double> vCoordinates;
            for (const Point2& p : v)
                vCoordinates.insert(vCoordinates.end(), {p.x(), p.y(), p.z()});
            dt.insert(v, vHandles);
            expectAll(dt, v, vHandles);
            fromArray.insert(static_cast<int>(v.size()), vCoordinates.data(), vHandles.data());
            expectAll(fromArray, v, vHandles);
            EXPECT_TRUE((!set.bGeneral && numCPU > 1) || triangleSet(dt) == triangleSet(fromArray));
            if (numCPU == 1) sExpected = triangleSet(dt);
            EXPECT_TRUE(!set.bGeneral || sExpected == triangleSet(dt));
            if (dt.is2D()) continue;
            for (const Point2& p : {Point2(4, 4, 0), v[0], Point2(-7, 3, 0), Point2(5, 5, 0), v.back()}) {
                v.push_back(p);
                vHandles.push_back(fromArray.insert(p));
                expectAll(fromArray, v, vHandles);
            }
        }
    }
}

TEST(BulkInsertion, WaitingVerticesDisturbNothingAndComeInAtTheNextStart) {
    for (std::size_t n : {2, 3, 10, 1200}) {
        SCOPED_TRACE(n);
        const std::vector<Point2> v = makeAllKinds(n + 100)[0].points;
        Kelm_2D dt, without;
        for (int i = 0; i < 20; ++i)
            dt.insert(Point2(0.3 + 0.01 * (i * 7 % 20), 0.5, 0));
        // Deliberately the vertices that wait stay out of a bulk insertion with several threads.
        for (Kelm_2D* pDt : {&dt, &without}) {
            pDt->setNumCPU(4);
            pDt->insert(std::vector<Point2>(v.begin(), v.begin() + n));
            for (const Point2& p : v)
                pDt->insert(p);
            pDt->setNumCPU(1);
            pDt->insert(v);
        }
        ASSERT_VALID_MESH(without);
        EXPECT_TRUE(n == 2 || triangleSet(without) == triangleSet(dt));
        for (auto vHull = hullVertices(dt); !vHull.empty(); vHull = hullVertices(dt))
            dt.getImpl()->getMesh().remove(vHull[0], true);
        dt.insert(v);
        ASSERT_VALID_MESH(dt);
    }
}

TEST(BulkInsertion, RealTerrainIsValidAndProgressRisesToTheEnd) {
    struct Receiver : MsgBase {
        double last = 0.0;
        void update(MsgType, const std::string&, double value) override {
            EXPECT_TRUE(last <= value && value < last + 0.1);
            last = value;
        }
    };
    std::vector<Point2> v;
    std::vector<Point2*> vHandles;
    ASSERT_TRUE(readXYZ(KELM25D_EXAMPLE_DATA_DIR "/jacksboro.xyz", v));
    for (int numCPU : {1, 4}) { // four sort in parts
        Kelm_2D dt;
        Receiver receiver;
        dt.setNumCPU(numCPU);
        dt.subscribe(MSG_PROGRESS, &receiver);
        dt.insert(v, vHandles);
        EXPECT_EQ(1.0, receiver.last);
        expectAll(dt, v, vHandles);
    }
    Kelm_2D dt;
    EXPECT_TRUE(dt.setNumCPU(-5) == 1 && dt.setNumCPU(0) >= 1 && dt.measureTriangulationTime(v) > 0.0);
}
