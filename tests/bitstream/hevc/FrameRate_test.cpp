// The frame rate that H.265 parameter sets declare.
#include "bitstream/hevc/FrameRate.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace qv::hevc;
using qv::Ratio;

std::unique_ptr<Sps> timing(uint32_t num_units_in_tick, uint32_t time_scale) {
    auto sps = std::make_unique<Sps>();
    sps->vui.vui_timing_info_present_flag = true;
    sps->vui.vui_num_units_in_tick = num_units_in_tick;
    sps->vui.vui_time_scale = time_scale;
    return sps;
}

TEST(HevcFrameRate, ofTheVui) {
    const FrameRate rate = frameRateOf(*timing(1001, 30000));
    EXPECT_EQ(rate.framesPerSecond, (Ratio{30000, 1001}));
    EXPECT_EQ(rate.ticksPerPicture, 1U);
    EXPECT_FALSE(rate.isFixed);
    EXPECT_EQ(frameRateOf(*timing(1080000, 27000000)).framesPerSecond, (Ratio{25, 1}));
}

TEST(HevcFrameRate, withoutTiming) {
    const auto sps = timing(1, 25);
    sps->vui.vui_timing_info_present_flag = false;
    EXPECT_FALSE(frameRateOf(*sps).framesPerSecond.isKnown());
    EXPECT_EQ(frameRateOf(*sps).ticksPerPicture, 0U);
    EXPECT_FALSE(frameRateOf(*timing(0, 25)).framesPerSecond.isKnown());
    EXPECT_FALSE(frameRateOf(*timing(1, 0)).framesPerSecond.isKnown());
}

TEST(HevcFrameRate, ofFields) {
    const auto even = timing(1, 50);
    even->vui.field_seq_flag = true;
    EXPECT_EQ(frameRateOf(*even).framesPerSecond, (Ratio{25, 1}));
    const auto odd = timing(1, 25);
    odd->vui.field_seq_flag = true;
    EXPECT_EQ(frameRateOf(*odd).framesPerSecond, (Ratio{25, 2}));
}

// Each step in picture order count is 1001 ticks.
TEST(HevcFrameRate, proportionalToPictureOrderCount) {
    const auto sps = timing(1, 24000);
    sps->vui.vui_poc_proportional_to_timing_flag = true;
    sps->vui.vui_num_ticks_poc_diff_one_minus1 = 1000;
    EXPECT_EQ(frameRateOf(*sps).framesPerSecond, (Ratio{24000, 1001}));
    EXPECT_EQ(frameRateOf(*sps).ticksPerPicture, 1001U);
}

// The HRD parameters of the highest sub-layer come before everything else.
TEST(HevcFrameRate, fixedByHrdParameters) {
    const auto sps = timing(1, 100);
    sps->sps_max_sub_layers_minus1 = 1;
    sps->vui.vui_poc_proportional_to_timing_flag = true;
    sps->vui.vui_num_ticks_poc_diff_one_minus1 = 9;
    sps->vui.vui_hrd_parameters_present_flag = true;
    SubLayerHrd* const subLayers = sps->vui.hrd_parameters.sub_layer;
    subLayers[0].fixed_pic_rate_within_cvs_flag = true;
    subLayers[0].elemental_duration_in_tc_minus1 = 7;
    EXPECT_EQ(frameRateOf(*sps).framesPerSecond, (Ratio{10, 1}));
    EXPECT_FALSE(frameRateOf(*sps).isFixed);
    subLayers[1].fixed_pic_rate_within_cvs_flag = true;
    subLayers[1].elemental_duration_in_tc_minus1 = 3;
    EXPECT_EQ(frameRateOf(*sps).framesPerSecond, (Ratio{25, 1}));
    EXPECT_TRUE(frameRateOf(*sps).isFixed);
    sps->sps_max_sub_layers_minus1 = 7;
    EXPECT_EQ(frameRateOf(*sps).framesPerSecond, (Ratio{10, 1}));
    sps->sps_max_sub_layers_minus1 = 1;
    sps->vui.vui_time_scale = 0;
    EXPECT_FALSE(frameRateOf(*sps).isFixed);
}

TEST(HevcFrameRate, greatestTerms) {
    const auto sps = timing(0xFFFFFFFF, 0xFFFFFFFE);
    sps->vui.vui_poc_proportional_to_timing_flag = true;
    sps->vui.vui_num_ticks_poc_diff_one_minus1 = 0xFFFFFFFE;
    EXPECT_EQ(frameRateOf(*sps).framesPerSecond, (Ratio{0xFFFFFFFE, uint64_t{0xFFFFFFFF} * 0xFFFFFFFF}));
    // Of fields half of the numerator, and with an odd one twice a denominator that has no room.
    sps->vui.field_seq_flag = true;
    EXPECT_EQ(frameRateOf(*sps).framesPerSecond, (Ratio{0x7FFFFFFF, uint64_t{0xFFFFFFFF} * 0xFFFFFFFF}));
    sps->vui.vui_time_scale = 0xFFFFFFFD;
    EXPECT_FALSE(frameRateOf(*sps).framesPerSecond.isKnown());
}

TEST(HevcFrameRate, ofTheVps) {
    auto vps = std::make_unique<Vps>();
    vps->vps_num_units_in_tick = 1;
    vps->vps_time_scale = 60;
    EXPECT_FALSE(frameRateOf(*vps, false).framesPerSecond.isKnown());
    vps->vps_timing_info_present_flag = true;
    EXPECT_EQ(frameRateOf(*vps, false).framesPerSecond, (Ratio{60, 1}));
    EXPECT_EQ(frameRateOf(*vps, true).framesPerSecond, (Ratio{30, 1}));
    vps->vps_poc_proportional_to_timing_flag = true;
    vps->vps_num_ticks_poc_diff_one_minus1 = 1;
    EXPECT_EQ(frameRateOf(*vps, false).framesPerSecond, (Ratio{30, 1}));
}

}  // namespace
