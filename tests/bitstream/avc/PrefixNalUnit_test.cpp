// The prefix NAL unit of H.264.
#include "bitstream/avc/PrefixNalUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BitWriter.h"
#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/PrefixNalUnitSyntax.h"

namespace {

using namespace qv_test;
using qv::avc::PrefixNalUnit;

StructureUnderTest<PrefixNalUnit> prefix() {
    StructureUnderTest<PrefixNalUnit> structure;
    structure.generate = [](RandomUnit& s, PrefixNalUnit& record) { qv::avc::prefix_nal_unit(s, record); };
    structure.read = qv::avc::readPrefixNalUnit;
    structure.trace = qv::avc::tracePrefixNalUnit;
    structure.write = qv::avc::writePrefixNalUnit;
    structure.size = [](const PrefixNalUnit& record) { return sizeOf(record); };
    structure.extensionData = {"additional_prefix_nal_unit_extension_data_flag"};
    structure.violable = 2;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalPrefix});
        unit.choose("svc_extension_flag", {0, 1, 1, 1});
        unit.choose("store_ref_base_pic_flag", {0, 1, 1});
        unit.choose("adaptive_ref_base_pic_marking_mode_flag", {0, 1, 1});
    };
    return structure;
}

TEST(AvcPrefixNalUnit, roundTrips) {
    checkRoundTrips(prefix(), unitRounds());
}

TEST(AvcPrefixNalUnit, everyRange) {
    EXPECT_THAT(checkRanges(prefix(), unitRounds()),
                testing::IsSupersetOf({"forbidden_zero_bit", "memory_management_base_control_operation"}));
}

TEST(AvcPrefixNalUnit, cutAtEveryBit) {
    checkCuts(prefix(), unitRounds(50));
}

TEST(AvcPrefixNalUnit, noAllocationAndNoByteOutside) {
    checkMemory(prefix(), unitRounds(25));
}

// nal_ref_idc 3, type 14, then an SVC header: idr_flag 0, priority_id 5, no_inter_layer_pred_flag 1,
// dependency_id 0, quality_id 0, temporal_id 2, use_ref_base_pic_flag 0, discardable_flag 0, output_flag 1,
// reserved_three_2bits 3.
BitWriter svcHeader(uint32_t nal_ref_idc) {
    BitWriter bits;
    bits.u(1, "forbidden_zero_bit", 0).u(2, "nal_ref_idc", nal_ref_idc).u(5, "nal_unit_type", 14);
    bits.u(1, "svc_extension_flag", 1).u(1, "idr_flag", 0).u(6, "priority_id", 5);
    bits.u(1, "no_inter_layer_pred_flag", 1).u(3, "dependency_id", 0).u(4, "quality_id", 0);
    bits.u(3, "temporal_id", 2).u(1, "use_ref_base_pic_flag", 0).u(1, "discardable_flag", 0);
    bits.u(1, "output_flag", 1).u(2, "reserved_three_2bits", 3);
    return bits;
}

