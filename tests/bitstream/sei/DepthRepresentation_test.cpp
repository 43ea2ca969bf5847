// Messages about depth views.
#include "bitstream/sei/DepthRepresentation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EntryChecks.h"
#include "bitstream/sei/AlternativeDepthSyntax.h"
#include "bitstream/sei/DepthRepresentationSyntax.h"

namespace qv_test {

// One to many offsets.
inline bool more_depth_timing_offsets(RandomUnit& unit) {
    return unit.more_rbsp_data();
}

}  // namespace qv_test

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<DepthRepresentationInfo> depthRepresentation(Codec codec) {
    auto structure = payloadUnderTest<DepthRepresentationInfo>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { depth_representation_info(s, c, payload); });
    structure.violable = 1;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_views_minus1", {0, 1, 2});
        unit.choose("depth_representation_type", {0, 1, 3, 3, 15});
        unit.choose("depth_nonlinear_representation_num_minus1", {0, 1, 5});
    };
    return structure;
}

PayloadUnderTest<DepthTiming> depthTiming() {
    return payloadUnderTest<DepthTiming>(
        Context(Codec::Avc), [](auto& s, const auto& c, auto& payload) { depth_timing(s, c, payload); });
}

PayloadUnderTest<DepthSamplingInfo> depthSampling() {
    auto structure = payloadUnderTest<DepthSamplingInfo>(
        Context(Codec::Avc),
        [](auto& s, const auto& c, auto& payload) { depth_sampling_info(s, c, payload); });
    structure.violable = 1;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_video_plus_depth_views_minus1", {0, 1, 2});
    };
    return structure;
}

PayloadUnderTest<ConstrainedDepthParameterSetIdentifier> depthParameterSets() {
    return payloadUnderTest<ConstrainedDepthParameterSetIdentifier>(
        Context(Codec::Avc), [](auto& s, const auto& c, auto& payload) {
            constrained_depth_parameter_set_identifier(s, c, payload);
        });
}

// What H.264 reserves is in a test of its own.
PayloadUnderTest<AlternativeDepthInfo> alternativeDepth(Codec codec) {
    auto structure = payloadUnderTest<AlternativeDepthInfo>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { alternative_depth_info(s, c, payload); });
    structure.violable = codec == Codec::Avc ? 3 : 1;
    structure.steer = [codec](RandomUnit& unit, Random& random) {
        if (codec == Codec::Avc) {
            unit.choose("depth_type", {0});
        } else if (random() % 4 != 0) {
            unit.choose("depth_type", {0, 0, 1});
        }
        unit.choose("alternative_depth_info_cancel_flag", {0, 0, 0, 1});
        unit.choose("num_constituent_views_gvd_minus1", {0, 1, 2});
    };
    return structure;
}

TEST(SeiDepth, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(depthRepresentation(codec), unitRounds());
        checkRoundTrips(alternativeDepth(codec), unitRounds());
    }
    checkRoundTrips(depthTiming(), unitRounds());
    checkRoundTrips(depthSampling(), unitRounds());
    checkRoundTrips(depthParameterSets(), unitRounds());
}

TEST(SeiDepth, ranges) {
    EXPECT_THAT(checkRanges(depthRepresentation(Codec::Avc), unitRounds(100)),
                IsSupersetOf({"num_views_minus1"}));
    EXPECT_THAT(checkRanges(depthRepresentation(Codec::Hevc), unitRounds(100)),
                IsSupersetOf({"depth_representation_type"}));
    EXPECT_THAT(checkRanges(depthSampling(), unitRounds(100)),
                IsSupersetOf({"num_video_plus_depth_views_minus1"}));
    EXPECT_THAT(
        checkRanges(alternativeDepth(Codec::Avc), unitRounds(400)),
        IsSupersetOf({"num_constituent_views_gvd_minus1", "prec_gvd_focal_length", "prec_gvd_principal_point",
                      "prec_gvd_rotation_param", "prec_gvd_translation_param"}));
    EXPECT_THAT(checkRanges(alternativeDepth(Codec::Hevc), unitRounds(400)),
                IsSupersetOf({"num_constituent_views_gvd_minus1"}));
}

TEST(SeiDepth, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(depthRepresentation(codec), unitRounds(50));
        checkCuts(alternativeDepth(codec), unitRounds(50));
    }
    checkCuts(depthSampling(), unitRounds(50));
    checkCuts(depthParameterSets(), unitRounds(50));
}

