// slice_segment_header() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_SLICESEGMENTHEADERSYNTAX_H
#define QV_BITSTREAM_HEVC_SLICESEGMENTHEADERSYNTAX_H

#include <algorithm>

#include "bitstream/hevc/BlockSizes.h"
#include "bitstream/hevc/NalUnitHeaderSyntax.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/ShortTermRefPicSetSyntax.h"
#include "bitstream/hevc/SliceSegmentHeader.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// Lists that the slices of a type have.
constexpr uint32_t listsOf(uint32_t slice_type) {
    return slice_type == kSliceB ? 2 : slice_type == kSliceP ? 1 : 0;
}

// The sets of a slice segment.
struct SliceSets {
    const Pps& pps;
    const Sps& sps;
};

// Bits of a number below count, at most 32: an SPS with a fault may have a picture of any size.
constexpr uint32_t widthOfNumberBelow(uint64_t count) {
    return lesser(detail::ceilLog2(count), 32);
}

// The greatest index of count entries.
constexpr uint32_t lastOf(uint64_t count) {
    return count == 0 ? 0 : static_cast<uint32_t>(std::min<uint64_t>(count - 1, kMostUe));
}

constexpr uint32_t chromaArrayTypeOf(const Sps& sps) {
    return sps.separate_colour_plane_flag ? 0 : sps.chroma_format_idc;
}

// --- Reference pictures ---

template <class Syntax>
void long_term_ref_pic(Syntax& s, const Sps& sps, uint32_t i, bool ofSps, LongTermRefPic& pic) {
    s.infer(pic.lt_idx_sps, 0);
    s.infer(pic.poc_lsb_lt, 0);
    s.infer(pic.used_by_curr_pic_lt_flag, false);
    if (!ofSps) {
        s.u(sps.log2_max_pic_order_cnt_lsb_minus4 + 4, at("poc_lsb_lt", i), pic.poc_lsb_lt);
        s.flag(at("used_by_curr_pic_lt_flag", i), pic.used_by_curr_pic_lt_flag);
    } else if (sps.num_long_term_ref_pics_sps > 1) {
        s.u(detail::ceilLog2(sps.num_long_term_ref_pics_sps), at("lt_idx_sps", i), pic.lt_idx_sps, 0,
            sps.num_long_term_ref_pics_sps - 1);
    } else {
        pic.lt_idx_sps = 0;
    }
    s.flag(at("delta_poc_msb_present_flag", i), pic.delta_poc_msb_present_flag);
    s.infer(pic.delta_poc_msb_cycle_lt, 0);
    if (pic.delta_poc_msb_present_flag) {
        s.ue(at("delta_poc_msb_cycle_lt", i), pic.delta_poc_msb_cycle_lt);
    }
}

template <class Syntax>
void long_term_ref_pics(Syntax& s, const Sps& sps, SliceSegmentHeader& slice) {
    constexpr uint32_t kMost = SliceSegmentHeader::kMostLongTermRefPics;
    s.infer(slice.num_long_term_sps, 0);
    if (sps.num_long_term_ref_pics_sps > 0) {
        s.ue("num_long_term_sps", slice.num_long_term_sps, 0, lesser(sps.num_long_term_ref_pics_sps, kMost));
    } else {
        slice.num_long_term_sps = 0;
    }
    s.ue("num_long_term_pics", slice.num_long_term_pics, 0, kMost - slice.num_long_term_sps);
    for (uint32_t i = 0; i < slice.num_long_term_sps + slice.num_long_term_pics; ++i) {
        long_term_ref_pic(s, sps, i, i < slice.num_long_term_sps, slice.long_term_ref_pics[i]);
    }
}

// The set of a slice that is one of the SPS: (7-52).
template <class Syntax>
void short_term_ref_pic_set(Syntax& s, const Sps& sps, SliceSegmentHeader& slice) {
    const uint32_t sets = sps.num_short_term_ref_pic_sets;
    if (sets == 0) {
        s.flag("short_term_ref_pic_set_sps_flag", slice.short_term_ref_pic_set_sps_flag, false);
    } else {
        s.flag("short_term_ref_pic_set_sps_flag", slice.short_term_ref_pic_set_sps_flag);
    }
    if (!slice.short_term_ref_pic_set_sps_flag) {
        st_ref_pic_set(s, sps.st_ref_pic_set, sets, sets, slice.st_ref_pic_set);
    } else if (sets > 1) {
        s.u(detail::ceilLog2(sets), "short_term_ref_pic_set_idx", slice.short_term_ref_pic_set_idx, 0,
            sets - 1);
    } else {
        slice.short_term_ref_pic_set_idx = 0;
    }
}

