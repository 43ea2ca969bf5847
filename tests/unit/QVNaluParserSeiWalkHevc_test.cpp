// The first message of an H.265 SEI unit, parserHevcDataToSei, and its two dispatchers, parserHevcSeiPrefix
// and parserHevcSeiSuffix.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <new>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "SeiMessages.h"
#include "SeiTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kPrefix = 39;
constexpr int kSuffix = 40;

ExpectedLine truncation(int type, int size, int left) {
    return {1, "parserPayloadParams",
            "parserPayloadParams SEI type " + std::to_string(type) + " size " + std::to_string(size) +
                " truncated at " + std::to_string(left) + "\n"};
}

const Bytes kPayload = {0x80, 0x00, 0xFF};

class SeiWalkHevc : public SeiTest {
protected:
    // unit is the SEI unit without its NAL unit header.
    int walk(int naluType, const Bytes& unit, const Requested& requested = {}) {
        return QVNaluParser::parserHevcDataToSei(naluType, unit.data(), sizeOf(unit), items, nullptr,
                                                 requested);
    }

    int prefix(QVByteStream& stream, int payloadType, int payloadSize, const Requested& requested = {}) {
        return QVNaluParser::parserHevcSeiPrefix(stream, payloadType, payloadSize, items, nullptr, requested);
    }

    int suffix(QVByteStream& stream, int payloadType, int payloadSize, const Requested& requested = {}) {
        return QVNaluParser::parserHevcSeiSuffix(stream, payloadType, payloadSize, items, nullptr, requested);
    }
};

// --- Only the first message ---

TEST_F(SeiWalkHevc, D14_theSecondMessageIsNeverRead) {
    const SeiMessage first[] = {seiMessage(5, kPayload), seiMessage(200, kPayload), seiMessage(147, {0x12}),
                                seiMessage(201, {})};
    for (const SeiMessage& message : first) {
        for (const int naluType : {kPrefix, kSuffix}) {
            SCOPED_TRACE(std::to_string(message.payloadType) + " in " + std::to_string(naluType));
            std::vector<KeptItem> expected;
            if (message.payloadType == 200) {
                expected.push_back({172, 200, true, kPayload});
            } else if (message.payloadType == 5 && naluType == kPrefix) {
                expected.push_back({172, 5, false, kPayload});
            }
            EXPECT_EQ(walk(naluType, seiUnit({message, seiMessage(5, {0xAA}), seiMessage(137, {0xBB})}),
                           {200, 202, 137}),
                      0);
            EXPECT_EQ(kept(), expected);
            clearItems();
            // The second message may even be broken.
            EXPECT_EQ(walk(naluType, seiMessages({message, {5, 99, {0xAA}}}), {200}), 0);
            EXPECT_EQ(kept(), expected);
            clearItems();
        }
    }
    expectNoLines();
}

TEST_F(SeiWalkHevc, noTrailingBitsAreLookedFor) {
    EXPECT_EQ(walk(kPrefix, {0x80, 0x01, 0xAA}, {128}), 0) << "unlike in H.264, 80 is no trailing bits";
    EXPECT_EQ(walk(kPrefix, {0x00, 0x01, 0xAA}, {0}), 0);
    EXPECT_EQ(walk(kSuffix, {0x80, 0x01, 0xAB}, {128}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 128, true, {0xAA}}, KeptItem{172, 0, true, {0xAA}},
                                    KeptItem{172, 128, true, {0xAB}}));
    EXPECT_EQ(walk(kPrefix, {0x00, 0x00, 0xAA}, {0}), 11000001) << "two zero bytes must be type 0, size 0";
    EXPECT_EQ(walk(kPrefix, {0x80}, {128}), 11000001) << "type 128, size 0";
    EXPECT_EQ(walk(kPrefix, {0x80}), 0);
    EXPECT_EQ(items.size(), 3U);
    expectNoLines();
}

