// The subset sequence parameter set of H.264.
#include "bitstream/avc/SubsetSps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BitWriter.h"
#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/SubsetSpsSyntax.h"

namespace {

using namespace qv_test;
using qv::avc::SubsetSps;
using testing::IsSupersetOf;

StructureUnderTest<SubsetSps> subsetSps(std::vector<int64_t> profiles, size_t violable = 40) {
    StructureUnderTest<SubsetSps> structure;
    structure.generate = [](RandomUnit& s, SubsetSps& record) {
        qv::avc::subset_seq_parameter_set_unit(s, record);
    };
    structure.read = qv::avc::readSubsetSps;
    structure.trace = qv::avc::traceSubsetSps;
    structure.write = qv::avc::writeSubsetSps;
    structure.size = [](const SubsetSps& record) { return sizeOf(record); };
    structure.extensionData = {"additional_extension2_data_flag", "seq_parameter_set_3davc_extension"};
    structure.violable = violable;
    structure.steer = [profiles](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalSubsetSps});
        unit.choose("profile_idc", profiles);
        unit.choose("seq_scaling_matrix_present_flag", {0});
        unit.choose("pic_order_cnt_type", {0, 2});
        unit.choose("vui_parameters_present_flag", {0, 0, 0, 1});
        unit.choose("cpb_cnt_minus1", {0, 1, 2});
        unit.choose("vui_ext_num_entries_minus1", {0, 1, 2, 5});
        unit.choose("num_views_minus1", {0, 1, 1, 2, 7, 16, 65});
        unit.choose("num_level_values_signalled_minus1", {0, 1, 2});
        unit.choose("num_applicable_ops_minus1", {0, 1, 2});
        unit.choose("applicable_op_num_target_views_minus1", {0, 1, 2});
        unit.choose("vui_mvc_num_ops_minus1", {0, 1, 2});
        unit.choose("vui_mvc_num_target_output_views_minus1", {0, 1, 2});
        unit.choose("vui_mvcd_num_ops_minus1", {0, 1, 2});
        unit.choose("vui_mvcd_num_target_output_views_minus1", {0, 1, 2});
        // No more references than there are views.
        for (const char* const name : {"num_anchor_refs_l0", "num_anchor_refs_l1", "num_non_anchor_refs_l0",
                                       "num_non_anchor_refs_l1"}) {
            unit.choose(name, {0, 1});
        }
    };
    return structure;
}

const std::vector<int64_t> kSvc = {83, 86};
const std::vector<int64_t> kMvc = {118, 128, 134};
const std::vector<int64_t> kMvcd = {135, 138, 139};
const std::vector<int64_t> kNoExtension = {66, 77, 100, 110, 122, 244, 44, 255};

TEST(AvcSubsetSps, roundTripsOfScalableStreams) {
    checkRoundTrips(subsetSps(kSvc), unitRounds());
}

TEST(AvcSubsetSps, roundTripsOfMultiviewStreams) {
    checkRoundTrips(subsetSps(kMvc), unitRounds());
}

TEST(AvcSubsetSps, roundTripsOfMultiviewAndDepthStreams) {
    checkRoundTrips(subsetSps(kMvcd), unitRounds());
}

TEST(AvcSubsetSps, roundTripsWithoutExtension) {
    checkRoundTrips(subsetSps(kNoExtension), unitRounds());
}

TEST(AvcSubsetSps, everyRange) {
    EXPECT_THAT(checkRanges(subsetSps(kSvc), unitRounds()),
                IsSupersetOf({"extended_spatial_scalability_idc", "chroma_phase_y_plus1",
                              "seq_ref_layer_chroma_phase_y_plus1", "seq_scaled_ref_layer_left_offset",
                              "seq_scaled_ref_layer_top_offset", "seq_scaled_ref_layer_right_offset",
                              "seq_scaled_ref_layer_bottom_offset", "vui_ext_num_entries_minus1",
                              "vui_ext_num_units_in_tick", "vui_ext_time_scale"}));
    EXPECT_THAT(checkRanges(subsetSps(kMvc), unitRounds()),
                IsSupersetOf({"bit_equal_to_one",
                              "num_views_minus1",
                              "view_id",
                              "num_anchor_refs_l0",
                              "anchor_ref_l0",
                              "num_anchor_refs_l1",
                              "anchor_ref_l1",
                              "num_non_anchor_refs_l0",
                              "non_anchor_ref_l0",
                              "num_non_anchor_refs_l1",
                              "non_anchor_ref_l1",
                              "num_level_values_signalled_minus1",
                              "num_applicable_ops_minus1",
                              "applicable_op_num_target_views_minus1",
                              "applicable_op_target_view_id",
                              "applicable_op_num_views_minus1",
                              "vui_mvc_num_ops_minus1",
                              "vui_mvc_num_target_output_views_minus1",
                              "vui_mvc_view_id",
                              "vui_mvc_num_units_in_tick",
                              "vui_mvc_time_scale"}));
    EXPECT_THAT(checkRanges(subsetSps(kMvcd), unitRounds()),
                IsSupersetOf({"bit_equal_to_one", "applicable_op_num_texture_views_minus1",
                              "applicable_op_num_depth_views", "vui_mvcd_num_ops_minus1",
                              "vui_mvcd_num_target_output_views_minus1", "vui_mvcd_view_id",
                              "vui_mvcd_num_units_in_tick", "vui_mvcd_time_scale"}));
    checkRanges(subsetSps(kNoExtension, 20), unitRounds());
}

