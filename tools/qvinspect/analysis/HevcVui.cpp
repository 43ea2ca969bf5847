// seq_parameter_set_rbsp() up to the colour description, H.265 (08/2021) 7.3.2.2, 7.3.3, 7.3.4, 7.3.7 and
// E.2.1.
#include "analysis/HevcVui.h"

#include <algorithm>

#include "QVByteStream.h"

namespace qvinspect {

namespace {

constexpr uint32_t kExtendedSar = 255;
constexpr uint32_t kMostShortTermSets = 64;
constexpr uint32_t kMostLongTermPictures = 32;
constexpr uint32_t kMostPicturesOfASet = 16;
constexpr uint32_t kMostPocLsbBits = 16;

void skipUe(QVByteStream& in, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        in.readGolombUe();
    }
}

// profile_tier_level( 1, sps_max_sub_layers_minus1 )
void skipProfileTierLevel(QVByteStream& in, uint32_t maxNumSubLayersMinus1) {
    constexpr uint64_t kProfileBits = 88;
    constexpr uint64_t kLevelBits = 8;
    in.skipBits(kProfileBits + kLevelBits);
    bool profile_present[8] = {};
    bool level_present[8] = {};
    for (uint32_t i = 0; i < maxNumSubLayersMinus1; ++i) {
        profile_present[i] = in.readBit() != 0;
        level_present[i] = in.readBit() != 0;
    }
    if (maxNumSubLayersMinus1 > 0) {
        in.skipBits(2 * uint64_t{8 - maxNumSubLayersMinus1});  // reserved_zero_2bits
    }
    for (uint32_t i = 0; i < maxNumSubLayersMinus1; ++i) {
        in.skipBits((profile_present[i] ? kProfileBits : 0) + (level_present[i] ? kLevelBits : 0));
    }
}

void skipScalingListData(QVByteStream& in) {
    for (unsigned sizeId = 0; sizeId < 4; ++sizeId) {
        const unsigned coefNum = std::min(64U, 1U << (4 + (sizeId << 1U)));
        for (unsigned matrixId = 0; matrixId < 6; matrixId += sizeId == 3 ? 3 : 1) {
            if (in.readBit() == 0) {  // scaling_list_pred_mode_flag
                skipUe(in, 1);        // scaling_list_pred_matrix_id_delta
            } else {
                skipUe(in, (sizeId > 1 ? 1 : 0) +
                               coefNum);  // scaling_list_dc_coef_minus8, scaling_list_delta_coef
            }
        }
    }
}

// Differences of picture order counts: negative ones, then positive ones, each from the nearest picture on.
struct ShortTermSet {
    std::vector<int64_t> s0;
    std::vector<int64_t> s1;
};

// Those of the set before, moved by deltaRps: (7-61) and (7-62).
ShortTermSet predicted(const ShortTermSet& ref, int64_t deltaRps, const std::vector<bool>& use_delta) {
    const size_t negatives = ref.s0.size();
    const size_t all = negatives + ref.s1.size();
    ShortTermSet set;
    const auto take = [&](int64_t dPoc, size_t j, bool isNegative) {
        if (use_delta[j] && (isNegative ? dPoc < 0 : dPoc > 0)) {
            (isNegative ? set.s0 : set.s1).push_back(dPoc);
        }
    };
    for (size_t j = ref.s1.size(); j-- > 0;) {
        take(ref.s1[j] + deltaRps, negatives + j, true);
    }
    take(deltaRps, all, true);
    for (size_t j = 0; j < negatives; ++j) {
        take(ref.s0[j] + deltaRps, j, true);
    }
    for (size_t j = negatives; j-- > 0;) {
        take(ref.s0[j] + deltaRps, j, false);
    }
    take(deltaRps, all, false);
    for (size_t j = 0; j < ref.s1.size(); ++j) {
        take(ref.s1[j] + deltaRps, negatives + j, false);
    }
    return set;
}

ShortTermSet readPredictedSet(QVByteStream& in, const ShortTermSet& ref) {
    const bool delta_rps_sign = in.readBit() != 0;
    const int64_t abs_delta_rps = int64_t{in.readGolombUe()} + 1;
    std::vector<bool> use_delta;
    for (size_t j = 0; j <= ref.s0.size() + ref.s1.size(); ++j) {
        const bool used_by_curr_pic_flag = in.readBit() != 0;
        use_delta.push_back(used_by_curr_pic_flag || in.readBit() != 0);
    }
    return predicted(ref, delta_rps_sign ? -abs_delta_rps : abs_delta_rps, use_delta);
}

// False when there are more pictures than a set may have.
bool readExplicitSet(QVByteStream& in, ShortTermSet& set) {
    const uint32_t num_negative_pics = in.readGolombUe();
    const uint32_t num_positive_pics = in.readGolombUe();
    if (num_negative_pics > kMostPicturesOfASet || num_positive_pics > kMostPicturesOfASet) {
        return false;
    }
    const auto read = [&](uint32_t count, int sign, std::vector<int64_t>& deltas) {
        int64_t poc = 0;
        for (uint32_t i = 0; i < count; ++i) {
            poc += sign * (int64_t{in.readGolombUe()} + 1);  // delta_poc_s0_minus1, delta_poc_s1_minus1
            in.readBit();  // used_by_curr_pic_s0_flag, used_by_curr_pic_s1_flag
            deltas.push_back(poc);
        }
    };
    read(num_negative_pics, -1, set.s0);
    read(num_positive_pics, 1, set.s1);
    return true;
}

// st_ref_pic_set() for each of num_short_term_ref_pic_sets.
bool skipShortTermSets(QVByteStream& in) {
    const uint32_t num_short_term_ref_pic_sets = in.readGolombUe();
    if (num_short_term_ref_pic_sets > kMostShortTermSets) {
        return false;
    }
    ShortTermSet before;
    for (uint32_t stRpsIdx = 0; stRpsIdx < num_short_term_ref_pic_sets; ++stRpsIdx) {
        ShortTermSet set;
        const bool inter_ref_pic_set_prediction_flag = stRpsIdx > 0 && in.readBit() != 0;
        if (inter_ref_pic_set_prediction_flag) {
            set = readPredictedSet(in, before);
        } else if (!readExplicitSet(in, set)) {
            return false;
        }
        if (set.s0.size() + set.s1.size() > 2 * kMostPicturesOfASet) {
            return false;
        }
        before = set;
    }
    return true;
}

bool skipLongTermPictures(QVByteStream& in, uint32_t pocLsbBits) {
    if (in.readBit() == 0) {  // long_term_ref_pics_present_flag
        return true;
    }
    const uint32_t num_long_term_ref_pics_sps = in.readGolombUe();
    if (num_long_term_ref_pics_sps > kMostLongTermPictures) {
        return false;
    }
    // lt_ref_pic_poc_lsb_sps, used_by_curr_pic_lt_sps_flag
    in.skipBits(num_long_term_ref_pics_sps * uint64_t{pocLsbBits + 1});
    return true;
}

// From sps_video_parameter_set_id to strong_intra_smoothing_enabled_flag. False when an element that the
// syntax depends on is out of its range.
bool skipToVui(QVByteStream& in) {
    in.readBits(4);  // sps_video_parameter_set_id
    const uint32_t sps_max_sub_layers_minus1 = in.readBits(3);
    in.readBit();  // sps_temporal_id_nesting_flag
    if (sps_max_sub_layers_minus1 > 6) {
        return false;
    }
    skipProfileTierLevel(in, sps_max_sub_layers_minus1);
    skipUe(in, 1);                 // sps_seq_parameter_set_id
    if (in.readGolombUe() == 3) {  // chroma_format_idc
        in.readBit();              // separate_colour_plane_flag
    }
    skipUe(in, 2);            // pic_width_in_luma_samples, pic_height_in_luma_samples
    if (in.readBit() != 0) {  // conformance_window_flag
        skipUe(in, 4);        // conf_win_left_offset to conf_win_bottom_offset
    }
    skipUe(in, 2);  // bit_depth_luma_minus8, bit_depth_chroma_minus8
    const uint32_t pocLsbBits = in.readGolombUe() + 4;
    if (pocLsbBits > kMostPocLsbBits) {
        return false;
    }
    const bool sps_sub_layer_ordering_info_present_flag = in.readBit() != 0;
    skipUe(in, 3 * (sps_sub_layer_ordering_info_present_flag ? sps_max_sub_layers_minus1 + 1 : 1));
    skipUe(in, 6);  // block sizes, max_transform_hierarchy_depth_inter and _intra
    if (in.readBit() != 0 &&
        in.readBit() != 0) {  // scaling_list_enabled_flag, sps_scaling_list_data_present_flag
        skipScalingListData(in);
    }
    in.readBits(2);           // amp_enabled_flag, sample_adaptive_offset_enabled_flag
    if (in.readBit() != 0) {  // pcm_enabled_flag
        in.readBits(8);       // pcm_sample_bit_depth_luma_minus1, pcm_sample_bit_depth_chroma_minus1
        skipUe(in, 2);        // sizes
        in.readBit();         // pcm_loop_filter_disabled_flag
    }
    if (!skipShortTermSets(in) || !skipLongTermPictures(in, pocLsbBits)) {
        return false;
    }
    in.readBits(2);  // sps_temporal_mvp_enabled_flag, strong_intra_smoothing_enabled_flag
    return true;
}

}  // namespace

std::optional<uint32_t> hevcTransferCharacteristics(const std::vector<uint8_t>& unit) {
    QVByteStream in(unit.data(), unit.size());
    in.skipBytes(2);                            // nal_unit_header()
    if (!skipToVui(in) || in.readBit() == 0) {  // vui_parameters_present_flag
        return std::nullopt;
    }
    if (in.readBit() != 0 &&
        in.readBits(8) == kExtendedSar) {  // aspect_ratio_info_present_flag, aspect_ratio_idc
        in.readBits(32);                   // sar_width, sar_height
    }
    if (in.readBit() != 0) {  // overscan_info_present_flag
        in.readBit();         // overscan_appropriate_flag
    }
    if (in.readBit() == 0) {  // video_signal_type_present_flag
        return std::nullopt;
    }
    in.readBits(4);           // video_format, video_full_range_flag
    if (in.readBit() == 0) {  // colour_description_present_flag
        return std::nullopt;
    }
    in.readBits(8);  // colour_primaries
    const uint32_t transfer_characteristics = in.readBits(8);
    // matrix_coeffs and the trailing bits follow in any case.
    return in.atEnd() ? std::nullopt : std::optional<uint32_t>(transfer_characteristics);
}

}  // namespace qvinspect
