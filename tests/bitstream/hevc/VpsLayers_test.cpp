// Layers, layer sets and the lists of the H.265 video parameter set.
#include "bitstream/hevc/VpsLayers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "../support/StructureChecks.h"
#include "Units.h"
#include "bitstream/hevc/VpsSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::hevc;
using testing::ElementsAre;

std::vector<uint16_t> layersOfSet(const LayerSets& sets, uint32_t i) {
    uint16_t ids[kMostLayers];
    const uint32_t count = layerIdListOf(sets, i, ids);
    return {ids, ids + count};
}

// A unit with its record, which borrows from it.
struct ReadVps {
    explicit ReadVps(const BitWriter& bits) : unit(hevcUnit(32, bits)) {
        const auto read = std::make_unique<qv::Read<Vps>>(readVps(bytesOf(unit)));
        EXPECT_TRUE(read->ok()) << qv::textOf(read->fault);
        EXPECT_EQ(read->trailing.bits, 0U);
        *record = read->record;
        std::vector<uint8_t> written;
        EXPECT_TRUE(writeVps(*record, written).ok());
        EXPECT_EQ(written, unit);
    }
    std::vector<uint8_t> unit;
    std::unique_ptr<Vps> record = std::make_unique<Vps>();
};

BitWriter head(uint32_t layers, uint32_t subLayers, bool baseIsInternal = true) {
    BitWriter bits;
    bits.u(4, "vps_video_parameter_set_id", 0).u(1, "vps_base_layer_internal_flag", baseIsInternal ? 1 : 0);
    bits.u(1, "vps_base_layer_available_flag", 1).u(6, "vps_max_layers_minus1", layers - 1);
    bits.u(3, "vps_max_sub_layers_minus1", subLayers - 1).u(1, "vps_temporal_id_nesting_flag", 1);
    bits.u(16, "vps_reserved_0xffff_16bits", 0xFFFF);
    mainProfileTierLevel(bits);
    if (subLayers > 1) {
        bits.u(16, "sub-layers without profile and level", 0);
    }
    bits.u(1, "vps_sub_layer_ordering_info_present_flag", 0).ue("", 4).ue("", 2).ue("", 0);
    return bits;
}

void extensionBegins(BitWriter& bits) {
    bits.u(1, "vps_timing_info_present_flag", 0).u(1, "vps_extension_flag", 1);
    while (bits.bitCount() % 8 != 0) {
        bits.u(1, "vps_extension_alignment_bit_equal_to_one", 1);
    }
}

void repFormat(BitWriter& bits) {
    bits.ue("vps_num_rep_formats_minus1", 0).u(16, "width", 640).u(16, "height", 480).u(1, "present", 1);
    bits.u(2, "chroma", 1).u(4, "luma", 0).u(4, "chroma", 0).u(1, "conformance_window_vps_flag", 0);
}

void noProfiles(BitWriter& bits) {
    bits.ue("vps_num_profile_tier_level_minus1", 0);
}

// --- Layers ---

TEST(HevcVpsLayers, withoutExtension) {
    BitWriter bits = head(1, 1);
    bits.u(6, "vps_max_layer_id", 3).ue("vps_num_layer_sets_minus1", 1).bits("set 1", "1001");
    bits.u(1, "vps_timing_info_present_flag", 0).u(1, "vps_extension_flag", 0);
    const ReadVps vps(bits);
    const VpsLayers layers = layersOf(*vps.record);
    EXPECT_EQ(layers.count, 1U);
    EXPECT_EQ(layers.NumViews, 1U);
    EXPECT_EQ(layers.NumIndependentLayers, 1U);
    EXPECT_EQ(layers.LayerIdxInVps[0], 0);
    EXPECT_EQ(layers.LayerIdxInVps[3], kMostLayers);
    EXPECT_EQ(viewIdOf(*vps.record, layers, 0), 0U);

    const LayerSets sets = layerSetsOf(*vps.record);
    EXPECT_EQ(sets.NumLayerSets, 2U);
    EXPECT_THAT(layersOfSet(sets, 0), ElementsAre(0));
    EXPECT_THAT(layersOfSet(sets, 1), ElementsAre(0, 3));
    EXPECT_THAT(layersOfSet(sets, 2), ElementsAre());
    EXPECT_EQ(maxSubLayersInLayerSetMinus1(*vps.record, sets, 1), 0U);

    OutputLayerSetReader reader(*vps.record);
    EXPECT_EQ(reader.count(), 1U);
    auto set = std::make_unique<OutputLayerSet>();
    ASSERT_TRUE(reader.next(*set));
    EXPECT_EQ(set->output_layer_flag, 1U);
    EXPECT_EQ(set->NumLayersInIdList, 1U);
    EXPECT_FALSE(reader.next(*set));
}