TEST(AvcSubsetSps, cutAtEveryBit) {
    for (const auto& profiles : {kSvc, kMvc, kMvcd, kNoExtension}) {
        checkCuts(subsetSps(profiles), unitRounds(20));
    }
}

uint64_t sumOf(const qv::avc::Views& views) {
    uint64_t sum = 0;
    qv::avc::View view = {};
    for (qv::avc::ViewList list(views); list.next(view);) {
        sum += view.view_id + view.anchor_refs.num_refs_l0 + view.non_anchor_refs.num_refs_l1;
    }
    qv::avc::OperationPoint point;
    for (qv::avc::OperationPoints points(views); points.next(point);) {
        sum += point.level_idc + point.target_views[point.applicable_op_num_target_views_minus1].view_id;
    }
    return sum;
}

uint64_t sumOf(const qv::avc::MvcVuiExtension& vui) {
    uint64_t sum = 0;
    qv::avc::VuiOperationPoint point;
    for (qv::avc::VuiOperationPoints points(vui); points.next(point);) {
        sum += 1 + point.target_output_views[point.num_target_output_views_minus1].view_id;
    }
    return sum;
}

TEST(AvcSubsetSps, noAllocationAndNoByteOutside) {
    checkMemory(subsetSps(kSvc), unitRounds(25), {{"SvcVuiEntries", [](const SubsetSps& sps) {
                                                       uint64_t sum = 0;
                                                       qv::avc::SvcVuiEntry entry = {};
                                                       for (qv::avc::SvcVuiEntries entries(sps.svc_vui);
                                                            entries.next(entry);) {
                                                           sum += 1 + entry.timing.time_scale;
                                                       }
                                                       return sum;
                                                   }}});
    checkMemory(subsetSps(kMvc), unitRounds(25),
                {{"Views", [](const SubsetSps& sps) { return sumOf(sps.mvc.views); }},
                 {"VuiOperationPoints", [](const SubsetSps& sps) { return sumOf(sps.mvc_vui); }}});
    checkMemory(subsetSps(kMvcd), unitRounds(25),
                {{"Views", [](const SubsetSps& sps) { return sumOf(sps.mvcd.views); }},
                 {"depth VUI", [](const SubsetSps& sps) { return sumOf(sps.mvcd.mvcd_vui); }},
                 {"texture VUI", [](const SubsetSps& sps) { return sumOf(sps.mvcd.texture_vui); }}});
    checkMemory(subsetSps(kNoExtension), unitRounds(25));
}

// --- By hand ---

// seq_parameter_set_data() of 320x240 up to its end, without VUI.
BitWriter setData(uint32_t profile_idc, bool frame_mbs_only_flag = true, uint32_t chroma_format_idc = 1) {
    BitWriter bits;
    bits.u(8, "header", 0x6F).u(8, "profile_idc", profile_idc).u(8, "constraint flags", 0);
    bits.u(8, "level_idc", 31).ue("seq_parameter_set_id", 4).ue("chroma_format_idc", chroma_format_idc);
    if (chroma_format_idc == 3) {
        bits.u(1, "separate_colour_plane_flag", 0);
    }
    bits.ue("bit_depth_luma_minus8", 0).ue("bit_depth_chroma_minus8", 0);
    bits.u(1, "qpprime_y_zero_transform_bypass_flag", 0).u(1, "seq_scaling_matrix_present_flag", 0);
    bits.ue("log2_max_frame_num_minus4", 0).ue("pic_order_cnt_type", 2).ue("max_num_ref_frames", 2);
    bits.u(1, "gaps_in_frame_num_value_allowed_flag", 0).ue("pic_width_in_mbs_minus1", 19);
    bits.ue("pic_height_in_map_units_minus1", 14).u(1, "frame_mbs_only_flag", frame_mbs_only_flag ? 1 : 0);
    if (!frame_mbs_only_flag) {
        bits.u(1, "mb_adaptive_frame_field_flag", 0);
    }
    bits.u(1, "direct_8x8_inference_flag", 1).u(1, "frame_cropping_flag", 0);
    bits.u(1, "vui_parameters_present_flag", 0);
    return bits;
}

