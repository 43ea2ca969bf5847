/// \file
/// The sequence parameter set of H.264.
#ifndef QV_BITSTREAM_AVC_SPS_H
#define QV_BITSTREAM_AVC_SPS_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/avc/ScalingList.h"
#include "bitstream/avc/Vui.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// seq_parameter_set_data(), H.264 7.3.2.1.1 and 7.4.2.1.1. An element that is not present has the value that
/// its semantics infer, otherwise 0.
struct SpsData {
    static constexpr uint32_t kMostRefFramesInPicOrderCntCycle = 255;  ///< pictures in the cycle

    uint32_t profile_idc;           ///< u(8)
    bool constraint_set0_flag;      ///< u(1)
    bool constraint_set1_flag;      ///< u(1)
    bool constraint_set2_flag;      ///< u(1)
    bool constraint_set3_flag;      ///< u(1)
    bool constraint_set4_flag;      ///< u(1)
    bool constraint_set5_flag;      ///< u(1)
    uint32_t reserved_zero_2bits;   ///< u(2)
    uint32_t level_idc;             ///< u(8)
    uint32_t seq_parameter_set_id;  ///< ue(v), 0..31

    uint32_t chroma_format_idc;                 ///< ue(v), 0..3; 1 when not present
    bool separate_colour_plane_flag;            ///< u(1)
    uint32_t bit_depth_luma_minus8;             ///< ue(v), 0..6
    uint32_t bit_depth_chroma_minus8;           ///< ue(v), 0..6
    bool qpprime_y_zero_transform_bypass_flag;  ///< u(1)
    bool seq_scaling_matrix_present_flag;       ///< u(1)

    uint32_t log2_max_frame_num_minus4;              ///< ue(v), 0..12
    uint32_t pic_order_cnt_type;                     ///< ue(v), 0..2
    uint32_t log2_max_pic_order_cnt_lsb_minus4;      ///< ue(v), 0..12
    bool delta_pic_order_always_zero_flag;           ///< u(1)
    int32_t offset_for_non_ref_pic;                  ///< se(v)
    int32_t offset_for_top_to_bottom_field;          ///< se(v)
    uint32_t num_ref_frames_in_pic_order_cnt_cycle;  ///< ue(v), 0..255

    uint32_t max_num_ref_frames;                ///< ue(v), 0..16
    bool gaps_in_frame_num_value_allowed_flag;  ///< u(1)
    uint32_t pic_width_in_mbs_minus1;           ///< ue(v)
    uint32_t pic_height_in_map_units_minus1;    ///< ue(v)
    bool frame_mbs_only_flag;                   ///< u(1)
    bool mb_adaptive_frame_field_flag;          ///< u(1)
    bool direct_8x8_inference_flag;             ///< u(1)
    bool frame_cropping_flag;                   ///< u(1)
    uint32_t frame_crop_left_offset;            ///< ue(v), in CropUnitX
    uint32_t frame_crop_right_offset;           ///< ue(v), in CropUnitX
    uint32_t frame_crop_top_offset;             ///< ue(v), in CropUnitY
    uint32_t frame_crop_bottom_offset;          ///< ue(v), in CropUnitY

    bool vui_parameters_present_flag;  ///< u(1)
    Vui vui;                           ///< with vui_parameters_present_flag, otherwise as inferred

    // Arrays come last: a read sets them as far as their counts go, not beyond.

    int32_t offset_for_ref_frame[kMostRefFramesInPicOrderCntCycle];  ///< se(v)
    ScalingMatrix scaling_matrix;                                    ///< as coded; see scalingFactorsOf()
};

/// A NAL unit of type 7: its header and seq_parameter_set_rbsp(), H.264 7.3.2.1.
struct Sps {
    NalUnitHeader header;  ///< the NAL unit header
    SpsData data;          ///< the elements that subset parameter sets have as well
};

/// Reads a sequence parameter set.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it.
Read<Sps> readSps(Bytes unit) noexcept;

/// As readSps(), and hands each element to \p visitor.
Read<Sps> traceSps(Bytes unit, TraceVisitor& visitor);

/// Writes a sequence parameter set as a NAL unit, emulation prevention bytes included, to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeSps(const Sps& sps, std::vector<uint8_t>& out);

/// The bits that writeSps() would write, emulation prevention bytes left out.
Sized sizeOf(const Sps& sps) noexcept;

}  // namespace qv::avc

#endif
