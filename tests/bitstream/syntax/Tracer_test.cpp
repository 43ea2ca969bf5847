// The tracer: every element with its bits and its place in the coded unit.
#include "bitstream/syntax/Tracer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/SlowReader.h"
#include "BitWriter.h"

namespace {

using namespace qv_test;
using qv::Descriptor;
using qv::TracedElement;
using qv::Tracer;
using Texts = std::vector<std::string>;

// "name descriptor firstBit+width = value (bits) byte", and the structures.
class Lines : public qv::TraceVisitor {
public:
    void begin(const qv::Structure& structure) override {
        lines.push_back(std::string(structure.name) + " {");
    }
    void element(const TracedElement& element) override {
        elements.push_back(element);
        static const char* const kDescriptors[] = {"u", "i", "f", "ue", "se", "bytes"};
        lines.push_back(qv::textOf(element.element) + " " +
                        kDescriptors[static_cast<int>(element.descriptor)] + " " +
                        std::to_string(element.firstBit) + "+" + std::to_string(element.width) + " = " +
                        std::to_string(element.value) + " (" + std::to_string(element.bits) + ") byte " +
                        std::to_string(element.codedByte));
    }
    void end() override { lines.push_back("}"); }

    std::vector<TracedElement> elements;
    Texts lines;
};

TEST(Tracer, everyDescriptor) {
    static constexpr qv::Structure kOuter = {"outer()", "1.1"};
    static constexpr qv::Structure kInner = {"inner()", "1.2"};
    BitWriter bits;
    bits.u(8, "header", 0x67).u(8, "u", 0).u(8, "u", 0).u(3, "u", 5).u(1, "flag", 1).u(4, "i", 0xD);
    bits.ue("ue", 4).se("se", -3).u(5, "f", 21).u(1, "flag", 0).u(2, "u", 2).trailingBits();
    const Bytes unit = withEmulationPrevention(bits.bytes());
    Lines lines;
    Tracer tracer(bytesOf(unit), lines);
    uint32_t u = 0;
    int32_t i = 0;
    bool flag = false;
    tracer.header(1);
    tracer.u(8, "header", u);
    tracer.rbsp();
    {
        const qv::Within<Tracer> outer(tracer, kOuter);
        tracer.u(16, qv::at("zero", 2, 3), u);
        {
            const qv::Within<Tracer> inner(tracer, kInner);
            tracer.u(3, "three", u, 0, 6);
            tracer.flag("flag", flag);
            tracer.i(4, "i", i);
            tracer.ue("ue", u);
            tracer.se("se", i);
            tracer.f(5, "f", 21);
        }
        tracer.flag("off", flag, false);
        tracer.u(2, "last", u);
        EXPECT_FALSE(tracer.more_rbsp_data());
        tracer.rbsp_trailing_bits();
    }
    EXPECT_FALSE(tracer.failed());
    EXPECT_EQ(lines.lines, Texts({"header u 0+8 = 103 (103) byte 0",
                                  "outer() {",
                                  "zero[2][3] u 8+16 = 0 (0) byte 1",
                                  "inner() {",
                                  "three u 24+3 = 5 (5) byte 3",
                                  "flag u 27+1 = 1 (1) byte 3",
                                  "i i 28+4 = -3 (13) byte 3",
                                  "ue ue 32+5 = 4 (5) byte 4",
                                  "se se 37+5 = -3 (7) byte 4",
                                  "f f 42+5 = 21 (21) byte 5",
                                  "}",
                                  "off u 47+1 = 0 (0) byte 5",
                                  "last u 48+2 = 2 (2) byte 6",
                                  "rbsp_trailing_bits() {",
                                  "rbsp_stop_one_bit f 50+1 = 1 (1) byte 6",
                                  "rbsp_alignment_zero_bit f 51+1 = 0 (0) byte 6",
                                  "rbsp_alignment_zero_bit f 52+1 = 0 (0) byte 6",
                                  "rbsp_alignment_zero_bit f 53+1 = 0 (0) byte 6",
                                  "rbsp_alignment_zero_bit f 54+1 = 0 (0) byte 6",
                                  "rbsp_alignment_zero_bit f 55+1 = 0 (0) byte 6",
                                  "}",
                                  "}"}));
}

TEST(Tracer, anElementWithAFaultIsNotReported) {
    const Bytes unit = hex("67 A5 80");
    Lines lines;
    Tracer tracer(bytesOf(unit), lines);
    uint32_t value = 0;
    tracer.header(1);
    tracer.u(8, "header", value);
    tracer.rbsp();
    tracer.u(4, "fine", value);
    tracer.u(4, "wrong", value, 0, 4);
    tracer.u(4, "after", value);
    tracer.rbsp_trailing_bits();
    EXPECT_EQ(lines.lines, Texts({"header u 0+8 = 103 (103) byte 0", "fine u 8+4 = 10 (10) byte 1"}));
    EXPECT_EQ(qv::textOf(tracer.fault()), "wrong at bit 12: 5 is not in 0..4");
}

// Data before rbsp_trailing_bits() is not reported as those, and missing ones are a fault.
TEST(Tracer, trailingBitsAreReportedWhereTheyAre) {
    struct Row {
        const char* unit;
        size_t elements;
        bool ok;
    };
    for (const Row& row : {Row{"67 80", 9, true}, Row{"67 FF 80", 1, true}, Row{"67", 1, false},
                           Row{"67 00 00 03", 1, false}, Row{"67 80 00 00 03", 9, true}}) {
        const Bytes unit = hex(row.unit);
        Lines lines;
        Tracer tracer(bytesOf(unit), lines);
        uint32_t value = 0;
        tracer.header(1);
        tracer.u(8, "header", value);
        tracer.rbsp();
        tracer.rbsp_trailing_bits();
        EXPECT_EQ(lines.elements.size(), row.elements) << row.unit;
        EXPECT_EQ(!tracer.failed(), row.ok) << row.unit;
    }
}

TEST(Tracer, flagsOfAnExtensionInRuns) {
    BitWriter bits;
    bits.u(8, "header", 0x67).u(3, "x", 5);
    for (int i = 0; i < 70; ++i) {
        bits.u(1, "flag", i % 5 == 0 ? 1 : 0);
    }
    const Bytes unit = withEmulationPrevention(bits.trailingBits().bytes());
    Lines lines;
    Tracer tracer(bytesOf(unit), lines);
    uint32_t value = 0;
    qv::CodedBits kept;
    tracer.header(1);
    tracer.u(8, "header", value);
    tracer.rbsp();
    tracer.u(3, "x", value);
    tracer.extension_data("sps_extension_data_flag", kept);
    tracer.rbsp_trailing_bits();
    EXPECT_EQ(kept.count, 70U);
    EXPECT_EQ(kept.firstBit, 11U);
    ASSERT_GE(lines.elements.size(), 5U);
    EXPECT_EQ(lines.elements[2].width, 32U);
    EXPECT_EQ(lines.elements[3].width, 32U);
    EXPECT_EQ(lines.elements[4].width, 6U);
    EXPECT_STREQ(lines.elements[4].element.name, "sps_extension_data_flag");
    EXPECT_EQ(lines.elements[2].bits >> 27, 0x10U);
}

TEST(Tracer, keptBitsAreReportedAsTheyAreRead) {
    const Bytes unit = hex("67 00 00 03 01 A5 80");
    Lines lines;
    Tracer tracer(bytesOf(unit), lines);
    uint32_t value = 0;
    tracer.header(1);
    tracer.u(8, "header", value);
    tracer.rbsp();
    qv::CodedBits kept;
    tracer.u(20, "first", value);
    tracer.keep(kept, [&](Tracer& in) { in.u(8, "kept", value); });
    EXPECT_EQ(kept.firstBit, 28U);
    EXPECT_EQ(kept.count, 8U);
    EXPECT_EQ(kept.byte, 4U);
    EXPECT_EQ(kept.bitOfByte, 4U);
    EXPECT_EQ(lines.lines.back(), "kept u 28+8 = 26 (26) byte 4");
}

// A part of a unit that begins with a data byte; its last byte is not a whole one of the payload.
TEST(Tracer, bytesOfAPayload) {
    const Bytes unit = hex("06 00 00 03 01 A5 00 00 03 02");
    Lines lines;
    Tracer tracer(bytesOf(unit), 4, unit.size(), 24, lines);
    uint32_t value = 0;
    qv::CodedBits kept;
    tracer.u(4, "first", value);
    tracer.payload_bytes("byte", kept);
    EXPECT_EQ(kept.firstBit, 28U);
    EXPECT_EQ(kept.count, 36U);
    const std::vector<std::string> expected = {
        "first u 24+4 = 0 (0) byte 4",   "byte[0] u 28+8 = 26 (26) byte 4", "byte[1] u 36+8 = 80 (80) byte 5",
        "byte[2] u 44+8 = 0 (0) byte 6", "byte[3] u 52+8 = 0 (0) byte 7",   "byte[4] u 60+4 = 2 (2) byte 9",
    };
    EXPECT_EQ(lines.lines, expected);
}

TEST(Tracer, extensionOfAPayloadInRuns) {
    BitWriter bits;
    bits.u(8, "header", 0x06);
    for (int i = 0; i < 70; ++i) {
        bits.u(1, "extension", i % 5 == 0 ? 1 : 0);
    }
    const Bytes unit = bits.trailingBits().bytes();
    Lines lines;
    Tracer tracer(bytesOf(unit), 1, unit.size(), 8, lines);
    qv::CodedBits kept;
    tracer.payload_extension("reserved_payload_extension_data", kept);
    EXPECT_EQ(kept.count, 70U);
    EXPECT_EQ(kept.firstBit, 8U);
    ASSERT_EQ(lines.elements.size(), 3U);
    EXPECT_EQ(lines.elements[0].width, 32U);
    EXPECT_EQ(lines.elements[2].width, 6U);
    tracer.f(1, "payload_bit_equal_to_one", 1);
    EXPECT_FALSE(tracer.failed());
}

TEST(Tracer, wholeBytes) {
    const Bytes record = hex("00 03 00 00 03 00 00 03 01 02");
    Lines lines;
    Tracer tracer(bytesOf(record), lines);
    uint32_t length = 0;
    qv::Bytes unit;
    qv::Bytes kept;
    qv::Bytes rest;
    bool present = false;
    tracer.header(2);
    tracer.u(16, "length", length);
    tracer.bytes(length, qv::at("unit", 0), unit);
    EXPECT_TRUE(tracer.hasBytes(5, present));
    EXPECT_FALSE(tracer.hasBytes(6, present));
    EXPECT_FALSE(present);
    tracer.keepBytes(kept, [&](Tracer& in) { in.bytes(0, "none", unit); });
    EXPECT_TRUE(kept.empty());
    tracer.restOfBytes("rest", rest);
    tracer.restOfBytes("more", rest);
    EXPECT_EQ(lines.lines, Texts({"length u 0+16 = 3 (3) byte 0", "unit[0] bytes 16+24 = 3 (0) byte 2",
                                  "none bytes 40+0 = 0 (0) byte 5", "rest bytes 40+40 = 5 (0) byte 5"}));
    tracer.bytes(1, "past", unit);
    EXPECT_TRUE(unit.empty());
    EXPECT_EQ(qv::textOf(tracer.fault()), "past at bit 80: the data ends");
}

// Places in the coded unit, against the slow reader.
TEST(Tracer, anElementWithoutBitsAfterTheLastByte) {
    const Bytes unit = hex("67 42");
    Lines lines;
    Tracer tracer(bytesOf(unit), lines);
    uint32_t value = 0;
    tracer.header(1);
    tracer.u(16, "all", value);
    tracer.u(0, "none", value);
    ASSERT_EQ(lines.elements.size(), 2U);
    EXPECT_EQ(lines.elements[1].codedByte, 2U);
}

TEST(Tracer, codedPositionsOfRandomUnits) {
    std::mt19937_64 random(7);
    for (int round = 0; round < 5000; ++round) {
        static constexpr uint8_t kBytes[] = {0x00, 0x00, 0x00, 0x03, 0x03, 0x01, 0x80};
        Bytes unit(1 + random() % 40);
        for (uint8_t& byte : unit) {
            byte = random() % 4 == 0 ? static_cast<uint8_t>(random()) : kBytes[random() % sizeof kBytes];
        }
        const size_t headerBytes = std::min<size_t>(random() % 5, unit.size());
        SCOPED_TRACE("header of " + std::to_string(headerBytes) + ": " + hexOf(bytesOf(unit)));
        Lines lines;
        Tracer tracer(bytesOf(unit), lines);
        SlowReader slow(unit, headerBytes);
        tracer.header(static_cast<uint32_t>(headerBytes));
        uint64_t value = 0;
        std::vector<size_t> bytes;
        for (size_t i = 0; i < headerBytes; ++i) {
            bytes.push_back(slow.byte());
            tracer.u(8, "header", value);
            ASSERT_EQ(value, slow.u(8));
        }
        tracer.rbsp();
        while (slow.more_rbsp_data()) {
            const auto n = static_cast<uint32_t>(1 + random() % 40);
            bytes.push_back(slow.byte());
            tracer.u(n, "element", value);
            ASSERT_EQ(value, slow.u(n));
            if (slow.failed()) {
                bytes.pop_back();
            }
        }
        ASSERT_EQ(tracer.failed(), slow.failed());
        ASSERT_EQ(lines.elements.size(), bytes.size());
        for (size_t i = 0; i < bytes.size(); ++i) {
            ASSERT_EQ(lines.elements[i].codedByte, bytes[i]) << i;
        }
    }
}

}  // namespace
