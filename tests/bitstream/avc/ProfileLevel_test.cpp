// Profile and level of an H.264 sequence parameter set.
#include "bitstream/avc/ProfileLevel.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace qv::avc;

TEST(AvcProfileLevel, constraintFlagsAreAByte) {
    SpsData sps = {};
    EXPECT_EQ(constraintsOf(sps), 0U);
    sps.constraint_set0_flag = true;
    EXPECT_EQ(constraintsOf(sps), 0x80U);
    sps.constraint_set1_flag = true;
    sps.constraint_set3_flag = true;
    EXPECT_EQ(constraintsOf(sps), 0xD0U);
    sps.constraint_set2_flag = true;
    sps.constraint_set4_flag = true;
    sps.constraint_set5_flag = true;
    sps.reserved_zero_2bits = 3;
    EXPECT_EQ(constraintsOf(sps), 0xFFU);
}

std::string namesOf(const SpsData& sps) {
    const ProfileEntry* const profile = profileOf(sps);
    const LevelEntry* const level = levelOf(sps);
    return std::string(profile != nullptr ? profile->name : "none") + ", " +
           (level != nullptr ? level->name : "none");
}

TEST(AvcProfileLevel, ofAParameterSet) {
    SpsData sps = {};
    sps.profile_idc = 66;
    sps.level_idc = 11;
    EXPECT_EQ(namesOf(sps), "Baseline, 1.1");
    sps.constraint_set1_flag = true;
    sps.constraint_set3_flag = true;
    EXPECT_EQ(namesOf(sps), "Constrained Baseline, 1b");
    sps.profile_idc = 144;
    sps.level_idc = 99;
    EXPECT_EQ(namesOf(sps), "none, none");
}

TEST(AvcProfileLevel, intraProfiles) {
    SpsData sps = {};
    for (const uint32_t profile_idc : {44U, 86U, 100U, 110U, 122U, 244U}) {
        sps.profile_idc = profile_idc;
        sps.constraint_set3_flag = false;
        EXPECT_FALSE(isIntraProfile(sps)) << profile_idc;
        sps.constraint_set3_flag = true;
        EXPECT_TRUE(isIntraProfile(sps)) << profile_idc;
    }
    for (const uint32_t profile_idc : {66U, 77U, 88U, 83U, 118U, 128U}) {
        sps.profile_idc = profile_idc;
        EXPECT_FALSE(isIntraProfile(sps)) << profile_idc;
    }
}

}  // namespace
