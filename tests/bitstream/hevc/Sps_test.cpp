// The sequence parameter set of H.265.
#include "bitstream/hevc/Sps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "../support/MemoryChecks.h"
#include "../support/StructureChecks.h"
#include "Units.h"
#include "bitstream/hevc/BlockSizes.h"
#include "bitstream/hevc/Dpb.h"
#include "bitstream/hevc/FrameRate.h"
#include "bitstream/hevc/HrdRates.h"
#include "bitstream/hevc/PictureFormat.h"
#include "bitstream/hevc/ProfileLevel.h"
#include "bitstream/hevc/ScalingFactors.h"
#include "bitstream/hevc/SpsSyntax.h"
#include "bitstream/hevc/Vps.h"

namespace {

using namespace qv_test;
using qv::FaultKind;
using qv::hevc::Sps;
using qv::hevc::Vps;

StructureUnderTest<Sps> sps(std::vector<int64_t> layers = {0}, const Vps* vps = nullptr) {
    StructureUnderTest<Sps> structure;
    structure.generate = [vps](RandomUnit& s, Sps& record) {
        qv::hevc::seq_parameter_set_unit(s, record, vps);
    };
    structure.read = [vps](qv::Bytes unit) { return qv::hevc::readSps(unit, vps); };
    structure.trace = [vps](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::hevc::traceSps(unit, visitor, vps);
    };
    structure.write = [vps](const Sps& record, std::vector<uint8_t>& out) {
        return qv::hevc::writeSps(record, out, vps);
    };
    structure.size = [vps](const Sps& record) { return qv::hevc::sizeOf(record, vps); };
    structure.extensionData = {"sps_extension_data_flag"};
    structure.violable = 200;
    structure.steer = [layers](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::hevc::kNalSps});
        unit.choose("nuh_layer_id", layers);
        unit.choose("sps_ext_or_max_sub_layers_minus1", {7, 7, 7, 0, 2, 6});
    };
    return structure;
}

// A VPS of three layers with two representation formats: the second has 4:2:2 and 10 bits.
std::unique_ptr<Vps> threeLayers() {
    auto vps = std::make_unique<Vps>();
    vps->vps_max_layers_minus1 = 2;
    vps->vps_max_sub_layers_minus1 = 2;
    vps->vps_temporal_id_nesting_flag = true;
    vps->vps_extension_flag = true;
    qv::hevc::VpsExtension& ext = vps->extension;
    ext.layer_id_in_nuh[1] = 3;
    ext.layer_id_in_nuh[2] = 9;
    ext.vps_num_rep_formats_minus1 = 1;
    ext.vps_rep_format_idx[1] = 1;
    ext.rep_format[0] = {640, 480, true, 1, false, 0, 0, false, 0, 0, 0, 0};
    ext.rep_format[1] = {1920, 1088, true, 2, false, 2, 3, true, 1, 2, 3, 4};
    return vps;
}

TEST(HevcSps, roundTrips) {
    checkRoundTrips(sps(), unitRounds(1000));
}

TEST(HevcSps, everyRange) {
    checkRanges(sps(), unitRounds());
}

TEST(HevcSps, cutAtEveryBit) {
    checkCuts(sps(), unitRounds(25));
}

const std::vector<Derivation<Sps>> kDerivations = {
    {"pictureFormatOf",
     [](const Sps& sps) {
         const qv::hevc::PictureFormat format = qv::hevc::pictureFormatOf(sps);
         return format.crop.width + format.display.height + format.sampleAspectRatio.numerator;
     }},
    {"blockSizesOf",
     [](const Sps& sps) {
         const qv::hevc::BlockSizes sizes = qv::hevc::blockSizesOf(sps);
         return sizes.PicSizeInCtbsY + sizes.PicWidthInMinCbsY + sizes.Log2MaxIpcmCbSizeY;
     }},
    {"frameRateOf", [](const Sps& sps) { return qv::hevc::frameRateOf(sps).framesPerSecond.numerator; }},
    {"maxDpbSize", [](const Sps& sps) { return qv::hevc::maxDpbSize(sps).value_or(0); }},
    {"maxDecPicBuffering", [](const Sps& sps) { return qv::hevc::maxDecPicBuffering(sps).value_or(0); }},
    {"maxNumReorderPics", [](const Sps& sps) { return qv::hevc::maxNumReorderPics(sps).value_or(0); }},
    {"maxLatencyPictures", [](const Sps& sps) { return qv::hevc::maxLatencyPictures(sps).value_or(0); }},
    {"profileOf",
     [](const Sps& sps) {
         const qv::hevc::ProfileTierLevel& ptl = sps.profile_tier_level;
         return uint64_t{qv::hevc::profileOf(ptl) != nullptr} + uint64_t{qv::hevc::levelOf(ptl) != nullptr} +
                qv::hevc::maxBitRate(ptl, qv::hevc::HrdType::Nal) +
                qv::hevc::maxCpbSize(ptl, qv::hevc::HrdType::Vcl);
     }},
    {"bitRate",
     [](const Sps& sps) -> uint64_t {
         if (!sps.vui.vui_hrd_parameters_present_flag) {
             return 0;
         }
         const qv::hevc::Hrd& hrd = sps.vui.hrd_parameters;
         uint64_t sum = 0;
         for (uint32_t i = 0; i <= hrd.sub_layer[0].cpb_cnt_minus1; ++i) {
             sum += qv::hevc::bitRate(hrd.common, hrd.sub_layer[0].nal, i) +
                    qv::hevc::cpbSizeDu(hrd.common, hrd.sub_layer[0].vcl, i);
         }
         return sum;
     }},
    {"scalingFactorsOf",
     [](const Sps& sps) {
         static const qv::hevc::Pps pps = {};
         return uint64_t{qv::hevc::scalingFactorsOf(sps, pps).at(3, 5, 31, 31)};
     }},
};

