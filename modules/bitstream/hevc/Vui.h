/// \file
/// vui_parameters() of H.265.
#ifndef QV_BITSTREAM_HEVC_VUI_H
#define QV_BITSTREAM_HEVC_VUI_H

#include <cstdint>

#include "bitstream/hevc/Hrd.h"

namespace qv::hevc {

/// vui_parameters(), H.265 E.2.1 and E.3.1. An element that is not present has the value that its semantics
/// infer, otherwise 0. Without vui_parameters_present_flag the values inferred are set as well.
struct Vui {
    bool aspect_ratio_info_present_flag;  ///< u(1)
    uint32_t aspect_ratio_idc;            ///< u(8), Table E.1; 255 is EXTENDED_SAR
    uint32_t sar_width;                   ///< u(16)
    uint32_t sar_height;                  ///< u(16)

    bool overscan_info_present_flag;  ///< u(1)
    bool overscan_appropriate_flag;   ///< u(1)

    bool video_signal_type_present_flag;   ///< u(1)
    uint32_t video_format;                 ///< u(3), Table E.2; 5 (unspecified) when not present
    bool video_full_range_flag;            ///< u(1)
    bool colour_description_present_flag;  ///< u(1)
    uint32_t colour_primaries;             ///< u(8), Table E.3; 2 (unspecified) when not present
    uint32_t transfer_characteristics;     ///< u(8), Table E.4; 2 (unspecified) when not present
    uint32_t matrix_coeffs;                ///< u(8), Table E.5; 2 (unspecified) when not present

    bool chroma_loc_info_present_flag;             ///< u(1)
    uint32_t chroma_sample_loc_type_top_field;     ///< ue(v), 0..5
    uint32_t chroma_sample_loc_type_bottom_field;  ///< ue(v), 0..5

    bool neutral_chroma_indication_flag;  ///< u(1)
    bool field_seq_flag;                  ///< u(1)
    bool frame_field_info_present_flag;   ///< not present: 1 if both general source flags are 1

    bool default_display_window_flag;     ///< u(1)
    uint32_t def_disp_win_left_offset;    ///< ue(v), in SubWidthC
    uint32_t def_disp_win_right_offset;   ///< ue(v), in SubWidthC
    uint32_t def_disp_win_top_offset;     ///< ue(v), in SubHeightC
    uint32_t def_disp_win_bottom_offset;  ///< ue(v), in SubHeightC

    bool vui_timing_info_present_flag;           ///< u(1)
    uint32_t vui_num_units_in_tick;              ///< u(32), above 0
    uint32_t vui_time_scale;                     ///< u(32), above 0
    bool vui_poc_proportional_to_timing_flag;    ///< u(1)
    uint32_t vui_num_ticks_poc_diff_one_minus1;  ///< ue(v), 0..2^32 - 2
    bool vui_hrd_parameters_present_flag;        ///< u(1)

    bool bitstream_restriction_flag;               ///< u(1)
    bool tiles_fixed_structure_flag;               ///< u(1)
    bool motion_vectors_over_pic_boundaries_flag;  ///< 1 when not present
    bool restricted_ref_pic_lists_flag;            ///< u(1)
    uint32_t min_spatial_segmentation_idc;         ///< ue(v), 0..4095
    uint32_t max_bytes_per_pic_denom;              ///< ue(v), 0..16; 2 when not present
    uint32_t max_bits_per_min_cu_denom;            ///< ue(v), 0..16; 1 when not present
    uint32_t log2_max_mv_length_horizontal;        ///< ue(v), 0..16 (0..15 from 2018 on); 15 when not present
    uint32_t log2_max_mv_length_vertical;          ///< ue(v), 0..16 (0..15 from 2018 on); 15 when not present

    /// Set with vui_hrd_parameters_present_flag, one entry for each sub-layer.
    Hrd hrd_parameters;
};

}  // namespace qv::hevc

#endif
