// The extensions of the H.265 picture parameter set as syntax functions.
#ifndef QV_BITSTREAM_HEVC_PPSEXTENSIONSSYNTAX_H
#define QV_BITSTREAM_HEVC_PPSEXTENSIONSSYNTAX_H

#include "bitstream/hevc/Pps.h"
#include "bitstream/syntax/Bits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// pps_range_extension(), 7.3.2.3.2
template <class Syntax>
void pps_range_extension(Syntax& s, PpsRangeExtension& range, bool transform_skip_enabled_flag) {
    static constexpr Structure kStructure = {"pps_range_extension()", "7.3.2.3.2"};
    const Within<Syntax> within(s, kStructure);
    if (transform_skip_enabled_flag) {
        s.ue("log2_max_transform_skip_block_size_minus2", range.log2_max_transform_skip_block_size_minus2, 0,
             3);
    }
    s.flag("cross_component_prediction_enabled_flag", range.cross_component_prediction_enabled_flag);
    s.flag("chroma_qp_offset_list_enabled_flag", range.chroma_qp_offset_list_enabled_flag);
    if (range.chroma_qp_offset_list_enabled_flag) {
        s.ue("diff_cu_chroma_qp_offset_depth", range.diff_cu_chroma_qp_offset_depth, 0, 3);
        s.ue("chroma_qp_offset_list_len_minus1", range.chroma_qp_offset_list_len_minus1, 0,
             PpsRangeExtension::kMostChromaQpOffsets - 1);
        for (uint32_t i = 0; i <= range.chroma_qp_offset_list_len_minus1; ++i) {
            s.se(at("cb_qp_offset_list", i), range.cb_qp_offset_list[i], -12, 12);
            s.se(at("cr_qp_offset_list", i), range.cr_qp_offset_list[i], -12, 12);
        }
    }
    s.ue("log2_sao_offset_scale_luma", range.log2_sao_offset_scale_luma, 0, 6);
    s.ue("log2_sao_offset_scale_chroma", range.log2_sao_offset_scale_chroma, 0, 6);
}

constexpr int32_t kMostLocOffset = (1 << 14) - 1;

// One entry of the reference location offsets. Its elements have the layer as their subscript.
template <class Syntax>
void ref_loc_offset(Syntax& s, uint32_t i, RefLocOffset& offset) {
    constexpr int32_t kLeast = -kMostLocOffset - 1;
    s.infer(offset, RefLocOffset{});
    s.u(6, at("ref_loc_offset_layer_id", i), offset.ref_loc_offset_layer_id);
    const uint32_t id = offset.ref_loc_offset_layer_id;
    s.flag(at("scaled_ref_layer_offset_present_flag", i), offset.scaled_ref_layer_offset_present_flag);
    if (offset.scaled_ref_layer_offset_present_flag) {
        s.se(at("scaled_ref_layer_left_offset", id), offset.scaled_ref_layer_left_offset, kLeast,
             kMostLocOffset);
        s.se(at("scaled_ref_layer_top_offset", id), offset.scaled_ref_layer_top_offset, kLeast,
             kMostLocOffset);
        s.se(at("scaled_ref_layer_right_offset", id), offset.scaled_ref_layer_right_offset, kLeast,
             kMostLocOffset);
        s.se(at("scaled_ref_layer_bottom_offset", id), offset.scaled_ref_layer_bottom_offset, kLeast,
             kMostLocOffset);
    }
    s.flag(at("ref_region_offset_present_flag", i), offset.ref_region_offset_present_flag);
    if (offset.ref_region_offset_present_flag) {
        s.se(at("ref_region_left_offset", id), offset.ref_region_left_offset, kLeast, kMostLocOffset);
        s.se(at("ref_region_top_offset", id), offset.ref_region_top_offset, kLeast, kMostLocOffset);
        s.se(at("ref_region_right_offset", id), offset.ref_region_right_offset, kLeast, kMostLocOffset);
        s.se(at("ref_region_bottom_offset", id), offset.ref_region_bottom_offset, kLeast, kMostLocOffset);
    }
    s.flag(at("resample_phase_set_present_flag", i), offset.resample_phase_set_present_flag);
    if (offset.resample_phase_set_present_flag) {
        s.ue(at("phase_hor_luma", id), offset.phase_hor_luma, 0, 31);
        s.ue(at("phase_ver_luma", id), offset.phase_ver_luma, 0, 31);
        s.ue(at("phase_hor_chroma_plus8", id), offset.phase_hor_chroma_plus8, 0, 63);
        s.ue(at("phase_ver_chroma_plus8", id), offset.phase_ver_chroma_plus8, 0, 63);
    }
}

