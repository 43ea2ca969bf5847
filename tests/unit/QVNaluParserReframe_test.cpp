#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <string>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"

namespace qv_test {
namespace {

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

constexpr int kNoSizes[] = {0, -1, -4, INT_MIN};

// --- converAnnexBToAvcC ---

class AnnexBToLengths : public CoreTest {
protected:
    void TearDown() override {
        expectNoLines();
        EXPECT_EQ(core().playerAllocations, 0);
        CoreTest::TearDown();
    }

    static Bytes convert(const Bytes& data) {
        Bytes out = {0xDE, 0xAD};
        EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), 0);
        return out;
    }

    // Checks that the conversion fails and leaves `out` unchanged, including its capacity and block.
    static void expectRejected(const unsigned char* data, int size) {
        Bytes out = {0xDE, 0xAD};
        const unsigned char* const block = out.data();
        const size_t capacity = out.capacity();
        EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data, size, out), 11000012);
        EXPECT_EQ(out, (Bytes{0xDE, 0xAD}));
        EXPECT_EQ(out.data(), block);
        EXPECT_EQ(out.capacity(), capacity);
    }

    static void expectRejected(const Bytes& data) { expectRejected(data.data(), sizeOf(data)); }
};

TEST_F(AnnexBToLengths, threeByteStartCodes) {
    EXPECT_EQ(convert({0, 0, 1, 0x67, 0x42,  //
                       0, 0, 1, 0x68, 0xCE}),
              (Bytes{0, 0, 0, 2, 0x67, 0x42,  //
                     0, 0, 0, 2, 0x68, 0xCE}));
}

TEST_F(AnnexBToLengths, fourByteStartCodes) {
    EXPECT_EQ(convert({0, 0, 0, 1, 0x67, 0x42,  //
                       0, 0, 0, 1, 0x68}),
              (Bytes{0, 0, 0, 2, 0x67, 0x42,  //
                     0, 0, 0, 1, 0x68}));
}

TEST_F(AnnexBToLengths, oneUnit) {
    EXPECT_EQ(convert({0, 0, 1, 0x65}), (Bytes{0, 0, 0, 1, 0x65}));
    EXPECT_EQ(convert({0, 0, 0, 1, 0x65, 0x88}), (Bytes{0, 0, 0, 2, 0x65, 0x88}));
}

TEST_F(AnnexBToLengths, D02_trailingZerosStayInTheirUnit) {
    EXPECT_EQ(convert({0, 0, 1, 0x67, 0, 0,  //
                       0, 0, 0, 1, 0x68, 0}),
              (Bytes{0, 0, 0, 3, 0x67, 0, 0,  //
                     0, 0, 0, 2, 0x68, 0}));
}

TEST_F(AnnexBToLengths, emulationPreventionBytesStay) {
    EXPECT_EQ(convert({0, 0, 1, 0x67, 0, 0, 3, 1, 0, 0, 3}), (Bytes{0, 0, 0, 8, 0x67, 0, 0, 3, 1, 0, 0, 3}));
}

TEST_F(AnnexBToLengths, D35_startCodeAtTheEndIsDataOfTheLastUnit) {
    EXPECT_EQ(convert({0, 0, 1, 0x65, 0, 0, 1}), (Bytes{0, 0, 0, 4, 0x65, 0, 0, 1}));
}

TEST_F(AnnexBToLengths, unitsWithForbiddenZeroBitAreCarried) {
    EXPECT_EQ(convert({0, 0, 1, 0xE5, 0x88}), (Bytes{0, 0, 0, 2, 0xE5, 0x88}));
}

TEST_F(AnnexBToLengths, lengthsAreWrittenBigEndian) {
    Bytes data = {0, 0, 0, 1};
    data.resize(4 + 0x010203, 0xAB);
    Bytes expected = {0x00, 0x01, 0x02, 0x03};
    expected.resize(4 + 0x010203, 0xAB);
    EXPECT_EQ(convert(data), expected);
}

