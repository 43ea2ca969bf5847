// The H.265 parameter sets in force, and which of them are active.
#include "bitstream/hevc/ParameterSets.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "../../support/AllocationFault.h"
#include "Units.h"

namespace {

using namespace qv_test;
using qv::ActivationProblem;
using qv::SetEvent;
using qv::SetTaken;
using qv::SliceBegins;
using qv::hevc::Activation;
using qv::hevc::ParameterSets;

std::vector<uint8_t> vps(uint32_t id, uint32_t max_dec_pic_buffering_minus1 = 4) {
    BitWriter bits;
    bits.u(4, "vps_video_parameter_set_id", id).bits("base layer internal, available", "11");
    bits.u(6, "vps_max_layers_minus1", 0).u(3, "vps_max_sub_layers_minus1", 0).u(1, "nesting", 1);
    bits.u(16, "vps_reserved_0xffff_16bits", 0xFFFF);
    mainProfileTierLevel(bits);
    bits.u(1, "vps_sub_layer_ordering_info_present_flag", 1);
    bits.ue("vps_max_dec_pic_buffering_minus1", max_dec_pic_buffering_minus1).ue("reorder", 0);
    bits.ue("vps_max_latency_increase_plus1", 0).u(6, "vps_max_layer_id", 0);
    bits.ue("vps_num_layer_sets_minus1", 0).bits("timing, extension", "00");
    return hevcUnit(32, bits);
}

std::vector<uint8_t> sps(uint32_t id, uint32_t width = 640, uint32_t vpsId = 0, uint32_t nuh_layer_id = 0) {
    BitWriter bits;
    bits.u(4, "sps_video_parameter_set_id", vpsId).u(3, "sps_max_sub_layers_minus1", 0).u(1, "nesting", 1);
    mainProfileTierLevel(bits);
    bits.ue("sps_seq_parameter_set_id", id).ue("chroma_format_idc", 1);
    bits.ue("pic_width_in_luma_samples", width).ue("pic_height_in_luma_samples", 480);
    bits.u(1, "conformance_window_flag", 0).ue("bit_depth_luma", 0).ue("bit_depth_chroma", 0);
    bits.ue("log2_max_pic_order_cnt_lsb_minus4", 4).u(1, "sps_sub_layer_ordering_info_present_flag", 1);
    bits.ue("sps_max_dec_pic_buffering_minus1", 4).ue("reorder", 0).ue("latency", 0);
    bits.ue("block sizes", 0).ue("", 3).ue("", 0).ue("", 3).ue("", 0).ue("", 0);
    bits.bits("scaling, amp, sao, pcm", "0000").ue("num_short_term_ref_pic_sets", 0);
    bits.bits("long term, temporal mvp, smoothing, vui, extension", "00000");
    return hevcUnit(33, bits, nuh_layer_id);
}

std::vector<uint8_t> pps(uint32_t id, uint32_t spsId, int32_t init_qp_minus26 = 0,
                         uint32_t nuh_layer_id = 0) {
    BitWriter bits;
    bits.ue("pps_pic_parameter_set_id", id).ue("pps_seq_parameter_set_id", spsId);
    bits.bits("dependent, output, extra bits, sign hiding, cabac_init", "00 000 00");
    bits.ue("l0", 0).ue("l1", 0).se("init_qp_minus26", init_qp_minus26).bits("intra, skip, qp delta", "000");
    bits.se("pps_cb_qp_offset", 0).se("pps_cr_qp_offset", 0);
    bits.bits("chroma offsets, weighted, bipred, bypass, tiles, sync", "000000");
    bits.bits("loop filter, deblocking control, scaling lists, lists modification", "1000");
    bits.ue("log2_parallel_merge_level_minus2", 0).bits("slice header extension, extension", "00");
    return hevcUnit(34, bits, nuh_layer_id);
}

// Two views, as an encoder wrote them; the SPS of the second takes its size from the VPS.
const char* const kVpsOfTwoViews =
    "40010c11ffff01600000030090000003000003001e959815bf1e20001828b2e0c040000013f100000300000303d1a018000c"
    "14010a566e90";
const char* const kSpsOfBaseView =
    "42010101600000030090000003000003001ea018206165959a4932b80400000fa0000186a05010";
const char* const kSpsOfSecondView = "42090e85924cae005030";

class HevcParameterSets : public testing::Test {
protected:
    SetEvent take(const std::vector<uint8_t>& unit) { return sets->take(bytesOf(unit)).event; }

