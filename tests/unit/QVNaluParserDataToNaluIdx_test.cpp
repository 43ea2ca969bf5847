// The start-code scan, parserDataToNaluIdx.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>

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

class AnnexBScan : public CoreTest {
protected:
    void TearDown() override {
        expectNoLines();
        EXPECT_THAT(core().dumps, IsEmpty());
        CoreTest::TearDown();
    }

    static NalIndexList scan(const Bytes& data, NalIndexList nalus = {}) {
        EXPECT_EQ(QVNaluParser::parserDataToNaluIdx(data.data(), sizeOf(data), nalus), 0);
        return nalus;
    }
};

TEST_F(AnnexBScan, nullData) {
    for (const int size : {INT_MIN, 0, 4, INT_MAX}) {
        NalIndexList nalus = kCallersPairs;
        EXPECT_EQ(QVNaluParser::parserDataToNaluIdx(nullptr, size, nalus), 11000012) << size;
        EXPECT_EQ(nalus, kCallersPairs);
    }
}

TEST_F(AnnexBScan, shorterThanFourBytes) {
    const Bytes data = {0, 0, 1};
    for (const int size : {1, 2, 3}) {
        NalIndexList nalus = kCallersPairs;
        EXPECT_EQ(QVNaluParser::parserDataToNaluIdx(data.data() + 3 - size, size, nalus), 11000012) << size;
        EXPECT_EQ(nalus, kCallersPairs);
    }
}

TEST_F(AnnexBScan, sizeBelowOne) {
    const Bytes data = {0, 0, 1, 0x67, 0x42};
    for (const int size : kNoSizes) {
        NalIndexList nalus = kCallersPairs;
        EXPECT_EQ(QVNaluParser::parserDataToNaluIdx(data.data(), size, nalus), 11000012) << size;
        EXPECT_EQ(nalus, kCallersPairs);
    }
}

TEST_F(AnnexBScan, noStartCodeInFront) {
    for (const Bytes& data : {Bytes{0x65, 0, 0, 1, 0x65}, Bytes{0, 0, 0, 0, 1, 0x65}, Bytes{0, 0, 2, 0x65}}) {
        NalIndexList nalus = kCallersPairs;
        EXPECT_EQ(QVNaluParser::parserDataToNaluIdx(data.data(), sizeOf(data), nalus), 11000012);
        EXPECT_EQ(nalus, kCallersPairs);
    }
}

TEST_F(AnnexBScan, oneUnit) {
    EXPECT_THAT(scan({0, 0, 1, 0x65}), ElementsAre(Pair(3, 1)));
    EXPECT_THAT(scan({0, 0, 0, 1, 0x65}), ElementsAre(Pair(4, 1)));
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0x88, 0x84}), ElementsAre(Pair(3, 3)));
    EXPECT_THAT(scan({0, 0, 0, 1, 0x65, 0x88, 0x84, 0x00, 0x21}), ElementsAre(Pair(4, 5)));
}

TEST_F(AnnexBScan, threeThenFourByteStartCode) {
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0xAA,  //
                      0, 0, 0, 1, 0x41, 0xBB}),
                ElementsAre(Pair(3, 2), Pair(9, 2)));
}

TEST_F(AnnexBScan, everyMixtureOfStartCodes) {
    for (unsigned mixture = 0; mixture < 16; ++mixture) {
        Bytes data;
        NalIndexList expected;
        for (unsigned unit = 0; unit < 4; ++unit) {
            const bool hasFourBytes = (mixture >> unit & 1U) != 0;
            data = data + (hasFourBytes ? Bytes{0, 0, 0, 1} : Bytes{0, 0, 1});
            expected.emplace_back(sizeOf(data), static_cast<int>(unit) + 1);
            data = data + filled(unit + 1);
        }
        EXPECT_EQ(scan(data), expected) << "mixture " << mixture;
    }
}

// Start codes as close as possible, and more of them than one search finds.
TEST_F(AnnexBScan, manyUnitsOfOneByte) {
    for (const int count : {31, 32, 33, 64, 65, 1000}) {
        Bytes data;
        NalIndexList expected;
        for (int unit = 0; unit < count; ++unit) {
            data = data + Bytes{0, 0, 1};
            expected.emplace_back(sizeOf(data), 1);
            data.push_back(0x67);
        }
        EXPECT_EQ(scan(data), expected) << count << " units";
    }
}

