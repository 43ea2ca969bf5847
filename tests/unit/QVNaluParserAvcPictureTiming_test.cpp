// The H.264 pic_timing() payload, parserAvcPictureTiming.
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>

#include "AvcPayloadTest.h"
#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"

namespace qv_test {
namespace {

using PictureTiming = QVAvcSeiPictureTiming;

static_assert(isPlain<QVAvcClockTimestamp>());
static_assert(sizeof(QVAvcClockTimestamp) == 6 * 4);
static_assert(std::is_same<decltype(QVAvcClockTimestamp::full_timestamp_flag), uint32_t>::value);
static_assert(std::is_same<decltype(QVAvcClockTimestamp::n_frames), uint32_t>::value);
static_assert(std::is_same<decltype(QVAvcClockTimestamp::seconds_value), uint32_t>::value);
static_assert(std::is_same<decltype(QVAvcClockTimestamp::minutes_value), uint32_t>::value);
static_assert(std::is_same<decltype(QVAvcClockTimestamp::hours_value), uint32_t>::value);
static_assert(std::is_same<decltype(QVAvcClockTimestamp::isDropFrame), uint32_t>::value);

static_assert(isPlain<PictureTiming>());
static_assert(sizeof(PictureTiming) == 24 * 4);
static_assert(offsetof(PictureTiming, isValid) == 0);
static_assert(offsetof(PictureTiming, pic_struct) == 4);
static_assert(offsetof(PictureTiming, ctTypeMask) == 8);
static_assert(offsetof(PictureTiming, dpb_output_delay) == 12, "cpb_removal_delay is coded first");
static_assert(offsetof(PictureTiming, cpb_removal_delay) == 16);
static_assert(offsetof(PictureTiming, clockTimestamps) == 20);
static_assert(offsetof(PictureTiming, numClockTimestamps) == 92);
static_assert(std::is_same<decltype(PictureTiming::isValid), uint32_t>::value);
static_assert(std::is_same<decltype(PictureTiming::pic_struct), uint32_t>::value);
static_assert(std::is_same<decltype(PictureTiming::ctTypeMask), uint32_t>::value);
static_assert(std::is_same<decltype(PictureTiming::dpb_output_delay), uint32_t>::value);
static_assert(std::is_same<decltype(PictureTiming::cpb_removal_delay), uint32_t>::value);
static_assert(std::is_same<decltype(PictureTiming::clockTimestamps), QVAvcClockTimestamp[3]>::value);
static_assert(std::is_same<decltype(PictureTiming::numClockTimestamps), uint32_t>::value);

// An SPS with pic_struct and without delays; time_offset has time_offset_length bits.
QVAvcSps picStructSps(int32_t time_offset_length = 0) {
    QVAvcSps sps{};
    sps.pic_struct_present_flag = 1;
    sps.time_offset_length = time_offset_length;
    return sps;
}

auto parsingPictureTiming(const QVAvcSps& sps) {
    return [sps](QVByteStream& stream, PictureTiming* record) {
        QVAvcSps active = sps;
        return QVNaluParser::parserAvcPictureTiming(stream, 0, record, &active);
    };
}

ExpectedLine timingSummary(uint32_t ctTypeMask, uint32_t pic_struct) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "%X", ctTypeMask);
    return {3, "parserAvcPictureTiming",
            std::string("parserAvcPictureTiming: ct_type:") + hex +
                ", pic_struct:" + std::to_string(pic_struct) + ".\n"};
}

ExpectedLine picStructError(uint32_t pic_struct) {
    return errorLine("parserAvcPictureTiming",
                     "parserAvcPictureTiming: pic_struct(" + std::to_string(pic_struct) + ") error.\n");
}

bool isDropFrame(const ClockTimestampSyntax& syntax) {
    return syntax.cnt_dropped_flag == 1 && syntax.counting_type >= 2 && syntax.counting_type <= 6;
}

