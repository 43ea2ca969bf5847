/// \file
/// The extensions of the H.265 video parameter set: layers, their formats and how they depend on each other.
#ifndef QV_BITSTREAM_HEVC_VPSEXTENSION_H
#define QV_BITSTREAM_HEVC_VPSEXTENSION_H

#include <cstdint>

#include "bitstream/hevc/ProfileTierLevel.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::hevc {

/// The most layers: MaxLayersMinus1 is at most 62 (H.265 F.7.4.3.1).
constexpr uint32_t kMostLayers = 63;

/// rep_format(), H.265 F.7.3.2.1.2. With chroma_and_bit_depth_vps_present_flag 0 the format and bit depths
/// are those of the rep_format() before.
struct RepFormat {
    uint32_t pic_width_vps_in_luma_samples;      ///< u(16)
    uint32_t pic_height_vps_in_luma_samples;     ///< u(16)
    bool chroma_and_bit_depth_vps_present_flag;  ///< u(1)
    uint32_t chroma_format_vps_idc;              ///< u(2)
    bool separate_colour_plane_vps_flag;         ///< u(1)
    uint32_t bit_depth_vps_luma_minus8;          ///< u(4), 0..8
    uint32_t bit_depth_vps_chroma_minus8;        ///< u(4), 0..8
    bool conformance_window_vps_flag;            ///< u(1)
    uint32_t conf_win_vps_left_offset;           ///< ue(v), in SubWidthC
    uint32_t conf_win_vps_right_offset;          ///< ue(v), in SubWidthC
    uint32_t conf_win_vps_top_offset;            ///< ue(v), in SubHeightC
    uint32_t conf_win_vps_bottom_offset;         ///< ue(v), in SubHeightC
};

/// video_signal_info(), H.265 F.7.3.2.1.5.
struct VideoSignalInfo {
    uint32_t video_vps_format;              ///< u(3), Table E.2
    bool video_full_range_vps_flag;         ///< u(1)
    uint32_t colour_primaries_vps;          ///< u(8), Table E.3
    uint32_t transfer_characteristics_vps;  ///< u(8), Table E.4
    uint32_t matrix_coeffs_vps;             ///< u(8), Table E.5
};

/// vps_vui(), H.265 F.7.3.2.1.4. Flags of layers are sets: layer i is bit i. Its arrays are in the extension.
struct VpsVui {
    bool cross_layer_pic_type_aligned_flag;  ///< u(1)
    bool cross_layer_irap_aligned_flag;      ///< 1 when not present
    bool all_layers_idr_aligned_flag;        ///< u(1)

    bool bit_rate_present_vps_flag;  ///< u(1)
    bool pic_rate_present_vps_flag;  ///< u(1)
    CodedBits rates;                 ///< of each layer set; see LayerSetRateReader

    bool video_signal_info_idx_present_flag;    ///< u(1)
    uint32_t vps_num_video_signal_info_minus1;  ///< u(4); 0 when not present
    uint32_t numVideoSignalInfo;                ///< vps_num_video_signal_info_minus1 + 1, present or inferred

    bool tiles_not_in_use_flag;                  ///< u(1)
    uint64_t tiles_in_use_flag;                  ///< u(1) for each layer
    uint64_t loop_filter_not_across_tiles_flag;  ///< u(1) for each layer
    bool wpp_not_in_use_flag;                    ///< u(1)
    uint64_t wpp_in_use_flag;                    ///< u(1) for each layer
    bool single_layer_for_non_irap_flag;         ///< u(1)
    bool higher_layer_irap_skip_flag;            ///< u(1)

    bool ilp_restricted_ref_layers_flag;  ///< u(1)
    CodedBits ref_layer_restrictions;     ///< see layerDependencyOf()

    bool vps_vui_bsp_hrd_present_flag;  ///< u(1)
    uint32_t vps_num_add_hrd_params;    ///< ue(v), 0..1024 - vps_num_hrd_parameters
    CodedBits add_hrd_params;           ///< see VpsHrdReader

    /// The partitioning schemes and schedules of vps_vui_bsp_hrd_params(), F.7.3.2.1.6. traceVps() reports
    /// them.
    CodedBits bsp_schedules;

    uint64_t base_layer_parameter_set_compatibility_flag;  ///< u(1) for each layer
};

/// vps_3d_extension(), H.265 I.7.3.2.1.
struct Vps3dExtension {
    uint32_t cp_precision;  ///< ue(v)
    CodedBits cp;           ///< the parameters of each view; see cameraParametersOf()
};

