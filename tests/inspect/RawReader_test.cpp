#include "input/RawReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <utility>

#include "InspectSupport.h"
#include "QVNaluParser.h"
#include "analysis/Analysis.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using NalIndexList = std::vector<std::pair<int, int>>;
constexpr size_t kChunks[] = {1, 2, 3, 5, 7, 4096};

std::unique_ptr<MemorySource> source(const Bytes& bytes, size_t mostBytes = SIZE_MAX) {
    return std::make_unique<MemorySource>(bytes, mostBytes);
}

qvinspect::RawLimits chunksOf(size_t size) {
    qvinspect::RawLimits limits;
    limits.chunk = size;
    return limits;
}

qvinspect::RawLimits accessUnitsOf(size_t size, size_t chunk = 4096) {
    qvinspect::RawLimits limits;
    limits.chunk = chunk;
    limits.accessUnit = size;
    return limits;
}

// The library's scan of the whole stream at once.
NalIndexList scan(const Bytes& bytes) {
    NalIndexList nalus;
    QVNaluParser::parserDataToNaluIdx(bytes.data(), static_cast<int>(bytes.size()), nalus);
    return nalus;
}

// The units of all access units, by their offsets in the stream.
NalIndexList unitsOf(const Bytes& bytes, QVCodecID codec, qvinspect::RawLimits limits) {
    qvinspect::RawReader reader(source(bytes), byteStreamOf(codec), limits);
    NalIndexList nalus;
    qvinspect::AccessUnit accessUnit;
    while (reader.next(accessUnit)) {
        for (const auto& unit : qvinspect::analyse(accessUnit).units) {
            nalus.emplace_back(static_cast<int>(unit.offset), static_cast<int>(unit.length));
        }
    }
    return nalus;
}

// A start code and bytes of which many begin or end start codes.
Bytes soup(std::mt19937& random, size_t size) {
    static const uint8_t kBytes[] = {0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x03, 0x41, 0x65, 0x80};
    Bytes bytes = hex("00 00 01");
    std::uniform_int_distribution<size_t> pick(0, std::size(kBytes) - 1);
    while (bytes.size() < size) {
        bytes.push_back(kBytes[pick(random)]);
    }
    return bytes;
}

TEST(RawReader, unitsAreThoseOfAScanOfTheWhole) {
    std::mt19937 random(1);
    for (int run = 0; run < 3000; ++run) {
        const Bytes bytes = soup(random, 4 + static_cast<size_t>(run) % 90);
        const NalIndexList expected = scan(bytes);
        for (const QVCodecID codec : {QVCodecIDAvc, QVCodecIDHevc}) {
            for (const size_t chunk : kChunks) {
                ASSERT_EQ(unitsOf(bytes, codec, chunksOf(chunk)), expected)
                    << ::testing::PrintToString(bytes) << " in chunks of " << chunk;
            }
        }
    }
}

TEST(RawReader, accessUnitsDoNotDependOnTheChunks) {
    const Bytes bytes = fileContent(sampleFolder() / "hevc_hdr10.h265");
    const KeptStream whole = readRaw(source(bytes), byteStreamOf(QVCodecIDHevc));
    ASSERT_EQ(whole.accessUnits.size(), 4U);
    for (const size_t chunk : kChunks) {
        EXPECT_EQ(readRaw(source(bytes), byteStreamOf(QVCodecIDHevc), chunksOf(chunk)).accessUnits,
                  whole.accessUnits)
            << chunk;
    }
    EXPECT_EQ(readRaw(source(bytes, 13), byteStreamOf(QVCodecIDHevc)).accessUnits, whole.accessUnits)
        << "short reads";
}

TEST(RawReader, accessUnitsCoverTheStream) {
    std::mt19937 random(2);
    for (int run = 0; run < 300; ++run) {
        const Bytes bytes = soup(random, 60);
        Bytes joined;
        for (const auto& accessUnit :
             readRaw(source(bytes), byteStreamOf(QVCodecIDAvc), chunksOf(8)).accessUnits) {
            EXPECT_EQ(accessUnit.offset, joined.size());
            joined = joined + accessUnit.bytes;
        }
        ASSERT_EQ(joined, bytes);
    }
}

