// The NAL units of a buffer, found byte by byte as Annex B and ISO/IEC 14496-15 describe it: slow, obvious,
// and sharing no code with the library.
#ifndef QV_TESTS_BITSTREAM_SLOWUNITS_H
#define QV_TESTS_BITSTREAM_SLOWUNITS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bitstream/units/NalUnits.h"

namespace qv_test {

struct SlowUnit {
    size_t leadingBytes = 0;
    size_t prefixSize = 0;
    size_t offset = 0;
    size_t size = 0;
    size_t trailingZeroBytes = 0;
    qv::UnitFaults faults;
};

std::vector<SlowUnit> slowUnits(const std::vector<uint8_t>& buffer, qv::Framing framing, qv::Codec codec);

// The parts of a unit and its faults, for comparisons that show themselves.
std::string textOf(const SlowUnit& unit);
std::string partsOf(const qv::NalUnit& unit);

}  // namespace qv_test

#endif
