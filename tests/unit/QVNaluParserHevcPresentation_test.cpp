// The H.265 presentation payloads: frame packing arrangement and display orientation.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <type_traits>

#include "AllocationFault.h"
#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(std::is_trivially_copyable<QVHevcSeiFramePacking>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiFramePacking>::value);

static_assert(std::is_trivially_copyable<QVHevcSeiDisplayOrientation>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiDisplayOrientation>::value);

// --- Frame packing arrangement ---

const auto kFramePacking = &QVNaluParser::parserHevcFramePacking;

// Returns the record of an arrangement that is not a cancellation.
QVHevcSeiFramePacking recordOf(const HevcFramePackingSyntax& syntax) {
    return {1, syntax.frame_packing_arrangement_type, syntax.content_interpretation_type,
            syntax.quincunx_sampling_flag, syntax.current_frame_is_frame0_flag};
}

QVHevcSeiFramePacking cancelled() {
    QVHevcSeiFramePacking record = patternRecord<QVHevcSeiFramePacking>();
    record.isValid = 0;
    return record;
}

constexpr QVHevcSeiFramePacking kZeroArrangement = {1, 0, 0, 0, 0};

class HevcFramePacking : public CoreTest {
protected:
    // From each start in the first byte, checks the record and that the whole payload is consumed.
    static void expectWhole(const HevcFramePackingSyntax& syntax, const QVHevcSeiFramePacking& record) {
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            SCOPED_TRACE(payload.map());
            PayloadStream stream(payload, lead);
            expectParsed(parse(kFramePacking, stream, 6), record, atBit(payload.bitCount()));
        }
    }
};

TEST_F(HevcFramePacking, golden) {
    // 1 0 0000011 0 000001 000 1 00, the grid 1 2 3 4, a reserved byte, 1 0.
    PayloadStream stream(Bytes{0x81, 0x81, 0x10, 0x48, 0xD0, 0x02, 0xEE});
    expectParsed(parse(kFramePacking, stream, 6), QVHevcSeiFramePacking{1, 3, 1, 0, 1}, atBit(48));
    EXPECT_EQ(hevcSei(HevcFramePackingSyntax()).bytes(), (Bytes{0x81, 0x81, 0x10, 0x48, 0xD0, 0x02}));
    expectNoLines();
}

TEST_F(HevcFramePacking, everyTypeAndTheGridOfAllButTemporalInterleaving) {
    for (uint32_t type = 0; type < 128; ++type) {
        for (const uint32_t quincunx : {0U, 1U}) {
            HevcFramePackingSyntax syntax;
            syntax.frame_packing_arrangement_type = type;
            syntax.quincunx_sampling_flag = quincunx;
            const size_t length = type == 5 || quincunx == 1 ? 32 : 48;
            ASSERT_EQ(hevcSei(syntax).bitCount(), length);
            expectWhole(syntax, recordOf(syntax));
        }
    }
    expectNoLines();
}

TEST_F(HevcFramePacking, everyInterpretation) {
    for (uint32_t interpretation = 0; interpretation < 64; ++interpretation) {
        HevcFramePackingSyntax syntax;
        syntax.content_interpretation_type = interpretation;
        expectWhole(syntax, recordOf(syntax));
    }
}

TEST_F(HevcFramePacking, theCurrentFrameFlagIsFoundAmongItsNeighbours) {
    HevcFramePackingSyntax neighbours;
    neighbours.current_frame_is_frame0_flag = 0;
    neighbours.spatial_flipping_flag = neighbours.frame0_flipped_flag = neighbours.field_views_flag = 1;
    neighbours.frame0_self_contained_flag = neighbours.frame1_self_contained_flag = 1;
    expectWhole(neighbours, QVHevcSeiFramePacking{1, 3, 1, 0, 0});
    HevcFramePackingSyntax alone;
    alone.current_frame_is_frame0_flag = 1;
    expectWhole(alone, QVHevcSeiFramePacking{1, 3, 1, 0, 1});
}

