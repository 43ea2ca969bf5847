// The H.265 pic_timing() payload, parserHevcPictureTiming.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <type_traits>

#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"

namespace qv_test {
namespace {

static_assert(std::is_trivially_copyable<QVHevcSeiPictureTiming>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiPictureTiming>::value);
static_assert(std::is_same<decltype(QVHevcSeiPictureTiming::fieldParity), uint32_t>::value);

class HevcPictureTiming : public CoreTest {
protected:
    // Checks the parity that a call writes into a pattern record, and that the SPS is unchanged.
    void expectParity(QVByteStream& stream, int payloadSize, uint32_t fieldParity, const Cursor& cursor) {
        const Bytes before = bytesOf(sps);
        QVHevcSeiPictureTiming record = patternRecord<QVHevcSeiPictureTiming>();
        EXPECT_EQ(QVNaluParser::parserHevcPictureTiming(stream, payloadSize, &record, &sps), 0);
        EXPECT_EQ(fieldsOf(record), fieldsOf(QVHevcSeiPictureTiming{fieldParity}));
        EXPECT_EQ(cursorOf(stream), cursor);
        EXPECT_EQ(bytesOf(sps), before);
    }

    void setPresent(int32_t flag) { sps.frame_field_info_present_flag = flag; }

    QVHevcSps sps = patternRecord<QVHevcSps>();
};

constexpr uint32_t kUntouched = 0xA5A5A5A5;

// H.265 Table D.2 by pic_struct: 1, 9 and 11 are a top field; 2, 10 and 12 are a bottom field.
constexpr uint32_t kFieldParity[16] = {0, 1, 2, 0, 0, 0, 0, 0, 0, 1, 2, 1, 2, 0, 0, 0};

// A payload of 5 bytes: the first elements and further bits.
Bytes picTiming(uint32_t pic_struct, unsigned lead = 0) {
    return hevcSei(HevcPicTimingSyntax{pic_struct, 0, 0}, lead).u(33 + lead, "further elements", 0).bytes();
}

TEST_F(HevcPictureTiming, D21_everyPicStructConsumesAWholeByteAndThePayload) {
    setPresent(1);
    for (uint32_t pic_struct = 0; pic_struct < 16; ++pic_struct) {
        for (int payloadSize = 0; payloadSize <= 5; ++payloadSize) {
            SCOPED_TRACE(std::to_string(pic_struct) + " in " + std::to_string(payloadSize));
            PayloadStream stream(picTiming(pic_struct));
            ASSERT_EQ(stream.size, 5U);
            expectParity(stream, payloadSize, kFieldParity[pic_struct],
                         atBit(static_cast<uint64_t>(payloadSize) * 8));
        }
    }
    expectNoLines();
}

TEST_F(HevcPictureTiming, goldenFirstBytes) {
    setPresent(1);
    const struct {
        uint8_t firstByte;
        uint32_t fieldParity;
    } rows[] = {{0x10, 1}, {0x90, 1}, {0x20, 2}, {0xC0, 2}, {0x70, 0}, {0xD0, 0}};
    for (const auto& row : rows) {
        PayloadStream stream(Bytes{row.firstByte, 0xFF, 0xFF});
        expectParity(stream, 3, row.fieldParity, atBit(24));
    }
}

TEST_F(HevcPictureTiming, theOtherElementsOfTheHeadAreDiscarded) {
    setPresent(1);
    for (uint32_t pic_struct = 0; pic_struct < 16; ++pic_struct) {
        PayloadStream stream(hevcSei(HevcPicTimingSyntax{pic_struct, 3, 1}).u(9, "further elements", 0x1FF));
        expectParity(stream, 2, kFieldParity[pic_struct], atBit(16));
    }
}

TEST_F(HevcPictureTiming, offByteAlignmentTheBitOffsetIsKept) {
    setPresent(1);
    for (unsigned lead = 1; lead < 8; ++lead) {
        for (int payloadSize = 1; payloadSize <= 5; ++payloadSize) {
            SCOPED_TRACE(std::to_string(lead) + ", size " + std::to_string(payloadSize));
            PayloadStream stream(picTiming(9, lead), lead);
            expectParity(stream, payloadSize, 1, atBit(lead + static_cast<uint64_t>(payloadSize) * 8));
        }
    }
}

// With a size of 0, the rest after the first byte is -1 byte. From a byte boundary the stream moves back to
// the start; otherwise the distance is truncated towards zero and the stream does not move.
TEST_F(HevcPictureTiming, D21_payloadSizeZeroStepsBack) {
    setPresent(1);
    PayloadStream aligned(picTiming(2));
    expectParity(aligned, 0, 2, atBit(0));
    PayloadStream inMidStream(Bytes{0xEE, 0xEE, 0x20, 0xEE}, 16);
    expectParity(inMidStream, 0, 2, atBit(16));
    for (unsigned lead = 1; lead < 8; ++lead) {
        PayloadStream stream(picTiming(2, lead), lead);
        expectParity(stream, 0, 2, atBit(8 + lead));
    }
}

// Each Exp-Golomb code at the end of the data moves the bit offset, so sixteen of them move the byte position
// two bytes past the end. One byte back from there is still past the end.
TEST_F(HevcPictureTiming, payloadSizeZeroPastTheEndDoesNotMove) {
    setPresent(1);
    PayloadStream stream(Bytes{0xFF});
    stream.readBits(8);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(stream.readGolombUe(), 0U);
    }
    ASSERT_EQ(cursorOf(stream), atBit(24));
    expectParity(stream, 0, 0, atBit(24));
}

TEST_F(HevcPictureTiming, shortDataLeavesTheStreamAfterTheFirstByte) {
    setPresent(1);
    for (int size = 1; size <= 5; ++size) {
        for (int payloadSize = size + 1; payloadSize <= 8; ++payloadSize) {
            SCOPED_TRACE(std::to_string(size) + " of " + std::to_string(payloadSize));
            Bytes bytes = picTiming(11);
            bytes.resize(static_cast<size_t>(size));
            PayloadStream stream(bytes);
            expectParity(stream, payloadSize, 1, atBit(8));
        }
    }
    expectNoLines();
}

// At the end of the data the reads do not move. The skip of the eighth bit moves if it ends within the byte.
TEST_F(HevcPictureTiming, nothingToRead) {
    setPresent(1);
    for (int payloadSize = 0; payloadSize <= 5; ++payloadSize) {
        SCOPED_TRACE(payloadSize);
        PayloadStream empty((Bytes()));
        expectParity(empty, payloadSize, 0, atBit(1));
        PayloadStream atEnd(Bytes{0xFF, 0xFF}, 16);
        expectParity(atEnd, payloadSize, 0, atBit(17));
        PayloadStream pastEnd(Bytes{0xFF, 0xFF}, 16 + 7);
        expectParity(pastEnd, payloadSize, 0, atBit(16 + 7));
    }
    expectNoLines();
}

TEST_F(HevcPictureTiming, cutAtEveryBitFromEveryStart) {
    setPresent(1);
    for (uint32_t pic_struct = 0; pic_struct < 16; ++pic_struct) {
        const HevcPicTimingSyntax syntax = {pic_struct, 3, 1};
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            for (size_t bits = lead; bits <= payload.bitCount(); ++bits) {
                SCOPED_TRACE(std::to_string(pic_struct) + " after " + std::to_string(lead) + " cut at " +
                             std::to_string(bits));
                const Bytes bytes = payload.bytesCutAt(bits);
                PayloadStream stream(bytes, lead);
                // The reads end with the data; the skip moves one bit further.
                const uint64_t end = std::min<uint64_t>(lead + 7, bytes.size() * 8) + 1;
                expectParity(stream, 1, kFieldParity[cutAt(syntax, bits - lead).pic_struct], atBit(end));
            }
        }
    }
}

