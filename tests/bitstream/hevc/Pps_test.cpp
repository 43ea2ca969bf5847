// The picture parameter set of H.265.
#include "bitstream/hevc/Pps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "../support/MemoryChecks.h"
#include "../support/StructureChecks.h"
#include "Units.h"
#include "bitstream/hevc/PpsSyntax.h"
#include "bitstream/hevc/ScalingFactors.h"
#include "bitstream/hevc/Tiles.h"

namespace {

using namespace qv_test;
using qv::FaultKind;
using namespace qv::hevc;
using testing::ElementsAre;

StructureUnderTest<Pps> pps() {
    StructureUnderTest<Pps> structure;
    structure.generate = [](RandomUnit& s, Pps& record) { pic_parameter_set_unit(s, record); };
    structure.read = readPps;
    structure.trace = tracePps;
    structure.write = writePps;
    structure.size = [](const Pps& record) { return sizeOf(record); };
    structure.extensionData = {"pps_extension_data_flag"};
    structure.violable = 120;
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("nal_unit_type", {kNalPps});
        // Look-up tables are short but now and then.
        if (random() % 64 != 0) {
            unit.choose("pps_bit_depth_for_depth_layers_minus8", {0});
            unit.choose("pps_depth_layers_minus1", {0, 1, 2});
        }
    };
    return structure;
}

TEST(HevcPps, roundTrips) {
    checkRoundTrips(pps(), unitRounds(1000));
}

TEST(HevcPps, everyRange) {
    checkRanges(pps(), unitRounds());
}

TEST(HevcPps, cutAtEveryBit) {
    checkCuts(pps(), unitRounds(25));
}

const std::vector<Derivation<Pps>> kDerivations = {
    {"colourMappingOf",
     [](const Pps& pps) -> uint64_t {
         ColourMapping mapping;
         return colourMappingOf(pps, mapping) ? 1 : 0;
     }},
    {"depthLookupTableOf",
     [](const Pps& pps) {
         uint64_t sum = 0;
         DepthLookupTable table;
         for (uint32_t i = 0; depthLookupTableOf(pps, i, table); ++i) {
             sum += 1 + table.max_diff;
         }
         return sum;
     }},
    {"scalingFactorsOf",
     [](const Pps& pps) -> uint64_t {
         static Sps sps;
         sps.scaling_list_enabled_flag = true;
         return scalingFactorsOf(sps, pps).at(3, 5, 31, 31);
     }},
    {"tileGridOf",
     [](const Pps& pps) -> uint64_t {
         static Sps sps;
         sps.pic_width_in_luma_samples = 8192;
         sps.pic_height_in_luma_samples = 4320;
         return tileGridOf(pps, sps).columns;
     }},
};

TEST(HevcPps, noAllocationAndNoByteOutside) {
    checkMemory(pps(), unitRounds(50), kDerivations);
}