void timing(BitWriter& bits, uint32_t time_scale) {
    bits.u(1, "timing_info_present_flag", 1).u(32, "num_units_in_tick", 1001);
    bits.u(32, "time_scale", time_scale).u(1, "fixed_frame_rate_flag", 1);
    bits.u(1, "nal_hrd_parameters_present_flag", 1);
    bits.ue("cpb_cnt_minus1", 0).u(4, "bit_rate_scale", 1).u(4, "cpb_size_scale", 2);
    bits.ue("bit_rate_value_minus1", 999).ue("cpb_size_value_minus1", 499).u(1, "cbr_flag", 1);
    bits.u(20, "lengths", 0);
    bits.u(1, "vcl_hrd_parameters_present_flag", 0).u(1, "low_delay_hrd_flag", 1);
    bits.u(1, "pic_struct_present_flag", 1);
}

// The unit with rbsp_trailing_bits() and emulation prevention, read without a fault and written as it was.
struct ReadBack {
    explicit ReadBack(BitWriter bits)
        : unit(withEmulationPrevention(bits.trailingBits().bytes())),
          read(qv::avc::readSubsetSps(bytesOf(unit))) {
        EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.trailing.bits, 0U);
        std::vector<uint8_t> written;
        EXPECT_TRUE(qv::avc::writeSubsetSps(read.record, written).ok());
        EXPECT_EQ(written, unit);
    }

    std::vector<uint8_t> unit;
    qv::Read<SubsetSps> read;
};

TEST(AvcSubsetSps, scalableStream) {
    BitWriter bits = setData(86);
    bits.u(1, "inter_layer_deblocking_filter_control_present_flag", 1);
    bits.u(2, "extended_spatial_scalability_idc", 1);
    bits.u(1, "chroma_phase_x_plus1_flag", 0).u(2, "chroma_phase_y_plus1", 2);
    bits.u(1, "seq_ref_layer_chroma_phase_x_plus1_flag", 1).u(2, "seq_ref_layer_chroma_phase_y_plus1", 0);
    bits.se("seq_scaled_ref_layer_left_offset", -32768).se("seq_scaled_ref_layer_top_offset", 32767);
    bits.se("seq_scaled_ref_layer_right_offset", 4).se("seq_scaled_ref_layer_bottom_offset", -4);
    bits.u(1, "seq_tcoeff_level_prediction_flag", 1).u(1, "adaptive_tcoeff_level_prediction_flag", 1);
    bits.u(1, "slice_header_restriction_flag", 0);
    bits.u(1, "svc_vui_parameters_present_flag", 1).ue("vui_ext_num_entries_minus1", 1);
    for (uint32_t i = 0; i <= 1; ++i) {
        bits.u(3, "vui_ext_dependency_id", i).u(4, "vui_ext_quality_id", 9).u(3, "vui_ext_temporal_id", 7);
        timing(bits, 30000 * (i + 1));
    }
    bits.u(1, "additional_extension2_flag", 0);

    const ReadBack back(bits);
    const SubsetSps& sps = back.read.record;
    EXPECT_EQ(sps.data.seq_parameter_set_id, 4U);
    EXPECT_EQ(sps.data.pic_width_in_mbs_minus1, 19U);
    EXPECT_TRUE(sps.svc.inter_layer_deblocking_filter_control_present_flag);
    EXPECT_FALSE(sps.svc.chroma_phase_x_plus1_flag);
    EXPECT_EQ(sps.svc.chroma_phase_y_plus1, 2U);
    EXPECT_TRUE(sps.svc.seq_ref_layer_chroma_phase_x_plus1_flag);
    EXPECT_EQ(sps.svc.seq_ref_layer_chroma_phase_y_plus1, 0U);
    EXPECT_EQ(sps.svc.seq_scaled_ref_layer_left_offset, -32768);
    EXPECT_EQ(sps.svc.seq_scaled_ref_layer_top_offset, 32767);
    EXPECT_EQ(sps.svc.seq_scaled_ref_layer_right_offset, 4);
    EXPECT_EQ(sps.svc.seq_scaled_ref_layer_bottom_offset, -4);
    EXPECT_TRUE(sps.svc.adaptive_tcoeff_level_prediction_flag);
    EXPECT_FALSE(sps.svc.slice_header_restriction_flag);

    qv::avc::SvcVuiEntries entries(sps.svc_vui);
    qv::avc::SvcVuiEntry entry;
    for (uint32_t i = 0; i <= 1; ++i) {
        ASSERT_TRUE(entries.next(entry));
        EXPECT_EQ(entry.vui_ext_dependency_id, i);
        EXPECT_EQ(entry.vui_ext_quality_id, 9U);
        EXPECT_EQ(entry.vui_ext_temporal_id, 7U);
        EXPECT_EQ(entry.timing.num_units_in_tick, 1001U);
        EXPECT_EQ(entry.timing.time_scale, 30000 * (i + 1));
        EXPECT_EQ(entry.timing.nal_hrd_parameters.bit_rate_value_minus1[0], 999U);
        EXPECT_FALSE(entry.timing.vcl_hrd_parameters_present_flag);
        EXPECT_TRUE(entry.timing.low_delay_hrd_flag);
        EXPECT_TRUE(entry.timing.pic_struct_present_flag);
    }
    EXPECT_FALSE(entries.next(entry));
}

