// HDR10+ dynamic metadata.
#include "bitstream/sei/Hdr10Plus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BitWriter.h"
#include "PayloadChecks.h"
#include "bitstream/sei/Hdr10PlusSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::ElementsAre;
using testing::IsSupersetOf;

PayloadUnderTest<Hdr10Plus> hdr10Plus(Codec codec) {
    auto structure = payloadUnderTest<Hdr10Plus>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { t35_message(s, c, payload); });
    structure.optional = {"padding"};
    structure.violable = 100;
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 2 == 0) {
            unit.choose("targeted_system_display_actual_peak_luminance_flag", {0});
        }
        if (random() % 2 == 0) {
            unit.choose("num_distribution_maxrgb_percentiles", {0, 1, 2});
        }
    };
    return structure;
}

TEST(SeiHdr10Plus, roundTrips) {
    checkRoundTrips(hdr10Plus(Codec::Avc), unitRounds());
    checkRoundTrips(hdr10Plus(Codec::Hevc), unitRounds());
}

TEST(SeiHdr10Plus, valuesOutOfRange) {
    EXPECT_THAT(
        checkRanges(hdr10Plus(Codec::Hevc), unitRounds(8000)),
        IsSupersetOf({"itu_t_t35_country_code", "itu_t_t35_terminal_provider_code",
                      "itu_t_t35_terminal_provider_oriented_code", "application_identifier",
                      "application_version", "num_windows", "rotation_angle",
                      "targeted_system_display_maximum_luminance",
                      "num_rows_targeted_system_display_actual_peak_luminance",
                      "num_cols_targeted_system_display_actual_peak_luminance", "maxscl", "average_maxrgb",
                      "distribution_maxrgb_percentages", "distribution_maxrgb_percentiles",
                      "fraction_bright_pixels", "num_rows_mastering_display_actual_peak_luminance",
                      "num_cols_mastering_display_actual_peak_luminance"}));
}

TEST(SeiHdr10Plus, cutAtEveryByte) {
    checkCuts(hdr10Plus(Codec::Avc), unitRounds(100));
    checkCuts(hdr10Plus(Codec::Hevc), unitRounds(100));
}

TEST(SeiHdr10Plus, noAllocationAndNoByteOutside) {
    checkMemory(hdr10Plus(Codec::Avc), unitRounds(25));
    checkMemory(hdr10Plus(Codec::Hevc), unitRounds(25));
}

// One window of profile B, with the values that an encoder of HDR10+ writes.
BitWriter profileB() {
    BitWriter bits;
    bits.u(8, "itu_t_t35_country_code", 0xB5)
        .u(16, "itu_t_t35_terminal_provider_code", 0x003C)
        .u(16, "itu_t_t35_terminal_provider_oriented_code", 0x0001)
        .u(8, "application_identifier", 4)
        .u(8, "application_version", 1)
        .u(2, "num_windows", 1)
        .u(27, "targeted_system_display_maximum_luminance", 400)
        .u(1, "targeted_system_display_actual_peak_luminance_flag", 0)
        .u(17, "maxscl[0][0]", 17830)
        .u(17, "maxscl[0][1]", 16895)
        .u(17, "maxscl[0][2]", 14252)
        .u(17, "average_maxrgb[0]", 5000)
        .u(4, "num_distribution_maxrgb_percentiles[0]", 2)
        .u(7, "distribution_maxrgb_percentages[0][0]", 1)
        .u(17, "distribution_maxrgb_percentiles[0][0]", 10)
        .u(7, "distribution_maxrgb_percentages[0][1]", 99)
        .u(17, "distribution_maxrgb_percentiles[0][1]", 9000)
        .u(10, "fraction_bright_pixels[0]", 7)
        .u(1, "mastering_display_actual_peak_luminance_flag", 0)
        .u(1, "tone_mapping_flag[0]", 1)
        .u(12, "knee_point_x[0]", 200)
        .u(12, "knee_point_y[0]", 300)
        .u(4, "num_bezier_curve_anchors[0]", 2)
        .u(10, "bezier_curve_anchors[0][0]", 102)
        .u(10, "bezier_curve_anchors[0][1]", 922)
        .u(1, "color_saturation_mapping_flag[0]", 1)
        .u(6, "color_saturation_weight[0]", 8);
    return bits;
}

// The first of these bits, worked out by hand:
//   01  000000000000000000110010000  0   num_windows 1, 400 cd/m², no grid: 30 bits
//   0 0100 0101 1010 0110                17830
//   0 0100 0001 1111 1111                16895
//   0 0011 0111 1010 1100                14252
//   0 0001 0011 1000 1000                5000
// 01000000 00000000 00001100 10000000 10001011 01001100 01000001 11111111 00011011 11010110 00000100 11100010
constexpr const char* kFirstBytes = "B5 003C 0001 04 01 40000C80 8B4C41FF 1BD604E2";