    void takeOneOfEach() {
        take(vps(0));
        take(sps(0));
        take(pps(0, 0));
    }

    const std::unique_ptr<ParameterSets> sets = std::make_unique<ParameterSets>();
};

TEST_F(HevcParameterSets, repeatsChangesAndReturns) {
    EXPECT_EQ(take(vps(1)), SetEvent::First);
    EXPECT_EQ(take(vps(1)), SetEvent::Repeated);
    EXPECT_EQ(take(vps(1, 5)), SetEvent::Changed);
    EXPECT_EQ(sets->vps(1)->vps_max_dec_pic_buffering_minus1[0], 5U);
    EXPECT_EQ(take(vps(1)), SetEvent::Returned);
    EXPECT_EQ(take(sps(2)), SetEvent::First);
    EXPECT_EQ(take(sps(2)), SetEvent::Repeated);
    EXPECT_EQ(take(sps(2, 800)), SetEvent::Changed);
    EXPECT_EQ(sets->sps(2)->pic_width_in_luma_samples, 800U);
    EXPECT_EQ(take(sps(2)), SetEvent::Returned);
    EXPECT_EQ(take(pps(3, 2)), SetEvent::First);
    EXPECT_EQ(take(pps(3, 2)), SetEvent::Repeated);
    EXPECT_EQ(take(pps(3, 2, 1)), SetEvent::Changed);
    EXPECT_EQ(sets->pps(3)->init_qp_minus26, 1);
    EXPECT_EQ(take(pps(3, 2)), SetEvent::Returned);
    EXPECT_EQ(take(pps(4, 2)), SetEvent::First);
}

TEST_F(HevcParameterSets, whatAUnitIs) {
    const SetTaken taken = sets->take(bytesOf(pps(63, 15, 0, 5)));
    EXPECT_EQ(taken.event, SetEvent::First);
    EXPECT_EQ(taken.nal_unit_type, 34U);
    EXPECT_EQ(taken.nuh_layer_id, 5U);
    EXPECT_EQ(taken.id, 63U);
    EXPECT_TRUE(taken.hasId);
    EXPECT_FALSE(taken.fault);
}

TEST_F(HevcParameterSets, otherUnitsChangeNothing) {
    EXPECT_EQ(sets->take(qv::Bytes()).event, SetEvent::NotASet);
    EXPECT_EQ(take({0x42}), SetEvent::NotASet);
    EXPECT_EQ(take({0x26, 0x01, 0xAF}), SetEvent::NotASet);
    EXPECT_EQ(sets->take(bytesOf({0x46, 0x01, 0x50})).nal_unit_type, 35U);
    // nuh_layer_id 63 is reserved.
    const SetTaken taken = sets->take(bytesOf(sps(0, 640, 0, 63)));
    EXPECT_EQ(taken.event, SetEvent::NotASet);
    EXPECT_EQ(taken.nuh_layer_id, 63U);
    EXPECT_EQ(sets->sps(0, 62), nullptr);
}

TEST_F(HevcParameterSets, nothingForIdentifiersOutOfRange) {
    takeOneOfEach();
    for (const uint32_t number : {16U, 63U, 64U, 256U, 0x100U << 8, 0xFFFFFFFFU}) {
        EXPECT_EQ(sets->vps(number), nullptr) << number;
        EXPECT_EQ(sets->sps(number), nullptr) << number;
        EXPECT_EQ(sets->pps(number), nullptr) << number;
        EXPECT_EQ(sets->announce(number), nullptr) << number;
        EXPECT_EQ(sets->activate(number, SliceBegins::Picture).problem, ActivationProblem::NoPps);
    }
    for (const uint32_t nuh_layer_id : {63U, 64U, 0xFFFFFFFFU}) {
        EXPECT_EQ(sets->sps(0, nuh_layer_id), nullptr);
        EXPECT_EQ(sets->pps(0, nuh_layer_id), nullptr);
        EXPECT_EQ(sets->activate(0, SliceBegins::Picture, nuh_layer_id).problem, ActivationProblem::NoPps);
    }
}

TEST_F(HevcParameterSets, identifiersOutOfRangeAreFaults) {
    SetTaken taken = sets->take(bytesOf(sps(16)));
    EXPECT_EQ(taken.event, SetEvent::Broken);
    EXPECT_EQ(taken.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_FALSE(taken.hasId);
    taken = sets->take(bytesOf(pps(64, 0)));
    EXPECT_EQ(taken.event, SetEvent::Broken);
    EXPECT_FALSE(taken.hasId);
    taken = sets->take(bytesOf(pps(5, 16)));
    EXPECT_EQ(taken.event, SetEvent::Broken);
    EXPECT_TRUE(taken.hasId);
    EXPECT_EQ(taken.id, 5U);
    EXPECT_EQ(sets->activate(5, SliceBegins::Picture).problem, ActivationProblem::FaultyPps);
}

TEST_F(HevcParameterSets, aFaultKeepsTheEarlierSet) {
    takeOneOfEach();
    for (std::vector<uint8_t> unit : {vps(0, 9), sps(0, 4096), pps(0, 0, 9)}) {
        unit.pop_back();
        const SetTaken taken = sets->take(bytesOf(unit));
        EXPECT_EQ(taken.event, SetEvent::Broken);
        EXPECT_TRUE(taken.hasId);
        EXPECT_TRUE(taken.fault);
    }
    EXPECT_EQ(sets->vps(0)->vps_max_dec_pic_buffering_minus1[0], 4U);
    EXPECT_EQ(sets->sps(0)->pic_width_in_luma_samples, 640U);
    EXPECT_EQ(sets->pps(0)->init_qp_minus26, 0);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::None);
}

TEST_F(HevcParameterSets, aSetWithAFaultIsKeptUntilABetterOneComes) {
    std::vector<uint8_t> units[] = {vps(0), sps(0), pps(0, 0)};
    for (std::vector<uint8_t>& unit : units) {
        unit.pop_back();
        EXPECT_EQ(take(unit), SetEvent::Broken);
        EXPECT_EQ(take(unit), SetEvent::Broken);
    }
    EXPECT_EQ(sets->sps(0)->pic_width_in_luma_samples, 640U);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::FaultyPps);
    EXPECT_EQ(take(pps(0, 0)), SetEvent::Changed);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::FaultySps);
    EXPECT_EQ(take(sps(0)), SetEvent::Changed);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::FaultyVps);
    EXPECT_EQ(take(vps(0)), SetEvent::Changed);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::None);
}

