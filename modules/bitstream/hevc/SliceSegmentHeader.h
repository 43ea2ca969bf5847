/// \file
/// The slice segment header of H.265.
#ifndef QV_BITSTREAM_HEVC_SLICESEGMENTHEADER_H
#define QV_BITSTREAM_HEVC_SLICESEGMENTHEADER_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/hevc/NalUnitHeader.h"
#include "bitstream/hevc/ParameterSets.h"
#include "bitstream/hevc/ShortTermRefPicSet.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::hevc {

constexpr uint32_t kSliceB = 0;  ///< slice_type of slices that are predicted from two lists, Table 7-7
constexpr uint32_t kSliceP = 1;  ///< slice_type of slices that are predicted from one list
constexpr uint32_t kSliceI = 2;  ///< slice_type of intra slices

/// A long-term reference picture of a slice, H.265 7.4.7.1.
struct LongTermRefPic {
    uint32_t lt_idx_sps;              ///< u(v), of the first num_long_term_sps
    uint32_t poc_lsb_lt;              ///< u(v), of the others
    bool used_by_curr_pic_lt_flag;    ///< u(1), of the others
    bool delta_poc_msb_present_flag;  ///< u(1)
    uint32_t delta_poc_msb_cycle_lt;  ///< ue(v), with delta_poc_msb_present_flag
};

/// The weights of one reference picture, H.265 7.4.7.3. An element that is not present is 0.
struct PredictionWeights {
    bool luma_weight_flag;           ///< u(1)
    bool chroma_weight_flag;         ///< u(1)
    int32_t delta_luma_weight;       ///< se(v), -128..127
    int32_t luma_offset;             ///< se(v), -WpOffsetHalfRangeY..WpOffsetHalfRangeY - 1
    int32_t delta_chroma_weight[2];  ///< se(v), -128..127, Cb and Cr
    int32_t delta_chroma_offset[2];  ///< se(v), -4 * WpOffsetHalfRangeC..4 * WpOffsetHalfRangeC - 1
};

/// A slice segment of the base layer up to the end of slice_segment_header(), H.265 7.3.6.1. An element that
/// is not present is 0 unless its line says otherwise. Of a dependent slice segment the elements from
/// slice_reserved_flag to slice_loop_filter_across_slices_enabled_flag are those of the slice segment before.
struct SliceSegmentHeader {
    static constexpr uint32_t kMostLongTermRefPics = 16;  ///< of the decoded picture buffer, A.4.2
    static constexpr uint32_t kMostRefs = 15;  ///< the greatest num_ref_idx_l0_active_minus1, plus 1

    NalUnitHeader header;                  ///< the NAL unit header
    bool first_slice_segment_in_pic_flag;  ///< u(1)
    bool no_output_of_prior_pics_flag;     ///< u(1), IRAP pictures
    uint32_t slice_pic_parameter_set_id;   ///< ue(v), 0..63
    bool dependent_slice_segment_flag;     ///< u(1)
    uint32_t slice_segment_address;        ///< u(v), 0..PicSizeInCtbsY - 1

    uint32_t slice_reserved_flag;          ///< u(1), num_extra_slice_header_bits of them, flag j in bit j
    uint32_t slice_type;                   ///< ue(v), 0..2
    bool pic_output_flag;                  ///< u(1); 1 when not present
    uint32_t colour_plane_id;              ///< u(2), 0..2
    uint32_t slice_pic_order_cnt_lsb;      ///< u(v)
    bool short_term_ref_pic_set_sps_flag;  ///< u(1)
    uint32_t short_term_ref_pic_set_idx;   ///< u(v), below num_short_term_ref_pic_sets
    uint32_t num_long_term_sps;            ///< ue(v), 0..num_long_term_ref_pics_sps
    uint32_t num_long_term_pics;           ///< ue(v)
    bool slice_temporal_mvp_enabled_flag;  ///< u(1)
    bool slice_sao_luma_flag;              ///< u(1)
    bool slice_sao_chroma_flag;            ///< u(1)