std::vector<uint8_t> unitOf(std::vector<uint8_t> payload) {
    payload.push_back(0x80);
    std::vector<uint8_t> unit(qv::mostEscapedSize(payload.size()));
    unit.resize(qv::escape(bytesOf(payload), 0, unit.data(), unit.size()));
    return unit;
}

TEST(SeiHdr10Plus, profileBByHand) {
    const std::vector<uint8_t> payload = profileB().bytes();
    const std::vector<uint8_t> first = hex(kFirstBytes);
    EXPECT_EQ(
        std::vector<uint8_t>(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(first.size())),
        first);
    const std::vector<uint8_t> unit = unitOf(payload);
    const auto read = hdr10Plus(Codec::Hevc).read(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const Hdr10Plus& metadata = read.record;
    EXPECT_EQ(metadata.application_identifier, 4U);
    EXPECT_EQ(metadata.application_version, 1U);
    EXPECT_EQ(metadata.num_windows, 1U);
    EXPECT_EQ(metadata.targeted_system_display_maximum_luminance, 400U);
    const Hdr10PlusWindow& window = metadata.windows[0];
    EXPECT_THAT(window.maxscl, ElementsAre(17830, 16895, 14252));
    EXPECT_EQ(window.average_maxrgb, 5000U);
    EXPECT_EQ(window.num_distribution_maxrgb_percentiles, 2U);
    EXPECT_EQ(window.distribution_maxrgb_percentages[1], 99);
    EXPECT_EQ(window.distribution_maxrgb_percentiles[1], 9000U);
    EXPECT_EQ(window.fraction_bright_pixels, 7U);
    EXPECT_TRUE(window.tone_mapping_flag);
    EXPECT_EQ(window.knee_point_x, 200U);
    EXPECT_EQ(window.knee_point_y, 300U);
    EXPECT_EQ(window.num_bezier_curve_anchors, 2U);
    EXPECT_EQ(window.bezier_curve_anchors[1], 922);
    EXPECT_TRUE(window.color_saturation_mapping_flag);
    EXPECT_EQ(window.color_saturation_weight, 8U);
    EXPECT_EQ(metadata.padding.count, 8 * payload.size() - profileB().bitCount());
    EXPECT_EQ(profileOf(metadata), Hdr10PlusProfile::B);

    // A record without padding gets zero bits.
    Hdr10Plus copy = metadata;
    copy.padding = {};
    std::vector<uint8_t> written;
    ASSERT_TRUE(writePayload(copy, Context(Codec::Hevc), written).ok());
    EXPECT_EQ(written, payload);
    EXPECT_EQ(sizeOfPayload(copy, Context(Codec::Hevc)).bits, 8 * payload.size());
}

TEST(SeiHdr10Plus, endsOfRealPayloads) {
    // Zero bits, the pattern that ends an SEI payload, and whole bytes.
    for (const char* const end : {"", "1", "000000000000000000000"}) {
        BitWriter bits = profileB();
        bits.bits("padding", end);
        const std::vector<uint8_t> unit = unitOf(bits.bytes());
        EXPECT_TRUE(hdr10Plus(Codec::Hevc).read(bytesOf(unit)).ok()) << end;
        EXPECT_TRUE(hdr10Plus(Codec::Avc).read(bytesOf(unit)).ok()) << end;
    }
}

TEST(SeiHdr10Plus, profiles) {
    Hdr10Plus metadata = {};
    metadata.num_windows = 1;
    EXPECT_EQ(profileOf(metadata), Hdr10PlusProfile::A);
    metadata.windows[0].tone_mapping_flag = true;
    EXPECT_EQ(profileOf(metadata), Hdr10PlusProfile::Other);
    metadata.targeted_system_display_maximum_luminance = 400;
    EXPECT_EQ(profileOf(metadata), Hdr10PlusProfile::Other);
    metadata.windows[0].num_bezier_curve_anchors = 9;
    EXPECT_EQ(profileOf(metadata), Hdr10PlusProfile::B);
    metadata.num_windows = 2;
    EXPECT_EQ(profileOf(metadata), Hdr10PlusProfile::Other);
}

TEST(SeiHdr10Plus, valuesThatDoNotFitAreNotWritten) {
    Hdr10Plus metadata = {};
    metadata.application_identifier = 4;
    metadata.num_windows = 4;
    std::vector<uint8_t> out;
    const qv::Written written = writePayload(metadata, Context(Codec::Hevc), out);
    EXPECT_EQ(written.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_STREQ(written.fault.element.name, "num_windows");
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(sizeOfPayload(metadata, Context(Codec::Hevc)).bits, 0U);
}

}  // namespace