TEST_F(HevcFramePacking, theSkippedElementsAreDiscarded) {
    HevcFramePackingSyntax syntax;
    syntax.frame0_grid_position_x = syntax.frame0_grid_position_y = 15;
    syntax.frame1_grid_position_x = syntax.frame1_grid_position_y = 15;
    syntax.frame_packing_arrangement_reserved_byte = 255;
    syntax.frame_packing_arrangement_persistence_flag = 0;
    syntax.upsampled_aspect_ratio_flag = 1;
    expectWhole(syntax, QVHevcSeiFramePacking{1, 3, 1, 0, 1});
}

TEST_F(HevcFramePacking, anyIdentifier) {
    for (const uint32_t id : {0U, 1U, 2U, 6U, 300U, 65535U, 0x7FFFFFFFU, 0xFFFFFFFEU}) {
        HevcFramePackingSyntax syntax;
        syntax.frame_packing_arrangement_id = id;
        expectWhole(syntax, recordOf(syntax));
        syntax.frame_packing_arrangement_cancel_flag = 1;
        expectWhole(syntax, cancelled());
    }
    expectNoLines();
}

TEST_F(HevcFramePacking, aCancellationLeavesTheOtherFields) {
    PayloadStream golden(Bytes{0xD0});  // 1 1 0 and trailing bits
    expectParsed(parse(kFramePacking, golden, 1), cancelled(), atBit(3));
    // 0001000 1: the flag is the last bit of the data. The skip after it still moves.
    PayloadStream lastBit(Bytes{0x11});
    expectParsed(parse(kFramePacking, lastBit, 1), cancelled(), atBit(9));
    expectNoLines();
}

// The identifier ends with the data. After it, only skips that end in the byte after the data move: those of
// 3, 2, 1 and 1 bits, but not those of 16 and 8 bits.
TEST_F(HevcFramePacking, theDataEndBeforeTheCancelFlag) {
    PayloadStream stream(Bytes{0x88}, 1);  // 0001000 after one bit
    expectParsed(parse(kFramePacking, stream, 1), kZeroArrangement, atBit(8 + 3 + 2 + 1 + 1));
    expectNoLines();
}

TEST_F(HevcFramePacking, nothingToRead) {
    PayloadStream empty((Bytes()));
    expectParsed(parse(kFramePacking, empty, 0), kZeroArrangement, atBit(1 + 3 + 2 + 1));
    PayloadStream atEnd(Bytes{0xFF, 0xFF}, 16);
    expectParsed(parse(kFramePacking, atEnd, 0), kZeroArrangement, atBit(16 + 1 + 3 + 2 + 1));
    // Past the last bit that a skip may reach, only the identifier moves, by one bit.
    PayloadStream pastEnd(Bytes{0xFF, 0xFF}, 24);
    expectParsed(parse(kFramePacking, pastEnd, 0), kZeroArrangement, atBit(25));
    expectNoLines();
}

// Without a buffer the identifier consumes zero bits up to the end, and the elements up to
// content_interpretation_type are not read.
TEST_F(HevcFramePacking, withoutABuffer) {
    for (const uint64_t size : {1U, 2U, 8U}) {
        SCOPED_TRACE(size);
        BufferlessStream stream(size);
        expectParsed(parse(kFramePacking, stream, 6), kZeroArrangement, atBit(size * 8 + 3 + 2 + 1 + 1));
    }
    expectNoLines();
}

// The stream's final position for each number of bytes, starting at the first byte and at its bit 3.
TEST_F(HevcFramePacking, shortPayloads) {
    const uint64_t fromTheStart[] = {7, 15, 23, 31, 39, 47, 48};
    const uint64_t fromBit3[] = {15, 23, 27, 35, 43, 51, 51};
    const BitWriter aligned = hevcSei(HevcFramePackingSyntax());
    for (size_t size = 0; size <= 6; ++size) {
        SCOPED_TRACE(size);
        PayloadStream stream(aligned.bytesCutAt(size * 8));
        const auto parsed = parse(kFramePacking, stream, 6);
        EXPECT_EQ(parsed.cursor, atBit(fromTheStart[size]));
    }
    const BitWriter after3 = hevcSei(HevcFramePackingSyntax(), 3);
    for (size_t size = 1; size <= 7; ++size) {
        SCOPED_TRACE(size);
        PayloadStream stream(after3.bytesCutAt(size * 8), 3);
        const auto parsed = parse(kFramePacking, stream, 6);
        EXPECT_EQ(parsed.cursor, atBit(fromBit3[size - 1]));
    }
    expectNoLines();
}

