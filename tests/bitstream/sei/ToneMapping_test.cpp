// Tone mapping.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HandMadePayload.h"
#include "PayloadChecks.h"
#include "bitstream/sei/ToneMapping.h"
#include "bitstream/sei/ToneMappingSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

PayloadUnderTest<ToneMappingInfo> toneMapping(Codec codec) {
    auto structure = payloadUnderTest<ToneMappingInfo>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { tone_mapping_info(s, c, payload); });
    structure.extensionData = {"extension_data"};
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 16 != 0) {
            unit.choose("tone_map_cancel_flag", {0});
        }
        unit.choose("tone_map_model_id", {0, 1, 2, 3, 4, 5, qv::kMostUe});
        unit.choose("target_bit_depth", {1, 2, 3, 5, 8, 9});
        unit.choose("num_pivots", {0, 1, 2, 5, 40});
        unit.choose("camera_iso_speed_idc", {0, 30, 255});
        unit.choose("exposure_idx_idc", {0, 30, 255});
        unit.choose("exposure_index_idc", {0, 30, 255});
    };
    structure.violable = 6;
    return structure;
}

TEST(SeiToneMapping, roundTrips) {
    checkRoundTrips(toneMapping(Codec::Avc), unitRounds());
    checkRoundTrips(toneMapping(Codec::Hevc), unitRounds());
}

TEST(SeiToneMapping, cutAtEveryByte) {
    checkCuts(toneMapping(Codec::Avc), unitRounds(50));
    checkCuts(toneMapping(Codec::Hevc), unitRounds(50));
}

TEST(SeiToneMapping, everyRange) {
    EXPECT_THAT(checkRanges(toneMapping(Codec::Avc), unitRounds()),
                IsSupersetOf({"tone_map_repetition_period", "coded_data_bit_depth", "target_bit_depth"}));
    EXPECT_THAT(checkRanges(toneMapping(Codec::Hevc), unitRounds()),
                IsSupersetOf({"coded_data_bit_depth", "target_bit_depth"}));
}

TEST(SeiToneMapping, noAllocationAndNoByteOutside) {
    for (const Codec codec : {Codec::Avc, Codec::Hevc}) {
        checkMemory(toneMapping(codec), unitRounds(25),
                    {{"intervals",
                      [](const ToneMappingInfo& payload) {
                          uint64_t sum = 0;
                          ToneMapIntervals intervals(payload);
                          for (uint32_t start = 0; intervals.next(start);) {
                              sum += start + 1;
                          }
                          return sum;
                      }},
                     {"pivots", [](const ToneMappingInfo& payload) {
                          uint64_t sum = 0;
                          ToneMapPivots pivots(payload);
                          for (ToneMapPivot pivot = {}; pivots.next(pivot);) {
                              sum += pivot.coded_pivot_value + pivot.target_pivot_value + 1;
                          }
                          return sum;
                      }}});
    }
}

TEST(SeiToneMapping, twoPivots) {
    // 1 tone_map_id 0, 0 tone_map_cancel_flag, 1 tone_map_persistence_flag, 00001000 coded_data_bit_depth,
    // 00001000 target_bit_depth, 00100 tone_map_model_id 3, 16 bits num_pivots 2, 8 bits each
    const HandMadePayload<ToneMappingInfo> payload(Context(Codec::Hevc),
                                                   {0xA1, 0x01, 0x04, 0x00, 0x02, 0x10, 0x20, 0xEB, 0xFF});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->tone_map_id, 0U);
    EXPECT_TRUE(payload->tone_map_persistence_flag);
    EXPECT_EQ(payload->coded_data_bit_depth, 8U);
    EXPECT_EQ(payload->tone_map_model_id, 3U);
    EXPECT_EQ(payload->num_pivots, 2U);
    ToneMapPivots pivots(*payload);
    ToneMapPivot pivot = {};
    ASSERT_TRUE(pivots.next(pivot));
    EXPECT_EQ(pivot.coded_pivot_value, 0x10U);
    EXPECT_EQ(pivot.target_pivot_value, 0x20U);
    ASSERT_TRUE(pivots.next(pivot));
    EXPECT_EQ(pivot.coded_pivot_value, 0xEBU);
    EXPECT_EQ(pivot.target_pivot_value, 0xFFU);
    EXPECT_FALSE(pivots.next(pivot));
    uint32_t start = 0;
    EXPECT_FALSE(ToneMapIntervals(*payload).next(start));
}