// Six layers in three tree partitions: 0 and 5; 1, 7 and 9; 2. Layer 9 depends on 2 as well.
//   layer   0  1  2  3  4  5
//   id      0  1  2  5  7  9
//   refers  -  -  -  0  1  2, 4
void sixLayers(BitWriter& bits, bool baseIsInternal) {
    bits.u(6, "vps_max_layer_id", 9).ue("vps_num_layer_sets_minus1", 2);
    bits.bits("layer_id_included_flag[1][0..9]: 0, 5", "1000010000");
    bits.bits("layer_id_included_flag[2][0..9]: 0, 1, 2, 5, 7, 9", "1110010101");
    extensionBegins(bits);
    if (baseIsInternal) {
        bits.u(8, "general_level_idc", 90).u(16, "sub-layers", 0);
    }
    bits.u(1, "splitting_flag", 0);
    bits.bits("scalability_mask_flag: views, dependency, auxiliary", "0111 0000 0000 0000");
    bits.u(3, "dimension_id_len_minus1", 2).u(3, "", 1).u(3, "", 7);
    bits.u(1, "vps_nuh_layer_id_present_flag", 1);
    const uint32_t ids[] = {1, 2, 5, 7, 9};
    const uint32_t views[] = {4, 0, 0, 4, 4};
    const uint32_t dependencies[] = {0, 0, 1, 2, 3};
    const uint32_t auxiliary[] = {0, 1, 0, 0, 200};
    for (uint32_t i = 0; i < 5; ++i) {
        bits.u(6, "layer_id_in_nuh", ids[i]).u(3, "dimension_id", views[i]);
        bits.u(2, "dimension_id", dependencies[i]).u(8, "dimension_id", auxiliary[i]);
    }
    bits.u(4, "view_id_len", 7).u(7, "view_id_val", 11).u(7, "view_id_val", 99);
    bits.bits("direct_dependency_flag[1..5]", "0 00 100 0100 00101");
    bits.ue("num_add_layer_sets", 2);
    // Set 3 is 1, 7, 2 and set 4 is 1, 7, 9, 2.
    bits.u(2, "highest_layer_idx_plus1[0][1]", 2).u(1, "highest_layer_idx_plus1[0][2]", 1);
    bits.u(2, "highest_layer_idx_plus1[1][1]", 3).u(1, "highest_layer_idx_plus1[1][2]", 1);
    bits.u(1, "vps_sub_layers_max_minus1_present_flag", 1);
    for (const uint32_t most : {0U, 2U, 1U, 0U, 1U, 2U}) {
        bits.u(3, "sub_layers_vps_max_minus1", most);
    }
    bits.u(1, "max_tid_ref_present_flag", 1);
    bits.u(3, "max_tid_il_ref_pics_plus1[0][3]", 1).u(3, "[1][4]", 2).u(3, "[2][5]", 3).u(3, "[4][5]", 4);
    bits.u(1, "default_ref_layers_active_flag", 1);
    bits.ue("vps_num_profile_tier_level_minus1", 2);
    for (uint32_t i = baseIsInternal ? 2 : 1; i <= 2; ++i) {
        bits.u(1, "vps_profile_present_flag", i == 2 ? 1 : 0);
        if (i == 2) {
            bits.u(2, "", 0).u(1, "", 1).u(5, "general_profile_idc", 7).u(32, "compatibility", 1 << 24);
            bits.u(4, "", 0)
                .bits("constraints", "111110001")
                .u(34, "", 0)
                .u(1, "general_reserved_zero_bit", 0);
        }
        bits.u(8, "general_level_idc", 120 + i).u(16, "sub-layers", 0);
    }
}

// The output layer sets: all layers of sets 1 and 2, one layer of sets 3 and 4, and set 4 again.
void fiveOutputLayerSets(BitWriter& bits) {
    bits.ue("num_add_olss", 1).u(2, "default_output_layer_idc", 0);
    bits.u(2, "profile_tier_level_idx[1][0]", 1).u(2, "profile_tier_level_idx[1][1]", 2);
    for (uint32_t j = 0; j < 6; ++j) {
        bits.u(2, "profile_tier_level_idx[2][j]", j % 3);
    }
    bits.bits("output_layer_flag[3]: 7", "010").u(2, "profile_tier_level_idx[3][0]", 1).u(2, "[3][1]", 2);
    bits.u(1, "alt_output_layer_flag[3]", 1);
    bits.bits("output_layer_flag[4]: 9", "0010").u(2, "profile_tier_level_idx[4][0]", 2).u(2, "[4][1]", 1);
    bits.u(2, "profile_tier_level_idx[4][2]", 2).u(1, "alt_output_layer_flag[4]", 0);
    bits.u(2, "layer_set_idx_for_ols_minus1[5]", 3).bits("output_layer_flag[5]: 2", "0001");
    bits.u(2, "profile_tier_level_idx[5][3]", 2);
}

void dpbSizes(BitWriter& bits, uint32_t layersOfSet1, uint32_t layersOfSet2) {
    const auto sizes = [&bits](uint32_t layers, uint32_t first) {
        for (uint32_t k = 0; k < layers; ++k) {
            bits.ue("max_vps_dec_pic_buffering_minus1", first + k);
        }
        bits.ue("max_vps_num_reorder_pics", first + 10).ue("max_vps_latency_increase_plus1", first + 20);
    };
    bits.u(1, "sub_layer_flag_info_present_flag[1]", 0);
    sizes(layersOfSet1, 100);
    bits.u(1, "sub_layer_flag_info_present_flag[2]", 1);
    sizes(layersOfSet2, 200);
    bits.u(1, "sub_layer_dpb_info_present_flag[2][1]", 0).u(1, "sub_layer_dpb_info_present_flag[2][2]", 1);
    sizes(layersOfSet2, 300);
    bits.u(1, "sub_layer_flag_info_present_flag[3]", 0);
    sizes(2, 400);
    bits.u(1, "sub_layer_flag_info_present_flag[4]", 0);
    sizes(3, 500);
    bits.u(1, "sub_layer_flag_info_present_flag[5]", 0);
    sizes(1, 600);
}

void afterDpbSize(BitWriter& bits, bool hasVui) {
    bits.ue("direct_dep_type_len_minus2", 1).u(1, "direct_dependency_all_layers_flag", 0);
    bits.u(3, "direct_dependency_type[3][0]", 4).u(3, "[4][1]", 5).u(3, "[5][2]", 6).u(3, "[5][4]", 7);
    bits.ue("vps_non_vui_extension_length", 0).u(1, "vps_vui_present_flag", hasVui ? 1 : 0);
}

BitWriter wholeVps(bool hasVui = false) {
    BitWriter bits = head(6, 3);
    sixLayers(bits, true);
    fiveOutputLayerSets(bits);
    repFormat(bits);
    bits.bits("max_one_active_ref_layer_flag, vps_poc_lsb_aligned_flag", "01");
    bits.bits("poc_lsb_not_present_flag[1], [2]", "01");
    dpbSizes(bits, 2, 6);
    afterDpbSize(bits, hasVui);
    return bits;
}

