// What all payloads of SEI messages have in common: their end, their size, their type.
#include "bitstream/sei/SeiPayload.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BitWriter.h"
#include "PayloadOfBits.h"
#include "SeiUnits.h"
#include "StructureChecks.h"
#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/HevcLayers.h"
#include "bitstream/sei/PayloadList.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/syntax/Writer.h"
#include "bitstream/units/Rbsp.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using qv::SeiMessage;
using qv::SeiMessages;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

// The first message of a unit, which must outlive it.
SeiMessage firstOf(const std::vector<uint8_t>& unit, Codec codec) {
    return *SeiMessages(bytesOf(unit), codec).begin();
}

// Reader, tracer and rewriting agree on a message; what is wrong with it.
template <class Payload>
std::string faultOf(const std::vector<uint8_t>& unit, Codec codec) {
    const Context context(codec);
    const SeiMessage message = firstOf(unit, codec);
    const qv::Fault fault = readPayload<Payload>(message, context).fault;
    RecordingVisitor visitor;
    EXPECT_EQ(qv::textOf(tracePayload<Payload>(message, context, visitor).fault), qv::textOf(fault));
    EXPECT_EQ(visitor.depth, 0);
    std::vector<uint8_t> out;
    qv::Writer writer(out);
    writer.withoutEmulationPrevention();
    EXPECT_EQ(qv::textOf(PayloadUses<Payload>::rewrite(writer, message, context)), qv::textOf(fault));
    if (!fault) {
        writer.finish();
        std::vector<uint8_t> payload(message.payload.size);
        payload.resize(qv::unescape(message.payload, 0, payload.data(), payload.size()));
        EXPECT_EQ(out, payload);
    }
    return qv::textOf(fault);
}

std::vector<uint8_t> bytesOfBits(const std::string& pattern) {
    BitWriter bits;
    bits.bits("payload", pattern);
    return bits.bytes();
}

// --- The end of sei_payload() ---

struct EndRow {
    const char* bits;
    const char* fault;
};

TEST(SeiPayload, theEndInAvc) {
    // The unit has 24 bits before the payload.
    const EndRow kRows[] = {
        {"010 11 100", ""},
        {"010 11 000", "bit_equal_to_one in sei_payload() (D.1.1) at bit 29: 0 instead of 1"},
        {"010 11 110", "bit_equal_to_zero in sei_payload() (D.1.1) at bit 30: 1 instead of 0"},
        {"010 11 101", "bit_equal_to_zero in sei_payload() (D.1.1) at bit 31: 1 instead of 0"},
        {"100 1111 1", ""},
        {"100 1111 0", "bit_equal_to_one in sei_payload() (D.1.1) at bit 31: 0 instead of 1"},
        {"101 11111", ""},
        {"101 11111 10000000", "payloadSize in sei_message() (7.3.2.3.1) at bit 32: more data follows"},
        {"101 11111 00000000", "payloadSize in sei_message() (7.3.2.3.1) at bit 32: more data follows"},
        {"010 11 100 00000000", "payloadSize in sei_message() (7.3.2.3.1) at bit 32: more data follows"},
        {"111 11111", "value in payload_of_bits() (D.0) at bit 27: the data ends"},
    };
    for (const EndRow& row : kRows) {
        const std::vector<uint8_t> unit = seiUnitOf(Codec::Avc, 190, bytesOfBits(row.bits));
        EXPECT_EQ(faultOf<PayloadOfBits>(unit, Codec::Avc), row.fault) << row.bits;
    }
}

