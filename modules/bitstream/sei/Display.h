/// \file
/// What a display does with the decoded pictures.
#ifndef QV_BITSTREAM_SEI_DISPLAY_H
#define QV_BITSTREAM_SEI_DISPLAY_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// deblocking_filter_display_preference(), H.264 D.1.22. The elements after the first one are present unless
/// it is 1.
struct DeblockingFilterDisplayPreference {
    static constexpr PayloadTypes kPayloadTypes = {20, kNoPayloadType};  ///< payloadType

    bool deblocking_display_preference_cancel_flag;            ///< u(1)
    bool display_prior_to_deblocking_preferred_flag;           ///< u(1)
    bool dec_frame_buffering_constraint_flag;                  ///< u(1)
    uint32_t deblocking_display_preference_repetition_period;  ///< ue(v), 0..16384
};

/// display_orientation(), H.264 D.1.27, H.265 D.2.17. The elements after the first one are present unless it
/// is
/// 1. A display flips the picture before it rotates it.
struct DisplayOrientation {
    static constexpr PayloadTypes kPayloadTypes = {47, 47};  ///< payloadType

    bool display_orientation_cancel_flag;            ///< u(1)
    bool hor_flip;                                   ///< u(1), left and right
    bool ver_flip;                                   ///< u(1), top and bottom
    uint32_t anticlockwise_rotation;                 ///< u(16), in 360 / 2^16 degrees
    uint32_t display_orientation_repetition_period;  ///< ue(v), 0..16384; H.264
    bool display_orientation_persistence_flag;       ///< u(1), H.265
    bool display_orientation_extension_flag;         ///< u(1), H.264
    CodedBits extension_data;                        ///< what follows that flag when it is 1, borrowed
};

}  // namespace qv::sei

#endif
