// The record pool: growth, stability of records, reset, its messages.
// The pools inside a triangulation are tested with it.
#include "CoutCapture.h"
#include "SimplePool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

using namespace QUOR_KELM25D;

// One test asks for more memory than there is; the sanitizers answer as the system does only when told so.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

// Of odd size, so that no container is exactly as large as what the heap sets aside for it.
struct Record {
    unsigned char bytes[21];
};

void setId(Record& record, int id) {
    std::memset(record.bytes, id, sizeof record.bytes);
    std::memcpy(record.bytes, &id, sizeof id);
}

int getId(const Record& record) {
    int id;
    std::memcpy(&id, record.bytes, sizeof id);
    return id;
}

// The sizes of the containers that n allocations fill, seen from outside: a new one begins where the next
// record does not follow the last. Fills every record, so that a sanitizer sees a container that is too
// small.
std::vector<int> getContainerSizes(SimplePool<Record>& pool, int n) {
    std::vector<int> vSizes;
    const Record* pLast = nullptr;
    for (int i = 0; i < n; ++i) {
        Record* p = pool.allocate();
        setId(*p, i);
        if (pLast == nullptr || p != pLast + 1) vSizes.push_back(0);
        ++vSizes.back();
        pLast = p;
    }
    return vSizes;
}

void expectIdsInOrder(const SimplePool<Record>& pool, int n) {
    EXPECT_EQ(pool.size(), static_cast<std::size_t>(n));
    int expected = 0;
    pool.forEach([&](const Record& record) {
        EXPECT_EQ(getId(record), expected);
        ++expected;
    });
    EXPECT_EQ(expected, n);
}

} // namespace

TEST(SimplePool, SecondContainerIsHalfThenSizesDoubleToTheLimit) {
    struct Case {
        int initialSize;
        int maxContainerSize;
        int n;
        std::vector<int> vSizes;
    };
    const Case cases[] = {
        {100, 1000, 850, {100, 50, 100, 200, 400}},
        {1, 1000, 15, {1, 1, 2, 4, 7}},
        {3, 1000, 10, {3, 1, 2, 4}},
        {10, 25, 75, {10, 5, 10, 20, 25, 5}},
        {100, 30, 160, {100, 30, 30}},
        {0, 1000, 4, {1, 1, 2}},
        {-5, -5, 3, {1, 1, 1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.initialSize << ", limit " << c.maxContainerSize);
        SimplePool<Record> pool;
        pool.init(c.initialSize, c.maxContainerSize);
        EXPECT_EQ(pool.size(), 0u);
        EXPECT_EQ(getContainerSizes(pool, c.n), c.vSizes);
        expectIdsInOrder(pool, c.n);
    }
}

TEST(SimplePool, ResetOfASingleContainerStartsAtItsFirstRecord) {
    SimplePool<Record> pool;
    pool.init(4, 100);
    Record* pFirst = pool.allocate();
    pool.allocate();
    pool.reset();
    EXPECT_EQ(pool.size(), 0u);
    EXPECT_EQ(pool.allocate(), pFirst);
}

TEST(SimplePool, ResetOfAGrownPoolGoesOnFromTheLastSize) {
    SimplePool<Record> pool;
    pool.init(6, 1000);
    Record* pFirst = pool.allocate();
    pool.reset();
    EXPECT_EQ(getContainerSizes(pool, 27), (std::vector<int>{6, 3, 6, 12}));
    pool.reset();
    expectIdsInOrder(pool, 0);
    // The container that follows the first one is always half of the last size, here of 12.
    EXPECT_EQ(getContainerSizes(pool, 24), (std::vector<int>{6, 6, 12}));
    expectIdsInOrder(pool, 24);
    pool.reset();
    EXPECT_EQ(pool.allocate(), pFirst);
}

TEST(SimplePool, LargeContainersAreUsableToTheLastByte) {
    SimplePool<Record> pool;
    const int n = 400000; // 8.4 MB, the advice about pages included
    pool.init(n, n);
    EXPECT_EQ(getContainerSizes(pool, n), std::vector<int>{n});
    expectIdsInOrder(pool, n);
}

TEST(SimplePool, SecondInitIsReportedAndAddsAContainer) {
    CoutCapture capture;
    SimplePool<Record> pool;
    pool.init(2, 10);
    getContainerSizes(pool, 1);
    EXPECT_EQ(capture.take(), "");
    pool.init(5, 10);
    EXPECT_EQ(capture.take(), "SimplePool::init(..), ERROR: This pool is already initialized\n");
    EXPECT_EQ(getContainerSizes(pool, 5), std::vector<int>{5});
    EXPECT_EQ(pool.size(), 6u);
}

namespace {

struct Huge {
    char bytes[std::size_t(1) << 40];
};

struct OtherTraits {
    static constexpr const char* textOutOfMemory = "SimplePool::alloc(..), ERROR: Out of memory, sorry";
    static constexpr std::size_t manyContainers = 50;
};

template <class Traits>
std::string getTextsOfPoolWith(int numContainers) {
    CoutCapture capture;
    {
        SimplePool<char, Traits> pool;
        pool.init(1, 1);
        for (int i = 0; i < numContainers; ++i)
            pool.allocate();
    }
    return capture.take();
}

} // namespace

TEST(SimplePool, ExhaustedMemoryIsALineAndNothingElse) {
    CoutCapture capture;
    SimplePool<Huge> pool;
    pool.init(2000000000, 1); // also more bytes than size_t can count
    EXPECT_EQ(capture.take(), "SimplePool::alloc(..), ERROR: Out of memory\n");
    EXPECT_EQ(pool.allocate(), nullptr);
    SimplePool<Huge, OtherTraits> other;
    other.init(1 << 20, 1);
    EXPECT_EQ(capture.take(), "SimplePool::alloc(..), ERROR: Out of memory, sorry\n");
}

TEST(SimplePool, ManyContainersAreReportedAtTheEnd) {
    const std::string start = "SimplePool::~SimplePool: Number of containers to release: ";
    EXPECT_EQ(getTextsOfPoolWith<SimplePoolTraits>(1000), "");
    EXPECT_EQ(getTextsOfPoolWith<SimplePoolTraits>(1001), start + "1001\n");
    EXPECT_EQ(getTextsOfPoolWith<OtherTraits>(50), "");
    EXPECT_EQ(getTextsOfPoolWith<OtherTraits>(51), start + "51\n");
}