TEST(HevcVpsLayers, viewsDependenciesAndPartitions) {
    BitWriter bits = wholeVps();
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    const VpsLayers layers = layersOf(*vps.record);
    EXPECT_EQ(layers.count, 6U);
    EXPECT_EQ(layers.LayerIdxInVps[7], 4);
    EXPECT_EQ(layers.LayerIdxInVps[6], kMostLayers);
    EXPECT_THAT(std::vector<uint16_t>(layers.ViewOrderIdx, layers.ViewOrderIdx + 6),
                ElementsAre(0, 4, 0, 0, 4, 4));
    EXPECT_THAT(std::vector<uint16_t>(layers.DependencyId, layers.DependencyId + 6),
                ElementsAre(0, 0, 0, 1, 2, 3));
    EXPECT_THAT(std::vector<uint16_t>(layers.AuxId, layers.AuxId + 6), ElementsAre(0, 0, 1, 0, 0, 200));
    EXPECT_EQ(layers.DepthLayerFlag[4], 0);
    EXPECT_EQ(layers.NumViews, 2U);
    EXPECT_EQ(layers.ViewOIdxList[1], 4);
    EXPECT_EQ(layers.directReferences[5], 0b10100U);
    EXPECT_EQ(layers.dependencies[5], 0b10110U);
    EXPECT_EQ(layers.dependencyIds[9], 0b10000110U);
    EXPECT_EQ(layers.NumIndependentLayers, 3U);
    EXPECT_EQ(layers.treePartitions[0], 0b100001U);
    EXPECT_EQ(layers.treePartitions[1], 0b1010000010U);
    EXPECT_EQ(layers.treePartitions[2], 0b100U);
    EXPECT_EQ(vps.record->extension.poc_lsb_not_present_flag, 0b100U);
    // ViewOrderIdx 4 has no view_id_val: there are two.
    EXPECT_EQ(viewIdOf(*vps.record, layers, 0), 11U);
    EXPECT_EQ(viewIdOf(*vps.record, layers, 1), 0U);
    EXPECT_EQ(viewIdOf(*vps.record, layers, 6), 0U);
}

TEST(HevcVpsLayers, layerSets) {
    BitWriter bits = wholeVps();
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    const LayerSets sets = layerSetsOf(*vps.record);
    EXPECT_EQ(sets.signalled, 3U);
    EXPECT_EQ(sets.NumLayerSets, 5U);
    EXPECT_THAT(layersOfSet(sets, 0), ElementsAre(0));
    EXPECT_THAT(layersOfSet(sets, 1), ElementsAre(0, 5));
    EXPECT_THAT(layersOfSet(sets, 2), ElementsAre(0, 1, 2, 5, 7, 9));
    EXPECT_THAT(layersOfSet(sets, 3), ElementsAre(1, 7, 2));
    EXPECT_THAT(layersOfSet(sets, 4), ElementsAre(1, 7, 9, 2));
    const uint32_t subLayers[] = {0, 0, 2, 2, 2, 0};
    for (uint32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(maxSubLayersInLayerSetMinus1(*vps.record, sets, i), subLayers[i]) << i;
    }
}

TEST(HevcVpsLayers, outputLayerSets) {
    BitWriter bits = wholeVps();
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    OutputLayerSetReader reader(*vps.record);
    ASSERT_EQ(reader.count(), 6U);
    struct Expected {
        uint32_t layerSet;
        uint64_t output;
        uint64_t necessary;
        std::vector<uint16_t> profiles;
        bool alternative;
        uint32_t subLayers;
    };
    const Expected expected[] = {
        {0, 0b1, 0b1, {1}, false, 0},
        {1, 0b11, 0b11, {1, 2}, false, 0},
        {2, 0b111111, 0b111111, {0, 1, 2, 0, 1, 2}, false, 2},
        {3, 0b010, 0b011, {1, 2, 0}, true, 2},
        // Layer 9 depends on layer 2, which is after it in the list.
        {4, 0b0100, 0b0111, {2, 1, 2, 0}, false, 2},
        {4, 0b1000, 0b1000, {0, 0, 0, 2}, false, 2},
    };
    auto set = std::make_unique<OutputLayerSet>();
    for (const Expected& one : expected) {
        SCOPED_TRACE(one.layerSet);
        ASSERT_TRUE(reader.next(*set));
        EXPECT_EQ(set->OlsIdxToLsIdx, one.layerSet);
        EXPECT_EQ(set->output_layer_flag, one.output);
        EXPECT_EQ(set->NecessaryLayerFlag, one.necessary);
        ASSERT_EQ(set->NumLayersInIdList, one.profiles.size());
        for (uint32_t j = 0; j < set->NumLayersInIdList; ++j) {
            EXPECT_EQ(set->profile_tier_level_idx[j], one.profiles[j]) << j;
        }
        EXPECT_EQ(set->alt_output_layer_flag, one.alternative);
        EXPECT_EQ(set->MaxSubLayersInLayerSetMinus1, one.subLayers);
    }
    EXPECT_FALSE(reader.next(*set));
}

TEST(HevcVpsLayers, sizesOfBuffers) {
    BitWriter bits = wholeVps();
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    OutputLayerSetReader reader(*vps.record);
    std::vector<OutputLayerSet> sets(6);
    for (OutputLayerSet& set : sets) {
        ASSERT_TRUE(reader.next(set));
    }
    EXPECT_EQ(sets[1].max_vps_dec_pic_buffering_minus1[1][0], 101U);
    EXPECT_EQ(sets[1].max_vps_num_reorder_pics[0], 110U);
    EXPECT_EQ(sets[1].max_vps_latency_increase_plus1[0], 120U);
    EXPECT_TRUE(sets[2].sub_layer_flag_info_present_flag);
    EXPECT_EQ(sets[2].sub_layer_dpb_info_present_flag, 0b101U);
    EXPECT_EQ(sets[2].max_vps_dec_pic_buffering_minus1[5][0], 205U);
    // Sub-layer 1 has the values of sub-layer 0.
    EXPECT_EQ(sets[2].max_vps_dec_pic_buffering_minus1[5][1], 205U);
    EXPECT_EQ(sets[2].max_vps_num_reorder_pics[1], 210U);
    EXPECT_EQ(sets[2].max_vps_latency_increase_plus1[1], 220U);
    EXPECT_EQ(sets[2].max_vps_dec_pic_buffering_minus1[5][2], 305U);
    EXPECT_EQ(sets[3].max_vps_dec_pic_buffering_minus1[1][2], 401U);
    EXPECT_EQ(sets[4].max_vps_dec_pic_buffering_minus1[2][0], 502U);
    EXPECT_EQ(sets[5].max_vps_dec_pic_buffering_minus1[3][0], 600U);
    EXPECT_EQ(sets[5].max_vps_dec_pic_buffering_minus1[0][0], 0U);
    EXPECT_EQ(sets[0].max_vps_num_reorder_pics[0], 0U);
}

