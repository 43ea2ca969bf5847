/// \file
/// Profiles and tiers of H.265 by name.
#ifndef QV_BITSTREAM_NAMES_HEVCPROFILES_H
#define QV_BITSTREAM_NAMES_HEVCPROFILES_H

#include <cstdint>

#include "bitstream/hevc/ProfileTierLevel.h"

namespace qv::hevc {

/// A profile, H.265 A.3, G.11.1, H.11.1 and I.11.1.
enum class Profile : uint32_t {
    Main,                               ///< Main, A.3.2
    Main10StillPicture,                 ///< Main 10 Still Picture, A.3.3
    Main10,                             ///< Main 10, A.3.3
    MainStillPicture,                   ///< Main Still Picture, A.3.4
    Monochrome,                         ///< Monochrome, A.3.5
    Monochrome10,                       ///< Monochrome 10, A.3.5
    Monochrome12,                       ///< Monochrome 12, A.3.5
    Monochrome16,                       ///< Monochrome 16, A.3.5
    Main12,                             ///< Main 12, A.3.5
    Main42210,                          ///< Main 4:2:2 10, A.3.5
    Main42212,                          ///< Main 4:2:2 12, A.3.5
    Main444,                            ///< Main 4:4:4, A.3.5
    Main44410,                          ///< Main 4:4:4 10, A.3.5
    Main44412,                          ///< Main 4:4:4 12, A.3.5
    MainIntra,                          ///< Main Intra, A.3.5
    Main10Intra,                        ///< Main 10 Intra, A.3.5
    Main12Intra,                        ///< Main 12 Intra, A.3.5
    Main42210Intra,                     ///< Main 4:2:2 10 Intra, A.3.5
    Main42212Intra,                     ///< Main 4:2:2 12 Intra, A.3.5
    Main444Intra,                       ///< Main 4:4:4 Intra, A.3.5
    Main44410Intra,                     ///< Main 4:4:4 10 Intra, A.3.5
    Main44412Intra,                     ///< Main 4:4:4 12 Intra, A.3.5
    Main44416Intra,                     ///< Main 4:4:4 16 Intra, A.3.5
    Main444StillPicture,                ///< Main 4:4:4 Still Picture, A.3.5
    Main44416StillPicture,              ///< Main 4:4:4 16 Still Picture, A.3.5
    HighThroughput444,                  ///< High Throughput 4:4:4, A.3.6
    HighThroughput44410,                ///< High Throughput 4:4:4 10, A.3.6
    HighThroughput44414,                ///< High Throughput 4:4:4 14, A.3.6
    HighThroughput44416Intra,           ///< High Throughput 4:4:4 16 Intra, A.3.6
    MultiviewMain,                      ///< Multiview Main, G.11.1.1
    ScalableMain,                       ///< Scalable Main, H.11.1.1
    ScalableMain10,                     ///< Scalable Main 10, H.11.1.1
    ThreeDMain,                         ///< 3D Main, I.11.1.1
    ScreenExtendedMain,                 ///< Screen-Extended Main, A.3.7
    ScreenExtendedMain10,               ///< Screen-Extended Main 10, A.3.7
    ScreenExtendedMain444,              ///< Screen-Extended Main 4:4:4, A.3.7
    ScreenExtendedMain44410,            ///< Screen-Extended Main 4:4:4 10, A.3.7
    ScalableMonochrome,                 ///< Scalable Monochrome, H.11.1.2
    ScalableMonochrome12,               ///< Scalable Monochrome 12, H.11.1.2
    ScalableMonochrome16,               ///< Scalable Monochrome 16, H.11.1.2
    ScalableMain444,                    ///< Scalable Main 4:4:4, H.11.1.2
    ScreenExtendedHighThroughput444,    ///< Screen-Extended High Throughput 4:4:4, A.3.8
    ScreenExtendedHighThroughput44410,  ///< Screen-Extended High Throughput 4:4:4 10, A.3.8
    ScreenExtendedHighThroughput44414,  ///< Screen-Extended High Throughput 4:4:4 14, A.3.8
};

/// What is known of a profile.
struct ProfileEntry {
    Profile profile;       ///< which one it is
    uint32_t profile_idc;  ///< general_profile_idc

    /// The constraint flags max_14bit, max_12bit, max_10bit, max_8bit, max_422chroma, max_420chroma,
    /// max_monochrome, intra, one_picture_only and lower_bit_rate, in this order: `0`, `1`, or `-` for either
    /// value.
    const char* constraints;

