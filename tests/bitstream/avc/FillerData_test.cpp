// The filler data of H.264.
#include "bitstream/avc/FillerData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/FillerDataSyntax.h"

namespace {

using namespace qv_test;
using qv::avc::FillerData;

StructureUnderTest<FillerData> filler() {
    StructureUnderTest<FillerData> structure;
    structure.generate = [](RandomUnit& s, FillerData& record) { qv::avc::filler_data_unit(s, record); };
    structure.read = qv::avc::readFillerData;
    structure.trace = qv::avc::traceFillerData;
    structure.write = qv::avc::writeFillerData;
    structure.size = [](const FillerData& record) { return sizeOf(record); };
    structure.optional = {"ff_byte"};
    structure.violable = 2;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalFillerData});
    };
    return structure;
}

TEST(AvcFillerData, roundTrips) {
    checkRoundTrips(filler(), unitRounds());
}

TEST(AvcFillerData, everyRange) {
    EXPECT_THAT(checkRanges(filler(), unitRounds()), testing::Contains("ff_byte"));
}

TEST(AvcFillerData, cutAtEveryBit) {
    checkCuts(filler(), unitRounds(50));
}

TEST(AvcFillerData, noAllocationAndNoByteOutside) {
    checkMemory(filler(), unitRounds(25));
}

TEST(AvcFillerData, countsTheBytes) {
    std::vector<uint8_t> unit = {0x0C};
    unit.insert(unit.end(), 100000, 0xFF);
    unit.push_back(0x80);
    const auto read = qv::avc::readFillerData(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.ff_byte_count, 100000U);
    EXPECT_EQ(sizeOf(read.record).bits, 8 * 100002U);

    std::vector<uint8_t> written;
    ASSERT_TRUE(qv::avc::writeFillerData(read.record, written).ok());
    EXPECT_EQ(written, unit);
}

TEST(AvcFillerData, mayBeEmpty) {
    const std::vector<uint8_t> unit = {0x0C, 0x80};
    const auto read = qv::avc::readFillerData(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.ff_byte_count, 0U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(qv::avc::writeFillerData(read.record, written).ok());
    EXPECT_EQ(written, unit);
}

TEST(AvcFillerData, anotherByteIsAFaultAfterThoseBeforeIt) {
    const std::vector<uint8_t> unit = {0x0C, 0xFF, 0xFF, 0x7F, 0xFF, 0x80};
    const auto read = qv::avc::readFillerData(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_EQ(read.fault.value, 0x7F);
    EXPECT_EQ(read.fault.firstBit, 24U);
    EXPECT_EQ(read.record.ff_byte_count, 2U);
}

TEST(AvcFillerData, withoutTheStopBitTheLastByteIsCutShort) {
    const std::vector<uint8_t> unit = {0x0C, 0xFF, 0xFF};
    const auto read = qv::avc::readFillerData(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_EQ(read.record.ff_byte_count, 1U);
}

}  // namespace
