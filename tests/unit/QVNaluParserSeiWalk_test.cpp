// The message header reader, parserPayloadParams, and the entry point, parserDataToSei. The walks have their
// own files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "QVNaluParser.h"
#include "SeiMessages.h"
#include "SeiTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string truncationText(int type, int size, int left) {
    return "parserPayloadParams SEI type " + std::to_string(type) + " size " + std::to_string(size) +
           " truncated at " + std::to_string(left) + "\n";
}

ExpectedLine truncation(int type, int size, int left) {
    return {1, "parserPayloadParams", truncationText(type, size, left)};
}

// --- parserPayloadParams ---

class SeiHeader : public SeiTest {
protected:
    struct Header {
        int result;
        int payloadType;
        int payloadSize;
    };

    static Header read(QVByteStream& stream, int startType = 0, int startSize = 0) {
        Header header = {0, startType, startSize};
        header.result = QVNaluParser::parserPayloadParams(stream, header.payloadType, header.payloadSize);
        return header;
    }
};

// Values around each additional ff_byte.
constexpr unsigned kSums[] = {0, 1, 127, 128, 254, 255, 256, 509, 510, 511, 764, 765, 1000};

TEST_F(SeiHeader, sumsOfEveryLength) {
    for (const unsigned type : kSums) {
        for (const unsigned size : kSums) {
            SCOPED_TRACE(std::to_string(type) + ", " + std::to_string(size));
            SeiStream stream(seiHeader(type, size) + Bytes(size, 0xAA));
            const Header header = read(stream);
            EXPECT_EQ(header.result, 0);
            EXPECT_EQ(header.payloadType, static_cast<int>(type));
            EXPECT_EQ(header.payloadSize, static_cast<int>(size));
            EXPECT_EQ(cursorOf(stream), (Cursor{seiHeader(type, size).size(), 0, 7}));
        }
    }
    expectNoLines();
}

TEST_F(SeiHeader, oneByteLessThanThePayloadIsTruncated) {
    std::vector<ExpectedLine> lines;
    for (const unsigned size : kSums) {
        if (size == 0) {
            continue;
        }
        SCOPED_TRACE(size);
        SeiStream stream(seiHeader(200, size) + Bytes(size - 1, 0xAA));
        const Header header = read(stream);
        EXPECT_EQ(header.result, 11000001);
        EXPECT_EQ(header.payloadType, 200);
        EXPECT_EQ(header.payloadSize, static_cast<int>(size));
        EXPECT_EQ(stream.bytePos, seiHeader(200, size).size()) << "the header must be consumed";
        lines.push_back(truncation(200, static_cast<int>(size), static_cast<int>(size) - 1));
    }
    expectLines(lines);
}

TEST_F(SeiHeader, golden) {
    SeiStream stream({0xFF, 0xFF, 0x01, 0xFF, 0x02, 0xAA});
    const Header header = read(stream);
    EXPECT_EQ(header.result, 11000001);
    EXPECT_EQ(header.payloadType, 511);
    EXPECT_EQ(header.payloadSize, 257);
    expectLines({{1, "parserPayloadParams", "parserPayloadParams SEI type 511 size 257 truncated at 1\n"}});
}

TEST_F(SeiHeader, endsWithTheData) {
    const struct {
        Bytes bytes;
        int result, type, size;
    } cases[] = {
        {{}, 0, 0, 0},
        {{0x05}, 0, 5, 0},
        {{0xFF}, 0, 255, 0},
        {{0xFF, 0xFF}, 0, 510, 0},
        {{0xFF, 0x05}, 0, 260, 0},
        {{0x05, 0x00}, 0, 5, 0},
        {{0x05, 0x01}, 11000001, 5, 1},
        {{0x05, 0xFF}, 11000001, 5, 255},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.bytes));
        SeiStream stream(c.bytes);
        const Header header = read(stream);
        EXPECT_EQ(header.result, c.result);
        EXPECT_EQ(header.payloadType, c.type);
        EXPECT_EQ(header.payloadSize, c.size);
        EXPECT_EQ(stream.bytePos, c.bytes.size());
    }
    expectLines({truncation(5, 1, 0), truncation(5, 255, 0)});
}

