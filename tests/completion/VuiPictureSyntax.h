// The elements that vui_parameters() of H.264 (E.1.1) and of H.265 (E.2.1) begin with, as coded values.
#ifndef QV_TESTS_COMPLETION_VUIPICTURESYNTAX_H
#define QV_TESTS_COMPLETION_VUIPICTURESYNTAX_H

#include <cstdint>

#include "BitWriter.h"

namespace qv_test {

// A conditional element is written when its flag is 1.
struct VuiPictureSyntax {
    uint32_t aspect_ratio_info_present_flag = 0;
    uint32_t aspect_ratio_idc = 0;
    uint32_t sar_width = 0;  // written with aspect_ratio_idc 255, as the next one
    uint32_t sar_height = 0;
    uint32_t overscan_info_present_flag = 0;
    uint32_t overscan_appropriate_flag = 0;
    uint32_t video_signal_type_present_flag = 0;
    uint32_t video_format = 5;
    uint32_t video_full_range_flag = 0;
    uint32_t colour_description_present_flag = 0;
    uint32_t colour_primaries = 2;
    uint32_t transfer_characteristics = 2;
    uint32_t matrix_coefficients = 2;  // H.265: matrix_coeffs
    uint32_t chroma_loc_info_present_flag = 0;
    uint32_t chroma_sample_loc_type_top_field = 0;
    uint32_t chroma_sample_loc_type_bottom_field = 0;
};

inline void writeVuiPicture(BitWriter& bits, const VuiPictureSyntax& vui) {
    bits.u(1, "aspect_ratio_info_present_flag", vui.aspect_ratio_info_present_flag);
    if (vui.aspect_ratio_info_present_flag == 1) {
        bits.u(8, "aspect_ratio_idc", vui.aspect_ratio_idc);
        if (vui.aspect_ratio_idc == 255) {
            bits.u(16, "sar_width", vui.sar_width).u(16, "sar_height", vui.sar_height);
        }
    }
    bits.u(1, "overscan_info_present_flag", vui.overscan_info_present_flag);
    if (vui.overscan_info_present_flag == 1) {
        bits.u(1, "overscan_appropriate_flag", vui.overscan_appropriate_flag);
    }
    bits.u(1, "video_signal_type_present_flag", vui.video_signal_type_present_flag);
    if (vui.video_signal_type_present_flag == 1) {
        bits.u(3, "video_format", vui.video_format);
        bits.u(1, "video_full_range_flag", vui.video_full_range_flag);
        bits.u(1, "colour_description_present_flag", vui.colour_description_present_flag);
        if (vui.colour_description_present_flag == 1) {
            bits.u(8, "colour_primaries", vui.colour_primaries);
            bits.u(8, "transfer_characteristics", vui.transfer_characteristics);
            bits.u(8, "matrix_coefficients", vui.matrix_coefficients);
        }
    }
    bits.u(1, "chroma_loc_info_present_flag", vui.chroma_loc_info_present_flag);
    if (vui.chroma_loc_info_present_flag == 1) {
        bits.ue("chroma_sample_loc_type_top_field", vui.chroma_sample_loc_type_top_field);
        bits.ue("chroma_sample_loc_type_bottom_field", vui.chroma_sample_loc_type_bottom_field);
    }
}

}  // namespace qv_test

#endif
