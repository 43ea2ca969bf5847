/// \file
/// Two views in one video: stereo and frame packing.
#ifndef QV_BITSTREAM_SEI_FRAMEPACKING_H
#define QV_BITSTREAM_SEI_FRAMEPACKING_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// stereo_video_info(), H.264 D.1.23.
struct StereoVideoInfo {
    static constexpr PayloadTypes kPayloadTypes = {21, kNoPayloadType};  ///< payloadType

    bool field_views_flag;                 ///< u(1)
    bool top_field_is_left_view_flag;      ///< u(1), with field_views_flag
    bool current_frame_is_left_view_flag;  ///< u(1), without field_views_flag
    bool next_frame_is_second_view_flag;   ///< u(1), without field_views_flag
    bool left_view_self_contained_flag;    ///< u(1)
    bool right_view_self_contained_flag;   ///< u(1)
};

/// frame_packing_arrangement(), H.264 D.1.26, H.265 D.2.16. The elements after
/// frame_packing_arrangement_cancel_flag are present unless it is 1, but for the last one.
struct FramePackingArrangement {
    static constexpr PayloadTypes kPayloadTypes = {45, 45};  ///< payloadType

    uint32_t frame_packing_arrangement_id;       ///< ue(v); 256..511 and values from 2^31 on are reserved
    bool frame_packing_arrangement_cancel_flag;  ///< u(1)
    uint32_t frame_packing_arrangement_type;     ///< u(7), 0..7, in H.265 3..5; others are reserved
    bool quincunx_sampling_flag;                 ///< u(1)
    uint32_t content_interpretation_type;        ///< u(6), 0..2; others are reserved
    bool spatial_flipping_flag;                  ///< u(1)
    bool frame0_flipped_flag;                    ///< u(1)
    bool field_views_flag;                       ///< u(1)
    bool current_frame_is_frame0_flag;           ///< u(1)
    bool frame0_self_contained_flag;             ///< u(1)
    bool frame1_self_contained_flag;             ///< u(1)

    uint32_t frame0_grid_position_x;  ///< u(4), without quincunx_sampling_flag and for types but 5
    uint32_t frame0_grid_position_y;  ///< u(4), as frame0_grid_position_x
    uint32_t frame1_grid_position_x;  ///< u(4), as frame0_grid_position_x
    uint32_t frame1_grid_position_y;  ///< u(4), as frame0_grid_position_x

    uint32_t frame_packing_arrangement_reserved_byte;      ///< u(8); values but 0 are reserved
    uint32_t frame_packing_arrangement_repetition_period;  ///< ue(v), 0..16384; H.264
    bool frame_packing_arrangement_persistence_flag;       ///< u(1), H.265

    bool upsampled_aspect_ratio_flag;               ///< u(1), always; H.265
    bool frame_packing_arrangement_extension_flag;  ///< u(1), always; H.264
    CodedBits extension_data;                       ///< what follows that flag when it is 1, borrowed
};

/// segmented_rect_frame_packing_arrangement(), H.265 D.2.29.
struct SegmentedRectFramePackingArrangement {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 138};  ///< payloadType

    bool segmented_rect_frame_packing_arrangement_cancel_flag;  ///< u(1); without it the others are present
    uint32_t segmented_rect_content_interpretation_type;        ///< u(2), 0..2; 3 is reserved
    bool segmented_rect_frame_packing_arrangement_persistence_flag;  ///< u(1)
};

}  // namespace qv::sei

#endif
