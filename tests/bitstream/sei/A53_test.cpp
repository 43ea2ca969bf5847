// User data of ATSC A/53.
#include "bitstream/sei/A53.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PayloadChecks.h"
#include "bitstream/sei/A53Syntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

template <class Payload>
PayloadUnderTest<Payload> userData(Codec codec) {
    auto structure = payloadUnderTest<Payload>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { t35_message(s, c, payload); });
    structure.optional = {"additional_cc_data", "ATSC_reserved_user_data", "additional_bar_data"};
    structure.violable = 12;
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 4 == 0) {
            unit.choose("cc_count", {31});
        }
    };
    return structure;
}

// One check for each record and codec.
template <class Check>
void forEachRecord(const Check& check) {
    for (const Codec codec : kCodecs) {
        check(userData<AtscCaptions>(codec));
        check(userData<SatelliteCaptions>(codec));
        check(userData<AtscBarData>(codec));
        check(userData<ActiveFormatDescription>(codec));
    }
}

TEST(SeiA53, roundTrips) {
    forEachRecord([](const auto& structure) { checkRoundTrips(structure, unitRounds()); });
}

TEST(SeiA53, cutAtEveryByte) {
    forEachRecord([](const auto& structure) { checkCuts(structure, unitRounds(50)); });
}

TEST(SeiA53, noAllocationAndNoByteOutside) {
    forEachRecord([](const auto& structure) { checkMemory(structure, unitRounds(25)); });
}

// Few elements have a range, so that most rounds of checkRanges() would find none to violate.
template <class Payload>
std::set<std::string> namesOfRanges(size_t violable) {
    auto structure = userData<Payload>(Codec::Avc);
    structure.violable = violable;
    return checkRanges(structure, unitRounds());
}

TEST(SeiA53, rangesOfCaptions) {
    EXPECT_THAT(namesOfRanges<AtscCaptions>(4),
                IsSupersetOf({"itu_t_t35_country_code", "itu_t_t35_terminal_provider_code", "user_identifier",
                              "user_data_type_code"}));
    EXPECT_THAT(
        namesOfRanges<SatelliteCaptions>(3),
        IsSupersetOf({"itu_t_t35_country_code", "itu_t_t35_terminal_provider_code", "user_data_type_code"}));
}

TEST(SeiA53, rangesOfBarData) {
    EXPECT_THAT(namesOfRanges<AtscBarData>(8),
                IsSupersetOf({"itu_t_t35_country_code", "itu_t_t35_terminal_provider_code", "user_identifier",
                              "user_data_type_code", "bottom_bar_flag", "left_bar_flag", "right_bar_flag",
                              "marker_bits"}));
}

TEST(SeiA53, rangesOfActiveFormat) {
    EXPECT_THAT(namesOfRanges<ActiveFormatDescription>(4),
                IsSupersetOf({"itu_t_t35_country_code", "itu_t_t35_terminal_provider_code", "user_identifier",
                              "zero"}));
}

// --- Payloads made by hand ---

// A message of type 4 with this payload, which must outlive it.
qv::SeiMessage messageWith(const std::vector<uint8_t>& payload) {
    qv::SeiMessage message;
    message.payloadType = 4;
    message.unit = message.payload = bytesOf(payload);
    message.payloadSize = message.rbspPayloadSize = payload.size();
    return message;
}

template <class Payload>
qv::Read<Payload> readHex(const std::string& text, Codec codec = Codec::Avc) {
    static std::vector<uint8_t> payload;  // records borrow from it
    payload = hex(text);
    return readPayload<Payload>(messageWith(payload), Context(codec));
}