// The base layer comes from outside: it has no buffers, no dependency types, and no profile_tier_level() at
// the top of the extension.
TEST(HevcVpsLayers, baseLayerFromOutside) {
    BitWriter bits = head(6, 3, false);
    sixLayers(bits, false);
    fiveOutputLayerSets(bits);
    repFormat(bits);
    bits.bits("max_one_active_ref_layer_flag, vps_poc_lsb_aligned_flag", "01");
    bits.bits("poc_lsb_not_present_flag[1], [2]", "01");
    dpbSizes(bits, 1, 5);
    bits.ue("direct_dep_type_len_minus2", 1).u(1, "direct_dependency_all_layers_flag", 0);
    bits.u(3, "direct_dependency_type[4][1]", 5).u(3, "[5][2]", 6).u(3, "[5][4]", 7);
    bits.ue("vps_non_vui_extension_length", 0).u(1, "vps_vui_present_flag", 0);
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    const VpsExtension& ext = vps.record->extension;
    EXPECT_EQ(ext.profile_tier_level[1].general_level_idc, 121U);
    EXPECT_EQ(ext.profile_tier_level[1].general.profile_idc, 1U);
    EXPECT_EQ(ext.profile_tier_level[2].general_level_idc, 122U);
    EXPECT_EQ(ext.profile_tier_level[2].general.profile_idc, 7U);
    EXPECT_EQ(ext.vps_profile_present_flag, 0b100U);
    OutputLayerSetReader reader(*vps.record);
    std::vector<OutputLayerSet> sets(6);
    for (OutputLayerSet& set : sets) {
        ASSERT_TRUE(reader.next(set));
    }
    EXPECT_EQ(sets[0].profile_tier_level_idx[0], 0);
    EXPECT_EQ(sets[1].max_vps_dec_pic_buffering_minus1[0][0], 0U);
    EXPECT_EQ(sets[1].max_vps_dec_pic_buffering_minus1[1][0], 100U);
    EXPECT_EQ(sets[2].max_vps_dec_pic_buffering_minus1[5][0], 204U);
    EXPECT_EQ(layerDependencyOf(*vps.record, 3, 0).direct_dependency_type, 0U);
    EXPECT_EQ(layerDependencyOf(*vps.record, 5, 4).direct_dependency_type, 7U);
}

TEST(HevcVpsLayers, highestLayerIsTheOutput) {
    BitWriter bits = head(2, 1);
    bits.u(6, "vps_max_layer_id", 1).ue("vps_num_layer_sets_minus1", 1).bits("set 1", "11");
    extensionBegins(bits);
    bits.u(8, "general_level_idc", 90).u(1, "splitting_flag", 0).u(16, "scalability_mask_flag", 1 << 13);
    bits.u(3, "dimension_id_len_minus1", 0).u(1, "vps_nuh_layer_id_present_flag", 0).u(1, "dimension_id", 1);
    bits.u(4, "view_id_len", 0)
        .u(1, "direct_dependency_flag[1][0]", 1)
        .bits("sub layers, tid, active", "000");
    noProfiles(bits);
    bits.ue("num_add_olss", 1).u(2, "default_output_layer_idc", 1).u(1, "alt_output_layer_flag[1]", 1);
    // NumLayerSets is 2: the added set can only refer to set 1, and does not say so.
    bits.bits("output_layer_flag[2]", "10");
    repFormat(bits);
    bits.bits("max_one_active_ref_layer_flag, vps_poc_lsb_aligned_flag", "00");
    bits.u(1, "", 0).ue("", 1).ue("", 2).ue("", 0).ue("", 0).u(1, "", 0).ue("", 3).ue("", 0).ue("", 0);
    bits.ue("direct_dep_type_len_minus2", 0).u(1, "direct_dependency_all_layers_flag", 1).u(2, "type", 2);
    bits.ue("vps_non_vui_extension_length", 0).u(1, "vps_vui_present_flag", 0);
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    OutputLayerSetReader reader(*vps.record);
    std::vector<OutputLayerSet> sets(3);
    for (OutputLayerSet& set : sets) {
        ASSERT_TRUE(reader.next(set));
    }
    EXPECT_EQ(sets[1].output_layer_flag, 0b10U);
    EXPECT_EQ(sets[1].NecessaryLayerFlag, 0b11U);
    EXPECT_TRUE(sets[1].alt_output_layer_flag);
    EXPECT_EQ(sets[2].OlsIdxToLsIdx, 1U);
    EXPECT_EQ(sets[2].output_layer_flag, 0b01U);
    EXPECT_EQ(sets[2].NecessaryLayerFlag, 0b01U);
    const LayerDependency dependency = layerDependencyOf(*vps.record, 1, 0);
    EXPECT_EQ(dependency.direct_dependency_type, 2U);
    EXPECT_EQ(dependency.max_tid_il_ref_pics_plus1, 7U);
}

