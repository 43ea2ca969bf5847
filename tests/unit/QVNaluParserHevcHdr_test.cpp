// The H.265 HDR payloads: mastering display colour volume, content light level, and alternative transfer
// characteristics.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SeiMessages.h"

namespace qv_test {
namespace {

// --- The records ---

static_assert(std::is_trivially_copyable<QVHevcSeiMasteringDisplay>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiMasteringDisplay>::value);
static_assert(std::is_same<decltype(QVHevcSeiMasteringDisplay::isValid), uint32_t>::value);
static_assert(std::is_same<decltype(QVHevcSeiMasteringDisplay::white_point_x), uint32_t>::value);
static_assert(std::is_same<decltype(QVHevcSeiMasteringDisplay::white_point_y), uint32_t>::value);
static_assert(std::is_same<decltype(std::declval<QVHevcSeiMasteringDisplay&>().display_primaries_x[0]),
                           uint16_t&>::value);
static_assert(std::is_same<decltype(std::declval<const QVHevcSeiMasteringDisplay&>().display_primaries_y[0]),
                           const uint16_t&>::value);

static_assert(std::is_trivially_copyable<QVHevcSeiContentLight>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiContentLight>::value);
static_assert(std::is_same<decltype(QVHevcSeiContentLight::max_content_light_level), uint16_t>::value);

static_assert(std::is_trivially_copyable<QVHevcSeiAlternativeTransfer>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiAlternativeTransfer>::value);
static_assert(std::is_same<decltype(QVHevcSeiAlternativeTransfer::preferred_transfer_characteristics),
                           uint32_t>::value);

TEST(HevcMasteringDisplayRecord, primariesLieAsPairs) {
    QVHevcSeiMasteringDisplay record{};
    record.isValid = 0x01010101;
    for (int c = 0; c < 3; ++c) {
        record.display_primaries_x[c] = static_cast<uint16_t>(0x1010 * (c + 2));
        record.display_primaries_y[c] = static_cast<uint16_t>(0x0101 * (c + 2));
    }
    record.white_point_x = 0x55555555;
    record.white_point_y = 0x66666666;
    record.max_display_mastering_luminance = 0x77777777;
    record.min_display_mastering_luminance = 0x88888888;
    const uint16_t words[16] = {0x0101, 0x0101, 0x2020, 0x0202, 0x3030, 0x0303, 0x4040, 0x0404,
                                0x5555, 0x5555, 0x6666, 0x6666, 0x7777, 0x7777, 0x8888, 0x8888};
    static_assert(sizeof words == sizeof record, "all bytes must be compared");
    EXPECT_EQ(std::memcmp(&record, words, sizeof record), 0);
}

TEST(HevcMasteringDisplayRecord, primariesTakeAnyIndexAndLeaveTheirNeighboursAlone) {
    for (size_t written = 0; written < 3; ++written) {
        QVHevcSeiMasteringDisplay record{};
        record.display_primaries_x[written] = 1;
        record.display_primaries_y[static_cast<unsigned char>(written)] = 2;
        const QVHevcSeiMasteringDisplay copy = record;
        for (size_t c = 0; c < 3; ++c) {
            EXPECT_EQ(copy.display_primaries_x[c], c == written ? 1 : 0);
            EXPECT_EQ(copy.display_primaries_y[c], c == written ? 2 : 0);
        }
        EXPECT_EQ(copy.isValid, 0U);
        EXPECT_EQ(copy.white_point_x, 0U);
    }
}

// --- What the parsers have in common ---

const auto kMasteringDisplay = &QVNaluParser::parserHevcMasteringDisplayInfo;
const auto kContentLight = &QVNaluParser::parserHevcContentLightInfo;
const auto kAlternativeTransfer = &QVNaluParser::parserHevcAlternativeTransfer;

QVHevcSeiMasteringDisplay recordOf(const HevcMasteringDisplaySyntax& syntax) {
    QVHevcSeiMasteringDisplay record{};
    record.isValid = 2;
    for (size_t c = 0; c < 3; ++c) {
        record.display_primaries_x[c] = static_cast<uint16_t>(syntax.display_primaries_x[c]);
        record.display_primaries_y[c] = static_cast<uint16_t>(syntax.display_primaries_y[c]);
    }
    record.white_point_x = syntax.white_point_x;
    record.white_point_y = syntax.white_point_y;
    record.max_display_mastering_luminance = syntax.max_display_mastering_luminance;
    record.min_display_mastering_luminance = syntax.min_display_mastering_luminance;
    return record;
}

QVHevcSeiContentLight recordOf(const HevcContentLightSyntax& syntax) {
    return {2, static_cast<uint16_t>(syntax.max_content_light_level),
            static_cast<uint16_t>(syntax.max_pic_average_light_level)};
}

QVHevcSeiAlternativeTransfer recordOf(const HevcAlternativeTransferSyntax& syntax) {
    return {1, syntax.preferred_transfer_characteristics};
}

class HevcHdrTest : public CoreTest {
protected:
    // Parses the payload from every start in the first byte, cut after every bit. The parser reads it bit by
    // bit up to the end of the data, which is the end of the byte that was cut.
    template <class Record, class Syntax>
    static void expectCutEverywhere(int (*parser)(QVByteStream&, int, Record*), const Syntax& syntax) {
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            const int payloadSize = static_cast<int>((payload.bitCount() - lead) / 8);
            for (size_t bits = lead; bits <= payload.bitCount(); ++bits) {
                SCOPED_TRACE("lead " + std::to_string(lead) + ", cut at " + std::to_string(bits));
                const Bytes bytes = payload.bytesCutAt(bits);
                PayloadStream stream(bytes, lead);
                const uint64_t end = std::min<uint64_t>(payload.bitCount(), bytes.size() * 8);
                expectParsed(parse(parser, stream, payloadSize), recordOf(cutAt(syntax, bits - lead)),
                             atBit(end));
            }
        }
        expectNoLines();
    }

