// Start codes in pieces of a stream.
#include "bitstream/units/StartCode.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include "../support/Hex.h"

namespace qv_test {
namespace {

using qv::findStartCode;

struct Case {
    const char* name;
    const char* bytes;
    size_t from;
    size_t zeroByteFrom;
    bool isFound;
    size_t offset;
    size_t unitOffset;
};

void PrintTo(const Case& row, std::ostream* out) {
    *out << row.name;
}

class StartCodeTable : public ::testing::TestWithParam<Case> {};

TEST_P(StartCodeTable, isFoundAtItsPlace) {
    const Case& row = GetParam();
    const std::vector<uint8_t> bytes = hex(row.bytes);
    const auto code = findStartCode({bytes.data(), bytes.size()}, row.from, row.zeroByteFrom);
    ASSERT_EQ(code.has_value(), row.isFound);
    if (code) {
        EXPECT_EQ(code->offset, row.offset);
        EXPECT_EQ(code->unitOffset, row.unitOffset);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StartCodeTable,
    ::testing::Values(Case{"nothing", "", 0, 0, false, 0, 0},  //
                      Case{"noCode", "01 02 03 04 05 06", 0, 0, false, 0, 0},
                      Case{"threeBytes", "00 00 01 65", 0, 0, true, 0, 3},
                      Case{"fourBytes", "00 00 00 01 65", 0, 0, true, 0, 4},
                      Case{"fiveBytes", "00 00 00 00 01 65", 0, 0, true, 1, 5},
                      Case{"fromPastTheEnd", "00 00 01 65", 9, 0, false, 0, 0},
                      Case{"nothingAfter", "00 00 01", 0, 0, false, 0, 0},
                      Case{"nothingAfterFour", "FF 00 00 00 01", 0, 0, false, 0, 0},
                      Case{"afterOthers", "65 01 00 00 01 41", 0, 0, true, 2, 5},
                      Case{"fromItsFirstByte", "65 01 00 00 01 41", 2, 0, true, 2, 5},
                      Case{"fromItsSecondByte", "65 01 00 00 01 41", 3, 0, false, 0, 0},
                      Case{"zeroByteSpokenFor", "00 00 01 00 00 00 01 41", 4, 4, true, 4, 7},
                      Case{"zeroByteFree", "00 00 01 65 00 00 00 01 41", 4, 4, true, 4, 8},
                      Case{"fromAfterTheZeroByte", "65 00 00 00 01 41", 2, 1, true, 1, 5},
                      Case{"oneBeforeTheOne", "00 01 00 01 00 00 01 09", 0, 0, true, 4, 7}),
    [](const auto& row) { return row.param.name; });

// Long data is searched in blocks: a start code is found at any position in them, from any place before it,
// unless no byte follows it.
TEST(StartCode, anywhereInLongData) {
    constexpr size_t kSize = 300;
    for (size_t at = 0; at + 4 <= kSize; ++at) {
        std::vector<uint8_t> bytes(kSize, 0xFF);
        bytes[at] = 0x00;
        bytes[at + 1] = 0x00;
        bytes[at + 2] = 0x01;
        for (const size_t from : {size_t{0}, at / 2, at}) {
            const auto code = findStartCode({bytes.data(), bytes.size()}, from, 0);
            ASSERT_TRUE(code.has_value()) << at << " from " << from;
            EXPECT_EQ(code->offset, at);
            EXPECT_EQ(code->unitOffset, at + 3);
        }
        EXPECT_FALSE(findStartCode({bytes.data(), bytes.size()}, at + 1, 0)) << at;
        EXPECT_FALSE(findStartCode({bytes.data(), at + 3}, 0, 0)) << at;
    }
}

}  // namespace
}  // namespace qv_test
