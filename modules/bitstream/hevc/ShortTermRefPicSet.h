/// \file
/// st_ref_pic_set() of H.265.
#ifndef QV_BITSTREAM_HEVC_SHORTTERMREFPICSET_H
#define QV_BITSTREAM_HEVC_SHORTTERMREFPICSET_H

#include <cstdint>

namespace qv::hevc {

/// st_ref_pic_set(), H.265 7.3.7 and 7.4.8: as coded, and the set that follows from it. Elements beyond their
/// counts are not set.
struct ShortTermRefPicSet {
    /// A set has no more pictures than the decoded picture buffer has room for others, at most 16 (A.4.2).
    static constexpr uint32_t kMostPics = 16;

    bool inter_ref_pic_set_prediction_flag;  ///< u(1)

    // With inter_ref_pic_set_prediction_flag 1, otherwise 0 and not set.

    uint32_t delta_idx_minus1;                  ///< ue(v), in slice segment headers; 0 when not present
    bool delta_rps_sign;                        ///< 1 for a negative difference
    uint32_t abs_delta_rps_minus1;              ///< ue(v), 0..2^15 - 1
    bool used_by_curr_pic_flag[kMostPics + 1];  ///< NumDeltaPocs[RefRpsIdx] + 1 of them
    bool use_delta_flag[kMostPics + 1];         ///< 1 when not present

    // With inter_ref_pic_set_prediction_flag 0, otherwise 0 and not set.

    uint32_t num_negative_pics;                ///< ue(v), 0..16
    uint32_t num_positive_pics;                ///< ue(v), 0..16 - num_negative_pics
    uint16_t delta_poc_s0_minus1[kMostPics];   ///< ue(v), 0..2^15 - 1
    uint16_t delta_poc_s1_minus1[kMostPics];   ///< ue(v), 0..2^15 - 1
    bool used_by_curr_pic_s0_flag[kMostPics];  ///< u(1)
    bool used_by_curr_pic_s1_flag[kMostPics];  ///< u(1)

    // What follows (7-61 to 7-71). A writer computes it anew.

    uint32_t NumNegativePics;         ///< 0..16
    uint32_t NumPositivePics;         ///< 0..16 - NumNegativePics
    int32_t DeltaPocS0[kMostPics];    ///< below 0, from -1 downwards
    int32_t DeltaPocS1[kMostPics];    ///< above 0, from 1 upwards
    bool UsedByCurrPicS0[kMostPics];  ///< NumNegativePics of them
    bool UsedByCurrPicS1[kMostPics];  ///< NumPositivePics of them
};

/// NumDeltaPocs: the number of pictures in a set, 0..16.
constexpr uint32_t numDeltaPocs(const ShortTermRefPicSet& set) {
    return set.NumNegativePics + set.NumPositivePics;
}

}  // namespace qv::hevc

#endif
