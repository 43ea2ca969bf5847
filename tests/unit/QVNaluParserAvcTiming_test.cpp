#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using RecoveryPoint = QVAvcSeiRecoveryPoint;
using BufferingPeriod = QVAvcSeiBufferingPeriod;
using PictureTiming = QVAvcSeiPictureTiming;

// --- Layout of the records ---

template <class Record>
constexpr bool isPlain() {
    return std::is_standard_layout<Record>::value && std::is_trivial<Record>::value;
}

static_assert(isPlain<RecoveryPoint>());
static_assert(sizeof(RecoveryPoint) == 4);
static_assert(std::is_same<decltype(RecoveryPoint::recovery_frame_cnt), uint32_t>::value);

static_assert(isPlain<BufferingPeriod>());
static_assert(sizeof(BufferingPeriod) == 33 * 4);
static_assert(offsetof(BufferingPeriod, isValid) == 0);
static_assert(offsetof(BufferingPeriod, initial_cpb_removal_delay) == 4);
static_assert(std::is_same<decltype(BufferingPeriod::isValid), uint32_t>::value);
static_assert(std::is_same<decltype(BufferingPeriod::initial_cpb_removal_delay), uint32_t[32]>::value);

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

// Values of payloadSize for parsers that must not use it.
constexpr int kPayloadSizes[] = {INT_MIN, -1, 0, 1, 1000, INT_MAX};

// --- recovery_point ---

int parseRecoveryPoint(QVByteStream& stream, RecoveryPoint* record) {
    return QVNaluParser::parserAvcRecoveryPoint(stream, 0, record);
}

ExpectedLine recoveryOutOfRange(uint32_t value) {
    return errorLine("parserAvcRecoveryPoint", "parserAvcSeiRecoveryPoint: recovery_frame_cnt(" +
                                                   std::to_string(value) + ") is out of range.\n");
}

Outcome<RecoveryPoint> recoveryPointContract(ModelledData& in) {
    const RecoveryPointSyntax syntax = readRecoveryPoint(in);
    Outcome<RecoveryPoint> outcome;
    outcome.cursor = in.cursor();
    if (syntax.recovery_frame_cnt >= 65536) {
        outcome.result = kFailed;
        outcome.lines = {recoveryOutOfRange(syntax.recovery_frame_cnt)};
    } else {
        outcome.record.recovery_frame_cnt = syntax.recovery_frame_cnt;
    }
    return outcome;
}

RecoveryPointSyntax recoveryPoint(uint32_t recovery_frame_cnt) {
    RecoveryPointSyntax syntax;
    syntax.recovery_frame_cnt = recovery_frame_cnt;
    return syntax;
}

using AvcRecoveryPoint = AvcSeiTest<RecoveryPoint>;

TEST_F(AvcRecoveryPoint, nullRecord) {
    checkRefused([](QVByteStream& stream) { return parseRecoveryPoint(stream, nullptr); },
                 errorLine("parserAvcRecoveryPoint", "parserAvcRecoveryPoint: recoveryPoint is NULL!\n"));
}

TEST_F(AvcRecoveryPoint, acceptedUpTo65535) {
    for (const uint32_t value : {0U, 1U, 2U, 255U, 256U, 32767U, 65534U, 65535U}) {
        SCOPED_TRACE(value);
        const BitWriter syntax = payload(recoveryPoint(value));
        Outcome<RecoveryPoint> expected;
        expected.record.recovery_frame_cnt = value;
        expected.cursor = atBit(syntax.bitCount());
        check(syntax.bytes(), parseRecoveryPoint, expected);
    }
}

TEST_F(AvcRecoveryPoint, rejectedFrom65536On) {
    for (const uint32_t value : {65536U, 65537U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU}) {
        SCOPED_TRACE(value);
        const BitWriter syntax = payload(recoveryPoint(value));
        Outcome<RecoveryPoint> expected;
        expected.result = kFailed;
        expected.lines = {recoveryOutOfRange(value)};
        expected.cursor = atBit(endOf(syntax, "recovery_frame_cnt"));
        check(syntax.bytes(), parseRecoveryPoint, expected);
    }
}

