// Stereo video, frame packing, and what a display does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HandMadePayload.h"
#include "PayloadChecks.h"
#include "bitstream/sei/Display.h"
#include "bitstream/sei/DisplaySyntax.h"
#include "bitstream/sei/FramePacking.h"
#include "bitstream/sei/FramePackingSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<StereoVideoInfo> stereo() {
    return payloadUnderTest<StereoVideoInfo>(
        Context(Codec::Avc), [](auto& s, const auto& c, auto& payload) { stereo_video_info(s, c, payload); });
}

PayloadUnderTest<FramePackingArrangement> framePacking(Codec codec) {
    auto structure = payloadUnderTest<FramePackingArrangement>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { frame_packing_arrangement(s, c, payload); });
    structure.extensionData = {"extension_data"};
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 16 != 0) {
            unit.choose("frame_packing_arrangement_cancel_flag", {0});
        }
        if (random() % 4 != 0) {
            unit.choose("quincunx_sampling_flag", {0});
        }
        unit.choose("frame_packing_arrangement_type", {0, 3, 4, 5, 7, 127});
    };
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<SegmentedRectFramePackingArrangement> segmentedRect() {
    return payloadUnderTest<SegmentedRectFramePackingArrangement>(
        Context(Codec::Hevc), [](auto& s, const auto& c, auto& payload) {
            segmented_rect_frame_packing_arrangement(s, c, payload);
        });
}

