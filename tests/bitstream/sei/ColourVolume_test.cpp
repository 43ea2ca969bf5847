// The colours and luminances of content, display and room.
#include "bitstream/sei/ColourVolume.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/ColourVolumeSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::Ratio;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<MasteringDisplayColourVolume> masteringDisplay(Codec codec) {
    return payloadUnderTest<MasteringDisplayColourVolume>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { mastering_display_colour_volume(s, c, payload); });
}

PayloadUnderTest<ContentLightLevelInfo> lightLevel(Codec codec) {
    return payloadUnderTest<ContentLightLevelInfo>(Context(codec), [](auto& s, const auto& c, auto& payload) {
        content_light_level_info(s, c, payload);
    });
}

PayloadUnderTest<AlternativeTransferCharacteristics> transfer(Codec codec) {
    return payloadUnderTest<AlternativeTransferCharacteristics>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { alternative_transfer_characteristics(s, c, payload); });
}

PayloadUnderTest<AmbientViewingEnvironment> ambient(Codec codec) {
    auto structure = payloadUnderTest<AmbientViewingEnvironment>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { ambient_viewing_environment(s, c, payload); });
    structure.violable = 3;
    return structure;
}

PayloadUnderTest<ContentColourVolume> contentVolume(Codec codec) {
    auto structure = payloadUnderTest<ContentColourVolume>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { content_colour_volume(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("ccv_cancel_flag", {random() % 8 == 0});
    };
    structure.violable = 12;
    return structure;
}

TEST(SeiColourVolume, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(masteringDisplay(codec), unitRounds());
        checkRoundTrips(lightLevel(codec), unitRounds());
        checkRoundTrips(transfer(codec), unitRounds());
        checkRoundTrips(ambient(codec), unitRounds());
        checkRoundTrips(contentVolume(codec), unitRounds());
    }
}

TEST(SeiColourVolume, everyRange) {
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(checkRanges(ambient(codec), unitRounds()),
                    IsSupersetOf({"ambient_illuminance", "ambient_light_x", "ambient_light_y"}));
        EXPECT_THAT(checkRanges(contentVolume(codec), unitRounds()),
                    IsSupersetOf({"ccv_primaries_x", "ccv_primaries_y"}));
    }
}

TEST(SeiColourVolume, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(masteringDisplay(codec), unitRounds(50));
        checkCuts(lightLevel(codec), unitRounds(50));
        checkCuts(transfer(codec), unitRounds(50));
        checkCuts(ambient(codec), unitRounds(50));
        checkCuts(contentVolume(codec), unitRounds(50));
    }
}

uint64_t numberOf(const Ratio& ratio) {
    return ratio.numerator + ratio.denominator;
}

uint64_t numberOf(const Chromaticity& colour) {
    return numberOf(colour.x) + numberOf(colour.y);
}

uint64_t numberOf(const MasteringDisplay& display) {
    return numberOf(display.green) + numberOf(display.blue) + numberOf(display.red) +
           numberOf(display.whitePoint) + numberOf(display.maxLuminance) + numberOf(display.minLuminance);
}

TEST(SeiColourVolume, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(masteringDisplay(codec), unitRounds(25),
                    {{"masteringDisplayOf", [](const auto& p) { return numberOf(masteringDisplayOf(p)); }}});
        checkMemory(lightLevel(codec), unitRounds(25));
        checkMemory(transfer(codec), unitRounds(25));
        checkMemory(ambient(codec), unitRounds(25), {{"ambientViewingOf", [](const auto& p) {
                                                          const AmbientViewing viewing = ambientViewingOf(p);
                                                          return numberOf(viewing.illuminance) +
                                                                 numberOf(viewing.light);
                                                      }}});
        checkMemory(contentVolume(codec), unitRounds(25));
    }
}

void expectColour(const Chromaticity& colour, const Ratio& x, const Ratio& y) {
    EXPECT_EQ(colour.x, x);
    EXPECT_EQ(colour.y, y);
}

// The P3 primaries with the white point D65, 1000 cd/m² and 0.005 cd/m²: 13250 is 33C2, 34500 86C4; 7500
// 1D4C, 3000 0BB8; 34000 84D0, 16000 3E80; 15635 3D13, 16450 4042; 10000000 00989680; 50 00000032.
TEST(SeiColourVolume, masteringDisplayWithP3) {
    const std::vector<uint8_t> unit =
        unitOfPayload(hex("33C2 86C4 1D4C 0BB8 84D0 3E80 3D13 4042 00989680 00000032"));
    for (const Codec codec : kCodecs) {
        const auto read = readPayloadOf<MasteringDisplayColourVolume>(unit, Context(codec));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_THAT(read.record.display_primaries_x, testing::ElementsAre(13250, 7500, 34000));
        EXPECT_THAT(read.record.display_primaries_y, testing::ElementsAre(34500, 3000, 16000));
        const MasteringDisplay display = masteringDisplayOf(read.record);
        expectColour(display.green, {53, 200}, {69, 100});
        expectColour(display.blue, {3, 20}, {3, 50});
        expectColour(display.red, {17, 25}, {8, 25});
        expectColour(display.whitePoint, {3127, 10000}, {329, 1000});
        EXPECT_EQ(display.maxLuminance, (Ratio{1000, 1}));
        EXPECT_EQ(display.minLuminance, (Ratio{1, 200}));
    }
}