TEST_F(AvcRecoveryPoint, flagsAreConsumedAndNotKept) {
    for (uint32_t flags = 0; flags < 16; ++flags) {
        RecoveryPointSyntax coded = recoveryPoint(5);
        coded.exact_match_flag = flags >> 3;
        coded.broken_link_flag = flags >> 2 & 1;
        coded.changing_slice_group_idc = flags & 3;
        Outcome<RecoveryPoint> expected;
        expected.record.recovery_frame_cnt = 5;
        expected.cursor = atBit(1 * 8 + 1);
        check(payload(coded).bytes(), parseRecoveryPoint, expected);
    }
}

TEST_F(AvcRecoveryPoint, payloadSizeIsNotUsed) {
    for (const int payloadSize : kPayloadSizes) {
        Outcome<RecoveryPoint> expected;
        expected.record.recovery_frame_cnt = 3;
        expected.cursor = atBit(1 * 8 + 1);
        check(
            payload(recoveryPoint(3)).bytes(),
            [&](QVByteStream& stream, RecoveryPoint* record) {
                return QVNaluParser::parserAvcRecoveryPoint(stream, payloadSize, record);
            },
            expected);
    }
}

TEST_F(AvcRecoveryPoint, noData) {
    Outcome<RecoveryPoint> expected;
    expected.record.recovery_frame_cnt = 0;
    expected.cursor = atBit(5);  // past the data ue(v) consumes one bit; the skip of 4 still fits
    check(Bytes(), parseRecoveryPoint, expected);
}

TEST_F(AvcRecoveryPoint, noDataBehindTheLastBit) {
    PayloadStream stream(Bytes(), 7);
    Outcome<RecoveryPoint> expected;
    expected.record.recovery_frame_cnt = 0;
    expected.cursor = atBit(1 * 8);  // ue(v) moves past the end; no skip fits there
    check(stream, parseRecoveryPoint, expected);
}

TEST_F(AvcRecoveryPoint, theSkipMayEndInsideTheByteBehindTheData) {
    Outcome<RecoveryPoint> expected;
    expected.record.recovery_frame_cnt = 6;  // 00111
    expected.cursor = atBit(1 * 8 + 1);
    check({0b00111000}, parseRecoveryPoint, expected);
}

TEST_F(AvcRecoveryPoint, aSkipThatDoesNotFitIsNotMade) {
    PayloadStream stream(Bytes(), 3);
    Outcome<RecoveryPoint> expected;
    expected.record.recovery_frame_cnt = 0;
    expected.cursor = atBit(4);  // ue(v) consumed one bit; 4 more would complete the byte after the data
    check(stream, parseRecoveryPoint, expected);
}

TEST_F(AvcRecoveryPoint, everyCut) {
    for (const uint32_t value : {0U, 1U, 254U, 65535U, 65536U, 0xFFFFFFFEU}) {
        checkEveryCut(recoveryPointContract, parseRecoveryPoint,
                      [&](BitWriter& out) { write(out, recoveryPoint(value)); });
    }
}

TEST_F(AvcRecoveryPoint, withoutBuffer) {
    checkWithoutBuffer(recoveryPointContract, parseRecoveryPoint);
}

TEST_F(AvcRecoveryPoint, anyBytes) {
    checkAnyBytes(recoveryPointContract, parseRecoveryPoint);
}

// --- buffering_period ---

// An SPS with NAL HRD parameters.
QVAvcSps nalHrdSps(int32_t cpb_cnt = 1) {
    QVAvcSps sps{};
    sps.nal_hrd_parameters_present_flag = 1;
    sps.cpb_cnt = cpb_cnt;
    sps.initial_cpb_removal_delay_length = 24;
    sps.cpb_removal_delay_length = 24;
    sps.dpb_output_delay_length = 24;
    return sps;
}

QVAvcSps bothHrdsSps(int32_t cpb_cnt) {
    QVAvcSps sps = nalHrdSps(cpb_cnt);
    sps.vcl_hrd_parameters_present_flag = 1;
    return sps;
}

