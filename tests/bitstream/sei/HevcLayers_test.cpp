// SEI payloads about layers and operation points of H.265.
#include "bitstream/sei/HevcLayers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "BitWriter.h"
#include "PayloadChecks.h"
#include "bitstream/sei/HevcLayersSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;
using testing::ElementsAre;
using testing::IsSupersetOf;

const Context kHevc(Codec::Hevc);

PayloadUnderTest<HevcScalableNesting> nesting() {
    auto structure = payloadUnderTest<HevcScalableNesting>(
        kHevc, [](auto& s, const auto& c, auto& payload) { scalable_nesting(s, c, payload); });
    structure.lastCut = "last_payload_type_byte";
    structure.violable = 12;
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 64 != 0) {
            unit.choose("nesting_num_ops_minus1", {0, 1, 5});
        }
    };
    return structure;
}

// Of video_parameter_set_id 5 and layers 0 to 63, of which the last is not counted.
std::vector<uint8_t> vpsOf63Layers() {
    return hex("40015ff1ffff01600000030090000003000003005d959809");
}

class SeiHevcLayers : public testing::Test {
protected:
    SeiHevcLayers() : sets(std::make_unique<qv::hevc::ParameterSets>()) {
        sets->take(bytesOf(vpsOf63Layers()));
    }

    PayloadUnderTest<LayersNotPresent> layersNotPresent() const {
        auto structure = payloadUnderTest<LayersNotPresent>(
            Context(*sets), [](auto& s, const auto& c, auto& payload) { layers_not_present(s, c, payload); });
        structure.steer = [](RandomUnit& unit, Random&) { unit.choose("lnp_sei_active_vps_id", {5}); };
        return structure;
    }

    std::unique_ptr<qv::hevc::ParameterSets> sets;
};

PayloadUnderTest<InterLayerConstrainedTileSets> tileSets() {
    auto structure = payloadUnderTest<InterLayerConstrainedTileSets>(
        kHevc,
        [](auto& s, const auto& c, auto& payload) { inter_layer_constrained_tile_sets(s, c, payload); });
    structure.violable = 6;
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("il_num_tile_rects_in_set_minus1", {0, 1, 2});
        if (random() % 16 != 0) {
            unit.choose("il_num_sets_in_message_minus1", {0, 1, 3});
        }
        if (random() % 4 != 0) {
            unit.choose("il_one_tile_per_tile_set_flag", {0});
        }
    };
    return structure;
}

PayloadUnderTest<BspNesting> bspNesting() {
    auto structure = payloadUnderTest<BspNesting>(
        kHevc, [](auto& s, const auto& c, auto& payload) { bsp_nesting(s, c, payload); });
    structure.optional = {"sei_message()"};
    structure.violable = 4;
    return structure;
}