// In the syntax, values that are not coded are 0.
void storeTimestamp(PictureTiming& record, const ClockTimestampSyntax& syntax) {
    QVAvcClockTimestamp& timestamp = record.clockTimestamps[record.numClockTimestamps++];
    record.ctTypeMask |= 1U << syntax.ct_type;
    timestamp.full_timestamp_flag = syntax.full_timestamp_flag;
    timestamp.n_frames = syntax.n_frames;
    timestamp.seconds_value = syntax.seconds_value;
    timestamp.minutes_value = syntax.minutes_value;
    timestamp.hours_value = syntax.hours_value;
    if (isDropFrame(syntax)) {
        timestamp.isDropFrame = 1;
    }
}

// Returns the record that an accepted message gives.
PictureTiming stored(const PicTimingSyntax& syntax, const QVAvcSps& sps) {
    PictureTiming record = patternRecord<PictureTiming>();
    if (sps.nal_hrd_parameters_present_flag != 0 || sps.vcl_hrd_parameters_present_flag != 0) {
        record.cpb_removal_delay = static_cast<uint32_t>(syntax.cpb_removal_delay);
        record.dpb_output_delay = static_cast<uint32_t>(syntax.dpb_output_delay);
    }
    record.isValid = 1;
    if (sps.pic_struct_present_flag != 0) {
        record.pic_struct = syntax.pic_struct;
        record.ctTypeMask = 0;
        record.numClockTimestamps = 0;
        for (const ClockTimestampSyntax& timestamp : syntax.clockTimestamps) {
            if (timestamp.clock_timestamp_flag == 1) {
                storeTimestamp(record, timestamp);
            }
        }
    }
    return record;
}

Outcome<PictureTiming> acceptedTiming(const PicTimingSyntax& syntax, const QVAvcSps& sps, Cursor cursor) {
    Outcome<PictureTiming> outcome;
    outcome.record = stored(syntax, sps);
    outcome.cursor = cursor;
    if (sps.pic_struct_present_flag != 0) {
        outcome.lines = {timingSummary(outcome.record.ctTypeMask, syntax.pic_struct)};
    }
    return outcome;
}

// The outcome of a rejected pic_struct. The delays, pic_struct and the mask were already written.
Outcome<PictureTiming> refusedTiming(const PicTimingSyntax& syntax, const QVAvcSps& sps, Cursor cursor) {
    QVAvcSps untilPicStruct = sps;
    untilPicStruct.pic_struct_present_flag = 0;
    Outcome<PictureTiming> outcome;
    outcome.result = kFailed;
    outcome.record = stored(syntax, untilPicStruct);
    outcome.record.isValid = patternRecord<PictureTiming>().isValid;
    outcome.record.pic_struct = syntax.pic_struct;
    outcome.record.ctTypeMask = 0;
    outcome.lines = {picStructError(syntax.pic_struct)};
    outcome.cursor = cursor;
    return outcome;
}

auto pictureTimingContract(const QVAvcSps& sps) {
    return [sps](ModelledData& in) {
        const PicTimingSyntax syntax = readPicTiming(in, sps);
        const bool isRefused = sps.pic_struct_present_flag != 0 && syntax.pic_struct >= 9;
        return isRefused ? refusedTiming(syntax, sps, in.cursor()) : acceptedTiming(syntax, sps, in.cursor());
    };
}

// Returns a full timestamp. Each number gives different values.
ClockTimestampSyntax fullTimestamp(uint32_t number) {
    ClockTimestampSyntax syntax;
    syntax.clock_timestamp_flag = 1;
    syntax.ct_type = number;
    syntax.full_timestamp_flag = 1;
    syntax.n_frames = 10 + number;
    syntax.seconds_value = 20 + number;
    syntax.minutes_value = 30 + number;
    syntax.hours_value = 4 + number;
    return syntax;
}

