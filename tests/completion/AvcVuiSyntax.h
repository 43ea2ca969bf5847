// A sequence parameter set of H.264 with vui_parameters() and hrd_parameters() (E.1.1, E.1.2), as coded
// values: nothing here is derived from anything else.
#ifndef QV_TESTS_COMPLETION_AVCVUISYNTAX_H
#define QV_TESTS_COMPLETION_AVCVUISYNTAX_H

#include <cstdint>
#include <vector>

#include "AvcSpsSyntax.h"
#include "BitWriter.h"
#include "VuiPictureSyntax.h"

namespace qv_test {

struct AvcCpbSyntax {
    uint32_t bit_rate_value_minus1 = 0;
    uint32_t cpb_size_value_minus1 = 0;
    uint32_t cbr_flag = 0;
};

struct AvcHrdSyntax {
    uint32_t cpb_cnt_minus1 = 0;
    uint32_t bit_rate_scale = 0;
    uint32_t cpb_size_scale = 0;
    std::vector<AvcCpbSyntax> cpbs{1};  // all of them are written
    uint32_t initial_cpb_removal_delay_length_minus1 = 23;
    uint32_t cpb_removal_delay_length_minus1 = 23;
    uint32_t dpb_output_delay_length_minus1 = 23;
    uint32_t time_offset_length = 24;
};

// HRD parameters with that many entries.
AvcHrdSyntax avcHrd(uint32_t cpb_cnt_minus1);

// A conditional element is written when its flag is 1.
struct AvcVuiSyntax : VuiPictureSyntax {
    uint32_t timing_info_present_flag = 0;
    uint32_t num_units_in_tick = 1;
    uint32_t time_scale = 50;
    uint32_t fixed_frame_rate_flag = 0;
    uint32_t nal_hrd_parameters_present_flag = 0;
    AvcHrdSyntax nal_hrd_parameters;
    uint32_t vcl_hrd_parameters_present_flag = 0;
    AvcHrdSyntax vcl_hrd_parameters;
    uint32_t low_delay_hrd_flag = 0;
    uint32_t pic_struct_present_flag = 0;
    uint32_t bitstream_restriction_flag = 0;
    uint32_t motion_vectors_over_pic_boundaries_flag = 1;
    uint32_t max_bytes_per_pic_denom = 2;
    uint32_t max_bits_per_mb_denom = 1;
    uint32_t log2_max_mv_length_horizontal = 15;
    uint32_t log2_max_mv_length_vertical = 15;
    uint32_t max_num_reorder_frames = 0;
    uint32_t max_dec_frame_buffering = 1;
};

// A parameter set that ends with these VUI parameters and rbsp_trailing_bits(), header byte included, without
// emulation prevention.
BitWriter avcSpsWithVui(const AvcVuiSyntax& vui, const AvcSpsChange& change = {});

}  // namespace qv_test

#endif