auto parsingBufferingPeriod(const QVAvcSps& sps) {
    return [sps](QVByteStream& stream, BufferingPeriod* record) {
        QVAvcSps active = sps;
        return QVNaluParser::parserAvcBufferingPeriod(stream, 0, record, &active);
    };
}

const char* const kNonExistingSps =
    "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n";

Outcome<BufferingPeriod> refusedId(Cursor cursor) {
    Outcome<BufferingPeriod> outcome;
    outcome.result = kFailed;
    outcome.lines = {errorLine("parserAvcBufferingPeriod", kNonExistingSps)};
    outcome.cursor = cursor;
    return outcome;
}

void storeDelays(BufferingPeriod& record, const std::vector<CpbDelaySyntax>& delays) {
    for (size_t i = 0; i < delays.size() && i < 32; ++i) {
        record.initial_cpb_removal_delay[i] = static_cast<uint32_t>(delays[i].initial_cpb_removal_delay);
    }
}

auto bufferingPeriodContract(const QVAvcSps& sps) {
    return [sps](ModelledData& in) {
        const BufferingPeriodSyntax syntax = readBufferingPeriod(in, sps);
        if (syntax.seq_parameter_set_id % 256 >= 32) {
            return refusedId(in.cursor());
        }
        Outcome<BufferingPeriod> outcome;
        outcome.cursor = in.cursor();
        storeDelays(outcome.record, syntax.nal);
        storeDelays(outcome.record, syntax.vcl);
        outcome.record.isValid = 1;
        return outcome;
    };
}

// Returns count delays with different values, counting up from first.
std::vector<CpbDelaySyntax> delays(size_t count, uint64_t first) {
    std::vector<CpbDelaySyntax> list(count);
    for (size_t i = 0; i < count; ++i) {
        list[i].initial_cpb_removal_delay = first + i;
        list[i].initial_cpb_removal_delay_offset = ~(first + i);
    }
    return list;
}

BufferingPeriodSyntax bufferingPeriod(uint32_t seq_parameter_set_id) {
    BufferingPeriodSyntax syntax;
    syntax.seq_parameter_set_id = seq_parameter_set_id;
    return syntax;
}

class AvcBufferingPeriod : public AvcSeiTest<BufferingPeriod> {
protected:
    // Checks that the whole payload is consumed and that exactly these values are stored, from the first on.
    static void checkStored(const BufferingPeriodSyntax& coded, const QVAvcSps& sps,
                            const std::vector<uint32_t>& stored) {
        const BitWriter syntax = payload(coded, sps);
        SCOPED_TRACE(syntax.map());
        Outcome<BufferingPeriod> expected;
        expected.record.isValid = 1;
        for (size_t i = 0; i < stored.size(); ++i) {
            expected.record.initial_cpb_removal_delay[i] = stored[i];
        }
        expected.cursor = atBit(syntax.bitCount());
        check(syntax.bytes(), parsingBufferingPeriod(sps), expected);
    }

    static std::vector<uint32_t> counted(size_t count, uint32_t first) {
        std::vector<uint32_t> values;
        for (size_t i = 0; i < count; ++i) {
            values.push_back(first + static_cast<uint32_t>(i));
        }
        return values;
    }
};

// Formats a pointer like the log text, which prints its low 32 bits.
std::string lowHex(const void* pointer) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(reinterpret_cast<uintptr_t>(pointer)));
    return text;
}

TEST_F(AvcBufferingPeriod, nullRecordOrNullSps) {
    BufferingPeriod record = patternRecord<BufferingPeriod>();
    QVAvcSps sps = nalHrdSps();
    const struct {
        BufferingPeriod* record;
        QVAvcSps* sps;
    } cases[] = {{nullptr, &sps}, {&record, nullptr}, {nullptr, nullptr}};
    for (const auto& c : cases) {
        checkRefused(
            [&](QVByteStream& stream) {
                return QVNaluParser::parserAvcBufferingPeriod(stream, 0, c.record, c.sps);
            },
            errorLine("parserAvcBufferingPeriod", "parserAvcBufferingPeriod: bufferingPeriod(" +
                                                      lowHex(c.record) + "), sps(" + lowHex(c.sps) +
                                                      ") is NULL!\n"));
        ASSERT_EQ(core().lines.size(), 1U);
        EXPECT_EQ(core().lines[0].format,
                  "parserAvcBufferingPeriod: bufferingPeriod(0x%x), sps(0x%x) is NULL!\n");
    }
    EXPECT_EQ(fieldsOf(record), fieldsOf(patternRecord<BufferingPeriod>()));
}