TEST_F(HevcFramePacking, cutAtEveryBitFromEveryStart) {
    HevcFramePackingSyntax ones;
    ones.frame_packing_arrangement_type = 0x7F;
    ones.quincunx_sampling_flag = 1;
    ones.content_interpretation_type = 0x3F;
    ones.spatial_flipping_flag = ones.frame0_flipped_flag = ones.field_views_flag = 1;
    HevcFramePackingSyntax longId;
    longId.frame_packing_arrangement_id = 300;
    for (const HevcFramePackingSyntax& syntax : {HevcFramePackingSyntax(), ones, longId}) {
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            for (size_t bits = lead; bits <= payload.bitCount(); ++bits) {
                SCOPED_TRACE("lead " + std::to_string(lead) + ", cut at " + std::to_string(bits));
                const Bytes bytes = payload.bytesCutAt(bits);
                PayloadStream stream(bytes, lead);
                const auto parsed = parse(kFramePacking, stream, 6);
                EXPECT_EQ(parsed.result, 0);
                EXPECT_EQ(fieldsOf(parsed.record), fieldsOf(recordOf(cutAt(syntax, bits - lead))));
                EXPECT_LE(parsed.cursor.bytePos, bytes.size());
            }
        }
    }
    expectNoLines();
}

TEST_F(HevcFramePacking, payloadSizeIsNotUsed) {
    for (const int payloadSize : {INT_MIN, -1, 0, 1, 5, INT_MAX}) {
        PayloadStream stream(hevcSei(HevcFramePackingSyntax()));
        expectParsed(parse(kFramePacking, stream, payloadSize), QVHevcSeiFramePacking{1, 3, 1, 0, 1},
                     atBit(48));
    }
}

TEST_F(HevcFramePacking, nullRecord) {
    PayloadStream stream(Bytes(6, 0xFF), 5);
    EXPECT_EQ(QVNaluParser::parserHevcFramePacking(stream, 6, nullptr), 11000001);
    EXPECT_EQ(cursorOf(stream), atBit(5));
    expectLines({{0, "parserHevcFramePacking", "parserHevcFramePacking: framePacking is NULL!\n"}});
}

// --- Display orientation ---

constexpr size_t kTextBlock = 200;

QVHevcSeiDisplayOrientation recordOf(const HevcDisplayOrientationSyntax& syntax) {
    return {1, syntax.anticlockwise_rotation, syntax.hor_flip, syntax.ver_flip};
}

HevcDisplayOrientationSyntax orientation(uint32_t hor_flip, uint32_t ver_flip, uint32_t rotation) {
    HevcDisplayOrientationSyntax syntax;
    syntax.hor_flip = hor_flip;
    syntax.ver_flip = ver_flip;
    syntax.anticlockwise_rotation = rotation;
    return syntax;
}

// Returns the text with its terminating zero byte.
Bytes withTerminator(const std::string& text) {
    return Bytes(text.c_str(), text.c_str() + text.size() + 1);
}

const std::string kZeroText = "HevcSeiDisplayOrientationInfo: hflip:0,vflip:0,anticlockwise_rotation:0.";

class HevcDisplayOrientation : public SeiTest {
protected:
    Parsed<QVHevcSeiDisplayOrientation> parseOrientation(QVByteStream& stream, int payloadSize = 3) {
        Parsed<QVHevcSeiDisplayOrientation> parsed = {-1, patternRecord<QVHevcSeiDisplayOrientation>(), {}};
        parsed.result =
            QVNaluParser::parserHevcDisplayOrientation(stream, payloadSize, items, &parsed.record);
        parsed.cursor = cursorOf(stream);
        return parsed;
    }

