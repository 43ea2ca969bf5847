#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "AvcPayloadTest.h"
#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using FramePacking = QVAvcSeiFramePacking;
using DisplayOrientation = QVAvcSeiDisplayOrientation;
using AlternativeTransfer = QVAvcSeiAlternativeTransfer;

// --- Layout of the records ---

template <class Field>
constexpr bool isU32() {
    return std::is_same<Field, uint32_t>::value;
}

static_assert(isPlain<FramePacking>());
static_assert(sizeof(FramePacking) == 8 * 4);
static_assert(offsetof(FramePacking, isValid) == 0);
static_assert(offsetof(FramePacking, frame_packing_arrangement_id) == 4);
static_assert(offsetof(FramePacking, frame_packing_arrangement_cancel_flag) == 8);
static_assert(offsetof(FramePacking, frame_packing_arrangement_type) == 12);
static_assert(offsetof(FramePacking, frame_packing_arrangement_repetition_period) == 16);
static_assert(offsetof(FramePacking, content_interpretation_type) == 20);
static_assert(offsetof(FramePacking, quincunx_sampling_flag) == 24);
static_assert(offsetof(FramePacking, current_frame_is_frame0_flag) == 28);
static_assert(isU32<decltype(FramePacking::isValid)>());
static_assert(isU32<decltype(FramePacking::frame_packing_arrangement_id)>());
static_assert(isU32<decltype(FramePacking::frame_packing_arrangement_cancel_flag)>());
static_assert(isU32<decltype(FramePacking::frame_packing_arrangement_type)>());
static_assert(isU32<decltype(FramePacking::frame_packing_arrangement_repetition_period)>());
static_assert(isU32<decltype(FramePacking::content_interpretation_type)>());
static_assert(isU32<decltype(FramePacking::quincunx_sampling_flag)>());
static_assert(isU32<decltype(FramePacking::current_frame_is_frame0_flag)>());

static_assert(isPlain<DisplayOrientation>());
static_assert(sizeof(DisplayOrientation) == 4 * 4);
static_assert(offsetof(DisplayOrientation, isValid) == 0);
static_assert(offsetof(DisplayOrientation, anticlockwise_rotation) == 4, "the flips are coded first");
static_assert(offsetof(DisplayOrientation, hor_flip) == 8);
static_assert(offsetof(DisplayOrientation, ver_flip) == 12);
static_assert(isU32<decltype(DisplayOrientation::isValid)>());
static_assert(isU32<decltype(DisplayOrientation::anticlockwise_rotation)>());
static_assert(isU32<decltype(DisplayOrientation::hor_flip)>());
static_assert(isU32<decltype(DisplayOrientation::ver_flip)>());

static_assert(isPlain<AlternativeTransfer>());
static_assert(sizeof(AlternativeTransfer) == 2 * 4);
static_assert(offsetof(AlternativeTransfer, isValid) == 0);
static_assert(offsetof(AlternativeTransfer, preferred_transfer_characteristics) == 4);
static_assert(isU32<decltype(AlternativeTransfer::isValid)>());
static_assert(isU32<decltype(AlternativeTransfer::preferred_transfer_characteristics)>());

// --- frame_packing_arrangement ---

int parseFramePacking(QVByteStream& stream, FramePacking* record) {
    return QVNaluParser::parserAvcFramePackingArrangement(stream, 0, record);
}

// Returns the record that the syntax gives.
FramePacking kept(const FramePackingSyntax& syntax) {
    FramePacking record = patternRecord<FramePacking>();
    record.frame_packing_arrangement_id = syntax.frame_packing_arrangement_id;
    record.frame_packing_arrangement_cancel_flag = syntax.frame_packing_arrangement_cancel_flag;
    record.isValid = 1 - syntax.frame_packing_arrangement_cancel_flag;
    if (syntax.frame_packing_arrangement_cancel_flag == 0) {
        record.frame_packing_arrangement_type = syntax.frame_packing_arrangement_type;
        record.quincunx_sampling_flag = syntax.quincunx_sampling_flag;
        record.content_interpretation_type = syntax.content_interpretation_type;
        record.current_frame_is_frame0_flag = syntax.current_frame_is_frame0_flag;
        record.frame_packing_arrangement_repetition_period =
            syntax.frame_packing_arrangement_repetition_period;
    }
    return record;
}