TEST(AvcSubsetSps, chromaPhasesThatAreNotPresentAreInferred) {
    const struct {
        uint32_t chroma_format_idc;
        bool hasX;
        bool hasY;
    } cases[] = {{0, false, false}, {1, true, true}, {2, true, false}, {3, false, false}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.chroma_format_idc);
        BitWriter bits = setData(83, true, one.chroma_format_idc);
        bits.u(1, "inter_layer_deblocking_filter_control_present_flag", 0);
        bits.u(2, "extended_spatial_scalability_idc", 0);
        if (one.hasX) {
            bits.u(1, "chroma_phase_x_plus1_flag", 0);
        }
        if (one.hasY) {
            bits.u(2, "chroma_phase_y_plus1", 0);
        }
        bits.u(1, "seq_tcoeff_level_prediction_flag", 0).u(1, "slice_header_restriction_flag", 1);
        bits.u(1, "svc_vui_parameters_present_flag", 0).u(1, "additional_extension2_flag", 0);
        const ReadBack back(bits);
        const qv::avc::SpsSvcExtension& svc = back.read.record.svc;
        EXPECT_EQ(svc.chroma_phase_x_plus1_flag, !one.hasX);
        EXPECT_EQ(svc.chroma_phase_y_plus1, one.hasY ? 0U : 1U);
        EXPECT_EQ(svc.seq_ref_layer_chroma_phase_x_plus1_flag, !one.hasX);
        EXPECT_EQ(svc.seq_ref_layer_chroma_phase_y_plus1, one.hasY ? 0U : 1U);
        EXPECT_TRUE(svc.slice_header_restriction_flag);
    }
}

// Three views: 0, 2 predicted from 0, 1 predicted from both.
void threeViews(BitWriter& bits) {
    bits.ue("num_views_minus1", 2).ue("view_id", 0).ue("view_id", 2).ue("view_id", 1);
    for (const char* const what : {"anchor", "non_anchor"}) {
        bits.ue(what, 1).ue("ref_l0", 0).ue("num_refs_l1", 0);
        bits.ue(what, 1).ue("ref_l0", 0).ue("num_refs_l1", 2).ue("ref_l1", 2).ue("ref_l1", 0);
    }
}

