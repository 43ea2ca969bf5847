#include "QVByteStream.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <random>
#include <type_traits>

#include "AllocationFault.h"
#include "BitWriter.h"
#include "CursorModel.h"

namespace qv_test {
namespace {

// A reader over an exact-size copy of bytes.
class Reader : public QVByteStream {
public:
    Reader(const Bytes& bytes) : QVByteStream(bytes.data(), bytes.size()) {}  // NOLINT: bytes read as one
};

struct Cursor {
    uint64_t bytePos;
    unsigned bitOffset;
    unsigned rbspBitIndex;
};

bool operator==(const Cursor& a, const Cursor& b) {
    return a.bytePos == b.bytePos && a.bitOffset == b.bitOffset && a.rbspBitIndex == b.rbspBitIndex;
}

std::ostream& operator<<(std::ostream& out, const Cursor& cursor) {
    return out << "byte " << cursor.bytePos << ", plain bit " << cursor.bitOffset << ", RBSP bit index "
               << cursor.rbspBitIndex;
}

Cursor cursorOf(const QVByteStream& stream) {
    return {stream.bytePos, stream.bitOffset, stream.rbspBitIndex};
}

// --- Construction ---

TEST(QVByteStreamConstruction, empty) {
    const QVByteStream stream;
    EXPECT_EQ(stream.data, nullptr);
    EXPECT_EQ(stream.size, 0U);
    EXPECT_EQ(stream.capacity, 0U);
    EXPECT_TRUE(stream.ownsData);
    EXPECT_EQ(stream.extraFlag, 1U);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 0, 7}));
    EXPECT_TRUE(stream.atEnd());
}

TEST(QVByteStreamConstruction, copiesTheBytes) {
    Bytes source = {1, 2, 3};
    const QVByteStream stream(source.data(), source.size());
    ASSERT_NE(stream.data, nullptr);
    EXPECT_NE(stream.data, source.data());
    source[0] = 99;
    EXPECT_EQ(Bytes(stream.data, stream.data + 3), (Bytes{1, 2, 3}));
    EXPECT_EQ(stream.size, 3U);
    EXPECT_EQ(stream.capacity, 3U);
    EXPECT_TRUE(stream.ownsData);
    EXPECT_EQ(stream.extraFlag, 1U);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 0, 7}));
    EXPECT_FALSE(stream.atEnd());
    EXPECT_EQ(stream.bytesLeft(), 3U);
}

TEST(QVByteStreamConstruction, bitMaskTable) {
    const QVByteStream stream;
    for (unsigned bit = 0; bit < 8; ++bit) {
        EXPECT_EQ(stream.bitMask[bit], 1U << bit);
    }
}

TEST(QVByteStreamConstruction, nullSourceIsEmpty) {
    const QVByteStream stream(nullptr, 5);
    EXPECT_EQ(stream.data, nullptr);
    EXPECT_EQ(stream.size, 0U);
    EXPECT_EQ(stream.capacity, 0U);
}

TEST(QVByteStreamConstruction, noBytesAreNotCopied) {
    const uint8_t source = 0;
    const AllocationFault count(Allocator::Malloc, 0);
    const QVByteStream stream(&source, 0);
    EXPECT_EQ(count.seen(), 0);
    EXPECT_EQ(stream.data, nullptr);
    EXPECT_EQ(stream.size, 0U);
    EXPECT_EQ(stream.capacity, 0U);
}

TEST(QVByteStreamConstruction, failedAllocationIsEmpty) {
    const Bytes source(10, 0xFF);
    const AllocationFault fault(Allocator::Malloc, 1);
    const QVByteStream stream(source.data(), source.size());
    EXPECT_TRUE(fault.triggered());
    EXPECT_EQ(stream.data, nullptr);
    EXPECT_EQ(stream.size, 0U);
    EXPECT_EQ(stream.capacity, 0U);
}

TEST(QVByteStreamConstruction, cannotBeCopied) {
    EXPECT_FALSE(std::is_copy_constructible<QVByteStream>::value);
    EXPECT_FALSE(std::is_copy_assignable<QVByteStream>::value);
}

