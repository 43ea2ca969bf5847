#include "HdrVividSyntax.h"

#include <string>

#include "SyntaxElements.h"

namespace qv_test {

namespace {

// Each table of the standard is one function, for any Elements: ElementWriter reads the values, ElementCutter
// changes them. Syntax is const for the one and not for the other.

template <class Elements, class Syntax>
void baseParameters(Elements& out, Syntax& s, const std::string& w) {
    out.u(14, "base_param_m_p" + w, s.base_param_m_p);
    out.u(6, "base_param_m_m" + w, s.base_param_m_m);
    out.u(10, "base_param_m_a" + w, s.base_param_m_a);
    out.u(10, "base_param_m_b" + w, s.base_param_m_b);
    out.u(6, "base_param_m_n" + w, s.base_param_m_n);
    out.u(2, "base_param_K1" + w, s.base_param_K1);
    out.u(2, "base_param_K2" + w, s.base_param_K2);
    out.u(4, "base_param_K3" + w, s.base_param_K3);
    out.u(3, "base_param_Delta_enable_mode" + w, s.base_param_Delta_enable_mode);
    out.u(7, "base_param_enable_Delta" + w, s.base_param_enable_Delta);
}

template <class Elements, class Syntax>
void spline(Elements& out, Syntax& s, const std::string& wi) {
    out.u(2, "TH_enable_mode" + wi, s.TH_enable_mode);
    if (s.TH_enable_mode == 0 || s.TH_enable_mode == 2) {
        out.u(8, "TH_enable_MB" + wi, s.TH_enable_MB);
    }
    out.u(12, "TH_enable" + wi, s.TH_enable);
    out.u(10, "TH_enable_Delta1" + wi, s.TH_enable_Delta1);
    out.u(10, "TH_enable_Delta2" + wi, s.TH_enable_Delta2);
    out.u(8, "enable_Strength" + wi, s.enable_Strength);
}

template <class Elements, class Syntax>
void toneMapping(Elements& out, Syntax& s, const std::string& w) {
    out.u(12, "targeted_system_display_maximum_luminance_pq" + w,
          s.targeted_system_display_maximum_luminance_pq);
    out.u(1, "base_enable_flag" + w, s.base_enable_flag);
    if (s.base_enable_flag == 1) {
        baseParameters(out, s, w);
    }
    out.u(1, "3Spline_enable_flag" + w, s.three_Spline_enable_flag);
    if (s.three_Spline_enable_flag == 1) {
        out.u(1, "3Spline_enable_num" + w, s.three_Spline_enable_num);
        for (size_t i = 0; i <= s.three_Spline_enable_num; ++i) {
            spline(out, s.splines[i], indexed(w, i));
        }
    }
}

template <class Elements, class Syntax>
void header(Elements& out, Syntax& s) {
    out.u(8, "itu_t_t35_country_code", s.itu_t_t35_country_code);
    out.u(16, "terminal_provider_code", s.terminal_provider_code);
    out.u(16, "terminal_provider_oriented_code", s.terminal_provider_oriented_code);
    out.u(8, "system_start_code", s.system_start_code);
}

template <class Elements, class Syntax>
void window(Elements& out, Syntax& s) {
    out.u(12, "minimum_maxrgb_pq", s.minimum_maxrgb_pq);
    out.u(12, "average_maxrgb_pq", s.average_maxrgb_pq);
    out.u(12, "variance_maxrgb_pq", s.variance_maxrgb_pq);
    out.u(12, "maximum_maxrgb_pq", s.maximum_maxrgb_pq);
    out.u(1, "tone_mapping_enable_mode_flag", s.tone_mapping_enable_mode_flag);
    if (s.tone_mapping_enable_mode_flag == 1) {
        out.u(1, "tone_mapping_param_enable_num", s.tone_mapping_param_enable_num);
        for (size_t w = 0; w <= s.tone_mapping_param_enable_num; ++w) {
            toneMapping(out, s.toneMappings[w], indexed("", w));
        }
    }
    out.u(1, "color_saturation_mapping_enable_flag", s.color_saturation_mapping_enable_flag);
    if (s.color_saturation_mapping_enable_flag == 1) {
        out.u(3, "color_saturation_enable_num", s.color_saturation_enable_num);
        for (size_t i = 0; i < s.color_saturation_enable_num; ++i) {
            out.u(8, indexed("color_saturation_enable_gain", i), s.color_saturation_enable_gain[i]);
        }
    }
}

}  // namespace

HdrVividSyntax largestHdrVivid() {
    HdrVividSyntax syntax;
    syntax.tone_mapping_enable_mode_flag = 1;
    syntax.tone_mapping_param_enable_num = 1;
    for (auto& mapping : syntax.toneMappings) {
        mapping.base_enable_flag = 1;
        mapping.three_Spline_enable_flag = 1;
        mapping.three_Spline_enable_num = 1;
    }
    syntax.color_saturation_mapping_enable_flag = 1;
    syntax.color_saturation_enable_num = 7;
    return syntax;
}

BitWriter hdrVivid(const HdrVividSyntax& syntax) {
    ElementWriter out;
    header(out, syntax);
    window(out, syntax);
    return out.written();
}

HdrVividSyntax cutAt(const HdrVividSyntax& syntax, size_t bitCount) {
    HdrVividSyntax left = syntax;
    ElementCutter out(bitCount);
    header(out, left);
    window(out, left);
    return left;
}

}  // namespace qv_test
