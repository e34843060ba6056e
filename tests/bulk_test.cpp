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

// 2500 points that are hard for threads: strips, blobs far apart, lines, all on shifting coordinates, and
// between them boxes so few units in the last place wide that no frame fits around them.
std::vector<Point2> makeShape(unsigned seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    const double width = std::pow(10.0, uniform(random) * 6 - 3), shift = (uniform(random) - 0.5) * 1e7;
    const double base = seed % 6 == 0 ? 1e16 : -9007199254740992.0;
    const unsigned side = 2 + seed * seed % 43;
    std::vector<Point2> v;
    for (unsigned i = 0; i < 2500; ++i) {
        const double blob = i % (1 + seed % 7) * 50.0 * width;
        const double x = shift + blob + width * uniform(random), y = uniform(random);
        if (seed % 3 == 0)
            v.emplace_back(base + 2.0 * (i % side), base + 2.0 * (i / side % side), i);
        else
            v.emplace_back(seed % 4 == 0 ? std::round(x) : x, seed % 5 == 0 ? std::round(y * 30) : y - shift,
                           i);
    }
    return v;
}

} // namespace

TEST(BulkInsertion, EachKindIsValidFromVectorAndArrayWithAnyNumberOfThreads) {
    std::vector<PointSet> vSets = makeAllKinds(2500);
    for (unsigned seed = 0; seed < 20; ++seed)
        vSets.push_back({"shape " + std::to_string(seed), false, makeShape(seed)});
    for (const PointSet& set : vSets) {
        std::set<Places> sExpected;
        for (int numCPU : {1, 2, 3, 4, 8}) {
            SCOPED_TRACE(testing::Message() << set.name << ", CPUs: " << numCPU);
            Kelm_2D dt, fromArray;
            for (Kelm_2D* pDt : {&dt, &fromArray}) {
                pDt->setNumCPU(numCPU);
                pDt->getImpl()->getMesh().setMinParallelInsertion(1000);
            }
            std::vector<Point2*> vHandles(7, nullptr);
            std::vector<double> vCoordinates;
            for (const Point2& p : set.points)
                vCoordinates.insert(vCoordinates.end(), {p.x(), p.y(), p.z()});
            dt.insert(set.points, vHandles);
            expectAll(dt, set.points, vHandles);
            fromArray.insert(2500, vCoordinates.data(), vHandles.data());
            EXPECT_TRUE((!set.bGeneral && numCPU > 1) || triangleSet(dt) == triangleSet(fromArray));
            expectAll(fromArray, set.points, vHandles);
            if (numCPU == 1) sExpected = triangleSet(dt);
            EXPECT_TRUE(!set.bGeneral || sExpected == triangleSet(dt));
        }
    }
}

TEST(BulkInsertion, RepeatedOnesGrowTheBoxAndMixWithSinglePoints) {
    for (const PointSet& set : makeAllKinds(300)) {
        SCOPED_TRACE(set.name);
        Kelm_2D dt;
        dt.getImpl()->getMesh().setMinParallelInsertion(200);
        std::vector<Point2> vAll;
        std::vector<Point2*> vAllHandles, vHandles;
        for (int i = 6; i >= 0; --i) {
            std::vector<Point2> v;
            for (std::size_t k = 0; k < (i % 2 != 0 ? 300 : 7U * (9 - i)); ++k) {
                const Point2 fresh(std::ldexp(set.points[k].x(), -3 * i), std::ldexp(set.points[k].y(), -i),
                                   0);
                v.push_back(k % 3 == 0 && k < vAll.size() ? vAll[k] : fresh);
            }
            dt.setNumCPU(dt.is2D() || vAll.empty() ? 1 + i % 4 : 1); // or waiting vertices would stay out
            dt.insert(v, vHandles);
            v.emplace_back(v[0].x(), v[1].y(), 0);
            vHandles.push_back(dt.insert(v.back()));
            vAll.insert(vAll.end(), v.begin(), v.end());
            vAllHandles.insert(vAllHandles.end(), vHandles.begin(), vHandles.end());
            expectAll(dt, vAll, vAllHandles);
        }
    }
}

TEST(BulkInsertion, PointsOnALineOrInOnePlaceWaitWithAnyNumberOfThreads) {
    for (const Point2& d : {Point2(1, 0, 0), Point2(0, 1, 0), Point2(3, 7, 0), Point2(0, 0, 0)}) {
        for (int n : {1, 2, 3, 10, 1500}) {
            for (int numCPU : {1, 4}) {
                SCOPED_TRACE(testing::Message() << n << " points along " << d << ", CPUs: " << numCPU);
                std::vector<Point2> v;
                for (int i = 0; i < n; ++i)
                    v.emplace_back(5 + i * 7 % 500 * d.x(), 6 + i * 7 % 500 * d.y(), i);
                Kelm_2D dt;
                dt.setNumCPU(numCPU);
                std::vector<Point2*> vHandles;
                dt.insert(v, vHandles);
                expectAll(dt, v, vHandles);
                EXPECT_FALSE(dt.is2D());
                for (const Point2& p : {Point2(4, 4, 0), v[0], Point2(-7, 3, 0), Point2(5, 5, 0), v.back()}) {
                    v.push_back(p);
                    vHandles.push_back(dt.insert(p));
                    expectAll(dt, v, vHandles);
                }
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
        std::vector<double> vValues;
        void update(MsgType, const std::string&, double value) override { vValues.push_back(value); }
    } receiver;
    std::vector<Point2> v;
    std::vector<Point2*> vHandles;
    ASSERT_TRUE(readXYZ(KELM25D_EXAMPLE_DATA_DIR "/jacksboro.xyz", v));
    for (int numCPU : {1, 4}) { // four sort in parts
        Kelm_2D dt;
        dt.setNumCPU(numCPU);
        dt.subscribe(MSG_PROGRESS, &receiver);
        dt.insert(v, vHandles);
        EXPECT_GT(receiver.vValues.size(), 10U);
        EXPECT_TRUE(std::is_sorted(receiver.vValues.begin(), receiver.vValues.end()));
        EXPECT_EQ(1.0, receiver.vValues.back());
        receiver.vValues.clear();
        EXPECT_GT(dt.measureTriangulationTime(v), 0.0);
        expectAll(dt, v, vHandles);
    }
}