// The identifier of an SPS comes after its profiles, which have no fixed size.
TEST_F(HevcParameterSets, theIdentifierOfACutSps) {
    const std::vector<uint8_t> unit = sps(9);
    bool hadId = false;
    for (size_t size = 2; size < unit.size(); ++size) {
        ParameterSets fresh;
        const SetTaken taken = fresh.take({unit.data(), size});
        EXPECT_EQ(taken.event, SetEvent::Broken);
        EXPECT_TRUE(taken.hasId || !hadId) << size;
        EXPECT_EQ(taken.id, taken.hasId ? 9U : 0U) << size;
        EXPECT_EQ(fresh.sps(9) != nullptr, taken.hasId) << size;
        hadId = taken.hasId;
    }
    EXPECT_TRUE(hadId);
}

TEST_F(HevcParameterSets, setsOfAnyKindThatAreTooLong) {
    for (const uint32_t type : {32U, 33U, 34U}) {
        std::vector<uint8_t> unit(qv::kMostSetBytes + 1, 0xFF);
        unit[0] = static_cast<uint8_t>(type << 1);
        unit[1] = 1;
        EXPECT_EQ(take(unit), SetEvent::TooLong);
    }
    std::vector<uint8_t> longest = sps(0);
    longest.resize(qv::kMostSetBytes, 0x00);
    EXPECT_EQ(take(longest), SetEvent::First);
}

// --- Activation ---

TEST_F(HevcParameterSets, whatIsMissing) {
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::NoPps);
    take(pps(0, 0));
    Activation activation = sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::NoSps);
    EXPECT_EQ(activation.pps, sets->pps(0));
    EXPECT_EQ(activation.sps, nullptr);
    take(sps(0));
    activation = sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::NoVps);
    EXPECT_EQ(activation.sps, sets->sps(0));
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_EQ(activation.vps, nullptr);
    take(vps(0));
    activation = sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_EQ(activation.vps, sets->vps(0));
    EXPECT_FALSE(activation.spsIsNew);
    EXPECT_TRUE(activation.vpsIsNew);
    EXPECT_FALSE(sets->activate(0, SliceBegins::Picture).vpsIsNew);
}

