#include "HevcVuiSyntax.h"

#include "SyntaxElements.h"

namespace qv_test {

namespace {

void writeFields(BitWriter& bits, const HevcVuiSyntax& vui) {
    bits.u(1, "neutral_chroma_indication_flag", vui.neutral_chroma_indication_flag);
    bits.u(1, "field_seq_flag", vui.field_seq_flag);
    bits.u(1, "frame_field_info_present_flag", vui.frame_field_info_present_flag);
    bits.u(1, "default_display_window_flag", vui.default_display_window_flag);
    if (vui.default_display_window_flag == 1) {
        bits.ue("def_disp_win_left_offset", 1).ue("def_disp_win_right_offset", 1);
        bits.ue("def_disp_win_top_offset", 1).ue("def_disp_win_bottom_offset", 1);
    }
}

// hrd_parameters( 1, sps_max_sub_layers_minus1 ), E.2.2
void writeHrd(BitWriter& bits, uint32_t sps_max_sub_layers_minus1) {
    bits.u(1, "nal_hrd_parameters_present_flag", 1).u(1, "vcl_hrd_parameters_present_flag", 0);
    bits.u(1, "sub_pic_hrd_params_present_flag", 0);
    bits.u(4, "bit_rate_scale", 0).u(4, "cpb_size_scale", 0);
    bits.u(5, "initial_cpb_removal_delay_length_minus1", 23);
    bits.u(5, "au_cpb_removal_delay_length_minus1", 23).u(5, "dpb_output_delay_length_minus1", 23);
    for (uint32_t i = 0; i <= sps_max_sub_layers_minus1; ++i) {
        bits.u(1, "fixed_pic_rate_general_flag", 1).ue("elemental_duration_in_tc_minus1", i);
        bits.ue("cpb_cnt_minus1", 0);
        bits.ue("bit_rate_value_minus1", 100 + i).ue("cpb_size_value_minus1", 200 + i).u(1, "cbr_flag", 0);
    }
}

void writeTiming(BitWriter& bits, const HevcVuiSyntax& vui, uint32_t sps_max_sub_layers_minus1) {
    bits.u(1, "vui_timing_info_present_flag", vui.vui_timing_info_present_flag);
    if (vui.vui_timing_info_present_flag == 1) {
        bits.u(32, "vui_num_units_in_tick", vui.vui_num_units_in_tick);
        bits.u(32, "vui_time_scale", vui.vui_time_scale);
        bits.u(1, "vui_poc_proportional_to_timing_flag", 0);
        bits.u(1, "vui_hrd_parameters_present_flag", vui.vui_hrd_parameters_present_flag);
        if (vui.vui_hrd_parameters_present_flag == 1) {
            writeHrd(bits, sps_max_sub_layers_minus1);
        }
    }
    bits.u(1, "bitstream_restriction_flag", vui.bitstream_restriction_flag);
    if (vui.bitstream_restriction_flag == 1) {
        bits.u(1, "tiles_fixed_structure_flag", 0).u(1, "motion_vectors_over_pic_boundaries_flag", 1);
        bits.u(1, "restricted_ref_pic_lists_flag", 0);
        bits.ue("min_spatial_segmentation_idc", vui.min_spatial_segmentation_idc);
        bits.ue("max_bytes_per_pic_denom", 2).ue("max_bits_per_min_cu_denom", 1);
        bits.ue("log2_max_mv_length_horizontal", 15).ue("log2_max_mv_length_vertical", 15);
    }
}

}  // namespace

BitWriter hevcSpsWithVui(const HevcVuiSyntax& vui, const HevcSpsChange& change) {
    HevcSpsSyntax syntax;
    if (change) {
        change(syntax);
    }
    BitWriter bits = bitsBefore(writeHevcSps(syntax), "vui_parameters_present_flag");
    bits.u(1, "vui_parameters_present_flag", 1);
    writeVuiPicture(bits, vui);
    writeFields(bits, vui);
    writeTiming(bits, vui, syntax.sps_max_sub_layers_minus1);
    bits.u(1, "sps_extension_present_flag", 0).trailingBits();
    return bits;
}

}  // namespace qv_test
