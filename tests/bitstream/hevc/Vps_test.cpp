// The video parameter set of H.265.
#include "bitstream/hevc/Vps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "../support/MemoryChecks.h"
#include "../support/StructureChecks.h"
#include "Units.h"
#include "bitstream/hevc/FrameRate.h"
#include "bitstream/hevc/VpsLayers.h"
#include "bitstream/hevc/VpsSyntax.h"

namespace {

using namespace qv_test;
using qv::FaultKind;
using qv::hevc::Vps;

StructureUnderTest<Vps> vps() {
    StructureUnderTest<Vps> structure;
    structure.generate = [](RandomUnit& s, Vps& record) { qv::hevc::video_parameter_set_unit(s, record); };
    structure.read = [](qv::Bytes unit) { return qv::hevc::readVps(unit); };
    structure.trace = [](qv::Bytes unit, qv::TraceVisitor& visitor) {
        return qv::hevc::traceVps(unit, visitor);
    };
    structure.write = [](const Vps& record, std::vector<uint8_t>& out) {
        return qv::hevc::writeVps(record, out);
    };
    structure.size = [](const Vps& record) { return qv::hevc::sizeOf(record); };
    structure.extensionData = {"vps_extension_data_flag"};
    structure.violable = 60;
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("nal_unit_type", {qv::hevc::kNalVps});
        unit.choose("scalability_mask_flag", {0, 0, 0, 1});
        // Lists are short but now and then.
        if (random() % 64 != 0) {
            unit.choose("vps_num_layer_sets_minus1", {0, 1, 2, 3, 5});
            unit.choose("vps_max_layer_id", {0, 1, 2, 5, 9});
            unit.choose("num_add_layer_sets", {0, 1, 3});
            unit.choose("num_add_olss", {0, 1, 3});
            unit.choose("vps_num_rep_formats_minus1", {0, 1, 2});
            unit.choose("vps_non_vui_extension_length", {0, 1, 5});
            unit.choose("vps_num_add_hrd_params", {0, 1, 2});
        }
        if (random() % 16 != 0) {
            unit.choose("vps_max_layers_minus1", {0, 1, 2, 3, 4, 7});
            unit.choose("cpb_cnt_minus1", {0, 1});
            unit.choose("num_partitions_in_scheme_minus1", {0, 1});
            unit.choose("num_signalled_partitioning_schemes", {0, 1});
            unit.choose("num_bsp_schedules_minus1", {0, 1});
            unit.choose("vps_num_profile_tier_level_minus1", {0, 1, 2, 3});
            unit.choose("num_cp", {0, 1, 2});
        }
    };
    return structure;
}

TEST(HevcVps, roundTrips) {
    checkRoundTrips(vps(), unitRounds(500));
}

TEST(HevcVps, everyRange) {
    checkRanges(vps(), unitRounds());
}

TEST(HevcVps, cutAtEveryBit) {
    checkCuts(vps(), unitRounds(25));
}

uint64_t sumOfLayers(const Vps& vps) {
    const qv::hevc::LayerSets sets = qv::hevc::layerSetsOf(vps);
    uint16_t ids[qv::hevc::kMostLayers] = {};
    uint64_t sum = qv::hevc::layersOf(vps).NumViews + qv::hevc::viewIdOf(vps, sets.layers, 1);
    for (uint32_t i = 0; i < sets.NumLayerSets; ++i) {
        sum += qv::hevc::layerIdListOf(sets, i, ids) + ids[0] +
               qv::hevc::maxSubLayersInLayerSetMinus1(vps, sets, i);
    }
    return sum;
}

