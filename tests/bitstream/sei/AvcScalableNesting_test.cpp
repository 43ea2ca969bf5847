// H.264 messages for layers and views: those that hold messages, and HRD parameters.
#include "bitstream/sei/AvcScalableNesting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EntryChecks.h"
#include "bitstream/sei/AvcScalableNestingSyntax.h"
#include "bitstream/sei/TemporalHrdSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

const Context kContext(Codec::Avc);

PayloadUnderTest<AvcScalableNesting> scalableNesting() {
    auto structure = payloadUnderTest<AvcScalableNesting>(
        kContext, [](auto& s, const auto& c, auto& payload) { scalable_nesting(s, c, payload); });
    structure.violable = 4;
    structure.optional = {"last_payload_type_byte"};
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_layer_representations_minus1", {0, 1, 2, 127});
    };
    return structure;
}

PayloadUnderTest<MvcScalableNesting> mvcScalableNesting() {
    auto structure = payloadUnderTest<MvcScalableNesting>(
        kContext, [](auto& s, const auto& c, auto& payload) { mvc_scalable_nesting(s, c, payload); });
    structure.violable = 4;
    structure.optional = {"last_payload_type_byte"};
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 50 != 0) {
            unit.choose("num_view_components_minus1", {0, 1, 2});
            unit.choose("num_view_components_op_minus1", {0, 1, 2});
        }
    };
    return structure;
}

PayloadUnderTest<MvcdScalableNesting> mvcdScalableNesting() {
    auto structure = payloadUnderTest<MvcdScalableNesting>(
        kContext, [](auto& s, const auto& c, auto& payload) { mvcd_scalable_nesting(s, c, payload); });
    structure.violable = 4;
    structure.optional = {"last_payload_type_byte"};
    structure.steer = mvcScalableNesting().steer;
    return structure;
}

PayloadUnderTest<BaseLayerTemporalHrd> baseLayerTemporalHrd() {
    auto structure = payloadUnderTest<BaseLayerTemporalHrd>(
        kContext, [](auto& s, const auto& c, auto& payload) { base_layer_temporal_hrd(s, c, payload); });
    structure.violable = 6;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_of_temporal_layers_in_base_layer_minus1", {0, 1, 2});
        unit.choose("num_of_temporal_layers_in_base_view_minus1", {0, 1, 2});
        unit.choose("cpb_cnt_minus1", {0, 1});
    };
    return structure;
}

PayloadUnderTest<BaseViewTemporalHrd> baseViewTemporalHrd() {
    auto structure = payloadUnderTest<BaseViewTemporalHrd>(
        kContext, [](auto& s, const auto& c, auto& payload) { base_view_temporal_hrd(s, c, payload); });
    structure.violable = 6;
    structure.steer = baseLayerTemporalHrd().steer;
    return structure;
}

TEST(SeiAvcNesting, roundTrips) {
    checkRoundTrips(scalableNesting(), unitRounds());
    checkRoundTrips(mvcScalableNesting(), unitRounds());
    checkRoundTrips(mvcdScalableNesting(), unitRounds());
    checkRoundTrips(baseLayerTemporalHrd(), unitRounds());
    checkRoundTrips(baseViewTemporalHrd(), unitRounds());
}

TEST(SeiAvcNesting, ranges) {
    EXPECT_THAT(checkRanges(scalableNesting(), unitRounds(400)),
                IsSupersetOf({"num_layer_representations_minus1", "sei_nesting_zero_bit"}));
    EXPECT_THAT(checkRanges(mvcScalableNesting(), unitRounds(400)),
                IsSupersetOf(
                    {"num_view_components_minus1", "num_view_components_op_minus1", "sei_nesting_zero_bit"}));
    EXPECT_THAT(checkRanges(mvcdScalableNesting(), unitRounds(400)),
                IsSupersetOf(
                    {"num_view_components_minus1", "num_view_components_op_minus1", "sei_nesting_zero_bit"}));
    EXPECT_THAT(checkRanges(baseLayerTemporalHrd(), unitRounds(400)),
                IsSupersetOf({"num_of_temporal_layers_in_base_layer_minus1", "sei_num_units_in_tick",
                              "sei_time_scale", "cpb_cnt_minus1"}));
    EXPECT_THAT(checkRanges(baseViewTemporalHrd(), unitRounds(400)),
                IsSupersetOf({"num_of_temporal_layers_in_base_view_minus1", "sei_mvc_num_units_in_tick",
                              "sei_mvc_time_scale", "cpb_cnt_minus1"}));
}