TEST(QVByteStreamConstruction, leavesForeignDataAlone) {
    uint8_t foreign[] = {0x80};
    {
        QVByteStream stream;
        stream.ownsData = false;
        stream.data = foreign;
        stream.size = stream.capacity = 1;
        EXPECT_EQ(stream.readBit(), 1U);
    }
    EXPECT_EQ(foreign[0], 0x80);
}

TEST(QVByteStreamConstruction, freesOwnedData) {
    QVByteStream stream;  // a leak here is for LeakSanitizer to find
    stream.data = static_cast<uint8_t*>(std::malloc(1));
    ASSERT_NE(stream.data, nullptr);
    stream.size = stream.capacity = 1;
}

TEST(QVByteStreamConstruction, fieldsStandInTheStatedOrder) {
    const QVByteStream stream;
    const auto at = [&](const void* field) {
        return static_cast<const char*>(field) - static_cast<const char*>(static_cast<const void*>(&stream));
    };
    EXPECT_EQ(at(&stream.bitMask), 0);
    EXPECT_EQ(at(&stream.rbspBitIndex), 8);
    EXPECT_EQ(at(&stream.ownsData), 12);
    EXPECT_LT(at(&stream.ownsData), at(&stream.data));
    EXPECT_LT(at(&stream.data), at(&stream.size));
    EXPECT_EQ(at(&stream.capacity) - at(&stream.size), 8);
    EXPECT_EQ(at(&stream.bytePos) - at(&stream.capacity), 8);
    EXPECT_EQ(at(&stream.bitOffset) - at(&stream.bytePos), 8);
    EXPECT_EQ(at(&stream.extraFlag) - at(&stream.bitOffset), 4);
    EXPECT_EQ(sizeof stream.ownsData, 1U);
}

// --- RBSP cursor ---

TEST(QVByteStreamRbsp, zeroBitsTouchNothing) {
    Reader stream({0xFF});
    EXPECT_EQ(stream.readRbspBits(0), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 0, 7}));
}

TEST(QVByteStreamRbsp, mostSignificantFirst) {
    Reader stream({0xA5, 0x5A});
    EXPECT_EQ(stream.readRbspBits(1), 1U);
    EXPECT_EQ(stream.readRbspBits(3), 0b010U);
    EXPECT_EQ(stream.readRbspBits(8), 0b01010101U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 3}));
}

TEST(QVByteStreamRbsp, thirtyTwoBitsAreRead) {
    Reader stream({0x12, 0x34, 0x56, 0x78, 0x9A});
    EXPECT_EQ(stream.readRbspBits(32), 0x12345678U);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 0, 7}));
}

TEST(QVByteStreamRbsp, moreThanThirtyTwoBitsAreSkipped) {
    Reader stream({0xFF, 0xFF, 0xFF, 0xFF, 0xBF});
    EXPECT_EQ(stream.readRbspBits(33), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 0, 6}));
    EXPECT_EQ(stream.readRbspBits(1), 0U);
}

TEST(QVByteStreamRbsp, aSkipStepsOverEmulationPrevention) {
    Reader stream({0xFF, 0x00, 0x00, 0x03, 0xFF, 0xFF, 0x42});
    EXPECT_EQ(stream.readRbspBits(40), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{6, 0, 7}));
    EXPECT_EQ(stream.readRbspBits(8), 0x42U);
}

TEST(QVByteStreamRbsp, anyCountReturnsPromptly) {
    Reader stream({0xFF, 0xFF});
    EXPECT_EQ(stream.readRbspBits(ULONG_MAX), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{2, 0, 7}));
}

TEST(QVByteStreamRbsp, pastTheEndZeroBitsAndNothingMoves) {
    Reader stream({0xFF});
    EXPECT_EQ(stream.readRbspBits(12), 0xFF0U) << "the missing low bits are 0";
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 7}));
    EXPECT_EQ(stream.readRbspBits(32), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 7}));
}

TEST(QVByteStreamRbsp, stepsOverEmulationPrevention) {
    Reader stream({0xAA, 0xAA, 0xAA, 0xAA, 0x00, 0x00, 0x03, 0x01});
    stream.readRbspBits(32);
    EXPECT_EQ(stream.readRbspBits(24), 0x000001U);
    EXPECT_EQ(stream.bytePos, 8U);
}

