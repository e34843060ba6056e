// SplitMix64: a counter in steps of the golden ratio, and a mixing function. Steele, Lea, Flood, "Fast
// splittable pseudorandom number generators", OOPSLA 2014; constants of Stafford's variant 13. Neighbouring
// seeds give unrelated sequences, which the generators rely on when they count seeds up.
// Numbers in a range are made in testDataGenerators.cpp.
#include "random.h"

#include <cstdint>

namespace QUOR_KELM25D {

namespace {

std::uint64_t state = 1;

} // namespace

void seedRandom(unsigned int seed) {
    state = seed;
}

int nextRandom() {
    state += 0x9e3779b97f4a7c15U;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    z ^= z >> 31;
    return static_cast<int>(z >> 49); // the 15 highest bits
}

} // namespace QUOR_KELM25D
