// Frames and fields, and how pictures follow each other.
#include "bitstream/sei/PictureStructure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "SetsOfMessages.h"
#include "bitstream/sei/PictureStructureSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::EndsWith;
using testing::IsSupersetOf;

const Context kContext(Codec::Hevc);

PayloadUnderTest<FrameFieldInfo> frameFieldInfo() {
    return payloadUnderTest<FrameFieldInfo>(
        kContext, [](auto& s, const auto& c, auto& payload) { frame_field_info(s, c, payload); });
}

PayloadUnderTest<DeinterlacedFieldIdentification> deinterlacedFieldIdentification() {
    return payloadUnderTest<DeinterlacedFieldIdentification>(
        kContext,
        [](auto& s, const auto& c, auto& payload) { deinterlaced_field_identification(s, c, payload); });
}

PayloadUnderTest<StructureOfPicturesInfo> structureOfPicturesInfo() {
    auto structure = payloadUnderTest<StructureOfPicturesInfo>(
        kContext, [](auto& s, const auto& c, auto& payload) { structure_of_pictures_info(s, c, payload); });
    structure.violable = 4;
    structure.steer = [](RandomUnit& unit, Random&) { unit.choose("sop_vcl_nut", {0, 1, 19, 20, 21, 63}); };
    return structure;
}

PayloadUnderTest<TemporalSubLayerZeroIdx> temporalSubLayerZeroIdx() {
    return payloadUnderTest<TemporalSubLayerZeroIdx>(
        kContext, [](auto& s, const auto& c, auto& payload) { temporal_sub_layer_zero_idx(s, c, payload); });
}

PayloadUnderTest<CodedRegionCompletion> codedRegionCompletion() {
    return payloadUnderTest<CodedRegionCompletion>(
        kContext, [](auto& s, const auto& c, auto& payload) { coded_region_completion(s, c, payload); });
}

TEST(SeiPictureStructure, roundTrips) {
    checkRoundTrips(frameFieldInfo(), unitRounds());
    checkRoundTrips(deinterlacedFieldIdentification(), unitRounds());
    checkRoundTrips(structureOfPicturesInfo(), unitRounds());
    checkRoundTrips(temporalSubLayerZeroIdx(), unitRounds());
    checkRoundTrips(codedRegionCompletion(), unitRounds());
}

TEST(SeiPictureStructure, everyRange) {
    EXPECT_THAT(
        checkRanges(structureOfPicturesInfo(), unitRounds()),
        IsSupersetOf({"sop_seq_parameter_set_id", "num_entries_in_sop_minus1", "sop_short_term_rps_idx"}));
}

TEST(SeiPictureStructure, cutAtEveryByte) {
    checkCuts(frameFieldInfo(), unitRounds(50));
    checkCuts(deinterlacedFieldIdentification(), unitRounds(50));
    checkCuts(structureOfPicturesInfo(), unitRounds(50));
    checkCuts(temporalSubLayerZeroIdx(), unitRounds(50));
    checkCuts(codedRegionCompletion(), unitRounds(50));
}

uint64_t sumOfEntries(const StructureOfPicturesInfo& info) {
    SopEntryReader entries(info);
    uint64_t sum = 0;
    for (SopEntry entry = {}; entries.next(entry);) {
        sum += 1 + entry.sop_vcl_nut + entry.sop_temporal_id + entry.sop_short_term_rps_idx;
    }
    return sum;
}

TEST(SeiPictureStructure, noAllocationAndNoByteOutside) {
    checkMemory(frameFieldInfo(), unitRounds(25));
    checkMemory(deinterlacedFieldIdentification(), unitRounds(25));
    checkMemory(structureOfPicturesInfo(), unitRounds(25), {{"SopEntryReader", sumOfEntries}});
    checkMemory(temporalSubLayerZeroIdx(), unitRounds(25));
    checkMemory(codedRegionCompletion(), unitRounds(25));
}