TEST(HevcSps, noAllocationAndNoByteOutside) {
    checkMemory(sps(), unitRounds(50), kDerivations);
    const std::unique_ptr<Vps> vps = threeLayers();
    checkMemory(sps({3, 9}, vps.get()), unitRounds(25), kDerivations);
}

TEST(HevcSps, everyElementOneAboveItsRange) {
    const std::set<std::string> elements = {"forbidden_zero_bit",
                                            "nuh_temporal_id_plus1",
                                            "sps_max_sub_layers_minus1",
                                            "sps_seq_parameter_set_id",
                                            "chroma_format_idc",
                                            "pic_width_in_luma_samples",
                                            "pic_height_in_luma_samples",
                                            "bit_depth_luma_minus8",
                                            "bit_depth_chroma_minus8",
                                            "log2_max_pic_order_cnt_lsb_minus4",
                                            "sps_max_dec_pic_buffering_minus1",
                                            "sps_max_num_reorder_pics",
                                            "log2_min_luma_coding_block_size_minus3",
                                            "log2_diff_max_min_luma_coding_block_size",
                                            "log2_min_luma_transform_block_size_minus2",
                                            "log2_diff_max_min_luma_transform_block_size",
                                            "max_transform_hierarchy_depth_inter",
                                            "max_transform_hierarchy_depth_intra",
                                            "scaling_list_pred_matrix_id_delta",
                                            "scaling_list_dc_coef_minus8",
                                            "scaling_list_delta_coef",
                                            "pcm_sample_bit_depth_luma_minus1",
                                            "pcm_sample_bit_depth_chroma_minus1",
                                            "log2_min_pcm_luma_coding_block_size_minus3",
                                            "log2_diff_max_min_pcm_luma_coding_block_size",
                                            "num_short_term_ref_pic_sets",
                                            "abs_delta_rps_minus1",
                                            "num_negative_pics",
                                            "num_positive_pics",
                                            "delta_poc_s0_minus1",
                                            "delta_poc_s1_minus1",
                                            "num_long_term_ref_pics_sps",
                                            "chroma_sample_loc_type_top_field",
                                            "chroma_sample_loc_type_bottom_field",
                                            "vui_num_units_in_tick",
                                            "vui_time_scale",
                                            "elemental_duration_in_tc_minus1",
                                            "cpb_cnt_minus1",
                                            "min_spatial_segmentation_idc",
                                            "max_bytes_per_pic_denom",
                                            "max_bits_per_min_cu_denom",
                                            "log2_max_mv_length_horizontal",
                                            "log2_max_mv_length_vertical",
                                            "log2_ivmc_sub_pb_size_minus3",
                                            "log2_texmc_sub_pb_size_minus3",
                                            "palette_max_size",
                                            "delta_palette_max_predictor_size",
                                            "sps_num_palette_predictor_initializers_minus1",
                                            "motion_vector_resolution_control_idc"};
    StructureUnderTest<Sps> structure = sps();
    structure.violable = 120;
    structure.steer = [steer = structure.steer](RandomUnit& unit, Random& random) {
        steer(unit, random);
        unit.choose("sps_max_sub_layers_minus1", {0, 1});
        unit.choose("num_short_term_ref_pic_sets", {0, 1, 2});
        unit.choose("num_negative_pics", {0, 1});
        unit.choose("num_positive_pics", {0, 1});
        unit.choose("num_long_term_ref_pics_sps", {0, 1});
        unit.choose("cpb_cnt_minus1", {0, 1});
        unit.choose("sps_extension_present_flag", {1});
        unit.choose("palette_mode_enabled_flag", {1});
        unit.choose("vui_timing_info_present_flag", {1});
        unit.choose("scaling_list_enabled_flag", {0, 0, 0, 1});
        unit.choose("scaling_list_pred_mode_flag", {0, 0, 0, 0, 0, 0, 1});
    };
    EXPECT_THAT(elementsNotViolated(structure, elements), testing::IsEmpty());
}

TEST(HevcSps, layerAbove0RoundTrips) {
    const std::unique_ptr<Vps> vps = threeLayers();
    checkRoundTrips(sps({3, 9}, vps.get()), unitRounds(500));
}

TEST(HevcSps, layerAbove0EveryRange) {
    const std::unique_ptr<Vps> vps = threeLayers();
    checkRanges(sps({3, 9}, vps.get()), unitRounds(1000));
    const std::set<std::string> elements = {"sps_rep_format_idx", "sps_scaling_list_ref_layer_id",
                                            "pcm_sample_bit_depth_luma_minus1"};
    EXPECT_THAT(elementsNotViolated(sps({3}, vps.get()), elements), testing::IsEmpty());
}

TEST(HevcSps, layerAbove0CutAtEveryBit) {
    const std::unique_ptr<Vps> vps = threeLayers();
    checkCuts(sps({3, 9}, vps.get()), unitRounds(25));
}

// --- An SPS laid by hand ---