TEST(HevcPps, everyElementOneAboveItsRange) {
    const std::set<std::string> elements = {"forbidden_zero_bit",
                                            "nuh_temporal_id_plus1",
                                            "pps_pic_parameter_set_id",
                                            "pps_seq_parameter_set_id",
                                            "num_ref_idx_l0_default_active_minus1",
                                            "num_ref_idx_l1_default_active_minus1",
                                            "init_qp_minus26",
                                            "diff_cu_qp_delta_depth",
                                            "pps_cb_qp_offset",
                                            "pps_cr_qp_offset",
                                            "num_tile_columns_minus1",
                                            "num_tile_rows_minus1",
                                            "column_width_minus1",
                                            "row_height_minus1",
                                            "pps_beta_offset_div2",
                                            "pps_tc_offset_div2",
                                            "scaling_list_pred_matrix_id_delta",
                                            "scaling_list_dc_coef_minus8",
                                            "scaling_list_delta_coef",
                                            "log2_parallel_merge_level_minus2",
                                            "log2_max_transform_skip_block_size_minus2",
                                            "diff_cu_chroma_qp_offset_depth",
                                            "chroma_qp_offset_list_len_minus1",
                                            "cb_qp_offset_list",
                                            "cr_qp_offset_list",
                                            "log2_sao_offset_scale_luma",
                                            "log2_sao_offset_scale_chroma",
                                            "pps_scaling_list_ref_layer_id",
                                            "num_ref_loc_offsets",
                                            "scaled_ref_layer_left_offset",
                                            "scaled_ref_layer_top_offset",
                                            "scaled_ref_layer_right_offset",
                                            "scaled_ref_layer_bottom_offset",
                                            "ref_region_left_offset",
                                            "ref_region_top_offset",
                                            "ref_region_right_offset",
                                            "ref_region_bottom_offset",
                                            "phase_hor_luma",
                                            "phase_ver_luma",
                                            "phase_hor_chroma_plus8",
                                            "phase_ver_chroma_plus8",
                                            "num_cm_ref_layers_minus1",
                                            "cm_octant_depth",
                                            "cm_y_part_num_log2",
                                            "luma_bit_depth_cm_input_minus8",
                                            "chroma_bit_depth_cm_input_minus8",
                                            "luma_bit_depth_cm_output_minus8",
                                            "chroma_bit_depth_cm_output_minus8",
                                            "pps_bit_depth_for_depth_layers_minus8",
                                            "min_diff_minus1",
                                            "pps_act_y_qp_offset_plus5",
                                            "pps_act_cb_qp_offset_plus5",
                                            "pps_act_cr_qp_offset_plus3",
                                            "pps_num_palette_predictor_initializers",
                                            "luma_bit_depth_entry_minus8",
                                            "chroma_bit_depth_entry_minus8"};
    StructureUnderTest<Pps> structure = pps();
    structure.violable = 80;
    structure.steer = [steer = structure.steer](RandomUnit& unit, Random& random) {
        steer(unit, random);
        unit.choose("num_tile_columns_minus1", {0, 1, 2});
        unit.choose("num_tile_rows_minus1", {0, 1, 2});
        unit.choose("pps_scaling_list_data_present_flag", {0, 0, 0, 1});
        unit.choose("scaling_list_pred_mode_flag", {0, 0, 0, 0, 0, 0, 1});
        unit.choose("num_ref_loc_offsets", {0, 1});
        unit.choose("num_cm_ref_layers_minus1", {0});
        unit.choose("pps_extension_present_flag", {1});
    };
    EXPECT_THAT(elementsNotViolated(structure, elements), testing::IsEmpty());
}

// --- A PPS laid by hand ---

BitWriter headOfPps(bool transformSkip = true) {
    BitWriter bits;
    bits.ue("pps_pic_parameter_set_id", 63).ue("pps_seq_parameter_set_id", 15);
    bits.u(1, "dependent_slice_segments_enabled_flag", 1).u(1, "output_flag_present_flag", 0);
    bits.u(3, "num_extra_slice_header_bits", 2).u(1, "sign_data_hiding_enabled_flag", 1);
    bits.u(1, "cabac_init_present_flag", 0).ue("num_ref_idx_l0_default_active_minus1", 3);
    bits.ue("num_ref_idx_l1_default_active_minus1", 14).se("init_qp_minus26", -74);
    bits.u(1, "constrained_intra_pred_flag", 1).u(1, "transform_skip_enabled_flag", transformSkip ? 1 : 0);
    bits.u(1, "cu_qp_delta_enabled_flag", 1).ue("diff_cu_qp_delta_depth", 3).se("pps_cb_qp_offset", -12);
    bits.se("pps_cr_qp_offset", 12).u(1, "pps_slice_chroma_qp_offsets_present_flag", 1);
    bits.u(1, "weighted_pred_flag", 1).u(1, "weighted_bipred_flag", 0);
    bits.u(1, "transquant_bypass_enabled_flag", 1);
    return bits;
}

BitWriter withoutExtension(bool transformSkip = true) {
    BitWriter bits = headOfPps(transformSkip);
    bits.u(1, "tiles_enabled_flag", 0).u(1, "entropy_coding_sync_enabled_flag", 0);
    bits.bits("loop filter, deblocking, scaling lists, lists_modification", "1000");
    bits.ue("log2_parallel_merge_level_minus2", 4).u(1, "slice_segment_header_extension_present_flag", 0);
    return bits;
}

// A unit with its record, which borrows from it.
struct PpsUnit {
    explicit PpsUnit(const BitWriter& bits) : unit(hevcUnit(34, bits)) {
        const qv::Read<Pps> read = readPps(bytesOf(unit));
        EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.trailing.bits, 0U);
        record = read.record;
        expectRewritten(pps(), unit);
    }
    std::vector<uint8_t> unit;
    Pps record;
};

