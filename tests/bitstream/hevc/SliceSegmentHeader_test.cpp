// Slice segment headers of H.265: every branch of the table, and slice segments written with another header.
#include "bitstream/hevc/SliceSegmentHeader.h"

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
#include "bitstream/hevc/SliceSegmentHeaderSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace {

using namespace qv_test;
using namespace qv::hevc;
using testing::ElementsAre;
using testing::IsSupersetOf;
using Buffer = std::vector<uint8_t>;

// --- Parameter sets ---

struct Sets {
    std::shared_ptr<Sps> sps = std::make_shared<Sps>();
    std::shared_ptr<Pps> pps = std::make_shared<Pps>();
};

// A picture of 4 by 3 CTBs of 16 samples, and 8 bits of order counts.
Sets plainSets() {
    Sets sets;
    Sps& sps = *sets.sps;
    sps.header.nal_unit_type = kNalSps;
    sps.header.nuh_temporal_id_plus1 = 1;
    sps.sps_temporal_id_nesting_flag = true;
    sps.profile_tier_level.general.profile_idc = 4;
    sps.profile_tier_level.general_level_idc = 93;
    sps.chroma_format_idc = 1;
    sps.pic_width_in_luma_samples = 64;
    sps.pic_height_in_luma_samples = 48;
    sps.log2_max_pic_order_cnt_lsb_minus4 = 4;
    sps.sps_sub_layer_ordering_info_present_flag = true;
    sps.sps_max_dec_pic_buffering_minus1[0] = 6;
    sps.log2_diff_max_min_luma_coding_block_size = 1;
    Pps& pps = *sets.pps;
    pps.header.nal_unit_type = kNalPps;
    pps.header.nuh_temporal_id_plus1 = 1;
    pps.uniform_spacing_flag = true;
    pps.loop_filter_across_tiles_enabled_flag = true;
    pps.num_ref_idx_l0_default_active_minus1 = 1;
    return sets;
}

// Two sets of two pictures each, of which three are used.
void addSets(Sps& sps) {
    sps.num_short_term_ref_pic_sets = 2;
    for (uint32_t i = 0; i < 2; ++i) {
        ShortTermRefPicSet& set = sps.st_ref_pic_set[i];
        set.num_negative_pics = 1;
        set.num_positive_pics = 1;
        set.used_by_curr_pic_s0_flag[0] = true;
        set.used_by_curr_pic_s1_flag[0] = i == 0;
    }
}

// Every optional element but those of other colour formats.
Sets richSets() {
    Sets sets = plainSets();
    Sps& sps = *sets.sps;
    addSets(sps);
    sps.long_term_ref_pics_present_flag = true;
    sps.num_long_term_ref_pics_sps = 3;
    sps.used_by_curr_pic_lt_sps_flag[1] = true;
    sps.sps_temporal_mvp_enabled_flag = true;
    sps.sample_adaptive_offset_enabled_flag = true;
    Pps& pps = *sets.pps;
    pps.dependent_slice_segments_enabled_flag = true;
    pps.output_flag_present_flag = true;
    pps.num_extra_slice_header_bits = 3;
    pps.cabac_init_present_flag = true;
    pps.pps_slice_chroma_qp_offsets_present_flag = true;
    pps.weighted_pred_flag = true;
    pps.weighted_bipred_flag = true;
    pps.entropy_coding_sync_enabled_flag = true;
    pps.pps_loop_filter_across_slices_enabled_flag = true;
    pps.deblocking_filter_control_present_flag = true;
    pps.deblocking_filter_override_enabled_flag = true;
    pps.lists_modification_present_flag = true;
    pps.slice_segment_header_extension_present_flag = true;
    return sets;
}

// Colour planes, tiles, range and screen content extensions, one set and one long-term picture.
Sets planeSets() {
    Sets sets = plainSets();
    Sps& sps = *sets.sps;
    sps.chroma_format_idc = 3;
    sps.separate_colour_plane_flag = true;
    sps.num_short_term_ref_pic_sets = 1;
    sps.st_ref_pic_set[0].num_negative_pics = 1;
    sps.st_ref_pic_set[0].used_by_curr_pic_s0_flag[0] = true;
    sps.long_term_ref_pics_present_flag = true;
    sps.num_long_term_ref_pics_sps = 1;
    sps.sample_adaptive_offset_enabled_flag = true;
    sps.sps_extension_present_flag = true;
    sps.sps_range_extension_flag = true;
    sps.range.high_precision_offsets_enabled_flag = true;
    sps.sps_scc_extension_flag = true;
    sps.scc.motion_vector_resolution_control_idc = 2;
    Pps& pps = *sets.pps;
    pps.tiles_enabled_flag = true;
    pps.num_tile_columns_minus1 = 1;
    pps.num_tile_rows_minus1 = 1;
    pps.weighted_pred_flag = true;
    pps.lists_modification_present_flag = true;
    pps.pps_extension_present_flag = true;
    pps.pps_range_extension_flag = true;
    pps.range.chroma_qp_offset_list_enabled_flag = true;
    pps.pps_scc_extension_flag = true;
    pps.scc.pps_curr_pic_ref_enabled_flag = true;
    pps.scc.residual_adaptive_colour_transform_enabled_flag = true;
    pps.scc.pps_slice_act_qp_offsets_present_flag = true;
    return sets;
}

