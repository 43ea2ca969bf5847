// slice_header() of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_SLICEHEADERSYNTAX_H
#define QV_BITSTREAM_AVC_SLICEHEADERSYNTAX_H

#include <algorithm>

#include "bitstream/avc/DecRefPicMarkingSyntax.h"
#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/avc/PictureFormat.h"
#include "bitstream/avc/SliceHeader.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// Lists that the slices of a type have: P and SP one, B two.
constexpr uint32_t listsOf(SliceType type) {
    return type == SliceType::B ? 2 : type == SliceType::P || type == SliceType::SP ? 1 : 0;
}

// The sets of a slice.
struct SliceSets {
    const Pps& pps;
    const SpsData& sps;
};

// --- Parts ---

template <class Syntax>
void modification_of_pic_nums(Syntax& s, bool hasViews, ModificationOfPicNums& modification) {
    constexpr uint32_t kLast = 3;
    s.ue("modification_of_pic_nums_idc", modification.modification_of_pic_nums_idc, 0, hasViews ? 5 : kLast);
    switch (modification.modification_of_pic_nums_idc) {
        case 0:
        case 1:
            s.ue("abs_diff_pic_num_minus1", modification.abs_diff_pic_num_minus1);
            break;
        case 2:
            s.ue("long_term_pic_num", modification.long_term_pic_num);
            break;
        case 4:
        case 5:
            s.ue("abs_diff_view_idx_minus1", modification.abs_diff_view_idx_minus1);
            break;
        default:
            break;
    }
}

template <class Syntax>
void list_modification(Syntax& s, const char* flag, bool hasViews, RefPicListModification& list) {
    s.flag(flag, list.ref_pic_list_modification_flag);
    if (list.ref_pic_list_modification_flag) {
        s.keep(list.modification_of_pic_nums, [hasViews](auto& in) {
            ModificationOfPicNums modification = {};
            do {
                modification_of_pic_nums(in, hasViews, modification);
            } while (modification.modification_of_pic_nums_idc != 3 && !in.failed());
        });
    }
}

// ref_pic_list_modification(), 7.3.3.1, or ref_pic_list_mvc_modification(), H.7.3.3.1.1
template <class Syntax>
void ref_pic_list_modification(Syntax& s, SliceHeader& slice) {
    static constexpr Structure kOfFrames = {"ref_pic_list_modification()", "7.3.3.1"};
    static constexpr Structure kOfViews = {"ref_pic_list_mvc_modification()", "H.7.3.3.1.1"};
    static constexpr const char* kFlags[2] = {"ref_pic_list_modification_flag_l0",
                                              "ref_pic_list_modification_flag_l1"};
    const bool hasViews = hasHeaderExtension(slice.header.nal_unit_type);
    const Within<Syntax> within(s, hasViews ? kOfViews : kOfFrames);
    for (uint32_t x = 0; x < listsOf(typeOf(slice)); ++x) {
        list_modification(s, kFlags[x], hasViews, slice.list_modification[x]);
    }
}

// The names of the elements of a list.
struct WeightNames {
    const char* luma_weight_flag;
    const char* luma_weight;
    const char* luma_offset;
    const char* chroma_weight_flag;
    const char* chroma_weight;
    const char* chroma_offset;
};

constexpr int32_t kLeastWeight = -128;
constexpr int32_t kMostWeight = 127;

template <class Syntax>
void prediction_weights(Syntax& s, const WeightNames& names, uint32_t i, bool hasChroma,
                        const PredWeightTable& table, PredictionWeights& weights) {
    s.flag(at(names.luma_weight_flag, i), weights.luma_weight_flag);
    s.infer(weights.luma_weight, 1 << table.luma_log2_weight_denom);
    s.infer(weights.luma_offset, 0);
    if (weights.luma_weight_flag) {
        s.se(at(names.luma_weight, i), weights.luma_weight, kLeastWeight, kMostWeight);
        s.se(at(names.luma_offset, i), weights.luma_offset, kLeastWeight, kMostWeight);
    }
    s.infer(weights.chroma_weight_flag, false);
    if (hasChroma) {
        s.flag(at(names.chroma_weight_flag, i), weights.chroma_weight_flag);
    }
    for (uint32_t j = 0; j < 2; ++j) {
        s.infer(weights.chroma_weight[j], 1 << table.chroma_log2_weight_denom);
        s.infer(weights.chroma_offset[j], 0);
        if (hasChroma && weights.chroma_weight_flag) {
            s.se(at(names.chroma_weight, i, j), weights.chroma_weight[j], kLeastWeight, kMostWeight);
            s.se(at(names.chroma_offset, i, j), weights.chroma_offset[j], kLeastWeight, kMostWeight);
        }
    }
}

