// Profiles, tiers and levels of H.265.
#include "bitstream/hevc/ProfileLevel.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace qv::hevc;

// Constraint flags in the order of the table: 14, 12, 10 and 8 bits, 4:2:2, 4:2:0, monochrome, intra, one
// picture, lower bit rate.
ProfileTier profileWith(uint32_t profile_idc, const std::string& flags) {
    ProfileTier profile = {};
    profile.profile_idc = profile_idc;
    profile.max_14bit_constraint_flag = flags[0] == '1';
    profile.max_12bit_constraint_flag = flags[1] == '1';
    profile.max_10bit_constraint_flag = flags[2] == '1';
    profile.max_8bit_constraint_flag = flags[3] == '1';
    profile.max_422chroma_constraint_flag = flags[4] == '1';
    profile.max_420chroma_constraint_flag = flags[5] == '1';
    profile.max_monochrome_constraint_flag = flags[6] == '1';
    profile.intra_constraint_flag = flags[7] == '1';
    profile.one_picture_only_constraint_flag = flags[8] == '1';
    profile.lower_bit_rate_constraint_flag = flags[9] == '1';
    return profile;
}

TEST(HevcProfileLevel, profiles) {
    struct Case {
        uint32_t profile_idc;
        const char* flags;
        const char* name;
    };
    const Case cases[] = {
        {1, "0000000000", "Main"},
        {1, "0111110001", "Main"},
        {2, "0000000000", "Main 10"},
        {2, "0000000010", "Main 10 Still Picture"},
        {3, "0000000010", "Main Still Picture"},
        {4, "0111111001", "Monochrome"},
        {4, "0110111001", "Monochrome 10"},
        {4, "0100111001", "Monochrome 12"},
        {4, "0000111001", "Monochrome 16"},
        {4, "0100110001", "Main 12"},
        {4, "0110100001", "Main 4:2:2 10"},
        {4, "0100100001", "Main 4:2:2 12"},
        {4, "0111000001", "Main 4:4:4"},
        {4, "0110000001", "Main 4:4:4 10"},
        {4, "0100000001", "Main 4:4:4 12"},
        {4, "0111110100", "Main Intra"},
        {4, "0111110101", "Main Intra"},
        {4, "0110110101", "Main 10 Intra"},
        {4, "0100110101", "Main 12 Intra"},
        {4, "0110100100", "Main 4:2:2 10 Intra"},
        {4, "0100100100", "Main 4:2:2 12 Intra"},
        {4, "0111000100", "Main 4:4:4 Intra"},
        {4, "0110000100", "Main 4:4:4 10 Intra"},
        {4, "0100000100", "Main 4:4:4 12 Intra"},
        {4, "0000000100", "Main 4:4:4 16 Intra"},
        {4, "0111000110", "Main 4:4:4 Still Picture"},
        {4, "0000000111", "Main 4:4:4 16 Still Picture"},
        {4, "0111111111", "Format range extensions"},
        {5, "1111000001", "High Throughput 4:4:4"},
        {5, "1110000001", "High Throughput 4:4:4 10"},
        {5, "1000000001", "High Throughput 4:4:4 14"},
        {5, "0000000100", "High Throughput 4:4:4 16 Intra"},
        {5, "1111111111", "High throughput"},
        {6, "0111110001", "Multiview Main"},
        {7, "0111110001", "Scalable Main"},
        {7, "0110110001", "Scalable Main 10"},
        {8, "0110110001", "3D Main"},
        {9, "1111110001", "Screen-Extended Main"},
        {9, "1110110001", "Screen-Extended Main 10"},
        {9, "1111000001", "Screen-Extended Main 4:4:4"},
        {9, "1110000001", "Screen-Extended Main 4:4:4 10"},
        {9, "0000000000", "Screen content coding extensions"},
        {10, "1111111001", "Scalable Monochrome"},
        {10, "1100111001", "Scalable Monochrome 12"},
        {10, "0000111001", "Scalable Monochrome 16"},
        {10, "1111000001", "Scalable Main 4:4:4"},
        {10, "0000000000", "Scalable format range extensions"},
        {11, "1111000001", "Screen-Extended High Throughput 4:4:4"},
        {11, "1110000001", "Screen-Extended High Throughput 4:4:4 10"},
        {11, "1000000001", "Screen-Extended High Throughput 4:4:4 14"},
        {11, "0000000000", "High throughput screen content coding extensions"},
    };
    std::set<std::string> names;
    for (const Case& one : cases) {
        const ProfileTier profile = profileWith(one.profile_idc, one.flags);
        EXPECT_STREQ(profileName(profile), one.name) << one.profile_idc << " " << one.flags;
        if (findProfile(profile) != nullptr) {
            names.insert(one.name);
        }
    }
    for (const ProfileEntry& entry : kProfiles) {
        EXPECT_EQ(names.count(entry.name), 1U) << entry.name;
    }
}