// Neither sets nor long-term pictures in the SPS.
Sets bareSets() {
    Sets sets = plainSets();
    sets.sps->long_term_ref_pics_present_flag = true;
    return sets;
}

std::shared_ptr<ParameterSets> taken(const Sets& sets) {
    auto all = std::make_shared<ParameterSets>();
    Buffer sps;
    Buffer pps;
    const qv::Written ofSps = writeSps(*sets.sps, sps);
    const qv::Written ofPps = writePps(*sets.pps, pps);
    EXPECT_TRUE(ofSps.ok()) << qv::textOf(ofSps.fault);
    EXPECT_TRUE(ofPps.ok()) << qv::textOf(ofPps.fault);
    for (const Buffer& unit : {sps, pps}) {
        const qv::Fault fault = all->take(bytesOf(unit)).fault;
        EXPECT_FALSE(fault) << qv::textOf(fault);
    }
    return all;
}

std::vector<std::shared_ptr<ParameterSets>> everySets() {
    return {taken(plainSets()), taken(richSets()), taken(planeSets()), taken(bareSets())};
}

// --- All uses of the table, with rbsp_trailing_bits() after it ---

StructureUnderTest<SliceSegmentHeader> slices(const std::shared_ptr<ParameterSets>& sets) {
    StructureUnderTest<SliceSegmentHeader> structure;
    const auto table = [sets](auto& s, SliceSegmentHeader& slice) {
        slice_segment_unit(s, *sets, slice);
        s.rbsp_trailing_bits();
    };
    structure.generate = table;
    structure.read = [=](qv::Bytes unit) { return qv::detail::readUnit<SliceSegmentHeader>(unit, table); };
    structure.trace = [=](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::detail::traceUnit<SliceSegmentHeader>(unit, visitor, table);
    };
    structure.write = [=](const SliceSegmentHeader& slice, Buffer& out) {
        return qv::detail::writeUnit(slice, out, table);
    };
    structure.size = [=](const SliceSegmentHeader& slice) { return qv::detail::sizeUnit(slice, table); };
    structure.violable = 25;
    const bool hasSets = sets->sps(0)->num_short_term_ref_pic_sets > 0;
    structure.steer = [hasSets](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {0, 1, 9, 16, 19, 20, 21, 1, 1});
        unit.choose("nuh_layer_id", {0});
        unit.choose("slice_pic_parameter_set_id", {0});
        if (hasSets) {
            unit.choose("short_term_ref_pic_set_sps_flag", {0, 1, 1});
        }
        unit.choose("delta_idx_minus1", {0});
        unit.choose("num_long_term_sps", {0, 1});
        unit.choose("num_long_term_pics", {0, 1, 2});
        unit.choose("num_ref_idx_l0_active_minus1", {0, 1, 3});
        unit.choose("num_ref_idx_l1_active_minus1", {0, 1, 2});
        unit.choose("num_negative_pics", {0, 1, 2});
        unit.choose("num_positive_pics", {0, 1});
        unit.choose("num_entry_point_offsets", {0, 1, 2});
        unit.choose("slice_segment_header_extension_length", {0, 1, 3});
    };
    return structure;
}

TEST(HevcSliceSegmentHeader, roundTrips) {
    for (const auto& sets : everySets()) {
        checkRoundTrips(slices(sets), unitRounds());
    }
}

TEST(HevcSliceSegmentHeader, ranges) {
    std::set<std::string> names;
    for (const auto& sets : everySets()) {
        names.merge(checkRanges(slices(sets), unitRounds()));
    }
    EXPECT_THAT(names,
                IsSupersetOf({"slice_segment_address", "slice_type", "colour_plane_id",
                              "luma_log2_weight_denom", "delta_chroma_log2_weight_denom",
                              "delta_luma_weight_l0", "luma_offset_l0", "delta_chroma_weight_l1",
                              "delta_chroma_offset_l1", "collocated_ref_idx", "five_minus_max_num_merge_cand",
                              "slice_cb_qp_offset", "slice_act_cr_qp_offset", "slice_beta_offset_div2",
                              "num_entry_point_offsets", "offset_len_minus1", "alignment_bit_equal_to_one"}));
}

