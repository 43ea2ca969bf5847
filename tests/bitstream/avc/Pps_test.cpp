// The picture parameter set of H.264.
#include "bitstream/avc/Pps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "BitWriter.h"
#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/PpsSyntax.h"
#include "bitstream/avc/ScalingFactors.h"

namespace {

using namespace qv_test;
using qv::avc::Pps;
using testing::ElementsAre;
using testing::IsSupersetOf;

StructureUnderTest<Pps> pps(uint32_t chroma_format_idc = 1) {
    StructureUnderTest<Pps> structure;
    structure.generate = [=](RandomUnit& s, Pps& record) {
        qv::avc::pic_parameter_set_unit(s, record, chroma_format_idc);
    };
    structure.read = [=](qv::Bytes unit) { return qv::avc::readPps(unit, chroma_format_idc); };
    structure.trace = [=](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::avc::tracePps(unit, chroma_format_idc, visitor);
    };
    structure.write = [=](const Pps& record, std::vector<uint8_t>& out) {
        return qv::avc::writePps(record, chroma_format_idc, out);
    };
    structure.size = [=](const Pps& record) { return sizeOf(record, chroma_format_idc); };
    structure.optional = {"transform_8x8_mode_flag"};
    structure.violable = 20;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalPps});
        unit.choose("num_slice_groups_minus1", {0, 0, 1, 2, 3, 4, 7});
        unit.choose("pic_size_in_map_units_minus1", {0, 1, 2, 34, 98});
        // Of the groups that there are in any case.
        unit.choose("slice_group_id", {0, 1});
    };
    return structure;
}

TEST(AvcPps, roundTrips) {
    for (uint32_t chroma_format_idc = 0; chroma_format_idc <= 3; ++chroma_format_idc) {
        checkRoundTrips(pps(chroma_format_idc), unitRounds() / 2);
    }
}

TEST(AvcPps, everyRange) {
    EXPECT_THAT(checkRanges(pps(), unitRounds()),
                IsSupersetOf({"pic_parameter_set_id", "seq_parameter_set_id", "num_slice_groups_minus1",
                              "slice_group_map_type", "pic_size_in_map_units_minus1", "slice_group_id",
                              "num_ref_idx_l0_default_active_minus1", "num_ref_idx_l1_default_active_minus1",
                              "weighted_bipred_idc", "pic_init_qp_minus26", "pic_init_qs_minus26",
                              "chroma_qp_index_offset", "delta_scale", "second_chroma_qp_index_offset"}));
}

TEST(AvcPps, cutAtEveryBit) {
    checkCuts(pps(3), unitRounds(50));
}

const std::vector<Derivation<Pps>> kDerivations = {
    {"SliceGroupIds",
     [](const Pps& pps) {
         qv::avc::SliceGroupIds ids(pps);
         uint64_t sum = 0;
         for (uint32_t id = 0; ids.next(id);) {
             sum += 1 + id;
         }
         return sum;
     }},
    {"scalingFactorsOf",
     [](const Pps& pps) {
         qv::avc::SpsData sps = {};
         sps.chroma_format_idc = 3;
         const qv::avc::ScalingFactors factors = qv::avc::scalingFactorsOf(sps, pps);
         return uint64_t{factors.list4x4[5][15]} + factors.list8x8[5][63];
     }},
};

TEST(AvcPps, noAllocationAndNoByteOutside) {
    checkMemory(pps(1), unitRounds(25), kDerivations);
    checkMemory(pps(3), unitRounds(25), kDerivations);
}

// A picture parameter set by hand: what comes before and after the slice groups.
class HandMadePps {
public:
    explicit HandMadePps(uint32_t num_slice_groups_minus1) {
        bits_.u(8, "header", 0x68).ue("pic_parameter_set_id", 3).ue("seq_parameter_set_id", 1);
        bits_.u(1, "entropy_coding_mode_flag", 0).u(1, "bottom_field_pic_order_in_frame_present_flag", 0);
        bits_.ue("num_slice_groups_minus1", num_slice_groups_minus1);
    }