TEST(QVByteStreamRbsp, D03_zeroPairAtTheStartOfTheBufferIsNoEmulation) {
    Reader stream({0x00, 0x00, 0x03, 0x01});
    EXPECT_EQ(stream.readRbspBits(32), 0x00000301U);
}

TEST(QVByteStreamRbsp, zeroPairAtIndexOneIsEmulation) {
    Reader stream({0x00, 0x00, 0x00, 0x03, 0x01});
    EXPECT_EQ(stream.readRbspBits(32), 0x00000001U);
}

TEST(QVByteStreamRbsp, theByteAfterThe03IsNotExamined) {
    Reader stream({0xAA, 0x00, 0x00, 0x03, 0xFF});
    stream.readRbspBits(8);
    EXPECT_EQ(stream.readRbspBits(24), 0x0000FFU);
}

TEST(QVByteStreamRbsp, a03AtTheVeryEndIsSteppedOver) {
    Reader stream({0xAA, 0x00, 0x00, 0x03});
    EXPECT_EQ(stream.readRbspBits(24), 0xAA0000U);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 0, 7}));
}

TEST(QVByteStreamRbsp, theByteAfterTheBufferIsNotReadForTheTest) {
    Reader stream({0xAA, 0x00, 0x00});  // exact-size block: AddressSanitizer sees a read of index 3
    EXPECT_EQ(stream.readRbspBits(24), 0xAA0000U);
    EXPECT_EQ(cursorOf(stream), (Cursor{3, 0, 7}));
}

TEST(QVByteStreamRbsp, consecutiveEmulationBytes) {
    Reader stream({0xAA, 0x00, 0x00, 0x03, 0x00, 0x00, 0x03, 0x00, 0x01});
    stream.readRbspBits(8);
    EXPECT_EQ(stream.readRbspBits(32), 0U);
    EXPECT_EQ(stream.bytePos, 7U);
    EXPECT_EQ(stream.readRbspBits(16), 0x0001U);
}

TEST(QVByteStreamRbsp, onceABoundary) {
    // The 03 is followed by another 03, which does not follow two zero bytes: it is data.
    Reader stream({0xAA, 0x00, 0x00, 0x03, 0x03, 0x07});
    stream.readRbspBits(8);
    EXPECT_EQ(stream.readRbspBits(32), 0x00000307U);
}

TEST(QVByteStreamRbsp, leavesThePlainOffsetAlone) {
    Reader stream({0xFF, 0xFF, 0xFF});
    stream.readBits(3);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 3, 7}));
    stream.readRbspBits(10);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 3, 5}));
    stream.readBits(2);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 5, 5}));
}

// --- Plain cursor ---

TEST(QVByteStreamPlain, singleBits) {
    Reader stream({0xA0});
    EXPECT_EQ(stream.readBit(), 1U);
    EXPECT_EQ(stream.readBit(), 0U);
    EXPECT_EQ(stream.readBit(), 1U);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 3, 7}));
    stream.readBits(5);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 7}));
    EXPECT_EQ(stream.readBit(), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 7})) << "at the end nothing moves";
}

TEST(QVByteStreamPlain, readsEveryWidthAtEveryOffset) {
    const Bytes bytes = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC};
    const uint64_t whole = 0x123456789ABCU;
    for (unsigned offset = 0; offset < 8; ++offset) {
        for (unsigned width = 0; width <= 32; ++width) {
            Reader stream(bytes);
            stream.readBits(offset);
            const uint64_t expected = whole >> (48 - offset - width) & ((uint64_t{1} << width) - 1);
            EXPECT_EQ(stream.readBits(width), expected) << offset << " + " << width;
            EXPECT_EQ(cursorOf(stream), (Cursor{(offset + width) / 8, (offset + width) % 8, 7}));
        }
    }
}

TEST(QVByteStreamPlain, missingLowBitsAreZero) {
    Reader stream({0xFF});
    stream.readBits(6);
    EXPECT_EQ(stream.readBits(8), 0b11000000U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 7}));
}

