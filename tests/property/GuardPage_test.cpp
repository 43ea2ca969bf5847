// The fast paths on adversarial buffers that end right ahead of an inaccessible page, or begin right behind
// one, against the slow references. QVNALU_TEST_ROUNDS sets how many buffers each test takes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include "CursorModel.h"
#include "GuardedBuffer.h"
#include "QVAvcSps.h"
#include "QVHevcSps.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"

namespace qv_test {
namespace {

constexpr size_t kLongest = 1500;

int rounds() {
    const char* const text = std::getenv("QVNALU_TEST_ROUNDS");
    return text != nullptr ? std::atoi(text) : 4000;
}

using Random = std::mt19937;

size_t below(Random& random, size_t bound) {
    return random() % bound;
}

// Runs of one density after the other: start codes and what nearly is one, or long stretches without.
Bytes adversarialBytes(Random& random, size_t size) {
    static const Bytes dense = {0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x02, 0x03, 0x65, 0xFF};
    Bytes bytes;
    while (bytes.size() < size) {
        const size_t run = std::min(size - bytes.size(), 1 + below(random, 300));
        const size_t kind = below(random, 3);
        for (size_t i = 0; i < run; ++i) {
            bytes.push_back(kind == 0   ? dense[below(random, dense.size())]
                            : kind == 1 ? static_cast<uint8_t>(random())
                                        : static_cast<uint8_t>(0x55));
        }
    }
    return bytes;
}

Bytes withStartCode(Random& random, Bytes bytes) {
    const size_t zeros = 2 + below(random, 2);
    for (size_t i = 0; i < bytes.size() && i <= zeros; ++i) {
        bytes[i] = i < zeros ? 0x00 : 0x01;
    }
    return bytes;
}

class GuardPage : public CoreTest {
protected:
    void SetUp() override {
        CoreTest::SetUp();
        core().onlyCounts = true;
    }

