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

TEST(SeiBlocks, aPayloadThatIsTooLongHasAFault) {
    EXPECT_EQ(described(qv::Codec::Avc, 144, hex("03 E8 01 90 00")),
              "max_content_light_level = 1000 (1000 cd/m2)\nmax_pic_average_light_level = 400 (400 cd/m2)\n"
              "payloadSize in sei_message() (7.3.2.3.1) at bit 32: more data follows");
}

TEST(SeiBlocks, bytesWithoutASyntaxAreLeftOut) {
    EXPECT_EQ(described(qv::Codec::Avc, 199, hex("01 02 03")), "");
    EXPECT_EQ(described(qv::Codec::Avc, 3, hex("FF FF")), "");
}

TEST(SeiBlocks, userDataIsShownWhole) {
    const std::string uuid = "uuid_iso_iec_11578 = 00112233-4455-6677-8899-aabbccddeeff\n";
    Bytes payload = hex("00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF");
    EXPECT_EQ(described(qv::Codec::Avc, 5, payload), uuid);
    const std::string text(300, 'x');
    payload.insert(payload.end(), text.begin(), text.end());
    payload.push_back(0x07);
    EXPECT_EQ(described(qv::Codec::Hevc, 5, payload), uuid + "user_data_payload = " + text + ".\n");
}

TEST(SeiBlocks, numbersHaveTheirUnits) {
    EXPECT_EQ(described(qv::Codec::Hevc, 137,
                        hex("33 C2 86 C4 1D 4C 0B B8 84 D0 3E 80 3D 13 40 42 00 98 96 80 00 00 00 32")),
              "display_primaries_x[0] = 13250 (0.26500)\ndisplay_primaries_y[0] = 34500 (0.69000)\n"
              "display_primaries_x[1] = 7500 (0.15000)\ndisplay_primaries_y[1] = 3000 (0.06000)\n"
              "display_primaries_x[2] = 34000 (0.68000)\ndisplay_primaries_y[2] = 16000 (0.32000)\n"
              "white_point_x = 15635 (0.31270)\nwhite_point_y = 16450 (0.32900)\n"
              "max_display_mastering_luminance = 10000000 (1000.0000 cd/m2)\n"
              "min_display_mastering_luminance = 50 (0.0050 cd/m2)\n");
    // cancel 0, hor_flip 1, ver_flip 0, rotation 0x4000, persistence 1
    EXPECT_EQ(described(qv::Codec::Hevc, 47, hex("48 00 18")),
              "display_orientation_cancel_flag = 0\nhor_flip = 1\nver_flip = 0\n"
              "anticlockwise_rotation = 16384 (90.000 degrees)\n"
              "display_orientation_persistence_flag = 1\n");
}

TEST(SeiBlocks, codesHaveTheirNames) {
    EXPECT_EQ(described(qv::Codec::Avc, 147, hex("12")),
              "preferred_transfer_characteristics = 18 (ARIB STD-B67 (HLG))\n");
    EXPECT_EQ(described(qv::Codec::Avc, 4, hex("B5 00 31 44 54 47 31 41 F8")),
              "itu_t_t35_country_code = 0xb5 (United States)\nitu_t_t35_terminal_provider_code = 0x0031\n"
              "user_identifier = 0x44544731\nzero = 0\nactive_format_flag = 1\nreserved = 1\n"
              "reserved = 15\nactive_format = 8 (As the coded frame)\n"
              "kind = active format description (ETSI TS 101 154 Annex B)\n");
    EXPECT_EQ(described(qv::Codec::Hevc, 4, hex("01 02 03")),
              "itu_t_t35_country_code = 0x01\nkind = unknown (01:0203)\n");
    EXPECT_EQ(described(qv::Codec::Avc, 5, hex("DC 45 E9 BD E6 D9 48 B7 96 2C D8 20 D9 23 EE EF 78")),
              "uuid_iso_iec_11578 = dc45e9bd-e6d9-48b7-962c-d820d923eeef\nkind = x264 settings\n"
              "user_data_payload = x\n");
}

TEST(SeiBlocks, bytesOfOneValueAreOneField) {
    EXPECT_EQ(described(qv::Codec::Hevc, 132, hex("02 00 00 00 07")).substr(0, 11), "hash_type =");
    qv::hevc::Sps sps = {};
    qv::sei::Context context(qv::Codec::Hevc);
    context.hevcSps = &sps;
    EXPECT_EQ(described(context, 132, hex("00 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F")),
              "hash_type = 0 (MD5)\npicture_md5[0] = 000102030405060708090a0b0c0d0e0f\n");
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
