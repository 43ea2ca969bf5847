// Messages about multiview scenes, their cameras and the displays they are made for.
#include "bitstream/sei/MultiviewScene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EntryChecks.h"
#include "bitstream/sei/MultiviewSceneSyntax.h"
#include "bitstream/sei/ReferenceDisplaysSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<MultiviewSceneInfo> sceneInfo(Codec codec) {
    auto structure = payloadUnderTest<MultiviewSceneInfo>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { multiview_scene_info(s, c, payload); });
    structure.violable = codec == Codec::Avc ? 1 : 3;
    return structure;
}

// Every width of a mantissa, and small lists.
void steerNumbers(RandomUnit& unit, Random& random) {
    static_cast<void>(random);
    unit.choose("num_views_minus1", {0, 1, 2});
    unit.choose("num_ref_displays_minus1", {0, 1, 2, 31});
    unit.choose("three_dimensional_reference_displays_extension_flag", {0});
    for (const char* const name :
         {"exponent_focal_length_x", "exponent_focal_length_y", "exponent_principal_point_x",
          "exponent_skew_factor", "exponent_r", "exponent_t", "exponent_ref_baseline",
          "exponent_ref_display_width", "exponent_ref_viewing_distance"}) {
        unit.choose(name, {0, 1, 20, 32, 57, 62, 63});
    }
    for (const char* const name :
         {"prec_focal_length", "prec_principal_point", "prec_skew_factor", "prec_rotation_param",
          "prec_translation_param", "prec_ref_baseline", "prec_ref_display_width", "prec_ref_viewing_dist"}) {
        unit.choose(name, {0, 12, 30, 31});
    }
}

PayloadUnderTest<MultiviewAcquisitionInfo> acquisitionInfo(Codec codec) {
    Context context(codec);
    context.numViewsMinus1 = 2;
    auto structure = payloadUnderTest<MultiviewAcquisitionInfo>(
        context, [](auto& s, const auto& c, auto& payload) { multiview_acquisition_info(s, c, payload); });
    structure.violable = codec == Codec::Avc ? 5 : 3;
    structure.steer = steerNumbers;
    return structure;
}

PayloadUnderTest<ThreeDimensionalReferenceDisplaysInfo> referenceDisplays(Codec codec) {
    auto structure = payloadUnderTest<ThreeDimensionalReferenceDisplaysInfo>(
        Context(codec), [](auto& s, const auto& c, auto& payload) {
            three_dimensional_reference_displays_info(s, c, payload);
        });
    structure.violable = 3;
    structure.steer = steerNumbers;
    return structure;
}

TEST(SeiMultiviewScene, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(sceneInfo(codec), unitRounds());
        checkRoundTrips(acquisitionInfo(codec), unitRounds());
        checkRoundTrips(referenceDisplays(codec), unitRounds());
    }
}

TEST(SeiMultiviewScene, ranges) {
    EXPECT_THAT(checkRanges(sceneInfo(Codec::Avc), unitRounds(50)), IsSupersetOf({"max_disparity"}));
    EXPECT_THAT(checkRanges(sceneInfo(Codec::Hevc), unitRounds(100)),
                IsSupersetOf({"min_disparity", "max_disparity_range"}));
    EXPECT_THAT(checkRanges(acquisitionInfo(Codec::Avc), unitRounds(200)),
                IsSupersetOf({"num_views_minus1"}));
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(checkRanges(acquisitionInfo(codec), unitRounds(200)),
                    IsSupersetOf({"prec_focal_length", "prec_principal_point", "prec_skew_factor",
                                  "prec_rotation_param", "prec_translation_param"}));
        EXPECT_THAT(
            checkRanges(referenceDisplays(codec), unitRounds(200)),
            IsSupersetOf({"prec_ref_display_width", "prec_ref_viewing_dist", "num_ref_displays_minus1"}));
    }
    EXPECT_THAT(checkRanges(referenceDisplays(Codec::Avc), unitRounds(200)),
                IsSupersetOf({"prec_ref_baseline"}));
}

TEST(SeiMultiviewScene, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(sceneInfo(codec), unitRounds(50));
        checkCuts(acquisitionInfo(codec), unitRounds(50));
        checkCuts(referenceDisplays(codec), unitRounds(50));
    }
}