// pred_weight_table(), 7.3.3.2
template <class Syntax>
void pred_weight_table(Syntax& s, const SpsData& sps, const SliceHeader& slice, PredWeightTable& table) {
    static constexpr Structure kStructure = {"pred_weight_table()", "7.3.3.2"};
    static constexpr WeightNames kNames[2] = {
        {"luma_weight_l0_flag", "luma_weight_l0", "luma_offset_l0", "chroma_weight_l0_flag",
         "chroma_weight_l0", "chroma_offset_l0"},
        {"luma_weight_l1_flag", "luma_weight_l1", "luma_offset_l1", "chroma_weight_l1_flag",
         "chroma_weight_l1", "chroma_offset_l1"}};
    const Within<Syntax> within(s, kStructure);
    const bool hasChroma = chromaArrayType(sps) != 0;
    s.ue("luma_log2_weight_denom", table.luma_log2_weight_denom, 0, 7);
    s.infer(table.chroma_log2_weight_denom, 0);
    if (hasChroma) {
        s.ue("chroma_log2_weight_denom", table.chroma_log2_weight_denom, 0, 7);
    }
    for (uint32_t x = 0; x < listsOf(typeOf(slice)); ++x) {
        for (uint32_t i = 0; i <= slice.num_ref_idx_active_minus1[x]; ++i) {
            prediction_weights(s, kNames[x], i, hasChroma, table, table.weights[x][i]);
        }
    }
}

// Which field or frame of the sequence, and its order.
template <class Syntax>
void slice_picture(Syntax& s, const SliceSets& sets, SliceHeader& slice) {
    if (sets.sps.separate_colour_plane_flag) {
        s.u(2, "colour_plane_id", slice.colour_plane_id, 0, 2);
    }
    s.u(sets.sps.log2_max_frame_num_minus4 + 4, "frame_num", slice.frame_num);
    if (!sets.sps.frame_mbs_only_flag) {
        s.flag("field_pic_flag", slice.field_pic_flag);
        if (slice.field_pic_flag) {
            s.flag("bottom_field_flag", slice.bottom_field_flag);
        }
    }
    if (isIdr(slice.header)) {
        s.ue("idr_pic_id", slice.idr_pic_id, 0, 65535);
    }
    const bool hasBottom = sets.pps.bottom_field_pic_order_in_frame_present_flag && !slice.field_pic_flag;
    if (sets.sps.pic_order_cnt_type == 0) {
        s.u(sets.sps.log2_max_pic_order_cnt_lsb_minus4 + 4, "pic_order_cnt_lsb", slice.pic_order_cnt_lsb);
        if (hasBottom) {
            s.se("delta_pic_order_cnt_bottom", slice.delta_pic_order_cnt_bottom);
        }
    }
    if (sets.sps.pic_order_cnt_type == 1 && !sets.sps.delta_pic_order_always_zero_flag) {
        s.se(at("delta_pic_order_cnt", 0), slice.delta_pic_order_cnt[0]);
        if (hasBottom) {
            s.se(at("delta_pic_order_cnt", 1), slice.delta_pic_order_cnt[1]);
        }
    }
    if (sets.pps.redundant_pic_cnt_present_flag) {
        s.ue("redundant_pic_cnt", slice.redundant_pic_cnt, 0, 127);
    }
}

// num_ref_idx_l0_active_minus1 or num_ref_idx_l1_active_minus1. Without an override a record to be written
// may hold any number.
template <class Syntax>
void list_length(Syntax& s, const SliceSets& sets, uint32_t x, SliceHeader& slice) {
    static constexpr const char* kNames[2] = {"num_ref_idx_l0_active_minus1", "num_ref_idx_l1_active_minus1"};
    const uint32_t defaults[2] = {sets.pps.num_ref_idx_l0_default_active_minus1,
                                  sets.pps.num_ref_idx_l1_default_active_minus1};
    if (slice.num_ref_idx_active_override_flag) {
        s.ue(kNames[x], slice.num_ref_idx_active_minus1[x], 0, slice.field_pic_flag ? 31 : 15);
    } else {
        slice.num_ref_idx_active_minus1[x] = defaults[x];
    }
}

// The lengths of the reference picture lists, and their changes.
template <class Syntax>
void slice_references(Syntax& s, const SliceSets& sets, SliceHeader& slice) {
    const uint32_t lists = listsOf(typeOf(slice));
    if (typeOf(slice) == SliceType::B) {
        s.flag("direct_spatial_mv_pred_flag", slice.direct_spatial_mv_pred_flag);
    }
    if (lists > 0) {
        s.flag("num_ref_idx_active_override_flag", slice.num_ref_idx_active_override_flag);
    }
    for (uint32_t x = 0; x < lists; ++x) {
        list_length(s, sets, x, slice);
    }
    ref_pic_list_modification(s, slice);
    slice.hasPredWeightTable =
        lists == 1 ? sets.pps.weighted_pred_flag : lists == 2 && sets.pps.weighted_bipred_idc == 1;
    if (slice.hasPredWeightTable) {
        pred_weight_table(s, sets.sps, slice, slice.pred_weight_table);
    }
}