TEST_F(SeiWalkHevc, theSmallestMessages) {
    EXPECT_EQ(walk(kPrefix, {0x05, 0x01, 0xAA}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 5, false, {0xAA}}));
    EXPECT_EQ(walk(kPrefix, {0x05, 0x00}), 11000001);
    EXPECT_EQ(walk(kPrefix, {0x05}), 11000001) << "a missing size must be size 0";
    EXPECT_EQ(walk(kPrefix, {0xC8, 0x00}), 0);
    EXPECT_EQ(walk(kPrefix, {0xC8}), 0);
    EXPECT_EQ(items.size(), 1U);
    expectNoLines();
}

// An empty unit is read as type 0 and size 0.
TEST_F(SeiWalkHevc, anEmptyUnit) {
    const Bytes unit = seiUnit({seiMessage(5, kPayload)});
    for (const int size : {0, -1, -1000, INT_MIN}) {
        for (const unsigned char* data : {unit.data(), static_cast<const unsigned char*>(nullptr)}) {
            SCOPED_TRACE(size);
            const auto parse = [&](int naluType, const Requested& requested) {
                return QVNaluParser::parserHevcDataToSei(naluType, data, size, items, nullptr, requested);
            };
            EXPECT_EQ(parse(kPrefix, {5}), 0);
            EXPECT_EQ(parse(kPrefix, {0}), 11000001);
            EXPECT_EQ(parse(kSuffix, {0}), 0);
            EXPECT_EQ(parse(1, {0}), 0);
        }
    }
    EXPECT_EQ(QVNaluParser::parserHevcDataToSei(kPrefix, nullptr, 5, items, nullptr, {0}), 11000001);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkHevc, extendedTypesAndSizes) {
    for (const unsigned type : {254U, 255U, 257U, 509U, 510U, 511U, 70000U}) {
        for (const size_t size : {1U, 254U, 255U, 256U, 509U, 510U, 511U}) {
            SCOPED_TRACE(std::to_string(type) + ", " + std::to_string(size));
            const Bytes payload(size, 0x41);
            for (const int naluType : {kPrefix, kSuffix}) {
                EXPECT_EQ(walk(naluType, seiUnit({seiMessage(type, payload)}), {static_cast<int>(type)}), 0);
                EXPECT_THAT(kept(), ElementsAre(KeptItem{172, type, true, payload}));
                clearItems();
            }
        }
    }
}

