// Slice headers of H.264: every branch of the table, and slices written with another header.
#include "bitstream/avc/SliceHeader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "Hex.h"
#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/SliceHeaderSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace {

using namespace qv_test;
using namespace qv::avc;
using testing::ElementsAre;
using testing::IsSupersetOf;
using Buffer = std::vector<uint8_t>;

// --- Parameter sets ---

struct Sets {
    Sps sps = {};
    Pps pps = {};
};

Sets plainSets() {
    Sets sets;
    sets.sps.header.nal_ref_idc = 3;
    sets.sps.header.nal_unit_type = kNalSps;
    sets.sps.data.profile_idc = 100;
    sets.sps.data.level_idc = 30;
    sets.sps.data.chroma_format_idc = 1;
    sets.sps.data.pic_order_cnt_type = 2;
    sets.sps.data.max_num_ref_frames = 4;
    sets.sps.data.pic_width_in_mbs_minus1 = 19;
    sets.sps.data.pic_height_in_map_units_minus1 = 14;
    sets.sps.data.frame_mbs_only_flag = true;
    sets.sps.data.direct_8x8_inference_flag = true;
    sets.pps.header.nal_ref_idc = 3;
    sets.pps.header.nal_unit_type = kNalPps;
    sets.pps.num_ref_idx_l0_default_active_minus1 = 1;
    return sets;
}

template <class Record, class Write>
void takeWritten(ParameterSets& into, const Record& record, const Write& write) {
    Buffer unit;
    const qv::Written written = write(record, unit);
    ASSERT_TRUE(written.ok()) << qv::textOf(written.fault);
    ASSERT_FALSE(into.take(bytesOf(unit)).fault);
}

std::shared_ptr<ParameterSets> taken(const Sets& sets) {
    auto all = std::make_shared<ParameterSets>();
    takeWritten(*all, sets.sps, [](const Sps& sps, Buffer& out) { return writeSps(sps, out); });
    takeWritten(*all, sets.pps, [](const Pps& pps, Buffer& out) { return writePps(pps, 1, out); });
    return all;
}

// Fields, order counts of type 0, CABAC, weights and every optional element.
Sets richSets() {
    Sets sets = plainSets();
    sets.sps.data.frame_mbs_only_flag = false;
    sets.sps.data.pic_order_cnt_type = 0;
    sets.pps.entropy_coding_mode_flag = true;
    sets.pps.bottom_field_pic_order_in_frame_present_flag = true;
    sets.pps.weighted_pred_flag = true;
    sets.pps.weighted_bipred_idc = 1;
    sets.pps.deblocking_filter_control_present_flag = true;
    sets.pps.redundant_pic_cnt_present_flag = true;
    return sets;
}

// Colour planes, order counts of type 1 and slice groups that change.
Sets groupSets() {
    Sets sets = plainSets();
    sets.sps.data.profile_idc = 244;
    sets.sps.data.chroma_format_idc = 3;
    sets.sps.data.separate_colour_plane_flag = true;
    sets.sps.data.pic_order_cnt_type = 1;
    sets.pps.bottom_field_pic_order_in_frame_present_flag = true;
    sets.pps.weighted_pred_flag = true;
    sets.pps.num_slice_groups_minus1 = 1;
    sets.pps.slice_group_map_type = 3;
    sets.pps.slice_group_change_rate_minus1 = 9;
    return sets;
}

// --- All uses of the table, with rbsp_trailing_bits() after it ---

StructureUnderTest<SliceHeader> slices(const std::shared_ptr<ParameterSets>& sets) {
    StructureUnderTest<SliceHeader> structure;
    const auto table = [sets](auto& s, SliceHeader& slice) {
        slice_unit(s, *sets, slice);
        s.rbsp_trailing_bits();
    };
    structure.generate = table;
    structure.read = [=](qv::Bytes unit) { return qv::detail::readUnit<SliceHeader>(unit, table); };
    structure.trace = [=](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::detail::traceUnit<SliceHeader>(unit, visitor, table);
    };
    structure.write = [=](const SliceHeader& slice, Buffer& out) {
        return qv::detail::writeUnit(slice, out, table);
    };
    structure.size = [=](const SliceHeader& slice) { return qv::detail::sizeUnit(slice, table); };
    structure.violable = 20;
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("nal_unit_type", {1, 2, 5, 19, 1, 1});
        unit.choose("slice_type", {0, 1, 2, 3, 4, 5, 6, 8, static_cast<int64_t>(random() % 10)});
        unit.choose("pic_parameter_set_id", {0});
        unit.choose("modification_of_pic_nums_idc", {0, 1, 2, 3, 3});
        unit.choose("num_ref_idx_l0_active_minus1", {0, 1, 3});
        unit.choose("num_ref_idx_l1_active_minus1", {0, 1, 2});
        unit.choose("memory_management_control_operation", {0, 0, 0, 1, 2, 3, 4, 5, 6});
    };
    return structure;
}