TEST_F(SeiHeader, addsToTheValuesPassedIn) {
    SeiStream stream({0x05, 0x02, 0xAA, 0xAA, 0xAA});
    const Header header = read(stream, 100, 1);
    EXPECT_EQ(header.result, 0);
    EXPECT_EQ(header.payloadType, 105);
    EXPECT_EQ(header.payloadSize, 3);
}

TEST_F(SeiHeader, sumsWrapAt32Bits) {
    const struct {
        Bytes bytes;
        int startType, startSize;
        int result, type, size, left;
    } cases[] = {
        {{0x01, 0x00}, INT_MAX, 0, 0, INT_MIN, 0, 0},
        {{0xFF, 0xFF, 0x03, 0x00}, INT_MAX, 0, 0, INT_MIN + 512, 0, 0},
        {{0x01, 0x00}, -1, 0, 0, 0, 0, 0},
        {{0x00, 0x01}, 0, -1, 0, 0, 0, 0},
        {{0x00, 0x03, 0xAA, 0xAA}, 0, -1, 0, 0, 2, 0},
        {{0x00, 0x03, 0xAA}, 0, -1, 11000001, 0, 2, 1},
        // A size above 2147483647 is negative as a number and always too large.
        {{0x00, 0x01, 0xAA}, 0, INT_MAX, 11000001, 0, INT_MIN, 1},
        {{0x00, 0xFF, 0x00}, 0, INT_MAX, 11000001, 0, INT_MIN + 254, 0},
        {{0x00, 0x00, 0xAA}, 0, -1, 11000001, 0, -1, 1},
        {{0x00, 0x00, 0xAA}, 0, INT_MIN, 11000001, 0, INT_MIN, 1},
        {{0x00, 0x00, 0xAA}, 0, INT_MAX, 11000001, 0, INT_MAX, 1},
    };
    std::vector<ExpectedLine> lines;
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.bytes) + " from " + std::to_string(c.startType) + ", " +
                     std::to_string(c.startSize));
        SeiStream stream(c.bytes);
        const Header header = read(stream, c.startType, c.startSize);
        EXPECT_EQ(header.result, c.result);
        EXPECT_EQ(header.payloadType, c.type);
        EXPECT_EQ(header.payloadSize, c.size);
        if (c.result != 0) {
            lines.push_back(truncation(c.type, c.size, c.left));
        }
    }
    expectLines(lines);
}

// size - bytePos is unsigned. Past the end it wraps to almost 2^64 bytes left.
TEST_F(SeiHeader, pastTheEndTheBytesLeftWrap) {
    const struct {
        uint64_t past;
        int startSize;
        int result;
        int left;
    } cases[] = {
        {1, 0, 0, 0},  {1, 1000, 0, 0},      {1, INT_MAX, 0, 0},    {1, -1, 0, 0},
        {2, -2, 0, 0}, {9, -10, 0, 0},       {2, -1, 11000001, -2}, {9, -8, 11000001, -9},
        {0, 0, 0, 0},  {0, -1, 11000001, 0}, {0, 1, 11000001, 0},
    };
    std::vector<ExpectedLine> lines;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.past) + " past, size " + std::to_string(c.startSize));
        const Cursor cursor = {3 + c.past, 5, 2};
        SeiStream stream({0x05, 0x02, 0xAA}, cursor);
        const Header header = read(stream, 7, c.startSize);
        EXPECT_EQ(header.result, c.result);
        EXPECT_EQ(header.payloadType, 7) << "nothing must be read";
        EXPECT_EQ(header.payloadSize, c.startSize);
        EXPECT_EQ(cursorOf(stream), cursor);
        if (c.result != 0) {
            lines.push_back(truncation(7, c.startSize, c.left));
        }
    }
    expectLines(lines);
}

TEST_F(SeiHeader, readsWholeBytesWhateverTheBitCountersSay) {
    SeiStream stream({0xAA, 0xFF, 0x05, 0x01, 0xBB}, {1, 3, 2});
    const Header header = read(stream);
    EXPECT_EQ(header.result, 0);
    EXPECT_EQ(header.payloadType, 260);
    EXPECT_EQ(header.payloadSize, 1);
    EXPECT_EQ(cursorOf(stream), (Cursor{4, 3, 2}));
}