TEST_F(SeiWalkHevc, aPayloadBeyondTheUnit) {
    std::vector<ExpectedLine> lines;
    for (const SeiMessage& message : {SeiMessage{5, 3, {0xAA, 0xBB}}, SeiMessage{200, 255, Bytes(254, 0x41)},
                                      SeiMessage{0, 1, {}}, SeiMessage{147, 2, {0x12}}}) {
        SCOPED_TRACE(message.payloadType);
        for (const int naluType : {kPrefix, kSuffix}) {
            EXPECT_EQ(walk(naluType, seiMessages({message}), {0, 200}), 11000001);
            lines.push_back(truncation(static_cast<int>(message.payloadType),
                                       static_cast<int>(message.payloadSize), sizeOf(message.payload)));
        }
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectLines(lines);
}

// The message header is read before the unit's type is checked.
TEST_F(SeiWalkHevc, unitsThatAreNoSei) {
    std::vector<ExpectedLine> lines;
    for (const int naluType : {0, 1, 6, 19, 32, 38, 41, 63, -1, 295, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(naluType);
        EXPECT_EQ(walk(naluType, seiUnit({seiMessage(5, kPayload)}), {5}), 0);
        EXPECT_EQ(walk(naluType, seiUnit({seiMessage(5, {})}), {5}), 0);
        EXPECT_EQ(walk(naluType, {0x05, 0x09, 0xAA}, {5}), 11000001);
        lines.push_back(truncation(5, 9, 1));
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectLines(lines);
}

// --- Prefix units ---

const int kPrefixCapturedTypes[] = {1, 4, 5, 137};

const SeiMessage kPrefixParsedMessages[] = {
    {45, 1, {0xD0}},                     // id 0, cancelled
    {47, 1, {0xC0}},                     // cancelled
    {129, 1, {0x0F}},                    // one SPS, 0
    {144, 4, {0x03, 0xE8, 0x01, 0x90}},  // 1000, 400
    {147, 1, {0x12}},                    // ARIB STD-B67
    {256, 7, {0x01, 1, 2, 3, 4, 5, 6}},  // three CRCs
};

// Types that are not parsed in prefix units, although some are in other units.
const int kPrefixOtherTypes[] = {0,   2,   3,   6,   44,  46,  48,  56,  127, 128, 130, 132, 136,  138,
                                 143, 145, 146, 148, 200, 254, 255, 257, 260, 383, 510, 512, 70000};

TEST_F(SeiWalkHevc, prefixCapturedTypes) {
    for (const int type : kPrefixCapturedTypes) {
        for (const Requested& requested : {Requested{}, Requested{type}}) {
            SCOPED_TRACE(type);
            EXPECT_EQ(walk(kPrefix, seiUnit({seiMessage(static_cast<unsigned>(type), kPayload)}), requested),
                      0);
            EXPECT_THAT(kept(), ElementsAre(KeptItem{172, static_cast<uint32_t>(type), false, kPayload}))
                << "must be the same if requested";
            clearItems();
        }
    }
    expectNoLines();
}

TEST_F(SeiWalkHevc, prefixParsedTypesAreNotKept) {
    for (const SeiMessage& message : kPrefixParsedMessages) {
        SCOPED_TRACE(message.payloadType);
        EXPECT_EQ(walk(kPrefix, seiUnit({message})), 0);
        EXPECT_EQ(walk(kPrefix, seiUnit({message}), {static_cast<int>(message.payloadType)}), 0);
        EXPECT_THAT(kept(), IsEmpty());
    }
    expectNoLines();
}

TEST_F(SeiWalkHevc, prefixOtherTypesAreSkippedOrCaptured) {
    for (const int type : kPrefixOtherTypes) {
        SCOPED_TRACE(type);
        const Bytes unit = seiUnit({seiMessage(static_cast<unsigned>(type), kPayload)});
        EXPECT_EQ(walk(kPrefix, unit, {type - 1, type + 1}), 0);
        EXPECT_THAT(kept(), IsEmpty());
        EXPECT_EQ(walk(kPrefix, unit, {type}), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, static_cast<uint32_t>(type), true, kPayload}));
        clearItems();
    }
    expectNoLines();
}

TEST_F(SeiWalkHevc, anOrientationIsKeptAsText) {
    const Bytes quarterTurn = {0x48, 0x00, 0x10};  // hor_flip, 0x4000, persistence
    for (const Requested& requested : {Requested{}, Requested{47}}) {
        EXPECT_EQ(walk(kPrefix, seiUnit({seiMessage(47, quarterTurn)}), requested), 0);
        const std::string text =
            "HevcSeiDisplayOrientationInfo: hflip:1,vflip:0,anticlockwise_rotation:16384.";
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 47, false,
                                                 Bytes(text.c_str(), text.c_str() + text.size() + 1)}));
        clearItems();
    }
}

TEST_F(SeiWalkHevc, aFailingPrefixParser) {
    const Bytes seventeenSpsIds =
        BitWriter().u(6, "active_video_parameter_set_id and flags", 0).ue("num_sps_ids_minus1", 16).bytes();
    EXPECT_EQ(walk(kPrefix, seiUnit({seiMessage(129, seventeenSpsIds)})), 11000001);
    expectLines({{0, "parserHevcActiveParameterSets",
                  "parserHevcActiveParameterSets: num_sps_ids_minus1(16) is invalid!\n"}});
    EXPECT_EQ(walk(kSuffix, seiUnit({seiMessage(129, seventeenSpsIds)})), 0) << "not parsed in a suffix unit";
    EXPECT_EQ(core().lines.size(), 1U);
}

