/// \file
/// Sizes of coding and transform blocks of H.265, and of a picture in them.
#ifndef QV_BITSTREAM_HEVC_BLOCKSIZES_H
#define QV_BITSTREAM_HEVC_BLOCKSIZES_H

#include <cstdint>

#include "bitstream/hevc/Sps.h"

namespace qv::hevc {

/// Sizes of blocks and of a picture in them, H.265 7.4.3.2.1 (7-10) to (7-27).
struct BlockSizes {
    uint32_t MinCbLog2SizeY = 0;      ///< 3..6
    uint32_t CtbLog2SizeY = 0;        ///< 3..6
    uint32_t MinTbLog2SizeY = 0;      ///< 2..5
    uint32_t MaxTbLog2SizeY = 0;      ///< 2..5
    uint32_t Log2MinIpcmCbSizeY = 0;  ///< 3..5; 0 without pcm_enabled_flag
    uint32_t Log2MaxIpcmCbSizeY = 0;  ///< 3..5; 0 without pcm_enabled_flag
    uint64_t PicWidthInMinCbsY =
        0;  ///< less than the whole width for one that is no multiple, a fault of the SPS
    uint64_t PicHeightInMinCbsY = 0;  ///< as PicWidthInMinCbsY
    uint64_t PicWidthInCtbsY = 0;     ///< rounded up
    uint64_t PicHeightInCtbsY = 0;    ///< rounded up
    uint64_t PicSizeInCtbsY = 0;      ///< PicWidthInCtbsY * PicHeightInCtbsY
};

/// PicSizeInSamplesY, H.265 7.4.3.2.1.
constexpr uint64_t picSizeInSamplesY(const Sps& sps) {
    return uint64_t{sps.pic_width_in_luma_samples} * sps.pic_height_in_luma_samples;
}

/// The block sizes of \p sps.
///
/// \param sps  read without a fault; all sizes are 0 for others with logarithms above 31
constexpr BlockSizes blockSizesOf(const Sps& sps) {
    constexpr uint64_t kMostLog2 = 31;
    const uint64_t minCb = uint64_t{sps.log2_min_luma_coding_block_size_minus3} + 3;
    const uint64_t ctb = minCb + sps.log2_diff_max_min_luma_coding_block_size;
    const uint64_t minTb = uint64_t{sps.log2_min_luma_transform_block_size_minus2} + 2;
    const uint64_t maxTb = minTb + sps.log2_diff_max_min_luma_transform_block_size;
    const uint64_t minPcm = uint64_t{sps.log2_min_pcm_luma_coding_block_size_minus3} + 3;
    const uint64_t maxPcm = minPcm + sps.log2_diff_max_min_pcm_luma_coding_block_size;
    BlockSizes sizes;
    if (ctb > kMostLog2 || maxTb > kMostLog2 || maxPcm > kMostLog2) {
        return sizes;
    }
    const uint64_t width = sps.pic_width_in_luma_samples;
    const uint64_t height = sps.pic_height_in_luma_samples;
    const uint64_t ctbSizeY = uint64_t{1} << ctb;
    sizes.MinCbLog2SizeY = static_cast<uint32_t>(minCb);
    sizes.CtbLog2SizeY = static_cast<uint32_t>(ctb);
    sizes.MinTbLog2SizeY = static_cast<uint32_t>(minTb);
    sizes.MaxTbLog2SizeY = static_cast<uint32_t>(maxTb);
    if (sps.pcm_enabled_flag) {
        sizes.Log2MinIpcmCbSizeY = static_cast<uint32_t>(minPcm);
        sizes.Log2MaxIpcmCbSizeY = static_cast<uint32_t>(maxPcm);
    }
    sizes.PicWidthInMinCbsY = width >> minCb;
    sizes.PicHeightInMinCbsY = height >> minCb;
    sizes.PicWidthInCtbsY = (width + ctbSizeY - 1) >> ctb;
    sizes.PicHeightInCtbsY = (height + ctbSizeY - 1) >> ctb;
    sizes.PicSizeInCtbsY = sizes.PicWidthInCtbsY * sizes.PicHeightInCtbsY;
    return sizes;
}

}  // namespace qv::hevc

#endif
