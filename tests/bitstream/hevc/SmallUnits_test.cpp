// Access unit delimiter, end of sequence, end of bitstream and filler data of H.265.
#include "bitstream/hevc/SmallUnits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../support/MemoryChecks.h"
#include "../support/StructureChecks.h"
#include "Units.h"
#include "bitstream/hevc/SmallUnitsSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::hevc;
using Bytes = std::vector<uint8_t>;

StructureUnderTest<AccessUnitDelimiter> delimiter() {
    StructureUnderTest<AccessUnitDelimiter> structure;
    structure.generate = [](RandomUnit& s, AccessUnitDelimiter& record) {
        access_unit_delimiter_unit(s, record);
    };
    structure.read = readAccessUnitDelimiter;
    structure.trace = traceAccessUnitDelimiter;
    structure.write = writeAccessUnitDelimiter;
    structure.size = [](const AccessUnitDelimiter& record) { return sizeOf(record); };
    structure.violable = 4;
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("nal_unit_type", {35}); };
    return structure;
}

StructureUnderTest<EndOfSequence> endOfSequence() {
    StructureUnderTest<EndOfSequence> structure;
    structure.generate = [](RandomUnit& s, EndOfSequence& record) { end_of_sequence_unit(s, record); };
    structure.read = readEndOfSequence;
    structure.trace = traceEndOfSequence;
    structure.write = writeEndOfSequence;
    structure.size = [](const EndOfSequence& record) { return sizeOf(record); };
    structure.violable = 3;
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("nal_unit_type", {36}); };
    return structure;
}

StructureUnderTest<EndOfBitstream> endOfBitstream() {
    StructureUnderTest<EndOfBitstream> structure;
    structure.generate = [](RandomUnit& s, EndOfBitstream& record) { end_of_bitstream_unit(s, record); };
    structure.read = readEndOfBitstream;
    structure.trace = traceEndOfBitstream;
    structure.write = writeEndOfBitstream;
    structure.size = [](const EndOfBitstream& record) { return sizeOf(record); };
    structure.violable = 3;
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("nal_unit_type", {37}); };
    return structure;
}

StructureUnderTest<FillerData> fillerData() {
    StructureUnderTest<FillerData> structure;
    structure.generate = [](RandomUnit& s, FillerData& record) { filler_data_unit(s, record); };
    structure.read = readFillerData;
    structure.trace = traceFillerData;
    structure.write = writeFillerData;
    structure.size = [](const FillerData& record) { return sizeOf(record); };
    structure.optional = {"ff_byte"};
    structure.violable = 4;
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("nal_unit_type", {38}); };
    return structure;
}

TEST(HevcSmallUnits, noAllocationAndNoByteOutside) {
    checkMemory(delimiter(), unitRounds(25));
    checkMemory(endOfSequence(), unitRounds(25));
    checkMemory(endOfBitstream(), unitRounds(25));
    checkMemory(fillerData(), unitRounds(25));
}

TEST(HevcSmallUnits, delimiter) {
    checkRoundTrips(delimiter(), unitRounds());
    checkRanges(delimiter(), unitRounds());
    checkCuts(delimiter(), unitRounds(50));
    const Bytes unit = {0x46, 0x01, 0x50};
    const qv::Read<AccessUnitDelimiter> read = readAccessUnitDelimiter(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.pic_type, 2U);
    expectRewritten(delimiter(), unit);
}

TEST(HevcSmallUnits, delimiterWithoutRbsp) {
    const Bytes unit = {0x46, 0x01};
    const qv::Read<AccessUnitDelimiter> read = readAccessUnitDelimiter(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_STREQ(read.fault.element.name, "pic_type");
}

TEST(HevcSmallUnits, endOfSequence) {
    checkRoundTrips(endOfSequence(), unitRounds());
    checkRanges(endOfSequence(), unitRounds());
    const Bytes unit = {0x48, 0x01};
    EXPECT_TRUE(readEndOfSequence(bytesOf(unit)).ok());
    expectRewritten(endOfSequence(), unit);
    EXPECT_EQ(readEndOfBitstream(bytesOf(unit)).fault.kind, qv::FaultKind::OtherUnit);
}

TEST(HevcSmallUnits, endOfBitstream) {
    checkRoundTrips(endOfBitstream(), unitRounds());
    checkRanges(endOfBitstream(), unitRounds());
    const Bytes unit = {0x4A, 0x01};
    EXPECT_TRUE(readEndOfBitstream(bytesOf(unit)).ok());
    expectRewritten(endOfBitstream(), unit);
    EXPECT_EQ(readEndOfSequence(bytesOf(unit)).fault.kind, qv::FaultKind::OtherUnit);
}

TEST(HevcSmallUnits, whatAnEmptyUnitHoldsIsLeftOver) {
    const Bytes unit = {0x48, 0x01, 0xAB, 0x80};
    const qv::Read<EndOfSequence> read = readEndOfSequence(bytesOf(unit));
    EXPECT_TRUE(read.ok());
    EXPECT_EQ(read.trailing.bits, 8U);
}

TEST(HevcSmallUnits, fillerData) {
    checkRoundTrips(fillerData(), unitRounds());
    checkRanges(fillerData(), unitRounds());
    checkCuts(fillerData(), unitRounds(50));
    Bytes unit(1000, 0xFF);
    unit[0] = 0x4C;
    unit[1] = 0x01;
    unit.back() = 0x80;
    const qv::Read<FillerData> read = readFillerData(bytesOf(unit));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.ff_byte.count, 997U * 8);
    expectRewritten(fillerData(), unit);
    expectRewritten(fillerData(), {0x4C, 0x01, 0x80});
}

TEST(HevcSmallUnits, fillerDataIsOnes) {
    const Bytes unit = {0x4C, 0x01, 0xFF, 0xFE, 0xFF, 0x80};
    const qv::Read<FillerData> read = readFillerData(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_STREQ(read.fault.element.name, "ff_byte");
    EXPECT_EQ(read.fault.firstBit, 24U);
}

TEST(HevcSmallUnits, header) {
    const Bytes tooLow = {0x46, 0x00, 0x50};
    const qv::Read<AccessUnitDelimiter> read = readAccessUnitDelimiter(bytesOf(tooLow));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_STREQ(read.fault.element.name, "nuh_temporal_id_plus1");
    const Bytes forbidden = {0xC6, 0x01, 0x50};
    EXPECT_STREQ(readAccessUnitDelimiter(bytesOf(forbidden)).fault.element.name, "forbidden_zero_bit");
    const Bytes layer = {0x47, 0xFF, 0x50};
    const NalUnitHeader header = readAccessUnitDelimiter(bytesOf(layer)).record.header;
    EXPECT_EQ(header.nal_unit_type, 35U);
    EXPECT_EQ(header.nuh_layer_id, 63U);
    EXPECT_EQ(header.nuh_temporal_id_plus1, 7U);
    for (size_t size = 0; size < 2; ++size) {
        const qv::Read<AccessUnitDelimiter> cut = readAccessUnitDelimiter(bytesOf(layer).first(size));
        EXPECT_EQ(cut.fault.kind, qv::FaultKind::EndOfData) << size;
    }
    EXPECT_EQ(readAccessUnitDelimiter({}).fault.kind, qv::FaultKind::EndOfData);
}

}  // namespace