std::vector<std::shared_ptr<ParameterSets>> everySets() {
    return {taken(plainSets()), taken(richSets()), taken(groupSets())};
}

TEST(AvcSliceHeader, roundTrips) {
    for (const auto& sets : everySets()) {
        checkRoundTrips(slices(sets), unitRounds());
    }
}

TEST(AvcSliceHeader, ranges) {
    std::set<std::string> names;
    for (const auto& sets : everySets()) {
        names.merge(checkRanges(slices(sets), unitRounds()));
    }
    EXPECT_THAT(names, IsSupersetOf({"colour_plane_id", "idr_pic_id", "redundant_pic_cnt",
                                     "luma_log2_weight_denom", "chroma_log2_weight_denom", "luma_weight_l0",
                                     "luma_offset_l0", "chroma_weight_l1", "chroma_offset_l1",
                                     "cabac_init_idc", "disable_deblocking_filter_idc",
                                     "slice_alpha_c0_offset_div2", "slice_beta_offset_div2"}));
}

TEST(AvcSliceHeader, cuts) {
    for (const auto& sets : everySets()) {
        checkCuts(slices(sets), unitRounds(50));
    }
}

TEST(AvcSliceHeader, memory) {
    const Derivation<SliceHeader> modifications = {
        "modifications", [](const SliceHeader& slice) {
            uint64_t count = 0;
            ModificationsOfPicNums list(slice.list_modification[0]);
            for (ModificationOfPicNums m = {}; list.next(m);) {
                ++count;
            }
            return count;
        }};
    for (const auto& sets : everySets()) {
        checkMemory(slices(sets), unitRounds(25), {modifications});
    }
}

// --- By hand ---

// An SPS of 4 bits of frame_num, and order counts of type 2.
BitWriter sliceBits(uint32_t nal_unit_type, uint32_t slice_type) {
    BitWriter bits;
    bits.u(1, "forbidden_zero_bit", 0).u(2, "nal_ref_idc", 0).u(5, "nal_unit_type", nal_unit_type);
    bits.ue("first_mb_in_slice", 7).ue("slice_type", slice_type).ue("pic_parameter_set_id", 0);
    bits.u(4, "frame_num", 9);
    return bits;
}

qv::Read<SliceHeader> read(BitWriter bits, const ParameterSets& sets) {
    return readSliceHeader(bytesOf(bits.trailingBits().bytes()), sets);
}

TEST(AvcSliceHeader, whatIsNotPresentIsInferred) {
    Sets sets = plainSets();
    sets.pps.weighted_pred_flag = true;
    BitWriter bits = sliceBits(1, 5);
    bits.u(1, "num_ref_idx_active_override_flag", 0).u(1, "ref_pic_list_modification_flag_l0", 0);
    bits.ue("luma_log2_weight_denom", 5).ue("chroma_log2_weight_denom", 2);
    bits.u(1, "luma_weight_l0_flag", 0).u(1, "chroma_weight_l0_flag", 1);
    bits.se("chroma_weight_l0", -3).se("chroma_offset_l0", 1).se("chroma_weight_l0", 4).se("offset", -128);
    bits.u(1, "luma_weight_l0_flag", 1).se("luma_weight_l0", 127).se("luma_offset_l0", -7);
    bits.u(1, "chroma_weight_l0_flag", 0).se("slice_qp_delta", -4);
    const auto slice = read(bits, *taken(sets));
    ASSERT_TRUE(slice.ok()) << qv::textOf(slice.fault);
    EXPECT_EQ(typeOf(slice.record), SliceType::P);
    EXPECT_EQ(slice.record.first_mb_in_slice, 7U);
    EXPECT_EQ(slice.record.frame_num, 9U);
    EXPECT_EQ(slice.record.num_ref_idx_active_minus1[0], 1U);
    ASSERT_TRUE(slice.record.hasPredWeightTable);
    const PredictionWeights* const weights = slice.record.pred_weight_table.weights[0];
    EXPECT_EQ(weights[0].luma_weight, 32);
    EXPECT_EQ(weights[0].luma_offset, 0);
    EXPECT_THAT(weights[0].chroma_weight, ElementsAre(-3, 4));
    EXPECT_THAT(weights[0].chroma_offset, ElementsAre(1, -128));
    EXPECT_EQ(weights[1].luma_weight, 127);
    EXPECT_EQ(weights[1].luma_offset, -7);
    EXPECT_THAT(weights[1].chroma_weight, ElementsAre(4, 4));
    EXPECT_THAT(weights[1].chroma_offset, ElementsAre(0, 0));
    EXPECT_EQ(slice.record.slice_qp_delta, -4);
}