// The elements up to the VUI, for 1280x720 in blocks of 16 to 64, three sub-layers.
void headOfSps(BitWriter& bits) {
    bits.u(4, "sps_video_parameter_set_id", 5).u(3, "sps_max_sub_layers_minus1", 2);
    bits.u(1, "sps_temporal_id_nesting_flag", 1);
    mainProfileTierLevel(bits, 120);
    // Sub-layer 0 has a level, sub-layer 1 a profile and a level.
    bits.bits("sub_layer_profile_present_flag, sub_layer_level_present_flag", "01 11");
    bits.u(12, "reserved_zero_2bits", 0);
    bits.u(8, "sub_layer_level_idc[0]", 60);
    bits.u(2, "sub_layer_profile_space", 0).u(1, "sub_layer_tier_flag", 1).u(5, "sub_layer_profile_idc", 2);
    bits.u(32, "sub_layer_profile_compatibility_flag", 0x20000000);
    bits.bits("source and packing flags", "0110");
    bits.u(7, "sub_layer_reserved_zero_7bits", 0).u(1, "sub_layer_one_picture_only_constraint_flag", 1);
    bits.u(35, "sub_layer_reserved_zero_35bits", 0).u(1, "sub_layer_inbld_flag", 1);
    bits.u(8, "sub_layer_level_idc[1]", 93);
    bits.ue("sps_seq_parameter_set_id", 3).ue("chroma_format_idc", 1);
    bits.ue("pic_width_in_luma_samples", 1280).ue("pic_height_in_luma_samples", 736);
    bits.u(1, "conformance_window_flag", 1);
    bits.ue("left", 0).ue("right", 0).ue("top", 0).ue("bottom", 8);
    bits.ue("bit_depth_luma_minus8", 2).ue("bit_depth_chroma_minus8", 2);
    bits.ue("log2_max_pic_order_cnt_lsb_minus4", 4);
    bits.u(1, "sps_sub_layer_ordering_info_present_flag", 0);
    bits.ue("sps_max_dec_pic_buffering_minus1[2]", 4).ue("sps_max_num_reorder_pics[2]", 2);
    bits.ue("sps_max_latency_increase_plus1[2]", 5);
    bits.ue("log2_min_luma_coding_block_size_minus3", 1).ue("log2_diff_max_min_luma_coding_block_size", 2);
    bits.ue("log2_min_luma_transform_block_size_minus2", 0);
    bits.ue("log2_diff_max_min_luma_transform_block_size", 3);
    bits.ue("max_transform_hierarchy_depth_inter", 1).ue("max_transform_hierarchy_depth_intra", 2);
    bits.u(1, "scaling_list_enabled_flag", 0).u(1, "amp_enabled_flag", 1);
    bits.u(1, "sample_adaptive_offset_enabled_flag", 1).u(1, "pcm_enabled_flag", 1);
    bits.u(4, "pcm_sample_bit_depth_luma_minus1", 7).u(4, "pcm_sample_bit_depth_chroma_minus1", 9);
    bits.ue("log2_min_pcm_luma_coding_block_size_minus3", 1);
    bits.ue("log2_diff_max_min_pcm_luma_coding_block_size", 1).u(1, "pcm_loop_filter_disabled_flag", 1);
}

void refPicSets(BitWriter& bits) {
    bits.ue("num_short_term_ref_pic_sets", 2);
    bits.ue("num_negative_pics", 1).ue("num_positive_pics", 1);
    bits.ue("delta_poc_s0_minus1[0]", 3).u(1, "used_by_curr_pic_s0_flag[0]", 1);
    bits.ue("delta_poc_s1_minus1[0]", 1).u(1, "used_by_curr_pic_s1_flag[0]", 0);
    bits.u(1, "inter_ref_pic_set_prediction_flag", 1).u(1, "delta_rps_sign", 0);
    bits.ue("abs_delta_rps_minus1", 0).bits("used_by_curr_pic_flag[0..2]", "1 1 1");
    bits.u(1, "long_term_ref_pics_present_flag", 1).ue("num_long_term_ref_pics_sps", 1);
    bits.u(8, "lt_ref_pic_poc_lsb_sps[0]", 0xA5).u(1, "used_by_curr_pic_lt_sps_flag[0]", 1);
    bits.u(1, "sps_temporal_mvp_enabled_flag", 1).u(1, "strong_intra_smoothing_enabled_flag", 0);
}

void vuiWithHrd(BitWriter& bits) {
    bits.u(1, "vui_parameters_present_flag", 1);
    bits.u(1, "aspect_ratio_info_present_flag", 1).u(8, "aspect_ratio_idc", 255);
    bits.u(16, "sar_width", 64).u(16, "sar_height", 45);
    bits.u(1, "overscan_info_present_flag", 1).u(1, "overscan_appropriate_flag", 1);
    bits.u(1, "video_signal_type_present_flag", 1).u(3, "video_format", 1);
    bits.u(1, "video_full_range_flag", 1).u(1, "colour_description_present_flag", 1);
    bits.u(8, "colour_primaries", 9).u(8, "transfer_characteristics", 18).u(8, "matrix_coeffs", 9);
    bits.u(1, "chroma_loc_info_present_flag", 1).ue("top", 2).ue("bottom", 3);
    bits.u(1, "neutral_chroma_indication_flag", 0).u(1, "field_seq_flag", 1);
    bits.u(1, "frame_field_info_present_flag", 1).u(1, "default_display_window_flag", 1);
    bits.ue("left", 1).ue("right", 2).ue("top", 3).ue("bottom", 4);
    bits.u(1, "vui_timing_info_present_flag", 1).u(32, "vui_num_units_in_tick", 1001);
    bits.u(32, "vui_time_scale", 60000).u(1, "vui_poc_proportional_to_timing_flag", 1);
    bits.ue("vui_num_ticks_poc_diff_one_minus1", 0).u(1, "vui_hrd_parameters_present_flag", 1);
    bits.u(1, "nal_hrd_parameters_present_flag", 1).u(1, "vcl_hrd_parameters_present_flag", 0);
    bits.u(1, "sub_pic_hrd_params_present_flag", 1).u(8, "tick_divisor_minus2", 98);
    bits.u(5, "du_cpb_removal_delay_increment_length_minus1", 7);
    bits.u(1, "sub_pic_cpb_params_in_pic_timing_sei_flag", 1).u(5, "dpb_output_delay_du_length_minus1", 11);
    bits.u(4, "bit_rate_scale", 2).u(4, "cpb_size_scale", 3).u(4, "cpb_size_du_scale", 4);
    bits.u(5, "initial_cpb_removal_delay_length_minus1", 20).u(5, "au_cpb_removal_delay_length_minus1", 21);
    bits.u(5, "dpb_output_delay_length_minus1", 22);
    // Sub-layer 0: fixed rate. Sub-layer 1: fixed within the sequence. Sub-layer 2: low delay.
    bits.bits("fixed_pic_rate_general_flag", "1").ue("elemental_duration_in_tc_minus1", 3);
    bits.ue("cpb_cnt_minus1", 1);
    for (uint32_t i = 0; i < 2; ++i) {
        bits.ue("bit_rate_value_minus1", 100 + i).ue("cpb_size_value_minus1", 200 + i);
        bits.ue("cpb_size_du_value_minus1", 300 + i).ue("bit_rate_du_value_minus1", 400 + i);
        bits.u(1, "cbr_flag", i);
    }
    bits.bits("fixed_pic_rate_general_flag, fixed_pic_rate_within_cvs_flag", "01");
    bits.ue("elemental_duration_in_tc_minus1", 1).ue("cpb_cnt_minus1", 0);
    bits.ue("value", 1).ue("value", 2).ue("value", 3).ue("value", 4).u(1, "cbr_flag", 1);
    bits.bits("fixed_pic_rate_general_flag, fixed_pic_rate_within_cvs_flag, low_delay_hrd_flag", "001");
    bits.ue("value", 5).ue("value", 6).ue("value", 7).ue("value", 8).u(1, "cbr_flag", 0);
    bits.u(1, "bitstream_restriction_flag", 1).bits("flags", "101");
    bits.ue("min_spatial_segmentation_idc", 17).ue("max_bytes_per_pic_denom", 0);
    bits.ue("max_bits_per_min_cu_denom", 4).ue("log2_max_mv_length_horizontal", 11);
    bits.ue("log2_max_mv_length_vertical", 10);
}

