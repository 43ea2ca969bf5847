// Messages of scalable streams: layers, what they depend on, and their quality.
#include "bitstream/sei/ScalabilityInfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EntryChecks.h"
#include "bitstream/sei/LayerSetsSyntax.h"
#include "bitstream/sei/QualityLayersSyntax.h"
#include "bitstream/sei/ScalabilityInfoSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

const Context kContext(Codec::Avc);

PayloadUnderTest<ScalabilityInfo> scalabilityInfo() {
    auto structure = payloadUnderTest<ScalabilityInfo>(
        kContext, [](auto& s, const auto& c, auto& payload) { scalability_info(s, c, payload); });
    structure.violable = 12;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_layers_minus1", {0, 1, 2});
        unit.choose("frm_width_in_mbs_minus1", {1, 19});
        unit.choose("frm_height_in_mbs_minus1", {1, 17});
        unit.choose("num_rois_minus1", {0, 1, 3});
        unit.choose("num_directly_dependent_layers", {0, 1, 2});
        unit.choose("num_seq_parameter_sets", {0, 1, 2});
        unit.choose("num_subset_seq_parameter_sets", {0, 1, 2});
        unit.choose("num_pic_parameter_sets_minus1", {0, 1});
        unit.choose("pr_num_dIds_minus1", {0, 1});
        unit.choose("pr_num_minus1", {0, 1, 2});
        unit.choose("priority_id_setting_uri", {'h', 't', 0});
    };
    return structure;
}

