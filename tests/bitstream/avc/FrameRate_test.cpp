// Frame rates of H.264.
#include "bitstream/avc/FrameRate.h"

#include <gtest/gtest.h>

namespace {

using namespace qv::avc;
using qv::Ratio;

TEST(AvcFrameRate, aTickIsTheTimeOfAField) {
    Vui vui = {};
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1001;
    vui.time_scale = 60000;
    vui.fixed_frame_rate_flag = true;
    EXPECT_EQ(frameRateOf(vui).framesPerSecond, (Ratio{30000, 1001}));
    EXPECT_TRUE(frameRateOf(vui).isFixed);
    vui.fixed_frame_rate_flag = false;
    EXPECT_FALSE(frameRateOf(vui).isFixed);
    static_assert(frameRateOf(1, 50, true).framesPerSecond == Ratio{25, 1}, "25 frames in a second");
}

TEST(AvcFrameRate, theGreatestTickDoesNotOverflow) {
    EXPECT_EQ(frameRateOf(0xFFFFFFFF, 1, true).framesPerSecond, (Ratio{1, 2 * 0xFFFFFFFFULL}));
    EXPECT_EQ(frameRateOf(1, 0xFFFFFFFF, true).framesPerSecond, (Ratio{0xFFFFFFFF, 2}));
}

TEST(AvcFrameRate, withoutTimingItIsUnknown) {
    EXPECT_FALSE(frameRateOf(Vui{}).framesPerSecond.isKnown());
    EXPECT_FALSE(frameRateOf(0, 50, true).framesPerSecond.isKnown());
    EXPECT_FALSE(frameRateOf(1, 0, true).isFixed);
}

TEST(AvcFrameRate, ofAnOperationPoint) {
    VuiExtensionTiming timing = {};
    EXPECT_FALSE(frameRateOf(timing).framesPerSecond.isKnown());
    timing.num_units_in_tick = 1;
    timing.time_scale = 120;
    EXPECT_EQ(frameRateOf(timing).framesPerSecond, (Ratio{60, 1}));
}

}  // namespace
