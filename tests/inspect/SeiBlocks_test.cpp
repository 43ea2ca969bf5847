// The fields of SEI payloads.
#include "analysis/SeiBlocks.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"
#include "bitstream/units/Rbsp.h"
#include "input/Budgets.h"

namespace qv_test {
namespace {

using qvinspect::describeSei;
using qvinspect::Field;

std::string lines(const qvinspect::Block& block) {
    std::string text;
    for (const Field& field : block.fields) {
        text += field.name + " = " + valueText(field) + (field.note.empty() ? "" : " (" + field.note + ")") +
                "\n";
    }
    return text;
}

// A message with this payload, without emulation prevention bytes in it.
qv::SeiMessage messageOf(uint64_t payloadType, const Bytes& payload) {
    qv::SeiMessage message;
    message.payloadType = payloadType;
    message.payloadSize = message.rbspPayloadSize = payload.size();
    message.unit = message.payload = {payload.data(), payload.size()};
    return message;
}

// The fields, and the fault after them if there is one.
std::string described(const qv::sei::Context& context, uint64_t payloadType, const Bytes& payload) {
    size_t fields = 0;
    qvinspect::Block block;
    const qv::Fault fault = describeSei(messageOf(payloadType, payload), context, fields, block);
    EXPECT_GE(fields, block.fields.empty() ? 0U : 1U);
    return lines(block) + qv::textOf(fault);
}

std::string described(qv::Codec codec, uint64_t payloadType, const Bytes& payload) {
    return described(qv::sei::Context(codec), payloadType, payload);
}

TEST(SeiBlocks, elementsAndTheirMeaning) {
    EXPECT_EQ(described(qv::Codec::Hevc, 144, hex("03 E8 01 90")),
              "max_content_light_level = 1000 (1000 cd/m2)\nmax_pic_average_light_level = 400 (400 cd/m2)\n");
}

TEST(SeiBlocks, aPayloadThatEndsEarlyHasAFault) {
    EXPECT_EQ(described(qv::Codec::Hevc, 144, hex("03 E8")),
              "max_content_light_level = 1000 (1000 cd/m2)\n"
              "max_pic_average_light_level in content_light_level_info() (D.2.35) at bit 16: the data ends");
}

TEST(SeiBlocks, bytesWithoutASyntaxAreLeftOut) {
    EXPECT_EQ(described(qv::Codec::Avc, 200, hex("01 02 03")), "");
    EXPECT_EQ(described(qv::Codec::Avc, 3, hex("FF FF")), "");
}

TEST(SeiBlocks, userDataIsShownWhole) {
    const std::string uuid = "uuid_iso_iec_11578 = 00112233445566778899aabbccddeeff\n";
    Bytes payload = hex("00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF");
    EXPECT_EQ(described(qv::Codec::Avc, 5, payload), uuid);
    const std::string text(300, 'x');
    payload.insert(payload.end(), text.begin(), text.end());
    payload.push_back(0x07);
    EXPECT_EQ(described(qv::Codec::Hevc, 5, payload), uuid + "user_data_payload = " + text + ".\n");
}

TEST(SeiBlocks, theFieldsOfAnAccessUnitAreLimited) {
    size_t fields = qvinspect::kMostSeiFields - 1;
    qvinspect::Block block;
    const Bytes payload = hex("03 E8 01 90");
    describeSei(messageOf(144, payload), qv::sei::Context(qv::Codec::Hevc), fields, block);
    EXPECT_EQ(lines(block),
              "max_content_light_level = 1000 (1000 cd/m2)\n"
              "further elements = left out (see --elements)\n");
    block = {};
    describeSei(messageOf(144, payload), qv::sei::Context(qv::Codec::Hevc), fields, block);
    EXPECT_TRUE(block.fields.empty());
}

}  // namespace
}  // namespace qv_test