TEST(HevcSliceSegmentHeader, cuts) {
    for (const auto& sets : everySets()) {
        checkCuts(slices(sets), unitRounds(25));
    }
}

TEST(HevcSliceSegmentHeader, memory) {
    for (const auto& sets : everySets()) {
        checkMemory(slices(sets), unitRounds(25));
    }
}

// --- Derived values ---

TEST(HevcSliceSegmentHeader, picturesInUse) {
    const Sets sets = richSets();
    const auto all = taken(sets);
    const SliceSets ofSlice = {*all->pps(0), *all->sps(0)};
    SliceSegmentHeader slice = {};
    slice.header.nal_unit_type = kNalTrailR;
    slice.short_term_ref_pic_set_sps_flag = true;
    EXPECT_EQ(numPicTotalCurr(ofSlice, slice), 2U);
    slice.short_term_ref_pic_set_idx = 1;
    EXPECT_EQ(numPicTotalCurr(ofSlice, slice), 1U);
    slice.num_long_term_sps = 2;
    slice.long_term_ref_pics[0].lt_idx_sps = 1;
    slice.num_long_term_pics = 1;
    slice.long_term_ref_pics[2].used_by_curr_pic_lt_flag = true;
    EXPECT_EQ(numPicTotalCurr(ofSlice, slice), 3U);
    slice.header.nal_unit_type = kNalIdrNLp;
    EXPECT_EQ(numPicTotalCurr(ofSlice, slice), 0U);
}

TEST(HevcSliceSegmentHeader, entryPointsOfRowsAndTiles) {
    Sets sets = plainSets();
    EXPECT_EQ(mostEntryPointOffsets({*sets.pps, *sets.sps}), 0U);
    sets.pps->num_tile_columns_minus1 = 1;
    sets.pps->num_tile_rows_minus1 = 2;
    EXPECT_EQ(mostEntryPointOffsets({*sets.pps, *sets.sps}), 5U);
    sets.pps->entropy_coding_sync_enabled_flag = true;
    EXPECT_EQ(mostEntryPointOffsets({*sets.pps, *sets.sps}), 5U);  // 2 columns, 3 rows of CTBs
    sets.sps->pic_height_in_luma_samples = 0;
    EXPECT_EQ(mostEntryPointOffsets({*sets.pps, *sets.sps}), 0U);
}

// --- Faults ---

struct FaultRow {
    const char* unit;
    const char* fault;
};

TEST(HevcSliceSegmentHeader, faults) {
    const auto bare = taken(bareSets());
    const FaultRow kRows[] = {
        {"42 01 80", "nal_unit_type at bit 16: a unit of type 33"},
        {"02 09 80", "nal_unit_type at bit 16: a unit of type 1"},
        {"02 01 A0 80",
         "slice_pic_parameter_set_id in slice_segment_header() (7.3.6.1) at bit 20: there is no parameter "
         "set 1"},
        {"02 01",
         "first_slice_segment_in_pic_flag in slice_segment_header() (7.3.6.1) at bit 16: the data ends"},
        // An SPS without sets, and a slice that names one.
        {"02 01 D8 04 80",
         "short_term_ref_pic_set_sps_flag in slice_segment_header() (7.3.6.1) at bit 29: 1 instead of 0"},
    };
    for (const FaultRow& row : kRows) {
        EXPECT_EQ(qv::textOf(readSliceSegmentHeader(bytesOf(hex(row.unit)), *bare).fault), row.fault)
            << row.unit;
    }
}

TEST(HevcSliceSegmentHeader, aPpsWithoutItsSps) {
    ParameterSets all;
    Buffer pps;
    writePps(*plainSets().pps, pps);
    all.take(bytesOf(pps));
    EXPECT_EQ(qv::textOf(readSliceSegmentHeader(bytesOf(hex("02 01 E0 80")), all).fault),
              "pps_seq_parameter_set_id in slice_segment_header() (7.3.6.1) at bit 18: there is no parameter "
              "set 0");
}

// --- Slice segments written ---

// An intra slice of an IDR picture, its data after byte_alignment().
Buffer intraSlice(int32_t slice_qp_delta, const Buffer& data, const Buffer& after) {
    BitWriter bits;
    bits.u(16, "nal_unit_header()", 0x2601).u(1, "first_slice_segment_in_pic_flag", 1);
    bits.u(1, "no_output_of_prior_pics_flag", 0).ue("slice_pic_parameter_set_id", 0).ue("slice_type", 2);
    bits.se("slice_qp_delta", slice_qp_delta).trailingBits();
    for (const uint8_t byte : data) {
        bits.u(8, "slice_segment_data()", byte);
    }
    Buffer unit = withEmulationPrevention(bits.trailingBits().bytes());
    unit.insert(unit.end(), after.begin(), after.end());
    return unit;
}

