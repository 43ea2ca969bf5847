// SEI units, traced and rewritten: every message, what is wrong with one, and what follows the last one.
#include "bitstream/sei/SeiUnit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "MemoryChecks.h"
#include "SeiStreams.h"
#include "SeiUnits.h"
#include "StructureChecks.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/sei/HevcLayers.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/units/NalUnits.h"

namespace {

using namespace qv_test;
using qv::Codec;
using qv::SeiMessage;
using qv::SeiMessages;
using Buffer = std::vector<uint8_t>;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

// Without parameter sets.
class SeiUnit : public testing::Test {
protected:
    qv::UnitTrace trace(const Buffer& unit, Codec codec, qv::TraceVisitor& visitor) const {
        return codec == Codec::Avc ? qv::avc::traceUnit(bytesOf(unit), *avc, visitor)
                                   : qv::hevc::traceUnit(bytesOf(unit), *hevc, visitor);
    }

    qv::UnitRewritten rewrite(const Buffer& unit, Codec codec, Buffer& out) const {
        return codec == Codec::Avc ? qv::avc::rewriteUnit(bytesOf(unit), *avc, out)
                                   : qv::hevc::rewriteUnit(bytesOf(unit), *hevc, out);
    }

    // The elements after the unit header by name, and the fault.
    std::string textOfTrace(const Buffer& unit, Codec codec) const {
        RecordingVisitor visitor;
        const qv::UnitTrace traced = trace(unit, codec, visitor);
        EXPECT_TRUE(traced.isWhole);
        EXPECT_EQ(visitor.depth, 0);
        std::string text;
        for (size_t i = codec == Codec::Avc ? 3 : 4; i < visitor.elements.size(); ++i) {
            const qv::TracedElement& element = visitor.elements[i];
            text += qv::textOf(element.element) + "=" + std::to_string(element.value) + " ";
        }
        return text + qv::textOf(traced.fault);
    }

    // The fault that keeps a unit from being rewritten; nothing else was written.
    std::string faultOfRewriting(const Buffer& unit, Codec codec) const {
        Buffer out = {0xAA};
        const qv::UnitRewritten rewritten = rewrite(unit, codec, out);
        EXPECT_FALSE(rewritten.isRewritten && rewritten.fault);
        if (rewritten.isRewritten) {
            EXPECT_EQ(Buffer(out.begin() + 1, out.end()), unit);
        } else {
            EXPECT_EQ(out.size(), 1U);
        }
        EXPECT_EQ(out[0], 0xAA);
        return rewritten.isRewritten ? "rewritten" : qv::textOf(rewritten.fault);
    }

