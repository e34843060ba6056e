// Determinant signs in integers: see the header for what they promise.
//
// A double is an integer of at most 53 bits times a power of two. Coordinates of real data are of like
// magnitude, so that all of them are integers of at most 61 bits over one common power of two; scaled by it,
// differences fit 62 bits, products of two 125 bits and the in-circle determinant 252 bits. No rounding
// occurs anywhere, and the scaling does not change the sign.

#include "exactSigns.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace QUOR_KELM25D {

#if defined(__SIZEOF_INT128__)

namespace {

__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;

constexpr int maxBits = 61;

/// Scales the coordinates by the power of two that makes the finest of them an odd integer.
template <int n>
bool scaleToIntegers(const double (&coordinates)[n], std::int64_t (&scaled)[n]) noexcept {
    std::uint64_t aMantissa[n];
    int aExponent[n];
    int lowest = 1 << 20, highest = -(1 << 20);
    for (int i = 0; i < n; ++i) {
        std::uint64_t bits;
        std::memcpy(&bits, &coordinates[i], sizeof bits);
        const int biased = static_cast<int>((bits >> 52) & 0x7ff);
        if (biased == 0x7ff) return false;
        aMantissa[i] = bits & 0xfffffffffffffULL;
        if (biased != 0) aMantissa[i] |= 0x10000000000000ULL;
        if (aMantissa[i] == 0) continue;
        // Only differences of exponents count, so the bias stays in.
        aExponent[i] = biased != 0 ? biased : 1;
        const int low = aExponent[i] + __builtin_ctzll(aMantissa[i]);
        const int high = aExponent[i] + 64 - __builtin_clzll(aMantissa[i]);
        if (low < lowest) lowest = low;
        if (high > highest) highest = high;
    }
    if (highest - lowest > maxBits) return false;
    for (int i = 0; i < n; ++i) {
        std::int64_t value = 0;
        if (aMantissa[i] != 0) {
            const int shift = aExponent[i] - lowest;
            value = static_cast<std::int64_t>(shift >= 0 ? aMantissa[i] << shift : aMantissa[i] >> -shift);
        }
        scaled[i] = std::signbit(coordinates[i]) ? -value : value;
    }
    return true;
}

/// Signed integer of 256 bits, two's complement, as high and low half.
struct Int256 {
    UInt128 high = 0, low = 0;

    void add(const Int256& other) noexcept {
        low += other.low;
        high += other.high + (low < other.low ? 1 : 0);
    }
    void negate() noexcept {
        low = ~low + 1;
        high = ~high + (low == 0 ? 1 : 0);
    }
    int sign() const noexcept {
        if (static_cast<Int128>(high) < 0) return -1;
        return (high | low) != 0 ? 1 : 0;
    }
};

Int256 multiply(Int128 a, Int128 b) noexcept {
    const bool bNegative = (a < 0) != (b < 0);
    const UInt128 ua = a < 0 ? -static_cast<UInt128>(a) : static_cast<UInt128>(a);
    const UInt128 ub = b < 0 ? -static_cast<UInt128>(b) : static_cast<UInt128>(b);
    const std::uint64_t a0 = static_cast<std::uint64_t>(ua), a1 = static_cast<std::uint64_t>(ua >> 64);
    const std::uint64_t b0 = static_cast<std::uint64_t>(ub), b1 = static_cast<std::uint64_t>(ub >> 64);
    const UInt128 p00 = static_cast<UInt128>(a0) * b0, p01 = static_cast<UInt128>(a0) * b1;
    const UInt128 p10 = static_cast<UInt128>(a1) * b0, p11 = static_cast<UInt128>(a1) * b1;
    const UInt128 middle = (p00 >> 64) + static_cast<std::uint64_t>(p01) + static_cast<std::uint64_t>(p10);
    Int256 result;
    result.low = (middle << 64) | static_cast<std::uint64_t>(p00);
    result.high = p11 + (p01 >> 64) + (p10 >> 64) + (middle >> 64);
    if (bNegative) result.negate();
    return result;
}

int signOf(Int128 v) noexcept {
    return v < 0 ? -1 : (v > 0 ? 1 : 0);
}

bool fitsThirtyBits(std::int64_t v) noexcept {
    return static_cast<std::uint64_t>(v + (1LL << 30)) < (1ULL << 31);
}

} // namespace

bool orientationSignInIntegers(const double (&coordinates)[6], int& sign) noexcept {
    std::int64_t v[6];
    if (!scaleToIntegers(coordinates, v)) return false;
    const Int128 t1 = static_cast<Int128>(v[0] - v[4]) * (v[3] - v[5]);
    const Int128 t2 = static_cast<Int128>(v[1] - v[5]) * (v[2] - v[4]);
    sign = t1 > t2 ? 1 : (t1 < t2 ? -1 : 0);
    return true;
}

bool inCircleSignInIntegers(const double (&coordinates)[8], int& sign) noexcept {
    std::int64_t v[8];
    if (!scaleToIntegers(coordinates, v)) return false;
    const std::int64_t ax = v[0] - v[6], ay = v[1] - v[7];
    const std::int64_t bx = v[2] - v[6], by = v[3] - v[7];
    const std::int64_t cx = v[4] - v[6], cy = v[5] - v[7];
    if (fitsThirtyBits(ax) && fitsThirtyBits(ay) && fitsThirtyBits(bx) && fitsThirtyBits(by) &&
        fitsThirtyBits(cx) && fitsThirtyBits(cy)) {
        sign = signOf(static_cast<Int128>(ax * ax + ay * ay) * (bx * cy - cx * by) +
                      static_cast<Int128>(bx * bx + by * by) * (cx * ay - ax * cy) +
                      static_cast<Int128>(cx * cx + cy * cy) * (ax * by - bx * ay));
        return true;
    }
    const auto product = [](std::int64_t a, std::int64_t b) { return static_cast<Int128>(a) * b; };
    Int256 sum = multiply(product(ax, ax) + product(ay, ay), product(bx, cy) - product(cx, by));
    sum.add(multiply(product(bx, bx) + product(by, by), product(cx, ay) - product(ax, cy)));
    sum.add(multiply(product(cx, cx) + product(cy, cy), product(ax, by) - product(bx, ay)));
    sign = sum.sign();
    return true;
}

#else // without 128 bit integers the rationals answer every question

bool orientationSignInIntegers(const double (&)[6], int&) noexcept {
    return false;
}

bool inCircleSignInIntegers(const double (&)[8], int&) noexcept {
    return false;
}

#endif

} // namespace QUOR_KELM25D
