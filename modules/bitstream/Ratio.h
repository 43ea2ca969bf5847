/// \file
/// A ratio of whole numbers.
#ifndef QV_BITSTREAM_RATIO_H
#define QV_BITSTREAM_RATIO_H

#include <cstdint>
#include <numeric>

namespace qv {

/// A ratio of two positive numbers without a common divisor, or 0:0 when there is none.
struct Ratio {
    uint64_t numerator = 0;    ///< 0 when unknown
    uint64_t denominator = 0;  ///< 0 when unknown

    /// False for 0:0.
    constexpr bool isKnown() const { return denominator != 0; }

    /// True when both are the same; 0:0 equals itself.
    friend constexpr bool operator==(const Ratio& a, const Ratio& b) {
        return a.numerator == b.numerator && a.denominator == b.denominator;
    }

    /// True when they differ.
    friend constexpr bool operator!=(const Ratio& a, const Ratio& b) { return !(a == b); }
};

/// The ratio of two numbers in lowest terms; 0:0 when either is 0.
constexpr Ratio ratioOf(uint64_t numerator, uint64_t denominator) {
    if (numerator == 0 || denominator == 0) {
        return {};
    }
    const uint64_t divisor = std::gcd(numerator, denominator);
    return {numerator / divisor, denominator / divisor};
}

}  // namespace qv

#endif