TEST(AvcSubsetSps, multiviewStream) {
    BitWriter bits = setData(118);
    bits.u(1, "bit_equal_to_one", 1);
    threeViews(bits);
    bits.ue("num_level_values_signalled_minus1", 1);
    bits.u(8, "level_idc", 31).ue("num_applicable_ops_minus1", 0);
    bits.u(3, "applicable_op_temporal_id", 1).ue("applicable_op_num_target_views_minus1", 0);
    bits.ue("applicable_op_target_view_id", 2).ue("applicable_op_num_views_minus1", 1);
    bits.u(8, "level_idc", 40).ue("num_applicable_ops_minus1", 1);
    bits.u(3, "applicable_op_temporal_id", 2).ue("applicable_op_num_target_views_minus1", 1);
    bits.ue("applicable_op_target_view_id", 0).ue("applicable_op_target_view_id", 1);
    bits.ue("applicable_op_num_views_minus1", 2);
    bits.u(3, "applicable_op_temporal_id", 3).ue("applicable_op_num_target_views_minus1", 0);
    bits.ue("applicable_op_target_view_id", 1).ue("applicable_op_num_views_minus1", 2);
    bits.u(1, "mvc_vui_parameters_present_flag", 1).ue("vui_mvc_num_ops_minus1", 0);
    bits.u(3, "vui_mvc_temporal_id", 4).ue("vui_mvc_num_target_output_views_minus1", 1);
    bits.ue("vui_mvc_view_id", 0).ue("vui_mvc_view_id", 2);
    timing(bits, 50000);
    bits.u(1, "additional_extension2_flag", 0);

    const ReadBack back(bits);
    const SubsetSps& sps = back.read.record;
    EXPECT_EQ(sps.mvc.views.num_views_minus1, 2U);
    qv::avc::ViewList views(sps.mvc.views);
    qv::avc::View view;
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 0U);
    EXPECT_TRUE(view.texture_view_present_flag);
    EXPECT_FALSE(view.depth_view_present_flag);
    EXPECT_EQ(view.anchor_refs.num_refs_l0, 0U);
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 2U);
    EXPECT_EQ(view.anchor_refs.num_refs_l0, 1U);
    EXPECT_EQ(view.anchor_refs.ref_l0[0], 0U);
    EXPECT_EQ(view.anchor_refs.num_refs_l1, 0U);
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 1U);
    EXPECT_EQ(view.non_anchor_refs.num_refs_l0, 1U);
    EXPECT_EQ(view.non_anchor_refs.num_refs_l1, 2U);
    EXPECT_EQ(view.non_anchor_refs.ref_l1[0], 2U);
    EXPECT_EQ(view.non_anchor_refs.ref_l1[1], 0U);
    EXPECT_FALSE(views.next(view));

    qv::avc::OperationPoints points(sps.mvc.views);
    qv::avc::OperationPoint point;
    ASSERT_TRUE(points.next(point));
    EXPECT_EQ(point.level_idc, 31U);
    EXPECT_EQ(point.applicable_op_temporal_id, 1U);
    EXPECT_EQ(point.target_views[0].view_id, 2U);
    EXPECT_TRUE(point.target_views[0].texture_flag);
    EXPECT_EQ(point.applicable_op_num_views_minus1, 1U);
    ASSERT_TRUE(points.next(point));
    EXPECT_EQ(point.level_idc, 40U);
    EXPECT_EQ(point.applicable_op_num_target_views_minus1, 1U);
    EXPECT_EQ(point.target_views[1].view_id, 1U);
    ASSERT_TRUE(points.next(point));
    EXPECT_EQ(point.level_idc, 40U);
    EXPECT_EQ(point.applicable_op_temporal_id, 3U);
    EXPECT_EQ(point.applicable_op_num_views_minus1, 2U);
    EXPECT_FALSE(points.next(point));

    qv::avc::VuiOperationPoints vuiPoints(sps.mvc_vui);
    qv::avc::VuiOperationPoint vuiPoint;
    ASSERT_TRUE(vuiPoints.next(vuiPoint));
    EXPECT_EQ(vuiPoint.temporal_id, 4U);
    EXPECT_EQ(vuiPoint.num_target_output_views_minus1, 1U);
    EXPECT_EQ(vuiPoint.target_output_views[1].view_id, 2U);
    EXPECT_EQ(vuiPoint.timing.time_scale, 50000U);
    EXPECT_FALSE(vuiPoints.next(vuiPoint));
}