ClockTimestampSyntax partialTimestamp() {
    ClockTimestampSyntax syntax = fullTimestamp(0);
    syntax.full_timestamp_flag = 0;
    syntax.seconds_value = syntax.minutes_value = syntax.hours_value = 0;
    return syntax;
}

PicTimingSyntax picTiming(uint32_t pic_struct) {
    PicTimingSyntax syntax;
    syntax.pic_struct = pic_struct;
    return syntax;
}

PicTimingSyntax oneTimestamp(const ClockTimestampSyntax& timestamp) {
    PicTimingSyntax syntax = picTiming(0);
    syntax.clockTimestamps[0] = timestamp;
    return syntax;
}

class AvcPictureTiming : public AvcSeiTest<PictureTiming> {
protected:
    // Checks that the whole payload is consumed and that it gives this record.
    static void checkRecord(const PicTimingSyntax& coded, const QVAvcSps& sps, const PictureTiming& record) {
        const BitWriter syntax = payload(coded, sps);
        SCOPED_TRACE(syntax.map());
        Outcome<PictureTiming> expected;
        expected.record = record;
        expected.cursor = atBit(syntax.bitCount());
        if (sps.pic_struct_present_flag != 0) {
            expected.lines = {timingSummary(record.ctTypeMask, record.pic_struct)};
        }
        check(syntax.bytes(), parsingPictureTiming(sps), expected);
    }

    // Returns a pattern record with pic_struct, ctTypeMask and the number of timestamps set.
    static PictureTiming timing(uint32_t pic_struct, uint32_t ctTypeMask, uint32_t count) {
        PictureTiming record = patternRecord<PictureTiming>();
        record.isValid = 1;
        record.pic_struct = pic_struct;
        record.ctTypeMask = ctTypeMask;
        record.numClockTimestamps = count;
        return record;
    }

    // Returns fullTimestamp(number) as it is stored. isDropFrame is not written.
    static QVAvcClockTimestamp kept(uint32_t number) {
        QVAvcClockTimestamp timestamp = patternRecord<QVAvcClockTimestamp>();
        timestamp.full_timestamp_flag = 1;
        timestamp.n_frames = 10 + number;
        timestamp.seconds_value = 20 + number;
        timestamp.minutes_value = 30 + number;
        timestamp.hours_value = 4 + number;
        return timestamp;
    }

    // Returns a record with one timestamp with these values.
    static PictureTiming keptTime(uint32_t full, uint32_t seconds, uint32_t minutes, uint32_t hours) {
        PictureTiming record = timing(0, 1, 1);
        record.clockTimestamps[0] = kept(0);
        record.clockTimestamps[0].full_timestamp_flag = full;
        record.clockTimestamps[0].seconds_value = seconds;
        record.clockTimestamps[0].minutes_value = minutes;
        record.clockTimestamps[0].hours_value = hours;
        return record;
    }
};

constexpr uint32_t kNumClockTs[9] = {1, 1, 1, 2, 2, 3, 3, 2, 3};  // Table D-1

TEST_F(AvcPictureTiming, nullSpsIsCheckedFirst) {
    PictureTiming record = patternRecord<PictureTiming>();
    for (PictureTiming* const target : {static_cast<PictureTiming*>(nullptr), &record}) {
        checkRefused(
            [&](QVByteStream& stream) {
                return QVNaluParser::parserAvcPictureTiming(stream, 0, target, nullptr);
            },
            errorLine("parserAvcPictureTiming",
                      "parserAvcPictureTiming: SPS unavailable in decode_picture_timing.\n"));
    }
    EXPECT_EQ(fieldsOf(record), fieldsOf(patternRecord<PictureTiming>()));
}

TEST_F(AvcPictureTiming, nullRecord) {
    checkRefused([](QVByteStream& stream) { return parsingPictureTiming(picStructSps())(stream, nullptr); },
                 errorLine("parserAvcPictureTiming", "parserAvcPictureTiming: pictureTiming is NULL!\n"));
}

