#include "input/UnescapedUnit.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

Bytes unescaped(const std::string& text, size_t limit = 1000) {
    const Bytes unit = hex(text);
    return qvinspect::unescapedUnit(unit.data(), unit.size(), limit);
}

TEST(UnescapedUnit, leavesPlainBytesAlone) {
    EXPECT_EQ(unescaped("67 42 00 03 01 03 00 01"), hex("67 42 00 03 01 03 00 01"));
    EXPECT_EQ(unescaped(""), Bytes());
}

TEST(UnescapedUnit, dropsTheByteBehindTwoZeroBytes) {
    EXPECT_EQ(unescaped("67 00 00 03 01"), hex("67 00 00 01"));
    EXPECT_EQ(unescaped("67 00 00 03 00 00 03 01"), hex("67 00 00 00 00 01"));
    EXPECT_EQ(unescaped("67 00 00 03"), hex("67 00 00"));
}

TEST(UnescapedUnit, dropsOneByteOnly) {
    EXPECT_EQ(unescaped("67 00 00 03 03"), hex("67 00 00 03"));
}

TEST(UnescapedUnit, keepsWithinTheLimit) {
    EXPECT_EQ(unescaped("67 00 00 03 01 02", 5), hex("67 00 00 01"));
    EXPECT_EQ(unescaped("67 00 00 03 01 02", 3), hex("67 00 00"));
}

}  // namespace
}  // namespace qv_test