    const char* name;       ///< as the standard calls it: `Main`
    const char* clause;     ///< of H.265
    uint32_t CpbVclFactor;  ///< Table A.10: bits for each unit of MaxCPB
    uint32_t CpbNalFactor;  ///< the same with the NAL HRD parameters
};

/// Every profile.
constexpr ProfileEntry kProfiles[] = {
    {Profile::Main, 1, "----------", "Main", "A.3.2", 1000, 1100},
    {Profile::Main10StillPicture, 2, "--------1-", "Main 10 Still Picture", "A.3.3", 1000, 1100},
    {Profile::Main10, 2, "--------0-", "Main 10", "A.3.3", 1000, 1100},
    {Profile::MainStillPicture, 3, "----------", "Main Still Picture", "A.3.4", 1000, 1100},

    {Profile::Monochrome, 4, "-111111001", "Monochrome", "A.3.5", 667, 733},
    {Profile::Monochrome10, 4, "-110111001", "Monochrome 10", "A.3.5", 833, 917},
    {Profile::Monochrome12, 4, "-100111001", "Monochrome 12", "A.3.5", 1000, 1100},
    {Profile::Monochrome16, 4, "-000111001", "Monochrome 16", "A.3.5", 1333, 1467},
    {Profile::Main12, 4, "-100110001", "Main 12", "A.3.5", 1500, 1650},
    {Profile::Main42210, 4, "-110100001", "Main 4:2:2 10", "A.3.5", 1667, 1833},
    {Profile::Main42212, 4, "-100100001", "Main 4:2:2 12", "A.3.5", 2000, 2200},
    {Profile::Main444, 4, "-111000001", "Main 4:4:4", "A.3.5", 2000, 2200},
    {Profile::Main44410, 4, "-110000001", "Main 4:4:4 10", "A.3.5", 2500, 2750},
    {Profile::Main44412, 4, "-100000001", "Main 4:4:4 12", "A.3.5", 3000, 3300},
    {Profile::MainIntra, 4, "-11111010-", "Main Intra", "A.3.5", 1000, 1100},
    {Profile::Main10Intra, 4, "-11011010-", "Main 10 Intra", "A.3.5", 1000, 1100},
    {Profile::Main12Intra, 4, "-10011010-", "Main 12 Intra", "A.3.5", 1500, 1650},
    {Profile::Main42210Intra, 4, "-11010010-", "Main 4:2:2 10 Intra", "A.3.5", 1667, 1833},
    {Profile::Main42212Intra, 4, "-10010010-", "Main 4:2:2 12 Intra", "A.3.5", 2000, 2200},
    {Profile::Main444Intra, 4, "-11100010-", "Main 4:4:4 Intra", "A.3.5", 2000, 2200},
    {Profile::Main44410Intra, 4, "-11000010-", "Main 4:4:4 10 Intra", "A.3.5", 2500, 2750},
    {Profile::Main44412Intra, 4, "-10000010-", "Main 4:4:4 12 Intra", "A.3.5", 3000, 3300},
    {Profile::Main44416Intra, 4, "-00000010-", "Main 4:4:4 16 Intra", "A.3.5", 4000, 4400},
    {Profile::Main444StillPicture, 4, "-11100011-", "Main 4:4:4 Still Picture", "A.3.5", 2000, 2200},
    {Profile::Main44416StillPicture, 4, "-00000011-", "Main 4:4:4 16 Still Picture", "A.3.5", 4000, 4400},

    {Profile::HighThroughput444, 5, "1111000001", "High Throughput 4:4:4", "A.3.6", 2000, 2200},
    {Profile::HighThroughput44410, 5, "1110000001", "High Throughput 4:4:4 10", "A.3.6", 2500, 2750},
    {Profile::HighThroughput44414, 5, "1000000001", "High Throughput 4:4:4 14", "A.3.6", 3500, 3850},
    {Profile::HighThroughput44416Intra, 5, "000000010-", "High Throughput 4:4:4 16 Intra", "A.3.6", 4000,
     4400},

    {Profile::MultiviewMain, 6, "----------", "Multiview Main", "G.11.1.1", 1000, 1100},

    {Profile::ScalableMain, 7, "---1------", "Scalable Main", "H.11.1.1", 1000, 1100},
    {Profile::ScalableMain10, 7, "---0------", "Scalable Main 10", "H.11.1.1", 1000, 1100},

    {Profile::ThreeDMain, 8, "----------", "3D Main", "I.11.1.1", 1000, 1100},

    {Profile::ScreenExtendedMain, 9, "1111110001", "Screen-Extended Main", "A.3.7", 1000, 1100},
    {Profile::ScreenExtendedMain10, 9, "1110110001", "Screen-Extended Main 10", "A.3.7", 1000, 1100},
    {Profile::ScreenExtendedMain444, 9, "1111000001", "Screen-Extended Main 4:4:4", "A.3.7", 2000, 2200},
    {Profile::ScreenExtendedMain44410, 9, "1110000001", "Screen-Extended Main 4:4:4 10", "A.3.7", 2500, 2750},

    {Profile::ScalableMonochrome, 10, "1111111001", "Scalable Monochrome", "H.11.1.2", 667, 733},
    {Profile::ScalableMonochrome12, 10, "1100111001", "Scalable Monochrome 12", "H.11.1.2", 1000, 1100},
    {Profile::ScalableMonochrome16, 10, "0000111001", "Scalable Monochrome 16", "H.11.1.2", 1333, 1467},
    {Profile::ScalableMain444, 10, "1111000001", "Scalable Main 4:4:4", "H.11.1.2", 2000, 2200},

    {Profile::ScreenExtendedHighThroughput444, 11, "1111000001", "Screen-Extended High Throughput 4:4:4",
     "A.3.8", 2000, 2200},
    {Profile::ScreenExtendedHighThroughput44410, 11, "1110000001", "Screen-Extended High Throughput 4:4:4 10",
     "A.3.8", 2500, 2750},
    {Profile::ScreenExtendedHighThroughput44414, 11, "1000000001", "Screen-Extended High Throughput 4:4:4 14",
     "A.3.8", 3500, 3850},
};

/// What the profiles of one profile_idc have in common. The position is profile_idc.
constexpr const char* kProfileFamilyNames[] = {
    nullptr,
    "Main",
    "Main 10",
    "Main Still Picture",
    "Format range extensions",
    "High throughput",
    "Multiview Main",
    "Scalable Main",
    "3D Main",
    "Screen content coding extensions",
    "Scalable format range extensions",
    "High throughput screen content coding extensions",
};

/// True when \p profile has the constraint flags of \p constraints, in the form of ProfileEntry::constraints.
constexpr bool hasConstraints(const ProfileTier& profile, const char* constraints) {
    const bool flags[] = {profile.max_14bit_constraint_flag,        profile.max_12bit_constraint_flag,
                          profile.max_10bit_constraint_flag,        profile.max_8bit_constraint_flag,
                          profile.max_422chroma_constraint_flag,    profile.max_420chroma_constraint_flag,
                          profile.max_monochrome_constraint_flag,   profile.intra_constraint_flag,
                          profile.one_picture_only_constraint_flag, profile.lower_bit_rate_constraint_flag};
    for (const bool flag : flags) {
        if (*constraints != '-' && flag != (*constraints == '1')) {
            return false;
        }
        ++constraints;
    }
    return true;
}

/// The profile that profile_idc and the constraint flags indicate. Compatibility flags are not looked at.
///
/// \return null when this edition does not define the profile
constexpr const ProfileEntry* findProfile(const ProfileTier& profile) {
    for (const ProfileEntry& entry : kProfiles) {
        if (profile.profile_space == 0 && profile.profile_idc == entry.profile_idc &&
            hasConstraints(profile, entry.constraints)) {
            return &entry;
        }
    }
    return nullptr;
}

/// The name of the profile; where the constraint flags are those of none, what the profiles of its
/// profile_idc have in common; null where this edition does not define the profile_idc, and with
/// profile_space above 0.
constexpr const char* profileName(const ProfileTier& profile) {
    const ProfileEntry* const entry = findProfile(profile);
    if (entry != nullptr) {
        return entry->name;
    }
    constexpr uint32_t kFamilies = sizeof kProfileFamilyNames / sizeof kProfileFamilyNames[0];
    return profile.profile_space == 0 && profile.profile_idc < kFamilies
               ? kProfileFamilyNames[profile.profile_idc]
               : nullptr;
}

/// The name of a tier: general_tier_flag or sub_layer_tier_flag.
constexpr const char* tierName(bool tier_flag) {
    return tier_flag ? "High" : "Main";
}

}  // namespace qv::hevc

#endif
