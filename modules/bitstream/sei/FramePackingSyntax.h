// Stereo video and frame packing as syntax functions.
#ifndef QV_BITSTREAM_SEI_FRAMEPACKINGSYNTAX_H
#define QV_BITSTREAM_SEI_FRAMEPACKINGSYNTAX_H

#include "bitstream/sei/FramePacking.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/Repetition.h"

namespace qv::sei {

// stereo_video_info(), H.264 D.1.23
template <class Syntax>
void stereo_video_info(Syntax& s, const Context& context, StereoVideoInfo& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"stereo_video_info()", "D.1.23"};
    const Within<Syntax> within(s, kStructure);
    s.flag("field_views_flag", payload.field_views_flag);
    if (payload.field_views_flag) {
        s.flag("top_field_is_left_view_flag", payload.top_field_is_left_view_flag);
    } else {
        s.flag("current_frame_is_left_view_flag", payload.current_frame_is_left_view_flag);
        s.flag("next_frame_is_second_view_flag", payload.next_frame_is_second_view_flag);
    }
    s.flag("left_view_self_contained_flag", payload.left_view_self_contained_flag);
    s.flag("right_view_self_contained_flag", payload.right_view_self_contained_flag);
}

template <class Syntax>
void frame_packing(Syntax& s, const Context& context, FramePackingArrangement& payload) {
    constexpr uint32_t kTemporalInterleaving = 5;
    s.u(7, "frame_packing_arrangement_type", payload.frame_packing_arrangement_type);
    s.flag("quincunx_sampling_flag", payload.quincunx_sampling_flag);
    s.u(6, "content_interpretation_type", payload.content_interpretation_type);
    s.flag("spatial_flipping_flag", payload.spatial_flipping_flag);
    s.flag("frame0_flipped_flag", payload.frame0_flipped_flag);
    s.flag("field_views_flag", payload.field_views_flag);
    s.flag("current_frame_is_frame0_flag", payload.current_frame_is_frame0_flag);
    s.flag("frame0_self_contained_flag", payload.frame0_self_contained_flag);
    s.flag("frame1_self_contained_flag", payload.frame1_self_contained_flag);
    if (!payload.quincunx_sampling_flag && payload.frame_packing_arrangement_type != kTemporalInterleaving) {
        s.u(4, "frame0_grid_position_x", payload.frame0_grid_position_x);
        s.u(4, "frame0_grid_position_y", payload.frame0_grid_position_y);
        s.u(4, "frame1_grid_position_x", payload.frame1_grid_position_x);
        s.u(4, "frame1_grid_position_y", payload.frame1_grid_position_y);
    }
    s.u(8, "frame_packing_arrangement_reserved_byte", payload.frame_packing_arrangement_reserved_byte);
    if (context.codec == Codec::Avc) {
        s.ue("frame_packing_arrangement_repetition_period",
             payload.frame_packing_arrangement_repetition_period, 0, kMostRepetitionPeriod);
    } else {
        s.flag("frame_packing_arrangement_persistence_flag",
               payload.frame_packing_arrangement_persistence_flag);
    }
}

// frame_packing_arrangement(), H.264 D.1.26, H.265 D.2.16
template <class Syntax>
void frame_packing_arrangement(Syntax& s, const Context& context, FramePackingArrangement& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("frame_packing_arrangement()", "D.1.26", "D.2.16");
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("frame_packing_arrangement_id", payload.frame_packing_arrangement_id);
    s.flag("frame_packing_arrangement_cancel_flag", payload.frame_packing_arrangement_cancel_flag);
    if (!payload.frame_packing_arrangement_cancel_flag) {
        frame_packing(s, context, payload);
    }
    if (context.codec == Codec::Hevc) {
        s.flag("upsampled_aspect_ratio_flag", payload.upsampled_aspect_ratio_flag);
        return;
    }
    s.flag("frame_packing_arrangement_extension_flag", payload.frame_packing_arrangement_extension_flag);
    if (payload.frame_packing_arrangement_extension_flag) {
        s.payload_bytes("extension_data", payload.extension_data);
    }
}

// segmented_rect_frame_packing_arrangement(), H.265 D.2.29
template <class Syntax>
void segmented_rect_frame_packing_arrangement(Syntax& s, const Context& context,
                                              SegmentedRectFramePackingArrangement& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"segmented_rect_frame_packing_arrangement()", "D.2.29"};
    const Within<Syntax> within(s, kStructure);
    s.flag("segmented_rect_frame_packing_arrangement_cancel_flag",
           payload.segmented_rect_frame_packing_arrangement_cancel_flag);
    if (!payload.segmented_rect_frame_packing_arrangement_cancel_flag) {
        s.u(2, "segmented_rect_content_interpretation_type",
            payload.segmented_rect_content_interpretation_type);
        s.flag("segmented_rect_frame_packing_arrangement_persistence_flag",
               payload.segmented_rect_frame_packing_arrangement_persistence_flag);
    }
}

}  // namespace qv::sei

#endif
