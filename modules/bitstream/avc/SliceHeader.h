/// \file
/// The slice header of H.264.
#ifndef QV_BITSTREAM_AVC_SLICEHEADER_H
#define QV_BITSTREAM_AVC_SLICEHEADER_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/DecRefPicMarking.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/avc/ParameterSets.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// slice_type modulo 5, H.264 Table 7-6.
enum class SliceType : uint32_t {
    P = 0,   ///< predicted from one list
    B = 1,   ///< predicted from two lists
    I = 2,   ///< intra
    SP = 3,  ///< switching, predicted
    SI = 4,  ///< switching, intra
};

/// The initial reference picture list of one direction, changed: ref_pic_list_modification(), H.264 7.3.3.1,
/// or ref_pic_list_mvc_modification(), H.7.3.3.1.1.
struct RefPicListModification {
    bool ref_pic_list_modification_flag;  ///< u(1), _l0 or _l1

    /// With the flag the commands up to and including the one that is 3, borrowed from the unit; see
    /// ModificationsOfPicNums.
    CodedBits modification_of_pic_nums;
};

/// One command of a list, Table 7-7 and Table H-1. An element that it does not have is 0.
struct ModificationOfPicNums {
    uint32_t modification_of_pic_nums_idc;  ///< ue(v), 0..2, with views 0..5 without 3
    uint32_t abs_diff_pic_num_minus1;       ///< ue(v), of 0 and 1
    uint32_t long_term_pic_num;             ///< ue(v), of 2
    uint32_t abs_diff_view_idx_minus1;      ///< ue(v), of 4 and 5
};

/// Reads the commands of a list, in order.
class ModificationsOfPicNums {
public:
    /// \param list  read without a fault; the unit that it was read from is borrowed
    explicit ModificationsOfPicNums(const RefPicListModification& list) noexcept
        : reader_(list.modification_of_pic_nums) {}

    /// Stores the next command. False at the one that is 3, which is the last, and when there is none.
    bool next(ModificationOfPicNums& modification) noexcept;

private:
    Reader reader_;
};

/// The weights of one reference picture, H.264 7.4.3.2. What is not present is inferred: a weight of 2 to the
/// power of the denominator, an offset of 0.
struct PredictionWeights {
    bool luma_weight_flag;     ///< u(1)
    int32_t luma_weight;       ///< se(v), -128..127
    int32_t luma_offset;       ///< se(v), -128..127
    bool chroma_weight_flag;   ///< u(1)
    int32_t chroma_weight[2];  ///< se(v), -128..127, Cb and Cr
    int32_t chroma_offset[2];  ///< se(v), -128..127, Cb and Cr
};

/// pred_weight_table(), H.264 7.3.3.2.
struct PredWeightTable {
    static constexpr uint32_t kMostReferences = 32;  ///< of one list

    uint32_t luma_log2_weight_denom;    ///< ue(v), 0..7
    uint32_t chroma_log2_weight_denom;  ///< ue(v), 0..7; 0 without chroma

    /// One for each entry of reference picture lists 0 and 1. Those beyond num_ref_idx_active_minus1 are not
    /// set.
    PredictionWeights weights[2][kMostReferences];
};

/// A slice unit up to the end of slice_header(), H.264 7.3.3: types 1, 2, 5 and 19, and types 20 and 21 with
/// an MVC header. An element that is not present is 0 unless its line says otherwise.
struct SliceHeader {
    NalUnitHeader header;           ///< the NAL unit header
    uint32_t first_mb_in_slice;     ///< ue(v)
    uint32_t slice_type;            ///< ue(v), 0..9; see typeOf()
    uint32_t pic_parameter_set_id;  ///< ue(v), 0..255
    uint32_t colour_plane_id;       ///< u(2), 0..2
    uint32_t frame_num;             ///< u(v)
    bool field_pic_flag;            ///< u(1)
    bool bottom_field_flag;         ///< u(1)
    uint32_t idr_pic_id;            ///< ue(v), 0..65535, of IDR pictures

    uint32_t pic_order_cnt_lsb;          ///< u(v), with pic_order_cnt_type 0
    int32_t delta_pic_order_cnt_bottom;  ///< se(v), with pic_order_cnt_type 0
    int32_t delta_pic_order_cnt[2];      ///< se(v), with pic_order_cnt_type 1

    uint32_t redundant_pic_cnt;             ///< ue(v), 0..127
    bool direct_spatial_mv_pred_flag;       ///< u(1), B slices
    bool num_ref_idx_active_override_flag;  ///< u(1), P, SP and B slices
    uint32_t num_ref_idx_active_minus1[2];  ///< ue(v), 0..31, frames 0..15; that of the PPS when not present
    RefPicListModification list_modification[2];  ///< of lists 0 and 1: P, SP and B slices

    DecRefPicMarking dec_ref_pic_marking;  ///< with a nal_ref_idc other than 0

    uint32_t cabac_init_idc;                 ///< ue(v), 0..2, CABAC
    int32_t slice_qp_delta;                  ///< se(v)
    bool sp_for_switch_flag;                 ///< u(1), SP slices
    int32_t slice_qs_delta;                  ///< se(v), SP and SI slices
    uint32_t disable_deblocking_filter_idc;  ///< ue(v), 0..2
    int32_t slice_alpha_c0_offset_div2;      ///< se(v), -6..6
    int32_t slice_beta_offset_div2;          ///< se(v), -6..6
    uint32_t slice_group_change_cycle;       ///< u(v), with slice_group_map_type 3, 4 and 5

    /// True when pred_weight_table is present.
    bool hasPredWeightTable;

    // Arrays come last: a read sets them as far as their counts go, not beyond.

    PredWeightTable pred_weight_table;  ///< with hasPredWeightTable
};

/// The type of a slice.
constexpr SliceType typeOf(const SliceHeader& slice) {
    return static_cast<SliceType>(slice.slice_type % 5);
}

/// True for slices of IDR pictures: IdrPicFlag, H.264 7.4.1 (7-1) and H.7.4.1.1.
constexpr bool isIdr(const NalUnitHeader& header) {
    return header.nal_unit_type == kNalSliceIdr ||
           (hasHeaderExtension(header.nal_unit_type) && !header.mvc.non_idr_flag);
}

/// Reads the header of a slice. What follows it is not looked at.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \param sets  the sets that the slice refers to
/// \return the record. A unit of another type, a set that is not there, data that ends early and a value out
///         of its range are faults; after one the record holds what was read before it.
Read<SliceHeader> readSliceHeader(Bytes unit, const ParameterSets& sets) noexcept;

/// As readSliceHeader(), and hands each element to \p visitor.
Read<SliceHeader> traceSliceHeader(Bytes unit, const ParameterSets& sets, TraceVisitor& visitor);

/// Writes a slice to the end of \p out: its header from a record, and what follows the header from a unit,
/// bit by bit, with cabac_alignment_one_bit up to the next byte boundary where slice data is CABAC. The
/// record of readSliceHeader() and its unit give the bytes of the unit.
///
/// \param slice  the header
/// \param sets   the sets that it refers to, and that the header of \p unit refers to
/// \param unit   one NAL unit from its header on; must not be part of \p out
/// \return the number of bytes, or the first fault of the header of \p unit or of \p slice
Written writeSlice(const SliceHeader& slice, const ParameterSets& sets, Bytes unit,
                   std::vector<uint8_t>& out);

}  // namespace qv::avc

#endif