template <class Syntax>
void slice_reference_pictures(Syntax& s, const Sps& sps, SliceSegmentHeader& slice) {
    s.u(sps.log2_max_pic_order_cnt_lsb_minus4 + 4, "slice_pic_order_cnt_lsb", slice.slice_pic_order_cnt_lsb);
    short_term_ref_pic_set(s, sps, slice);
    if (sps.long_term_ref_pics_present_flag) {
        long_term_ref_pics(s, sps, slice);
    } else {
        slice.num_long_term_sps = 0;
        slice.num_long_term_pics = 0;
    }
    if (sps.sps_temporal_mvp_enabled_flag) {
        s.flag("slice_temporal_mvp_enabled_flag", slice.slice_temporal_mvp_enabled_flag);
    } else {
        slice.slice_temporal_mvp_enabled_flag = false;
    }
}

// NumPicTotalCurr, (7-55): the pictures that the current one may be predicted from.
inline uint32_t numPicTotalCurr(const SliceSets& sets, const SliceSegmentHeader& slice) {
    uint32_t count = sets.pps.scc.pps_curr_pic_ref_enabled_flag ? 1 : 0;
    if (isIdr(slice.header.nal_unit_type)) {
        return count;
    }
    const ShortTermRefPicSet& set = slice.short_term_ref_pic_set_sps_flag
                                        ? sets.sps.st_ref_pic_set[slice.short_term_ref_pic_set_idx]
                                        : slice.st_ref_pic_set;
    for (uint32_t i = 0; i < set.NumNegativePics; ++i) {
        count += set.UsedByCurrPicS0[i] ? 1 : 0;
    }
    for (uint32_t i = 0; i < set.NumPositivePics; ++i) {
        count += set.UsedByCurrPicS1[i] ? 1 : 0;
    }
    for (uint32_t i = 0; i < slice.num_long_term_sps + slice.num_long_term_pics; ++i) {
        const LongTermRefPic& pic = slice.long_term_ref_pics[i];
        const bool isUsed = i < slice.num_long_term_sps
                                ? sets.sps.used_by_curr_pic_lt_sps_flag[pic.lt_idx_sps]
                                : pic.used_by_curr_pic_lt_flag;
        count += isUsed ? 1 : 0;
    }
    return count;
}

// ref_pic_lists_modification(), 7.3.6.2
template <class Syntax>
void ref_pic_lists_modification(Syntax& s, uint32_t NumPicTotalCurr, SliceSegmentHeader& slice) {
    static constexpr Structure kStructure = {"ref_pic_lists_modification()", "7.3.6.2"};
    static constexpr const char* kFlags[2] = {"ref_pic_list_modification_flag_l0",
                                              "ref_pic_list_modification_flag_l1"};
    static constexpr const char* kEntries[2] = {"list_entry_l0", "list_entry_l1"};
    const Within<Syntax> within(s, kStructure);
    for (uint32_t x = 0; x < listsOf(slice.slice_type); ++x) {
        s.flag(kFlags[x], slice.ref_pic_list_modification_flag[x]);
        for (uint32_t i = 0;
             slice.ref_pic_list_modification_flag[x] && i <= slice.num_ref_idx_active_minus1[x]; ++i) {
            s.u(detail::ceilLog2(NumPicTotalCurr), at(kEntries[x], i), slice.list_entry[x][i], 0,
                NumPicTotalCurr - 1);
        }
    }
}

// --- Weights ---

// The names of the elements of a list.
struct WeightNames {
    const char* luma_weight_flag;
    const char* chroma_weight_flag;
    const char* delta_luma_weight;
    const char* luma_offset;
    const char* delta_chroma_weight;
    const char* delta_chroma_offset;
};

