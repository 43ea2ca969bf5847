// The test for a start code at the beginning of the data, isAnnexBData.
#include <gtest/gtest.h>

#include <climits>

#include "QVNaluParser.h"
#include "ScanTest.h"
#include "SeiTest.h"

namespace qv_test {
namespace {

TEST(IsAnnexBData, beginsWithAStartCode) {
    const Bytes threeBytes = {0, 0, 1, 0x67};
    const Bytes fourBytes = {0, 0, 0, 1};
    EXPECT_TRUE(QVNaluParser::isAnnexBData(threeBytes.data(), 4));
    EXPECT_TRUE(QVNaluParser::isAnnexBData(fourBytes.data(), 4));
}

TEST(IsAnnexBData, fourthByteIsFreeAfterAThreeByteStartCode) {
    for (unsigned fourth = 0; fourth < 256; ++fourth) {
        const Bytes data = {0, 0, 1, static_cast<uint8_t>(fourth)};
        EXPECT_TRUE(QVNaluParser::isAnnexBData(data.data(), 4)) << fourth;
    }
}

TEST(IsAnnexBData, oneWrongByte) {
    for (const Bytes& data :
         {Bytes{1, 0, 1, 9}, Bytes{0, 1, 1, 9}, Bytes{0, 0, 2, 9}, Bytes{0, 0, 3, 1}, Bytes{1, 0, 0, 1},
          Bytes{0, 1, 0, 1}, Bytes{0, 0, 0, 0}, Bytes{0, 0, 0, 2}, Bytes{0, 0, 0, 0x81}, Bytes{0, 0, 0x80, 1},
          Bytes{0x80, 0, 1, 9}, Bytes{0, 0x80, 0, 1}}) {
        EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), 4)) << ::testing::PrintToString(data);
    }
}

TEST(IsAnnexBData, startCodeNotAtTheStart) {
    const Bytes data = {0x65, 0, 0, 1, 0x65};
    EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), sizeOf(data)));
}

TEST(IsAnnexBData, D24_leadingZeroBytesAreNotAccepted) {
    const Bytes data = {0, 0, 0, 0, 1, 0x65};
    EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), sizeOf(data)));
    EXPECT_TRUE(QVNaluParser::isAnnexBData(data.data() + 1, sizeOf(data) - 1));
}

TEST(IsAnnexBData, shorterThanFourBytes) {
    for (size_t size = 1; size < 4; ++size) {
        Bytes data = {0, 0, 1};
        data.resize(size);
        data.shrink_to_fit();
        EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), sizeOf(data))) << size;
    }
}

TEST(IsAnnexBData, sizeBelowOne) {
    const Bytes data = {0, 0, 1, 0x67};
    for (const int size : kNoSizes) {
        EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), size)) << size;
    }
}

TEST(IsAnnexBData, nullData) {
    for (const int size : {INT_MIN, -1, 0, 3, 4, INT_MAX}) {
        EXPECT_FALSE(QVNaluParser::isAnnexBData(nullptr, size)) << size;
    }
}

}  // namespace
}  // namespace qv_test
