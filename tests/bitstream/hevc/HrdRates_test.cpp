// Rates and sizes of H.265 HRD parameters and levels.
#include "bitstream/hevc/HrdRates.h"

#include <gtest/gtest.h>

namespace {

using namespace qv::hevc;

TEST(HevcHrdRates, inBits) {
    HrdCommon common = {};
    common.bit_rate_scale = 2;
    common.cpb_size_scale = 3;
    common.cpb_size_du_scale = 4;
    CpbParameters cpb = {};
    cpb.bit_rate_value_minus1[1] = 100;
    cpb.cpb_size_value_minus1[1] = 200;
    cpb.cpb_size_du_value_minus1[1] = 300;
    cpb.bit_rate_du_value_minus1[1] = 400;
    EXPECT_EQ(bitRate(common, cpb, 1), 101U * 256);
    EXPECT_EQ(cpbSize(common, cpb, 1), 201U * 128);
    EXPECT_EQ(bitRateDu(common, cpb, 1), 0U);
    EXPECT_EQ(cpbSizeDu(common, cpb, 1), 0U);
    common.sub_pic_hrd_params_present_flag = true;
    EXPECT_EQ(bitRateDu(common, cpb, 1), 401U * 256);
    EXPECT_EQ(cpbSizeDu(common, cpb, 1), 301U * 256);
    for (const auto function : {bitRate, cpbSize, bitRateDu, cpbSizeDu}) {
        EXPECT_EQ(function(common, cpb, 32), 0U);
        EXPECT_NE(function(common, cpb, 31), 0U);
    }
}

TEST(HevcHrdRates, greatestValues) {
    HrdCommon common = {};
    common.bit_rate_scale = 15;
    common.cpb_size_scale = 15;
    CpbParameters cpb = {};
    cpb.bit_rate_value_minus1[31] = 0xFFFFFFFF;
    cpb.cpb_size_value_minus1[31] = 0xFFFFFFFF;
    EXPECT_EQ(bitRate(common, cpb, 31), uint64_t{1} << 53);
    EXPECT_EQ(cpbSize(common, cpb, 31), uint64_t{1} << 51);
}

ProfileTierLevel ptlOf(uint32_t profile_idc, uint32_t level_idc, bool high = false) {
    ProfileTierLevel ptl = {};
    ptl.general.profile_idc = profile_idc;
    ptl.general.tier_flag = high;
    ptl.general_level_idc = level_idc;
    return ptl;
}

TEST(HevcHrdRates, limitsOfLevels) {
    const ProfileTierLevel main41 = ptlOf(1, 123);
    EXPECT_EQ(maxBitRate(main41, HrdType::Vcl), 20000000U);
    EXPECT_EQ(maxBitRate(main41, HrdType::Nal), 22000000U);
    EXPECT_EQ(maxCpbSize(main41, HrdType::Vcl), 20000000U);
    const ProfileTierLevel high51 = ptlOf(2, 153, true);
    EXPECT_EQ(maxBitRate(high51, HrdType::Nal), 176000000U);
    EXPECT_EQ(maxCpbSize(high51, HrdType::Vcl), 160000000U);
    // No High tier below level 4, no limits at level 8.5, no such level, no such profile.
    for (const ProfileTierLevel& ptl : {ptlOf(1, 93, true), ptlOf(1, 255), ptlOf(1, 31), ptlOf(12, 123)}) {
        EXPECT_EQ(maxBitRate(ptl, HrdType::Vcl), 0U);
        EXPECT_EQ(maxCpbSize(ptl, HrdType::Vcl), 0U);
    }
}

TEST(HevcHrdRates, highBitRates) {
    // Main 4:4:4 16 Intra with and without general_lower_bit_rate_constraint_flag.
    ProfileTierLevel ptl = ptlOf(4, 186, true);
    ptl.general.intra_constraint_flag = true;
    EXPECT_EQ(hbrFactor(ptl.general), 2U);
    EXPECT_EQ(maxBitRate(ptl, HrdType::Nal), uint64_t{4400} * 2 * 800000);
    EXPECT_EQ(maxCpbSize(ptl, HrdType::Nal), uint64_t{4400} * 800000);
    ptl.general.lower_bit_rate_constraint_flag = true;
    EXPECT_EQ(hbrFactor(ptl.general), 1U);
    // High Throughput 4:4:4 16 Intra.
    ptl.general.profile_idc = 5;
    EXPECT_EQ(hbrFactor(ptl.general), 12U);
    ptl.general.lower_bit_rate_constraint_flag = false;
    EXPECT_EQ(hbrFactor(ptl.general), 24U);
    EXPECT_EQ(maxBitRate(ptl, HrdType::Vcl), uint64_t{4000} * 24 * 800000);
    ptl.general.intra_constraint_flag = false;
    EXPECT_EQ(hbrFactor(ptl.general), 6U);
    ptl.general.profile_idc = 11;
    EXPECT_EQ(hbrFactor(ptl.general), 6U);
    ptl.general.profile_idc = 1;
    EXPECT_EQ(hbrFactor(ptl.general), 1U);
}

}  // namespace