TEST(HevcSliceSegmentHeader, dataFollowsAnotherHeader) {
    const auto sets = taken(plainSets());
    const Buffer data = {0x12, 0x00, 0x00, 0x01, 0x34};
    const Buffer words = {0x00, 0x00, 0x03};
    const Buffer unit = intraSlice(0, data, words);
    SliceSegmentHeader slice = readSliceSegmentHeader(bytesOf(unit), *sets).record;
    EXPECT_TRUE(slice.pic_output_flag);
    EXPECT_EQ(slice.slice_type, kSliceI);
    for (const int32_t slice_qp_delta : {0, -1, 3, -20, 25}) {
        slice.slice_qp_delta = slice_qp_delta;
        Buffer out = {0xAA};
        const Buffer wanted = intraSlice(slice_qp_delta, data, words);
        EXPECT_EQ(writeSliceSegment(slice, *sets, bytesOf(unit), out).size, wanted.size());
        EXPECT_EQ(Buffer(out.begin() + 1, out.end()), wanted) << slice_qp_delta;
    }
}

TEST(HevcSliceSegmentHeader, aTraceNamesEveryElement) {
    const auto sets = taken(plainSets());
    const Buffer unit = intraSlice(-2, {0x12}, {});
    RecordingVisitor visitor;
    const auto traced = traceSliceSegmentHeader(bytesOf(unit), *sets, visitor);
    ASSERT_TRUE(traced.ok()) << qv::textOf(traced.fault);
    EXPECT_EQ(traced.record.slice_qp_delta, -2);
    EXPECT_EQ(visitor.depth, 0);
    std::vector<std::string> elements;
    for (const qv::TracedElement& element : visitor.elements) {
        elements.push_back(textOf(element));
    }
    EXPECT_THAT(
        elements,
        ElementsAre("0 1 forbidden_zero_bit 0", "1 6 nal_unit_type 19", "7 6 nuh_layer_id 0",
                    "13 3 nuh_temporal_id_plus1 1", "16 1 first_slice_segment_in_pic_flag 1",
                    "17 1 no_output_of_prior_pics_flag 0", "18 1 slice_pic_parameter_set_id 0",
                    "19 3 slice_type 2", "22 5 slice_qp_delta -2", "27 1 alignment_bit_equal_to_one 1",
                    "28 1 alignment_bit_equal_to_zero 0", "29 1 alignment_bit_equal_to_zero 0",
                    "30 1 alignment_bit_equal_to_zero 0", "31 1 alignment_bit_equal_to_zero 0"));
}

TEST(HevcSliceSegmentHeader, aHeaderThatDoesNotFitIsNotWritten) {
    const auto sets = taken(plainSets());
    const Buffer unit = intraSlice(0, {0x12}, {});
    SliceSegmentHeader slice = readSliceSegmentHeader(bytesOf(unit), *sets).record;
    slice.slice_type = 3;
    Buffer out = {0xAA};
    const qv::Written written = writeSliceSegment(slice, *sets, bytesOf(unit), out);
    EXPECT_EQ(qv::textOf(written.fault),
              "slice_type in slice_segment_header() (7.3.6.1) at bit 19: 3 is not in 0..2");
    EXPECT_EQ(written.size, 0U);
    EXPECT_EQ(out, Buffer{0xAA});
    EXPECT_EQ(writeSliceSegment(slice, *sets, bytesOf(hex("2601")), out).fault.kind,
              qv::FaultKind::EndOfData);
    EXPECT_EQ(out, Buffer{0xAA});
}

// Numbers that are not coded, and lists that are longer than any.
TEST(HevcSliceSegmentHeader, whatIsNotCodedOfARecordIsNotUsed) {
    const auto sets = taken(planeSets());
    auto slice = std::make_unique<SliceSegmentHeader>();
    slice->header.nal_unit_type = kNalTrailR;
    slice->header.nuh_temporal_id_plus1 = 1;
    slice->first_slice_segment_in_pic_flag = true;
    slice->slice_type = kSliceP;
    slice->short_term_ref_pic_set_sps_flag = true;
    slice->short_term_ref_pic_set_idx = 1000;
    slice->num_long_term_sps = 1;
    slice->long_term_ref_pics[0].lt_idx_sps = 1000;
    slice->num_ref_idx_active_minus1[0] = 1000;
    const auto table = [&](auto& s, SliceSegmentHeader& record) { slice_segment_unit(s, *sets, record); };
    const qv::Sized sized = qv::detail::sizeUnit(*slice, table);
    EXPECT_TRUE(sized.ok()) << qv::textOf(sized.fault);
}

}  // namespace
