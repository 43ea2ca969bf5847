// The typing of units, parseNalusToNaluType.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <set>
#include <vector>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ScanTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// H.265 Table 7-1: the sub-layer non-reference pictures *_N and the reserved types RSV_VCL_N*.
const std::set<unsigned> kHevcNonReferenceTypes = {0, 2, 4, 6, 8, 10, 12, 14};

class Typing : public CoreTest {
protected:
    void TearDown() override {
        expectNoLines();
        CoreTest::TearDown();
    }

    static std::vector<Typed> type(const Bytes& data, const NalIndexList& nalus, QVCodecID codec) {
        std::vector<Info> infos = {kStale, kStale, kStale};
        EXPECT_EQ(QVNaluParser::parseNalusToNaluType(data.data(), nalus, infos, codec), 0);
        return typed(infos);
    }
};

TEST_F(Typing, everyFirstByteOfAvc) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const unsigned forbiddenZeroBit = byte / 128;
        const unsigned nalRefIdc = byte / 32 % 4;
        const unsigned nalUnitType = byte % 32;
        std::vector<Typed> expected;
        if (forbiddenZeroBit == 0) {
            expected.emplace_back(nalUnitType, 0, 1, nalRefIdc == 0 && nalUnitType == 1);
        }
        EXPECT_EQ(type({static_cast<uint8_t>(byte)}, {{0, 1}}, QVCodecIDAvc), expected) << byte;
    }
}

TEST_F(Typing, everyFirstByteOfHevc) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const unsigned forbiddenZeroBit = byte / 128;
        const unsigned nalUnitType = byte / 2 % 64;
        std::vector<Typed> expected;
        if (forbiddenZeroBit == 0) {
            expected.emplace_back(nalUnitType, 0, 2, kHevcNonReferenceTypes.count(nalUnitType) == 1);
        }
        EXPECT_EQ(type({static_cast<uint8_t>(byte), 0x01}, {{0, 2}}, QVCodecIDHevc), expected) << byte;
    }
}

TEST_F(Typing, avcSliceThatNothingRefersTo) {
    EXPECT_THAT(type({0x01}, {{0, 1}}, QVCodecIDAvc), ElementsAre(Typed{1, 0, 1, true}));
    EXPECT_THAT(type({0x21}, {{0, 1}}, QVCodecIDAvc), ElementsAre(Typed{1, 0, 1, false}));
    EXPECT_THAT(type({0x81}, {{0, 1}}, QVCodecIDAvc), IsEmpty());
}

TEST_F(Typing, D32_dataPartitionsAreNeverNonReference) {
    EXPECT_THAT(type({0x02, 0x03, 0x04}, {{0, 1}, {1, 1}, {2, 1}}, QVCodecIDAvc),
                ElementsAre(Typed{2, 0, 1, false}, Typed{3, 1, 1, false}, Typed{4, 2, 1, false}));
}

TEST_F(Typing, hevcExamples) {
    EXPECT_THAT(type({0x02, 0x01}, {{0, 2}}, QVCodecIDHevc), ElementsAre(Typed{1, 0, 2, false}));
    EXPECT_THAT(type({0x00, 0x01}, {{0, 2}}, QVCodecIDHevc), ElementsAre(Typed{0, 0, 2, true}));
    EXPECT_THAT(type({0x40, 0x01}, {{0, 2}}, QVCodecIDHevc), ElementsAre(Typed{32, 0, 2, false}));
}

TEST_F(Typing, everyUnitInOrderWithItsPlace) {
    const Bytes data = {0, 0, 1, 0x67, 0x42, 0, 0, 1, 0x68, 0, 0, 1, 0x01, 0x9A, 0xBC};
    EXPECT_THAT(type(data, {{3, 2}, {8, 1}, {12, 3}}, QVCodecIDAvc),
                ElementsAre(Typed{7, 3, 2, false}, Typed{8, 8, 1, false}, Typed{1, 12, 3, true}));
    EXPECT_THAT(type(data, {{12, 3}, {3, 2}}, QVCodecIDAvc),
                ElementsAre(Typed{1, 12, 3, true}, Typed{7, 3, 2, false}));
}

