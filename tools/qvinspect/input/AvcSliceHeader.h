// The start of an H.264 slice header, up to the elements that distinguish the pictures of two slices.
#ifndef QVINSPECT_AVCSLICEHEADER_H
#define QVINSPECT_AVCSLICEHEADER_H

#include <cstddef>
#include <cstdint>

#include "bitstream/avc/ParameterSets.h"

namespace qvinspect {

struct AvcSliceHeader {
    uint32_t nal_ref_idc;
    uint32_t nal_unit_type;
    uint32_t first_mb_in_slice;
    uint32_t pic_parameter_set_id;
    // The parameter sets are known and whole as far as a slice header needs them. Without them nothing below
    // is read.
    bool isWhole;

    uint32_t colour_plane_id;  // 0 without separate_colour_plane_flag
    uint32_t frame_num;
    uint32_t field_pic_flag;
    uint32_t bottom_field_flag;
    uint32_t idr_pic_id;
    uint32_t pic_order_cnt_type;
    uint32_t pic_order_cnt_lsb;
    int32_t delta_pic_order_cnt_bottom;
    int32_t delta_pic_order_cnt[2];
    uint32_t redundant_pic_cnt;
};

// unit is a NAL unit of type 1, 2 or 5, which makes its parameter sets active.
AvcSliceHeader readAvcSliceHeader(const unsigned char* unit, size_t size,
                                  qv::avc::ParameterSets& parameterSets);

// True if slice is the first of a new primary coded picture after that of last. Both must be whole.
bool beginsPrimaryPicture(const AvcSliceHeader& last, const AvcSliceHeader& slice);

}  // namespace qvinspect

#endif