TEST_F(HevcPictureTiming, withoutFrameFieldInfoTheBytesAreSkippedAndTheRecordStays) {
    setPresent(0);
    const Bytes bytes(7, 0x11);
    for (uint64_t start = 0; start < 8; ++start) {
        for (int payloadSize = 0; payloadSize <= 7; ++payloadSize) {
            SCOPED_TRACE(std::to_string(start) + ", size " + std::to_string(payloadSize));
            PayloadStream stream(bytes, start);
            expectParity(stream, payloadSize, kUntouched,
                         atBit(start + static_cast<uint64_t>(payloadSize) * 8));
        }
    }
    expectNoLines();
}

TEST_F(HevcPictureTiming, withoutFrameFieldInfoASkipPastTheEndIsNotMade) {
    setPresent(0);
    PayloadStream stream(Bytes(7, 0x11), 8);
    expectParity(stream, 7, kUntouched, atBit(8));
    expectParity(stream, INT_MAX, kUntouched, atBit(8));
    expectParity(stream, 6, kUntouched, atBit(56));
    PayloadStream empty((Bytes()));
    expectParity(empty, 1, kUntouched, atBit(0));
}

TEST_F(HevcPictureTiming, aTargetBeforeTheStartIsNotReached) {
    setPresent(0);
    PayloadStream stream(Bytes(7, 0x11), 16);
    expectParity(stream, -3, kUntouched, atBit(16));
    expectParity(stream, INT_MIN, kUntouched, atBit(16));
    expectParity(stream, -2, kUntouched, atBit(0));
    PayloadStream inMidByte(Bytes(7, 0x11), 19);
    expectParity(inMidByte, -4, kUntouched, atBit(19));
    expectParity(inMidByte, -3, kUntouched, atBit(3));  // 3 - 24 bits are -2 bytes after truncation
    setPresent(1);
    PayloadStream withHead(Bytes(7, 0x11), 16);
    expectParity(withHead, INT_MIN, 1, atBit(24));
}