Outcome<FramePacking> framePackingContract(ModelledData& in) {
    Outcome<FramePacking> outcome;
    outcome.record = kept(readFramePacking(in));
    outcome.cursor = in.cursor();
    return outcome;
}

class AvcFramePacking : public AvcSeiTest<FramePacking> {
protected:
    // Checks that the whole payload is consumed and that the record holds its values.
    static void checkKept(const FramePackingSyntax& coded) {
        const BitWriter syntax = payload(coded);
        SCOPED_TRACE(syntax.map());
        Outcome<FramePacking> expected;
        expected.record = kept(coded);
        expected.cursor = atBit(syntax.bitCount());
        check(syntax.bytes(), parseFramePacking, expected);
    }
};

TEST_F(AvcFramePacking, nullRecord) {
    checkRefused([](QVByteStream& stream) { return parseFramePacking(stream, nullptr); },
                 errorLine("parserAvcFramePackingArrangement",
                           "parserAvcFramePackingArrangement: framePacking is NULL!\n"));
}

TEST_F(AvcFramePacking, sideBySideBitByBit) {
    BitWriter syntax;
    syntax.bits("frame_packing_arrangement_id", "00110");
    syntax.bits("frame_packing_arrangement_cancel_flag", "0");
    syntax.bits("frame_packing_arrangement_type", "0000011");
    syntax.bits("quincunx_sampling_flag", "0");
    syntax.bits("content_interpretation_type", "000010");
    syntax.bits("spatial_flipping_flag, frame0_flipped_flag, field_views_flag", "111");
    syntax.bits("current_frame_is_frame0_flag", "0");
    syntax.bits("frame0_self_contained_flag, frame1_self_contained_flag", "11");
    syntax.bits("grid positions", "1111 1111 1111 1111");
    syntax.bits("frame_packing_arrangement_reserved_byte", "1111 1111");
    syntax.bits("frame_packing_arrangement_repetition_period", "011");
    syntax.bits("frame_packing_arrangement_extension_flag", "1");
    Outcome<FramePacking> expected;
    expected.record = {1, 5, 0, 3, 2, 2, 0, 0};
    expected.cursor = atBit(syntax.bitCount());
    check(syntax.bytes(), parseFramePacking, expected);
}

TEST_F(AvcFramePacking, gridPositionsAreThereButForQuincunxAndType5) {
    for (uint32_t type = 0; type < 128; ++type) {
        for (const uint32_t quincunx : {0U, 1U}) {
            FramePackingSyntax coded;
            coded.frame_packing_arrangement_type = type;
            coded.quincunx_sampling_flag = quincunx;
            coded.frame0_grid_position_x = coded.frame1_grid_position_y = 15;
            coded.frame_packing_arrangement_repetition_period = 6;
            checkKept(coded);
        }
    }
}

TEST_F(AvcFramePacking, everyContentInterpretation) {
    for (uint32_t content = 0; content < 64; ++content) {
        FramePackingSyntax coded;
        coded.content_interpretation_type = content;
        coded.current_frame_is_frame0_flag = content & 1;
        checkKept(coded);
    }
}

TEST_F(AvcFramePacking, flagsThatAreNotKeptChangeNothing) {
    for (uint32_t flags = 0; flags < 64; ++flags) {
        FramePackingSyntax coded;
        coded.spatial_flipping_flag = flags & 1;
        coded.frame0_flipped_flag = flags >> 1 & 1;
        coded.field_views_flag = flags >> 2 & 1;
        coded.frame0_self_contained_flag = flags >> 3 & 1;
        coded.frame1_self_contained_flag = flags >> 4 & 1;
        coded.frame_packing_arrangement_extension_flag = flags >> 5;
        coded.frame_packing_arrangement_reserved_byte = flags;
        checkKept(coded);
    }
}

TEST_F(AvcFramePacking, identifiersAndPeriodsOfAnySize) {
    for (const uint32_t value : {0U, 1U, 255U, 16384U, 16385U, 0x7FFFFFFFU, 0xFFFFFFFEU}) {
        FramePackingSyntax coded;
        coded.frame_packing_arrangement_id = value;
        coded.frame_packing_arrangement_repetition_period = value;
        checkKept(coded);
    }
}