// WpOffsetHalfRangeY or WpOffsetHalfRangeC, (7-37) and (7-38).
constexpr int32_t halfRangeOfOffset(const Sps& sps, uint32_t bit_depth_minus8) {
    return 1 << (sps.range.high_precision_offsets_enabled_flag ? bit_depth_minus8 + 7 : 7);
}

template <class Syntax>
void prediction_weights(Syntax& s, const Sps& sps, const WeightNames& names, uint32_t i,
                        PredictionWeights& weights) {
    const int32_t halfRangeY = halfRangeOfOffset(sps, sps.bit_depth_luma_minus8);
    const int32_t halfRangeC = 4 * halfRangeOfOffset(sps, sps.bit_depth_chroma_minus8);
    s.infer(weights.delta_luma_weight, 0);
    s.infer(weights.luma_offset, 0);
    if (weights.luma_weight_flag) {
        s.se(at(names.delta_luma_weight, i), weights.delta_luma_weight, -128, 127);
        s.se(at(names.luma_offset, i), weights.luma_offset, -halfRangeY, halfRangeY - 1);
    }
    for (uint32_t j = 0; j < 2; ++j) {
        s.infer(weights.delta_chroma_weight[j], 0);
        s.infer(weights.delta_chroma_offset[j], 0);
        if (weights.chroma_weight_flag) {
            s.se(at(names.delta_chroma_weight, i, j), weights.delta_chroma_weight[j], -128, 127);
            s.se(at(names.delta_chroma_offset, i, j), weights.delta_chroma_offset[j], -halfRangeC,
                 halfRangeC - 1);
        }
    }
}

// pred_weight_table(), 7.3.6.3. Every entry has its flags: an entry that is the current picture, with
// pps_curr_pic_ref_enabled_flag, would have none, which the lists alone decide.
template <class Syntax>
void pred_weight_table(Syntax& s, const Sps& sps, SliceSegmentHeader& slice) {
    static constexpr Structure kStructure = {"pred_weight_table()", "7.3.6.3"};
    static constexpr WeightNames kNames[2] = {
        {"luma_weight_l0_flag", "chroma_weight_l0_flag", "delta_luma_weight_l0", "luma_offset_l0",
         "delta_chroma_weight_l0", "delta_chroma_offset_l0"},
        {"luma_weight_l1_flag", "chroma_weight_l1_flag", "delta_luma_weight_l1", "luma_offset_l1",
         "delta_chroma_weight_l1", "delta_chroma_offset_l1"}};
    const Within<Syntax> within(s, kStructure);
    const bool hasChroma = chromaArrayTypeOf(sps) != 0;
    s.ue("luma_log2_weight_denom", slice.luma_log2_weight_denom, 0, 7);
    if (hasChroma) {
        const auto denom = static_cast<int32_t>(slice.luma_log2_weight_denom);
        s.se("delta_chroma_log2_weight_denom", slice.delta_chroma_log2_weight_denom, -denom, 7 - denom);
    }
    for (uint32_t x = 0; x < listsOf(slice.slice_type); ++x) {
        PredictionWeights* const weights = slice.weights[x];
        const uint32_t last = slice.num_ref_idx_active_minus1[x];
        for (uint32_t i = 0; i <= last; ++i) {
            s.flag(at(kNames[x].luma_weight_flag, i), weights[i].luma_weight_flag);
        }
        for (uint32_t i = 0; i <= last; ++i) {
            if (hasChroma) {
                s.flag(at(kNames[x].chroma_weight_flag, i), weights[i].chroma_weight_flag);
            } else {
                weights[i].chroma_weight_flag = false;
            }
        }
        for (uint32_t i = 0; i <= last; ++i) {
            prediction_weights(s, sps, kNames[x], i, weights[i]);
        }
    }
}

// --- Parts of the header ---

