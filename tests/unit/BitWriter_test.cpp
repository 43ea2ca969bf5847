// The bit writer that the other tests use, checked against bytes written by hand.
#include "BitWriter.h"

#include <gtest/gtest.h>

namespace qv_test {
namespace {

TEST(BitWriter, fixedWidthsMostSignificantFirst) {
    BitWriter out;
    out.u(1, "a", 1).u(3, "b", 2).u(12, "c", 0xABC);
    EXPECT_EQ(out.bytes(), (Bytes{0xAA, 0xBC}));
}

TEST(BitWriter, unsignedExpGolombOfTable9_2) {
    BitWriter out;
    // 1 010 011 00100 00101 00110 00111 0001000
    out.ue("0", 0).ue("1", 1).ue("2", 2).ue("3", 3).ue("4", 4).ue("5", 5).ue("6", 6).ue("7", 7);
    EXPECT_EQ(out.bitCount(), 34U);
    EXPECT_EQ(out.bytes(), (Bytes{0b10100110, 0b01000010, 0b10011000, 0b11100010, 0b00000000}));
}

TEST(BitWriter, largestUnsignedExpGolomb) {
    BitWriter out;
    out.ue("2^32 - 2", 0xFFFFFFFE);
    EXPECT_EQ(out.bytes(),
              (Bytes{0, 0, 0, 1, 0xFF, 0xFF, 0xFF, 0xFE}));  // 31 zeros, a 1, 31 bits, one bit of padding
}

TEST(BitWriter, signedExpGolombOfTable9_3) {
    BitWriter out;
    // 0: 1, 1: 010, -1: 011, 2: 00100, -2: 00101
    out.se("0", 0).se("1", 1).se("-1", -1).se("2", 2).se("-2", -2);
    EXPECT_EQ(out.bytes(), (Bytes{0b10100110, 0b01000010, 0b10000000}));
}

TEST(BitWriter, trailingBitsEndOnAByte) {
    BitWriter out;
    out.u(3, "a", 7).trailingBits();
    EXPECT_EQ(out.bytes(), (Bytes{0xF0}));
    out.trailingBits();
    EXPECT_EQ(out.bytes(), (Bytes{0xF0, 0x80}));
}

TEST(BitWriter, cutsAtAnyBit) {
    BitWriter out;
    out.u(16, "a", 0xFFFF);
    EXPECT_EQ(out.bytesCutAt(0), Bytes());
    EXPECT_EQ(out.bytesCutAt(1), (Bytes{0x80}));
    EXPECT_EQ(out.bytesCutAt(9), (Bytes{0xFF, 0x80}));
}

TEST(BitWriter, namesThePositionOfEachElement) {
    BitWriter out;
    out.u(8, "profile_idc", 100).ue("seq_parameter_set_id", 1);
    EXPECT_EQ(out.map(), "0 +8 profile_idc = 100\n8 +3 seq_parameter_set_id = 1\n");
}

TEST(BitWriter, emulationPrevention) {
    EXPECT_EQ(withEmulationPrevention({0, 0, 0}), (Bytes{0, 0, 3, 0}));
    EXPECT_EQ(withEmulationPrevention({0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0, 4}),
              (Bytes{0, 0, 3, 1, 0, 0, 3, 2, 0, 0, 3, 3, 0, 0, 4}));
    EXPECT_EQ(withEmulationPrevention({0, 0, 0, 0, 0}), (Bytes{0, 0, 3, 0, 0, 3, 0}));
}

}  // namespace
}  // namespace qv_test