TEST_F(AvcPictureTiming, delaysAloneLogNothing) {
    const struct {
        int32_t nal;
        int32_t vcl;
    } present[] = {{1, 0}, {0, 1}, {1, 1}, {-1, 0}, {0, 2}};
    for (const auto& hrd : present) {
        QVAvcSps sps{};
        sps.nal_hrd_parameters_present_flag = hrd.nal;
        sps.vcl_hrd_parameters_present_flag = hrd.vcl;
        sps.cpb_removal_delay_length = 12;
        sps.dpb_output_delay_length = 5;
        PicTimingSyntax coded;
        coded.cpb_removal_delay = 0xABC;
        coded.dpb_output_delay = 0x15;
        PictureTiming record = patternRecord<PictureTiming>();
        record.isValid = 1;
        record.cpb_removal_delay = 0xABC;
        record.dpb_output_delay = 0x15;
        checkRecord(coded, sps, record);
    }
}

TEST_F(AvcPictureTiming, withoutHrdThereAreNoDelays) {
    QVAvcSps sps{};
    sps.cpb_removal_delay_length = sps.dpb_output_delay_length = 24;
    Outcome<PictureTiming> expected;
    expected.record.isValid = 1;
    check({0xFF, 0xFF}, parsingPictureTiming(sps), expected);

    sps.pic_struct_present_flag = 1;
    checkRecord(picTiming(2), sps, timing(2, 0, 0));
}

TEST_F(AvcPictureTiming, delayLengths) {
    for (const int32_t length : {1, 2, 7, 8, 31, 32}) {
        SCOPED_TRACE(length);
        QVAvcSps sps = nalHrdSps();
        sps.cpb_removal_delay_length = length;
        sps.dpb_output_delay_length = 33 - length;
        const auto ones = [](int32_t width) { return (uint64_t{1} << width) - 1; };
        PicTimingSyntax coded;
        coded.cpb_removal_delay = ones(length);
        coded.dpb_output_delay = ones(33 - length) - 1;
        PictureTiming record = patternRecord<PictureTiming>();
        record.isValid = 1;
        record.cpb_removal_delay = static_cast<uint32_t>(ones(length));
        record.dpb_output_delay = static_cast<uint32_t>(ones(33 - length) - 1);
        checkRecord(coded, sps, record);
    }
}

TEST_F(AvcPictureTiming, aDelayLengthOfZeroOrLessConsumesNothing) {
    for (const int32_t length : {0, -1, INT_MIN}) {
        QVAvcSps sps = nalHrdSps();
        sps.cpb_removal_delay_length = length;
        sps.dpb_output_delay_length = length;
        Outcome<PictureTiming> expected;
        expected.record.isValid = 1;
        expected.record.cpb_removal_delay = 0;
        expected.record.dpb_output_delay = 0;
        check({0xFF, 0xFF}, parsingPictureTiming(sps), expected);
    }
}

TEST_F(AvcPictureTiming, ofADelayLengthAbove32TheLast32BitsAreKept) {
    for (const int32_t length : {33, 40, 64}) {
        QVAvcSps sps = nalHrdSps();
        sps.cpb_removal_delay_length = length;
        sps.dpb_output_delay_length = length;
        PicTimingSyntax coded;
        coded.cpb_removal_delay = 0xFFFFFFFF12345678;
        coded.dpb_output_delay = 0x000000019ABCDEF0;
        PictureTiming record = patternRecord<PictureTiming>();
        record.isValid = 1;
        record.cpb_removal_delay = 0x12345678;
        record.dpb_output_delay = 0x9ABCDEF0;
        checkRecord(coded, sps, record);
    }
}