// Dimensions in the bits of nuh_layer_id: two for the view, three for dependency, the last for depth.
TEST(HevcVpsLayers, dimensionsInTheLayerIdentifier) {
    BitWriter bits = head(3, 1);
    bits.u(6, "vps_max_layer_id", 53).ue("vps_num_layer_sets_minus1", 0);
    extensionBegins(bits);
    bits.u(8, "general_level_idc", 90).u(1, "splitting_flag", 1);
    bits.bits("scalability_mask_flag: depth, views, dependency", "1110 0000 0000 0000");
    bits.u(3, "dimension_id_len_minus1[0]", 1).u(3, "dimension_id_len_minus1[1]", 2);
    bits.u(1, "vps_nuh_layer_id_present_flag", 1).u(6, "layer_id_in_nuh[1]", 0b011011);
    bits.u(6, "layer_id_in_nuh[2]", 0b110101).u(4, "view_id_len", 0).bits("direct_dependency_flag", "000");
    bits.ue("num_add_layer_sets", 0).bits("sub layers, tid, active", "000");
    noProfiles(bits);
    repFormat(bits);
    bits.bits("max_one_active_ref_layer_flag, vps_poc_lsb_aligned_flag", "00");
    bits.bits("poc_lsb_not_present_flag", "00");
    bits.ue("direct_dep_type_len_minus2", 0).u(1, "direct_dependency_all_layers_flag", 0);
    bits.ue("vps_non_vui_extension_length", 0).u(1, "vps_vui_present_flag", 0);
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    const VpsLayers layers = layersOf(*vps.record);
    EXPECT_EQ(vps.record->extension.dimension_id_len_minus1[2], 0U);
    EXPECT_EQ(layers.DepthLayerFlag[1], 0b11);
    EXPECT_EQ(layers.ViewOrderIdx[1], 0b110);
    EXPECT_EQ(layers.DependencyId[1], 0);
    EXPECT_EQ(layers.DepthLayerFlag[2], 0b01);
    EXPECT_EQ(layers.ViewOrderIdx[2], 0b101);
    EXPECT_EQ(layers.DependencyId[2], 1);
    EXPECT_EQ(layers.NumViews, 3U);
    // Without view_id_val a view has the identifier 0.
    EXPECT_EQ(viewIdOf(*vps.record, layers, 1), 0U);
    CameraParameters cp;
    EXPECT_FALSE(cameraParametersOf(*vps.record, 1, cp));
}

// --- Layers that refer to others ---

TEST(HevcVpsLayers, dependencies) {
    BitWriter bits = wholeVps();
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    struct Expected {
        uint32_t i;
        uint32_t j;
        uint32_t type;
        uint32_t tid;
    };
    const Expected expected[] = {{3, 0, 4, 1}, {4, 1, 5, 2}, {5, 2, 6, 3}, {5, 4, 7, 4},
                                 {5, 3, 0, 0}, {0, 3, 0, 0}, {6, 0, 0, 0}, {70, 64, 0, 0}};
    for (const Expected& one : expected) {
        const LayerDependency dependency = layerDependencyOf(*vps.record, one.i, one.j);
        EXPECT_EQ(dependency.direct_dependency_type, one.type) << one.i << " " << one.j;
        EXPECT_EQ(dependency.max_tid_il_ref_pics_plus1, one.tid) << one.i << " " << one.j;
    }
}

// --- VUI ---

void vuiBegins(BitWriter& bits) {
    while (bits.bitCount() % 8 != 0) {
        bits.u(1, "vps_vui_alignment_bit_equal_to_one", 1);
    }
    bits.u(1, "cross_layer_pic_type_aligned_flag", 1).u(1, "all_layers_idr_aligned_flag", 1);
}

void tilesAndRestrictions(BitWriter& bits) {
    bits.u(1, "tiles_not_in_use_flag", 0);
    // Layers 0, 3, 4 and 5 use tiles.
    bits.bits("tiles_in_use_flag, loop_filter_not_across_tiles_flag", "11 0 0 10 10 11");
    bits.bits("tile_boundaries_aligned_flag[3][0], [5][1]", "1 1");
    bits.u(1, "wpp_not_in_use_flag", 0).bits("wpp_in_use_flag", "010011");
    bits.bits("single_layer_for_non_irap_flag, higher_layer_irap_skip_flag", "10");
    bits.u(1, "ilp_restricted_ref_layers_flag", 1);
    bits.ue("min_spatial_segment_offset_plus1[3][0]", 0);
    bits.ue("min_spatial_segment_offset_plus1[4][0]", 5).u(1, "ctu_based_offset_enabled_flag", 0);
    bits.ue("min_spatial_segment_offset_plus1[5][0]", 6).u(1, "ctu_based_offset_enabled_flag", 1);
    bits.ue("min_horizontal_ctu_offset_plus1[5][0]", 7);
    bits.ue("min_spatial_segment_offset_plus1[5][1]", 8).u(1, "ctu_based_offset_enabled_flag", 0);
}

