// What of a picture is to be displayed.
#include "bitstream/sei/PictureDisplay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "bitstream/sei/PictureDisplaySyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::EndsWith;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<PanScanRect> panScanRect(Codec codec) {
    auto structure = payloadUnderTest<PanScanRect>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { pan_scan_rect(s, c, payload); });
    structure.violable = codec == Codec::Avc ? 2 : 1;
    return structure;
}

PayloadUnderTest<NoDisplay> noDisplay() {
    return payloadUnderTest<NoDisplay>(
        Context(Codec::Hevc), [](auto& s, const auto& c, auto& payload) { no_display(s, c, payload); });
}

TEST(SeiPictureDisplay, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(panScanRect(codec), unitRounds());
    }
}

TEST(SeiPictureDisplay, everyRange) {
    EXPECT_THAT(checkRanges(panScanRect(Codec::Avc), unitRounds()),
                IsSupersetOf({"pan_scan_cnt_minus1", "pan_scan_rect_repetition_period"}));
    EXPECT_THAT(checkRanges(panScanRect(Codec::Hevc), unitRounds()), IsSupersetOf({"pan_scan_cnt_minus1"}));
}

TEST(SeiPictureDisplay, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(panScanRect(codec), unitRounds(50));
    }
}

TEST(SeiPictureDisplay, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(panScanRect(codec), unitRounds(25));
    }
    checkEmptyPayload(noDisplay());
}

TEST(SeiPictureDisplay, rectanglesAndHowLongTheyApply) {
    // pan_scan_rect_id 0, no cancel, one rectangle with offsets +16, -16, 0 and 1; repetition period 2
    const auto avc = payloadOf<PanScanRect>(Context(Codec::Avc), "1 0 1 00000100000 00000100001 1 010 011");
    EXPECT_EQ(avc->pan_scan_cnt_minus1, 0U);
    EXPECT_EQ(avc->pan_scan_rect_left_offset[0], 16);
    EXPECT_EQ(avc->pan_scan_rect_right_offset[0], -16);
    EXPECT_EQ(avc->pan_scan_rect_top_offset[0], 0);
    EXPECT_EQ(avc->pan_scan_rect_bottom_offset[0], 1);
    EXPECT_EQ(avc->pan_scan_rect_repetition_period, 2U);
    // The same with persistence_flag.
    const auto hevc = payloadOf<PanScanRect>(Context(Codec::Hevc), "1 0 1 00000100000 00000100001 1 010 1");
    EXPECT_EQ(hevc->pan_scan_rect_right_offset[0], -16);
    EXPECT_TRUE(hevc->pan_scan_rect_persistence_flag);
    EXPECT_EQ(hevc->pan_scan_rect_repetition_period, 0U);
    EXPECT_TRUE(payloadOf<PanScanRect>(Context(Codec::Avc), "1 1")->pan_scan_rect_cancel_flag);
}

// D.2.4: more than one rectangle belongs to one picture, or to those up to the next message.
TEST(SeiPictureDisplay, repetitionPeriodOfTwoRectangles) {
    EXPECT_EQ(faultOf<PanScanRect>(Context(Codec::Avc), "1 0 010 1111 1111 010"), "");
    EXPECT_THAT(faultOf<PanScanRect>(Context(Codec::Avc), "1 0 010 1111 1111 011"),
                EndsWith("2 is not in 0..1"));
}

}  // namespace
