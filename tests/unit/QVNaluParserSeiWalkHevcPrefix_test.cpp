// The messages of an H.265 prefix SEI unit and their dispatcher, parserHevcSeiPrefix.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "QVNaluParser.h"
#include "SeiWalkTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

}  // namespace
}  // namespace qv_test