// Bits of slice_group_change_cycle: Ceil( Log2( PicSizeInMapUnits / SliceGroupChangeRate + 1 ) ), (7-36). A
// picture of more map units than Pps::kMostMapUnits is one of no level.
inline uint32_t widthOfSliceGroupChangeCycle(const SliceSets& sets) {
    const uint64_t size = std::min<uint64_t>(picSizeInMapUnits(sets.sps), Pps::kMostMapUnits);
    const uint64_t rate = uint64_t{sets.pps.slice_group_change_rate_minus1} + 1;
    return detail::ceilLog2((size + rate - 1) / rate + 1);
}

template <class Syntax>
void slice_deblocking(Syntax& s, SliceHeader& slice) {
    s.ue("disable_deblocking_filter_idc", slice.disable_deblocking_filter_idc, 0, 2);
    if (slice.disable_deblocking_filter_idc != 1) {
        s.se("slice_alpha_c0_offset_div2", slice.slice_alpha_c0_offset_div2, -6, 6);
        s.se("slice_beta_offset_div2", slice.slice_beta_offset_div2, -6, 6);
    }
}

// How the macroblocks are coded.
template <class Syntax>
void slice_coding(Syntax& s, const SliceSets& sets, SliceHeader& slice) {
    const SliceType type = typeOf(slice);
    if (sets.pps.entropy_coding_mode_flag && type != SliceType::I && type != SliceType::SI) {
        s.ue("cabac_init_idc", slice.cabac_init_idc, 0, 2);
    }
    s.se("slice_qp_delta", slice.slice_qp_delta);
    if (type == SliceType::SP) {
        s.flag("sp_for_switch_flag", slice.sp_for_switch_flag);
    }
    if (type == SliceType::SP || type == SliceType::SI) {
        s.se("slice_qs_delta", slice.slice_qs_delta);
    }
    if (sets.pps.deblocking_filter_control_present_flag) {
        slice_deblocking(s, slice);
    }
    if (sets.pps.num_slice_groups_minus1 > 0 && sets.pps.slice_group_map_type >= 3 &&
        sets.pps.slice_group_map_type <= 5) {
        s.u(widthOfSliceGroupChangeCycle(sets), "slice_group_change_cycle", slice.slice_group_change_cycle);
    }
}

// slice_header(), 7.3.3
template <class Syntax>
void slice_header(Syntax& s, const ParameterSets& sets, SliceHeader& slice) {
    static constexpr Structure kStructure = {"slice_header()", "7.3.3"};
    const Within<Syntax> within(s, kStructure);
    s.ue("first_mb_in_slice", slice.first_mb_in_slice);
    s.ue("slice_type", slice.slice_type, 0, 9);
    s.ue("pic_parameter_set_id", slice.pic_parameter_set_id, 0, 255);
    const bool ofSubsetSps = hasHeaderExtension(slice.header.nal_unit_type);
    const Pps* const pps = sets.ppsOfSlice(slice.pic_parameter_set_id);
    if (pps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "pic_parameter_set_id", slice.pic_parameter_set_id);
        return;
    }
    const SpsData* const sps = sets.spsOfSlice(*pps, ofSubsetSps);
    if (sps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "seq_parameter_set_id", pps->seq_parameter_set_id);
        return;
    }
    const SliceSets ofSlice = {*pps, *sps};
    slice_picture(s, ofSlice, slice);
    slice_references(s, ofSlice, slice);
    if (slice.header.nal_ref_idc != 0) {
        dec_ref_pic_marking(s, isIdr(slice.header), sps->max_num_ref_frames, slice.dec_ref_pic_marking);
    }
    slice_coding(s, ofSlice, slice);
}

constexpr bool hasSliceHeader(const NalUnitHeader& header) {
    switch (header.nal_unit_type) {
        case kNalSliceNonIdr:
        case kNalSliceDataPartitionA:
        case kNalSliceIdr:
        case kNalAuxiliarySlice:
            return true;
        case kNalSliceExtension:
        case kNalSliceExtension3d:
            return !header.svc_extension_flag && !header.avc_3d_extension_flag;
        default:
            return false;
    }
}

// The bits before slice_data() that is CABAC.
template <class Syntax>
void cabac_alignment(Syntax& s, const ParameterSets& sets, const SliceHeader& slice) {
    const Pps* const pps = sets.ppsOfSlice(slice.pic_parameter_set_id);
    while (!s.failed() && pps->entropy_coding_mode_flag && !s.byte_aligned()) {
        s.f(1, "cabac_alignment_one_bit", 1);
    }
}

// A unit up to the end of its slice_header().
template <class Syntax>
void slice_unit(Syntax& s, const ParameterSets& sets, SliceHeader& slice) {
    nal_unit_header(s, slice.header);
    if (!hasSliceHeader(slice.header)) {
        s.fail(FaultKind::OtherUnit, "nal_unit_type", slice.header.nal_unit_type);
    }
    s.rbsp();
    slice_header(s, sets, slice);
}

}  // namespace qv::avc

#endif
