// seq_parameter_set_rbsp() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_SPSSYNTAX_H
#define QV_BITSTREAM_HEVC_SPSSYNTAX_H

#include "bitstream/hevc/Dpb.h"
#include "bitstream/hevc/NalUnitHeaderSyntax.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/ProfileTierLevelSyntax.h"
#include "bitstream/hevc/ScalingListSyntax.h"
#include "bitstream/hevc/ShortTermRefPicSetSyntax.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/hevc/SpsExtensionsSyntax.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/hevc/VuiSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

constexpr uint32_t kChromaFormat444 = 3;

// The rep_format() of an SPS that takes its format from the VPS; null when the VPS has none for it.
const RepFormat* repFormatOf(const Sps& sps, const Vps* vps) noexcept;

// What an SPS with MultiLayerExtSpsFlag takes from its VPS, within the ranges that bound what follows. These
// are no values of a record that a writer checks, so they are set in every use.
void inferSubLayers(Sps& sps, const Vps* vps) noexcept;
void inferFormat(Sps& sps, const RepFormat* format) noexcept;

template <class Syntax>
void sps_sub_layers(Syntax& s, Sps& sps, const Vps* vps) {
    if (sps.header.nuh_layer_id == 0) {
        sps.sps_ext_or_max_sub_layers_minus1 = 0;
        s.u(3, "sps_max_sub_layers_minus1", sps.sps_max_sub_layers_minus1, 0, kMostSubLayers - 1);
    } else {
        s.u(3, "sps_ext_or_max_sub_layers_minus1", sps.sps_ext_or_max_sub_layers_minus1);
        sps.sps_max_sub_layers_minus1 = sps.sps_ext_or_max_sub_layers_minus1;
    }
    if (multiLayerExtSpsFlag(sps)) {
        inferSubLayers(sps, vps);
        return;
    }
    s.flag("sps_temporal_id_nesting_flag", sps.sps_temporal_id_nesting_flag);
    profile_tier_level(s, sps.profile_tier_level, true, sps.sps_max_sub_layers_minus1);
}

template <class Syntax>
void sps_rep_format(Syntax& s, Sps& sps, const Vps* vps) {
    s.flag("update_rep_format_flag", sps.update_rep_format_flag);
    if (sps.update_rep_format_flag) {
        s.u(8, "sps_rep_format_idx", sps.sps_rep_format_idx, 0,
            vps != nullptr ? lesser(vps->extension.vps_num_rep_formats_minus1, 255) : 255);
    }
    inferFormat(sps, repFormatOf(sps, vps));
}

template <class Syntax>
void sps_format(Syntax& s, Sps& sps) {
    s.ue("chroma_format_idc", sps.chroma_format_idc, 0, 3);
    if (sps.chroma_format_idc == kChromaFormat444) {
        s.flag("separate_colour_plane_flag", sps.separate_colour_plane_flag);
    }
    s.ue("pic_width_in_luma_samples", sps.pic_width_in_luma_samples, 1);
    s.ue("pic_height_in_luma_samples", sps.pic_height_in_luma_samples, 1);
    s.flag("conformance_window_flag", sps.conformance_window_flag);
    if (sps.conformance_window_flag) {
        s.ue("conf_win_left_offset", sps.conf_win_left_offset);
        s.ue("conf_win_right_offset", sps.conf_win_right_offset);
        s.ue("conf_win_top_offset", sps.conf_win_top_offset);
        s.ue("conf_win_bottom_offset", sps.conf_win_bottom_offset);
    }
    s.ue("bit_depth_luma_minus8", sps.bit_depth_luma_minus8, 0, 8);
    s.ue("bit_depth_chroma_minus8", sps.bit_depth_chroma_minus8, 0, 8);
}

template <class Syntax>
void sps_sub_layer_ordering_info(Syntax& s, Sps& sps) {
    const uint32_t highest = sps.sps_max_sub_layers_minus1;
    s.flag("sps_sub_layer_ordering_info_present_flag", sps.sps_sub_layer_ordering_info_present_flag);
    const uint32_t first = sps.sps_sub_layer_ordering_info_present_flag ? 0 : highest;
    for (uint32_t i = first; i <= highest; ++i) {
        s.ue(at("sps_max_dec_pic_buffering_minus1", i), sps.sps_max_dec_pic_buffering_minus1[i], 0,
             kMostMaxDpbSize - 1);
        s.ue(at("sps_max_num_reorder_pics", i), sps.sps_max_num_reorder_pics[i], 0,
             sps.sps_max_dec_pic_buffering_minus1[i]);
        s.ue(at("sps_max_latency_increase_plus1", i), sps.sps_max_latency_increase_plus1[i]);
    }
    for (uint32_t i = 0; i < first; ++i) {
        s.infer(sps.sps_max_dec_pic_buffering_minus1[i], sps.sps_max_dec_pic_buffering_minus1[highest]);
        s.infer(sps.sps_max_num_reorder_pics[i], sps.sps_max_num_reorder_pics[highest]);
        s.infer(sps.sps_max_latency_increase_plus1[i], sps.sps_max_latency_increase_plus1[highest]);
    }
}