BitWriter wholeSps() {
    BitWriter bits;
    headOfSps(bits);
    refPicSets(bits);
    vuiWithHrd(bits);
    bits.u(1, "sps_extension_present_flag", 0);
    return bits;
}

TEST(HevcSps, elementsOfTheHead) {
    const std::vector<uint8_t> unit = hevcUnit(33, wholeSps());
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const Sps& record = read.record;
    EXPECT_EQ(record.sps_video_parameter_set_id, 5U);
    EXPECT_EQ(record.sps_max_sub_layers_minus1, 2U);
    EXPECT_TRUE(record.sps_temporal_id_nesting_flag);
    EXPECT_EQ(record.sps_seq_parameter_set_id, 3U);
    EXPECT_EQ(record.chroma_format_idc, 1U);
    EXPECT_EQ(record.pic_width_in_luma_samples, 1280U);
    EXPECT_EQ(record.pic_height_in_luma_samples, 736U);
    EXPECT_EQ(record.conf_win_bottom_offset, 8U);
    EXPECT_EQ(record.bit_depth_luma_minus8, 2U);
    EXPECT_EQ(record.log2_max_pic_order_cnt_lsb_minus4, 4U);
    EXPECT_EQ(record.log2_diff_max_min_luma_transform_block_size, 3U);
    EXPECT_EQ(record.max_transform_hierarchy_depth_intra, 2U);
    EXPECT_FALSE(record.scaling_list_enabled_flag);
    EXPECT_TRUE(record.amp_enabled_flag);
    EXPECT_TRUE(record.pcm_enabled_flag);
    EXPECT_EQ(record.pcm_sample_bit_depth_chroma_minus1, 9U);
    EXPECT_TRUE(record.pcm_loop_filter_disabled_flag);
    EXPECT_EQ(record.num_long_term_ref_pics_sps, 1U);
    EXPECT_EQ(record.lt_ref_pic_poc_lsb_sps[0], 0xA5);
    EXPECT_TRUE(record.used_by_curr_pic_lt_sps_flag[0]);
    EXPECT_TRUE(record.sps_temporal_mvp_enabled_flag);
    EXPECT_FALSE(record.strong_intra_smoothing_enabled_flag);
    expectRewritten(sps(), unit);
}

// The zero bits of profile_tier_level() need emulation prevention bytes before anything else is read.
TEST(HevcSps, separateColourPlanesOfDifferentDepthsAfterEmulationPrevention) {
    BitWriter bits;
    bits.u(4, "sps_video_parameter_set_id", 0).u(3, "sps_max_sub_layers_minus1", 0);
    bits.u(1, "sps_temporal_id_nesting_flag", 1);
    mainProfileTierLevel(bits);
    bits.ue("sps_seq_parameter_set_id", 0).ue("chroma_format_idc", 3).u(1, "separate_colour_plane_flag", 1);
    bits.ue("pic_width_in_luma_samples", 640).ue("pic_height_in_luma_samples", 480);
    bits.u(1, "conformance_window_flag", 0);
    bits.ue("bit_depth_luma_minus8", 4).ue("bit_depth_chroma_minus8", 1);
    bits.ue("log2_max_pic_order_cnt_lsb_minus4", 4).u(1, "sps_sub_layer_ordering_info_present_flag", 1);
    bits.ue("sps_max_dec_pic_buffering_minus1", 4).ue("sps_max_num_reorder_pics", 2);
    bits.ue("sps_max_latency_increase_plus1", 0).ue("log2_min_luma_coding_block_size_minus3", 0);
    bits.ue("log2_diff_max_min_luma_coding_block_size", 3);
    bits.ue("log2_min_luma_transform_block_size_minus2", 0);
    bits.ue("log2_diff_max_min_luma_transform_block_size", 3);
    bits.ue("max_transform_hierarchy_depth_inter", 0).ue("max_transform_hierarchy_depth_intra", 0);
    bits.bits("scaling lists, AMP, SAO, PCM", "0100").ue("num_short_term_ref_pic_sets", 0);
    bits.bits("long-term, temporal MVP, smoothing, VUI, extension", "01100");
    const std::vector<uint8_t> unit = hevcUnit(33, bits);
    EXPECT_EQ(std::vector<uint8_t>(unit.begin() + 4, unit.begin() + 9), hex("60 00 00 03 00"));
    expectRewritten(sps(), unit);
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit));
    EXPECT_EQ(read.record.profile_tier_level.general_level_idc, 93U);
    EXPECT_TRUE(read.record.separate_colour_plane_flag);
    EXPECT_EQ(qv::hevc::chromaArrayType(read.record), 0U);
    EXPECT_EQ(read.record.bit_depth_luma_minus8, 4U);
    EXPECT_EQ(read.record.bit_depth_chroma_minus8, 1U);
}