TEST(HevcProfileLevel, profilesThatAreNotDefined) {
    ProfileTier profile = {};
    EXPECT_EQ(profileName(profile), nullptr);
    profile.profile_idc = 12;
    EXPECT_EQ(profileName(profile), nullptr);
    profile.profile_idc = 31;
    EXPECT_EQ(profileName(profile), nullptr);
    profile.profile_idc = 1;
    profile.profile_space = 1;
    EXPECT_EQ(profileName(profile), nullptr);
    EXPECT_EQ(findProfile(profile), nullptr);
}

TEST(HevcProfileLevel, namesWithoutRunningTheProgram) {
    constexpr ProfileTier kMain10 = [] {
        ProfileTier profile = {};
        profile.profile_idc = 2;
        return profile;
    }();
    static_assert(findProfile(kMain10)->profile == Profile::Main10);
    static_assert(levelName(153)[0] == '5');
    static_assert(!isCompatibleWith(kMain10, 1) && isCompatibleWith(kMain10, 2));
}

TEST(HevcProfileLevel, factors) {
    const ProfileEntry* const monochrome = findProfile(profileWith(4, "0111111001"));
    ASSERT_NE(monochrome, nullptr);
    EXPECT_EQ(monochrome->CpbVclFactor, 667U);
    const ProfileEntry* const intra16 = findProfile(profileWith(4, "0000000100"));
    ASSERT_NE(intra16, nullptr);
    EXPECT_EQ(intra16->CpbNalFactor, 4400U);
}

TEST(HevcProfileLevel, ofAProfileTierLevel) {
    ProfileTierLevel ptl = {};
    ptl.general.profile_idc = 1;
    ptl.general_level_idc = 93;
    const ProfileEntry* const profile = profileOf(ptl);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(profile->profile, Profile::Main);
    const LevelEntry* const level = levelOf(ptl);
    ASSERT_NE(level, nullptr);
    EXPECT_EQ(level->MaxLumaPs, 983040U);
}

TEST(HevcProfileLevel, compatibility) {
    ProfileTier profile = {};
    profile.profile_idc = 2;
    profile.profile_compatibility_flag = 0b110;
    EXPECT_FALSE(isCompatibleWith(profile, 0));
    EXPECT_TRUE(isCompatibleWith(profile, 1));
    EXPECT_TRUE(isCompatibleWith(profile, 2));
    EXPECT_FALSE(isCompatibleWith(profile, 31));
}

TEST(HevcProfileLevel, levels) {
    struct Case {
        uint32_t level_idc;
        const char* name;
    };
    for (const Case& one :
         {Case{30, "1"}, Case{60, "2"}, Case{63, "2.1"}, Case{90, "3"}, Case{93, "3.1"}, Case{120, "4"},
          Case{123, "4.1"}, Case{150, "5"}, Case{153, "5.1"}, Case{156, "5.2"}, Case{180, "6"},
          Case{183, "6.1"}, Case{186, "6.2"}, Case{255, "8.5"}}) {
        EXPECT_STREQ(levelName(one.level_idc), one.name);
    }
    EXPECT_EQ(levelName(0), nullptr);
    EXPECT_EQ(levelName(94), nullptr);
    EXPECT_EQ(findLevel(255), nullptr);
}

// Levels that say the same thing twice say the same.
TEST(HevcProfileLevel, limitsRiseWithTheLevel) {
    const LevelEntry* before = nullptr;
    for (const LevelEntry& level : kLevels) {
        if (before != nullptr) {
            EXPECT_GT(level.level_idc, before->level_idc);
            EXPECT_GE(level.MaxLumaPs, before->MaxLumaPs);
            EXPECT_GE(level.MaxLumaSr, before->MaxLumaSr);
            EXPECT_GE(level.MaxBR[0], before->MaxBR[0]);
            EXPECT_GE(level.MaxBR[1], before->MaxBR[1]);
            EXPECT_GE(level.MaxCPB[0], before->MaxCPB[0]);
            EXPECT_GE(level.MaxTileRows, before->MaxTileRows);
            EXPECT_GE(level.MaxTileCols, before->MaxTileCols);
            EXPECT_GE(level.MaxSliceSegmentsPerPicture, before->MaxSliceSegmentsPerPicture);
        }
        EXPECT_EQ(level.MaxBR[1] != 0, level.level_idc >= 120) << level.name;
        before = &level;
    }
    const LevelEntry& level51 = kLevels[8];
    EXPECT_EQ(level51.level_idc, 153U);
    EXPECT_EQ(level51.MaxLumaSr, 534773760U);
    const LevelEntry& level62 = kLevels[12];
    EXPECT_EQ(level62.level_idc, 186U);
    EXPECT_EQ(level62.MaxLumaSr, 4278190080U);
    EXPECT_EQ(level62.MaxBR[1], 800000U);
}

TEST(HevcProfileLevel, tiers) {
    EXPECT_STREQ(tierName(false), "Main");
    EXPECT_STREQ(tierName(true), "High");
}

}  // namespace
