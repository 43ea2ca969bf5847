// The H.265 picture payloads: picture timing, decoded picture hash, active parameter sets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <numeric>
#include <type_traits>

#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SeiMessages.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(std::is_trivially_copyable<QVHevcSeiPictureTiming>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiPictureTiming>::value);
static_assert(std::is_same<decltype(QVHevcSeiPictureTiming::fieldParity), uint32_t>::value);

static_assert(std::is_trivially_copyable<QVHevcSeiPictureHash>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiPictureHash>::value);
static_assert(std::is_same<decltype(QVHevcSeiPictureHash::picture_md5), uint8_t[3][16]>::value);
static_assert(std::is_same<decltype(QVHevcSeiPictureHash::md5Present), uint8_t>::value);

// --- Picture timing ---

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

TEST_F(HevcPictureTiming, shortDataLeavesTheStreamBehindTheFirstByte) {
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

// --- Decoded picture hash ---

const auto kPictureHash = &QVNaluParser::parserHevcPictureHash;

// All bytes differ from each other and from the pattern.
HevcPictureHashSyntax pictureHash(uint32_t hash_type) {
    HevcPictureHashSyntax syntax;
    syntax.hash_type = hash_type;
    uint32_t next = 0x31;
    for (auto& picture_md5 : syntax.picture_md5) {
        std::iota(picture_md5.begin(), picture_md5.end(), next);
        next += 16;
    }
    syntax.picture_crc = {{0x1234, 0x5678, 0x9ABC}};
    syntax.picture_checksum = {{0x01020306, 0x55667788, 0x99AABBCC}};
    return syntax;
}

QVHevcSeiPictureHash md5Record(const HevcPictureHashSyntax& syntax) {
    QVHevcSeiPictureHash record{};
    for (size_t cIdx = 0; cIdx < 3; ++cIdx) {
        for (size_t i = 0; i < 16; ++i) {
            record.picture_md5[cIdx][i] = static_cast<uint8_t>(syntax.picture_md5[cIdx][i]);
        }
    }
    record.md5Present = 1;
    return record;
}

const QVHevcSeiPictureHash kNoHash = patternRecord<QVHevcSeiPictureHash>();

class HevcPictureHash : public CoreTest {};

TEST_F(HevcPictureHash, D20_md5OfThreeComponents) {
    const HevcPictureHashSyntax syntax = pictureHash(0);
    PayloadStream stream(hevcSei(syntax).u(16, "following", 0xEEEE));
    const auto parsed = parse(kPictureHash, stream, 49);
    expectParsed(parsed, md5Record(syntax), atBit(49 * 8));
    EXPECT_EQ(parsed.record.picture_md5[0][0], 0x31);
    EXPECT_EQ(parsed.record.picture_md5[0][15], 0x40);
    EXPECT_EQ(parsed.record.picture_md5[1][0], 0x41);
    EXPECT_EQ(parsed.record.picture_md5[2][15], 0x60);
    expectNoLines();
}

TEST_F(HevcPictureHash, D20_aMonochromePictureTakesWhatStandsBehind) {
    const HevcPictureHashSyntax syntax = pictureHash(0);
    Bytes oneComponent = hevcSei(syntax).bytes();
    oneComponent.resize(17);
    QVHevcSeiPictureHash record = md5Record(syntax);
    std::fill_n(record.picture_md5[1], 16, uint8_t{0});
    std::fill_n(record.picture_md5[2], 16, uint8_t{0});
    PayloadStream alone(oneComponent);
    expectParsed(parse(kPictureHash, alone, 17), record, atBit(17 * 8));
    record.picture_md5[1][0] = 0x80;
    PayloadStream withTrailingBits(oneComponent + Bytes{0x80});
    expectParsed(parse(kPictureHash, withTrailingBits, 17), record, atBit(18 * 8));
}

TEST_F(HevcPictureHash, crcAndChecksumAreSkipped) {
    PayloadStream crc(hevcSei(pictureHash(1)).u(32, "following", 0));
    expectParsed(parse(kPictureHash, crc, 7), kNoHash, atBit(7 * 8));
    PayloadStream checksum(hevcSei(pictureHash(2)).u(32, "following", 0));
    expectParsed(parse(kPictureHash, checksum, 13), kNoHash, atBit(13 * 8));
    expectNoLines();
}

TEST_F(HevcPictureHash, otherTypesEndAtOnce) {
    for (uint32_t hash_type = 3; hash_type < 256; ++hash_type) {
        SCOPED_TRACE(hash_type);
        PayloadStream stream(hevcSei(pictureHash(hash_type)).u(64, "following", ~uint64_t{0}));
        expectParsed(parse(kPictureHash, stream, 9), kNoHash, atBit(8));
    }
    expectNoLines();
}

// The parser skips as many whole components after the type as the payload has, up to three.
TEST_F(HevcPictureHash, everyLengthOfEveryType) {
    const struct {
        uint8_t hash_type;
        size_t skipBytes;
    } rows[] = {{1, 2}, {2, 4}, {3, 0}, {255, 0}};
    for (const auto& row : rows) {
        for (size_t length = 0; length <= 20; ++length) {
            SCOPED_TRACE(std::to_string(row.hash_type) + " and " + std::to_string(length) + " bytes");
            PayloadStream stream(Bytes{row.hash_type} + Bytes(length, 0xFF));
            const size_t fitting = row.skipBytes == 0 ? 0 : std::min<size_t>(length / row.skipBytes, 3);
            expectParsed(parse(kPictureHash, stream, static_cast<int>(1 + length)), kNoHash,
                         atBit((1 + fitting * row.skipBytes) * 8));
        }
    }
    expectNoLines();
}

TEST_F(HevcPictureHash, D20_md5OfEveryLength) {
    const HevcPictureHashSyntax syntax = pictureHash(0);
    const BitWriter payload = hevcSei(syntax);
    for (size_t size = 0; size <= 49; ++size) {
        SCOPED_TRACE(size);
        PayloadStream stream(payload.bytesCutAt(size * 8));
        expectParsed(parse(kPictureHash, stream, static_cast<int>(size)), md5Record(cutAt(syntax, size * 8)),
                     atBit(size * 8));
    }
    expectNoLines();
}

TEST_F(HevcPictureHash, md5CutAtEveryBitFromEveryStart) {
    const HevcPictureHashSyntax syntax = pictureHash(0);
    for (unsigned lead = 0; lead < 8; ++lead) {
        const BitWriter payload = hevcSei(syntax, lead);
        for (size_t bits = lead; bits <= payload.bitCount(); ++bits) {
            SCOPED_TRACE("lead " + std::to_string(lead) + ", cut at " + std::to_string(bits));
            const Bytes bytes = payload.bytesCutAt(bits);
            PayloadStream stream(bytes, lead);
            expectParsed(parse(kPictureHash, stream, 49), md5Record(cutAt(syntax, bits - lead)),
                         atBit(std::min<uint64_t>(payload.bitCount(), bytes.size() * 8)));
        }
    }
}

// A cut replaces the low bits of the type with zeros. Where 0 is left, the payload is read as MD5.
TEST_F(HevcPictureHash, aTypeCutShort) {
    QVHevcSeiPictureHash zeros{};
    zeros.md5Present = 1;
    for (const uint32_t hash_type : {1U, 2U, 3U, 255U}) {
        const BitWriter payload = hevcSei(pictureHash(hash_type));
        for (size_t bits = 0; bits <= 8; ++bits) {
            SCOPED_TRACE(std::to_string(hash_type) + " cut at " + std::to_string(bits));
            const Bytes bytes = payload.bytesCutAt(bits);
            PayloadStream stream(bytes);
            const bool isMd5 = cutAt(pictureHash(hash_type), bits).hash_type == 0;
            expectParsed(parse(kPictureHash, stream, 1), isMd5 ? zeros : kNoHash, atBit(bytes.size() * 8));
        }
    }
}

// The payload has 8 + 3 * 16 bits. A skip is made if it ends in a byte of the data or in the byte after it.
TEST_F(HevcPictureHash, offByteAlignmentASkipMayEndInsideTheLastByte) {
    for (unsigned lead = 1; lead < 8; ++lead) {
        SCOPED_TRACE(lead);
        const Bytes crc = hevcSei(pictureHash(1), lead).bytes();
        ASSERT_EQ(crc.size(), 8U);
        PayloadStream whole(crc, lead);
        expectParsed(parse(kPictureHash, whole, 7), kNoHash, atBit(lead + 56));
        PayloadStream lessAByte(Bytes(crc.begin(), crc.end() - 1), lead);
        expectParsed(parse(kPictureHash, lessAByte, 7), kNoHash, atBit(lead + 56));
        PayloadStream lessTwoBytes(Bytes(crc.begin(), crc.end() - 2), lead);
        expectParsed(parse(kPictureHash, lessTwoBytes, 7), kNoHash, atBit(lead + 40));
    }
}

TEST_F(HevcPictureHash, D20_nothingToReadIsAnMd5OfZeros) {
    QVHevcSeiPictureHash zeros{};
    zeros.md5Present = 1;
    PayloadStream empty((Bytes()));
    expectParsed(parse(kPictureHash, empty, 0), zeros, atBit(0));
    PayloadStream atEnd(Bytes{0xFF}, 8);
    expectParsed(parse(kPictureHash, atEnd, 0), zeros, atBit(8));
    PayloadStream pastEnd(Bytes{0xFF}, 21);
    expectParsed(parse(kPictureHash, pastEnd, 0), zeros, atBit(21));
    BufferlessStream bufferless(60);
    expectParsed(parse(kPictureHash, bufferless, 49), zeros, atBit(49 * 8));
    BufferlessStream shortBufferless(20);
    expectParsed(parse(kPictureHash, shortBufferless, 49), zeros, atBit(20 * 8));
    expectNoLines();
}

TEST_F(HevcPictureHash, payloadSizeIsNotLookedAt) {
    const HevcPictureHashSyntax syntax = pictureHash(0);
    for (const int payloadSize : {INT_MIN, -1, 0, 1, 17, 48, 50, INT_MAX}) {
        PayloadStream stream(hevcSei(syntax));
        expectParsed(parse(kPictureHash, stream, payloadSize), md5Record(syntax), atBit(49 * 8));
    }
}

TEST_F(HevcPictureHash, nullRecord) {
    PayloadStream stream(Bytes(49), 5);
    EXPECT_EQ(QVNaluParser::parserHevcPictureHash(stream, 49, nullptr), 11000001);
    EXPECT_EQ(cursorOf(stream), atBit(5));
    expectLines({{0, "parserHevcPictureHash", "parserHevcPictureHash: pictureHash is NULL!\n"}});
}

// --- Decoded picture hash, dispatched ---

class HevcPictureHashDispatch : public SeiTest {
protected:
    int prefix(QVByteStream& stream, int payloadType, int payloadSize, const Requested& requested) {
        return QVNaluParser::parserHevcSeiPrefix(stream, payloadType, payloadSize, items, nullptr, requested);
    }
    int suffix(QVByteStream& stream, int payloadType, int payloadSize, const Requested& requested) {
        return QVNaluParser::parserHevcSeiSuffix(stream, payloadType, payloadSize, items, nullptr, requested);
    }

    // The position of the RBSP cursor, with which a capture reads whole bytes.
    static Cursor atByte(uint64_t byte) { return {byte, 0, 7}; }
};

const Bytes kFollowing = {0xC0, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9};

TEST_F(HevcPictureHashDispatch, D13_prefixType256IsAHash) {
    for (const Requested& requested : {Requested{}, Requested{256}, Requested{132, 256}}) {
        SeiStream md5(hevcSei(pictureHash(0)).bytes() + kFollowing);
        EXPECT_EQ(prefix(md5, 256, 49, requested), 0);
        EXPECT_EQ(cursorOf(md5), atByte(49));
        SeiStream crc(hevcSei(pictureHash(1)).bytes() + kFollowing);
        EXPECT_EQ(prefix(crc, 256, 7, requested), 0);
        EXPECT_EQ(cursorOf(crc), atByte(7));
        SeiStream unknown(Bytes{0x07} + kFollowing);
        EXPECT_EQ(prefix(unknown, 256, 11, requested), 0);
        EXPECT_EQ(cursorOf(unknown), atByte(1));
    }
    EXPECT_THAT(kept(), IsEmpty()) << "a prefix hash must never be captured, even if requested";
    expectNoLines();
}

TEST_F(HevcPictureHashDispatch, D13_prefixType132IsNoHash) {
    const Bytes crc = hevcSei(pictureHash(1)).bytes();
    SeiStream skipped(crc + kFollowing);
    EXPECT_EQ(prefix(skipped, 132, 9, {256}), 0);
    EXPECT_EQ(cursorOf(skipped), atByte(9));
    EXPECT_THAT(kept(), IsEmpty());
    SeiStream captured(crc + kFollowing);
    EXPECT_EQ(prefix(captured, 132, 7, {132}), 0);
    EXPECT_EQ(cursorOf(captured), atByte(7));
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, crc}));
}

