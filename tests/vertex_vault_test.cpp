// The vertex store on its own, where the triangulation does not show what it does.
// Duplicates and handles of whole insertions are in bulk_test.cpp.
#include "VertexVault.h"
#include "testing.h"

TEST(VertexVault, SearchesPassOverVerticesWithoutTriangleAndFindAllOthers) {
    SimplePool<Point2> pool;
    pool.init(10, 1000);
    const HC2 hilbert(0, 0, 1000, 1000, 30);
    QuorTest quorTest;
    int numCPU = 1;
    VertexVault vault(pool, hilbert, quorTest, numCPU);
    EXPECT_EQ(nullptr, vault.getVertexPointer(Point2(0.5, 0.5, 0)));
    std::vector<Point2*> vVertices;
    std::mt19937_64 random(5);
    for (int i = 0; i < 2500; ++i) {
        if (i == 2000) vault.sortIfNeeded(false);
        vVertices.push_back(vault.makeVertex(Point2(random() % 1000, random() % 1000, 0)));
        vault.addVertex(hilbert.getIdx(*vVertices.back()), vVertices.back());
    }
    vault.setFullDimensional(true);
    for (int first : {2400, 700}) { // in the unsorted part, then in the sorted one
        Point2** v = &vVertices[first];
        Triangle2 t;
        t.setProperties(v[0], v[1], v[2]);
        for (std::uint32_t key : {0U, 1U << 29, (1U << 30) - 1})
            EXPECT_EQ(&t, vault.getCloT(key, Point2()));
        for (int i = 0; i < 3; ++i)
            vault.deactivate(v[i]);
        EXPECT_FALSE(vault.isActive(v[0]));
    }
    vault.getVertexPointers(vVertices);
    for (const Point2* pVtx : vVertices)
        ASSERT_EQ(*pVtx, *vault.getVertexPointer(*pVtx));
}
