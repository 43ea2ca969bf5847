// The walk over the messages of an H.264 SEI unit, parserAvcDataToSei: start, end, truncation and failures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <string>
#include <vector>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "SeiWalkTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

TEST_F(SeiWalkAvc, D25_stopsAfterAMessage) {
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