TEST(AvcSubsetSps, frameCompatibleStream) {
    for (const bool frame_mbs_only_flag : {false, true}) {
        BitWriter bits = setData(134, frame_mbs_only_flag);
        bits.u(1, "bit_equal_to_one", 1).ue("num_views_minus1", 0).ue("view_id", 0);
        bits.ue("num_level_values_signalled_minus1", 0).u(8, "level_idc", 40);
        bits.ue("num_applicable_ops_minus1", 0).u(3, "applicable_op_temporal_id", 0);
        bits.ue("applicable_op_num_target_views_minus1", 0).ue("applicable_op_target_view_id", 0);
        bits.ue("applicable_op_num_views_minus1", 0);
        bits.u(6, "mfc_format_idc", 1).u(1, "default_grid_position_flag", 0);
        bits.u(4, "view0_grid_position_x", 1).u(4, "view0_grid_position_y", 2);
        bits.u(4, "view1_grid_position_x", 3).u(4, "view1_grid_position_y", 15);
        bits.u(1, "rpu_filter_enabled_flag", 1);
        if (!frame_mbs_only_flag) {
            bits.u(1, "rpu_field_processing_flag", 1);
        }
        bits.u(1, "mvc_vui_parameters_present_flag", 0).u(1, "additional_extension2_flag", 0);
        const ReadBack back(bits);
        const qv::avc::SpsMvcExtension& mvc = back.read.record.mvc;
        EXPECT_EQ(mvc.mfc_format_idc, 1U);
        EXPECT_EQ(mvc.view0_grid_position_x, 1U);
        EXPECT_EQ(mvc.view1_grid_position_y, 15U);
        EXPECT_TRUE(mvc.rpu_filter_enabled_flag);
        EXPECT_EQ(mvc.rpu_field_processing_flag, !frame_mbs_only_flag);
    }
}

// Two views, the second with depth, which alone has references.
void multiviewAndDepth(BitWriter& bits) {
    bits.u(1, "bit_equal_to_one", 1).ue("num_views_minus1", 2);
    bits.ue("view_id", 5).u(1, "depth_view_present_flag", 1).u(1, "texture_view_present_flag", 1);
    bits.ue("view_id", 6).u(1, "depth_view_present_flag", 0).u(1, "texture_view_present_flag", 1);
    bits.ue("view_id", 7).u(1, "depth_view_present_flag", 1).u(1, "texture_view_present_flag", 0);
    bits.ue("num_anchor_refs_l0", 1).ue("anchor_ref_l0", 5).ue("num_anchor_refs_l1", 0);
    bits.ue("num_non_anchor_refs_l0", 0).ue("num_non_anchor_refs_l1", 1).ue("non_anchor_ref_l1", 5);
    bits.ue("num_level_values_signalled_minus1", 0).u(8, "level_idc", 41).ue("num_applicable_ops_minus1", 0);
    bits.u(3, "applicable_op_temporal_id", 0).ue("applicable_op_num_target_views_minus1", 1);
    bits.ue("applicable_op_target_view_id", 5).u(1, "applicable_op_depth_flag", 1);
    bits.u(1, "applicable_op_texture_flag", 0);
    bits.ue("applicable_op_target_view_id", 7).u(1, "applicable_op_depth_flag", 0);
    bits.u(1, "applicable_op_texture_flag", 1);
    bits.ue("applicable_op_num_texture_views_minus1", 1).ue("applicable_op_num_depth_views", 2);
    bits.u(1, "mvcd_vui_parameters_present_flag", 1).ue("vui_mvcd_num_ops_minus1", 0);
    bits.u(3, "vui_mvcd_temporal_id", 6).ue("vui_mvcd_num_target_output_views_minus1", 0);
    bits.ue("vui_mvcd_view_id", 7).u(1, "vui_mvcd_depth_flag", 1).u(1, "vui_mvcd_texture_flag", 0);
    timing(bits, 60000);
    bits.u(1, "texture_vui_parameters_present_flag", 1).ue("vui_mvc_num_ops_minus1", 0);
    bits.u(3, "vui_mvc_temporal_id", 5).ue("vui_mvc_num_target_output_views_minus1", 0);
    bits.ue("vui_mvc_view_id", 6);
    timing(bits, 25000);
}