TEST_F(HevcParameterSets, anotherSpsNeedsANewSequence) {
    takeOneOfEach();
    take(sps(1, 800));
    take(pps(1, 1));
    EXPECT_TRUE(sets->activate(0, SliceBegins::CodedVideoSequence).spsIsNew);
    Activation activation = sets->activate(1, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_FALSE(activation.vpsIsNew);
    activation = sets->activate(0, SliceBegins::Picture);
    EXPECT_EQ(activation.problem, ActivationProblem::OtherSps);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_EQ(activation.sps->pic_width_in_luma_samples, 640U);
    // What was not allowed is active all the same.
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture).problem, ActivationProblem::None);
}

TEST_F(HevcParameterSets, contentsOfActiveSetsMayChangeBetweenSequencesOnly) {
    takeOneOfEach();
    sets->activate(0, SliceBegins::CodedVideoSequence);
    take(sps(0));
    take(vps(0));
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture).problem, ActivationProblem::None);
    take(sps(0, 800));
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture).problem, ActivationProblem::SpsChanged);
    take(vps(0, 5));
    Activation activation = sets->activate(0, SliceBegins::Picture);
    EXPECT_EQ(activation.problem, ActivationProblem::VpsChanged);
    EXPECT_TRUE(activation.vpsIsNew);
    EXPECT_FALSE(activation.spsIsNew);
    take(sps(0));
    take(vps(0));
    activation = sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_TRUE(activation.vpsIsNew);
    // The SPS names another VPS: both are new, and the first rule is reported.
    take(vps(3));
    take(sps(0, 640, 3));
    activation = sets->activate(0, SliceBegins::Picture);
    EXPECT_EQ(activation.problem, ActivationProblem::SpsChanged);
    EXPECT_EQ(activation.vps, sets->vps(3));
    EXPECT_TRUE(activation.vpsIsNew);
}

// A layer that begins its first sequence with another VPS than the base layer's.
TEST_F(HevcParameterSets, oneVpsForAllLayers) {
    takeOneOfEach();
    take(vps(3));
    take(sps(1, 640, 3, 1));
    take(pps(1, 1, 0, 1));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(sets->activate(1, SliceBegins::Picture, 1).problem, ActivationProblem::OtherVps);
}

TEST_F(HevcParameterSets, onePpsForEachPicture) {
    takeOneOfEach();
    take(pps(1, 0));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(sets->activate(0, SliceBegins::Nothing).problem, ActivationProblem::None);
    EXPECT_EQ(sets->activate(1, SliceBegins::Nothing).problem, ActivationProblem::OtherPps);
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture).problem, ActivationProblem::None);
    take(pps(0, 0, 7));
    const Activation activation = sets->activate(0, SliceBegins::Nothing);
    EXPECT_EQ(activation.problem, ActivationProblem::PpsChanged);
    EXPECT_EQ(activation.pps->init_qp_minus26, 7);
    take(pps(0, 0, 8));
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture).problem, ActivationProblem::None);
}

// --- Layers ---

TEST_F(HevcParameterSets, aSetOfALayerComesFirst) {
    takeOneOfEach();
    take(sps(0, 1280, 0, 2));
    take(pps(0, 0, 3, 4));
    EXPECT_EQ(sets->sps(0, 0)->pic_width_in_luma_samples, 640U);
    EXPECT_EQ(sets->sps(0, 1)->pic_width_in_luma_samples, 640U);
    EXPECT_EQ(sets->sps(0, 2)->pic_width_in_luma_samples, 1280U);
    EXPECT_EQ(sets->sps(0, 62)->pic_width_in_luma_samples, 1280U);
    EXPECT_EQ(sets->pps(0, 3)->init_qp_minus26, 0);
    EXPECT_EQ(sets->pps(0, 4)->init_qp_minus26, 3);
    // Each layer has an active SPS of its own.
    EXPECT_TRUE(sets->activate(0, SliceBegins::CodedVideoSequence, 0).spsIsNew);
    EXPECT_TRUE(sets->activate(0, SliceBegins::CodedVideoSequence, 2).spsIsNew);
    EXPECT_FALSE(sets->activate(0, SliceBegins::Picture, 0).spsIsNew);
    const Activation activation = sets->activate(0, SliceBegins::Picture, 2);
    EXPECT_FALSE(activation.spsIsNew);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_EQ(activation.sps->pic_width_in_luma_samples, 1280U);
    EXPECT_EQ(activation.pps, sets->pps(0, 0));
    // Layer 1 takes both sets from the base layer, then gets its own SPS.
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence, 1).sps, sets->sps(0, 0));
    take(sps(0, 640, 0, 1));
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture, 1).problem, ActivationProblem::OtherSps);
}

