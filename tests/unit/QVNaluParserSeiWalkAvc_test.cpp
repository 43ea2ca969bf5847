// The walk over the messages of an H.264 SEI unit, parserAvcDataToSei.
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
using ::testing::StartsWith;

ExpectedLine truncation(int type, int size, int left) {
    return {1, "parserPayloadParams",
            "parserPayloadParams SEI type " + std::to_string(type) + " size " + std::to_string(size) +
                " truncated at " + std::to_string(left) + "\n"};
}

ExpectedLine badRecovery(unsigned recovery_frame_cnt) {
    return {0, "parserAvcRecoveryPoint",
            "parserAvcSeiRecoveryPoint: recovery_frame_cnt(" + std::to_string(recovery_frame_cnt) +
                ") is out of range.\n"};
}

const Bytes kUserData = {0x11, 0x22};
const KeptItem kKeptUserData = {26, 5, false, kUserData};

SeiMessage userData() {
    return seiMessage(5, kUserData);
}

// recovery_point() with this count and all flags 0.
Bytes recoveryPoint(uint32_t recovery_frame_cnt) {
    return BitWriter()
        .ue("recovery_frame_cnt", recovery_frame_cnt)
        .u(4, "flags and changing_slice_group_idc", 0)
        .alignZero()
        .bytes();
}

class SeiWalkAvc : public SeiTest {
protected:
    // unit is the SEI unit without its NAL unit header.
    int walk(const Bytes& unit, const Requested& requested = {}, QVAvcSps* sps = nullptr) {
        return QVNaluParser::parserAvcDataToSei(unit.data(), sizeOf(unit), items, sps, requested);
    }
};

// --- Where a walk begins and ends ---

TEST_F(SeiWalkAvc, recoveryPointAndTrailingBits) {
    EXPECT_EQ(walk({0x06, 0x01, 0x80, 0x80}), 0);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkAvc, everyMessageOfAUnit) {
    EXPECT_EQ(walk(seiUnit({userData(), seiMessage(1, {0x99}), userData(), seiMessage(200, {0x77, 0x78}),
                            seiMessage(4, Bytes(9, 0x41)), seiMessage(1, {0x9A})}),
                   {200}),
              0);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData, KeptItem{26, 1, false, {0x99}}, kKeptUserData,
                                    KeptItem{26, 200, true, {0x77, 0x78}}, KeptItem{26, 1, false, {0x9A}}));
    expectNoLines();
}

struct StopCase {
    const char* name;
    Bytes unit;
};

// Bytes at which a walk stops. If it did not, it would fail or capture a message.
const StopCase kStops[] = {
    {"nothing", {}},
    {"one byte", {0x05}},
    {"two bytes", {0x05, 0x00}},
    {"two bytes of an extended type", {0xFF, 0xFF}},
    {"two zero bytes", {0x00, 0x00, 0x05}},
    {"two zero bytes and a message", {0x00, 0x00, 0x05, 0x01, 0xAA}},
    {"a buffering period of size 0", {0x00, 0x00, 0x80, 0x80, 0x80}},
    {"trailing bits", {0x80, 0x00, 0x00}},
    {"trailing bits and a message", {0x80, 0x05, 0x01, 0xAA, 0x80}},
    {"a message of type 128", {0x80, 0x02, 0xAA, 0xBB, 0x80}},
    {"a truncated message of type 128", {0x80, 0x09, 0xAA, 0xBB, 0x80}},
};

TEST_F(SeiWalkAvc, D25_stopsAtTheStart) {
    for (const StopCase& c : kStops) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(walk(c.unit, {0, 5, 128, 255}), 0);
        EXPECT_THAT(kept(), IsEmpty());
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, D25_stopsBehindAMessage) {
    const SeiMessage before[] = {userData(), seiMessage(200, {0x31}), seiMessage(300, Bytes(255, 0x31)),
                                 seiMessage(147, {0x12})};
    for (const StopCase& c : kStops) {
        for (const SeiMessage& message : before) {
            SCOPED_TRACE(c.name + std::string(" after type ") + std::to_string(message.payloadType));
            EXPECT_EQ(walk(seiMessages({message}) + c.unit, {0, 128, 200, 255, 300}), 0);
            EXPECT_EQ(items.size(), message.payloadType == 147 ? 0U : 1U);
            clearItems();
        }
    }
    expectNoLines();
}