    std::unique_ptr<qv::avc::ParameterSets> avc = std::make_unique<qv::avc::ParameterSets>();
    std::unique_ptr<qv::hevc::ParameterSets> hevc = std::make_unique<qv::hevc::ParameterSets>();
};

struct Row {
    const char* unit;
    const char* trace;
    const char* rewriting;
};

// The header of the unit takes bits 0 to 7.
const Row kAvcRows[] = {
    {"06 90 04 00 01 00 02 80",
     "last_payload_type_byte=144 last_payload_size_byte=4 max_content_light_level=1 "
     "max_pic_average_light_level=2 rbsp_stop_one_bit=1 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 ",
     "rewritten"},
    // No message
    {"06", "sei_message() in sei_rbsp() (7.3.2.3) at bit 8: the data ends",
     "sei_message() in sei_rbsp() (7.3.2.3) at bit 8: the data ends"},
    {"06 80", "sei_message() in sei_rbsp() (7.3.2.3) at bit 8: the data ends",
     "sei_message() in sei_rbsp() (7.3.2.3) at bit 8: the data ends"},
    // The header is cut
    {"06 90",
     "last_payload_type_byte=144 last_payload_size_byte in sei_message() (7.3.2.3.1) at bit 16: the data "
     "ends",
     "last_payload_size_byte in sei_message() (7.3.2.3.1) at bit 16: the data ends"},
    {"06 FF FF",
     "ff_byte=255 ff_byte=255 last_payload_type_byte in sei_message() (7.3.2.3.1) at bit 24: the data ends",
     "last_payload_type_byte in sei_message() (7.3.2.3.1) at bit 24: the data ends"},
    {"06 03 00 05 FF",
     "last_payload_type_byte=3 last_payload_size_byte=0 last_payload_type_byte=5 ff_byte=255 "
     "last_payload_size_byte in sei_message() (7.3.2.3.1) at bit 40: the data ends",
     "last_payload_size_byte in sei_message() (7.3.2.3.1) at bit 40: the data ends"},
    // The payload is cut: within an element, and after the last one
    {"06 90 04 00 01 00",
     "last_payload_type_byte=144 last_payload_size_byte=4 max_content_light_level=1 "
     "max_pic_average_light_level "
     "in content_light_level_info() (D.1.31) at bit 40: the data ends",
     "max_pic_average_light_level in content_light_level_info() (D.1.31) at bit 40: the data ends"},
    {"06 03 02 FF",
     "last_payload_type_byte=3 last_payload_size_byte=2 ff_byte[0]=255 payloadSize in sei_message() "
     "(7.3.2.3.1) "
     "at bit 32: the data ends",
     "payloadSize in sei_message() (7.3.2.3.1) at bit 32: the data ends"},
    // Zero bytes at the end of the last payload, and no rbsp_trailing_bits()
    {"06 C7 06 1B 05 09 B8 00 00",
     "last_payload_type_byte=199 last_payload_size_byte=6 reserved_sei_message_payload_byte[0]=27 "
     "reserved_sei_message_payload_byte[1]=5 reserved_sei_message_payload_byte[2]=9 "
     "reserved_sei_message_payload_byte[3]=184 reserved_sei_message_payload_byte[4]=0 "
     "reserved_sei_message_payload_byte[5]=0 rbsp_stop_one_bit in sei_rbsp() (7.3.2.3) at bit 72: the data "
     "ends",
     "rbsp_stop_one_bit in sei_rbsp() (7.3.2.3) at bit 72: the data ends"},
    {"06 03 00 80 07",
     "last_payload_type_byte=3 last_payload_size_byte=0 rbsp_trailing_bits() in sei_rbsp() (7.3.2.3) at bit "
     "24: "
     "more data follows",
     "rbsp_trailing_bits() in sei_rbsp() (7.3.2.3) at bit 24: more data follows"},
    // A size that is too small: the message after it is what is left
    {"06 90 03 00 01 00 03 00 80",
     "last_payload_type_byte=144 last_payload_size_byte=3 max_content_light_level=1 last_payload_type_byte=3 "
     "last_payload_size_byte=0 rbsp_stop_one_bit=1 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 max_pic_average_light_level in content_light_level_info() (D.1.31) at bit "
     "40: the "
     "data ends",
     "rewritten"},
    // One that is too large takes rbsp_trailing_bits()
    {"06 90 05 00 01 00 02 80",
     "last_payload_type_byte=144 last_payload_size_byte=5 max_content_light_level=1 "
     "max_pic_average_light_level=2 payloadSize in sei_message() (7.3.2.3.1) at bit 56: more data follows",
     "rbsp_stop_one_bit in sei_rbsp() (7.3.2.3) at bit 64: the data ends"},
    // The message in the middle has the fault
    {"06 03 00 90 01 07 03 01 FF 80",
     "last_payload_type_byte=3 last_payload_size_byte=0 last_payload_type_byte=144 last_payload_size_byte=1 "
     "last_payload_type_byte=3 last_payload_size_byte=1 ff_byte[0]=255 rbsp_stop_one_bit=1 "
     "rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 "
     "rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 max_content_light_level "
     "in "
     "content_light_level_info() (D.1.31) at bit 40: the data ends",
     "rewritten"},
};

TEST_F(SeiUnit, table) {
    for (const Row& row : kAvcRows) {
        const Buffer unit = hex(row.unit);
        EXPECT_EQ(textOfTrace(unit, Codec::Avc), row.trace) << row.unit;
        EXPECT_EQ(faultOfRewriting(unit, Codec::Avc), row.rewriting) << row.unit;
    }
}

TEST_F(SeiUnit, clausesAreThoseOfTheCodec) {
    EXPECT_EQ(textOfTrace(hex("4E 01"), Codec::Hevc),
              "sei_message() in sei_rbsp() (7.3.2.4) at bit 16: the data ends");
    EXPECT_EQ(
        textOfTrace(hex("50 01 03"), Codec::Hevc),
        "last_payload_type_byte=3 last_payload_size_byte in sei_message() (7.3.5) at bit 24: the data ends");
    EXPECT_EQ(faultOfRewriting(hex("50 01 03"), Codec::Hevc),
              "last_payload_size_byte in sei_message() (7.3.5) at bit 24: the data ends");
    EXPECT_EQ(faultOfRewriting(hex("4E"), Codec::Hevc),
              "sei_message() in sei_rbsp() (7.3.2.4) at bit 8: the data ends");
}

TEST_F(SeiUnit, bytesAfterTheTrailingBitsAreKept) {
    for (const Codec codec : kCodecs) {
        Buffer unit = seiUnitOf(codec, 5, Buffer(20, 0));
        const size_t size = unit.size();
        const Buffer zeros = hex("00 00 03 00 00 03");  // cabac_zero_words
        unit.insert(unit.end(), zeros.begin(), zeros.end());
        RecordingVisitor visitor;
        const qv::UnitTrace traced = trace(unit, codec, visitor);
        EXPECT_TRUE(traced.ok()) << qv::textOf(traced.fault);
        EXPECT_EQ(traced.trailing.bytes.data, unit.data() + size);
        EXPECT_EQ(traced.trailing.bytes.size, zeros.size());
        EXPECT_EQ(faultOfRewriting(unit, codec), "rewritten");
    }
}

// Emulation prevention where 7.4.1 does not ask for it.
TEST_F(SeiUnit, aUnitThatWouldHaveOtherBytesIsNotRewritten) {
    EXPECT_EQ(faultOfRewriting(hex("06 C7 04 00 00 03 04 05 80"), Codec::Avc), "");
}

TEST_F(SeiUnit, extensionsAreRewritten) {
    // After both levels: 1010 of an extension and payload_bit_equal_to_one; an extension without bits
    EXPECT_EQ(faultOfRewriting(seiUnitOf(Codec::Hevc, 144, hex("0001 0002 A8")), Codec::Hevc), "rewritten");
    EXPECT_EQ(faultOfRewriting(seiUnitOf(Codec::Hevc, 144, hex("0001 0002 80")), Codec::Hevc), "rewritten");
}

TEST_F(SeiUnit, typesAndSizesOfSeveralBytes) {
    for (const Codec codec : kCodecs) {
        for (const size_t size : {254U, 255U, 256U, 509U, 510U, 511U, 765U, 10000U}) {
            for (const uint64_t type : {199U, 255U, 256U, 510U, 76500U}) {
                const Buffer unit = seiUnitOf(codec, type, Buffer(size, 0x00));
                EXPECT_EQ(faultOfRewriting(unit, codec), "rewritten");
                RecordingVisitor visitor;
                EXPECT_TRUE(trace(unit, codec, visitor).ok());
                const size_t headerElements = codec == Codec::Avc ? 3 : 4;
                EXPECT_EQ(visitor.elements.size(), headerElements + type / 255 + size / 255 + 2 + size + 8);
            }
        }
    }
}

TEST_F(SeiUnit, tenThousandMessages) {
    constexpr uint32_t kMessages = 10000;
    for (const Codec codec : kCodecs) {
        Buffer messages;
        size_t elements = codec == Codec::Avc ? 3 : 4;
        for (uint32_t i = 0; i < kMessages; ++i) {
            appendSeiMessage(messages, 199, Buffer(i % 4, 0x00));
            elements += 2 + i % 4;
        }
        const Buffer unit = seiUnitOf(codec, messages);
        RecordingVisitor visitor;
        EXPECT_TRUE(trace(unit, codec, visitor).ok());
        EXPECT_EQ(visitor.elements.size(), elements + 8);
        EXPECT_EQ(faultOfRewriting(unit, codec), "rewritten");
    }
}

// --- With parameter sets in force ---

// Messages of types with fields, with bytes, with messages and without a record, and of many zero bytes.
Buffer randomMessages(Random& random, Codec codec, bool isNested = false) {
    constexpr uint64_t kTypes[] = {3, 4, 5, 144, 199, 0x100, 0x300};
    Buffer messages;
    for (uint64_t left = 1 + random() % 4; left > 0; --left) {
        if (codec == Codec::Hevc && !isNested && random() % 4 == 0) {
            Buffer nested = randomMessages(random, codec, true);
            nested.insert(nested.begin(), 0x20);
            appendSeiMessage(messages, 133, nested);
            continue;
        }
        const uint64_t type = kTypes[random() % (sizeof kTypes / sizeof kTypes[0])];
        Buffer payload(type == 144 ? 4 : type == 5 ? 16 + random() % 8 : 2 + random() % 20);
        for (uint8_t& byte : payload) {
            byte = random() % 3 != 0 ? 0 : static_cast<uint8_t>(random() % 5);
        }
        appendSeiMessage(messages, type, payload);
    }
    return messages;
}

class SeiUnitWithSets : public SeiUnit {
protected:
    SeiUnitWithSets() {
        takeSets(*avc, Codec::Avc, avcSetsForSei());
        takeSets(*hevc, Codec::Hevc, hevcSetsForSei());
    }