TEST_F(SeiWalkHevc, D28_anEmptyCapturedMessageFails) {
    for (const int type : {1, 4, 5, 137, 200, 132}) {
        EXPECT_EQ(walk(kPrefix, seiUnit({seiMessage(static_cast<unsigned>(type), {})}), {200, 132}), 11000001)
            << type;
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkHevc, requestedListsOfEveryShape) {
    const Bytes unit = seiUnit({seiMessage(200, kPayload)});
    for (const int naluType : {kPrefix, kSuffix}) {
        for (const Requested& requested :
             {Requested{200}, Requested{200, 1, 2}, Requested{1, 200, 2}, Requested{1, 2, 200},
              Requested{200, 200}, Requested{-1, INT_MIN, 200}}) {
            EXPECT_EQ(walk(naluType, unit, requested), 0);
            EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 200, true, kPayload})) << "once";
            clearItems();
        }
        for (const Requested& requested :
             {Requested{}, Requested{199, 201}, Requested{-56}, Requested{456}}) {
            EXPECT_EQ(walk(naluType, unit, requested), 0);
            EXPECT_THAT(kept(), IsEmpty());
        }
    }
}

// --- The stream's position after the prefix dispatcher ---

// Bytes with different values, enough for every parser.
Bytes countingBytes(uint8_t first, size_t size = 80) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i == 0 ? first : 0x40 + i);
    }
    return bytes;
}

struct PositionCase {
    const char* name;
    int payloadType;
    int payloadSize;
    Bytes bytes;
    Cursor start;
    Cursor expected;
};

