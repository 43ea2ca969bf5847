#include "AvcSpsSyntax.h"

#include <algorithm>
#include <string>

#include "SyntaxElements.h"

namespace qv_test {

namespace {

// Each table of the standard is one function, for any Elements: ElementWriter reads the values, ElementCutter
// changes them.

template <class Elements, class Syntax>
void nalUnitHeader(Elements& out, Syntax& s) {
    out.u(1, "forbidden_zero_bit", s.forbidden_zero_bit);
    out.u(2, "nal_ref_idc", s.nal_ref_idc);
    out.u(5, "nal_unit_type", s.nal_unit_type);
}

// scaling_list(), 7.3.2.1.1.1, after its present flag
template <class Elements, class List>
void scalingList(Elements& out, List& list, const std::string& name) {
    out.u(1, "seq_scaling_list_present_flag" + name, list.seq_scaling_list_present_flag);
    if (list.seq_scaling_list_present_flag == 1) {
        for (size_t i = 0; i < list.delta_scale.size(); ++i) {
            out.se(indexed("delta_scale" + name, i), list.delta_scale[i]);
        }
    }
}

template <class Elements, class Syntax>
void chromaSyntax(Elements& out, Syntax& s) {
    out.ue("chroma_format_idc", s.chroma_format_idc);
    if (s.chroma_format_idc == 3) {
        out.u(1, "separate_colour_plane_flag", s.separate_colour_plane_flag);
    }
    out.ue("bit_depth_luma_minus8", s.bit_depth_luma_minus8);
    out.ue("bit_depth_chroma_minus8", s.bit_depth_chroma_minus8);
    out.u(1, "qpprime_y_zero_transform_bypass_flag", s.qpprime_y_zero_transform_bypass_flag);
    out.u(1, "seq_scaling_matrix_present_flag", s.seq_scaling_matrix_present_flag);
    if (s.seq_scaling_matrix_present_flag == 1) {
        for (size_t i = 0; i < (s.chroma_format_idc != 3 ? 8U : 12U); ++i) {
            scalingList(out, s.scalingLists[i], indexed("", i));
        }
    }
}

template <class Elements, class Syntax>
void picOrderCntSyntax(Elements& out, Syntax& s) {
    out.ue("pic_order_cnt_type", s.pic_order_cnt_type);
    if (s.pic_order_cnt_type == 0) {
        out.ue("log2_max_pic_order_cnt_lsb_minus4", s.log2_max_pic_order_cnt_lsb_minus4);
    } else if (s.pic_order_cnt_type == 1) {
        out.u(1, "delta_pic_order_always_zero_flag", s.delta_pic_order_always_zero_flag);
        out.se("offset_for_non_ref_pic", s.offset_for_non_ref_pic);
        out.se("offset_for_top_to_bottom_field", s.offset_for_top_to_bottom_field);
        out.ue("num_ref_frames_in_pic_order_cnt_cycle", s.num_ref_frames_in_pic_order_cnt_cycle);
        for (size_t i = 0; i < s.offset_for_ref_frame.size(); ++i) {
            out.se(indexed("offset_for_ref_frame", i), s.offset_for_ref_frame[i]);
        }
    }
}

// vui_parameters(), E.1.1, with nothing in it
template <class Elements>
void emptyVui(Elements& out) {
    for (const char* name :
         {"aspect_ratio_info_present_flag", "overscan_info_present_flag", "video_signal_type_present_flag",
          "chroma_loc_info_present_flag", "timing_info_present_flag", "nal_hrd_parameters_present_flag",
          "vcl_hrd_parameters_present_flag", "pic_struct_present_flag", "bitstream_restriction_flag"}) {
        uint32_t flag = 0;
        out.u(1, name, flag);
    }
}

// seq_parameter_set_data(), 7.3.2.1.1
template <class Elements, class Syntax>
void seqParameterSetData(Elements& out, Syntax& s) {
    out.u(8, "profile_idc", s.profile_idc);
    out.u(1, "constraint_set0_flag", s.constraint_set0_flag);
    out.u(1, "constraint_set1_flag", s.constraint_set1_flag);
    out.u(1, "constraint_set2_flag", s.constraint_set2_flag);
    out.u(1, "constraint_set3_flag", s.constraint_set3_flag);
    out.u(1, "constraint_set4_flag", s.constraint_set4_flag);
    out.u(1, "constraint_set5_flag", s.constraint_set5_flag);
    out.u(2, "reserved_zero_2bits", s.reserved_zero_2bits);
    out.u(8, "level_idc", s.level_idc);
    out.ue("seq_parameter_set_id", s.seq_parameter_set_id);
    if (s.writesChromaSyntax) {
        chromaSyntax(out, s);
    }
    out.ue("log2_max_frame_num_minus4", s.log2_max_frame_num_minus4);
    picOrderCntSyntax(out, s);
    out.ue("max_num_ref_frames", s.max_num_ref_frames);
    out.u(1, "gaps_in_frame_num_value_allowed_flag", s.gaps_in_frame_num_value_allowed_flag);
    out.ue("pic_width_in_mbs_minus1", s.pic_width_in_mbs_minus1);
    out.ue("pic_height_in_map_units_minus1", s.pic_height_in_map_units_minus1);
    out.u(1, "frame_mbs_only_flag", s.frame_mbs_only_flag);
    if (s.frame_mbs_only_flag == 0) {
        out.u(1, "mb_adaptive_frame_field_flag", s.mb_adaptive_frame_field_flag);
    }
    out.u(1, "direct_8x8_inference_flag", s.direct_8x8_inference_flag);
    out.u(1, "frame_cropping_flag", s.frame_cropping_flag);
    if (s.frame_cropping_flag == 1) {
        out.ue("frame_crop_left_offset", s.frame_crop_left_offset);
        out.ue("frame_crop_right_offset", s.frame_crop_right_offset);
        out.ue("frame_crop_top_offset", s.frame_crop_top_offset);
        out.ue("frame_crop_bottom_offset", s.frame_crop_bottom_offset);
    }
    out.u(1, "vui_parameters_present_flag", s.vui_parameters_present_flag);
    if (s.vui_parameters_present_flag == 1) {
        emptyVui(out);
    }
}

}  // namespace

BitWriter writeAvcSps(const AvcSpsSyntax& syntax) {
    ElementWriter out;
    nalUnitHeader(out, syntax);
    seqParameterSetData(out, syntax);
    out.trailingBits();
    return out.written();
}

BitWriter avcSps(const AvcSpsChange& change) {
    AvcSpsSyntax syntax;
    if (change) {
        change(syntax);
    }
    return writeAvcSps(syntax);
}

BitWriter highAvcSps(const AvcSpsChange& change) {
    AvcSpsSyntax syntax;
    syntax.profile_idc = 100;
    syntax.writesChromaSyntax = true;
    if (change) {
        change(syntax);
    }
    return writeAvcSps(syntax);
}

AvcSpsSyntax avcSpsCutAt(const AvcSpsSyntax& syntax, size_t bitCount) {
    AvcSpsSyntax cut = syntax;
    ElementCutter out(bitCount);
    nalUnitHeader(out, cut);
    seqParameterSetData(out, cut);
    cut.writesChromaSyntax = syntax.writesChromaSyntax && cut.profile_idc == syntax.profile_idc;
    cut.offset_for_ref_frame.resize(
        std::min<size_t>(cut.offset_for_ref_frame.size(), cut.num_ref_frames_in_pic_order_cnt_cycle));
    return cut;
}

}  // namespace qv_test
