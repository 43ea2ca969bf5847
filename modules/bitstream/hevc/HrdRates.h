/// \file
/// Rates and sizes of the coded picture buffer in bits, as H.265 HRD parameters and levels give them.
#ifndef QV_BITSTREAM_HEVC_HRDRATES_H
#define QV_BITSTREAM_HEVC_HRDRATES_H

#include <cstdint>

#include "bitstream/hevc/Hrd.h"
#include "bitstream/hevc/ProfileTierLevel.h"
#include "bitstream/names/HevcLevels.h"
#include "bitstream/names/HevcProfiles.h"

namespace qv::hevc {

/// What a bit rate or a buffer size counts.
enum class HrdType : uint32_t {
    Vcl,  ///< slices and filler data
    Nal,  ///< everything
};

/// (value_minus1 + 1) * 2^(base + scale): a scale has 4 bits, so that the result is at most 2^53.
constexpr uint64_t scaledHrdValue(uint32_t value_minus1, uint32_t base, uint32_t scale) {
    return (uint64_t{value_minus1} + 1) << (base + (scale & 15));
}

/// BitRate[ i ] in bit/s, H.265 E.3.3; 0 when \p i is above 31, the greatest cpb_cnt_minus1.
constexpr uint64_t bitRate(const HrdCommon& common, const CpbParameters& cpb, uint32_t i) {
    return i < CpbParameters::kMostCpbs
               ? scaledHrdValue(cpb.bit_rate_value_minus1[i], 6, common.bit_rate_scale)
               : 0;
}

/// CpbSize[ i ] in bits, H.265 E.3.3; 0 when \p i is above 31.
constexpr uint64_t cpbSize(const HrdCommon& common, const CpbParameters& cpb, uint32_t i) {
    return i < CpbParameters::kMostCpbs
               ? scaledHrdValue(cpb.cpb_size_value_minus1[i], 4, common.cpb_size_scale)
               : 0;
}

/// BitRate[ i ] for decoding units, with SubPicHrdFlag 1, in bit/s, H.265 E.3.3; 0 without
/// sub_pic_hrd_params_present_flag and when \p i is above 31.
constexpr uint64_t bitRateDu(const HrdCommon& common, const CpbParameters& cpb, uint32_t i) {
    return common.sub_pic_hrd_params_present_flag && i < CpbParameters::kMostCpbs
               ? scaledHrdValue(cpb.bit_rate_du_value_minus1[i], 6, common.bit_rate_scale)
               : 0;
}

/// CpbSize[ i ] for decoding units, with SubPicHrdFlag 1, in bits, H.265 E.3.3; 0 without
/// sub_pic_hrd_params_present_flag and when \p i is above 31.
constexpr uint64_t cpbSizeDu(const HrdCommon& common, const CpbParameters& cpb, uint32_t i) {
    return common.sub_pic_hrd_params_present_flag && i < CpbParameters::kMostCpbs
               ? scaledHrdValue(cpb.cpb_size_du_value_minus1[i], 4, common.cpb_size_du_scale)
               : 0;
}

/// HbrFactor, H.265 A.3.5, A.3.6 and A.3.8, which multiplies bit rates and not buffer sizes: 2 in the format
/// range extensions, 6 in the high throughput profiles and 24 in their intra profile, half of 2 and 24 with
/// general_lower_bit_rate_constraint_flag; 1 in other profiles.
constexpr uint32_t hbrFactor(const ProfileTier& profile) {
    switch (profile.profile_idc) {
        case 4:
            return profile.lower_bit_rate_constraint_flag ? 1 : 2;
        case 5:
        case 11:
            if (!profile.intra_constraint_flag) {
                return 6;
            }
            return profile.lower_bit_rate_constraint_flag ? 12 : 24;
        default:
            return 1;
    }
}

/// The greatest bit rate that profile, tier and level allow in bit/s, H.265 A.4.2: BrVclFactor or BrNalFactor
/// times MaxBR. 0 when this edition does not define the profile or the level, for level 8.5, which has no
/// limit, and for the High tier of levels that have none.
constexpr uint64_t maxBitRate(const ProfileTierLevel& ptl, HrdType type) {
    const ProfileEntry* const profile = findProfile(ptl.general);
    const LevelEntry* const level = findLevel(ptl.general_level_idc);
    if (profile == nullptr || level == nullptr) {
        return 0;
    }
    const uint64_t factor = type == HrdType::Nal ? profile->CpbNalFactor : profile->CpbVclFactor;
    return factor * hbrFactor(ptl.general) * level->MaxBR[ptl.general.tier_flag ? 1 : 0];
}

/// The greatest size of the coded picture buffer that profile, tier and level allow in bits, H.265 A.4.2:
/// CpbVclFactor or CpbNalFactor times MaxCPB; 0 as in maxBitRate().
constexpr uint64_t maxCpbSize(const ProfileTierLevel& ptl, HrdType type) {
    const ProfileEntry* const profile = findProfile(ptl.general);
    const LevelEntry* const level = findLevel(ptl.general_level_idc);
    if (profile == nullptr || level == nullptr) {
        return 0;
    }
    const uint64_t factor = type == HrdType::Nal ? profile->CpbNalFactor : profile->CpbVclFactor;
    return factor * level->MaxCPB[ptl.general.tier_flag ? 1 : 0];
}

}  // namespace qv::hevc

#endif
