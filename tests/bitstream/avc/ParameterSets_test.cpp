// The H.264 parameter sets in force, and which of them are active.
#include "bitstream/avc/ParameterSets.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "../../support/AllocationFault.h"
#include "../../support/BitWriter.h"
#include "../support/CodedUnit.h"
#include "../support/StructureChecks.h"

namespace {

using namespace qv_test;
using qv::ActivationProblem;
using qv::SetEvent;
using qv::SetTaken;
using qv::SliceBegins;
using qv::avc::Activation;
using qv::avc::ParameterSets;

std::vector<uint8_t> avcUnit(uint32_t nal_unit_type, BitWriter rbsp, uint32_t nal_ref_idc = 3) {
    rbsp.trailingBits();
    return coded({static_cast<uint8_t>(nal_ref_idc << 5 | nal_unit_type)}, rbsp.bytes());
}

BitWriter spsData(uint32_t id, uint32_t widthInMbs, uint32_t chroma_format_idc, uint32_t profile_idc) {
    BitWriter bits;
    bits.u(8, "profile_idc", profile_idc).u(8, "constraint flags", 0).u(8, "level_idc", 40);
    bits.ue("seq_parameter_set_id", id).ue("chroma_format_idc", chroma_format_idc);
    if (chroma_format_idc == 3) {
        bits.u(1, "separate_colour_plane_flag", 0);
    }
    bits.ue("bit_depth_luma_minus8", 0).ue("bit_depth_chroma_minus8", 0).bits("bypass, matrix", "00");
    bits.ue("log2_max_frame_num_minus4", 0).ue("pic_order_cnt_type", 2).ue("max_num_ref_frames", 1);
    bits.u(1, "gaps_in_frame_num_value_allowed_flag", 0).ue("pic_width_in_mbs_minus1", widthInMbs - 1);
    bits.ue("pic_height_in_map_units_minus1", 8).bits("frame_mbs_only, direct_8x8, crop, vui", "1100");
    return bits;
}

std::vector<uint8_t> sps(uint32_t id, uint32_t widthInMbs = 11, uint32_t chroma_format_idc = 1) {
    return avcUnit(7, spsData(id, widthInMbs, chroma_format_idc, chroma_format_idc == 3 ? 244 : 100));
}

std::vector<uint8_t> subsetSps(uint32_t id, uint32_t widthInMbs = 11, uint32_t chroma_format_idc = 1) {
    BitWriter bits = spsData(id, widthInMbs, chroma_format_idc, 244);
    return avcUnit(15, bits.u(1, "additional_extension2_flag", 0));
}

std::vector<uint8_t> spsExtension(uint32_t id, uint32_t aux_format_idc = 0) {
    BitWriter bits;
    bits.ue("seq_parameter_set_id", id).ue("aux_format_idc", aux_format_idc);
    return avcUnit(13, bits.u(1, "additional_extension_flag", 0));
}

BitWriter ppsHead(uint32_t id, uint32_t spsId, int32_t pic_init_qp_minus26) {
    BitWriter bits;
    bits.ue("pic_parameter_set_id", id).ue("seq_parameter_set_id", spsId).bits("cabac, bottom field", "10");
    bits.ue("num_slice_groups_minus1", 0).ue("l0", 0).ue("l1", 0).bits("weighted_pred, bipred", "000");
    bits.se("pic_init_qp_minus26", pic_init_qp_minus26).se("pic_init_qs_minus26", 0);
    return bits.se("chroma_qp_index_offset", 0).bits("deblocking, intra, redundant", "100");
}

std::vector<uint8_t> pps(uint32_t id, uint32_t spsId, int32_t pic_init_qp_minus26 = 0) {
    return avcUnit(8, ppsHead(id, spsId, pic_init_qp_minus26));
}

// With the 12 flags of scaling lists that 4:4:4 has; other formats have 8.
std::vector<uint8_t> pps444(uint32_t id, uint32_t spsId, bool list8 = false) {
    BitWriter bits = ppsHead(id, spsId, 0);
    bits.bits("transform_8x8_mode_flag, pic_scaling_matrix_present_flag", "11");
    bits.bits("pic_scaling_list_present_flag[0..7]", "0000 0000");
    bits.u(1, "pic_scaling_list_present_flag[8]", list8 ? 1 : 0);
    if (list8) {
        bits.se("delta_scale", -8);
    }
    bits.bits("pic_scaling_list_present_flag[9..11]", "000");
    return avcUnit(8, bits.se("second_chroma_qp_index_offset", 5));
}

SetEvent take(ParameterSets& sets, const std::vector<uint8_t>& unit) {
    return sets.take(bytesOf(unit)).event;
}

class AvcParameterSets : public testing::Test {
protected:
    SetEvent take(const std::vector<uint8_t>& unit) { return ::take(*sets, unit); }