TEST(RawReader, trailingZeroBytesStay) {
    const Bytes bytes = hex("00 00 01 09 F0 00 00 00 00 00 01 65 88 80 00 00 00");
    EXPECT_EQ(unitsOf(bytes, QVCodecIDAvc, chunksOf(1)), (NalIndexList{{3, 4}, {11, 6}}));
}

TEST(RawReader, startCodeAtTheEndBelongsToTheUnitBefore) {
    const Bytes bytes = hex("00 00 01 65 88 80 00 00 01");
    EXPECT_EQ(unitsOf(bytes, QVCodecIDAvc, chunksOf(2)), (NalIndexList{{3, 6}}));
}

TEST(RawReader, leadingBytesAreReportedAndLeftOut) {
    for (const size_t chunk : kChunks) {
        const Bytes bytes = hex("FF FF 00 01 00 00 00 00 01 65 88 80");
        const KeptStream stream = readRaw(source(bytes), byteStreamOf(QVCodecIDAvc), chunksOf(chunk));
        ASSERT_EQ(stream.accessUnits.size(), 1U);
        EXPECT_EQ(stream.accessUnits[0].bytes, hex("00 00 00 01 65 88 80"));
        EXPECT_EQ(stream.accessUnits[0].offset, 5U);
        EXPECT_THAT(stream.accessUnits[0].findings,
                    ElementsAre("note at 0: 5 bytes before the first start code are left out"));
    }
}

TEST(RawReader, withoutAStartCode) {
    for (const size_t chunk : kChunks) {
        const KeptStream stream =
            readRaw(source(Bytes(100, 0xAB)), byteStreamOf(QVCodecIDAvc), chunksOf(chunk));
        EXPECT_THAT(stream.accessUnits, IsEmpty());
        EXPECT_THAT(stream.findings, ElementsAre("error at 0: no start code (00 00 01) in 100 bytes"));
    }
}

TEST(RawReader, emptyStream) {
    const KeptStream stream = readRaw(source({}), byteStreamOf(QVCodecIDAvc));
    EXPECT_THAT(stream.accessUnits, IsEmpty());
    EXPECT_THAT(stream.findings, IsEmpty());
}

TEST(RawReader, failureIsReportedAfterWhatCouldBeRead) {
    const Bytes bytes = hex("00 00 01 65 88 80 00 00 01 41 9A");
    const KeptStream stream = readRaw(std::make_unique<MemorySource>(bytes, SIZE_MAX, "Input/output error"),
                                      byteStreamOf(QVCodecIDAvc));
    EXPECT_EQ(stream.accessUnits.size(), 2U);
    EXPECT_THAT(stream.findings, ElementsAre("error at 11: reading failed: Input/output error"));
}

// --- The limit on an access unit ---

const Bytes kCode = hex("00 00 01");

Bytes unitOf(uint8_t header, size_t size) {
    Bytes unit(size, 0xAA);
    unit[0] = header;
    return unit;
}

TEST(RawReader, unitOfTheLongestLength) {
    const Bytes bytes = kCode + unitOf(0x65, 17) + kCode + unitOf(0x41, 2);
    const KeptStream stream = readRaw(source(bytes), byteStreamOf(QVCodecIDAvc), accessUnitsOf(20));
    ASSERT_EQ(stream.accessUnits.size(), 2U);
    EXPECT_EQ(stream.accessUnits[0].bytes.size(), 20U);
    EXPECT_THAT(stream.accessUnits[0].findings, IsEmpty());
}

TEST(RawReader, longerUnitIsCut) {
    for (const size_t chunk : kChunks) {
        const Bytes bytes = kCode + unitOf(0x65, 18) + kCode + unitOf(0x41, 2);
        const KeptStream stream =
            readRaw(source(bytes), byteStreamOf(QVCodecIDAvc), accessUnitsOf(20, chunk));
        ASSERT_EQ(stream.accessUnits.size(), 2U);
        EXPECT_EQ(stream.accessUnits[0].bytes, kCode + unitOf(0x65, 17));
        EXPECT_THAT(stream.accessUnits[0].findings,
                    ElementsAre("error at 0: access unit is longer than 20 bytes; cut at offset 20"));
        EXPECT_EQ(stream.accessUnits[1].offset, 21U);
        EXPECT_THAT(stream.accessUnits[1].findings,
                    ElementsAre("note at 20: 1 bytes up to the next start code are left out"));
    }
}