TEST_F(AvcBufferingPeriod, identifiersUpTo31Pass) {
    for (uint32_t id = 0; id < 32; ++id) {
        checkStored(bufferingPeriod(id), QVAvcSps{}, {});
    }
}

TEST_F(AvcBufferingPeriod, D16_identifiers256To287PassAgain) {
    for (uint32_t id = 256; id < 288; ++id) {
        checkStored(bufferingPeriod(id), QVAvcSps{}, {});
    }
    for (const uint32_t id : {512U, 543U, 65536U, 0x7FFFFF00U, 0xFFFFFF1FU}) {
        checkStored(bufferingPeriod(id), QVAvcSps{}, {});
    }
}

TEST_F(AvcBufferingPeriod, otherIdentifiersAreRejected) {
    std::vector<uint32_t> ids = {288, 511, 544, 65535, 0x80000020, 0xFFFFFF20, 0xFFFFFFFE};
    for (uint32_t id = 32; id < 256; ++id) {
        ids.push_back(id);
    }
    for (const uint32_t id : ids) {
        SCOPED_TRACE(id);
        BufferingPeriodSyntax coded = bufferingPeriod(id);
        coded.nal = delays(1, 7);
        const BitWriter syntax = payload(coded, nalHrdSps());
        check(syntax.bytes(), parsingBufferingPeriod(nalHrdSps()),
              refusedId(atBit(endOf(syntax, "seq_parameter_set_id"))));
    }
}

TEST_F(AvcBufferingPeriod, D34_theParameterSetsOwnIdentifierPlaysNoPart) {
    for (const int32_t sps_id : {0, 5, 31, 32, -1, INT_MAX}) {
        QVAvcSps sps{};
        sps.sps_id = sps_id;
        checkStored(bufferingPeriod(3), sps, {});
    }
}

TEST_F(AvcBufferingPeriod, withoutHrdOnlyTheIdentifierIsConsumed) {
    QVAvcSps sps = nalHrdSps(2);
    sps.nal_hrd_parameters_present_flag = 0;
    Outcome<BufferingPeriod> expected;
    expected.record.isValid = 1;
    expected.cursor = atBit(1);
    check({0xFF, 0xFF}, parsingBufferingPeriod(sps), expected);
}

TEST_F(AvcBufferingPeriod, nalHrd) {
    for (const int32_t cpb_cnt : {1, 2, 31, 32}) {
        const auto count = static_cast<size_t>(cpb_cnt);
        BufferingPeriodSyntax coded = bufferingPeriod(0);
        coded.nal = delays(count, 1000);
        checkStored(coded, nalHrdSps(cpb_cnt), counted(count, 1000));
    }
}

TEST_F(AvcBufferingPeriod, vclHrd) {
    for (const int32_t cpb_cnt : {1, 2, 31, 32}) {
        const auto count = static_cast<size_t>(cpb_cnt);
        QVAvcSps sps = bothHrdsSps(cpb_cnt);
        sps.nal_hrd_parameters_present_flag = 0;
        BufferingPeriodSyntax coded = bufferingPeriod(0);
        coded.vcl = delays(count, 2000);
        checkStored(coded, sps, counted(count, 2000));
    }
}

TEST_F(AvcBufferingPeriod, D17_vclValuesReplaceTheNalValues) {
    for (const int32_t cpb_cnt : {1, 2, 31, 32}) {
        const auto count = static_cast<size_t>(cpb_cnt);
        BufferingPeriodSyntax coded = bufferingPeriod(0);
        coded.nal = delays(count, 1000);
        coded.vcl = delays(count, 2000);
        checkStored(coded, bothHrdsSps(cpb_cnt), counted(count, 2000));
    }
}