TEST(QVByteStreamPlain, moreThanThirtyTwoBitsKeepTheLastThirtyTwo) {
    Reader stream({0xFF, 0x12, 0x34, 0x56, 0x78, 0x9A});
    EXPECT_EQ(stream.readBits(40), 0x12345678U);
    EXPECT_EQ(cursorOf(stream), (Cursor{5, 0, 7}));
    EXPECT_EQ(stream.readBits(UINT32_MAX), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{6, 0, 7}));
}

TEST(QVByteStreamPlain, D04_emulationPreventionIsData) {
    Reader stream({0xAA, 0x00, 0x00, 0x03, 0x01});
    stream.readBits(8);
    EXPECT_EQ(stream.readBits(32), 0x00000301U);
}

TEST(QVByteStreamPlain, leavesTheRbspIndexAlone) {
    Reader stream({0xFF, 0xFF});
    stream.readRbspBits(3);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 0, 4}));
    stream.readBit();
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 1, 4}));
    stream.readGolombUe();
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 2, 4}));
}

struct SkipCase {
    const char* name;
    uint64_t n;
    Cursor start;
    Cursor expected;
};

class QVByteStreamSkip : public ::testing::Test {
protected:
    static void check(const SkipCase& c, void (QVByteStream::*skip)(uint64_t), size_t size) {
        SCOPED_TRACE(c.name);
        Reader stream(Bytes(size, 0xFF));
        stream.bytePos = c.start.bytePos;
        stream.bitOffset = static_cast<uint8_t>(c.start.bitOffset);
        stream.rbspBitIndex = c.start.rbspBitIndex;
        (stream.*skip)(c.n);
        EXPECT_EQ(cursorOf(stream), c.expected);
    }
};

TEST_F(QVByteStreamSkip, bits) {
    const SkipCase cases[] = {
        {"none", 0, {0, 3, 7}, {0, 3, 7}},
        {"inside a byte", 3, {0, 2, 6}, {0, 5, 6}},
        {"across bytes", 13, {0, 5, 7}, {2, 2, 7}},
        {"to the end", 32, {0, 0, 7}, {4, 0, 7}},
        {"the byte position may be at the end with bits used", 33, {0, 0, 7}, {4, 1, 7}},
        {"one bit at the end moves the offset", 1, {4, 0, 7}, {4, 1, 7}},
        {"seven bits at the end move the offset", 7, {4, 0, 7}, {4, 7, 7}},
        {"eight bits at the end are not skipped", 8, {4, 0, 7}, {4, 0, 7}},
        {"the offset counts", 1, {4, 7, 7}, {4, 7, 7}},
        {"too many are not skipped, not even in part", 40, {0, 0, 7}, {0, 0, 7}},
        {"after the end nothing moves", 1, {5, 0, 7}, {5, 0, 7}},
        {"2^64 - 1 with an offset does not wrap", UINT64_MAX, {0, 7, 7}, {0, 7, 7}},
        {"2^64 - 1", UINT64_MAX, {1, 0, 7}, {1, 0, 7}},
    };
    for (const SkipCase& c : cases) {
        check(c, &QVByteStream::skipBits, 4);
    }
}

TEST_F(QVByteStreamSkip, bytes) {
    const SkipCase cases[] = {
        {"none clears the offset", 0, {1, 3, 5}, {1, 0, 5}},
        {"some", 2, {1, 3, 5}, {3, 0, 5}},
        {"to the end", 3, {1, 3, 5}, {4, 0, 5}},
        {"too many are not skipped, the offset stays", 4, {1, 3, 5}, {1, 3, 5}},
        {"none at the end", 0, {4, 3, 5}, {4, 0, 5}},
        {"after the end nothing moves", 0, {5, 3, 5}, {5, 3, 5}},
        {"a sum that wraps moves back", UINT64_MAX, {1, 3, 5}, {0, 0, 5}},
        {"a sum that wraps to before the start moves nothing", UINT64_MAX - 1, {1, 3, 5}, {1, 3, 5}},
    };
    for (const SkipCase& c : cases) {
        check(c, &QVByteStream::skipBytes, 4);
    }
}

