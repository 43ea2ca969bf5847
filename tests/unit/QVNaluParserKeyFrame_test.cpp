#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <set>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"

namespace qv_test {
namespace {

bool isKeyFrame(QVCodecID codec, const Bytes& data) {
    return QVNaluParser::isKeyFrame(codec, data.data(), static_cast<int>(data.size()));
}

bool isAvcKeyFrame(const Bytes& data) {
    return isKeyFrame(QVCodecIDAvc, data);
}

bool isHevcKeyFrame(const Bytes& data) {
    return isKeyFrame(QVCodecIDHevc, data);
}

// nal_unit_type of Table 7-1. H.264: 5 IDR slice; 16 to 18 reserved (depth parameter set in some editions),
// 19 auxiliary slice, 20 and 21 extension slices. H.265: 5 STSA_R, 16 to 18 BLA, 19 and 20 IDR, 21 CRA.
const std::set<unsigned> kKeyUnitTypes = {5, 16, 17, 18, 19, 20, 21};

class KeyFrame : public CoreTest {
protected:
    // Key-frame detection must never log or dump anything.
    void TearDown() override {
        expectNoLines();
        EXPECT_THAT(core().dumps, ::testing::IsEmpty());
        CoreTest::TearDown();
    }
};

// --- Types ---

TEST_F(KeyFrame, D01_oneSetOfTypeNumbersForEveryFirstByteOfAvc) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const auto b = static_cast<uint8_t>(byte);
        const bool isKey = kKeyUnitTypes.count(byte % 32) == 1;  // for any forbidden_zero_bit and nal_ref_idc
        EXPECT_EQ(isAvcKeyFrame({0, 0, 1, b}), isKey) << byte;
        EXPECT_EQ(isAvcKeyFrame({0, 0, 0, 1, b}), isKey) << byte;
        EXPECT_EQ(isAvcKeyFrame({0, 0, 0, 2, b, 0}), isKey) << byte;
    }
}

TEST_F(KeyFrame, D01_oneSetOfTypeNumbersForEveryFirstByteOfHevc) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        const auto b = static_cast<uint8_t>(byte);
        const bool isKey = kKeyUnitTypes.count(byte / 2 % 64) == 1;  // for any values of the other two bits
        EXPECT_EQ(isHevcKeyFrame({0, 0, 1, b, 1}), isKey) << byte;
        EXPECT_EQ(isHevcKeyFrame({0, 0, 0, 1, b, 1}), isKey) << byte;
        EXPECT_EQ(isHevcKeyFrame({0, 0, 0, 2, b, 1}), isKey) << byte;
    }
}

TEST_F(KeyFrame, avcExamples) {
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 1, 0x65, 0x88}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 1, 0x41, 0x9A}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 1, 0x74, 0x80}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 1, 0x70, 0x80}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 1, 0x67, 0x42}));
}

TEST_F(KeyFrame, hevcExamples) {
    EXPECT_TRUE(isHevcKeyFrame({0, 0, 0, 1, 0x26, 0x01}));
    EXPECT_TRUE(isHevcKeyFrame({0, 0, 0, 1, 0x2A, 0x01}));
    EXPECT_TRUE(isHevcKeyFrame({0, 0, 0, 1, 0x0A, 0x01}));
    EXPECT_FALSE(isHevcKeyFrame({0, 0, 0, 1, 0x02, 0x01}));
    EXPECT_FALSE(isHevcKeyFrame({0, 0, 0, 1, 0x40, 0x01}));
}

TEST_F(KeyFrame, theSameByteIsReadByTheCodec) {
    EXPECT_FALSE(isHevcKeyFrame({0, 0, 0, 1, 0x65, 0x88}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 1, 0x26, 0x01}));
}

TEST_F(KeyFrame, forbiddenZeroBitIsNotExamined) {
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 1, 0xE5}));
    EXPECT_TRUE(isHevcKeyFrame({0, 0, 1, 0xA6}));
}

TEST_F(KeyFrame, recoveryPointPlaysNoPart) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 1, 0x06, 6, 1, 0xC4, 0x80,  //
                                0, 0, 1, 0x41, 0x9A}));
    EXPECT_FALSE(isHevcKeyFrame({0, 0, 1, 0x4E, 0x01, 6, 1, 0xD0, 0x80,  //
                                 0, 0, 1, 0x02, 0x01}));
}