    // Parses the payload, with bytes before and after it, with any payloadSize. The size must not matter.
    template <class Record, class Syntax>
    static void expectAnySize(int (*parser)(QVByteStream&, int, Record*), const Syntax& syntax) {
        const Bytes payload = hevcSei(syntax).bytes();
        const Bytes bytes = Bytes{0xEE, 0xEE} + payload + Bytes{0xEE, 0xEE};
        for (const int payloadSize : {INT_MIN, -1, 0, 1, 2, 4, 23, 24, 25, INT_MAX}) {
            SCOPED_TRACE(payloadSize);
            PayloadStream stream(bytes, 16);
            expectParsed(parse(parser, stream, payloadSize), recordOf(syntax),
                         atBit(16 + payload.size() * 8));
        }
        expectNoLines();
    }

    // Parses with no data in several ways. The stream must not move.
    template <class Record>
    static void expectNothingToRead(int (*parser)(QVByteStream&, int, Record*), const Record& record) {
        PayloadStream empty((Bytes()));
        expectParsed(parse(parser, empty, 24), record, atBit(0));
        BufferlessStream bufferless(40);
        expectParsed(parse(parser, bufferless, 24), record, atBit(0));
        BufferlessStream inMidByte(40);
        moveTo(inMidByte, atBit(29));
        expectParsed(parse(parser, inMidByte, 24), record, atBit(29));
        PayloadStream atEnd(Bytes{0xFF, 0xFF}, 16);
        expectParsed(parse(parser, atEnd, 24), record, atBit(16));
        PayloadStream pastEnd(Bytes{0xFF, 0xFF}, 29);
        expectParsed(parse(parser, pastEnd, 24), record, atBit(29));
        expectNoLines();
    }