struct SeekCase {
    const char* name;
    int64_t n;
    Cursor start;
    Cursor expected;
};

TEST(QVByteStreamSeek, movesWholeBytesAndKeepsTheBitOffset) {
    const SeekCase cases[] = {
        {"none", 0, {1, 3, 5}, {1, 3, 5}},
        {"forward", 2, {1, 3, 5}, {3, 3, 5}},
        {"to the end", 3, {1, 0, 5}, {4, 0, 5}},
        {"past the end nothing moves", 4, {1, 3, 5}, {1, 3, 5}},
        {"back on a byte boundary", -1, {3, 0, 5}, {2, 0, 5}},
        {"back inside a byte truncates towards zero", -1, {3, 1, 5}, {3, 1, 5}},
        {"two back inside a byte", -2, {3, 7, 5}, {2, 7, 5}},
        {"back to the start", -3, {3, 0, 5}, {0, 0, 5}},
        {"before the start nothing moves", -4, {3, 0, 5}, {3, 0, 5}},
        {"before the start, truncated to it", -4, {3, 2, 5}, {0, 2, 5}},
        {"none from past the end", 0, {5, 0, 5}, {5, 0, 5}},
        {"back from past the end", -1, {5, 0, 5}, {4, 0, 5}},
        {"back to a target that is still past the end", -1, {6, 0, 5}, {6, 0, 5}},
        {"back far enough to reach the end", -2, {6, 0, 5}, {4, 0, 5}},
        {"back to past the end, truncated", -2, {6, 1, 5}, {6, 1, 5}},
        {"forward from past the end", 1, {5, 0, 5}, {5, 0, 5}},
        {"forward over the end of the numbers", 3, {UINT64_MAX, 0, 5}, {UINT64_MAX, 0, 5}},
        {"the least distance", INT64_MIN, {3, 0, 5}, {3, 0, 5}},
        {"the greatest distance", INT64_MAX, {3, 7, 5}, {3, 7, 5}},
    };
    for (const SeekCase& c : cases) {
        SCOPED_TRACE(c.name);
        Reader stream(Bytes(4, 0xFF));
        stream.bytePos = c.start.bytePos;
        stream.bitOffset = static_cast<uint8_t>(c.start.bitOffset);
        stream.rbspBitIndex = c.start.rbspBitIndex;
        stream.seekBytes(c.n);
        EXPECT_EQ(cursorOf(stream), c.expected);
    }
}

TEST(QVByteStreamSeek, beforeTheStartOfAnyNumberOfBytes) {
    QVByteStream stream;
    stream.size = UINT64_MAX;  // null data: zero bytes without end
    stream.bytePos = 1;
    stream.seekBytes(-2);
    EXPECT_EQ(stream.bytePos, 1U);
    stream.seekBytes(-1);
    EXPECT_EQ(stream.bytePos, 0U);
}

TEST(QVByteStreamPlain, wholeBytesDoNotLookAtTheBitOffset) {
    Reader stream({0x12, 0x34});
    stream.readBits(3);
    EXPECT_EQ(stream.readByte(), 0x12U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 3, 7}));
    EXPECT_EQ(stream.readByte(), 0x34U);
    EXPECT_EQ(stream.readByte(), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{2, 3, 7}));
}

TEST(QVByteStreamPlain, hasDataAsksForABufferToo) {
    Reader stream({0x12});
    EXPECT_TRUE(stream.hasData());
    stream.readByte();
    EXPECT_FALSE(stream.hasData());
    QVByteStream null;
    null.size = 4;
    EXPECT_FALSE(null.hasData());
    EXPECT_FALSE(null.atEnd());
    EXPECT_EQ(null.readByte(), 0U);
    EXPECT_EQ(null.bytePos, 1U);
}

TEST_F(QVByteStreamSkip, anEmptyStream) {
    check({"bits inside a byte", 3, {0, 0, 7}, {0, 3, 7}}, &QVByteStream::skipBits, 0);
    check({"a byte of bits", 8, {0, 0, 7}, {0, 0, 7}}, &QVByteStream::skipBits, 0);
    check({"no bytes", 0, {0, 3, 7}, {0, 3, 7}}, &QVByteStream::skipBytes, 0);
}

