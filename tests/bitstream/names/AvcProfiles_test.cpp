// Profiles and levels of H.264 by number.
#include "bitstream/names/AvcProfiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "bitstream/names/AvcLevels.h"

namespace {

using namespace qv::avc;

std::string profileName(uint32_t profile_idc, uint32_t constraints = 0) {
    const ProfileEntry* const profile = findProfile(profile_idc, constraints);
    return profile != nullptr ? profile->name : "";
}

TEST(AvcProfiles, byConstraintFlags) {
    EXPECT_EQ(profileName(66), "Baseline");
    EXPECT_EQ(profileName(66, 0x40), "Constrained Baseline");
    EXPECT_EQ(profileName(66, 0xE0), "Constrained Baseline");
    EXPECT_EQ(profileName(77), "Main");
    EXPECT_EQ(profileName(77, 0xC0), "Main");
    EXPECT_EQ(profileName(88), "Extended");
    EXPECT_EQ(profileName(100), "High");
    EXPECT_EQ(profileName(100, 0x08), "Progressive High");
    EXPECT_EQ(profileName(100, 0x04), "High");
    EXPECT_EQ(profileName(100, 0x0C), "Constrained High");
    EXPECT_EQ(profileName(110), "High 10");
    EXPECT_EQ(profileName(110, 0x08), "Progressive High 10");
    EXPECT_EQ(profileName(110, 0x10), "High 10 Intra");
    EXPECT_EQ(profileName(122), "High 4:2:2");
    EXPECT_EQ(profileName(122, 0x10), "High 4:2:2 Intra");
    EXPECT_EQ(profileName(244), "High 4:4:4 Predictive");
    EXPECT_EQ(profileName(244, 0x10), "High 4:4:4 Intra");
    EXPECT_EQ(profileName(44, 0x10), "CAVLC 4:4:4 Intra");
    EXPECT_EQ(profileName(83), "Scalable Baseline");
    EXPECT_EQ(profileName(83, 0x04), "Scalable Constrained Baseline");
    EXPECT_EQ(profileName(86), "Scalable High");
    EXPECT_EQ(profileName(86, 0x10), "Scalable High Intra");
    EXPECT_EQ(profileName(86, 0x04), "Scalable Constrained High");
    EXPECT_EQ(profileName(118), "Multiview High");
    EXPECT_EQ(profileName(128), "Stereo High");
    EXPECT_EQ(profileName(134), "MFC High");
    EXPECT_EQ(profileName(135), "MFC Depth High");
    EXPECT_EQ(profileName(138), "Multiview Depth High");
    EXPECT_EQ(profileName(139), "Enhanced Multiview Depth High");
}

TEST(AvcProfiles, everyOtherNumberIsReserved) {
    const std::set<uint32_t> defined = {44,  66,  77,  83,  86,  88,  100, 110,
                                        118, 122, 128, 134, 135, 138, 139, 244};
    for (uint32_t profile_idc = 0; profile_idc <= 256; ++profile_idc) {
        for (uint32_t constraints = 0; constraints <= 255; ++constraints) {
            EXPECT_EQ(findProfile(profile_idc, constraints) != nullptr, defined.count(profile_idc) != 0);
        }
    }
}

// A subset that came after its superset would never be found.
TEST(AvcProfiles, everyEntryIsFoundByItsFlags) {
    for (const ProfileEntry& entry : kProfiles) {
        EXPECT_EQ(findProfile(entry.profile_idc, entry.constraints), &entry) << entry.name;
    }
}

TEST(AvcProfiles, severalViews) {
    std::set<uint32_t> multiview;
    for (uint32_t profile_idc = 0; profile_idc <= 255; ++profile_idc) {
        if (isMultiview(profile_idc)) {
            multiview.insert(profile_idc);
        }
    }
    EXPECT_THAT(multiview, testing::ElementsAre(118, 128, 134, 135, 138, 139));
}

std::string levelName(uint32_t profile_idc, uint32_t constraints, uint32_t level_idc) {
    const LevelEntry* const level = findLevel(profile_idc, constraints, level_idc);
    return level != nullptr ? level->name : "";
}

TEST(AvcLevels, bothCodingsOf1b) {
    for (const uint32_t profile_idc : {66U, 77U, 88U}) {
        EXPECT_EQ(levelName(profile_idc, 0x10, 11), "1b");
        EXPECT_EQ(levelName(profile_idc, 0xEF, 11), "1.1");
        EXPECT_EQ(levelName(profile_idc, 0x10, 10), "1");
        EXPECT_EQ(levelName(profile_idc, 0x10, 12), "1.2");
    }
    for (const uint32_t profile_idc : {100U, 110U, 122U, 244U, 44U, 118U, 83U}) {
        EXPECT_EQ(levelName(profile_idc, 0x10, 11), "1.1") << "constraint_set3_flag has another meaning";
        EXPECT_EQ(levelName(profile_idc, 0, 9), "1b");
    }
}

TEST(AvcLevels, everyLevel) {
    std::string names;
    for (uint32_t level_idc = 0; level_idc <= 255; ++level_idc) {
        names += levelName(100, 0, level_idc) + (levelName(100, 0, level_idc).empty() ? "" : " ");
    }
    EXPECT_EQ(names, "1b 1 1.1 1.2 1.3 2 2.1 2.2 3 3.1 3.2 4 4.1 4.2 5 5.1 5.2 6 6.1 6.2 ");
}

// Each level allows what the one before it allows; MinCR is the exception.
TEST(AvcLevels, limitsAscend) {
    const LevelEntry* before = &kLevels[0];
    for (const LevelEntry& level : kLevels) {
        EXPECT_GE(level.MaxMBPS, before->MaxMBPS) << level.name;
        EXPECT_GE(level.MaxFS, before->MaxFS) << level.name;
        EXPECT_GE(level.MaxDpbMbs, before->MaxDpbMbs) << level.name;
        EXPECT_GE(level.MaxBR, before->MaxBR) << level.name;
        EXPECT_GE(level.MaxCPB, before->MaxCPB) << level.name;
        EXPECT_GE(level.MaxVmvR, before->MaxVmvR) << level.name;
        before = &level;
    }
    static_assert(findLevel(100, 0, 41)->MaxBR == 50000, "Table A-1");
    static_assert(findLevel(66, 0x10, 11)->MaxCPB == 350, "Table A-1");
}

}  // namespace