TEST_F(AvcFramePacking, aCancellationConsumesTheExtensionFlagAndWritesNothingElse) {
    for (const uint32_t id : {0U, 7U, 300U}) {
        FramePackingSyntax coded;
        coded.frame_packing_arrangement_id = id;
        coded.frame_packing_arrangement_cancel_flag = 1;
        coded.frame_packing_arrangement_extension_flag = 1;
        checkKept(coded);
    }
    Outcome<FramePacking> expected;
    expected.record.isValid = 0;
    expected.record.frame_packing_arrangement_id = 0;
    expected.record.frame_packing_arrangement_cancel_flag = 1;
    expected.cursor = atBit(3);
    check({0xFF, 0xFF}, parseFramePacking, expected);
}

TEST_F(AvcFramePacking, gridPositionsThatDoNotFitAreNotSkipped) {
    const BitWriter syntax = payload(FramePackingSyntax());
    ASSERT_EQ(startOf(syntax, "frame0_grid_position_x"), 22U);
    Outcome<FramePacking> expected;
    expected.record = kept(FramePackingSyntax());
    expected.record.frame_packing_arrangement_repetition_period = 0;
    // Two bits are left. The skip of the grid does not fit, as it would end two bytes after them. The skip of
    // the reserved byte fits, ue(v) consumes one bit, and the last flag would complete the byte after the
    // data.
    expected.cursor = atBit(3 * 8 + 7);
    check(syntax.bytesCutAt(24), parseFramePacking, expected);
    // Ten bits are left. The grid ends inside the byte after the data; the reserved byte does not fit.
    expected.cursor = atBit(4 * 8 + 7);
    check(syntax.bytesCutAt(32), parseFramePacking, expected);
}

TEST_F(AvcFramePacking, noData) {
    Outcome<FramePacking> expected;
    expected.record = {1, 0, 0, 0, 0, 0, 0, 0};
    // ue(v), the skips of 3 and 2 bits, and ue(v) again move the bit offset. One more bit does not fit.
    expected.cursor = atBit(7);
    check(Bytes(), parseFramePacking, expected);
    // ue(v) and the skip of 3 bits move the bit offset; the second ue(v) moves it past the end.
    PayloadStream stream(Bytes(), 3);
    expected.cursor = atBit(1 * 8);
    check(stream, parseFramePacking, expected);
}

TEST_F(AvcFramePacking, withoutBufferTheSkipsAreMadeAndFrame0FlagIsStoredAsZero) {
    BufferlessStream stream(10);
    Outcome<FramePacking> expected;
    // The id consumes all zero bits up to the end. The other elements are read at the end of the data.
    expected.record = {1, 0, 0, 0, 0, 0, 0, 0};
    expected.cursor = atBit(10 * 8 + 7);
    check(stream, parseFramePacking, expected);
    checkWithoutBuffer(framePackingContract, parseFramePacking);
}

TEST_F(AvcFramePacking, payloadSizeIsNotUsed) {
    for (const int payloadSize : kPayloadSizes) {
        Outcome<FramePacking> expected;
        expected.record = kept(FramePackingSyntax());
        expected.cursor = atBit(payload(FramePackingSyntax()).bitCount());
        check(
            payload(FramePackingSyntax()).bytes(),
            [&](QVByteStream& stream, FramePacking* record) {
                return QVNaluParser::parserAvcFramePackingArrangement(stream, payloadSize, record);
            },
            expected);
    }
}

TEST_F(AvcFramePacking, everyCut) {
    for (const uint32_t type : {3U, 5U}) {
        for (const uint32_t quincunx : {0U, 1U}) {
            FramePackingSyntax coded;
            coded.frame_packing_arrangement_id = 9;
            coded.frame_packing_arrangement_type = type;
            coded.quincunx_sampling_flag = quincunx;
            coded.content_interpretation_type = 0x2D;
            coded.spatial_flipping_flag = coded.current_frame_is_frame0_flag = 1;
            coded.frame1_self_contained_flag = 1;
            coded.frame0_grid_position_x = coded.frame1_grid_position_x = 11;
            coded.frame0_grid_position_y = coded.frame1_grid_position_y = 6;
            coded.frame_packing_arrangement_reserved_byte = 0xB6;
            coded.frame_packing_arrangement_repetition_period = 0x5A5;
            coded.frame_packing_arrangement_extension_flag = 1;
            checkEveryCut(framePackingContract, parseFramePacking,
                          [&](BitWriter& out) { write(out, coded); });
        }
    }
}

