// Time codes of H.265, and the times that clock timestamps specify.
#include "bitstream/sei/TimeCode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "bitstream/sei/TimeCodeSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

PayloadUnderTest<TimeCode> timeCode() {
    auto structure = payloadUnderTest<TimeCode>(
        Context(Codec::Hevc), [](auto& s, const auto& c, auto& payload) { time_code(s, c, payload); });
    structure.violable = 4;
    return structure;
}

TEST(SeiTimeCode, roundTrips) {
    checkRoundTrips(timeCode(), unitRounds());
}

TEST(SeiTimeCode, everyRange) {
    EXPECT_THAT(checkRanges(timeCode(), unitRounds()),
                IsSupersetOf({"num_clock_ts", "seconds_value", "minutes_value", "hours_value"}));
}

TEST(SeiTimeCode, cutAtEveryByte) {
    checkCuts(timeCode(), unitRounds(50));
}

TEST(SeiTimeCode, noAllocationAndNoByteOutside) {
    const Derivation<TimeCode> clockTime = {"clockTimeOf", [](const TimeCode& code) -> uint64_t {
                                                const ClockTime time =
                                                    clockTimeOf(code.clock_timestamp[0], {});
                                                return static_cast<uint64_t>(clockTimestampOf(time, 1, 25));
                                            }};
    checkMemory(timeCode(), unitRounds(25), {clockTime});
}

TEST(SeiTimeCode, absentPartsAreThoseOfTheTimestampBefore) {
    const auto payload = payloadOf<TimeCode>(
        Context(Codec::Hevc),
        "11"
        // units_field_based_flag, counting_type 4, full_timestamp_flag, 511 frames, 1:02:03, 5 bits: -16
        "1 1 00100 1 0 0 111111111 000011 000010 00001 00101 10000"
        // 4 frames, no seconds, no time_offset_value
        "1 0 00000 0 0 0 000000100 0 00000"
        // 5 frames, 10 seconds, 20 minutes, 21 hours
        "1 0 00001 0 0 0 000000101 1 001010 1 010100 1 10101 00000");
    EXPECT_EQ(payload->num_clock_ts, 3U);
    EXPECT_EQ(payload->clock_timestamp[0].time_offset_length, 5U);
    EXPECT_EQ(payload->clock_timestamp[0].time_offset_value, -16);
    const ClockTime first = clockTimeOf(payload->clock_timestamp[0], {});
    EXPECT_EQ(first.hours, 1U);
    EXPECT_EQ(first.minutes, 2U);
    EXPECT_EQ(first.seconds, 3U);
    EXPECT_EQ(first.frames, 511U);
    EXPECT_EQ(first.ticksPerFrame, 2U);
    EXPECT_TRUE(first.isDropFrame);
    EXPECT_EQ(first.offset, -16);
    EXPECT_EQ(clockTimestampOf(first, 2, 50), 3723 * 50 + 511 * 4 - 16);
    const ClockTime second = clockTimeOf(payload->clock_timestamp[1], first);
    EXPECT_TRUE(second.hasHours && second.hasMinutes && second.hasSeconds);
    EXPECT_EQ(second.hours, 1U);
    EXPECT_EQ(second.minutes, 2U);
    EXPECT_EQ(second.seconds, 3U);
    EXPECT_EQ(second.frames, 4U);
    EXPECT_EQ(second.offset, 0);
    const ClockTime third = clockTimeOf(payload->clock_timestamp[2], second);
    EXPECT_EQ(third.hours, 21U);
    EXPECT_EQ(third.minutes, 20U);
    EXPECT_EQ(third.seconds, 10U);
}

// The greatest time is far from the ends of 64 bits.
TEST(SeiTimeCode, greatestClockTimestamp) {
    ClockTime time;
    time.hours = 23;
    time.minutes = time.seconds = 59;
    time.frames = 511;
    time.ticksPerFrame = 2;
    time.offset = INT32_MAX;
    EXPECT_EQ(clockTimestampOf(time, UINT32_MAX, UINT32_MAX),
              (int64_t{86399} + 1022) * UINT32_MAX + INT32_MAX);
}

TEST(SeiTimeCode, partsThatNoTimestampHad) {
    ClockTimestamp timestamp = {};
    timestamp.clock_timestamp_flag = timestamp.seconds_flag = true;
    timestamp.seconds_value = 7;
    ClockTime time = clockTimeOf(timestamp, {});
    EXPECT_TRUE(time.hasSeconds);
    EXPECT_FALSE(time.hasMinutes);
    timestamp.minutes_flag = true;
    time = clockTimeOf(timestamp, time);
    EXPECT_TRUE(time.hasMinutes);
    EXPECT_FALSE(time.hasHours);
    timestamp.hours_flag = true;
    EXPECT_TRUE(clockTimeOf(timestamp, time).hasHours);
}

}  // namespace