TEST_F(HevcPictureHashDispatch, D15_suffixHashIsCapturedFromWhereItsParserStopped) {
    const struct {
        uint32_t hash_type;
        int payloadSize;
        uint64_t end;
        Bytes payload;
    } rows[] = {
        {0, 10, 59, kFollowing},
        {0, 12, 59, kFollowing + Bytes{0x00, 0x00}},
        {1, 7, 14, Bytes(kFollowing.begin(), kFollowing.begin() + 7)},
        {2, 13, 23, kFollowing + Bytes{0x00, 0x00, 0x00}},
        {3, 4, 5, Bytes(kFollowing.begin(), kFollowing.begin() + 4)},
        {255, 1, 2, Bytes(kFollowing.begin(), kFollowing.begin() + 1)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("hash type " + std::to_string(row.hash_type) + ", size " +
                     std::to_string(row.payloadSize));
        SeiStream stream(hevcSei(pictureHash(row.hash_type)).bytes() + kFollowing);
        EXPECT_EQ(suffix(stream, 132, row.payloadSize, {7, 132}), 0);
        EXPECT_EQ(cursorOf(stream), atByte(row.end));
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, row.payload}));
        clearItems();
    }
    expectNoLines();
}

TEST_F(HevcPictureHashDispatch, D15_suffixHashThatEndsItsUnitIsCapturedAsZeros) {
    const Bytes payload = hevcSei(pictureHash(0)).bytes();
    SeiStream stream(payload);
    EXPECT_EQ(suffix(stream, 132, 49, {132}), 0);
    EXPECT_EQ(cursorOf(stream), atByte(49));
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, Bytes(49)}));
}

