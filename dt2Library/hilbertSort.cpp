// Radix sort of key pairs, sort and merge of index entries, and the four-part forms on threads.
// The refinement of equal keys is a template in the header.

#include "hilbertSort.h"

#include "MTCtrl.h"

#include <algorithm>
#include <array>
#include <memory>

namespace QUOR_KELM25D {

namespace {

constexpr int numRadixPasses = 3, radixBits = 11;
constexpr std::size_t numRadixBuckets = std::size_t(1) << radixBits;
constexpr std::ptrdiff_t minRadixSort = 600; // below, clearing the histograms costs more than it saves

/// Least significant digit first, 11 bits a pass; a pass in which all digits agree is left out.
template <class Record, class GetKey>
void radixSort(Record* first, Record* last, GetKey getKey) {
    const std::size_t n = static_cast<std::size_t>(last - first);
    std::array<std::array<std::uint32_t, numRadixBuckets>, numRadixPasses> aCount{};
    for (const Record* p = first; p != last; ++p) {
        const std::uint32_t key = getKey(*p);
        for (int pass = 0; pass < numRadixPasses; ++pass) {
            ++aCount[pass][(key >> (pass * radixBits)) % numRadixBuckets];
        }
    }
    const std::unique_ptr<Record[]> pBuffer(new Record[n]);
    Record *pFrom = first, *pTo = pBuffer.get();
    for (int pass = 0; pass < numRadixPasses; ++pass) {
        auto& count = aCount[pass];
        const int shift = pass * radixBits;
        if (count[(getKey(*pFrom) >> shift) % numRadixBuckets] == n) continue;
        std::uint32_t sum = 0;
        for (std::uint32_t& c : count) {
            const std::uint32_t here = c;
            c = sum;
            sum += here;
        }
        for (const Record* p = pFrom; p != pFrom + n; ++p) {
            pTo[count[(getKey(*p) >> shift) % numRadixBuckets]++] = *p;
        }
        std::swap(pFrom, pTo);
    }
    if (pFrom != first) std::copy(pFrom, pFrom + n, first);
}

template <class Record, class GetKey>
void sortByKey(Record* first, Record* last, GetKey getKey) {
    const auto less = [&](const Record& a, const Record& b) { return getKey(a) < getKey(b); };
    if (last - first < minRadixSort) {
        std::sort(first, last, less);
    } else if (!std::is_sorted(first, last, less)) { // a bulk insertion leaves its entries in order
        radixSort(first, last, getKey);
    }
}

std::uint32_t keyOfPair(const KeyPos& pair) noexcept {
    return pair.key;
}

std::uint32_t keyOfEntry(const IdxVtx& entry) noexcept {
    return entry.hcKey;
}

/// Active entries by key, then the inactive ones.
void sortEntryRange(IdxVtx* first, IdxVtx* last) {
    IdxVtx* middle = std::partition(first, last, [](const IdxVtx& entry) { return entry.bActive; });
    sortByKey(first, middle, keyOfEntry);
}

struct SortTask2 {
    KeyPos *first, *last;
    void run() { sortKeyRange(first, last); }
};

struct SortTask {
    IdxVtx *first, *last;
    void run() { sortEntryRange(first, last); }
};

/// Mean of a sample of about a hundred keys of a range that is not empty.
template <class Record, class GetKey>
std::uint32_t sampleMean(const Record* first, const Record* last, GetKey getKey) {
    const std::ptrdiff_t step = (last - first) / 100 - 1;
    if (step < 1) return first == last ? 0 : getKey(*first);
    double sum = 0.0;
    std::ptrdiff_t count = 0;
    for (std::ptrdiff_t i = 0; i < last - first; i += step, ++count) {
        sum += getKey(first[i]);
    }
    return static_cast<std::uint32_t>(sum / static_cast<double>(count));
}

/// Partitions a range into four by sampled means and sorts the four on four threads.
template <class Task, class Record, class GetKey, class GoesLeft>
void sortInFourParts(Record* first, Record* last, GetKey getKey, GoesLeft goesLeft) {
    const auto split = [&](Record* from, Record* to) {
        const std::uint32_t pivot = sampleMean(from, to, getKey);
        return std::partition(from, to, [&](const Record& r) { return goesLeft(r, pivot); });
    };
    Record* middle = split(first, last);
    Record* aBound[5] = {first, split(first, middle), middle, split(middle, last), last};
    std::vector<Task> vTasks;
    for (int i = 0; i < 4; ++i) {
        vTasks.push_back({aBound[i], aBound[i + 1]});
    }
    runTasks(vTasks, &Task::run, 4);
}

/// One thread's share of a pass of the radix sort.
struct RadixTask {
    const KeyPos *first, *last;
    KeyPos* aTo;
    int shift;
    std::array<std::uint32_t, numRadixBuckets> aCount;