TEST(SeiMultiviewScene, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(sceneInfo(codec), unitRounds(25));
        checkMemory(acquisitionInfo(codec), unitRounds(25),
                    {listOf<IntrinsicParams, MultiviewAcquisitionInfo>("intrinsic parameters"),
                     listOf<ExtrinsicParams, MultiviewAcquisitionInfo>("extrinsic parameters")});
        checkMemory(referenceDisplays(codec), unitRounds(25));
    }
}

// max_disparity 00110 (5), then the bit that ends the payload and two zero bits: 0011 0100
TEST(SeiMultiviewScene, disparityInH264) {
    const std::vector<uint8_t> unit = {0x34, 0x80};
    const qv::Read<MultiviewSceneInfo> read = readUnit<MultiviewSceneInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.max_disparity, 5U);
}

// The message of the MV-HEVC stream of the test set: min_disparity 000000000 1010011011 (-333),
// max_disparity_range 00000000000 100000000000 (2047), then 1 00000.
TEST(SeiMultiviewScene, disparityInH265) {
    const std::vector<uint8_t> unit = {0x00, 0x53, 0x60, 0x02, 0x00, 0x20, 0x80};
    const qv::Read<MultiviewSceneInfo> read = readUnit<MultiviewSceneInfo>(unit, Codec::Hevc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.min_disparity, -333);
    EXPECT_EQ(read.record.max_disparity_range, 2047U);
}

// A number with a mantissa of 4 bits: exponent + prec - 31.
void putNumber(BitWriter& bits, bool sign, uint32_t exponent, uint32_t mantissa) {
    bits.u(1, "sign", sign ? 1 : 0).u(6, "exponent", exponent).u(4, "mantissa", mantissa);
}

// One set of intrinsic parameters for two views, and a unit matrix for each.
BitWriter cameras(Codec codec) {
    BitWriter bits;
    if (codec == Codec::Avc) {
        bits.ue("num_views_minus1", 1);
    }
    bits.u(1, "intrinsic_param_flag", 1).u(1, "extrinsic_param_flag", 1);
    bits.u(1, "intrinsic_params_equal_flag", 1).ue("prec_focal_length", 0);
    bits.ue("prec_principal_point", 4).ue("prec_skew_factor", 31);
    putNumber(bits, false, 35, 8);                                 // 2^4 * 1.5
    putNumber(bits, true, 35, 4);                                  // -2^4 * 1.25
    putNumber(bits, false, 31, 1);                                 // 1 + 1/16
    putNumber(bits, false, 31, 0);                                 // 1
    bits.u(1, "sign", 0).u(6, "exponent", 0).u(1, "mantissa", 1);  // 2^-31
    bits.ue("prec_rotation_param", 0).ue("prec_translation_param", 0);
    for (int view = 0; view < 2; ++view) {
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) {
                bits.u(1, "sign_r", 0).u(6, "exponent_r", row == column ? 31 : 0);
            }
            bits.u(1, "sign_t", 1).u(6, "exponent_t", static_cast<uint64_t>(30 + view));
        }
    }
    return bits;
}

TEST(SeiMultiviewScene, camerasOfTwoViews) {
    for (const Codec codec : kCodecs) {
        const std::vector<uint8_t> unit = payloadUnit(cameras(codec));
        Context context(codec);
        context.numViewsMinus1 = 1;
        const auto read = readPayload<MultiviewAcquisitionInfo>(
            messageOf<MultiviewAcquisitionInfo>(bytesOf(unit), codec), context);
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.record.num_views_minus1, 1U);
        IntrinsicParamList intrinsic(read.record);
        IntrinsicParams params;
        ASSERT_TRUE(intrinsic.next(params));
        EXPECT_EQ(params.focal_length_x.value(), 24);
        EXPECT_EQ(params.focal_length_y.value(), -20);
        EXPECT_EQ(params.principal_point_x.value(), 1.0625);
        EXPECT_EQ(params.principal_point_y.value(), 1);
        EXPECT_EQ(params.skew_factor.value(), 1.0 / (1U << 31));
        EXPECT_FALSE(intrinsic.next(params));
        ExtrinsicParamList extrinsic(read.record);
        ExtrinsicParams camera;
        ASSERT_TRUE(extrinsic.next(camera));
        EXPECT_EQ(camera.r[1][1].value(), 1);
        EXPECT_EQ(camera.r[1][2].value(), 0);
        EXPECT_EQ(camera.t[0].value(), -0.5);
        ASSERT_TRUE(extrinsic.next(camera));
        EXPECT_EQ(camera.t[2].value(), -1);
        EXPECT_FALSE(extrinsic.next(camera));
    }
}