    template <class Sets>
    static void takeSets(Sets& sets, Codec codec, const Buffer& stream) {
        for (const qv::NalUnit& unit : qv::NalUnits(bytesOf(stream), qv::Framing::StartCodes, codec)) {
            sets.take(unit.bytes);
        }
    }
};

TEST_F(SeiUnitWithSets, aPayloadWhoseSyntaxDependsOnThem) {
    // lnp_sei_active_vps_id 0 of two layers, layer_not_present_flag 1 and 0, the end of the payload
    const Buffer unit = hex("4E 01 A0 01 0A 80");
    RecordingVisitor visitor;
    EXPECT_TRUE(trace(unit, Codec::Hevc, visitor).ok());
    ASSERT_GT(visitor.elements.size(), 8U);
    EXPECT_EQ(textOf(visitor.elements[7]), "36 1 layer_not_present_flag[0] 1");
    EXPECT_EQ(faultOfRewriting(unit, Codec::Hevc), "rewritten");
    // There is no VPS 15.
    const char* const kFault =
        "lnp_sei_active_vps_id in layers_not_present() (F.14.2.3) at bit 36: there is no parameter set 15";
    EXPECT_EQ(qv::textOf(trace(hex("4E 01 A0 01 FA 80"), Codec::Hevc, visitor).fault), kFault);
    // The payload is written as bytes.
    EXPECT_EQ(faultOfRewriting(hex("4E 01 A0 01 FA 80"), Codec::Hevc), "rewritten");
}

TEST_F(SeiUnitWithSets, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        MemoryCheck check({{"trace", [&](qv::Bytes unit) {
                                SummingVisitor visitor;
                                return codec == Codec::Avc ? qv::avc::traceUnit(unit, *avc, visitor).ok()
                                                           : qv::hevc::traceUnit(unit, *hevc, visitor).ok();
                            }}});
        Random random(14);
        check.checkVariants(seiUnitOf(codec, 3, {0xFF}), random);
        for (int round = 0; round < unitRounds(20) && !HasFailure(); ++round) {
            check.checkVariants(seiUnitOf(codec, randomMessages(random, codec)), random);
        }
        for (unsigned type = 0; type < 256 && !HasFailure(); ++type) {
            Buffer payload(4 + random() % 24);
            for (uint8_t& byte : payload) {
                byte = static_cast<uint8_t>(random() % 3 != 0 ? random() & 0x91 : 0);
            }
            check.checkVariants(seiUnitOf(codec, type, payload), random);
        }
        check.expectEverythingWasUsed();
    }
}