TEST_F(Typing, unitsWithForbiddenZeroBitAreLeftOut) {
    const Bytes data = {0x67, 0xE5, 0x65, 0x80};
    EXPECT_THAT(type(data, {{0, 1}, {1, 1}, {2, 1}, {3, 1}}, QVCodecIDAvc),
                ElementsAre(Typed{7, 0, 1, false}, Typed{5, 2, 1, false}));
}

TEST_F(Typing, emptyListClearsInfos) {
    EXPECT_THAT(type({0x65}, {}, QVCodecIDAvc), IsEmpty());
    EXPECT_THAT(type({0x65}, {}, QVCodecIDHevc), IsEmpty());
}

TEST_F(Typing, unsupportedCodecClearsInfos) {
    for (const unsigned codec : kUnsupportedCodecs) {
        EXPECT_THAT(type({0x65, 0x01}, {{0, 2}}, static_cast<QVCodecID>(codec)), IsEmpty()) << codec;
    }
}

TEST_F(Typing, nullDataHasNoUnits) {
    std::vector<Info> infos = {kStale};
    EXPECT_EQ(QVNaluParser::parseNalusToNaluType(nullptr, {{0, 4}, {4, 0}}, infos, QVCodecIDAvc), 0);
    EXPECT_THAT(infos, IsEmpty());
}

TEST_F(Typing, D38_emptyUnitAfterTheLastByteIsNotRead) {
    EXPECT_THAT(type({0x67, 0x42}, {{0, 2}, {2, 0}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 2, false}));
    EXPECT_THAT(type({0x67, 0x42}, {{2, 0}, {0, 2}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 2, false}));
    EXPECT_THAT(type({0x67, 0x42}, {{INT_MAX, 0}, {0, 2}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 2, false}));
}

TEST_F(Typing, D38_emptyUnitsOnly) {
    EXPECT_THAT(type({0x67, 0x68}, {{0, 0}}, QVCodecIDAvc), IsEmpty());
    // (1, 0) ends at 1, which is after offset 0.
    EXPECT_THAT(type({0x67, 0x68}, {{0, 0}, {1, 0}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 0, false}));
}

TEST_F(Typing, D38_emptyUnitIsReadWhereAnotherPairEndsBeyondIt) {
    const Bytes data = {0x67, 0x68, 0x65};
    EXPECT_THAT(type(data, {{1, 0}, {2, 1}}, QVCodecIDAvc),
                ElementsAre(Typed{8, 1, 0, false}, Typed{5, 2, 1, false}));
    EXPECT_THAT(type(data, {{0, 2}, {1, 0}}, QVCodecIDAvc),
                ElementsAre(Typed{7, 0, 2, false}, Typed{8, 1, 0, false}));
    EXPECT_THAT(type(data, {{0, 2}, {2, 0}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 2, false}));
    EXPECT_THAT(type(data, {{0, 3}, {2, 0}}, QVCodecIDAvc),
                ElementsAre(Typed{7, 0, 3, false}, Typed{5, 2, 0, false}));
}

TEST_F(Typing, pairsWithANegativeOffsetOrLengthAreLeftOut) {
    const Bytes data = {0x67, 0x68};
    EXPECT_THAT(type(data, {{-1, 1}, {0, 1}, {0, -1}, {1, INT_MIN}, {INT_MIN, 1}, {INT_MIN, INT_MIN}, {1, 1}},
                     QVCodecIDAvc),
                ElementsAre(Typed{7, 0, 1, false}, Typed{8, 1, 1, false}));
}

TEST_F(Typing, leftOutPairsDoNotVouchForAnEmptyUnit) {
    EXPECT_THAT(type({0x67}, {{1, 0}, {-5, 100}, {100, -5}}, QVCodecIDAvc), IsEmpty());
}

TEST_F(Typing, failedGrowthOfInfosPassesThrough) {
    const Bytes data = {0x67, 0x68, 0x65};
    const NalIndexList nalus = {{0, 1}, {1, 1}, {2, 1}};
    std::vector<Info> infos;
    const AllocationFault fault(Allocator::New, 2);
    EXPECT_THROW(QVNaluParser::parseNalusToNaluType(data.data(), nalus, infos, QVCodecIDAvc), std::bad_alloc);
    EXPECT_THAT(typed(infos), ElementsAre(Typed{7, 0, 1, false}));
}

}  // namespace
}  // namespace qv_test