TEST(AvcSliceHeader, commandsOfAListInOrder) {
    BitWriter bits = sliceBits(1, 0);
    bits.u(1, "num_ref_idx_active_override_flag", 1).ue("num_ref_idx_l0_active_minus1", 15);
    bits.u(1, "ref_pic_list_modification_flag_l0", 1);
    bits.ue("modification_of_pic_nums_idc", 0).ue("abs_diff_pic_num_minus1", 5);
    bits.ue("modification_of_pic_nums_idc", 2).ue("long_term_pic_num", 3);
    bits.ue("modification_of_pic_nums_idc", 3).se("slice_qp_delta", 0);
    const Buffer unit = bits.trailingBits().bytes();
    const auto slice = readSliceHeader(bytesOf(unit), *taken(plainSets()));
    ASSERT_TRUE(slice.ok()) << qv::textOf(slice.fault);
    EXPECT_EQ(slice.record.num_ref_idx_active_minus1[0], 15U);
    ModificationsOfPicNums list(slice.record.list_modification[0]);
    ModificationOfPicNums command = {};
    ASSERT_TRUE(list.next(command));
    EXPECT_EQ(command.modification_of_pic_nums_idc, 0U);
    EXPECT_EQ(command.abs_diff_pic_num_minus1, 5U);
    ASSERT_TRUE(list.next(command));
    EXPECT_EQ(command.modification_of_pic_nums_idc, 2U);
    EXPECT_EQ(command.long_term_pic_num, 3U);
    EXPECT_FALSE(list.next(command));
    EXPECT_FALSE(list.next(command));
}

// A picture of 300 map units in steps of 10: 30 cycles and none, 31 values.
TEST(AvcSliceHeader, widthOfSliceGroupChangeCycle) {
    struct Row {
        uint32_t rate_minus1;
        uint32_t width;
    };
    for (const Row row :
         {Row{9, 5}, Row{0, 9}, Row{299, 1}, Row{298, 2}, Row{149, 2}, Row{99, 2}, Row{98, 3}}) {
        Sets sets = groupSets();
        sets.pps.slice_group_change_rate_minus1 = row.rate_minus1;
        EXPECT_EQ(widthOfSliceGroupChangeCycle({sets.pps, sets.sps.data}), row.width) << row.rate_minus1;
    }
}

TEST(AvcSliceHeader, aSizeOfNoLevelIsBounded) {
    Sets sets = groupSets();
    sets.sps.data.pic_width_in_mbs_minus1 = 0xFFFFFFFE;
    sets.sps.data.pic_height_in_map_units_minus1 = 0xFFFFFFFE;
    sets.pps.slice_group_change_rate_minus1 = 0;
    EXPECT_EQ(widthOfSliceGroupChangeCycle({sets.pps, sets.sps.data}), 18U);
}

// --- Views ---

