// Units of parameter sets.
#ifndef QV_TESTS_COMPLETION_SPSUNIT_H
#define QV_TESTS_COMPLETION_SPSUNIT_H

#include "BitWriter.h"

namespace qv_test {

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