TEST(HevcPps, elementsOfTheBase) {
    BitWriter bits = headOfPps();
    bits.u(1, "tiles_enabled_flag", 1).u(1, "entropy_coding_sync_enabled_flag", 1);
    bits.ue("num_tile_columns_minus1", 2).ue("num_tile_rows_minus1", 1).u(1, "uniform_spacing_flag", 0);
    bits.ue("column_width_minus1[0]", 4).ue("column_width_minus1[1]", 5).ue("row_height_minus1[0]", 6);
    bits.u(1, "loop_filter_across_tiles_enabled_flag", 0);
    bits.u(1, "pps_loop_filter_across_slices_enabled_flag", 1);
    bits.bits("deblocking: control, override, disabled", "110").se("pps_beta_offset_div2", -6);
    bits.se("pps_tc_offset_div2", 6).u(1, "pps_scaling_list_data_present_flag", 0);
    bits.u(1, "lists_modification_present_flag", 1).ue("log2_parallel_merge_level_minus2", 4);
    bits.u(1, "slice_segment_header_extension_present_flag", 1).u(1, "pps_extension_present_flag", 0);
    const Pps record = PpsUnit(bits).record;
    EXPECT_EQ(record.pps_pic_parameter_set_id, 63U);
    EXPECT_EQ(record.pps_seq_parameter_set_id, 15U);
    EXPECT_TRUE(record.dependent_slice_segments_enabled_flag);
    EXPECT_FALSE(record.output_flag_present_flag);
    EXPECT_EQ(record.num_extra_slice_header_bits, 2U);
    EXPECT_EQ(record.num_ref_idx_l1_default_active_minus1, 14U);
    EXPECT_EQ(record.init_qp_minus26, -74);
    EXPECT_EQ(record.diff_cu_qp_delta_depth, 3U);
    EXPECT_EQ(record.pps_cb_qp_offset, -12);
    EXPECT_EQ(record.pps_cr_qp_offset, 12);
    EXPECT_TRUE(record.weighted_pred_flag);
    EXPECT_FALSE(record.weighted_bipred_flag);
    EXPECT_TRUE(record.entropy_coding_sync_enabled_flag);
    EXPECT_EQ(record.num_tile_columns_minus1, 2U);
    EXPECT_EQ(record.column_width_minus1[1], 5);
    EXPECT_EQ(record.row_height_minus1[0], 6);
    EXPECT_FALSE(record.uniform_spacing_flag);
    EXPECT_FALSE(record.loop_filter_across_tiles_enabled_flag);
    EXPECT_TRUE(record.pps_loop_filter_across_slices_enabled_flag);
    EXPECT_TRUE(record.deblocking_filter_override_enabled_flag);
    EXPECT_EQ(record.pps_beta_offset_div2, -6);
    EXPECT_EQ(record.pps_tc_offset_div2, 6);
    EXPECT_TRUE(record.lists_modification_present_flag);
    EXPECT_EQ(record.log2_parallel_merge_level_minus2, 4U);
    EXPECT_TRUE(record.slice_segment_header_extension_present_flag);
}

TEST(HevcPps, valuesInferred) {
    BitWriter bits = withoutExtension();
    bits.u(1, "pps_extension_present_flag", 0);
    const Pps record = PpsUnit(bits).record;
    EXPECT_TRUE(record.uniform_spacing_flag);
    EXPECT_TRUE(record.loop_filter_across_tiles_enabled_flag);
    EXPECT_EQ(record.num_tile_columns_minus1, 0U);
    EXPECT_FALSE(record.pps_deblocking_filter_disabled_flag);
}