TEST_F(AvcPictureTiming, aHugeDelayLengthEndsWithTheData) {
    QVAvcSps sps = nalHrdSps();
    sps.cpb_removal_delay_length = INT_MAX;
    Outcome<PictureTiming> expected;
    expected.record.isValid = 1;
    expected.record.cpb_removal_delay = 0;
    expected.record.dpb_output_delay = 0;
    expected.cursor = atBit(9 * 8);
    check(Bytes(9, 0xFF), parsingPictureTiming(sps), expected);
}

TEST_F(AvcPictureTiming, everyPicStructWithEveryPresencePattern) {
    for (uint32_t pic_struct = 0; pic_struct < 9; ++pic_struct) {
        for (uint32_t present = 0; present < 1U << kNumClockTs[pic_struct]; ++present) {
            PicTimingSyntax coded = picTiming(pic_struct);
            PictureTiming record = timing(pic_struct, present, 0);
            for (uint32_t i = 0; i < 3; ++i) {
                if ((present >> i & 1) == 1) {
                    coded.clockTimestamps[i] = fullTimestamp(i);
                    record.clockTimestamps[record.numClockTimestamps++] = kept(i);
                }
            }
            checkRecord(coded, picStructSps(), record);
        }
    }
}

TEST_F(AvcPictureTiming, timestampsAfterTheDelays) {
    QVAvcSps sps = nalHrdSps();
    sps.pic_struct_present_flag = 1;
    sps.time_offset_length = 24;
    PicTimingSyntax coded = picTiming(3);
    coded.cpb_removal_delay = 0xABCDEF;
    coded.dpb_output_delay = 0x123456;
    coded.clockTimestamps[1] = fullTimestamp(1);
    coded.clockTimestamps[1].time_offset = 0xFFFFFF;
    PictureTiming record = timing(3, 2, 1);
    record.cpb_removal_delay = 0xABCDEF;
    record.dpb_output_delay = 0x123456;
    record.clockTimestamps[0] = kept(1);
    checkRecord(coded, sps, record);
}

TEST_F(AvcPictureTiming, picStructFrom9OnIsRejected) {
    for (uint32_t pic_struct = 9; pic_struct < 16; ++pic_struct) {
        QVAvcSps sps = nalHrdSps();
        sps.pic_struct_present_flag = 1;
        PicTimingSyntax coded = picTiming(pic_struct);
        coded.cpb_removal_delay = 0xABCDEF;
        coded.dpb_output_delay = 0x123456;
        Outcome<PictureTiming> expected;
        expected.result = kFailed;
        expected.record.cpb_removal_delay = 0xABCDEF;
        expected.record.dpb_output_delay = 0x123456;
        expected.record.pic_struct = pic_struct;
        expected.record.ctTypeMask = 0;
        expected.lines = {picStructError(pic_struct)};
        expected.cursor = atBit(6 * 8 + 4);
        check(payload(coded, sps).bytes(), parsingPictureTiming(sps), expected);
    }
}

TEST_F(AvcPictureTiming, anyPicStructPresentFlagButZeroIsPresence) {
    for (const int32_t flag : {1, 2, -1, INT_MIN}) {
        QVAvcSps sps = picStructSps();
        sps.pic_struct_present_flag = flag;
        checkRecord(picTiming(8), sps, timing(8, 0, 0));
    }
}

TEST_F(AvcPictureTiming, eachCtTypeSetsItsBit) {
    for (uint32_t types = 0; types < 64; ++types) {
        PicTimingSyntax coded = picTiming(5);
        PictureTiming record = timing(5, 0, 3);
        for (uint32_t i = 0; i < 3; ++i) {
            const uint32_t ct_type = types >> 2 * i & 3;
            coded.clockTimestamps[i] = fullTimestamp(i);
            coded.clockTimestamps[i].ct_type = ct_type;
            record.clockTimestamps[i] = kept(i);
            record.ctTypeMask |= 1U << ct_type;
        }
        checkRecord(coded, picStructSps(), record);
    }
}