TEST_F(AnnexBToLengths, capacityBelowTheSizeBecomesTheSize) {
    const Bytes data = {0, 0, 0, 1, 0x67, 0x42,  //
                        0, 0, 0, 1, 0x68, 0xCE};
    for (const size_t capacity : {size_t{0}, size_t{1}, data.size() - 1}) {
        Bytes out;
        out.reserve(capacity);
        EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), 0);
        EXPECT_EQ(out.size(), data.size());
        EXPECT_EQ(out.capacity(), data.size()) << "from " << capacity;
    }
}

TEST_F(AnnexBToLengths, capacityOfTheSizeOrMoreIsKept) {
    const Bytes data = {0, 0, 0, 1, 0x67, 0x42};
    for (const size_t capacity : {data.size(), data.size() + 1, size_t{100}}) {
        Bytes out;
        out.reserve(capacity);
        const unsigned char* const block = out.data();
        EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), 0);
        EXPECT_EQ(out.capacity(), capacity);
        EXPECT_EQ(out.data(), block);
    }
}

// Each 3-byte start code makes the output one byte longer than the input.
TEST_F(AnnexBToLengths, capacityDoublesWhenItRunsOutInAUnit) {
    const Bytes data = {0, 0, 1, 0x67, 0x42,  //
                        0, 0, 1, 0x68, 0xCE};
    Bytes out;
    EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), 0);
    EXPECT_EQ(out.size(), 12U);
    EXPECT_EQ(out.capacity(), 20U);
}

TEST_F(AnnexBToLengths, capacityDoublesWhenItRunsOutInALength) {
    const Bytes data = {0, 0, 1, 0x67,  //
                        0, 0, 1, 0x68};
    Bytes out;
    EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), 0);
    EXPECT_EQ(out.size(), 10U);
    EXPECT_EQ(out.capacity(), 16U);
}

TEST_F(AnnexBToLengths, capacityDoublesThoughSomeOfItWasLeft) {
    const Bytes data = {0, 0, 1, 0x67,  //
                        0, 0, 1, 0x68,  //
                        0, 0, 1, 0x65,  //
                        0, 0, 1, 0x41, 0x9A, 0xBC};
    Bytes out;
    EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), 0);
    // 15 bytes of three units, 4 of the length and 3 of the unit. The length does not fit into the 18
    // reserved bytes.
    EXPECT_EQ(out.size(), 22U);
    EXPECT_EQ(out.capacity(), 36U);
}

TEST_F(AnnexBToLengths, nullData) {
    for (const int size : {INT_MIN, -1, 0, 4, INT_MAX}) {
        expectRejected(nullptr, size);
    }
}

TEST_F(AnnexBToLengths, sizeBelowOne) {
    const Bytes data = {0, 0, 1, 0x65};
    for (const int size : kNoSizes) {
        expectRejected(data.data(), size);
    }
}

TEST_F(AnnexBToLengths, shorterThanFourBytes) {
    expectRejected({0});
    expectRejected({0, 0, 1});
}

TEST_F(AnnexBToLengths, noStartCodeInFront) {
    expectRejected({0, 0, 0, 2, 0x65, 0x88});
    expectRejected({0x65, 0, 0, 1, 0x65});
    expectRejected({0, 0, 0, 0, 1, 0x65});
}

TEST_F(AnnexBToLengths, noUnits) {
    expectRejected({0, 0, 0, 1});
}

// Long units are copied in pieces. A start code at any position must not be copied, not even in part.
TEST_F(AnnexBToLengths, startCodesAroundThePiecesOfALongUnit) {
    for (const Bytes& startCode : {Bytes{0, 0, 1}, Bytes{0, 0, 0, 1}, Bytes{0, 0, 0, 0, 1}}) {
        for (size_t piece = 8192; piece <= 65536; piece += 8192) {
            for (size_t place = piece - 8; place < piece + 8; ++place) {
                Bytes data = {0, 0, 1, 0x65};
                data.resize(place, 0x55);
                data.insert(data.end(), startCode.begin(), startCode.end());
                data.resize(data.size() + 5, 0x55);
                Bytes expected;
                ASSERT_EQ(referenceAnnexBToLengths(data, expected), 0);
                ASSERT_EQ(convert(data), expected) << "at " << place;
            }
        }
    }
}