const std::vector<Derivation<Vps>> kDerivations = {
    {"layerSetsOf", sumOfLayers},
    {"frameRateOf",
     [](const Vps& vps) { return qv::hevc::frameRateOf(vps, false).framesPerSecond.numerator; }},
    {"OutputLayerSetReader",
     [](const Vps& vps) {
         qv::hevc::OutputLayerSet set;
         uint64_t sum = 0;
         for (qv::hevc::OutputLayerSetReader reader(vps); reader.next(set);) {
             sum += 1 + set.NumLayersInIdList;
         }
         return sum;
     }},
    {"VpsHrdReader",
     [](const Vps& vps) {
         qv::hevc::VpsHrd hrd;
         uint64_t sum = 0;
         for (qv::hevc::VpsHrdReader reader(vps); reader.next(hrd);) {
             sum += 1 + hrd.hrd_parameters.sub_layer[0].cpb_cnt_minus1;
         }
         return sum;
     }},
    {"readVpsHrd",
     [](const Vps& vps) -> uint64_t {
         qv::hevc::VpsHrd hrd;
         return qv::hevc::readVpsHrd(vps, 1, hrd) ? 1 : 0;
     }},
    {"LayerSetRateReader",
     [](const Vps& vps) {
         qv::hevc::LayerSetRates rates;
         uint64_t sum = 0;
         for (qv::hevc::LayerSetRateReader reader(vps); reader.next(rates);) {
             sum += 1 + rates.layerSetIdx;
         }
         return sum;
     }},
    {"layerDependencyOf",
     [](const Vps& vps) {
         const qv::hevc::LayerDependency dependency = qv::hevc::layerDependencyOf(vps, 2, 1);
         return uint64_t{dependency.max_tid_il_ref_pics_plus1} + dependency.direct_dependency_type;
     }},
};

TEST(HevcVps, noAllocationAndNoByteOutside) {
    checkMemory(vps(), unitRounds(40), kDerivations);
    StructureUnderTest<Vps> ofViews = vps();
    ofViews.steer = [](RandomUnit& unit, Random& random) {
        vps().steer(unit, random);
        unit.choose("vps_extension_flag", {1}).choose("vps_3d_extension_flag", {1});
        unit.choose("vps_max_layers_minus1", {1, 2}).choose("scalability_mask_flag", {0, 1});
    };
    checkMemory(ofViews, unitRounds(40), {{"cameraParametersOf", [](const Vps& vps) -> uint64_t {
                                               qv::hevc::CameraParameters parameters;
                                               return qv::hevc::cameraParametersOf(vps, 1, parameters) ? 1
                                                                                                       : 0;
                                           }}});
}

TEST(HevcVps, everyElementOneAboveItsRange) {
    const std::set<std::string> elements = {"forbidden_zero_bit",
                                            "nuh_temporal_id_plus1",
                                            "vps_max_sub_layers_minus1",
                                            "vps_max_dec_pic_buffering_minus1",
                                            "vps_max_num_reorder_pics",
                                            "vps_max_layer_id",
                                            "vps_num_layer_sets_minus1",
                                            "vps_num_units_in_tick",
                                            "vps_time_scale",
                                            "vps_num_hrd_parameters",
                                            "hrd_layer_set_idx",
                                            "elemental_duration_in_tc_minus1",
                                            "cpb_cnt_minus1",
                                            "vps_extension_alignment_bit_equal_to_one",
                                            "dimension_id_len_minus1",
                                            "layer_id_in_nuh",
                                            "num_add_layer_sets",
                                            "highest_layer_idx_plus1",
                                            "sub_layers_vps_max_minus1",
                                            "vps_num_profile_tier_level_minus1",
                                            "num_add_olss",
                                            "layer_set_idx_for_ols_minus1",
                                            "profile_tier_level_idx",
                                            "vps_num_rep_formats_minus1",
                                            "chroma_and_bit_depth_vps_present_flag",
                                            "bit_depth_vps_luma_minus8",
                                            "bit_depth_vps_chroma_minus8",
                                            "vps_rep_format_idx",
                                            "direct_dep_type_len_minus2",
                                            "vps_non_vui_extension_length",
                                            "vps_vui_alignment_bit_equal_to_one",
                                            "vps_video_signal_info_idx",
                                            "vps_num_add_hrd_params",
                                            "num_sub_layer_hrd_minus1",
                                            "num_signalled_partitioning_schemes",
                                            "num_partitions_in_scheme_minus1",
                                            "num_bsp_schedules_minus1",
                                            "bsp_hrd_idx",
                                            "bsp_sched_idx",
                                            "vps_3d_extension_alignment_bit_equal_to_one"};
    StructureUnderTest<Vps> structure = vps();
    structure.violable = 100;
    structure.steer = [steer = structure.steer](RandomUnit& unit, Random& random) {
        steer(unit, random);
        unit.choose("vps_max_sub_layers_minus1", {0, 1});
        unit.choose("vps_max_layers_minus1", {1, 2, 3});
        unit.choose("vps_extension_flag", {1});
        unit.choose("vps_vui_present_flag", {1});
        unit.choose("vps_vui_bsp_hrd_present_flag", {1});
        unit.choose("vps_extension2_flag", {1});
        unit.choose("vps_3d_extension_flag", {1});
    };
    EXPECT_THAT(elementsNotViolated(structure, elements), testing::IsEmpty());
}