TEST_F(HevcPictureHashDispatch, D15_suffixHashIsSkippedFromWhereItsParserStopped) {
    for (const Requested& requested : {Requested{}, Requested{256, 131}}) {
        SeiStream fits(hevcSei(pictureHash(1)).bytes() + kFollowing);
        EXPECT_EQ(suffix(fits, 132, 7, requested), 0);
        EXPECT_EQ(cursorOf(fits), atByte(14));
        SeiStream doesNotFit(hevcSei(pictureHash(2)).bytes() + kFollowing);
        EXPECT_EQ(suffix(doesNotFit, 132, 13, requested), 0);
        EXPECT_EQ(cursorOf(doesNotFit), atByte(13));
        SeiStream unknown(Bytes{0xFF} + kFollowing);
        EXPECT_EQ(suffix(unknown, 132, 10, requested), 0);
        EXPECT_EQ(cursorOf(unknown), atByte(11));
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(HevcPictureHashDispatch, D13_suffixType256IsNoHash) {
    const Bytes crc = hevcSei(pictureHash(1)).bytes();
    SeiStream skipped(crc + kFollowing);
    EXPECT_EQ(suffix(skipped, 256, 9, {}), 0);
    EXPECT_EQ(cursorOf(skipped), atByte(9));
    EXPECT_THAT(kept(), IsEmpty());
    SeiStream captured(crc + kFollowing);
    EXPECT_EQ(suffix(captured, 256, 7, {256}), 0);
    EXPECT_EQ(cursorOf(captured), atByte(7));
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 256, true, crc}));
}