    const std::unique_ptr<ParameterSets> sets = std::make_unique<ParameterSets>();
};

TEST_F(AvcParameterSets, repeatsChangesAndReturns) {
    EXPECT_EQ(take(sps(0, 11)), SetEvent::First);
    EXPECT_EQ(take(sps(0, 11)), SetEvent::Repeated);
    EXPECT_EQ(take(sps(1, 11)), SetEvent::First);
    EXPECT_EQ(take(sps(0, 20)), SetEvent::Changed);
    EXPECT_EQ(sets->sps(0)->data.pic_width_in_mbs_minus1, 19U);
    EXPECT_EQ(sets->sps(1)->data.pic_width_in_mbs_minus1, 10U);
    EXPECT_EQ(take(sps(0, 11)), SetEvent::Returned);
    EXPECT_EQ(sets->sps(0)->data.pic_width_in_mbs_minus1, 10U);
    EXPECT_EQ(take(sps(0, 30)), SetEvent::Changed);
}

// nal_ref_idc and zero bytes after a unit are no content.
TEST_F(AvcParameterSets, contentFollowsTheHeader) {
    EXPECT_EQ(take(avcUnit(7, spsData(0, 11, 1, 100), 3)), SetEvent::First);
    EXPECT_EQ(take(avcUnit(7, spsData(0, 11, 1, 100), 1)), SetEvent::Repeated);
    std::vector<uint8_t> unit = sps(0, 11);
    unit.insert(unit.end(), 5, 0);
    EXPECT_EQ(take(unit), SetEvent::Repeated);
}

TEST_F(AvcParameterSets, kindsHaveTheirOwnIdentifiers) {
    SetTaken taken = sets->take(bytesOf(sps(31)));
    EXPECT_EQ(taken.nal_unit_type, 7U);
    EXPECT_EQ(taken.id, 31U);
    EXPECT_TRUE(taken.hasId);
    taken = sets->take(bytesOf(subsetSps(31)));
    EXPECT_EQ(taken.nal_unit_type, 15U);
    EXPECT_EQ(taken.id, 31U);
    EXPECT_EQ(taken.event, SetEvent::First);
    taken = sets->take(bytesOf(spsExtension(31)));
    EXPECT_EQ(taken.nal_unit_type, 13U);
    EXPECT_EQ(taken.event, SetEvent::First);
    taken = sets->take(bytesOf(pps(255, 31)));
    EXPECT_EQ(taken.id, 255U);
    EXPECT_EQ(taken.event, SetEvent::First);
    ASSERT_NE(sets->sps(31), nullptr);
    ASSERT_NE(sets->subsetSps(31), nullptr);
    ASSERT_NE(sets->spsExtension(31), nullptr);
    ASSERT_NE(sets->pps(255), nullptr);
    EXPECT_EQ(sets->pps(255)->seq_parameter_set_id, 31U);
}

TEST_F(AvcParameterSets, nothingForIdentifiersOutOfRange) {
    for (const uint32_t id : {0U, 32U, 255U, 256U, 0xFFFFFFFFU}) {
        EXPECT_EQ(sets->sps(id), nullptr) << id;
        EXPECT_EQ(sets->subsetSps(id), nullptr) << id;
        EXPECT_EQ(sets->spsExtension(id), nullptr) << id;
        EXPECT_EQ(sets->pps(id), nullptr) << id;
        EXPECT_EQ(sets->announce(id), nullptr) << id;
        EXPECT_EQ(sets->activate(id, SliceBegins::CodedVideoSequence).problem, ActivationProblem::NoPps);
    }
    EXPECT_EQ(sets->ofNextPicture(), nullptr);
}

TEST_F(AvcParameterSets, otherUnitsChangeNothing) {
    EXPECT_EQ(sets->take(qv::Bytes()).event, SetEvent::NotASet);
    EXPECT_EQ(take({0x65, 0x88, 0x84}), SetEvent::NotASet);
    EXPECT_EQ(sets->take(bytesOf({0x09, 0xF0})).nal_unit_type, 9U);
}

TEST_F(AvcParameterSets, identifiersOutOfRangeAreFaults) {
    SetTaken taken = sets->take(bytesOf(sps(32)));
    EXPECT_EQ(taken.event, SetEvent::Broken);
    EXPECT_EQ(taken.fault.kind, qv::FaultKind::OutOfRange);
    EXPECT_FALSE(taken.hasId);
    for (const std::vector<uint8_t>& unit : {subsetSps(32), spsExtension(32), pps(256, 0)}) {
        taken = sets->take(bytesOf(unit));
        EXPECT_EQ(taken.event, SetEvent::Broken);
        EXPECT_FALSE(taken.hasId);
    }
    // The PPS has an identifier, but that of its SPS is out of range.
    taken = sets->take(bytesOf(pps(3, 32)));
    EXPECT_EQ(taken.event, SetEvent::Broken);
    EXPECT_TRUE(taken.hasId);
    EXPECT_EQ(taken.id, 3U);
    EXPECT_EQ(sets->activate(3, SliceBegins::Picture).problem, ActivationProblem::FaultyPps);
}

TEST_F(AvcParameterSets, aFaultKeepsTheEarlierSet) {
    EXPECT_EQ(take(sps(2, 11)), SetEvent::First);
    std::vector<uint8_t> cut = sps(2, 3000);
    cut.resize(cut.size() - 2);
    const SetTaken taken = sets->take(bytesOf(cut));
    EXPECT_EQ(taken.event, SetEvent::Broken);
    EXPECT_TRUE(taken.hasId);
    EXPECT_EQ(taken.id, 2U);
    EXPECT_EQ(taken.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_EQ(sets->sps(2)->data.pic_width_in_mbs_minus1, 10U);
    EXPECT_EQ(take(sps(2, 11)), SetEvent::Repeated);
}

TEST_F(AvcParameterSets, aSetWithAFaultIsKeptUntilABetterOneComes) {
    std::vector<uint8_t> cut = sps(2, 3000);
    cut.resize(cut.size() - 2);
    EXPECT_EQ(take(cut), SetEvent::Broken);
    ASSERT_NE(sets->sps(2), nullptr);
    EXPECT_EQ(sets->sps(2)->data.chroma_format_idc, 1U);
    EXPECT_EQ(take(cut), SetEvent::Broken);
    take(pps(0, 2));
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::FaultySps);
    EXPECT_EQ(take(sps(2, 12)), SetEvent::Changed);
    const Activation activation = sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_EQ(activation.sps->pic_width_in_mbs_minus1, 11U);
}

TEST_F(AvcParameterSets, setsOfAnyKindThatAreTooLong) {
    for (const uint32_t type : {7U, 8U, 13U, 15U}) {
        std::vector<uint8_t> unit(qv::kMostSetBytes + 1, 0xFF);
        unit[0] = static_cast<uint8_t>(0x60 | type);
        EXPECT_EQ(take(unit), SetEvent::TooLong);
    }
    std::vector<uint8_t> slice(qv::kMostSetBytes + 1, 0xFF);
    slice[0] = 0x65;
    EXPECT_EQ(take(slice), SetEvent::NotASet);
    std::vector<uint8_t> longest = sps(0);
    longest.resize(qv::kMostSetBytes, 0x00);
    EXPECT_EQ(take(longest), SetEvent::First);
}

TEST_F(AvcParameterSets, everyCutOfEverySet) {
    take(sps(0, 11));
    take(pps(0, 0));
    const std::vector<uint8_t> units[] = {sps(0, 300), subsetSps(0, 300), spsExtension(0, 1), pps(0, 0, 7),
                                          pps444(0, 0, true)};
    for (const std::vector<uint8_t>& unit : units) {
        for (size_t size = 0; size < unit.size(); ++size) {
            sets->take({unit.data(), size});
            ASSERT_EQ(sets->sps(0)->data.pic_width_in_mbs_minus1, 10U);
            ASSERT_EQ(sets->pps(0)->pic_init_qp_minus26, 0);
        }
    }
}

// --- SPS extensions ---

TEST_F(AvcParameterSets, anExtensionBelongsToTheContentBeforeIt) {
    take(spsExtension(0));
    EXPECT_EQ(sets->spsExtension(0), nullptr);
    take(sps(0, 11));
    EXPECT_EQ(sets->spsExtension(0), nullptr);
    take(spsExtension(0));
    EXPECT_NE(sets->spsExtension(0), nullptr);
    take(sps(0, 11));
    EXPECT_NE(sets->spsExtension(0), nullptr);
    take(sps(0, 12));
    EXPECT_EQ(sets->spsExtension(0), nullptr);
    EXPECT_EQ(take(spsExtension(0)), SetEvent::Repeated);
    EXPECT_NE(sets->spsExtension(0), nullptr);
}

// --- The chroma format that a PPS is read with ---

TEST_F(AvcParameterSets, aPpsMayComeBeforeItsSps) {
    for (const bool list8 : {false, true}) {
        SCOPED_TRACE(list8);
        ParameterSets fresh;
        EXPECT_EQ(::take(fresh, pps444(4, 1, list8)), SetEvent::First);
        EXPECT_EQ(fresh.pps(4)->second_chroma_qp_index_offset, 5);
        const Activation early = fresh.activate(4, SliceBegins::CodedVideoSequence);
        EXPECT_EQ(early.problem, ActivationProblem::NoSps);
        EXPECT_NE(early.pps, nullptr);
        EXPECT_EQ(early.sps, nullptr);
        ::take(fresh, sps(1, 11, 3));
        EXPECT_EQ(fresh.pps(4)->second_chroma_qp_index_offset, 5);
        EXPECT_EQ(fresh.activate(4, SliceBegins::CodedVideoSequence).problem, ActivationProblem::None);
    }
}

// With 4:2:0 elements are left over after it, with 4:4:4 the ninth list runs past its end.
TEST_F(AvcParameterSets, aPpsBeforeItsSpsHasAFaultOnlyInEveryFormat) {
    BitWriter bits = ppsHead(4, 1, 0);
    bits.bits("transform_8x8_mode_flag, pic_scaling_matrix_present_flag", "11");
    bits.bits("pic_scaling_list_present_flag[0..7]", "0000 0000");
    bits.se("second_chroma_qp_index_offset", 0).u(8, "left over", 0);
    const std::vector<uint8_t> unit = avcUnit(8, bits);
    EXPECT_FALSE(qv::avc::readPps(bytesOf(unit), 3).ok());
    EXPECT_EQ(take(unit), SetEvent::First);
    ASSERT_NE(sets->pps(4), nullptr);
    EXPECT_TRUE(sets->pps(4)->transform_8x8_mode_flag);
}

TEST_F(AvcParameterSets, aPpsIsReadWithTheFormatOfItsSps) {
    take(sps(0, 11, 1));
    EXPECT_EQ(take(pps444(0, 0)), SetEvent::Broken);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::FaultyPps);
    // The SPS changes, and with it what the PPS says.
    take(sps(0, 11, 3));
    EXPECT_EQ(sets->pps(0)->second_chroma_qp_index_offset, 5);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::None);
    EXPECT_EQ(take(pps444(0, 0)), SetEvent::Repeated);
    EXPECT_EQ(sets->pps(0)->second_chroma_qp_index_offset, 5);
    take(sps(0, 11, 1));
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::FaultyPps);
}