TEST_F(AvcFramePacking, anyBytes) {
    checkAnyBytes(framePackingContract, parseFramePacking);
}

// --- display_orientation ---

int parseDisplayOrientation(QVByteStream& stream, DisplayOrientation* record) {
    return QVNaluParser::parserAvcDisplayOrientation(stream, 0, record);
}

DisplayOrientation kept(const DisplayOrientationSyntax& syntax) {
    DisplayOrientation record = patternRecord<DisplayOrientation>();
    record.isValid = 1 - syntax.display_orientation_cancel_flag;
    if (syntax.display_orientation_cancel_flag == 0) {
        record.hor_flip = syntax.hor_flip;
        record.ver_flip = syntax.ver_flip;
        record.anticlockwise_rotation = syntax.anticlockwise_rotation;
    }
    return record;
}

Outcome<DisplayOrientation> displayOrientationContract(ModelledData& in) {
    Outcome<DisplayOrientation> outcome;
    outcome.record = kept(readDisplayOrientation(in));
    outcome.cursor = in.cursor();
    return outcome;
}

class AvcDisplayOrientation : public AvcSeiTest<DisplayOrientation> {
protected:
    static void checkKept(const DisplayOrientationSyntax& coded) {
        const BitWriter syntax = payload(coded);
        SCOPED_TRACE(syntax.map());
        Outcome<DisplayOrientation> expected;
        expected.record = kept(coded);
        expected.cursor = atBit(syntax.bitCount());
        check(syntax.bytes(), parseDisplayOrientation, expected);
    }
};

TEST_F(AvcDisplayOrientation, nullRecord) {
    checkRefused([](QVByteStream& stream) { return parseDisplayOrientation(stream, nullptr); },
                 errorLine("parserAvcDisplayOrientation",
                           "parserAvcDisplayOrientation: displayOrientation is NULL!\n"));
}

TEST_F(AvcDisplayOrientation, bitByBit) {
    BitWriter syntax;
    syntax.bits("display_orientation_cancel_flag", "0");
    syntax.bits("hor_flip", "1");
    syntax.bits("ver_flip", "0");
    syntax.bits("anticlockwise_rotation", "0100 0000 0000 0000");
    syntax.bits("display_orientation_repetition_period", "00101");
    syntax.bits("display_orientation_extension_flag", "1");
    Outcome<DisplayOrientation> expected;
    expected.record = {1, 16384, 1, 0};
    expected.cursor = atBit(3 * 8 + 1);
    check(syntax.bytes(), parseDisplayOrientation, expected);
}

TEST_F(AvcDisplayOrientation, valuesAsCoded) {
    for (const uint32_t rotation : {0U, 1U, 0x4000U, 0x8000U, 0xC000U, 0xFFFFU}) {
        for (uint32_t flags = 0; flags < 8; ++flags) {
            DisplayOrientationSyntax coded;
            coded.anticlockwise_rotation = rotation;
            coded.hor_flip = flags & 1;
            coded.ver_flip = flags >> 1 & 1;
            coded.display_orientation_extension_flag = flags >> 2;
            checkKept(coded);
        }
    }
}

TEST_F(AvcDisplayOrientation, periodsOfAnySizeAreConsumed) {
    for (const uint32_t period : {0U, 1U, 16384U, 0xFFFFFFFEU}) {
        DisplayOrientationSyntax coded;
        coded.display_orientation_repetition_period = period;
        checkKept(coded);
    }
}

TEST_F(AvcDisplayOrientation, aCancellationConsumesOneBit) {
    Outcome<DisplayOrientation> expected;
    expected.record.isValid = 0;
    expected.cursor = atBit(1);
    check({0xFF, 0xFF, 0xFF, 0xFF}, parseDisplayOrientation, expected);
}

TEST_F(AvcDisplayOrientation, noData) {
    Outcome<DisplayOrientation> expected;
    expected.record = {1, 0, 0, 0};
    expected.cursor = atBit(2);  // ue(v) and the skip of one bit
    check(Bytes(), parseDisplayOrientation, expected);
}