// --- The base form ---

// The elements up to the layer sets.
BitWriter headOfVps(uint32_t vps_max_layers_minus1, uint32_t vps_max_sub_layers_minus1 = 0,
                    bool baseLayerIsInternal = true) {
    BitWriter bits;
    bits.u(4, "vps_video_parameter_set_id", 1);
    bits.u(1, "vps_base_layer_internal_flag", baseLayerIsInternal ? 1 : 0);
    bits.u(1, "vps_base_layer_available_flag", 1).u(6, "vps_max_layers_minus1", vps_max_layers_minus1);
    bits.u(3, "vps_max_sub_layers_minus1", vps_max_sub_layers_minus1);
    bits.u(1, "vps_temporal_id_nesting_flag", 1).u(16, "vps_reserved_0xffff_16bits", 0xFFFF);
    mainProfileTierLevel(bits);
    if (vps_max_sub_layers_minus1 > 0) {
        bits.u(16, "sub-layers without profile and level", 0);
    }
    bits.u(1, "vps_sub_layer_ordering_info_present_flag", 0).ue("vps_max_dec_pic_buffering_minus1", 4);
    bits.ue("vps_max_num_reorder_pics", 2).ue("vps_max_latency_increase_plus1", 7);
    return bits;
}

TEST(HevcVps, elementsOfTheBase) {
    BitWriter bits = headOfVps(0, 2);
    bits.u(6, "vps_max_layer_id", 0).ue("vps_num_layer_sets_minus1", 0);
    bits.u(1, "vps_timing_info_present_flag", 1).u(32, "vps_num_units_in_tick", 1001);
    bits.u(32, "vps_time_scale", 30000).u(1, "vps_poc_proportional_to_timing_flag", 1);
    bits.ue("vps_num_ticks_poc_diff_one_minus1", 0xFFFFFFFE).ue("vps_num_hrd_parameters", 0);
    bits.u(1, "vps_extension_flag", 0);
    const std::vector<uint8_t> unit = hevcUnit(32, bits);
    const qv::Read<Vps> read = qv::hevc::readVps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const Vps& record = read.record;
    EXPECT_EQ(record.vps_video_parameter_set_id, 1U);
    EXPECT_EQ(record.vps_max_sub_layers_minus1, 2U);
    EXPECT_EQ(record.vps_reserved_0xffff_16bits, 0xFFFFU);
    EXPECT_EQ(record.profile_tier_level.general_level_idc, 93U);
    for (uint32_t i = 0; i < 3; ++i) {
        EXPECT_EQ(record.vps_max_dec_pic_buffering_minus1[i], 4U) << i;
        EXPECT_EQ(record.vps_max_num_reorder_pics[i], 2U) << i;
        EXPECT_EQ(record.vps_max_latency_increase_plus1[i], 7U) << i;
    }
    EXPECT_EQ(record.layer_id_included_flag[0], 1U);
    EXPECT_EQ(record.vps_num_units_in_tick, 1001U);
    EXPECT_EQ(record.vps_time_scale, 30000U);
    EXPECT_EQ(record.vps_num_ticks_poc_diff_one_minus1, 0xFFFFFFFEU);
    EXPECT_TRUE(record.hrd_parameters.empty());
    expectRewritten(vps(), unit);
}

