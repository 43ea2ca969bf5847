// parserAvcDataToSei: the messages that are parsed, captured or skipped, and parsers that fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <string>

#include "QVNaluParser.h"
#include "SeiWalkTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// --- Dispatch ---

const unsigned kAvcCapturedTypes[] = {1, 5};

// Complete, valid payloads.
const SeiMessage kAvcParsedMessages[] = {
    {0, 1, {0x80}},                                                         // seq_parameter_set_id 0
    {4, 10, {0xB5, 0x00, 0x31, 0x41, 0x42, 0x43, 0x44, 0x01, 0x02, 0x03}},  // an unknown identifier
    {6, 1, {0x84}},                                                         // recovery_frame_cnt 0
    {45, 1, {0xD0}},                                                        // id 0, cancelled
    {47, 1, {0xC0}},                                                        // cancelled
    {56, 4, {0x01, 0x00, 0x10, 0x68}},                                      // a quality metric
    {147, 1, {0x12}},                                                       // ARIB STD-B67
};

// Types that are not parsed in H.264 units. Some are parsed in H.265 units, under this or another number.
const unsigned kAvcOtherTypes[] = {2,   3,   7,   19,  44,  46,  48,  55,  57,  127, 129, 132,
                                   137, 144, 146, 148, 200, 254, 255, 256, 257, 383, 510, 70000};

TEST_F(SeiWalkAvc, capturedTypes) {
    for (const unsigned type : kAvcCapturedTypes) {
        for (const Requested& requested : {Requested{}, Requested{static_cast<int>(type)}}) {
            SCOPED_TRACE(type);
            const Bytes payload = {0x80, 0x00, 0xFF};
            EXPECT_EQ(walk(seiUnit({seiMessage(type, payload), userData()}), requested), 0);
            EXPECT_THAT(kept(), ElementsAre(KeptItem{26, type, false, payload}, kKeptUserData))
                << "must be the same if requested";
            clearItems();
        }
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, parsedTypesAreNotKept) {
    QVAvcSps sps{};
    for (const SeiMessage& message : kAvcParsedMessages) {
        for (const Requested& requested : {Requested{}, Requested{static_cast<int>(message.payloadType)}}) {
            SCOPED_TRACE(message.payloadType);
            EXPECT_EQ(walk(seiUnit({message, userData()}), requested, &sps), 0);
            EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
            clearItems();
        }
    }
    expectNoLines();
}

// The rest of a payload that its parser does not read is skipped.
TEST_F(SeiWalkAvc, goesOnAtTheEndOfThePayload) {
    QVAvcSps sps{};
    for (const SeiMessage& message : kAvcParsedMessages) {
        for (const size_t extra : {1U, 2U, 7U, 255U}) {
            SCOPED_TRACE(std::to_string(message.payloadType) + " + " + std::to_string(extra));
            const SeiMessage longer = seiMessage(message.payloadType, message.payload + Bytes(extra, 0x55));
            EXPECT_EQ(walk(seiUnit({longer, userData()}), {}, &sps), 0);
            EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
            clearItems();
        }
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, otherTypesAreSkipped) {
    for (const unsigned type : kAvcOtherTypes) {
        SCOPED_TRACE(type);
        for (const Bytes& payload : {Bytes{}, Bytes{0x80}, Bytes(255, 0x41)}) {
            EXPECT_EQ(walk(seiUnit({seiMessage(type, payload), userData()}),
                           {static_cast<int>(type) - 1, static_cast<int>(type) + 1}),
                      0);
            EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
            clearItems();
        }
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, otherTypesAreCapturedWhenRequested) {
    for (const unsigned type : kAvcOtherTypes) {
        SCOPED_TRACE(type);
        const Bytes payload = {0x80, 0x00, 0xFF};
        EXPECT_EQ(walk(seiUnit({seiMessage(type, payload), userData()}), {static_cast<int>(type)}), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{26, type, true, payload}, kKeptUserData));
        clearItems();
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, userDataThenARequestedType) {
    EXPECT_EQ(walk(seiUnit({userData(), seiMessage(200, {0x77})}), {200}), 0);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData, KeptItem{26, 200, true, {0x77}}));
}

TEST_F(SeiWalkAvc, requestedListsOfEveryShape) {
    const Bytes unit = seiUnit({seiMessage(200, {0x77})});
    for (const Requested& requested :
         {Requested{200}, Requested{200, 1, 2}, Requested{1, 200, 2}, Requested{1, 2, 200},
          Requested{200, 200}, Requested{7, 200, 9, 200, 7}, Requested{-1, INT_MIN, 200}}) {
        SCOPED_TRACE(::testing::PrintToString(requested));
        EXPECT_EQ(walk(unit, requested), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 200, true, {0x77}})) << "once";
        clearItems();
    }
    // In 8 bits, -56 is 200.
    for (const Requested& requested :
         {Requested{}, Requested{199, 201}, Requested{-56}, Requested{456}, Requested{-200}}) {
        SCOPED_TRACE(::testing::PrintToString(requested));
        EXPECT_EQ(walk(unit, requested), 0);
        EXPECT_THAT(kept(), IsEmpty());
    }
}