TEST_F(AvcDisplayOrientation, withoutBuffer) {
    BufferlessStream stream(4);
    Outcome<DisplayOrientation> expected;
    expected.record = {1, 0, 0, 0};
    expected.cursor = atBit(4 * 8 + 1);  // the period consumes all zero bits up to the end
    check(stream, parseDisplayOrientation, expected);
    checkWithoutBuffer(displayOrientationContract, parseDisplayOrientation);
}

TEST_F(AvcDisplayOrientation, payloadSizeIsNotUsed) {
    for (const int payloadSize : kPayloadSizes) {
        Outcome<DisplayOrientation> expected;
        expected.record = {1, 0, 0, 0};
        expected.cursor = atBit(2 * 8 + 7);
        check(
            payload(DisplayOrientationSyntax()).bytes(),
            [&](QVByteStream& stream, DisplayOrientation* record) {
                return QVNaluParser::parserAvcDisplayOrientation(stream, payloadSize, record);
            },
            expected);
    }
}

TEST_F(AvcDisplayOrientation, everyCut) {
    for (const uint32_t cancel : {0U, 1U}) {
        DisplayOrientationSyntax coded;
        coded.display_orientation_cancel_flag = cancel;
        coded.hor_flip = coded.ver_flip = coded.display_orientation_extension_flag = 1;
        coded.anticlockwise_rotation = 0xDB6D;
        coded.display_orientation_repetition_period = 0x2AA;
        checkEveryCut(displayOrientationContract, parseDisplayOrientation,
                      [&](BitWriter& out) { write(out, coded); });
    }
}

TEST_F(AvcDisplayOrientation, anyBytes) {
    checkAnyBytes(displayOrientationContract, parseDisplayOrientation);
}

// --- alternative_transfer_characteristics ---

int parseAlternativeTransfer(QVByteStream& stream, AlternativeTransfer* record) {
    return QVNaluParser::parserAvcAlternativeTransfer(stream, 0, record);
}

Outcome<AlternativeTransfer> alternativeTransferContract(ModelledData& in) {
    Outcome<AlternativeTransfer> outcome;
    outcome.record = {1, in.readBits(8)};
    outcome.cursor = in.cursor();
    return outcome;
}

using AvcAlternativeTransfer = AvcSeiTest<AlternativeTransfer>;

TEST_F(AvcAlternativeTransfer, nullRecord) {
    checkRefused([](QVByteStream& stream) { return parseAlternativeTransfer(stream, nullptr); },
                 errorLine("parserAvcAlternativeTransfer",
                           "parserAvcAlternativeTransfer: alternativeTransfer is NULL!\n"));
}

TEST_F(AvcAlternativeTransfer, everyValueAsCoded) {
    for (unsigned value = 0; value < 256; ++value) {
        Outcome<AlternativeTransfer> expected;
        expected.record = {1, value};
        expected.cursor = atBit(1 * 8);
        check({static_cast<uint8_t>(value), 0xFF}, parseAlternativeTransfer, expected);
    }
}

TEST_F(AvcAlternativeTransfer, validWithoutData) {
    Outcome<AlternativeTransfer> expected;
    expected.record = {1, 0};
    check(Bytes(), parseAlternativeTransfer, expected);
}

TEST_F(AvcAlternativeTransfer, missingBitsAreZero) {
    PayloadStream stream(Bytes{0xFF}, 5);
    Outcome<AlternativeTransfer> expected;
    expected.record = {1, 0xE0};
    expected.cursor = atBit(1 * 8);
    check(stream, parseAlternativeTransfer, expected);
}

TEST_F(AvcAlternativeTransfer, withoutBuffer) {
    checkWithoutBuffer(alternativeTransferContract, parseAlternativeTransfer);
}

TEST_F(AvcAlternativeTransfer, payloadSizeIsNotUsed) {
    for (const int payloadSize : kPayloadSizes) {
        Outcome<AlternativeTransfer> expected;
        expected.record = {1, 18};
        expected.cursor = atBit(1 * 8);
        check(
            {18, 0xFF},
            [&](QVByteStream& stream, AlternativeTransfer* record) {
                return QVNaluParser::parserAvcAlternativeTransfer(stream, payloadSize, record);
            },
            expected);
    }
}

TEST_F(AvcAlternativeTransfer, anyBytes) {
    checkAnyBytes(alternativeTransferContract, parseAlternativeTransfer);
}

}  // namespace
}  // namespace qv_test
