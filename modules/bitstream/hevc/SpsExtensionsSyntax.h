// The extensions of the H.265 sequence parameter set as syntax functions.
#ifndef QV_BITSTREAM_HEVC_SPSEXTENSIONSSYNTAX_H
#define QV_BITSTREAM_HEVC_SPSEXTENSIONSSYNTAX_H

#include "bitstream/hevc/Sps.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// sps_range_extension(), 7.3.2.2.2
template <class Syntax>
void sps_range_extension(Syntax& s, SpsRangeExtension& range) {
    static constexpr Structure kStructure = {"sps_range_extension()", "7.3.2.2.2"};
    const Within<Syntax> within(s, kStructure);
    s.flag("transform_skip_rotation_enabled_flag", range.transform_skip_rotation_enabled_flag);
    s.flag("transform_skip_context_enabled_flag", range.transform_skip_context_enabled_flag);
    s.flag("implicit_rdpcm_enabled_flag", range.implicit_rdpcm_enabled_flag);
    s.flag("explicit_rdpcm_enabled_flag", range.explicit_rdpcm_enabled_flag);
    s.flag("extended_precision_processing_flag", range.extended_precision_processing_flag);
    s.flag("intra_smoothing_disabled_flag", range.intra_smoothing_disabled_flag);
    s.flag("high_precision_offsets_enabled_flag", range.high_precision_offsets_enabled_flag);
    s.flag("persistent_rice_adaptation_enabled_flag", range.persistent_rice_adaptation_enabled_flag);
    s.flag("cabac_bypass_alignment_enabled_flag", range.cabac_bypass_alignment_enabled_flag);
}

// sps_multilayer_extension(), F.7.3.2.2.4
template <class Syntax>
void sps_multilayer_extension(Syntax& s, SpsMultilayerExtension& multilayer) {
    static constexpr Structure kStructure = {"sps_multilayer_extension()", "F.7.3.2.2.4"};
    const Within<Syntax> within(s, kStructure);
    s.flag("inter_view_mv_vert_constraint_flag", multilayer.inter_view_mv_vert_constraint_flag);
}

// sps_3d_extension(), I.7.3.2.2.5
template <class Syntax>
void sps_3d_extension(Syntax& s, Sps3dExtension& ext) {
    static constexpr Structure kStructure = {"sps_3d_extension()", "I.7.3.2.2.5"};
    const Within<Syntax> within(s, kStructure);
    for (uint32_t d = 0; d < 2; ++d) {
        s.flag(at("iv_di_mc_enabled_flag", d), ext.iv_di_mc_enabled_flag[d]);
        s.flag(at("iv_mv_scal_enabled_flag", d), ext.iv_mv_scal_enabled_flag[d]);
        if (d == 0) {
            s.ue(at("log2_ivmc_sub_pb_size_minus3", d), ext.log2_ivmc_sub_pb_size_minus3, 0, 3);
            s.flag(at("iv_res_pred_enabled_flag", d), ext.iv_res_pred_enabled_flag);
            s.flag(at("depth_ref_enabled_flag", d), ext.depth_ref_enabled_flag);
            s.flag(at("vsp_mc_enabled_flag", d), ext.vsp_mc_enabled_flag);
            s.flag(at("dbbp_enabled_flag", d), ext.dbbp_enabled_flag);
        } else {
            s.flag(at("tex_mc_enabled_flag", d), ext.tex_mc_enabled_flag);
            s.ue(at("log2_texmc_sub_pb_size_minus3", d), ext.log2_texmc_sub_pb_size_minus3, 0, 3);
            s.flag(at("intra_contour_enabled_flag", d), ext.intra_contour_enabled_flag);
            s.flag(at("intra_dc_only_wedge_enabled_flag", d), ext.intra_dc_only_wedge_enabled_flag);
            s.flag(at("cqt_cu_part_pred_enabled_flag", d), ext.cqt_cu_part_pred_enabled_flag);
            s.flag(at("inter_dc_only_enabled_flag", d), ext.inter_dc_only_enabled_flag);
            s.flag(at("skip_intra_enabled_flag", d), ext.skip_intra_enabled_flag);
        }
    }
}

// The palette of sps_scc_extension(). The number of components goes by chroma_format_idc, not by
// ChromaArrayType.
template <class Syntax>
void sps_palette(Syntax& s, Sps& sps, bool formatIsKnown) {
    SpsSccExtension& scc = sps.scc;
    s.ue("palette_max_size", scc.palette_max_size, 0, 64);
    s.ue("delta_palette_max_predictor_size", scc.delta_palette_max_predictor_size, 0,
         kMostPaletteEntries - scc.palette_max_size);
    const uint32_t paletteMaxPredictorSize = scc.palette_max_size + scc.delta_palette_max_predictor_size;
    if (paletteMaxPredictorSize != 0) {
        s.flag("sps_palette_predictor_initializers_present_flag",
               scc.sps_palette_predictor_initializers_present_flag);
    } else {
        s.flag("sps_palette_predictor_initializers_present_flag",
               scc.sps_palette_predictor_initializers_present_flag, false);
    }
    if (!scc.sps_palette_predictor_initializers_present_flag) {
        return;
    }
    if (!formatIsKnown) {
        s.fail(FaultKind::NoSuchSet, "sps_video_parameter_set_id", sps.sps_video_parameter_set_id);
    }
    s.ue("sps_num_palette_predictor_initializers_minus1", scc.sps_num_palette_predictor_initializers_minus1,
         0, paletteMaxPredictorSize - 1);
    const uint32_t numComps = sps.chroma_format_idc == 0 ? 1 : 3;
    for (uint32_t comp = 0; comp < numComps; ++comp) {
        const uint32_t bitDepth = 8 + (comp == 0 ? sps.bit_depth_luma_minus8 : sps.bit_depth_chroma_minus8);
        for (uint32_t i = 0; i <= scc.sps_num_palette_predictor_initializers_minus1; ++i) {
            s.u(bitDepth, at("sps_palette_predictor_initializer", comp, i),
                sps.sps_palette_predictor_initializer[comp][i]);
        }
    }
}

// sps_scc_extension(), 7.3.2.2.3
template <class Syntax>
void sps_scc_extension(Syntax& s, Sps& sps, bool formatIsKnown) {
    static constexpr Structure kStructure = {"sps_scc_extension()", "7.3.2.2.3"};
    const Within<Syntax> within(s, kStructure);
    s.flag("sps_curr_pic_ref_enabled_flag", sps.scc.sps_curr_pic_ref_enabled_flag);
    s.flag("palette_mode_enabled_flag", sps.scc.palette_mode_enabled_flag);
    if (sps.scc.palette_mode_enabled_flag) {
        sps_palette(s, sps, formatIsKnown);
    }
    s.u(2, "motion_vector_resolution_control_idc", sps.scc.motion_vector_resolution_control_idc, 0, 2);
    s.flag("intra_boundary_filtering_disabled_flag", sps.scc.intra_boundary_filtering_disabled_flag);
}

}  // namespace qv::hevc

#endif