    // Checks that there is one item with this text, in a zeroed block of 200 bytes.
    void expectText(const std::string& text) {
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 47, false, withTerminator(text)}));
        ASSERT_EQ(items.size(), 1U);
        const auto block = core().blocks.find(items[0].payloadData);
        ASSERT_NE(block, core().blocks.end());
        ASSERT_EQ(block->second, kTextBlock);
        Bytes whole = withTerminator(text);
        whole.resize(kTextBlock);
        EXPECT_EQ(Bytes(items[0].payloadData, items[0].payloadData + kTextBlock), whole);
        EXPECT_EQ(core().playerAllocations, 1);
    }

    void forgetItems() {
        clearItems();
        core().playerAllocations = 0;
    }
};

TEST_F(HevcDisplayOrientation, golden) {
    PayloadStream stream(Bytes{0x48, 0x00, 0x18});  // 0 1 0 0100000000000000 1
    expectParsed(parseOrientation(stream), QVHevcSeiDisplayOrientation{1, 16384, 1, 0}, atBit(20));
    const std::string text = "HevcSeiDisplayOrientationInfo: hflip:1,vflip:0,anticlockwise_rotation:16384.";
    ASSERT_EQ(text.size(), 76U);
    expectText(text);
    EXPECT_EQ(items.at(0).payloadSize, 77U);
    EXPECT_EQ(items.at(0).payloadData[76], 0);
    EXPECT_EQ(items.at(0).payloadData[77], 0) << "a zero byte must follow the terminator";
    expectNoLines();
}

TEST_F(HevcDisplayOrientation, textsOfEveryLength) {
    const struct {
        HevcDisplayOrientationSyntax syntax;
        std::string text;
        uint32_t payloadSize;
    } rows[] = {
        {orientation(0, 0, 0), "HevcSeiDisplayOrientationInfo: hflip:0,vflip:0,anticlockwise_rotation:0.",
         73},
        {orientation(0, 1, 9), "HevcSeiDisplayOrientationInfo: hflip:0,vflip:1,anticlockwise_rotation:9.",
         73},
        {orientation(1, 0, 10), "HevcSeiDisplayOrientationInfo: hflip:1,vflip:0,anticlockwise_rotation:10.",
         74},
        {orientation(1, 1, 999), "HevcSeiDisplayOrientationInfo: hflip:1,vflip:1,anticlockwise_rotation:999.",
         75},
        {orientation(0, 1, 9999),
         "HevcSeiDisplayOrientationInfo: hflip:0,vflip:1,anticlockwise_rotation:9999.", 76},
        {orientation(0, 0, 32768),
         "HevcSeiDisplayOrientationInfo: hflip:0,vflip:0,anticlockwise_rotation:32768.", 77},
        {orientation(1, 1, 65535),
         "HevcSeiDisplayOrientationInfo: hflip:1,vflip:1,anticlockwise_rotation:65535.", 77},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        for (unsigned lead = 0; lead < 8; ++lead) {
            PayloadStream stream(hevcSei(row.syntax, lead), lead);
            expectParsed(parseOrientation(stream), recordOf(row.syntax), atBit(lead + 20));
            expectText(row.text);
            EXPECT_EQ(items.at(0).payloadSize, row.payloadSize);
            forgetItems();
        }
    }
    expectNoLines();
}

TEST_F(HevcDisplayOrientation, eachElementHasItsField) {
    PayloadStream rotation(hevcSei(orientation(0, 0, 0xFFFF)));
    expectParsed(parseOrientation(rotation), QVHevcSeiDisplayOrientation{1, 0xFFFF, 0, 0}, atBit(20));
    PayloadStream horizontal(hevcSei(orientation(1, 0, 0)));
    expectParsed(parseOrientation(horizontal), QVHevcSeiDisplayOrientation{1, 0, 1, 0}, atBit(20));
    PayloadStream vertical(hevcSei(orientation(0, 1, 0)));
    expectParsed(parseOrientation(vertical), QVHevcSeiDisplayOrientation{1, 0, 0, 1}, atBit(20));
}