TEST_F(AvcPictureTiming, theMaskIsLoggedInHexadecimal) {
    PicTimingSyntax coded = picTiming(5);
    for (uint32_t i = 0; i < 3; ++i) {
        coded.clockTimestamps[i] = fullTimestamp(i + 1);
    }
    PayloadStream stream(payload(coded, picStructSps()).bytes());
    PictureTiming record{};
    EXPECT_EQ(parsingPictureTiming(picStructSps())(stream, &record), kOk);
    EXPECT_EQ(record.ctTypeMask, 14U);
    expectLines({{3, "parserAvcPictureTiming", "parserAvcPictureTiming: ct_type:E, pic_struct:5.\n"}});
}

TEST_F(AvcPictureTiming, dropFrameCountingTypes) {
    for (uint32_t counting_type = 0; counting_type < 32; ++counting_type) {
        for (const uint32_t cnt_dropped_flag : {0U, 1U}) {
            ClockTimestampSyntax timestamp = fullTimestamp(0);
            timestamp.counting_type = counting_type;
            timestamp.cnt_dropped_flag = cnt_dropped_flag;
            PictureTiming record = timing(0, 1, 1);
            record.clockTimestamps[0] = kept(0);
            // Table D-3: 2 to 6 drop counts.
            if (cnt_dropped_flag == 1 && counting_type >= 2 && counting_type <= 6) {
                record.clockTimestamps[0].isDropFrame = 1;
            }
            checkRecord(oneTimestamp(timestamp), picStructSps(), record);
        }
    }
}

TEST_F(AvcPictureTiming, flagsThatAreNotKeptChangeNothing) {
    for (uint32_t flags = 0; flags < 4; ++flags) {
        ClockTimestampSyntax timestamp = fullTimestamp(0);
        timestamp.nuit_field_based_flag = flags & 1;
        timestamp.discontinuity_flag = flags >> 1;
        checkRecord(oneTimestamp(timestamp), picStructSps(), keptTime(1, 20, 30, 4));
    }
}

TEST_F(AvcPictureTiming, widestValues) {
    ClockTimestampSyntax timestamp = fullTimestamp(0);
    timestamp.n_frames = 255;
    timestamp.seconds_value = 63;
    timestamp.minutes_value = 63;
    timestamp.hours_value = 31;
    PictureTiming record = keptTime(1, 63, 63, 31);
    record.clockTimestamps[0].n_frames = 255;
    checkRecord(oneTimestamp(timestamp), picStructSps(), record);
}

TEST_F(AvcPictureTiming, partialTimestampWithoutSeconds) {
    checkRecord(oneTimestamp(partialTimestamp()), picStructSps(), keptTime(0, 0, 0, 0));
}

TEST_F(AvcPictureTiming, partialTimestampUpToSeconds) {
    ClockTimestampSyntax timestamp = partialTimestamp();
    timestamp.seconds_flag = 1;
    timestamp.seconds_value = 63;
    checkRecord(oneTimestamp(timestamp), picStructSps(), keptTime(0, 63, 0, 0));
}

TEST_F(AvcPictureTiming, partialTimestampUpToMinutes) {
    ClockTimestampSyntax timestamp = partialTimestamp();
    timestamp.seconds_flag = timestamp.minutes_flag = 1;
    timestamp.seconds_value = 41;
    timestamp.minutes_value = 63;
    checkRecord(oneTimestamp(timestamp), picStructSps(), keptTime(0, 41, 63, 0));
}

TEST_F(AvcPictureTiming, partialTimestampUpToHours) {
    ClockTimestampSyntax timestamp = partialTimestamp();
    timestamp.seconds_flag = timestamp.minutes_flag = timestamp.hours_flag = 1;
    timestamp.seconds_value = 41;
    timestamp.minutes_value = 42;
    timestamp.hours_value = 31;
    checkRecord(oneTimestamp(timestamp), picStructSps(), keptTime(0, 41, 42, 31));
}