    template <class Record>
    static void expectNullRecordRefused(int (*parser)(QVByteStream&, int, Record*),
                                        const ExpectedLine& line) {
        PayloadStream stream(Bytes(24, 0xFF), 5);
        EXPECT_EQ(parser(stream, 24, nullptr), 11000001);
        EXPECT_EQ(cursorOf(stream), atBit(5));
        BufferlessStream bufferless(24);
        EXPECT_EQ(parser(bufferless, 24, nullptr), 11000001);
        EXPECT_EQ(cursorOf(bufferless), atBit(0));
        expectLines({line, line});
    }
};

// --- Mastering display colour volume ---

class HevcMasteringDisplay : public HevcHdrTest {};

const Bytes kGoldenMasteringDisplay = {0x33, 0xC2, 0x86, 0xC4, 0x1D, 0x4C, 0x0B, 0xB8,   // green, blue
                                       0x84, 0xD0, 0x3E, 0x80, 0x3D, 0x13, 0x40, 0x42,   // red, white point
                                       0x00, 0x98, 0x96, 0x80, 0x00, 0x00, 0x00, 0x32};  // luminances

TEST_F(HevcMasteringDisplay, D19_golden) {
    EXPECT_EQ(hevcSei(HevcMasteringDisplaySyntax()).bytes(), kGoldenMasteringDisplay);
    PayloadStream stream(kGoldenMasteringDisplay);
    const auto parsed = parse(kMasteringDisplay, stream, 24);
    EXPECT_EQ(parsed.result, 0);
    EXPECT_EQ(parsed.record.isValid, 2U);
    EXPECT_EQ(parsed.record.display_primaries_x[0], 13250);
    EXPECT_EQ(parsed.record.display_primaries_y[0], 34500);
    EXPECT_EQ(parsed.record.display_primaries_x[1], 7500);
    EXPECT_EQ(parsed.record.display_primaries_y[1], 3000);
    EXPECT_EQ(parsed.record.display_primaries_x[2], 34000);
    EXPECT_EQ(parsed.record.display_primaries_y[2], 16000);
    EXPECT_EQ(parsed.record.white_point_x, 15635U);
    EXPECT_EQ(parsed.record.white_point_y, 16450U);
    EXPECT_EQ(parsed.record.max_display_mastering_luminance, 10000000U);
    EXPECT_EQ(parsed.record.min_display_mastering_luminance, 50U);
    EXPECT_EQ(parsed.cursor, atBit(192));
    expectNoLines();
}

TEST_F(HevcMasteringDisplay, eachElementHasItsFieldAndItsWidth) {
    const BitWriter zeros = hevcSei(HevcMasteringDisplaySyntax{{}, {}, 0, 0, 0, 0});
    ASSERT_EQ(zeros.elements().size(), 11U) << "must be the lead and ten elements";
    for (size_t i = 1; i < zeros.elements().size(); ++i) {
        const BitWriter::Element& element = zeros.elements()[i];
        SCOPED_TRACE(element.name);
        Bytes bytes(24);
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(element.position / 8), element.width / 8,
                    0xFF);
        PayloadStream stream(bytes);
        const auto parsed = parse(kMasteringDisplay, stream, 24);
        for (const auto& [name, value] : fieldsOf(parsed.record)) {
            const uint64_t largest = element.width == 16 ? 0xFFFF : 0xFFFFFFFF;
            const uint64_t expected = name == "isValid" ? 2 : name == element.name ? largest : 0;
            EXPECT_EQ(value, expected) << name;
        }
    }
}

TEST_F(HevcMasteringDisplay, noValueIsChecked) {
    HevcMasteringDisplaySyntax syntax;
    syntax.display_primaries_x = {{50001, 65535, 50000}};
    syntax.display_primaries_y = {{65535, 50001, 0}};
    syntax.white_point_x = 65535;
    syntax.white_point_y = 50001;
    syntax.max_display_mastering_luminance = 1;
    syntax.min_display_mastering_luminance = 0xFFFFFFFF;
    PayloadStream stream(hevcSei(syntax));
    expectParsed(parse(kMasteringDisplay, stream, 24), recordOf(syntax), atBit(192));
    expectNoLines();
}

TEST_F(HevcMasteringDisplay, emulationPreventionBytesAreData) {
    HevcMasteringDisplaySyntax syntax;
    const Bytes coded = withEmulationPrevention(hevcSei(syntax).bytes());
    ASSERT_EQ(coded.size(), 25U) << "00 00 00 32 became 00 00 03 00 32";
    PayloadStream stream(coded);
    syntax.min_display_mastering_luminance = 0x00000300;
    expectParsed(parse(kMasteringDisplay, stream, 24), recordOf(syntax), atBit(192));
}

TEST_F(HevcMasteringDisplay, cutAtEveryBitFromEveryStart) {
    expectCutEverywhere(kMasteringDisplay, HevcMasteringDisplaySyntax());
    expectCutEverywhere(
        kMasteringDisplay,
        HevcMasteringDisplaySyntax{
            {{0xFFFF, 0xFFFF, 0xFFFF}}, {{0xFFFF, 0xFFFF, 0xFFFF}}, 0xFFFF, 0xFFFF, 0xFFFFFFFF, 0xFFFFFFFF});
}

TEST_F(HevcMasteringDisplay, payloadSizeIsNotUsed) {
    expectAnySize(kMasteringDisplay, HevcMasteringDisplaySyntax());
}

TEST_F(HevcMasteringDisplay, D19_nothingToReadIsAValidRecordOfZeros) {
    QVHevcSeiMasteringDisplay zeros{};
    zeros.isValid = 2;
    expectNothingToRead(kMasteringDisplay, zeros);
}

