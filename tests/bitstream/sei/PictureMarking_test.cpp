// Reference picture marking, spare pictures and slice group sets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HandMadePayload.h"
#include "PayloadChecks.h"
#include "bitstream/avc/ParameterSets.h"
#include "bitstream/sei/PictureMarking.h"
#include "bitstream/sei/PictureMarkingSyntax.h"
#include "bitstream/sei/SliceGroupSet.h"
#include "bitstream/sei/SliceGroupSetSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

// MaxFrameNum is 16.
qv::avc::SpsData spsOf(bool frame_mbs_only_flag, uint32_t widthInMbs, uint32_t heightInMapUnits) {
    qv::avc::SpsData sps = {};
    sps.max_num_ref_frames = 4;
    sps.pic_width_in_mbs_minus1 = widthInMbs - 1;
    sps.pic_height_in_map_units_minus1 = heightInMapUnits - 1;
    sps.frame_mbs_only_flag = frame_mbs_only_flag;
    return sps;
}

Context contextOf(const qv::avc::SpsData& sps) {
    Context context(Codec::Avc);
    context.avcSps = &sps;
    return context;
}

Context contextOf(const qv::avc::Pps& pps) {
    Context context(Codec::Avc);
    context.avcPps = &pps;
    return context;
}

const qv::avc::SpsData kFrames = spsOf(true, 5, 3);
const qv::avc::SpsData kFields = spsOf(false, 2, 2);

PayloadUnderTest<DecRefPicMarkingRepetition> marking(const qv::avc::SpsData& sps) {
    auto structure = payloadUnderTest<DecRefPicMarkingRepetition>(
        contextOf(sps),
        [](auto& s, const auto& c, auto& payload) { dec_ref_pic_marking_repetition(s, c, payload); });
    structure.violable = 8;
    return structure;
}

PayloadUnderTest<SparePic> spare(const qv::avc::SpsData& sps) {
    auto structure = payloadUnderTest<SparePic>(
        contextOf(sps), [](auto& s, const auto& c, auto& payload) { spare_pic(s, c, payload); });
    structure.violable = 12;
    return structure;
}

qv::avc::Pps ppsOf(uint32_t sliceGroups) {
    qv::avc::Pps pps = {};
    pps.num_slice_groups_minus1 = sliceGroups - 1;
    return pps;
}

const qv::avc::Pps kOneGroup = ppsOf(1);
const qv::avc::Pps kFiveGroups = ppsOf(5);

PayloadUnderTest<MotionConstrainedSliceGroupSet> groupSet(const qv::avc::Pps& pps) {
    auto structure = payloadUnderTest<MotionConstrainedSliceGroupSet>(
        contextOf(pps),
        [](auto& s, const auto& c, auto& payload) { motion_constrained_slice_group_set(s, c, payload); });
    structure.violable = 6;
    return structure;
}

template <class Check>
void forEach(Check check) {
    check(marking(kFrames));
    check(marking(kFields));
    check(spare(kFrames));
    check(spare(kFields));
    check(groupSet(kOneGroup));
    check(groupSet(kFiveGroups));
}

TEST(SeiPictureMarking, roundTrips) {
    forEach([](const auto& structure) { checkRoundTrips(structure, unitRounds()); });
}

TEST(SeiPictureMarking, cutAtEveryByte) {
    forEach([](const auto& structure) { checkCuts(structure, unitRounds(50)); });
}

TEST(SeiPictureMarking, everyRange) {
    auto markings = marking(kFields);
    markings.steer = [](RandomUnit& unit, Random&) { unit.choose("original_idr_flag", {0}); };
    EXPECT_THAT(checkRanges(markings, unitRounds()),
                IsSupersetOf({"original_frame_num", "memory_management_control_operation",
                              "max_long_term_frame_idx_plus1"}));
    EXPECT_THAT(checkRanges(spare(kFields), unitRounds()),
                IsSupersetOf({"target_frame_num", "num_spare_pics_minus1", "delta_spare_frame_num",
                              "spare_area_idc"}));
    EXPECT_THAT(checkRanges(groupSet(kFiveGroups), unitRounds()),
                IsSupersetOf({"num_slice_groups_in_set_minus1", "slice_group_id"}));
}

uint64_t sumOf(const qv::avc::DecRefPicMarking& marking) {
    uint64_t sum = 0;
    qv::avc::MemoryManagementControlOperations operations(marking);
    for (qv::avc::MemoryManagementControlOperation operation = {}; operations.next(operation);) {
        sum += operation.memory_management_control_operation + operation.difference_of_pic_nums_minus1 +
               operation.long_term_pic_num + operation.long_term_frame_idx +
               operation.max_long_term_frame_idx_plus1;
    }
    return sum;
}

