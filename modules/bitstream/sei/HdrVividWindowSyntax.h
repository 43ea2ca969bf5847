// The window of HDR Vivid dynamic metadata as syntax functions: T/UWA 005.1. They need of a vocabulary no
// more than u() and flag(), so that any reader of bits can be one.
#ifndef QV_BITSTREAM_SEI_HDRVIVIDWINDOWSYNTAX_H
#define QV_BITSTREAM_SEI_HDRVIVIDWINDOWSYNTAX_H

#include "bitstream/sei/HdrVivid.h"
#include "bitstream/syntax/Element.h"

namespace qv::sei {

template <class Syntax>
void hdr_vivid_base(Syntax& s, uint32_t i, HdrVividToneMapping& mapping) {
    s.u(14, at("base_param_m_p", i), mapping.base_param_m_p);
    s.u(6, at("base_param_m_m", i), mapping.base_param_m_m);
    s.u(10, at("base_param_m_a", i), mapping.base_param_m_a);
    s.u(10, at("base_param_m_b", i), mapping.base_param_m_b);
    s.u(6, at("base_param_m_n", i), mapping.base_param_m_n);
    s.u(2, at("base_param_K1", i), mapping.base_param_K1);
    s.u(2, at("base_param_K2", i), mapping.base_param_K2);
    s.u(4, at("base_param_K3", i), mapping.base_param_K3);
    s.u(3, at("base_param_Delta_enable_mode", i), mapping.base_param_Delta_enable_mode);
    s.u(7, at("base_param_enable_Delta", i), mapping.base_param_enable_Delta);
}

template <class Syntax>
void hdr_vivid_spline(Syntax& s, uint32_t i, uint32_t j, HdrVividSpline& spline) {
    s.u(2, at("3Spline_TH_enable_mode", i, j), spline.TH_enable_mode);
    if (spline.hasMiddleBase()) {
        s.u(8, at("3Spline_TH_enable_MB", i, j), spline.TH_enable_MB);
    }
    s.u(12, at("3Spline_TH_enable", i, j), spline.TH_enable);
    s.u(10, at("3Spline_TH_enable_Delta1", i, j), spline.TH_enable_Delta1);
    s.u(10, at("3Spline_TH_enable_Delta2", i, j), spline.TH_enable_Delta2);
    s.u(8, at("3Spline_enable_Strength", i, j), spline.enable_Strength);
}

template <class Syntax>
void hdr_vivid_tone_mapping(Syntax& s, uint32_t i, HdrVividToneMapping& mapping) {
    s.u(12, at("targeted_system_display_maximum_luminance_pq", i),
        mapping.targeted_system_display_maximum_luminance_pq);
    s.flag(at("base_enable_flag", i), mapping.base_enable_flag);
    if (mapping.base_enable_flag) {
        hdr_vivid_base(s, i, mapping);
    }
    s.flag(at("3Spline_enable_flag", i), mapping.three_Spline_enable_flag);
    if (mapping.three_Spline_enable_flag) {
        s.u(1, at("3Spline_enable_num", i), mapping.three_Spline_enable_num);
    }
    for (uint32_t j = 0; j < mapping.splineCount(); ++j) {
        hdr_vivid_spline(s, i, j, mapping.splines[j]);
    }
}

template <class Syntax>
void hdr_vivid_window(Syntax& s, HdrVivid& metadata) {
    s.u(12, "minimum_maxrgb_pq", metadata.minimum_maxrgb_pq);
    s.u(12, "average_maxrgb_pq", metadata.average_maxrgb_pq);
    s.u(12, "variance_maxrgb_pq", metadata.variance_maxrgb_pq);
    s.u(12, "maximum_maxrgb_pq", metadata.maximum_maxrgb_pq);
    s.flag("tone_mapping_enable_mode_flag", metadata.tone_mapping_enable_mode_flag);
    if (metadata.tone_mapping_enable_mode_flag) {
        s.u(1, "tone_mapping_param_enable_num", metadata.tone_mapping_param_enable_num);
    }
    for (uint32_t i = 0; i < metadata.toneMappingCount(); ++i) {
        hdr_vivid_tone_mapping(s, i, metadata.toneMappings[i]);
    }
    s.flag("color_saturation_mapping_enable_flag", metadata.color_saturation_mapping_enable_flag);
    if (metadata.color_saturation_mapping_enable_flag) {
        s.u(3, "color_saturation_enable_num", metadata.color_saturation_enable_num);
    }
    for (uint32_t i = 0; i < metadata.gainCount(); ++i) {
        s.u(8, at("color_saturation_enable_gain", i), metadata.color_saturation_enable_gain[i]);
    }
}

}  // namespace qv::sei

#endif