TEST_F(AvcPictureTiming, timeOffsetLengths) {
    for (const int32_t length : {-1, INT_MIN, 0, 1, 24, 31, 40}) {
        SCOPED_TRACE(length);
        PicTimingSyntax coded = picTiming(3);
        coded.clockTimestamps[0] = fullTimestamp(0);
        coded.clockTimestamps[0].time_offset = 0xFFFFFFFFFFFFFFFF;
        coded.clockTimestamps[1] = fullTimestamp(1);
        PictureTiming record = timing(3, 3, 2);
        record.clockTimestamps[0] = kept(0);
        record.clockTimestamps[1] = kept(1);
        checkRecord(coded, picStructSps(length), record);
    }
}

TEST_F(AvcPictureTiming, aTimeOffsetThatDoesNotFitIsNotSkipped) {
    PicTimingSyntax coded = picTiming(3);
    coded.clockTimestamps[0] = fullTimestamp(0);
    coded.clockTimestamps[1] = fullTimestamp(1);
    const Bytes bytes = payload(coded, picStructSps(0)).bytes();
    PictureTiming record = timing(3, 3, 2);
    record.clockTimestamps[0] = kept(0);
    record.clockTimestamps[1] = kept(1);
    for (const int32_t length : {1000, INT_MAX}) {
        Outcome<PictureTiming> expected;
        expected.record = record;
        expected.lines = {timingSummary(3, 3)};
        expected.cursor = atBit(payload(coded, picStructSps(0)).bitCount());
        check(bytes, parsingPictureTiming(picStructSps(length)), expected);
    }
}

TEST_F(AvcPictureTiming, theMaskOfAnEarlierMessageIsClearedAndDropFrameIsNot) {
    PictureTiming record = patternRecord<PictureTiming>();
    record.clockTimestamps[0].isDropFrame = 1;
    PicTimingSyntax coded = oneTimestamp(fullTimestamp(2));
    PayloadStream stream(payload(coded, picStructSps()).bytes());
    EXPECT_EQ(parsingPictureTiming(picStructSps())(stream, &record), kOk);
    EXPECT_EQ(record.ctTypeMask, 4U);
    EXPECT_EQ(record.numClockTimestamps, 1U);
    EXPECT_EQ(record.clockTimestamps[0].isDropFrame, 1U);
}

TEST_F(AvcPictureTiming, oneToThreeBitsAreTheHighBitsOfPicStruct) {
    const struct {
        unsigned firstBit;
        uint8_t byte;
        uint32_t pic_struct;
    } cases[] = {{7, 0b1, 8},   {6, 0b10, 8},  {6, 0b01, 4},  {5, 0b001, 2},
                 {5, 0b010, 4}, {5, 0b011, 6}, {5, 0b100, 8}, {7, 0b0, 0}};
    for (const auto& c : cases) {
        PayloadStream stream(Bytes{c.byte}, c.firstBit);
        Outcome<PictureTiming> expected;
        expected.record = timing(c.pic_struct, 0, 0);
        expected.lines = {timingSummary(0, c.pic_struct)};
        expected.cursor = atBit(1 * 8);
        check(stream, parsingPictureTiming(picStructSps()), expected);
    }
}

TEST_F(AvcPictureTiming, theHighBitsAloneMayBeOutOfRange) {
    const struct {
        unsigned firstBit;
        uint8_t byte;
        uint32_t pic_struct;
    } cases[] = {{6, 0b11, 12}, {5, 0b101, 10}, {5, 0b110, 12}, {5, 0b111, 14}};
    for (const auto& c : cases) {
        PayloadStream stream(Bytes{c.byte}, c.firstBit);
        Outcome<PictureTiming> expected;
        expected.result = kFailed;
        expected.record.pic_struct = c.pic_struct;
        expected.record.ctTypeMask = 0;
        expected.lines = {picStructError(c.pic_struct)};
        expected.cursor = atBit(1 * 8);
        check(stream, parsingPictureTiming(picStructSps()), expected);
    }
}

