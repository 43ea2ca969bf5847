// A sequence parameter set of H.265 with vui_parameters() and hrd_parameters() (E.2.1, E.2.2), as coded
// values: nothing here is derived from anything else.
#ifndef QV_TESTS_COMPLETION_HEVCVUISYNTAX_H
#define QV_TESTS_COMPLETION_HEVCVUISYNTAX_H

#include <cstdint>

#include "BitWriter.h"
#include "HevcSpsSyntax.h"
#include "VuiPictureSyntax.h"

namespace qv_test {

// A conditional element is written when its flag is 1.
struct HevcVuiSyntax : VuiPictureSyntax {
    uint32_t neutral_chroma_indication_flag = 0;
    uint32_t field_seq_flag = 0;
    uint32_t frame_field_info_present_flag = 0;
    uint32_t default_display_window_flag = 0;  // 1: four offsets of 1 follow
    uint32_t vui_timing_info_present_flag = 0;
    uint32_t vui_num_units_in_tick = 1;
    uint32_t vui_time_scale = 50;
    uint32_t vui_hrd_parameters_present_flag = 0;  // 1: NAL HRD parameters for each sub-layer follow
    uint32_t bitstream_restriction_flag = 0;
    uint32_t min_spatial_segmentation_idc = 0;
};

// A parameter set that ends with these VUI parameters, sps_extension_present_flag 0 and rbsp_trailing_bits(),
// header included, without emulation prevention.
BitWriter hevcSpsWithVui(const HevcVuiSyntax& vui, const HevcSpsChange& change = {});

}  // namespace qv_test

#endif