TEST(SeiAvcNesting, cutAtEveryByte) {
    checkCuts(baseLayerTemporalHrd(), unitRounds(50));
    checkCuts(baseViewTemporalHrd(), unitRounds(50));
}

TEST(SeiAvcNesting, noAllocationAndNoByteOutside) {
    checkMemory(scalableNesting(), unitRounds(25));
    checkMemory(mvcScalableNesting(), unitRounds(25));
    checkMemory(mvcdScalableNesting(), unitRounds(25));
    checkMemory(baseLayerTemporalHrd(), unitRounds(25),
                {listOf<TemporalHrd, BaseLayerTemporalHrd>("temporal layers")});
    checkMemory(baseViewTemporalHrd(), unitRounds(25),
                {listOf<TemporalHrd, BaseViewTemporalHrd>("temporal layers")});
}

// The payload ends within sei_quality_id[ 0 ], and within the payload of a nested message.
TEST(SeiAvcNesting, cut) {
    const std::vector<uint8_t> head = {0x2A, 0x80};
    EXPECT_EQ(readUnit<AvcScalableNesting>(head, Codec::Avc).fault.kind, qv::FaultKind::EndOfData);
    const std::vector<uint8_t> unit = {0x80, 199, 2, 0x5A, 0x80};
    EXPECT_TRUE(readUnit<AvcScalableNesting>(unit, Codec::Avc).ok());
    RecordingVisitor visitor;
    const auto traced = tracePayload<AvcScalableNesting>(
        messageOf<AvcScalableNesting>(bytesOf(unit), Codec::Avc), kContext, visitor);
    EXPECT_EQ(traced.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_STREQ(traced.fault.element.name, "payloadSize");
}

// The one nested message: of type 199, with the byte 0x5A.
void expectOneMessage(const qv::NestedMessages& messages) {
    int count = 0;
    for (const qv::SeiMessage& message : qv::SeiMessages(messages)) {
        EXPECT_TRUE(message.isNested);
        EXPECT_EQ(message.payloadType, 199U);
        ASSERT_EQ(message.payload.size, 1U);
        EXPECT_EQ(*message.payload.begin(), 0x5A);
        ++count;
    }
    EXPECT_EQ(count, 1);
}

BitWriter& oneMessage(BitWriter& bits) {
    return bits.alignZero().u(8, "payloadType", 199).u(8, "payloadSize", 1).u(8, "payload", 0x5A);
}

TEST(SeiAvcNesting, layerRepresentations) {
    // all_layer_representations_in_au_flag 0, num_layer_representations_minus1 010 (1), 101 0110 and 001
    // 1111, sei_temporal_id 100, then 000 000 to the next byte: 0010 1010 | 1100 0111 | 1110 0000
    const std::vector<uint8_t> unit = {0x2A, 0xC7, 0xE0, 199, 1, 0x5A, 0x80};
    const qv::Read<AvcScalableNesting> read = readUnit<AvcScalableNesting>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const AvcScalableNesting& nesting = read.record;
    EXPECT_FALSE(nesting.all_layer_representations_in_au_flag);
    ASSERT_EQ(nesting.num_layer_representations_minus1, 1U);
    EXPECT_EQ(nesting.sei_dependency_id[0], 5U);
    EXPECT_EQ(nesting.sei_quality_id[0], 6U);
    EXPECT_EQ(nesting.sei_dependency_id[1], 1U);
    EXPECT_EQ(nesting.sei_quality_id[1], 15U);
    EXPECT_EQ(nesting.sei_temporal_id, 4U);
    expectOneMessage(nesting.messages);
}

TEST(SeiAvcNesting, viewsOfAnAccessUnit) {
    BitWriter bits;
    bits.u(1, "operation_point_flag", 0).u(1, "all_view_components_in_au_flag", 0);
    bits.ue("num_view_components_minus1", 1).u(10, "sei_view_id", 1023).u(10, "sei_view_id", 2);
    const std::vector<uint8_t> unit = payloadUnit(oneMessage(bits));
    const qv::Read<MvcScalableNesting> read = readUnit<MvcScalableNesting>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    ASSERT_EQ(read.record.num_view_components_minus1, 1U);
    EXPECT_EQ(read.record.view_id[0], 1023U);
    EXPECT_EQ(read.record.view_id[1], 2U);
    expectOneMessage(read.record.messages);
}

TEST(SeiAvcNesting, viewsOfAnOperationPoint) {
    BitWriter bits;
    bits.u(1, "operation_point_flag", 1).u(1, "sei_op_texture_only_flag", 0);
    bits.ue("num_view_components_op_minus1", 0).u(10, "sei_op_view_id", 600);
    bits.u(1, "sei_op_depth_flag", 1).u(1, "sei_op_texture_flag", 0).u(3, "sei_op_temporal_id", 6);
    const std::vector<uint8_t> unit = payloadUnit(oneMessage(bits));
    const qv::Read<MvcdScalableNesting> read = readUnit<MvcdScalableNesting>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.views[0].view_id, 600U);
    EXPECT_TRUE(read.record.views[0].sei_op_depth_flag);
    EXPECT_FALSE(read.record.views[0].sei_op_texture_flag);
    EXPECT_FALSE(read.record.views[0].sei_view_applicability_flag);
    EXPECT_EQ(read.record.sei_op_temporal_id, 6U);
    expectOneMessage(read.record.messages);
}