// num_ref_idx_l0_active_minus1 or num_ref_idx_l1_active_minus1. Without an override a record to be written
// may hold any number.
template <class Syntax>
void list_length(Syntax& s, const Pps& pps, uint32_t x, SliceSegmentHeader& slice) {
    static constexpr const char* kNames[2] = {"num_ref_idx_l0_active_minus1", "num_ref_idx_l1_active_minus1"};
    const uint32_t defaults[2] = {pps.num_ref_idx_l0_default_active_minus1,
                                  pps.num_ref_idx_l1_default_active_minus1};
    if (slice.num_ref_idx_active_override_flag) {
        s.ue(kNames[x], slice.num_ref_idx_active_minus1[x], 0, SliceSegmentHeader::kMostRefs - 1);
    } else {
        slice.num_ref_idx_active_minus1[x] = defaults[x];
    }
}

template <class Syntax>
void collocated_picture(Syntax& s, SliceSegmentHeader& slice) {
    s.infer(slice.collocated_from_l0_flag, true);
    if (slice.slice_type == kSliceB) {
        s.flag("collocated_from_l0_flag", slice.collocated_from_l0_flag);
    }
    const uint32_t x = slice.slice_type != kSliceB || slice.collocated_from_l0_flag ? 0 : 1;
    if (slice.num_ref_idx_active_minus1[x] > 0) {
        s.ue("collocated_ref_idx", slice.collocated_ref_idx, 0, slice.num_ref_idx_active_minus1[x]);
    }
}

// What P and B slices are predicted from.
template <class Syntax>
void slice_prediction(Syntax& s, const SliceSets& sets, SliceSegmentHeader& slice) {
    const bool isB = slice.slice_type == kSliceB;
    s.flag("num_ref_idx_active_override_flag", slice.num_ref_idx_active_override_flag);
    for (uint32_t x = 0; x < listsOf(slice.slice_type); ++x) {
        list_length(s, sets.pps, x, slice);
    }
    const uint32_t NumPicTotalCurr = numPicTotalCurr(sets, slice);
    if (sets.pps.lists_modification_present_flag && NumPicTotalCurr > 1) {
        ref_pic_lists_modification(s, NumPicTotalCurr, slice);
    }
    if (isB) {
        s.flag("mvd_l1_zero_flag", slice.mvd_l1_zero_flag);
    }
    if (sets.pps.cabac_init_present_flag) {
        s.flag("cabac_init_flag", slice.cabac_init_flag);
    }
    s.infer(slice.collocated_from_l0_flag, true);
    if (slice.slice_temporal_mvp_enabled_flag) {
        collocated_picture(s, slice);
    }
    slice.hasPredWeightTable = isB ? sets.pps.weighted_bipred_flag : sets.pps.weighted_pred_flag;
    if (slice.hasPredWeightTable) {
        pred_weight_table(s, sets.sps, slice);
    }
    s.ue("five_minus_max_num_merge_cand", slice.five_minus_max_num_merge_cand, 0, 4);
    if (sets.sps.scc.motion_vector_resolution_control_idc == 2) {
        s.flag("use_integer_mv_flag", slice.use_integer_mv_flag);
    }
}

template <class Syntax>
void slice_qp(Syntax& s, const Pps& pps, SliceSegmentHeader& slice) {
    s.se("slice_qp_delta", slice.slice_qp_delta);
    if (pps.pps_slice_chroma_qp_offsets_present_flag) {
        s.se("slice_cb_qp_offset", slice.slice_cb_qp_offset, -12, 12);
        s.se("slice_cr_qp_offset", slice.slice_cr_qp_offset, -12, 12);
    }
    if (pps.scc.pps_slice_act_qp_offsets_present_flag) {
        s.se("slice_act_y_qp_offset", slice.slice_act_y_qp_offset, -12, 12);
        s.se("slice_act_cb_qp_offset", slice.slice_act_cb_qp_offset, -12, 12);
        s.se("slice_act_cr_qp_offset", slice.slice_act_cr_qp_offset, -12, 12);
    }
    if (pps.range.chroma_qp_offset_list_enabled_flag) {
        s.flag("cu_chroma_qp_offset_enabled_flag", slice.cu_chroma_qp_offset_enabled_flag);
    }
}