// H.264 counts rows and columns from 1, H.265 from 0.
TEST(SeiMultiviewScene, subscriptsOfAMatrix) {
    for (const Codec codec : kCodecs) {
        const std::vector<uint8_t> unit = payloadUnit(cameras(codec));
        Context context(codec);
        context.numViewsMinus1 = 1;
        RecordingVisitor visitor;
        tracePayload<MultiviewAcquisitionInfo>(messageOf<MultiviewAcquisitionInfo>(bytesOf(unit), codec),
                                               context, visitor);
        std::vector<std::string> names;
        for (const qv::TracedElement& element : visitor.elements) {
            names.push_back(qv::textOf(element.element));
        }
        const bool isAvc = codec == Codec::Avc;
        EXPECT_THAT(names, testing::Contains(isAvc ? "sign_r[1][3][3]" : "sign_r[1][2][2]"));
        EXPECT_THAT(names, testing::Not(testing::Contains(isAvc ? "sign_r[0][0][0]" : "sign_r[1][3][3]")));
    }
}

// prec_ref_display_width 31 with an exponent of 31 has a mantissa of 31 bits.
TEST(SeiMultiviewScene, aReferenceDisplay) {
    BitWriter bits;
    bits.ue("prec_ref_display_width", 31).u(1, "ref_viewing_distance_flag", 1);
    bits.ue("prec_ref_viewing_dist", 0).ue("num_ref_displays_minus1", 0);
    bits.ue("left_view_id", 0).ue("right_view_id", 1);
    bits.u(6, "exponent_ref_display_width", 31).u(31, "mantissa_ref_display_width", 0x40000000);
    bits.u(6, "exponent_ref_viewing_distance", 33).u(2, "mantissa_ref_viewing_distance", 3);
    bits.u(1, "additional_shift_present_flag", 1).u(10, "num_sample_shift_plus512", 522);
    bits.u(1, "three_dimensional_reference_displays_extension_flag", 0);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const auto read = readUnit<ThreeDimensionalReferenceDisplaysInfo>(unit, Codec::Hevc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const ReferenceDisplay& display = read.record.displays[0];
    EXPECT_EQ(display.left_view_id, 0U);
    EXPECT_EQ(display.right_view_id, 1U);
    EXPECT_EQ(display.ref_display_width.mantissa_bits, 31U);
    EXPECT_EQ(display.ref_display_width.value(), 1.5);
    EXPECT_EQ(display.ref_viewing_distance.value(), 7);
    EXPECT_EQ(display.num_sample_shift_plus512, 522U);
}

// Every mantissa without a bit: prec_ref_baseline 1 (0), prec_ref_display_width 1 (0),
// ref_viewing_distance_flag 0, num_ref_displays_minus1 1 (0), exponent_ref_baseline 011111,
// exponent_ref_display_width 000000, additional_shift_present_flag 0, the extension flag 1, then a byte:
// 1101 0111 | 1100 0000 | 01 and the rest of the payload.
TEST(SeiMultiviewScene, anExtensionOfReferenceDisplaysIsKept) {
    const std::vector<uint8_t> unit = {0xD7, 0xC0, 0x75, 0x80};
    const auto read = readUnit<ThreeDimensionalReferenceDisplaysInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.displays[0].ref_baseline.value(), 1);
    EXPECT_EQ(read.record.displays[0].ref_display_width.value(), 0);
    EXPECT_EQ(read.record.extension.count, 6U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(writePayload(read.record, Context(Codec::Avc), written).ok());
    EXPECT_EQ(written, (std::vector<uint8_t>{0xD7, 0xC0, 0x75}));
}

TEST(SeiMultiviewScene, widthOfAMantissa) {
    EXPECT_EQ(mantissaBits(0, 30), 0U);
    EXPECT_EQ(mantissaBits(0, 31), 1U);
    EXPECT_EQ(mantissaBits(31, 0), 0U);
    EXPECT_EQ(mantissaBits(32, 0), 1U);
    EXPECT_EQ(mantissaBits(62, 31), 62U);
    EXPECT_EQ(mantissaBits(63, 31), 63U);
}

}  // namespace