// Bytes that differ from a stop in one byte do not stop the walk.
TEST_F(SeiWalkAvc, doesNotStop) {
    const struct {
        const char* name;
        Bytes unit;
        KeptItem expected;
    } cases[] = {
        {"three bytes", {0x05, 0x01, 0xAA}, {26, 5, false, {0xAA}}},
        {"a payload of one zero byte", {0x01, 0x01, 0x00}, {26, 1, false, {0x00}}},
        {"type 127", {0x7F, 0x01, 0xAA}, {26, 127, true, {0xAA}}},
        {"type 129", {0x81, 0x01, 0xAA}, {26, 129, true, {0xAA}}},
        {"type 383, its second byte is 80", {0xFF, 0x80, 0x01, 0xAA}, {26, 383, true, {0xAA}}},
        {"size 128", Bytes{0x05, 0x80} + Bytes(128, 0xAA), {26, 5, false, Bytes(128, 0xAA)}},
        {"a payload of 80", {0x05, 0x01, 0x80}, {26, 5, false, {0x80}}},
        {"a payload of zero bytes", {0x05, 0x02, 0x00, 0x00}, {26, 5, false, {0x00, 0x00}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(walk(c.unit, {127, 129, 383}), 0);
        EXPECT_THAT(kept(), ElementsAre(c.expected));
        clearItems();
        EXPECT_EQ(walk(seiMessages({userData()}) + c.unit, {127, 129, 383}), 0);
        EXPECT_THAT(kept(), ElementsAre(kKeptUserData, c.expected));
        clearItems();
    }
}

TEST_F(SeiWalkAvc, zeroAndNonZeroIsABufferingPeriod) {
    EXPECT_EQ(walk({0x00, 0x01, 0x80}), 11000001) << "the buffering period must fail without an SPS";
    EXPECT_EQ(core().lines.size(), 1U);
}

TEST_F(SeiWalkAvc, sizesBelowOneAndNullHoldNoMessage) {
    const Bytes unit = seiUnit({userData()});
    for (const int size : {0, -1, -1000, INT_MIN}) {
        EXPECT_EQ(QVNaluParser::parserAvcDataToSei(unit.data(), size, items, nullptr, {0, 5}), 0);
        EXPECT_EQ(QVNaluParser::parserAvcDataToSei(nullptr, size, items, nullptr, {0, 5}), 0);
    }
    EXPECT_EQ(QVNaluParser::parserAvcDataToSei(nullptr, 5, items, nullptr, {0, 5}), 0);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

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

// --- Messages of size 0 ---

TEST_F(SeiWalkAvc, D28_anEmptyCapturedMessageEndsTheWalk) {
    for (const unsigned type : {1U, 5U, 200U, 300U}) {
        SCOPED_TRACE(type);
        EXPECT_EQ(walk(seiUnit({userData(), seiMessage(type, {}), userData()}), {200, 300}), 11000001);
        EXPECT_THAT(kept(), ElementsAre(kKeptUserData)) << "earlier items must stay";
        clearItems();
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, anEmptySkippedMessageDoesNot) {
    EXPECT_EQ(walk(seiUnit({seiMessage(200, {}), seiMessage(300, {}), userData()})), 0);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
}

// --- Truncation ---

TEST_F(SeiWalkAvc, aPayloadBeyondTheUnitEndsTheWalk) {
    const SeiMessage truncated[] = {
        {5, 4, {0xAA, 0xBB, 0xCC}}, {6, 2, {0x84}},         {200, 3, {0xAA, 0xBB}}, {147, 2, {0x12}},
        {300, 255, Bytes(254, 1)},  {5, 511, {0x01, 0x02}},
    };
    std::vector<ExpectedLine> lines;
    for (const SeiMessage& message : truncated) {
        SCOPED_TRACE(message.payloadType);
        EXPECT_EQ(walk(seiMessages({userData(), message}), {200, 300}), 11000001);
        EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
        clearItems();
        lines.push_back(truncation(static_cast<int>(message.payloadType),
                                   static_cast<int>(message.payloadSize), sizeOf(message.payload)));
    }
    expectLines(lines);
}

TEST_F(SeiWalkAvc, aPayloadUpToTheEndOfTheUnitIsWhole) {
    EXPECT_EQ(walk(seiMessages({userData(), seiMessage(200, Bytes(300, 0x01))}), {200}), 0);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData, KeptItem{26, 200, true, Bytes(300, 0x01)}));
}

TEST_F(SeiWalkAvc, itemsBeforeAFailureStay) {
    EXPECT_EQ(walk(seiMessages({userData(), seiMessage(200, {0x77}), {1, 9, {0xAA}}}), {200}), 11000001);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData, KeptItem{26, 200, true, {0x77}}));
    expectLines({truncation(1, 9, 1)});
}