TEST(HevcVpsLayers, vui) {
    BitWriter bits = wholeVps(true);
    vuiBegins(bits);
    bits.bits("bit_rate_present_vps_flag, pic_rate_present_vps_flag", "11");
    // One entry for sets 0 and 1, three for the others. Set 2 has rates in its second sub-layer.
    bits.bits("sets 0 and 1", "00 00").bits("set 2, sub-layer 0", "00");
    bits.bits("set 2, sub-layer 1", "11").u(16, "avg_bit_rate", 1000).u(16, "max_bit_rate", 2000);
    bits.u(2, "constant_pic_rate_idc", 2).u(16, "avg_pic_rate", 6400);
    bits.bits("set 2, sub-layer 2", "01").u(2, "constant_pic_rate_idc", 1).u(16, "avg_pic_rate", 12800);
    bits.bits("sets 3 and 4", "000000 000000");
    bits.u(1, "video_signal_info_idx_present_flag", 1).u(4, "vps_num_video_signal_info_minus1", 1);
    for (uint32_t i = 0; i < 2; ++i) {
        bits.u(3, "video_vps_format", i).u(1, "video_full_range_vps_flag", i).u(8, "colour_primaries_vps", 9);
        bits.u(8, "transfer_characteristics_vps", 16 + i).u(8, "matrix_coeffs_vps", 9);
    }
    for (const uint32_t index : {0U, 1U, 0U, 1U, 1U, 0U}) {
        bits.u(4, "vps_video_signal_info_idx", index);
    }
    tilesAndRestrictions(bits);
    bits.u(1, "vps_vui_bsp_hrd_present_flag", 0);
    bits.bits("base_layer_parameter_set_compatibility_flag[1], [2]", "01");
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    const VpsExtension& ext = vps.record->extension;
    EXPECT_TRUE(ext.vui.cross_layer_irap_aligned_flag);
    EXPECT_TRUE(ext.vui.all_layers_idr_aligned_flag);
    EXPECT_EQ(ext.vui.numVideoSignalInfo, 2U);
    EXPECT_EQ(ext.video_signal_info[1].transfer_characteristics_vps, 17U);
    EXPECT_TRUE(ext.video_signal_info[1].video_full_range_vps_flag);
    EXPECT_EQ(ext.vps_video_signal_info_idx[4], 1);
    EXPECT_EQ(ext.vui.tiles_in_use_flag, 0b111001U);
    EXPECT_EQ(ext.vui.loop_filter_not_across_tiles_flag, 0b100001U);
    EXPECT_EQ(ext.tile_boundaries_aligned_flag[3], 0b1U);
    EXPECT_EQ(ext.tile_boundaries_aligned_flag[4], 0U);
    EXPECT_EQ(ext.tile_boundaries_aligned_flag[5], 0b10U);
    EXPECT_EQ(ext.vui.wpp_in_use_flag, 0b110010U);
    EXPECT_TRUE(ext.vui.single_layer_for_non_irap_flag);
    EXPECT_EQ(ext.vui.base_layer_parameter_set_compatibility_flag, 0b100U);

    const LayerDependency dependency = layerDependencyOf(*vps.record, 5, 2);
    EXPECT_EQ(dependency.min_spatial_segment_offset_plus1, 6U);
    EXPECT_TRUE(dependency.ctu_based_offset_enabled_flag);
    EXPECT_EQ(dependency.min_horizontal_ctu_offset_plus1, 7U);
    EXPECT_EQ(layerDependencyOf(*vps.record, 4, 1).min_spatial_segment_offset_plus1, 5U);
    EXPECT_EQ(layerDependencyOf(*vps.record, 5, 4).min_spatial_segment_offset_plus1, 8U);
    EXPECT_EQ(layerDependencyOf(*vps.record, 3, 0).min_spatial_segment_offset_plus1, 0U);

    LayerSetRateReader reader(*vps.record);
    LayerSetRates rates;
    for (const uint32_t subLayers : {1U, 1U, 3U, 3U, 3U}) {
        ASSERT_TRUE(reader.next(rates));
        EXPECT_EQ(rates.subLayers, subLayers);
        if (rates.layerSetIdx == 2) {
            EXPECT_FALSE(rates.bit_rate_present_flag[0]);
            EXPECT_TRUE(rates.bit_rate_present_flag[1]);
            EXPECT_EQ(rates.avg_bit_rate[1], 1000);
            EXPECT_EQ(rates.max_bit_rate[1], 2000);
            EXPECT_EQ(rates.constant_pic_rate_idc[1], 2);
            EXPECT_EQ(rates.avg_pic_rate[1], 6400);
            EXPECT_EQ(rates.avg_pic_rate[2], 12800);
            EXPECT_EQ(rates.avg_bit_rate[2], 0);
        }
    }
    EXPECT_FALSE(reader.next(rates));
}

// Bit rates without picture rates, and the other way round.
TEST(HevcVpsLayers, ratesOfOneKind) {
    for (const bool bitRates : {true, false}) {
        BitWriter bits = wholeVps(true);
        vuiBegins(bits);
        bits.bits("bit_rate_present_vps_flag, pic_rate_present_vps_flag", bitRates ? "10" : "01");
        bits.u(1, "set 0", 1);
        if (bitRates) {
            bits.u(16, "avg_bit_rate", 5).u(16, "max_bit_rate", 6);
        } else {
            bits.u(2, "constant_pic_rate_idc", 3).u(16, "avg_pic_rate", 7);
        }
        bits.u(10, "the other sets", 0).u(1, "video_signal_info_idx_present_flag", 1);
        bits.u(4, "vps_num_video_signal_info_minus1", 0).u(28, "video_signal_info", 0);
        bits.bits("tiles_not_in_use_flag, wpp_not_in_use_flag", "11").bits("irap, ilp, bsp", "0000");
        bits.bits("base_layer_parameter_set_compatibility_flag", "00").u(1, "vps_extension2_flag", 0);
        const ReadVps vps(bits);
        EXPECT_EQ(vps.record->extension.vps_video_signal_info_idx[5], 0);
        LayerSetRateReader reader(*vps.record);
        LayerSetRates rates;
        ASSERT_TRUE(reader.next(rates));
        EXPECT_EQ(rates.bit_rate_present_flag[0], bitRates);
        EXPECT_EQ(rates.pic_rate_present_flag[0], !bitRates);
        EXPECT_EQ(rates.max_bit_rate[0], bitRates ? 6 : 0);
        EXPECT_EQ(rates.avg_pic_rate[0], bitRates ? 0 : 7);
    }
}

TEST(HevcVpsLayers, signalInfoForEachLayer) {
    BitWriter bits = wholeVps(true);
    vuiBegins(bits);
    bits.bits("rates, video_signal_info_idx_present_flag", "00 0");
    for (uint32_t i = 0; i < 6; ++i) {
        bits.u(3, "video_vps_format", i).u(1, "", 0).u(8, "", i).u(8, "", i).u(8, "", i);
    }
    bits.bits("tiles_not_in_use_flag, wpp_not_in_use_flag", "11").bits("irap", "00").bits("ilp, bsp", "00");
    bits.bits("base_layer_parameter_set_compatibility_flag", "00").u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);
    const VpsExtension& ext = vps.record->extension;
    EXPECT_EQ(ext.vui.numVideoSignalInfo, 6U);
    EXPECT_EQ(ext.video_signal_info[5].colour_primaries_vps, 5U);
    EXPECT_EQ(ext.vps_video_signal_info_idx[5], 5);
    LayerSetRates rates;
    EXPECT_FALSE(LayerSetRateReader(*vps.record).next(rates));
}

