// SEI units of a stream.
#ifndef QV_TESTS_BITSTREAM_SEIUNITS_H
#define QV_TESTS_BITSTREAM_SEIUNITS_H

#include <cstdint>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/units/NalUnits.h"

namespace qv_test {

inline bool isSei(qv::Codec codec, qv::Bytes unit) {
    const uint32_t type = qv::nalUnitOf(unit, codec).nal_unit_type;
    return codec == qv::Codec::Avc ? type == qv::avc::kNalSei
                                   : type == qv::hevc::kNalPrefixSei || type == qv::hevc::kNalSuffixSei;
}

}  // namespace qv_test

#endif
