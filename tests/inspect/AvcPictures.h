// Coded values of H.264 parameter sets and slices for tests of picture borders. ITU-T H.264 (08/2021) 7.3.2.2
// and 7.3.3.
#ifndef QV_TESTS_AVCPICTURES_H
#define QV_TESTS_AVCPICTURES_H

#include <cstdint>
#include <functional>
#include <vector>

#include "AvcSpsSyntax.h"
#include "BitWriter.h"

namespace qv_test {

// pic_parameter_set_rbsp() up to redundant_pic_cnt_present_flag. Flags are 0 or 1.
struct AvcPpsSyntax {
    uint32_t pic_parameter_set_id = 0;
    uint32_t seq_parameter_set_id = 0;
    uint32_t bottom_field_pic_order_in_frame_present_flag = 0;
    uint32_t num_slice_groups_minus1 = 0;
    std::function<void(BitWriter&)> writeSliceGroups;  // written with num_slice_groups_minus1 > 0
    uint32_t redundant_pic_cnt_present_flag = 0;
};

// slice_header() up to redundant_pic_cnt. The writes... fields select the elements, as the parameter sets of
// a stream would.
struct AvcSliceSyntax {
    uint32_t nal_ref_idc = 1;
    uint32_t nal_unit_type = 1;
    uint32_t first_mb_in_slice = 0;
    uint32_t slice_type = 7;
    uint32_t pic_parameter_set_id = 0;
    uint32_t colour_plane_id = 0;
    uint32_t frame_num = 0;
    uint32_t field_pic_flag = 0;
    uint32_t bottom_field_flag = 0;  // written with field_pic_flag 1
    uint32_t idr_pic_id = 0;         // written in units of type 5
    uint32_t pic_order_cnt_lsb = 0;
    int32_t delta_pic_order_cnt_bottom = 0;
    int32_t delta_pic_order_cnt_0 = 0;
    int32_t delta_pic_order_cnt_1 = 0;
    uint32_t redundant_pic_cnt = 0;
    const char* rest = "1010 1010 1010 1010 1010 1010 1";  // of the slice, as bits

    bool writesColourPlane = false;
    unsigned frameNumBits = 4;
    bool writesFieldFlag = false;
    unsigned pocLsbBits = 4;  // 0: not written
    bool writesDeltaBottom = false;
    bool writesDelta0 = false;
    bool writesDelta1 = false;
    bool writesRedundantPicCnt = false;
};

// NAL units with emulation prevention.
Bytes avcSpsUnit(const AvcSpsChange& change = {});
Bytes avcPpsUnit(const std::function<void(AvcPpsSyntax&)>& change = {});
Bytes avcSliceUnit(const AvcSliceSyntax& syntax);

}  // namespace qv_test

#endif
