/// \file
/// The sequence parameter set of H.265.
#ifndef QV_BITSTREAM_HEVC_SPS_H
#define QV_BITSTREAM_HEVC_SPS_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/hevc/NalUnitHeader.h"
#include "bitstream/hevc/ProfileTierLevel.h"
#include "bitstream/hevc/ScalingList.h"
#include "bitstream/hevc/ShortTermRefPicSet.h"
#include "bitstream/hevc/SpsExtensions.h"
#include "bitstream/hevc/Vui.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::hevc {

struct Vps;

/// A NAL unit of type 33: its header and seq_parameter_set_rbsp(), H.265 7.3.2.2 and 7.4.3.2, in the form
/// that F.7.3.2.2.1 gives it. An element that is not present has the value that its semantics infer,
/// otherwise 0.
///
/// The SPS of a layer above 0 may leave size, format and bit depths to the VPS; see multiLayerExtSpsFlag().
struct Sps {
    static constexpr uint32_t kMostShortTermRefPicSets = 64;  ///< the greatest num_short_term_ref_pic_sets
    static constexpr uint32_t kMostLongTermRefPics = 32;      ///< the greatest num_long_term_ref_pics_sps

    NalUnitHeader header;  ///< the NAL unit header

    uint32_t sps_video_parameter_set_id;        ///< u(4)
    uint32_t sps_ext_or_max_sub_layers_minus1;  ///< u(3); with nuh_layer_id above 0
    uint32_t sps_max_sub_layers_minus1;         ///< u(3), 0..6
    bool sps_temporal_id_nesting_flag;          ///< u(1)
    ProfileTierLevel profile_tier_level;        ///< all 0 with multiLayerExtSpsFlag()

    uint32_t sps_seq_parameter_set_id;  ///< ue(v), 0..15

    bool update_rep_format_flag;  ///< u(1)
    uint32_t sps_rep_format_idx;  ///< u(8), 0..vps_num_rep_formats_minus1; inferred from the VPS

    uint32_t chroma_format_idc;           ///< ue(v), 0..3
    bool separate_colour_plane_flag;      ///< u(1)
    uint32_t pic_width_in_luma_samples;   ///< ue(v), above 0
    uint32_t pic_height_in_luma_samples;  ///< ue(v), above 0
    bool conformance_window_flag;         ///< u(1)
    uint32_t conf_win_left_offset;        ///< ue(v), in SubWidthC
    uint32_t conf_win_right_offset;       ///< ue(v), in SubWidthC
    uint32_t conf_win_top_offset;         ///< ue(v), in SubHeightC
    uint32_t conf_win_bottom_offset;      ///< ue(v), in SubHeightC
    uint32_t bit_depth_luma_minus8;       ///< ue(v), 0..8
    uint32_t bit_depth_chroma_minus8;     ///< ue(v), 0..8

    uint32_t log2_max_pic_order_cnt_lsb_minus4;  ///< ue(v), 0..12

    /// For each sub-layer. Without sps_sub_layer_ordering_info_present_flag all have the values of the
    /// highest.
    bool sps_sub_layer_ordering_info_present_flag;
    uint32_t sps_max_dec_pic_buffering_minus1[kMostSubLayers];  ///< ue(v), 0..15
    uint32_t sps_max_num_reorder_pics[kMostSubLayers];        ///< ue(v), 0..sps_max_dec_pic_buffering_minus1
    uint32_t sps_max_latency_increase_plus1[kMostSubLayers];  ///< ue(v), 0..2^32 - 2

    uint32_t log2_min_luma_coding_block_size_minus3;       ///< ue(v), 0..3
    uint32_t log2_diff_max_min_luma_coding_block_size;     ///< ue(v); CtbLog2SizeY is at most 6
    uint32_t log2_min_luma_transform_block_size_minus2;    ///< ue(v); MinTbLog2SizeY is below MinCbLog2SizeY
    uint32_t log2_diff_max_min_luma_transform_block_size;  ///< ue(v); MaxTbLog2SizeY is at most 5
    uint32_t max_transform_hierarchy_depth_inter;          ///< ue(v), 0..CtbLog2SizeY - MinTbLog2SizeY
    uint32_t max_transform_hierarchy_depth_intra;          ///< ue(v), 0..CtbLog2SizeY - MinTbLog2SizeY

    bool scaling_list_enabled_flag;           ///< u(1)
    bool sps_infer_scaling_list_flag;         ///< u(1)
    uint32_t sps_scaling_list_ref_layer_id;   ///< u(6), 0..62
    bool sps_scaling_list_data_present_flag;  ///< u(1)

