// pic_parameter_set_rbsp() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_PPSSYNTAX_H
#define QV_BITSTREAM_HEVC_PPSSYNTAX_H

#include "bitstream/hevc/NalUnitHeaderSyntax.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/Pps.h"
#include "bitstream/hevc/PpsExtensionsSyntax.h"
#include "bitstream/hevc/ScalingListSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

template <class Syntax>
void pps_tiles(Syntax& s, Pps& pps) {
    s.infer(pps.uniform_spacing_flag, true);
    s.infer(pps.loop_filter_across_tiles_enabled_flag, true);
    if (!pps.tiles_enabled_flag) {
        return;
    }
    s.ue("num_tile_columns_minus1", pps.num_tile_columns_minus1, 0, Pps::kMostTileColumns - 1);
    s.ue("num_tile_rows_minus1", pps.num_tile_rows_minus1, 0, Pps::kMostTileRows - 1);
    s.flag("uniform_spacing_flag", pps.uniform_spacing_flag);
    if (!pps.uniform_spacing_flag) {
        for (uint32_t i = 0; i < pps.num_tile_columns_minus1; ++i) {
            s.ue(at("column_width_minus1", i), pps.column_width_minus1[i]);
        }
        for (uint32_t i = 0; i < pps.num_tile_rows_minus1; ++i) {
            s.ue(at("row_height_minus1", i), pps.row_height_minus1[i]);
        }
    }
    s.flag("loop_filter_across_tiles_enabled_flag", pps.loop_filter_across_tiles_enabled_flag);
}

template <class Syntax>
void pps_deblocking(Syntax& s, Pps& pps) {
    s.flag("deblocking_filter_control_present_flag", pps.deblocking_filter_control_present_flag);
    if (pps.deblocking_filter_control_present_flag) {
        s.flag("deblocking_filter_override_enabled_flag", pps.deblocking_filter_override_enabled_flag);
        s.flag("pps_deblocking_filter_disabled_flag", pps.pps_deblocking_filter_disabled_flag);
        if (!pps.pps_deblocking_filter_disabled_flag) {
            s.se("pps_beta_offset_div2", pps.pps_beta_offset_div2, -6, 6);
            s.se("pps_tc_offset_div2", pps.pps_tc_offset_div2, -6, 6);
        }
    }
}

template <class Syntax>
void pps_extensions(Syntax& s, Pps& pps) {
    s.flag("pps_extension_present_flag", pps.pps_extension_present_flag);
    if (!pps.pps_extension_present_flag) {
        return;
    }
    s.flag("pps_range_extension_flag", pps.pps_range_extension_flag);
    s.flag("pps_multilayer_extension_flag", pps.pps_multilayer_extension_flag);
    s.flag("pps_3d_extension_flag", pps.pps_3d_extension_flag);
    s.flag("pps_scc_extension_flag", pps.pps_scc_extension_flag);
    s.u(4, "pps_extension_4bits", pps.pps_extension_4bits);
    if (pps.pps_range_extension_flag) {
        pps_range_extension(s, pps.range, pps.transform_skip_enabled_flag);
    }
    if (pps.pps_multilayer_extension_flag) {
        pps_multilayer_extension(s, pps);
    }
    if (pps.pps_3d_extension_flag) {
        pps_3d_extension(s, pps.three_d);
    }
    if (pps.pps_scc_extension_flag) {
        pps_scc_extension(s, pps);
    }
    if (pps.pps_extension_4bits != 0) {
        s.extension_data("pps_extension_data_flag", pps.pps_extension_data_flag);
    }
}

// pic_parameter_set_rbsp(), 7.3.2.3.1
template <class Syntax>
void pic_parameter_set_rbsp(Syntax& s, Pps& pps) {
    static constexpr Structure kStructure = {"pic_parameter_set_rbsp()", "7.3.2.3.1"};
    const Within<Syntax> within(s, kStructure);
    s.ue("pps_pic_parameter_set_id", pps.pps_pic_parameter_set_id, 0, 63);
    s.ue("pps_seq_parameter_set_id", pps.pps_seq_parameter_set_id, 0, 15);
    s.flag("dependent_slice_segments_enabled_flag", pps.dependent_slice_segments_enabled_flag);
    s.flag("output_flag_present_flag", pps.output_flag_present_flag);
    s.u(3, "num_extra_slice_header_bits", pps.num_extra_slice_header_bits);
    s.flag("sign_data_hiding_enabled_flag", pps.sign_data_hiding_enabled_flag);
    s.flag("cabac_init_present_flag", pps.cabac_init_present_flag);
    s.ue("num_ref_idx_l0_default_active_minus1", pps.num_ref_idx_l0_default_active_minus1, 0, 14);
    s.ue("num_ref_idx_l1_default_active_minus1", pps.num_ref_idx_l1_default_active_minus1, 0, 14);
    s.se("init_qp_minus26", pps.init_qp_minus26, -74, 25);
    s.flag("constrained_intra_pred_flag", pps.constrained_intra_pred_flag);
    s.flag("transform_skip_enabled_flag", pps.transform_skip_enabled_flag);
    s.flag("cu_qp_delta_enabled_flag", pps.cu_qp_delta_enabled_flag);
    if (pps.cu_qp_delta_enabled_flag) {
        s.ue("diff_cu_qp_delta_depth", pps.diff_cu_qp_delta_depth, 0, 3);
    }
    s.se("pps_cb_qp_offset", pps.pps_cb_qp_offset, -12, 12);
    s.se("pps_cr_qp_offset", pps.pps_cr_qp_offset, -12, 12);
    s.flag("pps_slice_chroma_qp_offsets_present_flag", pps.pps_slice_chroma_qp_offsets_present_flag);
    s.flag("weighted_pred_flag", pps.weighted_pred_flag);
    s.flag("weighted_bipred_flag", pps.weighted_bipred_flag);
    s.flag("transquant_bypass_enabled_flag", pps.transquant_bypass_enabled_flag);
    s.flag("tiles_enabled_flag", pps.tiles_enabled_flag);
    s.flag("entropy_coding_sync_enabled_flag", pps.entropy_coding_sync_enabled_flag);
    pps_tiles(s, pps);
    s.flag("pps_loop_filter_across_slices_enabled_flag", pps.pps_loop_filter_across_slices_enabled_flag);
    pps_deblocking(s, pps);
    s.flag("pps_scaling_list_data_present_flag", pps.pps_scaling_list_data_present_flag);
    if (pps.pps_scaling_list_data_present_flag) {
        scaling_list_data(s, pps.scaling_list_data);
    }
    s.flag("lists_modification_present_flag", pps.lists_modification_present_flag);
    s.ue("log2_parallel_merge_level_minus2", pps.log2_parallel_merge_level_minus2, 0, 4);
    s.flag("slice_segment_header_extension_present_flag", pps.slice_segment_header_extension_present_flag);
    pps_extensions(s, pps);
}

// A unit of type 34
template <class Syntax>
void pic_parameter_set_unit(Syntax& s, Pps& pps) {
    nal_unit_of(s, pps.header, kNalPps);
    pic_parameter_set_rbsp(s, pps);
    s.rbsp_trailing_bits();
}

}  // namespace qv::hevc

#endif