// --- Messages in the payload of another one ---

TEST_F(SeiUnit, nestedMessagesAreTraced) {
    // all_layers_flag 1; filler payload of a byte; content light levels
    const Buffer unit = hex("4E 01 85 0A 20 03 01 FF 90 04 00 01 00 02 80");
    EXPECT_EQ(
        textOfTrace(unit, Codec::Hevc),
        "last_payload_type_byte=133 last_payload_size_byte=10 bitstream_subset_flag=0 nesting_op_flag=0 "
        "all_layers_flag=1 nesting_zero_bit=0 nesting_zero_bit=0 nesting_zero_bit=0 nesting_zero_bit=0 "
        "nesting_zero_bit=0 last_payload_type_byte=3 last_payload_size_byte=1 ff_byte[0]=255 "
        "last_payload_type_byte=144 last_payload_size_byte=4 max_content_light_level=1 "
        "max_pic_average_light_level=2 rbsp_stop_one_bit=1 rbsp_alignment_zero_bit=0 "
        "rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 "
        "rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 rbsp_alignment_zero_bit=0 ");
    EXPECT_EQ(faultOfRewriting(unit, Codec::Hevc), "rewritten");
}

struct NestedRow {
    const char* payload;
    const char* fault;
};

TEST_F(SeiUnit, faultsOfNestedMessages) {
    // The payload begins at bit 32, the first message in it at bit 40.
    const NestedRow kRows[] = {
        {"20 03 01 FF", ""},
        {"20", "last_payload_type_byte in sei_message() (7.3.5) at bit 40: the data ends"},
        {"20 03", "last_payload_size_byte in sei_message() (7.3.5) at bit 48: the data ends"},
        {"20 03 02 FF", "payloadSize in sei_message() (7.3.5) at bit 64: the data ends"},
        {"20 90 01 FF 03 00",
         "max_content_light_level in content_light_level_info() (D.2.35) at bit 56: the data ends"},
        {"20 03 00 90 01 FF 90",
         "max_content_light_level in content_light_level_info() (D.2.35) at bit 72: the data ends"},
        {"20 85 03 20 03 00", "payloadType in sei_message() (7.3.5) at bit 56: a message of type 133"},
        {"21 03 00", "nesting_zero_bit in scalable_nesting() (D.2.24) at bit 39: 1 instead of 0"},
        {"", "bitstream_subset_flag in scalable_nesting() (D.2.24) at bit 32: the data ends"},
    };
    for (const NestedRow& row : kRows) {
        const Buffer unit = seiUnitOf(Codec::Hevc, 133, hex(row.payload));
        RecordingVisitor visitor;
        const qv::UnitTrace traced = trace(unit, Codec::Hevc, visitor);
        EXPECT_EQ(qv::textOf(traced.fault), row.fault) << row.payload;
        EXPECT_EQ(visitor.depth, 0);
        EXPECT_STREQ(visitor.elements.back().element.name, "rbsp_alignment_zero_bit");
    }
}

