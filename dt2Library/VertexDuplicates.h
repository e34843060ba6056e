// Pending duplicates: vertices that turned out to be redundant, each with the vertex in its place.
// Taking them out of the index is up to VertexVault.
//
// A map by the redundant vertex, as a sequence that is sorted once all are known: while an insertion runs,
// with several threads perhaps, pairs are only appended.
#pragma once

#include <kelm25d/Point2.h>

#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

class VertexDuplicates {
public:
    bool empty() const noexcept { return mRedundant2UniqueVtx.empty(); }
    std::size_t size() const noexcept { return mRedundant2UniqueVtx.size(); }
    void clear() noexcept { mRedundant2UniqueVtx.clear(); }

    /// Records that pDup stands where pExisting already is; nothing if they are the same. Thread safe, but
    /// only beside other calls of it.
    void add(Point2* pDup, Point2* pExisting);
    /// Makes the map of what was added, for the two questions below.
    void sort();
    /// The vertex in the place of a redundant one; null for others.
    Point2* find(const Point2* pVtx) const noexcept;
    /// Replaces redundant vertices among the handles by those in their places.
    void replaceHandles(std::vector<Point2*>& vHandles) const;

    /// The vertex in the place of pNew, which is the only redundant one.
    Point2* getOnly(const Point2* pNew) const;

private:
    std::vector<std::pair<Point2*, Point2*>> mRedundant2UniqueVtx;
    std::mutex mtxDuplicates; // guards it in add
};

} // namespace QUOR_KELM25D