TEST(HevcSps, subLayersWithoutOrderingInfoHaveThatOfTheHighest) {
    const std::vector<uint8_t> unit = hevcUnit(33, wholeSps());
    const Sps record = qv::hevc::readSps(bytesOf(unit)).record;
    for (uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(record.sps_max_dec_pic_buffering_minus1[i], 4U) << i;
        EXPECT_EQ(record.sps_max_num_reorder_pics[i], 2U) << i;
        EXPECT_EQ(record.sps_max_latency_increase_plus1[i], 5U) << i;
    }
    EXPECT_EQ(record.sps_max_dec_pic_buffering_minus1[3], 0U);
}

TEST(HevcSps, profilesOfSubLayers) {
    const std::vector<uint8_t> unit = hevcUnit(33, wholeSps());
    const qv::hevc::ProfileTierLevel ptl = qv::hevc::readSps(bytesOf(unit)).record.profile_tier_level;
    EXPECT_EQ(ptl.general.profile_idc, 1U);
    EXPECT_EQ(ptl.general.profile_compatibility_flag, 0b110U);
    EXPECT_TRUE(ptl.general.progressive_source_flag);
    EXPECT_FALSE(ptl.general.interlaced_source_flag);
    EXPECT_TRUE(ptl.general.frame_only_constraint_flag);
    EXPECT_EQ(ptl.general_level_idc, 120U);
    EXPECT_FALSE(ptl.sub_layer[0].profile_present_flag);
    EXPECT_EQ(ptl.sub_layer[0].level_idc, 60U);
    EXPECT_TRUE(ptl.sub_layer[1].profile_present_flag);
    EXPECT_TRUE(ptl.sub_layer[1].profile.tier_flag);
    EXPECT_EQ(ptl.sub_layer[1].profile.profile_idc, 2U);
    EXPECT_EQ(ptl.sub_layer[1].profile.profile_compatibility_flag, 0b100U);
    EXPECT_TRUE(ptl.sub_layer[1].profile.interlaced_source_flag);
    EXPECT_TRUE(ptl.sub_layer[1].profile.one_picture_only_constraint_flag);
    EXPECT_TRUE(ptl.sub_layer[1].profile.inbld_flag);
    EXPECT_EQ(ptl.sub_layer[1].level_idc, 93U);
}

TEST(HevcSps, elementsOfTheVui) {
    const std::vector<uint8_t> unit = hevcUnit(33, wholeSps());
    const qv::hevc::Vui vui = qv::hevc::readSps(bytesOf(unit)).record.vui;
    EXPECT_EQ(vui.aspect_ratio_idc, 255U);
    EXPECT_EQ(vui.sar_width, 64U);
    EXPECT_EQ(vui.sar_height, 45U);
    EXPECT_TRUE(vui.overscan_appropriate_flag);
    EXPECT_EQ(vui.video_format, 1U);
    EXPECT_TRUE(vui.video_full_range_flag);
    EXPECT_EQ(vui.colour_primaries, 9U);
    EXPECT_EQ(vui.transfer_characteristics, 18U);
    EXPECT_EQ(vui.matrix_coeffs, 9U);
    EXPECT_EQ(vui.chroma_sample_loc_type_top_field, 2U);
    EXPECT_EQ(vui.chroma_sample_loc_type_bottom_field, 3U);
    EXPECT_TRUE(vui.field_seq_flag);
    EXPECT_TRUE(vui.frame_field_info_present_flag);
    EXPECT_EQ(vui.def_disp_win_left_offset, 1U);
    EXPECT_EQ(vui.def_disp_win_bottom_offset, 4U);
    EXPECT_EQ(vui.vui_num_units_in_tick, 1001U);
    EXPECT_EQ(vui.vui_time_scale, 60000U);
    EXPECT_TRUE(vui.vui_poc_proportional_to_timing_flag);
    EXPECT_TRUE(vui.tiles_fixed_structure_flag);
    EXPECT_FALSE(vui.motion_vectors_over_pic_boundaries_flag);
    EXPECT_TRUE(vui.restricted_ref_pic_lists_flag);
    EXPECT_EQ(vui.min_spatial_segmentation_idc, 17U);
    EXPECT_EQ(vui.max_bytes_per_pic_denom, 0U);
    EXPECT_EQ(vui.max_bits_per_min_cu_denom, 4U);
    EXPECT_EQ(vui.log2_max_mv_length_horizontal, 11U);
    EXPECT_EQ(vui.log2_max_mv_length_vertical, 10U);
}

