// The scan of length-prefixed units, parserDataToNalus.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>
#include <string>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"
#include "ScanTest.h"
#include "SeiMessages.h"
#include "SeiTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class LengthScan : public CoreTest {
protected:
    static NalIndexList scan(const Bytes& data, int lengthSize, NalIndexList nalus = {}) {
        EXPECT_EQ(QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, lengthSize), 0);
        return nalus;
    }

    static void expectTruncated(const Bytes& data, const std::string& length, const std::string& left) {
        expectLines({{0, "parserDataToNalus",
                      "Failed to parserDataToNaluType avaliable length:" + length +
                          ", avaliableBytes:" + left + ".\n"}});
        ASSERT_EQ(core().dumps.size(), 1U);
        EXPECT_EQ(core().dumps[0].label, "parserDataToNaluType fail");
        EXPECT_EQ(core().dumps[0].data, data.data());
        EXPECT_EQ(core().dumps[0].size, sizeOf(data));
    }

    static void expectSilence() {
        expectNoLines();
        EXPECT_THAT(core().dumps, IsEmpty());
    }
};

TEST_F(LengthScan, lengthsOfEachSize) {
    EXPECT_THAT(scan({2, 0x65, 0x88,  //
                      1, 0x41},
                     1),
                ElementsAre(Pair(1, 2), Pair(4, 1)));
    EXPECT_THAT(scan({0, 2, 0x65, 0x88,  //
                      0, 1, 0x41},
                     2),
                ElementsAre(Pair(2, 2), Pair(6, 1)));
    EXPECT_THAT(scan({0, 0, 0, 2, 0x65, 0x88,  //
                      0, 0, 0, 1, 0x41},
                     4),
                ElementsAre(Pair(4, 2), Pair(10, 1)));
    expectSilence();
}

TEST_F(LengthScan, everyOtherLengthSizeMeansFour) {
    const Bytes data = {0, 0, 0, 2, 0x65, 0x88, 0, 0, 0, 1, 0x41};
    for (const int lengthSize : {0, 3, 5, 6, 8, 255, 256, 257, 258, -1, -2, INT_MIN, INT_MAX}) {
        EXPECT_THAT(scan(data, lengthSize), ElementsAre(Pair(4, 2), Pair(10, 1))) << lengthSize;
    }
    expectSilence();
}

TEST_F(LengthScan, lengthsAreBigEndian) {
    EXPECT_THAT(scan(Bytes{0x01, 0x02} + filled(0x0102), 2), ElementsAre(Pair(2, 0x0102)));
    EXPECT_THAT(scan(Bytes{0x00, 0x01, 0x02, 0x03} + filled(0x010203), 4), ElementsAre(Pair(4, 0x010203)));
    EXPECT_THAT(scan(Bytes{0x01, 0x00, 0x02, 0x03} + filled(0x01000203), 4),
                ElementsAre(Pair(4, 0x01000203)));
    expectSilence();
}

TEST_F(LengthScan, shortLengthsAreUnsigned) {
    EXPECT_THAT(scan(Bytes{0x80} + filled(0x80), 1), ElementsAre(Pair(1, 0x80)));
    EXPECT_THAT(scan(Bytes{0xFF} + filled(0xFF), 1), ElementsAre(Pair(1, 0xFF)));
    EXPECT_THAT(scan(Bytes{0x80, 0x00} + filled(0x8000), 2), ElementsAre(Pair(2, 0x8000)));
    EXPECT_THAT(scan(Bytes{0xFF, 0xFF} + filled(0xFFFF), 2), ElementsAre(Pair(2, 0xFFFF)));
    expectSilence();
}

TEST_F(LengthScan, D37_emptyUnits) {
    EXPECT_THAT(scan({0, 0, 0, 0,  //
                      0, 0, 0, 1, 0x41},
                     4),
                ElementsAre(Pair(4, 0), Pair(8, 1)));
    EXPECT_THAT(scan({0, 0, 0, 1, 9}, 1), ElementsAre(Pair(1, 0), Pair(2, 0), Pair(3, 0), Pair(4, 1)));
    EXPECT_THAT(scan({0, 0, 0, 0, 0x65}, 4), ElementsAre(Pair(4, 0)));
    expectSilence();
}

TEST_F(LengthScan, startCodesAndEmulationPreventionBytesAreData) {
    EXPECT_THAT(scan({0, 0, 0, 11, 0x65, 0, 0, 1, 0, 0, 3, 0, 0, 0, 1,  //
                      0, 0, 0, 1,  0x41},
                     4),
                ElementsAre(Pair(4, 11), Pair(19, 1)));
    expectSilence();
}

