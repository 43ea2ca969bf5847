// The H.264 buffering_period() payload, parserAvcBufferingPeriod.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

#include "AvcPayloadTest.h"
#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using BufferingPeriod = QVAvcSeiBufferingPeriod;

static_assert(isPlain<BufferingPeriod>());
static_assert(sizeof(BufferingPeriod) == 33 * 4);
static_assert(offsetof(BufferingPeriod, isValid) == 0);
static_assert(offsetof(BufferingPeriod, initial_cpb_removal_delay) == 4);
static_assert(std::is_same<decltype(BufferingPeriod::isValid), uint32_t>::value);
static_assert(std::is_same<decltype(BufferingPeriod::initial_cpb_removal_delay), uint32_t[32]>::value);

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

TEST_F(AvcBufferingPeriod, nothingAfterTheRecordIsWritten) {
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

}  // namespace
}  // namespace qv_test
