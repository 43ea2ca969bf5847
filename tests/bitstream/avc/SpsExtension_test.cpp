// The sequence parameter set extension of H.264.
#include "bitstream/avc/SpsExtension.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/SpsExtensionSyntax.h"

namespace {

using namespace qv_test;
using qv::avc::SpsExtension;

StructureUnderTest<SpsExtension> extension() {
    StructureUnderTest<SpsExtension> structure;
    structure.generate = [](RandomUnit& s, SpsExtension& record) {
        qv::avc::seq_parameter_set_extension_unit(s, record);
    };
    structure.read = qv::avc::readSpsExtension;
    structure.trace = qv::avc::traceSpsExtension;
    structure.write = qv::avc::writeSpsExtension;
    structure.size = [](const SpsExtension& record) { return sizeOf(record); };
    structure.extensionData = {"additional_extension_data_flag"};
    structure.violable = 4;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalSpsExtension});
    };
    return structure;
}

TEST(AvcSpsExtension, roundTrips) {
    checkRoundTrips(extension(), unitRounds());
}

TEST(AvcSpsExtension, everyRange) {
    EXPECT_THAT(checkRanges(extension(), unitRounds()),
                testing::IsSupersetOf({"seq_parameter_set_id", "aux_format_idc", "bit_depth_aux_minus8"}));
}

TEST(AvcSpsExtension, cutAtEveryBit) {
    checkCuts(extension(), unitRounds(50));
}

TEST(AvcSpsExtension, noAllocationAndNoByteOutside) {
    checkMemory(extension(), unitRounds(25));
}

// seq_parameter_set_id 2, aux_format_idc 1, bit_depth_aux_minus8 0, alpha_incr_flag 0, alpha_opaque_value
// 255, alpha_transparent_value 0, additional_extension_flag 0: 011 010 1 0 | 01111111 | 1 0000000 | 00 0 1
// 0000
TEST(AvcSpsExtension, readsAnAlphaPlane) {
    const std::vector<uint8_t> unit = {0x6D, 0x6A, 0x7F, 0x80, 0x10};
    const auto read = qv::avc::readSpsExtension(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.seq_parameter_set_id, 2U);
    EXPECT_EQ(read.record.aux_format_idc, 1U);
    EXPECT_EQ(read.record.bit_depth_aux_minus8, 0U);
    EXPECT_FALSE(read.record.alpha_incr_flag);
    EXPECT_EQ(read.record.alpha_opaque_value, 255U);
    EXPECT_EQ(read.record.alpha_transparent_value, 0U);
    EXPECT_FALSE(read.record.additional_extension_flag);
    EXPECT_EQ(read.trailing.bits, 0U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(qv::avc::writeSpsExtension(read.record, written).ok());
    EXPECT_EQ(written, unit);
}

// seq_parameter_set_id 0, aux_format_idc 0, additional_extension_flag 1, then 101 and the stop bit:
// 1 1 1 101 1 0
TEST(AvcSpsExtension, keepsDataThatTheStandardReserves) {
    const std::vector<uint8_t> unit = {0x6D, 0xF6};
    const auto read = qv::avc::readSpsExtension(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.additional_extension_flag);
    EXPECT_EQ(read.record.additional_extension_data.count, 3U);
    EXPECT_EQ(read.record.additional_extension_data.firstBit, 11U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(qv::avc::writeSpsExtension(read.record, written).ok());
    EXPECT_EQ(written, unit);
}

}  // namespace
