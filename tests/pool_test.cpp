// The record pool: records, reset, its messages.
// The pools inside a triangulation are tested with it.
#include "SimplePool.h"
#include "testing.h"

#include <array>

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

// Allocates and fills n records, one by one and in blocks, so that a sanitizer sees a container that is too
// small, and expects them to be all that the pool holds, unchanged and in order.
void fill(SimplePool<Record>& pool, int n) {
    for (int i = 0; i < n;) {
        Record* p = nullptr;
        const int count = i % 3 == 0 ? pool.allocateBlock(std::min(5, n - i), p) : 1;
        if (i % 3 != 0) p = pool.allocate();
        for (int k = 0; k < count; ++k)
            p[k].fill(static_cast<unsigned char>(i++));
    }
    int next = 0; // negative once a record has been out of order
    pool.forEach([&](const Record& r) { next = r[0] == next % 256 && r[20] == next % 256 ? next + 1 : -1; });
    EXPECT_TRUE(next == n && pool.size() == static_cast<std::size_t>(n)) << next;
}

} // namespace

TEST(SimplePool, RecordsStayInOrderAsItGrowsAndAfterResets) {
    // 400000 records are 8.4 MB, the advice about pages included.
    for (const auto& [initialSize, maxContainerSize] :
         {std::pair(1, 1000), {11, 25}, {100, 30}, {-5, -5}, {400000, 400000}}) {
        SimplePool<Record> pool;
        pool.init(initialSize, maxContainerSize);
        for (const int n : {0, 1, 3, 90, 27, 24}) {
            fill(pool, n);
            pool.reset();
        }
    }
}

TEST(SimplePool, MisuseAndExhaustionAreALineAndNothingElse) {
    CoutCapture capture;
    SimplePool<Record> twice;
    twice.init(2, 10);
    twice.init(5, 10);
    fill(twice, 5);
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
