// How decoded colours are mapped to those of another display.
#include "bitstream/sei/ColourRemapping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadChecks.h"
#include "bitstream/sei/ColourRemappingSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<KneeFunctionInfo> kneeFunction() {
    auto structure = payloadUnderTest<KneeFunctionInfo>(
        Context(Codec::Hevc),
        [](auto& s, const auto& c, auto& payload) { knee_function_info(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("knee_function_cancel_flag", {random() % 8 == 0});
    };
    structure.violable = 8;
    return structure;
}

PayloadUnderTest<ColourRemappingInfo> remapping(Codec codec) {
    auto structure = payloadUnderTest<ColourRemappingInfo>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { colour_remapping_info(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("colour_remap_cancel_flag", {random() % 8 == 0});
    };
    structure.violable = 29;
    return structure;
}

TEST(SeiColourRemapping, roundTrips) {
    checkRoundTrips(kneeFunction(), unitRounds());
    for (const Codec codec : kCodecs) {
        checkRoundTrips(remapping(codec), unitRounds());
    }
}

TEST(SeiColourRemapping, everyRange) {
    EXPECT_THAT(checkRanges(kneeFunction(), unitRounds()),
                IsSupersetOf({"num_knee_points_minus1", "input_knee_point", "output_knee_point"}));
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(
            checkRanges(remapping(codec), unitRounds()),
            IsSupersetOf({"colour_remap_input_bit_depth", "colour_remap_output_bit_depth",
                          "pre_lut_num_val_minus1", "colour_remap_coeffs", "post_lut_num_val_minus1"}));
    }
    EXPECT_THAT(checkRanges(remapping(Codec::Avc), unitRounds()),
                testing::Contains("colour_remap_repetition_period"));
}

TEST(SeiColourRemapping, cutAtEveryByte) {
    checkCuts(kneeFunction(), unitRounds(50));
    for (const Codec codec : kCodecs) {
        checkCuts(remapping(codec), unitRounds(50));
    }
}

TEST(SeiColourRemapping, noAllocationAndNoByteOutside) {
    checkMemory(kneeFunction(), unitRounds(25));
    for (const Codec codec : kCodecs) {
        checkMemory(remapping(codec), unitRounds(25));
    }
}

// From 1000 % of the nominal peak luminance to 100 %, with one knee at 10 % and 60 %.
TEST(SeiColourRemapping, kneeFunctionWithOnePoint) {
    BitWriter bits;
    bits.ue("knee_function_id", 0).u(1, "knee_function_cancel_flag", 0);
    bits.u(1, "knee_function_persistence_flag", 1).u(32, "input_d_range", 10000);
    bits.u(32, "input_disp_luminance", 8000).u(32, "output_d_range", 1000);
    bits.u(32, "output_disp_luminance", 4000).ue("num_knee_points_minus1", 0);
    bits.u(10, "input_knee_point[ 0 ]", 100).u(10, "output_knee_point[ 0 ]", 600).trailingBits();
    const auto read = readPayloadOf<KneeFunctionInfo>(unitOfPayload(bits.bytes()), Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.knee_function_persistence_flag);
    EXPECT_EQ(read.record.input_d_range, 10000U);
    EXPECT_EQ(read.record.output_disp_luminance, 4000U);
    EXPECT_EQ(read.record.num_knee_points_minus1, 0U);
    EXPECT_EQ(read.record.input_knee_point[0], 100U);
    EXPECT_EQ(read.record.output_knee_point[0], 600U);
}

// 10 bits become 8: values before the matrix have 16 and 8 bits, those after it 8 and 8.
TEST(SeiColourRemapping, lookUpTablesHaveTheBitsOfTheirDepth) {
    BitWriter bits;
    bits.ue("colour_remap_id", 3).u(1, "colour_remap_cancel_flag", 0);
    bits.ue("colour_remap_repetition_period", 16384);
    bits.u(1, "colour_remap_video_signal_info_present_flag", 1).u(1, "colour_remap_full_range_flag", 1);
    bits.u(8, "colour_remap_primaries", 9).u(8, "colour_remap_transfer_function", 16);
    bits.u(8, "colour_remap_matrix_coefficients", 0).u(8, "colour_remap_input_bit_depth", 10);
    bits.u(8, "colour_remap_output_bit_depth", 8).u(8, "pre_lut_num_val_minus1[ 0 ]", 1);
    bits.u(16, "pre_lut_coded_value[ 0 ][ 0 ]", 64).u(8, "pre_lut_target_value[ 0 ][ 0 ]", 16);
    bits.u(16, "pre_lut_coded_value[ 0 ][ 1 ]", 940).u(8, "pre_lut_target_value[ 0 ][ 1 ]", 235);
    bits.u(8, "pre_lut_num_val_minus1[ 1 ]", 0).u(8, "pre_lut_num_val_minus1[ 2 ]", 0);
    bits.u(1, "colour_remap_matrix_present_flag", 1).u(4, "log2_matrix_denom", 10);
    for (const int32_t coefficient : {1024, 0, -1, 0, 1024, 0, -32768, 0, 32767}) {
        bits.se("colour_remap_coeffs", coefficient);
    }
    bits.u(8, "post_lut_num_val_minus1[ 0 ]", 0).u(8, "post_lut_num_val_minus1[ 1 ]", 0);
    bits.u(8, "post_lut_num_val_minus1[ 2 ]", 1);
    bits.u(8, "post_lut_coded_value[ 2 ][ 0 ]", 1).u(8, "post_lut_target_value[ 2 ][ 0 ]", 2);
    bits.u(8, "post_lut_coded_value[ 2 ][ 1 ]", 3).u(8, "post_lut_target_value[ 2 ][ 1 ]", 4);
    bits.trailingBits();
    const auto read = readPayloadOf<ColourRemappingInfo>(unitOfPayload(bits.bytes()), Context(Codec::Avc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const ColourRemappingInfo& info = read.record;
    EXPECT_EQ(info.colour_remap_id, 3U);
    EXPECT_EQ(info.colour_remap_repetition_period, 16384U);
    EXPECT_EQ(info.colour_remap_transfer_function, 16U);
    EXPECT_EQ(info.pre_lut_coded_value[0][1], 940U);
    EXPECT_EQ(info.pre_lut_target_value[0][1], 235U);
    EXPECT_EQ(info.log2_matrix_denom, 10U);
    EXPECT_EQ(info.colour_remap_coeffs[0][2], -1);
    EXPECT_EQ(info.colour_remap_coeffs[2][0], -32768);
    EXPECT_EQ(info.colour_remap_coeffs[2][2], 32767);
    EXPECT_EQ(info.post_lut_coded_value[2][1], 3U);
    EXPECT_EQ(info.post_lut_target_value[2][1], 4U);
}

}  // namespace