// 1024 layer sets of 63 layers: 64 449 flags.
TEST(HevcVps, layerSetsOf1024) {
    Random random(7);
    BitWriter bits = headOfVps(62);
    bits.u(6, "vps_max_layer_id", 62).ue("vps_num_layer_sets_minus1", 1023);
    std::vector<uint64_t> sets;
    for (uint32_t i = 1; i < 1024; ++i) {
        sets.push_back(random() >> 1);
        for (uint32_t j = 0; j < 63; ++j) {
            bits.u(1, "layer_id_included_flag", sets.back() >> j & 1);
        }
    }
    bits.u(1, "vps_timing_info_present_flag", 0).u(1, "vps_extension_flag", 0);
    const std::vector<uint8_t> unit = hevcUnit(32, bits);
    const auto read = std::make_unique<qv::Read<Vps>>(qv::hevc::readVps(bytesOf(unit)));
    ASSERT_TRUE(read->ok()) << qv::textOf(read->fault);
    EXPECT_EQ(read->record.vps_num_layer_sets_minus1, 1023U);
    EXPECT_EQ(read->record.layer_id_included_flag[0], 1U);
    for (uint32_t i = 1; i < 1024; ++i) {
        ASSERT_EQ(read->record.layer_id_included_flag[i], sets[i - 1]) << i;
    }
    expectRewritten(vps(), unit);

    RecordingVisitor visitor;
    ASSERT_TRUE(qv::hevc::traceVps(bytesOf(unit), visitor).ok());
    size_t flags = 0;
    for (const qv::TracedElement& element : visitor.elements) {
        if (std::string(element.element.name) == "layer_id_included_flag") {
            const uint32_t i = element.element.subscripts[0];
            const uint32_t j = element.element.subscripts[1];
            ASSERT_EQ(element.value, static_cast<int64_t>(sets[i - 1] >> j & 1));
            ++flags;
        }
    }
    EXPECT_EQ(flags, 1023U * 63);
}

TEST(HevcVps, moreThan1024LayerSets) {
    BitWriter bits = headOfVps(0);
    bits.u(6, "vps_max_layer_id", 0).ue("vps_num_layer_sets_minus1", 1024).u(32, "", 0);
    const std::vector<uint8_t> unit = hevcUnit(32, bits);
    const qv::Read<Vps> read = qv::hevc::readVps(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, FaultKind::OutOfRange);
    EXPECT_STREQ(read.fault.element.name, "vps_num_layer_sets_minus1");
    EXPECT_EQ(read.fault.most, 1023);
}