TEST_F(AnnexBToLengths, failedReservationLeavesOutEmpty) {
    const Bytes data = {0, 0, 1, 0x65};
    Bytes out = {0xDE, 0xAD};
    const AllocationFault fault(Allocator::New, 1);
    EXPECT_THROW(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), std::bad_alloc);
    EXPECT_EQ(out, Bytes());
}

TEST_F(AnnexBToLengths, failedGrowthOfOutPassesThrough) {
    const Bytes data = {0, 0, 1, 0x65};
    Bytes out;
    const AllocationFault fault(Allocator::New, 2);
    EXPECT_THROW(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), std::bad_alloc);
    EXPECT_TRUE(fault.triggered());
}

TEST_F(AnnexBToLengths, anOutWithRoomIsAllThatIsNeeded) {
    const Bytes data = {0, 0, 1, 0x65, 0x88, 0, 0, 1, 0x41};
    Bytes out(100);
    const AllocationFault fault(Allocator::New, 0);
    EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(data.data(), sizeOf(data), out), 0);
    EXPECT_EQ(fault.seen(), 0);
}

// --- connvertAvcCToAnnexB ---

class LengthsToAnnexB : public CoreTest {
protected:
    static constexpr int kUntouched = -77;

    static Bytes convert(const Bytes& data, int lengthSize) {
        unsigned char* out = nullptr;
        int outSize = kUntouched;
        EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(data.data(), sizeOf(data), lengthSize, &out, outSize),
                  0);
        if (out == nullptr) {
            ADD_FAILURE() << "no buffer";
            return {};
        }
        EXPECT_EQ(core().blocks[out], static_cast<size_t>(outSize));
        const Bytes bytes(out, out + outSize);
        releaseBlock(out);
        return bytes;
    }

    // Checks that the conversion fails after it has checked its arguments.
    static void expectRejected(const Bytes& data, int lengthSize, int result = 11000012) {
        unsigned char* out = nullptr;
        int outSize = kUntouched;
        EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(data.data(), sizeOf(data), lengthSize, &out, outSize),
                  result);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(outSize, 0);
        EXPECT_TRUE(core().blocks.empty());
    }

    static void expectTruncated(const Bytes& data, const std::string& text) {
        expectLines({{0, "parserDataToNalus", text}});
        ASSERT_EQ(core().dumps.size(), 1U);
        EXPECT_EQ(core().dumps[0].label, "parserDataToNaluType fail");
        EXPECT_EQ(core().dumps[0].data, data.data());
        EXPECT_EQ(core().dumps[0].size, sizeOf(data));
    }

    static void expectSilence() {
        expectNoLines();
        EXPECT_THAT(core().dumps, ::testing::IsEmpty());
    }
};

TEST_F(LengthsToAnnexB, fourByteLengths) {
    EXPECT_EQ(convert({0, 0, 0, 2, 0x67, 0x42,  //
                       0, 0, 0, 1, 0x68},
                      4),
              (Bytes{0, 0, 0, 1, 0x67, 0x42,  //
                     0, 0, 0, 1, 0x68}));
    expectSilence();
}

TEST_F(LengthsToAnnexB, twoByteLengths) {
    EXPECT_EQ(convert({0, 2, 0x65, 0x88}, 2), (Bytes{0, 0, 0, 1, 0x65, 0x88}));
    EXPECT_EQ(convert({0, 2, 0x65, 0x88, 0, 1, 0x41}, 2), (Bytes{0, 0, 0, 1, 0x65, 0x88, 0, 0, 0, 1, 0x41}));
    expectSilence();
}