// b5 0031 "GA94" 03; c3 = 1 1 0 00011: process_em_data_flag, process_cc_data_flag, no additional_data_flag,
// cc_count 3; ff em_data; fc = 11111 1 00: valid, field 1; fd = 11111 1 01: valid, field 2; fa = 11111 0 10:
// not valid, DTVCC data; ff marker_bits.
TEST(SeiA53, captions) {
    for (const Codec codec : kCodecs) {
        const auto read = readHex<AtscCaptions>("b50031 47413934 03 c3 ff fc9425 fd8080 fa0000 ff", codec);
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        const CcData& data = read.record.cc_data;
        EXPECT_TRUE(data.process_em_data_flag);
        EXPECT_TRUE(data.process_cc_data_flag);
        EXPECT_FALSE(data.additional_data_flag);
        ASSERT_EQ(data.cc_count, 3);
        EXPECT_EQ(data.em_data, 0xFF);
        EXPECT_TRUE(data.constructs[0].cc_valid);
        EXPECT_EQ(data.constructs[0].type(), CcType::Field1);
        EXPECT_EQ(data.constructs[0].cc_data_1, 0x94);
        EXPECT_EQ(data.constructs[0].cc_data_2, 0x25);
        EXPECT_EQ(data.constructs[1].type(), CcType::Field2);
        EXPECT_FALSE(data.constructs[2].cc_valid);
        EXPECT_EQ(data.constructs[2].type(), CcType::DtvccData);
        EXPECT_TRUE(hasMarkerBits(data));
        EXPECT_TRUE(read.record.ATSC_reserved_user_data.empty());
    }
}

TEST(SeiA53, bytesAfterCaptions) {
    const auto reserved = readHex<AtscCaptions>("b50031 47413934 03 c1 ff fc9425 ff 010203");
    ASSERT_TRUE(reserved.ok());
    EXPECT_EQ(reserved.record.ATSC_reserved_user_data.count, 24U);
    EXPECT_TRUE(reserved.record.cc_data.additional_cc_data.empty());
    const auto additional = readHex<AtscCaptions>("b50031 47413934 03 e1 ff fc9425 ff 010203");
    ASSERT_TRUE(additional.ok());
    EXPECT_TRUE(additional.record.ATSC_reserved_user_data.empty());
    EXPECT_EQ(additional.record.cc_data.additional_cc_data.count, 24U);
}

TEST(SeiA53, fewerBytesThanConstructs) {
    const auto read = readHex<AtscCaptions>("b50031 47413934 03 df ff fc9425 fd80");
    EXPECT_EQ(read.fault.kind, FaultKind::EndOfData);
    EXPECT_EQ(qv::textOf(read.fault.element), "cc_data_2[1]");
    EXPECT_EQ(read.record.cc_data.cc_count, 31);
    EXPECT_EQ(read.record.cc_data.constructs[0].cc_data_2, 0x25);
    EXPECT_FALSE(read.record.cc_data.constructs[2].cc_valid);
}

TEST(SeiA53, withoutMarkerBits) {
    const auto missing = readHex<AtscCaptions>("b50031 47413934 03 c1 ff fc9425");
    EXPECT_EQ(missing.fault.kind, FaultKind::EndOfData);
    EXPECT_EQ(qv::textOf(missing.fault.element), "marker_bits");
    EXPECT_FALSE(hasMarkerBits(missing.record.cc_data));

    // Receivers ignore them: the constructs are there.
    const auto ofConstruct = readHex<AtscCaptions>("b50031 47413934 03 c1 ff 049425 ff");
    ASSERT_TRUE(ofConstruct.ok());
    EXPECT_TRUE(ofConstruct.record.cc_data.constructs[0].cc_valid);
    EXPECT_FALSE(hasMarkerBits(ofConstruct.record.cc_data));
    const auto afterConstructs = readHex<AtscCaptions>("b50031 47413934 03 c1 ff fc9425 00");
    ASSERT_TRUE(afterConstructs.ok());
    EXPECT_FALSE(hasMarkerBits(afterConstructs.record.cc_data));
}

TEST(SeiA53, satelliteCaptions) {
    const auto read = readHex<SatelliteCaptions>("b5002f 03 09 c2 ff fc9425 fd8080 ff");
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.user_data_length, 9);
    EXPECT_EQ(read.record.cc_data.cc_count, 2);
    EXPECT_EQ(read.record.cc_data.constructs[1].cc_data_1, 0x80);
}

