// Every buffer of up to nine bytes over {00, 01, 03, 65, 80} through every framing operation, against the
// slow reference: results, lists, output bytes and the number of log lines and dumps.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"

namespace qv_test {
namespace {

// The bytes that make start codes and short lengths, one that ends an emulation prevention sequence, an IDR
// slice of H.264, and one with the top bit set.
const Bytes kAlphabet = {0x00, 0x01, 0x03, 0x65, 0x80};
constexpr size_t kLongest = 9;
constexpr int kLengthSizes[] = {1, 2, 4, 3};

// Changes buffer to the next one with the same first prefixLength bytes. False after the last.
bool nextBuffer(Bytes& buffer, size_t prefixLength) {
    for (size_t i = buffer.size(); i > prefixLength; --i) {
        const auto letter = std::find(kAlphabet.begin(), kAlphabet.end(), buffer[i - 1]) + 1;
        if (letter != kAlphabet.end()) {
            buffer[i - 1] = *letter;
            return true;
        }
        buffer[i - 1] = kAlphabet[0];
    }
    return false;
}

int sizeOf(const Bytes& buffer) {
    return static_cast<int>(buffer.size());
}

bool hasLogged(size_t times) {
    const bool isRight = core().countedLines == times && core().countedDumps == times;
    core().countedLines = 0;
    core().countedDumps = 0;
    return isRight;
}

bool annexBScanIsRight(const Bytes& buffer) {
    NalIndexList actual;
    NalIndexList expected;
    const int result = QVNaluParser::parserDataToNaluIdx(buffer.data(), sizeOf(buffer), actual);
    return result == referenceAnnexBScan(buffer, expected) && actual == expected && hasLogged(0);
}

bool annexBScanIntoAFilledListIsRight(const Bytes& buffer) {
    NalIndexList actual = {{5, 50}, {2, 20}};
    NalIndexList expected = actual;
    const int result = QVNaluParser::parserDataToNaluIdx(buffer.data(), sizeOf(buffer), actual);
    return result == referenceAnnexBScan(buffer, expected) && actual == expected && hasLogged(0);
}

bool lengthScanIsRight(const Bytes& buffer, int lengthSize) {
    NalIndexList actual;
    const int result = QVNaluParser::parserDataToNalus(buffer.data(), sizeOf(buffer), actual, lengthSize);
    const ReferenceLengthScan expected = referenceLengthScan(buffer, lengthSize);
    return result == 0 && actual == expected.nalus && hasLogged(expected.isTruncated ? 1 : 0);
}

bool keyFrameDetectionIsRight(const Bytes& buffer, QVCodecID codec) {
    return QVNaluParser::isKeyFrame(codec, buffer.data(), sizeOf(buffer)) ==
               referenceIsKeyFrame(codec, buffer) &&
           hasLogged(0);
}

bool sameInfos(const std::vector<QVNaluParser::NaluInfo>& a, const std::vector<QVNaluParser::NaluInfo>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& one, const auto& other) {
        return one.naluType == other.naluType && one.offset == other.offset && one.length == other.length &&
               one.isNonReference == other.isNonReference;
    });
}

bool annexBTypingIsRight(const Bytes& buffer, QVCodecID codec) {
    const QVCodecParameters params = {codec, 1, 0};
    std::vector<QVNaluParser::NaluInfo> actual(1);
    const int result = QVNaluParser::parserDataToNaluType(buffer.data(), sizeOf(buffer), actual, &params);
    NalIndexList nalus;
    referenceAnnexBScan(buffer, nalus);
    return result == 0 && sameInfos(actual, referenceTyping(buffer, nalus, codec)) && hasLogged(0);
}

bool lengthTypingIsRight(const Bytes& buffer, QVCodecID codec, int lengthSize) {
    const QVCodecParameters params = {codec, 0, static_cast<uint8_t>(lengthSize)};
    std::vector<QVNaluParser::NaluInfo> actual(1);
    const int result = QVNaluParser::parserDataToNaluType(buffer.data(), sizeOf(buffer), actual, &params);
    const ReferenceLengthScan scan = referenceLengthScan(buffer, lengthSize);
    return result == 0 && sameInfos(actual, referenceTyping(buffer, scan.nalus, codec)) &&
           hasLogged(scan.isTruncated ? 1 : 0);
}

bool annexBToLengthsIsRight(const Bytes& buffer) {
    Bytes actual = {0xDE, 0xAD};
    Bytes expected = actual;
    const int result = QVNaluParser::converAnnexBToAvcC(buffer.data(), sizeOf(buffer), actual);
    return result == referenceAnnexBToLengths(buffer, expected) && actual == expected && hasLogged(0);
}