TEST_F(LengthsToAnnexB, oneByteLengths) {
    EXPECT_EQ(convert({2, 0x65, 0x88, 1, 0x41}, 1), (Bytes{0, 0, 0, 1, 0x65, 0x88, 0, 0, 0, 1, 0x41}));
    expectSilence();
}

TEST_F(LengthsToAnnexB, everyOtherLengthSizeMeansFour) {
    for (const int lengthSize : {0, 3, 5, 8, 255, 257, 258, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(convert({0, 0, 0, 2, 0x65, 0x88}, lengthSize), (Bytes{0, 0, 0, 1, 0x65, 0x88}))
            << lengthSize;
    }
    expectSilence();
}

TEST_F(LengthsToAnnexB, D37_emptyUnits) {
    EXPECT_EQ(convert({0, 0, 0, 0,  //
                       0, 0, 0, 2, 0x65, 0x88},
                      4),
              (Bytes{0, 0, 0, 1,  //
                     0, 0, 0, 1, 0x65, 0x88}));
    EXPECT_EQ(convert({0, 0, 1, 0x65}, 1), (Bytes{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0x65}));
    expectSilence();
}

TEST_F(LengthsToAnnexB, unitsAreCarriedAsTheyAre) {
    EXPECT_EQ(convert({12, 0x65, 0, 0, 3, 1, 0, 0, 1, 0, 0, 0, 1}, 1),
              (Bytes{0, 0, 0, 1, 0x65, 0, 0, 3, 1, 0, 0, 1, 0, 0, 0, 1}));
    EXPECT_EQ(convert({2, 0xE5, 0x88}, 1), (Bytes{0, 0, 0, 1, 0xE5, 0x88}));
    expectSilence();
}

TEST_F(LengthsToAnnexB, longUnit) {
    Bytes data = {0xFF, 0xFF};
    data.resize(2 + 0xFFFF, 0xAB);
    Bytes expected = {0, 0, 0, 1};
    expected.resize(4 + 0xFFFF, 0xAB);
    EXPECT_EQ(convert(data, 2), expected);
    expectSilence();
}

TEST_F(LengthsToAnnexB, oneAllocationOfThePlayer) {
    convert({0, 2, 0x65, 0x88, 0, 1, 0x41}, 2);
    EXPECT_EQ(core().playerAllocations, 1);
}

TEST_F(LengthsToAnnexB, nullOutTouchesNothing) {
    const Bytes data = {0, 2, 0x65, 0x88};
    int outSize = kUntouched;
    EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(data.data(), 4, 2, nullptr, outSize), 11000012);
    EXPECT_EQ(outSize, kUntouched);
    EXPECT_EQ(core().playerAllocations, 0);
}

TEST_F(LengthsToAnnexB, outThatHoldsABufferIsLeftAlone) {
    const Bytes data = {0, 2, 0x65, 0x88};
    Bytes held = {1, 2, 3};
    unsigned char* out = held.data();
    int outSize = kUntouched;
    EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(data.data(), 4, 2, &out, outSize), 11000012);
    EXPECT_EQ(out, held.data());
    EXPECT_EQ(held, (Bytes{1, 2, 3}));
    EXPECT_EQ(outSize, kUntouched);
    EXPECT_EQ(core().playerAllocations, 0);
}

TEST_F(LengthsToAnnexB, nullDataTouchesNothing) {
    for (const int size : {INT_MIN, -1, 0, 4, INT_MAX}) {
        unsigned char* out = nullptr;
        int outSize = kUntouched;
        EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(nullptr, size, 4, &out, outSize), 11000012);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(outSize, kUntouched);
    }
}

TEST_F(LengthsToAnnexB, sizeBelowOneTouchesNothing) {
    const Bytes data = {0, 2, 0x65, 0x88};
    for (const int size : kNoSizes) {
        unsigned char* out = nullptr;
        int outSize = kUntouched;
        EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(data.data(), size, 2, &out, outSize), 11000012);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(outSize, kUntouched);
    }
}

TEST_F(LengthsToAnnexB, noUnits) {
    expectRejected({1}, 1);
    expectRejected({0, 1}, 2);
    expectRejected({0, 0, 0, 1}, 4);
    expectSilence();
}