TEST(SeiPayload, theEndInHevc) {
    // The unit has 32 bits before the payload.
    const EndRow kRows[] = {
        {"010 11 100", ""},
        {"010 11 000", "payload_bit_equal_to_one in sei_payload() (D.2.1) at bit 37: 0 instead of 1"},
        {"100 1111 1", ""},
        {"101 11111", ""},
        {"101 11111 10000000", ""},
        {"101 11111 00000000", "payload_bit_equal_to_one in sei_payload() (D.2.1) at bit 40: 0 instead of 1"},
        {"010 11 100 00000000", "payloadSize in sei_message() (7.3.5) at bit 40: more data follows"},
        {"010 11 100 00000000 00000000 00000000 00000000 00000000",
         "payloadSize in sei_message() (7.3.5) at bit 40: more data follows"},
        {"111 11111", "value in payload_of_bits() (D.0) at bit 35: the data ends"},
    };
    for (const EndRow& row : kRows) {
        const std::vector<uint8_t> unit = seiUnitOf(Codec::Hevc, 190, bytesOfBits(row.bits));
        EXPECT_EQ(faultOf<PayloadOfBits>(unit, Codec::Hevc), row.fault) << row.bits;
    }
}

// reserved_payload_extension_data of any length after a payload that ends at any bit.
TEST(SeiPayload, extensionsOfEveryLength) {
    for (uint32_t width = 0; width < 8; ++width) {
        for (uint32_t length = 0; length < 140; ++length) {
            SCOPED_TRACE(std::to_string(length) + " bits after a value of " + std::to_string(width));
            BitWriter bits;
            bits.u(3, "width", width).u(width, "value", 0);
            for (uint32_t i = 0; i < length; ++i) {
                bits.u(1, "reserved_payload_extension_data", i % 41 == 0 ? 1 : 0);
            }
            const std::vector<uint8_t> unit = seiUnitOf(Codec::Hevc, 190, bits.trailingBits().bytes());
            ASSERT_EQ(faultOf<PayloadOfBits>(unit, Codec::Hevc), "");
            const Context context(Codec::Hevc);
            const SeiMessage message = firstOf(unit, Codec::Hevc);
            ASSERT_EQ(readPayload<PayloadOfBits>(message, context).trailing.bits, length);
            RecordingVisitor visitor;
            ASSERT_EQ(tracePayload<PayloadOfBits>(message, context, visitor).trailing.bits, length);
            uint64_t extension = 0;
            uint64_t next = 32;
            for (const qv::TracedElement& element : visitor.elements) {
                ASSERT_EQ(element.firstBit, next);
                next += element.width;
                if (std::string(element.element.name) == "reserved_payload_extension_data") {
                    ASSERT_LE(element.width, 32U);
                    extension += element.width;
                }
            }
            ASSERT_EQ(extension, length);
            ASSERT_EQ(next, 8 * (message.rbspPayloadOffset + message.rbspPayloadSize));
        }
    }
}

// --- Types ---

TEST(SeiPayload, aMessageOfAnotherType) {
    const std::vector<uint8_t> unit = seiUnitOf(Codec::Avc, 5, {1, 2, 3, 4});
    EXPECT_EQ(faultOf<ContentLightLevelInfo>(unit, Codec::Avc),
              "payloadType in sei_message() (7.3.2.3.1) at bit 24: a message of type 5");
    const Context context(Codec::Avc);
    const qv::Fault fault = readPayload<ContentLightLevelInfo>(firstOf(unit, Codec::Avc), context).fault;
    EXPECT_EQ(fault.kind, FaultKind::OtherPayload);
    EXPECT_EQ(fault.value, 5);
    EXPECT_EQ(faultOf<ReservedSeiMessage>(unit, Codec::Avc), "");
}

TEST(SeiPayload, aPayloadThatACodecDoesNotDefine) {
    const std::vector<uint8_t> unit = seiUnitOf(Codec::Avc, 165, {0xC0});
    EXPECT_EQ(faultOf<AlphaChannelInfo>(unit, Codec::Avc),
              "payloadType in sei_message() (7.3.2.3.1) at bit 24: a message of type 165");
    // A message may have the number that is used in place of a type.
    SeiMessage message = firstOf(unit, Codec::Avc);
    message.payloadType = kNoPayloadType;
    EXPECT_EQ(readPayload<AlphaChannelInfo>(message, Context(Codec::Avc)).fault.kind,
              FaultKind::OtherPayload);
    bool isReserved = false;
    withPayload(Codec::Avc, kNoPayloadType, [&](auto uses) {
        isReserved = std::is_same_v<decltype(uses), PayloadUses<ReservedSeiMessage>>;
    });
    EXPECT_TRUE(isReserved);
}

