// seq_parameter_set_svc_extension() and svc_vui_parameters_extension() of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_SPSSVCEXTENSIONSYNTAX_H
#define QV_BITSTREAM_AVC_SPSSVCEXTENSIONSYNTAX_H

#include "bitstream/avc/SpsSvcExtension.h"
#include "bitstream/avc/VuiExtensionTimingSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

template <class Syntax>
void seq_scaled_ref_layer(Syntax& s, SpsSvcExtension& svc, uint32_t chromaArrayType) {
    if (chromaArrayType > 0) {
        s.flag("seq_ref_layer_chroma_phase_x_plus1_flag", svc.seq_ref_layer_chroma_phase_x_plus1_flag);
        s.u(2, "seq_ref_layer_chroma_phase_y_plus1", svc.seq_ref_layer_chroma_phase_y_plus1, 0, 2);
    }
    s.se("seq_scaled_ref_layer_left_offset", svc.seq_scaled_ref_layer_left_offset, INT16_MIN, INT16_MAX);
    s.se("seq_scaled_ref_layer_top_offset", svc.seq_scaled_ref_layer_top_offset, INT16_MIN, INT16_MAX);
    s.se("seq_scaled_ref_layer_right_offset", svc.seq_scaled_ref_layer_right_offset, INT16_MIN, INT16_MAX);
    s.se("seq_scaled_ref_layer_bottom_offset", svc.seq_scaled_ref_layer_bottom_offset, INT16_MIN, INT16_MAX);
}

// seq_parameter_set_svc_extension(), G.7.3.2.1.4
template <class Syntax>
void seq_parameter_set_svc_extension(Syntax& s, SpsSvcExtension& svc, uint32_t chromaArrayType) {
    static constexpr Structure kStructure = {"seq_parameter_set_svc_extension()", "G.7.3.2.1.4"};
    const Within<Syntax> within(s, kStructure);
    s.flag("inter_layer_deblocking_filter_control_present_flag",
           svc.inter_layer_deblocking_filter_control_present_flag);
    s.u(2, "extended_spatial_scalability_idc", svc.extended_spatial_scalability_idc, 0, 2);
    s.infer(svc.chroma_phase_x_plus1_flag, true);
    s.infer(svc.chroma_phase_y_plus1, 1);
    if (chromaArrayType == 1 || chromaArrayType == 2) {
        s.flag("chroma_phase_x_plus1_flag", svc.chroma_phase_x_plus1_flag);
    }
    if (chromaArrayType == 1) {
        s.u(2, "chroma_phase_y_plus1", svc.chroma_phase_y_plus1, 0, 2);
    }
    s.infer(svc.seq_ref_layer_chroma_phase_x_plus1_flag, svc.chroma_phase_x_plus1_flag);
    s.infer(svc.seq_ref_layer_chroma_phase_y_plus1, svc.chroma_phase_y_plus1);
    if (svc.extended_spatial_scalability_idc == 1) {
        seq_scaled_ref_layer(s, svc, chromaArrayType);
    }
    s.flag("seq_tcoeff_level_prediction_flag", svc.seq_tcoeff_level_prediction_flag);
    if (svc.seq_tcoeff_level_prediction_flag) {
        s.flag("adaptive_tcoeff_level_prediction_flag", svc.adaptive_tcoeff_level_prediction_flag);
    }
    s.flag("slice_header_restriction_flag", svc.slice_header_restriction_flag);
}

// Entry i of svc_vui_parameters_extension()
template <class Syntax>
void svc_vui_entry(Syntax& s, SvcVuiEntry& entry, uint32_t i) {
    static constexpr VuiExtensionTimingNames kNames = {"vui_ext_timing_info_present_flag",
                                                       "vui_ext_num_units_in_tick",
                                                       "vui_ext_time_scale",
                                                       "vui_ext_fixed_frame_rate_flag",
                                                       "vui_ext_nal_hrd_parameters_present_flag",
                                                       "vui_ext_vcl_hrd_parameters_present_flag",
                                                       "vui_ext_low_delay_hrd_flag",
                                                       "vui_ext_pic_struct_present_flag"};
    s.u(3, at("vui_ext_dependency_id", i), entry.vui_ext_dependency_id);
    s.u(4, at("vui_ext_quality_id", i), entry.vui_ext_quality_id);
    s.u(3, at("vui_ext_temporal_id", i), entry.vui_ext_temporal_id);
    vui_extension_timing(s, entry.timing, kNames, i);
}

// svc_vui_parameters_extension(), G.14.1
template <class Syntax>
void svc_vui_parameters_extension(Syntax& s, SvcVuiExtension& vui) {
    static constexpr Structure kStructure = {"svc_vui_parameters_extension()", "G.14.1"};
    const Within<Syntax> within(s, kStructure);
    s.ue("vui_ext_num_entries_minus1", vui.vui_ext_num_entries_minus1, 0, 1023);
    s.keep(vui.entries, [&vui](auto& in) {
        SvcVuiEntry entry = {};
        for (uint32_t i = 0; i <= vui.vui_ext_num_entries_minus1 && !in.failed(); ++i) {
            svc_vui_entry(in, entry, i);
        }
    });
}

}  // namespace qv::avc

#endif
