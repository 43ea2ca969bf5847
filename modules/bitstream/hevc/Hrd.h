/// \file
/// hrd_parameters() of H.265.
#ifndef QV_BITSTREAM_HEVC_HRD_H
#define QV_BITSTREAM_HEVC_HRD_H

#include <cstdint>

#include "bitstream/hevc/ProfileTierLevel.h"

namespace qv::hevc {

/// The part of hrd_parameters() that all sub-layers have in common, H.265 E.2.2 and E.3.2. With
/// commonInfPresentFlag 0 it is that of the hrd_parameters() before.
struct HrdCommon {
    bool nal_hrd_parameters_present_flag;  ///< u(1)
    bool vcl_hrd_parameters_present_flag;  ///< u(1)

    bool sub_pic_hrd_params_present_flag;                   ///< u(1)
    uint32_t tick_divisor_minus2;                           ///< u(8)
    uint32_t du_cpb_removal_delay_increment_length_minus1;  ///< u(5)
    bool sub_pic_cpb_params_in_pic_timing_sei_flag;         ///< u(1)
    uint32_t dpb_output_delay_du_length_minus1;             ///< u(5)

    uint32_t bit_rate_scale;                           ///< u(4)
    uint32_t cpb_size_scale;                           ///< u(4)
    uint32_t cpb_size_du_scale;                        ///< u(4)
    uint32_t initial_cpb_removal_delay_length_minus1;  ///< u(5); 23 when not present
    uint32_t au_cpb_removal_delay_length_minus1;       ///< u(5); 23 when not present
    uint32_t dpb_output_delay_length_minus1;           ///< u(5); 23 when not present
};

/// sub_layer_hrd_parameters(), H.265 E.2.3 and E.3.3. Elements beyond cpb_cnt_minus1 are not set.
struct CpbParameters {
    static constexpr uint32_t kMostCpbs = 32;  ///< the greatest cpb_cnt_minus1, plus 1

    uint32_t bit_rate_value_minus1[kMostCpbs];     ///< ue(v), 0..2^32 - 2
    uint32_t cpb_size_value_minus1[kMostCpbs];     ///< ue(v), 0..2^32 - 2
    uint32_t cpb_size_du_value_minus1[kMostCpbs];  ///< ue(v); set with sub_pic_hrd_params_present_flag
    uint32_t bit_rate_du_value_minus1[kMostCpbs];  ///< ue(v); set with sub_pic_hrd_params_present_flag
    bool cbr_flag[kMostCpbs];                      ///< u(1)
};

/// What hrd_parameters() holds for one temporal sub-layer.
struct SubLayerHrd {
    bool fixed_pic_rate_general_flag;          ///< u(1)
    bool fixed_pic_rate_within_cvs_flag;       ///< 1 when fixed_pic_rate_general_flag is 1
    bool low_delay_hrd_flag;                   ///< 0 when not present
    uint32_t elemental_duration_in_tc_minus1;  ///< ue(v), 0..2047
    uint32_t cpb_cnt_minus1;                   ///< ue(v), 0..31; 0 when not present

    CpbParameters nal;  ///< set with nal_hrd_parameters_present_flag
    CpbParameters vcl;  ///< set with vcl_hrd_parameters_present_flag
};

/// hrd_parameters(), H.265 E.2.2 and E.3.2. Sub-layers beyond maxNumSubLayersMinus1 are not set.
struct Hrd {
    HrdCommon common;                       ///< what applies to all sub-layers
    SubLayerHrd sub_layer[kMostSubLayers];  ///< entry i is for HighestTid i
};

}  // namespace qv::hevc

#endif