TEST_F(AvcParameterSets, aPpsMayReferToAnSpsAndToASubsetSps) {
    take(sps(0, 11, 1));
    take(subsetSps(0, 22, 3));
    take(pps444(0, 0, true));
    // Read as 4:2:0 the element is one of the lists' bits.
    EXPECT_EQ(sets->pps(0, false)->second_chroma_qp_index_offset, 0);
    EXPECT_EQ(sets->pps(0, true)->second_chroma_qp_index_offset, 5);
    EXPECT_EQ(sets->pps(0, false)->second_chroma_qp_index_offset, 0);
    const Activation base = sets->activate(0, SliceBegins::CodedVideoSequence);
    const Activation view = sets->activate(0, SliceBegins::CodedVideoSequence, true);
    EXPECT_EQ(base.sps->pic_width_in_mbs_minus1, 10U);
    EXPECT_EQ(view.sps->pic_width_in_mbs_minus1, 21U);
    EXPECT_NE(base.pps, view.pps);
}

TEST_F(AvcParameterSets, aPpsIsReadAsThatOfASetThatIsNotThere) {
    take(sps(0, 11, 3));
    take(pps444(0, 0));
    EXPECT_EQ(sets->pps(0, false)->second_chroma_qp_index_offset, 5);
    EXPECT_NE(sets->pps(0, true), nullptr);
    take(subsetSps(3, 22, 3));
    take(pps444(1, 3));
    EXPECT_EQ(sets->pps(1, true)->second_chroma_qp_index_offset, 5);
    EXPECT_NE(sets->pps(1, false), nullptr);
}

