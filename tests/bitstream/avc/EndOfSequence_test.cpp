// The end of sequence and the end of stream of H.264.
#include "bitstream/avc/EndOfSequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/EndOfSequenceSyntax.h"

namespace {

using namespace qv_test;
using qv::avc::EndOfSequence;
using qv::avc::EndOfStream;

StructureUnderTest<EndOfSequence> endOfSequence() {
    StructureUnderTest<EndOfSequence> structure;
    structure.generate = [](RandomUnit& s, EndOfSequence& record) { qv::avc::end_of_seq_unit(s, record); };
    structure.read = qv::avc::readEndOfSequence;
    structure.trace = qv::avc::traceEndOfSequence;
    structure.write = qv::avc::writeEndOfSequence;
    structure.size = [](const EndOfSequence& record) { return sizeOf(record); };
    structure.violable = 1;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalEndOfSequence});
    };
    return structure;
}

StructureUnderTest<EndOfStream> endOfStream() {
    StructureUnderTest<EndOfStream> structure;
    structure.generate = [](RandomUnit& s, EndOfStream& record) { qv::avc::end_of_stream_unit(s, record); };
    structure.read = qv::avc::readEndOfStream;
    structure.trace = qv::avc::traceEndOfStream;
    structure.write = qv::avc::writeEndOfStream;
    structure.size = [](const EndOfStream& record) { return sizeOf(record); };
    structure.violable = 1;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalEndOfStream});
    };
    return structure;
}

TEST(AvcEndOfSequence, roundTrips) {
    checkRoundTrips(endOfSequence(), unitRounds());
    checkRoundTrips(endOfStream(), unitRounds());
}

TEST(AvcEndOfSequence, everyRange) {
    checkRanges(endOfSequence(), unitRounds());
    checkRanges(endOfStream(), unitRounds());
}

TEST(AvcEndOfSequence, noAllocationAndNoByteOutside) {
    checkMemory(endOfSequence(), unitRounds(25));
    checkMemory(endOfStream(), unitRounds(25));
}

TEST(AvcEndOfSequence, isOneByte) {
    const std::vector<uint8_t> sequence = {0x0A};
    const auto end = qv::avc::readEndOfSequence(bytesOf(sequence));
    ASSERT_TRUE(end.ok());
    EXPECT_EQ(end.trailing.bits, 0U);
    EXPECT_EQ(sizeOf(end.record).bits, 8U);

    const std::vector<uint8_t> stream = {0x0B};
    EXPECT_TRUE(qv::avc::readEndOfStream(bytesOf(stream)).ok());
    EXPECT_EQ(qv::avc::readEndOfStream(bytesOf(sequence)).fault.kind, qv::FaultKind::OtherUnit);
    EXPECT_EQ(qv::avc::readEndOfSequence(bytesOf(stream)).fault.kind, qv::FaultKind::OtherUnit);
}

TEST(AvcEndOfSequence, reportsWhatComesAfterTheHeader) {
    const std::vector<uint8_t> unit = {0x0A, 0x80, 0x00};
    const auto end = qv::avc::readEndOfSequence(bytesOf(unit));
    ASSERT_TRUE(end.ok());
    EXPECT_EQ(end.trailing.bits, 16U);
}

TEST(AvcEndOfSequence, noBytesAreAFault) {
    const auto end = qv::avc::readEndOfSequence({});
    EXPECT_EQ(end.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_STREQ(end.fault.element.name, "forbidden_zero_bit");
}

}  // namespace
