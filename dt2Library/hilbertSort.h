// Sorting of points and of vertex index entries along the Hilbert curve, on one thread or on four.
// The keys themselves come from HC2.
#pragma once

#include "HC2.h"
#include "uninitialized.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace QUOR_KELM25D {

/// Hilbert key of a point and the point's position in its input sequence.
struct KeyPos {
    std::uint32_t key;
    std::uint32_t pos;
};

/// Entry of the vertex index.
struct IdxVtx {
    std::uint32_t hcKey; // as of the last re-keying
    bool bActive;        // false once the vertex was removed or found redundant
    Point2* pVtx;        // not owned
};

using KeyPosVector = UninitializedVector<KeyPos>;
using IdxVtxVector = UninitializedVector<IdxVtx>;

/// From this length on and with four CPUs, sequences are sorted in four parts.
constexpr std::size_t minParallelSort = 10000;
constexpr int minParallelSortCPU = 4;

/// Sorts by key, ascending; equal keys come in any order. With two or three CPUs the threads share every
/// pass, from four on each of four sorts a part.
void sortKeys(KeyPosVector& vKeys, int numCPU);

/// Sorts entries: active ones first, ascending by key, then the inactive ones. The first numSorted entries
/// must be the result of an earlier call. In four parts the inactive entries end up at the end of each part
/// and not of the whole; that is deliberate, the searches of the vault allow for it.
void sortEntries(IdxVtxVector& vEntries, std::size_t numSorted, int numCPU);

/// Where many points share one key the curve of the whole box is too coarse to keep neighbours together; this
/// orders each such run along a curve over the run's own box, again and again until runs are short.
/// getX and getY give the coordinates of a position.
template <class GetX, class GetY>
void refineEqualKeys(KeyPosVector& vKeys, GetX getX, GetY getY);

// ---------------------------------------------------------------------------------------------------------

/// Sorts a range by key on the calling thread.
void sortKeyRange(KeyPos* first, KeyPos* last);

namespace detail {

constexpr std::ptrdiff_t minRunToRefine = 24;
constexpr int maxRefinements = 12;

template <class GetX, class GetY>
void refineRuns(KeyPos* first, KeyPos* last, const GetX& getX, const GetY& getY, int depth);

template <class GetX, class GetY>
void refineRun(KeyPos* first, KeyPos* last, const GetX& getX, const GetY& getY, int depth) {
    double minX = getX(first->pos), minY = getY(first->pos), maxX = minX, maxY = minY;
    for (const KeyPos* p = first + 1; p != last; ++p) {
        const double x = getX(p->pos), y = getY(p->pos);
        minX = x < minX ? x : minX;
        maxX = x > maxX ? x : maxX;
        minY = y < minY ? y : minY;
        maxY = y > maxY ? y : maxY;
    }
    if (minX == maxX && minY == maxY) return;
    const HC2 curve(minX, minY, maxX + (maxX - minX), maxY + (maxY - minY), 30);
    for (KeyPos* p = first; p != last; ++p) {
        p->key = curve.getIdx(getX(p->pos), getY(p->pos));
    }
    sortKeyRange(first, last);
    if (depth < maxRefinements) refineRuns(first, last, getX, getY, depth + 1);
}

template <class GetX, class GetY>
void refineRuns(KeyPos* first, KeyPos* last, const GetX& getX, const GetY& getY, int depth) {
    for (KeyPos* runStart = first; runStart != last;) {
        const std::uint32_t key = runStart->key;
        KeyPos* runEnd = runStart + 1;
        while (runEnd != last && runEnd->key == key)
            ++runEnd;
        if (runEnd - runStart >= minRunToRefine) {
            refineRun(runStart, runEnd, getX, getY, depth);
            for (KeyPos* p = runStart; p != runEnd; ++p) {
                p->key = key;
            }
        }
        runStart = runEnd;
    }
}

} // namespace detail

template <class GetX, class GetY>
void refineEqualKeys(KeyPosVector& vKeys, GetX getX, GetY getY) {
    if (!vKeys.empty()) detail::refineRuns(vKeys.data(), vKeys.data() + vKeys.size(), getX, getY, 0);
}

} // namespace QUOR_KELM25D