template <class Syntax>
void slice_filters(Syntax& s, const Pps& pps, SliceSegmentHeader& slice) {
    s.infer(slice.deblocking_filter_override_flag, false);
    if (pps.deblocking_filter_override_enabled_flag) {
        s.flag("deblocking_filter_override_flag", slice.deblocking_filter_override_flag);
    } else {
        slice.deblocking_filter_override_flag = false;
    }
    bool disabled = pps.pps_deblocking_filter_disabled_flag;
    s.infer(slice.slice_deblocking_filter_disabled_flag, disabled);
    s.infer(slice.slice_beta_offset_div2, pps.pps_beta_offset_div2);
    s.infer(slice.slice_tc_offset_div2, pps.pps_tc_offset_div2);
    if (slice.deblocking_filter_override_flag) {
        s.flag("slice_deblocking_filter_disabled_flag", slice.slice_deblocking_filter_disabled_flag);
        disabled = slice.slice_deblocking_filter_disabled_flag;
        if (!disabled) {
            s.se("slice_beta_offset_div2", slice.slice_beta_offset_div2, -6, 6);
            s.se("slice_tc_offset_div2", slice.slice_tc_offset_div2, -6, 6);
        }
    }
    s.infer(slice.slice_loop_filter_across_slices_enabled_flag,
            pps.pps_loop_filter_across_slices_enabled_flag);
    if (pps.pps_loop_filter_across_slices_enabled_flag &&
        (slice.slice_sao_luma_flag || slice.slice_sao_chroma_flag || !disabled)) {
        s.flag("slice_loop_filter_across_slices_enabled_flag",
               slice.slice_loop_filter_across_slices_enabled_flag);
    }
}

// What a dependent slice segment takes from the one before.
template <class Syntax>
void independent_slice_segment(Syntax& s, const SliceSets& sets, SliceSegmentHeader& slice) {
    const Sps& sps = sets.sps;
    s.flags(sets.pps.num_extra_slice_header_bits, "slice_reserved_flag", slice.slice_reserved_flag);
    s.ue("slice_type", slice.slice_type, 0, 2);
    s.infer(slice.pic_output_flag, true);
    if (sets.pps.output_flag_present_flag) {
        s.flag("pic_output_flag", slice.pic_output_flag);
    }
    if (sps.separate_colour_plane_flag) {
        s.u(2, "colour_plane_id", slice.colour_plane_id, 0, 2);
    }
    if (!isIdr(slice.header.nal_unit_type)) {
        slice_reference_pictures(s, sps, slice);
    } else {
        slice.slice_temporal_mvp_enabled_flag = false;
    }
    if (sps.sample_adaptive_offset_enabled_flag) {
        s.flag("slice_sao_luma_flag", slice.slice_sao_luma_flag);
        if (chromaArrayTypeOf(sps) != 0) {
            s.flag("slice_sao_chroma_flag", slice.slice_sao_chroma_flag);
        } else {
            slice.slice_sao_chroma_flag = false;
        }
    } else {
        slice.slice_sao_luma_flag = false;
        slice.slice_sao_chroma_flag = false;
    }
    // The pictures are counted from sets that a read with a fault leaves open.
    if (listsOf(slice.slice_type) > 0 && !s.failed()) {
        slice_prediction(s, sets, slice);
    }
    slice_qp(s, sets.pps, slice);
    slice_filters(s, sets.pps, slice);
}

// The greatest num_entry_point_offsets, 7.4.7.1.
inline uint32_t mostEntryPointOffsets(const SliceSets& sets) {
    const uint64_t columns = uint64_t{sets.pps.num_tile_columns_minus1} + 1;
    const uint64_t rows = sets.pps.entropy_coding_sync_enabled_flag
                              ? blockSizesOf(sets.sps).PicHeightInCtbsY
                              : uint64_t{sets.pps.num_tile_rows_minus1} + 1;
    return lastOf(columns * rows);
}

template <class Syntax>
void entry_points(Syntax& s, const SliceSets& sets, SliceSegmentHeader& slice) {
    s.ue("num_entry_point_offsets", slice.num_entry_point_offsets, 0, mostEntryPointOffsets(sets));
    if (slice.num_entry_point_offsets > 0) {
        s.ue("offset_len_minus1", slice.offset_len_minus1, 0, 31);
        s.keep(slice.entry_point_offset_minus1, [&slice](auto& in) {
            uint32_t entry_point_offset_minus1 = 0;
            for (uint32_t i = 0; i < slice.num_entry_point_offsets && !in.failed(); ++i) {
                in.u(slice.offset_len_minus1 + 1, at("entry_point_offset_minus1", i),
                     entry_point_offset_minus1);
            }
        });
    }
}