TEST_F(SeiWalkAvc, aHeaderThatEndsWithTheUnit) {
    EXPECT_EQ(walk({0xFF, 0xFF, 0xFF}, {765}), 11000001) << "type 765, size 0";
    EXPECT_EQ(walk({0xFF, 0xFF, 0xFF}), 0);
    EXPECT_EQ(walk({0x05, 0xFF, 0xFF}), 11000001);
    expectLines({truncation(5, 510, 0)});
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

// --- Parsers that read beyond their payload ---

// Each payload is read to the end of its syntax, although its size is coded as 0 or too small. The next
// header is read from there.
TEST_F(SeiWalkAvc, D29_aParserBeyondItsPayloadIsNotPulledBack) {
    QVAvcSps hrd{};
    hrd.nal_hrd_parameters_present_flag = 1;
    hrd.cpb_cnt = 1;
    hrd.initial_cpb_removal_delay_length = 8;
    const Bytes framePacking = BitWriter()
                                   .ue("frame_packing_arrangement_id", 0)
                                   .u(1, "cancel_flag", 0)
                                   .u(7, "frame_packing_arrangement_type", 3)
                                   .u(1, "quincunx_sampling_flag", 0)
                                   .u(6, "content_interpretation_type", 1)
                                   .u(6, "flags", 4)
                                   .u(16, "grid positions", 0x1234)
                                   .u(8, "reserved_byte", 0)
                                   .ue("repetition_period", 0)
                                   .u(1, "extension_flag", 0)
                                   .bytes();
    ASSERT_EQ(framePacking.size(), 6U);
    const struct {
        const char* name;
        Bytes message;
    } cases[] = {
        {"147, its 8 bits", {0x93, 0x00, 0x12}},
        {"56, a quality metric", {0x38, 0x00, 0x01, 0x00, 0x10, 0x68}},
        {"45, an arrangement", Bytes{0x2D, 0x00} + framePacking},
        // 25 bits. The last one is in the next header, whose byte is still read as a whole.
        {"47, an orientation", {0x2F, 0x00, 0x48, 0x00, 0x04}},
        // 17 bits: the identifier in one bit, then a delay and an offset of 8 bits each.
        {"0, with delays", {0x00, 0x01, 0x80, 0x80}},
        // 9 bits: the count 3 in 5 bits, then 4 bits.
        {"6, a count", {0x06, 0x00, 0x20}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(walk(c.message + seiMessages({userData()}) + Bytes{0x80}, {}, &hrd), 0);
        EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
        clearItems();
    }
    expectNoLines();
}

// The display orientation above ends after the first bit of the next byte. A recovery point there is read
// from its second bit on, so its payload is a 1 bit and then the code of 65536.
TEST_F(SeiWalkAvc, theBitOffsetOfAParserBeyondItsPayloadStays) {
    const Bytes orientation = {0x2F, 0x00, 0x48, 0x00, 0x04};
    const Bytes shifted =
        BitWriter().u(1, "skipped bit", 1).ue("recovery_frame_cnt", 65536).alignZero().bytes();
    EXPECT_EQ(walk(orientation + seiMessages({seiMessage(6, shifted)}) + Bytes{0x80}), 11000001);
    expectLines({badRecovery(65536)});
}

// The bit offset stays until the walk moves to the end of the next message. That move clears it.
TEST_F(SeiWalkAvc, theBitOffsetStaysUntilTheNextRepositioning) {
    const Bytes orientation = {0x2F, 0x00, 0x48, 0x00, 0x04};
    const SeiMessage between[] = {seiMessage(200, {0x31}), userData(), seiMessage(6, {0x84})};
    for (const SeiMessage& message : between) {
        SCOPED_TRACE(message.payloadType);
        core().lines.clear();
        EXPECT_EQ(
            walk(orientation + seiMessages({message, seiMessage(6, recoveryPoint(70000))}) + Bytes{0x80}),
            11000001);
        expectLines({badRecovery(70000)});
    }
}

// If a parser ends inside the byte after its payload, the byte position is at the payload's end, and the walk
// clears the bit offset.
TEST_F(SeiWalkAvc, bitsReadBeyondThePayloadAreTakenBackWithinTheByte) {
    const SeiMessage nineBits = {6, 1, {0x20}};  // recovery_frame_cnt 3 in 5 bits, and 4 bits
    EXPECT_EQ(walk(seiMessages({nineBits, seiMessage(6, recoveryPoint(65537))}) + Bytes{0x80}), 11000001);
    expectLines({badRecovery(65537)});
}

TEST_F(SeiWalkAvc, aParserThatReadsToTheEndOfTheUnitEndsTheWalk) {
    for (const Bytes& unit : {Bytes{0x93, 0x00, 0x12}, Bytes{0x38, 0x00, 0x01}, Bytes{0x2D, 0x00, 0x90},
                              Bytes{0x2F, 0x00, 0x48}, Bytes{0x06, 0x00, 0x00}}) {
        SCOPED_TRACE(::testing::PrintToString(unit));
        EXPECT_EQ(walk(unit), 0);
    }
    expectNoLines();
}

// --- Emulation prevention ---

// All payloads of one to five bytes with the values 00, 01, 03 and 80.
std::vector<Bytes> smallPayloads() {
    std::vector<Bytes> all = {{}};
    for (size_t from = 0, length = 1; length <= 5; ++length) {
        const size_t to = all.size();
        for (; from < to; ++from) {
            for (const uint8_t byte : Bytes{0x00, 0x01, 0x03, 0x80}) {
                all.push_back(all[from] + Bytes{byte});
            }
        }
    }
    all.erase(all.begin());
    return all;
}

// Emulation prevention bytes in, before and after the payload. Captured bytes do not contain them, and the
// walk continues at the right position.
TEST_F(SeiWalkAvc, capturesWithoutEmulationPrevention) {
    const SeiMessage following[] = {seiMessage(1, {0x44, 0x55}), userData()};
    for (const Bytes& payload : smallPayloads()) {
        for (const SeiMessage& next : following) {
            SCOPED_TRACE(::testing::PrintToString(payload));
            const Bytes unit = seiUnit({seiMessage(5, payload), seiMessage(200, payload), next});
            ASSERT_EQ(walk(unit, {200}), 0);
            ASSERT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, payload}, KeptItem{26, 200, true, payload},
                                            KeptItem{26, next.payloadType, false, next.payload}));
            clearItems();
        }
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, capturesEmulationPreventionAtEveryAlignment) {
    for (size_t before = 0; before < 9; ++before) {
        for (size_t zeros = 1; zeros < 9; ++zeros) {
            for (size_t after = 0; after < 3; ++after) {
                const Bytes payload = Bytes(before, 0xFF) + Bytes(zeros, 0x00) + Bytes(after, 0x02);
                SCOPED_TRACE(::testing::PrintToString(payload));
                EXPECT_EQ(walk(seiUnit({seiMessage(5, payload), userData()})), 0);
                EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, payload}, kKeptUserData));
                clearItems();
            }
        }
    }
}

