// HDR Vivid metadata of one T.35 message, T/UWA 005.1, as coded values: nothing here is derived from anything
// else.
#ifndef QV_TESTS_HDRVIVIDSYNTAX_H
#define QV_TESTS_HDRVIVIDSYNTAX_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "BitWriter.h"

namespace qv_test {

struct HdrVividSplineSyntax {
    uint32_t TH_enable_mode = 0;
    uint32_t TH_enable_MB = 20;  // written with TH_enable_mode 0 and 2
    uint32_t TH_enable = 600;
    uint32_t TH_enable_Delta1 = 200;
    uint32_t TH_enable_Delta2 = 300;
    uint32_t enable_Strength = 128;
};

struct HdrVividToneMappingSyntax {
    uint32_t targeted_system_display_maximum_luminance_pq = 2080;
    uint32_t base_enable_flag = 0;
    uint32_t base_param_m_p = 5915;  // written with base_enable_flag 1, as all of base_param
    uint32_t base_param_m_m = 24;
    uint32_t base_param_m_a = 1000;
    uint32_t base_param_m_b = 6;
    uint32_t base_param_m_n = 10;
    uint32_t base_param_K1 = 1;
    uint32_t base_param_K2 = 2;
    uint32_t base_param_K3 = 3;
    uint32_t base_param_Delta_enable_mode = 0;
    uint32_t base_param_enable_Delta = 4;
    uint32_t three_Spline_enable_flag = 0;
    uint32_t three_Spline_enable_num = 0;
    std::array<HdrVividSplineSyntax, 2> splines;  // three_Spline_enable_num + 1 of them are written
};

struct HdrVividSyntax {
    uint32_t itu_t_t35_country_code = 0x26;
    uint32_t terminal_provider_code = 0x0004;
    uint32_t terminal_provider_oriented_code = 0x0005;
    uint32_t system_start_code = 0x01;
    uint32_t minimum_maxrgb_pq = 10;
    uint32_t average_maxrgb_pq = 900;
    uint32_t variance_maxrgb_pq = 300;
    uint32_t maximum_maxrgb_pq = 3000;
    uint32_t tone_mapping_enable_mode_flag = 0;
    uint32_t tone_mapping_param_enable_num = 0;
    std::array<HdrVividToneMappingSyntax, 2> toneMappings;  // tone_mapping_param_enable_num + 1 are written
    uint32_t color_saturation_mapping_enable_flag = 0;
    uint32_t color_saturation_enable_num = 0;
    std::array<uint32_t, 7> color_saturation_enable_gain = {};  // color_saturation_enable_num are written
};

// All that a payload can hold: both tone mappings with their splines, and seven gains.
HdrVividSyntax largestHdrVivid();

BitWriter hdrVivid(const HdrVividSyntax& syntax);

// The values that are left when only the first bitCount bits of the payload are there.
HdrVividSyntax cutAt(const HdrVividSyntax& syntax, size_t bitCount);

}  // namespace qv_test

#endif
