#include "analysis/CodedPositions.h"

#include <gtest/gtest.h>

#include <random>

#include "InspectSupport.h"
#include "input/UnescapedUnit.h"

namespace qv_test {
namespace {

using qvinspect::CodedPositions;

std::vector<size_t> positionsOf(const std::string& text) {
    const Bytes unit = hex(text);
    const CodedPositions positions(unit.data(), unit.size());
    const size_t count = qvinspect::unescapedUnit(unit.data(), unit.size(), unit.size()).size();
    std::vector<size_t> all;
    for (size_t i = 0; i < count; ++i) {
        all.push_back(positions.of(i));
    }
    return all;
}

TEST(CodedPositions, table) {
    using Positions = std::vector<size_t>;
    EXPECT_EQ(positionsOf(""), Positions());
    EXPECT_EQ(positionsOf("06 00 03 01"), (Positions{0, 1, 2, 3}));
    EXPECT_EQ(positionsOf("06 00 00 03 01 02"), (Positions{0, 1, 2, 4, 5}));
    EXPECT_EQ(positionsOf("06 00 00 03 00 00 03 01"), (Positions{0, 1, 2, 4, 5, 7}));
    EXPECT_EQ(positionsOf("06 00 00 03 03"), (Positions{0, 1, 2, 4}));
    EXPECT_EQ(positionsOf("06 00 00 03"), (Positions{0, 1, 2}));
    EXPECT_EQ(positionsOf("06 00 00 00 03 01"), (Positions{0, 1, 2, 3, 5}));
}

TEST(CodedPositions, leadToTheSameBytes) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        Bytes unit(random() % 40);
        for (uint8_t& byte : unit) {
            byte = static_cast<uint8_t>(random() % 2 == 0 ? 0 : random() % 5);
        }
        const CodedPositions positions(unit.data(), unit.size());
        const Bytes plain = qvinspect::unescapedUnit(unit.data(), unit.size(), unit.size());
        for (size_t i = 0; i < plain.size(); ++i) {
            ASSERT_LT(positions.of(i), unit.size());
            ASSERT_EQ(unit[positions.of(i)], plain[i]) << ::testing::PrintToString(unit);
        }
    }
}

}  // namespace
}  // namespace qv_test
