// Hints for filters, and green metadata.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HandMadePayload.h"
#include "PayloadChecks.h"
#include "bitstream/sei/FilterHints.h"
#include "bitstream/sei/FilterHintsSyntax.h"
#include "bitstream/sei/GreenMetadata.h"
#include "bitstream/sei/GreenMetadataSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

qv::hevc::Sps spsOf(uint32_t chroma_format_idc) {
    qv::hevc::Sps sps = {};
    sps.chroma_format_idc = chroma_format_idc;
    return sps;
}

const qv::hevc::Sps kMonochrome = spsOf(0);
const qv::hevc::Sps k420 = spsOf(1);

Context contextOf(const qv::hevc::Sps& sps) {
    Context context(Codec::Hevc);
    context.hevcSps = &sps;
    return context;
}

PayloadUnderTest<PostFilterHint> postFilter(const Context& context) {
    auto structure = payloadUnderTest<PostFilterHint>(
        context, [](auto& s, const auto& c, auto& payload) { post_filter_hint(s, c, payload); });
    structure.extensionData = {"extension_data"};
    structure.violable = 4;
    return structure;
}

PayloadUnderTest<ChromaResamplingFilterHint> chromaFilter() {
    auto structure = payloadUnderTest<ChromaResamplingFilterHint>(
        Context(Codec::Hevc),
        [](auto& s, const auto& c, auto& payload) { chroma_resampling_filter_hint(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("ver_chroma_filter_idc", {0, 1, 1, 1, 2, 255});
        unit.choose("hor_chroma_filter_idc", {0, 1, 1, 1, 2, 255});
    };
    structure.violable = 10;
    return structure;
}

PayloadUnderTest<GreenMetadata> green(Codec codec) {
    auto structure = payloadUnderTest<GreenMetadata>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { green_metadata(s, c, payload); });
    structure.extensionData = {"extension_data"};
    return structure;
}

template <class Check>
void forEach(Check check) {
    check(postFilter(Context(Codec::Avc)));
    check(postFilter(contextOf(kMonochrome)));
    check(postFilter(contextOf(k420)));
    check(chromaFilter());
    check(green(Codec::Avc));
    check(green(Codec::Hevc));
}

TEST(SeiFilterHints, roundTrips) {
    forEach([](const auto& structure) { checkRoundTrips(structure, unitRounds()); });
}

TEST(SeiFilterHints, cutAtEveryByte) {
    forEach([](const auto& structure) { checkCuts(structure, unitRounds(50)); });
}

TEST(SeiFilterHints, noAllocationAndNoByteOutside) {
    forEach([](const auto& structure) { checkMemory(structure, unitRounds(25)); });
}

TEST(SeiFilterHints, everyRange) {
    for (const Context& context : {Context(Codec::Avc), contextOf(k420)}) {
        EXPECT_THAT(checkRanges(postFilter(context), unitRounds()),
                    IsSupersetOf({"filter_hint_size_y", "filter_hint_size_x"}));
    }
    EXPECT_THAT(checkRanges(chromaFilter(), unitRounds()),
                IsSupersetOf({"target_format_idc", "num_vertical_filters", "ver_tap_length_minus1",
                              "num_horizontal_filters", "hor_tap_length_minus1"}));
}

TEST(SeiFilterHints, oneValueForEachComponent) {
    // 010 filter_hint_size_y 1, 010 filter_hint_size_x 1, 01 filter_hint_type, values 010 1, 011 -1, 1 0, and
    // 0 additional_extension_flag
    const HandMadePayload<PostFilterHint> avc(Context(Codec::Avc), {0x49, 0x4E});
    ASSERT_TRUE(avc.ok()) << qv::textOf(avc.fault());
    EXPECT_EQ(avc->filter_hint_size_y, 1U);
    EXPECT_EQ(avc->filter_hint_size_x, 1U);
    EXPECT_EQ(avc->filter_hint_type, 1U);
    EXPECT_EQ(avc->filter_hint_value[0][0][0], 1);
    EXPECT_EQ(avc->filter_hint_value[1][0][0], -1);
    EXPECT_EQ(avc->filter_hint_value[2][0][0], 0);
    EXPECT_EQ(avc.names().count("filter_hint"), 1U);
    // The same without the flag.
    const HandMadePayload<PostFilterHint> hevc(contextOf(k420), {0x49, 0x4F});
    ASSERT_TRUE(hevc.ok()) << qv::textOf(hevc.fault());
    EXPECT_EQ(hevc->filter_hint_value[1][0][0], -1);
    EXPECT_EQ(hevc.names().count("filter_hint_value"), 1U);
    // Monochrome video has one value.
    const HandMadePayload<PostFilterHint> luma(contextOf(kMonochrome), {0x49, 0x50});
    ASSERT_TRUE(luma.ok()) << qv::textOf(luma.fault());
    EXPECT_EQ(luma->filter_hint_value[0][0][0], 1);
    const HandMadePayload<PostFilterHint> withoutSps(Context(Codec::Hevc), {0x49, 0x50});
    EXPECT_EQ(withoutSps.fault().kind, FaultKind::NoSuchSet);
    EXPECT_STREQ(withoutSps.fault().element.name, "seq_parameter_set_id");
}

TEST(SeiFilterHints, dataAfterTheExtensionFlag) {
    // As above with 1 additional_extension_flag and a byte
    const HandMadePayload<PostFilterHint> payload(Context(Codec::Avc), {0x49, 0x4F, 0x55});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->extension_data.count, 8U);
}

