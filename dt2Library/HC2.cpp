// Construction of the Hilbert curve's tables and keys of unusual length.
// The common key of 30 bits is inline in the header.

#include "HC2.h"

#include "messages.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace QUOR_KELM25D {

namespace {

// Indexed by 4 * state + quadrant, the quadrant being 2 * (bit of x) + (bit of y).
constexpr std::uint8_t aDigit[16] = {0, 1, 3, 2, 0, 3, 1, 2, 2, 1, 3, 0, 2, 3, 1, 0};
constexpr std::uint8_t aNextState[16] = {1, 0, 2, 0, 0, 3, 1, 1, 2, 2, 0, 3, 3, 1, 3, 2};

constexpr std::array<std::uint8_t, 256> makeTripleStep() {
    std::array<std::uint8_t, 256> table{};
    for (unsigned start = 0; start < 4; ++start) {
        for (unsigned ix = 0; ix < 8; ++ix) {
            for (unsigned iy = 0; iy < 8; ++iy) {
                unsigned key = 0, state = start;
                for (int bit = 2; bit >= 0; --bit) {
                    const unsigned i = 4 * state + 2 * ((ix >> bit) & 1U) + ((iy >> bit) & 1U);
                    key = 4 * key + aDigit[i];
                    state = aNextState[i];
                }
                table[(start << 6) | (ix << 3) | iy] = static_cast<std::uint8_t>((key << 2) | state);
            }
        }
    }
    return table;
}

constexpr std::array<std::uint8_t, 256> tripleStepTable = makeTripleStep();

double scaleFor(double numCells, double range) noexcept {
    const double scale = numCells / range;
    return std::isfinite(scale) ? scale : 0.0;
}

} // namespace

const std::uint8_t* const HC2::aTripleStep = tripleStepTable.data();

HC2::HC2(double minX_, double minY_, double maxX_, double maxY_, unsigned bitLength_)
    : bitLength(bitLength_), shift(static_cast<std::int32_t>(bitLength_) - 2), minX(minX_), minY(minY_),
      rangeX(maxX_ - minX_), rangeY(maxY_ - minY_), bStandard(bitLength_ == 30) {
    if (bitLength > 32 || bitLength % 2 != 0) printError("HC2::HC2(..)", "invalid bitlength");
    numCells = 1U << std::min(bitLength / 2, 31U);
    scaleX = scaleFor(numCells, rangeX);
    scaleY = scaleFor(numCells, rangeY);
}

std::uint32_t HC2::generalKey(std::uint32_t ix, std::uint32_t iy) const noexcept {
    std::uint64_t key = 0;
    unsigned state = 0;
    std::uint32_t mask = numCells / 2;
    for (int s = shift; s >= 0 && mask != 0; s -= 2, mask /= 2) {
        const unsigned i = 4 * state + 2 * ((ix & mask) != 0 ? 1U : 0U) + ((iy & mask) != 0 ? 1U : 0U);
        if (s < 32) key |= static_cast<std::uint64_t>(aDigit[i]) << s;
        state = aNextState[i];
    }
    return static_cast<std::uint32_t>(key);
}

} // namespace QUOR_KELM25D
