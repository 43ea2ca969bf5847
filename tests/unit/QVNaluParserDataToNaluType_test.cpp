// Scan and typing in one call, parserDataToNaluType.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <vector>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ScanTest.h"
#include "SeiTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

TEST_F(DataTyping, D38_emptyUnitInsideTheBufferIsTyped) {
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