TEST_F(KeyFrame, anyOtherCodecHasNone) {
    for (const unsigned codec : {0U, 1U, 25U, 27U, 171U, 173U, 0x8000001AU, 0xFFFFFFFFU}) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            const auto b = static_cast<uint8_t>(byte);
            EXPECT_FALSE(isKeyFrame(static_cast<QVCodecID>(codec), {0, 0, 1, b})) << codec;
            EXPECT_FALSE(isKeyFrame(static_cast<QVCodecID>(codec), {0, 0, 0, 1, b})) << codec;
            EXPECT_FALSE(isKeyFrame(static_cast<QVCodecID>(codec), {0, 0, 0, 2, b, 0})) << codec;
        }
    }
}

// --- Annex B ---

TEST_F(KeyFrame, anyUnitDecides) {
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 1, 0x06, 0x05,  //
                               0, 0, 1, 0x65, 0x84}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 1, 0x65, 0x84,  //
                               0, 0, 1, 0x06, 0x05}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 1,    0x09, 0xF0,  //
                               0, 0, 0, 1,    0x67, 0x42,  //
                               0, 0, 1, 0x68, 0xCE,        //
                               0, 0, 1, 0x65}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 1, 0x06, 0x05,  //
                                0, 0, 1, 0x41, 0x84}));
}

TEST_F(KeyFrame, onlyTheFirstByteOfAUnitCounts) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 1, 0x41, 0x65, 0x65, 0x65}));
}

TEST_F(KeyFrame, byteStreamWithoutAUnit) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 1}));
    EXPECT_FALSE(isHevcKeyFrame({0, 0, 0, 1}));
}

TEST_F(KeyFrame, D35_startCodeAtTheEndBeginsNoUnit) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 1, 0x41, 0, 0, 1}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 1, 0x41, 0, 0, 1, 0x65}));
}

TEST_F(KeyFrame, D36_byteAfterAStartCodeBeginsNoOther) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 1, 0, 0, 1, 0x65}));
}

// 00 00 00 01 could also be a length of 1. Then the second unit would be a key unit.
TEST_F(KeyFrame, startCodeInFrontMeansAnnexB) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 1, 0x41,  //
                                0, 0, 0, 2, 0x65, 0x88}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 2, 0x41, 0x9A,  //
                               0, 0, 0, 2, 0x65, 0x88}));
}

// A first length of 256 to 511 also means Annex B: 00 00 01 xx is read as a start code and a header byte xx.
TEST_F(KeyFrame, D26_firstUnitOf256To511BytesIsReadAsAByteStream) {
    for (unsigned lowByte = 0; lowByte < 256; ++lowByte) {
        Bytes data = {0, 0, 1, static_cast<uint8_t>(lowByte)};
        data.resize(4 + 256 + lowByte, 0x65);
        EXPECT_EQ(isAvcKeyFrame(data), kKeyUnitTypes.count(lowByte % 32) == 1) << lowByte;
    }
    Bytes data = {0, 0, 2, 0};
    data.resize(4 + 512, 0x65);
    EXPECT_TRUE(isAvcKeyFrame(data));
}

// --- Length-prefixed ---

TEST_F(KeyFrame, lengthPrefixed) {
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 2, 0x65, 0x88}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 2, 0x41, 0x9A}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 2, 0x06, 0x05,  //
                               0, 0, 0, 3, 0x65, 0x88, 0x84}));
    EXPECT_TRUE(isHevcKeyFrame({0, 0, 0, 2, 0x40, 0x01,  //
                                0, 0, 0, 2, 0x26, 0x01}));
    EXPECT_FALSE(isHevcKeyFrame({0, 0, 0, 2, 0x40, 0x01,  //
                                 0, 0, 0, 2, 0x02, 0x01}));
}

TEST_F(KeyFrame, D23_lengthsAreFourBytesWhateverTheStream) {
    EXPECT_FALSE(isAvcKeyFrame({2, 0x65, 0x88}));
    EXPECT_FALSE(isAvcKeyFrame({0, 2, 0x65, 0x88}));
    EXPECT_FALSE(isAvcKeyFrame({0, 2, 0x65, 0x88, 0x41}));
    EXPECT_TRUE(isAvcKeyFrame({0, 2, 0x41, 0x9A, 0x65}));
}

TEST_F(KeyFrame, lengthsAreBigEndian) {
    Bytes data = {0, 0, 0, 2, 0x41, 0x9A,  // 00 00 01 02 at the start would be a start code
                  0, 0, 1, 2};
    data.resize(data.size() + 0x0102, 0x41);
    data.insert(data.end(), {0, 0, 0, 1, 0x65});
    EXPECT_TRUE(isAvcKeyFrame(data));
    data.back() = 0x41;
    EXPECT_FALSE(isAvcKeyFrame(data));
}