TEST_F(HevcParameterSets, setsOfTwoViews) {
    EXPECT_EQ(take(hex(kVpsOfTwoViews)), SetEvent::First);
    EXPECT_EQ(take(hex(kSpsOfBaseView)), SetEvent::First);
    EXPECT_EQ(take(hex(kSpsOfSecondView)), SetEvent::First);
    EXPECT_EQ(sets->sps(1, 1)->pic_width_in_luma_samples, 192U);
    EXPECT_EQ(sets->sps(1, 0), nullptr);
}

// A layer's SPS may come before its VPS, and is read again when the VPS changes.
TEST_F(HevcParameterSets, aLayerTakesItsSizeFromTheVpsOfNow) {
    EXPECT_EQ(take(hex(kSpsOfSecondView)), SetEvent::First);
    const qv::hevc::Sps* const layer = sets->sps(1, 1);
    EXPECT_EQ(layer->pic_width_in_luma_samples, 0U);
    take(pps(1, 1, 0, 1));
    EXPECT_EQ(sets->activate(1, SliceBegins::CodedVideoSequence, 1).problem, ActivationProblem::NoVps);
    take(hex(kVpsOfTwoViews));
    EXPECT_EQ(sets->sps(1, 1)->pic_width_in_luma_samples, 192U);
    Activation activation = sets->activate(1, SliceBegins::CodedVideoSequence, 1);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_EQ(take(hex(kVpsOfTwoViews)), SetEvent::Repeated);
    EXPECT_FALSE(sets->activate(1, SliceBegins::Picture, 1).spsIsNew);
    // Without the extension the VPS has no size for the layer.
    EXPECT_EQ(take(vps(0)), SetEvent::Changed);
    EXPECT_EQ(sets->sps(1, 1)->pic_width_in_luma_samples, 0U);
    EXPECT_EQ(take(hex(kVpsOfTwoViews)), SetEvent::Returned);
    EXPECT_EQ(sets->sps(1, 1)->pic_width_in_luma_samples, 192U);
    // A VPS with another identifier has no effect.
    EXPECT_EQ(take(vps(3)), SetEvent::First);
    EXPECT_EQ(sets->sps(1, 1)->pic_width_in_luma_samples, 192U);
}

// The content of an SPS names another VPS, whose number of contents is the same as that of the first.
TEST_F(HevcParameterSets, aLayerThatTurnsToAnotherVps) {
    std::vector<uint8_t> second = hex(kSpsOfSecondView);
    take(hex(kVpsOfTwoViews));
    take(second);
    second[2] = static_cast<uint8_t>(second[2] | 0x10);  // sps_video_parameter_set_id 1
    EXPECT_EQ(take(second), SetEvent::Changed);
    EXPECT_EQ(sets->sps(1, 1)->pic_width_in_luma_samples, 0U);
    std::vector<uint8_t> other = hex(kVpsOfTwoViews);
    other[2] = static_cast<uint8_t>(other[2] | 0x10);  // vps_video_parameter_set_id 1
    EXPECT_EQ(take(other), SetEvent::First);
    EXPECT_EQ(sets->sps(1, 1)->pic_width_in_luma_samples, 192U);
}

TEST_F(HevcParameterSets, layersHaveAGreatestNumberOfSets) {
    takeOneOfEach();
    uint32_t kept = 0;
    for (uint32_t layer = 1; layer < 63; ++layer) {
        for (uint32_t id = 0; id < 8; ++id) {
            const SetEvent event = take(id % 2 != 0 ? pps(id, 0, 0, layer) : sps(id, 640, 0, layer));
            EXPECT_EQ(event, kept < qv::hevc::kMostSetsAboveBaseLayer ? SetEvent::First : SetEvent::TooMany);
            kept += event == SetEvent::First ? 1 : 0;
        }
    }
    EXPECT_EQ(kept, qv::hevc::kMostSetsAboveBaseLayer);
    // Sets that are there may change, and the base layer may get more.
    EXPECT_EQ(take(sps(0, 800, 0, 1)), SetEvent::Changed);
    EXPECT_EQ(take(sps(7)), SetEvent::First);
    EXPECT_EQ(take(pps(1, 0, 0, 62)), SetEvent::TooMany);
    EXPECT_EQ(take(hex(kSpsOfSecondView)), SetEvent::TooMany);
}

// --- SEI messages ---