TEST_F(HevcPictureHashDispatch, aFailedSuffixCaptureIsNotReported) {
    SeiStream empty(hevcSei(pictureHash(1)).bytes() + kFollowing);
    EXPECT_EQ(suffix(empty, 132, 0, {132}), 0);
    EXPECT_EQ(cursorOf(empty), atByte(7)) << "must be parsed but not captured";
    core().failPlayerAllocation = 1;
    SeiStream refused(hevcSei(pictureHash(1)).bytes() + kFollowing);
    EXPECT_EQ(suffix(refused, 132, 7, {132}), 0);
    EXPECT_EQ(core().playerAllocations, 1);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

// --- Active parameter sets ---

ExpectedLine numInvalid(const std::string& value) {
    return {0, "parserHevcActiveParameterSets",
            "parserHevcActiveParameterSets: num_sps_ids_minus1(" + value + ") is invalid!\n"};
}

ExpectedLine idInvalid(const std::string& value) {
    return {0, "parserHevcActiveParameterSets",
            "parserHevcActiveParameterSets: active_seq_parameter_set_id(" + value + ") is invalid!\n"};
}

// Returns the syntax with all its identifiers, up to 21, counting up from firstId.
HevcActiveParameterSetsSyntax activeParameterSets(uint32_t num_sps_ids_minus1, uint32_t firstId) {
    HevcActiveParameterSetsSyntax syntax;
    syntax.num_sps_ids_minus1 = num_sps_ids_minus1;
    syntax.active_seq_parameter_set_id.resize(std::min(num_sps_ids_minus1, 20U) + 1);
    std::iota(syntax.active_seq_parameter_set_id.begin(), syntax.active_seq_parameter_set_id.end(), firstId);
    return syntax;
}

class HevcActiveParameterSets : public CoreTest {
protected:
    // From each start in the first byte, checks the result and that the stream is after the named element.
    static void expectStop(const HevcActiveParameterSetsSyntax& syntax, int result,
                           const std::string& element) {
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            SCOPED_TRACE(payload.map());
            PayloadStream stream(payload, lead);
            EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, 4), result);
            EXPECT_EQ(cursorOf(stream), atBit(endOf(payload, element)));
        }
    }

    static void expectStopAt(QVByteStream& stream, uint64_t bit) {
        EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, 4), 0);
        EXPECT_EQ(cursorOf(stream), atBit(bit));
    }
};