    BitWriter& bits() { return bits_; }

    std::vector<uint8_t> finish() {
        bits_.ue("num_ref_idx_l0_default_active_minus1", 2).ue("num_ref_idx_l1_default_active_minus1", 4);
        bits_.u(1, "weighted_pred_flag", 1).u(2, "weighted_bipred_idc", 2).se("pic_init_qp_minus26", -3);
        bits_.se("pic_init_qs_minus26", 5).se("chroma_qp_index_offset", -2);
        bits_.u(1, "deblocking_filter_control_present_flag", 1).u(1, "constrained_intra_pred_flag", 0);
        bits_.u(1, "redundant_pic_cnt_present_flag", 1).trailingBits();
        return bits_.bytes();
    }

private:
    BitWriter bits_;
};

// The record of a unit that is read without a fault and written as it was.
qv::Read<Pps> readBack(const std::vector<uint8_t>& unit, uint32_t chroma_format_idc = 1) {
    const auto read = qv::avc::readPps(bytesOf(unit), chroma_format_idc);
    EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 0U);
    std::vector<uint8_t> written;
    EXPECT_TRUE(qv::avc::writePps(read.record, chroma_format_idc, written).ok());
    EXPECT_EQ(written, unit);
    return read;
}

void expectTheRest(const Pps& pps) {
    EXPECT_EQ(pps.pic_parameter_set_id, 3U);
    EXPECT_EQ(pps.seq_parameter_set_id, 1U);
    EXPECT_EQ(pps.num_ref_idx_l0_default_active_minus1, 2U);
    EXPECT_EQ(pps.num_ref_idx_l1_default_active_minus1, 4U);
    EXPECT_TRUE(pps.weighted_pred_flag);
    EXPECT_EQ(pps.weighted_bipred_idc, 2U);
    EXPECT_EQ(pps.pic_init_qp_minus26, -3);
    EXPECT_EQ(pps.pic_init_qs_minus26, 5);
    EXPECT_EQ(pps.chroma_qp_index_offset, -2);
    EXPECT_TRUE(pps.deblocking_filter_control_present_flag);
    EXPECT_TRUE(pps.redundant_pic_cnt_present_flag);
    EXPECT_FALSE(pps.transform_8x8_mode_flag_present);
    EXPECT_FALSE(pps.transform_8x8_mode_flag);
    EXPECT_EQ(pps.second_chroma_qp_index_offset, -2) << "inferred";
}

std::vector<uint32_t> sliceGroupIdsOf(const Pps& pps) {
    std::vector<uint32_t> ids;
    qv::avc::SliceGroupIds list(pps);
    for (uint32_t id = 0; list.next(id);) {
        ids.push_back(id);
    }
    return ids;
}

TEST(AvcPps, oneSliceGroup) {
    HandMadePps hand(0);
    const std::vector<uint8_t> unit = hand.finish();
    const Pps pps = readBack(unit).record;
    expectTheRest(pps);
    EXPECT_THAT(sliceGroupIdsOf(pps), ElementsAre());
}

TEST(AvcPps, interleavedSliceGroups) {
    HandMadePps hand(2);
    hand.bits().ue("slice_group_map_type", 0);
    hand.bits().ue("run_length_minus1", 9).ue("run_length_minus1", 0).ue("run_length_minus1", 4000);
    const std::vector<uint8_t> unit = hand.finish();
    const Pps pps = readBack(unit).record;
    expectTheRest(pps);
    EXPECT_THAT(pps.run_length_minus1, ElementsAre(9, 0, 4000, 0, 0, 0, 0, 0));
}

TEST(AvcPps, dispersedSliceGroups) {
    HandMadePps hand(7);
    hand.bits().ue("slice_group_map_type", 1);
    const std::vector<uint8_t> unit = hand.finish();
    const Pps pps = readBack(unit).record;
    expectTheRest(pps);
    EXPECT_EQ(pps.slice_group_map_type, 1U);
}