TEST(QVByteStreamPlain, bytesLeftWrapsPastTheEnd) {
    Reader stream({0xFF});
    stream.bytePos = 2;
    EXPECT_TRUE(stream.atEnd());
    EXPECT_EQ(stream.bytesLeft(), UINT64_MAX);
}

// --- Exp-Golomb ---

struct GolombCase {
    const char* bits;
    uint32_t ue;
    int32_t se;
    size_t consumed;
};

// H.264 Tables 9-2 and 9-3, and the ends of the 32-bit range.
const GolombCase kGolombCases[] = {
    {"1", 0, 0, 1},
    {"010", 1, 1, 3},
    {"011", 2, -1, 3},
    {"00100", 3, 2, 5},
    {"00101", 4, -2, 5},
    {"00110", 5, 3, 5},
    {"00111", 6, -3, 5},
    {"0001000", 7, 4, 7},
    {"0001001", 8, -4, 7},
    {"000000001 00000000", 255, 128, 17},
    {"000000001 00000001", 256, -128, 17},
    {"0000000000000001 000000000000000", 32767, 16384, 31},
    {"0000000000000000000000000000000 1 0000000000000000000000000000000", 0x7FFFFFFF, 0x40000000, 63},
    {"0000000000000000000000000000000 1 1111111111111111111111111111110", 0xFFFFFFFD, 0x7FFFFFFF, 63},
    {"0000000000000000000000000000000 1 1111111111111111111111111111111", 0xFFFFFFFE, -0x7FFFFFFF, 63},
};

TEST(QVByteStreamGolomb, codesOfTheStandard) {
    for (const GolombCase& c : kGolombCases) {
        for (unsigned offset = 0; offset < 8; ++offset) {
            SCOPED_TRACE(std::string(c.bits) + " at bit " + std::to_string(offset));
            BitWriter out;
            out.bits("before", std::string(offset, '1')).bits("code", c.bits).bits("after", "11111111");
            ASSERT_EQ(out.bitCount(), offset + c.consumed + 8);

            Reader unsignedReader(out.bytes());
            unsignedReader.readBits(offset);
            EXPECT_EQ(unsignedReader.readGolombUe(), c.ue);
            EXPECT_EQ(unsignedReader.bytePos * 8 + unsignedReader.bitOffset, offset + c.consumed);

            Reader signedReader(out.bytes());
            signedReader.readBits(offset);
            EXPECT_EQ(signedReader.readGolombSe(), c.se);
            EXPECT_EQ(signedReader.bytePos * 8 + signedReader.bitOffset, offset + c.consumed);
        }
    }
}

TEST(QVByteStreamGolomb, atTheEndOneBitOfOffsetIsConsumed) {
    Reader stream({0xFF});
    stream.skipBits(8);
    EXPECT_EQ(stream.readGolombUe(), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 1, 7}));
    EXPECT_EQ(stream.readGolombSe(), 0);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 2, 7}));
    for (int i = 0; i < 6; ++i) {
        stream.readGolombUe();
    }
    EXPECT_EQ(cursorOf(stream), (Cursor{2, 0, 7})) << "the byte position passes the size";
}

TEST(QVByteStreamGolomb, onAnEmptyStream) {
    QVByteStream stream;
    EXPECT_EQ(stream.readGolombUe(), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 1, 7}));
}

TEST(QVByteStreamGolomb, zerosToTheEndStopAtTheEnd) {
    Reader ue({0x80, 0x00});
    ue.readBit();
    EXPECT_EQ(ue.readGolombUe(), 0U);
    EXPECT_EQ(cursorOf(ue), (Cursor{2, 0, 7})) << "nothing beyond the zeros is consumed";

    Reader se({0x00});
    EXPECT_EQ(se.readGolombSe(), 0);
    EXPECT_EQ(cursorOf(se), (Cursor{1, 0, 7}));
}

