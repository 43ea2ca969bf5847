// The decoded picture buffer of H.264.
#include "bitstream/avc/Dpb.h"

#include <gtest/gtest.h>

namespace {

using namespace qv::avc;

SpsData framesOf(uint32_t mbs, uint32_t mapUnits, uint32_t level_idc, uint32_t profile_idc = 100) {
    SpsData sps = {};
    sps.profile_idc = profile_idc;
    sps.level_idc = level_idc;
    sps.chroma_format_idc = 1;
    sps.pic_width_in_mbs_minus1 = mbs - 1;
    sps.pic_height_in_map_units_minus1 = mapUnits - 1;
    sps.frame_mbs_only_flag = true;
    return sps;
}

TEST(AvcDpb, framesThatTheLevelAllows) {
    EXPECT_EQ(maxDpbFrames(framesOf(120, 68, 40)), 4U);   // 32768 / 8160
    EXPECT_EQ(maxDpbFrames(framesOf(120, 68, 51)), 16U);  // 22, but 16 at most
    EXPECT_EQ(maxDpbFrames(framesOf(80, 45, 31)), 5U);    // 18000 / 3600
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 10)), 4U);     // 396 / 99
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 12)), 16U);    // 24, but 16 at most
    EXPECT_EQ(maxDpbFrames(framesOf(240, 135, 40)), 1U);
    SpsData fields = framesOf(120, 34, 40);
    fields.frame_mbs_only_flag = false;
    EXPECT_EQ(maxDpbFrames(fields), 4U);
}

TEST(AvcDpb, sizesAndLevelsThatAreNotAllowed) {
    EXPECT_EQ(maxDpbFrames(framesOf(512, 512, 10)), 0U);
    EXPECT_EQ(maxDpbFrames(framesOf(0xFFFFFFFF, 0xFFFFFFFF, 62)), 0U);
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 14)), std::nullopt);
    EXPECT_EQ(maxDecFrameBuffering(framesOf(11, 9, 0)), std::nullopt);
    EXPECT_EQ(maxNumReorderFrames(framesOf(11, 9, 0)), std::nullopt);
}

// Twice the macroblocks for all views, and 16 frames for each bit of their number.
TEST(AvcDpb, severalViews) {
    const SpsData stereo = framesOf(120, 68, 40, 128);
    EXPECT_EQ(maxDpbFrames(stereo, 2), 8U);
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 40, 118), 1), 16U);
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 40, 118), 2), 16U);
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 40, 118), 3), 32U);
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 40, 118), 4), 32U);
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 40, 118), 5), 48U);
    EXPECT_EQ(maxDpbFrames(framesOf(11, 9, 62, 118), 1024), 160U);
    EXPECT_EQ(maxDpbFrames(framesOf(120, 68, 40, 100), 2), 4U) << "one view, whatever the number";
    EXPECT_EQ(maxDecFrameBuffering(stereo, 2), 8U);
    EXPECT_EQ(maxNumReorderFrames(stereo, 2), 8U);
}

TEST(AvcDpb, withRestrictionsTheCodedValuesHold) {
    SpsData sps = framesOf(120, 68, 40);
    sps.vui.bitstream_restriction_flag = true;
    sps.vui.max_dec_frame_buffering = 3;
    sps.vui.max_num_reorder_frames = 1;
    EXPECT_EQ(maxDecFrameBuffering(sps), 3U);
    EXPECT_EQ(maxNumReorderFrames(sps), 1U);
    sps.constraint_set3_flag = true;
    EXPECT_EQ(maxDecFrameBuffering(sps), 3U);
}

TEST(AvcDpb, withoutRestrictionsTheyAreInferred) {
    SpsData sps = framesOf(120, 68, 40);
    EXPECT_EQ(maxDecFrameBuffering(sps), 4U);
    EXPECT_EQ(maxNumReorderFrames(sps), 4U);
    sps.profile_idc = 122;
    sps.constraint_set3_flag = true;
    EXPECT_EQ(maxDecFrameBuffering(sps), 0U) << "an intra profile";
    EXPECT_EQ(maxNumReorderFrames(sps), 0U);
    EXPECT_EQ(maxDpbFrames(sps), 4U);
}

}  // namespace
