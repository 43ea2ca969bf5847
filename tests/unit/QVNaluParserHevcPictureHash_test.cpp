// The H.265 decoded_picture_hash() payload, parserHevcPictureHash, alone and in the dispatchers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <numeric>
#include <string>
#include <type_traits>

#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SeiMessages.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(std::is_trivially_copyable<QVHevcSeiPictureHash>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiPictureHash>::value);
static_assert(std::is_same<decltype(QVHevcSeiPictureHash::picture_md5), uint8_t[3][16]>::value);
static_assert(std::is_same<decltype(QVHevcSeiPictureHash::md5Present), uint8_t>::value);

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

TEST_F(HevcPictureHash, D20_aMonochromePictureTakesWhatFollows) {
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

TEST_F(HevcPictureHash, payloadSizeIsNotUsed) {
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

// --- In the dispatchers ---

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

}  // namespace
}  // namespace qv_test
