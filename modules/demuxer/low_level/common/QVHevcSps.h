/// \file
/// The head of the H.265 sequence parameter set, ITU-T H.265 (08/2021) 7.3.2.2.
#ifndef QV_DEMUXER_QVHEVCSPS_H
#define QV_DEMUXER_QVHEVCSPS_H

#include <stdint.h>

#include <memory>

#include "QVByteStream.h"
#include "QVNaluExport.h"

/// seq_parameter_set_rbsp(), H.265 7.3.2.2, up to sps_sub_layer_ordering_info_present_flag, with the
/// displayed picture size. No value is range-checked. Owned by the caller, who zero-initialises it with {};
/// the parser never clears it.
struct QVHevcSps {
    int32_t sps_video_parameter_set_id;    ///< u(4)
    int32_t sps_max_sub_layers_minus1;     ///< u(3), 0..7
    int32_t sps_temporal_id_nesting_flag;  ///< u(1)
    int32_t sps_seq_parameter_set_id;      ///< ue(v)
    int32_t chroma_format_idc;             ///< ue(v)
    int32_t separate_colour_plane_flag;    ///< u(1); 0 unless chroma_format_idc is 3
    int32_t display_width;                 ///< luma samples inside the conformance window
    int32_t display_height;                ///< luma samples inside the conformance window
    int32_t pic_width_in_luma_samples;     ///< ue(v)
    int32_t pic_height_in_luma_samples;    ///< ue(v)
    int32_t conformance_window_flag;       ///< u(1)
    int32_t conf_win_left_offset;     ///< ue(v), chroma units; unchanged without a window, as the next three
    int32_t conf_win_right_offset;    ///< ue(v)
    int32_t conf_win_top_offset;      ///< ue(v)
    int32_t conf_win_bottom_offset;   ///< ue(v)
    int32_t bit_depth_luma_minus8;    ///< ue(v)
    int32_t bit_depth_chroma_minus8;  ///< ue(v)
    int32_t log2_max_pic_order_cnt_lsb_minus4;         ///< ue(v)
    int32_t sps_sub_layer_ordering_info_present_flag;  ///< u(1), the last field that the parser writes

    // VUI, H.265 E.2.1. The parser never writes it; a caller can keep what it reads itself. The picture
    // timing SEI parser reads frame_field_info_present_flag.
    int32_t vui_parameters_present_flag;          ///< u(1)
    int32_t aspect_ratio_info_present_flag;       ///< u(1)
    int32_t aspect_ratio_idc;                     ///< u(8), Table E.1
    int32_t sar_width;                            ///< u(16)
    int32_t sar_height;                           ///< u(16)
    int32_t overscan_info_present_flag;           ///< u(1)
    int32_t overscan_appropriate_flag;            ///< u(1)
    int32_t video_signal_type_present_flag;       ///< u(1)
    int32_t video_format;                         ///< u(3), Table E.2
    int32_t video_full_range_flag;                ///< u(1)
    int32_t colour_description_present_flag;      ///< u(1)
    int32_t colour_primaries;                     ///< u(8), Table E.3
    int32_t transfer_characteristics;             ///< u(8), Table E.4
    int32_t matrix_coeffs;                        ///< u(8), Table E.5
    int32_t chroma_loc_info_present_flag;         ///< u(1)
    int32_t chroma_sample_loc_type_top_field;     ///< ue(v), 0..5
    int32_t chroma_sample_loc_type_bottom_field;  ///< ue(v), 0..5
    int32_t neutral_chroma_indication_flag;       ///< u(1)
    int32_t field_seq_flag;                       ///< u(1)
    int32_t frame_field_info_present_flag;        ///< u(1); read by parserHevcPictureTiming
};

/// Reads the head of one sequence parameter set NAL unit (H.265 7.3.2.2), two-byte header included, from the
/// stream's position, and steps over emulation prevention bytes. No value is checked.
///
/// Logs profile space, tier, profile and level at information level; the record has no field for them.
///
/// \param[in,out] sps  the caller's record, zero-initialised or from an earlier parse
/// \param stream       the unit, shared for the duration of the call
/// \return false when sps is null or the stream is empty or missing (nothing is written or logged); true in
///         every other case, however short or malformed the data: missing bits read as 0.
QV_NALU_API bool parseHevcSps(QVHevcSps* sps, std::shared_ptr<QVByteStream> stream);

#endif
