// Frozen frames, snapshots, progressive refinement and scenes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HandMadePayload.h"
#include "PayloadChecks.h"
#include "bitstream/sei/FullFrame.h"
#include "bitstream/sei/FullFrameSyntax.h"
#include "bitstream/sei/SceneInfo.h"
#include "bitstream/sei/SceneInfoSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<FullFrameFreeze> freeze() {
    auto structure = payloadUnderTest<FullFrameFreeze>(
        Context(Codec::Avc), [](auto& s, const auto& c, auto& payload) { full_frame_freeze(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<FullFrameFreezeRelease> release() {
    return payloadUnderTest<FullFrameFreezeRelease>(
        Context(Codec::Avc),
        [](auto& s, const auto& c, auto& payload) { full_frame_freeze_release(s, c, payload); });
}

PayloadUnderTest<PictureSnapshot> snapshot(Codec codec) {
    return payloadUnderTest<PictureSnapshot>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { picture_snapshot(s, c, payload); });
}

PayloadUnderTest<ProgressiveRefinementSegmentStart> segmentStart(Codec codec) {
    auto structure = payloadUnderTest<ProgressiveRefinementSegmentStart>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { progressive_refinement_segment_start(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<ProgressiveRefinementSegmentEnd> segmentEnd(Codec codec) {
    return payloadUnderTest<ProgressiveRefinementSegmentEnd>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { progressive_refinement_segment_end(s, c, payload); });
}

PayloadUnderTest<SceneInfo> scene(Codec codec) {
    auto structure = payloadUnderTest<SceneInfo>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { scene_info(s, c, payload); });
    structure.violable = 1;
    return structure;
}

template <class Check>
void forEach(Check check) {
    check(freeze());
    for (const Codec codec : kCodecs) {
        check(snapshot(codec));
        check(segmentStart(codec));
        check(segmentEnd(codec));
        check(scene(codec));
    }
}

TEST(SeiFullFrame, roundTrips) {
    forEach([](const auto& structure) { checkRoundTrips(structure, unitRounds()); });
    checkRoundTrips(release(), 10);
}

TEST(SeiFullFrame, cutAtEveryByte) {
    forEach([](const auto& structure) { checkCuts(structure, unitRounds(50)); });
}

TEST(SeiFullFrame, noAllocationAndNoByteOutside) {
    forEach([](const auto& structure) { checkMemory(structure, unitRounds(25)); });
}

TEST(SeiFullFrame, everyRange) {
    EXPECT_THAT(checkRanges(freeze(), unitRounds()), IsSupersetOf({"full_frame_freeze_repetition_period"}));
    EXPECT_THAT(checkRanges(segmentStart(Codec::Avc), unitRounds()),
                IsSupersetOf({"num_refinement_steps_minus1"}));
    EXPECT_THAT(checkRanges(segmentStart(Codec::Hevc), unitRounds()), IsSupersetOf({"pic_order_cnt_delta"}));
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(checkRanges(scene(codec), unitRounds()), IsSupersetOf({"scene_transition_type"}));
    }
}

TEST(SeiFullFrame, aFreezeUpToItsRelease) {
    // 010 full_frame_freeze_repetition_period 1
    const HandMadePayload<FullFrameFreeze> payload(Context(Codec::Avc), {0x50});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->full_frame_freeze_repetition_period, 1U);
}

TEST(SeiFullFrame, aReleaseHasNoElements) {
    EXPECT_TRUE(HandMadePayload<FullFrameFreezeRelease>(Context(Codec::Avc), {}).ok());
    EXPECT_TRUE(HandMadePayload<FullFrameFreezeRelease>(Context(Codec::Avc), {}).names().empty());
    EXPECT_EQ(HandMadePayload<FullFrameFreezeRelease>(Context(Codec::Avc), {0x80}).fault().kind,
              FaultKind::DataLeft);
    EXPECT_EQ(sizeOfPayload(FullFrameFreezeRelease(), Context(Codec::Avc)).bits, 0U);
}

TEST(SeiFullFrame, segmentsHaveAnIdentifierInBothCodecs) {
    // 00101 4, 011 2
    const HandMadePayload<ProgressiveRefinementSegmentStart> avc(Context(Codec::Avc), {0x2B});
    ASSERT_TRUE(avc.ok()) << qv::textOf(avc.fault());
    EXPECT_EQ(avc->progressive_refinement_id, 4U);
    EXPECT_EQ(avc->num_refinement_steps_minus1, 2U);
    const HandMadePayload<ProgressiveRefinementSegmentStart> hevc(Context(Codec::Hevc), {0x2B});
    ASSERT_TRUE(hevc.ok()) << qv::textOf(hevc.fault());
    EXPECT_EQ(hevc->pic_order_cnt_delta, 2U);
    // 00101 4
    const HandMadePayload<ProgressiveRefinementSegmentEnd> end(Context(Codec::Hevc), {0x2C});
    ASSERT_TRUE(end.ok()) << qv::textOf(end.fault());
    EXPECT_EQ(end->progressive_refinement_id, 4U);
}

// The greatest ue(v): 31 zero bits, a 1 and 31 bits that are 1.
TEST(SeiFullFrame, theGreatestSnapshot) {
    const HandMadePayload<PictureSnapshot> payload(Context(Codec::Avc),
                                                   {0x00, 0x00, 0x00, 0x01, 0xFF, 0xFF, 0xFF, 0xFF});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->snapshot_id, qv::kMostUe);
}

TEST(SeiFullFrame, aDissolveBetweenTwoScenes) {
    // 1 scene_info_present_flag, 00100 scene_id 3, 00101 scene_transition_type 4, 00101 second_scene_id 4
    const HandMadePayload<SceneInfo> avc(Context(Codec::Avc), {0x90, 0xA5});
    ASSERT_TRUE(avc.ok()) << qv::textOf(avc.fault());
    EXPECT_EQ(avc->scene_id, 3U);
    EXPECT_EQ(avc->scene_transition_type, 4U);
    EXPECT_EQ(avc->second_scene_id, 4U);
    // The same with 1 prev_scene_id_valid_flag after the first bit.
    const HandMadePayload<SceneInfo> hevc(Context(Codec::Hevc), {0xC8, 0x52, 0xC0});
    ASSERT_TRUE(hevc.ok()) << qv::textOf(hevc.fault());
    EXPECT_TRUE(hevc->prev_scene_id_valid_flag);
    EXPECT_EQ(hevc->second_scene_id, 4U);
    // 0 scene_info_present_flag
    const HandMadePayload<SceneInfo> none(Context(Codec::Hevc), {0x40});
    ASSERT_TRUE(none.ok()) << qv::textOf(none.fault());
    EXPECT_FALSE(none->scene_info_present_flag);
}

}  // namespace
