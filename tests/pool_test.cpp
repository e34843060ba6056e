// The record pool: growth, stability of records, reset, its messages.
// The pools inside a triangulation are tested with it.
#include "SimplePool.h"
#include "testing.h"

#include <array>
#include <numeric>

// One test asks for more memory than there is; the sanitizers answer as the system does only when told so.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

// Of odd size, so that no container is exactly as large as what the heap sets aside for it.
using Record = std::array<unsigned char, 21>;
using Huge = std::array<char, std::size_t(1) << 40>;

// Allocates and fills n records, so that a sanitizer sees a container that is too small, and expects them to
// be all that the pool holds, unchanged and in order. The result is the sizes of the containers, seen from
// outside: a new one begins where the next record does not follow the last.
std::vector<int> fill(SimplePool<Record>& pool, int n) {
    EXPECT_EQ(pool.size(), 0u);
    std::vector<int> vSizes;
    const Record* pEnd = nullptr;
    for (int i = 0; i < n; ++i) {
        Record* p = pool.allocate();
        p->fill(static_cast<unsigned char>(i));
        if (p != pEnd) vSizes.push_back(0);
        ++vSizes.back();
        pEnd = p + 1;
    }
    int next = 0; // negative once a record has been out of order
    pool.forEach([&](const Record& r) { next = r[0] == next % 256 && r[20] == next % 256 ? next + 1 : -1; });
    EXPECT_TRUE(next == n && pool.size() == static_cast<std::size_t>(n));
    return vSizes;
}

} // namespace

TEST(SimplePool, SecondContainerIsHalfThenSizesDoubleToTheLimit) {
    const std::tuple<int, int, std::vector<int>> aCase[] = {
        {1, 1000, {1, 1, 2, 4, 7}},
        {11, 25, {11, 5, 10, 20, 25, 5}},
        {100, 30, {100, 30, 30}},
        {-5, -5, {1, 1, 1}},
        {400000, 400000, {400000}}}; // 8.4 MB, the advice about pages included
    for (const auto& [initialSize, maxContainerSize, vSizes] : aCase) {
        SimplePool<Record> pool;
        pool.init(initialSize, maxContainerSize);
        EXPECT_EQ(fill(pool, std::accumulate(vSizes.begin(), vSizes.end(), 0)), vSizes);
    }
}

TEST(SimplePool, ResetKeepsTheFirstContainerAndGoesOnFromTheLastSize) {
    SimplePool<Record> pool;
    pool.init(6, 1000);
    pool.allocate();
    pool.reset();
    EXPECT_EQ(fill(pool, 27), (std::vector<int>{6, 3, 6, 12}));
    pool.reset();
    // The container that follows the first one is always half of the last size, here of 12.
    EXPECT_EQ(fill(pool, 24), (std::vector<int>{6, 6, 12}));
}

TEST(SimplePool, MisuseAndExhaustionAreALineAndNothingElse) {
    CoutCapture capture;
    SimplePool<Record> twice;
    twice.init(2, 10);
    twice.init(5, 10);
    EXPECT_EQ(fill(twice, 5), std::vector<int>{5});
    SimplePool<Huge> pool;
    pool.init(2000000000, 1); // also more bytes than size_t can count
    EXPECT_EQ(pool.allocate(), nullptr);
    for (const int numContainers : {1000, 1001}) { // the one too many is reported at the end
        SimplePool<char> small;
        small.init(1, 1);
        for (int i = 0; i < numContainers; ++i)
            small.allocate();
    }
    EXPECT_EQ(capture.take(), "SimplePool::init(..), ERROR: This pool is already initialized\n"
                              "SimplePool::alloc(..), ERROR: Out of memory\n"
                              "SimplePool::~SimplePool: Number of containers to release: 1001\n");
}