TEST(HevcSps, elementsOfTheHrd) {
    const std::vector<uint8_t> unit = hevcUnit(33, wholeSps());
    const Sps record = qv::hevc::readSps(bytesOf(unit)).record;
    const qv::hevc::Hrd& hrd = record.vui.hrd_parameters;
    EXPECT_EQ(hrd.common.tick_divisor_minus2, 98U);
    EXPECT_EQ(hrd.common.dpb_output_delay_du_length_minus1, 11U);
    EXPECT_EQ(hrd.common.cpb_size_du_scale, 4U);
    EXPECT_EQ(hrd.common.au_cpb_removal_delay_length_minus1, 21U);
    EXPECT_TRUE(hrd.sub_layer[0].fixed_pic_rate_within_cvs_flag);
    EXPECT_EQ(hrd.sub_layer[0].elemental_duration_in_tc_minus1, 3U);
    EXPECT_EQ(hrd.sub_layer[0].cpb_cnt_minus1, 1U);
    EXPECT_EQ(hrd.sub_layer[0].nal.bit_rate_value_minus1[1], 101U);
    EXPECT_EQ(hrd.sub_layer[0].nal.cpb_size_value_minus1[0], 200U);
    EXPECT_EQ(hrd.sub_layer[0].nal.cpb_size_du_value_minus1[1], 301U);
    EXPECT_EQ(hrd.sub_layer[0].nal.bit_rate_du_value_minus1[0], 400U);
    EXPECT_FALSE(hrd.sub_layer[0].nal.cbr_flag[0]);
    EXPECT_TRUE(hrd.sub_layer[0].nal.cbr_flag[1]);
    EXPECT_FALSE(hrd.sub_layer[1].fixed_pic_rate_general_flag);
    EXPECT_TRUE(hrd.sub_layer[1].fixed_pic_rate_within_cvs_flag);
    EXPECT_FALSE(hrd.sub_layer[1].low_delay_hrd_flag);
    EXPECT_TRUE(hrd.sub_layer[2].low_delay_hrd_flag);
    EXPECT_EQ(hrd.sub_layer[2].cpb_cnt_minus1, 0U);
    EXPECT_EQ(hrd.sub_layer[2].elemental_duration_in_tc_minus1, 0U);
    EXPECT_EQ(hrd.sub_layer[2].nal.cpb_size_value_minus1[0], 6U);
}

TEST(HevcSps, valuesInferredWithoutVui) {
    BitWriter bits;
    headOfSps(bits);
    refPicSets(bits);
    bits.u(1, "vui_parameters_present_flag", 0).u(1, "sps_extension_present_flag", 0);
    const std::vector<uint8_t> unit = hevcUnit(33, bits);
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    const qv::hevc::Vui& vui = read.record.vui;
    EXPECT_EQ(vui.video_format, 5U);
    EXPECT_EQ(vui.colour_primaries, 2U);
    EXPECT_EQ(vui.transfer_characteristics, 2U);
    EXPECT_EQ(vui.matrix_coeffs, 2U);
    EXPECT_TRUE(vui.motion_vectors_over_pic_boundaries_flag);
    EXPECT_EQ(vui.max_bytes_per_pic_denom, 2U);
    EXPECT_EQ(vui.max_bits_per_min_cu_denom, 1U);
    EXPECT_EQ(vui.log2_max_mv_length_horizontal, 15U);
    EXPECT_EQ(vui.log2_max_mv_length_vertical, 15U);
}

// Pictures of a stream that may be either progressive or interlaced say which they are.
TEST(HevcSps, frameFieldInfoInferredWithoutVui) {
    BitWriter bits;
    headOfSps(bits);
    refPicSets(bits);
    bits.u(1, "vui_parameters_present_flag", 0).u(1, "sps_extension_present_flag", 0);
    std::vector<uint8_t> rbsp = bits.trailingBits().bytes();
    for (const uint8_t sourceFlags : std::vector<uint8_t>{0x00, 0x40, 0x80, 0xC0}) {
        rbsp[6] = sourceFlags;  // general_progressive_source_flag and the 7 bits after it
        const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(hevcUnitOf(33, rbsp)));
        ASSERT_TRUE(read.ok());
        EXPECT_EQ(read.record.vui.frame_field_info_present_flag, sourceFlags == 0xC0) << int{sourceFlags};
    }
}

TEST(HevcSps, cutByHandAtEveryBit) {
    const BitWriter bits = wholeSps();
    const std::vector<uint8_t> unit = hevcUnit(33, bits);
    RecordingVisitor whole;
    ASSERT_TRUE(qv::hevc::traceSps(bytesOf(unit), whole).ok());
    size_t next = 0;
    for (uint64_t cut = 16; cut < 16 + bits.bitCount(); ++cut) {
        while (whole.elements[next].firstBit + whole.elements[next].width <= cut) {
            ++next;
        }
        const std::vector<uint8_t> part = hevcUnitCutAt(33, bits, cut - 16);
        const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(part));
        EXPECT_EQ(read.fault.kind, FaultKind::EndOfData) << cut;
        EXPECT_EQ(qv::textOf(read.fault.element), qv::textOf(whole.elements[next].element)) << cut;
        EXPECT_EQ(read.fault.firstBit, whole.elements[next].firstBit) << cut;
    }
}

TEST(HevcSps, otherUnit) {
    const std::vector<uint8_t> unit = hevcUnit(34, wholeSps());
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, FaultKind::OtherUnit);
    EXPECT_EQ(read.fault.value, 34);
    EXPECT_EQ(read.record.num_short_term_ref_pic_sets, 0U);
}

