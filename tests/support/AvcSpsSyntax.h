// seq_parameter_set_rbsp() of ITU-T H.264 (08/2021) 7.3.2.1 in its NAL unit, as coded values: nothing here is
// derived from anything else.
#ifndef QV_TESTS_AVCSPSSYNTAX_H
#define QV_TESTS_AVCSPSSYNTAX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

struct ScalingListSyntax {
    uint32_t seq_scaling_list_present_flag = 0;
    std::vector<int32_t> delta_scale;  // those that are coded, when the flag is 1
};

// The defaults are a Baseline parameter set of one macroblock. Flags are 0 or 1.
struct AvcSpsSyntax {
    uint32_t forbidden_zero_bit = 0;
    uint32_t nal_ref_idc = 3;
    uint32_t nal_unit_type = 7;

    uint32_t profile_idc = 66;
    uint32_t constraint_set0_flag = 0;
    uint32_t constraint_set1_flag = 0;
    uint32_t constraint_set2_flag = 0;
    uint32_t constraint_set3_flag = 0;
    uint32_t constraint_set4_flag = 0;
    uint32_t constraint_set5_flag = 0;
    uint32_t reserved_zero_2bits = 0;
    uint32_t level_idc = 10;
    uint32_t seq_parameter_set_id = 0;

    // In the standard profile_idc determines whether these are present. Here the test does.
    bool writesChromaSyntax = false;
    uint32_t chroma_format_idc = 1;
    uint32_t separate_colour_plane_flag = 0;  // written with chroma_format_idc 3
    uint32_t bit_depth_luma_minus8 = 0;
    uint32_t bit_depth_chroma_minus8 = 0;
    uint32_t qpprime_y_zero_transform_bypass_flag = 0;
    uint32_t seq_scaling_matrix_present_flag = 0;
    std::array<ScalingListSyntax, 12> scalingLists;  // the last four are written with chroma_format_idc 3

    uint32_t log2_max_frame_num_minus4 = 0;
    uint32_t pic_order_cnt_type = 0;
    uint32_t log2_max_pic_order_cnt_lsb_minus4 = 0;  // written with pic_order_cnt_type 0
    uint32_t delta_pic_order_always_zero_flag = 0;   // written with pic_order_cnt_type 1, as the next four
    int32_t offset_for_non_ref_pic = 0;
    int32_t offset_for_top_to_bottom_field = 0;
    uint32_t num_ref_frames_in_pic_order_cnt_cycle = 0;
    std::vector<int32_t> offset_for_ref_frame;  // all of them are written
    uint32_t max_num_ref_frames = 0;
    uint32_t gaps_in_frame_num_value_allowed_flag = 0;
    uint32_t pic_width_in_mbs_minus1 = 0;
    uint32_t pic_height_in_map_units_minus1 = 0;
    uint32_t frame_mbs_only_flag = 1;
    uint32_t mb_adaptive_frame_field_flag = 0;  // written with frame_mbs_only_flag 0
    uint32_t direct_8x8_inference_flag = 0;
    uint32_t frame_cropping_flag = 0;
    uint32_t frame_crop_left_offset = 0;  // written with frame_cropping_flag 1, as the next three
    uint32_t frame_crop_right_offset = 0;
    uint32_t frame_crop_top_offset = 0;
    uint32_t frame_crop_bottom_offset = 0;
    uint32_t vui_parameters_present_flag = 0;  // 1: vui_parameters() with every flag 0 follows
};

using AvcSpsChange = std::function<void(AvcSpsSyntax&)>;

// The NAL unit, header byte included, without emulation prevention.
BitWriter writeAvcSps(const AvcSpsSyntax& syntax);

// The default parameter set, changed.
BitWriter avcSps(const AvcSpsChange& change = {});

// The same with profile_idc 100 and its chroma syntax.
BitWriter highAvcSps(const AvcSpsChange& change = {});

// The values that are left of the parameter set when only its first bitCount bits are there. A profile_idc
// that was cut is one without chroma syntax.
AvcSpsSyntax avcSpsCutAt(const AvcSpsSyntax& syntax, size_t bitCount);

}  // namespace qv_test

#endif
