// The messages of an H.265 suffix SEI unit and their dispatcher, parserHevcSeiSuffix; the picture hash in
// both dispatchers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>

#include "QVNaluParser.h"
#include "SeiWalkTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

}  // namespace
}  // namespace qv_test