// A size byte 00 counts as one of the two zeros before an emulation prevention byte.
TEST_F(SeiWalkAvc, theHeaderCountsAsDataAheadOfEmulationPrevention) {
    const Bytes payload = Bytes{0x00, 0x01} + Bytes(253, 0x41);
    const Bytes unit = seiUnit({seiMessage(5, payload), userData()});
    ASSERT_EQ(Bytes(unit.begin(), unit.begin() + 6), (Bytes{0x05, 0xFF, 0x00, 0x00, 0x03, 0x01}));
    EXPECT_EQ(walk(unit), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, payload}, kKeptUserData));
}

// The walk skips payloadSize coded bytes of a message that is not captured, so it continues one byte too
// early for each emulation prevention byte.
TEST_F(SeiWalkAvc, D27_skipsEmulationPreventionBytesAsPayload) {
    const Bytes once = seiUnit({seiMessage(200, {0xAA, 0x00, 0x00, 0x01}), userData()});
    ASSERT_EQ(once, (Bytes{0xC8, 0x04, 0xAA, 0x00, 0x00, 0x03, 0x01, 0x05, 0x02, 0x11, 0x22, 0x80}));
    EXPECT_EQ(walk(once), 11000001) << "01 05 must be read as a header";
    EXPECT_THAT(kept(), IsEmpty());
    expectLines({truncation(1, 5, 4)});

    EXPECT_EQ(walk(once, {200}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 200, true, {0xAA, 0x00, 0x00, 0x01}}, kKeptUserData))
        << "the captured message must be complete";
}