PayloadUnderTest<SubBitstreamProperty> subBitstreams() {
    auto structure = payloadUnderTest<SubBitstreamProperty>(
        kHevc, [](auto& s, const auto& c, auto& payload) { sub_bitstream_property(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<AlphaChannelInfo> alpha() {
    auto structure = payloadUnderTest<AlphaChannelInfo>(
        kHevc, [](auto& s, const auto& c, auto& payload) { alpha_channel_info(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 4 != 0) {
            unit.choose("alpha_channel_cancel_flag", {0});
        }
    };
    return structure;
}

PayloadUnderTest<OverlayInfo> overlays() {
    auto structure = payloadUnderTest<OverlayInfo>(
        kHevc, [](auto& s, const auto& c, auto& payload) { overlay_info(s, c, payload); });
    structure.violable = 12;
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 8 != 0) {
            unit.choose("overlay_info_cancel_flag", {0});
            unit.choose("num_overlays_minus1", {0, 1, 2});
        }
        unit.choose("num_overlay_elements_minus1", {0, 1, 2});
    };
    return structure;
}

PayloadUnderTest<TemporalMvPredictionConstraints> motionConstraints() {
    return payloadUnderTest<TemporalMvPredictionConstraints>(
        kHevc,
        [](auto& s, const auto& c, auto& payload) { temporal_mv_prediction_constraints(s, c, payload); });
}

TEST_F(SeiHevcLayers, roundTrips) {
    checkRoundTrips(nesting(), unitRounds());
    checkRoundTrips(layersNotPresent(), unitRounds());
    checkRoundTrips(tileSets(), unitRounds());
    checkRoundTrips(bspNesting(), unitRounds());
    checkRoundTrips(subBitstreams(), unitRounds());
    checkRoundTrips(alpha(), unitRounds());
    checkRoundTrips(overlays(), unitRounds());
    checkRoundTrips(motionConstraints(), unitRounds());
}

TEST_F(SeiHevcLayers, valuesOutOfRange) {
    EXPECT_THAT(checkRanges(nesting(), unitRounds()),
                IsSupersetOf({"nesting_num_ops_minus1", "nesting_op_idx", "nesting_num_layers_minus1",
                              "nesting_zero_bit"}));
    EXPECT_THAT(checkRanges(tileSets(), unitRounds()),
                IsSupersetOf({"il_num_sets_in_message_minus1", "il_num_tile_rects_in_set_minus1"}));
    EXPECT_THAT(checkRanges(bspNesting(), unitRounds()), IsSupersetOf({"bsp_nesting_zero_bit"}));
    EXPECT_THAT(checkRanges(subBitstreams(), unitRounds()), ElementsAre("num_additional_sub_streams_minus1"));
    EXPECT_THAT(checkRanges(overlays(), unitRounds()),
                IsSupersetOf({"overlay_content_aux_id_minus128", "overlay_label_aux_id_minus128",
                              "overlay_alpha_aux_id_minus128", "overlay_element_label_value_length_minus8",
                              "num_overlays_minus1", "overlay_idx", "num_overlay_elements_minus1",
                              "overlay_zero_bit"}));
}

TEST_F(SeiHevcLayers, cutAtEveryByte) {
    checkCuts(nesting(), unitRounds(50));
    checkCuts(layersNotPresent(), unitRounds(50));
    checkCuts(tileSets(), unitRounds(50));
    checkCuts(bspNesting(), unitRounds(50));
    checkCuts(subBitstreams(), unitRounds(50));
    checkCuts(alpha(), unitRounds(50));
    checkCuts(overlays(), unitRounds(50));
    checkCuts(motionConstraints(), unitRounds(50));
}

uint64_t sumOf(const InterLayerConstrainedTileSets& payload) {
    uint64_t sum = 0;
    InterLayerTileSetReader reader(payload);
    for (InterLayerTileSet set = {}; reader.next(set);) {
        sum += 1 + set.ilcts_id + set.ilc_idc;
        InterLayerTileRectReader rects(set);
        for (InterLayerTileRect rect = {}; rects.next(rect);) {
            sum += rect.il_top_left_tile_idx + rect.il_bottom_right_tile_idx;
        }
    }
    return sum;
}

uint64_t sumOf(const SubBitstreamProperty& payload) {
    uint64_t sum = 0;
    SubBitstreamReader reader(payload);
    for (SubBitstream subBitstream = {}; reader.next(subBitstream);) {
        sum += 1 + subBitstream.ols_idx_to_vps;
    }
    return sum;
}

uint64_t countOf(const qv::NestedMessages& nested) {
    uint64_t count = 0;
    for (const qv::SeiMessage& message : qv::SeiMessages(nested)) {
        count += message.ok() ? 1U : 0U;
    }
    return count;
}

TEST_F(SeiHevcLayers, noAllocationAndNoByteOutside) {
    checkMemory(nesting(), unitRounds(25),
                {{"nested", [](const HevcScalableNesting& payload) { return countOf(payload.messages); }}});
    checkMemory(layersNotPresent(), unitRounds(25));
    checkMemory(tileSets(), unitRounds(25),
                {{"sets", [](const InterLayerConstrainedTileSets& payload) { return sumOf(payload); }}});
    checkMemory(bspNesting(), unitRounds(25),
                {{"nested", [](const BspNesting& payload) { return countOf(payload.sei_message); }}});
    checkMemory(subBitstreams(), unitRounds(25),
                {{"sub-bitstreams", [](const SubBitstreamProperty& payload) { return sumOf(payload); }}});
    checkMemory(alpha(), unitRounds(25));
    checkMemory(overlays(), unitRounds(25));
    checkMemory(motionConstraints(), unitRounds(25));
}

// --- Worked out by hand ---

// A unit of one message: its payload, without emulation prevention bytes.
template <class Payload>
qv::Read<Payload> readBytes(const std::vector<uint8_t>& unit, const Context& context = kHevc) {
    return readPayload<Payload>(messageOf<Payload>(bytesOf(unit), context.codec), context);
}

TEST_F(SeiHevcLayers, nestingOfOperationPoints) {
    // bitstream_subset_flag 1, nesting_op_flag 1, default_op_flag 1, nesting_num_ops_minus1 010 (1),
    // [1]: nesting_max_temporal_id_plus1 110 (6), nesting_op_idx 00101 (4), zero bits: 11101011 00010100 = eb
    // 14 and two messages: type 1 of a byte, type 2 of none; the byte of rbsp_trailing_bits() after it.
    const std::vector<uint8_t> unit = hex("eb140101aa020080");
    const auto read = readBytes<HevcScalableNesting>(unit);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.bitstream_subset_flag);
    EXPECT_TRUE(read.record.default_op_flag);
    EXPECT_EQ(read.record.nesting_num_ops_minus1, 1U);
    EXPECT_EQ(read.record.nesting_max_temporal_id_plus1[1], 6);
    EXPECT_EQ(read.record.nesting_op_idx[1], 4);
    std::vector<uint64_t> types;
    std::vector<size_t> offsets;
    for (const qv::SeiMessage& message : qv::SeiMessages(read.record.messages)) {
        EXPECT_TRUE(message.ok() && message.isNested);
        types.push_back(message.payloadType);
        offsets.push_back(message.payloadOffset);
    }
    EXPECT_THAT(types, ElementsAre(1, 2));
    EXPECT_THAT(offsets, ElementsAre(4, 7));
}

TEST_F(SeiHevcLayers, nestingOfLayers) {
    // bitstream_subset_flag 0, nesting_op_flag 0, all_layers_flag 0, nesting_no_op_max_temporal_id_plus1 111
    // (7), nesting_num_layers_minus1 010 (1), nesting_layer_id 000001, 111111: 0001 1101 0000 0011 1111 1000
    const auto read = readBytes<HevcScalableNesting>(hex("1d03f8010080"));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.nesting_no_op_max_temporal_id_plus1, 7U);
    EXPECT_EQ(read.record.nesting_num_layers_minus1, 1U);
    EXPECT_EQ(read.record.nesting_layer_id[0], 1);
    EXPECT_EQ(read.record.nesting_layer_id[1], 63);
    // all_layers_flag 1
    EXPECT_TRUE(readBytes<HevcScalableNesting>(hex("20010080")).record.all_layers_flag);
}

TEST_F(SeiHevcLayers, layersOfTheVpsThatTheMessageNames) {
    // lnp_sei_active_vps_id 0101, layer_not_present_flag[0..62] of which [1] (bit 5) and [62] (bit 66) are 1,
    // payload_bit_equal_to_one (bit 67)
    const std::vector<uint8_t> unit =
        withEmulationPrevention(hex("5400000000000000"
                                    "3080"));
    const auto read = readBytes<LayersNotPresent>(unit, Context(*sets));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.lnp_sei_active_vps_id, 5U);
    EXPECT_EQ(read.record.layer_not_present_flag, uint64_t{1} << 62 | uint64_t{1} << 1);
}

