// seq_parameter_set_data() of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_SPSSYNTAX_H
#define QV_BITSTREAM_AVC_SPSSYNTAX_H

#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/avc/ScalingListSyntax.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/avc/VuiSyntax.h"
#include "bitstream/names/AvcProfiles.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

constexpr uint32_t kChromaFormat444 = 3;

// The profiles whose parameter sets have chroma_format_idc and what follows it, 7.3.2.1.1.
constexpr bool hasChromaSyntax(uint32_t profile_idc) {
    switch (profile_idc) {
        case 44:
        case 83:
        case 86:
        case 100:
        case 110:
        case 118:
        case 122:
        case 128:
        case 134:
        case 135:
        case 138:
        case 139:
        case 244:
            return true;
        default:
            return false;
    }
}

template <class Syntax>
void chroma_format(Syntax& s, SpsData& sps) {
    s.ue("chroma_format_idc", sps.chroma_format_idc, 0, 3);
    if (sps.chroma_format_idc == kChromaFormat444) {
        s.flag("separate_colour_plane_flag", sps.separate_colour_plane_flag);
    }
    s.ue("bit_depth_luma_minus8", sps.bit_depth_luma_minus8, 0, 6);
    s.ue("bit_depth_chroma_minus8", sps.bit_depth_chroma_minus8, 0, 6);
    s.flag("qpprime_y_zero_transform_bypass_flag", sps.qpprime_y_zero_transform_bypass_flag);
    s.flag("seq_scaling_matrix_present_flag", sps.seq_scaling_matrix_present_flag);
    if (sps.seq_scaling_matrix_present_flag) {
        scaling_matrix(s, sps.scaling_matrix, "seq_scaling_list_present_flag",
                       sps.chroma_format_idc != kChromaFormat444 ? 8 : 12);
    }
}

template <class Syntax>
void pic_order_cnt(Syntax& s, SpsData& sps) {
    s.ue("pic_order_cnt_type", sps.pic_order_cnt_type, 0, 2);
    if (sps.pic_order_cnt_type == 0) {
        s.ue("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_pic_order_cnt_lsb_minus4, 0, 12);
    } else if (sps.pic_order_cnt_type == 1) {
        s.flag("delta_pic_order_always_zero_flag", sps.delta_pic_order_always_zero_flag);
        s.se("offset_for_non_ref_pic", sps.offset_for_non_ref_pic);
        s.se("offset_for_top_to_bottom_field", sps.offset_for_top_to_bottom_field);
        s.ue("num_ref_frames_in_pic_order_cnt_cycle", sps.num_ref_frames_in_pic_order_cnt_cycle, 0, 255);
        for (uint32_t i = 0; i < sps.num_ref_frames_in_pic_order_cnt_cycle; ++i) {
            s.se(at("offset_for_ref_frame", i), sps.offset_for_ref_frame[i]);
        }
    }
}

// seq_parameter_set_data(), 7.3.2.1.1
template <class Syntax>
void seq_parameter_set_data(Syntax& s, SpsData& sps) {
    static constexpr Structure kStructure = {"seq_parameter_set_data()", "7.3.2.1.1"};
    const Within<Syntax> within(s, kStructure);
    s.u(8, "profile_idc", sps.profile_idc);
    s.flag("constraint_set0_flag", sps.constraint_set0_flag);
    s.flag("constraint_set1_flag", sps.constraint_set1_flag);
    s.flag("constraint_set2_flag", sps.constraint_set2_flag);
    s.flag("constraint_set3_flag", sps.constraint_set3_flag);
    s.flag("constraint_set4_flag", sps.constraint_set4_flag);
    s.flag("constraint_set5_flag", sps.constraint_set5_flag);
    s.u(2, "reserved_zero_2bits", sps.reserved_zero_2bits);
    s.u(8, "level_idc", sps.level_idc);
    s.ue("seq_parameter_set_id", sps.seq_parameter_set_id, 0, 31);
    s.infer(sps.chroma_format_idc, 1);
    if (hasChromaSyntax(sps.profile_idc)) {
        chroma_format(s, sps);
    }
    s.ue("log2_max_frame_num_minus4", sps.log2_max_frame_num_minus4, 0, 12);
    pic_order_cnt(s, sps);
    s.ue("max_num_ref_frames", sps.max_num_ref_frames, 0, kMostMaxDpbFrames);
    s.flag("gaps_in_frame_num_value_allowed_flag", sps.gaps_in_frame_num_value_allowed_flag);
    s.ue("pic_width_in_mbs_minus1", sps.pic_width_in_mbs_minus1);
    s.ue("pic_height_in_map_units_minus1", sps.pic_height_in_map_units_minus1);
    s.flag("frame_mbs_only_flag", sps.frame_mbs_only_flag);
    if (!sps.frame_mbs_only_flag) {
        s.flag("mb_adaptive_frame_field_flag", sps.mb_adaptive_frame_field_flag);
    }
    s.flag("direct_8x8_inference_flag", sps.direct_8x8_inference_flag);
    s.flag("frame_cropping_flag", sps.frame_cropping_flag);
    if (sps.frame_cropping_flag) {
        s.ue("frame_crop_left_offset", sps.frame_crop_left_offset);
        s.ue("frame_crop_right_offset", sps.frame_crop_right_offset);
        s.ue("frame_crop_top_offset", sps.frame_crop_top_offset);
        s.ue("frame_crop_bottom_offset", sps.frame_crop_bottom_offset);
    }
    infer_vui_parameters(s, sps.vui);
    s.flag("vui_parameters_present_flag", sps.vui_parameters_present_flag);
    if (sps.vui_parameters_present_flag) {
        vui_parameters(s, sps.vui,
                       isMultiview(sps.profile_idc) ? kMostMaxDpbFramesOfViews : kMostMaxDpbFrames);
    }
}

// seq_parameter_set_rbsp(), 7.3.2.1
template <class Syntax>
void seq_parameter_set_rbsp(Syntax& s, SpsData& sps) {
    static constexpr Structure kStructure = {"seq_parameter_set_rbsp()", "7.3.2.1"};
    const Within<Syntax> within(s, kStructure);
    seq_parameter_set_data(s, sps);
    s.rbsp_trailing_bits();
}

// A unit of type 7: nal_unit(), 7.3.1, with seq_parameter_set_rbsp()
template <class Syntax>
void seq_parameter_set_unit(Syntax& s, Sps& sps) {
    nal_unit_of(s, sps.header, kNalSps);
    seq_parameter_set_rbsp(s, sps.data);
}

}  // namespace qv::avc

#endif
