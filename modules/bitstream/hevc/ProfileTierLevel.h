/// \file
/// profile_tier_level() of H.265.
#ifndef QV_BITSTREAM_HEVC_PROFILETIERLEVEL_H
#define QV_BITSTREAM_HEVC_PROFILETIERLEVEL_H

#include <cstdint>

namespace qv::hevc {

/// The most temporal sub-layers: vps_max_sub_layers_minus1 and sps_max_sub_layers_minus1 are at most 6.
constexpr uint32_t kMostSubLayers = 7;

/// The 88 bits of profile_tier_level() that say which profile and tier the bitstream or one of its sub-layers
/// conforms to, H.265 7.3.3 and 7.4.4. Elements are named without their prefix general_ or sub_layer_.
///
/// 43 bits and one bit more have names that depend on the profile. What the profile does not name is in
/// reserved_zero_bits; constraint flags that are not named are 0.
struct ProfileTier {
    uint32_t profile_space;  ///< u(2), 0
    bool tier_flag;          ///< 0 Main tier, 1 High tier
    uint32_t profile_idc;    ///< u(5)

    /// profile_compatibility_flag[j] is bit j, the least significant bit being bit 0.
    uint32_t profile_compatibility_flag;

    bool progressive_source_flag;     ///< u(1)
    bool interlaced_source_flag;      ///< u(1)
    bool non_packed_constraint_flag;  ///< u(1)
    bool frame_only_constraint_flag;  ///< u(1)

    bool max_14bit_constraint_flag;         ///< profiles 5, 9, 10 and 11
    bool max_12bit_constraint_flag;         ///< profiles 4 to 11
    bool max_10bit_constraint_flag;         ///< profiles 4 to 11
    bool max_8bit_constraint_flag;          ///< profiles 4 to 11
    bool max_422chroma_constraint_flag;     ///< profiles 4 to 11
    bool max_420chroma_constraint_flag;     ///< profiles 4 to 11
    bool max_monochrome_constraint_flag;    ///< profiles 4 to 11
    bool intra_constraint_flag;             ///< profiles 4 to 11
    bool one_picture_only_constraint_flag;  ///< profiles 2 and 4 to 11
    bool lower_bit_rate_constraint_flag;    ///< profiles 4 to 11
    bool inbld_flag;                        ///< profiles 1 to 5, 9 and 11
    bool reserved_zero_bit;                 ///< the other profiles, in the place of inbld_flag

    uint32_t reserved_zero_7bits;  ///< u(7), profile 2

    /// reserved_zero_33bits (profiles 5, 9, 10 and 11), reserved_zero_34bits (4 and 6 to 8),
    /// reserved_zero_35bits (2) or reserved_zero_43bits (others).
    uint64_t reserved_zero_bits;
};

/// What profile_tier_level() says of one temporal sub-layer below the highest.
struct SubLayerProfile {
    bool profile_present_flag;  ///< u(1)
    bool level_present_flag;    ///< u(1)
    uint32_t level_idc;         ///< u(8), 30 times the level's number; 0 when not present
    ProfileTier profile;        ///< all 0 when not present
};

/// profile_tier_level(), H.265 7.3.3 and 7.4.4.
struct ProfileTierLevel {
    ProfileTier general;         ///< all 0 when profilePresentFlag is 0
    uint32_t general_level_idc;  ///< u(8), 30 times the level's number

    uint16_t reserved_zero_2bits[8];  ///< u(2), from maxNumSubLayersMinus1 on when that is above 0

    /// The sub-layers below the highest, which is the general one: maxNumSubLayersMinus1 of them.
    SubLayerProfile sub_layer[kMostSubLayers - 1];
};

/// True when \p profile is that of a number, or declared compatible with it: general_profile_idc is \p number
/// or general_profile_compatibility_flag[number] is 1. \p number is 0 to 31.
constexpr bool isCompatibleWith(const ProfileTier& profile, uint32_t number) {
    return profile.profile_idc == number || (profile.profile_compatibility_flag >> number & 1) != 0;
}

}  // namespace qv::hevc

#endif