TEST_F(SeiHevcLayers, layersOfAVpsThatIsNotThere) {
    for (const Context& context : {kHevc, Context(*sets)}) {
        const qv::Fault fault = readBytes<LayersNotPresent>(hex("608080"), context).fault;
        EXPECT_EQ(
            qv::textOf(fault),
            "lnp_sei_active_vps_id in layers_not_present() (F.14.2.3) at bit 4: there is no parameter set 6");
    }
}

TEST_F(SeiHevcLayers, tilesOfSets) {
    BitWriter bits;
    bits.u(1, "il_all_tiles_exact_sample_value_match_flag", 0).u(1, "il_one_tile_per_tile_set_flag", 0);
    bits.ue("il_num_sets_in_message_minus1", 2).u(1, "skipped_tile_set_present_flag", 1);
    bits.ue("ilcts_id[0]", 7).ue("il_num_tile_rects_in_set_minus1[0]", 1);
    bits.ue("il_top_left_tile_idx[0][0]", 0).ue("il_bottom_right_tile_idx[0][0]", 2);
    bits.ue("il_top_left_tile_idx[0][1]", 3).ue("il_bottom_right_tile_idx[0][1]", 4);
    bits.u(2, "ilc_idc[0]", 2).u(1, "il_exact_sample_value_match_flag[0]", 1);
    bits.ue("ilcts_id[1]", 600).ue("il_num_tile_rects_in_set_minus1[1]", 0);
    bits.ue("il_top_left_tile_idx[1][0]", 5).ue("il_bottom_right_tile_idx[1][0]", 5);
    bits.u(2, "ilc_idc[1]", 1).u(1, "il_exact_sample_value_match_flag[1]", 0);
    bits.trailingBits().u(8, "rbsp_trailing_bits()", 0x80);
    const std::vector<uint8_t> unit = bits.bytes();
    const auto read = readBytes<InterLayerConstrainedTileSets>(unit);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.numSignificantSets(), 2U);
    InterLayerTileSetReader reader(read.record);
    InterLayerTileSet set = {};
    ASSERT_TRUE(reader.next(set));
    EXPECT_EQ(set.ilcts_id, 7U);
    EXPECT_EQ(set.ilc_idc, 2U);
    EXPECT_TRUE(set.il_exact_sample_value_match_flag);
    InterLayerTileRectReader rects(set);
    InterLayerTileRect rect = {};
    ASSERT_TRUE(rects.next(rect));
    EXPECT_EQ(rect.il_top_left_tile_idx, 0U);
    EXPECT_EQ(rect.il_bottom_right_tile_idx, 2U);
    ASSERT_TRUE(rects.next(rect));
    EXPECT_EQ(rect.il_top_left_tile_idx, 3U);
    EXPECT_EQ(rect.il_bottom_right_tile_idx, 4U);
    EXPECT_FALSE(rects.next(rect));
    ASSERT_TRUE(reader.next(set));
    EXPECT_EQ(set.ilcts_id, 600U);
    EXPECT_FALSE(set.il_exact_sample_value_match_flag);
    EXPECT_FALSE(reader.next(set));
}

