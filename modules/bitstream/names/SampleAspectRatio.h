/// \file
/// Sample aspect ratios, H.264 Table E-1 and H.265 Table E.1.
#ifndef QV_BITSTREAM_NAMES_SAMPLEASPECTRATIO_H
#define QV_BITSTREAM_NAMES_SAMPLEASPECTRATIO_H

#include <cstdint>

#include "bitstream/Ratio.h"

namespace qv {

/// aspect_ratio_idc: sar_width and sar_height follow.
constexpr uint32_t kExtendedSar = 255;

/// The ratios of aspect_ratio_idc 0 to 16; 0 is unspecified.
constexpr Ratio kSampleAspectRatios[] = {
    {0, 0},   {1, 1},   {12, 11}, {10, 11}, {16, 11},  {40, 33}, {24, 11}, {20, 11}, {32, 11},
    {80, 33}, {18, 11}, {15, 11}, {64, 33}, {160, 99}, {4, 3},   {3, 2},   {2, 1},
};

/// The width of a luma sample in relation to its height.
///
/// \param aspect_ratio_idc  Table E-1
/// \param sar_width         used with aspect_ratio_idc 255 alone
/// \param sar_height        used with aspect_ratio_idc 255 alone
/// \return the ratio in lowest terms; 0:0 when it is unspecified, for reserved values of aspect_ratio_idc,
/// and
///         when sar_width or sar_height is 0
constexpr Ratio sampleAspectRatio(uint32_t aspect_ratio_idc, uint32_t sar_width, uint32_t sar_height) {
    if (aspect_ratio_idc == kExtendedSar) {
        return ratioOf(sar_width, sar_height);
    }
    return aspect_ratio_idc <= 16 ? kSampleAspectRatios[aspect_ratio_idc] : Ratio();
}

}  // namespace qv

#endif