TEST(AvcPps, foregroundSliceGroupsAreOneLessThanTheGroups) {
    HandMadePps hand(2);
    hand.bits().ue("slice_group_map_type", 2);
    hand.bits().ue("top_left", 1).ue("bottom_right", 20).ue("top_left", 3).ue("bottom_right", 40);
    const std::vector<uint8_t> unit = hand.finish();
    const Pps pps = readBack(unit).record;
    expectTheRest(pps);
    EXPECT_THAT(pps.top_left, ElementsAre(1, 3, 0, 0, 0, 0, 0));
    EXPECT_THAT(pps.bottom_right, ElementsAre(20, 40, 0, 0, 0, 0, 0));
}

TEST(AvcPps, changingSliceGroups) {
    for (uint32_t type = 3; type <= 5; ++type) {
        HandMadePps hand(1);
        hand.bits().ue("slice_group_map_type", type);
        hand.bits().u(1, "slice_group_change_direction_flag", 1).ue("slice_group_change_rate_minus1", 98);
        const std::vector<uint8_t> unit = hand.finish();
        const Pps pps = readBack(unit).record;
        expectTheRest(pps);
        EXPECT_EQ(pps.slice_group_map_type, type);
        EXPECT_TRUE(pps.slice_group_change_direction_flag);
        EXPECT_EQ(pps.slice_group_change_rate_minus1, 98U);
    }
}

TEST(AvcPps, explicitSliceGroups) {
    // slice_group_id has Ceil( Log2( groups ) ) bits.
    const uint32_t widths[] = {0, 1, 2, 2, 3, 3, 3, 3};
    for (uint32_t groups = 2; groups <= 8; ++groups) {
        SCOPED_TRACE(groups);
        HandMadePps hand(groups - 1);
        hand.bits().ue("slice_group_map_type", 6).ue("pic_size_in_map_units_minus1", 8);
        for (uint32_t i = 0; i <= 8; ++i) {
            hand.bits().u(widths[groups - 1], "slice_group_id", i % groups);
        }
        const std::vector<uint8_t> unit = hand.finish();
        const Pps pps = readBack(unit).record;
        expectTheRest(pps);
        EXPECT_EQ(pps.slice_group_id.count, 9 * widths[groups - 1]);
        const std::vector<uint32_t> ids = sliceGroupIdsOf(pps);
        ASSERT_EQ(ids.size(), 9U);
        for (uint32_t i = 0; i <= 8; ++i) {
            EXPECT_EQ(ids[i], i % groups);
        }
    }
}

TEST(AvcPps, sliceGroupIdIsLessThanTheGroups) {
    HandMadePps hand(2);
    hand.bits().ue("slice_group_map_type", 6).ue("pic_size_in_map_units_minus1", 2);
    hand.bits().u(2, "slice_group_id", 1).u(2, "slice_group_id", 3).u(2, "slice_group_id", 0);
    const std::vector<uint8_t> unit = hand.finish();
    const auto read = qv::avc::readPps(bytesOf(unit), 1);
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_EQ(qv::textOf(read.fault.element), "slice_group_id[1]");
    EXPECT_TRUE(read.record.slice_group_id.empty());
    EXPECT_THAT(sliceGroupIdsOf(read.record), ElementsAre());
}

TEST(AvcPps, thePictureOfAllMapUnitsIsBounded) {
    HandMadePps hand(1);
    hand.bits().ue("slice_group_map_type", 6).ue("pic_size_in_map_units_minus1", Pps::kMostMapUnits);
    const std::vector<uint8_t> unit = hand.finish();
    const auto read = qv::avc::readPps(bytesOf(unit), 1);
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_STREQ(read.fault.element.name, "pic_size_in_map_units_minus1");
}

