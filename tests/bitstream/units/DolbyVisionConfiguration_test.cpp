// The Dolby Vision decoder configuration record.
#include "bitstream/units/DolbyVisionConfiguration.h"

#include <gtest/gtest.h>

#include <vector>

#include "../support/Hex.h"
#include "../support/MemoryChecks.h"
#include "../support/StructureChecks.h"
#include "bitstream/units/DolbyVisionConfigurationSyntax.h"

namespace {

using namespace qv_test;
using qv::DolbyVisionConfiguration;

StructureUnderTest<DolbyVisionConfiguration> structure() {
    StructureUnderTest<DolbyVisionConfiguration> structure;
    structure.generate = [](RandomUnit& s, DolbyVisionConfiguration& record) {
        qv::dolby_vision_configuration(s, record);
    };
    structure.read = [](qv::Bytes bytes) { return qv::readDolbyVisionConfiguration(bytes); };
    structure.trace = [](qv::Bytes bytes, qv::TraceVisitor& visitor) {
        return qv::traceDolbyVisionConfiguration(bytes, visitor);
    };
    structure.write = [](const DolbyVisionConfiguration& record, std::vector<uint8_t>& out) {
        return qv::writeDolbyVisionConfiguration(record, out);
    };
    structure.size = [](const DolbyVisionConfiguration& record) { return qv::sizeOf(record); };
    return structure;
}

TEST(DolbyVisionConfiguration, roundTrips) {
    checkRoundTrips(structure(), unitRounds(500));
}

TEST(DolbyVisionConfiguration, noAllocationAndNoByteOutside) {
    checkMemory(structure(), unitRounds(25));
}

// As a phone wrote it: 1.0, profile 8 (0001000), level 2 (000010), RPU 1, EL 0, BL 1, compatibility 4:
// 00010000 00010101 0100 0000
const std::vector<uint8_t> kProfile84 = hex("01 00 10 15 40 00000000 00000000 00000000 00000000 000000");

TEST(DolbyVisionConfiguration, everyField) {
    ASSERT_EQ(kProfile84.size(), 24U);
    const auto read = qv::readDolbyVisionConfiguration(bytesOf(kProfile84));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const DolbyVisionConfiguration& record = read.record;
    EXPECT_EQ(record.dv_version_major, 1U);
    EXPECT_EQ(record.dv_version_minor, 0U);
    EXPECT_EQ(record.dv_profile, 8U);
    EXPECT_EQ(record.dv_level, 2U);
    EXPECT_TRUE(record.rpu_present_flag);
    EXPECT_FALSE(record.el_present_flag);
    EXPECT_TRUE(record.bl_present_flag);
    EXPECT_EQ(record.dv_bl_signal_compatibility_id, 4U);
    EXPECT_EQ(record.dv_md_compression, 0U);
    EXPECT_EQ(record.reserved_2bits, 0U);
    EXPECT_TRUE(record.rest.empty());
    EXPECT_EQ(profileNameOf(record), "8.4");
}

TEST(DolbyVisionConfiguration, cutAtEveryByte) {
    for (size_t size = 0; size < kProfile84.size(); ++size) {
        const auto read = qv::readDolbyVisionConfiguration(bytesOf(kProfile84).first(size));
        EXPECT_EQ(read.fault.kind, qv::FaultKind::EndOfData) << size;
        EXPECT_EQ(read.record.dv_level, size < 4 ? 0U : 2U) << size;
    }
}

TEST(DolbyVisionConfiguration, bytesAfterIt) {
    std::vector<uint8_t> longer = kProfile84;
    longer.push_back(0x7F);
    const auto read = qv::readDolbyVisionConfiguration(bytesOf(longer));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(hexOf(read.record.rest), "7F");
    std::vector<uint8_t> out;
    EXPECT_TRUE(qv::writeDolbyVisionConfiguration(read.record, out).ok());
    EXPECT_EQ(out, longer);
}

TEST(DolbyVisionConfiguration, valuesThatDoNotFitAreNotWritten) {
    DolbyVisionConfiguration record = {};
    record.dv_profile = 128;
    std::vector<uint8_t> out;
    const qv::Written written = qv::writeDolbyVisionConfiguration(record, out);
    EXPECT_EQ(written.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_STREQ(written.fault.element.name, "dv_profile");
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(qv::sizeOf(record).bits, 0U);
}

TEST(DolbyVisionConfiguration, profileNames) {
    DolbyVisionConfiguration record = {};
    record.dv_profile = 5;
    EXPECT_EQ(profileNameOf(record), "5");
    record.dv_profile = 7;
    record.dv_bl_signal_compatibility_id = 6;
    EXPECT_EQ(profileNameOf(record), "7");
    record.dv_profile = 10;
    record.dv_bl_signal_compatibility_id = 0;
    EXPECT_EQ(profileNameOf(record), "10.0");
}

}  // namespace
