/// \file
/// The scalability information message of scalable streams.
#ifndef QV_BITSTREAM_SEI_SCALABILITYINFO_H
#define QV_BITSTREAM_SEI_SCALABILITYINFO_H

#include <cstdint>

#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/LayerInfo.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// scalability_info(), H.264 G.13.1.1 and G.13.2.1. The lists are borrowed from the unit.
struct ScalabilityInfo {
    static constexpr PayloadTypes kPayloadTypes = {24, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostLayers = 2048;                        ///< the greatest number of layers

    bool temporal_id_nesting_flag;          ///< u(1)
    bool priority_layer_info_present_flag;  ///< u(1)
    bool priority_id_setting_flag;          ///< u(1)
    uint32_t num_layers_minus1;             ///< ue(v), 0..2047
    CodedBits layers;                       ///< layer_id[ i ] and what follows it; see ScalabilityLayers

    // With priority_layer_info_present_flag.

    uint32_t pr_num_dIds_minus1;  ///< ue(v), 0..7
    CodedBits priority_layers;    ///< pr_dependency_id[ i ] and what follows it; see PriorityLayers

    /// With priority_id_setting_flag: b(8) each, UTF-8, the zero byte at the end included.
    CodedBits priority_id_setting_uri;
};

/// A layer of scalability_info(). Elements of arrays beyond their counts are not set.
struct ScalabilityLayer {
    static constexpr uint32_t kMostDependencies = 255;  ///< the greatest number of directly dependent layers

    uint32_t layer_id;                             ///< ue(v), 0..2047
    uint32_t priority_id;                          ///< u(6)
    bool discardable_flag;                         ///< u(1)
    uint32_t dependency_id;                        ///< u(3)
    uint32_t quality_id;                           ///< u(4)
    uint32_t temporal_id;                          ///< u(3)
    bool sub_pic_layer_flag;                       ///< u(1)
    bool sub_region_layer_flag;                    ///< u(1)
    bool iroi_division_info_present_flag;          ///< u(1)
    bool profile_level_info_present_flag;          ///< u(1)
    bool bitrate_info_present_flag;                ///< u(1)
    bool frm_rate_info_present_flag;               ///< u(1)
    bool frm_size_info_present_flag;               ///< u(1)
    bool layer_dependency_info_present_flag;       ///< u(1)
    bool parameter_sets_info_present_flag;         ///< u(1)
    bool bitstream_restriction_info_present_flag;  ///< u(1)
    bool exact_inter_layer_pred_flag;              ///< u(1)
    bool exact_sample_value_match_flag;  ///< u(1), with sub_pic_layer_flag or iroi_division_info_present_flag
    bool layer_conversion_flag;          ///< u(1)
    bool layer_output_flag;              ///< u(1)

    /// u(24), with profile_level_info_present_flag: profile_idc, the constraint flags, level_idc.
    uint32_t layer_profile_level_idc;

    // With bitrate_info_present_flag.

    uint32_t avg_bitrate;                       ///< u(16), in units of 1000 bit/s
    uint32_t max_bitrate_layer;                 ///< u(16), in units of 1000 bit/s
    uint32_t max_bitrate_layer_representation;  ///< u(16), in units of 1000 bit/s
    uint32_t max_bitrate_calc_window;           ///< u(16), in units of 1/100 second

    // With frm_rate_info_present_flag.

    uint32_t constant_frm_rate_idc;  ///< u(2), 0..2
    uint32_t avg_frm_rate;           ///< u(16), in frames per 256 seconds

    // With frm_size_info_present_flag or iroi_division_info_present_flag.

    uint32_t frm_width_in_mbs_minus1;   ///< ue(v)
    uint32_t frm_height_in_mbs_minus1;  ///< ue(v)

    // With sub_region_layer_flag, and the last four without dynamic_rect_flag.

    uint32_t base_region_layer_id;  ///< ue(v)
    bool dynamic_rect_flag;         ///< u(1)
    uint32_t horizontal_offset;     ///< u(16)
    uint32_t vertical_offset;       ///< u(16)
    uint32_t region_width;          ///< u(16)
    uint32_t region_height;         ///< u(16)

    uint32_t roi_id;  ///< ue(v), 0..63, with sub_pic_layer_flag

    // With iroi_division_info_present_flag: a grid, or regions one by one.

    bool iroi_grid_flag;                 ///< u(1)
    uint32_t grid_width_in_mbs_minus1;   ///< ue(v)
    uint32_t grid_height_in_mbs_minus1;  ///< ue(v)
    uint32_t num_rois_minus1;            ///< ue(v), below the macroblocks of a frame
    CodedBits rois;  ///< first_mb_in_roi[ i ][ j ] and what follows; see RegionsOfInterest

    uint32_t num_directly_dependent_layers;             ///< ue(v), 0..255
    uint32_t layer_dependency_info_src_layer_id_delta;  ///< ue(v), without layer_dependency_info_present_flag
    uint32_t parameter_sets_info_src_layer_id_delta;    ///< ue(v), without parameter_sets_info_present_flag

    /// With bitstream_restriction_info_present_flag.
    LayerBitstreamRestriction bitstream_restriction;

    // With layer_conversion_flag, and those of each j with rewriting_info_flag[ j ].

    uint32_t conversion_type_idc;             ///< ue(v), 0..2
    bool rewriting_info_flag[2];              ///< u(1)
    uint32_t rewriting_profile_level_idc[2];  ///< u(24)
    uint32_t rewriting_avg_bitrate[2];        ///< u(16), in units of 1000 bit/s
    uint32_t rewriting_max_bitrate[2];        ///< u(16), in units of 1000 bit/s

    // Last, because of the arrays: they are set as far as their counts go.

    LayerParameterSets parameter_sets;  ///< with parameter_sets_info_present_flag

    /// ue(v), with layer_dependency_info_present_flag.
    uint32_t directly_dependent_layer_id_delta_minus1[kMostDependencies];
};

/// A region of interest of a layer.
struct RegionOfInterest {
    uint32_t first_mb_in_roi;           ///< ue(v)
    uint32_t roi_width_in_mbs_minus1;   ///< ue(v)
    uint32_t roi_height_in_mbs_minus1;  ///< ue(v)
};

/// The priority layers of a dependency_id in scalability_info(). Elements beyond pr_num_minus1 are not set.
struct PriorityLayer {
    static constexpr uint32_t kMostPriorities = 64;  ///< the greatest number of priority layers

    uint32_t pr_dependency_id;                       ///< u(3)
    uint32_t pr_num_minus1;                          ///< ue(v), 0..63
    uint32_t pr_id[kMostPriorities];                 ///< ue(v), 0..63
    uint32_t pr_profile_level_idc[kMostPriorities];  ///< u(24)
    uint32_t pr_avg_bitrate[kMostPriorities];        ///< u(16), in units of 1000 bit/s
    uint32_t pr_max_bitrate[kMostPriorities];        ///< u(16), in units of 1000 bit/s
};

/// Reads the layers.
using ScalabilityLayers = EntryReader<ScalabilityInfo, ScalabilityLayer>;

/// Reads the regions of interest of a layer.
using RegionsOfInterest = EntryReader<ScalabilityLayer, RegionOfInterest>;

/// Reads the priority layers, one dependency_id at a time.
using PriorityLayers = EntryReader<ScalabilityInfo, PriorityLayer>;

}  // namespace qv::sei

#endif
