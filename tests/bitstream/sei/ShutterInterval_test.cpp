// Exposure times.
#include "bitstream/sei/ShutterInterval.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "bitstream/sei/ShutterIntervalSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<ShutterIntervalInfo> shutterIntervalInfo(Codec codec) {
    auto structure = payloadUnderTest<ShutterIntervalInfo>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { shutter_interval_info(s, c, payload); });
    structure.violable = codec == Codec::Avc ? 2 : 1;
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("sii_sub_layer_idx", {0, 0, 0, 7}); };
    return structure;
}

TEST(SeiShutterInterval, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(shutterIntervalInfo(codec), unitRounds());
    }
}

TEST(SeiShutterInterval, everyRange) {
    EXPECT_THAT(checkRanges(shutterIntervalInfo(Codec::Avc), unitRounds()),
                IsSupersetOf({"sii_sub_layer_idx", "sii_time_scale"}));
    EXPECT_THAT(checkRanges(shutterIntervalInfo(Codec::Hevc), unitRounds()),
                IsSupersetOf({"sii_time_scale"}));
}

TEST(SeiShutterInterval, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(shutterIntervalInfo(codec), unitRounds(50));
    }
}

TEST(SeiShutterInterval, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(shutterIntervalInfo(codec), unitRounds(25));
    }
}

// A time scale of 27 MHz, 0x019BFCC0, and 1/100 s, 270000 = 0x00041EB0 units.
TEST(SeiShutterInterval, oneIntervalForAllSubLayers) {
    const std::string timeScale = "00000001100110111111110011000000";
    const std::string units = "00000000000001000001111010110000";
    // sii_sub_layer_idx 0, shutter_interval_info_present_flag
    const auto avc = payloadOf<ShutterIntervalInfo>(Context(Codec::Avc), "1 1" + timeScale + "1" + units);
    EXPECT_EQ(avc->sii_time_scale, 27000000U);
    EXPECT_TRUE(avc->fixed_shutter_interval_within_cvs_flag);
    EXPECT_EQ(avc->sii_num_units_in_shutter_interval, 270000U);
    const auto hevc = payloadOf<ShutterIntervalInfo>(Context(Codec::Hevc), timeScale + "1" + units);
    EXPECT_EQ(hevc->sii_time_scale, 27000000U);
    EXPECT_TRUE(hevc->fixed_shutter_interval_within_clvs_flag);
    EXPECT_FALSE(hevc->fixed_shutter_interval_within_cvs_flag);
    EXPECT_EQ(hevc->sii_num_units_in_shutter_interval, 270000U);
}

TEST(SeiShutterInterval, intervalsOfSubLayers) {
    const std::string scale = "00000000000000000000000000000001";
    const std::string two = "00000000000000000000000000000010";
    // sii_max_sub_layers_minus1 1
    const auto payload =
        payloadOf<ShutterIntervalInfo>(Context(Codec::Avc), "1 1" + scale + "0 001" + two + scale);
    EXPECT_EQ(payload->sii_max_sub_layers_minus1, 1U);
    EXPECT_EQ(payload->sub_layer_num_units_in_shutter_interval[0], 2U);
    EXPECT_EQ(payload->sub_layer_num_units_in_shutter_interval[1], 1U);
    // Of sub-layer 1: the intervals came with sub-layer 0.
    EXPECT_EQ(payloadOf<ShutterIntervalInfo>(Context(Codec::Avc), "010")->sii_sub_layer_idx, 1U);
    EXPECT_FALSE(
        payloadOf<ShutterIntervalInfo>(Context(Codec::Avc), "1 0")->shutter_interval_info_present_flag);
}

}  // namespace
