// Sizes of blocks of H.265.
#include "bitstream/hevc/BlockSizes.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace qv::hevc;

TEST(HevcBlockSizes, sizesOfBlocksAndPictures) {
    auto sps = std::make_unique<Sps>();
    sps->pic_width_in_luma_samples = 1288;
    sps->pic_height_in_luma_samples = 720;
    sps->log2_diff_max_min_luma_coding_block_size = 3;
    sps->log2_min_luma_transform_block_size_minus2 = 0;
    sps->log2_diff_max_min_luma_transform_block_size = 3;
    const BlockSizes sizes = blockSizesOf(*sps);
    EXPECT_EQ(sizes.MinCbLog2SizeY, 3U);
    EXPECT_EQ(sizes.CtbLog2SizeY, 6U);
    EXPECT_EQ(sizes.MinTbLog2SizeY, 2U);
    EXPECT_EQ(sizes.MaxTbLog2SizeY, 5U);
    EXPECT_EQ(sizes.Log2MinIpcmCbSizeY, 0U);
    EXPECT_EQ(sizes.PicWidthInMinCbsY, 161U);
    EXPECT_EQ(sizes.PicHeightInMinCbsY, 90U);
    EXPECT_EQ(sizes.PicWidthInCtbsY, 21U);
    EXPECT_EQ(sizes.PicHeightInCtbsY, 12U);
    EXPECT_EQ(sizes.PicSizeInCtbsY, 252U);
    EXPECT_EQ(picSizeInSamplesY(*sps), 1288U * 720);
    sps->pcm_enabled_flag = true;
    sps->log2_min_pcm_luma_coding_block_size_minus3 = 1;
    sps->log2_diff_max_min_pcm_luma_coding_block_size = 1;
    EXPECT_EQ(blockSizesOf(*sps).Log2MinIpcmCbSizeY, 4U);
    EXPECT_EQ(blockSizesOf(*sps).Log2MaxIpcmCbSizeY, 5U);
}

TEST(HevcBlockSizes, greatestPicture) {
    auto sps = std::make_unique<Sps>();
    sps->pic_width_in_luma_samples = 0xFFFFFFFE;
    sps->pic_height_in_luma_samples = 0xFFFFFFFE;
    const BlockSizes sizes = blockSizesOf(*sps);
    EXPECT_EQ(sizes.PicWidthInCtbsY, uint64_t{1} << 29);
    EXPECT_EQ(sizes.PicSizeInCtbsY, uint64_t{1} << 58);
    EXPECT_EQ(picSizeInSamplesY(*sps), uint64_t{0xFFFFFFFE} * 0xFFFFFFFE);
}

TEST(HevcBlockSizes, logarithmsThatNoReadGives) {
    auto sps = std::make_unique<Sps>();
    sps->pic_width_in_luma_samples = 64;
    for (uint32_t Sps::*const field :
         {&Sps::log2_min_luma_coding_block_size_minus3, &Sps::log2_diff_max_min_luma_coding_block_size,
          &Sps::log2_min_luma_transform_block_size_minus2, &Sps::log2_diff_max_min_luma_transform_block_size,
          &Sps::log2_min_pcm_luma_coding_block_size_minus3,
          &Sps::log2_diff_max_min_pcm_luma_coding_block_size}) {
        (*sps).*field = 0xFFFFFFFF;
        EXPECT_EQ(blockSizesOf(*sps).CtbLog2SizeY, 0U);
        (*sps).*field = 0;
        EXPECT_EQ(blockSizesOf(*sps).CtbLog2SizeY, 3U);
    }
}

}  // namespace