// The bytes 00 00 03 are the end of type 255, size 0, and the type of the next message.
TEST_F(SeiHeader, D27_emulationPreventionIsData) {
    SeiStream stream({0xFF, 0x00, 0x00, 0x03, 0x01, 0x01, 0xAA});
    Header header = read(stream);
    EXPECT_EQ(header.payloadType, 255);
    EXPECT_EQ(header.payloadSize, 0);
    header = read(stream);
    EXPECT_EQ(header.payloadType, 3);
    EXPECT_EQ(header.payloadSize, 1);
    EXPECT_EQ(stream.bytePos, 5U);
}

TEST_F(SeiHeader, aNullBufferReadsAsZeroBytes) {
    QVByteStream stream;
    stream.size = 4;
    const Header header = read(stream, 9, 2);
    EXPECT_EQ(header.result, 0);
    EXPECT_EQ(header.payloadType, 9);
    EXPECT_EQ(header.payloadSize, 2);
    EXPECT_EQ(stream.bytePos, 2U);
}

TEST_F(SeiHeader, anExceptionOfTheLogPassesThrough) {
    SeiStream stream({0x05, 0x09, 0xAA});
    core().throwFromLog = true;
    int type = 0;
    int size = 0;
    EXPECT_THROW(QVNaluParser::parserPayloadParams(stream, type, size), LogFailure);
    expectLines({truncation(5, 9, 1)});
}

// --- parserDataToSei ---

class SeiEntry : public SeiTest {
protected:
    int parse(uint32_t codec, const Bytes& data, const QVNaluParser::NaluInfo& nalu,
              const Requested& requested = {}, void* sps = nullptr) {
        return QVNaluParser::parserDataToSei(static_cast<QVCodecID>(codec), data.data(), nalu, items, sps,
                                             requested);
    }
};

const Bytes kUserData = {0x11, 0x22, 0x33};

TEST_F(SeiEntry, avcSkipsOneHeaderByte) {
    const Bytes data = Bytes{0xEE, 0x06} + seiUnit({seiMessage(5, kUserData)}) + Bytes{0xEE};
    EXPECT_EQ(parse(26, data, {6, 1, sizeOf(data) - 2, false}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, kUserData}));
}

TEST_F(SeiEntry, hevcSkipsTwoHeaderBytes) {
    const Bytes data = Bytes{0xEE, 0x4E, 0x01} + seiUnit({seiMessage(5, kUserData)}) + Bytes{0xEE};
    EXPECT_EQ(parse(172, data, {39, 1, sizeOf(data) - 2, false}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 5, false, kUserData}));
}

TEST_F(SeiEntry, theLengthBoundsTheUnit) {
    const Bytes avc = Bytes{0x06} + seiUnit({seiMessage(5, kUserData)});
    EXPECT_EQ(parse(26, avc, {6, 0, 5, false}), 11000001) << "the unit has only two payload bytes";
    const Bytes hevc = Bytes{0x4E, 0x01} + seiUnit({seiMessage(5, kUserData)});
    EXPECT_EQ(parse(172, hevc, {39, 0, 6, false}), 11000001);
    EXPECT_THAT(kept(), IsEmpty());
    expectLines({truncation(5, 3, 2), truncation(5, 3, 2)});
}

TEST_F(SeiEntry, avcUnitTypeIsNotTested) {
    const Bytes data = Bytes{0x06} + seiUnit({seiMessage(5, kUserData)});
    for (const uint32_t type : {0U, 1U, 5U, 6U, 7U, 39U, 4000000000U}) {
        EXPECT_EQ(parse(26, data, {type, 0, sizeOf(data), true}), 0);
    }
    EXPECT_EQ(items.size(), 7U);
}

// The unit's type comes from the NaluInfo, not from the header bytes.
TEST_F(SeiEntry, hevcUnitTypeIsThatOfTheEntry) {
    const Bytes data = Bytes{0x4E, 0x01} + seiUnit({seiMessage(5, kUserData)});
    EXPECT_EQ(parse(172, data, {40, 0, sizeOf(data), false}, {5}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 5, true, kUserData})) << "must be walked as a suffix unit";
    EXPECT_EQ(parse(172, data, {1, 0, sizeOf(data), false}, {5}), 0);
    EXPECT_EQ(items.size(), 1U);
}

