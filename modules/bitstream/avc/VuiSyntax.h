// vui_parameters() of H.264 as a syntax function.
#ifndef QV_BITSTREAM_AVC_VUISYNTAX_H
#define QV_BITSTREAM_AVC_VUISYNTAX_H

#include "bitstream/avc/HrdSyntax.h"
#include "bitstream/avc/Vui.h"
#include "bitstream/names/SampleAspectRatio.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// The greatest MaxDpbFrames: of one view (A.3.1), and of 1024 views (H.10.2.1).
constexpr uint32_t kMostMaxDpbFrames = 16;
constexpr uint32_t kMostMaxDpbFramesOfViews = 160;

// Values of elements that are not present, E.2.1. They hold without vui_parameters() as well.
template <class Syntax>
void infer_vui_parameters(Syntax& s, Vui& vui) {
    s.infer(vui.video_format, 5);
    s.infer(vui.colour_primaries, 2);
    s.infer(vui.transfer_characteristics, 2);
    s.infer(vui.matrix_coefficients, 2);
    s.infer(vui.motion_vectors_over_pic_boundaries_flag, true);
    s.infer(vui.max_bytes_per_pic_denom, 2);
    s.infer(vui.max_bits_per_mb_denom, 1);
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
            s.u(8, "matrix_coefficients", vui.matrix_coefficients);
        }
    }
}

template <class Syntax>
void bitstream_restriction(Syntax& s, Vui& vui, uint32_t mostDpbFrames) {
    s.flag("bitstream_restriction_flag", vui.bitstream_restriction_flag);
    if (vui.bitstream_restriction_flag) {
        s.flag("motion_vectors_over_pic_boundaries_flag", vui.motion_vectors_over_pic_boundaries_flag);
        s.ue("max_bytes_per_pic_denom", vui.max_bytes_per_pic_denom, 0, 16);
        s.ue("max_bits_per_mb_denom", vui.max_bits_per_mb_denom, 0, 16);
        // Up to 15; earlier editions allow 16.
        s.ue("log2_max_mv_length_horizontal", vui.log2_max_mv_length_horizontal, 0, 16);
        s.ue("log2_max_mv_length_vertical", vui.log2_max_mv_length_vertical, 0, 16);
        s.ue("max_num_reorder_frames", vui.max_num_reorder_frames, 0, mostDpbFrames);
        s.ue("max_dec_frame_buffering", vui.max_dec_frame_buffering, 0, mostDpbFrames);
    }
}

// vui_parameters(), E.1.1
template <class Syntax>
void vui_parameters(Syntax& s, Vui& vui, uint32_t mostDpbFrames) {
    static constexpr Structure kStructure = {"vui_parameters()", "E.1.1"};
    const Within<Syntax> within(s, kStructure);
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
    s.flag("timing_info_present_flag", vui.timing_info_present_flag);
    if (vui.timing_info_present_flag) {
        s.u(32, "num_units_in_tick", vui.num_units_in_tick, 1, UINT32_MAX);
        s.u(32, "time_scale", vui.time_scale, 1, UINT32_MAX);
        s.flag("fixed_frame_rate_flag", vui.fixed_frame_rate_flag);
    }
    s.flag("nal_hrd_parameters_present_flag", vui.nal_hrd_parameters_present_flag);
    if (vui.nal_hrd_parameters_present_flag) {
        hrd_parameters(s, vui.nal_hrd_parameters);
    }
    s.flag("vcl_hrd_parameters_present_flag", vui.vcl_hrd_parameters_present_flag);
    if (vui.vcl_hrd_parameters_present_flag) {
        hrd_parameters(s, vui.vcl_hrd_parameters);
    }
    if (vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag) {
        s.flag("low_delay_hrd_flag", vui.low_delay_hrd_flag);
    }
    s.flag("pic_struct_present_flag", vui.pic_struct_present_flag);
    bitstream_restriction(s, vui, mostDpbFrames);
}

}  // namespace qv::avc

#endif