// A place in the cube of colours: the subscripts of an octant's elements.
struct Octant {
    uint32_t depth;
    uint32_t y;
    uint32_t cb;
    uint32_t cr;
    uint32_t length;
};

// CMResLSBits, F.7.4.3.3.6
constexpr uint32_t cmResLsBits(const ColourMappingTable& table) {
    const int32_t bits = 10 + static_cast<int32_t>(table.luma_bit_depth_cm_input_minus8) -
                         static_cast<int32_t>(table.luma_bit_depth_cm_output_minus8) -
                         static_cast<int32_t>(table.cm_res_quant_bits) -
                         static_cast<int32_t>(table.cm_delta_flc_bits_minus1 + 1);
    return bits > 0 ? static_cast<uint32_t>(bits) : 0;
}

template <class Syntax>
int64_t residual_coefficient(Syntax& s, uint32_t resLsBits, const Octant& octant, uint32_t part, uint32_t j,
                             uint32_t c) {
    uint32_t res_coeff_q = 0;
    uint32_t res_coeff_r = 0;
    bool res_coeff_s = false;
    const uint32_t y = octant.y + part;
    s.ue(at("res_coeff_q", y, octant.cb, octant.cr, j, c), res_coeff_q);
    s.u(resLsBits, at("res_coeff_r", y, octant.cb, octant.cr, j, c), res_coeff_r);
    if (res_coeff_q != 0 || res_coeff_r != 0) {
        s.flag(at("res_coeff_s", y, octant.cb, octant.cr, j, c), res_coeff_s);
    }
    const auto magnitude = static_cast<int64_t>((uint64_t{res_coeff_q} << resLsBits) + res_coeff_r);
    return res_coeff_s ? -magnitude : magnitude;
}

// colour_mapping_octants(), F.7.3.2.3.6. It calls itself for the eight parts of an octant, to the depth of
// cm_octant_depth, which is at most 1.
template <class Syntax>
void colour_mapping_octants(Syntax& s, const ColourMappingTable& table, const Octant& octant,
                            ColourMapping& mapping) {
    static constexpr Structure kStructure = {"colour_mapping_octants()", "F.7.3.2.3.6"};
    const Within<Syntax> within(s, kStructure);
    const uint32_t partNumY = 1U << table.cm_y_part_num_log2;
    bool split_octant_flag = false;
    if (octant.depth < table.cm_octant_depth) {
        s.flag(at("split_octant_flag", octant.depth, octant.y, octant.cb, octant.cr), split_octant_flag);
        mapping.split_octant_flag = split_octant_flag;
    }
    if (split_octant_flag) {
        const uint32_t half = octant.length / 2;
        for (uint32_t k = 0; k < 2; ++k) {
            for (uint32_t m = 0; m < 2; ++m) {
                for (uint32_t n = 0; n < 2; ++n) {
                    colour_mapping_octants(s, table,
                                           {octant.depth + 1, octant.y + partNumY * k * half,
                                            octant.cb + m * half, octant.cr + n * half, half},
                                           mapping);
                }
            }
        }
        return;
    }
    for (uint32_t i = 0; i < partNumY; ++i) {
        // A part of an octant that is not split is as high as the octant.
        const uint32_t y = octant.y + i * octant.length;
        for (uint32_t j = 0; j < 4; ++j) {
            bool& coded = mapping.coded_res_flag[y][octant.cb][octant.cr][j];
            s.flag(at("coded_res_flag", y, octant.cb, octant.cr, j), coded);
            for (uint32_t c = 0; coded && c < 3; ++c) {
                mapping.residual[y][octant.cb][octant.cr][j][c] =
                    residual_coefficient(s, cmResLsBits(table), octant, i * octant.length, j, c);
            }
        }
    }
}

template <class Syntax>
void colour_mapping_cube(Syntax& s, const ColourMappingTable& table, ColourMapping& mapping) {
    colour_mapping_octants(s, table, {0, 0, 0, 0, 1U << table.cm_octant_depth}, mapping);
}

