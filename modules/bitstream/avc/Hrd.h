/// \file
/// hrd_parameters() of H.264.
#ifndef QV_BITSTREAM_AVC_HRD_H
#define QV_BITSTREAM_AVC_HRD_H

#include <cstdint>

namespace qv::avc {

/// hrd_parameters(), H.264 E.1.2 and E.2.2. Elements beyond cpb_cnt_minus1 are 0.
struct Hrd {
    static constexpr uint32_t kMostCpbs = 32;  ///< the greatest cpb_cnt_minus1, plus 1

    uint32_t cpb_cnt_minus1;  ///< ue(v), 0..31
    uint32_t bit_rate_scale;  ///< u(4)
    uint32_t cpb_size_scale;  ///< u(4)

    uint32_t bit_rate_value_minus1[kMostCpbs];  ///< ue(v), 0..2^32 - 2
    uint32_t cpb_size_value_minus1[kMostCpbs];  ///< ue(v), 0..2^32 - 2
    bool cbr_flag[kMostCpbs];                   ///< u(1)

    uint32_t initial_cpb_removal_delay_length_minus1;  ///< u(5)
    uint32_t cpb_removal_delay_length_minus1;          ///< u(5)
    uint32_t dpb_output_delay_length_minus1;           ///< u(5)
    uint32_t time_offset_length;                       ///< u(5)
};

}  // namespace qv::avc

#endif