TEST_F(SeiWalkHevc, prefixPositions) {
    const PositionCase cases[] = {
        {"45 by its syntax", 45, 9, {0x81, 0x81, 0x10, 0x00, 0x00, 0x00, 0xFF}, {0, 0, 7}, {6, 0, 7}},
        {"45 cancelled", 45, 9, {0xD0, 0xFF, 0xFF}, {0, 0, 7}, {0, 3, 7}},
        {"47 cancelled", 47, 9, {0xC0, 0xFF}, {0, 0, 7}, {0, 1, 7}},
        {"129 with one SPS", 129, 9, {0x0F, 0xFF}, {0, 0, 7}, {1, 0, 7}},
        {"144 whatever its size", 144, 0, countingBytes(3), {0, 0, 7}, {4, 0, 7}},
        {"147", 147, 9, countingBytes(3), {0, 0, 7}, {1, 0, 7}},
        {"147 of size 0", 147, 0, countingBytes(3), {0, 0, 7}, {1, 0, 7}},
        {"147 inside a byte", 147, 1, countingBytes(3), {2, 5, 4}, {3, 5, 4}},
        {"147 up to the end", 147, 1, {0xFF, 0xFF}, {1, 0, 7}, {2, 0, 7}},
        {"147 stops at the end", 147, 1, {0xFF, 0xFF}, {1, 5, 7}, {2, 0, 7}},
        {"147 at the end", 147, 1, {0xFF, 0xFF}, {2, 0, 7}, {2, 0, 7}},
        {"147 past the end", 147, 1, {0xFF, 0xFF}, {4, 3, 7}, {4, 3, 7}},
        {"132 is skipped by its size", 132, 5, countingBytes(1), {0, 0, 7}, {5, 0, 7}},
        {"a skip clears only the bit offset", 200, 2, countingBytes(1), {1, 3, 2}, {3, 0, 2}},
        {"a skip of 0 bytes", 200, 0, countingBytes(1), {1, 3, 2}, {1, 0, 2}},
        {"a skip to the end", 200, 4, Bytes(4, 0xFF), {0, 0, 7}, {4, 0, 7}},
        {"a skip past the end", 200, 5, Bytes(4, 0xFF), {0, 3, 7}, {0, 3, 7}},
        {"a skip in an empty stream", 200, 0, {}, {0, 3, 7}, {0, 3, 7}},
        {"a skip counts emulation prevention bytes", 200, 4, {0xAA, 0, 0, 3, 1}, {0, 0, 7}, {4, 0, 7}},
        // The sum of position and size wraps around in 64 bits.
        {"a size below 0", 200, -3, Bytes(8, 0xFF), {5, 3, 7}, {2, 0, 7}},
        {"a size below 0 to the start", 200, -5, Bytes(8, 0xFF), {5, 3, 7}, {0, 0, 7}},
        {"a size below 0 to before the start", 200, -6, Bytes(8, 0xFF), {5, 3, 7}, {5, 3, 7}},
        {"the smallest size", 200, INT_MIN, Bytes(8, 0xFF), {5, 3, 7}, {5, 3, 7}},
        {"a size below 0 back from past the end", 200, -3, Bytes(8, 0xFF), {11, 0, 7}, {8, 0, 7}},
        {"a negative type", -200, 3, Bytes(8, 0xFF), {1, 0, 7}, {4, 0, 7}},
    };
    for (const PositionCase& c : cases) {
        SCOPED_TRACE(c.name);
        SeiStream stream(c.bytes, c.start);
        EXPECT_EQ(prefix(stream, c.payloadType, c.payloadSize), 0);
        EXPECT_EQ(cursorOf(stream), c.expected);
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

// A capture reads payloadSize RBSP bytes, so the stream also moves over their emulation prevention bytes.
TEST_F(SeiWalkHevc, prefixCapturePositions) {
    const Bytes bytes = {0xAA, 0x00, 0x00, 0x03, 0x01, 0xBB, 0xCC};
    for (const int type : {1, 4, 5, 137, 200, 132}) {
        SCOPED_TRACE(type);
        SeiStream stream(bytes, {0, 5, 7});
        EXPECT_EQ(prefix(stream, type, 4, {200, 132}), 0);
        EXPECT_EQ(cursorOf(stream), (Cursor{5, 5, 7})) << "a capture must not change the bit offset";
        ASSERT_EQ(items.size(), 1U);
        EXPECT_EQ(kept()[0].payload, (Bytes{0xAA, 0x00, 0x00, 0x01}));
        clearItems();
    }
}

TEST_F(SeiWalkHevc, prefixCaptureOfASizeBelowOneFails) {
    for (const int type : {1, 4, 5, 137, 200}) {
        for (const int size : {0, -1, INT_MIN}) {
            SeiStream stream(Bytes(8, 0xFF), {2, 3, 4});
            EXPECT_EQ(prefix(stream, type, size, {200}), 11000001);
            EXPECT_EQ(cursorOf(stream), (Cursor{2, 3, 4}));
        }
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkHevc, aNegativeTypeIsCapturedWhenRequested) {
    SeiStream stream(Bytes(8, 0xFF));
    EXPECT_EQ(prefix(stream, -200, 1, {-200}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 4294967096U, true, {0xFF}}));
}

// --- The picture hash ---

// hash_type, and the number of bytes that its parser reads: MD5, CRC and checksum of three components,
// reserved values.
struct HashForm {
    uint8_t hash_type;
    uint64_t length;
};

const HashForm kHashForms[] = {{0, 49}, {1, 7}, {2, 13}, {3, 1}, {7, 1}, {255, 1}};

TEST_F(SeiWalkHevc, D13_aPrefixPictureHashIsType256) {
    for (const HashForm& form : kHashForms) {
        for (const int payloadSize : {0, 1, 17, 80, -1}) {
            for (const Requested& requested : {Requested{}, Requested{256, 132}}) {
                SCOPED_TRACE(std::to_string(form.hash_type) + ", size " + std::to_string(payloadSize));
                SeiStream stream(countingBytes(form.hash_type));
                EXPECT_EQ(prefix(stream, 256, payloadSize, requested), 0);
                EXPECT_EQ(cursorOf(stream), (Cursor{form.length, 0, 7}));
            }
        }
    }
    EXPECT_THAT(kept(), IsEmpty()) << "must not be captured, even if requested";
    expectNoLines();
}

TEST_F(SeiWalkHevc, D13_type132IsNoPictureHashInPrefixUnits) {
    for (const HashForm& form : kHashForms) {
        SCOPED_TRACE(static_cast<unsigned>(form.hash_type));
        const Bytes bytes = countingBytes(form.hash_type);
        SeiStream skipped(bytes);
        EXPECT_EQ(prefix(skipped, 132, 5), 0);
        EXPECT_EQ(cursorOf(skipped), (Cursor{5, 0, 7}));
        SeiStream captured(bytes);
        EXPECT_EQ(prefix(captured, 132, 5, {132}), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, Bytes(bytes.begin(), bytes.begin() + 5)}));
        clearItems();
    }
}