bool lengthsToAnnexBIsRight(const Bytes& buffer, int lengthSize) {
    unsigned char* out = nullptr;
    constexpr int kUntouched = -7;
    int outSize = kUntouched;
    const int result =
        QVNaluParser::connvertAvcCToAnnexB(buffer.data(), sizeOf(buffer), lengthSize, &out, outSize);
    Bytes expected;
    if (result != referenceLengthsToAnnexB(buffer, lengthSize, expected)) {
        return false;
    }
    if (!hasLogged(referenceLengthScan(buffer, lengthSize).isTruncated ? 1 : 0)) {
        return false;
    }
    if (result != 0) {
        return out == nullptr && outSize == (buffer.empty() ? kUntouched : 0);
    }
    const bool isRight = outSize == sizeOf(expected) && core().blocks[out] == expected.size() &&
                         std::equal(expected.begin(), expected.end(), out);
    releaseBlock(out);
    return isRight;
}

// The operation that differs from the reference, or nothing.
std::string difference(const Bytes& buffer) {
    if (!annexBScanIsRight(buffer)) {
        return "parserDataToNaluIdx";
    }
    if (!annexBScanIntoAFilledListIsRight(buffer)) {
        return "parserDataToNaluIdx into a filled list";
    }
    for (const QVCodecID codec : {QVCodecIDAvc, QVCodecIDHevc}) {
        if (!keyFrameDetectionIsRight(buffer, codec)) {
            return "isKeyFrame of codec " + std::to_string(codec);
        }
        if (!annexBTypingIsRight(buffer, codec)) {
            return "parserDataToNaluType of codec " + std::to_string(codec) + ", Annex B";
        }
    }
    if (!annexBToLengthsIsRight(buffer)) {
        return "converAnnexBToAvcC";
    }
    for (const int lengthSize : kLengthSizes) {
        if (!lengthScanIsRight(buffer, lengthSize)) {
            return "parserDataToNalus with " + std::to_string(lengthSize) + "-byte lengths";
        }
        if (!lengthTypingIsRight(buffer, QVCodecIDAvc, lengthSize) ||
            !lengthTypingIsRight(buffer, QVCodecIDHevc, lengthSize)) {
            return "parserDataToNaluType with " + std::to_string(lengthSize) + "-byte lengths";
        }
        if (!lengthsToAnnexBIsRight(buffer, lengthSize)) {
            return "connvertAvcCToAnnexB with " + std::to_string(lengthSize) + "-byte lengths";
        }
    }
    return {};
}

class FramingExhaustive : public CoreTest {
protected:
    void SetUp() override {
        CoreTest::SetUp();
        core().onlyCounts = true;
    }

    // Every buffer of that length that begins with prefix. The vector's block ends where the buffer ends.
    void check(const Bytes& prefix, size_t length) {
        Bytes buffer = prefix;
        buffer.resize(length, kAlphabet[0]);
        buffer.shrink_to_fit();
        do {
            const std::string operation = difference(buffer);
            ASSERT_EQ(operation, "") << "on " << ::testing::PrintToString(buffer);
            ++checked_;
        } while (nextBuffer(buffer, prefix.size()));
    }

    size_t checked_ = 0;
};

TEST_F(FramingExhaustive, ofOneByteAndOfNone) {
    check({}, 0);
    check({}, 1);
    EXPECT_EQ(checked_, 6U);
}

class FramingExhaustiveFrom : public FramingExhaustive,
                              public ::testing::WithParamInterface<std::pair<uint8_t, uint8_t>> {};

TEST_P(FramingExhaustiveFrom, everyLength) {
    size_t expected = 0;
    for (size_t length = 2, count = 1; length <= kLongest; ++length, count *= kAlphabet.size()) {
        check({GetParam().first, GetParam().second}, length);
        expected += count;
    }
    EXPECT_EQ(checked_, expected);
}

std::vector<std::pair<uint8_t, uint8_t>> everyBeginning() {
    std::vector<std::pair<uint8_t, uint8_t>> beginnings;
    for (const uint8_t first : kAlphabet) {
        for (const uint8_t second : kAlphabet) {
            beginnings.emplace_back(first, second);
        }
    }
    return beginnings;
}

std::string nameOf(const ::testing::TestParamInfo<std::pair<uint8_t, uint8_t>>& info) {
    char name[8];
    std::snprintf(name, sizeof name, "%02X%02X", info.param.first, info.param.second);
    return name;
}

INSTANTIATE_TEST_SUITE_P(Beginning, FramingExhaustiveFrom, ::testing::ValuesIn(everyBeginning()), nameOf);

}  // namespace
}  // namespace qv_test