    bool num_ref_idx_active_override_flag;   ///< u(1), P and B slices
    uint32_t num_ref_idx_active_minus1[2];   ///< ue(v), 0..14; that of the PPS when not present
    bool ref_pic_list_modification_flag[2];  ///< u(1), _l0 and _l1
    bool mvd_l1_zero_flag;                   ///< u(1), B slices
    bool cabac_init_flag;                    ///< u(1)
    bool collocated_from_l0_flag;            ///< u(1); 1 when not present in P and B slices
    uint32_t collocated_ref_idx;             ///< ue(v)
    bool hasPredWeightTable;                 ///< true when pred_weight_table() is present
    uint32_t luma_log2_weight_denom;         ///< ue(v), 0..7
    int32_t delta_chroma_log2_weight_denom;  ///< se(v), -luma_log2_weight_denom..7 - luma_log2_weight_denom
    uint32_t five_minus_max_num_merge_cand;  ///< ue(v), 0..4
    bool use_integer_mv_flag;                ///< u(1)

    int32_t slice_qp_delta;                             ///< se(v)
    int32_t slice_cb_qp_offset;                         ///< se(v), -12..12
    int32_t slice_cr_qp_offset;                         ///< se(v), -12..12
    int32_t slice_act_y_qp_offset;                      ///< se(v), -12..12
    int32_t slice_act_cb_qp_offset;                     ///< se(v), -12..12
    int32_t slice_act_cr_qp_offset;                     ///< se(v), -12..12
    bool cu_chroma_qp_offset_enabled_flag;              ///< u(1)
    bool deblocking_filter_override_flag;               ///< u(1)
    bool slice_deblocking_filter_disabled_flag;         ///< u(1); that of the PPS when not present
    int32_t slice_beta_offset_div2;                     ///< se(v), -6..6; that of the PPS when not present
    int32_t slice_tc_offset_div2;                       ///< se(v), -6..6; that of the PPS when not present
    bool slice_loop_filter_across_slices_enabled_flag;  ///< u(1); that of the PPS when not present

    uint32_t num_entry_point_offsets;  ///< ue(v)
    uint32_t offset_len_minus1;        ///< ue(v), 0..31

    /// entry_point_offset_minus1, u(v) of offset_len_minus1 + 1 bits each, borrowed from the unit.
    CodedBits entry_point_offset_minus1;

    uint32_t slice_segment_header_extension_length;  ///< ue(v), 0..256

    /// slice_segment_header_extension_data_byte, borrowed from the unit.
    CodedBits slice_segment_header_extension_data_byte;

    // Arrays come last: a read sets them as far as their counts go, not beyond.

    ShortTermRefPicSet st_ref_pic_set;  ///< without short_term_ref_pic_set_sps_flag, not of IDR pictures

    /// num_long_term_sps + num_long_term_pics of them.
    LongTermRefPic long_term_ref_pics[kMostLongTermRefPics];

    uint32_t list_entry[2][kMostRefs];        ///< u(v), with ref_pic_list_modification_flag, of each entry
    PredictionWeights weights[2][kMostRefs];  ///< with hasPredWeightTable, of each entry
};

/// Reads the header of a slice segment. What follows it is not looked at.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \param sets  the sets that the slice segment refers to
/// \return the record. A unit of another type or of a layer above 0, a set that is not there, data that ends
///         early and a value out of its range are faults; after one the record holds what was read before it.
Read<SliceSegmentHeader> readSliceSegmentHeader(Bytes unit, const ParameterSets& sets) noexcept;

/// As readSliceSegmentHeader(), and hands each element to \p visitor.
Read<SliceSegmentHeader> traceSliceSegmentHeader(Bytes unit, const ParameterSets& sets,
                                                 TraceVisitor& visitor);

/// Writes a slice segment to the end of \p out: its header from a record, and what follows the header from a
/// unit, byte by byte. The record of readSliceSegmentHeader() and its unit give the bytes of the unit.
///
/// \param slice  the header
/// \param sets   the sets that it refers to, and that the header of \p unit refers to
/// \param unit   one NAL unit from its header on; must not be part of \p out
/// \return the number of bytes, or the first fault of the header of \p unit or of \p slice
Written writeSliceSegment(const SliceSegmentHeader& slice, const ParameterSets& sets, Bytes unit,
                          std::vector<uint8_t>& out);

}  // namespace qv::hevc

#endif
