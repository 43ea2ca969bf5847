#include "SyntaxElements.h"

#include <gtest/gtest.h>

namespace qv_test {
namespace {

TEST(ElementCutter, fixedLengthBitsGoFromTheEnd) {
    const uint32_t expected[] = {0,          0b10000000, 0b10000000, 0b10100000, 0b10110000,
                                 0b10110000, 0b10110000, 0b10110010, 0b10110011, 0b10110011};
    for (size_t bits = 0; bits < std::size(expected); ++bits) {
        uint32_t value = 0b10110011;
        ElementCutter(bits).u(8, "value", value);
        EXPECT_EQ(value, expected[bits]) << bits << " bits";
    }
}

TEST(ElementCutter, aCodeNeedsIts1Bit) {
    // The code of 6 is 00111.
    const uint32_t expected[] = {0, 0, 0, 3, 5, 6, 6};
    for (size_t bits = 0; bits < std::size(expected); ++bits) {
        uint32_t value = 6;
        ElementCutter(bits).ue("value", value);
        EXPECT_EQ(value, expected[bits]) << bits << " bits";
    }
}

TEST(ElementCutter, signedCodesLoseTheirSignFirst) {
    // The code of -3 is 00111. 00110 is 3, and 00100 is 2.
    const int32_t expected[] = {0, 0, 0, 2, 3, -3, -3};
    for (size_t bits = 0; bits < std::size(expected); ++bits) {
        int32_t value = -3;
        ElementCutter(bits).se("value", value);
        EXPECT_EQ(value, expected[bits]) << bits << " bits";
    }
}

TEST(ElementCutter, nothingIsLeftAfterTheCut) {
    ElementCutter cutter(4);
    uint32_t whole = 2;
    uint32_t cut = 7;
    uint32_t following = 1;
    int32_t signedFollowing = -1;
    cutter.ue("whole", whole);  // 011
    cutter.u(3, "cut", cut);    // 111, of which one bit is left
    cutter.u(1, "following", following);
    cutter.se("following", signedFollowing);
    EXPECT_EQ(whole, 2U);
    EXPECT_EQ(cut, 4U);
    EXPECT_EQ(following, 0U);
    EXPECT_EQ(signedFollowing, 0);
}

TEST(SyntaxElements, positionsOfElements) {
    BitWriter out;
    out.u(3, "first", 5).ue("second", 6);
    EXPECT_EQ(startOf(out, "second"), 3U);
    EXPECT_EQ(endOf(out, "second"), 8U);
    EXPECT_THROW(startOf(out, "third"), std::logic_error);
}

TEST(SyntaxElements, bitsBeforeAnElement) {
    BitWriter out;
    out.u(10, "first", 0x2A7).ue("second", 6);
    const BitWriter before = bitsBefore(out, "second");
    EXPECT_EQ(before.bitCount(), 10U);
    EXPECT_EQ(before.bytes(), (Bytes{0xA9, 0xC0}));
}

}  // namespace
}  // namespace qv_test