TEST(SeiDepth, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(depthRepresentation(codec), unitRounds(25),
                    {listOf<DepthRepresentation, DepthRepresentationInfo>("views"),
                     listOf<NonlinearDepth, DepthRepresentationInfo>("borders")});
        checkMemory(alternativeDepth(codec), unitRounds(25),
                    {listOf<GvdDepthRange, AlternativeDepthInfo>("depth ranges"),
                     listOf<GvdView, AlternativeDepthInfo>("views")});
    }
    checkMemory(depthSampling(), unitRounds(25), {listOf<DepthGridPosition, DepthSamplingInfo>("positions")});
    checkMemory(depthParameterSets(), unitRounds(25));
}

// A number with a mantissa of 3 bits.
void putNumber(BitWriter& bits, bool sign, uint32_t exponent, uint32_t mantissa) {
    bits.u(1, "sign", sign ? 1 : 0).u(7, "exponent", exponent);
    bits.u(5, "mantissa_len_minus1", 2).u(3, "mantissa", mantissa);
}

TEST(SeiDepth, viewsOfH264) {
    BitWriter bits;
    bits.u(1, "all_views_equal_flag", 0).ue("num_views_minus1", 1);
    bits.u(1, "z_near_flag", 1).u(1, "z_far_flag", 0).u(1, "z_axis_equal_flag", 0);
    bits.u(1, "d_min_flag", 0).u(1, "d_max_flag", 1).ue("depth_representation_type", 3);
    for (uint32_t view = 0; view < 2; ++view) {
        bits.ue("depth_info_view_id", 4 + view).ue("z_axis_reference_view", 6);
        bits.ue("disparity_reference_view", 7);
        putNumber(bits, false, 33, 4);  // 2^2 * 1.5
        putNumber(bits, true, 0, 1);    // -2^-33
    }
    bits.ue("depth_nonlinear_representation_num_minus1", 1);
    bits.ue("depth_nonlinear_representation_model", 90).ue("depth_nonlinear_representation_model", 91);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const auto read = readUnit<DepthRepresentationInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    DepthRepresentations views(read.record);
    DepthRepresentation view;
    ASSERT_TRUE(views.next(view));
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.depth_info_view_id, 5U);
    EXPECT_EQ(view.z_axis_reference_view, 6U);
    EXPECT_EQ(view.disparity_reference_view, 7U);
    EXPECT_EQ(view.z_near.value(), 6);
    EXPECT_EQ(view.z_far.value(), 0);
    EXPECT_EQ(view.d_max.value(), -1.0 / (uint64_t{1} << 33));
    EXPECT_FALSE(views.next(view));
    NonlinearDepthModel borders(read.record);
    NonlinearDepth border;
    ASSERT_TRUE(borders.next(border));
    EXPECT_EQ(border.depth_nonlinear_representation_model, 90U);
    ASSERT_TRUE(borders.next(border));
    EXPECT_EQ(border.depth_nonlinear_representation_model, 91U);
    EXPECT_FALSE(borders.next(border));
}

// z_near_flag 0, z_far_flag 0, d_min_flag 0, d_max_flag 1, depth_representation_type 010 (1),
// disparity_ref_view_id 011 (2), da_sign_flag 0, da_exponent 0100000 (32), da_mantissa_len_minus1 00000,
// da_mantissa 1: 0001 0100 | 1100 1000 | 0000 0001
TEST(SeiDepth, theViewOfH265) {
    const std::vector<uint8_t> unit = {0x14, 0xC8, 0x01, 0x80};
    const auto read = readUnit<DepthRepresentationInfo>(unit, Codec::Hevc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.depth_representation_type, 1U);
    DepthRepresentations views(read.record);
    DepthRepresentation view;
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.disparity_reference_view, 2U);
    EXPECT_EQ(view.d_max.value(), 3);
    EXPECT_FALSE(views.next(view));
}