TEST_F(LengthScan, tailTooShortForALengthAndAByteIsDropped) {
    EXPECT_THAT(scan({0, 0, 0, 2, 0x65, 0x88, 0, 0, 0, 1}, 3), ElementsAre(Pair(4, 2)));
    for (const int lengthSize : {1, 2, 4}) {
        for (int tail = 0; tail <= lengthSize; ++tail) {
            const auto fieldBytes = static_cast<size_t>(lengthSize);
            const Bytes unit = filled(fieldBytes - 1, 0x00) + Bytes{2, 0x65, 0x88};
            EXPECT_THAT(scan(unit + filled(static_cast<size_t>(tail), 0xFF), lengthSize),
                        ElementsAre(Pair(lengthSize, 2)))
                << lengthSize << "-byte lengths, tail of " << tail;
        }
    }
    expectSilence();
}

TEST_F(LengthScan, bufferNotLongerThanALength) {
    for (const int lengthSize : {1, 2, 3, 4}) {
        for (int size = 1; size <= (lengthSize == 3 ? 4 : lengthSize); ++size) {
            EXPECT_THAT(scan(filled(static_cast<size_t>(size), 0xFF), lengthSize, kCallersPairs),
                        kCallersPairs);
        }
    }
    expectSilence();
}

TEST_F(LengthScan, sizeBelowOne) {
    const Bytes data = {0, 0, 0, 1, 0x65};
    for (const int size : kNoSizes) {
        for (const int lengthSize : {1, 2, 4, 0, INT_MIN}) {
            NalIndexList nalus = kCallersPairs;
            EXPECT_EQ(QVNaluParser::parserDataToNalus(data.data(), size, nalus, lengthSize), 0);
            EXPECT_EQ(nalus, kCallersPairs) << size;
        }
    }
    expectSilence();
}

TEST_F(LengthScan, nullDataHoldsNoUnits) {
    for (const int size : {INT_MIN, -1, 0, 1, 4, 5, 100, INT_MAX}) {
        NalIndexList nalus = kCallersPairs;
        EXPECT_EQ(QVNaluParser::parserDataToNalus(nullptr, size, nalus, 4), 0);
        EXPECT_EQ(nalus, kCallersPairs) << size;
    }
    expectSilence();
}

TEST_F(LengthScan, unitsAreAppendedToTheCallersList) {
    EXPECT_THAT(scan({0, 2, 0x65, 0x88}, 2, {{7, 70}, {9, 90}}),
                ElementsAre(Pair(7, 70), Pair(9, 90), Pair(2, 2)));
    expectSilence();
}

TEST_F(LengthScan, lengthUpToTheEndIsTheLastAccepted) {
    for (const int lengthSize : {1, 2, 4}) {
        const Bytes field = filled(static_cast<size_t>(lengthSize) - 1, 0x00) + Bytes{3};
        EXPECT_THAT(scan(field + filled(3), lengthSize), ElementsAre(Pair(lengthSize, 3)));
    }
    expectSilence();
}

TEST_F(LengthScan, lengthOneBytePastTheEndIsTheFirstRejected) {
    for (const int lengthSize : {1, 2, 4}) {
        const Bytes data = filled(static_cast<size_t>(lengthSize) - 1, 0x00) + Bytes{3} + filled(2);
        EXPECT_THAT(scan(data, lengthSize), IsEmpty());
        expectTruncated(data, "3", std::to_string(lengthSize + 2));
        core() = RecordingCore();
    }
}

TEST_F(LengthScan, secondLengthPastTheEnd) {
    const Bytes data = {0, 0, 0, 2, 0x65, 0x88,  //
                        0, 0, 0, 9, 0x41, 0x9A, 0xBC};
    EXPECT_THAT(scan(data, 4), ElementsAre(Pair(4, 2)));
    expectTruncated(data, "9", "7");
}

TEST_F(LengthScan, nothingAfterALengthPastTheEndIsExamined) {
    const Bytes data = {9, 0x65, 1, 0x41, 1, 0x41};
    EXPECT_THAT(scan(data, 1, {{7, 70}}), ElementsAre(Pair(7, 70)));
    expectTruncated(data, "9", "6");
}

TEST_F(LengthScan, largeShortLengthsPastTheEndPrintUnsigned) {
    const Bytes oneByte = {0xFF, 0x65};
    EXPECT_THAT(scan(oneByte, 1), IsEmpty());
    expectTruncated(oneByte, "255", "2");
    core() = RecordingCore();
    const Bytes twoBytes = {0xFF, 0xFE, 0x65};
    EXPECT_THAT(scan(twoBytes, 2), IsEmpty());
    expectTruncated(twoBytes, "65534", "3");
}