TEST(HevcPps, rangeExtension) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, range", "1 1000 0000");
    bits.ue("log2_max_transform_skip_block_size_minus2", 3);
    bits.u(1, "cross_component_prediction_enabled_flag", 1);
    bits.u(1, "chroma_qp_offset_list_enabled_flag", 1).ue("diff_cu_chroma_qp_offset_depth", 2);
    bits.ue("chroma_qp_offset_list_len_minus1", 1)
        .se("cb[0]", 1)
        .se("cr[0]", -2)
        .se("cb[1]", 3)
        .se("cr[1]", -4);
    bits.ue("log2_sao_offset_scale_luma", 5).ue("log2_sao_offset_scale_chroma", 6);
    const PpsRangeExtension range = PpsUnit(bits).record.range;
    EXPECT_EQ(range.log2_max_transform_skip_block_size_minus2, 3U);
    EXPECT_TRUE(range.cross_component_prediction_enabled_flag);
    EXPECT_EQ(range.diff_cu_chroma_qp_offset_depth, 2U);
    EXPECT_EQ(range.cb_qp_offset_list[1], 3);
    EXPECT_EQ(range.cr_qp_offset_list[1], -4);
    EXPECT_EQ(range.log2_sao_offset_scale_chroma, 6U);

    BitWriter noTransformSkip = withoutExtension(false);
    noTransformSkip.bits("pps_extension_present_flag, range", "1 1000 0000").bits("flags", "00");
    noTransformSkip.ue("log2_sao_offset_scale_luma", 0).ue("log2_sao_offset_scale_chroma", 1);
    EXPECT_EQ(PpsUnit(noTransformSkip).record.range.log2_sao_offset_scale_chroma, 1U);
}

TEST(HevcPps, referenceLocationOffsets) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, multilayer", "1 0100 0000").u(1, "poc_reset_info_present_flag", 1);
    bits.u(1, "pps_infer_scaling_list_flag", 1).u(6, "pps_scaling_list_ref_layer_id", 62);
    bits.ue("num_ref_loc_offsets", 2);
    bits.u(6, "ref_loc_offset_layer_id[0]", 5).u(1, "scaled_ref_layer_offset_present_flag[0]", 1);
    bits.se("left", -16384).se("top", 16383).se("right", 3).se("bottom", -4);
    bits.u(1, "ref_region_offset_present_flag[0]", 0).u(1, "resample_phase_set_present_flag[0]", 1);
    bits.ue("phase_hor_luma", 31).ue("phase_ver_luma", 1).ue("phase_hor_chroma_plus8", 63).ue("", 8);
    bits.u(6, "ref_loc_offset_layer_id[1]", 0).u(1, "scaled_ref_layer_offset_present_flag[1]", 0);
    bits.u(1, "ref_region_offset_present_flag[1]", 1)
        .se("left", 5)
        .se("top", -6)
        .se("right", 7)
        .se("bottom", -8);
    bits.u(1, "resample_phase_set_present_flag[1]", 0).u(1, "colour_mapping_enabled_flag", 0);
    const PpsUnit unit(bits);
    const PpsMultilayerExtension& ext = unit.record.multilayer;
    EXPECT_TRUE(ext.poc_reset_info_present_flag);
    EXPECT_EQ(ext.pps_scaling_list_ref_layer_id, 62U);
    const RefLocOffset& first = unit.record.ref_loc_offset[0];
    EXPECT_EQ(first.ref_loc_offset_layer_id, 5U);
    EXPECT_EQ(first.scaled_ref_layer_left_offset, -16384);
    EXPECT_EQ(first.scaled_ref_layer_top_offset, 16383);
    EXPECT_EQ(first.scaled_ref_layer_bottom_offset, -4);
    EXPECT_EQ(first.ref_region_left_offset, 0);
    EXPECT_EQ(first.phase_hor_luma, 31U);
    EXPECT_EQ(first.phase_ver_chroma_plus8, 8U);
    const RefLocOffset& second = unit.record.ref_loc_offset[1];
    EXPECT_EQ(second.scaled_ref_layer_left_offset, 0);
    EXPECT_EQ(second.ref_region_left_offset, 5);
    EXPECT_EQ(second.ref_region_bottom_offset, -8);
    EXPECT_EQ(second.phase_hor_luma, 0U);

    RecordingVisitor visitor;
    ASSERT_TRUE(tracePps(bytesOf(unit.unit), visitor).ok());
    std::vector<std::string> names;
    for (const qv::TracedElement& element : visitor.elements) {
        names.push_back(qv::textOf(element.element));
    }
    EXPECT_THAT(names, testing::Contains("scaled_ref_layer_top_offset[5]"));
    EXPECT_THAT(names, testing::Contains("ref_region_top_offset[0]"));
}