TEST(QVByteStreamGolomb, informationBitsThatAreMissingAreZero) {
    Reader ue({0x01});  // 0000000 1, seven information bits missing
    EXPECT_EQ(ue.readGolombUe(), 127U);
    EXPECT_EQ(cursorOf(ue), (Cursor{1, 0, 7}));

    Reader se({0x01});  // magnitude 1000000, sign 0
    EXPECT_EQ(se.readGolombSe(), 64);
    EXPECT_EQ(cursorOf(se), (Cursor{1, 0, 7}));

    Reader partial({0x07});  // 00000 1 11, three information bits missing
    EXPECT_EQ(partial.readGolombUe(), 0b111000U - 1);
}

TEST(QVByteStreamGolomb, D05_thirtyTwoZerosAndMoreWrapModulo32) {
    BitWriter code;
    code.bits("zeros", std::string(32, '0')).bits("one", "1").bits("information", std::string(31, '0') + "1");
    code.bits("after", "1");
    Reader ue(code.bytes());
    // The 1 lands at 32 mod 32 = 0, the last information bit at 0 as well: v = 1.
    EXPECT_EQ(ue.readGolombUe(), 0U);
    EXPECT_EQ(ue.bytePos * 8 + ue.bitOffset, 65U);
    EXPECT_EQ(ue.readBit(), 1U);

    Reader se(code.bytes());
    // 32 magnitude bits, the 1 at 31, and the sign 1.
    EXPECT_EQ(se.readGolombSe(), INT32_MIN);
    EXPECT_EQ(se.bytePos * 8 + se.bitOffset, 65U);

    BitWriter longer;
    longer.bits("zeros", std::string(40, '0'))
        .bits("one", "1")
        .bits("information", "01" + std::string(38, '0'));
    Reader wrapped(longer.bytes());
    // Bit 0 at 40 mod 32 = 8, bit 2 at 38 mod 32 = 6.
    EXPECT_EQ(wrapped.readGolombUe(), (1U << 8 | 1U << 6) - 1);
    EXPECT_EQ(wrapped.bytePos * 8 + wrapped.bitOffset, 81U);
}

// --- A null buffer with a size ---

class QVByteStreamNullData : public ::testing::Test {
protected:
    QVByteStreamNullData() { stream.size = 4; }
    QVByteStream stream;
};

TEST_F(QVByteStreamNullData, readsZeroBitsAndMoves) {
    EXPECT_EQ(stream.readRbspBits(12), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 3}));
    EXPECT_EQ(stream.readBits(9), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{2, 1, 3}));
    EXPECT_EQ(stream.readBit(), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{2, 2, 3}));
    stream.skipBits(7);
    EXPECT_EQ(cursorOf(stream), (Cursor{3, 1, 3}));
    stream.skipBytes(1);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 0, 3}));
    EXPECT_EQ(stream.readRbspBits(40), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 0, 3}));
}

TEST_F(QVByteStreamNullData, expGolombRunsToTheEnd) {
    EXPECT_EQ(stream.readGolombUe(), 0U);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 0, 7}));
    stream.bytePos = 1;
    EXPECT_EQ(stream.readGolombSe(), 0);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 0, 7}));
}

// --- Random operations against the model ---

Bytes randomBytes(std::mt19937& random, size_t size) {
    // Mostly the bytes that emulation prevention and long Exp-Golomb codes are made of.
    const uint8_t likely[] = {0x00, 0x00, 0x00, 0x03, 0x01, 0x80};
    Bytes bytes(size);
    for (uint8_t& byte : bytes) {
        byte = random() % 4 != 0 ? likely[random() % 6] : static_cast<uint8_t>(random());
    }
    return bytes;
}

class QVByteStreamModel : public ::testing::TestWithParam<unsigned> {};