TEST(SeiFilterHints, oneVerticalFilterOfTwoTaps) {
    // 00000001 ver_chroma_filter_idc, 00000000 hor_chroma_filter_idc, 0 ver_filtering_field_processing_flag,
    // 011 target_format_idc 2, 010 num_vertical_filters 1, 010 ver_tap_length_minus1 1, coefficients 010 1
    // and 1 0
    const HandMadePayload<ChromaResamplingFilterHint> payload(Context(Codec::Hevc), {0x01, 0x00, 0x34, 0x96});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->target_format_idc, 2U);
    EXPECT_EQ(payload->num_vertical_filters, 1U);
    EXPECT_EQ(payload->ver_tap_length_minus1[0], 1U);
    EXPECT_EQ(payload->ver_filter_coeff[0][0], 1);
    EXPECT_EQ(payload->ver_filter_coeff[0][1], 0);
    EXPECT_EQ(payload->num_horizontal_filters, 0U);
}

TEST(SeiFilterHints, greenMetadata) {
    // Complexity of the next 5 pictures (period_type 3), in percent; and of one picture
    const HandMadePayload<GreenMetadata> pictures(Context(Codec::Avc),
                                                  {0x00, 0x03, 0x00, 0x05, 0x0A, 0x14, 0x1E, 0x28});
    ASSERT_TRUE(pictures.ok()) << qv::textOf(pictures.fault());
    EXPECT_EQ(pictures->num_pictures, 5U);
    EXPECT_EQ(pictures->percent_non_zero_macroblocks, 10U);
    EXPECT_EQ(pictures->percent_alpha_point_deblocking_instance, 40U);
    const HandMadePayload<GreenMetadata> seconds(Context(Codec::Avc),
                                                 {0x00, 0x02, 0x00, 0x05, 0x0A, 0x14, 0x1E, 0x28});
    ASSERT_TRUE(seconds.ok()) << qv::textOf(seconds.fault());
    EXPECT_EQ(seconds->num_seconds, 5U);
    const HandMadePayload<GreenMetadata> picture(Context(Codec::Avc), {0x00, 0x00, 0x0A, 0x14, 0x1E, 0x28});
    ASSERT_TRUE(picture.ok()) << qv::textOf(picture.fault());
    EXPECT_EQ(picture->percent_six_tap_filtering, 30U);
    // A PSNR of 40 dB
    const HandMadePayload<GreenMetadata> quality(Context(Codec::Hevc), {0x01, 0x00, 0x0F, 0xA0});
    ASSERT_TRUE(quality.ok()) << qv::textOf(quality.fault());
    EXPECT_EQ(quality->xsd_metric_value, 4000U);
    // A reserved type
    const HandMadePayload<GreenMetadata> reserved(Context(Codec::Avc), {0x02, 0xAB, 0xCD});
    ASSERT_TRUE(reserved.ok()) << qv::textOf(reserved.fault());
    EXPECT_EQ(reserved->extension_data.count, 16U);
}

}  // namespace
