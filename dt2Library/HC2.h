// Hilbert keys: the position of a point along a Hilbert curve laid over a box.
// Sorting by key is in hilbertSort.h; who keeps the box up to date is Mesh2.
//
// The curve is a machine of four states; each step consumes one bit of x and one of y and yields two bits of
// the key. Three steps at a time go through one table of 256 entries, so a key of 30 bits costs five
// look-ups. Hilbert, "Ueber die stetige Abbildung einer Linie auf ein Flaechenstueck" (1891); the state
// machine form is that of Lawder, "Calculation of Mappings Between One and n-dimensional Values Using the
// Hilbert Space-filling Curve" (2000).
#pragma once

#include <kelm25d/Point2.h>

#include <cstdint>

namespace QUOR_KELM25D {

/// Maps points of a box to keys along the curve. A plain value; reading is safe from any number of threads.
class HC2 {
public:
    /// A curve over the box with bitLength key bits, bitLength / 2 for each axis. A bitLength above 32 or odd
    /// prints an error and the object is completed with the bad value.
    HC2(double minX, double minY, double maxX, double maxY, unsigned bitLength);

    /// Key of a point; points off the box get the key of some cell.
    std::uint32_t getIdx(const Point2& p) const noexcept { return getIdx(p.x(), p.y()); }
    std::uint32_t getIdx(double x, double y) const noexcept {
        const std::uint32_t ix = toCell((x - minX) * scaleX), iy = toCell((y - minY) * scaleY);
        return bStandard ? standardKey(ix, iy) : generalKey(ix, iy);
    }

private:
    // Truncation toward zero; what does not fit the integer goes to the nearest that does, not-a-number to 0.
    static std::uint32_t toCell(double v) noexcept {
        return v > 0.0 ? static_cast<std::uint32_t>(v < 4294967295.0 ? v : 4294967295.0) : 0;
    }

    std::uint32_t standardKey(std::uint32_t ix, std::uint32_t iy) const noexcept {
        std::uint32_t key = 0, state = 0;
        for (int s = 12; s >= 0; s -= 3) {
            const std::uint8_t entry = aTripleStep[(state << 6) | (((ix >> s) & 7U) << 3) | ((iy >> s) & 7U)];
            key = (key << 6) | (entry >> 2);
            state = entry & 3U;
        }
        return key;
    }
    std::uint32_t generalKey(std::uint32_t ix, std::uint32_t iy) const noexcept;

    static const std::uint8_t* const aTripleStep; // six key bits, then two bits of next state

    std::uint32_t bitLength;
    std::int32_t shift;     // left shift of the first key digit
    double minX, minY;      // lower corner of the key range
    double rangeX, rangeY;  // extents
    double scaleX, scaleY;  // cells per unit; 0 on an axis without extent
    std::uint32_t numCells; // per axis
    bool bStandard;         // 30 bits, the length of all triangulations
};

} // namespace QUOR_KELM25D