TEST(SeiAvcNesting, aMessageThatHoldsMessagesIsNotNested) {
    BitWriter bits;
    bits.u(1, "operation_point_flag", 0).u(1, "all_view_components_in_au_flag", 1);
    const std::vector<uint8_t> unit = payloadUnit(oneMessage(bits));
    qv::SeiMessage message = messageOf<MvcScalableNesting>(bytesOf(unit), Codec::Avc);
    EXPECT_TRUE(readPayload<MvcScalableNesting>(message, kContext).ok());
    message.isNested = true;
    EXPECT_EQ(readPayload<MvcScalableNesting>(message, kContext).fault.kind, qv::FaultKind::OtherPayload);
}

TEST(SeiAvcNesting, temporalLayersOfABaseView) {
    BitWriter bits;
    bits.ue("num_of_temporal_layers_in_base_view_minus1", 1);
    bits.u(3, "sei_mvc_temporal_id", 0).u(1, "sei_mvc_timing_info_present_flag", 1);
    bits.u(32, "sei_mvc_num_units_in_tick", 1001).u(32, "sei_mvc_time_scale", 60000);
    bits.u(1, "sei_mvc_fixed_frame_rate_flag", 1).u(1, "sei_mvc_nal_hrd_parameters_present_flag", 0);
    bits.u(1, "sei_mvc_vcl_hrd_parameters_present_flag", 0).u(1, "sei_mvc_pic_struct_present_flag", 1);
    bits.u(3, "sei_mvc_temporal_id", 2).u(1, "sei_mvc_timing_info_present_flag", 0);
    bits.u(1, "sei_mvc_nal_hrd_parameters_present_flag", 0);
    bits.u(1, "sei_mvc_vcl_hrd_parameters_present_flag", 0).u(1, "sei_mvc_pic_struct_present_flag", 0);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const qv::Read<BaseViewTemporalHrd> read = readUnit<BaseViewTemporalHrd>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    BaseViewTemporalHrds layers(read.record);
    TemporalHrd layer;
    ASSERT_TRUE(layers.next(layer));
    EXPECT_EQ(layer.timing.num_units_in_tick, 1001U);
    EXPECT_EQ(layer.timing.time_scale, 60000U);
    EXPECT_TRUE(layer.timing.pic_struct_present_flag);
    ASSERT_TRUE(layers.next(layer));
    EXPECT_EQ(layer.temporal_id, 2U);
    EXPECT_EQ(layer.timing.time_scale, 0U);
    EXPECT_FALSE(layers.next(layer));
}

}  // namespace
