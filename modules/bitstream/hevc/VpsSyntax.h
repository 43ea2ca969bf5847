// video_parameter_set_rbsp() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_VPSSYNTAX_H
#define QV_BITSTREAM_HEVC_VPSSYNTAX_H

#include "bitstream/hevc/HrdSyntax.h"
#include "bitstream/hevc/NalUnitHeaderSyntax.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/ProfileTierLevelSyntax.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/hevc/VpsExtensionSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

constexpr uint32_t kMostVpsDecPicBufferingMinus1 = 15;

template <class Syntax>
void vps_sub_layer_ordering_info(Syntax& s, Vps& vps) {
    const uint32_t highest = vps.vps_max_sub_layers_minus1;
    s.flag("vps_sub_layer_ordering_info_present_flag", vps.vps_sub_layer_ordering_info_present_flag);
    const uint32_t first = vps.vps_sub_layer_ordering_info_present_flag ? 0 : highest;
    for (uint32_t i = first; i <= highest; ++i) {
        s.ue(at("vps_max_dec_pic_buffering_minus1", i), vps.vps_max_dec_pic_buffering_minus1[i], 0,
             kMostVpsDecPicBufferingMinus1);
        s.ue(at("vps_max_num_reorder_pics", i), vps.vps_max_num_reorder_pics[i], 0,
             vps.vps_max_dec_pic_buffering_minus1[i]);
        s.ue(at("vps_max_latency_increase_plus1", i), vps.vps_max_latency_increase_plus1[i]);
    }
    for (uint32_t i = 0; i < first; ++i) {
        s.infer(vps.vps_max_dec_pic_buffering_minus1[i], vps.vps_max_dec_pic_buffering_minus1[highest]);
        s.infer(vps.vps_max_num_reorder_pics[i], vps.vps_max_num_reorder_pics[highest]);
        s.infer(vps.vps_max_latency_increase_plus1[i], vps.vps_max_latency_increase_plus1[highest]);
    }
}

template <class Syntax>
void vps_layer_sets(Syntax& s, Vps& vps) {
    s.u(6, "vps_max_layer_id", vps.vps_max_layer_id, 0, 62);
    s.ue("vps_num_layer_sets_minus1", vps.vps_num_layer_sets_minus1, 0, Vps::kMostLayerSets - 1);
    vps.layer_id_included_flag[0] = 1;
    for (uint32_t i = 1; i <= vps.vps_num_layer_sets_minus1; ++i) {
        s.flags(vps.vps_max_layer_id + 1, at("layer_id_included_flag", i), vps.layer_id_included_flag[i]);
    }
}

// hrd_parameters() of the VPS with the elements before it.
template <class Syntax>
void vps_hrd(Syntax& s, const Vps& vps, uint32_t i, VpsHrd& hrd) {
    s.ue(at("hrd_layer_set_idx", i), hrd.hrd_layer_set_idx,
         vps.vps_base_layer_internal_flag || vps.vps_num_layer_sets_minus1 == 0 ? 0 : 1,
         vps.vps_num_layer_sets_minus1);
    hrd.cprms_present_flag = true;
    if (i > 0) {
        s.flag(at("cprms_present_flag", i), hrd.cprms_present_flag);
    }
    hrd.num_sub_layer_hrd_minus1 = vps.vps_max_sub_layers_minus1;
    hrd_parameters(s, hrd.hrd_parameters, hrd.cprms_present_flag, hrd.num_sub_layer_hrd_minus1);
}

// The common part of the last hrd_parameters() comes back in \p common.
template <class Syntax>
void vps_timing_info(Syntax& s, Vps& vps, HrdCommon& common) {
    s.flag("vps_timing_info_present_flag", vps.vps_timing_info_present_flag);
    if (!vps.vps_timing_info_present_flag) {
        return;
    }
    s.u(32, "vps_num_units_in_tick", vps.vps_num_units_in_tick, 1, UINT32_MAX);
    s.u(32, "vps_time_scale", vps.vps_time_scale, 1, UINT32_MAX);
    s.flag("vps_poc_proportional_to_timing_flag", vps.vps_poc_proportional_to_timing_flag);
    if (vps.vps_poc_proportional_to_timing_flag) {
        s.ue("vps_num_ticks_poc_diff_one_minus1", vps.vps_num_ticks_poc_diff_one_minus1);
    }
    s.ue("vps_num_hrd_parameters", vps.vps_num_hrd_parameters, 0, vps.vps_num_layer_sets_minus1 + 1);
    if (vps.vps_num_hrd_parameters > 0) {
        s.keep(vps.hrd_parameters, [&vps, &common](auto& in) {
            VpsHrd hrd;
            for (uint32_t i = 0; i < vps.vps_num_hrd_parameters && !in.failed(); ++i) {
                vps_hrd(in, vps, i, hrd);
            }
            // cppcheck-suppress uninitvar ; set by the syntax function
            common = hrd.hrd_parameters.common;
        });
    }
}

template <class Syntax>
void vps_extensions(Syntax& s, Vps& vps, const HrdCommon& common) {
    s.flag("vps_extension_flag", vps.vps_extension_flag);
    if (!vps.vps_extension_flag) {
        return;
    }
    alignment_ones(s, "vps_extension_alignment_bit_equal_to_one");
    vps_extension(s, vps, common);
    s.flag("vps_extension2_flag", vps.vps_extension2_flag);
    if (!vps.vps_extension2_flag) {
        return;
    }
    s.flag("vps_3d_extension_flag", vps.vps_3d_extension_flag);
    if (vps.vps_3d_extension_flag) {
        alignment_ones(s, "vps_3d_extension_alignment_bit_equal_to_one");
        vps_3d_extension(s, vps, vps.three_d);
    }
    s.flag("vps_extension3_flag", vps.vps_extension3_flag);
    if (vps.vps_extension3_flag) {
        s.extension_data("vps_extension_data_flag", vps.vps_extension_data_flag);
    }
}

// video_parameter_set_rbsp(), 7.3.2.1 and F.7.3.2.1
template <class Syntax>
void video_parameter_set_rbsp(Syntax& s, Vps& vps) {
    static constexpr Structure kStructure = {"video_parameter_set_rbsp()", "7.3.2.1"};
    const Within<Syntax> within(s, kStructure);
    s.u(4, "vps_video_parameter_set_id", vps.vps_video_parameter_set_id);
    s.flag("vps_base_layer_internal_flag", vps.vps_base_layer_internal_flag);
    s.flag("vps_base_layer_available_flag", vps.vps_base_layer_available_flag);
    s.u(6, "vps_max_layers_minus1", vps.vps_max_layers_minus1);
    s.u(3, "vps_max_sub_layers_minus1", vps.vps_max_sub_layers_minus1, 0, kMostSubLayers - 1);
    s.flag("vps_temporal_id_nesting_flag", vps.vps_temporal_id_nesting_flag);
    s.u(16, "vps_reserved_0xffff_16bits", vps.vps_reserved_0xffff_16bits);
    profile_tier_level(s, vps.profile_tier_level, true, vps.vps_max_sub_layers_minus1);
    vps_sub_layer_ordering_info(s, vps);
    vps_layer_sets(s, vps);
    HrdCommon common = inferredHrdCommon();
    vps_timing_info(s, vps, common);
    vps_extensions(s, vps, common);
}

// A unit of type 32
template <class Syntax>
void video_parameter_set_unit(Syntax& s, Vps& vps) {
    nal_unit_of(s, vps.header, kNalVps);
    video_parameter_set_rbsp(s, vps);
    s.rbsp_trailing_bits();
}

}  // namespace qv::hevc

#endif
