/// \file
/// The extensions of the H.265 sequence parameter set.
#ifndef QV_BITSTREAM_HEVC_SPSEXTENSIONS_H
#define QV_BITSTREAM_HEVC_SPSEXTENSIONS_H

#include <cstdint>

namespace qv::hevc {

/// sps_range_extension(), H.265 7.3.2.2.2 and 7.4.3.2.2.
struct SpsRangeExtension {
    bool transform_skip_rotation_enabled_flag;     ///< u(1)
    bool transform_skip_context_enabled_flag;      ///< u(1)
    bool implicit_rdpcm_enabled_flag;              ///< u(1)
    bool explicit_rdpcm_enabled_flag;              ///< u(1)
    bool extended_precision_processing_flag;       ///< u(1)
    bool intra_smoothing_disabled_flag;            ///< u(1)
    bool high_precision_offsets_enabled_flag;      ///< u(1)
    bool persistent_rice_adaptation_enabled_flag;  ///< u(1)
    bool cabac_bypass_alignment_enabled_flag;      ///< u(1)
};

/// sps_multilayer_extension(), H.265 F.7.3.2.2.4.
struct SpsMultilayerExtension {
    bool inter_view_mv_vert_constraint_flag;  ///< u(1)
};

/// sps_3d_extension(), H.265 I.7.3.2.2.5. The subscript d is 0 for texture and 1 for depth layers.
struct Sps3dExtension {
    bool iv_di_mc_enabled_flag[2];    ///< u(1)
    bool iv_mv_scal_enabled_flag[2];  ///< u(1)

    uint32_t log2_ivmc_sub_pb_size_minus3;  ///< ue(v), 0..3; d = 0
    bool iv_res_pred_enabled_flag;          ///< d = 0
    bool depth_ref_enabled_flag;            ///< d = 0
    bool vsp_mc_enabled_flag;               ///< d = 0
    bool dbbp_enabled_flag;                 ///< d = 0

    bool tex_mc_enabled_flag;                ///< d = 1
    uint32_t log2_texmc_sub_pb_size_minus3;  ///< ue(v), 0..3; d = 1
    bool intra_contour_enabled_flag;         ///< d = 1
    bool intra_dc_only_wedge_enabled_flag;   ///< d = 1
    bool cqt_cu_part_pred_enabled_flag;      ///< d = 1
    bool inter_dc_only_enabled_flag;         ///< d = 1
    bool skip_intra_enabled_flag;            ///< d = 1
};

/// PaletteMaxPredictorSize, the most entries of a palette predictor: A.3.7 allows no more.
constexpr uint32_t kMostPaletteEntries = 128;

/// sps_scc_extension(), H.265 7.3.2.2.3 and 7.4.3.2.3. The palette initializers are in the SPS.
struct SpsSccExtension {
    bool sps_curr_pic_ref_enabled_flag;                      ///< u(1)
    bool palette_mode_enabled_flag;                          ///< u(1)
    uint32_t palette_max_size;                               ///< ue(v), 0..64
    uint32_t delta_palette_max_predictor_size;               ///< ue(v), 0..128 - palette_max_size
    bool sps_palette_predictor_initializers_present_flag;    ///< u(1)
    uint32_t sps_num_palette_predictor_initializers_minus1;  ///< ue(v), below PaletteMaxPredictorSize
    uint32_t motion_vector_resolution_control_idc;           ///< u(2), 0..2
    bool intra_boundary_filtering_disabled_flag;             ///< u(1)
};

}  // namespace qv::hevc

#endif