TEST_F(AvcParameterSets, ofSeveralProblemsTheOneOfTheLowestValue) {
    take(sps(0, 11));
    take(pps(0, 0));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    take(pps(0, 3));
    EXPECT_EQ(sets->activate(0, SliceBegins::Nothing).problem, ActivationProblem::NoSps)
        << "and the PPS has changed";
}

TEST_F(AvcParameterSets, aUnitOfZeroBytes) {
    const std::vector<uint8_t> unit = {0x68, 0x00, 0x00, 0x00};
    EXPECT_EQ(take(unit), SetEvent::Broken);
    EXPECT_EQ(take(unit), SetEvent::Broken);
}

TEST_F(AvcParameterSets, aPpsOfASubsetSpsAlone) {
    take(subsetSps(3, 22, 3));
    EXPECT_EQ(take(pps444(0, 3)), SetEvent::First);
    EXPECT_EQ(sets->pps(0, true)->second_chroma_qp_index_offset, 5);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence).problem, ActivationProblem::NoSps);
    EXPECT_EQ(sets->activate(0, SliceBegins::CodedVideoSequence, true).problem, ActivationProblem::None);
}

// --- Activation ---

TEST_F(AvcParameterSets, activation) {
    take(sps(0, 11));
    take(sps(1, 22));
    take(pps(0, 0));
    take(pps(1, 1));
    Activation activation = sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_EQ(activation.pps, sets->pps(0));
    EXPECT_EQ(activation.sps, &sets->sps(0)->data);
    activation = sets->activate(0, SliceBegins::Nothing);
    EXPECT_FALSE(activation.spsIsNew);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    // Another SPS needs an IDR picture.
    activation = sets->activate(1, SliceBegins::CodedVideoSequence);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    for (const SliceBegins begins : {SliceBegins::Nothing, SliceBegins::Picture}) {
        sets->activate(1, SliceBegins::CodedVideoSequence);
        activation = sets->activate(0, begins);
        EXPECT_TRUE(activation.spsIsNew);
        EXPECT_EQ(activation.problem, ActivationProblem::OtherSps);
        EXPECT_EQ(activation.sps, &sets->sps(0)->data);
    }
    // What was not allowed is active all the same.
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture).problem, ActivationProblem::None);
}