TEST_F(AvcPictureTiming, noData) {
    QVAvcSps sps = nalHrdSps();
    sps.pic_struct_present_flag = 1;
    Outcome<PictureTiming> expected;
    expected.record = timing(0, 0, 0);
    expected.record.cpb_removal_delay = 0;
    expected.record.dpb_output_delay = 0;
    expected.lines = {timingSummary(0, 0)};
    check(Bytes(), parsingPictureTiming(sps), expected);
}

TEST_F(AvcPictureTiming, payloadSizeIsNotUsed) {
    for (const int payloadSize : kPayloadSizes) {
        Outcome<PictureTiming> expected;
        expected.record = timing(4, 0, 0);
        expected.lines = {timingSummary(0, 4)};
        expected.cursor = atBit(6);
        check(
            {0x40, 0xFF},
            [&](QVByteStream& stream, PictureTiming* record) {
                QVAvcSps sps = picStructSps();
                return QVNaluParser::parserAvcPictureTiming(stream, payloadSize, record, &sps);
            },
            expected);
    }
}

// Three timestamps of different forms. Every bit that is not stored is set.
PicTimingSyntax mixedTimestamps() {
    PicTimingSyntax syntax = picTiming(6);
    syntax.cpb_removal_delay = 0xDEB6DB;
    syntax.dpb_output_delay = 0xB6DB6D;
    syntax.clockTimestamps = {fullTimestamp(2), partialTimestamp(), partialTimestamp()};
    for (ClockTimestampSyntax& timestamp : syntax.clockTimestamps) {
        timestamp.nuit_field_based_flag = timestamp.discontinuity_flag = timestamp.cnt_dropped_flag = 1;
        timestamp.counting_type = 4;
        timestamp.n_frames = 255;
        timestamp.time_offset = 0xFFFFFF;
    }
    syntax.clockTimestamps[1].seconds_flag = syntax.clockTimestamps[1].minutes_flag = 1;
    syntax.clockTimestamps[1].hours_flag = 1;
    syntax.clockTimestamps[1].seconds_value = 59;
    syntax.clockTimestamps[1].minutes_value = 58;
    syntax.clockTimestamps[1].hours_value = 23;
    syntax.clockTimestamps[2].seconds_flag = 1;
    syntax.clockTimestamps[2].seconds_value = 63;
    return syntax;
}

TEST_F(AvcPictureTiming, everyCut) {
    for (const int32_t time_offset_length : {0, 5, 24}) {
        QVAvcSps sps = picStructSps(time_offset_length);
        checkEveryCut(pictureTimingContract(sps), parsingPictureTiming(sps),
                      [&](BitWriter& out) { write(out, mixedTimestamps(), sps); });
    }
    QVAvcSps sps = nalHrdSps();
    sps.pic_struct_present_flag = 1;
    for (const PicTimingSyntax& coded : {mixedTimestamps(), picTiming(15)}) {
        checkEveryCut(pictureTimingContract(sps), parsingPictureTiming(sps),
                      [&](BitWriter& out) { write(out, coded, sps); });
    }
}

TEST_F(AvcPictureTiming, withoutBuffer) {
    QVAvcSps sps = bothHrdsSps(1);
    checkWithoutBuffer(pictureTimingContract(sps), parsingPictureTiming(sps));
    sps.pic_struct_present_flag = 1;
    sps.time_offset_length = 24;
    checkWithoutBuffer(pictureTimingContract(sps), parsingPictureTiming(sps));
}

TEST_F(AvcPictureTiming, anyBytes) {
    for (const int32_t time_offset_length : {0, 5, 24}) {
        checkAnyBytes(pictureTimingContract(picStructSps(time_offset_length)),
                      parsingPictureTiming(picStructSps(time_offset_length)));
    }
}

}  // namespace
}  // namespace qv_test