template <class Syntax>
void sps_block_sizes(Syntax& s, Sps& sps) {
    s.ue("log2_min_luma_coding_block_size_minus3", sps.log2_min_luma_coding_block_size_minus3, 0, 3);
    const uint32_t minCbLog2SizeY = sps.log2_min_luma_coding_block_size_minus3 + 3;
    s.ue("log2_diff_max_min_luma_coding_block_size", sps.log2_diff_max_min_luma_coding_block_size, 0,
         6 - minCbLog2SizeY);
    const uint32_t ctbLog2SizeY = minCbLog2SizeY + sps.log2_diff_max_min_luma_coding_block_size;
    s.ue("log2_min_luma_transform_block_size_minus2", sps.log2_min_luma_transform_block_size_minus2, 0,
         lesser(minCbLog2SizeY - 1, 5) - 2);
    const uint32_t minTbLog2SizeY = sps.log2_min_luma_transform_block_size_minus2 + 2;
    s.ue("log2_diff_max_min_luma_transform_block_size", sps.log2_diff_max_min_luma_transform_block_size, 0,
         lesser(ctbLog2SizeY, 5) - minTbLog2SizeY);
    s.ue("max_transform_hierarchy_depth_inter", sps.max_transform_hierarchy_depth_inter, 0,
         ctbLog2SizeY - minTbLog2SizeY);
    s.ue("max_transform_hierarchy_depth_intra", sps.max_transform_hierarchy_depth_intra, 0,
         ctbLog2SizeY - minTbLog2SizeY);
}

template <class Syntax>
void sps_scaling_list(Syntax& s, Sps& sps) {
    s.flag("scaling_list_enabled_flag", sps.scaling_list_enabled_flag);
    if (!sps.scaling_list_enabled_flag) {
        return;
    }
    if (multiLayerExtSpsFlag(sps)) {
        s.flag("sps_infer_scaling_list_flag", sps.sps_infer_scaling_list_flag);
    } else {
        sps.sps_infer_scaling_list_flag = false;
    }
    if (sps.sps_infer_scaling_list_flag) {
        s.u(6, "sps_scaling_list_ref_layer_id", sps.sps_scaling_list_ref_layer_id, 0, 62);
        return;
    }
    s.flag("sps_scaling_list_data_present_flag", sps.sps_scaling_list_data_present_flag);
    if (sps.sps_scaling_list_data_present_flag) {
        scaling_list_data(s, sps.scaling_list_data);
    }
}

template <class Syntax>
void sps_pcm(Syntax& s, Sps& sps, bool formatIsKnown) {
    s.flag("pcm_enabled_flag", sps.pcm_enabled_flag);
    if (!sps.pcm_enabled_flag) {
        return;
    }
    s.u(4, "pcm_sample_bit_depth_luma_minus1", sps.pcm_sample_bit_depth_luma_minus1, 0,
        formatIsKnown ? sps.bit_depth_luma_minus8 + 7 : 15);
    s.u(4, "pcm_sample_bit_depth_chroma_minus1", sps.pcm_sample_bit_depth_chroma_minus1, 0,
        formatIsKnown ? sps.bit_depth_chroma_minus8 + 7 : 15);
    const uint32_t minCbLog2SizeY = sps.log2_min_luma_coding_block_size_minus3 + 3;
    const uint32_t ctbLog2SizeY = minCbLog2SizeY + sps.log2_diff_max_min_luma_coding_block_size;
    s.ue("log2_min_pcm_luma_coding_block_size_minus3", sps.log2_min_pcm_luma_coding_block_size_minus3,
         lesser(minCbLog2SizeY, 5) - 3, lesser(ctbLog2SizeY, 5) - 3);
    s.ue("log2_diff_max_min_pcm_luma_coding_block_size", sps.log2_diff_max_min_pcm_luma_coding_block_size, 0,
         lesser(ctbLog2SizeY, 5) - 3 - sps.log2_min_pcm_luma_coding_block_size_minus3);
    s.flag("pcm_loop_filter_disabled_flag", sps.pcm_loop_filter_disabled_flag);
}