    std::size_t digitOf(const KeyPos& pair) const noexcept { return (pair.key >> shift) % numRadixBuckets; }
    void countDigits() {
        aCount.fill(0);
        for (const KeyPos* p = first; p != last; ++p) {
            ++aCount[digitOf(*p)];
        }
    }
    void scatter() {
        for (const KeyPos* p = first; p != last; ++p) {
            aTo[aCount[digitOf(*p)]++] = *p;
        }
    }
};

/// Each thread counts and then scatters its share, in each pass; the shares of a bucket follow one another.
void radixSortOnThreads(KeyPos* first, std::size_t n, int numCPU) {
    const std::unique_ptr<KeyPos[]> pBuffer(new KeyPos[n]);
    const std::size_t share = n / static_cast<std::size_t>(numCPU);
    std::vector<RadixTask> vTasks(static_cast<std::size_t>(numCPU));
    KeyPos *aFrom = first, *aTo = pBuffer.get();
    for (int pass = 0; pass < numRadixPasses; ++pass) {
        for (std::size_t i = 0; i < vTasks.size(); ++i) {
            RadixTask& task = vTasks[i];
            task.first = aFrom + i * share;
            task.last = i + 1 == vTasks.size() ? aFrom + n : task.first + share;
            task.aTo = aTo;
            task.shift = pass * radixBits;
        }
        runTasks(vTasks, &RadixTask::countDigits, numCPU);
        std::uint32_t sum = 0;
        for (std::size_t digit = 0; digit < numRadixBuckets; ++digit) {
            for (RadixTask& task : vTasks) {
                const std::uint32_t here = task.aCount[digit];
                task.aCount[digit] = sum;
                sum += here;
            }
        }
        runTasks(vTasks, &RadixTask::scatter, numCPU);
        std::swap(aFrom, aTo);
    }
    if (aFrom != first) std::copy(aFrom, aFrom + n, first);
}

bool useFourParts(std::size_t n, int numCPU) noexcept {
    return numCPU >= minParallelSortCPU && n >= minParallelSort;
}

} // namespace

void sortKeyRange(KeyPos* first, KeyPos* last) {
    sortByKey(first, last, keyOfPair);
}

void sortKeys(KeyPosVector& vKeys, int numCPU) {
    KeyPos *first = vKeys.data(), *last = first + vKeys.size();
    if (useFourParts(vKeys.size(), numCPU)) {
        sortInFourParts<SortTask2>(first, last, keyOfPair,
                                   [](const KeyPos& pair, std::uint32_t pivot) { return pair.key < pivot; });
    } else if (numCPU > 1 && vKeys.size() >= minParallelSort) {
        radixSortOnThreads(first, vKeys.size(), numCPU);
    } else {
        sortKeyRange(first, last);
    }
}

void sortEntries(IdxVtxVector& vEntries, std::size_t numSorted, int numCPU) {
    IdxVtx *first = vEntries.data(), *last = first + vEntries.size();
    const auto isActive = [](const IdxVtx& entry) { return entry.bActive; };
    const auto less = [](const IdxVtx& a, const IdxVtx& b) { return a.hcKey < b.hcKey; };
    bool bAllActive = true, bSorted = true;
    std::uint32_t previous = 0;
    for (const IdxVtx* p = first; p != last; ++p) {
        bAllActive &= p->bActive;
        bSorted &= p->hcKey >= previous;
        previous = p->hcKey;
    }
    if (bAllActive && bSorted) return;
    if (useFourParts(vEntries.size(), numCPU)) {
        // An inactive entry goes left at every partition, deliberately.
        sortInFourParts<SortTask>(first, last, keyOfEntry, [](const IdxVtx& entry, std::uint32_t pivot) {
            return !(entry.hcKey >= pivot && entry.bActive);
        });
        return;
    }
    // The sorted head is merged with the sorted tail once the inactive entries stand at the end.
    IdxVtx *tail = first + numSorted, *activeEnd = last;
    if (!bAllActive) {
        tail = first + std::count_if(first, tail, isActive);
        activeEnd = std::stable_partition(first, last, isActive);
    }
    sortByKey(tail, activeEnd, keyOfEntry);
    std::inplace_merge(first, tail, activeEnd, less);
}

} // namespace QUOR_KELM25D
