// Numbers that SEI messages code as sign, exponent and mantissa.
#include "bitstream/sei/CodedFloat.h"

#include <cmath>

namespace qv::sei {

double CodedFloat::value() const noexcept {
    constexpr int kBias = 31;
    const auto bits = static_cast<int>(mantissa_bits);
    const auto fraction = static_cast<double>(mantissa);
    const double magnitude =
        exponent == 0 ? std::ldexp(fraction, 1 - kBias - bits)
                      : std::ldexp(1 + std::ldexp(fraction, -bits), static_cast<int>(exponent) - kBias);
    return sign ? -magnitude : magnitude;
}

}  // namespace qv::sei