// H.265 D.3.28: outside 5..37000, 5..42000, 50000..100000000 and 1..50000 a value is unknown.
TEST(SeiColourVolume, masteringDisplayOfUnknownValues) {
    MasteringDisplayColourVolume volume = {};
    volume.display_primaries_x[0] = 4;
    volume.display_primaries_x[1] = 5;
    volume.display_primaries_x[2] = 37000;
    volume.white_point_x = 37001;
    volume.display_primaries_y[0] = 4;
    volume.display_primaries_y[1] = 5;
    volume.display_primaries_y[2] = 42000;
    volume.white_point_y = 42001;
    volume.max_display_mastering_luminance = 49999;
    MasteringDisplay display = masteringDisplayOf(volume);
    expectColour(display.green, {}, {});
    expectColour(display.blue, {1, 10000}, {1, 10000});
    expectColour(display.red, {37, 50}, {21, 25});
    expectColour(display.whitePoint, {}, {});
    EXPECT_EQ(display.maxLuminance, Ratio());
    EXPECT_EQ(display.minLuminance, Ratio());

    volume.max_display_mastering_luminance = 100000000;
    volume.min_display_mastering_luminance = 50000;
    display = masteringDisplayOf(volume);
    EXPECT_EQ(display.maxLuminance, (Ratio{10000, 1}));
    EXPECT_EQ(display.minLuminance, (Ratio{5, 1}));

    volume.max_display_mastering_luminance = 100000001;
    volume.min_display_mastering_luminance = 50001;
    display = masteringDisplayOf(volume);
    EXPECT_EQ(display.maxLuminance, Ratio());
    EXPECT_EQ(display.minLuminance, Ratio());
}

// 314 lx is 3140000 steps, 002FE9A0; D65 as above.
TEST(SeiColourVolume, ambientViewing) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("002FE9A0 3D13 4042"));
    const auto read = readPayloadOf<AmbientViewingEnvironment>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    AmbientViewingEnvironment environment = read.record;
    EXPECT_EQ(environment.ambient_illuminance, 3140000U);
    EXPECT_EQ(ambientViewingOf(environment).illuminance, (Ratio{314, 1}));
    expectColour(ambientViewingOf(environment).light, {3127, 10000}, {329, 1000});
    environment.ambient_light_x = 0;
    environment.ambient_light_y = 50001;
    expectColour(ambientViewingOf(environment).light, {0, 1}, {});
}

// HLG is transfer characteristics 18.
TEST(SeiColourVolume, alternativeTransferOfHlg) {
    const std::vector<uint8_t> unit = unitOfPayload({18});
    const auto read = readPayloadOf<AlternativeTransferCharacteristics>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.preferred_transfer_characteristics, 18U);
}

// A red primary outside the visible colours, and a least luminance.
TEST(SeiColourVolume, contentColourVolume) {
    BitWriter bits;
    bits.u(1, "ccv_cancel_flag", 0).u(1, "ccv_persistence_flag", 1).u(1, "ccv_primaries_present_flag", 1);
    bits.u(1, "ccv_min_luminance_value_present_flag", 1).u(1, "ccv_max_luminance_value_present_flag", 0);
    bits.u(1, "ccv_avg_luminance_value_present_flag", 1).u(2, "ccv_reserved_zero_2bits", 3);
    bits.u(32, "ccv_primaries_x[ 0 ]", 8500).u(32, "ccv_primaries_y[ 0 ]", 39850);
    bits.u(32, "ccv_primaries_x[ 1 ]", 6550).u(32, "ccv_primaries_y[ 1 ]", 2300);
    bits.u(32, "ccv_primaries_x[ 2 ]", 0xFFFFFFFF).u(32, "ccv_primaries_y[ 2 ]", 5000000);
    bits.u(32, "ccv_min_luminance_value", 500).u(32, "ccv_avg_luminance_value", 0xFFFFFFFF);
    const auto read = readPayloadOf<ContentColourVolume>(unitOfPayload(bits.bytes()), Context(Codec::Avc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const ContentColourVolume& volume = read.record;
    EXPECT_TRUE(volume.ccv_persistence_flag);
    EXPECT_EQ(volume.ccv_reserved_zero_2bits, 3U);
    EXPECT_THAT(volume.ccv_primaries_x, testing::ElementsAre(8500, 6550, -1));
    EXPECT_THAT(volume.ccv_primaries_y, testing::ElementsAre(39850, 2300, 5000000));
    EXPECT_EQ(volume.ccv_min_luminance_value, 500U);
    EXPECT_EQ(volume.ccv_max_luminance_value, 0U);
    EXPECT_EQ(volume.ccv_avg_luminance_value, 0xFFFFFFFFU);
}

}  // namespace
