// Where decoding may begin.
#include "bitstream/sei/RandomAccess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "bitstream/sei/RandomAccessSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

PayloadUnderTest<AvcRecoveryPoint> avcRecoveryPoint() {
    auto structure = payloadUnderTest<AvcRecoveryPoint>(
        Context(Codec::Avc), [](auto& s, const auto& c, auto& payload) { recovery_point(s, c, payload); });
    structure.violable = 2;
    return structure;
}

PayloadUnderTest<HevcRecoveryPoint> hevcRecoveryPoint() {
    auto structure = payloadUnderTest<HevcRecoveryPoint>(
        Context(Codec::Hevc), [](auto& s, const auto& c, auto& payload) { recovery_point(s, c, payload); });
    structure.violable = 2;
    return structure;
}

PayloadUnderTest<RegionRefreshInfo> regionRefreshInfo() {
    return payloadUnderTest<RegionRefreshInfo>(
        Context(Codec::Hevc),
        [](auto& s, const auto& c, auto& payload) { region_refresh_info(s, c, payload); });
}

PayloadUnderTest<DependentRapIndication> dependentRapIndication() {
    return payloadUnderTest<DependentRapIndication>(
        Context(Codec::Hevc),
        [](auto& s, const auto& c, auto& payload) { dependent_rap_indication(s, c, payload); });
}

TEST(SeiRandomAccess, roundTrips) {
    checkRoundTrips(avcRecoveryPoint(), unitRounds());
    checkRoundTrips(hevcRecoveryPoint(), unitRounds());
    checkRoundTrips(regionRefreshInfo(), unitRounds());
}

TEST(SeiRandomAccess, everyRange) {
    EXPECT_THAT(checkRanges(avcRecoveryPoint(), unitRounds()),
                IsSupersetOf({"recovery_frame_cnt", "changing_slice_group_idc"}));
    EXPECT_THAT(checkRanges(hevcRecoveryPoint(), unitRounds()), IsSupersetOf({"recovery_poc_cnt"}));
}

TEST(SeiRandomAccess, cutAtEveryByte) {
    checkCuts(avcRecoveryPoint(), unitRounds(50));
    checkCuts(hevcRecoveryPoint(), unitRounds(50));
    checkCuts(regionRefreshInfo(), unitRounds(50));
}

TEST(SeiRandomAccess, noAllocationAndNoByteOutside) {
    checkMemory(avcRecoveryPoint(), unitRounds(25));
    checkMemory(hevcRecoveryPoint(), unitRounds(25));
    checkMemory(regionRefreshInfo(), unitRounds(25));
    checkEmptyPayload(dependentRapIndication());
}

TEST(SeiRandomAccess, avcRecoveryPoint) {
    // recovery_frame_cnt 9: 0001010. exact_match_flag, no broken_link_flag, changing_slice_group_idc 2.
    const auto payload = payloadOf<AvcRecoveryPoint>(Context(Codec::Avc), "0001010 1 0 10");
    EXPECT_EQ(payload->recovery_frame_cnt, 9U);
    EXPECT_TRUE(payload->exact_match_flag);
    EXPECT_FALSE(payload->broken_link_flag);
    EXPECT_EQ(payload->changing_slice_group_idc, 2U);
}

TEST(SeiRandomAccess, hevcRecoveryPoint) {
    // recovery_poc_cnt -2: code number 4, 00101. broken_link_flag alone.
    const auto payload = payloadOf<HevcRecoveryPoint>(Context(Codec::Hevc), "00101 0 1");
    EXPECT_EQ(payload->recovery_poc_cnt, -2);
    EXPECT_FALSE(payload->exact_match_flag);
    EXPECT_TRUE(payload->broken_link_flag);
    EXPECT_TRUE(payloadOf<RegionRefreshInfo>(Context(Codec::Hevc), "1")->refreshed_region_flag);
}

}  // namespace