TEST_F(AvcParameterSets, theContentOfTheActiveSpsMayChangeBetweenSequencesOnly) {
    take(sps(0, 11));
    take(pps(0, 0));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    take(sps(0, 11));
    EXPECT_EQ(sets->activate(0, SliceBegins::Picture).problem, ActivationProblem::None);
    take(sps(0, 12));
    Activation activation = sets->activate(0, SliceBegins::Picture);
    EXPECT_EQ(activation.problem, ActivationProblem::SpsChanged);
    EXPECT_TRUE(activation.spsIsNew);
    EXPECT_EQ(activation.sps->pic_width_in_mbs_minus1, 11U);
    take(sps(0, 11));
    activation = sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(activation.problem, ActivationProblem::None);
    EXPECT_TRUE(activation.spsIsNew);
}

TEST_F(AvcParameterSets, thePpsMayChangeBetweenPicturesOnly) {
    take(sps(0, 11));
    take(pps(0, 0, 0));
    take(pps(1, 0, 1));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    // Slices of a picture may refer to different PPS.
    EXPECT_EQ(sets->activate(1, SliceBegins::Nothing).problem, ActivationProblem::None);
    take(pps(1, 0, 2));
    const Activation activation = sets->activate(1, SliceBegins::Nothing);
    EXPECT_EQ(activation.problem, ActivationProblem::PpsChanged);
    EXPECT_FALSE(activation.spsIsNew);
    EXPECT_EQ(activation.pps->pic_init_qp_minus26, 2);
    take(pps(1, 0, 3));
    EXPECT_EQ(sets->activate(1, SliceBegins::Picture).problem, ActivationProblem::None);
}

