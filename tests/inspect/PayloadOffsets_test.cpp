#include "analysis/PayloadOffsets.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

std::vector<uint64_t> offsetsIn(const Bytes& unit, size_t headerSize, const std::vector<uint32_t>& sizes) {
    std::vector<qvinspect::SeiMessage> messages;
    for (const uint32_t size : sizes) {
        messages.push_back({0, size, {}, qvinspect::Delivery::NotKept, {}});
    }
    return qvinspect::payloadOffsets(unit.data(), unit.size(), headerSize, messages);
}

using Offsets = std::vector<uint64_t>;

TEST(PayloadOffsets, messagesOneBehindTheOther) {
    EXPECT_EQ(offsetsIn(hex("06 01 02 AA BB 05 01 CC 80"), 1, {2, 1}), (Offsets{3, 7}));
    EXPECT_EQ(offsetsIn(hex("4E 01 01 00 05 01 CC 80"), 2, {0, 1}), (Offsets{4, 6}));
}

TEST(PayloadOffsets, typesAndSizesOfSeveralBytes) {
    EXPECT_EQ(offsetsIn(hex("06 FF FF 01 02 AA BB 80"), 1, {2}), (Offsets{5}));
    EXPECT_EQ(offsetsIn(hex("06 05 FF 00") + Bytes(255, 0xAA) + hex("06 01 BB 80"), 1, {255, 1}),
              (Offsets{4, 261}));
}

TEST(PayloadOffsets, emulationPreventionBytesCount) {
    EXPECT_EQ(offsetsIn(hex("06 01 04 00 00 03 01 00 05 01 CC 80"), 1, {4, 1}), (Offsets{3, 10}));
    EXPECT_EQ(offsetsIn(hex("06 00 00 03 01 01 AA 80"), 1, {0, 1}), (Offsets{4, 6}))
        << "the byte is ahead of what it protects";
}

TEST(PayloadOffsets, nothingBehindTheEnd) {
    EXPECT_EQ(offsetsIn(hex("06 01 FF FF"), 1, {510, 7}), (Offsets{4, 4}));
    EXPECT_EQ(offsetsIn({}, 1, {1}), (Offsets{0}));
    EXPECT_EQ(offsetsIn(hex("06"), 2, {4294967295U}), (Offsets{1}));
}

}  // namespace
}  // namespace qv_test
