// Messages of multiview streams: operation points and views.
#include "bitstream/sei/ViewScalability.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EntryChecks.h"
#include "bitstream/sei/ViewScalabilitySyntax.h"
#include "bitstream/sei/ViewSetsSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

const Context kContext(Codec::Avc);

void steerOperationPoints(RandomUnit& unit, Random& random) {
    static_cast<void>(random);
    unit.choose("num_operation_points_minus1", {0, 1, 2});
    unit.choose("num_target_output_views_minus1", {0, 0, 1, 2});
    unit.choose("num_directly_dependent_views", {0, 1, 2});
    unit.choose("num_seq_parameter_sets", {0, 1, 2});
    unit.choose("num_subset_seq_parameter_sets", {0, 1, 2});
    unit.choose("num_pic_parameter_sets_minus1", {0, 1});
    unit.choose("num_seq_parameter_set_minus1", {0, 1});
    unit.choose("num_subset_seq_parameter_set_minus1", {0, 1});
    unit.choose("num_pic_parameter_set_minus1", {0, 1});
}

PayloadUnderTest<ViewScalabilityInfo> viewScalabilityInfo() {
    auto structure = payloadUnderTest<ViewScalabilityInfo>(
        kContext, [](auto& s, const auto& c, auto& payload) { view_scalability_info(s, c, payload); });
    structure.violable = 10;
    structure.steer = steerOperationPoints;
    return structure;
}

PayloadUnderTest<MvcdViewScalabilityInfo> mvcdViewScalabilityInfo() {
    auto structure = payloadUnderTest<MvcdViewScalabilityInfo>(
        kContext, [](auto& s, const auto& c, auto& payload) { mvcd_view_scalability_info(s, c, payload); });
    structure.violable = 10;
    structure.steer = steerOperationPoints;
    return structure;
}

PayloadUnderTest<NonRequiredViewComponent> nonRequiredViewComponent() {
    auto structure = payloadUnderTest<NonRequiredViewComponent>(
        kContext, [](auto& s, const auto& c, auto& payload) { non_required_view_component(s, c, payload); });
    structure.violable = 4;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_non_required_view_components_minus1", {0, 1, 2});
    };
    return structure;
}

PayloadUnderTest<OperationPointNotPresent> operationPointNotPresent() {
    auto structure = payloadUnderTest<OperationPointNotPresent>(
        kContext, [](auto& s, const auto& c, auto& payload) { operation_point_not_present(s, c, payload); });
    structure.violable = 1;
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 50 != 0) {
            unit.choose("num_operation_points", {0, 1, 2, 7});
        }
    };
    return structure;
}

// An extension of H.264 is in a test of its own.
PayloadUnderTest<MultiviewViewPosition> multiviewViewPosition(Codec codec) {
    auto structure = payloadUnderTest<MultiviewViewPosition>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { multiview_view_position(s, c, payload); });
    structure.violable = 1;
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("multiview_view_position_extension_flag", {0});
        if (random() % 50 != 0) {
            unit.choose("num_views_minus1", {0, 1, 2, 7});
        }
    };
    return structure;
}

TEST(SeiViewScalability, roundTrips) {
    checkRoundTrips(viewScalabilityInfo(), unitRounds());
    checkRoundTrips(mvcdViewScalabilityInfo(), unitRounds());
    checkRoundTrips(nonRequiredViewComponent(), unitRounds());
    checkRoundTrips(operationPointNotPresent(), unitRounds());
    checkRoundTrips(multiviewViewPosition(Codec::Avc), unitRounds());
    checkRoundTrips(multiviewViewPosition(Codec::Hevc), unitRounds());
}

TEST(SeiViewScalability, ranges) {
    EXPECT_THAT(checkRanges(viewScalabilityInfo(), unitRounds()),
                IsSupersetOf({"num_operation_points_minus1", "num_target_output_views_minus1", "view_id",
                              "constant_frm_rate_idc", "num_directly_dependent_views",
                              "directly_dependent_view_id", "num_seq_parameter_sets",
                              "num_subset_seq_parameter_sets", "num_pic_parameter_sets_minus1"}));
    EXPECT_THAT(checkRanges(mvcdViewScalabilityInfo(), unitRounds()),
                IsSupersetOf({"num_operation_points_minus1", "num_target_output_views_minus1", "view_id",
                              "constant_frm_rate_idc", "num_directly_dependent_views",
                              "directly_dependent_view_id", "num_seq_parameter_set_minus1",
                              "num_subset_seq_parameter_set_minus1", "num_pic_parameter_set_minus1"}));
    EXPECT_THAT(checkRanges(nonRequiredViewComponent(), unitRounds(200)),
                IsSupersetOf({"num_info_entries_minus1", "view_order_index",
                              "num_non_required_view_components_minus1"}));
    EXPECT_THAT(checkRanges(operationPointNotPresent(), unitRounds(50)),
                IsSupersetOf({"num_operation_points"}));
    for (const Codec codec : {Codec::Avc, Codec::Hevc}) {
        EXPECT_THAT(checkRanges(multiviewViewPosition(codec), unitRounds(50)),
                    IsSupersetOf({"num_views_minus1"}));
    }
}