// --- HRD parameters ---

void cpb(BitWriter& bits, uint32_t value) {
    bits.u(1, "fixed_pic_rate_general_flag", 1).ue("elemental_duration_in_tc_minus1", 0);
    bits.ue("cpb_cnt_minus1", 0).ue("bit_rate_value_minus1", value).ue("cpb_size_value_minus1", value + 1);
    bits.u(1, "cbr_flag", 1);
}

void commonHrd(BitWriter& bits, uint32_t bit_rate_scale) {
    bits.bits("nal, vcl, sub_pic", "100").u(4, "bit_rate_scale", bit_rate_scale).u(4, "cpb_size_scale", 0);
    bits.u(5, "", 23).u(5, "", 22).u(5, "", 21);
}

// Three hrd_parameters(): the second takes the common part of the first.
void timingWithHrds(BitWriter& bits) {
    bits.u(1, "vps_timing_info_present_flag", 1)
        .u(32, "vps_num_units_in_tick", 1)
        .u(32, "vps_time_scale", 25);
    bits.u(1, "vps_poc_proportional_to_timing_flag", 0).ue("vps_num_hrd_parameters", 3);
    bits.ue("hrd_layer_set_idx[0]", 0);
    commonHrd(bits, 3);
    cpb(bits, 100);
    bits.ue("hrd_layer_set_idx[1]", 2).u(1, "cprms_present_flag[1]", 0);
    cpb(bits, 200);
    bits.ue("hrd_layer_set_idx[2]", 1).u(1, "cprms_present_flag[2]", 1);
    commonHrd(bits, 5);
    cpb(bits, 300);
}

TEST(HevcVpsLayers, hrdParametersInheritTheirCommonPart) {
    BitWriter bits = head(1, 1);
    bits.u(6, "vps_max_layer_id", 0).ue("vps_num_layer_sets_minus1", 2).bits("sets", "11");
    timingWithHrds(bits);
    bits.u(1, "vps_extension_flag", 0);
    const ReadVps vps(bits);
    VpsHrdReader reader(*vps.record);
    ASSERT_EQ(reader.count(), 3U);
    auto hrd = std::make_unique<VpsHrd>();
    const uint32_t sets[] = {0, 2, 1};
    const uint32_t scales[] = {3, 3, 5};
    for (uint32_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(reader.next(*hrd));
        EXPECT_EQ(hrd->hrd_layer_set_idx, sets[i]);
        EXPECT_EQ(hrd->cprms_present_flag, i != 1);
        EXPECT_TRUE(hrd->hrd_parameters.common.nal_hrd_parameters_present_flag);
        EXPECT_EQ(hrd->hrd_parameters.common.bit_rate_scale, scales[i]);
        EXPECT_EQ(hrd->hrd_parameters.sub_layer[0].nal.bit_rate_value_minus1[0], 100 * (i + 1));
    }
    EXPECT_FALSE(reader.next(*hrd));
    EXPECT_TRUE(readVpsHrd(*vps.record, 1, *hrd));
    EXPECT_EQ(hrd->hrd_parameters.sub_layer[0].nal.cpb_size_value_minus1[0], 201U);
    EXPECT_FALSE(readVpsHrd(*vps.record, 3, *hrd));
    EXPECT_FALSE(readVpsHrd(*vps.record, 4000000000, *hrd));
}