// A message in a nesting message does not hold messages itself.
TEST(SeiPayload, nestingInNestingIsRefused) {
    const std::vector<uint8_t> unit = seiUnitOf(Codec::Hevc, 133, {0x20, 133, 3, 0x20, 5, 0});
    const Context context(Codec::Hevc);
    const auto outer = readPayload<HevcScalableNesting>(firstOf(unit, Codec::Hevc), context);
    ASSERT_TRUE(outer.ok()) << qv::textOf(outer.fault);
    const SeiMessage inner = *SeiMessages(outer.record.messages).begin();
    EXPECT_EQ(inner.payloadType, 133U);
    EXPECT_EQ(qv::textOf(readPayload<HevcScalableNesting>(inner, context).fault),
              "payloadType in sei_message() (7.3.5) at bit 56: a message of type 133");
    EXPECT_TRUE(readPayload<ReservedSeiMessage>(inner, context).ok());
}

// --- Sizes ---

TEST(SeiPayload, aMessageThatIsNotThere) {
    for (const char* text : {"06", "06 80", "06 90", "06 90 FF"}) {
        const std::vector<uint8_t> unit = hex(text);
        const qv::Fault fault =
            readPayload<ReservedSeiMessage>(firstOf(unit, Codec::Avc), Context(Codec::Avc)).fault;
        EXPECT_EQ(fault.kind, FaultKind::EndOfData) << text;
        EXPECT_STREQ(fault.element.name, "payloadType") << text;
        EXPECT_STREQ(fault.structure->name, "sei_message()") << text;
        EXPECT_NE(faultOf<FillerPayload>(unit, Codec::Avc), "") << text;
    }
}

TEST(SeiPayload, aPayloadThatIsCut) {
    // The syntax ends within the data, and the data within payloadSize.
    EXPECT_EQ(faultOf<ContentLightLevelInfo>(hex("06 90 04 01 02 03"), Codec::Avc),
              "max_pic_average_light_level in content_light_level_info() (D.1.31) at bit 40: the data ends");
    EXPECT_EQ(faultOf<ContentLightLevelInfo>(hex("06 90 05 01 02 03 04"), Codec::Avc),
              "payloadSize in sei_message() (7.3.2.3.1) at bit 56: the data ends");
    EXPECT_EQ(faultOf<UserDataUnregistered>(
                  hex("06 05 14 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10"), Codec::Avc),
              "payloadSize in sei_message() (7.3.2.3.1) at bit 160: the data ends");
}

TEST(SeiPayload, aSizeThatIsOneTooSmallOrTooLarge) {
    for (const Codec codec : kCodecs) {
        const std::string structure = codec == Codec::Avc ? "(D.1.31)" : "(D.2.35)";
        const std::string bit = codec == Codec::Avc ? "40" : "48";
        EXPECT_EQ(faultOf<ContentLightLevelInfo>(seiUnitOf(codec, 144, {1, 2, 3}), codec),
                  "max_pic_average_light_level in content_light_level_info() " + structure + " at bit " +
                      bit + ": the data ends");
    }
    EXPECT_EQ(faultOf<ContentLightLevelInfo>(seiUnitOf(Codec::Avc, 144, {1, 2, 3, 4, 5}), Codec::Avc),
              "payloadSize in sei_message() (7.3.2.3.1) at bit 56: more data follows");
    // In H.265 another byte is an extension.
    EXPECT_EQ(faultOf<ContentLightLevelInfo>(seiUnitOf(Codec::Hevc, 144, {1, 2, 3, 4, 5}), Codec::Hevc), "");
    EXPECT_EQ(faultOf<ContentLightLevelInfo>(seiUnitOf(Codec::Hevc, 144, {1, 2, 3, 4, 0}), Codec::Hevc),
              "payload_bit_equal_to_one in sei_payload() (D.2.1) at bit 64: 0 instead of 1");
}

