/// \file
/// The decoded picture buffer of H.264: how many frames it holds, and how many frames are reordered.
#ifndef QV_BITSTREAM_AVC_DPB_H
#define QV_BITSTREAM_AVC_DPB_H

#include <cstdint>
#include <optional>

#include "bitstream/avc/PictureFormat.h"
#include "bitstream/avc/ProfileLevel.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/syntax/Bits.h"

namespace qv::avc {

/// MaxDpbFrames, the frames that the level allows in the decoded picture buffer: H.264 A.3.1 h) and A.3.2 f),
/// and for the profiles of several views H.10.2.1, of all views together.
///
/// \param numViews  NumViews of the operation point; it matters for the profiles of several views alone
/// \return nothing when this edition does not define the level. 0 when one frame is larger than the level
///         allows.
constexpr std::optional<uint32_t> maxDpbFrames(const SpsData& sps, uint32_t numViews = 1) {
    const LevelEntry* const level = levelOf(sps);
    if (level == nullptr) {
        return {};
    }
    const bool hasViews = isMultiview(sps.profile_idc);
    const uint64_t mbs = (hasViews ? 2 : 1) * uint64_t{level->MaxDpbMbs};
    const uint64_t frames = mbs / picWidthInMbs(sps) / frameHeightInMbs(sps);
    const uint32_t viewBits = detail::ceilLog2(numViews);
    const uint64_t most = 16 * (hasViews && viewBits > 1 ? viewBits : 1);
    return static_cast<uint32_t>(frames < most ? frames : most);
}

/// max_dec_frame_buffering, the size of the decoded picture buffer in frames; when it is not present the
/// value that H.264 E.2.1 infers: 0 in intra profiles, else MaxDpbFrames.
///
/// \param numViews  as in maxDpbFrames()
/// \return nothing when it is not present and this edition does not define the level
constexpr std::optional<uint32_t> maxDecFrameBuffering(const SpsData& sps, uint32_t numViews = 1) {
    if (sps.vui.bitstream_restriction_flag) {
        return sps.vui.max_dec_frame_buffering;
    }
    return isIntraProfile(sps) ? std::optional<uint32_t>(0) : maxDpbFrames(sps, numViews);
}

/// max_num_reorder_frames, the frames that can come before a frame in decoding order and after it in output
/// order; when it is not present the value that H.264 E.2.1 infers: 0 in intra profiles, else MaxDpbFrames.
///
/// \param numViews  as in maxDpbFrames()
/// \return nothing when it is not present and this edition does not define the level
constexpr std::optional<uint32_t> maxNumReorderFrames(const SpsData& sps, uint32_t numViews = 1) {
    if (sps.vui.bitstream_restriction_flag) {
        return sps.vui.max_num_reorder_frames;
    }
    return isIntraProfile(sps) ? std::optional<uint32_t>(0) : maxDpbFrames(sps, numViews);
}

}  // namespace qv::avc

#endif