TEST_F(HevcActiveParameterSets, D22_oneIdentifierFewerIsRead) {
    for (uint32_t num = 0; num <= 15; ++num) {
        SCOPED_TRACE(num);
        const size_t last = num == 0 ? 0 : num - 1;
        for (const uint32_t firstId : {0U, 1U, 7U, 15U}) {
            expectStop(activeParameterSets(num, firstId), 0, indexed("active_seq_parameter_set_id", last));
        }
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, D22_golden) {
    PayloadStream one(Bytes{0x0F});  // 0000 1 1 1 1
    expectStopAt(one, 8);
    PayloadStream four(Bytes{0x04, 0x94, 0xC9});  // 0000 0 1 00100 1 010 011 00100 1
    expectStopAt(four, 18);
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, tooManyIdentifiers) {
    const struct {
        uint32_t num_sps_ids_minus1;
        const char* text;
    } rows[] = {{16, "16"},
                {17, "17"},
                {255, "255"},
                {65536, "65536"},
                {2147483647, "2147483647"},
                {2147483648, "-2147483648"},  // the log prints it as a signed number
                {4294967294, "-2"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.num_sps_ids_minus1);
        core().lines.clear();
        expectStop(activeParameterSets(row.num_sps_ids_minus1, 0), 11000001, "num_sps_ids_minus1");
        expectLines(std::vector<ExpectedLine>(8, numInvalid(row.text)));
    }
}

TEST_F(HevcActiveParameterSets, firstIdentifierOutOfRange) {
    const struct {
        uint32_t id;
        const char* text;
    } rows[] = {{16, "16"}, {17, "17"}, {255, "255"}, {2147483648, "-2147483648"}, {4294967294, "-2"}};
    for (const auto& row : rows) {
        for (const uint32_t num : {0U, 1U, 2U, 15U}) {
            SCOPED_TRACE(std::to_string(row.id) + " first of " + std::to_string(num + 1));
            core().lines.clear();
            HevcActiveParameterSetsSyntax syntax = activeParameterSets(num, 0);
            syntax.active_seq_parameter_set_id[0] = row.id;
            expectStop(syntax, 11000001, "active_seq_parameter_set_id[0]");
            expectLines(std::vector<ExpectedLine>(8, idInvalid(row.text)));
        }
    }
}

TEST_F(HevcActiveParameterSets, bothOutOfRangeIsToldOfTheCount) {
    expectStop(activeParameterSets(16, 16), 11000001, "num_sps_ids_minus1");
    expectLines(std::vector<ExpectedLine>(8, numInvalid("16")));
}

TEST_F(HevcActiveParameterSets, furtherIdentifiersHaveNoLimit) {
    HevcActiveParameterSetsSyntax syntax;
    syntax.num_sps_ids_minus1 = 4;
    syntax.active_seq_parameter_set_id = {15, 16, 4294967294, 1000, 3};
    expectStop(syntax, 0, "active_seq_parameter_set_id[3]");
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, theElementsAheadAreDiscarded) {
    HevcActiveParameterSetsSyntax syntax = activeParameterSets(2, 3);
    syntax.active_video_parameter_set_id = 15;
    syntax.self_contained_cvs_flag = 1;
    syntax.no_parameter_set_update_flag = 1;
    expectStop(syntax, 0, "active_seq_parameter_set_id[1]");
    expectNoLines();
}

// The payload 0000 0 1 00100 1 010 011 00100, cut to 0, 1, 2 and 3 bytes. A code without a 1 bit is 0 and
// ends at the end of the data. There, each further code consumes one bit.
TEST_F(HevcActiveParameterSets, shortPayloads) {
    HevcActiveParameterSetsSyntax syntax = activeParameterSets(3, 0);
    syntax.no_parameter_set_update_flag = 1;
    const BitWriter payload = hevcSei(syntax);
    ASSERT_EQ(payload.bytes(), (Bytes{0x04, 0x94, 0xC8}));
    const uint64_t stops[] = {2, 8 + 1, 16, 18};
    for (size_t size = 0; size <= 3; ++size) {
        SCOPED_TRACE(size);
        PayloadStream stream(payload.bytesCutAt(size * 8));
        expectStopAt(stream, stops[size]);
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, identifiersBehindTheDataMoveTheBitOffsetPastTheEnd) {
    // 0000 0 1 000010000 1: num_sps_ids_minus1 15 and the first identifier. The next 14 are missing.
    PayloadStream stream(Bytes{0x04, 0x21});
    expectStopAt(stream, 16 + 14);
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, cutAtEveryBit) {
    for (const uint32_t num : {0U, 1U, 3U, 15U}) {
        HevcActiveParameterSetsSyntax syntax = activeParameterSets(num, 15);
        syntax.active_video_parameter_set_id = 9;
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            for (size_t bits = lead; bits <= payload.bitCount(); ++bits) {
                SCOPED_TRACE(std::to_string(num) + " after " + std::to_string(lead) + " cut at " +
                             std::to_string(bits));
                PayloadStream stream(payload.bytesCutAt(bits), lead);
                EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, 4), 0);
            }
        }
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, nothingToRead) {
    PayloadStream empty((Bytes()));
    expectStopAt(empty, 2);
    PayloadStream atEnd(Bytes{0xFF, 0xFF}, 16);
    expectStopAt(atEnd, 16 + 2);
    expectNoLines();
}

// The VPS identifier is not read. The flags take two bits, and num_sps_ids_minus1 reads zero bits up to the
// end. If no bit is left for it, it consumes one bit past the end, and so does the SPS identifier.
TEST_F(HevcActiveParameterSets, withoutABuffer) {
    for (uint64_t start = 0; start < 24; ++start) {
        SCOPED_TRACE(start);
        BufferlessStream stream(3);
        moveTo(stream, atBit(start));
        expectStopAt(stream, start + 2 < 24 ? 24 + 1 : 24 + 2);
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, payloadSizeIsNotLookedAt) {
    for (const int payloadSize : {INT_MIN, -1, 0, 1, INT_MAX}) {
        PayloadStream stream(Bytes{0x04, 0x94, 0xC9});
        EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, payloadSize), 0);
        EXPECT_EQ(cursorOf(stream), atBit(18));
    }
}

}  // namespace
}  // namespace qv_test
