/// \file
/// The H.264 sequence parameter set, ITU-T H.264 (08/2021) 7.3.2.1.1.
#ifndef QV_DEMUXER_QVAVCSPS_H
#define QV_DEMUXER_QVAVCSPS_H

#include <stdint.h>

#include <memory>

#include "QVByteStream.h"
#include "QVNaluExport.h"

/// seq_parameter_set_data(), H.264 7.3.2.1.1, up to vui_parameters_present_flag, with derived picture sizes.
/// Owned by the caller, who zero-initialises it with {}; the parser never clears it. Fields that hold a
/// derived value document how it is derived from the syntax element.
struct QVAvcSps {
    int32_t sps_id;              ///< seq_parameter_set_id, ue(v), 0..31
    int32_t profile_idc;         ///< u(8)
    int32_t level_idc;           ///< u(8)
    int32_t chroma_format_idc;   ///< ue(v), 0..3; 1 where the profile carries no chroma syntax
    int32_t transform_bypass;    ///< qpprime_y_zero_transform_bypass_flag
    int32_t log2_max_frame_num;  ///< log2_max_frame_num_minus4 + 4
    int32_t poc_type;            ///< pic_order_cnt_type, ue(v), 0..2
    int32_t log2_max_poc_lsb;    ///< log2_max_pic_order_cnt_lsb_minus4 + 4; poc_type 0 only

    // poc_type 1 only
    int32_t delta_pic_order_always_zero_flag;  ///< u(1)
    int32_t offset_for_non_ref_pic;            ///< se(v)
    int32_t offset_for_top_to_bottom_field;    ///< se(v)
    int32_t poc_cycle_length;                  ///< num_ref_frames_in_pic_order_cnt_cycle, ue(v), 0..255

    int32_t ref_frame_count;                 ///< max_num_ref_frames, ue(v), 0..16
    int32_t gaps_in_frame_num_allowed_flag;  ///< u(1)
    int32_t width;                           ///< luma samples after cropping
    int32_t height;                          ///< luma samples after cropping
    int32_t mb_width;                        ///< pic_width_in_mbs_minus1 + 1
    int32_t mb_height;  ///< pic_height_in_map_units_minus1 + 1: map units, not doubled for field coding
    int32_t frame_mbs_only_flag;          ///< u(1)
    int32_t mb_aff;                       ///< mb_adaptive_frame_field_flag; 0 when frame_mbs_only_flag is 1
    int32_t direct_8x8_inference_flag;    ///< u(1)
    int32_t crop;                         ///< frame_cropping_flag
    int32_t crop_left;                    ///< frame_crop_left_offset, in crop units as coded
    int32_t crop_right;                   ///< frame_crop_right_offset, the same
    int32_t crop_top;                     ///< frame_crop_top_offset, the same
    int32_t crop_bottom;                  ///< frame_crop_bottom_offset, the same
    int32_t vui_parameters_present_flag;  ///< u(1), the last element that the parser reads

    // VUI, H.264 E.1.1. The parser stops before it: it sets full_range and colorspace to "unknown" and never
    // writes the other eight, in which a caller can keep what it reads itself.
    int32_t video_signal_type_present_flag;   ///< u(1); set by the caller
    int32_t full_range;                       ///< video_full_range_flag; the parser sets -1, unknown
    int32_t colour_description_present_flag;  ///< u(1); set by the caller
    int32_t colour_primaries;                 ///< u(8), Table E-3; set by the caller
    int32_t transfer_characteristics;         ///< u(8), Table E-4; set by the caller
    int32_t colorspace;                       ///< matrix_coefficients; the parser sets 2, unspecified
    int32_t timing_info_present_flag;         ///< u(1); set by the caller
    uint32_t num_units_in_tick;               ///< u(32), in ticks of time_scale; set by the caller
    uint32_t time_scale;                      ///< u(32), in Hz; set by the caller
    int32_t fixed_frame_rate_flag;            ///< u(1); set by the caller

    int8_t offset_for_ref_frame[256];  ///< se(v), the low 8 bits; poc_type 1 only, poc_cycle_length entries

    // Weights of the scaling matrices, flat (16) where none are present. Lists: intra Y, Cb, Cr, inter Y, Cb,
    // Cr in the order of H.264 Table 7-2. 8x8 lists 1, 2, 4 and 5 are present only with chroma_format_idc 3.
    int32_t scaling_matrix_present;  ///< the parser sets 0, with lists and without
    uint8_t scaling_matrix4[6][16];  ///< 4x4: intra Y, Cb, Cr, inter Y, Cb, Cr; raster order
    uint8_t scaling_matrix8[6][64];  ///< 8x8, the same; 1, 2, 4 and 5 only for chroma_format_idc 3

    // HRD and VUI values that the timing SEI parsers read; the caller fills them. Lengths are in bits, the
    // _minus1 elements + 1.
    int32_t nal_hrd_parameters_present_flag;   ///< u(1); set by the caller
    int32_t vcl_hrd_parameters_present_flag;   ///< u(1); set by the caller
    int32_t pic_struct_present_flag;           ///< u(1); set by the caller
    int32_t time_offset_length;                ///< bits; the parser sets 24
    int32_t cpb_cnt;                           ///< cpb_cnt_minus1 + 1, 1..32; set by the caller
    int32_t initial_cpb_removal_delay_length;  ///< _minus1 + 1, bits; set by the caller
    int32_t cpb_removal_delay_length;          ///< _minus1 + 1, bits; set by the caller
    int32_t dpb_output_delay_length;           ///< _minus1 + 1, bits; set by the caller

    int32_t bit_depth_luma;                 ///< bit_depth_luma_minus8 + 8
    int32_t bit_depth_chroma;               ///< bit_depth_chroma_minus8 + 8
    int32_t residual_color_transform_flag;  ///< separate_colour_plane_flag; chroma_format_idc 3 only
    int32_t constraint_set_flags;  ///< constraint_set0_flag in bit 0 up to constraint_set5_flag in bit 5
};

/// Reads one sequence parameter set NAL unit (H.264 7.3.2.1.1), header byte included, from the stream's
/// position. Fixed-length and Exp-Golomb reads take the bytes as they are: a caller whose parameter set holds
/// emulation prevention bytes removes them first. The VUI is not read; the stream stops at it.
///
/// Logs the crop and a summary at debug level. An invalid delta_scale ends its scaling list, and
/// mb_adaptive_frame_field_flag is accepted; both are logged as errors but are not failures.
///
/// \param[in,out] sps  the caller's record, zero-initialised or from an earlier parse
/// \param stream       the unit, shared for the duration of the call
/// \return true when everything up to vui_parameters_present_flag was accepted. false when sps is null or the
///         stream is empty or missing (nothing is written or logged), and when a value is out of range
///         (logged as an error): the fields written before the failing step keep their new values. The end of
///         the data is not a failure; missing bits read as 0.
QV_NALU_API bool parseAvcSps(QVAvcSps* sps, std::shared_ptr<QVByteStream> stream);

#endif
