/// \file
/// The decoded picture buffer that an H.265 sequence parameter set declares, and that its level allows.
#ifndef QV_BITSTREAM_HEVC_DPB_H
#define QV_BITSTREAM_HEVC_DPB_H

#include <cstdint>
#include <optional>

#include "bitstream/hevc/BlockSizes.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/names/HevcLevels.h"

namespace qv::hevc {

/// The greatest MaxDpbSize.
constexpr uint32_t kMostMaxDpbSize = 16;

/// MaxDpbSize, the pictures of the size in \p sps that the level allows in the decoded picture buffer, the
/// current one included: H.265 A.4.2. maxDpbPicBuf is 7 for the profiles whose pictures may refer to
/// themselves, otherwise 6.
///
/// \return nothing when this edition does not define the level. 16 for level 8.5, and 0 when the picture is
/// larger
///         than the level allows.
constexpr std::optional<uint32_t> maxDpbSize(const Sps& sps) {
    const ProfileTierLevel& ptl = sps.profile_tier_level;
    if (ptl.general_level_idc == kLevelIdcWithoutLimits) {
        return kMostMaxDpbSize;
    }
    const LevelEntry* const level = findLevel(ptl.general_level_idc);
    if (level == nullptr) {
        return {};
    }
    const uint64_t samples = picSizeInSamplesY(sps);
    const uint64_t most = level->MaxLumaPs;
    const uint32_t maxDpbPicBuf = ptl.general.profile_idc == 9 || ptl.general.profile_idc == 11 ? 7 : 6;
    uint32_t size = maxDpbPicBuf;
    if (samples > most) {
        size = 0;
    } else if (samples <= most >> 2) {
        size = 4 * maxDpbPicBuf;
    } else if (samples <= most >> 1) {
        size = 2 * maxDpbPicBuf;
    } else if (samples <= 3 * most >> 2) {
        size = 4 * maxDpbPicBuf / 3;
    }
    return size < kMostMaxDpbSize ? size : kMostMaxDpbSize;
}

/// The pictures that decoding all sub-layers stores, the current one included, 1..16:
/// sps_max_dec_pic_buffering_minus1 + 1 of the highest sub-layer (H.265 7.4.3.2.1). Nothing for an SPS with
/// multiLayerExtSpsFlag(), whose VPS gives sizes for each output layer set.
constexpr std::optional<uint32_t> maxDecPicBuffering(const Sps& sps) {
    if (multiLayerExtSpsFlag(sps) || sps.sps_max_sub_layers_minus1 >= kMostSubLayers) {
        return {};
    }
    return sps.sps_max_dec_pic_buffering_minus1[sps.sps_max_sub_layers_minus1] + 1;
}

/// The pictures that can come before a picture in decoding order and after it in output order, 0..15:
/// sps_max_num_reorder_pics of the highest sub-layer. Nothing where maxDecPicBuffering() has nothing.
constexpr std::optional<uint32_t> maxNumReorderPics(const Sps& sps) {
    if (multiLayerExtSpsFlag(sps) || sps.sps_max_sub_layers_minus1 >= kMostSubLayers) {
        return {};
    }
    return sps.sps_max_num_reorder_pics[sps.sps_max_sub_layers_minus1];
}

/// SpsMaxLatencyPictures of the highest sub-layer, the pictures that can come before a picture in output
/// order and after it in decoding order: H.265 7.4.3.2.1 (7-9). Nothing when there is no limit, and where
/// maxDecPicBuffering() has nothing.
constexpr std::optional<uint64_t> maxLatencyPictures(const Sps& sps) {
    const std::optional<uint32_t> reorder = maxNumReorderPics(sps);
    if (!reorder.has_value() || sps.sps_max_latency_increase_plus1[sps.sps_max_sub_layers_minus1] == 0) {
        return {};
    }
    return uint64_t{*reorder} + sps.sps_max_latency_increase_plus1[sps.sps_max_sub_layers_minus1] - 1;
}

}  // namespace qv::hevc

#endif