TEST_F(SeiHevcLayers, oneTileToASet) {
    // il_all_tiles_exact_sample_value_match_flag 0, il_one_tile_per_tile_set_flag 1, all_tiles_ilc_idc 10, 1,
    // 000
    const auto read = readBytes<InterLayerConstrainedTileSets>(hex("6880"));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(read.record.all_tiles_ilc_idc, 2U);
    EXPECT_EQ(read.record.numSignificantSets(), 0U);
}

TEST_F(SeiHevcLayers, messagesOfABitstreamPartition) {
    // sei_ols_idx 010 (1), sei_partitioning_scheme_idx 1 (0), bsp_idx 011 (2), num_seis_in_bsp_minus1 1 (0),
    // and a message of type 1 with a byte
    const std::vector<uint8_t> unit = hex("570101aa80");
    const auto read = readBytes<BspNesting>(unit);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.sei_ols_idx, 1U);
    EXPECT_EQ(read.record.bsp_idx, 2U);
    EXPECT_EQ(countOf(read.record.sei_message), 1U);
}

TEST_F(SeiHevcLayers, bitRatesOfSubBitstreams) {
    // sb_property_active_vps_id 0011, num_additional_sub_streams_minus1 1 (0), sub_bitstream_mode 01,
    // ols_idx_to_vps 011 (2), highest_sublayer_id 101, rates 1234 and ffff, 1, 00
    const std::vector<uint8_t> unit = hex("3ae891a7fffc80");
    const auto read = readBytes<SubBitstreamProperty>(unit);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.sb_property_active_vps_id, 3U);
    SubBitstreamReader reader(read.record);
    SubBitstream subBitstream = {};
    ASSERT_TRUE(reader.next(subBitstream));
    EXPECT_EQ(subBitstream.sub_bitstream_mode, 1U);
    EXPECT_EQ(subBitstream.ols_idx_to_vps, 2U);
    EXPECT_EQ(subBitstream.highest_sublayer_id, 5U);
    EXPECT_EQ(subBitstream.avg_sb_property_bit_rate, 0x1234U);
    EXPECT_EQ(subBitstream.max_sb_property_bit_rate, 0xFFFFU);
    EXPECT_FALSE(reader.next(subBitstream));
}

