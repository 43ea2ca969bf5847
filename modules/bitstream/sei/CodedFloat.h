/// \file
/// Numbers that SEI messages code as sign, exponent and mantissa.
#ifndef QV_BITSTREAM_SEI_CODEDFLOAT_H
#define QV_BITSTREAM_SEI_CODEDFLOAT_H

#include <cstdint>

namespace qv::sei {

/// A number of camera, display and depth parameters (H.264 H.13.2.5, I.13.2.3, H.265 G.14.3.4, G.14.3.6).
struct CodedFloat {
    bool sign;               ///< u(1), true for negative; false where the message has no sign
    uint32_t exponent;       ///< u(6) or u(7); the greatest value is reserved or unspecified
    uint32_t mantissa_bits;  ///< the width of the mantissa, 0 to 63
    uint64_t mantissa;       ///< u(v)

    /// The number: +-2^(exponent - 31) * (1 + mantissa / 2^mantissa_bits), and with an exponent of 0
    /// +-2^-(30 + mantissa_bits) * mantissa.
    double value() const noexcept;
};

}  // namespace qv::sei

#endif
