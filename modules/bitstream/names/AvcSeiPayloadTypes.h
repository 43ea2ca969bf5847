/// \file
/// Names of the SEI payload types of H.264.
#ifndef QV_BITSTREAM_NAMES_AVCSEIPAYLOADTYPES_H
#define QV_BITSTREAM_NAMES_AVCSEIPAYLOADTYPES_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv::avc {

/// payloadType, D.1.1. The name is that of the syntax structure of the payload, the clause that of its
/// syntax; "Annex D" where only editions later than the one of this library have it.
constexpr Name kSeiPayloadTypeNames[] = {
    {0, "buffering_period", "D.1.2"},
    {1, "pic_timing", "D.1.3"},
    {2, "pan_scan_rect", "D.1.4"},
    {3, "filler_payload", "D.1.5"},
    {4, "user_data_registered_itu_t_t35", "D.1.6"},
    {5, "user_data_unregistered", "D.1.7"},
    {6, "recovery_point", "D.1.8"},
    {7, "dec_ref_pic_marking_repetition", "D.1.9"},
    {8, "spare_pic", "D.1.10"},
    {9, "scene_info", "D.1.11"},
    {10, "sub_seq_info", "D.1.12"},
    {11, "sub_seq_layer_characteristics", "D.1.13"},
    {12, "sub_seq_characteristics", "D.1.14"},
    {13, "full_frame_freeze", "D.1.15"},
    {14, "full_frame_freeze_release", "D.1.16"},
    {15, "full_frame_snapshot", "D.1.17"},
    {16, "progressive_refinement_segment_start", "D.1.18"},
    {17, "progressive_refinement_segment_end", "D.1.19"},
    {18, "motion_constrained_slice_group_set", "D.1.20"},
    {19, "film_grain_characteristics", "D.1.21"},
    {20, "deblocking_filter_display_preference", "D.1.22"},
    {21, "stereo_video_info", "D.1.23"},
    {22, "post_filter_hint", "D.1.24"},
    {23, "tone_mapping_info", "D.1.25"},
    {24, "scalability_info", "G.13.1.1"},
    {25, "sub_pic_scalable_layer", "G.13.1.2"},
    {26, "non_required_layer_rep", "G.13.1.3"},
    {27, "priority_layer_info", "G.13.1.4"},
    {28, "layers_not_present", "G.13.1.5"},
    {29, "layer_dependency_change", "G.13.1.6"},
    {30, "scalable_nesting", "G.13.1.7"},
    {31, "base_layer_temporal_hrd", "G.13.1.8"},
    {32, "quality_layer_integrity_check", "G.13.1.9"},
    {33, "redundant_pic_property", "G.13.1.10"},
    {34, "tl0_dep_rep_index", "G.13.1.11"},
    {35, "tl_switching_point", "G.13.1.12"},
    {36, "parallel_decoding_info", "H.13.1.1"},
    {37, "mvc_scalable_nesting", "H.13.1.2"},
    {38, "view_scalability_info", "H.13.1.3"},
    {39, "multiview_scene_info", "H.13.1.4"},
    {40, "multiview_acquisition_info", "H.13.1.5"},
    {41, "non_required_view_component", "H.13.1.6"},
    {42, "view_dependency_change", "H.13.1.7"},
    {43, "operation_point_not_present", "H.13.1.8"},
    {44, "base_view_temporal_hrd", "H.13.1.9"},
    {45, "frame_packing_arrangement", "D.1.26"},
    {46, "multiview_view_position", "H.13.1.10"},
    {47, "display_orientation", "D.1.27"},
    {48, "mvcd_scalable_nesting", "I.13.1.2"},
    {49, "mvcd_view_scalability_info", "I.13.1.1"},
    {50, "depth_representation_info", "I.13.1.3"},
    {51, "three_dimensional_reference_displays_info", "I.13.1.4"},
    {52, "depth_timing", "I.13.1.5"},
    {53, "depth_sampling_info", "I.13.1.7"},
    {54, "constrained_depth_parameter_set_identifier", "J.13.1.1"},
    {56, "green_metadata", "D.1.28"},
    {137, "mastering_display_colour_volume", "D.1.29"},
    {142, "colour_remapping_info", "D.1.30"},
    {144, "content_light_level_info", "D.1.31"},
    {147, "alternative_transfer_characteristics", "D.1.32"},
    {148, "ambient_viewing_environment", "D.1.34"},
    {149, "content_colour_volume", "D.1.33"},
    {150, "equirectangular_projection", "D.1.35.1"},
    {151, "cubemap_projection", "D.1.35.2"},
    {154, "sphere_rotation", "D.1.35.3"},
    {155, "regionwise_packing", "D.1.35.4"},
    {156, "omni_viewport", "D.1.35.5"},
    {181, "alternative_depth_info", "I.13.1.6"},
    {200, "sei_manifest", "D.1.36"},
    {201, "sei_prefix_indication", "D.1.37"},
    {202, "annotated_regions", "D.1.38"},
    {205, "shutter_interval_info", "D.1.39"},
    {220, "digitally_signed_content_initialization", "Annex D"},
    {221, "digitally_signed_content_selection", "Annex D"},
    {222, "digitally_signed_content_verification", "Annex D"},
};

/// The name of a payloadType; "reserved" for those that the standard reserves.
constexpr Name seiPayloadTypeName(uint32_t payloadType) {
    const Name name = nameOf(kSeiPayloadTypeNames, payloadType, nullptr);
    return name.name != nullptr ? name : Name{payloadType, "reserved", "D.1.1"};
}

}  // namespace qv::avc

#endif
