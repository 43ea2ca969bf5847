// seq_parameter_set_rbsp() of ITU-T H.265 (08/2021) 7.3.2.2 in its NAL unit, as coded values: nothing here is
// derived from anything else.
#ifndef QV_TESTS_HEVCSPSSYNTAX_H
#define QV_TESTS_HEVCSPSSYNTAX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "BitWriter.h"

namespace qv_test {

// The 88 bits that are the same for the general part and for a sub-layer: general_profile_space or
// sub_layer_profile_space and so on.
struct HevcProfileSyntax {
    uint32_t profile_space = 0;
    uint32_t tier_flag = 0;
    uint32_t profile_idc = 1;
    uint32_t profile_compatibility_flags = 0x60000000;  // flag[0] is the most significant bit
    uint32_t progressive_source_flag = 1;
    uint32_t interlaced_source_flag = 0;
    uint32_t non_packed_constraint_flag = 0;
    uint32_t frame_only_constraint_flag = 1;
    uint64_t reserved_zero_43bits = 0;
    uint32_t inbld_flag = 0;
};

struct HevcSubLayerSyntax {
    uint32_t sub_layer_profile_present_flag = 0;
    uint32_t sub_layer_level_present_flag = 0;
    HevcProfileSyntax profile;          // written after a set profile flag
    uint32_t sub_layer_level_idc = 30;  // written after a set level flag
};

// The defaults are a Main parameter set of 8x8 samples. Flags are 0 or 1.
struct HevcSpsSyntax {
    uint32_t forbidden_zero_bit = 0;
    uint32_t nal_unit_type = 33;
    uint32_t nuh_layer_id = 0;
    uint32_t nuh_temporal_id_plus1 = 1;

    uint32_t sps_video_parameter_set_id = 0;
    uint32_t sps_max_sub_layers_minus1 = 0;
    uint32_t sps_temporal_id_nesting_flag = 1;
    HevcProfileSyntax general;
    uint32_t general_level_idc = 30;
    std::array<HevcSubLayerSyntax, 7> subLayers;  // the first sps_max_sub_layers_minus1 are written
    uint32_t reserved_zero_2bits = 0;

    uint32_t sps_seq_parameter_set_id = 0;
    uint32_t chroma_format_idc = 1;
    uint32_t separate_colour_plane_flag = 0;  // written with chroma_format_idc 3
    uint32_t pic_width_in_luma_samples = 8;
    uint32_t pic_height_in_luma_samples = 8;
    uint32_t conformance_window_flag = 0;
    uint32_t conf_win_left_offset = 0;  // written with conformance_window_flag 1, as the next three
    uint32_t conf_win_right_offset = 0;
    uint32_t conf_win_top_offset = 0;
    uint32_t conf_win_bottom_offset = 0;
    uint32_t bit_depth_luma_minus8 = 0;
    uint32_t bit_depth_chroma_minus8 = 0;
    uint32_t log2_max_pic_order_cnt_lsb_minus4 = 0;
    uint32_t sps_sub_layer_ordering_info_present_flag = 1;
    // The rest of the table follows with the least that it can hold.
};

using HevcSpsChange = std::function<void(HevcSpsSyntax&)>;

// The NAL unit, header included, without emulation prevention.
BitWriter writeHevcSps(const HevcSpsSyntax& syntax);

// The default parameter set, changed.
BitWriter hevcSps(const HevcSpsChange& change = {});

// The values that are left of the parameter set when only its first bitCount bits are there.
HevcSpsSyntax hevcSpsCutAt(const HevcSpsSyntax& syntax, size_t bitCount);

}  // namespace qv_test

#endif
