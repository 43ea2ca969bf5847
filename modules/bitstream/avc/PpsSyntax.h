// pic_parameter_set_rbsp() of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_PPSSYNTAX_H
#define QV_BITSTREAM_AVC_PPSSYNTAX_H

#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/avc/Pps.h"
#include "bitstream/avc/ScalingListSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// 26 + QpBdOffsetY of samples of 14 bits, the greatest bit depth.
constexpr int32_t kLeastPicInitQp = -62;

// Bits of slice_group_id, 7.4.2.2.
constexpr uint32_t sliceGroupIdBits(uint32_t num_slice_groups_minus1) {
    return detail::ceilLog2(num_slice_groups_minus1 + 1);
}

// slice_group_id has as many entries as the picture has map units, so the record keeps its bits.
template <class Syntax>
void slice_group_ids(Syntax& s, Pps& pps) {
    s.ue("pic_size_in_map_units_minus1", pps.pic_size_in_map_units_minus1, 0, Pps::kMostMapUnits - 1);
    s.keep(pps.slice_group_id, [&pps](auto& in) {
        const uint32_t width = sliceGroupIdBits(pps.num_slice_groups_minus1);
        for (uint32_t i = 0; i <= pps.pic_size_in_map_units_minus1 && !in.failed(); ++i) {
            uint32_t slice_group_id = 0;
            in.u(width, at("slice_group_id", i), slice_group_id, 0, pps.num_slice_groups_minus1);
        }
    });
}

template <class Syntax>
void slice_groups(Syntax& s, Pps& pps) {
    s.ue("slice_group_map_type", pps.slice_group_map_type, 0, 6);
    switch (pps.slice_group_map_type) {
        case 0:
            for (uint32_t iGroup = 0; iGroup <= pps.num_slice_groups_minus1; ++iGroup) {
                s.ue(at("run_length_minus1", iGroup), pps.run_length_minus1[iGroup]);
            }
            break;
        case 2:
            for (uint32_t iGroup = 0; iGroup < pps.num_slice_groups_minus1; ++iGroup) {
                s.ue(at("top_left", iGroup), pps.top_left[iGroup]);
                s.ue(at("bottom_right", iGroup), pps.bottom_right[iGroup]);
            }
            break;
        case 3:
        case 4:
        case 5:
            s.flag("slice_group_change_direction_flag", pps.slice_group_change_direction_flag);
            s.ue("slice_group_change_rate_minus1", pps.slice_group_change_rate_minus1);
            break;
        case 6:
            slice_group_ids(s, pps);
            break;
        default:
            break;
    }
}

template <class Syntax>
void transform_8x8(Syntax& s, Pps& pps, uint32_t chroma_format_idc) {
    s.flag("transform_8x8_mode_flag", pps.transform_8x8_mode_flag);
    s.flag("pic_scaling_matrix_present_flag", pps.pic_scaling_matrix_present_flag);
    if (pps.pic_scaling_matrix_present_flag) {
        const uint32_t lists8x8 = chroma_format_idc != 3 ? 2 : 6;
        scaling_matrix(s, pps.scaling_matrix, "pic_scaling_list_present_flag",
                       ScalingMatrix::k4x4Lists + (pps.transform_8x8_mode_flag ? lists8x8 : 0));
    }
    s.se("second_chroma_qp_index_offset", pps.second_chroma_qp_index_offset, -12, 12);
}

// pic_parameter_set_rbsp(), 7.3.2.2
template <class Syntax>
void pic_parameter_set_rbsp(Syntax& s, Pps& pps, uint32_t chroma_format_idc) {
    static constexpr Structure kStructure = {"pic_parameter_set_rbsp()", "7.3.2.2"};
    const Within<Syntax> within(s, kStructure);
    s.ue("pic_parameter_set_id", pps.pic_parameter_set_id, 0, 255);
    s.ue("seq_parameter_set_id", pps.seq_parameter_set_id, 0, 31);
    s.flag("entropy_coding_mode_flag", pps.entropy_coding_mode_flag);
    s.flag("bottom_field_pic_order_in_frame_present_flag", pps.bottom_field_pic_order_in_frame_present_flag);
    s.ue("num_slice_groups_minus1", pps.num_slice_groups_minus1, 0, Pps::kMostSliceGroups - 1);
    if (pps.num_slice_groups_minus1 > 0) {
        slice_groups(s, pps);
    }
    s.ue("num_ref_idx_l0_default_active_minus1", pps.num_ref_idx_l0_default_active_minus1, 0, 31);
    s.ue("num_ref_idx_l1_default_active_minus1", pps.num_ref_idx_l1_default_active_minus1, 0, 31);
    s.flag("weighted_pred_flag", pps.weighted_pred_flag);
    s.u(2, "weighted_bipred_idc", pps.weighted_bipred_idc, 0, 2);
    s.se("pic_init_qp_minus26", pps.pic_init_qp_minus26, kLeastPicInitQp, 25);
    s.se("pic_init_qs_minus26", pps.pic_init_qs_minus26, -26, 25);
    s.se("chroma_qp_index_offset", pps.chroma_qp_index_offset, -12, 12);
    s.flag("deblocking_filter_control_present_flag", pps.deblocking_filter_control_present_flag);
    s.flag("constrained_intra_pred_flag", pps.constrained_intra_pred_flag);
    s.flag("redundant_pic_cnt_present_flag", pps.redundant_pic_cnt_present_flag);
    s.infer(pps.second_chroma_qp_index_offset, pps.chroma_qp_index_offset);
    if (s.more_rbsp_data(pps.transform_8x8_mode_flag_present)) {
        transform_8x8(s, pps, chroma_format_idc);
    }
    s.rbsp_trailing_bits();
}

// A unit of type 8: nal_unit(), 7.3.1, with pic_parameter_set_rbsp()
template <class Syntax>
void pic_parameter_set_unit(Syntax& s, Pps& pps, uint32_t chroma_format_idc) {
    nal_unit_of(s, pps.header, kNalPps);
    pic_parameter_set_rbsp(s, pps, chroma_format_idc);
}

}  // namespace qv::avc

#endif