TEST(SeiViewScalability, cutAtEveryByte) {
    checkCuts(viewScalabilityInfo(), unitRounds(50));
    checkCuts(mvcdViewScalabilityInfo(), unitRounds(50));
    checkCuts(nonRequiredViewComponent(), unitRounds(50));
    checkCuts(operationPointNotPresent(), unitRounds(50));
    checkCuts(multiviewViewPosition(Codec::Avc), unitRounds(50));
    checkCuts(multiviewViewPosition(Codec::Hevc), unitRounds(50));
}

TEST(SeiViewScalability, noAllocationAndNoByteOutside) {
    checkMemory(viewScalabilityInfo(), unitRounds(25),
                {listOf<ViewOperationPoint, ViewScalabilityInfo>("operation points")});
    checkMemory(mvcdViewScalabilityInfo(), unitRounds(25),
                {listOf<ViewOperationPoint, MvcdViewScalabilityInfo>("operation points")});
    checkMemory(nonRequiredViewComponent(), unitRounds(25),
                {listOf<NonRequiredViews, NonRequiredViewComponent>("entries")});
    checkMemory(operationPointNotPresent(), unitRounds(25));
    checkMemory(multiviewViewPosition(Codec::Avc), unitRounds(25));
    checkMemory(multiviewViewPosition(Codec::Hevc), unitRounds(25));
}

TEST(SeiViewScalability, operationPoints) {
    BitWriter bits;
    bits.ue("num_operation_points_minus1", 1);
    bits.ue("operation_point_id", 7).u(5, "priority_id", 30).u(3, "temporal_id", 6);
    bits.ue("num_target_output_views_minus1", 0).ue("view_id", 1023);
    bits.bits("profile_level_info_present_flag and on", "111111");
    bits.u(24, "op_profile_level_idc", 0x760028).u(16, "avg_bitrate", 1).u(16, "max_bitrate", 2);
    bits.u(16, "max_bitrate_calc_window", 3).u(2, "constant_frm_rate_idc", 2).u(16, "avg_frm_rate", 7680);
    bits.ue("num_directly_dependent_views", 1).ue("directly_dependent_view_id", 5);
    bits.ue("num_seq_parameter_sets", 1).ue("seq_parameter_set_id_delta", 4);
    bits.ue("num_subset_seq_parameter_sets", 0);
    bits.ue("num_pic_parameter_sets_minus1", 0).ue("pic_parameter_set_id_delta", 6);
    bits.u(1, "motion_vectors_over_pic_boundaries_flag", 0);
    bits.ue("max_bytes_per_pic_denom", 0).ue("max_bits_per_mb_denom", 0);
    bits.ue("log2_max_mv_length_horizontal", 9).ue("log2_max_mv_length_vertical", 8);
    bits.ue("max_num_reorder_frames", 2).ue("max_dec_frame_buffering", 3);
    bits.ue("operation_point_id", 8).u(5, "priority_id", 0).u(3, "temporal_id", 0);
    bits.ue("num_target_output_views_minus1", 1).ue("view_id", 0).ue("view_id", 1);
    bits.bits("profile_level_info_present_flag and on", "00000");
    bits.ue("view_dependency_info_src_op_id", 11).ue("parameter_sets_info_src_op_id", 12);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const qv::Read<ViewScalabilityInfo> read = readUnit<ViewScalabilityInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    ViewOperationPoints points(read.record);
    ViewOperationPoint point;
    ASSERT_TRUE(points.next(point));
    EXPECT_EQ(point.operation_point_id, 7U);
    EXPECT_EQ(point.priority_id, 30U);
    EXPECT_EQ(point.temporal_id, 6U);
    EXPECT_EQ(point.target_output_views[0].view_id, 1023U);
    EXPECT_EQ(point.op_profile_level_idc, 0x760028U);
    EXPECT_EQ(point.max_bitrate_calc_window, 3U);
    EXPECT_EQ(point.avg_frm_rate, 7680U);
    ASSERT_EQ(point.num_directly_dependent_views, 1U);
    EXPECT_EQ(point.directly_dependent_views[0].view_id, 5U);
    EXPECT_EQ(point.parameter_sets.seq_parameter_set_id_delta[0], 4U);
    EXPECT_EQ(point.parameter_sets.pic_parameter_set_id_delta[0], 6U);
    EXPECT_EQ(point.bitstream_restriction.max_num_reorder_frames, 2U);
    ASSERT_TRUE(points.next(point));
    EXPECT_EQ(point.operation_point_id, 8U);
    EXPECT_EQ(point.target_output_views[1].view_id, 1U);
    EXPECT_FALSE(point.view_dependency_info_present_flag);
    EXPECT_EQ(point.max_bitrate_calc_window, 0U);
    EXPECT_EQ(point.num_directly_dependent_views, 0U);
    EXPECT_EQ(point.view_dependency_info_src_op_id, 11U);
    EXPECT_EQ(point.parameter_sets_info_src_op_id, 12U);
    EXPECT_FALSE(points.next(point));
}

