// Hilbert keys and the sorts along them.
// What the vertex store makes of sorted entries is tested in vertex_vault_test.cpp.
#include "hilbertSort.h"
#include "testing.h"

namespace {

// Keys ascend, and all of the input, which has each position once, is still there.
void expectSorted(KeyPosVector vKeys, const KeyPosVector& vInput) {
    const auto byKey = [](const KeyPos& a, const KeyPos& b) { return a.key < b.key; };
    ASSERT_TRUE(std::is_sorted(vKeys.begin(), vKeys.end(), byKey));
    std::sort(vKeys.begin(), vKeys.end(), [](const KeyPos& a, const KeyPos& b) { return a.pos < b.pos; });
    const auto same = [](const KeyPos& a, const KeyPos& b) { return a.key == b.key && a.pos == b.pos; };
    ASSERT_TRUE(std::equal(vKeys.begin(), vKeys.end(), vInput.begin(), vInput.end(), same));
}

} // namespace

TEST(HilbertKey, CurveVisitsNeighbouringCellsAndRefinesItself) {
    const int aPlace[] = {0, 10, 11, 1, 2, 3, 13, 12, 22, 23, 33, 32, 31, 21, 20, 30}; // x and y as digits
    for (unsigned key = 0; key < 16; ++key)
        EXPECT_EQ(key, HC2(0, 0, 4, 4, 4).getIdx(aPlace[key] / 10 + 0.5, aPlace[key] % 10 + 0.5));
    std::vector<Point2> vCells(1024);
    for (int i = 0; i < 1024; ++i) {
        const Point2 p(i % 32 - 31.5, i / 32 + 0.5, i);
        vCells.at(HC2(-32, 0, 0, 32, 10).getIdx(p)) = p;
    }
    for (int i = 1; i < 1024; ++i) {
        EXPECT_EQ(1, std::fabs(vCells[i].x() - vCells[i - 1].x()) +
                         std::fabs(vCells[i].y() - vCells[i - 1].y()));
    }
    // Fewer bits are the leading bits of longer keys: the fast way for 30 bits agrees with the others.
    std::mt19937_64 random(1);
    for (int i = 0; i < 10000; ++i) {
        const Point2 p(random() % 99999, random() % 99999, 0);
        for (unsigned numBits : {2, 10, 28, 30}) {
            ASSERT_EQ(HC2(0, 0, 1e5, 1e5, 32).getIdx(p) >> (32 - numBits),
                      HC2(0, 0, 1e5, 1e5, numBits).getIdx(p));
        }
    }
}

TEST(HilbertSort, OneAndFourPartsSortKeysAndEntries) {
    std::mt19937_64 random(2);
    const auto x = [](std::uint32_t i) { return 1.0 * (i * 7919 % 1000); };
    const auto y = [](std::uint32_t i) { return 1.0 * (i * 104729 % 997); };
    const auto isActive = [](const IdxVtx& entry) { return entry.bActive; };
    for (std::uint32_t n : {0, 1, 9999, 10000, 30000}) {
        for (int numCPU : {1, 3, 4, 8}) {
            SCOPED_TRACE(testing::Message() << n << " keys, CPUs: " << numCPU);
            const std::uint32_t range = random() % 2 == 0 ? 5 : 1U << 30;
            KeyPosVector vKeys, vActive, vFound;
            IdxVtxVector vEntries;
            std::vector<Point2> vPoints(n);
            for (std::uint32_t i = 0; i < n; ++i) {
                vKeys.push_back({static_cast<std::uint32_t>(random() % range), i});
                vEntries.push_back({vKeys[i].key, random() % 4 != 0, &vPoints[i]});
                if (vEntries[i].bActive) vActive.push_back(vKeys[i]);
                if (i == n / 2) sortEntries(vEntries, 0, numCPU);
            }
            const KeyPosVector vInput = vKeys;
            sortKeys(vKeys, numCPU);
            expectSorted(vKeys, vInput);
            refineEqualKeys(vKeys, x, y);
            expectSorted(vKeys, vInput);
            double length =
                0.0; // of the path through the places, about 500 a step where neighbours are apart
            for (std::size_t i = 1; i < n; ++i) {
                const std::uint32_t from = vKeys[i - 1].pos, to = vKeys[i].pos;
                length += std::hypot(x(to) - x(from), y(to) - y(from));
            }
            EXPECT_LE(length, (range == 5 ? 50.0 : 1000.0) * n);
            sortEntries(vEntries, std::min(n, n / 2 + 1), numCPU);
            // In four parts the inactive entries deliberately stand at the end of each part.
            EXPECT_TRUE((n > 9999 && numCPU > 3) ||
                        std::is_partitioned(vEntries.begin(), vEntries.end(), isActive));
            for (const auto& [key, bActive, pVtx] : vEntries)
                if (bActive) vFound.push_back({key, static_cast<std::uint32_t>(pVtx - vPoints.data())});
            expectSorted(vFound, vActive);
        }
    }
}