TEST_F(HevcMasteringDisplay, nullRecord) {
    expectNullRecordRefused(
        kMasteringDisplay,
        {0, "parserHevcMasteringDisplayInfo", "parserHevcMasteringDisplayInfo: masteringDisplay is NULL!\n"});
}

// --- Content light level ---

class HevcContentLight : public HevcHdrTest {};

TEST_F(HevcContentLight, D19_golden) {
    PayloadStream stream(Bytes{0x03, 0xE8, 0x01, 0x90});
    expectParsed(parse(kContentLight, stream, 4), QVHevcSeiContentLight{2, 1000, 400}, atBit(32));
    expectNoLines();
}

TEST_F(HevcContentLight, eachElementHasItsField) {
    PayloadStream content(Bytes{0xFF, 0xFF, 0x00, 0x00});
    expectParsed(parse(kContentLight, content, 4), QVHevcSeiContentLight{2, 0xFFFF, 0}, atBit(32));
    PayloadStream average(Bytes{0x00, 0x00, 0xFF, 0xFF});
    expectParsed(parse(kContentLight, average, 4), QVHevcSeiContentLight{2, 0, 0xFFFF}, atBit(32));
}

TEST_F(HevcContentLight, shortPayloads) {
    const struct {
        Bytes payload;
        QVHevcSeiContentLight record;
    } rows[] = {
        {{0x03}, {2, 0x0300, 0}},
        {{0x03, 0xE8}, {2, 1000, 0}},
        {{0x03, 0xE8, 0x01}, {2, 1000, 0x0100}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.payload.size());
        PayloadStream stream(row.payload);
        expectParsed(parse(kContentLight, stream, 4), row.record, atBit(row.payload.size() * 8));
    }
    expectNoLines();
}

TEST_F(HevcContentLight, cutAtEveryBitFromEveryStart) {
    expectCutEverywhere(kContentLight, HevcContentLightSyntax());
    expectCutEverywhere(kContentLight, HevcContentLightSyntax{0xFFFF, 0xFFFF});
}

TEST_F(HevcContentLight, payloadSizeIsNotUsed) {
    expectAnySize(kContentLight, HevcContentLightSyntax());
}

TEST_F(HevcContentLight, D19_nothingToReadIsAValidRecordOfZeros) {
    expectNothingToRead(kContentLight, QVHevcSeiContentLight{2, 0, 0});
}

TEST_F(HevcContentLight, nullRecord) {
    expectNullRecordRefused(kContentLight, {0, "parserHevcContentLightInfo",
                                            "parserHevcContentLightInfo: contentLight is NULL!\n"});
}

// --- Alternative transfer characteristics ---

class HevcAlternativeTransfer : public HevcHdrTest {};

TEST_F(HevcAlternativeTransfer, everyCode) {
    for (unsigned code = 0; code < 256; ++code) {
        PayloadStream stream(Bytes{static_cast<uint8_t>(code)});
        expectParsed(parse(kAlternativeTransfer, stream, 1), QVHevcSeiAlternativeTransfer{1, code}, atBit(8));
    }
    expectNoLines();
}

TEST_F(HevcAlternativeTransfer, golden) {
    PayloadStream stream(Bytes{0x12});
    expectParsed(parse(kAlternativeTransfer, stream, 1), QVHevcSeiAlternativeTransfer{1, 18}, atBit(8));
}

TEST_F(HevcAlternativeTransfer, cutAtEveryBitFromEveryStart) {
    expectCutEverywhere(kAlternativeTransfer, HevcAlternativeTransferSyntax());
    expectCutEverywhere(kAlternativeTransfer, HevcAlternativeTransferSyntax{0xFF});
}

TEST_F(HevcAlternativeTransfer, payloadSizeIsNotUsed) {
    expectAnySize(kAlternativeTransfer, HevcAlternativeTransferSyntax());
}

TEST_F(HevcAlternativeTransfer, nothingToReadIsAValidRecordOfZero) {
    expectNothingToRead(kAlternativeTransfer, QVHevcSeiAlternativeTransfer{1, 0});
}

TEST_F(HevcAlternativeTransfer, nullRecord) {
    expectNullRecordRefused(kAlternativeTransfer,
                            {0, "parserHevcAlternativeTransfer",
                             "parserHevcAlternativeTransfer: alternativeTransfer is NULL!\n"});
}

}  // namespace
}  // namespace qv_test