    bool amp_enabled_flag;                     ///< u(1)
    bool sample_adaptive_offset_enabled_flag;  ///< u(1)

    bool pcm_enabled_flag;                                  ///< u(1)
    uint32_t pcm_sample_bit_depth_luma_minus1;              ///< u(4), below the bit depth of luma
    uint32_t pcm_sample_bit_depth_chroma_minus1;            ///< u(4), below the bit depth of chroma
    uint32_t log2_min_pcm_luma_coding_block_size_minus3;    ///< ue(v); Log2MinIpcmCbSizeY is at most 5
    uint32_t log2_diff_max_min_pcm_luma_coding_block_size;  ///< ue(v); Log2MaxIpcmCbSizeY is at most 5
    bool pcm_loop_filter_disabled_flag;                     ///< u(1)

    uint32_t num_short_term_ref_pic_sets;  ///< ue(v), 0..64

    bool long_term_ref_pics_present_flag;  ///< u(1)
    uint32_t num_long_term_ref_pics_sps;   ///< ue(v), 0..32

    bool sps_temporal_mvp_enabled_flag;        ///< u(1)
    bool strong_intra_smoothing_enabled_flag;  ///< u(1)
    bool vui_parameters_present_flag;          ///< u(1)

    bool sps_extension_present_flag;     ///< u(1)
    bool sps_range_extension_flag;       ///< u(1)
    bool sps_multilayer_extension_flag;  ///< u(1)
    bool sps_3d_extension_flag;          ///< u(1)
    bool sps_scc_extension_flag;         ///< u(1)
    uint32_t sps_extension_4bits;        ///< u(4)
    SpsRangeExtension range;             ///< with sps_range_extension_flag
    SpsMultilayerExtension multilayer;   ///< with sps_multilayer_extension_flag
    Sps3dExtension three_d;              ///< with sps_3d_extension_flag
    SpsSccExtension scc;                 ///< with sps_scc_extension_flag
    CodedBits sps_extension_data_flag;   ///< extensions that this edition does not define

    Vui vui;  ///< with vui_parameters_present_flag, otherwise as inferred

    // Arrays come last: a read sets them as far as their counts go, not beyond.

    uint16_t
        lt_ref_pic_poc_lsb_sps[kMostLongTermRefPics];  ///< u(v), log2_max_pic_order_cnt_lsb_minus4 + 4 bits
    bool used_by_curr_pic_lt_sps_flag[kMostLongTermRefPics];             ///< u(1)
    uint16_t sps_palette_predictor_initializer[3][kMostPaletteEntries];  ///< u(v), the component's bit depth
    ScalingListData scaling_list_data;                                   ///< as coded; see ScalingFactors.h
    ShortTermRefPicSet st_ref_pic_set[kMostShortTermRefPicSets];  ///< num_short_term_ref_pic_sets of them
};

/// MultiLayerExtSpsFlag: true for an SPS of a layer above 0 that takes size, format, bit depths, profile and
/// buffering from its VPS (H.265 F.7.4.3.2.1).
constexpr bool multiLayerExtSpsFlag(const Sps& sps) {
    return sps.header.nuh_layer_id != 0 && sps.sps_ext_or_max_sub_layers_minus1 == 7;
}

/// ChromaArrayType: chroma_format_idc, or 0 for separate colour planes.
constexpr uint32_t chromaArrayType(const Sps& sps) {
    return sps.separate_colour_plane_flag ? 0 : sps.chroma_format_idc;
}

/// Reads a sequence parameter set.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \param vps   the VPS with the identifier sps_video_parameter_set_id, read without a fault, or null. Only
/// an
///              SPS with multiLayerExtSpsFlag() takes anything from it: sps_max_sub_layers_minus1 and the
///              elements of its rep_format(). Without it these are 0, and hrd_parameters() and the palette
///              initializers, which depend on them, are a fault of kind NoSuchSet.
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it.
Read<Sps> readSps(Bytes unit, const Vps* vps = nullptr) noexcept;

/// As readSps(), and hands each element to \p visitor.
Read<Sps> traceSps(Bytes unit, TraceVisitor& visitor, const Vps* vps = nullptr);

/// Writes a sequence parameter set as a NAL unit, emulation prevention bytes included, to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeSps(const Sps& sps, std::vector<uint8_t>& out, const Vps* vps = nullptr);

/// The bits that writeSps() would write, emulation prevention bytes left out.
Sized sizeOf(const Sps& sps, const Vps* vps = nullptr) noexcept;

}  // namespace qv::hevc

#endif