PayloadUnderTest<DeblockingFilterDisplayPreference> deblocking() {
    auto structure = payloadUnderTest<DeblockingFilterDisplayPreference>(
        Context(Codec::Avc),
        [](auto& s, const auto& c, auto& payload) { deblocking_filter_display_preference(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<DisplayOrientation> orientation(Codec codec) {
    auto structure = payloadUnderTest<DisplayOrientation>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { display_orientation(s, c, payload); });
    structure.extensionData = {"extension_data"};
    structure.violable = 1;
    return structure;
}

template <class Check>
void forEach(Check check) {
    check(stereo());
    check(segmentedRect());
    check(deblocking());
    for (const Codec codec : kCodecs) {
        check(framePacking(codec));
        check(orientation(codec));
    }
}

TEST(SeiFramePacking, roundTrips) {
    forEach([](const auto& structure) { checkRoundTrips(structure, unitRounds()); });
}

TEST(SeiFramePacking, cutAtEveryByte) {
    forEach([](const auto& structure) { checkCuts(structure, unitRounds(50)); });
}

TEST(SeiFramePacking, noAllocationAndNoByteOutside) {
    forEach([](const auto& structure) { checkMemory(structure, unitRounds(25)); });
}

TEST(SeiFramePacking, everyRange) {
    EXPECT_THAT(checkRanges(framePacking(Codec::Avc), unitRounds()),
                IsSupersetOf({"frame_packing_arrangement_repetition_period"}));
    EXPECT_THAT(checkRanges(deblocking(), unitRounds()),
                IsSupersetOf({"deblocking_display_preference_repetition_period"}));
    EXPECT_THAT(checkRanges(orientation(Codec::Avc), unitRounds()),
                IsSupersetOf({"display_orientation_repetition_period"}));
}

// The message of an encoder with side by side frames, and the same in H.265.
TEST(SeiFramePacking, sideBySide) {
    // 1 frame_packing_arrangement_id 0, 0 frame_packing_arrangement_cancel_flag, 0000011
    // frame_packing_arrangement_type, 0 quincunx_sampling_flag, 000001 content_interpretation_type, six
    // flags, four grid positions of 4 bits and a reserved byte, all 0; 010 repetition period 1, 0 extension
    // flag
    const HandMadePayload<FramePackingArrangement> avc(Context(Codec::Avc),
                                                       {0x81, 0x81, 0x00, 0x00, 0x00, 0x01, 0x20});
    ASSERT_TRUE(avc.ok()) << qv::textOf(avc.fault());
    EXPECT_EQ(avc->frame_packing_arrangement_id, 0U);
    EXPECT_FALSE(avc->frame_packing_arrangement_cancel_flag);
    EXPECT_EQ(avc->frame_packing_arrangement_type, 3U);
    EXPECT_EQ(avc->content_interpretation_type, 1U);
    EXPECT_EQ(avc->frame1_grid_position_y, 0U);
    EXPECT_EQ(avc->frame_packing_arrangement_repetition_period, 1U);
    EXPECT_FALSE(avc->frame_packing_arrangement_extension_flag);
    // 1 frame_packing_arrangement_persistence_flag, 0 upsampled_aspect_ratio_flag
    const HandMadePayload<FramePackingArrangement> hevc(Context(Codec::Hevc),
                                                        {0x81, 0x81, 0x00, 0x00, 0x00, 0x02});
    ASSERT_TRUE(hevc.ok()) << qv::textOf(hevc.fault());
    EXPECT_EQ(hevc->frame_packing_arrangement_type, 3U);
    EXPECT_TRUE(hevc->frame_packing_arrangement_persistence_flag);
    EXPECT_FALSE(hevc->upsampled_aspect_ratio_flag);
}

TEST(SeiFramePacking, dataAfterTheExtensionFlag) {
    // 1 frame_packing_arrangement_id 0, 1 cancel flag, 1 extension flag, 13 bits
    const HandMadePayload<FramePackingArrangement> packing(Context(Codec::Avc), {0xEA, 0xFF});
    ASSERT_TRUE(packing.ok()) << qv::textOf(packing.fault());
    EXPECT_EQ(packing->extension_data.count, 13U);
    // 000 flags, 16 bits 1, 1 repetition period 0, 1 extension flag, 3 bits
    const HandMadePayload<DisplayOrientation> display(Context(Codec::Avc), {0x00, 0x00, 0x3F});
    ASSERT_TRUE(display.ok()) << qv::textOf(display.fault());
    EXPECT_EQ(display->extension_data.count, 3U);
    // Without the flag it is a fault.
    EXPECT_EQ(HandMadePayload<FramePackingArrangement>(Context(Codec::Avc), {0xD0, 0x81}).fault().kind,
              FaultKind::DataLeft);
}

TEST(SeiFramePacking, aQuarterTurn) {
    // 0 display_orientation_cancel_flag, 0 hor_flip, 1 ver_flip, 0100000000000000 anticlockwise_rotation, 010
    // display_orientation_repetition_period 1, 0 display_orientation_extension_flag
    const HandMadePayload<DisplayOrientation> avc(Context(Codec::Avc), {0x28, 0x00, 0x09});
    ASSERT_TRUE(avc.ok()) << qv::textOf(avc.fault());
    EXPECT_FALSE(avc->hor_flip);
    EXPECT_TRUE(avc->ver_flip);
    EXPECT_EQ(avc->anticlockwise_rotation, 16384U);
    EXPECT_EQ(avc->display_orientation_repetition_period, 1U);
    // 1 display_orientation_persistence_flag
    const HandMadePayload<DisplayOrientation> hevc(Context(Codec::Hevc), {0x28, 0x00, 0x18});
    ASSERT_TRUE(hevc.ok()) << qv::textOf(hevc.fault());
    EXPECT_EQ(hevc->anticlockwise_rotation, 16384U);
    EXPECT_TRUE(hevc->display_orientation_persistence_flag);
}

TEST(SeiFramePacking, flags) {
    // 1 field_views_flag, 1 top_field_is_left_view_flag, 1 left_view_self_contained_flag, 0
    // right_view_self_contained_flag
    const HandMadePayload<StereoVideoInfo> fields(Context(Codec::Avc), {0xE8});
    ASSERT_TRUE(fields.ok()) << qv::textOf(fields.fault());
    EXPECT_TRUE(fields->top_field_is_left_view_flag);
    EXPECT_TRUE(fields->left_view_self_contained_flag);
    EXPECT_FALSE(fields->right_view_self_contained_flag);
    // 0, 0 current_frame_is_left_view_flag, 1 next_frame_is_second_view_flag, 0, 1
    const HandMadePayload<StereoVideoInfo> frames(Context(Codec::Avc), {0x2C});
    ASSERT_TRUE(frames.ok()) << qv::textOf(frames.fault());
    EXPECT_TRUE(frames->next_frame_is_second_view_flag);
    EXPECT_TRUE(frames->right_view_self_contained_flag);
    // 0 cancel flag, 1 display_prior_to_deblocking_preferred_flag, 0, 1 repetition period 0
    const HandMadePayload<DeblockingFilterDisplayPreference> deblocked(Context(Codec::Avc), {0x58});
    ASSERT_TRUE(deblocked.ok()) << qv::textOf(deblocked.fault());
    EXPECT_TRUE(deblocked->display_prior_to_deblocking_preferred_flag);
    // 0 cancel flag, 01 segmented_rect_content_interpretation_type, 1 persistence flag
    const HandMadePayload<SegmentedRectFramePackingArrangement> rectangles(Context(Codec::Hevc), {0x38});
    ASSERT_TRUE(rectangles.ok()) << qv::textOf(rectangles.fault());
    EXPECT_EQ(rectangles->segmented_rect_content_interpretation_type, 1U);
    EXPECT_TRUE(rectangles->segmented_rect_frame_packing_arrangement_persistence_flag);
}

}  // namespace
