// Sub-sequences of H.264.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HandMadePayload.h"
#include "PayloadChecks.h"
#include "bitstream/sei/SubSequences.h"
#include "bitstream/sei/SubSequencesSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::IsSupersetOf;

PayloadUnderTest<SubSeqInfo> info() {
    auto structure = payloadUnderTest<SubSeqInfo>(
        Context(Codec::Avc), [](auto& s, const auto& c, auto& payload) { sub_seq_info(s, c, payload); });
    structure.violable = 3;
    return structure;
}

PayloadUnderTest<SubSeqLayerCharacteristics> layers() {
    auto structure = payloadUnderTest<SubSeqLayerCharacteristics>(
        Context(Codec::Avc),
        [](auto& s, const auto& c, auto& payload) { sub_seq_layer_characteristics(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<SubSeqCharacteristics> characteristics() {
    auto structure = payloadUnderTest<SubSeqCharacteristics>(
        Context(Codec::Avc),
        [](auto& s, const auto& c, auto& payload) { sub_seq_characteristics(s, c, payload); });
    structure.violable = 6;
    return structure;
}

template <class Check>
void forEach(Check check) {
    check(info());
    check(layers());
    check(characteristics());
}

TEST(SeiSubSequences, roundTrips) {
    forEach([](const auto& structure) { checkRoundTrips(structure, unitRounds()); });
}

TEST(SeiSubSequences, cutAtEveryByte) {
    forEach([](const auto& structure) { checkCuts(structure, unitRounds(50)); });
}

TEST(SeiSubSequences, noAllocationAndNoByteOutside) {
    forEach([](const auto& structure) { checkMemory(structure, unitRounds(25)); });
}

TEST(SeiSubSequences, everyRange) {
    EXPECT_THAT(checkRanges(info(), unitRounds()),
                IsSupersetOf({"sub_seq_layer_num", "sub_seq_id", "sub_seq_frame_num"}));
    EXPECT_THAT(checkRanges(layers(), unitRounds()), IsSupersetOf({"num_sub_seq_layers_minus1"}));
    EXPECT_THAT(checkRanges(characteristics(), unitRounds()),
                IsSupersetOf({"sub_seq_layer_num", "sub_seq_id", "num_referenced_subseqs",
                              "ref_sub_seq_layer_num", "ref_sub_seq_id"}));
}

TEST(SeiSubSequences, frameNumIsBelowThatOfTheSps) {
    // 1 sub_seq_layer_num 0, 1 sub_seq_id 0, 000 flags, 1 sub_seq_frame_num_flag,
    // 000010001 sub_seq_frame_num 16
    const std::vector<uint8_t> bytes = {0xC4, 0x23};
    const HandMadePayload<SubSeqInfo> withoutSps(Context(Codec::Avc), bytes);
    ASSERT_TRUE(withoutSps.ok()) << qv::textOf(withoutSps.fault());
    EXPECT_EQ(withoutSps->sub_seq_frame_num, 16U);
    qv::avc::SpsData sps = {};
    Context context(Codec::Avc);
    context.avcSps = &sps;
    const HandMadePayload<SubSeqInfo> tooGreat(context, bytes);
    EXPECT_EQ(tooGreat.fault().kind, FaultKind::OutOfRange);
    EXPECT_EQ(tooGreat.fault().most, 15);
    sps.log2_max_frame_num_minus4 = 1;
    EXPECT_TRUE(HandMadePayload<SubSeqInfo>(context, bytes).ok());
}

TEST(SeiSubSequences, twoLayers) {
    // 010 num_sub_seq_layers_minus1 1; 1 accurate_statistics_flag, 16 bits 1000, 16 bits 6400; 0, 0, 0
    const HandMadePayload<SubSeqLayerCharacteristics> payload(
        Context(Codec::Avc), {0x50, 0x3E, 0x81, 0x90, 0x00, 0x00, 0x00, 0x00, 0x04});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->num_sub_seq_layers_minus1, 1U);
    EXPECT_TRUE(payload->accurate_statistics_flag[0]);
    EXPECT_EQ(payload->average_bit_rate[0], 1000U);
    EXPECT_EQ(payload->average_frame_rate[0], 6400U);
    EXPECT_FALSE(payload->accurate_statistics_flag[1]);
    EXPECT_EQ(payload->average_bit_rate[1], 0U);
}

TEST(SeiSubSequences, oneReferencedSubSequence) {
    // 010 sub_seq_layer_num 1, 011 sub_seq_id 2, 0 duration_flag, 1 average_rate_flag,
    // 1 accurate_statistics_flag, 16 bits 1000 (in 1000 bit/s), 16 bits 6400 (25 frames per second);
    // 010 num_referenced_subseqs 1, 1 ref_sub_seq_layer_num 0, 010 ref_sub_seq_id 1, 1 direction
    const HandMadePayload<SubSeqCharacteristics> payload(Context(Codec::Avc),
                                                         {0x4D, 0x81, 0xF4, 0x0C, 0x80, 0x2A, 0xC0});
    ASSERT_TRUE(payload.ok()) << qv::textOf(payload.fault());
    EXPECT_EQ(payload->sub_seq_layer_num, 1U);
    EXPECT_EQ(payload->sub_seq_id, 2U);
    EXPECT_FALSE(payload->duration_flag);
    EXPECT_TRUE(payload->accurate_statistics_flag);
    EXPECT_EQ(payload->average_bit_rate, 1000U);
    EXPECT_EQ(payload->average_frame_rate, 6400U);
    ASSERT_EQ(payload->num_referenced_subseqs, 1U);
    EXPECT_EQ(payload->ref_sub_seq_layer_num[0], 0U);
    EXPECT_EQ(payload->ref_sub_seq_id[0], 1U);
    EXPECT_TRUE(payload->ref_sub_seq_direction[0]);
}

}  // namespace
