// The decoded picture buffer of H.265.
#include "bitstream/hevc/Dpb.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace qv::hevc;

std::unique_ptr<Sps> spsOf(uint32_t level_idc, uint32_t width, uint32_t height, uint32_t profile_idc = 1) {
    auto sps = std::make_unique<Sps>();
    sps->profile_tier_level.general.profile_idc = profile_idc;
    sps->profile_tier_level.general_level_idc = level_idc;
    sps->pic_width_in_luma_samples = width;
    sps->pic_height_in_luma_samples = height;
    return sps;
}

// Level 4.1 holds 2 228 224 luma samples; has steps at a quarter, a half and three quarters of that.
TEST(HevcDpb, maxDpbSize) {
    struct Case {
        uint32_t profile_idc;
        uint32_t width;
        uint32_t height;
        uint32_t size;
    };
    const Case cases[] = {
        {1, 2228224, 1, 6},  {1, 2228225, 1, 0},  {1, 1671169, 1, 6}, {1, 1671168, 1, 8}, {1, 1114113, 1, 8},
        {1, 1114112, 1, 12}, {1, 557057, 1, 12},  {1, 557056, 1, 16}, {1, 1920, 1088, 6}, {9, 1920, 1088, 7},
        {11, 1671168, 1, 9}, {9, 1114112, 1, 14}, {9, 557056, 1, 16},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(maxDpbSize(*spsOf(123, one.width, one.height, one.profile_idc)), one.size)
            << one.profile_idc << " " << one.width;
    }
}

TEST(HevcDpb, levelsWithoutLimits) {
    EXPECT_EQ(maxDpbSize(*spsOf(255, 0xFFFFFFFE, 0xFFFFFFFE)), 16U);
    EXPECT_FALSE(maxDpbSize(*spsOf(124, 64, 64)).has_value());
    EXPECT_EQ(maxDpbSize(*spsOf(186, 0xFFFFFFFE, 0xFFFFFFFE)), 0U);
}

TEST(HevcDpb, ofTheHighestSubLayer) {
    const auto sps = spsOf(123, 1920, 1088);
    sps->sps_max_sub_layers_minus1 = 2;
    sps->sps_max_dec_pic_buffering_minus1[2] = 4;
    sps->sps_max_num_reorder_pics[2] = 2;
    EXPECT_EQ(maxDecPicBuffering(*sps), 5U);
    EXPECT_EQ(maxNumReorderPics(*sps), 2U);
    EXPECT_FALSE(maxLatencyPictures(*sps).has_value());
    sps->sps_max_latency_increase_plus1[2] = 1;
    EXPECT_EQ(maxLatencyPictures(*sps), 2U);
    sps->sps_max_latency_increase_plus1[2] = 0xFFFFFFFE;
    EXPECT_EQ(maxLatencyPictures(*sps), uint64_t{0xFFFFFFFF});
}

TEST(HevcDpb, layersThatTheVpsDescribes) {
    const auto sps = spsOf(123, 1920, 1088);
    sps->header.nuh_layer_id = 1;
    sps->sps_ext_or_max_sub_layers_minus1 = 7;
    sps->sps_max_latency_increase_plus1[0] = 3;
    EXPECT_FALSE(maxDecPicBuffering(*sps).has_value());
    EXPECT_FALSE(maxNumReorderPics(*sps).has_value());
    EXPECT_FALSE(maxLatencyPictures(*sps).has_value());
    sps->header.nuh_layer_id = 0;
    sps->sps_max_sub_layers_minus1 = 7;
    EXPECT_FALSE(maxDecPicBuffering(*sps).has_value());
    EXPECT_FALSE(maxNumReorderPics(*sps).has_value());
}

}  // namespace