TEST_F(HevcPictureTiming, anyOtherFlagMeansPresent) {
    for (const int32_t flag : {1, 2, -1, INT_MAX, INT_MIN}) {
        setPresent(flag);
        PayloadStream stream(Bytes{0x20});
        expectParity(stream, 1, 2, atBit(8));
    }
}

TEST_F(HevcPictureTiming, withoutABuffer) {
    setPresent(1);
    BufferlessStream head(3);
    expectParity(head, 1, 0, atBit(8));
    BufferlessStream whole(3);
    expectParity(whole, 3, 0, atBit(24));
    BufferlessStream tooShort(3);
    expectParity(tooShort, 4, 0, atBit(8));
    setPresent(0);
    BufferlessStream skipped(3);
    expectParity(skipped, 3, kUntouched, atBit(24));
}

TEST_F(HevcPictureTiming, nullRecordOrParameterSet) {
    setPresent(1);
    PayloadStream stream(Bytes(4, 0x11), 3);
    QVHevcSeiPictureTiming record = patternRecord<QVHevcSeiPictureTiming>();
    EXPECT_EQ(QVNaluParser::parserHevcPictureTiming(stream, 4, nullptr, &sps), 11000001);
    EXPECT_EQ(QVNaluParser::parserHevcPictureTiming(stream, 4, &record, nullptr), 11000001);
    EXPECT_EQ(QVNaluParser::parserHevcPictureTiming(stream, 4, nullptr, nullptr), 11000001);
    EXPECT_EQ(record.fieldParity, kUntouched);
    EXPECT_EQ(cursorOf(stream), atBit(3));
    const ExpectedLine line = {0, "parserHevcPictureTiming",
                               "parserHevcPictureTiming: pictureTiming or sps is NULL!\n"};
    expectLines({line, line, line});
}

}  // namespace
}  // namespace qv_test