void expectMultiviewAndDepth(const SubsetSps& sps) {
    qv::avc::ViewList views(sps.mvcd.views);
    qv::avc::View view;
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 5U);
    EXPECT_TRUE(view.depth_view_present_flag);
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 6U);
    EXPECT_FALSE(view.depth_view_present_flag);
    EXPECT_EQ(view.anchor_refs.num_refs_l0, 0U);
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 7U);
    EXPECT_FALSE(view.texture_view_present_flag);
    EXPECT_EQ(view.anchor_refs.num_refs_l0, 1U);
    EXPECT_EQ(view.anchor_refs.ref_l0[0], 5U);
    EXPECT_EQ(view.non_anchor_refs.num_refs_l0, 0U);
    EXPECT_EQ(view.non_anchor_refs.ref_l1[0], 5U);
    EXPECT_FALSE(views.next(view));

    qv::avc::OperationPoints points(sps.mvcd.views);
    qv::avc::OperationPoint point;
    ASSERT_TRUE(points.next(point));
    EXPECT_EQ(point.level_idc, 41U);
    EXPECT_EQ(point.target_views[0].view_id, 5U);
    EXPECT_TRUE(point.target_views[0].depth_flag);
    EXPECT_FALSE(point.target_views[0].texture_flag);
    EXPECT_TRUE(point.target_views[1].texture_flag);
    EXPECT_EQ(point.applicable_op_num_texture_views_minus1, 1U);
    EXPECT_EQ(point.applicable_op_num_depth_views, 2U);
    EXPECT_FALSE(points.next(point));

    qv::avc::VuiOperationPoint vuiPoint;
    qv::avc::VuiOperationPoints depth(sps.mvcd.mvcd_vui);
    ASSERT_TRUE(depth.next(vuiPoint));
    EXPECT_EQ(vuiPoint.temporal_id, 6U);
    EXPECT_TRUE(vuiPoint.target_output_views[0].depth_flag);
    EXPECT_FALSE(vuiPoint.target_output_views[0].texture_flag);
    EXPECT_EQ(vuiPoint.timing.time_scale, 60000U);
    qv::avc::VuiOperationPoints texture(sps.mvcd.texture_vui);
    ASSERT_TRUE(texture.next(vuiPoint));
    EXPECT_EQ(vuiPoint.temporal_id, 5U);
    EXPECT_FALSE(vuiPoint.target_output_views[0].depth_flag);
    EXPECT_TRUE(vuiPoint.target_output_views[0].texture_flag);
    EXPECT_EQ(vuiPoint.timing.time_scale, 25000U);
}

TEST(AvcSubsetSps, multiviewAndDepthStream) {
    for (const uint32_t profile_idc : {135U, 138U}) {
        BitWriter bits = setData(profile_idc);
        multiviewAndDepth(bits);
        bits.u(1, "additional_extension2_flag", 0);
        const ReadBack back(bits);
        expectMultiviewAndDepth(back.read.record);
        EXPECT_FALSE(back.read.record.additional_extension2_flag);
    }
}

TEST(AvcSubsetSps, the3dExtensionIsKept) {
    BitWriter bits = setData(139);
    multiviewAndDepth(bits);
    bits.bits("seq_parameter_set_3davc_extension", "1011 0011 1000 11110000");
    const ReadBack back(bits);
    expectMultiviewAndDepth(back.read.record);
    EXPECT_EQ(back.read.record.avc_3d_extension.count, 20U);
}

// A profile that this edition does not define: no extension, and what an additional extension has is kept.
TEST(AvcSubsetSps, reservedExtensionsAreKept) {
    BitWriter bits;
    bits.u(8, "header", 0x6F).u(8, "profile_idc", 200).u(8, "constraint flags", 0).u(8, "level_idc", 31);
    bits.ue("seq_parameter_set_id", 0).ue("log2_max_frame_num_minus4", 0).ue("pic_order_cnt_type", 2);
    bits.ue("max_num_ref_frames", 2).u(1, "gaps_in_frame_num_value_allowed_flag", 0);
    bits.ue("pic_width_in_mbs_minus1", 19).ue("pic_height_in_map_units_minus1", 14);
    bits.u(1, "frame_mbs_only_flag", 1).u(1, "direct_8x8_inference_flag", 1).u(1, "frame_cropping_flag", 0);
    bits.u(1, "vui_parameters_present_flag", 0).u(1, "additional_extension2_flag", 1);
    bits.u(64, "additional_extension2_data_flag", 0x0000000123456789).u(5, "", 3);
    const ReadBack back(bits);
    EXPECT_TRUE(back.read.record.additional_extension2_flag);
    EXPECT_EQ(back.read.record.additional_extension2_data.count, 69U);
}