TEST_F(SeiWalkHevc, D13_type256IsNoPictureHashInSuffixUnits) {
    for (const HashForm& form : kHashForms) {
        SCOPED_TRACE(static_cast<unsigned>(form.hash_type));
        const Bytes bytes = countingBytes(form.hash_type);
        SeiStream skipped(bytes);
        EXPECT_EQ(suffix(skipped, 256, 5), 0);
        EXPECT_EQ(cursorOf(skipped), (Cursor{5, 0, 7}));
        SeiStream captured(bytes);
        EXPECT_EQ(suffix(captured, 256, 5, {256}), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 256, true, Bytes(bytes.begin(), bytes.begin() + 5)}));
        clearItems();
    }
}

TEST_F(SeiWalkHevc, D15_aSuffixHashIsCapturedFromWhereItsParserStopped) {
    for (const HashForm& form : kHashForms) {
        SCOPED_TRACE(static_cast<unsigned>(form.hash_type));
        const Bytes bytes = countingBytes(form.hash_type);
        SeiStream stream(bytes);
        EXPECT_EQ(suffix(stream, 132, 5, {132}), 0);
        const auto from = bytes.begin() + static_cast<ptrdiff_t>(form.length);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, Bytes(from, from + 5)}));
        EXPECT_EQ(cursorOf(stream), (Cursor{form.length + 5, 0, 7}));
        clearItems();
    }
}

// In a whole unit, the bytes after the hash are the trailing bits and zero bytes past the end of the unit.
TEST_F(SeiWalkHevc, D15_aSuffixHashOfAUnit) {
    const struct {
        const char* name;
        Bytes payload;
        Bytes captured;
    } cases[] = {
        {"three CRCs", countingBytes(1, 7), Bytes{0x80} + Bytes(6, 0)},
        {"three checksums", countingBytes(2, 13), Bytes{0x80} + Bytes(12, 0)},
        {"three MD5s", countingBytes(0, 49), Bytes{0x80} + Bytes(48, 0)},
        {"one MD5", countingBytes(0, 17), Bytes(17, 0)},
        // The second and third skips do not fit.
        {"one CRC", {0x01, 0x41, 0x42}, {0x80, 0x00, 0x00}},
        {"one checksum", {0x02, 0x41, 0x42, 0x43, 0x44}, {0x80, 0x00, 0x00, 0x00, 0x00}},
        {"reserved", {0x07, 0x41, 0x42}, {0x41, 0x42, 0x80}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes unit = seiUnit({seiMessage(132, c.payload)});
        EXPECT_EQ(walk(kSuffix, unit), 0);
        EXPECT_THAT(kept(), IsEmpty());
        EXPECT_EQ(walk(kSuffix, unit, {132}), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, c.captured}));
        clearItems();
        EXPECT_EQ(walk(kPrefix, unit, {132}), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, c.payload})) << "in a prefix unit";
        clearItems();
    }
    expectNoLines();
}

