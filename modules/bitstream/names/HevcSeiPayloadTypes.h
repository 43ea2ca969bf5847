/// \file
/// Names of the SEI payload types of H.265.
#ifndef QV_BITSTREAM_NAMES_HEVCSEIPAYLOADTYPES_H
#define QV_BITSTREAM_NAMES_HEVCSEIPAYLOADTYPES_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv::hevc {

/// payloadType, D.2.1. The name is that of the syntax structure of the payload, the clause that of its
/// syntax; "Annex D" where only editions later than the one of this library have it.
constexpr Name kSeiPayloadTypeNames[] = {
    {0, "buffering_period", "D.2.2"},
    {1, "pic_timing", "D.2.3"},
    {2, "pan_scan_rect", "D.2.4"},
    {3, "filler_payload", "D.2.5"},
    {4, "user_data_registered_itu_t_t35", "D.2.6"},
    {5, "user_data_unregistered", "D.2.7"},
    {6, "recovery_point", "D.2.8"},
    {9, "scene_info", "D.2.9"},
    {15, "picture_snapshot", "D.2.10"},
    {16, "progressive_refinement_segment_start", "D.2.11"},
    {17, "progressive_refinement_segment_end", "D.2.12"},
    {19, "film_grain_characteristics", "D.2.13"},
    {22, "post_filter_hint", "D.2.14"},
    {23, "tone_mapping_info", "D.2.15"},
    {45, "frame_packing_arrangement", "D.2.16"},
    {47, "display_orientation", "D.2.17"},
    {56, "green_metadata", "D.2.18"},
    {128, "structure_of_pictures_info", "D.2.19"},
    {129, "active_parameter_sets", "D.2.21"},
    {130, "decoding_unit_info", "D.2.22"},
    {131, "temporal_sub_layer_zero_idx", "D.2.23"},
    {132, "decoded_picture_hash", "D.2.20"},
    {133, "scalable_nesting", "D.2.24"},
    {134, "region_refresh_info", "D.2.25"},
    {135, "no_display", "D.2.26"},
    {136, "time_code", "D.2.27"},
    {137, "mastering_display_colour_volume", "D.2.28"},
    {138, "segmented_rect_frame_packing_arrangement", "D.2.29"},
    {139, "temporal_motion_constrained_tile_sets", "D.2.30"},
    {140, "chroma_resampling_filter_hint", "D.2.31"},
    {141, "knee_function_info", "D.2.32"},
    {142, "colour_remapping_info", "D.2.33"},
    {143, "deinterlaced_field_identification", "D.2.34"},
    {144, "content_light_level_info", "D.2.35"},
    {145, "dependent_rap_indication", "D.2.36"},
    {146, "coded_region_completion", "D.2.37"},
    {147, "alternative_transfer_characteristics", "D.2.38"},
    {148, "ambient_viewing_environment", "D.2.39"},
    {149, "content_colour_volume", "D.2.40"},
    {150, "equirectangular_projection", "D.2.41.1"},
    {151, "cubemap_projection", "D.2.41.2"},
    {152, "fisheye_video_info", "D.2.41.3"},
    {154, "sphere_rotation", "D.2.41.4"},
    {155, "regionwise_packing", "D.2.41.5"},
    {156, "omni_viewport", "D.2.41.6"},
    {157, "regional_nesting", "D.2.42"},
    {158, "mcts_extraction_info_sets", "D.2.43"},
    {159, "mcts_extraction_info_nesting", "D.2.44"},
    {160, "layers_not_present", "F.14.2.3"},
    {161, "inter_layer_constrained_tile_sets", "F.14.2.4"},
    {162, "bsp_nesting", "F.14.2.5"},
    {163, "bsp_initial_arrival_time", "F.14.2.6"},
    {164, "sub_bitstream_property", "F.14.2.7"},
    {165, "alpha_channel_info", "F.14.2.8"},
    {166, "overlay_info", "F.14.2.9"},
    {167, "temporal_mv_prediction_constraints", "F.14.2.10"},
    {168, "frame_field_info", "F.14.2.11"},
    {176, "three_dimensional_reference_displays_info", "G.14.2.3"},
    {177, "depth_representation_info", "G.14.2.4"},
    {178, "multiview_scene_info", "G.14.2.5"},
    {179, "multiview_acquisition_info", "G.14.2.6"},
    {180, "multiview_view_position", "G.14.2.7"},
    {181, "alternative_depth_info", "I.14.2.3"},
    {200, "sei_manifest", "D.2.45"},
    {201, "sei_prefix_indication", "D.2.46"},
    {202, "annotated_regions", "D.2.47"},
    {205, "shutter_interval_info", "D.2.48"},
    {220, "digitally_signed_content_initialization", "Annex D"},
    {221, "digitally_signed_content_selection", "Annex D"},
    {222, "digitally_signed_content_verification", "Annex D"},
};

/// The name of a payloadType; "reserved" for those that the standard reserves.
constexpr Name seiPayloadTypeName(uint32_t payloadType) {
    const Name name = nameOf(kSeiPayloadTypeNames, payloadType, nullptr);
    return name.name != nullptr ? name : Name{payloadType, "reserved", "D.2.1"};
}

}  // namespace qv::hevc

#endif
