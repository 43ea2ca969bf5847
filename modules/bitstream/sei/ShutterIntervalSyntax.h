// Exposure times as syntax functions.
#ifndef QV_BITSTREAM_SEI_SHUTTERINTERVALSYNTAX_H
#define QV_BITSTREAM_SEI_SHUTTERINTERVALSYNTAX_H

#include <cstdint>

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/ShutterInterval.h"

namespace qv::sei {

// From sii_time_scale on. The flag of the codec says whether there is one interval for all sub-layers.
template <class Syntax>
void shutter_intervals(Syntax& s, const char* nameOfFlag, bool& isFixed, ShutterIntervalInfo& payload) {
    s.u(32, "sii_time_scale", payload.sii_time_scale, 1, UINT32_MAX);
    s.flag(nameOfFlag, isFixed);
    if (isFixed) {
        s.u(32, "sii_num_units_in_shutter_interval", payload.sii_num_units_in_shutter_interval);
        return;
    }
    s.u(3, "sii_max_sub_layers_minus1", payload.sii_max_sub_layers_minus1);
    for (uint32_t i = 0; i <= payload.sii_max_sub_layers_minus1; ++i) {
        s.u(32, at("sub_layer_num_units_in_shutter_interval", i),
            payload.sub_layer_num_units_in_shutter_interval[i]);
    }
}

// shutter_interval_info(), H.264 D.1.39, H.265 D.2.48
template <class Syntax>
void shutter_interval_info(Syntax& s, const Context& context, ShutterIntervalInfo& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("shutter_interval_info()", "D.1.39", "D.2.48");
    const Within<Syntax> within(s, kStructure.of(context));
    if (context.codec == Codec::Hevc) {
        shutter_intervals(s, "fixed_shutter_interval_within_clvs_flag",
                          payload.fixed_shutter_interval_within_clvs_flag, payload);
        return;
    }
    s.ue("sii_sub_layer_idx", payload.sii_sub_layer_idx, 0, ShutterIntervalInfo::kMostSubLayers - 1);
    if (payload.sii_sub_layer_idx == 0) {
        s.flag("shutter_interval_info_present_flag", payload.shutter_interval_info_present_flag);
        if (payload.shutter_interval_info_present_flag) {
            shutter_intervals(s, "fixed_shutter_interval_within_cvs_flag",
                              payload.fixed_shutter_interval_within_cvs_flag, payload);
        }
    }
}

}  // namespace qv::sei

#endif
