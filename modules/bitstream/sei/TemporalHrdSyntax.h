// HRD parameters of the temporal layers of a base layer or base view, as syntax functions.
#ifndef QV_BITSTREAM_SEI_TEMPORALHRDSYNTAX_H
#define QV_BITSTREAM_SEI_TEMPORALHRDSYNTAX_H

#include "bitstream/avc/VuiExtensionTimingSyntax.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/TemporalHrd.h"

namespace qv::sei {

constexpr avc::VuiExtensionTimingNames kBaseLayerTiming = {"sei_timing_info_present_flag",
                                                           "sei_num_units_in_tick",
                                                           "sei_time_scale",
                                                           "sei_fixed_frame_rate_flag",
                                                           "sei_nal_hrd_parameters_present_flag",
                                                           "sei_vcl_hrd_parameters_present_flag",
                                                           "sei_low_delay_hrd_flag",
                                                           "sei_pic_struct_present_flag"};

constexpr avc::VuiExtensionTimingNames kBaseViewTiming = {"sei_mvc_timing_info_present_flag",
                                                          "sei_mvc_num_units_in_tick",
                                                          "sei_mvc_time_scale",
                                                          "sei_mvc_fixed_frame_rate_flag",
                                                          "sei_mvc_nal_hrd_parameters_present_flag",
                                                          "sei_mvc_vcl_hrd_parameters_present_flag",
                                                          "sei_mvc_low_delay_hrd_flag",
                                                          "sei_mvc_pic_struct_present_flag"};

// Temporal layer i of the base layer.
template <class Syntax>
void temporal_hrd(Syntax& s, const BaseLayerTemporalHrd& payload, uint32_t i, TemporalHrd& layer) {
    static_cast<void>(payload);
    layer = {};
    s.u(3, at("sei_temporal_id", i), layer.temporal_id);
    avc::vui_extension_timing(s, layer.timing, kBaseLayerTiming, i);
}

// Temporal layer i of the base view.
template <class Syntax>
void temporal_hrd(Syntax& s, const BaseViewTemporalHrd& payload, uint32_t i, TemporalHrd& layer) {
    static_cast<void>(payload);
    layer = {};
    s.u(3, at("sei_mvc_temporal_id", i), layer.temporal_id);
    avc::vui_extension_timing(s, layer.timing, kBaseViewTiming, i);
}

// base_layer_temporal_hrd(), G.13.1.8
template <class Syntax>
void base_layer_temporal_hrd(Syntax& s, const Context& context, BaseLayerTemporalHrd& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"base_layer_temporal_hrd()", "G.13.1.8"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_of_temporal_layers_in_base_layer_minus1", payload.num_of_temporal_layers_in_base_layer_minus1,
         0, 7);
    s.keep(payload.layers, [&payload](auto& in) {
        TemporalHrd layer;
        for (uint32_t i = 0; i <= payload.num_of_temporal_layers_in_base_layer_minus1 && !in.failed(); ++i) {
            temporal_hrd(in, payload, i, layer);
        }
    });
}

// base_view_temporal_hrd(), H.13.1.9
template <class Syntax>
void base_view_temporal_hrd(Syntax& s, const Context& context, BaseViewTemporalHrd& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"base_view_temporal_hrd()", "H.13.1.9"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_of_temporal_layers_in_base_view_minus1", payload.num_of_temporal_layers_in_base_view_minus1, 0,
         7);
    s.keep(payload.layers, [&payload](auto& in) {
        TemporalHrd layer;
        for (uint32_t i = 0; i <= payload.num_of_temporal_layers_in_base_view_minus1 && !in.failed(); ++i) {
            temporal_hrd(in, payload, i, layer);
        }
    });
}

}  // namespace qv::sei

#endif
