// A set of records by their addresses: triangles that a flood has reached, vertices that were met.
// It holds no records and reads none; two sets are compared as sorted sequences.
//
// Records of a pool stand side by side, so the set is a bit for each address at which one could begin, in
// pages that are found by a hash table of the upper parts of the addresses. Whoever visits neighbours mostly
// stays in few pages, which are small enough for the cache: a question costs some 2 ns. Reading the set in
// order is reading the bits.
#pragma once

#include "HashTable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace QUOR_KELM25D {

template <class T>
class AddressSet {
public:
    AddressSet() = default;
    /// The set of a sequence's elements.
    explicit AddressSet(const std::vector<T*>& v) {
        for (const T* p : v) {
            insert(p);
        }
    }

    std::size_t size() const noexcept { return numElements; }
    bool empty() const noexcept { return numElements == 0; }

    bool contains(const T* p) const noexcept {
        const Word* aWord = findPage(addressOf(p) >> pageBits);
        return aWord != nullptr && (aWord[wordOf(p)] & bitOf(p)) != 0;
    }
    /// False if it was there.
    bool insert(const T* p) {
        const std::uintptr_t key = addressOf(p) >> pageBits;
        if (key != lastKey) {
            aLastPage = findPage(key);
            if (aLastPage == nullptr) aLastPage = addPage(key);
            lastKey = key;
        }
        Word& word = aLastPage[wordOf(p)];
        if ((word & bitOf(p)) != 0) return false;
        word |= bitOf(p);
        ++numElements;
        return true;
    }
    /// False if it was not there.
    bool erase(const T* p) noexcept {
        Word* aWord = findPage(addressOf(p) >> pageBits);
        if (aWord == nullptr || (aWord[wordOf(p)] & bitOf(p)) == 0) return false;
        aWord[wordOf(p)] &= ~bitOf(p);
        --numElements;
        return true;
    }
    /// Appends all elements in the order of their addresses.
    void appendTo(std::vector<T*>& v) const {
        std::vector<Slot> vUsed;
        pages.forEach([&](const Slot& slot) { vUsed.push_back(slot); });
        std::sort(vUsed.begin(), vUsed.end(), [](const Slot& a, const Slot& b) { return a.key < b.key; });
        std::size_t i = v.size();
        v.resize(i + numElements);
        for (const Slot& slot : vUsed) {
            std::uintptr_t address = slot.key << pageBits;
            for (std::size_t k = 0; k < wordsPerPage; ++k, address += bitsPerWord * granule) {
                for (Word word = (*slot.pPage)[k]; word != 0; word &= word - 1) {
                    v[i++] = reinterpret_cast<T*>(address + granule * lowestBit(word));
                }
            }
        }
    }

private:
    using Word = std::uint64_t;
    static constexpr std::size_t granule = alignof(T); // no two records begin closer together
    static constexpr std::size_t bitsPerWord = 64;
    static constexpr int pageBits = 18; // of an address within a page
    static constexpr std::size_t wordsPerPage = (std::size_t(1) << pageBits) / granule / bitsPerWord;
    using Page = std::array<Word, wordsPerPage>;
    struct Slot {
        std::uintptr_t key = 0; // upper part of the addresses
        Page* pPage = nullptr;
        bool isFree() const noexcept { return pPage == nullptr; }
        std::uint64_t getHash() const noexcept { return hashOfNumber(key); }
    };

    static std::uintptr_t addressOf(const T* p) noexcept { return reinterpret_cast<std::uintptr_t>(p); }
    static std::size_t wordOf(const T* p) noexcept {
        return addressOf(p) / (granule * bitsPerWord) % wordsPerPage;
    }
    static Word bitOf(const T* p) noexcept { return Word(1) << (addressOf(p) / granule % bitsPerWord); }
    static unsigned lowestBit(Word word) noexcept {
#if defined(__GNUC__)
        return static_cast<unsigned>(__builtin_ctzll(word));
#else
        unsigned i = 0;
        for (; (word & 1) == 0; word >>= 1) {
            ++i;
        }
        return i;
#endif
    }
    Word* findPage(std::uintptr_t key) const noexcept {
        const Slot& slot =
            pages.find(hashOfNumber(key), [key](const Slot& taken) { return taken.key == key; });
        return slot.isFree() ? nullptr : slot.pPage->data();
    }
    Word* addPage(std::uintptr_t key) {
        vPages.push_back(std::make_unique<Page>());
        pages.insert({key, vPages.back().get()});
        return vPages.back()->data();
    }

    std::vector<std::unique_ptr<Page>> vPages;
    HashTable<Slot> pages; // of vPages
    std::size_t numElements = 0;
    std::uintptr_t lastKey = static_cast<std::uintptr_t>(-1); // of the page used last by insert
    Word* aLastPage = nullptr;
};

class Point2;
class Triangle2;
using TriangleSet = AddressSet<Triangle2>;
using VertexSet = AddressSet<Point2>;

} // namespace QUOR_KELM25D
