#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>
#include <set>
#include <string>
#include <tuple>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using Info = QVNaluParser::NaluInfo;

// The fields naluType, offset, length and isNonReference.
using Typed = std::tuple<uint32_t, int, int, bool>;

std::vector<Typed> typed(const std::vector<Info>& infos) {
    std::vector<Typed> rows;
    for (const Info& info : infos) {
        rows.emplace_back(info.naluType, info.offset, info.length, info.isNonReference);
    }
    return rows;
}

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

Bytes filled(size_t size, uint8_t byte = 0xAA) {
    return Bytes(size, byte);
}

Bytes operator+(const Bytes& a, const Bytes& b) {
    Bytes both = a;
    both.insert(both.end(), b.begin(), b.end());
    return both;
}

const Info kStale = {99, 98, 97, true};

// Sizes that mean no data.
constexpr int kNoSizes[] = {0, -1, -4, INT_MIN};

// --- isAnnexBData ---

TEST(IsAnnexBData, beginsWithAStartCode) {
    const Bytes threeBytes = {0, 0, 1, 0x67};
    const Bytes fourBytes = {0, 0, 0, 1};
    EXPECT_TRUE(QVNaluParser::isAnnexBData(threeBytes.data(), 4));
    EXPECT_TRUE(QVNaluParser::isAnnexBData(fourBytes.data(), 4));
}

TEST(IsAnnexBData, fourthByteIsFreeBehindAThreeByteStartCode) {
    for (unsigned fourth = 0; fourth < 256; ++fourth) {
        const Bytes data = {0, 0, 1, static_cast<uint8_t>(fourth)};
        EXPECT_TRUE(QVNaluParser::isAnnexBData(data.data(), 4)) << fourth;
    }
}

TEST(IsAnnexBData, oneWrongByte) {
    for (const Bytes& data :
         {Bytes{1, 0, 1, 9}, Bytes{0, 1, 1, 9}, Bytes{0, 0, 2, 9}, Bytes{0, 0, 3, 1}, Bytes{1, 0, 0, 1},
          Bytes{0, 1, 0, 1}, Bytes{0, 0, 0, 0}, Bytes{0, 0, 0, 2}, Bytes{0, 0, 0, 0x81}, Bytes{0, 0, 0x80, 1},
          Bytes{0x80, 0, 1, 9}, Bytes{0, 0x80, 0, 1}}) {
        EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), 4)) << ::testing::PrintToString(data);
    }
}

TEST(IsAnnexBData, startCodeNotAtTheStart) {
    const Bytes data = {0x65, 0, 0, 1, 0x65};
    EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), sizeOf(data)));
}

TEST(IsAnnexBData, D24_leadingZeroBytesAreNotAccepted) {
    const Bytes data = {0, 0, 0, 0, 1, 0x65};
    EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), sizeOf(data)));
    EXPECT_TRUE(QVNaluParser::isAnnexBData(data.data() + 1, sizeOf(data) - 1));
}

TEST(IsAnnexBData, shorterThanFourBytes) {
    for (size_t size = 1; size < 4; ++size) {
        Bytes data = {0, 0, 1};
        data.resize(size);
        data.shrink_to_fit();
        EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), sizeOf(data))) << size;
    }
}

TEST(IsAnnexBData, sizeBelowOne) {
    const Bytes data = {0, 0, 1, 0x67};
    for (const int size : kNoSizes) {
        EXPECT_FALSE(QVNaluParser::isAnnexBData(data.data(), size)) << size;
    }
}

TEST(IsAnnexBData, nullData) {
    for (const int size : {INT_MIN, -1, 0, 3, 4, INT_MAX}) {
        EXPECT_FALSE(QVNaluParser::isAnnexBData(nullptr, size)) << size;
    }
}

// --- parserDataToNaluIdx ---

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

const NalIndexList kCallersPairs = {{7, 70}, {9, 90}};

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

TEST_F(AnnexBScan, startCodeAtTheEndOpensNoUnit) {
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 1}), ElementsAre(Pair(3, 4)));
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 0, 1}), ElementsAre(Pair(3, 5)));
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 1, 0x41}), ElementsAre(Pair(3, 1), Pair(7, 1)));
    EXPECT_THAT(scan({0, 0, 1, 0x65, 0, 0, 0, 1, 0x41}), ElementsAre(Pair(3, 1), Pair(8, 1)));
}