TEST_F(SeiHevcLayers, alphaPlane) {
    // alpha_channel_cancel_flag 0, alpha_channel_use_idc 001, alpha_channel_bit_depth_minus8 000,
    // alpha_transparent_value 000000000, alpha_opaque_value 011111111, incr 0, clip 1, clip type 0, 1, 000
    const auto read = readBytes<AlphaChannelInfo>(hex("10007fa880"));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.alpha_channel_use_idc, 1U);
    EXPECT_EQ(read.record.alpha_transparent_value, 0U);
    EXPECT_EQ(read.record.alpha_opaque_value, 255U);
    EXPECT_TRUE(read.record.alpha_channel_clip_flag);
    // alpha_channel_cancel_flag 1
    EXPECT_TRUE(readBytes<AlphaChannelInfo>(hex("c080")).record.alpha_channel_cancel_flag);
}

std::string textOf(const qv::CodedBits& bits) {
    std::string text;
    qv::Reader reader(bits);
    while (reader.more_rbsp_data()) {
        uint32_t byte = 0;
        reader.u(8, "byte", byte);
        text += static_cast<char>(byte);
    }
    return text;
}

TEST_F(SeiHevcLayers, overlayWithTexts) {
    BitWriter bits;
    bits.u(1, "overlay_info_cancel_flag", 0).ue("overlay_content_aux_id_minus128", 0);
    bits.ue("overlay_label_aux_id_minus128", 1).ue("overlay_alpha_aux_id_minus128", 31);
    bits.ue("overlay_element_label_value_length_minus8", 24).ue("num_overlays_minus1", 0);
    bits.ue("overlay_idx[0]", 255).u(1, "language_overlay_present_flag[0]", 1);
    bits.u(6, "overlay_content_layer_id[0]", 2).u(1, "overlay_label_present_flag[0]", 1);
    bits.u(6, "overlay_label_layer_id[0]", 3).u(1, "overlay_alpha_present_flag[0]", 1);
    bits.u(6, "overlay_alpha_layer_id[0]", 4).ue("num_overlay_elements_minus1[0]", 0);
    bits.u(32, "overlay_element_label_min[0][0]", 0xFFFFFFF0).u(32, "overlay_element_label_max[0][0]", 9);
    bits.alignZero().u(24, "overlay_language[0]", 0x656E00).u(16, "overlay_name[0]", 0x6100);
    bits.u(8, "overlay_element_name[0][0]", 0).u(1, "overlay_info_persistence_flag", 1);
    bits.trailingBits().u(8, "rbsp_trailing_bits()", 0x80);
    const std::vector<uint8_t> unit = withEmulationPrevention(bits.bytes());
    const auto read = readBytes<OverlayInfo>(unit);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const OverlayInfo::Overlay& overlay = read.record.overlays[0];
    EXPECT_EQ(overlay.overlay_idx, 255U);
    EXPECT_EQ(overlay.overlay_content_layer_id, 2U);
    EXPECT_EQ(overlay.overlay_label_layer_id, 3U);
    EXPECT_EQ(overlay.overlay_alpha_layer_id, 4U);
    EXPECT_EQ(overlay.labels.count, 64U);
    EXPECT_EQ(textOf(overlay.overlay_language), std::string("en\0", 3));
    EXPECT_EQ(textOf(overlay.overlay_name), std::string("a\0", 2));
    EXPECT_EQ(textOf(overlay.overlay_element_name), std::string("\0", 1));
    EXPECT_TRUE(read.record.overlay_info_persistence_flag);
}

}  // namespace
