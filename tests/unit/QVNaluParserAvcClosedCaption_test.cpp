// Closed captions in H.264 user data, parserAvcRegisteredUserDataClosedCaption.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

#include "AvcUserDataTest.h"

namespace qv_test {
namespace {

auto parsingCaption(int size) {
    return [size](QVByteStream& stream, Afd* /*record*/) {
        return QVNaluParser::parserAvcRegisteredUserDataClosedCaption(stream, size);
    };
}

using AvcClosedCaption = AvcSeiTest<Afd>;

TEST_F(AvcClosedCaption, lessThanThreeBytesFailSilently) {
    for (const int size : {INT_MIN, -1, 0, 1, 2}) {
        check(payload(ccData(1)).bytes(), parsingCaption(size), fails(0, {}));
    }
}

TEST_F(AvcClosedCaption, everyCountThatFits) {
    for (uint32_t cc_count = 1; cc_count < 32; ++cc_count) {
        const Bytes bytes = joined(payload(ccData(cc_count)).bytes(), {0x55});
        const int size = 2 + 3 * static_cast<int>(cc_count);
        check(bytes, parsingCaption(size), succeeds(bytes.size() - 1));
        check(bytes, parsingCaption(size + 100), succeeds(bytes.size() - 1));
        check(bytes, parsingCaption(INT_MAX), succeeds(bytes.size() - 1));
    }
}

TEST_F(AvcClosedCaption, everyCountThatJustDoesNotFit) {
    for (uint32_t cc_count = 1; cc_count < 32; ++cc_count) {
        const int size = 2 + 3 * static_cast<int>(cc_count) - 1;
        check(payload(ccData(cc_count)).bytes(), parsingCaption(size), succeeds(3));
    }
}

TEST_F(AvcClosedCaption, withoutConstructsThereIsNoMarker) {
    check(payload(ccData(0)).bytes(), parsingCaption(4), succeeds(3));
}

TEST_F(AvcClosedCaption, withoutTheProcessFlagNothingFollows) {
    CcDataSyntax coded = ccData(2);
    coded.process_cc_data_flag = 0;
    Outcome<Afd> expected;
    expected.cursor = atBit(1 * 8 + 2);
    check(payload(coded).bytes(), parsingCaption(10), expected);
}

TEST_F(AvcClosedCaption, flagsThatAreNotKeptChangeNothing) {
    for (uint32_t flags = 0; flags < 4; ++flags) {
        CcDataSyntax coded = ccData(2);
        coded.process_em_data_flag = flags & 1;
        coded.additional_data_flag = flags >> 1;
        coded.em_data = flags;
        coded.marker_bits = 0;
        coded.constructs[0] = {0, 0, 3, 0, 0};
        check(payload(coded).bytes(), parsingCaption(9), succeeds(10));
    }
}

TEST_F(AvcClosedCaption, aConstructIsOneSkip) {
    // cc_count is 2, but only two bytes of the second construct are present. Its skip does not fit, the
    // marker's does.
    const Bytes bytes = {3, 0xC2, 0xFF, 0xFC, 0x94, 0x2C, 0xFC, 0x94};
    check(bytes, parsingCaption(10), succeeds(7));
    // The third and fourth constructs do not fit either.
    check({3, 0xC4, 0xFF, 0xFC, 0x94, 0x2C, 0xFC, 0x94}, parsingCaption(20), succeeds(7));
    check({3, 0xC1, 0xFF, 0xFC}, parsingCaption(5), succeeds(4));
    check({3, 0xC1, 0xFF}, parsingCaption(5), succeeds(3));
    check({3, 0xC1}, parsingCaption(5), succeeds(2));
}

TEST_F(AvcClosedCaption, aTypeCodeAndNoMore) {
    Outcome<Afd> expected;
    expected.cursor = atBit(1 * 8 + 1);  // the skip of process_em_data_flag fits at the end of the data
    check({3}, parsingCaption(3), expected);
}

TEST_F(AvcClosedCaption, otherTypeCodesSkipTheRestByteByByte) {
    for (unsigned code = 0; code < 256; ++code) {
        if (code != 3) {
            const Bytes bytes = {static_cast<uint8_t>(code), 0xC1, 0xFF, 0xFC, 0x94, 0x2C};
            check(bytes, parsingCaption(3), succeeds(3));
            check(bytes, parsingCaption(5), succeeds(5));
            check(bytes, parsingCaption(6), succeeds(6));
            check(bytes, parsingCaption(7), succeeds(6));
            check(bytes, parsingCaption(INT_MAX), succeeds(6));
        }
    }
}

TEST_F(AvcClosedCaption, noData) {
    for (const int size : {3, 100, INT_MAX}) {
        check(Bytes(), parsingCaption(size), succeeds(0));
    }
}

TEST_F(AvcClosedCaption, withoutBufferThereIsNoTypeCode) {
    BufferlessStream stream(10);
    check(stream, parsingCaption(4), succeeds(3));
    for (const int size : kSizes) {
        checkWithoutBuffer(captionContract(size), parsingCaption(size));
    }
}

TEST_F(AvcClosedCaption, everyCut) {
    CcDataSyntax otherCode = ccData(2);
    otherCode.user_data_type_code = 6;
    CcDataSyntax unprocessed = ccData(2);
    unprocessed.process_cc_data_flag = 0;
    for (const CcDataSyntax& coded : {ccData(0), ccData(1), ccData(3), otherCode, unprocessed}) {
        for (const int size : {2, 3, 4, 5, 10, 11, 12, INT_MAX}) {
            checkEveryCut(captionContract(size), parsingCaption(size),
                          [&](BitWriter& out) { write(out, coded); });
        }
    }
}

TEST_F(AvcClosedCaption, anyBytes) {
    for (const int size : {3, 8, INT_MAX}) {
        checkAnyBytes(captionContract(size), parsingCaption(size));
    }
}

}  // namespace
}  // namespace qv_test