TEST_F(AnnexBScan, D02_furtherZeroBytesStayInTheUnitBefore) {
    EXPECT_THAT(scan({0, 0, 0, 1, 0x67,  //
                      0, 0, 0, 0, 1, 0x68}),
                ElementsAre(Pair(4, 2), Pair(10, 1)));
}

TEST_F(AnnexBScan, D02_trailingZerosOfEveryCount) {
    for (int zeros = 2; zeros < 12; ++zeros) {
        const Bytes data =
            Bytes{0, 0, 1, 0x67} + filled(static_cast<size_t>(zeros), 0x00) + Bytes{1, 0x68, 0xCE};
        const int takenByTheStartCode = std::min(zeros, 3);
        EXPECT_THAT(scan(data), ElementsAre(Pair(3, 1 + zeros - takenByTheStartCode), Pair(5 + zeros, 2)))
            << zeros << " zero bytes";
    }
}

TEST_F(AnnexBScan, D02_trailingZerosAtTheEndOfTheBufferStay) {
    EXPECT_THAT(scan({0, 0, 1, 0x67, 0, 0, 0, 0}), ElementsAre(Pair(3, 5)));
}

TEST_F(AnnexBScan, D35_startCodeAtTheEndBeginsNoUnit) {
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 1}), ElementsAre(Pair(3, 4)));
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 0, 1}), ElementsAre(Pair(3, 5)));
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 1, 0x41}), ElementsAre(Pair(3, 1), Pair(7, 1)));
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 0, 1, 0x41}), ElementsAre(Pair(3, 1), Pair(8, 1)));
}

// 00 00 00 01 at the end of the data is neither a 4-byte start code nor a 3-byte one at its second byte.
TEST_F(AnnexBScan, D35_nothingButAStartCode) {
    EXPECT_THAT(scan({0, 0, 0, 1}), IsEmpty());
}

TEST_F(AnnexBScan, byteAfterAThreeByteStartCodeMayBeAnything) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        EXPECT_THAT(scan({0, 0, 1, static_cast<uint8_t>(byte)}), ElementsAre(Pair(3, 1))) << byte;
    }
}

TEST_F(AnnexBScan, D36_byteAfterAStartCodeBeginsNoOther) {
    EXPECT_THAT(scan({0, 0, 1, 0, 0, 1, 0x65}), ElementsAre(Pair(3, 4)));
    EXPECT_THAT(scan({0, 0, 0, 1, 0, 0, 1, 0x65}), ElementsAre(Pair(4, 4)));
    EXPECT_THAT(scan({0, 0, 1, 0, 0, 1, 0, 0, 1, 0x65}), ElementsAre(Pair(3, 3), Pair(9, 1)));
}

TEST_F(AnnexBScan, D36_zeroByteAfterAStartCodeIsNotPartOfTheNext) {
    EXPECT_THAT(scan({0, 0, 1, 0, 0, 0, 1, 0x65}), ElementsAre(Pair(3, 1), Pair(7, 1)));
    EXPECT_THAT(scan({0, 0, 0, 1, 0, 0, 0, 1, 0x65}), ElementsAre(Pair(4, 1), Pair(8, 1)));
    EXPECT_THAT(scan({0, 0, 1, 0, 0, 0, 0, 1, 0x65}), ElementsAre(Pair(3, 1), Pair(8, 1)));
    EXPECT_THAT(scan({0, 0, 1, 0, 0, 0, 0, 0, 1, 0x65}), ElementsAre(Pair(3, 2), Pair(9, 1)));
}

TEST_F(AnnexBScan, startCodeAtEveryDistance) {
    for (const uint8_t byte : Bytes{0x01, 0x02, 0x03, 0x65, 0xFF}) {
        for (int distance = 1; distance < 12; ++distance) {
            const Bytes data =
                Bytes{0, 0, 1} + filled(static_cast<size_t>(distance), byte) + Bytes{0, 0, 1, 0x41};
            EXPECT_THAT(scan(data), ElementsAre(Pair(3, distance), Pair(distance + 6, 1)))
                << distance << " bytes " << int{byte};
        }
    }
}