TEST(AvcPrefixNalUnit, readsReferenceBasePictureMarking) {
    BitWriter bits = svcHeader(3);
    bits.u(1, "store_ref_base_pic_flag", 1).u(1, "adaptive_ref_base_pic_marking_mode_flag", 1);
    bits.ue("memory_management_base_control_operation", 1).ue("difference_of_base_pic_nums_minus1", 7);
    bits.ue("memory_management_base_control_operation", 2).ue("long_term_base_pic_num", 3);
    bits.ue("memory_management_base_control_operation", 0);
    bits.u(1, "additional_prefix_nal_unit_extension_flag", 0).trailingBits();
    const std::vector<uint8_t> unit = bits.bytes();
    const auto read = qv::avc::readPrefixNalUnit(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.header.svc.priority_id, 5U);
    EXPECT_EQ(read.record.header.svc.temporal_id, 2U);
    EXPECT_TRUE(read.record.store_ref_base_pic_flag);
    const auto& marking = read.record.dec_ref_base_pic_marking;
    EXPECT_TRUE(marking.adaptive_ref_base_pic_marking_mode_flag);
    EXPECT_EQ(marking.operations[0].memory_management_base_control_operation, 1U);
    EXPECT_EQ(marking.operations[0].difference_of_base_pic_nums_minus1, 7U);
    EXPECT_EQ(marking.operations[1].memory_management_base_control_operation, 2U);
    EXPECT_EQ(marking.operations[1].long_term_base_pic_num, 3U);
    EXPECT_EQ(marking.operations[2].memory_management_base_control_operation, 0U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(qv::avc::writePrefixNalUnit(read.record, written).ok());
    EXPECT_EQ(written, unit);
}

TEST(AvcPrefixNalUnit, tooManyMarkingOperationsAreAFault) {
    BitWriter bits = svcHeader(1);
    bits.u(1, "store_ref_base_pic_flag", 1).u(1, "adaptive_ref_base_pic_marking_mode_flag", 1);
    for (uint32_t i = 0; i < qv::avc::DecRefBasePicMarking::kMostOperations; ++i) {
        bits.ue("memory_management_base_control_operation", 1).ue("difference_of_base_pic_nums_minus1", i);
    }
    bits.ue("memory_management_base_control_operation", 0);
    bits.u(1, "additional_prefix_nal_unit_extension_flag", 0).trailingBits();
    const std::vector<uint8_t> unit = bits.bytes();
    const auto read = qv::avc::readPrefixNalUnit(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::TooManyEntries);
    EXPECT_STREQ(read.fault.element.name, "memory_management_base_control_operation");
}

// A record whose operations have no end is not written past them.
TEST(AvcPrefixNalUnit, operationsWithoutEndAreNotWritten) {
    PrefixNalUnit prefix = {};
    prefix.header.nal_unit_type = qv::avc::kNalPrefix;
    prefix.header.nal_ref_idc = 1;
    prefix.header.svc_extension_flag = true;
    prefix.store_ref_base_pic_flag = true;
    prefix.dec_ref_base_pic_marking.adaptive_ref_base_pic_marking_mode_flag = true;
    for (auto& operation : prefix.dec_ref_base_pic_marking.operations) {
        operation.memory_management_base_control_operation = 2;
    }
    std::vector<uint8_t> out;
    EXPECT_EQ(qv::avc::writePrefixNalUnit(prefix, out).fault.kind, qv::FaultKind::TooManyEntries);
    EXPECT_EQ(sizeOf(prefix).fault.kind, qv::FaultKind::TooManyEntries);
    EXPECT_TRUE(out.empty());
}

// Without nal_ref_idc the RBSP may be empty, and it may hold flags alone.
TEST(AvcPrefixNalUnit, withoutReferenceTheRbspMayBeEmpty) {
    for (const char* const rest : {"", "1000 0000", "0110 1000"}) {
        SCOPED_TRACE(rest);
        BitWriter bits = svcHeader(0);
        bits.bits("RBSP", rest);
        const std::vector<uint8_t> unit = bits.bytes();
        const auto read = qv::avc::readPrefixNalUnit(bytesOf(unit));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.trailing.bits, 0U);
        EXPECT_EQ(read.record.hasNoRbsp, *rest == '\0');
        EXPECT_EQ(read.record.additional_prefix_nal_unit_extension_data.count, *rest == '0' ? 4U : 0U);
        std::vector<uint8_t> written;
        ASSERT_TRUE(qv::avc::writePrefixNalUnit(read.record, written).ok());
        EXPECT_EQ(written, unit);
    }
}

TEST(AvcPrefixNalUnit, trailingZeroBytesDoNotMakeAnRbsp) {
    std::vector<uint8_t> unit = svcHeader(0).bytes();
    const std::vector<uint8_t> withoutZeros = unit;
    unit.insert(unit.end(), 3, 0x00);
    const auto read = qv::avc::readPrefixNalUnit(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.hasNoRbsp);
    EXPECT_EQ(read.trailing.bytes.size, 3U);
    std::vector<uint8_t> written;
    ASSERT_TRUE(qv::avc::writePrefixNalUnit(read.record, written).ok());
    EXPECT_EQ(written, withoutZeros);
}

// An MVC header: non_idr_flag 1, priority_id 0, view_id 1, temporal_id 0, anchor_pic_flag 1,
// inter_view_flag 1, reserved_one_bit 1.
TEST(AvcPrefixNalUnit, afterAnMvcHeaderThereIsNoRbsp) {
    std::vector<uint8_t> unit = {0x6E, 0x40, 0x00, 0x47};
    const auto read = qv::avc::readPrefixNalUnit(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_FALSE(read.record.header.svc_extension_flag);
    EXPECT_TRUE(read.record.header.mvc.non_idr_flag);
    EXPECT_EQ(read.record.header.mvc.view_id, 1U);
    EXPECT_TRUE(read.record.header.mvc.anchor_pic_flag);
    EXPECT_EQ(read.trailing.bits, 0U);
    EXPECT_EQ(sizeOf(read.record).bits, 32U);
    EXPECT_EQ(sizeOf(read.record.header), 4U);

    unit.push_back(0x80);
    EXPECT_EQ(qv::avc::readPrefixNalUnit(bytesOf(unit)).trailing.bits, 8U);
}

}  // namespace