TEST_F(AvcBufferingPeriod, anyPresenceFlagButZeroIsPresence) {
    for (const int32_t flag : {1, 2, -1, INT_MIN}) {
        BufferingPeriodSyntax coded = bufferingPeriod(0);
        coded.nal = delays(1, 1000);
        coded.vcl = delays(1, 2000);
        QVAvcSps sps = nalHrdSps();
        sps.nal_hrd_parameters_present_flag = sps.vcl_hrd_parameters_present_flag = flag;
        checkStored(coded, sps, {2000});
    }
}

TEST_F(AvcBufferingPeriod, withoutCpbsNothingIsConsumed) {
    for (const int32_t cpb_cnt : {0, -1, INT_MIN}) {
        checkStored(bufferingPeriod(0), bothHrdsSps(cpb_cnt), {});
    }
}

TEST_F(AvcBufferingPeriod, cpbsBeyondThe32ndAreConsumedAndNotStored) {
    for (const int32_t cpb_cnt : {33, 34, 40, 100}) {
        const auto count = static_cast<size_t>(cpb_cnt);
        BufferingPeriodSyntax coded = bufferingPeriod(0);
        coded.nal = delays(count, 1000);
        checkStored(coded, nalHrdSps(cpb_cnt), counted(32, 1000));
        coded.vcl = delays(count, 2000);
        checkStored(coded, bothHrdsSps(cpb_cnt), counted(32, 2000));
    }
}

TEST_F(AvcBufferingPeriod, nothingBehindTheRecordIsWritten) {
    BufferingPeriodSyntax coded = bufferingPeriod(0);
    coded.nal = delays(64, 1);
    const QVAvcSps sps = nalHrdSps(64);
    struct {
        BufferingPeriod record;
        uint32_t after[64];
    } guarded = {};
    PayloadStream stream(payload(coded, sps).bytes());
    EXPECT_EQ(parsingBufferingPeriod(sps)(stream, &guarded.record), kOk);
    for (const uint32_t word : guarded.after) {
        EXPECT_EQ(word, 0U);
    }
}

TEST_F(AvcBufferingPeriod, fieldLengths) {
    for (const int32_t length : {1, 2, 7, 8, 19, 31, 32}) {
        SCOPED_TRACE(length);
        QVAvcSps sps = nalHrdSps(2);
        sps.initial_cpb_removal_delay_length = length;
        const auto ones = static_cast<uint32_t>((uint64_t{1} << length) - 1);
        BufferingPeriodSyntax coded = bufferingPeriod(0);
        coded.nal = {{ones, 0}, {0, ones}};
        checkStored(coded, sps, {ones, 0});
    }
}

TEST_F(AvcBufferingPeriod, aLengthOfZeroOrLessConsumesNothing) {
    for (const int32_t length : {0, -1, INT_MIN}) {
        SCOPED_TRACE(length);
        QVAvcSps sps = nalHrdSps(3);
        sps.initial_cpb_removal_delay_length = length;
        Outcome<BufferingPeriod> expected;
        expected.record.isValid = 1;
        for (size_t i = 0; i < 3; ++i) {
            expected.record.initial_cpb_removal_delay[i] = 0;
        }
        expected.cursor = atBit(1);
        check({0xFF, 0xFF, 0xFF}, parsingBufferingPeriod(sps), expected);
    }
}

TEST_F(AvcBufferingPeriod, ofALengthAbove32TheLast32BitsAreKept) {
    for (const int32_t length : {33, 40, 64}) {
        SCOPED_TRACE(length);
        QVAvcSps sps = nalHrdSps(2);
        sps.initial_cpb_removal_delay_length = length;
        BufferingPeriodSyntax coded = bufferingPeriod(0);
        coded.nal = {{0xFFFFFFFF12345678, 5}, {0x00000001FFFFFFFF, 6}};
        checkStored(coded, sps, {0x12345678, 0xFFFFFFFF});
    }
}