// The elements of a colour mapping table up to the octants. CMResLSBits is 10 + 8 - 10 - 1 - 2 = 5.
BitWriter colourMapping(uint32_t depth, uint32_t parts) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, multilayer", "1 0100 0000").bits("flags", "00");
    bits.ue("num_ref_loc_offsets", 0).u(1, "colour_mapping_enabled_flag", 1);
    bits.ue("num_cm_ref_layers_minus1", 1).u(6, "cm_ref_layer_id[0]", 0).u(6, "cm_ref_layer_id[1]", 7);
    bits.u(2, "cm_octant_depth", depth).u(2, "cm_y_part_num_log2", parts);
    bits.ue("luma_bit_depth_cm_input_minus8", 0).ue("chroma_bit_depth_cm_input_minus8", 1);
    bits.ue("luma_bit_depth_cm_output_minus8", 2).ue("chroma_bit_depth_cm_output_minus8", 3);
    bits.u(2, "cm_res_quant_bits", 1).u(2, "cm_delta_flc_bits_minus1", 1);
    if (depth == 1) {
        bits.se("cm_adapt_threshold_u_delta", -5).se("cm_adapt_threshold_v_delta", 6);
    }
    return bits;
}

void codedVertex(BitWriter& bits, uint32_t q, uint32_t r, bool negative) {
    bits.u(1, "coded_res_flag", 1);
    for (uint32_t c = 0; c < 3; ++c) {
        bits.ue("res_coeff_q", c == 1 ? 0 : q).u(5, "res_coeff_r", c == 1 ? 0 : r + c);
        if (c != 1) {
            bits.u(1, "res_coeff_s", negative ? 1 : 0);
        }
    }
}

TEST(HevcPps, colourMappingWithoutSplit) {
    BitWriter bits = colourMapping(0, 1);
    // Two parts of luma with four vertices each.
    bits.bits("coded_res_flag[0][0][0][0..2]", "000");
    codedVertex(bits, 2, 3, true);
    bits.bits("coded_res_flag[1][0][0][0..3]", "0000");
    const PpsUnit unit(bits);
    EXPECT_EQ(unit.record.cm_ref_layer_id[1], 7);
    auto mapping = std::make_unique<ColourMapping>();
    ASSERT_TRUE(colourMappingOf(unit.record, *mapping));
    EXPECT_FALSE(mapping->split_octant_flag);
    EXPECT_FALSE(mapping->coded_res_flag[0][0][0][2]);
    EXPECT_TRUE(mapping->coded_res_flag[0][0][0][3]);
    EXPECT_THAT(mapping->residual[0][0][0][3], ElementsAre(-67, 0, -69));
    EXPECT_THAT(mapping->residual[1][0][0][3], ElementsAre(0, 0, 0));
}

TEST(HevcPps, colourMappingWithSplit) {
    BitWriter bits = colourMapping(1, 1);
    bits.u(1, "split_octant_flag", 1);
    // Eight octants of two parts and four vertices; the one of k 1, m 0, n 1 has a vertex in its second part.
    bits.u(32, "coded_res_flag", 0).u(8, "coded_res_flag", 0);
    bits.bits("coded_res_flag[2][0][1]", "0000").bits("coded_res_flag[3][0][1][0]", "0");
    codedVertex(bits, 0, 1, false);
    bits.bits("coded_res_flag[3][0][1][2..3]", "00").u(16, "coded_res_flag", 0);
    const PpsUnit unit(bits);
    EXPECT_EQ(unit.record.multilayer.colour_mapping_table.cm_adapt_threshold_u_delta, -5);
    EXPECT_EQ(unit.record.multilayer.colour_mapping_table.cm_adapt_threshold_v_delta, 6);
    auto mapping = std::make_unique<ColourMapping>();
    ASSERT_TRUE(colourMappingOf(unit.record, *mapping));
    EXPECT_TRUE(mapping->split_octant_flag);
    EXPECT_TRUE(mapping->coded_res_flag[3][0][1][1]);
    EXPECT_THAT(mapping->residual[3][0][1][1], ElementsAre(1, 0, 3));
    EXPECT_FALSE(mapping->coded_res_flag[3][0][0][1]);
}

// An octant that is not split has parts two cells high.
TEST(HevcPps, colourMappingOfAnOctantThatCouldBeSplit) {
    BitWriter bits = colourMapping(1, 2);
    bits.u(1, "split_octant_flag", 0).u(12, "coded_res_flag of parts 0 to 2", 0);
    bits.bits("coded_res_flag[6][0][0][0..2]", "000");
    codedVertex(bits, 1, 0, false);
    const PpsUnit unit(bits);
    auto mapping = std::make_unique<ColourMapping>();
    ASSERT_TRUE(colourMappingOf(unit.record, *mapping));
    EXPECT_FALSE(mapping->split_octant_flag);
    EXPECT_THAT(mapping->residual[6][0][0][3], ElementsAre(32, 0, 34));
    EXPECT_FALSE(colourMappingOf(Pps{}, *mapping));
}