TEST_F(LengthScan, lengthWithTheTopBitSetIsPastTheEndAndPrintsNegative) {
    const std::pair<Bytes, std::string> rows[] = {
        {{0x7F, 0xFF, 0xFF, 0xFF, 0x65}, "2147483647"}, {{0x80, 0x00, 0x00, 0x00, 0x65}, "-2147483648"},
        {{0xFF, 0xFF, 0xFF, 0xFB, 0x65}, "-5"},         {{0xFF, 0xFF, 0xFF, 0xFC, 0x65}, "-4"},
        {{0xFF, 0xFF, 0xFF, 0xFF, 0x65}, "-1"},
    };
    for (const auto& [data, printed] : rows) {
        EXPECT_THAT(scan(data, 4), IsEmpty());
        expectTruncated(data, printed, "5");
        core() = RecordingCore();
    }
}

TEST_F(LengthScan, worksOnOneCopyOfTheBuffer) {
    const Bytes data = {1, 0x65, 1, 0x41};
    NalIndexList nalus;
    const AllocationFault count(Allocator::Malloc, 0);
    QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, 1);
    EXPECT_EQ(count.seen(), 1);
    EXPECT_EQ(count.bytes(), data.size());
    EXPECT_EQ(nalus.size(), 2U);
}

TEST_F(LengthScan, noUnitsWithoutTheCopy) {
    const Bytes data = {0, 0, 0, 9, 0x65};
    NalIndexList nalus = kCallersPairs;
    const AllocationFault fault(Allocator::Malloc, 1);
    EXPECT_EQ(QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, 4), 0);
    EXPECT_TRUE(fault.triggered());
    EXPECT_EQ(nalus, kCallersPairs);
    expectSilence();
}

// Of the size of the length field: hosts can replace the non-throwing operator new[] and see each of them.
TEST_F(LengthScan, oneScratchArrayForEachUnit) {
    const std::pair<int, Bytes> rows[] = {
        {1, {1, 0x65, 1, 0x41, 1, 0x41}},
        {2, {0, 1, 0x65, 0, 1, 0x41, 0, 1, 0x41}},
        {3, {0, 0, 0, 1, 0x65, 0, 0, 0, 1, 0x41, 0, 0, 0, 1, 0x41}},
        {4, {0, 0, 0, 1, 0x65, 0, 0, 0, 1, 0x41, 0, 0, 0, 1, 0x41}},
    };
    for (const auto& [lengthSize, data] : rows) {
        SCOPED_TRACE(lengthSize);
        NalIndexList nalus;
        const AllocationFault count(Allocator::NothrowNewArray, 0);
        QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, lengthSize);
        EXPECT_EQ(nalus.size(), 3U);
        EXPECT_EQ(count.seen(), 3);
        EXPECT_EQ(count.bytes(), data.size() - 3);
    }
}

TEST_F(LengthScan, lengthCountsAsZeroWithoutTheScratchArray) {
    const Bytes data = {0, 2, 0x00, 0x01, 0x41,  //
                        0, 1, 0x41};
    const NalIndexList expected[] = {
        {{2, 0}, {4, 1}, {7, 1}},  // first array: the first unit's bytes are read as the next length
        {{2, 2}, {6, 0}},          // second array: the two bytes left are too few for another length
    };
    for (int nth = 1; nth <= 2; ++nth) {
        NalIndexList nalus;
        const AllocationFault fault(Allocator::NothrowNewArray, nth);
        EXPECT_EQ(QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, 2), 0);
        EXPECT_TRUE(fault.triggered());
        EXPECT_EQ(nalus, expected[nth - 1]) << "array " << nth;
    }
    expectSilence();
}

// The leak checker verifies that the copy is released on this path too.
TEST_F(LengthScan, failedListGrowthPassesThrough) {
    const Bytes data = {1, 0x67, 1, 0x68, 1, 0x65, 1, 0x41};
    const NalIndexList expected = {{7, 70}, {1, 1}, {3, 1}, {5, 1}, {7, 1}};
    for (int nth = 1;; ++nth) {
        NalIndexList nalus = {{7, 70}};
        const AllocationFault fault(Allocator::New, nth);
        try {
            QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, 1);
        } catch (const std::bad_alloc&) {
            ASSERT_TRUE(fault.triggered());
            ASSERT_LT(nalus.size(), expected.size());
            ASSERT_TRUE(std::equal(nalus.begin(), nalus.end(), expected.begin()));
            continue;
        }
        EXPECT_GT(nth, 1);
        EXPECT_EQ(nalus, expected);
        break;
    }
    expectSilence();
}

TEST_F(LengthScan, exceptionOfTheHostsLogPassesThrough) {
    const Bytes data = {1, 0x67, 9, 0x68};
    NalIndexList nalus;
    core().throwFromLog = true;
    EXPECT_THROW(QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, 1), LogFailure);
    EXPECT_THAT(nalus, ElementsAre(Pair(1, 1)));
    EXPECT_THAT(core().dumps, IsEmpty());
}

}  // namespace
}  // namespace qv_test