TEST(SeiViewScalability, componentsOfAView) {
    BitWriter bits;
    bits.ue("num_operation_points_minus1", 0);
    bits.ue("operation_point_id", 0).u(5, "priority_id", 0).u(3, "temporal_id", 0);
    bits.ue("num_target_output_views_minus1", 1);
    bits.ue("view_id", 3).bits("mvcd_op_view_info()", "10 11");
    bits.ue("view_id", 4).bits("mvcd_op_view_info()", "0 0");
    bits.bits("profile_level_info_present_flag and on", "00010");
    bits.ue("view_dependency_info_src_op_id", 0);
    bits.ue("num_seq_parameter_set_minus1", 0).ue("seq_parameter_set_id_delta", 1);
    bits.ue("num_subset_seq_parameter_set_minus1", 0).ue("subset_seq_parameter_set_id_delta", 2);
    bits.ue("num_pic_parameter_set_minus1", 0).ue("pic_parameter_set_id_delta", 3);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const qv::Read<MvcdViewScalabilityInfo> read = readUnit<MvcdViewScalabilityInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    MvcdViewOperationPoints points(read.record);
    ViewOperationPoint point;
    ASSERT_TRUE(points.next(point));
    EXPECT_TRUE(point.target_output_views[0].view_info_depth_view_present_flag);
    EXPECT_FALSE(point.target_output_views[0].mvcd_depth_view_flag);
    EXPECT_TRUE(point.target_output_views[0].mvcd_texture_view_flag);
    EXPECT_EQ(point.target_output_views[1].view_id, 4U);
    EXPECT_FALSE(point.target_output_views[1].view_info_texture_view_present_flag);
    EXPECT_EQ(point.parameter_sets.subset_seq_parameter_set_id_delta[0], 2U);
    EXPECT_FALSE(points.next(point));
}

TEST(SeiViewScalability, viewsThatAreNotRequired) {
    BitWriter bits;
    bits.ue("num_info_entries_minus1", 0).ue("view_order_index", 3);
    bits.ue("num_non_required_view_components_minus1", 1);
    bits.ue("index_delta_minus1", 0).ue("index_delta_minus1", 1);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const qv::Read<NonRequiredViewComponent> read = readUnit<NonRequiredViewComponent>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok());
    NonRequiredViewList entries(read.record);
    NonRequiredViews entry;
    ASSERT_TRUE(entries.next(entry));
    EXPECT_EQ(entry.view_order_index, 3U);
    ASSERT_EQ(entry.num_non_required_view_components_minus1, 1U);
    EXPECT_EQ(entry.index_delta_minus1[1], 1U);
    EXPECT_FALSE(entries.next(entry));
}

// num_views_minus1 010 (1), view_position 010 (1) and 1 (0); H.264 has one flag more.
TEST(SeiViewScalability, positionsOfTwoViews) {
    const std::vector<uint8_t> hevc = {0x4B, 0x80};  // 0100 101 and the bit 1 that ends the payload
    const qv::Read<MultiviewViewPosition> read = readUnit<MultiviewViewPosition>(hevc, Codec::Hevc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    ASSERT_EQ(read.record.num_views_minus1, 1U);
    EXPECT_EQ(read.record.view_position[0], 1U);
    EXPECT_EQ(read.record.view_position[1], 0U);
    const std::vector<uint8_t> avc = {0x4A, 0x80};  // 0100 101 and the flag 0
    EXPECT_TRUE(readUnit<MultiviewViewPosition>(avc, Codec::Avc).ok());
}

TEST(SeiViewScalability, anExtensionOfViewPositionsIsKept) {
    const std::vector<uint8_t> unit = {0x4B, 0xAB, 0xCD, 0x80};  // 0100 101, the flag 1, and 16 bits
    const qv::Read<MultiviewViewPosition> read = readUnit<MultiviewViewPosition>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.extension.count, 16U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(writePayload(read.record, kContext, written).ok());
    EXPECT_EQ(written, (std::vector<uint8_t>{0x4B, 0xAB, 0xCD}));
}

}  // namespace