TEST(HevcVps, extensionsThatAreNotDefinedAreKept) {
    BitWriter bits = headOfVps(0);
    bits.u(6, "vps_max_layer_id", 0).ue("vps_num_layer_sets_minus1", 0);
    bits.u(1, "vps_timing_info_present_flag", 0).u(1, "vps_extension_flag", 1);
    while (bits.bitCount() % 8 != 0) {
        bits.u(1, "vps_extension_alignment_bit_equal_to_one", 1);
    }
    // One layer has no profile_tier_level() of its own here.
    bits.u(1, "splitting_flag", 0).u(16, "scalability_mask_flag", 0).u(1, "vps_nuh_layer_id_present_flag", 0);
    bits.u(4, "view_id_len", 0).bits("sub layers, max tid, default active", "000");
    bits.ue("vps_num_profile_tier_level_minus1", 0).ue("vps_num_rep_formats_minus1", 0);
    bits.u(16, "width", 640).u(16, "height", 480).u(1, "present", 1).u(2, "chroma", 1);
    bits.u(4, "luma", 0).u(4, "chroma", 0).u(1, "window", 0);
    bits.bits("max_one_active_ref_layer_flag, vps_poc_lsb_aligned_flag", "00");
    bits.ue("direct_dep_type_len_minus2", 0).u(1, "direct_dependency_all_layers_flag", 0);
    bits.ue("vps_non_vui_extension_length", 2).u(16, "vps_non_vui_extension_data_byte", 0xABCD);
    bits.u(1, "vps_vui_present_flag", 0);
    bits.bits("vps_extension2_flag, vps_3d_extension_flag, vps_extension3_flag", "101");
    bits.u(30, "vps_extension_data_flag", 0x2AAAAAAA);
    const std::vector<uint8_t> unit = hevcUnit(32, bits);
    const qv::Read<Vps> read = qv::hevc::readVps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.vps_extension3_flag);
    EXPECT_EQ(read.record.vps_extension_data_flag.count, 30U);
    EXPECT_EQ(read.record.extension.rep_format[0].pic_width_vps_in_luma_samples, 640U);
    qv::Reader reader(read.record.extension.vps_non_vui_extension_data_byte);
    uint32_t bytes = 0;
    reader.u(16, "bytes", bytes);
    EXPECT_EQ(bytes, 0xABCDU);
    expectRewritten(vps(), unit);
}

TEST(HevcVps, alignmentBitsAreOne) {
    BitWriter bits = headOfVps(0);
    bits.u(6, "vps_max_layer_id", 0).ue("vps_num_layer_sets_minus1", 0);
    bits.u(1, "vps_timing_info_present_flag", 0).u(1, "vps_extension_flag", 1).u(8, "", 0).u(32, "", 0);
    ASSERT_NE(bits.bitCount() % 8, 0U);
    const std::vector<uint8_t> unit = hevcUnit(32, bits);
    const qv::Read<Vps> read = qv::hevc::readVps(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, FaultKind::OutOfRange);
    EXPECT_STREQ(read.fault.element.name, "vps_extension_alignment_bit_equal_to_one");
}

TEST(HevcVps, moreDimensionsThanTheLayerIdentifierHasBits) {
    BitWriter bits = headOfVps(0);
    bits.u(6, "vps_max_layer_id", 0).ue("vps_num_layer_sets_minus1", 0);
    bits.u(1, "vps_timing_info_present_flag", 0).u(1, "vps_extension_flag", 1);
    while (bits.bitCount() % 8 != 0) {
        bits.u(1, "vps_extension_alignment_bit_equal_to_one", 1);
    }
    bits.u(1, "splitting_flag", 1).u(16, "scalability_mask_flag", 0xFE00).u(32, "", 0);
    const std::vector<uint8_t> unit = hevcUnit(32, bits);
    const qv::Read<Vps> read = qv::hevc::readVps(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, FaultKind::TooManyEntries);
    EXPECT_STREQ(read.fault.element.name, "scalability_mask_flag");
    EXPECT_EQ(read.fault.value, 7);
}

// --- As encoders wrote them ---

TEST(HevcVps, twoViews) {
    const std::vector<uint8_t> unit = hex(
        "40010c11ffff01600000030090000003000003001e959815bf1e20001828b2e0c040000013f100000300000303d1a018000c"
        "14010"
        "a566e90");
    const qv::Read<Vps> read = qv::hevc::readVps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 0U);
    // rbsp_stop_one_bit is bit 403.
    EXPECT_EQ(qv::hevc::sizeOf(read.record).bits, 408U);
    const qv::hevc::VpsExtension& ext = read.record.extension;
    EXPECT_EQ(ext.scalability_mask_flag, 0b10U);
    EXPECT_EQ(ext.layer_id_in_nuh[1], 1);
    EXPECT_EQ(ext.dimension_id[1][0], 1);
    EXPECT_EQ(ext.direct_dependency_flag[1], 1U);
    EXPECT_EQ(ext.vps_num_profile_tier_level_minus1, 2U);
    EXPECT_EQ(ext.profile_tier_level[1].general.profile_idc, 1U);
    EXPECT_EQ(ext.profile_tier_level[1].general_level_idc, 30U);
    EXPECT_EQ(ext.profile_tier_level[2].general.profile_idc, 6U);
    EXPECT_EQ(ext.rep_format[0].pic_width_vps_in_luma_samples, 192U);
    EXPECT_EQ(ext.rep_format[0].pic_height_vps_in_luma_samples, 96U);
    EXPECT_TRUE(ext.direct_dependency_all_layers_flag);
    EXPECT_EQ(ext.direct_dependency_all_layers_type, 2U);
    EXPECT_FALSE(ext.vps_vui_present_flag);
    expectRewritten(vps(), unit);
}

