// vui_parameters() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_VUISYNTAX_H
#define QV_BITSTREAM_HEVC_VUISYNTAX_H

#include "bitstream/hevc/HrdSyntax.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/names/SampleAspectRatio.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// The values of elements that are not present, E.3.1
template <class Syntax>
void infer_vui_parameters(Syntax& s, Vui& vui, const ProfileTier& general) {
    s.infer(vui.video_format, 5);
    s.infer(vui.colour_primaries, 2);
    s.infer(vui.transfer_characteristics, 2);
    s.infer(vui.matrix_coeffs, 2);
    s.infer(vui.frame_field_info_present_flag,
            general.progressive_source_flag && general.interlaced_source_flag);
    s.infer(vui.motion_vectors_over_pic_boundaries_flag, true);
    s.infer(vui.max_bytes_per_pic_denom, 2);
    s.infer(vui.max_bits_per_min_cu_denom, 1);
    s.infer(vui.log2_max_mv_length_horizontal, 15);
    s.infer(vui.log2_max_mv_length_vertical, 15);
}

template <class Syntax>
void video_signal_type(Syntax& s, Vui& vui) {
    s.flag("video_signal_type_present_flag", vui.video_signal_type_present_flag);
    if (vui.video_signal_type_present_flag) {
        s.u(3, "video_format", vui.video_format);
        s.flag("video_full_range_flag", vui.video_full_range_flag);
        s.flag("colour_description_present_flag", vui.colour_description_present_flag);
        if (vui.colour_description_present_flag) {
            s.u(8, "colour_primaries", vui.colour_primaries);
            s.u(8, "transfer_characteristics", vui.transfer_characteristics);
            s.u(8, "matrix_coeffs", vui.matrix_coeffs);
        }
    }
}

template <class Syntax>
void default_display_window(Syntax& s, Vui& vui) {
    s.flag("default_display_window_flag", vui.default_display_window_flag);
    if (vui.default_display_window_flag) {
        s.ue("def_disp_win_left_offset", vui.def_disp_win_left_offset);
        s.ue("def_disp_win_right_offset", vui.def_disp_win_right_offset);
        s.ue("def_disp_win_top_offset", vui.def_disp_win_top_offset);
        s.ue("def_disp_win_bottom_offset", vui.def_disp_win_bottom_offset);
    }
}

// What comes next is hrd_parameters(), when vui_hrd_parameters_present_flag is 1.
template <class Syntax>
void vui_timing_info(Syntax& s, Vui& vui) {
    s.flag("vui_timing_info_present_flag", vui.vui_timing_info_present_flag);
    if (vui.vui_timing_info_present_flag) {
        s.u(32, "vui_num_units_in_tick", vui.vui_num_units_in_tick, 1, UINT32_MAX);
        s.u(32, "vui_time_scale", vui.vui_time_scale, 1, UINT32_MAX);
        s.flag("vui_poc_proportional_to_timing_flag", vui.vui_poc_proportional_to_timing_flag);
        if (vui.vui_poc_proportional_to_timing_flag) {
            s.ue("vui_num_ticks_poc_diff_one_minus1", vui.vui_num_ticks_poc_diff_one_minus1);
        }
        s.flag("vui_hrd_parameters_present_flag", vui.vui_hrd_parameters_present_flag);
    }
}

template <class Syntax>
void bitstream_restriction(Syntax& s, Vui& vui) {
    s.flag("bitstream_restriction_flag", vui.bitstream_restriction_flag);
    if (vui.bitstream_restriction_flag) {
        s.flag("tiles_fixed_structure_flag", vui.tiles_fixed_structure_flag);
        s.flag("motion_vectors_over_pic_boundaries_flag", vui.motion_vectors_over_pic_boundaries_flag);
        s.flag("restricted_ref_pic_lists_flag", vui.restricted_ref_pic_lists_flag);
        s.ue("min_spatial_segmentation_idc", vui.min_spatial_segmentation_idc, 0, 4095);
        s.ue("max_bytes_per_pic_denom", vui.max_bytes_per_pic_denom, 0, 16);
        s.ue("max_bits_per_min_cu_denom", vui.max_bits_per_min_cu_denom, 0, 16);
        s.ue("log2_max_mv_length_horizontal", vui.log2_max_mv_length_horizontal, 0, 16);
        s.ue("log2_max_mv_length_vertical", vui.log2_max_mv_length_vertical, 0, 16);
    }
}

// vui_parameters(), E.2.1. hrd_parameters() has an entry for each sub-layer of the SPS.
template <class Syntax>
void vui_parameters(Syntax& s, Sps& sps, bool subLayersAreKnown) {
    static constexpr Structure kStructure = {"vui_parameters()", "E.2.1"};
    const Within<Syntax> within(s, kStructure);
    Vui& vui = sps.vui;
    s.flag("aspect_ratio_info_present_flag", vui.aspect_ratio_info_present_flag);
    if (vui.aspect_ratio_info_present_flag) {
        s.u(8, "aspect_ratio_idc", vui.aspect_ratio_idc);
        if (vui.aspect_ratio_idc == kExtendedSar) {
            s.u(16, "sar_width", vui.sar_width);
            s.u(16, "sar_height", vui.sar_height);
        }
    }
    s.flag("overscan_info_present_flag", vui.overscan_info_present_flag);
    if (vui.overscan_info_present_flag) {
        s.flag("overscan_appropriate_flag", vui.overscan_appropriate_flag);
    }
    video_signal_type(s, vui);
    s.flag("chroma_loc_info_present_flag", vui.chroma_loc_info_present_flag);
    if (vui.chroma_loc_info_present_flag) {
        s.ue("chroma_sample_loc_type_top_field", vui.chroma_sample_loc_type_top_field, 0, 5);
        s.ue("chroma_sample_loc_type_bottom_field", vui.chroma_sample_loc_type_bottom_field, 0, 5);
    }
    s.flag("neutral_chroma_indication_flag", vui.neutral_chroma_indication_flag);
    s.flag("field_seq_flag", vui.field_seq_flag);
    s.flag("frame_field_info_present_flag", vui.frame_field_info_present_flag);
    default_display_window(s, vui);
    vui_timing_info(s, vui);
    if (vui.vui_hrd_parameters_present_flag) {
        if (!subLayersAreKnown) {
            s.fail(FaultKind::NoSuchSet, "sps_video_parameter_set_id", sps.sps_video_parameter_set_id);
        }
        hrd_parameters(s, vui.hrd_parameters, true, sps.sps_max_sub_layers_minus1);
    }
    bitstream_restriction(s, vui);
}

}  // namespace qv::hevc

#endif
