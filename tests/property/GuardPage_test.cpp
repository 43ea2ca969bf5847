// The fast paths on adversarial buffers that end right before an inaccessible page, or begin right after one,
// against the slow references, and every operation on such buffers. QVNALU_TEST_ROUNDS sets the number of
// buffers of each test.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "CursorModel.h"
#include "EveryOperation.h"
#include "GuardedBuffer.h"
#include "GuardedOperations.h"
#include "QVAvcSps.h"
#include "QVHevcSps.h"
#include "RandomRounds.h"
#include "RecordingCore.h"
#include "SeedCorpus.h"

namespace qv_test {
namespace {

constexpr size_t kLongest = 1500;

// A sequence of runs: dense start codes and near misses, random bytes, or long stretches without any.
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

Bytes anyBytes(Random& random) {
    const size_t longest = below(random, 4) == 0 ? kLongest : 48;
    const Bytes plain = adversarialBytes(random, below(random, longest));
    return below(random, 4) == 0 ? plain : withStartCode(random, plain);
}

class GuardPage : public CoreTest {
protected:
    void SetUp() override {
        CoreTest::SetUp();
        core().onlyCounts = true;
    }

    // Calls check(bytes, data) with rounds() buffers, each at both ends of the memory.
    template <class Check>
    void onBuffers(Check check) {
        Random random(2024);
        for (int round = 0; round < rounds() && !HasFatalFailure(); ++round) {
            SCOPED_TRACE("round " + std::to_string(round));
            const Bytes bytes = anyBytes(random);
            check(bytes, memory_.placeAtEnd(bytes));
            check(bytes, memory_.placeAtBegin(bytes));
        }
    }

private:
    GuardedBuffer memory_{kLongest};
};

TEST_F(GuardPage, framing) {
    Random random(2024);
    GuardedOperations operations(kLongest);
    for (int round = 0; round < rounds() && !HasFatalFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        operations.compareWithReferences(anyBytes(random));
    }
}

void expectSameCursor(const QVByteStream& stream, const CursorModel& model) {
    ASSERT_EQ(stream.bytePos, model.bytePos());
    ASSERT_EQ(stream.bitOffset, model.plainBitsUsed());
    ASSERT_EQ(stream.rbspBitIndex, 7 - model.rbspBitsUsed());
}

void readOnce(Random& random, QVByteStream& stream, CursorModel& model) {
    const auto n = static_cast<uint32_t>(below(random, 34));
    switch (below(random, 9)) {
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
        case 6:
            ASSERT_EQ(stream.readByte(), model.readByte());
            break;
        case 7:
            stream.seekBytes(int64_t{n} - 17);
            model.seekBytes(int64_t{n} - 17);
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
        PlacedReader stream(data, bytes.size());
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
        PlacedReader stream(data, bytes.size());
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
        const auto stream = std::make_shared<PlacedReader>(data, bytes.size());
        QVAvcSps avc{};
        parseAvcSps(&avc, stream);
        stream->bytePos = stream->bitOffset = 0;
        QVHevcSps hevc{};
        EXPECT_EQ(parseHevcSps(&hevc, stream), !bytes.empty());
        EXPECT_LE(stream->bytePos, bytes.size());
    });
}

TEST_F(GuardPage, everyOperation) {
    Random random(9);
    GuardedOperations operations(kLongest);
    for (int round = 0; round < rounds() && !HasFatalFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const Bytes bytes = anyBytes(random);
        operations.call(bytes, randomParameters(random, bytes.size()));
    }
    EXPECT_TRUE(operations.hasUsedTheHeap());
}

TEST_F(GuardPage, everyOperationOnTheSeedsOfFuzzing) {
    constexpr size_t kMostSeedBytes = 2048;
    Random random(10);
    GuardedOperations operations(kMostSeedBytes);
    for (const Seed& seed : builtSeeds()) {
        SCOPED_TRACE(seed.target);
        operations.compareWithReferences(seed.bytes);
        for (int i = 0; i < 16; ++i) {
            operations.call(seed.bytes, randomParameters(random, seed.bytes.size()));
        }
    }
}

}  // namespace
}  // namespace qv_test