TEST_F(LengthsToAnnexB, spareBytesAfterTheLastUnit) {
    expectRejected({0, 0, 0, 2, 0x65, 0x88, 0}, 4);
    expectRejected({0, 0, 0, 2, 0x65, 0x88, 0, 0, 0, 0}, 4);
    expectRejected({0, 2, 0x65, 0x88, 0}, 2);
    expectRejected({0, 2, 0x65, 0x88, 0, 0}, 2);
    expectRejected({2, 0x65, 0x88, 0}, 1);
    expectSilence();
}

TEST_F(LengthsToAnnexB, D37_emptyUnitAtTheEndIsASpareLength) {
    expectRejected({0, 0, 0, 0}, 4);
    expectRejected({0, 0, 0, 0, 0x65}, 4);
    expectSilence();
}

TEST_F(LengthsToAnnexB, firstLengthPastTheEnd) {
    const Bytes data = {0, 0, 0, 3, 0x65, 0x88};
    expectRejected(data, 4);
    expectTruncated(data, "Failed to parserDataToNaluType avaliable length:3, avaliableBytes:6.\n");
}

TEST_F(LengthsToAnnexB, laterLengthPastTheEndRejectsTheWholeBuffer) {
    const Bytes data = {2, 0x65, 0x88, 1, 0x41, 200, 0x41};
    expectRejected(data, 1);
    expectTruncated(data, "Failed to parserDataToNaluType avaliable length:200, avaliableBytes:2.\n");
}

TEST_F(LengthsToAnnexB, lengthWithTheTopBitSet) {
    const Bytes data = {0xFF, 0xFF, 0xFF, 0xFF, 0x65};
    expectRejected(data, 4);
    expectTruncated(data, "Failed to parserDataToNaluType avaliable length:-1, avaliableBytes:5.\n");
}

TEST_F(LengthsToAnnexB, failedWorkingCopyMeansNoUnits) {
    const AllocationFault fault(Allocator::Malloc, 1);
    expectRejected({0, 2, 0x65, 0x88}, 2);
    EXPECT_TRUE(fault.triggered());
    expectSilence();
}

TEST_F(LengthsToAnnexB, failedScratchArray) {
    // The unit counts as empty, and its bytes are read as the next length.
    const AllocationFault fault(Allocator::NothrowNewArray, 1);
    EXPECT_EQ(convert({2, 1, 0x41}, 1), (Bytes{0, 0, 0, 1, 0, 0, 0, 1, 0x41}));
    EXPECT_TRUE(fault.triggered());
    expectSilence();
}

TEST_F(LengthsToAnnexB, failedOutputBuffer) {
    core().failPlayerAllocation = 1;
    expectRejected({0, 2, 0x65, 0x88}, 2, 11000050);
    expectSilence();
}

TEST_F(LengthsToAnnexB, failedIndexListPassesThrough) {
    const Bytes data = {1, 0x67, 1, 0x68, 1, 0x65};
    for (const int nth : {1, 2, 3}) {
        unsigned char* out = nullptr;
        int outSize = kUntouched;
        const AllocationFault fault(Allocator::New, nth);
        EXPECT_THROW(QVNaluParser::connvertAvcCToAnnexB(data.data(), sizeOf(data), 1, &out, outSize),
                     std::bad_alloc);
        EXPECT_EQ(out, nullptr);
        EXPECT_EQ(outSize, 0);
    }
}

TEST_F(LengthsToAnnexB, exceptionOfTheHostsLogPassesThrough) {
    const Bytes data = {1, 0x67, 9, 0x68};
    unsigned char* out = nullptr;
    int outSize = kUntouched;
    core().throwFromLog = true;
    EXPECT_THROW(QVNaluParser::connvertAvcCToAnnexB(data.data(), sizeOf(data), 1, &out, outSize), LogFailure);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(outSize, 0);
}

}  // namespace
}  // namespace qv_test