TEST(HevcSps, extensionsThatAreNotDefinedAreKept) {
    BitWriter bits;
    headOfSps(bits);
    refPicSets(bits);
    bits.u(1, "vui_parameters_present_flag", 0).u(1, "sps_extension_present_flag", 1);
    bits.bits("flags", "0000").u(4, "sps_extension_4bits", 9).u(45, "sps_extension_data_flag", 0x123456789A);
    const std::vector<uint8_t> unit = hevcUnit(33, bits);
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.sps_extension_4bits, 9U);
    EXPECT_EQ(read.record.sps_extension_data_flag.count, 45U);
    qv::Reader reader(read.record.sps_extension_data_flag);
    uint64_t flags = 0;
    reader.u(45, "flags", flags);
    EXPECT_EQ(flags, 0x123456789AU);
    expectRewritten(sps(), unit);
}

// --- Layers above 0 ---

// The extension form: no profile, size or buffering.
BitWriter layerSps(bool update, uint32_t rep_format_idx) {
    BitWriter bits;
    bits.u(4, "sps_video_parameter_set_id", 0).u(3, "sps_ext_or_max_sub_layers_minus1", 7);
    bits.ue("sps_seq_parameter_set_id", 1).u(1, "update_rep_format_flag", update ? 1 : 0);
    if (update) {
        bits.u(8, "sps_rep_format_idx", rep_format_idx);
    }
    bits.ue("log2_max_pic_order_cnt_lsb_minus4", 4);
    bits.ue("block sizes", 0).ue("", 3).ue("", 0).ue("", 3).ue("", 0).ue("", 0);
    bits.u(1, "scaling_list_enabled_flag", 1).u(1, "sps_infer_scaling_list_flag", 1);
    bits.u(6, "sps_scaling_list_ref_layer_id", 0);
    bits.bits("amp, sao, pcm", "000").ue("num_short_term_ref_pic_sets", 0);
    bits.bits("long term, temporal mvp, smoothing", "000");
    return bits;
}

void vuiWithHrdOfEachSubLayer(BitWriter& bits, uint32_t subLayers) {
    bits.bits("vui_parameters_present_flag and flags", "1 0000 0000");
    bits.u(1, "vui_timing_info_present_flag", 1).u(32, "", 1).u(32, "", 50).u(1, "poc proportional", 0);
    bits.u(1, "vui_hrd_parameters_present_flag", 1).bits("nal, vcl", "00");
    for (uint32_t i = 0; i < subLayers; ++i) {
        bits.bits("fixed_pic_rate_general_flag", "1").ue("elemental_duration_in_tc_minus1", i);
        bits.ue("cpb_cnt_minus1", 0);
    }
    bits.u(1, "bitstream_restriction_flag", 0);
}

TEST(HevcSps, layerTakesFormatAndSubLayersFromItsVps) {
    const std::unique_ptr<Vps> vps = threeLayers();
    BitWriter bits = layerSps(false, 0);
    vuiWithHrdOfEachSubLayer(bits, 3);
    bits.u(1, "sps_extension_present_flag", 0);
    const std::vector<uint8_t> unit = hevcUnit(33, bits, 3);
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit), vps.get());
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 0U);
    const Sps& record = read.record;
    EXPECT_TRUE(multiLayerExtSpsFlag(record));
    EXPECT_EQ(record.sps_max_sub_layers_minus1, 2U);
    EXPECT_TRUE(record.sps_temporal_id_nesting_flag);
    EXPECT_EQ(record.pic_width_in_luma_samples, 1920U);
    EXPECT_EQ(record.pic_height_in_luma_samples, 1088U);
    EXPECT_EQ(record.chroma_format_idc, 2U);
    EXPECT_EQ(record.bit_depth_luma_minus8, 2U);
    EXPECT_EQ(record.bit_depth_chroma_minus8, 3U);
    EXPECT_EQ(record.conf_win_left_offset, 1U);
    EXPECT_EQ(record.conf_win_right_offset, 2U);
    EXPECT_EQ(record.conf_win_top_offset, 3U);
    EXPECT_EQ(record.conf_win_bottom_offset, 4U);
    EXPECT_TRUE(record.sps_infer_scaling_list_flag);
    EXPECT_EQ(record.vui.hrd_parameters.sub_layer[2].elemental_duration_in_tc_minus1, 2U);
    expectRewritten(sps({3}, vps.get()), unit);
}

TEST(HevcSps, layerMayNameAnotherFormat) {
    const std::unique_ptr<Vps> vps = threeLayers();
    BitWriter bits = layerSps(true, 0);
    bits.bits("vui, extension", "00");
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(hevcUnit(33, bits, 3)), vps.get());
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.pic_width_in_luma_samples, 640U);
    EXPECT_EQ(read.record.sps_rep_format_idx, 0U);
}

TEST(HevcSps, layerMayNameAFormatThatItsVpsDoesNotHave) {
    const std::unique_ptr<Vps> vps = threeLayers();
    Sps sps = {};
    sps.header.nuh_layer_id = 3;
    sps.sps_ext_or_max_sub_layers_minus1 = 7;
    EXPECT_EQ(qv::hevc::repFormatOf(sps, vps.get()), &vps->extension.rep_format[1]);
    vps->extension.vps_rep_format_idx[1] = 2;
    EXPECT_EQ(qv::hevc::repFormatOf(sps, vps.get()), nullptr);
}

TEST(HevcSps, layerWithoutItsVpsHasNoFormat) {
    BitWriter bits = layerSps(false, 0);
    bits.bits("vui, extension", "00");
    const std::unique_ptr<Vps> other = threeLayers();
    const std::vector<uint8_t> unit = hevcUnit(33, bits, 5);
    // Without a VPS, with one that does not know layer 5, and with one that has no extension.
    auto base = std::make_unique<Vps>();
    for (const Vps* vps : {static_cast<const Vps*>(nullptr), static_cast<const Vps*>(other.get()),
                           static_cast<const Vps*>(base.get())}) {
        const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit), vps);
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.record.pic_width_in_luma_samples, 0U);
        EXPECT_EQ(read.record.chroma_format_idc, 0U);
    }
}

