#include "SeiMessages.h"

#include <gtest/gtest.h>

namespace qv_test {
namespace {

TEST(SeiMessages, headerBytes) {
    EXPECT_EQ(seiHeader(0, 0), (Bytes{0x00, 0x00}));
    EXPECT_EQ(seiHeader(5, 16), (Bytes{0x05, 0x10}));
    EXPECT_EQ(seiHeader(254, 254), (Bytes{0xFE, 0xFE}));
    EXPECT_EQ(seiHeader(255, 1), (Bytes{0xFF, 0x00, 0x01}));
    EXPECT_EQ(seiHeader(256, 255), (Bytes{0xFF, 0x01, 0xFF, 0x00}));
    EXPECT_EQ(seiHeader(509, 510), (Bytes{0xFF, 0xFE, 0xFF, 0xFF, 0x00}));
    EXPECT_EQ(seiHeader(511, 767), (Bytes{0xFF, 0xFF, 0x01, 0xFF, 0xFF, 0xFF, 0x02}));
}

TEST(SeiMessages, theCodedSizeIsFree) {
    EXPECT_EQ(seiMessages({{5, 9, {0xAA}}, seiMessage(200, {0x11, 0x22})}),
              (Bytes{0x05, 0x09, 0xAA, 0xC8, 0x02, 0x11, 0x22}));
}

TEST(SeiMessages, aUnitEndsInTrailingBitsAndHoldsEmulationPrevention) {
    EXPECT_EQ(seiUnit({seiMessage(5, {0x00, 0x00}), seiMessage(1, {0x07})}),
              (Bytes{0x05, 0x02, 0x00, 0x00, 0x03, 0x01, 0x01, 0x07, 0x80}));
    EXPECT_EQ(seiUnit({}), (Bytes{0x80}));
}

}  // namespace
}  // namespace qv_test
