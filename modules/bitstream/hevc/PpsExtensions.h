/// \file
/// The extensions of the H.265 picture parameter set.
#ifndef QV_BITSTREAM_HEVC_PPSEXTENSIONS_H
#define QV_BITSTREAM_HEVC_PPSEXTENSIONS_H

#include <cstdint>

#include "bitstream/hevc/VpsExtension.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::hevc {

/// pps_range_extension(), H.265 7.3.2.3.2 and 7.4.3.3.2.
struct PpsRangeExtension {
    static constexpr uint32_t kMostChromaQpOffsets = 6;  ///< entries of either list

    uint32_t log2_max_transform_skip_block_size_minus2;  ///< ue(v), 0..3
    bool cross_component_prediction_enabled_flag;        ///< u(1)
    bool chroma_qp_offset_list_enabled_flag;             ///< u(1)
    uint32_t diff_cu_chroma_qp_offset_depth;             ///< ue(v), 0..3
    uint32_t chroma_qp_offset_list_len_minus1;           ///< ue(v), 0..5
    int32_t cb_qp_offset_list[kMostChromaQpOffsets];     ///< se(v), -12..12
    int32_t cr_qp_offset_list[kMostChromaQpOffsets];     ///< se(v), -12..12
    uint32_t log2_sao_offset_scale_luma;                 ///< ue(v), 0..6
    uint32_t log2_sao_offset_scale_chroma;               ///< ue(v), 0..6
};

/// How the samples of a layer and of one that it refers to lie on each other: the loop body of
/// pps_multilayer_extension(). Offsets that are not present are 0.
struct RefLocOffset {
    uint32_t ref_loc_offset_layer_id;           ///< u(6)
    bool scaled_ref_layer_offset_present_flag;  ///< u(1)
    int32_t scaled_ref_layer_left_offset;       ///< se(v), -2^14..2^14 - 1
    int32_t scaled_ref_layer_top_offset;        ///< se(v), -2^14..2^14 - 1
    int32_t scaled_ref_layer_right_offset;      ///< se(v), -2^14..2^14 - 1
    int32_t scaled_ref_layer_bottom_offset;     ///< se(v), -2^14..2^14 - 1
    bool ref_region_offset_present_flag;        ///< u(1)
    int32_t ref_region_left_offset;             ///< se(v), -2^14..2^14 - 1
    int32_t ref_region_top_offset;              ///< se(v), -2^14..2^14 - 1
    int32_t ref_region_right_offset;            ///< se(v), -2^14..2^14 - 1
    int32_t ref_region_bottom_offset;           ///< se(v), -2^14..2^14 - 1
    bool resample_phase_set_present_flag;       ///< u(1)
    uint32_t phase_hor_luma;                    ///< ue(v), 0..31
    uint32_t phase_ver_luma;                    ///< ue(v), 0..31
    uint32_t phase_hor_chroma_plus8;            ///< ue(v), 0..63
    uint32_t phase_ver_chroma_plus8;            ///< ue(v), 0..63
};

/// colour_mapping_table(), H.265 F.7.3.2.3.5, with the octants as coded bits; see colourMappingOf().
struct ColourMappingTable {
    static constexpr uint32_t kMostLayers = 62;  ///< the greatest num_cm_ref_layers_minus1, plus 1

    uint32_t num_cm_ref_layers_minus1;           ///< ue(v), 0..61
    uint32_t cm_octant_depth;                    ///< u(2), 0..1
    uint32_t cm_y_part_num_log2;                 ///< u(2), 0..3 - cm_octant_depth
    uint32_t luma_bit_depth_cm_input_minus8;     ///< ue(v), 0..8
    uint32_t chroma_bit_depth_cm_input_minus8;   ///< ue(v), 0..8
    uint32_t luma_bit_depth_cm_output_minus8;    ///< ue(v), 0..8
    uint32_t chroma_bit_depth_cm_output_minus8;  ///< ue(v), 0..8
    uint32_t cm_res_quant_bits;                  ///< u(2)
    uint32_t cm_delta_flc_bits_minus1;           ///< u(2)
    int32_t cm_adapt_threshold_u_delta;          ///< se(v)
    int32_t cm_adapt_threshold_v_delta;          ///< se(v)
    CodedBits colour_mapping_octants;            ///< F.7.3.2.3.6
};

/// pps_multilayer_extension(), H.265 F.7.3.2.3.4.
struct PpsMultilayerExtension {
    bool poc_reset_info_present_flag;         ///< u(1)
    bool pps_infer_scaling_list_flag;         ///< u(1)
    uint32_t pps_scaling_list_ref_layer_id;   ///< u(6), 0..62
    uint32_t num_ref_loc_offsets;             ///< ue(v), 0..62
    bool colour_mapping_enabled_flag;         ///< u(1)
    ColourMappingTable colour_mapping_table;  ///< with colour_mapping_enabled_flag
};

/// pps_3d_extension(), H.265 I.7.3.2.3.7.
struct Pps3dExtension {
    bool dlts_present_flag;                          ///< u(1)
    uint32_t pps_depth_layers_minus1;                ///< u(6)
    uint32_t pps_bit_depth_for_depth_layers_minus8;  ///< u(4), 0..8
    CodedBits dlts;                                  ///< dlt_flag and what follows; see depthLookupTableOf()
};

/// pps_scc_extension(), H.265 7.3.2.3.3 and 7.4.3.3.3. The palette initializers are in the PPS.
struct PpsSccExtension {
    bool pps_curr_pic_ref_enabled_flag;                    ///< u(1)
    bool residual_adaptive_colour_transform_enabled_flag;  ///< u(1)
    bool pps_slice_act_qp_offsets_present_flag;            ///< u(1)
    int32_t pps_act_y_qp_offset_plus5;                     ///< se(v), -7..17
    int32_t pps_act_cb_qp_offset_plus5;                    ///< se(v), -7..17
    int32_t pps_act_cr_qp_offset_plus3;                    ///< se(v), -9..15
    bool pps_palette_predictor_initializers_present_flag;  ///< u(1)
    uint32_t pps_num_palette_predictor_initializers;       ///< ue(v), 0..128
    bool monochrome_palette_flag;                          ///< u(1)
    uint32_t luma_bit_depth_entry_minus8;                  ///< ue(v), 0..8
    uint32_t chroma_bit_depth_entry_minus8;                ///< ue(v), 0..8
};

}  // namespace qv::hevc

#endif