TEST(HevcSps, layerWithoutItsVpsHasNoHrd) {
    BitWriter bits = layerSps(false, 0);
    vuiWithHrdOfEachSubLayer(bits, 3);
    bits.u(1, "sps_extension_present_flag", 0);
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(hevcUnit(33, bits, 3)));
    EXPECT_EQ(read.fault.kind, FaultKind::NoSuchSet);
    EXPECT_STREQ(read.fault.element.name, "sps_video_parameter_set_id");
}

TEST(HevcSps, layerWithoutItsVpsHasNoPalette) {
    BitWriter bits = layerSps(false, 0);
    bits.u(1, "vui_parameters_present_flag", 0).bits("extensions: scc", "1 0001 0000");
    bits.bits("sps_curr_pic_ref_enabled_flag, palette_mode_enabled_flag", "11");
    bits.ue("palette_max_size", 1).ue("delta_palette_max_predictor_size", 0);
    bits.u(1, "sps_palette_predictor_initializers_present_flag", 1);
    bits.ue("sps_num_palette_predictor_initializers_minus1", 0).u(10, "[0][0]", 1000).u(11, "[1][0]", 2000);
    bits.u(11, "[2][0]", 2047).u(2, "motion_vector_resolution_control_idc", 1).u(1, "", 1);
    const std::vector<uint8_t> unit = hevcUnit(33, bits, 3);
    EXPECT_EQ(qv::hevc::readSps(bytesOf(unit)).fault.kind, FaultKind::NoSuchSet);

    const std::unique_ptr<Vps> vps = threeLayers();
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit), vps.get());
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.sps_palette_predictor_initializer[0][0], 1000);
    EXPECT_EQ(read.record.sps_palette_predictor_initializer[1][0], 2000);
    EXPECT_EQ(read.record.sps_palette_predictor_initializer[2][0], 2047);
    EXPECT_EQ(read.record.scc.motion_vector_resolution_control_idc, 1U);
    expectRewritten(sps({3}, vps.get()), unit);
}

TEST(HevcSps, layerMayHaveThePlainForm) {
    BitWriter bits = wholeSps();
    const std::vector<uint8_t> unit = hevcUnit(33, bits, 1);
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_FALSE(multiLayerExtSpsFlag(read.record));
    EXPECT_EQ(read.record.sps_ext_or_max_sub_layers_minus1, 2U);
    EXPECT_EQ(read.record.sps_max_sub_layers_minus1, 2U);
    EXPECT_EQ(read.record.pic_width_in_luma_samples, 1280U);
    expectRewritten(sps({1}), unit);
}

TEST(HevcSps, writerTakesNoBoundsFromAnInferredValue) {
    Sps record = {};
    record.header = {33, 3, 1};
    record.sps_ext_or_max_sub_layers_minus1 = 7;
    record.sps_max_sub_layers_minus1 = 4000000000;
    record.bit_depth_luma_minus8 = 4000000000;
    record.bit_depth_chroma_minus8 = 4000000000;
    record.chroma_format_idc = 77;
    record.vui_parameters_present_flag = true;
    record.vui.vui_timing_info_present_flag = true;
    record.vui.vui_num_units_in_tick = 1;
    record.vui.vui_time_scale = 25;
    record.vui.vui_hrd_parameters_present_flag = true;
    record.sps_extension_present_flag = true;
    record.sps_scc_extension_flag = true;
    record.scc.palette_mode_enabled_flag = true;
    record.scc.palette_max_size = 1;
    record.scc.sps_palette_predictor_initializers_present_flag = true;
    std::unique_ptr<Vps> vps = threeLayers();
    std::vector<uint8_t> out;
    EXPECT_TRUE(writeSps(record, out, vps.get()).ok());
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(out), vps.get());
    EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.sps_max_sub_layers_minus1, 2U);

    out.clear();
    EXPECT_EQ(writeSps(record, out).fault.kind, FaultKind::NoSuchSet);
    EXPECT_THAT(out, testing::IsEmpty());

    // A VPS that no read gives.
    vps->vps_max_sub_layers_minus1 = 4000000000;
    vps->extension.vps_num_rep_formats_minus1 = 4000000000;
    vps->extension.vps_rep_format_idx[1] = 60000;
    EXPECT_EQ(writeSps(record, out, vps.get()).fault.kind, FaultKind::NoSuchSet);
}

// --- Two views, as an encoder wrote them ---

TEST(HevcSps, setsOfTwoViews) {
    const std::vector<uint8_t> base =
        hex("42010101600000030090000003000003001ea018206165959a4932b80400000fa0000186a05010");
    const qv::Read<Sps> read = qv::hevc::readSps(bytesOf(base));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.sps_multilayer_extension_flag);
    EXPECT_EQ(qv::hevc::sizeOf(read.record).bits, 288U);
    expectRewritten(sps(), base);

    const std::vector<uint8_t> second = hex("42090e85924cae005030");
    const qv::Read<Sps> layer = qv::hevc::readSps(bytesOf(second));
    ASSERT_TRUE(layer.ok()) << qv::textOf(layer.fault);
    EXPECT_EQ(layer.record.header.nuh_layer_id, 1U);
    EXPECT_TRUE(multiLayerExtSpsFlag(layer.record));
    EXPECT_TRUE(layer.record.multilayer.inter_view_mv_vert_constraint_flag);
    EXPECT_EQ(layer.record.sps_seq_parameter_set_id, 1U);
    EXPECT_EQ(layer.trailing.bits, 0U);
    EXPECT_EQ(qv::hevc::sizeOf(layer.record).bits, 80U);
    expectRewritten(sps({1}), second);
}

}  // namespace