// cf = 1 1 0 0 1111: top and bottom; c03c = 11 00000000111100: line 60; c294 = 11 00001010010100: line 660.
TEST(SeiA53, barData) {
    const auto read = readHex<AtscBarData>("b50031 47413934 06 cf c03c c294");
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.top_bar_flag);
    EXPECT_FALSE(read.record.right_bar_flag);
    EXPECT_EQ(read.record.line_number_end_of_top_bar, 60);
    EXPECT_EQ(read.record.line_number_start_of_bottom_bar, 660);
    EXPECT_EQ(read.record.pixel_number_end_of_left_bar, 0);
}

// 3f = 0 0 1 1 1111: left and right; c0f0: sample 240; c690: sample 1680; one more byte.
TEST(SeiA53, barDataOfPillarbox) {
    const auto read = readHex<AtscBarData>("b50031 47413934 06 3f c0f0 c690 55");
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.pixel_number_end_of_left_bar, 240);
    EXPECT_EQ(read.record.pixel_number_start_of_right_bar, 1680);
    EXPECT_EQ(read.record.additional_bar_data.count, 8U);
}

// 41 = 0 1 000001: active_format_flag; fa = 1111 1010: 10.
TEST(SeiA53, activeFormat) {
    for (const Codec codec : kCodecs) {
        const auto read = readHex<ActiveFormatDescription>("b50031 44544731 41 fa", codec);
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_TRUE(read.record.active_format_flag);
        EXPECT_EQ(read.record.active_format, 10);
        EXPECT_EQ(read.record.reserved, 1);
        EXPECT_EQ(read.record.reserved_of_format, 15);
        const auto without = readHex<ActiveFormatDescription>("b50031 44544731 01", codec);
        ASSERT_TRUE(without.ok());
        EXPECT_FALSE(without.record.active_format_flag);
    }
}

TEST(SeiA53, activeFormatIsMissing) {
    const auto read = readHex<ActiveFormatDescription>("b50031 44544731 41");
    EXPECT_EQ(read.fault.kind, FaultKind::EndOfData);
    EXPECT_EQ(qv::textOf(read.fault.element), "reserved");
}

TEST(SeiA53, anotherType) {
    const std::vector<uint8_t> payload = hex("b50031 44544731 41 fa");
    qv::SeiMessage message = messageWith(payload);
    message.payloadType = 5;
    EXPECT_EQ(a53KindOf(message), A53Kind::None);
    EXPECT_EQ(readPayload<ActiveFormatDescription>(message, Context(Codec::Avc)).fault.kind,
              FaultKind::OtherPayload);
}

struct KindCase {
    const char* payload;
    A53Kind kind;
};

constexpr KindCase kKinds[] = {
    {"b50031 47413934 03 c0 ff ff", A53Kind::Captions},
    {"b50031 47413934 03", A53Kind::Captions},
    {"b50031 47413934 06 0f", A53Kind::BarData},
    {"b50031 47413934 09", A53Kind::None},
    {"b50031 47413934", A53Kind::None},
    {"b50031 44544731", A53Kind::ActiveFormat},
    {"b50031 445447", A53Kind::None},
    {"b50031 03", A53Kind::None},
    {"b5002f 03 05 c0 ff ff", A53Kind::SatelliteCaptions},
    {"b5002f 47413934 03", A53Kind::None},
    {"b5003c 0001 04", A53Kind::None},
    {"b50031", A53Kind::None},
    {"b500", A53Kind::None},
    {"b5", A53Kind::None},
    {"", A53Kind::None},
    {"b40031 47413934 03 c0 ff ff", A53Kind::None},
    {"ff b50031 47413934 03 c0 ff ff", A53Kind::None},
};

TEST(SeiA53, kindOfMessage) {
    for (const KindCase& entry : kKinds) {
        const std::vector<uint8_t> payload = hex(entry.payload);
        EXPECT_EQ(a53KindOf(messageWith(payload)), entry.kind) << entry.payload;
    }
}

}  // namespace