TEST(AvcSliceHeader, slicesOfViewsReferToSubsetSps) {
    Sets sets = plainSets();
    auto all = taken(sets);
    BitWriter bits;
    bits.u(8, "nal_unit()", 0x14).u(1, "svc_extension_flag", 0).u(1, "non_idr_flag", 1);
    bits.u(6, "priority_id", 0).u(10, "view_id", 1).u(3, "temporal_id", 0).u(1, "anchor_pic_flag", 1);
    bits.u(1, "inter_view_flag", 0).u(1, "reserved_one_bit", 1);
    bits.ue("first_mb_in_slice", 0).ue("slice_type", 0).ue("pic_parameter_set_id", 0).u(4, "frame_num", 1);
    bits.u(1, "num_ref_idx_active_override_flag", 0).u(1, "ref_pic_list_modification_flag_l0", 1);
    bits.ue("modification_of_pic_nums_idc", 5).ue("abs_diff_view_idx_minus1", 2);
    bits.ue("modification_of_pic_nums_idc", 3).se("slice_qp_delta", 2);
    const Buffer unit = bits.trailingBits().bytes();
    EXPECT_EQ(qv::textOf(readSliceHeader(bytesOf(unit), *all).fault),
              "seq_parameter_set_id in slice_header() (7.3.3) at bit 35: there is no parameter set 0");
    SubsetSps subset = {};
    subset.header = sets.sps.header;
    subset.header.nal_unit_type = kNalSubsetSps;
    subset.data = sets.sps.data;
    takeWritten(*all, subset, [](const SubsetSps& sps, Buffer& out) { return writeSubsetSps(sps, out); });
    const auto slice = readSliceHeader(bytesOf(unit), *all);
    ASSERT_TRUE(slice.ok()) << qv::textOf(slice.fault);
    ModificationsOfPicNums list(slice.record.list_modification[0]);
    ModificationOfPicNums command = {};
    ASSERT_TRUE(list.next(command));
    EXPECT_EQ(command.abs_diff_view_idx_minus1, 2U);
    EXPECT_FALSE(list.next(command));
    EXPECT_EQ(slice.record.slice_qp_delta, 2);
    EXPECT_FALSE(isIdr(slice.record.header));
}

// --- Traces ---

TEST(AvcSliceHeader, aTraceNamesEveryElement) {
    const auto sets = taken(plainSets());
    BitWriter bits = sliceBits(1, 7);
    const Buffer unit = bits.se("slice_qp_delta", -2).bits("slice_data()", "101").trailingBits().bytes();
    RecordingVisitor visitor;
    const auto traced = traceSliceHeader(bytesOf(unit), *sets, visitor);
    ASSERT_TRUE(traced.ok()) << qv::textOf(traced.fault);
    EXPECT_EQ(traced.record.slice_qp_delta, -2);
    EXPECT_EQ(visitor.depth, 0);
    std::vector<std::string> elements;
    for (const qv::TracedElement& element : visitor.elements) {
        elements.push_back(textOf(element));
    }
    EXPECT_THAT(elements,
                ElementsAre("0 1 forbidden_zero_bit 0", "1 2 nal_ref_idc 0", "3 5 nal_unit_type 1",
                            "8 7 first_mb_in_slice 7", "15 7 slice_type 7", "22 1 pic_parameter_set_id 0",
                            "23 4 frame_num 9", "27 5 slice_qp_delta -2"));
}

// --- Other units, and sets that are not there ---

struct FaultRow {
    const char* unit;
    const char* fault;
};

TEST(AvcSliceHeader, faults) {
    const FaultRow kRows[] = {
        {"67 64 00", "nal_unit_type at bit 8: a unit of type 7"},
        {"54 80 00 07", "nal_unit_type at bit 32: a unit of type 20"},
        {"01 E0 80", "pic_parameter_set_id in slice_header() (7.3.3) at bit 11: there is no parameter set 0"},
        {"", "forbidden_zero_bit in nal_unit() (7.3.1) at bit 0: the data ends"},
        {"01", "first_mb_in_slice in slice_header() (7.3.3) at bit 8: the data ends"},
    };
    const ParameterSets none;
    for (const FaultRow& row : kRows) {
        EXPECT_EQ(qv::textOf(readSliceHeader(bytesOf(hex(row.unit)), none).fault), row.fault) << row.unit;
    }
}

// --- Slices written ---