TEST_F(SeiEntry, otherCodecsHoldNoSei) {
    const Bytes avc = Bytes{0x06} + seiUnit({seiMessage(5, kUserData)});
    const Bytes hevc = Bytes{0x4E, 0x01} + seiUnit({seiMessage(5, kUserData)});
    for (const uint32_t codec : {0U, 1U, 25U, 27U, 171U, 173U, 26U << 8, UINT32_MAX}) {
        EXPECT_EQ(parse(codec, avc, {6, 0, sizeOf(avc), false}, {5}), 0);
        EXPECT_EQ(parse(codec, hevc, {39, 0, sizeOf(hevc), false}, {5}), 0);
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiEntry, nullDataHoldsNoSei) {
    for (const uint32_t codec : {26U, 172U, 99U}) {
        for (const int length : {100, 2, 0, -1}) {
            EXPECT_EQ(QVNaluParser::parserDataToSei(static_cast<QVCodecID>(codec), nullptr,
                                                    {39, 5, length, false}, items, nullptr, {0}),
                      0);
        }
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

// Units without bytes after the header. The pointer to them must not even be computed.
TEST_F(SeiEntry, lengthsWithoutABody) {
    const Bytes data = {0x4E};
    for (const int length : {2, 1, 0, -1, -2, -1000, INT_MIN, INT_MIN + 1}) {
        SCOPED_TRACE(length);
        if (length < 2) {
            EXPECT_EQ(parse(26, data, {6, 0, length, false}, {0}), 0);
        }
        EXPECT_EQ(parse(172, data, {39, 0, length, false}), 0);
        EXPECT_EQ(parse(172, data, {40, 0, length, false}, {0}), 0);
        EXPECT_EQ(parse(172, data, {39, 0, length, false}, {0}), 11000001)
            << "an empty stream must be type 0, size 0, whose capture fails";
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiEntry, lengthsWithLessThanAMessage) {
    const Bytes avc = {0x06, 0x05, 0x00};
    EXPECT_EQ(parse(26, avc, {6, 0, 2, false}), 0);
    EXPECT_EQ(parse(26, avc, {6, 0, 3, false}), 0) << "two bytes must not be read as a message";
    const Bytes hevc = {0x4E, 0x01, 0x05, 0x00};
    EXPECT_EQ(parse(172, hevc, {39, 0, 3, false}), 11000001) << "type 5 with a missing size must be size 0";
    EXPECT_EQ(parse(172, hevc, {39, 0, 4, false}), 11000001) << "type 5, size 0";
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiEntry, passesTheAvcSpsOn) {
    const Bytes data = Bytes{0x06} + seiUnit({seiMessage(0, {0x80}), seiMessage(5, kUserData)});
    QVAvcSps sps{};
    EXPECT_EQ(parse(26, data, {6, 0, sizeOf(data), false}, {}, &sps), 0);
    EXPECT_EQ(items.size(), 1U);
    expectNoLines();
    EXPECT_EQ(parse(26, data, {6, 0, sizeOf(data), false}), 11000001);
    EXPECT_EQ(items.size(), 1U);
    ASSERT_EQ(core().lines.size(), 1U);
    EXPECT_EQ(core().lines[0].function, "parserAvcBufferingPeriod");
}

TEST_F(SeiEntry, appendsToTheList) {
    const Bytes avc = Bytes{0x06} + seiUnit({seiMessage(5, {0xA0})});
    const Bytes hevc = Bytes{0x4E, 0x01} + seiUnit({seiMessage(137, {0xB0})});
    EXPECT_EQ(parse(26, avc, {6, 0, sizeOf(avc), false}), 0);
    EXPECT_EQ(parse(172, hevc, {39, 0, sizeOf(hevc), false}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, {0xA0}}, KeptItem{172, 137, false, {0xB0}}));
}

}  // namespace
}  // namespace qv_test