// A nested message with a fault does not keep the ones after it from being traced.
TEST_F(SeiUnit, nestedMessagesAfterOneWithAFault) {
    RecordingVisitor visitor;
    trace(seiUnitOf(Codec::Hevc, 133, hex("20 90 01 FF 03 01 AA")), Codec::Hevc, visitor);
    const bool isFillerTraced =
        std::any_of(visitor.elements.begin(), visitor.elements.end(), [](const qv::TracedElement& element) {
            return std::string(element.element.name) == "ff_byte" && element.value == 0xAA;
        });
    EXPECT_TRUE(isFillerTraced);
}

// --- Emulation prevention bytes in every place ---

// Every element is where the slow walk finds its bits, and no bit of the unit is left out.
void expectElementsAt(const std::vector<qv::TracedElement>& elements, const Buffer& unit,
                      size_t headerBytes) {
    const std::vector<size_t> codedBytes = codedBytesOf(unit, headerBytes);
    uint64_t next = 0;
    for (const qv::TracedElement& element : elements) {
        ASSERT_EQ(element.firstBit, next);
        uint64_t bits = 0;
        for (uint32_t i = 0; i < element.width; ++i, ++next) {
            bits = bits << 1 | (uint32_t{unit[codedBytes[next / 8]]} >> (7 - next % 8) & 1U);
        }
        ASSERT_EQ(element.bits, bits) << textOf(element);
        ASSERT_EQ(element.codedByte, codedBytes[element.firstBit / 8]) << textOf(element);
    }
}

