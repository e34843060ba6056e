// A search over triangles from neighbour to neighbour: every triangle that is reached comes up once.
// How far it goes is up to the loop that runs it; a flood that stops at constraints is FloodBarrier.
//
// It goes breadth first. A triangle is fetched when it is reached, long before its turn: so the loop meets it
// in the cache.
#pragma once

#include "AddressSet.h"
#include "prefetch.h"

#include <kelm25d/Triangle2.h>

#include <cstddef>
#include <vector>

namespace QUOR_KELM25D {

class Flood {
public:
    Flood() = default;
    /// Starts with some triangles, given twice or not.
    explicit Flood(const std::vector<Triangle2*>& vSeeds) {
        for (Triangle2* pSeed : vSeeds) {
            reach(pSeed);
        }
    }

    /// False if the triangle has been reached before. Else its turn will come.
    bool reach(Triangle2* pT) {
        if (!sReached.insert(pT)) return false;
        prefetchRecord(pT);
        vReached.push_back(pT);
        return true;
    }
    /// The next triangle that has been reached, in the order of reaching; null at the end, from which it can
    /// go on after another reach.
    Triangle2* next() noexcept { return position < vReached.size() ? vReached[position++] : nullptr; }

    /// All triangles reached so far.
    const TriangleSet& getReached() const noexcept { return sReached; }
    /// The same in the order of reaching.
    const std::vector<Triangle2*>& getSequence() const noexcept { return vReached; }

private:
    TriangleSet sReached;
    std::vector<Triangle2*> vReached;
    std::size_t position = 0; // of the next one in vReached
};

} // namespace QUOR_KELM25D