// Views may refer to subset SPS with identifiers of their own.
TEST_F(AvcParameterSets, viewsMayHaveDifferentSubsetSps) {
    take(sps(0, 11));
    take(subsetSps(1, 11));
    take(subsetSps(2, 11));
    take(pps(0, 0));
    take(pps(1, 1));
    take(pps(2, 2));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_TRUE(sets->activate(1, SliceBegins::CodedVideoSequence, true).spsIsNew);
    EXPECT_TRUE(sets->activate(2, SliceBegins::CodedVideoSequence, true).spsIsNew);
    for (int i = 0; i < 3; ++i) {
        for (const uint32_t id : {1U, 2U}) {
            const Activation activation = sets->activate(id, SliceBegins::Picture, true);
            EXPECT_EQ(activation.problem, ActivationProblem::None);
            EXPECT_FALSE(activation.spsIsNew);
        }
    }
    take(subsetSps(2, 12));
    EXPECT_EQ(sets->activate(2, SliceBegins::Picture, true).problem, ActivationProblem::SpsChanged);
    take(subsetSps(2, 13));
    EXPECT_EQ(sets->activate(2, SliceBegins::CodedVideoSequence, true).problem, ActivationProblem::None);
    std::vector<uint8_t> cut = subsetSps(4, 3000);
    cut.resize(cut.size() - 2);
    take(cut);
    take(pps(4, 4));
    EXPECT_EQ(sets->activate(4, SliceBegins::CodedVideoSequence, true).problem, ActivationProblem::FaultySps);
    take(pps(5, 5));
    EXPECT_EQ(sets->activate(5, SliceBegins::CodedVideoSequence, true).problem, ActivationProblem::NoSps);
}

// --- SEI messages ---

TEST_F(AvcParameterSets, messagesReferToTheSpsOfTheNextPicture) {
    EXPECT_EQ(sets->ofNextPicture(), nullptr);
    take(sps(0, 11));
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(0));
    take(sps(1, 22));
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
    take(pps(0, 0));
    take(pps(1, 1));
    sets->activate(0, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(0));
    // A buffering period names the SPS that the IDR picture after it activates.
    EXPECT_EQ(sets->announce(1), sets->sps(1));
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
    // One that names nothing changes nothing.
    EXPECT_EQ(sets->announce(7), nullptr);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
    sets->activate(0, SliceBegins::Picture);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(0));
    sets->announce(1);
    EXPECT_TRUE(sets->activate(1, SliceBegins::CodedVideoSequence).spsIsNew);
    EXPECT_EQ(sets->ofNextPicture(), sets->sps(1));
}

