// The parameter sets that are active.
#include "bitstream/sei/ActiveParameterSets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "SetsOfMessages.h"
#include "bitstream/sei/ActiveParameterSetsSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;
using testing::StartsWith;

// VPS 0 has one layer, VPS 1 has three, VPS 2 two, of which the base layer is external.
const qv::hevc::ParameterSets& sets() {
    static const std::unique_ptr<qv::hevc::ParameterSets> kSets = [] {
        auto sets = std::make_unique<qv::hevc::ParameterSets>();
        const uint32_t layers[] = {1, 3, 2};
        for (uint32_t id = 0; id < 3; ++id) {
            const auto vps = std::make_unique<qv::hevc::Vps>();
            vps->header.nal_unit_type = 32;
            vps->header.nuh_temporal_id_plus1 = 1;
            vps->vps_video_parameter_set_id = id;
            vps->vps_base_layer_internal_flag = vps->vps_base_layer_available_flag = id != 2;
            vps->vps_max_layers_minus1 = layers[id] - 1;
            vps->vps_temporal_id_nesting_flag = true;
            vps->vps_reserved_0xffff_16bits = 0xFFFF;
            vps->profile_tier_level.general.profile_idc = 1;
            vps->vps_sub_layer_ordering_info_present_flag = true;
            vps->layer_id_included_flag[0] = 1;
            std::vector<uint8_t> unit;
            EXPECT_TRUE(writeVps(*vps, unit).ok());
            EXPECT_TRUE(sets->take(bytesOf(unit)).hasId);
        }
        return sets;
    }();
    return *kSets;
}

PayloadUnderTest<ActiveParameterSets> activeParameterSets() {
    auto structure = payloadUnderTest<ActiveParameterSets>(
        Context(sets()), [](auto& s, const auto& c, auto& payload) { active_parameter_sets(s, c, payload); });
    structure.violable = 8;
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("active_video_parameter_set_id", {0, 1, 1, 2});
        unit.choose("layer_sps_idx", {0});
    };
    return structure;
}

TEST(SeiActiveParameterSets, roundTrips) {
    checkRoundTrips(activeParameterSets(), unitRounds());
}

TEST(SeiActiveParameterSets, everyRange) {
    EXPECT_THAT(checkRanges(activeParameterSets(), unitRounds()),
                IsSupersetOf({"num_sps_ids_minus1", "active_seq_parameter_set_id", "layer_sps_idx"}));
}

TEST(SeiActiveParameterSets, cutAtEveryByte) {
    checkCuts(activeParameterSets(), unitRounds(50));
}

TEST(SeiActiveParameterSets, noAllocationAndNoByteOutside) {
    checkMemory(activeParameterSets(), unitRounds(25));
}

TEST(SeiActiveParameterSets, identifiersOfAllLayers) {
    // VPS 1, self_contained_cvs_flag, two SPS: 3 and 5; layers 1 and 2 have the second and the first.
    const auto payload = payloadOf<ActiveParameterSets>(Context(sets()), "0001 1 0 010 00100 00110 010 1");
    EXPECT_EQ(payload->active_video_parameter_set_id, 1U);
    EXPECT_TRUE(payload->self_contained_cvs_flag);
    EXPECT_FALSE(payload->no_parameter_set_update_flag);
    EXPECT_EQ(payload->num_sps_ids_minus1, 1U);
    EXPECT_EQ(payload->active_seq_parameter_set_id[0], 3U);
    EXPECT_EQ(payload->active_seq_parameter_set_id[1], 5U);
    EXPECT_EQ(payload->firstLayer, 1U);
    EXPECT_EQ(payload->layers, 3U);
    EXPECT_EQ(payload->layer_sps_idx[1], 1U);
    EXPECT_EQ(payload->layer_sps_idx[2], 0U);
}

TEST(SeiActiveParameterSets, oneLayerHasNoIndex) {
    const auto payload = payloadOf<ActiveParameterSets>(Context(sets()), "0000 0 1 1 1");
    EXPECT_TRUE(payload->no_parameter_set_update_flag);
    EXPECT_EQ(payload->layers, 1U);
}

// An external base layer has one as well.
TEST(SeiActiveParameterSets, externalBaseLayer) {
    const auto payload = payloadOf<ActiveParameterSets>(Context(sets()), "0010 0 0 010 1 010 010 1");
    EXPECT_EQ(payload->firstLayer, 0U);
    EXPECT_EQ(payload->layer_sps_idx[0], 1U);
    EXPECT_EQ(payload->layer_sps_idx[1], 0U);
}

TEST(SeiActiveParameterSets, withoutTheVps) {
    EXPECT_THAT(faultOf<ActiveParameterSets>(Context(Codec::Hevc), "0000 0 0 1 1"),
                StartsWith("active_video_parameter_set_id in active_parameter_sets"));
    EXPECT_THAT(faultOf<ActiveParameterSets>(Context(sets()), "1111 0 0 1 1"),
                StartsWith("active_video_parameter_set_id in active_parameter_sets"));
    expectNotWritten<ActiveParameterSets>(Codec::Hevc);
}

}  // namespace