TEST(SeiPictureStructure, picturesOfAStructure) {
    // SPS 0, three entries: IDR_W_RADL with TemporalId 0; TRAIL_R, 1, set 2, +4; TRAIL_N, 2, set 0, -2
    const auto payload = payloadOf<StructureOfPicturesInfo>(
        kContext, "1 011 010011 000 000001 001 011 0001000 000000 010 1 00101");
    EXPECT_EQ(payload->num_entries_in_sop_minus1, 2U);
    SopEntryReader entries(*payload);
    EXPECT_EQ(entries.count(), 3U);
    SopEntry entry = {};
    ASSERT_TRUE(entries.next(entry));
    EXPECT_EQ(entry.sop_vcl_nut, 19U);
    EXPECT_EQ(entry.sop_short_term_rps_idx, 0U);
    EXPECT_EQ(entry.sop_poc_delta, 0);
    ASSERT_TRUE(entries.next(entry));
    EXPECT_EQ(entry.sop_temporal_id, 1U);
    EXPECT_EQ(entry.sop_short_term_rps_idx, 2U);
    EXPECT_EQ(entry.sop_poc_delta, 4);
    ASSERT_TRUE(entries.next(entry));
    EXPECT_EQ(entry.sop_short_term_rps_idx, 0U);
    EXPECT_EQ(entry.sop_poc_delta, -2);
    EXPECT_FALSE(entries.next(entry));

    StructureOfPicturesInfo cut = *payload;
    cut.num_entries_in_sop_minus1 = 1023;
    SopEntryReader ofCut(cut);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(ofCut.next(entry));
    }
    EXPECT_FALSE(ofCut.next(entry));
}

// sop_short_term_rps_idx is below num_short_term_ref_pic_sets of the SPS that the message names.
TEST(SeiPictureStructure, setsOfTheSps) {
    const auto sets = std::make_unique<qv::hevc::ParameterSets>();
    takeWritten(*sets, *plainHevcSps(0));
    const auto withTwo = plainHevcSps(1);
    withTwo->num_short_term_ref_pic_sets = 2;
    takeWritten(*sets, *withTwo);
    const Context context(*sets);
    // TRAIL_N, TemporalId 0, sets 1, 2 and 63
    EXPECT_EQ(faultOf<StructureOfPicturesInfo>(context, "010 1 000000 000 010"), "");
    EXPECT_THAT(faultOf<StructureOfPicturesInfo>(context, "010 1 000000 000 011"),
                EndsWith("2 is not in 0..1"));
    EXPECT_EQ(faultOf<StructureOfPicturesInfo>(context, "1 1 000000 000 0000001000000"), "");
}

TEST(SeiPictureStructure, flagsAndCounters) {
    const auto info = payloadOf<FrameFieldInfo>(kContext, "1001 10 1");
    EXPECT_EQ(info->ffinfo_pic_struct, 9U);
    EXPECT_EQ(info->ffinfo_source_scan_type, 2U);
    EXPECT_TRUE(info->ffinfo_duplicate_flag);
    EXPECT_TRUE(
        payloadOf<DeinterlacedFieldIdentification>(kContext, "1")->deinterlaced_picture_source_parity_flag);
    const auto index = payloadOf<TemporalSubLayerZeroIdx>(kContext, "00000111 11111111");
    EXPECT_EQ(index->temporal_sub_layer_zero_idx, 7U);
    EXPECT_EQ(index->irap_pic_id, 255U);
    // next_segment_address 6: 00111; at 0 there is no flag
    const auto region = payloadOf<CodedRegionCompletion>(kContext, "00111 1");
    EXPECT_EQ(region->next_segment_address, 6U);
    EXPECT_TRUE(region->independent_slice_segment_flag);
    EXPECT_FALSE(payloadOf<CodedRegionCompletion>(kContext, "1")->independent_slice_segment_flag);
}

}  // namespace
