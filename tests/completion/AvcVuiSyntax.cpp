#include "AvcVuiSyntax.h"

#include "SyntaxElements.h"

namespace qv_test {

namespace {

void writeHrd(BitWriter& bits, const AvcHrdSyntax& hrd) {
    bits.ue("cpb_cnt_minus1", hrd.cpb_cnt_minus1);
    bits.u(4, "bit_rate_scale", hrd.bit_rate_scale).u(4, "cpb_size_scale", hrd.cpb_size_scale);
    for (size_t i = 0; i < hrd.cpbs.size(); ++i) {
        bits.ue(indexed("bit_rate_value_minus1", i), hrd.cpbs[i].bit_rate_value_minus1);
        bits.ue(indexed("cpb_size_value_minus1", i), hrd.cpbs[i].cpb_size_value_minus1);
        bits.u(1, indexed("cbr_flag", i), hrd.cpbs[i].cbr_flag);
    }
    bits.u(5, "initial_cpb_removal_delay_length_minus1", hrd.initial_cpb_removal_delay_length_minus1);
    bits.u(5, "cpb_removal_delay_length_minus1", hrd.cpb_removal_delay_length_minus1);
    bits.u(5, "dpb_output_delay_length_minus1", hrd.dpb_output_delay_length_minus1);
    bits.u(5, "time_offset_length", hrd.time_offset_length);
}

void writeTiming(BitWriter& bits, const AvcVuiSyntax& vui) {
    bits.u(1, "timing_info_present_flag", vui.timing_info_present_flag);
    if (vui.timing_info_present_flag == 1) {
        bits.u(32, "num_units_in_tick", vui.num_units_in_tick).u(32, "time_scale", vui.time_scale);
        bits.u(1, "fixed_frame_rate_flag", vui.fixed_frame_rate_flag);
    }
    bits.u(1, "nal_hrd_parameters_present_flag", vui.nal_hrd_parameters_present_flag);
    if (vui.nal_hrd_parameters_present_flag == 1) {
        writeHrd(bits, vui.nal_hrd_parameters);
    }
    bits.u(1, "vcl_hrd_parameters_present_flag", vui.vcl_hrd_parameters_present_flag);
    if (vui.vcl_hrd_parameters_present_flag == 1) {
        writeHrd(bits, vui.vcl_hrd_parameters);
    }
    if (vui.nal_hrd_parameters_present_flag == 1 || vui.vcl_hrd_parameters_present_flag == 1) {
        bits.u(1, "low_delay_hrd_flag", vui.low_delay_hrd_flag);
    }
    bits.u(1, "pic_struct_present_flag", vui.pic_struct_present_flag);
}

void writeRestriction(BitWriter& bits, const AvcVuiSyntax& vui) {
    bits.u(1, "bitstream_restriction_flag", vui.bitstream_restriction_flag);
    if (vui.bitstream_restriction_flag == 1) {
        bits.u(1, "motion_vectors_over_pic_boundaries_flag", vui.motion_vectors_over_pic_boundaries_flag);
        bits.ue("max_bytes_per_pic_denom", vui.max_bytes_per_pic_denom);
        bits.ue("max_bits_per_mb_denom", vui.max_bits_per_mb_denom);
        bits.ue("log2_max_mv_length_horizontal", vui.log2_max_mv_length_horizontal);
        bits.ue("log2_max_mv_length_vertical", vui.log2_max_mv_length_vertical);
        bits.ue("max_num_reorder_frames", vui.max_num_reorder_frames);
        bits.ue("max_dec_frame_buffering", vui.max_dec_frame_buffering);
    }
}

}  // namespace

AvcHrdSyntax avcHrd(uint32_t cpb_cnt_minus1) {
    AvcHrdSyntax hrd;
    hrd.cpb_cnt_minus1 = cpb_cnt_minus1;
    hrd.cpbs.resize(cpb_cnt_minus1 + 1);
    return hrd;
}

BitWriter avcSpsWithVui(const AvcVuiSyntax& vui, const AvcSpsChange& change) {
    BitWriter bits = bitsBefore(avcSps(change), "vui_parameters_present_flag");
    bits.u(1, "vui_parameters_present_flag", 1);
    writeVuiPicture(bits, vui);
    writeTiming(bits, vui);
    writeRestriction(bits, vui);
    bits.trailingBits();
    return bits;
}

}  // namespace qv_test