// The hash parser counts emulation prevention bytes as payload, the capture does not.
TEST_F(SeiWalkHevc, D15_emulationPreventionInASuffixHash) {
    const Bytes unit = seiUnit({seiMessage(132, {0x01, 0xAA, 0x00, 0x00, 0x01, 0xBB, 0xCC})});
    ASSERT_EQ(unit, (Bytes{0x84, 0x07, 0x01, 0xAA, 0x00, 0x00, 0x03, 0x01, 0xBB, 0xCC, 0x80}));
    EXPECT_EQ(walk(kSuffix, unit, {132}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 132, true, {0xCC, 0x80, 0, 0, 0, 0, 0}}));
}

// --- Suffix units ---

TEST_F(SeiWalkHevc, suffixTypesAreSkippedOrCaptured) {
    for (const int type : {0,   1,   3,   4,   5,   6,   22,  45,  47,  56,  128, 129, 130, 131,  133,
                           137, 144, 146, 147, 148, 200, 254, 255, 256, 257, 387, 388, 510, 70000}) {
        SCOPED_TRACE(type);
        const Bytes unit = seiUnit({seiMessage(static_cast<unsigned>(type), kPayload)});
        EXPECT_EQ(walk(kSuffix, unit, {type - 1, type + 1}), 0);
        EXPECT_THAT(kept(), IsEmpty());
        EXPECT_EQ(walk(kSuffix, unit, {type}), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, static_cast<uint32_t>(type), true, kPayload}));
        clearItems();
    }
    expectNoLines();
}

TEST_F(SeiWalkHevc, suffixPositions) {
    const PositionCase cases[] = {
        {"a skip", 5, 3, countingBytes(1), {1, 3, 2}, {4, 0, 2}},
        {"a skip of 0 bytes", 5, 0, countingBytes(1), {1, 3, 2}, {1, 0, 2}},
        {"a skip past the end", 5, 5, Bytes(4, 0xFF), {0, 3, 7}, {0, 3, 7}},
        {"a skip in an empty stream", 5, 0, {}, {0, 3, 7}, {0, 3, 7}},
        {"a skip counts emulation prevention bytes", 5, 4, {0xAA, 0, 0, 3, 1}, {0, 0, 7}, {4, 0, 7}},
        {"a type parsed in prefix units is skipped", 144, 9, countingBytes(1), {0, 0, 7}, {9, 0, 7}},
        {"so is the type parsed inline", 147, 9, countingBytes(1), {0, 0, 7}, {9, 0, 7}},
        {"CRC, then its size is skipped", 132, 7, countingBytes(1), {0, 0, 7}, {14, 0, 7}},
        {"checksum, then its size is skipped", 132, 13, countingBytes(2), {0, 0, 7}, {26, 0, 7}},
        {"MD5, then its size is skipped", 132, 31, countingBytes(0), {0, 0, 7}, {80, 0, 7}},
        {"MD5, then a skip that does not fit", 132, 32, countingBytes(0), {0, 0, 7}, {49, 0, 7}},
        {"reserved hash, then its size is skipped", 132, 4, countingBytes(9), {0, 0, 7}, {5, 0, 7}},
        {"a hash inside a byte keeps the bit offset", 132, 99, Bytes(20, 0x10), {1, 4, 7}, {8, 4, 7}},
        {"a size below 0", 132, -3, countingBytes(1), {0, 0, 7}, {4, 0, 7}},
        {"a size below 0 to before the start", 132, -8, countingBytes(1), {0, 0, 7}, {7, 0, 7}},
        {"the smallest size", 5, INT_MIN, Bytes(8, 0xFF), {5, 3, 7}, {5, 3, 7}},
    };
    for (const PositionCase& c : cases) {
        SCOPED_TRACE(c.name);
        SeiStream stream(c.bytes, c.start);
        EXPECT_EQ(suffix(stream, c.payloadType, c.payloadSize), 0);
        EXPECT_EQ(cursorOf(stream), c.expected);
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkHevc, suffixCapturePositions) {
    SeiStream stream({0xAA, 0x00, 0x00, 0x03, 0x01, 0xBB}, {0, 5, 7});
    EXPECT_EQ(suffix(stream, 5, 4, {5}), 0);
    EXPECT_EQ(cursorOf(stream), (Cursor{5, 5, 7}));
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 5, true, {0xAA, 0x00, 0x00, 0x01}}));
}