// The count may be any code number; the data ends the list.
TEST(SeiDepth, moreBordersThanThereIsDataFor) {
    BitWriter bits;
    bits.u(4, "flags", 0).ue("depth_representation_type", 3);
    bits.ue("depth_nonlinear_representation_num_minus1", qv::kMostUe);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const auto read = readUnit<DepthRepresentationInfo>(unit, Codec::Hevc);
    EXPECT_EQ(read.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_EQ(countOf<NonlinearDepth>(read.record), 0U);
}

// per_view_depth_timing_flag 1, offset_len_minus1 00010 (2), depth_disp_delay_offset_fp 101 (5),
// depth_disp_delay_offset_dp 000011 (3), and 00000 1 000001: 1000 1010 | 1000 0110 | 0000 1000 | 001, then
// 10000 to align: fewer bits than an offset has.
TEST(SeiDepth, delaysOfDepthViews) {
    const std::vector<uint8_t> unit = {0x8A, 0x86, 0x08, 0x30, 0x80};
    const auto read = readUnit<DepthTiming>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    DepthTimingOffsets offsets(read.record);
    DepthTimingOffset offset;
    ASSERT_TRUE(offsets.next(offset));
    EXPECT_EQ(offset.offset_len_minus1, 2U);
    EXPECT_EQ(offset.depth_disp_delay_offset_fp, 5U);
    EXPECT_EQ(offset.depth_disp_delay_offset_dp, 3U);
    ASSERT_TRUE(offsets.next(offset));
    EXPECT_EQ(offset.depth_disp_delay_offset_fp, 1U);
    EXPECT_EQ(offset.depth_disp_delay_offset_dp, 1U);
    EXPECT_FALSE(offsets.next(offset));
    const std::vector<uint8_t> cut = {0x8A, 0x80};
    EXPECT_EQ(readUnit<DepthTiming>(cut, Codec::Avc).fault.kind, qv::FaultKind::EndOfData);
}

TEST(SeiDepth, positionsOfTheSamples) {
    BitWriter bits;
    bits.u(16, "dttsr_x_mul", 2).u(4, "dttsr_x_dp", 1).u(16, "dttsr_y_mul", 3).u(4, "dttsr_y_dp", 4);
    bits.u(1, "per_view_depth_grid_pos_flag", 1).ue("num_video_plus_depth_views_minus1", 0);
    bits.ue("depth_grid_view_id", 9).u(20, "depth_grid_pos_x_fp", 0xABCDE).u(4, "depth_grid_pos_x_dp", 5);
    bits.u(1, "depth_grid_pos_x_sign_flag", 1).u(20, "depth_grid_pos_y_fp", 6);
    bits.u(4, "depth_grid_pos_y_dp", 7).u(1, "depth_grid_pos_y_sign_flag", 0);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const auto read = readUnit<DepthSamplingInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.dttsr_y_mul, 3U);
    DepthGridPositions positions(read.record);
    DepthGridPosition position;
    ASSERT_TRUE(positions.next(position));
    EXPECT_EQ(position.depth_grid_view_id, 9U);
    EXPECT_EQ(position.depth_grid_pos_x_fp, 0xABCDEU);
    EXPECT_TRUE(position.depth_grid_pos_x_sign_flag);
    EXPECT_EQ(position.depth_grid_pos_y_dp, 7U);
    EXPECT_FALSE(positions.next(position));
}

TEST(SeiDepth, globalViewAndDepth) {
    BitWriter bits;
    bits.u(1, "alternative_depth_info_cancel_flag", 0).u(2, "depth_type", 0);
    bits.ue("num_constituent_views_gvd_minus1", 0).u(1, "depth_present_gvd_flag", 1);
    bits.u(1, "z_gvd_flag", 1).u(1, "intrinsic_param_gvd_flag", 0);
    bits.u(1, "rotation_gvd_flag", 0).u(1, "translation_gvd_flag", 1);
    for (uint32_t view = 0; view < 2; ++view) {
        putNumber(bits, false, 31 + view, 0);
        putNumber(bits, true, 34, 0);
    }
    bits.ue("prec_gvd_translation_param", 0);
    bits.u(1, "sign_gvd_t_x", 0).u(6, "exp_gvd_t_x", 31);
    bits.u(1, "sign_gvd_t_x", 1).u(6, "exp_gvd_t_x", 30);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const auto read = readUnit<AlternativeDepthInfo>(unit, Codec::Hevc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    GvdDepthRanges ranges(read.record);
    GvdDepthRange range;
    ASSERT_TRUE(ranges.next(range));
    EXPECT_EQ(range.z_near.value(), 1);
    ASSERT_TRUE(ranges.next(range));
    EXPECT_EQ(range.z_near.value(), 2);
    EXPECT_EQ(range.z_far.value(), -8);
    EXPECT_FALSE(ranges.next(range));
    GvdViews views(read.record);
    GvdView view;
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.t_x.value(), 1);
    EXPECT_EQ(view.focal_length_x.value(), 0);
    ASSERT_TRUE(views.next(view));
    EXPECT_EQ(view.t_x.value(), -0.5);
    EXPECT_FALSE(views.next(view));
}

// depth_type 010 (1) and 13 bits.
TEST(SeiDepth, aReservedDepthTypeOfH264IsKept) {
    const std::vector<uint8_t> unit = {0x5A, 0xBC, 0x80};
    const auto read = readUnit<AlternativeDepthInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.depth_type, 1U);
    EXPECT_EQ(read.record.reserved.count, 13U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(writePayload(read.record, Context(Codec::Avc), written).ok());
    EXPECT_EQ(written, (std::vector<uint8_t>{0x5A, 0xBC}));
}

}  // namespace
