/// \file
/// vui_parameters() of H.264.
#ifndef QV_BITSTREAM_AVC_VUI_H
#define QV_BITSTREAM_AVC_VUI_H

#include <cstdint>

#include "bitstream/avc/Hrd.h"

namespace qv::avc {

/// vui_parameters(), H.264 E.1.1 and E.2.1. An element that is not present has the value that its semantics
/// infer, otherwise 0; that holds for all of them when the parameter set has no vui_parameters().
struct Vui {
    bool aspect_ratio_info_present_flag;  ///< u(1)
    uint32_t aspect_ratio_idc;            ///< u(8), Table E-1; 255 is Extended_SAR
    uint32_t sar_width;                   ///< u(16)
    uint32_t sar_height;                  ///< u(16)

    bool overscan_info_present_flag;  ///< u(1)
    bool overscan_appropriate_flag;   ///< u(1)

    bool video_signal_type_present_flag;   ///< u(1)
    uint32_t video_format;                 ///< u(3), Table E-2; 5 (unspecified) when not present
    bool video_full_range_flag;            ///< u(1)
    bool colour_description_present_flag;  ///< u(1)
    uint32_t colour_primaries;             ///< u(8), Table E-3; 2 (unspecified) when not present
    uint32_t transfer_characteristics;     ///< u(8), Table E-4; 2 (unspecified) when not present
    uint32_t matrix_coefficients;          ///< u(8), Table E-5; 2 (unspecified) when not present

    bool chroma_loc_info_present_flag;             ///< u(1)
    uint32_t chroma_sample_loc_type_top_field;     ///< ue(v), 0..5
    uint32_t chroma_sample_loc_type_bottom_field;  ///< ue(v), 0..5

    bool timing_info_present_flag;  ///< u(1)
    uint32_t num_units_in_tick;     ///< u(32), above 0
    uint32_t time_scale;            ///< u(32), above 0
    bool fixed_frame_rate_flag;     ///< u(1)

    bool nal_hrd_parameters_present_flag;  ///< u(1)
    Hrd nal_hrd_parameters;                ///< with nal_hrd_parameters_present_flag
    bool vcl_hrd_parameters_present_flag;  ///< u(1)
    Hrd vcl_hrd_parameters;                ///< with vcl_hrd_parameters_present_flag
    bool low_delay_hrd_flag;               ///< u(1)
    bool pic_struct_present_flag;          ///< u(1)

    bool bitstream_restriction_flag;               ///< u(1)
    bool motion_vectors_over_pic_boundaries_flag;  ///< 1 when not present
    uint32_t max_bytes_per_pic_denom;              ///< ue(v), 0..16; 2 when not present
    uint32_t max_bits_per_mb_denom;                ///< ue(v), 0..16; 1 when not present
    uint32_t log2_max_mv_length_horizontal;        ///< ue(v), 0..16; 15 when not present
    uint32_t log2_max_mv_length_vertical;          ///< ue(v), 0..16; 15 when not present

    // Up to 16, or 160 in the multiview profiles.
    uint32_t max_num_reorder_frames;   ///< ue(v); see maxNumReorderFrames() for one that is not present
    uint32_t max_dec_frame_buffering;  ///< ue(v); see maxDecFrameBuffering() for one that is not present
};

}  // namespace qv::avc

#endif
