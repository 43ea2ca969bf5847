// The elements of a parameter set before its VUI.
#ifndef QV_TESTS_COMPLETION_SPSHEAD_H
#define QV_TESTS_COMPLETION_SPSHEAD_H

#include "BitWriter.h"
#include "SyntaxElements.h"

namespace qv_test {

// The bits of a parameter set before vui_parameters_present_flag.
inline BitWriter spsHeadOf(const BitWriter& sps) {
    const size_t end = startOf(sps, "vui_parameters_present_flag");
    const Bytes bytes = sps.bytes();
    BitWriter head;
    for (size_t bit = 0; bit < end; ++bit) {
        head.u(1, "head", static_cast<uint64_t>(bytes[bit / 8] >> (7 - bit % 8) & 1));
    }
    return head;
}

// The unit with the first bits of a parameter set alone, and rbsp_trailing_bits() after them.
inline Bytes spsUnitCutAt(const BitWriter& sps, size_t bits) {
    Bytes bytes = sps.bytesCutAt(bits);
    bytes.resize(bits / 8 + 1);
    bytes[bits / 8] = static_cast<uint8_t>(bytes[bits / 8] | 0x80 >> bits % 8);
    return withEmulationPrevention(bytes);
}

inline Bytes spsUnitOf(const BitWriter& sps) {
    return withEmulationPrevention(sps.bytes());
}

}  // namespace qv_test

#endif