TEST_F(SeiWalkAvc, skipsEmulationPreventionAtEveryAlignment) {
    for (size_t before = 0; before < 9; ++before) {
        SCOPED_TRACE(before);
        // The last payload byte, 01, and the next type, 03, are read as type 1 and size 3.
        const Bytes payload = Bytes(before, 0xFF) + Bytes{0x00, 0x00, 0x01};
        const Bytes unit = seiUnit({seiMessage(200, payload), seiMessage(3, {0x51, 0x52}), userData()});
        EXPECT_EQ(walk(unit), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 1, false, {0x02, 0x51, 0x52}}, kKeptUserData));
        clearItems();
    }
    expectNoLines();
}

// The same for payloads that are parsed.
TEST_F(SeiWalkAvc, parsedPayloadsEndEarlyByTheirEmulationPrevention) {
    const SeiMessage green = seiMessage(56, {0x02, 0x00, 0x00, 0x01});
    const Bytes unit = seiUnit({green, seiMessage(3, {0x51, 0x52}), userData()});
    EXPECT_EQ(walk(unit), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 1, false, {0x02, 0x51, 0x52}}, kKeptUserData));
}

// If the size counts emulation prevention bytes, a capture continues with the bytes after the payload and
// with zero bytes past the end of the unit.
TEST_F(SeiWalkAvc, aCaptureBeyondTheUnitIsPadded) {
    EXPECT_EQ(walk({0x05, 0x06, 0xAA, 0x00, 0x00, 0x03, 0x01, 0xBB}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, {0xAA, 0x00, 0x00, 0x01, 0xBB, 0x00}}));
    clearItems();
    EXPECT_EQ(walk({0x05, 0x05, 0xAA, 0x00, 0x00, 0x03, 0x01, 0xBB, 0x80}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, {0xAA, 0x00, 0x00, 0x01, 0xBB}}));
}

// --- Allocations and exceptions ---

TEST_F(SeiWalkAvc, withoutAWorkingCopyThereAreNoMessages) {
    const Bytes unit = seiUnit({userData(), seiMessage(5, {})});
    const AllocationFault fault(Allocator::Malloc, 1);
    EXPECT_EQ(walk(unit, {200}), 0);
    EXPECT_TRUE(fault.triggered());
    EXPECT_EQ(core().playerAllocations, 0);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiWalkAvc, aPayloadThatCannotBeAllocatedEndsTheWalk) {
    const Bytes unit = seiUnit({userData(), seiMessage(200, {0x77}), seiMessage(1, {0x99})});
    for (size_t nth = 1; nth <= 4; ++nth) {
        SCOPED_TRACE(nth);
        core().playerAllocations = 0;
        core().failPlayerAllocation = static_cast<int>(nth);
        EXPECT_EQ(walk(unit, {200}), nth <= 3 ? 11000001 : 0);
        EXPECT_EQ(items.size(), nth - 1) << "earlier items must stay";
        clearItems();
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, aListThatCannotGrowThrows) {
    const Bytes unit = seiUnit({userData(), userData()});
    EXPECT_EQ(walk(unit), 0);
    items.shrink_to_fit();
    ASSERT_EQ(items.capacity(), 2U);
    const QVSeiItem* const before = items.data();
    {
        const Requested none;
        const AllocationFault fault(Allocator::New, 1);
        EXPECT_THROW(walk(unit, none), std::bad_alloc);
        EXPECT_TRUE(fault.triggered());
    }
    EXPECT_EQ(items.data(), before);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData, kKeptUserData));
    EXPECT_EQ(core().blocks.size(), 2U) << "a payload leaked";
}

TEST_F(SeiWalkAvc, anExceptionOfTheLogPassesThrough) {
    core().throwFromLog = true;
    EXPECT_THROW(walk(seiMessages({userData(), {1, 9, {0xAA}}})), LogFailure);
    EXPECT_THROW(walk(seiUnit({userData(), seiMessage(6, recoveryPoint(65536))})), LogFailure);
    EXPECT_THAT(kept(), ElementsAre(kKeptUserData, kKeptUserData));
    expectLines({truncation(1, 9, 1), badRecovery(65536)});
}

}  // namespace
}  // namespace qv_test
