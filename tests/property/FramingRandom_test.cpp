// Longer buffers than can be listed, from fixed seeds: scans at every alignment against the slow reference,
// and round trips of the two framings.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "QVNaluParser.h"
#include "RandomRounds.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"

namespace qv_test {
namespace {

// A buffer at a chosen distance from an aligned address; the block ends where the buffer ends.
class Placed {
public:
    Placed(const Bytes& bytes, size_t alignment) : block_(alignment), begin_(alignment) {
        block_.insert(block_.end(), bytes.begin(), bytes.end());
        block_.shrink_to_fit();
    }

    const unsigned char* data() const { return block_.data() + begin_; }
    int size() const { return static_cast<int>(block_.size() - begin_); }

private:
    Bytes block_;
    size_t begin_;
};

// Mostly zeros and ones, or random bytes.
uint8_t randomByte(Random& random, bool isDense) {
    static const Bytes dense = {0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x02, 0x03, 0x65, 0xFF};
    return isDense ? dense[below(random, dense.size())] : static_cast<uint8_t>(below(random, 256));
}

Bytes randomBytes(Random& random, size_t size, bool isDense) {
    Bytes bytes(size);
    for (uint8_t& byte : bytes) {
        byte = randomByte(random, isDense);
    }
    return bytes;
}

// A unit as it occurs in a byte stream: no 00 00 00, 00 00 01 or 00 00 02 inside, no zero byte at the end
// (H.264/H.265 7.4.1).
Bytes randomUnit(Random& random, size_t size) {
    Bytes unit = withEmulationPrevention(randomBytes(random, size, true));
    unit.back() = 0x80;
    return unit;
}

std::vector<Bytes> randomUnits(Random& random) {
    std::vector<Bytes> units(1 + below(random, 6));
    for (Bytes& unit : units) {
        unit = randomUnit(random, 1 + below(random, 300));
    }
    return units;
}

void appendLength(Bytes& out, size_t length, int lengthSize) {
    for (int shift = 8 * (lengthSize - 1); shift >= 0; shift -= 8) {
        out.push_back(static_cast<uint8_t>(length >> shift & 0xFF));
    }
}

Bytes withLengths(const std::vector<Bytes>& units, int lengthSize) {
    Bytes out;
    for (const Bytes& unit : units) {
        appendLength(out, unit.size(), lengthSize);
        out.insert(out.end(), unit.begin(), unit.end());
    }
    return out;
}

void appendStartCode(Bytes& out, size_t zeroBytes) {
    out.insert(out.end(), zeroBytes, 0x00);
    out.push_back(0x01);
}

Bytes withStartCodes(const std::vector<Bytes>& units) {
    Bytes out;
    for (const Bytes& unit : units) {
        appendStartCode(out, 3);
        out.insert(out.end(), unit.begin(), unit.end());
    }
    return out;
}

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

class FramingRandom : public CoreTest {
protected:
    static Bytes toLengths(const Bytes& byteStream) {
        Bytes out;
        EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(byteStream.data(), sizeOf(byteStream), out), 0);
        return out;
    }

    static Bytes toAnnexB(const Bytes& sample, int lengthSize) {
        unsigned char* out = nullptr;
        int outSize = 0;
        EXPECT_EQ(
            QVNaluParser::connvertAvcCToAnnexB(sample.data(), sizeOf(sample), lengthSize, &out, outSize), 0);
        const Bytes bytes(out, out + outSize);
        if (out != nullptr) {
            releaseBlock(out);
        }
        return bytes;
    }

