/// \file
/// Frames that stay on the display, snapshots, and pictures that refine one another.
#ifndef QV_BITSTREAM_SEI_FULLFRAME_H
#define QV_BITSTREAM_SEI_FULLFRAME_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// full_frame_freeze(), H.264 D.1.15.
struct FullFrameFreeze {
    static constexpr PayloadTypes kPayloadTypes = {13, kNoPayloadType};  ///< payloadType

    uint32_t full_frame_freeze_repetition_period;  ///< ue(v), 0..16384
};

/// full_frame_freeze_release(), H.264 D.1.16. It has no elements.
struct FullFrameFreezeRelease {
    static constexpr PayloadTypes kPayloadTypes = {14, kNoPayloadType};  ///< payloadType
};

/// full_frame_snapshot() of H.264 D.1.17, picture_snapshot() of H.265 D.2.10.
struct PictureSnapshot {
    static constexpr PayloadTypes kPayloadTypes = {15, 15};  ///< payloadType

    uint32_t snapshot_id;  ///< ue(v); 256..511 and values from 2^31 on are reserved
};

/// progressive_refinement_segment_start(), H.264 D.1.18, H.265 D.2.11.
struct ProgressiveRefinementSegmentStart {
    static constexpr PayloadTypes kPayloadTypes = {16, 16};  ///< payloadType

    uint32_t progressive_refinement_id;    ///< ue(v); 256..511 and values from 2^31 on are reserved
    uint32_t num_refinement_steps_minus1;  ///< ue(v), 0..MaxFrameNum - 1; H.264
    uint32_t pic_order_cnt_delta;          ///< ue(v), 0..256; H.265
};

/// progressive_refinement_segment_end(), H.264 D.1.19, H.265 D.2.12.
struct ProgressiveRefinementSegmentEnd {
    static constexpr PayloadTypes kPayloadTypes = {17, 17};  ///< payloadType

    uint32_t progressive_refinement_id;  ///< ue(v), that of the segment's start
};

}  // namespace qv::sei

#endif