TEST_F(SeiWalkHevc, aSuffixCaptureThatFailsIsNotReported) {
    for (const int size : {0, -1, INT_MIN}) {
        for (const int type : {5, 132}) {
            SeiStream stream(countingBytes(9), {0, 0, 7});
            EXPECT_EQ(suffix(stream, type, size, {5, 132}), 0);
            EXPECT_EQ(cursorOf(stream), (Cursor{type == 132 ? 1U : 0U, 0, 7}));
        }
    }
    EXPECT_EQ(walk(kSuffix, seiUnit({seiMessage(5, {})}), {5}), 0);
    core().failPlayerAllocation = 1;
    EXPECT_EQ(walk(kSuffix, seiUnit({seiMessage(5, kPayload)}), {5}), 0);
    EXPECT_EQ(core().playerAllocations, 1);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

// --- Allocations and exceptions ---

TEST_F(SeiWalkHevc, withoutAWorkingCopyItIsTypeZeroAndSizeZero) {
    // A message that is captured, and a truncated one.
    for (const Bytes& unit : {seiUnit({seiMessage(5, kPayload)}), Bytes{0x05, 0x09, 0xAA}}) {
        const auto walkWithoutCopy = [&](int naluType, const Requested& requested) {
            const AllocationFault fault(Allocator::Malloc, 1);
            const int result = walk(naluType, unit, requested);
            EXPECT_TRUE(fault.triggered());
            return result;
        };
        EXPECT_EQ(walkWithoutCopy(kPrefix, {5}), 0);
        EXPECT_EQ(walkWithoutCopy(kPrefix, {0}), 11000001) << "the empty capture must fail";
        EXPECT_EQ(walkWithoutCopy(kSuffix, {0, 5}), 0);
        EXPECT_EQ(walkWithoutCopy(1, {0, 5}), 0);
    }
    EXPECT_EQ(core().playerAllocations, 0);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkHevc, aPrefixPayloadThatCannotBeAllocatedFails) {
    for (const int type : {1, 4, 5, 137, 200}) {
        core().playerAllocations = 0;
        core().failPlayerAllocation = 1;
        EXPECT_EQ(walk(kPrefix, seiUnit({seiMessage(static_cast<unsigned>(type), kPayload)}), {200}),
                  11000001)
            << type;
        EXPECT_EQ(core().playerAllocations, 1);
    }
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkHevc, aListThatCannotGrowThrows) {
    const Bytes unit = seiUnit({seiMessage(5, kPayload)});
    const Requested requested = {5};
    for (const int naluType : {kPrefix, kSuffix}) {
        const AllocationFault fault(Allocator::New, 1);
        EXPECT_THROW(walk(naluType, unit, requested), std::bad_alloc) << naluType;
        EXPECT_TRUE(fault.triggered());
    }
    EXPECT_THAT(kept(), IsEmpty());
    EXPECT_TRUE(core().blocks.empty()) << "a payload leaked";
}

TEST_F(SeiWalkHevc, anExceptionOfTheLogPassesThrough) {
    core().throwFromLog = true;
    EXPECT_THROW(walk(kPrefix, {0x05, 0x09, 0xAA}), LogFailure);
    EXPECT_THROW(walk(kSuffix, {0x05, 0x09, 0xAA}), LogFailure);
    EXPECT_THROW(walk(kPrefix, {0x81, 0x02, 0x00, 0x22}), LogFailure) << "active parameter sets";
    EXPECT_EQ(core().lines.size(), 3U);
    EXPECT_THAT(kept(), IsEmpty());
}

}  // namespace
}  // namespace qv_test