TEST(SeiToneMapping, intervalsOfTenBits) {
    // 1 tone_map_id 0, 0 tone_map_cancel_flag, 010 tone_map_repetition_period 1, 00001010
    // coded_data_bit_depth 10, 00000001 target_bit_depth 1, 011 tone_map_model_id 2; two values of 16 bits
    const HandMadePayload<ToneMappingInfo> payload(Context(Codec::Avc),
                                                   {0x90, 0x50, 0x0B, 0x00, 0x40, 0x03, 0xC0});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->tone_map_repetition_period, 1U);
    EXPECT_EQ(payload->coded_data_bit_depth, 10U);
    EXPECT_EQ(payload->target_bit_depth, 1U);
    ToneMapIntervals intervals(*payload);
    uint32_t start = 0;
    ASSERT_TRUE(intervals.next(start));
    EXPECT_EQ(start, 64U);
    ASSERT_TRUE(intervals.next(start));
    EXPECT_EQ(start, 960U);
    EXPECT_FALSE(intervals.next(start));
    ToneMapPivot pivot = {};
    EXPECT_FALSE(ToneMapPivots(*payload).next(pivot));
}

// The largest table: 65536 values.
TEST(SeiToneMapping, intervalsOfSixteenBits) {
    // As above with 00010000 target_bit_depth 16
    std::vector<uint8_t> bytes = {0x90, 0x50, 0x83};
    bytes.resize(bytes.size() + size_t{2} * 65536, 0x55);
    const HandMadePayload<ToneMappingInfo> payload(Context(Codec::Avc), bytes);
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->start_of_coded_interval.count, 1048576U);
    bytes.pop_back();
    const HandMadePayload<ToneMappingInfo> cut(Context(Codec::Avc), bytes);
    EXPECT_EQ(cut.fault().kind, FaultKind::EndOfData);
    EXPECT_EQ(cut.fault().element.subscripts[0], 65535U);
}

TEST(SeiToneMapping, namesOfBothCodecs) {
    // 1 tone_map_id 0, 0 tone_map_cancel_flag, 1 a persistence flag or a repetition period of 0, 00001000 and
    // 00001000 bit depths, 00101 tone_map_model_id 4; 255 and 32 bits, 255 and 32 bits, a flag and the rest
    std::vector<uint8_t> bytes = {0xA1, 0x01, 0x05, 0xFF, 0x01, 0x02, 0x03,
                                  0x04, 0xFF, 0x05, 0x06, 0x07, 0x08};
    bytes.resize(bytes.size() + 18, 0x11);
    bytes.push_back(0x40);
    const HandMadePayload<ToneMappingInfo> avc(Context(Codec::Avc), bytes);
    ASSERT_TRUE(avc.ok()) << qv::textOf(avc.fault());
    EXPECT_EQ(avc->camera_iso_speed_value, 0x01020304U);
    EXPECT_EQ(avc->exposure_idx_value, 0x05060708U);
    EXPECT_THAT(
        avc.names(),
        IsSupersetOf({"exposure_index_idc", "exposure_index_value", "nominal_black_level_luma_code_value",
                      "nominal_white_level_luma_code_value", "extended_white_level_luma_code_value"}));
    const HandMadePayload<ToneMappingInfo> hevc(Context(Codec::Hevc), bytes);
    ASSERT_TRUE(hevc.ok()) << qv::textOf(hevc.fault());
    EXPECT_THAT(hevc.names(),
                IsSupersetOf({"exposure_idx_idc", "exposure_idx_value", "nominal_black_level_code_value",
                              "nominal_white_level_code_value", "extended_white_level_code_value"}));
}

}  // namespace