TEST_F(AvcBufferingPeriod, anyCountEndsWithTheData) {
    // The data has at most 160 bits, so a count and a length of 500 give the same result as any larger ones.
    // From bit 7 without data, the identifier moves past the end.
    const int32_t far = 500;
    for (const int32_t cpb_cnt : {33, far, INT_MAX, -1, INT_MIN}) {
        for (const int32_t length : {0, 1, 7, 32, 33, INT_MAX, -1, INT_MIN}) {
            QVAvcSps sps = bothHrdsSps(cpb_cnt);
            sps.initial_cpb_removal_delay_length = length;
            QVAvcSps bounded = bothHrdsSps(std::min(cpb_cnt, far));
            bounded.initial_cpb_removal_delay_length = std::min(length, far);
            for (const size_t size : {0U, 1U, 2U, 5U, 20U}) {
                for (const unsigned firstBit : {0U, 7U}) {
                    SCOPED_TRACE(::testing::Message() << "cpb_cnt " << cpb_cnt << ", length " << length
                                                      << ", size " << size << ", from bit " << firstBit);
                    checkAgainst(bufferingPeriodContract(bounded), parsingBufferingPeriod(sps),
                                 Bytes(size, 0xED), firstBit);
                }
            }
        }
    }
}

TEST_F(AvcBufferingPeriod, aSkipThatDoesNotFitIsNotMade) {
    // After the identifier and 14 bits one bit is left. The skip of a 14-bit offset does not fit, so the next
    // delay reads that bit as its first.
    QVAvcSps sps = nalHrdSps(2);
    sps.initial_cpb_removal_delay_length = 14;
    Outcome<BufferingPeriod> expected;
    expected.record.isValid = 1;
    expected.record.initial_cpb_removal_delay[0] = 0x3FFF;
    expected.record.initial_cpb_removal_delay[1] = 0x2000;
    expected.cursor = atBit(2 * 8);
    check({0xFF, 0xFF}, parsingBufferingPeriod(sps), expected);
}

TEST_F(AvcBufferingPeriod, aShortSkipStillFitsAtTheEndOfTheData) {
    // Two delays of 7 bits. Only one bit of the second is left, and its offset only moves the bit offset.
    QVAvcSps sps = nalHrdSps(2);
    sps.initial_cpb_removal_delay_length = 7;
    Outcome<BufferingPeriod> expected;
    expected.record.isValid = 1;
    expected.record.initial_cpb_removal_delay[0] = 0b0000001;
    expected.record.initial_cpb_removal_delay[1] = 0b1000000;
    expected.cursor = atBit(2 * 8 + 7);
    check({0b10000001, 0b11111111}, parsingBufferingPeriod(sps), expected);
}

TEST_F(AvcBufferingPeriod, payloadSizeIsNotUsed) {
    BufferingPeriodSyntax coded = bufferingPeriod(0);
    coded.nal = delays(1, 0x123456);
    for (const int payloadSize : kPayloadSizes) {
        Outcome<BufferingPeriod> expected;
        expected.record.isValid = 1;
        expected.record.initial_cpb_removal_delay[0] = 0x123456;
        expected.cursor = atBit(6 * 8 + 1);
        check(
            payload(coded, nalHrdSps()).bytes(),
            [&](QVByteStream& stream, BufferingPeriod* record) {
                QVAvcSps sps = nalHrdSps();
                return QVNaluParser::parserAvcBufferingPeriod(stream, payloadSize, record, &sps);
            },
            expected);
    }
}

TEST_F(AvcBufferingPeriod, everyCut) {
    for (const int32_t length : {1, 7, 24, 32, 33}) {
        QVAvcSps sps = bothHrdsSps(2);
        sps.initial_cpb_removal_delay_length = length;
        BufferingPeriodSyntax coded = bufferingPeriod(19);
        coded.nal = {{0xFFFFFFFFFFFFFFFF, 0x5555555555555555}, {0x5A5A5A5A5A5A5A5A, 0xFFFFFFFFFFFFFFFF}};
        coded.vcl = {{0xA5A5A5A5A5A5A5A5, 0xFFFFFFFFFFFFFFFF}, {0xFFFFFFFFFFFFFFFF, 0x3333333333333333}};
        checkEveryCut(bufferingPeriodContract(sps), parsingBufferingPeriod(sps),
                      [&](BitWriter& out) { write(out, coded, sps); });
    }
    checkEveryCut(bufferingPeriodContract(nalHrdSps()), parsingBufferingPeriod(nalHrdSps()),
                  [](BitWriter& out) { write(out, bufferingPeriod(0xFFFFFFFE), nalHrdSps()); });
}

