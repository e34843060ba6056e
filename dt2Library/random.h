// The library's own pair of generator functions, with the same numbers on each platform.
// One state for the whole process and no lock; good enough for made data, not for secrets.
#pragma once

namespace QUOR_KELM25D {

/// The number of different values that nextRandom yields.
constexpr int numRandomValues = 32768;

/// Starts the sequence that belongs to a seed; every seed has one, 0 too. Before the first call it is that of
/// seed 1.
void seedRandom(unsigned int seed);

/// The next integer of the sequence, from 0 to 32767.
int nextRandom();

} // namespace QUOR_KELM25D