template <class Syntax>
void slice_segment_header_extension(Syntax& s, SliceSegmentHeader& slice) {
    s.ue("slice_segment_header_extension_length", slice.slice_segment_header_extension_length, 0, 256);
    s.keep(slice.slice_segment_header_extension_data_byte, [&slice](auto& in) {
        uint32_t byte = 0;
        for (uint32_t i = 0; i < slice.slice_segment_header_extension_length; ++i) {
            in.u(8, at("slice_segment_header_extension_data_byte", i), byte);
        }
    });
}

// byte_alignment(), 7.3.2.14
template <class Syntax>
void byte_alignment(Syntax& s) {
    static constexpr Structure kStructure = {"byte_alignment()", "7.3.2.14"};
    const Within<Syntax> within(s, kStructure);
    s.f(1, "alignment_bit_equal_to_one", 1);
    while (!s.failed() && !s.byte_aligned()) {
        s.f(1, "alignment_bit_equal_to_zero", 0);
    }
}

// Where the slice segment is in its picture.
template <class Syntax>
void slice_segment_place(Syntax& s, const SliceSets& sets, SliceSegmentHeader& slice) {
    s.infer(slice.dependent_slice_segment_flag, false);
    if (slice.first_slice_segment_in_pic_flag || !sets.pps.dependent_slice_segments_enabled_flag) {
        slice.dependent_slice_segment_flag = false;
    } else {
        s.flag("dependent_slice_segment_flag", slice.dependent_slice_segment_flag);
    }
    if (!slice.first_slice_segment_in_pic_flag) {
        const uint64_t ctbs = blockSizesOf(sets.sps).PicSizeInCtbsY;
        s.u(widthOfNumberBelow(ctbs), "slice_segment_address", slice.slice_segment_address, 0, lastOf(ctbs));
    }
}

// slice_segment_header(), 7.3.6.1
template <class Syntax>
void slice_segment_header(Syntax& s, const ParameterSets& all, SliceSegmentHeader& slice) {
    static constexpr Structure kStructure = {"slice_segment_header()", "7.3.6.1"};
    const Within<Syntax> within(s, kStructure);
    s.flag("first_slice_segment_in_pic_flag", slice.first_slice_segment_in_pic_flag);
    if (isIrap(slice.header.nal_unit_type)) {
        s.flag("no_output_of_prior_pics_flag", slice.no_output_of_prior_pics_flag);
    }
    s.ue("slice_pic_parameter_set_id", slice.slice_pic_parameter_set_id, 0, 63);
    const Pps* const pps = all.pps(slice.slice_pic_parameter_set_id);
    if (pps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "slice_pic_parameter_set_id", slice.slice_pic_parameter_set_id);
        return;
    }
    const Sps* const sps = all.sps(pps->pps_seq_parameter_set_id);
    if (sps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "pps_seq_parameter_set_id", pps->pps_seq_parameter_set_id);
        return;
    }
    const SliceSets sets = {*pps, *sps};
    slice_segment_place(s, sets, slice);
    if (!slice.dependent_slice_segment_flag) {
        independent_slice_segment(s, sets, slice);
    }
    if (pps->tiles_enabled_flag || pps->entropy_coding_sync_enabled_flag) {
        entry_points(s, sets, slice);
    }
    if (pps->slice_segment_header_extension_present_flag) {
        slice_segment_header_extension(s, slice);
    }
    byte_alignment(s);
}

// A unit of the base layer up to the end of its slice_segment_header().
template <class Syntax>
void slice_segment_unit(Syntax& s, const ParameterSets& sets, SliceSegmentHeader& slice) {
    nal_unit_header(s, slice.header);
    if (!isSlice(slice.header.nal_unit_type) || slice.header.nuh_layer_id != 0) {
        s.fail(FaultKind::OtherUnit, "nal_unit_type", slice.header.nal_unit_type);
    }
    s.rbsp();
    slice_segment_header(s, sets, slice);
}

}  // namespace qv::hevc

#endif
