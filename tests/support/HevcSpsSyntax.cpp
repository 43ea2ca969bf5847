#include "HevcSpsSyntax.h"

#include <string>

#include "SyntaxElements.h"

namespace qv_test {

namespace {

// Each table of the standard is one function, for any Elements: ElementWriter reads the values, ElementCutter
// changes them.

template <class Elements, class Syntax>
void nalUnitHeader(Elements& out, Syntax& s) {
    out.u(1, "forbidden_zero_bit", s.forbidden_zero_bit);
    out.u(6, "nal_unit_type", s.nal_unit_type);
    out.u(6, "nuh_layer_id", s.nuh_layer_id);
    out.u(3, "nuh_temporal_id_plus1", s.nuh_temporal_id_plus1);
}

template <class Elements, class Profile>
void profileSyntax(Elements& out, Profile& profile, const std::string& prefix, const std::string& suffix) {
    out.u(2, prefix + "profile_space" + suffix, profile.profile_space);
    out.u(1, prefix + "tier_flag" + suffix, profile.tier_flag);
    out.u(5, prefix + "profile_idc" + suffix, profile.profile_idc);
    out.u(32, prefix + "profile_compatibility_flags" + suffix, profile.profile_compatibility_flags);
    out.u(1, prefix + "progressive_source_flag" + suffix, profile.progressive_source_flag);
    out.u(1, prefix + "interlaced_source_flag" + suffix, profile.interlaced_source_flag);
    out.u(1, prefix + "non_packed_constraint_flag" + suffix, profile.non_packed_constraint_flag);
    out.u(1, prefix + "frame_only_constraint_flag" + suffix, profile.frame_only_constraint_flag);
    out.u(43, prefix + "reserved_zero_43bits" + suffix, profile.reserved_zero_43bits);
    out.u(1, prefix + "inbld_flag" + suffix, profile.inbld_flag);
}

// profile_tier_level(1, sps_max_sub_layers_minus1), 7.3.3
template <class Elements, class Syntax>
void profileTierLevel(Elements& out, Syntax& s) {
    profileSyntax(out, s.general, "general_", "");
    out.u(8, "general_level_idc", s.general_level_idc);
    for (size_t i = 0; i < s.sps_max_sub_layers_minus1; ++i) {
        out.u(1, indexed("sub_layer_profile_present_flag", i), s.subLayers[i].sub_layer_profile_present_flag);
        out.u(1, indexed("sub_layer_level_present_flag", i), s.subLayers[i].sub_layer_level_present_flag);
    }
    if (s.sps_max_sub_layers_minus1 > 0) {
        for (size_t i = s.sps_max_sub_layers_minus1; i < 8; ++i) {
            out.u(2, indexed("reserved_zero_2bits", i), s.reserved_zero_2bits);
        }
    }
    for (size_t i = 0; i < s.sps_max_sub_layers_minus1; ++i) {
        if (s.subLayers[i].sub_layer_profile_present_flag == 1) {
            profileSyntax(out, s.subLayers[i].profile, "sub_layer_", indexed("", i));
        }
        if (s.subLayers[i].sub_layer_level_present_flag == 1) {
            out.u(8, indexed("sub_layer_level_idc", i), s.subLayers[i].sub_layer_level_idc);
        }
    }
}

template <class Elements, class Syntax>
void pictureSize(Elements& out, Syntax& s) {
    out.ue("pic_width_in_luma_samples", s.pic_width_in_luma_samples);
    out.ue("pic_height_in_luma_samples", s.pic_height_in_luma_samples);
    out.u(1, "conformance_window_flag", s.conformance_window_flag);
    if (s.conformance_window_flag == 1) {
        out.ue("conf_win_left_offset", s.conf_win_left_offset);
        out.ue("conf_win_right_offset", s.conf_win_right_offset);
        out.ue("conf_win_top_offset", s.conf_win_top_offset);
        out.ue("conf_win_bottom_offset", s.conf_win_bottom_offset);
    }
}

// The elements after sps_sub_layer_ordering_info_present_flag, in their shortest form.
template <class Elements, class Syntax>
void rest(Elements& out, Syntax& s) {
    uint32_t zero = 0;
    uint32_t one = 1;
    const size_t first =
        s.sps_sub_layer_ordering_info_present_flag == 1 ? 0 : size_t{s.sps_max_sub_layers_minus1};
    for (size_t i = first; i <= s.sps_max_sub_layers_minus1; ++i) {
        out.ue(indexed("sps_max_dec_pic_buffering_minus1", i), zero);
        out.ue(indexed("sps_max_num_reorder_pics", i), zero);
        out.ue(indexed("sps_max_latency_increase_plus1", i), zero);
    }
    out.ue("log2_min_luma_coding_block_size_minus3", zero);
    out.ue("log2_diff_max_min_luma_coding_block_size", one);
    out.ue("log2_min_luma_transform_block_size_minus2", zero);
    out.ue("log2_diff_max_min_luma_transform_block_size", zero);
    out.ue("max_transform_hierarchy_depth_inter", zero);
    out.ue("max_transform_hierarchy_depth_intra", zero);
    out.u(1, "scaling_list_enabled_flag", zero);
    out.u(1, "amp_enabled_flag", zero);
    out.u(1, "sample_adaptive_offset_enabled_flag", zero);
    out.u(1, "pcm_enabled_flag", zero);
    out.ue("num_short_term_ref_pic_sets", zero);
    out.u(1, "long_term_ref_pics_present_flag", zero);
    out.u(1, "sps_temporal_mvp_enabled_flag", zero);
    out.u(1, "strong_intra_smoothing_enabled_flag", zero);
    out.u(1, "vui_parameters_present_flag", zero);
    out.u(1, "sps_extension_present_flag", zero);
    out.trailingBits();
}

// seq_parameter_set_rbsp(), 7.3.2.2.1
template <class Elements, class Syntax>
void seqParameterSet(Elements& out, Syntax& s) {
    out.u(4, "sps_video_parameter_set_id", s.sps_video_parameter_set_id);
    out.u(3, "sps_max_sub_layers_minus1", s.sps_max_sub_layers_minus1);
    out.u(1, "sps_temporal_id_nesting_flag", s.sps_temporal_id_nesting_flag);
    profileTierLevel(out, s);
    out.ue("sps_seq_parameter_set_id", s.sps_seq_parameter_set_id);
    out.ue("chroma_format_idc", s.chroma_format_idc);
    if (s.chroma_format_idc == 3) {
        out.u(1, "separate_colour_plane_flag", s.separate_colour_plane_flag);
    }
    pictureSize(out, s);
    out.ue("bit_depth_luma_minus8", s.bit_depth_luma_minus8);
    out.ue("bit_depth_chroma_minus8", s.bit_depth_chroma_minus8);
    out.ue("log2_max_pic_order_cnt_lsb_minus4", s.log2_max_pic_order_cnt_lsb_minus4);
    out.u(1, "sps_sub_layer_ordering_info_present_flag", s.sps_sub_layer_ordering_info_present_flag);
    rest(out, s);
}

}  // namespace

BitWriter writeHevcSps(const HevcSpsSyntax& syntax) {
    ElementWriter out;
    nalUnitHeader(out, syntax);
    seqParameterSet(out, syntax);
    return out.written();
}

BitWriter hevcSps(const HevcSpsChange& change) {
    HevcSpsSyntax syntax;
    if (change) {
        change(syntax);
    }
    return writeHevcSps(syntax);
}

HevcSpsSyntax hevcSpsCutAt(const HevcSpsSyntax& syntax, size_t bitCount) {
    HevcSpsSyntax cut = syntax;
    ElementCutter out(bitCount);
    nalUnitHeader(out, cut);
    seqParameterSet(out, cut);
    return cut;
}

}  // namespace qv_test
