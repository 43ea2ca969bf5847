// Rates and sizes of the hypothetical reference decoder of H.264.
#include "bitstream/avc/HrdRates.h"

#include <gtest/gtest.h>

namespace {

using namespace qv::avc;

TEST(AvcHrdRates, bitsOfEachSchedule) {
    Hrd hrd = {};
    hrd.cpb_cnt_minus1 = 1;
    hrd.bit_rate_scale = 4;
    hrd.cpb_size_scale = 6;
    hrd.bit_rate_value_minus1[0] = 4882;
    hrd.cpb_size_value_minus1[0] = 1220;
    hrd.bit_rate_value_minus1[1] = 9765;
    EXPECT_EQ(bitRate(hrd, 0), 4883U * 1024);
    EXPECT_EQ(cpbSize(hrd, 0), 1221U * 1024);
    EXPECT_EQ(bitRate(hrd, 1), 9766U * 1024);
    EXPECT_EQ(cpbSize(hrd, 1), 1024U);
}

TEST(AvcHrdRates, theGreatestValuesDoNotOverflow) {
    Hrd hrd = {};
    hrd.bit_rate_scale = 15;
    hrd.cpb_size_scale = 15;
    hrd.bit_rate_value_minus1[0] = 0xFFFFFFFE;
    hrd.cpb_size_value_minus1[0] = 0xFFFFFFFE;
    EXPECT_EQ(bitRate(hrd, 0), 0xFFFFFFFFULL << 21);
    EXPECT_EQ(cpbSize(hrd, 0), 0xFFFFFFFFULL << 19);
}

TEST(AvcHrdRates, aScheduleThatIsNotThereHasNoBits) {
    Hrd hrd = {};
    EXPECT_EQ(bitRate(hrd, 1), 0U);
    EXPECT_EQ(cpbSize(hrd, 1), 0U);
    hrd.cpb_cnt_minus1 = 0xFFFFFFFF;
    EXPECT_EQ(bitRate(hrd, 32), 0U);
    EXPECT_EQ(cpbSize(hrd, 0xFFFFFFFF), 0U);
}

TEST(AvcHrdRates, limitsOfProfileAndLevel) {
    const LevelEntry& level = *findLevel(100, 0, 41);
    EXPECT_EQ(maxBitRate(*findProfile(77, 0), level, HrdType::Vcl), 50000000U);
    EXPECT_EQ(maxBitRate(*findProfile(77, 0), level, HrdType::Nal), 60000000U);
    EXPECT_EQ(maxBitRate(*findProfile(100, 0), level, HrdType::Vcl), 62500000U);
    EXPECT_EQ(maxBitRate(*findProfile(110, 0), level, HrdType::Nal), 180000000U);
    EXPECT_EQ(maxBitRate(*findProfile(122, 0x10), level, HrdType::Vcl), 200000000U);
    EXPECT_EQ(maxCpbSize(*findProfile(100, 0), level, HrdType::Nal), 93750000U);
    EXPECT_EQ(maxCpbSize(*findProfile(100, 0), level, HrdType::Vcl), 78125000U);
    EXPECT_EQ(maxCpbSize(*findProfile(244, 0), *findLevel(244, 0, 62), HrdType::Nal), 3840000000U);
}

TEST(AvcHrdRates, delayLengths) {
    Vui vui = {};
    EXPECT_EQ(delayLengthsOf(vui).initial_cpb_removal_delay, 24U) << "inferred";
    EXPECT_EQ(delayLengthsOf(vui).cpb_removal_delay, 24U);
    EXPECT_EQ(delayLengthsOf(vui).dpb_output_delay, 24U);
    EXPECT_EQ(delayLengthsOf(vui).time_offset, 24U);
    vui.vcl_hrd_parameters_present_flag = true;
    vui.vcl_hrd_parameters.initial_cpb_removal_delay_length_minus1 = 31;
    vui.vcl_hrd_parameters.cpb_removal_delay_length_minus1 = 1;
    vui.vcl_hrd_parameters.dpb_output_delay_length_minus1 = 2;
    vui.vcl_hrd_parameters.time_offset_length = 0;
    EXPECT_EQ(delayLengthsOf(vui).initial_cpb_removal_delay, 32U);
    EXPECT_EQ(delayLengthsOf(vui).cpb_removal_delay, 2U);
    EXPECT_EQ(delayLengthsOf(vui).dpb_output_delay, 3U);
    EXPECT_EQ(delayLengthsOf(vui).time_offset, 0U);
    vui.nal_hrd_parameters_present_flag = true;
    vui.nal_hrd_parameters.cpb_removal_delay_length_minus1 = 9;
    EXPECT_EQ(delayLengthsOf(vui).cpb_removal_delay, 10U);
}

}  // namespace