// --- Failing parsers ---

struct FailingPayload {
    const char* name;
    SeiMessage message;
    const char* function;  // the function that logs; null: nothing is logged
    std::string text;      // the beginning of the line
};

TEST_F(SeiWalkAvc, aFailingParserEndsTheWalk) {
    const FailingPayload cases[] = {
        {"buffering period of an identifier above 31", seiMessage(0, {0x04, 0x20}),
         "parserAvcBufferingPeriod", "parserAvcBufferingPeriod: non-existing SPS "},
        {"registered user data of 6 bytes", seiMessage(4, Bytes(6, 0xB5)), "parserAvcRegisteredUserData",
         "parserAvcRegisteredUserData: size:6 error.\n"},
        {"an active format of no bytes", seiMessage(4, {0xB5, 0x00, 0x31, 'D', 'T', 'G', '1'}),
         "parserAvcRegisteredUserDataAfd", "parserAvcRegisteredUserData afd: size:-1 error.\n"},
        {"an active format of one byte", seiMessage(4, {0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x41}),
         "parserAvcRegisteredUserDataAfd", "parserAvcRegisteredUserData afd: size:-1 error 2.\n"},
        {"captions of two bytes", seiMessage(4, {0xB5, 0x00, 0x31, 'G', 'A', '9', '4', 0x03, 0xC1}), nullptr,
         ""},
        {"recovery point", seiMessage(6, recoveryPoint(65536)), "parserAvcRecoveryPoint",
         "parserAvcSeiRecoveryPoint: recovery_frame_cnt(65536) is out of range.\n"},
    };
    QVAvcSps sps{};
    for (const FailingPayload& c : cases) {
        SCOPED_TRACE(c.name);
        core().lines.clear();
        EXPECT_EQ(walk(seiUnit({userData(), c.message, userData()}), {}, &sps), 11000001);
        EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
        clearItems();
        ASSERT_EQ(core().lines.size(), c.function != nullptr ? 1U : 0U);
        if (c.function != nullptr) {
            EXPECT_EQ(core().lines[0].level, 0);
            EXPECT_EQ(core().lines[0].function, c.function);
            EXPECT_THAT(core().lines[0].text, StartsWith(c.text));
        }
    }
}

TEST_F(SeiWalkAvc, aBufferingPeriodWithoutAnSpsEndsTheWalk) {
    EXPECT_EQ(walk(seiUnit({userData(), seiMessage(0, {0x80}), userData()})), 11000001);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
    ASSERT_EQ(core().lines.size(), 1U);
    EXPECT_EQ(core().lines[0].level, 0);
    EXPECT_EQ(core().lines[0].function, "parserAvcBufferingPeriod");
    EXPECT_THAT(core().lines[0].text, StartsWith("parserAvcBufferingPeriod: bufferingPeriod(0x"));
}

TEST_F(SeiWalkAvc, recoveryFrameCountLimits) {
    for (const uint32_t count : {0U, 1U, 65535U}) {
        EXPECT_EQ(walk(seiUnit({seiMessage(6, recoveryPoint(count)), userData()})), 0) << count;
    }
    EXPECT_EQ(items.size(), 3U);
    expectNoLines();
    // The units have no emulation prevention bytes: the plain cursor would read one as part of the longest
    // code.
    for (const uint32_t count : {65536U, 65537U, 4294967294U}) {
        EXPECT_EQ(walk(seiMessages({seiMessage(6, recoveryPoint(count)), userData()})), 11000001) << count;
    }
    EXPECT_EQ(items.size(), 3U);
    expectLines({badRecovery(65536), badRecovery(65537), badRecovery(4294967294U)});
}

}  // namespace
}  // namespace qv_test
