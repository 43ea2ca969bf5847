// st_ref_pic_set() of H.265 as a syntax function.
#ifndef QV_BITSTREAM_HEVC_SHORTTERMREFPICSETSYNTAX_H
#define QV_BITSTREAM_HEVC_SHORTTERMREFPICSETSYNTAX_H

#include "bitstream/hevc/ShortTermRefPicSet.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

constexpr uint32_t kMostDeltaPocMinus1 = (1U << 15) - 1;

// The set that inter prediction makes of a reference set, (7-61) and (7-62). False when it has more pictures
// than a set may have; the set then has those that fit.
bool predictShortTermRefPicSet(const ShortTermRefPicSet& reference, ShortTermRefPicSet& set) noexcept;

// The set that is coded without prediction, (7-63) to (7-70).
void accumulateShortTermRefPicSet(ShortTermRefPicSet& set) noexcept;

// The part of st_ref_pic_set() that describes the difference from a reference set.
template <class Syntax>
void inter_ref_pic_set(Syntax& s, ShortTermRefPicSet& set, const ShortTermRefPicSet& reference) {
    s.flag("delta_rps_sign", set.delta_rps_sign);
    s.ue("abs_delta_rps_minus1", set.abs_delta_rps_minus1, 0, kMostDeltaPocMinus1);
    for (uint32_t j = 0; j <= numDeltaPocs(reference); ++j) {
        s.flag(at("used_by_curr_pic_flag", j), set.used_by_curr_pic_flag[j]);
        if (!set.used_by_curr_pic_flag[j]) {
            s.flag(at("use_delta_flag", j), set.use_delta_flag[j]);
        } else {
            set.use_delta_flag[j] = true;
        }
    }
    if (!predictShortTermRefPicSet(reference, set)) {
        s.fail(FaultKind::TooManyEntries, "NumDeltaPocs", ShortTermRefPicSet::kMostPics + 1);
    }
}

// The part of st_ref_pic_set() that lists the pictures.
template <class Syntax>
void intra_ref_pic_set(Syntax& s, ShortTermRefPicSet& set) {
    constexpr uint32_t kMost = ShortTermRefPicSet::kMostPics;
    s.ue("num_negative_pics", set.num_negative_pics, 0, kMost);
    s.ue("num_positive_pics", set.num_positive_pics, 0, kMost - set.num_negative_pics);
    for (uint32_t i = 0; i < set.num_negative_pics; ++i) {
        s.ue(at("delta_poc_s0_minus1", i), set.delta_poc_s0_minus1[i], 0, kMostDeltaPocMinus1);
        s.flag(at("used_by_curr_pic_s0_flag", i), set.used_by_curr_pic_s0_flag[i]);
    }
    for (uint32_t i = 0; i < set.num_positive_pics; ++i) {
        s.ue(at("delta_poc_s1_minus1", i), set.delta_poc_s1_minus1[i], 0, kMostDeltaPocMinus1);
        s.flag(at("used_by_curr_pic_s1_flag", i), set.used_by_curr_pic_s1_flag[i]);
    }
    accumulateShortTermRefPicSet(set);
}

// st_ref_pic_set( stRpsIdx ), 7.3.7. The sets of the SPS come before it; a slice segment header's own has the
// index num_short_term_ref_pic_sets.
//
// The number of pictures is held to 16 and not to sps_max_dec_pic_buffering_minus1: streams exist that
// understate the latter, and sets of layers above 0 are not bound by it.
template <class Syntax>
void st_ref_pic_set(Syntax& s, const ShortTermRefPicSet* sets, uint32_t num_short_term_ref_pic_sets,
                    uint32_t stRpsIdx, ShortTermRefPicSet& set) {
    static constexpr Structure kStructure = {"st_ref_pic_set()", "7.3.7"};
    const Within<Syntax> within(s, kStructure);
    s.infer(set.delta_idx_minus1, 0);
    s.infer(set.delta_rps_sign, false);
    s.infer(set.abs_delta_rps_minus1, 0);
    s.infer(set.num_negative_pics, 0);
    s.infer(set.num_positive_pics, 0);
    if (stRpsIdx != 0) {
        s.flag("inter_ref_pic_set_prediction_flag", set.inter_ref_pic_set_prediction_flag);
    } else {
        set.inter_ref_pic_set_prediction_flag = false;
    }
    if (set.inter_ref_pic_set_prediction_flag) {
        if (stRpsIdx == num_short_term_ref_pic_sets) {
            s.ue("delta_idx_minus1", set.delta_idx_minus1, 0, stRpsIdx - 1);
        } else {
            set.delta_idx_minus1 = 0;
        }
        inter_ref_pic_set(s, set, sets[stRpsIdx - (set.delta_idx_minus1 + 1)]);
    } else {
        intra_ref_pic_set(s, set);
    }
}

}  // namespace qv::hevc

#endif
