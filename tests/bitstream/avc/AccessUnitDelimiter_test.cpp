// The access unit delimiter of H.264.
#include "bitstream/avc/AccessUnitDelimiter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/AccessUnitDelimiterSyntax.h"

namespace {

using namespace qv_test;
using qv::avc::AccessUnitDelimiter;

StructureUnderTest<AccessUnitDelimiter> delimiter() {
    StructureUnderTest<AccessUnitDelimiter> structure;
    structure.generate = [](RandomUnit& s, AccessUnitDelimiter& record) {
        qv::avc::access_unit_delimiter_unit(s, record);
    };
    structure.read = qv::avc::readAccessUnitDelimiter;
    structure.trace = qv::avc::traceAccessUnitDelimiter;
    structure.write = qv::avc::writeAccessUnitDelimiter;
    structure.size = [](const AccessUnitDelimiter& record) { return sizeOf(record); };
    structure.violable = 1;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalAccessUnitDelimiter});
    };
    return structure;
}

TEST(AvcAccessUnitDelimiter, roundTrips) {
    checkRoundTrips(delimiter(), unitRounds());
}

TEST(AvcAccessUnitDelimiter, everyRange) {
    checkRanges(delimiter(), unitRounds());
}

TEST(AvcAccessUnitDelimiter, cutAtEveryBit) {
    checkCuts(delimiter(), unitRounds(50));
}

TEST(AvcAccessUnitDelimiter, noAllocationAndNoByteOutside) {
    checkMemory(delimiter(), unitRounds(25));
}

TEST(AvcAccessUnitDelimiter, readsTheBytesOfAnEncoder) {
    const std::vector<uint8_t> unit = {0x09, 0x50};
    const auto read = qv::avc::readAccessUnitDelimiter(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.header.nal_ref_idc, 0U);
    EXPECT_EQ(read.record.primary_pic_type, 2U);
    EXPECT_EQ(sizeOf(read.record).bits, 16U);
}

TEST(AvcAccessUnitDelimiter, refusesAUnitOfAnotherType) {
    const std::vector<uint8_t> unit = {0x07, 0x50};
    const auto read = qv::avc::readAccessUnitDelimiter(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OtherUnit);
    EXPECT_EQ(read.fault.value, 7);
    EXPECT_EQ(read.record.primary_pic_type, 0U);
}

TEST(AvcAccessUnitDelimiter, reportsWhatIsLeftOver) {
    const std::vector<uint8_t> unit = {0x09, 0x5A, 0x80, 0x00};
    const auto read = qv::avc::readAccessUnitDelimiter(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.primary_pic_type, 2U);
    EXPECT_EQ(read.trailing.bits, 5U);
    EXPECT_EQ(read.trailing.bytes.size, 1U);
}

}  // namespace
