// Sets of tiles that can be decoded without the rest of the picture.
#include "bitstream/sei/TileSets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/TileSetsSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

// Coding tree blocks of 64 samples, 8 in a row and 5 rows: addresses have 6 bits.
const Context& contextWithSps() {
    static const qv::hevc::Sps sps = [] {
        qv::hevc::Sps set = {};
        set.pic_width_in_luma_samples = 512;
        set.pic_height_in_luma_samples = 320;
        set.log2_diff_max_min_luma_coding_block_size = 3;
        return set;
    }();
    static const Context context = [] {
        Context made(Codec::Hevc);
        made.hevcSps = &sps;
        return made;
    }();
    return context;
}

PayloadUnderTest<TemporalMotionConstrainedTileSets> tileSets() {
    auto structure = payloadUnderTest<TemporalMotionConstrainedTileSets>(
        Context(Codec::Hevc),
        [](auto& s, const auto& c, auto& payload) { temporal_motion_constrained_tile_sets(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_tile_rects_in_set_minus1", {0, 1, 2, 7});
    };
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<MctsExtractionInfoSets> infoSets(const Context& context) {
    auto structure = payloadUnderTest<MctsExtractionInfoSets>(
        context, [](auto& s, const auto& c, auto& payload) { mcts_extraction_info_sets(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_info_sets_minus1", {0, 1, 3}).choose("num_mcts_sets_minus1", {0, 2});
        unit.choose("num_mcts_in_set_minus1", {0, 1, 5}).choose("vps_rbsp_data_length", {0, 1, 9});
        unit.choose("sps_rbsp_data_length", {0, 1, 9}).choose("pps_rbsp_data_length", {0, 1, 9});
    };
    structure.violable = 8;
    return structure;
}

PayloadUnderTest<MctsExtractionInfoNesting> infoNesting() {
    auto structure = payloadUnderTest<MctsExtractionInfoNesting>(
        Context(Codec::Hevc),
        [](auto& s, const auto& c, auto& payload) { mcts_extraction_info_nesting(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_associated_mcts_minus1", {0, 1, 6});
        unit.choose("num_sei_messages_in_mcts_extraction_nesting_minus1", {0, 1, 3});
    };
    structure.violable = 2;
    return structure;
}

TEST(SeiTileSets, roundTrips) {
    checkRoundTrips(tileSets(), unitRounds());
    checkRoundTrips(infoSets(contextWithSps()), unitRounds());
    checkRoundTrips(infoNesting(), unitRounds());
}

TEST(SeiTileSets, everyRange) {
    EXPECT_THAT(checkRanges(tileSets(), unitRounds()), testing::Contains("num_sets_in_message_minus1"));
    EXPECT_THAT(
        checkRanges(infoSets(contextWithSps()), unitRounds()),
        IsSupersetOf({"num_slice_segments_minus1", "num_vps_in_info_set_minus1", "num_sps_in_info_set_minus1",
                      "num_pps_in_info_set_minus1", "mcts_alignment_bit_equal_to_zero"}));
    EXPECT_THAT(checkRanges(infoNesting(), unitRounds()), testing::Contains("mcts_nesting_zero_bit"));
}

TEST(SeiTileSets, cutAtEveryByte) {
    checkCuts(tileSets(), unitRounds(50));
    checkCuts(infoSets(contextWithSps()), unitRounds(50));
    // A cut within the payload of a nested message is found by its size.
    auto nesting = infoNesting();
    const auto steer = nesting.steer;
    nesting.steer = [steer](RandomUnit& unit, Random& random) {
        steer(unit, random);
        unit.choose("last_payload_size_byte", {0});
    };
    checkCuts(nesting, unitRounds(50));
}

uint64_t sumOfRects(const TemporalMotionConstrainedTileSets& sets) {
    return sumOf(tileSetsOf(sets), [](const TileSet& set) {
        return sumOf(tileRectsOf(set), [](const TileRect& rect) { return uint64_t{rect.top_left_tile_idx}; });
    });
}

uint64_t sumOfInfoSets(const MctsExtractionInfoSets& sets) {
    return sumOf(extractionInfoSetsOf(sets), [](const MctsExtractionInfoSet& set) {
        const auto itself = [](uint32_t number) { return uint64_t{number}; };
        return sumOf(outputSliceSegmentAddressesOf(set), itself) +
               sumOf(mctsSetsOf(set),
                     [&](const MctsSet& mctsSet) { return sumOf(mctsIndicesOf(mctsSet), itself); });
    });
}

uint64_t sumOfNesting(const MctsExtractionInfoNesting& nesting) {
    uint64_t sum = sumOf(mctsIndicesOf(nesting), [](uint32_t number) { return uint64_t{number}; });
    for (const qv::SeiMessage& message : qv::SeiMessages(nesting.messages)) {
        sum += message.payloadType;
    }
    return sum;
}

TEST(SeiTileSets, noAllocationAndNoByteOutside) {
    checkMemory(tileSets(), unitRounds(20), {{"tileSetsOf", sumOfRects}});
    checkMemory(infoSets(contextWithSps()), unitRounds(20), {{"extractionInfoSetsOf", sumOfInfoSets}});
    checkMemory(infoNesting(), unitRounds(20), {{"mctsIndicesOf", sumOfNesting}});
}

TEST(SeiTileSets, tileSetsOfTwoRectangles) {
    BitWriter bits;
    bits.u(1, "mc_all_tiles_exact_sample_value_match_flag", 0).u(1, "each_tile_one_tile_set_flag", 0);
    bits.u(1, "limited_tile_set_display_flag", 1).ue("num_sets_in_message_minus1", 1);
    bits.ue("mcts_id[ 0 ]", 7).u(1, "display_tile_set_flag[ 0 ]", 1);
    bits.ue("num_tile_rects_in_set_minus1[ 0 ]", 1).ue("top_left_tile_idx[ 0 ][ 0 ]", 0);
    bits.ue("bottom_right_tile_idx[ 0 ][ 0 ]", 3).ue("top_left_tile_idx[ 0 ][ 1 ]", 8);
    bits.ue("bottom_right_tile_idx[ 0 ][ 1 ]", 9).u(1, "mc_exact_sample_value_match_flag[ 0 ]", 1);
    bits.u(1, "mcts_tier_level_idc_present_flag[ 0 ]", 1).u(1, "mcts_tier_flag[ 0 ]", 1);
    bits.u(8, "mcts_level_idc[ 0 ]", 153);
    bits.ue("mcts_id[ 1 ]", 8).u(1, "display_tile_set_flag[ 1 ]", 0);
    bits.ue("num_tile_rects_in_set_minus1[ 1 ]", 0).ue("top_left_tile_idx[ 1 ][ 0 ]", 4);
    bits.ue("bottom_right_tile_idx[ 1 ][ 0 ]", 7).u(1, "mc_exact_sample_value_match_flag[ 1 ]", 0);
    bits.u(1, "mcts_tier_level_idc_present_flag[ 1 ]", 0).trailingBits();
    const std::vector<uint8_t> unit = unitOfPayload(bits.bytes());
    const auto read = readPayloadOf<TemporalMotionConstrainedTileSets>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const std::vector<TileSet> sets = entriesOf(tileSetsOf(read.record));
    ASSERT_EQ(sets.size(), 2U);
    EXPECT_EQ(sets[0].mcts_id, 7U);
    EXPECT_TRUE(sets[0].display_tile_set_flag);
    EXPECT_EQ(sets[0].mcts_level_idc, 153U);
    const std::vector<TileRect> rects = entriesOf(tileRectsOf(sets[0]));
    ASSERT_EQ(rects.size(), 2U);
    EXPECT_EQ(rects[1].top_left_tile_idx, 8U);
    EXPECT_EQ(rects[1].bottom_right_tile_idx, 9U);
    EXPECT_EQ(sets[1].mcts_id, 8U);
    EXPECT_FALSE(sets[1].mcts_tier_level_idc_present_flag);
    EXPECT_EQ(entriesOf(tileRectsOf(sets[1])).size(), 1U);
}

// 1 1 1 0 01111011: level 4.1 is 123. Then the end, 1000.
TEST(SeiTileSets, levelOfAllTiles) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("E7 B8"));
    const auto read = readPayloadOf<TemporalMotionConstrainedTileSets>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.max_mcs_tier_level_idc_present_flag);
    EXPECT_FALSE(read.record.mcts_max_tier_flag);
    EXPECT_EQ(read.record.mcts_max_level_idc, 123U);
    EXPECT_TRUE(entriesOf(tileSetsOf(read.record)).empty());
}

// One information set with two parameter sets of each kind but the VPS.
std::vector<uint8_t> unitOfInfoSet() {
    BitWriter bits;
    bits.ue("num_info_sets_minus1", 0).ue("num_mcts_sets_minus1[ 0 ]", 0);
    bits.ue("num_mcts_in_set_minus1[ 0 ][ 0 ]", 1).ue("idx_of_mcts_in_set[ 0 ][ 0 ][ 0 ]", 2);
    bits.ue("idx_of_mcts_in_set[ 0 ][ 0 ][ 1 ]", 5).u(1, "slice_reordering_enabled_flag[ 0 ]", 1);
    bits.ue("num_slice_segments_minus1[ 0 ]", 1).u(6, "output_slice_segment_address[ 0 ][ 0 ]", 0);
    bits.u(6, "output_slice_segment_address[ 0 ][ 1 ]", 39);
    bits.ue("num_vps_in_info_set_minus1[ 0 ]", 0).ue("vps_rbsp_data_length[ 0 ][ 0 ]", 1);
    bits.ue("num_sps_in_info_set_minus1[ 0 ]", 1).ue("sps_rbsp_data_length[ 0 ][ 0 ]", 2);
    bits.ue("sps_rbsp_data_length[ 0 ][ 1 ]", 0).ue("num_pps_in_info_set_minus1[ 0 ]", 1);
    bits.u(3, "pps_nuh_temporal_id_plus1[ 0 ][ 0 ]", 1).ue("pps_rbsp_data_length[ 0 ][ 0 ]", 0);
    bits.u(3, "pps_nuh_temporal_id_plus1[ 0 ][ 1 ]", 2).ue("pps_rbsp_data_length[ 0 ][ 1 ]", 1);
    bits.alignZero().u(8, "vps_rbsp_data_byte", 0x11).u(16, "sps_rbsp_data_byte", 0x2233);
    bits.u(8, "pps_rbsp_data_byte", 0x44);
    return unitOfPayload(bits.bytes());
}

uint32_t firstByteOf(const qv::CodedBits& bits) {
    qv::Reader reader(bits);
    uint32_t byte = 0;
    reader.u(8, "byte", byte);
    return byte;
}

TEST(SeiTileSets, extractionInfoSet) {
    const std::vector<uint8_t> unit = unitOfInfoSet();
    const auto read = readPayloadOf<MctsExtractionInfoSets>(unit, contextWithSps());
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.PicSizeInCtbsY, 40U);
    const std::vector<MctsExtractionInfoSet> sets = entriesOf(extractionInfoSetsOf(read.record));
    ASSERT_EQ(sets.size(), 1U);
    const MctsExtractionInfoSet& set = sets[0];
    const std::vector<MctsSet> mctsSets = entriesOf(mctsSetsOf(set));
    ASSERT_EQ(mctsSets.size(), 1U);
    EXPECT_THAT(entriesOf(mctsIndicesOf(mctsSets[0])), testing::ElementsAre(2, 5));
    EXPECT_THAT(entriesOf(outputSliceSegmentAddressesOf(set)), testing::ElementsAre(0, 39));
    EXPECT_EQ(set.sps_rbsp_data_length[0], 2U);
    EXPECT_EQ(set.pps_nuh_temporal_id_plus1[1], 2U);
    EXPECT_EQ(set.pps_rbsp_data_length[1], 1U);
    EXPECT_EQ(firstByteOf(set.vps_rbsp_data_byte), 0x11U);
    EXPECT_EQ(set.sps_rbsp_data_byte.count, 16U);
    EXPECT_EQ(firstByteOf(set.sps_rbsp_data_byte), 0x22U);
    EXPECT_EQ(firstByteOf(set.pps_rbsp_data_byte), 0x44U);
}

// Without the SPS, or with one whose picture has more blocks than an address can count, no address can be
// read.
TEST(SeiTileSets, addressesNeedTheSps) {
    qv::hevc::Sps sps = {};
    sps.pic_width_in_luma_samples = sps.pic_height_in_luma_samples = 0x80000000;
    Context context(Codec::Hevc);
    for (const qv::hevc::Sps* const set : {static_cast<const qv::hevc::Sps*>(nullptr), &std::as_const(sps)}) {
        context.hevcSps = set;
        const std::vector<uint8_t> unit = unitOfInfoSet();
        const auto read = readPayloadOf<MctsExtractionInfoSets>(unit, context);
        EXPECT_EQ(read.fault.kind, FaultKind::NoSuchSet);
        EXPECT_STREQ(read.fault.element.name, "sps_seq_parameter_set_id");
        EXPECT_TRUE(entriesOf(extractionInfoSetsOf(read.record)).empty());
    }
    MctsExtractionInfoSet set = {};
    set.slice_reordering_enabled_flag = true;
    EXPECT_TRUE(entriesOf(outputSliceSegmentAddressesOf(set)).empty());
    set.slice_reordering_enabled_flag = false;
    set.PicSizeInCtbsY = 1;
    EXPECT_TRUE(entriesOf(outputSliceSegmentAddressesOf(set)).empty());
}

// 1, then 0 for one message, 010, and the zero bits up to a byte: two messages. A message of light levels,
// and an empty one of a reserved type.
TEST(SeiTileSets, nestedMessagesAreCounted) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("A0 90 04 03E8 0190 C7 00"));
    const auto read = readPayloadOf<MctsExtractionInfoNesting>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.all_mcts_flag);
    EXPECT_TRUE(entriesOf(mctsIndicesOf(read.record)).empty());
    std::vector<uint64_t> types;
    for (const qv::SeiMessage& message : qv::SeiMessages(read.record.messages)) {
        EXPECT_TRUE(message.ok());
        EXPECT_TRUE(message.isNested);
        types.push_back(message.payloadType);
    }
    EXPECT_THAT(types, testing::ElementsAre(0x90, 0xC7));
}

}  // namespace
