// Raw length-prefixed streams through the reader of access units.
#include "input/LengthUnitReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "AvcPictures.h"
#include "InspectSupport.h"
#include "analysis/Analysis.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr size_t kChunks[] = {1, 2, 3, 5, 4096};

QVCodecParameters lengthsOf(uint8_t size, QVCodecID codec = QVCodecIDAvc) {
    return {codec, 0, size};
}

KeptStream read(const Bytes& bytes, uint8_t lengthSize, qvinspect::RawLimits limits = {}) {
    return readRaw(std::make_unique<MemorySource>(bytes), lengthsOf(lengthSize), limits);
}

Bytes picture(uint32_t frame_num) {
    AvcSliceSyntax slice;
    slice.frame_num = frame_num;
    return avcSliceUnit(slice);
}

std::vector<Bytes> units() {
    return {avcSpsUnit(), avcPpsUnit(), picture(0), hex("06 05 01 AA 80"), picture(1), picture(2)};
}

TEST(LengthUnitReader, accessUnitsSpanTheLengths) {
    for (const uint8_t lengthSize : {uint8_t{1}, uint8_t{2}, uint8_t{4}}) {
        const Bytes bytes = lengthPrefixed(units(), lengthSize);
        for (const size_t chunk : kChunks) {
            qvinspect::RawLimits limits;
            limits.chunk = chunk;
            const KeptStream stream = read(bytes, lengthSize, limits);
            ASSERT_THAT(stream.accessUnits, SizeIs(3));
            EXPECT_EQ(stream.accessUnits[0].bytes,
                      lengthPrefixed({avcSpsUnit(), avcPpsUnit(), picture(0)}, lengthSize));
            EXPECT_EQ(stream.accessUnits[1].bytes,
                      lengthPrefixed({hex("06 05 01 AA 80"), picture(1)}, lengthSize));
            EXPECT_EQ(stream.accessUnits[1].offset, stream.accessUnits[0].bytes.size());
            EXPECT_EQ(stream.accessUnits[2].bytes, lengthPrefixed({picture(2)}, lengthSize));
            EXPECT_THAT(stream.findings, IsEmpty());
        }
    }
}

TEST(LengthUnitReader, parametersSetTheFraming) {
    qvinspect::RawReader reader(std::make_unique<MemorySource>(lengthPrefixed(units(), 2)), lengthsOf(2));
    EXPECT_EQ(reader.info().format, "raw length-prefixed stream");
    qvinspect::AccessUnit accessUnit;
    ASSERT_TRUE(reader.next(accessUnit));
    EXPECT_EQ(accessUnit.parameters.isAnnexB, 0U);
    EXPECT_EQ(accessUnit.parameters.nalLengthSize, 2);
    const auto report = qvinspect::analyse(accessUnit);
    ASSERT_THAT(report.units, SizeIs(3));
    EXPECT_EQ(report.units[0].offset, 2U);
    EXPECT_EQ(report.units[0].type, 7U);
    EXPECT_THAT(report.findings, IsEmpty());
}

struct BrokenCase {
    const char* name;
    const char* tail;  // after one whole picture
    const char* finding;
};

