/// \file
/// The picture parameter set of H.264.
#ifndef QV_BITSTREAM_AVC_PPS_H
#define QV_BITSTREAM_AVC_PPS_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/avc/ScalingList.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// A NAL unit of type 8: its header and pic_parameter_set_rbsp(), H.264 7.3.2.2 and 7.4.2.2. An element that
/// is not present has the value that its semantics infer, otherwise 0.
struct Pps {
    static constexpr uint32_t kMostSliceGroups = 8;  ///< the greatest num_slice_groups_minus1, plus 1

    /// MaxFS of level 6.2, Table A-1.
    static constexpr uint32_t kMostMapUnits = 139264;

    NalUnitHeader header;                               ///< the NAL unit header
    uint32_t pic_parameter_set_id;                      ///< ue(v), 0..255
    uint32_t seq_parameter_set_id;                      ///< ue(v), 0..31
    bool entropy_coding_mode_flag;                      ///< 1: CABAC; 0: CAVLC
    bool bottom_field_pic_order_in_frame_present_flag;  ///< u(1)

    uint32_t num_slice_groups_minus1;              ///< ue(v), 0..7
    uint32_t slice_group_map_type;                 ///< ue(v), 0..6
    uint32_t run_length_minus1[kMostSliceGroups];  ///< ue(v), type 0, one for each slice group
    uint32_t top_left[kMostSliceGroups - 1];       ///< ue(v), type 2, for each slice group but the last
    uint32_t bottom_right[kMostSliceGroups - 1];   ///< ue(v), type 2, for each slice group but the last
    bool slice_group_change_direction_flag;        ///< types 3, 4 and 5
    uint32_t slice_group_change_rate_minus1;       ///< ue(v), types 3, 4 and 5
    uint32_t pic_size_in_map_units_minus1;         ///< ue(v), type 6, 0..kMostMapUnits - 1

    /// Type 6: slice_group_id of each map unit, u(v), borrowed from the unit; see SliceGroupIds.
    CodedBits slice_group_id;

    uint32_t num_ref_idx_l0_default_active_minus1;  ///< ue(v), 0..31
    uint32_t num_ref_idx_l1_default_active_minus1;  ///< ue(v), 0..31
    bool weighted_pred_flag;                        ///< u(1)
    uint32_t weighted_bipred_idc;                   ///< u(2), 0..2
    int32_t pic_init_qp_minus26;                    ///< se(v), -62..25; the least value is -26 - QpBdOffsetY
    int32_t pic_init_qs_minus26;                    ///< se(v), -26..25
    int32_t chroma_qp_index_offset;                 ///< se(v), -12..12
    bool deblocking_filter_control_present_flag;    ///< u(1)
    bool constrained_intra_pred_flag;               ///< u(1)
    bool redundant_pic_cnt_present_flag;            ///< u(1)

    /// True when the RBSP goes on with transform_8x8_mode_flag and what follows it.
    bool transform_8x8_mode_flag_present;

    bool transform_8x8_mode_flag;           ///< u(1)
    bool pic_scaling_matrix_present_flag;   ///< u(1)
    int32_t second_chroma_qp_index_offset;  ///< se(v), -12..12; chroma_qp_index_offset when not present

    // Arrays come last: a read sets them as far as their counts go, not beyond.

    ScalingMatrix scaling_matrix;  ///< as coded; see scalingFactorsOf()
};

/// Reads a picture parameter set.
///
/// \param unit               one NAL unit from its header on, without start code or length
/// \param chroma_format_idc  that of the sequence parameter set that the unit refers to. It matters only for
///                           3, 4:4:4, with transform_8x8_mode_flag and scaling lists: everything up to
///                           pic_scaling_list_present_flag is read alike with any value, so a caller that
///                           does not know the sequence parameter set yet reads seq_parameter_set_id with 1.
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it.
Read<Pps> readPps(Bytes unit, uint32_t chroma_format_idc) noexcept;

/// As readPps(), and hands each element to \p visitor.
Read<Pps> tracePps(Bytes unit, uint32_t chroma_format_idc, TraceVisitor& visitor);

/// Writes a picture parameter set as a NAL unit, emulation prevention bytes included, to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writePps(const Pps& pps, uint32_t chroma_format_idc, std::vector<uint8_t>& out);

/// The bits that writePps() would write, emulation prevention bytes left out.
Sized sizeOf(const Pps& pps, uint32_t chroma_format_idc) noexcept;

/// Reads slice_group_id[ i ] of a picture parameter set with slice_group_map_type 6, in order.
class SliceGroupIds {
public:
    /// \param pps  read without a fault; the unit that it was read from is borrowed
    explicit SliceGroupIds(const Pps& pps) noexcept;

    /// Stores the next slice_group_id. False after the last one, and when there is none.
    bool next(uint32_t& slice_group_id) noexcept;

private:
    Reader reader_;
    uint32_t width_;
    uint64_t left_;
};

}  // namespace qv::avc

#endif