TEST_F(HevcParameterSets, messagesReferToTheSpsOfTheNextPicture) {
    EXPECT_EQ(sets->ofNextPicture(), nullptr);
    take(vps(0));
    take(sps(0));
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(0));
    take(sps(1, 800));
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
    take(sps(2, 800, 0, 1));
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
    take(pps(0, 0));
    take(pps(1, 1));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(0));
    EXPECT_EQ(sets->announce(1), sets->sps(1));
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
    EXPECT_EQ(sets->announce(7), nullptr);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
    sets->activate(0, SliceBegins::Picture);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(0));
    sets->announce(1);
    EXPECT_TRUE(sets->activate(1, SliceBegins::CodedVideoSequence).spsIsNew);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
}

// --- Memory ---

TEST_F(HevcParameterSets, onlyTakingAllocates) {
    const std::vector<uint8_t> units[] = {hex(kVpsOfTwoViews), hex(kSpsOfBaseView), hex(kSpsOfSecondView),
                                          pps(0, 0), pps(1, 1, 0, 1)};
    for (const std::vector<uint8_t>& unit : units) {
        take(unit);
    }
    const AllocationFault count(Allocator::New, 0);
    sets->vps(0);
    sets->sps(0);
    sets->sps(1, 1);
    sets->pps(1, 1);
    sets->activate(0, SliceBegins::CodedVideoSequence);
    sets->activate(1, SliceBegins::Picture, 1);
    sets->activate(1, SliceBegins::Picture, 62);
    sets->announce(0);
    sets->ofNextPicture();
    // Nor does a set that is there already.
    for (const std::vector<uint8_t>& unit : units) {
        take(unit);
    }
    EXPECT_EQ(count.seen(), 0);
}

TEST_F(HevcParameterSets, allocationsThatFailLeaveTheSetsAsTheyWere) {
    takeOneOfEach();
    const std::vector<uint8_t> units[] = {vps(0, 5), sps(0, 800), pps(0, 0, 1), sps(1, 800, 0, 7)};
    for (const std::vector<uint8_t>& unit : units) {
        const qv::hevc::Vps vpsBefore = *sets->vps(0);
        const qv::hevc::Sps spsBefore = *sets->sps(0);
        const qv::hevc::Pps ppsBefore = *sets->pps(0);
        int failed = 0;
        for (int nth = 1;; ++nth) {
            bool threw = false;
            {
                const AllocationFault fault(Allocator::New, nth);
                try {
                    take(unit);
                } catch (const std::bad_alloc&) {
                    threw = true;
                }
            }
            if (!threw) {
                break;
            }
            ++failed;
            ASSERT_EQ(sets->vps(0)->vps_max_dec_pic_buffering_minus1[0],
                      vpsBefore.vps_max_dec_pic_buffering_minus1[0]);
            ASSERT_EQ(sets->sps(0)->pic_width_in_luma_samples, spsBefore.pic_width_in_luma_samples);
            ASSERT_EQ(sets->pps(0)->init_qp_minus26, ppsBefore.init_qp_minus26);
            ASSERT_EQ(sets->sps(1, 7), nullptr);
        }
        EXPECT_GT(failed, 0);
    }
    EXPECT_EQ(sets->vps(0)->vps_max_dec_pic_buffering_minus1[0], 5U);
    EXPECT_EQ(sets->sps(0)->pic_width_in_luma_samples, 800U);
    EXPECT_EQ(sets->pps(0)->init_qp_minus26, 1);
    EXPECT_NE(sets->sps(1, 7), nullptr);
}

TEST_F(HevcParameterSets, randomBytes) {
    Random random(12);
    const uint32_t types[] = {32, 33, 34, 1};
    for (int round = 0; round < 20000; ++round) {
        std::vector<uint8_t> unit(2 + random() % 60);
        for (uint8_t& byte : unit) {
            byte = static_cast<uint8_t>(random());
        }
        unit[0] = static_cast<uint8_t>(types[random() % 4] << 1 | (random() & 1U));
        const SetTaken taken = sets->take(bytesOf(unit));
        ASSERT_LE(taken.id, 63U);
        const Activation activation = sets->activate(
            static_cast<uint32_t>(random() % 66), SliceBegins::Picture, static_cast<uint32_t>(random() % 65));
        ASSERT_TRUE(activation.pps != nullptr || activation.problem == ActivationProblem::NoPps);
        sets->announce(static_cast<uint32_t>(random() % 20));
        sets->ofNextPicture();
    }
}

}  // namespace
