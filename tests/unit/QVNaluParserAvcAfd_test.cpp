// Active format description in H.264 user data, parserAvcRegisteredUserDataAfd.
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "AvcUserDataTest.h"

namespace qv_test {
namespace {

static_assert(std::is_standard_layout<Afd>::value && std::is_trivial<Afd>::value);
static_assert(sizeof(Afd) == 8);
static_assert(offsetof(Afd, isValid) == 0);
static_assert(offsetof(Afd, active_format) == 4);
static_assert(std::is_same<decltype(Afd::isValid), uint32_t>::value);
static_assert(std::is_same<decltype(Afd::active_format), uint8_t>::value);

auto parsingAfd(int size) {
    return [size](QVByteStream& stream, Afd* record) {
        return QVNaluParser::parserAvcRegisteredUserDataAfd(stream, size, record);
    };
}

using AvcAfd = AvcSeiTest<Afd>;

TEST_F(AvcAfd, nullRecordIsCheckedFirst) {
    for (const int size : {INT_MIN, 0, 1, 2}) {
        checkRefused(
            [&](QVByteStream& stream) { return parsingAfd(size)(stream, nullptr); },
            errorLine("parserAvcRegisteredUserDataAfd", "parserAvcRegisteredUserDataAfd: afd is NULL!\n"));
    }
}

TEST_F(AvcAfd, withoutASizeTheMessageNamesOneLess) {
    const struct {
        int size;
        int logged;
    } cases[] = {{0, -1}, {-1, -2}, {-7, -8}, {INT_MIN + 1, INT_MIN}, {INT_MIN, INT_MAX}};
    for (const auto& c : cases) {
        check({0x41, 0xF8}, parsingAfd(c.size), fails(0, {afdSizeError(c.logged)}));
    }
}

TEST_F(AvcAfd, everyActiveFormat) {
    for (uint8_t active_format = 0; active_format < 16; ++active_format) {
        AfdSyntax coded;
        coded.active_format = active_format;
        for (const int size : {2, 3, 100, INT_MAX}) {
            check(joined(payload(coded).bytes(), {0xFF}), parsingAfd(size), givesFormat(active_format, 2));
        }
    }
}

TEST_F(AvcAfd, reservedBitsChangeNothing) {
    for (uint32_t bits = 0; bits < 128; ++bits) {
        AfdSyntax coded;
        coded.zero = bits >> 6;
        coded.reserved6 = bits & 63;
        coded.reserved4 = bits & 15;
        check(payload(coded).bytes(), parsingAfd(2), givesFormat(8, 2));
    }
}

TEST_F(AvcAfd, withoutTheFlagTheRecordIsNotTouched) {
    for (const uint8_t first : Bytes{0x01, 0x00, 0x3F, 0x80, 0xBF}) {
        for (const int size : {1, 2, INT_MAX}) {
            check({first, 0xF8}, parsingAfd(size), succeeds(1));
        }
    }
}

TEST_F(AvcAfd, theFlagWithoutASecondByte) {
    check({0x41, 0xF8}, parsingAfd(1), fails(1, {afdSecondSizeError(-1)}));
    check({0x41}, parsingAfd(1), fails(1, {afdSecondSizeError(-1)}));
}

TEST_F(AvcAfd, aSecondByteThatIsOnlyPromised) {
    Outcome<Afd> expected = givesFormat(0, 1);
    expected.cursor = atBit(1 * 8 + 4);  // the skip of the reserved bits fits at the end of the data
    check({0x41}, parsingAfd(2), expected);
}

TEST_F(AvcAfd, noData) {
    Outcome<Afd> expected;
    expected.cursor = atBit(7);
    check(Bytes(), parsingAfd(2), expected);
}

TEST_F(AvcAfd, everyCut) {
    for (const uint32_t flag : {0U, 1U}) {
        AfdSyntax coded;
        coded.active_format_flag = flag;
        coded.active_format = 11;
        for (const int size : {INT_MIN, 0, 1, 2, INT_MAX}) {
            checkEveryCut(afdContract(size), parsingAfd(size), [&](BitWriter& out) { write(out, coded); });
        }
    }
}

TEST_F(AvcAfd, withoutBuffer) {
    for (const int size : {0, 1, 2}) {
        checkWithoutBuffer(afdContract(size), parsingAfd(size));
    }
}

}  // namespace
}  // namespace qv_test