TEST(RawReader, longUnitAtTheEnd) {
    for (const size_t chunk : kChunks) {
        const Bytes bytes = kCode + unitOf(0x65, 2) + kCode + unitOf(0x41, 1000);
        const KeptStream stream =
            readRaw(source(bytes), byteStreamOf(QVCodecIDAvc), accessUnitsOf(20, chunk));
        ASSERT_EQ(stream.accessUnits.size(), 2U);
        EXPECT_THAT(stream.accessUnits[0].findings, IsEmpty());
        EXPECT_EQ(stream.accessUnits[1].bytes.size(), 20U);
        EXPECT_THAT(stream.accessUnits[1].findings,
                    ElementsAre("error at 5: access unit is longer than 20 bytes; cut at offset 25"));
        EXPECT_THAT(stream.findings, ElementsAre("error at 25: the last 983 bytes are left out"));
    }
}

TEST(RawReader, longUnitKeepsTheUnitsBeforeIt) {
    const Bytes bytes = kCode + unitOf(0x06, 2) + kCode + unitOf(0x65, 30) + kCode + unitOf(0x41, 2);
    const KeptStream stream = readRaw(source(bytes), byteStreamOf(QVCodecIDAvc), accessUnitsOf(20));
    ASSERT_EQ(stream.accessUnits.size(), 2U);
    EXPECT_EQ(stream.accessUnits[0].bytes.size(), 5U + 20U);
    EXPECT_THAT(stream.accessUnits[0].findings,
                ElementsAre("error at 0: access unit is longer than 20 bytes; cut at offset 25"));
}

TEST(RawReader, manyUnitsAreCutBeforeTheFirstAboveTheLimit) {
    Bytes bytes;
    for (int i = 0; i < 9; ++i) {
        bytes = bytes + kCode + unitOf(0x06, 3);  // no picture ever ends the access unit
    }
    const KeptStream stream = readRaw(source(bytes), byteStreamOf(QVCodecIDAvc), accessUnitsOf(20));
    ASSERT_EQ(stream.accessUnits.size(), 3U);
    for (const auto& accessUnit : stream.accessUnits) {
        EXPECT_EQ(accessUnit.bytes.size(), 18U);
    }
    EXPECT_THAT(stream.accessUnits[0].findings,
                ElementsAre("error at 0: access unit is longer than 20 bytes; cut at offset 18"));
    EXPECT_THAT(stream.accessUnits[1].findings,
                ElementsAre("error at 18: access unit is longer than 20 bytes; cut at offset 36"));
    EXPECT_THAT(stream.accessUnits[2].findings, IsEmpty());
}

// An endless source that records how much was read.
class EndlessSource : public qvinspect::ByteSource {
public:
    explicit EndlessSource(size_t& bytesRead) : bytesRead_(bytesRead) {}
    size_t read(unsigned char* to, size_t size) override {
        for (size_t i = 0; i < size; ++i, ++bytesRead_) {
            to[i] = bytesRead_ < kHead.size() ? kHead[bytesRead_] : 0xAA;
        }
        return size;
    }
    std::string failure() const override { return {}; }

private:
    const Bytes kHead = hex("00 00 01 65 88");
    size_t& bytesRead_;
};

TEST(RawReader, endlessUnitIsDeliveredAtTheBound) {
    size_t bytesRead = 0;
    qvinspect::RawReader reader(std::make_unique<EndlessSource>(bytesRead), byteStreamOf(QVCodecIDAvc),
                                accessUnitsOf(1000, 64));
    qvinspect::AccessUnit accessUnit;
    ASSERT_TRUE(reader.next(accessUnit));
    EXPECT_EQ(accessUnit.size, 1000U);
    EXPECT_LE(bytesRead, 1000U + 64U);
}

}  // namespace
}  // namespace qv_test