TEST_F(KeyFrame, fewerThanFiveBytesThatAreNotAnnexB) {
    EXPECT_FALSE(isAvcKeyFrame({0x65}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0x65}));
    EXPECT_FALSE(isAvcKeyFrame({0x65, 0x65, 0x65, 0x65}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 0}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 0, 0x65}));
}

TEST_F(KeyFrame, D38_emptyUnitIsTypedByTheByteAfterItsLength) {
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 0, 0x65}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 0, 0x41}));
}

TEST_F(KeyFrame, fourBytesOrFewerAfterAUnitEndTheSearch) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 2, 0x41, 0x9A, 0, 0, 0, 1}));
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 2, 0x41, 0x9A, 0, 0, 0, 1, 0x65}));
}

TEST_F(KeyFrame, unitAfterALengthPastTheEndIsTyped) {
    EXPECT_TRUE(isAvcKeyFrame({0, 0, 0, 0x10, 0x65, 0x88}));
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 0x10, 0x41, 0x9A}));
    EXPECT_TRUE(isHevcKeyFrame({0, 0, 0, 0x10, 0x26, 0x01}));
}

// The next length is read directly after the first, inside the unit: 41 9A 00 00. The byte after it decides.
TEST_F(KeyFrame, nextLengthFollowsALengthPastTheEnd) {
    const std::pair<Bytes, const char*> fields[] = {
        {{0x00, 0x00, 0x00, 0x06}, "one byte past the end"},
        {{0x00, 0x00, 0x00, 0x10}, "16"},
        {{0x7F, 0xFF, 0xFF, 0xFB}, "to INT_MAX"},
        {{0x7F, 0xFF, 0xFF, 0xFC}, "past INT_MAX"},
        {{0x7F, 0xFF, 0xFF, 0xFF}, "INT_MAX"},
        {{0x80, 0x00, 0x00, 0x00}, "INT_MIN"},
        {{0xFF, 0xFF, 0xFF, 0xFB}, "-5"},
        {{0xFF, 0xFF, 0xFF, 0xFC}, "-4"},
        {{0xFF, 0xFF, 0xFF, 0xFD}, "-3"},
        {{0xFF, 0xFF, 0xFF, 0xFF}, "-1"},
    };
    for (const auto& [field, name] : fields) {
        Bytes data = field;
        data.insert(data.end(), {0x41, 0x9A, 0x00, 0x00, 0x65});
        EXPECT_TRUE(isAvcKeyFrame(data)) << name;
        data.back() = 0x41;
        EXPECT_FALSE(isAvcKeyFrame(data)) << name;
    }
}

TEST_F(KeyFrame, unitUpToTheEndIsStillPassed) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 5, 0x41, 0x9A, 0x00, 0x00, 0x65}));
}

// Following this length as a negative number would be an endless loop.
TEST_F(KeyFrame, minusFourAfterAUnit) {
    EXPECT_FALSE(isAvcKeyFrame({0, 0, 0, 2, 0x41, 0x9A,  //
                                0xFF, 0xFF, 0xFF, 0xFC, 0x41}));
}

// --- No data ---

TEST_F(KeyFrame, nullData) {
    for (const int size : {INT_MIN, -1, 0, 3, 4, 5, INT_MAX}) {
        EXPECT_FALSE(QVNaluParser::isKeyFrame(QVCodecIDAvc, nullptr, size)) << size;
        EXPECT_FALSE(QVNaluParser::isKeyFrame(QVCodecIDHevc, nullptr, size)) << size;
    }
}

TEST_F(KeyFrame, sizeBelowOne) {
    const Bytes byteStream = {0, 0, 1, 0x65, 0x88};
    const Bytes sample = {0, 0, 0, 2, 0x65, 0x88};
    for (const int size : {INT_MIN, -5, -1, 0}) {
        EXPECT_FALSE(QVNaluParser::isKeyFrame(QVCodecIDAvc, byteStream.data(), size)) << size;
        EXPECT_FALSE(QVNaluParser::isKeyFrame(QVCodecIDAvc, sample.data(), size)) << size;
    }
}

TEST_F(KeyFrame, failedWorkingCopy) {
    const Bytes sample = {0, 0, 0, 2, 0x65, 0x88};
    const AllocationFault fault(Allocator::Malloc, 1);
    EXPECT_FALSE(isAvcKeyFrame(sample));
    EXPECT_TRUE(fault.triggered());
}

}  // namespace
}  // namespace qv_test
