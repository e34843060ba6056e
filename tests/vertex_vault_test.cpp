// The vertex store on its own, where the triangulation does not show what it does.
// Duplicates and handles of whole insertions are in bulk_test.cpp.
#include "VertexVault.h"
#include "testing.h"

namespace {

// A store of random vertices with what it needs of its owner.
struct OwnVault {
    SimplePool<Point2> pool;
    HC2 hilbert{0, 0, 1000, 1000, 30};
    QuorTest quorTest;
    int numCPU = 1;
    VertexVault vault{pool, hilbert, quorTest, numCPU};
    std::vector<Point2*> vVertices;
    std::mt19937_64 random{5};

    OwnVault() { pool.init(10, 1000); }
    void addRandom(int n) {
        for (; n > 0; --n) {
            vVertices.push_back(vault.makeVertex(Point2(random() % 1000, random() % 1000, 0)));
            vault.addVertex(hilbert.getIdx(*vVertices.back()), vVertices.back());
        }
    }
};

} // namespace

TEST(VertexVault, SearchesPassOverVerticesWithoutTriangleAndFindAllOthers) {
    OwnVault own;
    EXPECT_EQ(nullptr, own.vault.getVertexPointer(Point2(0.5, 0.5, 0)));
    own.addRandom(2000);
    own.vault.sortIfNeeded(false);
    own.addRandom(500);
    own.vault.setFullDimensional(true);
    const ScratchDirectory directory; // for the log
    CoutCapture capture;
    EXPECT_THROW(own.vault.getCloT(0, Point2()), KelmException);
    EXPECT_TRUE(capture.printed("Vault, ERROR: getCloT() failed"));
    for (int first : {2400, 700}) { // in the unsorted part, then in the sorted one
        Point2** v = &own.vVertices[first];
        Triangle2 t;
        t.setProperties(v[0], v[1], v[2]);
        for (std::uint32_t key : {0U, 1U << 29, (1U << 30) - 1})
            EXPECT_EQ(&t, own.vault.getCloT(key, Point2()));
        for (Point2* pVtx : {v[0], v[1], v[2]}) {
            own.vault.deactivate(pVtx);
            EXPECT_EQ(2147483647U, own.vault.getIdxOfActiveVtx(pVtx));
            EXPECT_TRUE(capture.printed("getIdxOfActiveVtx, ERROR: pQuery not found"));
        }
    }
    own.vault.getVertexPointers(own.vVertices);
    for (const Point2* pVtx : own.vVertices)
        ASSERT_EQ(*pVtx, *own.vault.getVertexPointer(*pVtx));
}