TEST(HevcPps, depthLookupTables) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, 3D", "1 0010 0000").u(1, "dlts_present_flag", 1);
    bits.u(6, "pps_depth_layers_minus1", 5).u(4, "pps_bit_depth_for_depth_layers_minus8", 0);
    bits.bits("dlt_flag[0]", "0");
    // Values as flags.
    bits.bits("dlt_flag[1], dlt_pred_flag[1], dlt_val_flags_present_flag[1]", "101");
    for (uint32_t j = 0; j < 256; ++j) {
        bits.u(1, "dlt_value_flag", j % 3 == 0 ? 1 : 0);
    }
    // Values as differences of 4 to 9: three bits each.
    bits.bits("dlt_flag[2], dlt_pred_flag[2]", "11").u(8, "num_val_delta_dlt", 4).u(8, "max_diff", 9);
    bits.u(4, "min_diff_minus1", 3).u(8, "delta_dlt_val0", 17);
    bits.u(3, "delta_val_diff_minus_min", 5).u(3, "", 0).u(3, "", 2);
    // Two values: the greatest difference is the least.
    bits.bits("dlt_flag[3], dlt_pred_flag[3]", "11").u(8, "num_val_delta_dlt", 2).u(8, "max_diff", 9);
    bits.u(8, "delta_dlt_val0", 18);
    // One value, none, and three that are the same.
    bits.bits("dlt_flag[4], dlt_pred_flag[4]", "11").u(8, "num_val_delta_dlt", 1).u(8, "delta_dlt_val0", 19);
    bits.bits("dlt_flag[5], dlt_pred_flag[5], dlt_val_flags_present_flag[5]", "100");
    bits.u(8, "num_val_delta_dlt", 0);
    const PpsUnit unit(bits);
    DepthLookupTable table;
    ASSERT_TRUE(depthLookupTableOf(unit.record, 0, table));
    EXPECT_FALSE(table.dlt_flag);
    ASSERT_TRUE(depthLookupTableOf(unit.record, 1, table));
    EXPECT_TRUE(table.dlt_val_flags_present_flag);
    EXPECT_EQ(table.values.count, 256U);
    ASSERT_TRUE(depthLookupTableOf(unit.record, 2, table));
    EXPECT_TRUE(table.dlt_pred_flag);
    EXPECT_EQ(table.num_val_delta_dlt, 4U);
    EXPECT_EQ(table.max_diff, 9U);
    EXPECT_EQ(table.min_diff_minus1, 3U);
    EXPECT_EQ(table.delta_dlt_val0, 17U);
    EXPECT_EQ(table.values.count, 9U);
    ASSERT_TRUE(depthLookupTableOf(unit.record, 3, table));
    EXPECT_EQ(table.min_diff_minus1, 8U);
    EXPECT_TRUE(table.values.empty());
    ASSERT_TRUE(depthLookupTableOf(unit.record, 4, table));
    EXPECT_EQ(table.max_diff, 0U);
    EXPECT_EQ(table.delta_dlt_val0, 19U);
    ASSERT_TRUE(depthLookupTableOf(unit.record, 5, table));
    EXPECT_TRUE(table.dlt_flag);
    EXPECT_EQ(table.num_val_delta_dlt, 0U);
    EXPECT_FALSE(depthLookupTableOf(unit.record, 6, table));
    EXPECT_FALSE(depthLookupTableOf(Pps{}, 0, table));
}

TEST(HevcPps, depthLookupTableOf3EqualDifferences) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, 3D", "1 0010 0000").u(1, "dlts_present_flag", 1);
    bits.u(6, "pps_depth_layers_minus1", 0).u(4, "pps_bit_depth_for_depth_layers_minus8", 8);
    bits.bits("dlt_flag[0], dlt_pred_flag[0]", "11").u(16, "num_val_delta_dlt", 3).u(16, "max_diff", 0);
    bits.u(16, "delta_dlt_val0", 40000);
    const PpsUnit unit(bits);
    DepthLookupTable table;
    ASSERT_TRUE(depthLookupTableOf(unit.record, 0, table));
    EXPECT_EQ(table.min_diff_minus1, 0U);
    EXPECT_EQ(table.delta_dlt_val0, 40000U);
}