TEST_P(QVByteStreamModel, randomOperations) {
    std::mt19937 random(GetParam());
    for (int round = 0; round < 400; ++round) {
        const Bytes bytes = randomBytes(random, random() % 48);
        Reader stream(bytes);
        CursorModel model(bytes);
        for (int step = 0; step < 40; ++step) {
            const auto n = static_cast<uint32_t>(random() % 5 == 0 ? random() % 200 : random() % 34);
            const auto operation = static_cast<unsigned>(random() % 11);
            SCOPED_TRACE("round " + std::to_string(round) + " step " + std::to_string(step) + " operation " +
                         std::to_string(operation) + " n " + std::to_string(n));
            switch (operation) {
                case 0:
                case 1:
                    ASSERT_EQ(stream.readRbspBits(n), model.readRbspBits(n));
                    break;
                case 2:
                    ASSERT_EQ(stream.readBit(), model.readBit());
                    break;
                case 3:
                    ASSERT_EQ(stream.readBits(n), model.readBits(n));
                    break;
                case 4:
                    ASSERT_EQ(stream.readGolombUe(), model.readGolombUe());
                    break;
                case 5:
                    ASSERT_EQ(stream.readGolombSe(), model.readGolombSe());
                    break;
                case 6: {
                    Bytes read(n % 40, 0x5A);
                    stream.readRbspBytes(read.data(), read.size());
                    Bytes expected;
                    for (size_t i = 0; i < read.size(); ++i) {
                        expected.push_back(static_cast<uint8_t>(model.readRbspBits(8)));
                    }
                    ASSERT_EQ(read, expected);
                    break;
                }
                case 7:
                    stream.skipBits(n);
                    model.skipBits(n);
                    break;
                case 8:
                    ASSERT_EQ(stream.readByte(), model.readByte());
                    break;
                case 9:
                    stream.seekBytes(int64_t{n} - 20);
                    model.seekBytes(int64_t{n} - 20);
                    break;
                default:
                    stream.skipBytes(n % 8);
                    model.skipBytes(n % 8);
                    break;
            }
            ASSERT_EQ(cursorOf(stream),
                      (Cursor{model.bytePos(), model.plainBitsUsed(), 7 - model.rbspBitsUsed()}));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(seeds, QVByteStreamModel, ::testing::Range(1U, 9U));

TEST(QVByteStreamRbsp, readsBytesAtAnyDensityOf03) {
    for (const size_t distance : {1U, 2U, 3U, 5U, 31U, 32U, 33U, 64U, 100U, 400U}) {
        for (const size_t size : {1U, 31U, 32U, 33U, 65U, 1000U}) {
            Bytes bytes(size, 0x00);
            for (size_t i = 0; i < size; ++i) {
                bytes[i] = i % distance == 0 ? 0x03 : static_cast<uint8_t>(i % 7 == 0 ? 0x11 : 0x00);
            }
            for (size_t count = size > 40 ? size - 40 : 0; count <= size + 2; ++count) {
                SCOPED_TRACE(std::to_string(distance) + " of " + std::to_string(size) + ": " +
                             std::to_string(count));
                Reader stream(bytes);
                Bytes read(count, 0x5A);
                stream.readRbspBytes(read.data(), count);
                CursorModel model(bytes);
                for (size_t i = 0; i < count; ++i) {
                    ASSERT_EQ(read[i], model.readRbspBits(8)) << i;
                }
                ASSERT_EQ(cursorOf(stream), (Cursor{model.bytePos(), 0, 7}));
            }
        }
    }
}

TEST(QVByteStreamRbsp, aCallersOwnBitIndexReadsZeroBits) {
    Reader stream({0xFF, 0xFF});
    stream.rbspBitIndex = 9;  // 9 and 8 hold no bit of the byte
    EXPECT_EQ(stream.readRbspBits(3), 0b001U);
    EXPECT_EQ(cursorOf(stream), (Cursor{0, 0, 6}));
    stream.rbspBitIndex = 100;  // leaves the byte
    EXPECT_EQ(stream.readRbspBits(2), 0b01U);
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 0, 6}));
}

TEST(QVByteStreamRbsp, readsBackWhatEmulationPreventionWasInsertedInto) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        Bytes rbsp = randomBytes(random, random() % 64 + 3);
        rbsp[0] = 0x67;  // a NAL unit header is never zero, so no zero pair starts the buffer
        Reader stream(withEmulationPrevention(rbsp));
        Bytes read;
        for (size_t i = 0; i < rbsp.size(); ++i) {
            read.push_back(static_cast<uint8_t>(stream.readRbspBits(8)));
        }
        ASSERT_EQ(read, rbsp);
    }
}

}  // namespace
}  // namespace qv_test