TEST_F(AvcParameterSets, messagesReferToThePpsOfTheNextPicture) {
    EXPECT_EQ(sets->ppsOfNextPicture(), nullptr);
    take(sps(0, 11));
    take(pps(1, 0));
    EXPECT_EQ(sets->ppsOfNextPicture(), sets->pps(1));
    take(pps(0, 0));
    EXPECT_EQ(sets->ppsOfNextPicture(), sets->pps(0));
    sets->activate(1, SliceBegins::CodedVideoSequence);
    EXPECT_EQ(sets->ppsOfNextPicture(), sets->pps(1));
    // Neither a set that comes nor slices of other views change it.
    take(pps(2, 0));
    take(subsetSps(0));
    sets->activate(0, SliceBegins::Picture, true);
    EXPECT_EQ(sets->ppsOfNextPicture(), sets->pps(1));
    sets->activate(2, SliceBegins::Picture);
    EXPECT_EQ(sets->ppsOfNextPicture(), sets->pps(2));
}

// --- Memory ---

TEST_F(AvcParameterSets, onlyTakingAllocates) {
    const std::vector<uint8_t> units[] = {sps(0, 11, 1), subsetSps(0, 22, 3), spsExtension(0),
                                          pps444(0, 0, true)};
    for (const std::vector<uint8_t>& unit : units) {
        take(unit);
    }
    const AllocationFault count(Allocator::New, 0);
    sets->pps(0, false);
    sets->pps(0, true);
    sets->sps(0);
    sets->subsetSps(0);
    sets->spsExtension(0);
    sets->activate(0, SliceBegins::CodedVideoSequence);
    sets->activate(0, SliceBegins::Picture, true);
    sets->announce(0);
    sets->ofNextPicture();
    sets->ppsOfNextPicture();
    // Nor does a set that is there already.
    for (const std::vector<uint8_t>& unit : units) {
        take(unit);
    }
    EXPECT_EQ(count.seen(), 0);
}

TEST_F(AvcParameterSets, allocationsThatFailLeaveTheSetsAsTheyWere) {
    const std::vector<uint8_t> first = sps(0, 11);
    const std::vector<uint8_t> second = sps(0, 22);
    const std::vector<uint8_t> other = pps(0, 0);
    take(first);
    for (const std::vector<uint8_t>* unit : {&second, &other}) {
        int failed = 0;
        for (int nth = 1;; ++nth) {
            bool threw = false;
            const AllocationFault fault(Allocator::New, nth);
            try {
                take(*unit);
            } catch (const std::bad_alloc&) {
                threw = true;
            }
            if (!threw) {
                break;
            }
            ++failed;
            ASSERT_EQ(sets->sps(0)->data.pic_width_in_mbs_minus1, unit == &second ? 10U : 21U);
            ASSERT_EQ(sets->pps(0), nullptr);
        }
        EXPECT_GT(failed, 0);
    }
    EXPECT_NE(sets->pps(0), nullptr);
    EXPECT_EQ(sets->sps(0)->data.pic_width_in_mbs_minus1, 21U);
}

// A stream that keeps changing a set is remembered no further than its last contents.
TEST_F(AvcParameterSets, oldContentsAreForgotten) {
    for (uint32_t width = 1; width <= 65; ++width) {
        EXPECT_EQ(take(sps(0, width)), width == 1 ? SetEvent::First : SetEvent::Changed);
    }
    EXPECT_EQ(take(sps(0, 2)), SetEvent::Returned);
    EXPECT_EQ(take(sps(0, 1)), SetEvent::Changed);
}

TEST_F(AvcParameterSets, randomBytes) {
    Random random(11);
    const uint8_t types[] = {7, 8, 13, 15, 5};
    for (int round = 0; round < 20000; ++round) {
        std::vector<uint8_t> unit(1 + random() % 40);
        for (uint8_t& byte : unit) {
            byte = static_cast<uint8_t>(random());
        }
        unit[0] = static_cast<uint8_t>(0x60 | types[random() % 5]);
        const SetTaken taken = sets->take(bytesOf(unit));
        ASSERT_LE(taken.id, 255U);
        const Activation activation =
            sets->activate(static_cast<uint32_t>(random() % 260), SliceBegins::Picture, random() % 2 != 0);
        ASSERT_TRUE(activation.pps != nullptr || activation.problem == ActivationProblem::NoPps);
        sets->announce(static_cast<uint32_t>(random() % 40));
        sets->ofNextPicture();
    }
}

}  // namespace