TEST(HevcPps, withoutDepthLookupTables) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, 3D", "1 0010 0000").u(1, "dlts_present_flag", 0);
    DepthLookupTable table;
    EXPECT_FALSE(depthLookupTableOf(PpsUnit(bits).record, 0, table));
}

TEST(HevcPps, screenContentExtension) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, scc", "1 0001 0000").u(1, "pps_curr_pic_ref_enabled_flag", 1);
    bits.u(1, "residual_adaptive_colour_transform_enabled_flag", 1);
    bits.u(1, "pps_slice_act_qp_offsets_present_flag", 1).se("y", -7).se("cb", 17).se("cr", -9);
    bits.u(1, "pps_palette_predictor_initializers_present_flag", 1);
    bits.ue("pps_num_palette_predictor_initializers", 2).u(1, "monochrome_palette_flag", 0);
    bits.ue("luma_bit_depth_entry_minus8", 2).ue("chroma_bit_depth_entry_minus8", 1);
    bits.u(10, "[0][0]", 1023).u(10, "[0][1]", 1).u(9, "[1][0]", 511).u(9, "[1][1]", 2).u(9, "[2][0]", 3);
    bits.u(9, "[2][1]", 300);
    const PpsUnit unit(bits);
    EXPECT_TRUE(unit.record.scc.pps_curr_pic_ref_enabled_flag);
    EXPECT_EQ(unit.record.scc.pps_act_y_qp_offset_plus5, -7);
    EXPECT_EQ(unit.record.scc.pps_act_cb_qp_offset_plus5, 17);
    EXPECT_EQ(unit.record.scc.pps_act_cr_qp_offset_plus3, -9);
    EXPECT_EQ(unit.record.pps_palette_predictor_initializer[0][0], 1023);
    EXPECT_EQ(unit.record.pps_palette_predictor_initializer[1][0], 511);
    EXPECT_EQ(unit.record.pps_palette_predictor_initializer[2][1], 300);

    BitWriter mono = withoutExtension();
    mono.bits("pps_extension_present_flag, scc", "1 0001 0000").bits("flags", "001");
    mono.ue("pps_num_palette_predictor_initializers", 1).u(1, "monochrome_palette_flag", 1);
    mono.ue("luma_bit_depth_entry_minus8", 8).u(16, "[0][0]", 65535);
    EXPECT_EQ(PpsUnit(mono).record.pps_palette_predictor_initializer[0][0], 65535);

    BitWriter none = withoutExtension();
    none.bits("pps_extension_present_flag, scc", "1 0001 0000").bits("flags", "001");
    none.ue("pps_num_palette_predictor_initializers", 0);
    EXPECT_EQ(PpsUnit(none).record.scc.pps_num_palette_predictor_initializers, 0U);
}

TEST(HevcPps, extensionsThatAreNotDefinedAreKept) {
    BitWriter bits = withoutExtension();
    bits.bits("pps_extension_present_flag, 4bits", "1 0000 1000").u(21, "pps_extension_data_flag", 0x155555);
    const PpsUnit unit(bits);
    EXPECT_EQ(unit.record.pps_extension_4bits, 8U);
    EXPECT_EQ(unit.record.pps_extension_data_flag.count, 21U);
}

// --- As encoders wrote them ---

TEST(HevcPps, setsOfTwoViewsAndOfAnAlphaLayer) {
    for (const char* const text :
         {"4401c572b462a014", "440948572b062a0140", "4401c172b46240", "440948172b0624"}) {
        SCOPED_TRACE(text);
        expectRewritten(pps(), hex(text));
    }
    const Pps second = readPps(bytesOf(hex("440948572b062a0140"))).record;
    EXPECT_EQ(second.header.nuh_layer_id, 1U);
    EXPECT_TRUE(second.pps_multilayer_extension_flag);
    EXPECT_EQ(second.multilayer.num_ref_loc_offsets, 0U);
    auto mapping = std::make_unique<ColourMapping>();
    EXPECT_FALSE(colourMappingOf(second, *mapping));
}

}  // namespace
