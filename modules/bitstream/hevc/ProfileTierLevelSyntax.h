// profile_tier_level() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_PROFILETIERLEVELSYNTAX_H
#define QV_BITSTREAM_HEVC_PROFILETIERLEVELSYNTAX_H

#include "bitstream/hevc/ProfileTierLevel.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// An element of a profile has two names: one for the bitstream and one, with a subscript, for a sub-layer.
struct GeneralNames {
    constexpr const char* operator()(const char* general, const char* subLayer) const {
        static_cast<void>(subLayer);
        return general;
    }
};

struct SubLayerNames {
    uint32_t i;
    constexpr detail::Subscripted<1> operator()(const char* general, const char* subLayer) const {
        static_cast<void>(general);
        return at(subLayer, i);
    }
};

// A set of profiles: those that a profile is compatible with, and those that a condition names.
template <class... Numbers>
constexpr uint32_t profiles(Numbers... numbers) {
    return (... | (1U << numbers));
}

constexpr uint32_t kProfilesWithFormatConstraints = profiles(4, 5, 6, 7, 8, 9, 10, 11);
constexpr uint32_t kProfilesWith14BitConstraint = profiles(5, 9, 10, 11);
constexpr uint32_t kProfilesWithInbldFlag = profiles(1, 2, 3, 4, 5, 9, 11);

// The 43 bits whose names depend on the profile.
template <class Syntax, class Names>
void profile_constraints(Syntax& s, ProfileTier& p, const Names& name, uint32_t compatible) {
    if ((compatible & kProfilesWithFormatConstraints) != 0) {
        s.flag(name("general_max_12bit_constraint_flag", "sub_layer_max_12bit_constraint_flag"),
               p.max_12bit_constraint_flag);
        s.flag(name("general_max_10bit_constraint_flag", "sub_layer_max_10bit_constraint_flag"),
               p.max_10bit_constraint_flag);
        s.flag(name("general_max_8bit_constraint_flag", "sub_layer_max_8bit_constraint_flag"),
               p.max_8bit_constraint_flag);
        s.flag(name("general_max_422chroma_constraint_flag", "sub_layer_max_422chroma_constraint_flag"),
               p.max_422chroma_constraint_flag);
        s.flag(name("general_max_420chroma_constraint_flag", "sub_layer_max_420chroma_constraint_flag"),
               p.max_420chroma_constraint_flag);
        s.flag(name("general_max_monochrome_constraint_flag", "sub_layer_max_monochrome_constraint_flag"),
               p.max_monochrome_constraint_flag);
        s.flag(name("general_intra_constraint_flag", "sub_layer_intra_constraint_flag"),
               p.intra_constraint_flag);
        s.flag(name("general_one_picture_only_constraint_flag", "sub_layer_one_picture_only_constraint_flag"),
               p.one_picture_only_constraint_flag);
        s.flag(name("general_lower_bit_rate_constraint_flag", "sub_layer_lower_bit_rate_constraint_flag"),
               p.lower_bit_rate_constraint_flag);
        if ((compatible & kProfilesWith14BitConstraint) != 0) {
            s.flag(name("general_max_14bit_constraint_flag", "sub_layer_max_14bit_constraint_flag"),
                   p.max_14bit_constraint_flag);
            s.u(33, name("general_reserved_zero_33bits", "sub_layer_reserved_zero_33bits"),
                p.reserved_zero_bits);
        } else {
            s.u(34, name("general_reserved_zero_34bits", "sub_layer_reserved_zero_34bits"),
                p.reserved_zero_bits);
        }
    } else if ((compatible & profiles(2)) != 0) {
        s.u(7, name("general_reserved_zero_7bits", "sub_layer_reserved_zero_7bits"), p.reserved_zero_7bits);
        s.flag(name("general_one_picture_only_constraint_flag", "sub_layer_one_picture_only_constraint_flag"),
               p.one_picture_only_constraint_flag);
        s.u(35, name("general_reserved_zero_35bits", "sub_layer_reserved_zero_35bits"), p.reserved_zero_bits);
    } else {
        s.u(43, name("general_reserved_zero_43bits", "sub_layer_reserved_zero_43bits"), p.reserved_zero_bits);
    }
}

template <class Syntax, class Names>
void profile(Syntax& s, ProfileTier& p, const Names& name) {
    s.u(2, name("general_profile_space", "sub_layer_profile_space"), p.profile_space);
    s.flag(name("general_tier_flag", "sub_layer_tier_flag"), p.tier_flag);
    s.u(5, name("general_profile_idc", "sub_layer_profile_idc"), p.profile_idc);
    s.flags(32, name("general_profile_compatibility_flag", "sub_layer_profile_compatibility_flag"),
            p.profile_compatibility_flag);
    s.flag(name("general_progressive_source_flag", "sub_layer_progressive_source_flag"),
           p.progressive_source_flag);
    s.flag(name("general_interlaced_source_flag", "sub_layer_interlaced_source_flag"),
           p.interlaced_source_flag);
    s.flag(name("general_non_packed_constraint_flag", "sub_layer_non_packed_constraint_flag"),
           p.non_packed_constraint_flag);
    s.flag(name("general_frame_only_constraint_flag", "sub_layer_frame_only_constraint_flag"),
           p.frame_only_constraint_flag);
    // In a writer's record profile_idc is within 5 bits by now.
    const uint32_t compatible = p.profile_compatibility_flag | 1U << p.profile_idc;
    profile_constraints(s, p, name, compatible);
    if ((compatible & kProfilesWithInbldFlag) != 0) {
        s.flag(name("general_inbld_flag", "sub_layer_inbld_flag"), p.inbld_flag);
    } else {
        s.flag(name("general_reserved_zero_bit", "sub_layer_reserved_zero_bit"), p.reserved_zero_bit);
    }
}

// profile_tier_level(), 7.3.3. The record is zero before.
template <class Syntax>
void profile_tier_level(Syntax& s, ProfileTierLevel& ptl, bool profilePresentFlag,
                        uint32_t maxNumSubLayersMinus1) {
    static constexpr Structure kStructure = {"profile_tier_level()", "7.3.3"};
    const Within<Syntax> within(s, kStructure);
    if (profilePresentFlag) {
        profile(s, ptl.general, GeneralNames{});
    }
    s.u(8, "general_level_idc", ptl.general_level_idc);
    for (uint32_t i = 0; i < maxNumSubLayersMinus1; ++i) {
        s.flag(at("sub_layer_profile_present_flag", i), ptl.sub_layer[i].profile_present_flag);
        s.flag(at("sub_layer_level_present_flag", i), ptl.sub_layer[i].level_present_flag);
    }
    if (maxNumSubLayersMinus1 > 0) {
        for (uint32_t i = maxNumSubLayersMinus1; i < 8; ++i) {
            s.u(2, at("reserved_zero_2bits", i), ptl.reserved_zero_2bits[i]);
        }
    }
    for (uint32_t i = 0; i < maxNumSubLayersMinus1; ++i) {
        if (ptl.sub_layer[i].profile_present_flag) {
            profile(s, ptl.sub_layer[i].profile, SubLayerNames{i});
        }
        if (ptl.sub_layer[i].level_present_flag) {
            s.u(8, at("sub_layer_level_idc", i), ptl.sub_layer[i].level_idc);
        }
    }
}

}  // namespace qv::hevc

#endif
