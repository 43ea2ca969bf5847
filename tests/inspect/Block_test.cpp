#include "analysis/Block.h"

#include <gtest/gtest.h>

#include "analysis/Hex.h"

namespace qv_test {
namespace {

using qvinspect::Block;
using qvinspect::FieldList;
using qvinspect::valueText;

TEST(Block, valuesAreShownAsTheyAreCoded) {
    Block block;
    EXPECT_EQ(valueText(block.add("integer", -7)), "-7");
    EXPECT_EQ(valueText(block.add("real", 0.5)), "0.5");
    EXPECT_EQ(valueText(block.add("text", "a b")), "a b");
    EXPECT_EQ(valueText(block.add("pair", FieldList{13250, 34500})), "13250 34500");
    EXPECT_EQ(valueText(block.add("empty list", FieldList{})), "");
    block.addHex("code", 0x26, 4);
    EXPECT_EQ(valueText(block.fields.back()), "0x0026");
}

TEST(Hex, everyDigit) {
    const uint8_t bytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
    EXPECT_EQ(qvinspect::hexText(bytes, sizeof bytes), "0123456789abcdef");
    EXPECT_EQ(qvinspect::hexText(nullptr, 0), "");
}

}  // namespace
}  // namespace qv_test