TEST(SeiPayload, payloadsWithoutBytes) {
    for (const Codec codec : kCodecs) {
        const std::vector<uint8_t> unit = seiUnitOf(codec, 3, {});
        EXPECT_EQ(faultOf<FillerPayload>(unit, codec), "");
        const auto read = readPayload<FillerPayload>(firstOf(unit, codec), Context(codec));
        EXPECT_TRUE(read.record.ff_byte.empty());
        EXPECT_NE(faultOf<ContentLightLevelInfo>(seiUnitOf(codec, 144, {}), codec), "");
    }
}

// --- Writing ---

TEST(SeiPayload, writtenBytesAreThoseOfTheRbsp) {
    ContentLightLevelInfo light = {};
    light.max_pic_average_light_level = 1;
    std::vector<uint8_t> out = {0x00, 0x00};
    const qv::Written written = writePayload(light, Context(Codec::Avc), out);
    EXPECT_TRUE(written.ok());
    EXPECT_EQ(written.size, 4U);
    EXPECT_EQ(out, hex("0000 0000 0001"));
    light.max_pic_average_light_level = 0;
    out.clear();
    writePayload(light, Context(Codec::Avc), out);
    EXPECT_EQ(out, hex("00000000"));
    EXPECT_EQ(sizeOfPayload(light, Context(Codec::Avc)).bits, 32U);
}

TEST(SeiPayload, whatDoesNotFitIsNotWritten) {
    ContentLightLevelInfo light = {};
    light.max_content_light_level = 0x10000;
    std::vector<uint8_t> out = {0xAA};
    const qv::Written written = writePayload(light, Context(Codec::Hevc), out);
    EXPECT_EQ(written.size, 0U);
    EXPECT_EQ(written.fault.kind, FaultKind::OutOfRange);
    EXPECT_STREQ(written.fault.element.name, "max_content_light_level");
    EXPECT_EQ(out, std::vector<uint8_t>{0xAA});
    const qv::Sized sized = sizeOfPayload(light, Context(Codec::Hevc));
    EXPECT_EQ(sized.bits, 0U);
    EXPECT_EQ(qv::textOf(sized.fault), qv::textOf(written.fault));
}

TEST(SeiPayload, theEndIsWrittenWhereThereIsOne) {
    for (const Codec codec : kCodecs) {
        std::vector<uint8_t> out;
        writePayload(PayloadOfBits{2, 3}, Context(codec), out);
        writePayload(PayloadOfBits{5, 31}, Context(codec), out);
        EXPECT_EQ(out, bytesOfBits("010 11 100 101 11111"));
    }
}

// --- A message of any type ---

struct AnyRow {
    const char* unit;
    const char* elements;
    const char* fault;
};

TEST(SeiPayload, aMessageOfAnyTypeIsTraced) {
    const AnyRow kRows[] = {
        {"4E01 90 04 03E8 0190 80", "max_content_light_level=1000 max_pic_average_light_level=400 ", ""},
        {"4E01 90 03 03E8 01 80", "max_content_light_level=1000 ",
         "max_pic_average_light_level in content_light_level_info() (D.2.35) at bit 48: the data ends"},
        {"4E01 90 05 03E8 0190 00 80", "max_content_light_level=1000 max_pic_average_light_level=400 ",
         "payload_bit_equal_to_one in sei_payload() (D.2.1) at bit 64: 0 instead of 1"},
        {"4E01 C7 02 0102 80",
         "reserved_sei_message_payload_byte[0]=1 reserved_sei_message_payload_byte[1]=2 ", ""},
    };
    for (const AnyRow& row : kRows) {
        SCOPED_TRACE(row.unit);
        const std::vector<uint8_t> unit = hex(row.unit);
        RecordingVisitor visitor;
        const qv::Fault fault = traceAnyPayload(firstOf(unit, Codec::Hevc), Context(Codec::Hevc), visitor);
        std::string elements;
        for (const qv::TracedElement& traced : visitor.elements) {
            elements += qv::textOf(traced.element) + "=" + std::to_string(traced.value) + " ";
        }
        EXPECT_EQ(elements, row.elements);
        EXPECT_EQ(qv::textOf(fault), row.fault);
        EXPECT_EQ(visitor.depth, 0);
    }
}

}  // namespace