TEST(SeiPictureMarking, noAllocationAndNoByteOutside) {
    checkMemory(marking(kFields), unitRounds(25),
                {{"operations", [](const DecRefPicMarkingRepetition& payload) {
                      return sumOf(payload.dec_ref_pic_marking);
                  }}});
    checkMemory(spare(kFields), unitRounds(25), {{"spare areas", [](const SparePic& payload) {
                                                      uint64_t sum = 0;
                                                      for (uint32_t i = 0; i <= payload.num_spare_pics_minus1;
                                                           ++i) {
                                                          SpareAreas areas(payload, i);
                                                          for (uint32_t value = 0; areas.next(value);) {
                                                              sum += value + 1;
                                                          }
                                                      }
                                                      return sum;
                                                  }}});
    checkMemory(groupSet(kFiveGroups), unitRounds(25));
}

TEST(SeiPictureMarking, markingOfAField) {
    // 0 original_idr_flag, 00100 original_frame_num 3, 1 original_field_pic_flag, 1
    // original_bottom_field_flag; 1 adaptive_ref_pic_marking_mode_flag; operations 010 1 with 011 2; 00100 3
    // with 1 0 and 010 1; 00101 4 with 011 2; 1 0; then 1 and zeros up to the byte.
    const HandMadePayload<DecRefPicMarkingRepetition> payload(contextOf(kFields),
                                                              {0x13, 0xA6, 0x4A, 0x2B, 0xC0});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_FALSE(payload->original_idr_flag);
    EXPECT_EQ(payload->original_frame_num, 3U);
    EXPECT_TRUE(payload->original_field_pic_flag);
    EXPECT_TRUE(payload->original_bottom_field_flag);
    EXPECT_TRUE(payload->dec_ref_pic_marking.adaptive_ref_pic_marking_mode_flag);
    qv::avc::MemoryManagementControlOperations operations(payload->dec_ref_pic_marking);
    qv::avc::MemoryManagementControlOperation operation = {};
    ASSERT_TRUE(operations.next(operation));
    EXPECT_EQ(operation.memory_management_control_operation, 1U);
    EXPECT_EQ(operation.difference_of_pic_nums_minus1, 2U);
    ASSERT_TRUE(operations.next(operation));
    EXPECT_EQ(operation.memory_management_control_operation, 3U);
    EXPECT_EQ(operation.difference_of_pic_nums_minus1, 0U);
    EXPECT_EQ(operation.long_term_frame_idx, 1U);
    ASSERT_TRUE(operations.next(operation));
    EXPECT_EQ(operation.memory_management_control_operation, 4U);
    EXPECT_EQ(operation.max_long_term_frame_idx_plus1, 2U);
    EXPECT_EQ(operation.long_term_frame_idx, 0U);
    EXPECT_FALSE(operations.next(operation));
    EXPECT_FALSE(operations.next(operation));
}

TEST(SeiPictureMarking, markingOfAnIdrPicture) {
    // 1 original_idr_flag, 1 original_frame_num 0, 1 no_output_of_prior_pics_flag, 0 long_term_reference_flag
    const HandMadePayload<DecRefPicMarkingRepetition> payload(contextOf(kFrames), {0xE8});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_TRUE(payload->dec_ref_pic_marking.no_output_of_prior_pics_flag);
    EXPECT_FALSE(payload->dec_ref_pic_marking.long_term_reference_flag);
    EXPECT_EQ(sumOf(payload->dec_ref_pic_marking), 0U);
}

std::vector<uint32_t> valuesOf(const SparePic& payload, uint32_t i) {
    std::vector<uint32_t> values;
    SpareAreas areas(payload, i);
    for (uint32_t value = 0; areas.next(value);) {
        values.push_back(value);
    }
    return values;
}