    static void expectScansAsTheReference(const Bytes& bytes, size_t alignment) {
        const Placed placed(bytes, alignment);
        NalIndexList annexB;
        NalIndexList expectedAnnexB;
        ASSERT_EQ(QVNaluParser::parserDataToNaluIdx(placed.data(), placed.size(), annexB),
                  referenceAnnexBScan(bytes, expectedAnnexB));
        ASSERT_EQ(annexB, expectedAnnexB);
        for (const int lengthSize : {1, 2, 4}) {
            NalIndexList nalus;
            ASSERT_EQ(QVNaluParser::parserDataToNalus(placed.data(), placed.size(), nalus, lengthSize), 0);
            ASSERT_EQ(nalus, referenceLengthScan(bytes, lengthSize).nalus);
        }
        for (const QVCodecID codec : {QVCodecIDAvc, QVCodecIDHevc}) {
            ASSERT_EQ(QVNaluParser::isKeyFrame(codec, placed.data(), placed.size()),
                      referenceIsKeyFrame(codec, bytes));
        }
    }
};

class FramingRandomAligned : public FramingRandom, public ::testing::WithParamInterface<size_t> {
protected:
    void SetUp() override {
        FramingRandom::SetUp();
        core().onlyCounts = true;
    }
};

TEST_P(FramingRandomAligned, scansOfEverySize) {
    Random random(20240 + static_cast<uint32_t>(GetParam()));
    for (size_t size = 0; size <= 300; ++size) {
        for (const bool isDense : {true, true, true, false}) {
            SCOPED_TRACE("size " + std::to_string(size));
            Bytes bytes = randomBytes(random, size, isDense);
            expectScansAsTheReference(bytes, GetParam());
            // The same with a start code first; few random buffers are byte streams.
            std::copy_n(Bytes{0x00, 0x00, 0x01}.begin(), std::min<size_t>(size, 3), bytes.begin());
            expectScansAsTheReference(bytes, GetParam());
            ASSERT_FALSE(HasFatalFailure());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Alignment, FramingRandomAligned, ::testing::Range<size_t>(0, 16));

TEST_F(FramingRandom, byteStreamOfFourByteStartCodesComesBack) {
    Random random(1);
    for (int i = 0; i < 500; ++i) {
        const std::vector<Bytes> units = randomUnits(random);
        const Bytes byteStream = withStartCodes(units);
        const Bytes sample = toLengths(byteStream);
        ASSERT_EQ(sample, withLengths(units, 4));
        ASSERT_EQ(toAnnexB(sample, 4), byteStream);
    }
    expectNoLines();
}

TEST_F(FramingRandom, lengthPrefixedSampleComesBackWithFourByteLengths) {
    Random random(2);
    for (int i = 0; i < 500; ++i) {
        const std::vector<Bytes> units = randomUnits(random);
        for (const int lengthSize : {2, 4}) {
            const Bytes byteStream = toAnnexB(withLengths(units, lengthSize), lengthSize);
            ASSERT_EQ(byteStream, withStartCodes(units));
            ASSERT_EQ(toLengths(byteStream), withLengths(units, 4));
        }
    }
    expectNoLines();
}

TEST_F(FramingRandom, oneByteLengthsComeBackWithFourByteLengths) {
    Random random(3);
    for (int i = 0; i < 500; ++i) {
        std::vector<Bytes> units(1 + below(random, 6));
        for (Bytes& unit : units) {
            unit = randomUnit(random, 1 + below(random, 160));  // at most 255 with emulation prevention
        }
        const Bytes byteStream = toAnnexB(withLengths(units, 1), 1);
        ASSERT_EQ(byteStream, withStartCodes(units));
        ASSERT_EQ(toLengths(byteStream), withLengths(units, 4));
    }
    expectNoLines();
}

// Up to three of the zero bytes before a 01 belong to the start code; the others belong to the previous unit.
TEST_F(FramingRandom, mixedStartCodesAndTrailingZeros) {
    Random random(4);
    for (int i = 0; i < 500; ++i) {
        std::vector<Bytes> units = randomUnits(random);
        Bytes byteStream;
        for (size_t k = 0; k < units.size(); ++k) {
            const size_t zeroBytes = 2 + below(random, k == 0 ? 2 : 5);
            appendStartCode(byteStream, zeroBytes);
            byteStream.insert(byteStream.end(), units[k].begin(), units[k].end());
            if (zeroBytes > 3) {
                units[k - 1].resize(units[k - 1].size() + zeroBytes - 3, 0x00);
            }
        }
        ASSERT_EQ(toLengths(byteStream), withLengths(units, 4));
    }
}

}  // namespace
}  // namespace qv_test
