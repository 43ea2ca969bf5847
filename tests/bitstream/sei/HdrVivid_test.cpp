// HDR Vivid dynamic metadata.
#include "bitstream/sei/HdrVivid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BitWriter.h"
#include "PayloadChecks.h"
#include "bitstream/sei/HdrVividSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

PayloadUnderTest<HdrVivid> hdrVivid(Codec codec) {
    auto structure = payloadUnderTest<HdrVivid>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { t35_message(s, c, payload); });
    structure.optional = {"padding"};
    structure.violable = 4;
    return structure;
}

TEST(SeiHdrVivid, roundTrips) {
    checkRoundTrips(hdrVivid(Codec::Avc), unitRounds());
    checkRoundTrips(hdrVivid(Codec::Hevc), unitRounds());
}

TEST(SeiHdrVivid, valuesOutOfRange) {
    EXPECT_THAT(checkRanges(hdrVivid(Codec::Hevc), unitRounds()),
                IsSupersetOf({"itu_t_t35_country_code", "itu_t_t35_terminal_provider_code",
                              "itu_t_t35_terminal_provider_oriented_code", "system_start_code"}));
}

TEST(SeiHdrVivid, cutAtEveryByte) {
    checkCuts(hdrVivid(Codec::Avc), unitRounds(100));
    checkCuts(hdrVivid(Codec::Hevc), unitRounds(100));
}

TEST(SeiHdrVivid, noAllocationAndNoByteOutside) {
    checkMemory(hdrVivid(Codec::Avc), unitRounds(25));
    checkMemory(hdrVivid(Codec::Hevc), unitRounds(25));
}

// 26 0004 0005 01
// 000000001010 001110000100 000100101100 101110111000            10, 900, 300, 3000: 00A384 12CBB8
// 1 0                                                             one tone mapping
//   100000100000 0                                                2080, without base parameters
//     1 0                                                         one spline
//       01 001001011001 0011001000 0100101100 10000000            mode 1, 601, 200, 300, 128
// 1 001 01000000                                                  one gain, 64
// 10100000 10000001 00100100 10110010 01100100 00100101 10010000 00010010 10000000: 1 bit of padding
constexpr const char* kOneSpline = "26 0004 0005 01 00A384 12CBB8 A08124B264259012 80";

TEST(SeiHdrVivid, oneSplineByHand) {
    std::vector<uint8_t> unit = hex(kOneSpline);
    unit.push_back(0x80);
    const auto read = hdrVivid(Codec::Hevc).read(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const HdrVivid& metadata = read.record;
    EXPECT_EQ(metadata.system_start_code, 1U);
    EXPECT_EQ(metadata.minimum_maxrgb_pq, 10U);
    EXPECT_EQ(metadata.average_maxrgb_pq, 900U);
    EXPECT_EQ(metadata.variance_maxrgb_pq, 300U);
    EXPECT_EQ(metadata.maximum_maxrgb_pq, 3000U);
    ASSERT_EQ(metadata.toneMappingCount(), 1U);
    const HdrVividToneMapping& mapping = metadata.toneMappings[0];
    EXPECT_EQ(mapping.targeted_system_display_maximum_luminance_pq, 2080U);
    EXPECT_FALSE(mapping.base_enable_flag);
    ASSERT_EQ(mapping.splineCount(), 1U);
    const HdrVividSpline& spline = mapping.splines[0];
    EXPECT_EQ(spline.TH_enable_mode, 1U);
    EXPECT_FALSE(spline.hasMiddleBase());
    EXPECT_EQ(spline.TH_enable, 601U);
    EXPECT_EQ(spline.TH_enable_Delta1, 200U);
    EXPECT_EQ(spline.TH_enable_Delta2, 300U);
    EXPECT_EQ(spline.enable_Strength, 128U);
    ASSERT_EQ(metadata.gainCount(), 1U);
    EXPECT_EQ(metadata.color_saturation_enable_gain[0], 64U);
    EXPECT_EQ(metadata.padding.count, 1U);
}

TEST(SeiHdrVivid, valuesThatDoNotFitAreNotWritten) {
    HdrVivid metadata = {};
    metadata.system_start_code = 1;
    metadata.color_saturation_mapping_enable_flag = true;
    metadata.color_saturation_enable_num = 8;
    std::vector<uint8_t> out;
    const qv::Written written = writePayload(metadata, Context(Codec::Avc), out);
    EXPECT_EQ(written.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_STREQ(written.fault.element.name, "color_saturation_enable_num");
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(sizeOfPayload(metadata, Context(Codec::Avc)).bits, 0U);
}

// A count without its flag is no count.
TEST(SeiHdrVivid, partsWithoutTheirFlagsAreNotWritten) {
    HdrVivid metadata = {};
    metadata.system_start_code = 1;
    metadata.tone_mapping_param_enable_num = 1;
    metadata.color_saturation_enable_num = 7;
    std::vector<uint8_t> out;
    ASSERT_TRUE(writePayload(metadata, Context(Codec::Avc), out).ok());
    // Six bytes of codes, 48 bits of zeros, two flags.
    EXPECT_EQ(out, hex("26 0004 0005 01 000000 000000 00"));
}

}  // namespace
