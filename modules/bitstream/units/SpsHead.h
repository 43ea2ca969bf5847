// The beginning of sequence parameter sets, which configuration records and codec strings repeat. What
// follows it may be damaged.
#ifndef QV_BITSTREAM_UNITS_SPSHEAD_H
#define QV_BITSTREAM_UNITS_SPSHEAD_H

#include <cstdint>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"

namespace qv::avc {

struct SpsHead {
    uint32_t profile_idc;
    uint32_t constraint_set_flags;  // and reserved_zero_2bits
    uint32_t level_idc;
    uint32_t chroma_format_idc;
    uint32_t bit_depth_luma_minus8;
    uint32_t bit_depth_chroma_minus8;
};

// seq_parameter_set_data(), H.264 7.3.2.1.1, of a unit of type 7. The head is clear.
Fault readSpsHead(Bytes unit, SpsHead& sps) noexcept;

}  // namespace qv::avc

namespace qv::hevc {

struct SpsHead {
    uint32_t max_sub_layers_minus1;
    bool temporal_id_nesting_flag;
    uint32_t general_profile_space;
    bool general_tier_flag;
    uint32_t general_profile_idc;
    uint32_t general_profile_compatibility_flags;
    uint64_t general_constraint_indicator_flags;
    uint32_t general_level_idc;
};

// seq_parameter_set_rbsp(), H.265 7.3.2.2.1, of a unit of type 33 of the base layer. The head is clear.
Fault readSpsHead(Bytes unit, SpsHead& sps) noexcept;

// video_parameter_set_rbsp(), H.265 7.3.2.1, of a unit of type 32. The head is clear.
Fault readVpsHead(Bytes unit, SpsHead& vps) noexcept;

}  // namespace qv::hevc

#endif