/// vps_extension(), H.265 F.7.3.2.1.1 and F.7.4.3.1.1. Subscripts of layers are those of the VPS, 0 to
/// MaxLayersMinus1; see layersOf() for what follows from them. Sets of flags hold flag j in bit j.
struct VpsExtension {
    static constexpr uint32_t kMostScalabilityTypes = 16;   ///< bits of scalability_mask_flag
    static constexpr uint32_t kMostProfileTierLevels = 64;  ///< profile_tier_level() in all
    static constexpr uint32_t kMostRepFormats = 256;  ///< the greatest vps_num_rep_formats_minus1, plus 1
    static constexpr uint32_t kMostAddedLayerSets = 1023;        ///< the greatest num_add_layer_sets
    static constexpr uint32_t kMostAddedOutputLayerSets = 1023;  ///< the greatest num_add_olss

    bool splitting_flag;                                      ///< u(1)
    uint32_t scalability_mask_flag;                           ///< 0 depth, 1 view, 2 dependency, 3 auxiliary
    uint32_t dimension_id_len_minus1[kMostScalabilityTypes];  ///< u(3)
    bool vps_nuh_layer_id_present_flag;                       ///< u(1)
    uint32_t view_id_len;                                     ///< u(4)

    uint32_t num_add_layer_sets;        ///< ue(v), 0..1023
    CodedBits highest_layer_idx_plus1;  ///< see LayerSets

    bool vps_sub_layers_max_minus1_present_flag;  ///< u(1)
    bool max_tid_ref_present_flag;                ///< u(1)
    CodedBits max_tid_il_ref_pics_plus1;          ///< see layerDependencyOf()
    bool default_ref_layers_active_flag;          ///< u(1)

    uint32_t vps_num_profile_tier_level_minus1;  ///< ue(v), 0..63
    uint64_t vps_profile_present_flag;           ///< u(1) for each profile_tier_level()

    uint32_t num_add_olss;              ///< ue(v), 0..1023
    uint32_t default_output_layer_idc;  ///< u(2)
    CodedBits output_layer_sets;        ///< see OutputLayerSetReader

    uint32_t vps_num_rep_formats_minus1;  ///< ue(v), 0..255
    bool rep_format_idx_present_flag;     ///< u(1)

    bool max_one_active_ref_layer_flag;  ///< u(1)
    bool vps_poc_lsb_aligned_flag;       ///< u(1)
    uint64_t poc_lsb_not_present_flag;   ///< u(1) for each layer
    CodedBits dpb_size;                  ///< dpb_size(), F.7.3.2.1.3; see OutputLayerSetReader

    uint32_t direct_dep_type_len_minus2;         ///< ue(v), 0..30
    bool direct_dependency_all_layers_flag;      ///< u(1)
    uint32_t direct_dependency_all_layers_type;  ///< u(v), direct_dep_type_len_minus2 + 2 bits
    CodedBits direct_dependency_type;            ///< see layerDependencyOf()

    uint32_t vps_non_vui_extension_length;      ///< ue(v), 0..4096
    CodedBits vps_non_vui_extension_data_byte;  ///< u(8) each

    bool vps_vui_present_flag;  ///< u(1)
    VpsVui vui;                 ///< with vps_vui_present_flag

    // Arrays come last: a read sets them as far as their counts go, not beyond.

    uint16_t layer_id_in_nuh[kMostLayers];                      ///< u(6), above that of the layer before
    uint16_t dimension_id[kMostLayers][kMostScalabilityTypes];  ///< u(v); those of splitting_flag 1 as well
    uint16_t view_id_val[kMostLayers];                          ///< u(v), view_id_len bits; NumViews of them
    uint64_t direct_dependency_flag[kMostLayers];               ///< bit j is for layer j
    uint16_t sub_layers_vps_max_minus1[kMostLayers];            ///< u(3), 0..vps_max_sub_layers_minus1
    uint16_t vps_rep_format_idx[kMostLayers];                   ///< u(v)
    uint16_t vps_video_signal_info_idx[kMostLayers];            ///< u(4); with vps_vui_present_flag
    uint64_t tile_boundaries_aligned_flag[kMostLayers];  ///< bit j is for the j-th direct reference layer
    VideoSignalInfo video_signal_info[kMostLayers];      ///< vui.numVideoSignalInfo of them
    RepFormat rep_format[kMostRepFormats];               ///< vps_num_rep_formats_minus1 + 1 of them

    /// Entry 0 is the profile_tier_level() of the VPS itself, entry 1 the one at the top of vps_extension()
    /// when that is there. Entries without vps_profile_present_flag have the profile of the one before.
    ProfileTierLevel profile_tier_level[kMostProfileTierLevels];
};

}  // namespace qv::hevc

#endif
