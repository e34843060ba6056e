// Storage for many small records of one type: no heap call per record, and no record ever moves.
// It runs no constructors or destructors and takes no record back one by one; users keep their own free
// lists.
//
// Records come from containers, blocks of growing size. The second container is half the first, from the
// third on each is twice the one before, up to a limit. Only reset() and the destructor give memory back.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <type_traits>
#include <utility>
#include <vector>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace QUOR_KELM25D {

/// What differs between families of pools: texts and the container count that is worth a line.
struct SimplePoolTraits {
    static constexpr const char* textOutOfMemory = "SimplePool::alloc(..), ERROR: Out of memory";
    static constexpr std::size_t manyContainers = 1000;
};

template <class T, class Traits = SimplePoolTraits>
class SimplePool {
public:
    SimplePool() = default;
    SimplePool(const SimplePool&) = delete;
    SimplePool& operator=(const SimplePool&) = delete;
    ~SimplePool();

    /// Makes the first container. Sizes below 1 count as 1. A second call is reported and adds a container.
    void init(int initialSize, int maxContainerSize);

    /// Storage for one record, contents undefined. It stays where it is until reset() or the pool's end.
    T* allocate() {
        if (++currentIdx < currentCapacity) return pCurrent + currentIdx;
        return allocateFromNewContainer();
    }

    /// Storage for several records side by side: as many as wanted, or as the current container still has, at
    /// least one. Returns their number.
    int allocateBlock(int wanted, T*& pFirst) {
        pFirst = allocate();
        const int count = std::max(1, std::min(wanted, currentCapacity - currentIdx));
        currentIdx += count - 1;
        return count;
    }

    /// Empties the pool and frees all containers but the first.
    void reset();

    /// Records handed out since init() or reset(). Linear in the number of containers.
    std::size_t size() const;

    /// Calls f(T&) for every record handed out, in the order of handing out.
    template <class F>
    void forEach(F&& f) const;

private:
    /// Makes a new current container of count records, of adaptive size if count is negative.
    void alloc(int count);
    T* allocateFromNewContainer();
    int getUsedOfCurrent() const { return std::min(currentIdx + 1, currentCapacity); }
    static void adviseHugePages(void* pBlock, std::size_t numBytes);

    std::vector<T*> vContainers;      // oldest first, owned
    std::vector<int> vContainerSizes; // of all containers ever made: reset() does not shorten it
    std::vector<int> vUsed;           // records handed out from each container before the current one
    T* pCurrent = nullptr;            // the container being filled, the last of vContainers
    int currentIdx = -1;              // of the last record handed out from pCurrent
    int currentCapacity = -1;
    int initialSize = -1;
    int growth = -1; // size of later containers, negative for adaptive
    bool bInitialized = false;
    bool bSingleContainer = true; // only the first container exists
    int maxContainerSize = -1;    // limit of adaptive growth
};

template <class T, class Traits>
SimplePool<T, Traits>::~SimplePool() {
    static_assert(std::is_trivially_destructible<T>::value, "the pool runs no destructors");
    static_assert(alignof(T) <= alignof(std::max_align_t), "malloc aligns no further");
    if (vContainers.size() > Traits::manyContainers)
        std::cout << "SimplePool::~SimplePool: Number of containers to release: " << vContainers.size()
                  << std::endl;
    for (T* pContainer : vContainers)
        std::free(pContainer);
}

template <class T, class Traits>
void SimplePool<T, Traits>::init(int newInitialSize, int newMaxContainerSize) {
    if (bInitialized)
        std::cout << "SimplePool::init(..), ERROR: This pool is already initialized" << std::endl;
    maxContainerSize = std::max(1, newMaxContainerSize);
    initialSize = std::max(1, newInitialSize);
    growth = -1;
    alloc(initialSize);
    bInitialized = true;
}

template <class T, class Traits>
void SimplePool<T, Traits>::alloc(int count) {
    if (count < 0) {
        const std::int64_t last = vContainerSizes.empty() ? 1 : vContainerSizes.back();
        std::int64_t wanted = 2 * last;
        if (vContainers.size() == 1)
            wanted = last / 2 == 0 ? last : last / 2; // deliberate: doubling starts with the third container
        count = static_cast<int>(std::min<std::int64_t>(wanted, maxContainerSize));
    }
    count = std::max(1, count);

    if (!vContainers.empty()) vUsed.push_back(getUsedOfCurrent());
    vContainerSizes.push_back(count);
    const std::size_t numBytes = static_cast<std::size_t>(count) * sizeof(T);
    // A product that does not fit in size_t would come out small: ask for what no machine can give instead.
    const bool bFits = numBytes / sizeof(T) == static_cast<std::size_t>(count);
    pCurrent = bFits ? static_cast<T*>(std::malloc(numBytes)) : nullptr;
    if (pCurrent == nullptr)
        std::cout << Traits::textOutOfMemory << std::endl; // and go on: the next write into a record faults
    else
        adviseHugePages(pCurrent, numBytes);
    vContainers.push_back(pCurrent);
    currentCapacity = count;
    currentIdx = -1;
}

template <class T, class Traits>
T* SimplePool<T, Traits>::allocateFromNewContainer() {
    alloc(growth);
    currentIdx = 0;
    bSingleContainer = false;
    return pCurrent;
}

template <class T, class Traits>
void SimplePool<T, Traits>::reset() {
    currentIdx = -1;
    if (bSingleContainer) return;
    for (std::size_t i = 1; i < vContainers.size(); ++i)
        std::free(vContainers[i]);
    vContainers.resize(1);
    vUsed.clear();
    bSingleContainer = true;
    // The sizes stay as they are, deliberately: growth goes on from the last size, not from the start.
    currentCapacity = vContainerSizes.front();
    pCurrent = vContainers.front();
}

template <class T, class Traits>
std::size_t SimplePool<T, Traits>::size() const {
    std::size_t sum = static_cast<std::size_t>(std::max(0, getUsedOfCurrent()));
    for (int used : vUsed)
        sum += static_cast<std::size_t>(used);
    return sum;
}

template <class T, class Traits>
template <class F>
void SimplePool<T, Traits>::forEach(F&& f) const {
    for (std::size_t i = 0; i < vContainers.size(); ++i) {
        const int used = i < vUsed.size() ? vUsed[i] : getUsedOfCurrent();
        for (T *p = vContainers[i], *pEnd = p + used; p != pEnd; ++p)
            f(*p);
    }
}

/// Walks and flips jump between records all over a container; with small pages nearly every jump would miss
/// the address translation cache as well. Only the whole pages inside the block are advised, and nothing but
/// speed depends on whether the system takes the advice.
template <class T, class Traits>
void SimplePool<T, Traits>::adviseHugePages(void* pBlock, std::size_t numBytes) {
#if defined(__linux__)
    constexpr std::size_t smallestWorthwhile = std::size_t(4) << 20;
    if (numBytes < smallestWorthwhile) return;
    const std::uintptr_t pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const std::uintptr_t begin = reinterpret_cast<std::uintptr_t>(pBlock);
    const std::uintptr_t first = (begin + pageSize - 1) / pageSize * pageSize;
    const std::uintptr_t last = (begin + numBytes) / pageSize * pageSize;
    char* pFirst = static_cast<char*>(pBlock) + (first - begin);
    static_cast<void>(::madvise(pFirst, last - first, MADV_HUGEPAGE));
#else
    static_cast<void>(pBlock);
    static_cast<void>(numBytes);
#endif
}

} // namespace QUOR_KELM25D