// 00 00 00 01 at the end of the data is neither a 4-byte start code nor a 3-byte one at its second byte.
TEST_F(AnnexBScan, nothingButAStartCode) {
    EXPECT_THAT(scan({0, 0, 0, 1}), IsEmpty());
}

TEST_F(AnnexBScan, byteBehindAThreeByteStartCodeMayBeAnything) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        EXPECT_THAT(scan({0, 0, 1, static_cast<uint8_t>(byte)}), ElementsAre(Pair(3, 1))) << byte;
    }
}

TEST_F(AnnexBScan, byteBehindAStartCodeBeginsNoOther) {
    EXPECT_THAT(scan({0, 0, 1, 0, 0, 1, 0x65}), ElementsAre(Pair(3, 4)));
    EXPECT_THAT(scan({0, 0, 0, 1, 0, 0, 1, 0x65}), ElementsAre(Pair(4, 4)));
    EXPECT_THAT(scan({0, 0, 1, 0, 0, 1, 0, 0, 1, 0x65}), ElementsAre(Pair(3, 3), Pair(9, 1)));
}

TEST_F(AnnexBScan, zeroByteBehindAStartCodeIsNoneOfTheNext) {
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

// --- parserDataToNalus ---

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

TEST_F(LengthScan, emptyUnits) {
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

TEST_F(LengthScan, nothingBehindALengthPastTheEndIsLookedAt) {
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

TEST_F(LengthScan, oneScratchArrayForEachUnit) {
    const Bytes data = {1, 0x65, 1, 0x41, 1, 0x41};
    NalIndexList nalus;
    const AllocationFault count(Allocator::NothrowNewArray, 0);
    QVNaluParser::parserDataToNalus(data.data(), sizeOf(data), nalus, 1);
    EXPECT_EQ(count.seen(), 3);
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

// --- parseNalusToNaluType ---

// H.265 Table 7-1: the sub-layer non-reference pictures *_N and the reserved types RSV_VCL_N*.
const std::set<unsigned> kHevcNonReferenceTypes = {0, 2, 4, 6, 8, 10, 12, 14};

constexpr unsigned kUnsupportedCodecs[] = {0, 1, 25, 27, 171, 173, 0x1A00, 0x8000001A, 0xFFFFFFFF};

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

TEST_F(Typing, emptyUnitBehindTheLastByteIsNotRead) {
    EXPECT_THAT(type({0x67, 0x42}, {{0, 2}, {2, 0}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 2, false}));
    EXPECT_THAT(type({0x67, 0x42}, {{2, 0}, {0, 2}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 2, false}));
    EXPECT_THAT(type({0x67, 0x42}, {{INT_MAX, 0}, {0, 2}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 2, false}));
}

TEST_F(Typing, emptyUnitsOnly) {
    EXPECT_THAT(type({0x67, 0x68}, {{0, 0}}, QVCodecIDAvc), IsEmpty());
    // (1, 0) ends at 1, which is after offset 0.
    EXPECT_THAT(type({0x67, 0x68}, {{0, 0}, {1, 0}}, QVCodecIDAvc), ElementsAre(Typed{7, 0, 0, false}));
}

TEST_F(Typing, emptyUnitIsReadWhereAnotherPairEndsBeyondIt) {
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

// --- parserDataToNaluType ---

class DataTyping : public CoreTest {
protected:
    static std::vector<Typed> type(const Bytes& data, const QVCodecParameters& params) {
        std::vector<Info> infos = {kStale, kStale, kStale, kStale};
        EXPECT_EQ(QVNaluParser::parserDataToNaluType(data.data(), sizeOf(data), infos, &params), 0);
        return typed(infos);
    }

    static constexpr QVCodecParameters kAvcAnnexB = {QVCodecIDAvc, 1, 0};
    static constexpr QVCodecParameters kHevcAnnexB = {QVCodecIDHevc, 1, 0};
    static constexpr QVCodecParameters kAvcLength4 = {QVCodecIDAvc, 0, 4};
};

TEST_F(DataTyping, nullParameters) {
    const Bytes data = {0, 0, 1, 0x65};
    std::vector<Info> infos = {kStale};
    EXPECT_EQ(QVNaluParser::parserDataToNaluType(data.data(), 4, infos, nullptr), 11000001);
    EXPECT_EQ(typed(infos), typed({kStale}));
    expectLines({{0, "parserDataToNaluType", "Failed to parserDataToNaluType param=NULL!\n"}});
}

TEST_F(DataTyping, nullParametersAreSeenBeforeNullData) {
    std::vector<Info> infos = {kStale};
    EXPECT_EQ(QVNaluParser::parserDataToNaluType(nullptr, 0, infos, nullptr), 11000001);
    EXPECT_EQ(typed(infos), typed({kStale}));
    expectLines({{0, "parserDataToNaluType", "Failed to parserDataToNaluType param=NULL!\n"}});
}

TEST_F(DataTyping, exceptionOfTheHostsLogPassesThrough) {
    std::vector<Info> infos;
    core().throwFromLog = true;
    EXPECT_THROW(QVNaluParser::parserDataToNaluType(nullptr, 0, infos, nullptr), LogFailure);
}

TEST_F(DataTyping, unsupportedCodecIsNotLogged) {
    const Bytes data = {0, 0, 1, 0x65};
    for (const unsigned codec : kUnsupportedCodecs) {
        const QVCodecParameters params = {static_cast<QVCodecID>(codec), 1, 4};
        std::vector<Info> infos = {kStale};
        EXPECT_EQ(QVNaluParser::parserDataToNaluType(data.data(), 4, infos, &params), 11000001) << codec;
        EXPECT_EQ(typed(infos), typed({kStale}));
    }
    expectNoLines();
}

TEST_F(DataTyping, annexB) {
    EXPECT_THAT(type({0, 0, 0, 1,    0x67, 0x42,  //
                      0, 0, 1, 0x06, 0x05,        //
                      0, 0, 1, 0xE5, 0x88,        //
                      0, 0, 1, 0x01, 0x9A},
                     kAvcAnnexB),
                ElementsAre(Typed{7, 4, 2, false}, Typed{6, 9, 2, false}, Typed{1, 19, 2, true}));
    EXPECT_THAT(type({0, 0, 0, 1, 0x40, 0x01,  //
                      0, 0, 1, 0x26, 0x01,     //
                      0, 0, 1, 0x00, 0x01},
                     kHevcAnnexB),
                ElementsAre(Typed{32, 4, 2, false}, Typed{19, 9, 2, false}, Typed{0, 14, 2, true}));
    expectNoLines();
}

TEST_F(DataTyping, anyNonZeroFlagMeansAnnexB) {
    for (const uint32_t flag : {1U, 2U, 0x100U, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_THAT(type({0, 0, 1, 0x65}, {QVCodecIDAvc, flag, 4}), ElementsAre(Typed{5, 3, 1, false}))
            << flag;
    }
}

TEST_F(DataTyping, lengthSizePlaysNoPartInAnnexB) {
    for (unsigned lengthSize = 0; lengthSize < 256; ++lengthSize) {
        const QVCodecParameters params = {QVCodecIDAvc, 1, static_cast<uint8_t>(lengthSize)};
        EXPECT_THAT(type({0, 0, 1, 0x65}, params), ElementsAre(Typed{5, 3, 1, false})) << lengthSize;
    }
}

TEST_F(DataTyping, everyLengthSize) {
    // The data is one unit with 4-byte lengths, two with 2-byte lengths and four with 1-byte lengths.
    const Bytes data = {0, 0, 0, 1, 0x65};
    for (unsigned lengthSize = 0; lengthSize < 256; ++lengthSize) {
        const QVCodecParameters params = {QVCodecIDAvc, 0, static_cast<uint8_t>(lengthSize)};
        if (lengthSize == 1) {
            EXPECT_THAT(type(data, params), ElementsAre(Typed{0, 1, 0, false}, Typed{0, 2, 0, false},
                                                        Typed{1, 3, 0, true}, Typed{5, 4, 1, false}));
        } else if (lengthSize == 2) {
            EXPECT_THAT(type(data, params), ElementsAre(Typed{0, 2, 0, false}, Typed{5, 4, 1, false}));
        } else {
            EXPECT_THAT(type(data, params), ElementsAre(Typed{5, 4, 1, false})) << lengthSize;
        }
    }
    expectNoLines();
}

TEST_F(DataTyping, lengthPrefixedHevc) {
    EXPECT_THAT(type({0, 2, 0x40, 0x01,  //
                      0, 3, 0x28, 0x01, 0xAF},
                     {QVCodecIDHevc, 0, 2}),
                ElementsAre(Typed{32, 2, 2, false}, Typed{20, 6, 3, false}));
}

TEST_F(DataTyping, notAnnexBAlthoughTheParametersSaySo) {
    for (const Bytes& data : {Bytes{0, 0, 0, 2, 0x65, 0x88}, Bytes{0, 0, 1}, Bytes{0x65, 0, 0, 1, 0x65}}) {
        EXPECT_THAT(type(data, kAvcAnnexB), IsEmpty());
    }
    expectNoLines();
}

TEST_F(DataTyping, annexBReadAsLengthsWhenTheParametersSaySo) {
    const Bytes data = {0, 0, 0, 1, 0x65,  //
                        0, 0, 0, 1, 0x41};
    EXPECT_THAT(type(data, kAvcLength4), ElementsAre(Typed{5, 4, 1, false}, Typed{1, 9, 1, false}));
    EXPECT_THAT(type({0, 0, 1, 0x65, 0x88}, kAvcLength4), IsEmpty());
    expectLines({{0, "parserDataToNalus",
                  "Failed to parserDataToNaluType avaliable length:357, avaliableBytes:5.\n"}});
}

TEST_F(DataTyping, lengthPastTheEndKeepsTheUnitsBefore) {
    const Bytes data = {0,    0,    0,    1,    0x67,  //
                        0xFF, 0xFF, 0xFF, 0xFF, 0x65};
    EXPECT_THAT(type(data, kAvcLength4), ElementsAre(Typed{7, 4, 1, false}));
    expectLines({{0, "parserDataToNalus",
                  "Failed to parserDataToNaluType avaliable length:-1, avaliableBytes:5.\n"}});
    ASSERT_EQ(core().dumps.size(), 1U);
    EXPECT_EQ(core().dumps[0].label, "parserDataToNaluType fail");
    EXPECT_EQ(core().dumps[0].data, data.data());
    EXPECT_EQ(core().dumps[0].size, 10);
}

TEST_F(DataTyping, emptyUnitInsideTheBufferIsTyped) {
    EXPECT_THAT(type({0, 0, 0, 0, 0x65}, kAvcLength4), ElementsAre(Typed{5, 4, 0, false}));
    EXPECT_THAT(type({0, 0x65}, {QVCodecIDAvc, 0, 1}), ElementsAre(Typed{5, 1, 0, false}));
    EXPECT_THAT(type({0, 0x85}, {QVCodecIDAvc, 0, 1}), IsEmpty());
}

TEST_F(DataTyping, nullOrNoData) {
    const Bytes data = {0, 0, 0, 1, 0x65};
    for (const QVCodecParameters& params : {kAvcAnnexB, kHevcAnnexB, kAvcLength4}) {
        for (const int size : {INT_MIN, -1, 0, 5, INT_MAX}) {
            std::vector<Info> infos = {kStale};
            EXPECT_EQ(QVNaluParser::parserDataToNaluType(nullptr, size, infos, &params), 0);
            EXPECT_THAT(infos, IsEmpty());
        }
        for (const int size : kNoSizes) {
            std::vector<Info> infos = {kStale};
            EXPECT_EQ(QVNaluParser::parserDataToNaluType(data.data(), size, infos, &params), 0);
            EXPECT_THAT(infos, IsEmpty());
        }
    }
    expectNoLines();
}

TEST_F(DataTyping, noUnitsWithoutTheWorkingCopy) {
    const Bytes data = {0, 0, 0, 1, 0x65};
    std::vector<Info> infos = {kStale};
    const AllocationFault fault(Allocator::Malloc, 1);
    EXPECT_EQ(QVNaluParser::parserDataToNaluType(data.data(), sizeOf(data), infos, &kAvcLength4), 0);
    EXPECT_TRUE(fault.triggered());
    EXPECT_THAT(infos, IsEmpty());
    expectNoLines();
}

TEST_F(DataTyping, failedListGrowthPassesThrough) {
    const Bytes data = {0, 0, 0, 1, 0x65};
    for (const QVCodecParameters& params : {kAvcAnnexB, kAvcLength4}) {
        for (const int nth : {1, 2}) {  // the list of pairs, then infos
            std::vector<Info> infos;
            const AllocationFault fault(Allocator::New, nth);
            EXPECT_THROW(QVNaluParser::parserDataToNaluType(data.data(), sizeOf(data), infos, &params),
                         std::bad_alloc);
            EXPECT_THAT(infos, IsEmpty());
        }
    }
}

}  // namespace
}  // namespace qv_test
