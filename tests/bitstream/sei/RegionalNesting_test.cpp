// SEI messages that apply to regions of a picture.
#include "bitstream/sei/RegionalNesting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/RegionalNestingSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;

PayloadUnderTest<RegionalNesting> nesting() {
    return payloadUnderTest<RegionalNesting>(
        Context(Codec::Hevc), [](auto& s, const auto& c, auto& payload) { regional_nesting(s, c, payload); });
}

TEST(SeiRegionalNesting, roundTrips) {
    checkRoundTrips(nesting(), unitRounds());
}

TEST(SeiRegionalNesting, cutAtEveryByte) {
    // A cut within the payload of a nested message is found by its size.
    auto structure = nesting();
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("last_payload_size_byte", {0}); };
    checkCuts(structure, unitRounds(50));
}

TEST(SeiRegionalNesting, noAllocationAndNoByteOutside) {
    checkMemory(nesting(), unitRounds(20),
                {{"regionalMessagesOf", [](const auto& record) {
                      return sumOf(regionalMessagesOf(record),
                                   [](const auto& entry) { return entry.message.payloadType; });
                  }}});
}

// Two rectangles. Light levels of both, and an empty message of a reserved type of the second one.
constexpr const char* kTwoMessages =
    "0102 02"
    " 0A 0001 0002 0003 0004"
    " 0B 0005 0006 0007 0008"
    " 01"
    " 02 00 01 90 04 03E8 0190"
    " 01 01 C7 00";

TEST(SeiRegionalNesting, messagesWithTheirRegions) {
    const std::vector<uint8_t> unit = unitOfPayload(hex(kTwoMessages));
    const auto read = readPayloadOf<RegionalNesting>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const RegionalNesting& record = read.record;
    EXPECT_EQ(record.regional_nesting_id, 0x102U);
    ASSERT_EQ(record.regional_nesting_num_rect_regions, 2U);
    EXPECT_EQ(record.rects[0].regional_nesting_rect_region_id, 10);
    EXPECT_EQ(record.rects[0].regional_nesting_rect_right_offset, 2);
    EXPECT_EQ(record.rects[1].regional_nesting_rect_left_offset, 5);
    EXPECT_EQ(record.rects[1].regional_nesting_rect_top_offset, 7);
    EXPECT_EQ(record.rects[1].regional_nesting_rect_bottom_offset, 8);

    const std::vector<RegionalMessage> messages = entriesOf(regionalMessagesOf(record));
    ASSERT_EQ(messages.size(), 2U);
    ASSERT_EQ(messages[0].num_regions_for_sei_message, 2U);
    EXPECT_EQ(messages[0].regional_nesting_sei_region_idx[1], 1);
    const qv::SeiMessage& levels = messages[0].message;
    EXPECT_TRUE(levels.ok());
    EXPECT_TRUE(levels.isNested);
    EXPECT_EQ(levels.payloadType, 0x90U);
    const auto nested = readPayload<ContentLightLevelInfo>(levels, Context(Codec::Hevc));
    ASSERT_TRUE(nested.ok()) << qv::textOf(nested.fault);
    EXPECT_EQ(nested.record.max_content_light_level, 1000U);
    EXPECT_EQ(nested.record.max_pic_average_light_level, 400U);
    EXPECT_EQ(messages[1].regional_nesting_sei_region_idx[0], 1);
    EXPECT_EQ(messages[1].message.payloadType, 0xC7U);
    EXPECT_EQ(messages[1].message.payloadSize, 0U);
}

// The elements of nested messages are traced by their own types.
TEST(SeiRegionalNesting, nestedElementsAreTraced) {
    const std::vector<uint8_t> unit = unitOfPayload(hex(kTwoMessages));
    RecordingVisitor visitor;
    const auto read = nesting().trace(bytesOf(unit), visitor);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    std::vector<std::string> names;
    for (size_t i = 16; i < visitor.elements.size(); ++i) {
        names.push_back(qv::textOf(visitor.elements[i].element));
    }
    EXPECT_THAT(
        names, testing::ElementsAre("last_payload_type_byte", "last_payload_size_byte",
                                    "max_content_light_level", "max_pic_average_light_level",
                                    "num_regions_for_sei_message[1]", "regional_nesting_sei_region_idx[1][0]",
                                    "last_payload_type_byte", "last_payload_size_byte"));
}

// payloadType 255 + 1 has two bytes.
TEST(SeiRegionalNesting, longHeaderOfANestedMessage) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("0001 00 00 00 FF01 02 ABCD"));
    const auto read = readPayloadOf<RegionalNesting>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const std::vector<RegionalMessage> messages = entriesOf(regionalMessagesOf(read.record));
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].message.payloadType, 256U);
    EXPECT_EQ(messages[0].message.payloadSize, 2U);
}

struct Damaged {
    const char* payload;
    FaultKind readFault;
    const char* readElement;
    FaultKind traceFault;
    const char* traceElement;
};

// A reader passes over nested messages; a tracer reads them as well.
TEST(SeiRegionalNesting, damagedMessages) {
    const Damaged cases[] = {
        // The payload of the message ends early.
        {"0001 00 00 00 90 04 03E8 01", FaultKind::EndOfData, "payloadSize", FaultKind::EndOfData,
         "max_pic_average_light_level"},
        {"0001 00 00 00 C7 04 03E8 01", FaultKind::EndOfData, "payloadSize", FaultKind::EndOfData,
         "payloadSize"},
        // Its header ends early.
        {"0001 00 00 00 FF", FaultKind::EndOfData, "last_payload_type_byte", FaultKind::EndOfData,
         "last_payload_type_byte"},
        {"0001 00 00 00 90 FF", FaultKind::EndOfData, "last_payload_size_byte", FaultKind::EndOfData,
         "last_payload_size_byte"},
        // There is one message less than counted.
        {"0001 00 01 00 90 04 03E8 0190", FaultKind::EndOfData, "num_regions_for_sei_message",
         FaultKind::EndOfData, "num_regions_for_sei_message"},
        // The nested message is shorter than its syntax, or nests itself.
        {"0001 00 00 00 90 01 03", FaultKind::None, nullptr, FaultKind::EndOfData, "max_content_light_level"},
        {"0001 00 00 00 9D 07 0001 00 00 00 C7 00", FaultKind::None, nullptr, FaultKind::OtherPayload,
         "payloadType"},
    };
    for (const Damaged& damaged : cases) {
        SCOPED_TRACE(damaged.payload);
        const std::vector<uint8_t> unit = unitOfPayload(hex(damaged.payload));
        const auto read = readPayloadOf<RegionalNesting>(unit, Context(Codec::Hevc));
        EXPECT_EQ(read.fault.kind, damaged.readFault) << qv::textOf(read.fault);
        EXPECT_STREQ(read.fault.element.name, damaged.readElement);
        RecordingVisitor visitor;
        const auto traced = nesting().trace(bytesOf(unit), visitor);
        EXPECT_EQ(traced.fault.kind, damaged.traceFault) << qv::textOf(traced.fault);
        EXPECT_STREQ(traced.fault.element.name, damaged.traceElement);
        EXPECT_EQ(visitor.depth, 0);
    }
}

}  // namespace