template <class Syntax>
void sps_ref_pic_sets(Syntax& s, Sps& sps) {
    s.ue("num_short_term_ref_pic_sets", sps.num_short_term_ref_pic_sets, 0, Sps::kMostShortTermRefPicSets);
    for (uint32_t i = 0; i < sps.num_short_term_ref_pic_sets; ++i) {
        st_ref_pic_set(s, sps.st_ref_pic_set, sps.num_short_term_ref_pic_sets, i, sps.st_ref_pic_set[i]);
    }
    s.flag("long_term_ref_pics_present_flag", sps.long_term_ref_pics_present_flag);
    if (sps.long_term_ref_pics_present_flag) {
        s.ue("num_long_term_ref_pics_sps", sps.num_long_term_ref_pics_sps, 0, Sps::kMostLongTermRefPics);
        for (uint32_t i = 0; i < sps.num_long_term_ref_pics_sps; ++i) {
            s.u(sps.log2_max_pic_order_cnt_lsb_minus4 + 4, at("lt_ref_pic_poc_lsb_sps", i),
                sps.lt_ref_pic_poc_lsb_sps[i]);
            s.flag(at("used_by_curr_pic_lt_sps_flag", i), sps.used_by_curr_pic_lt_sps_flag[i]);
        }
    }
}

template <class Syntax>
void sps_extensions(Syntax& s, Sps& sps, bool formatIsKnown) {
    s.flag("sps_extension_present_flag", sps.sps_extension_present_flag);
    if (!sps.sps_extension_present_flag) {
        return;
    }
    s.flag("sps_range_extension_flag", sps.sps_range_extension_flag);
    s.flag("sps_multilayer_extension_flag", sps.sps_multilayer_extension_flag);
    s.flag("sps_3d_extension_flag", sps.sps_3d_extension_flag);
    s.flag("sps_scc_extension_flag", sps.sps_scc_extension_flag);
    s.u(4, "sps_extension_4bits", sps.sps_extension_4bits);
    if (sps.sps_range_extension_flag) {
        sps_range_extension(s, sps.range);
    }
    if (sps.sps_multilayer_extension_flag) {
        sps_multilayer_extension(s, sps.multilayer);
    }
    if (sps.sps_3d_extension_flag) {
        sps_3d_extension(s, sps.three_d);
    }
    if (sps.sps_scc_extension_flag) {
        sps_scc_extension(s, sps, formatIsKnown);
    }
    if (sps.sps_extension_4bits != 0) {
        s.extension_data("sps_extension_data_flag", sps.sps_extension_data_flag);
    }
}

// seq_parameter_set_rbsp(), 7.3.2.2.1 and F.7.3.2.2.1
template <class Syntax>
void seq_parameter_set_rbsp(Syntax& s, Sps& sps, const Vps* vps) {
    static constexpr Structure kStructure = {"seq_parameter_set_rbsp()", "7.3.2.2.1"};
    const Within<Syntax> within(s, kStructure);
    s.u(4, "sps_video_parameter_set_id", sps.sps_video_parameter_set_id);
    sps_sub_layers(s, sps, vps);
    s.ue("sps_seq_parameter_set_id", sps.sps_seq_parameter_set_id, 0, 15);
    if (multiLayerExtSpsFlag(sps)) {
        sps_rep_format(s, sps, vps);
    } else {
        sps_format(s, sps);
    }
    s.ue("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_pic_order_cnt_lsb_minus4, 0, 12);
    if (!multiLayerExtSpsFlag(sps)) {
        sps_sub_layer_ordering_info(s, sps);
    }
    sps_block_sizes(s, sps);
    sps_scaling_list(s, sps);
    s.flag("amp_enabled_flag", sps.amp_enabled_flag);
    s.flag("sample_adaptive_offset_enabled_flag", sps.sample_adaptive_offset_enabled_flag);
    const bool formatIsKnown = !multiLayerExtSpsFlag(sps) || repFormatOf(sps, vps) != nullptr;
    sps_pcm(s, sps, formatIsKnown);
    sps_ref_pic_sets(s, sps);
    s.flag("sps_temporal_mvp_enabled_flag", sps.sps_temporal_mvp_enabled_flag);
    s.flag("strong_intra_smoothing_enabled_flag", sps.strong_intra_smoothing_enabled_flag);
    infer_vui_parameters(s, sps.vui, sps.profile_tier_level.general);
    s.flag("vui_parameters_present_flag", sps.vui_parameters_present_flag);
    if (sps.vui_parameters_present_flag) {
        vui_parameters(s, sps, !multiLayerExtSpsFlag(sps) || vps != nullptr);
    }
    sps_extensions(s, sps, formatIsKnown);
}

// A unit of type 33
template <class Syntax>
void seq_parameter_set_unit(Syntax& s, Sps& sps, const Vps* vps) {
    nal_unit_of(s, sps.header, kNalSps);
    seq_parameter_set_rbsp(s, sps, vps);
    s.rbsp_trailing_bits();
}

}  // namespace qv::hevc

#endif
