// The H.264 recovery_point() payload, parserAvcRecoveryPoint.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>

#include "AvcPayloadTest.h"
#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using RecoveryPoint = QVAvcSeiRecoveryPoint;

static_assert(isPlain<RecoveryPoint>());
static_assert(sizeof(RecoveryPoint) == 4);
static_assert(std::is_same<decltype(RecoveryPoint::recovery_frame_cnt), uint32_t>::value);

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

TEST_F(AvcRecoveryPoint, noDataAfterTheLastBit) {
    PayloadStream stream(Bytes(), 7);
    Outcome<RecoveryPoint> expected;
    expected.record.recovery_frame_cnt = 0;
    expected.cursor = atBit(1 * 8);  // ue(v) moves past the end; no skip fits there
    check(stream, parseRecoveryPoint, expected);
}

TEST_F(AvcRecoveryPoint, theSkipMayEndInsideTheByteAfterTheData) {
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

}  // namespace
}  // namespace qv_test