TEST_F(AnnexBScan, startCodeAtEveryPlaceOfLongData) {
    for (int distance = 1; distance < 1100; ++distance) {
        const Bytes unit = filled(static_cast<size_t>(distance), 0x55);
        for (const size_t rest : {1U, 20U, 500U}) {
            const Bytes data = Bytes{0, 0, 1} + unit + Bytes{0, 0, 1} + filled(rest, 0x65);
            ASSERT_THAT(scan(data), ElementsAre(Pair(3, distance), Pair(distance + 6, rest)));
            ASSERT_TRUE(QVNaluParser::isKeyFrame(QVCodecIDAvc, data.data(), static_cast<int>(data.size())));
        }
    }
}

// When several vectors are combined byte by byte, zeros of different vectors look like a pair.
TEST_F(AnnexBScan, zerosApartAreNoStartCode) {
    for (size_t place = 400; place < 800; ++place) {
        Bytes data = Bytes{0, 0, 1} + filled(1500, 0x55);
        data[place] = data[place + 33] = data[place + 49] = 0x00;
        data[place + 66] = 0x01;
        ASSERT_THAT(scan(data), ElementsAre(Pair(3, 1500)));
    }
}

TEST_F(AnnexBScan, almostStartCodes) {
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 1, 0, 0, 2, 1, 0, 0, 3, 1, 0, 0x65}), ElementsAre(Pair(3, 13)));
}

TEST_F(AnnexBScan, emulationPreventionBytesAreNoStartCodes) {
    EXPECT_THAT(scan({0, 0, 1, 0x67, 0, 0, 3, 0, 0, 0, 3, 1, 0, 0, 3, 2, 0, 0, 3, 3}),
                ElementsAre(Pair(3, 17)));
}

TEST_F(AnnexBScan, callersLastPairIsClosedByTheFirstStartCode) {
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0x88, 0, 0, 1, 0x41}, {{5, 50}, {2, 20}}),
                ElementsAre(Pair(5, 50), Pair(2, -2), Pair(3, 2), Pair(8, 1)));
    EXPECT_THAT(scan({0, 0, 0, 1, 0x65}, {{-3, 20}}), ElementsAre(Pair(-3, 3), Pair(4, 1)));
}

TEST_F(AnnexBScan, callersLastPairIsClosedByTheEndWhenNoStartCodeCounts) {
    EXPECT_THAT(scan({0, 0, 0, 1}, {{5, 50}, {1, 20}}), ElementsAre(Pair(5, 50), Pair(1, 3)));
    EXPECT_THAT(scan({0, 0, 0, 1}, {{9, 20}}), ElementsAre(Pair(9, -5)));
}

TEST_F(AnnexBScan, callersPairAtTheEndsOfInt) {
    EXPECT_THAT(scan({0, 0, 1, 0x65}, {{INT_MAX, 0}}), ElementsAre(Pair(INT_MAX, -INT_MAX), Pair(3, 1)));
    EXPECT_THAT(scan({0, 0, 0, 1}, {{INT_MAX, 0}}), ElementsAre(Pair(INT_MAX, 4 - INT_MAX)));
    // 2^31 and 2^31 + 4, modulo 2^32.
    EXPECT_THAT(scan({0, 0, 1, 0x65}, {{INT_MIN, 0}}), ElementsAre(Pair(INT_MIN, INT_MIN), Pair(3, 1)));
    EXPECT_THAT(scan({0, 0, 0, 1}, {{INT_MIN, 0}}), ElementsAre(Pair(INT_MIN, INT_MIN + 4)));
}

TEST_F(AnnexBScan, manyUnits) {
    Bytes data;
    NalIndexList expected;
    for (int i = 0; i < 10000; ++i) {
        data.insert(data.end(), {0, 0, 1, 0x41, 0x9A});
        expected.emplace_back(5 * i + 3, 2);
    }
    EXPECT_EQ(scan(data), expected);
}

TEST_F(AnnexBScan, failedListGrowthPassesThrough) {
    const Bytes data = {0, 0, 1, 0x67, 0, 0, 1, 0x68, 0, 0, 1, 0x65, 0, 0, 1, 0x41};
    const NalIndexList expected = {{3, 1}, {7, 1}, {11, 1}, {15, 1}};
    for (int nth = 1;; ++nth) {
        NalIndexList nalus;
        const AllocationFault fault(Allocator::New, nth);
        try {
            QVNaluParser::parserDataToNaluIdx(data.data(), sizeOf(data), nalus);
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
}

}  // namespace
}  // namespace qv_test