// The picture parameter set of a stream with two dispersed slice groups.
TEST(AvcPps, readsTheBytesOfAnEncoderWithSliceGroups) {
    const std::vector<uint8_t> unit = {0x68, 0xC4, 0x8A, 0x51, 0xC4};
    const Pps pps = readBack(unit).record;
    EXPECT_EQ(pps.num_slice_groups_minus1, 1U);
    EXPECT_EQ(pps.slice_group_map_type, 1U);
}

// --- transform_8x8_mode_flag and the scaling lists ---

// A picture parameter set with lists of one delta_scale, -8, each: useDefaultScalingMatrixFlag.
std::vector<uint8_t> unitWithLists(bool transform_8x8_mode_flag, uint32_t lists) {
    BitWriter bits;
    bits.u(8, "header", 0x68).ue("pic_parameter_set_id", 0).ue("seq_parameter_set_id", 0);
    bits.u(1, "entropy_coding_mode_flag", 1).u(1, "bottom_field_pic_order_in_frame_present_flag", 0);
    bits.ue("num_slice_groups_minus1", 0);
    bits.ue("num_ref_idx_l0_default_active_minus1", 0).ue("num_ref_idx_l1_default_active_minus1", 0);
    bits.u(1, "weighted_pred_flag", 0).u(2, "weighted_bipred_idc", 0).se("pic_init_qp_minus26", 0);
    bits.se("pic_init_qs_minus26", 0).se("chroma_qp_index_offset", 4);
    bits.u(1, "deblocking_filter_control_present_flag", 1).u(1, "constrained_intra_pred_flag", 0);
    bits.u(1, "redundant_pic_cnt_present_flag", 0);
    bits.u(1, "transform_8x8_mode_flag", transform_8x8_mode_flag ? 1 : 0);
    bits.u(1, "pic_scaling_matrix_present_flag", 1);
    for (uint32_t i = 0; i < lists; ++i) {
        bits.u(1, "pic_scaling_list_present_flag", 1).se("delta_scale", -8);
    }
    bits.se("second_chroma_qp_index_offset", -12).trailingBits();
    return bits.bytes();
}

TEST(AvcPps, theNumberOfListsFollowsFromTheTransformAndTheChromaFormat) {
    const struct {
        bool transform_8x8_mode_flag;
        uint32_t chroma_format_idc;
        uint32_t lists;
    } cases[] = {{false, 1, 6}, {false, 3, 6}, {true, 0, 8}, {true, 1, 8}, {true, 2, 8}, {true, 3, 12}};
    for (const auto& one : cases) {
        SCOPED_TRACE(std::to_string(one.transform_8x8_mode_flag) + " " +
                     std::to_string(one.chroma_format_idc));
        const std::vector<uint8_t> unit = unitWithLists(one.transform_8x8_mode_flag, one.lists);
        const Pps pps = readBack(unit, one.chroma_format_idc).record;
        EXPECT_TRUE(pps.transform_8x8_mode_flag_present);
        EXPECT_EQ(pps.transform_8x8_mode_flag, one.transform_8x8_mode_flag);
        for (uint32_t i = 0; i < one.lists; ++i) {
            EXPECT_TRUE(pps.scaling_matrix.scaling_list_present_flag[i]);
            EXPECT_EQ(pps.scaling_matrix.scaling_list[i].deltaCount, 1U);
        }
        EXPECT_EQ(pps.chroma_qp_index_offset, 4);
        EXPECT_EQ(pps.second_chroma_qp_index_offset, -12);
    }
}

TEST(AvcPps, theParameterSetIdentifiersDoNotDependOnTheChromaFormat) {
    const std::vector<uint8_t> unit = unitWithLists(true, 12);
    const auto read = qv::avc::readPps(bytesOf(unit), 1);
    EXPECT_EQ(read.record.pic_parameter_set_id, 0U);
    EXPECT_EQ(read.record.seq_parameter_set_id, 0U);
    EXPECT_TRUE(!read.ok() || read.trailing.bits != 0);
}

}  // namespace