TEST(HevcVps, alphaLayer) {
    const std::vector<uint8_t> unit = hex(
        "40010c11ffff02200000030090000003000003001e959815bf1e1800010704384004000004ec400000030000f46806000305"
        "22514"
        "acd48");
    const qv::Read<Vps> read = qv::hevc::readVps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 0U);
    // rbsp_stop_one_bit is bit 404.
    EXPECT_EQ(qv::hevc::sizeOf(read.record).bits, 408U);
    const qv::hevc::VpsExtension& ext = read.record.extension;
    EXPECT_EQ(ext.scalability_mask_flag, 0b1100U);
    EXPECT_EQ(ext.dimension_id[1][0], 1);
    EXPECT_EQ(ext.dimension_id[1][1], 1);
    EXPECT_EQ(ext.direct_dependency_flag[1], 0U);
    EXPECT_EQ(ext.num_add_layer_sets, 0U);
    EXPECT_EQ(ext.poc_lsb_not_present_flag, 0b10U);
    EXPECT_EQ(ext.rep_format[0].bit_depth_vps_luma_minus8, 2U);
    expectRewritten(vps(), unit);
}

// --- Input that asks for much and has little ---

// Counts at their greatest and no data: the fault comes at once, and what the record holds stays bounded.
TEST(HevcVps, greatCountsWithoutData) {
    BitWriter bits = headOfVps(62, 6);
    bits.u(6, "vps_max_layer_id", 62).ue("vps_num_layer_sets_minus1", 1023);
    const std::vector<uint8_t> unit = hevcUnit(32, bits);
    const auto read = std::make_unique<qv::Read<Vps>>(qv::hevc::readVps(bytesOf(unit)));
    EXPECT_EQ(read->fault.kind, FaultKind::EndOfData);
    EXPECT_EQ(qv::textOf(read->fault.element), "layer_id_included_flag[1][0]");
    EXPECT_EQ(read->record.layer_id_included_flag[1023], 0U);
}

// Every loop of the extension with 62 layers and no bits for them.
TEST(HevcVps, extensionOfManyLayersCutAtEveryBit) {
    Random random(8);
    RandomUnit generator(random);
    vps().steer(generator, random);
    generator.choose("vps_max_layers_minus1", {62}).choose("vps_max_layer_id", {62});
    generator.choose("vps_num_layer_sets_minus1", {40}).choose("vps_extension_flag", {1});
    generator.choose("num_add_olss", {1023}).choose("vps_nuh_layer_id_present_flag", {0});
    generator.choose("vps_vui_present_flag", {1}).choose("vps_vui_bsp_hrd_present_flag", {1});
    auto record = std::make_unique<Vps>();
    qv::hevc::video_parameter_set_unit(generator, *record);
    ASSERT_TRUE(generator.isLegal());
    const uint64_t bits = generator.rbspBits();
    for (uint64_t cut = 16; cut < bits; cut += 1 + cut / 8) {
        const std::vector<uint8_t> unit = generator.cutAt(cut);
        const auto read = std::make_unique<qv::Read<Vps>>(qv::hevc::readVps(bytesOf(unit)));
        EXPECT_EQ(read->fault.kind, FaultKind::EndOfData) << cut;
    }
}

}  // namespace
