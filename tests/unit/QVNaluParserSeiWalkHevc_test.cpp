// The first message of an H.265 SEI unit, parserHevcDataToSei.
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
    EXPECT_EQ(walk(kPrefix, {0x80, 0x01, 0xAA}, {128}), 0) << "80 is not trailing bits here";
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