// A CABAC slice of an IDR picture, its data after the alignment.
Buffer cabacSlice(int32_t slice_qp_delta, const Buffer& data, const Buffer& after) {
    BitWriter bits;
    bits.u(8, "nal_unit()", 0x65)
        .ue("first_mb_in_slice", 0)
        .ue("slice_type", 7)
        .ue("pic_parameter_set_id", 0);
    bits.u(4, "frame_num", 0).ue("idr_pic_id", 1).u(1, "no_output_of_prior_pics_flag", 0);
    bits.u(1, "long_term_reference_flag", 0).se("slice_qp_delta", slice_qp_delta);
    while (bits.bitCount() % 8 != 0) {
        bits.u(1, "cabac_alignment_one_bit", 1);
    }
    for (const uint8_t byte : data) {
        bits.u(8, "slice_data()", byte);
    }
    Buffer unit = withEmulationPrevention(bits.trailingBits().bytes());
    unit.insert(unit.end(), after.begin(), after.end());
    return unit;
}

TEST(AvcSliceHeader, cabacDataIsAlignedAfterAnotherHeader) {
    Sets cabac = plainSets();
    cabac.pps.entropy_coding_mode_flag = true;
    const auto sets = taken(cabac);
    const Buffer data = {0x12, 0x00, 0x00, 0x01, 0x34};
    const Buffer words = {0x00, 0x00, 0x03, 0x00, 0x00, 0x03};
    const Buffer unit = cabacSlice(0, data, words);
    SliceHeader slice = readSliceHeader(bytesOf(unit), *sets).record;
    Buffer out = {0xAA};
    EXPECT_EQ(writeSlice(slice, *sets, bytesOf(unit), out).size, unit.size());
    EXPECT_EQ(Buffer(out.begin() + 1, out.end()), unit);
    for (const int32_t slice_qp_delta : {-1, 3, -20, 25}) {
        slice.slice_qp_delta = slice_qp_delta;
        out.clear();
        EXPECT_TRUE(writeSlice(slice, *sets, bytesOf(unit), out).ok());
        EXPECT_EQ(out, cabacSlice(slice_qp_delta, data, words)) << slice_qp_delta;
    }
}

TEST(AvcSliceHeader, cavlcDataFollowsBitByBit) {
    const auto sets = taken(plainSets());
    const auto unitWith = [](int32_t slice_qp_delta) {
        BitWriter bits = sliceBits(1, 7);
        bits.se("slice_qp_delta", slice_qp_delta).bits("slice_data()", "1011 0001 0110 1");
        return bits.trailingBits().bytes();
    };
    const Buffer unit = unitWith(0);
    SliceHeader slice = readSliceHeader(bytesOf(unit), *sets).record;
    for (const int32_t slice_qp_delta : {0, 1, -9, 30}) {
        slice.slice_qp_delta = slice_qp_delta;
        Buffer out;
        EXPECT_TRUE(writeSlice(slice, *sets, bytesOf(unit), out).ok());
        EXPECT_EQ(out, unitWith(slice_qp_delta)) << slice_qp_delta;
    }
}

TEST(AvcSliceHeader, aHeaderThatDoesNotFitIsNotWritten) {
    const auto sets = taken(plainSets());
    BitWriter bits = sliceBits(1, 7);
    const Buffer unit = bits.se("slice_qp_delta", 0).trailingBits().bytes();
    SliceHeader slice = readSliceHeader(bytesOf(unit), *sets).record;
    slice.frame_num = 16;
    Buffer out = {0xAA};
    const qv::Written written = writeSlice(slice, *sets, bytesOf(unit), out);
    EXPECT_EQ(qv::textOf(written.fault), "frame_num in slice_header() (7.3.3) at bit 23: 16 is not in 0..15");
    EXPECT_EQ(written.size, 0U);
    EXPECT_EQ(out, Buffer{0xAA});
    const qv::Written damaged = writeSlice(slice, *sets, bytesOf(hex("01")), out);
    EXPECT_EQ(damaged.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_EQ(out, Buffer{0xAA});
}

// A record with a list that is longer than any, and no override.
TEST(AvcSliceHeader, theLengthOfAListIsThatOfThePps) {
    Sets weighted = plainSets();
    weighted.pps.weighted_pred_flag = true;
    const auto sets = taken(weighted);
    SliceHeader slice = {};
    slice.header.nal_unit_type = kNalSliceNonIdr;
    slice.num_ref_idx_active_minus1[0] = 1000;
    const auto table = [&](auto& s, SliceHeader& record) { slice_unit(s, *sets, record); };
    EXPECT_TRUE(qv::detail::sizeUnit(slice, table).ok());
}

}  // namespace