TEST_F(HevcDisplayOrientation, itemsAreAppended) {
    for (const uint32_t rotation : {1U, 2U, 3U}) {
        PayloadStream stream(hevcSei(orientation(0, 0, rotation)));
        EXPECT_EQ(parseOrientation(stream).result, 0);
    }
    ASSERT_EQ(items.size(), 3U);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(kept()[i].payload,
                  withTerminator("HevcSeiDisplayOrientationInfo: hflip:0,vflip:0,anticlockwise_rotation:" +
                                 std::to_string(i + 1) + "."));
    }
}

TEST_F(HevcDisplayOrientation, aCancellationAppendsNothing) {
    HevcDisplayOrientationSyntax syntax;
    syntax.display_orientation_cancel_flag = 1;
    QVHevcSeiDisplayOrientation record = patternRecord<QVHevcSeiDisplayOrientation>();
    record.isValid = 0;
    for (unsigned lead = 0; lead < 8; ++lead) {
        PayloadStream stream(hevcSei(syntax, lead).u(20, "following", 0xFFFFF), lead);
        expectParsed(parseOrientation(stream), record, atBit(lead + 1));
    }
    EXPECT_THAT(items, IsEmpty());
    EXPECT_EQ(core().playerAllocations, 0);
    expectNoLines();
}

// The reads stop at the end of the data. The last skip moves one bit further.
TEST_F(HevcDisplayOrientation, cutAtEveryBitFromEveryStart) {
    for (const HevcDisplayOrientationSyntax& syntax :
         {orientation(1, 1, 0xFFFF), orientation(0, 1, 0x1234)}) {
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            for (size_t bits = lead; bits <= payload.bitCount(); ++bits) {
                SCOPED_TRACE("lead " + std::to_string(lead) + ", cut at " + std::to_string(bits));
                const Bytes bytes = payload.bytesCutAt(bits);
                PayloadStream stream(bytes, lead);
                const HevcDisplayOrientationSyntax left = cutAt(syntax, bits - lead);
                expectParsed(parseOrientation(stream), recordOf(left),
                             atBit(std::min<uint64_t>(lead + 19, bytes.size() * 8) + 1));
                expectText("HevcSeiDisplayOrientationInfo: hflip:" + std::to_string(left.hor_flip) +
                           ",vflip:" + std::to_string(left.ver_flip) +
                           ",anticlockwise_rotation:" + std::to_string(left.anticlockwise_rotation) + ".");
                forgetItems();
            }
        }
    }
    expectNoLines();
}

TEST_F(HevcDisplayOrientation, nothingToRead) {
    const QVHevcSeiDisplayOrientation zeros = {1, 0, 0, 0};
    PayloadStream empty((Bytes()));
    expectParsed(parseOrientation(empty), zeros, atBit(1));
    expectText(kZeroText);
    forgetItems();
    PayloadStream atEnd(Bytes{0xFF, 0xFF}, 16);
    expectParsed(parseOrientation(atEnd), zeros, atBit(17));
    expectText(kZeroText);
    forgetItems();
    PayloadStream pastEnd(Bytes{0xFF, 0xFF}, 23);
    expectParsed(parseOrientation(pastEnd), zeros, atBit(23));
    expectText(kZeroText);
    forgetItems();
    BufferlessStream bufferless(8);
    expectParsed(parseOrientation(bufferless), zeros, atBit(20));
    expectText(kZeroText);
    expectNoLines();
}

TEST_F(HevcDisplayOrientation, payloadSizeIsNotUsed) {
    for (const int payloadSize : {INT_MIN, -1, 0, 1, 2, INT_MAX}) {
        PayloadStream stream(Bytes{0x48, 0x00, 0x18});
        expectParsed(parseOrientation(stream, payloadSize), QVHevcSeiDisplayOrientation{1, 16384, 1, 0},
                     atBit(20));
        forgetItems();
    }
}