// vps_vui_bsp_hrd_params(): two more, the first of which takes the common part of the last one of the VPS.
TEST(HevcVpsLayers, addedHrdParameters) {
    BitWriter bits = head(2, 1);
    bits.u(6, "vps_max_layer_id", 1).ue("vps_num_layer_sets_minus1", 2).bits("sets", "11 01");
    timingWithHrds(bits);
    bits.u(1, "vps_extension_flag", 1);
    while (bits.bitCount() % 8 != 0) {
        bits.u(1, "vps_extension_alignment_bit_equal_to_one", 1);
    }
    bits.u(8, "general_level_idc", 90).u(1, "splitting_flag", 0).u(16, "scalability_mask_flag", 0);
    bits.u(1, "vps_nuh_layer_id_present_flag", 0).u(4, "view_id_len", 0);
    bits.u(1, "direct_dependency_flag[1][0]", 1).bits("sub layers, tid, active", "000");
    noProfiles(bits);
    // Sets 1 (layers 0 and 1) and 2 (layer 1).
    bits.ue("num_add_olss", 0).u(2, "default_output_layer_idc", 0).u(1, "alt_output_layer_flag[2]", 0);
    repFormat(bits);
    bits.bits("max_one_active_ref_layer_flag, vps_poc_lsb_aligned_flag", "00");
    bits.u(1, "", 0).ue("", 1).ue("", 2).ue("", 0).ue("", 0).u(1, "", 0).ue("", 3).ue("", 0).ue("", 0);
    bits.ue("direct_dep_type_len_minus2", 0).u(1, "direct_dependency_all_layers_flag", 1).u(2, "type", 2);
    bits.ue("vps_non_vui_extension_length", 0).u(1, "vps_vui_present_flag", 1);
    vuiBegins(bits);
    bits.bits("rates, video_signal_info_idx_present_flag", "00 0").u(28, "video_signal_info", 0);
    bits.u(28, "video_signal_info", 0);
    bits.bits("tiles_not_in_use_flag, wpp_not_in_use_flag", "11").bits("irap", "00").bits("ilp", "0");
    bits.u(1, "vps_vui_bsp_hrd_present_flag", 1).ue("vps_num_add_hrd_params", 2);
    bits.u(1, "cprms_add_present_flag[3]", 0).ue("num_sub_layer_hrd_minus1[3]", 0);
    cpb(bits, 400);
    bits.u(1, "cprms_add_present_flag[4]", 1).ue("num_sub_layer_hrd_minus1[4]", 0);
    commonHrd(bits, 9);
    cpb(bits, 500);
    // Output layer set 1: one scheme of one partition besides that of two; five HRDs take 3 bits.
    bits.ue("num_signalled_partitioning_schemes[1]", 1).ue("num_partitions_in_scheme_minus1[1][1]", 0);
    bits.bits("layer_included_in_partition_flag[1][1][0]", "11");
    bits.ue("num_bsp_schedules_minus1[1][0][0]", 0).u(3, "bsp_hrd_idx", 3).ue("bsp_sched_idx", 1);
    bits.u(3, "bsp_hrd_idx", 4).ue("bsp_sched_idx", 2);
    bits.ue("num_bsp_schedules_minus1[1][1][0]", 1).u(3, "bsp_hrd_idx", 0).ue("bsp_sched_idx", 3);
    bits.u(3, "bsp_hrd_idx", 1).ue("bsp_sched_idx", 4);
    // Output layer set 2: no scheme but that of one partition.
    bits.ue("num_signalled_partitioning_schemes[2]", 0);
    bits.ue("num_bsp_schedules_minus1[2][0][0]", 0).u(3, "bsp_hrd_idx", 2).ue("bsp_sched_idx", 31);
    bits.u(1, "vps_extension2_flag", 0);
    const ReadVps vps(bits);

    VpsHrdReader reader(*vps.record);
    ASSERT_EQ(reader.count(), 5U);
    auto hrd = std::make_unique<VpsHrd>();
    const uint32_t scales[] = {3, 3, 5, 5, 9};
    for (uint32_t i = 0; i < 5; ++i) {
        ASSERT_TRUE(reader.next(*hrd)) << i;
        EXPECT_EQ(hrd->hrd_parameters.common.bit_rate_scale, scales[i]) << i;
        EXPECT_EQ(hrd->hrd_parameters.sub_layer[0].nal.bit_rate_value_minus1[0], 100 * (i + 1)) << i;
    }
    EXPECT_FALSE(reader.next(*hrd));
    EXPECT_FALSE(hrd->hrd_layer_set_idx != 0);

    RecordingVisitor visitor;
    ASSERT_TRUE(traceVps(bytesOf(vps.unit), visitor).ok());
    std::vector<std::string> schedules;
    for (const qv::TracedElement& element : visitor.elements) {
        const std::string name = qv::textOf(element.element);
        if (name.rfind("bsp_sched_idx", 0) == 0) {
            schedules.push_back(name + " " + std::to_string(element.value));
        }
    }
    EXPECT_THAT(schedules, ElementsAre("bsp_sched_idx[1][0][0][0][0] 1", "bsp_sched_idx[1][0][0][0][1] 2",
                                       "bsp_sched_idx[1][1][0][0][0] 3", "bsp_sched_idx[1][1][0][1][0] 4",
                                       "bsp_sched_idx[2][0][0][0][0] 31"));
}

TEST(HevcVpsLayers, hrdOfAFaultyVps) {
    Vps vps = {};
    vps.vps_num_hrd_parameters = 7;
    vps.vps_extension_flag = true;
    vps.extension.num_add_olss = 1023;
    vps.extension.num_add_layer_sets = 1023;
    auto hrd = std::make_unique<VpsHrd>();
    EXPECT_FALSE(VpsHrdReader(vps).next(*hrd));
    OutputLayerSetReader reader(vps);
    auto set = std::make_unique<OutputLayerSet>();
    EXPECT_TRUE(reader.next(*set));
    EXPECT_FALSE(reader.next(*set));
}

// --- 3D ---

TEST(HevcVpsLayers, cameraParameters) {
    BitWriter bits = wholeVps();
    bits.u(1, "vps_extension2_flag", 1).u(1, "vps_3d_extension_flag", 1);
    while (bits.bitCount() % 8 != 0) {
        bits.u(1, "vps_3d_extension_alignment_bit_equal_to_one", 1);
    }
    bits.ue("cp_precision", 5).u(6, "num_cp[4]", 2).u(1, "cp_in_slice_segment_header_flag[4]", 0);
    bits.ue("cp_ref_voi[4][0]", 0).se("", -1).se("", 2).se("", -3).se("", 4);
    bits.ue("cp_ref_voi[4][1]", 9).se("", 5).se("", -6).se("", 7).se("", -8);
    bits.u(1, "vps_extension3_flag", 0);
    const ReadVps vps(bits);
    EXPECT_EQ(vps.record->three_d.cp_precision, 5U);
    auto cp = std::make_unique<CameraParameters>();
    ASSERT_TRUE(cameraParametersOf(*vps.record, 1, *cp));
    EXPECT_EQ(cp->viewOrderIdx, 4U);
    EXPECT_EQ(cp->num_cp, 2U);
    EXPECT_FALSE(cp->cp_in_slice_segment_header_flag);
    EXPECT_EQ(cp->cp_ref_voi[1], 9U);
    EXPECT_EQ(cp->vps_cp_scale[0], -1);
    EXPECT_EQ(cp->vps_cp_off[1], -6);
    EXPECT_EQ(cp->vps_cp_inv_scale_plus_scale[1], 7);
    EXPECT_EQ(cp->vps_cp_inv_off_plus_off[1], -8);
    EXPECT_FALSE(cameraParametersOf(*vps.record, 0, *cp));
    EXPECT_FALSE(cameraParametersOf(*vps.record, 2, *cp));

    RecordingVisitor visitor;
    ASSERT_TRUE(traceVps(bytesOf(vps.unit), visitor).ok());
    std::vector<std::string> names;
    for (const qv::TracedElement& element : visitor.elements) {
        names.push_back(qv::textOf(element.element));
    }
    EXPECT_THAT(names, testing::Contains("vps_cp_off[4][9]"));
}

}  // namespace