TEST_F(AvcBufferingPeriod, withoutBuffer) {
    for (const int32_t length : {0, 1, 7, 32}) {
        QVAvcSps sps = bothHrdsSps(3);
        sps.initial_cpb_removal_delay_length = length;
        checkWithoutBuffer(bufferingPeriodContract(sps), parsingBufferingPeriod(sps));
    }
}

TEST_F(AvcBufferingPeriod, anyBytes) {
    for (const int32_t length : {1, 5, 24}) {
        QVAvcSps sps = bothHrdsSps(2);
        sps.initial_cpb_removal_delay_length = length;
        checkAnyBytes(bufferingPeriodContract(sps), parsingBufferingPeriod(sps));
    }
}

// --- pic_timing ---

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

TEST_F(AvcPictureTiming, nullSpsIsLookedAtFirst) {
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

TEST_F(AvcPictureTiming, timestampsBehindTheDelays) {
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

// --- How the walker reaches the payload parsers ---

struct Wiring {
    int payloadType;
    Bytes body;  // the bytes from payload_size on
    int result;
    std::vector<std::string> functions;  // the functions that log, in order
    std::vector<Bytes> captured;
};

// Some parsers cannot fail and log nothing. Their message has size 0, but they read more, and the walk does
// not move back. The captured message of type 5 that follows shows that they were called.
const Wiring kWirings[] = {
    {0, {1, 0x80, 5, 1, 0xAA, 0x80}, kFailed, {"parserAvcBufferingPeriod"}, {}},
    {1, {2, 0xBB, 0xCC, 0x80}, kOk, {}, {{0xBB, 0xCC}}},
    {4, {2, 0xB5, 0x00, 5, 1, 0xAA, 0x80}, kFailed, {"parserAvcRegisteredUserData"}, {}},
    {5, {2, 0xBB, 0xCC, 0x80}, kOk, {}, {{0xBB, 0xCC}}},
    {6, {5, 0, 0, 0x80, 0, 0xC0, 5, 1, 0xAA, 0x80}, kFailed, {"parserAvcRecoveryPoint"}, {}},
    {45, {0, 0x82, 0x81, 0x10, 0x03, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
    {47, {0, 0x40, 0x00, 0x05, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
    {56, {0, 0x01, 0x00, 0x10, 0x68, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
    {147, {0, 0x12, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
};

class AvcSeiWiring : public CoreTest {
protected:
    static void expectCaptured(const std::vector<QVSeiItem>& items, const std::vector<Bytes>& captured) {
        ASSERT_EQ(items.size(), captured.size());
        for (size_t i = 0; i < items.size(); ++i) {
            EXPECT_EQ(Bytes(items[i].payloadData, items[i].payloadData + items[i].payloadSize), captured[i]);
            EXPECT_FALSE(items[i].isRequested);
            releaseBlock(items[i].payloadData);
        }
    }
};

TEST_F(AvcSeiWiring, everyTypeReachesItsParser) {
    for (const Wiring& wiring : kWirings) {
        SCOPED_TRACE("payloadType " + std::to_string(wiring.payloadType));
        core().lines.clear();
        Bytes rbsp = {static_cast<uint8_t>(wiring.payloadType)};
        rbsp.insert(rbsp.end(), wiring.body.begin(), wiring.body.end());
        std::vector<QVSeiItem> items;
        EXPECT_EQ(
            QVNaluParser::parserAvcDataToSei(rbsp.data(), static_cast<int>(rbsp.size()), items, nullptr, {}),
            wiring.result);
        std::vector<std::string> functions;
        for (const LogLine& line : core().lines) {
            functions.push_back(line.function);
        }
        EXPECT_EQ(functions, wiring.functions);
        expectCaptured(items, wiring.captured);
    }
}

}  // namespace
}  // namespace qv_test