// Each count at its greatest value: the lists of 1024 views.
TEST(AvcSubsetSps, theMostViews) {
    BitWriter bits = setData(118);
    bits.u(1, "bit_equal_to_one", 1).ue("num_views_minus1", 1023);
    for (uint32_t i = 0; i <= 1023; ++i) {
        bits.ue("view_id", 1023 - i);
    }
    for (uint32_t i = 1; i <= 2 * 1023; ++i) {
        for (int list = 0; list <= 1; ++list) {
            bits.ue("num_refs", 15);
            for (uint32_t j = 0; j < 15; ++j) {
                bits.ue("ref", j);
            }
        }
    }
    bits.ue("num_level_values_signalled_minus1", 63);
    for (uint32_t i = 0; i <= 63; ++i) {
        bits.u(8, "level_idc", i).ue("num_applicable_ops_minus1", i == 63 ? 1023 : 0);
        for (uint32_t j = 0; j <= (i == 63 ? 1023U : 0U); ++j) {
            bits.u(3, "applicable_op_temporal_id", 0).ue("applicable_op_num_target_views_minus1", j);
            for (uint32_t k = 0; k <= j; ++k) {
                bits.ue("applicable_op_target_view_id", k % 8);
            }
            bits.ue("applicable_op_num_views_minus1", 1023);
        }
    }
    bits.u(1, "mvc_vui_parameters_present_flag", 0).u(1, "additional_extension2_flag", 0);
    const ReadBack back(bits);
    qv::avc::ViewList views(back.read.record.mvc.views);
    qv::avc::View view;
    uint32_t count = 0;
    for (; views.next(view); ++count) {
        ASSERT_EQ(view.view_id, 1023 - count);
        ASSERT_EQ(view.non_anchor_refs.num_refs_l1, count == 0 ? 0U : 15U);
    }
    EXPECT_EQ(count, 1024U);
    qv::avc::OperationPoints points(back.read.record.mvc.views);
    qv::avc::OperationPoint point;
    uint32_t pointCount = 0;
    for (; points.next(point); ++pointCount) {
        ASSERT_EQ(point.level_idc, pointCount < 63 ? pointCount : 63U);
    }
    EXPECT_EQ(pointCount, 63U + 1024U);
    EXPECT_EQ(point.applicable_op_num_target_views_minus1, 1023U);
    EXPECT_EQ(point.target_views[1023].view_id, 1023U % 8);
}

// A view may not be predicted from more views than there are others.
TEST(AvcSubsetSps, referencesAreFewerThanViews) {
    BitWriter bits = setData(128);
    bits.u(1, "bit_equal_to_one", 1).ue("num_views_minus1", 1).ue("view_id", 0).ue("view_id", 1);
    bits.ue("num_anchor_refs_l0", 2).ue("anchor_ref_l0", 0).ue("anchor_ref_l0", 0).trailingBits();
    const std::vector<uint8_t> unit = withEmulationPrevention(bits.bytes());
    const auto read = qv::avc::readSubsetSps(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_EQ(qv::textOf(read.fault.element), "num_anchor_refs_l0[1]");
    EXPECT_EQ(read.fault.most, 1);
    // A list that was not read to its end is not there.
    qv::avc::ViewList views(read.record.mvc.views);
    qv::avc::View view;
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 0U);
}

TEST(AvcSubsetSps, listsThatWereNotReadHaveNoEntries) {
    qv::avc::View view;
    EXPECT_FALSE(qv::avc::ViewList({}).next(view));
    qv::avc::OperationPoint point;
    EXPECT_FALSE(qv::avc::OperationPoints({}).next(point));
    qv::avc::VuiOperationPoint vuiPoint;
    EXPECT_FALSE(qv::avc::VuiOperationPoints({}).next(vuiPoint));
    qv::avc::SvcVuiEntry entry;
    EXPECT_FALSE(qv::avc::SvcVuiEntries({}).next(entry));
}

// The second view of a stereo stream.
TEST(AvcSubsetSps, readsTheBytesOfAnEncoderOfTwoViews) {
    const std::vector<uint8_t> unit = {0x6F, 0x80, 0x00, 0x28, 0xAC, 0xD1, 0x82,
                                       0xC4, 0xE5, 0x52, 0xAA, 0xAC, 0xA2, 0x39};
    const auto read = qv::avc::readSubsetSps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 0U);
    EXPECT_EQ(read.record.data.profile_idc, 128U);
    EXPECT_EQ(read.record.data.level_idc, 40U);
    EXPECT_EQ(read.record.mvc.views.num_views_minus1, 1U);
    qv::avc::ViewList views(read.record.mvc.views);
    qv::avc::View view;
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 0U);
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.view_id, 1U);
    EXPECT_EQ(view.anchor_refs.num_refs_l0, 1U);
    EXPECT_EQ(view.anchor_refs.ref_l0[0], 0U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(qv::avc::writeSubsetSps(read.record, written).ok());
    EXPECT_EQ(written, unit);
}

}  // namespace