class BrokenLengths : public ::testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenLengths, areReportedAfterWholeUnits) {
    const Bytes whole = lengthPrefixed({picture(0)}, 4);
    for (const size_t chunk : kChunks) {
        qvinspect::RawLimits limits;
        limits.chunk = chunk;
        limits.accessUnit = 100;
        const KeptStream stream = read(whole + hex(GetParam().tail), 4, limits);
        ASSERT_THAT(stream.accessUnits, SizeIs(1));
        EXPECT_EQ(stream.accessUnits[0].bytes, whole);
        EXPECT_THAT(stream.findings,
                    ElementsAre("error at " + std::to_string(whole.size()) + ": " + GetParam().finding));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, BrokenLengths,
    ::testing::Values(
        BrokenCase{"lengthCutShort", "00 00 00", "3 bytes are left, too few for a length field"},
        BrokenCase{"unitCutShort", "00 00 00 05 41 9A",
                   "the length field here is 5 bytes, of which the stream has 2"},
        BrokenCase{"nothingAfterTheLength", "00 00 00 05",
                   "the length field here is 5 bytes, of which the stream has 0"},
        BrokenCase{"longerThanAllowed", "00 00 00 61 41 9A",
                   "the length field here is 97 bytes, more than the 96 that a unit may have; the rest is "
                   "left out: check that the units have lengths of 4 bytes"},
        BrokenCase{"largest", "FF FF FF FF 41 9A",
                   "the length field here is 4294967295 bytes, more than the 96 that a unit may have; the "
                   "rest is left out: check that the units have lengths of 4 bytes"}),
    [](const auto& row) { return row.param.name; });

TEST(LengthUnitReader, longestUnit) {
    qvinspect::RawLimits limits;
    limits.accessUnit = 100;
    const Bytes bytes = lengthPrefixed({Bytes(96, 0x65)}, 4);
    const KeptStream stream = read(bytes, 4, limits);
    ASSERT_THAT(stream.accessUnits, SizeIs(1));
    EXPECT_EQ(stream.accessUnits[0].bytes, bytes);
    EXPECT_THAT(stream.findings, IsEmpty());
}

TEST(LengthUnitReader, lengthsOfZeroAreUnits) {
    const Bytes bytes = lengthPrefixed({{}, picture(0), {}, {}, picture(1), {}}, 4);
    const KeptStream stream = read(bytes, 4);
    Bytes joined;
    for (const auto& accessUnit : stream.accessUnits) {
        joined = joined + accessUnit.bytes;
    }
    EXPECT_EQ(joined, bytes);
    EXPECT_THAT(stream.accessUnits, SizeIs(2));
    EXPECT_THAT(stream.findings, IsEmpty());
}

TEST(LengthUnitReader, unitsOfAnAccessUnitAreCounted) {
    qvinspect::RawLimits limits;
    limits.units = 8;
    const KeptStream stream = read(Bytes(4 * 20, 0), 4, limits);
    ASSERT_THAT(stream.accessUnits, SizeIs(3));
    EXPECT_EQ(stream.accessUnits[0].bytes.size(), 32U);
    EXPECT_THAT(stream.accessUnits[0].findings,
                ElementsAre("error at 0: access unit has more than 8 NAL units; cut at offset 32"));
    EXPECT_EQ(stream.accessUnits[2].bytes.size(), 16U);
}

TEST(LengthUnitReader, emptyStream) {
    const KeptStream stream = read({}, 4);
    EXPECT_THAT(stream.accessUnits, IsEmpty());
    EXPECT_THAT(stream.findings, IsEmpty());
}

TEST(LengthUnitReader, failureIsReportedAfterWhatCouldBeRead) {
    const Bytes bytes = lengthPrefixed({picture(0)}, 4);
    const KeptStream stream =
        readRaw(std::make_unique<MemorySource>(bytes, SIZE_MAX, "Input/output error"), lengthsOf(4));
    EXPECT_THAT(stream.accessUnits, SizeIs(1));
    EXPECT_THAT(stream.findings, ElementsAre("error at " + std::to_string(bytes.size()) +
                                             ": reading failed: Input/output error"));
}

// For any bytes, the access units are contiguous up to the first broken length, and the analysis accepts
// them.
TEST(LengthUnitReader, hostileStreams) {
    std::mt19937 random(3);
    std::uniform_int_distribution<int> length(0, 40);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int run = 0; run < 3000; ++run) {
        const auto lengthSize = static_cast<uint8_t>(run % 3 == 0 ? 1 : run % 3 == 1 ? 2 : 4);
        Bytes bytes;
        for (int unit = 0; unit < 6; ++unit) {
            Bytes content(static_cast<size_t>(length(random)));
            for (uint8_t& value : content) {
                value = static_cast<uint8_t>(byte(random));
            }
            bytes = bytes + lengthPrefixed({content}, lengthSize);
        }
        if (run % 2 == 1) {
            bytes.at(static_cast<size_t>(run) % bytes.size()) = static_cast<uint8_t>(byte(random));
        }
        bytes.resize(bytes.size() - static_cast<size_t>(run) % 5 % (bytes.size() + 1));
        qvinspect::RawLimits limits;
        limits.chunk = 1 + static_cast<size_t>(run) % 7;
        limits.accessUnit = 64;
        for (const QVCodecID codec : {QVCodecIDAvc, QVCodecIDHevc}) {
            qvinspect::RawReader reader(std::make_unique<MemorySource>(bytes), lengthsOf(lengthSize, codec),
                                        limits);
            uint64_t end = 0;
            qvinspect::AccessUnit accessUnit;
            while (reader.next(accessUnit)) {
                ASSERT_EQ(accessUnit.fileOffset, end);
                ASSERT_GT(accessUnit.size, 0U);
                qvinspect::analyse(accessUnit);
                end += accessUnit.size;
            }
            ASSERT_LE(end, bytes.size());
            ASSERT_EQ(accessUnit.findings.empty(), end == bytes.size());
        }
    }
}

}  // namespace
}  // namespace qv_test