    // Calls check(bytes, data) with as many buffers as the test takes, each at both ends of the memory.
    template <class Check>
    void onBuffers(Check check) {
        Random random(2024);
        for (int round = 0; round < rounds() && !HasFatalFailure(); ++round) {
            SCOPED_TRACE("round " + std::to_string(round));
            const size_t longest = below(random, 4) == 0 ? kLongest : 48;
            const Bytes plain = adversarialBytes(random, below(random, longest));
            const Bytes bytes = below(random, 4) == 0 ? plain : withStartCode(random, plain);
            check(bytes, memory_.placeAtEnd(bytes));
            check(bytes, memory_.placeAtBegin(bytes));
        }
    }

private:
    GuardedBuffer memory_{kLongest};
};

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

TEST_F(GuardPage, scansAndKeyFrames) {
    onBuffers([](const Bytes& bytes, const unsigned char* data) {
        NalIndexList expected;
        NalIndexList actual;
        const int result = referenceAnnexBScan(bytes, expected);
        ASSERT_EQ(QVNaluParser::parserDataToNaluIdx(data, sizeOf(bytes), actual), result);
        ASSERT_EQ(actual, expected);
        for (const int lengthSize : {1, 2, 4}) {
            NalIndexList nalus;
            ASSERT_EQ(QVNaluParser::parserDataToNalus(data, sizeOf(bytes), nalus, lengthSize), 0);
            ASSERT_EQ(nalus, referenceLengthScan(bytes, lengthSize).nalus);
        }
        for (const QVCodecID codec : {QVCodecIDAvc, QVCodecIDHevc}) {
            ASSERT_EQ(QVNaluParser::isKeyFrame(codec, data, sizeOf(bytes)),
                      referenceIsKeyFrame(codec, bytes));
        }
    });
}

TEST_F(GuardPage, conversions) {
    onBuffers([](const Bytes& bytes, const unsigned char* data) {
        Bytes actual = {0xDE, 0xAD};
        Bytes expected = actual;
        const int result = referenceAnnexBToLengths(bytes, expected);
        ASSERT_EQ(QVNaluParser::converAnnexBToAvcC(data, sizeOf(bytes), actual), result);
        ASSERT_EQ(actual, expected);

        unsigned char* out = nullptr;
        int outSize = 0;
        Bytes annexB;
        const int back = referenceLengthsToAnnexB(bytes, 1, annexB);
        ASSERT_EQ(QVNaluParser::connvertAvcCToAnnexB(data, sizeOf(bytes), 1, &out, outSize), back);
        if (out != nullptr) {
            const Bytes converted(out, out + outSize);
            releaseBlock(out);
            ASSERT_EQ(converted, annexB);
        }
    });
}

class GuardedReader : public QVByteStream {
public:
    GuardedReader(unsigned char* bytes, size_t count) {
        ownsData = false;
        data = bytes;
        size = capacity = count;
    }
};

void expectSameCursor(const QVByteStream& stream, const CursorModel& model) {
    ASSERT_EQ(stream.bytePos, model.bytePos());
    ASSERT_EQ(stream.bitOffset, model.plainBitsUsed());
    ASSERT_EQ(stream.rbspBitIndex, 7 - model.rbspBitsUsed());
}

void readOnce(Random& random, QVByteStream& stream, CursorModel& model) {
    const auto n = static_cast<uint32_t>(below(random, 34));
    switch (below(random, 7)) {
        case 0:
            ASSERT_EQ(stream.readRbspBits(n), model.readRbspBits(n));
            break;
        case 1:
            ASSERT_EQ(stream.readBit(), model.readBit());
            break;
        case 2:
            ASSERT_EQ(stream.readBits(n), model.readBits(n));
            break;
        case 3:
        case 4:
            ASSERT_EQ(stream.readGolombUe(), model.readGolombUe());
            break;
        case 5:
            ASSERT_EQ(stream.readGolombSe(), model.readGolombSe());
            break;
        default:
            stream.skipBits(n);
            model.skipBits(n);
            break;
    }
}

TEST_F(GuardPage, bitReader) {
    Random random(7);
    onBuffers([&](const Bytes& bytes, unsigned char* data) {
        // Most reads of interest are near the end.
        const size_t first = bytes.size() > 40 ? bytes.size() - 40 : 0;
        GuardedReader stream(data, bytes.size());
        CursorModel model(bytes);
        stream.skipBytes(first);
        model.skipBytes(first);
        for (int step = 0; step < 40; ++step) {
            ASSERT_NO_FATAL_FAILURE(readOnce(random, stream, model));
            ASSERT_NO_FATAL_FAILURE(expectSameCursor(stream, model));
        }
    });
}

TEST_F(GuardPage, rawCapture) {
    Random random(8);
    onBuffers([&](const Bytes& bytes, unsigned char* data) {
        GuardedReader stream(data, bytes.size());
        CursorModel model(bytes);
        const size_t count = below(random, bytes.size() + 4);
        Bytes captured(count, 0x5A);
        stream.readRbspBytes(captured.data(), count);
        for (const uint8_t byte : captured) {
            ASSERT_EQ(byte, model.readRbspBits(8));
        }
        ASSERT_NO_FATAL_FAILURE(expectSameCursor(stream, model));
    });
}

TEST_F(GuardPage, parameterSets) {
    onBuffers([&](const Bytes& bytes, unsigned char* data) {
        const auto stream = std::make_shared<GuardedReader>(data, bytes.size());
        QVAvcSps avc{};
        parseAvcSps(&avc, stream);
        stream->bytePos = stream->bitOffset = 0;
        QVHevcSps hevc{};
        EXPECT_EQ(parseHevcSps(&hevc, stream), !bytes.empty());
        EXPECT_LE(stream->bytePos, bytes.size());
    });
}

}  // namespace
}  // namespace qv_test
