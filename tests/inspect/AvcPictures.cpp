#include "AvcPictures.h"

namespace qv_test {

Bytes avcSpsUnit(const AvcSpsChange& change) {
    return withEmulationPrevention(avcSps(change).bytes());
}

Bytes avcPpsUnit(const std::function<void(AvcPpsSyntax&)>& change) {
    AvcPpsSyntax pps;
    if (change) {
        change(pps);
    }
    BitWriter out;
    out.u(8, "nal_unit_header", 0x68);
    out.ue("pic_parameter_set_id", pps.pic_parameter_set_id);
    out.ue("seq_parameter_set_id", pps.seq_parameter_set_id);
    out.u(1, "entropy_coding_mode_flag", 0);
    out.u(1, "bottom_field_pic_order_in_frame_present_flag",
          pps.bottom_field_pic_order_in_frame_present_flag);
    out.ue("num_slice_groups_minus1", pps.num_slice_groups_minus1);
    if (pps.num_slice_groups_minus1 > 0) {
        pps.writeSliceGroups(out);
    }
    out.ue("num_ref_idx_l0_default_active_minus1", 0);
    out.ue("num_ref_idx_l1_default_active_minus1", 0);
    out.u(1, "weighted_pred_flag", 0);
    out.u(2, "weighted_bipred_idc", 0);
    out.se("pic_init_qp_minus26", -3);
    out.se("pic_init_qs_minus26", 0);
    out.se("chroma_qp_index_offset", 2);
    out.u(1, "deblocking_filter_control_present_flag", 1);
    out.u(1, "constrained_intra_pred_flag", 0);
    out.u(1, "redundant_pic_cnt_present_flag", pps.redundant_pic_cnt_present_flag);
    out.trailingBits();
    return withEmulationPrevention(out.bytes());
}

Bytes avcSliceUnit(const AvcSliceSyntax& slice) {
    BitWriter out;
    out.u(1, "forbidden_zero_bit", 0);
    out.u(2, "nal_ref_idc", slice.nal_ref_idc);
    out.u(5, "nal_unit_type", slice.nal_unit_type);
    out.ue("first_mb_in_slice", slice.first_mb_in_slice);
    out.ue("slice_type", slice.slice_type);
    out.ue("pic_parameter_set_id", slice.pic_parameter_set_id);
    if (slice.writesColourPlane) {
        out.u(2, "colour_plane_id", slice.colour_plane_id);
    }
    out.u(slice.frameNumBits, "frame_num", slice.frame_num);
    if (slice.writesFieldFlag) {
        out.u(1, "field_pic_flag", slice.field_pic_flag);
        if (slice.field_pic_flag == 1) {
            out.u(1, "bottom_field_flag", slice.bottom_field_flag);
        }
    }
    if (slice.nal_unit_type == 5) {
        out.ue("idr_pic_id", slice.idr_pic_id);
    }
    if (slice.pocLsbBits > 0) {
        out.u(slice.pocLsbBits, "pic_order_cnt_lsb", slice.pic_order_cnt_lsb);
    }
    if (slice.writesDeltaBottom) {
        out.se("delta_pic_order_cnt_bottom", slice.delta_pic_order_cnt_bottom);
    }
    if (slice.writesDelta0) {
        out.se("delta_pic_order_cnt[0]", slice.delta_pic_order_cnt_0);
    }
    if (slice.writesDelta1) {
        out.se("delta_pic_order_cnt[1]", slice.delta_pic_order_cnt_1);
    }
    if (slice.writesRedundantPicCnt) {
        out.ue("redundant_pic_cnt", slice.redundant_pic_cnt);
    }
    out.bits("the rest of the slice", slice.rest);
    out.trailingBits();
    return withEmulationPrevention(out.bytes());
}

}  // namespace qv_test