PayloadUnderTest<SubPicScalableLayer> subPicScalableLayer() {
    auto structure = payloadUnderTest<SubPicScalableLayer>(
        kContext, [](auto& s, const auto& c, auto& payload) { sub_pic_scalable_layer(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<NonRequiredLayerRep> nonRequiredLayerRep() {
    auto structure = payloadUnderTest<NonRequiredLayerRep>(
        kContext, [](auto& s, const auto& c, auto& payload) { non_required_layer_rep(s, c, payload); });
    structure.violable = 4;
    return structure;
}

PayloadUnderTest<PriorityLayerInfo> priorityLayerInfo() {
    return payloadUnderTest<PriorityLayerInfo>(
        kContext, [](auto& s, const auto& c, auto& payload) { priority_layer_info(s, c, payload); });
}

PayloadUnderTest<AvcLayersNotPresent> layersNotPresent() {
    auto structure = payloadUnderTest<AvcLayersNotPresent>(
        kContext, [](auto& s, const auto& c, auto& payload) { layers_not_present(s, c, payload); });
    structure.violable = 4;
    structure.steer = [](RandomUnit& unit, Random& random) {
        if (random() % 50 != 0) {
            unit.choose("num_layers", {0, 1, 2, 7});
        }
    };
    return structure;
}

PayloadUnderTest<LayerDependencyChange> layerDependencyChange() {
    auto structure = payloadUnderTest<LayerDependencyChange>(
        kContext, [](auto& s, const auto& c, auto& payload) { layer_dependency_change(s, c, payload); });
    structure.violable = 5;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_layers_minus1", {0, 1, 2});
        unit.choose("num_directly_dependent_layers", {0, 1, 2});
    };
    return structure;
}

PayloadUnderTest<QualityLayerIntegrityCheck> qualityLayerIntegrityCheck() {
    auto structure = payloadUnderTest<QualityLayerIntegrityCheck>(
        kContext,
        [](auto& s, const auto& c, auto& payload) { quality_layer_integrity_check(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<RedundantPicProperty> redundantPicProperty() {
    auto structure = payloadUnderTest<RedundantPicProperty>(
        kContext, [](auto& s, const auto& c, auto& payload) { redundant_pic_property(s, c, payload); });
    structure.violable = 8;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_dIds_minus1", {0, 1});
        unit.choose("num_qIds_minus1", {0, 1});
        unit.choose("num_redundant_pics_minus1", {0, 1, 2});
    };
    return structure;
}

PayloadUnderTest<Tl0DepRepIndex> tl0DepRepIndex() {
    return payloadUnderTest<Tl0DepRepIndex>(
        kContext, [](auto& s, const auto& c, auto& payload) { tl0_dep_rep_index(s, c, payload); });
}

PayloadUnderTest<TlSwitchingPoint> tlSwitchingPoint() {
    return payloadUnderTest<TlSwitchingPoint>(
        kContext, [](auto& s, const auto& c, auto& payload) { tl_switching_point(s, c, payload); });
}

TEST(SeiScalability, roundTrips) {
    checkRoundTrips(scalabilityInfo(), unitRounds());
    checkRoundTrips(subPicScalableLayer(), unitRounds());
    checkRoundTrips(nonRequiredLayerRep(), unitRounds());
    checkRoundTrips(priorityLayerInfo(), unitRounds());
    checkRoundTrips(layersNotPresent(), unitRounds());
    checkRoundTrips(layerDependencyChange(), unitRounds());
    checkRoundTrips(qualityLayerIntegrityCheck(), unitRounds());
    checkRoundTrips(redundantPicProperty(), unitRounds());
    checkRoundTrips(tl0DepRepIndex(), unitRounds());
    checkRoundTrips(tlSwitchingPoint(), unitRounds());
}

TEST(SeiScalability, ranges) {
    EXPECT_THAT(checkRanges(scalabilityInfo(), unitRounds()),
                IsSupersetOf({"num_layers_minus1", "layer_id", "constant_frm_rate_idc", "roi_id",
                              "num_rois_minus1", "num_directly_dependent_layers", "num_seq_parameter_sets",
                              "num_subset_seq_parameter_sets", "num_pic_parameter_sets_minus1",
                              "conversion_type_idc", "pr_num_dIds_minus1", "pr_num_minus1", "pr_id"}));
    EXPECT_THAT(checkRanges(subPicScalableLayer(), unitRounds(50)), IsSupersetOf({"layer_id"}));
    EXPECT_THAT(checkRanges(nonRequiredLayerRep(), unitRounds(200)),
                IsSupersetOf({"num_info_entries_minus1", "num_non_required_layer_reps_minus1"}));
    EXPECT_THAT(checkRanges(layersNotPresent(), unitRounds(200)), IsSupersetOf({"num_layers", "layer_id"}));
    EXPECT_THAT(checkRanges(layerDependencyChange(), unitRounds(200)),
                IsSupersetOf({"num_layers_minus1", "layer_id", "num_directly_dependent_layers"}));
    EXPECT_THAT(checkRanges(qualityLayerIntegrityCheck(), unitRounds(50)),
                IsSupersetOf({"num_info_entries_minus1"}));
    EXPECT_THAT(checkRanges(redundantPicProperty(), unitRounds(200)),
                IsSupersetOf({"num_dIds_minus1", "num_qIds_minus1", "num_redundant_pics_minus1",
                              "redundant_pic_cnt_minus1"}));
}

TEST(SeiScalability, cutAtEveryByte) {
    checkCuts(scalabilityInfo(), unitRounds(50));
    checkCuts(subPicScalableLayer(), unitRounds(50));
    checkCuts(nonRequiredLayerRep(), unitRounds(50));
    checkCuts(priorityLayerInfo(), unitRounds(50));
    checkCuts(layersNotPresent(), unitRounds(50));
    checkCuts(layerDependencyChange(), unitRounds(50));
    checkCuts(qualityLayerIntegrityCheck(), unitRounds(50));
    checkCuts(redundantPicProperty(), unitRounds(50));
    checkCuts(tl0DepRepIndex(), unitRounds(50));
    checkCuts(tlSwitchingPoint(), unitRounds(50));
}

TEST(SeiScalability, noAllocationAndNoByteOutside) {
    const Derivation<ScalabilityInfo> regions = {"regions of interest", [](const ScalabilityInfo& info) {
                                                     ScalabilityLayers layers(info);
                                                     ScalabilityLayer layer;
                                                     uint64_t count = 0;
                                                     while (layers.next(layer)) {
                                                         count += countOf<RegionOfInterest>(layer);
                                                     }
                                                     return count;
                                                 }};
    checkMemory(scalabilityInfo(), unitRounds(25),
                {listOf<ScalabilityLayer, ScalabilityInfo>("layers"), regions,
                 listOf<PriorityLayer, ScalabilityInfo>("priority layers")});
    checkMemory(subPicScalableLayer(), unitRounds(25));
    checkMemory(nonRequiredLayerRep(), unitRounds(25));
    checkMemory(priorityLayerInfo(), unitRounds(25));
    checkMemory(layersNotPresent(), unitRounds(25));
    checkMemory(layerDependencyChange(), unitRounds(25),
                {listOf<LayerDependency, LayerDependencyChange>("layers")});
    checkMemory(qualityLayerIntegrityCheck(), unitRounds(25));
    checkMemory(redundantPicProperty(), unitRounds(25),
                {listOf<RedundantLayer, RedundantPicProperty>("layers")});
    checkMemory(tl0DepRepIndex(), unitRounds(25));
    checkMemory(tlSwitchingPoint(), unitRounds(25));
}

// The elements of a layer up to layer_output_flag, with these flags: sub_pic_layer_flag to
// exact_inter_layer_pred_flag.
void layerFlags(BitWriter& bits, uint32_t layer_id, const std::string& flags) {
    bits.ue("layer_id", layer_id).u(6, "priority_id", 40).u(1, "discardable_flag", 1);
    bits.u(3, "dependency_id", 2).u(4, "quality_id", 9).u(3, "temporal_id", 5);
    bits.bits("flags", flags);
}

// Two layers: one with all that a layer may have, one with as little as a layer can have.
BitWriter twoLayers() {
    BitWriter bits;
    bits.u(1, "temporal_id_nesting_flag", 1).u(1, "priority_layer_info_present_flag", 1);
    bits.u(1, "priority_id_setting_flag", 1).ue("num_layers_minus1", 1);
    layerFlags(bits, 0, "11111 11111 1");
    bits.u(1, "exact_sample_value_match_flag", 1).u(1, "layer_conversion_flag", 1);
    bits.u(1, "layer_output_flag", 1).u(24, "layer_profile_level_idc", 0x53001E);
    bits.u(16, "avg_bitrate", 500).u(16, "max_bitrate_layer", 600);
    bits.u(16, "max_bitrate_layer_representation", 700).u(16, "max_bitrate_calc_window", 100);
    bits.u(2, "constant_frm_rate_idc", 1).u(16, "avg_frm_rate", 6400);
    bits.ue("frm_width_in_mbs_minus1", 21).ue("frm_height_in_mbs_minus1", 17);
    bits.ue("base_region_layer_id", 3).u(1, "dynamic_rect_flag", 0);
    bits.u(16, "horizontal_offset", 1).u(16, "vertical_offset", 2);
    bits.u(16, "region_width", 320).u(16, "region_height", 240);
    bits.ue("roi_id", 63).u(1, "iroi_grid_flag", 0).ue("num_rois_minus1", 1);
    bits.ue("first_mb_in_roi", 7).ue("roi_width_in_mbs_minus1", 8).ue("roi_height_in_mbs_minus1", 9);
    bits.ue("first_mb_in_roi", 10).ue("roi_width_in_mbs_minus1", 11).ue("roi_height_in_mbs_minus1", 12);
    bits.ue("num_directly_dependent_layers", 2);
    bits.ue("directly_dependent_layer_id_delta_minus1", 4);
    bits.ue("directly_dependent_layer_id_delta_minus1", 5);
    bits.ue("num_seq_parameter_sets", 1).ue("seq_parameter_set_id_delta", 3);
    bits.ue("num_subset_seq_parameter_sets", 1).ue("subset_seq_parameter_set_id_delta", 6);
    bits.ue("num_pic_parameter_sets_minus1", 1).ue("pic_parameter_set_id_delta", 8);
    bits.ue("pic_parameter_set_id_delta", 9).u(1, "motion_vectors_over_pic_boundaries_flag", 1);
    bits.ue("max_bytes_per_pic_denom", 2).ue("max_bits_per_mb_denom", 1);
    bits.ue("log2_max_mv_length_horizontal", 11).ue("log2_max_mv_length_vertical", 10);
    bits.ue("max_num_reorder_frames", 3).ue("max_dec_frame_buffering", 4);
    bits.ue("conversion_type_idc", 2).u(1, "rewriting_info_flag", 0).u(1, "rewriting_info_flag", 1);
    bits.u(24, "rewriting_profile_level_idc", 0x4D401F).u(16, "rewriting_avg_bitrate", 21);
    bits.u(16, "rewriting_max_bitrate", 22);
    layerFlags(bits, 2047, "00000 00000 0");
    bits.u(1, "layer_conversion_flag", 0).u(1, "layer_output_flag", 0);
    bits.ue("layer_dependency_info_src_layer_id_delta", 13);
    bits.ue("parameter_sets_info_src_layer_id_delta", 14);
    bits.ue("pr_num_dIds_minus1", 0).u(3, "pr_dependency_id", 6).ue("pr_num_minus1", 0);
    bits.ue("pr_id", 31).u(24, "pr_profile_level_idc", 0x56000D).u(16, "pr_avg_bitrate", 90);
    bits.u(16, "pr_max_bitrate", 95);
    bits.u(8, "priority_id_setting_uri", 'x').u(8, "priority_id_setting_uri", 0);
    return bits;
}

void expectFullLayer(const ScalabilityLayer& layer) {
    EXPECT_EQ(layer.layer_id, 0U);
    EXPECT_EQ(layer.priority_id, 40U);
    EXPECT_EQ(layer.dependency_id, 2U);
    EXPECT_EQ(layer.quality_id, 9U);
    EXPECT_EQ(layer.temporal_id, 5U);
    EXPECT_TRUE(layer.exact_sample_value_match_flag);
    EXPECT_EQ(layer.layer_profile_level_idc, 0x53001EU);
    EXPECT_EQ(layer.avg_bitrate, 500U);
    EXPECT_EQ(layer.max_bitrate_calc_window, 100U);
    EXPECT_EQ(layer.avg_frm_rate, 6400U);
    EXPECT_EQ(layer.frm_width_in_mbs_minus1, 21U);
    EXPECT_EQ(layer.frm_height_in_mbs_minus1, 17U);
    EXPECT_EQ(layer.base_region_layer_id, 3U);
    EXPECT_EQ(layer.region_height, 240U);
    EXPECT_EQ(layer.roi_id, 63U);
    ASSERT_EQ(layer.num_directly_dependent_layers, 2U);
    EXPECT_EQ(layer.directly_dependent_layer_id_delta_minus1[1], 5U);
    ASSERT_EQ(layer.parameter_sets.num_pic_parameter_sets_minus1, 1U);
    EXPECT_EQ(layer.parameter_sets.seq_parameter_set_id_delta[0], 3U);
    EXPECT_EQ(layer.parameter_sets.subset_seq_parameter_set_id_delta[0], 6U);
    EXPECT_EQ(layer.parameter_sets.pic_parameter_set_id_delta[1], 9U);
    EXPECT_EQ(layer.bitstream_restriction.max_num_reorder_frames, 3U);
    EXPECT_EQ(layer.bitstream_restriction.max_dec_frame_buffering, 4U);
    EXPECT_EQ(layer.conversion_type_idc, 2U);
    EXPECT_FALSE(layer.rewriting_info_flag[0]);
    EXPECT_EQ(layer.rewriting_profile_level_idc[1], 0x4D401FU);
    EXPECT_EQ(layer.rewriting_max_bitrate[1], 22U);
    RegionsOfInterest regions(layer);
    RegionOfInterest region;
    ASSERT_TRUE(regions.next(region));
    ASSERT_TRUE(regions.next(region));
    EXPECT_EQ(region.first_mb_in_roi, 10U);
    EXPECT_EQ(region.roi_height_in_mbs_minus1, 12U);
    EXPECT_FALSE(regions.next(region));
}

TEST(SeiScalability, layersAndTheirParts) {
    const std::vector<uint8_t> unit = payloadUnit(twoLayers());
    const qv::Read<ScalabilityInfo> read = readUnit<ScalabilityInfo>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    ScalabilityLayers layers(read.record);
    ScalabilityLayer layer;
    ASSERT_TRUE(layers.next(layer));
    expectFullLayer(layer);
    // What the first layer has and the second one has not is 0.
    ASSERT_TRUE(layers.next(layer));
    EXPECT_EQ(layer.layer_id, 2047U);
    EXPECT_EQ(layer.avg_bitrate, 0U);
    EXPECT_EQ(layer.layer_dependency_info_src_layer_id_delta, 13U);
    EXPECT_EQ(layer.parameter_sets_info_src_layer_id_delta, 14U);
    EXPECT_EQ(layer.num_directly_dependent_layers, 0U);
    EXPECT_EQ(layer.parameter_sets.num_seq_parameter_sets, 0U);
    EXPECT_EQ(layer.parameter_sets.num_pic_parameter_sets_minus1, 0U);
    EXPECT_EQ(countOf<RegionOfInterest>(layer), 0U);
    EXPECT_FALSE(layers.next(layer));

    PriorityLayers priorities(read.record);
    PriorityLayer priority;
    ASSERT_TRUE(priorities.next(priority));
    EXPECT_EQ(priority.pr_dependency_id, 6U);
    EXPECT_EQ(priority.pr_id[0], 31U);
    EXPECT_EQ(priority.pr_profile_level_idc[0], 0x56000DU);
    EXPECT_EQ(priority.pr_max_bitrate[0], 95U);
    EXPECT_FALSE(priorities.next(priority));
    EXPECT_EQ(read.record.priority_id_setting_uri.count, 16U);
}

// A frame of 22 x 18 macroblocks has at most 396 regions; one of 2^32 - 1 times as many as any code can say.
TEST(SeiScalability, regionsWithinTheFrame) {
    ScalabilityLayer layer = {};
    layer.frm_width_in_mbs_minus1 = 21;
    layer.frm_height_in_mbs_minus1 = 17;
    EXPECT_EQ(mostRoisMinus1(layer), 395U);
    layer.frm_width_in_mbs_minus1 = layer.frm_height_in_mbs_minus1 = qv::kMostUe;
    EXPECT_EQ(mostRoisMinus1(layer), qv::kMostUe);
}

TEST(SeiScalability, aListOfARecordWithAFaultIsEmpty) {
    std::vector<uint8_t> unit = payloadUnit(twoLayers());
    unit.resize(40);
    unit.push_back(0x80);
    const qv::Read<ScalabilityInfo> read = readUnit<ScalabilityInfo>(unit, Codec::Avc);
    EXPECT_EQ(read.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_EQ(countOf<ScalabilityLayer>(read.record), 0U);
}

TEST(SeiScalability, layerDependencies) {
    BitWriter bits;
    bits.ue("num_layers_minus1", 1);
    bits.ue("layer_id", 3).u(1, "layer_dependency_info_present_flag", 1);
    bits.ue("num_directly_dependent_layers", 1).ue("directly_dependent_layer_id_delta_minus1", 2);
    bits.ue("layer_id", 4).u(1, "layer_dependency_info_present_flag", 0);
    bits.ue("layer_dependency_info_src_layer_id_delta_minus1", 5);
    const std::vector<uint8_t> unit = payloadUnit(bits);
    const qv::Read<LayerDependencyChange> read = readUnit<LayerDependencyChange>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok());
    LayerDependencies layers(read.record);
    LayerDependency layer;
    ASSERT_TRUE(layers.next(layer));
    EXPECT_EQ(layer.layer_id, 3U);
    ASSERT_EQ(layer.num_directly_dependent_layers, 1U);
    EXPECT_EQ(layer.directly_dependent_layer_id_delta_minus1[0], 2U);
    EXPECT_EQ(layer.layer_dependency_info_src_layer_id_delta_minus1, 0U);
    ASSERT_TRUE(layers.next(layer));
    EXPECT_EQ(layer.layer_id, 4U);
    EXPECT_EQ(layer.num_directly_dependent_layers, 0U);
    EXPECT_EQ(layer.layer_dependency_info_src_layer_id_delta_minus1, 5U);
    EXPECT_FALSE(layers.next(layer));
}

// num_dIds_minus1 1 (0), dependency_id 101, num_qIds_minus1 1 (0), quality_id 1001,
// num_redundant_pics_minus1 010 (1); redundant_pic_cnt_minus1 1 (0), pic_match_flag 1;
// redundant_pic_cnt_minus1 011 (2), pic_match_flag 0, the four flags 0101:
// 1101 1100 1010 1101 1001 01, and 10 to align.
TEST(SeiScalability, redundantPictures) {
    const std::vector<uint8_t> unit = {0xDC, 0xAD, 0x96, 0x80};
    const qv::Read<RedundantPicProperty> read = readUnit<RedundantPicProperty>(unit, Codec::Avc);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    RedundantLayers layers(read.record);
    RedundantLayer layer;
    ASSERT_TRUE(layers.next(layer));
    EXPECT_EQ(layer.dependency_id, 5U);
    EXPECT_EQ(layer.num_qIds_minus1, 0U);
    const RedundantQuality& quality = layer.qualities[0];
    EXPECT_EQ(quality.quality_id, 9U);
    ASSERT_EQ(quality.num_redundant_pics_minus1, 1U);
    EXPECT_TRUE(quality.pics[0].pic_match_flag);
    EXPECT_FALSE(quality.pics[0].motion_match_flag);
    EXPECT_EQ(quality.pics[1].redundant_pic_cnt_minus1, 2U);
    EXPECT_FALSE(quality.pics[1].mb_type_match_flag);
    EXPECT_TRUE(quality.pics[1].motion_match_flag);
    EXPECT_FALSE(quality.pics[1].residual_match_flag);
    EXPECT_TRUE(quality.pics[1].intra_samples_match_flag);
    EXPECT_FALSE(layers.next(layer));
}

}  // namespace