TEST(SeiPictureMarking, spareFieldsOfFourMapUnits) {
    // 011 target_frame_num 2, 1 spare_field_flag, 1 target_bottom_field_flag, 011 num_spare_pics_minus1 2;
    // 1 delta_spare_frame_num 0, 0 spare_bottom_field_flag, 1 spare_area_idc 0;
    // 010 1, 1, 010 1 with the flags 1011; 011 2, 0, 011 2 with the runs 010 1 and 010 1.
    const HandMadePayload<SparePic> payload(contextOf(kFields), {0x7B, 0xAA, 0xAD, 0x9A, 0x50});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->target_frame_num, 2U);
    EXPECT_TRUE(payload->target_bottom_field_flag);
    EXPECT_EQ(payload->num_spare_pics_minus1, 2U);
    EXPECT_EQ(payload->delta_spare_frame_num[2], 2U);
    EXPECT_TRUE(payload->spare_bottom_field_flag[1]);
    EXPECT_THAT(payload->spare_area_idc, testing::Contains(2));
    EXPECT_THAT(valuesOf(*payload, 0), testing::IsEmpty());
    EXPECT_THAT(valuesOf(*payload, 1), testing::ElementsAre(1, 0, 1, 1));
    EXPECT_THAT(valuesOf(*payload, 2), testing::ElementsAre(1, 1));
    EXPECT_THAT(valuesOf(*payload, 3), testing::IsEmpty());
    EXPECT_THAT(valuesOf(*payload, SparePic::kMostSparePics), testing::IsEmpty());
}

// A run that is longer than the picture ends it.
TEST(SeiPictureMarking, spareRunsOfTheLargestPicture) {
    qv::avc::SpsData sps = kFrames;
    sps.pic_width_in_mbs_minus1 = sps.pic_height_in_map_units_minus1 = qv::kMostUe;
    // 1 target_frame_num 0, 0 spare_field_flag, 1 num_spare_pics_minus1 0, 1 delta_spare_frame_num 0, 011
    // spare_area_idc 2, and as many runs of 0 as there are bits
    const HandMadePayload<SparePic> endless(contextOf(sps), {0xB7, 0xFF, 0xFF});
    EXPECT_EQ(endless.fault().kind, FaultKind::EndOfData);
    EXPECT_STREQ(endless.fault().element.name, "zero_run_length");
    // With 15 map units the run 0001000 of 7 and the run 0001000 of 7 are all; then 1 and zeros.
    const HandMadePayload<SparePic> two(contextOf(kFrames), {0xB6, 0x20, 0x44});
    ASSERT_TRUE(two.ok()) << qv::textOf(two.fault());
    EXPECT_THAT(valuesOf(*two, 0), testing::ElementsAre(7, 7));
}

TEST(SeiPictureMarking, sliceGroupsOfAPicture) {
    const qv::avc::Pps pps = ppsOf(3);
    // 010 num_slice_groups_in_set_minus1 1, slice_group_id 00 and 10, 1 exact_sample_value_match_flag,
    // 1 pan_scan_rect_flag, 00110 pan_scan_rect_id 5
    const HandMadePayload<MotionConstrainedSliceGroupSet> payload(contextOf(pps), {0x45, 0x9A});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->num_slice_groups_in_set_minus1, 1U);
    EXPECT_EQ(payload->slice_group_id[0], 0U);
    EXPECT_EQ(payload->slice_group_id[1], 2U);
    EXPECT_TRUE(payload->exact_sample_value_match_flag);
    EXPECT_EQ(payload->pan_scan_rect_id, 5U);
}

template <class Payload>
void expectNoSuchSet(const char* id) {
    const Context context(Codec::Avc);
    const HandMadePayload<Payload> payload(context, {0xFF, 0xFF});
    EXPECT_EQ(payload.fault().kind, FaultKind::NoSuchSet);
    EXPECT_STREQ(payload.fault().element.name, id);
    std::vector<uint8_t> written;
    EXPECT_EQ(writePayload(*payload, context, written).fault.kind, FaultKind::NoSuchSet);
    EXPECT_EQ(sizeOfPayload(*payload, context).fault.kind, FaultKind::NoSuchSet);
}

TEST(SeiPictureMarking, withoutTheSetsThatTheSyntaxDependsOn) {
    expectNoSuchSet<DecRefPicMarkingRepetition>("seq_parameter_set_id");
    expectNoSuchSet<SparePic>("seq_parameter_set_id");
    expectNoSuchSet<MotionConstrainedSliceGroupSet>("pic_parameter_set_id");
}

TEST(SeiPictureMarking, theContextHasThePpsOfTheNextPicture) {
    qv::avc::ParameterSets sets;
    EXPECT_EQ(Context(sets).avcPps, nullptr);
    // pic_parameter_set_id 0, seq_parameter_set_id 0, one slice group
    const std::vector<uint8_t> pps = {0x68, 0xCE, 0x3C, 0x80};
    sets.take(bytesOf(pps));
    ASSERT_NE(sets.ppsOfNextPicture(), nullptr);
    EXPECT_EQ(Context(sets).avcPps, sets.ppsOfNextPicture());
}

}  // namespace