TEST_F(SeiUnit, emulationPreventionInEveryPlace) {
    Random random(11);
    for (int round = 0; round < unitRounds(4000); ++round) {
        const Codec codec = kCodecs[round % 2];
        const Buffer unit = seiUnitOf(codec, randomMessages(random, codec));
        SCOPED_TRACE(hexOf(bytesOf(unit)));
        RecordingVisitor visitor;
        const qv::UnitTrace traced = trace(unit, codec, visitor);
        ASSERT_TRUE(traced.ok()) << qv::textOf(traced.fault);
        const size_t headerBytes = codec == Codec::Avc ? 1 : 2;
        expectElementsAt(visitor.elements, unit, headerBytes);
        const qv::TracedElement& last = visitor.elements.back();
        ASSERT_EQ(last.firstBit + last.width, 8 * (codedBytesOf(unit, headerBytes).size() - 1));
        ASSERT_EQ(faultOfRewriting(unit, codec), "rewritten");
        ASSERT_FALSE(HasFailure());
    }
}

// The elements of a unit that is cut are those of the whole unit that are before the cut, and the data ends.
TEST_F(SeiUnit, cutAtEveryByte) {
    Random random(12);
    for (int round = 0; round < unitRounds(150); ++round) {
        const Codec codec = kCodecs[round % 2];
        const size_t headerBytes = codec == Codec::Avc ? 1 : 2;
        Buffer unit = seiUnitOf(codec, randomMessages(random, codec));
        RecordingVisitor whole;
        trace(unit, codec, whole);
        unit.pop_back();
        for (; unit.size() > headerBytes; unit.pop_back()) {
            SCOPED_TRACE(hexOf(bytesOf(unit)));
            RecordingVisitor visitor;
            const qv::UnitTrace traced = trace(unit, codec, visitor);
            ASSERT_EQ(traced.fault.kind, qv::FaultKind::EndOfData) << qv::textOf(traced.fault);
            ASSERT_EQ(visitor.depth, 0);
            ASSERT_LE(visitor.elements.size(), whole.elements.size());
            for (size_t i = 0; i < visitor.elements.size(); ++i) {
                ASSERT_EQ(textOf(visitor.elements[i]), textOf(whole.elements[i]));
            }
            expectElementsAt(visitor.elements, unit, headerBytes);
            ASSERT_NE(faultOfRewriting(unit, codec), "rewritten");
            ASSERT_FALSE(HasFailure());
        }
    }
}

// The bytes of payloads read again from the record, in any position.
TEST_F(SeiUnit, keptBytesReadAgain) {
    Random random(13);
    for (int round = 0; round < unitRounds(2000); ++round) {
        Buffer payload(1 + random() % 30);
        for (uint8_t& byte : payload) {
            byte = random() % 3 != 0 ? 0 : static_cast<uint8_t>(random() % 5);
        }
        Buffer messages;
        appendSeiMessage(messages, random() % 3, Buffer(random() % 5, 0x00));
        appendSeiMessage(messages, 199, payload);
        appendSeiMessage(messages, 0, {0x00});
        const Buffer unit = seiUnitOf(Codec::Avc, messages);
        SeiMessages::Iterator at = SeiMessages(bytesOf(unit), Codec::Avc).begin();
        const auto read =
            qv::sei::readPayload<qv::sei::ReservedSeiMessage>(*++at, qv::sei::Context(Codec::Avc));
        const qv::CodedBits& bits = read.record.reserved_sei_message_payload_byte;
        ASSERT_EQ(bits.count, 8 * payload.size());
        ASSERT_EQ(bits.byte, at->payloadOffset);
        ASSERT_EQ(bits.firstBit, 8 * at->rbspPayloadOffset);
        qv::Reader reader(bits);
        for (const uint8_t expected : payload) {
            uint32_t byte = 0;
            reader.u(8, "byte", byte);
            ASSERT_EQ(byte, expected);
        }
        ASSERT_FALSE(reader.failed() || reader.more_rbsp_data()) << hexOf(bytesOf(unit));
    }
}

}  // namespace