TEST_F(HevcDisplayOrientation, aTextThatCannotBeAllocatedIsNotAppended) {
    core().failPlayerAllocation = 1;
    PayloadStream stream(Bytes{0x48, 0x00, 0x18});
    const auto parsed = parseOrientation(stream);
    EXPECT_EQ(parsed.result, 11000001);
    EXPECT_EQ(fieldsOf(parsed.record), fieldsOf(QVHevcSeiDisplayOrientation{1, 16384, 1, 0}));
    EXPECT_EQ(parsed.cursor, atBit(20));
    EXPECT_THAT(items, IsEmpty());
    EXPECT_EQ(core().playerAllocations, 1);
    expectNoLines();
}

TEST_F(HevcDisplayOrientation, aTextThatCannotBeAllocatedLeavesTheItemsBefore) {
    PayloadStream first(hevcSei(orientation(0, 0, 7)));
    EXPECT_EQ(parseOrientation(first).result, 0);
    const std::vector<KeptItem> before = kept();
    core().failPlayerAllocation = 2;
    PayloadStream second(hevcSei(orientation(0, 0, 8)));
    EXPECT_EQ(parseOrientation(second).result, 11000001);
    EXPECT_EQ(kept(), before);
}

// The fixture checks that no player memory leaks when the exception passes through.
TEST_F(HevcDisplayOrientation, aListThatCannotGrowPassesItsExceptionOn) {
    PayloadStream first(hevcSei(orientation(0, 0, 7)));
    EXPECT_EQ(parseOrientation(first).result, 0);
    items.shrink_to_fit();
    ASSERT_EQ(items.capacity(), 1U);
    const std::vector<KeptItem> before = kept();
    PayloadStream stream(Bytes{0x48, 0x00, 0x18});
    QVHevcSeiDisplayOrientation record = patternRecord<QVHevcSeiDisplayOrientation>();
    bool threw = false;
    {
        const AllocationFault fault(Allocator::New, 1);
        try {
            QVNaluParser::parserHevcDisplayOrientation(stream, 3, items, &record);
        } catch (const std::bad_alloc&) {
            threw = true;
        }
        EXPECT_TRUE(fault.triggered());
    }
    EXPECT_TRUE(threw);
    EXPECT_EQ(fieldsOf(record), fieldsOf(QVHevcSeiDisplayOrientation{1, 16384, 1, 0}));
    EXPECT_EQ(cursorOf(stream), atBit(20));
    EXPECT_EQ(kept(), before);
    EXPECT_EQ(core().blocks.size(), 1U) << "only the first item's block must be left";
    expectNoLines();
}

TEST_F(HevcDisplayOrientation, nullRecord) {
    PayloadStream stream(Bytes{0x48, 0x00, 0x18}, 5);
    EXPECT_EQ(QVNaluParser::parserHevcDisplayOrientation(stream, 3, items, nullptr), 11000001);
    EXPECT_EQ(cursorOf(stream), atBit(5));
    EXPECT_THAT(items, IsEmpty());
    EXPECT_EQ(core().playerAllocations, 0);
    expectLines(
        {{0, "parserHevcDisplayOrientation", "parserHevcDisplayOrientation: displayOrientation is NULL!\n"}});
}

TEST_F(HevcDisplayOrientation, dispatchedTheTextReachesTheCaller) {
    PayloadStream stream(Bytes{0x48, 0x00, 0x18});
    EXPECT_EQ(QVNaluParser::parserHevcSeiPrefix(stream, 47, 3, items, nullptr, {47}), 0);
    expectText("HevcSeiDisplayOrientationInfo: hflip:1,vflip:0,anticlockwise_rotation:16384.");
    core().failPlayerAllocation = 2;
    PayloadStream again(Bytes{0x48, 0x00, 0x18});
    EXPECT_EQ(QVNaluParser::parserHevcSeiPrefix(again, 47, 3, items, nullptr, {}), 11000001);
    EXPECT_EQ(items.size(), 1U);
    expectNoLines();
}

}  // namespace
}  // namespace qv_test