// colour_mapping_table(), F.7.3.2.3.5
template <class Syntax>
void colour_mapping_table(Syntax& s, ColourMappingTable& table, uint16_t* cm_ref_layer_id) {
    static constexpr Structure kStructure = {"colour_mapping_table()", "F.7.3.2.3.5"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_cm_ref_layers_minus1", table.num_cm_ref_layers_minus1, 0, ColourMappingTable::kMostLayers - 1);
    for (uint32_t i = 0; i <= table.num_cm_ref_layers_minus1; ++i) {
        s.u(6, at("cm_ref_layer_id", i), cm_ref_layer_id[i]);
    }
    s.u(2, "cm_octant_depth", table.cm_octant_depth, 0, 1);
    s.u(2, "cm_y_part_num_log2", table.cm_y_part_num_log2, 0, 3 - table.cm_octant_depth);
    s.ue("luma_bit_depth_cm_input_minus8", table.luma_bit_depth_cm_input_minus8, 0, 8);
    s.ue("chroma_bit_depth_cm_input_minus8", table.chroma_bit_depth_cm_input_minus8, 0, 8);
    s.ue("luma_bit_depth_cm_output_minus8", table.luma_bit_depth_cm_output_minus8, 0, 8);
    s.ue("chroma_bit_depth_cm_output_minus8", table.chroma_bit_depth_cm_output_minus8, 0, 8);
    s.u(2, "cm_res_quant_bits", table.cm_res_quant_bits);
    s.u(2, "cm_delta_flc_bits_minus1", table.cm_delta_flc_bits_minus1);
    if (table.cm_octant_depth == 1) {
        s.se("cm_adapt_threshold_u_delta", table.cm_adapt_threshold_u_delta);
        s.se("cm_adapt_threshold_v_delta", table.cm_adapt_threshold_v_delta);
    }
    s.keep(table.colour_mapping_octants, [&table](auto& in) {
        ColourMapping mapping = {};
        colour_mapping_cube(in, table, mapping);
    });
}

// pps_multilayer_extension(), F.7.3.2.3.4
template <class Syntax>
void pps_multilayer_extension(Syntax& s, Pps& pps) {
    static constexpr Structure kStructure = {"pps_multilayer_extension()", "F.7.3.2.3.4"};
    const Within<Syntax> within(s, kStructure);
    PpsMultilayerExtension& ext = pps.multilayer;
    s.flag("poc_reset_info_present_flag", ext.poc_reset_info_present_flag);
    s.flag("pps_infer_scaling_list_flag", ext.pps_infer_scaling_list_flag);
    if (ext.pps_infer_scaling_list_flag) {
        s.u(6, "pps_scaling_list_ref_layer_id", ext.pps_scaling_list_ref_layer_id, 0, 62);
    }
    s.ue("num_ref_loc_offsets", ext.num_ref_loc_offsets, 0, Pps::kMostRefLocOffsets);
    for (uint32_t i = 0; i < ext.num_ref_loc_offsets; ++i) {
        ref_loc_offset(s, i, pps.ref_loc_offset[i]);
    }
    s.flag("colour_mapping_enabled_flag", ext.colour_mapping_enabled_flag);
    if (ext.colour_mapping_enabled_flag) {
        colour_mapping_table(s, ext.colour_mapping_table, pps.cm_ref_layer_id);
    }
}

// delta_dlt( i ), I.7.3.2.3.8
template <class Syntax>
void delta_dlt(Syntax& s, uint32_t i, uint32_t bitDepth, DepthLookupTable& table) {
    static constexpr Structure kStructure = {"delta_dlt()", "I.7.3.2.3.8"};
    const Within<Syntax> within(s, kStructure);
    s.u(bitDepth, at("num_val_delta_dlt", i), table.num_val_delta_dlt);
    if (table.num_val_delta_dlt == 0) {
        return;
    }
    if (table.num_val_delta_dlt > 1) {
        s.u(bitDepth, at("max_diff", i), table.max_diff);
    }
    table.min_diff_minus1 = table.max_diff > 0 ? table.max_diff - 1 : 0;
    if (table.num_val_delta_dlt > 2 && table.max_diff > 0) {
        s.u(detail::ceilLog2(uint64_t{table.max_diff} + 1), at("min_diff_minus1", i), table.min_diff_minus1,
            0, table.max_diff - 1);
    }
    s.u(bitDepth, at("delta_dlt_val0", i), table.delta_dlt_val0);
    if (table.max_diff > table.min_diff_minus1 + 1) {
        const uint32_t width = detail::ceilLog2(table.max_diff - table.min_diff_minus1);
        s.keep(table.values, [&table, i, width](auto& in) {
            for (uint32_t k = 1; k < table.num_val_delta_dlt && !in.failed(); ++k) {
                uint32_t delta_val_diff_minus_min = 0;
                in.u(width, at("delta_val_diff_minus_min", i, k), delta_val_diff_minus_min);
            }
        });
    }
}

// The elements of one depth look-up table. The record is zero before.
template <class Syntax>
void depth_lookup_table(Syntax& s, uint32_t i, uint32_t bitDepth, DepthLookupTable& table) {
    s.flag(at("dlt_flag", i), table.dlt_flag);
    if (!table.dlt_flag) {
        return;
    }
    s.flag(at("dlt_pred_flag", i), table.dlt_pred_flag);
    if (!table.dlt_pred_flag) {
        s.flag(at("dlt_val_flags_present_flag", i), table.dlt_val_flags_present_flag);
    }
    if (!table.dlt_val_flags_present_flag) {
        delta_dlt(s, i, bitDepth, table);
        return;
    }
    s.keep(table.values, [i, bitDepth](auto& in) {
        for (uint32_t j = 0; j < 1U << bitDepth && !in.failed(); ++j) {
            bool dlt_value_flag = false;
            in.flag(at("dlt_value_flag", i, j), dlt_value_flag);
        }
    });
}

// pps_3d_extension(), I.7.3.2.3.7
template <class Syntax>
void pps_3d_extension(Syntax& s, Pps3dExtension& ext) {
    static constexpr Structure kStructure = {"pps_3d_extension()", "I.7.3.2.3.7"};
    const Within<Syntax> within(s, kStructure);
    s.flag("dlts_present_flag", ext.dlts_present_flag);
    if (!ext.dlts_present_flag) {
        return;
    }
    s.u(6, "pps_depth_layers_minus1", ext.pps_depth_layers_minus1);
    s.u(4, "pps_bit_depth_for_depth_layers_minus8", ext.pps_bit_depth_for_depth_layers_minus8, 0, 8);
    s.keep(ext.dlts, [&ext](auto& in) {
        for (uint32_t i = 0; i <= ext.pps_depth_layers_minus1; ++i) {
            DepthLookupTable table = {};
            depth_lookup_table(in, i, ext.pps_bit_depth_for_depth_layers_minus8 + 8, table);
        }
    });
}

template <class Syntax>
void pps_palette(Syntax& s, Pps& pps) {
    PpsSccExtension& scc = pps.scc;
    s.ue("pps_num_palette_predictor_initializers", scc.pps_num_palette_predictor_initializers, 0,
         kMostPaletteEntries);
    if (scc.pps_num_palette_predictor_initializers == 0) {
        return;
    }
    s.flag("monochrome_palette_flag", scc.monochrome_palette_flag);
    s.ue("luma_bit_depth_entry_minus8", scc.luma_bit_depth_entry_minus8, 0, 8);
    if (!scc.monochrome_palette_flag) {
        s.ue("chroma_bit_depth_entry_minus8", scc.chroma_bit_depth_entry_minus8, 0, 8);
    }
    const uint32_t numComps = scc.monochrome_palette_flag ? 1 : 3;
    for (uint32_t comp = 0; comp < numComps; ++comp) {
        const uint32_t bitDepth =
            8 + (comp == 0 ? scc.luma_bit_depth_entry_minus8 : scc.chroma_bit_depth_entry_minus8);
        for (uint32_t i = 0; i < scc.pps_num_palette_predictor_initializers; ++i) {
            s.u(bitDepth, at("pps_palette_predictor_initializer", comp, i),
                pps.pps_palette_predictor_initializer[comp][i]);
        }
    }
}

// pps_scc_extension(), 7.3.2.3.3
template <class Syntax>
void pps_scc_extension(Syntax& s, Pps& pps) {
    static constexpr Structure kStructure = {"pps_scc_extension()", "7.3.2.3.3"};
    const Within<Syntax> within(s, kStructure);
    PpsSccExtension& scc = pps.scc;
    s.flag("pps_curr_pic_ref_enabled_flag", scc.pps_curr_pic_ref_enabled_flag);
    s.flag("residual_adaptive_colour_transform_enabled_flag",
           scc.residual_adaptive_colour_transform_enabled_flag);
    if (scc.residual_adaptive_colour_transform_enabled_flag) {
        s.flag("pps_slice_act_qp_offsets_present_flag", scc.pps_slice_act_qp_offsets_present_flag);
        s.se("pps_act_y_qp_offset_plus5", scc.pps_act_y_qp_offset_plus5, -7, 17);
        s.se("pps_act_cb_qp_offset_plus5", scc.pps_act_cb_qp_offset_plus5, -7, 17);
        s.se("pps_act_cr_qp_offset_plus3", scc.pps_act_cr_qp_offset_plus3, -9, 15);
    }
    s.flag("pps_palette_predictor_initializers_present_flag",
           scc.pps_palette_predictor_initializers_present_flag);
    if (scc.pps_palette_predictor_initializers_present_flag) {
        pps_palette(s, pps);
    }
}

}  // namespace qv::hevc

#endif
