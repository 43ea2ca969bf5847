// Units of every type, traced and written from their records.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "../../support/BitWriter.h"
#include "../support/CodedUnit.h"
#include "../support/Hex.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/Unit.h"

namespace {

using namespace qv_test;
using Buffer = std::vector<uint8_t>;

class Names : public qv::TraceVisitor {
public:
    void element(const qv::TracedElement& traced) override {
        names += (names.empty() ? "" : " ") + qv::textOf(traced.element);
    }
    std::string names;
};

struct Traced {
    qv::UnitTrace trace;
    std::string names;
};

Traced traced(const Buffer& unit, const qv::avc::ParameterSets& sets = {}) {
    Names names;
    const qv::UnitTrace trace = qv::avc::traceUnit(bytesOf(unit), sets, names);
    return {trace, names.names};
}

Traced tracedHevc(const Buffer& unit, const qv::hevc::ParameterSets& sets = {}) {
    Names names;
    const qv::UnitTrace trace = qv::hevc::traceUnit(bytesOf(unit), sets, names);
    return {trace, names.names};
}

Buffer avcUnit(uint32_t nal_unit_type, BitWriter rbsp) {
    rbsp.trailingBits();
    return coded({static_cast<uint8_t>(3U << 5 | nal_unit_type)}, rbsp.bytes());
}

Buffer hevcUnit(uint32_t nal_unit_type, BitWriter rbsp) {
    rbsp.trailingBits();
    return coded({static_cast<uint8_t>(nal_unit_type << 1), 1}, rbsp.bytes());
}

Buffer spsOf(uint32_t nal_unit_type, uint32_t chroma_format_idc) {
    BitWriter bits;
    bits.u(8, "profile_idc", 244).u(8, "constraint flags", 0).u(8, "level_idc", 40);
    bits.ue("seq_parameter_set_id", 0).ue("chroma_format_idc", chroma_format_idc);
    if (chroma_format_idc == 3) {
        bits.u(1, "separate_colour_plane_flag", 0);
    }
    bits.ue("bit_depth_luma_minus8", 0).ue("bit_depth_chroma_minus8", 0).bits("bypass, matrix", "00");
    bits.ue("log2_max_frame_num_minus4", 0).ue("pic_order_cnt_type", 2).ue("max_num_ref_frames", 1);
    bits.u(1, "gaps_in_frame_num_value_allowed_flag", 0).ue("pic_width_in_mbs_minus1", 10);
    bits.ue("pic_height_in_map_units_minus1", 8).bits("frame_mbs_only, direct_8x8, crop, vui", "1100");
    if (nal_unit_type == 15) {
        bits.u(1, "additional_extension2_flag", 0);
    }
    return avcUnit(nal_unit_type, bits);
}

// With the 12 flags of scaling lists of 4:4:4.
Buffer pps444() {
    BitWriter bits;
    bits.ue("pic_parameter_set_id", 0).ue("seq_parameter_set_id", 0).bits("cabac, bottom field", "10");
    bits.ue("num_slice_groups_minus1", 0).ue("l0", 0).ue("l1", 0).bits("weighted_pred, bipred", "000");
    bits.se("pic_init_qp_minus26", 0).se("pic_init_qs_minus26", 0).se("chroma_qp_index_offset", 0);
    bits.bits("deblocking, intra, redundant", "100").bits("transform_8x8, matrix", "11");
    bits.bits("pic_scaling_list_present_flag[0..11]", "000000000000");
    return avcUnit(8, bits.se("second_chroma_qp_index_offset", 5));
}

TEST(AvcUnit, StructuresHaveTheirNames) {
    const char* const slice = "slice_layer_without_partitioning_rbsp";
    const char* const extension = "slice_layer_extension_rbsp";
    const char* const expected[32] = {nullptr,
                                      slice,
                                      "slice_data_partition_a_layer_rbsp",
                                      "slice_data_partition_b_layer_rbsp",
                                      "slice_data_partition_c_layer_rbsp",
                                      slice,
                                      "sei_rbsp",
                                      "seq_parameter_set_rbsp",
                                      "pic_parameter_set_rbsp",
                                      "access_unit_delimiter_rbsp",
                                      "end_of_seq_rbsp",
                                      "end_of_stream_rbsp",
                                      "filler_data_rbsp",
                                      "seq_parameter_set_extension_rbsp",
                                      "prefix_nal_unit_rbsp",
                                      "subset_seq_parameter_set_rbsp",
                                      "depth_parameter_set_rbsp",
                                      nullptr,
                                      nullptr,
                                      slice,
                                      extension,
                                      extension};
    for (uint32_t type = 0; type < 32; ++type) {
        EXPECT_STREQ(qv::avc::structureOf(type), expected[type]) << type;
    }
    EXPECT_EQ(qv::avc::structureOf(32), nullptr);
}

TEST(HevcUnit, StructuresHaveTheirNames) {
    for (uint32_t type = 0; type < 64; ++type) {
        const bool isSlice = type <= 9 || (type >= 16 && type <= 21);
        const char* const sets[] = {"video_parameter_set_rbsp",
                                    "seq_parameter_set_rbsp",
                                    "pic_parameter_set_rbsp",
                                    "access_unit_delimiter_rbsp",
                                    "end_of_seq_rbsp",
                                    "end_of_bitstream_rbsp",
                                    "filler_data_rbsp",
                                    "sei_rbsp",
                                    "sei_rbsp"};
        const char* const expected = isSlice                    ? "slice_segment_layer_rbsp"
                                     : type >= 32 && type <= 40 ? sets[type - 32]
                                                                : nullptr;
        EXPECT_STREQ(qv::hevc::structureOf(type), expected) << type;
    }
}

TEST(AvcUnit, OfOtherTypesTheHeaderIsTraced) {
    const char* const header = "forbidden_zero_bit nal_ref_idc nal_unit_type";
    for (const int type : {0, 1, 2, 3, 4, 5, 16, 17, 18, 19, 22, 31}) {
        const Traced unit = traced({static_cast<uint8_t>(type), 0x88, 0x84});
        EXPECT_EQ(unit.names, header) << type;
        EXPECT_TRUE(unit.trace.ok());
        EXPECT_FALSE(unit.trace.isWhole);
        EXPECT_EQ(unit.trace.trailing.bits, 0U);
        EXPECT_EQ(unit.trace.nal_unit_type, static_cast<uint32_t>(type));
    }
    EXPECT_EQ(traced({0x74, 0x40, 0x12, 0x07, 0x80}).names,
              std::string(header) +
                  " svc_extension_flag non_idr_flag priority_id view_id temporal_id anchor_pic_flag "
                  "inter_view_flag reserved_one_bit");
}

TEST(HevcUnit, OfOtherTypesTheHeaderIsTraced) {
    for (const int type : {0, 1, 19, 21, 22, 41, 48, 63}) {
        const Traced unit = tracedHevc({static_cast<uint8_t>(type << 1), 1, 0x80});
        EXPECT_EQ(unit.names, "forbidden_zero_bit nal_unit_type nuh_layer_id nuh_temporal_id_plus1");
        EXPECT_TRUE(unit.trace.ok());
        EXPECT_FALSE(unit.trace.isWhole);
        EXPECT_EQ(unit.trace.trailing.bits, 0U);
        EXPECT_EQ(unit.trace.nal_unit_type, static_cast<uint32_t>(type));
    }
}

TEST(AvcUnit, ParameterSetsDelimitersAndEndsAreTracedWhole) {
    const struct {
        Buffer unit;
        const char* last;
    } cases[] = {
        {spsOf(7, 1), "rbsp_alignment_zero_bit"},
        {spsOf(15, 1), "rbsp_alignment_zero_bit"},
        {pps444(), "rbsp_alignment_zero_bit"},
        {{0x09, 0x10}, "rbsp_alignment_zero_bit"},
        {{0x0A}, "nal_unit_type"},
        {{0x0B}, "nal_unit_type"},
        {{0x0C, 0xFF, 0x80}, "rbsp_alignment_zero_bit"},
        {avcUnit(13, BitWriter().ue("id", 0).ue("aux_format_idc", 0).u(1, "additional_extension_flag", 0)),
         "rbsp_alignment_zero_bit"},
        {{0x0E, 0x40, 0x00, 0x07}, "reserved_one_bit"},
    };
    qv::avc::ParameterSets sets;
    sets.take(bytesOf(spsOf(7, 3)));
    for (const auto& c : cases) {
        const Traced unit = traced(c.unit, sets);
        EXPECT_TRUE(unit.trace.isWhole);
        EXPECT_TRUE(unit.trace.ok()) << qv::textOf(unit.trace.fault);
        EXPECT_EQ(unit.names.substr(unit.names.rfind(' ') + 1), c.last) << unit.trace.nal_unit_type;
    }
}

TEST(AvcUnit, AnEmptyUnitHasAFault) {
    const Traced unit = traced({});
    EXPECT_EQ(unit.trace.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_EQ(tracedHevc({}).trace.fault.kind, qv::FaultKind::EndOfData);
    EXPECT_EQ(unit.names, "");
}

// The number of lists in a PPS depends on the SPS that it refers to.
TEST(AvcUnit, APpsIsReadWithTheFormatOfItsSps) {
    for (const uint32_t type : {7U, 15U}) {
        qv::avc::ParameterSets sets;
        sets.take(bytesOf(spsOf(type, 3)));
        const Traced unit = traced(pps444(), sets);
        EXPECT_TRUE(unit.trace.ok()) << qv::textOf(unit.trace.fault);
        EXPECT_NE(unit.names.find("pic_scaling_list_present_flag[11]"), std::string::npos) << type;
    }
    EXPECT_EQ(traced(pps444()).names.find("pic_scaling_list_present_flag[8]"), std::string::npos);
}

TEST(AvcUnit, UnitsAreAppendedAsTheyWere) {
    qv::avc::ParameterSets sets;
    sets.take(bytesOf(spsOf(7, 3)));
    const Buffer filler = {0x0C, 0xFF, 0xFF, 0x80};
    const Buffer extension =
        avcUnit(13, BitWriter().ue("id", 0).ue("aux_format_idc", 0).u(1, "additional_extension_flag", 0));
    for (const Buffer& unit : {spsOf(7, 3), spsOf(15, 1), pps444(), extension, Buffer{0x09, 0xF0},
                               Buffer{0x0A}, Buffer{0x0B}, filler, Buffer{0x0E, 0x40, 0x00, 0x07}}) {
        Buffer out = {0xAA};
        EXPECT_TRUE(qv::avc::rewriteUnit(bytesOf(unit), sets, out).isRewritten) << int{unit[0]};
        Buffer expected = {0xAA};
        expected.insert(expected.end(), unit.begin(), unit.end());
        EXPECT_EQ(out, expected);
    }
}

TEST(AvcUnit, BytesAfterTheTrailingBitsAreKept) {
    Buffer unit = spsOf(7, 1);
    unit.insert(unit.end(), {0x00, 0x00, 0x03, 0x00, 0x00, 0x03});
    Buffer out;
    EXPECT_TRUE(qv::avc::rewriteUnit(bytesOf(unit), {}, out).isRewritten);
    EXPECT_EQ(out, unit);
}

TEST(AvcUnit, AUnitThatWouldHaveOtherBytesIsNotRewritten) {
    // An emulation prevention byte where 7.4.1 does not ask for one.
    const Buffer unneeded = {0x67, 0x00, 0x00, 0x03, 0x28, 0xDA, 0x0B, 0x13, 0x90};
    Names names;
    ASSERT_TRUE(qv::avc::traceUnit(bytesOf(unneeded), {}, names).ok());
    Buffer sps = spsOf(7, 1);
    sps.resize(6);
    for (const Buffer& unit : {unneeded, sps, Buffer{0x65, 0x88}, Buffer{0x06, 0x80}, Buffer{}}) {
        Buffer out = {0xAA};
        EXPECT_FALSE(qv::avc::rewriteUnit(bytesOf(unit), {}, out).isRewritten);
        EXPECT_EQ(out, Buffer{0xAA});
    }
    Buffer out;
    EXPECT_TRUE(qv::avc::rewriteUnit(bytesOf(sps), {}, out).fault);
    EXPECT_FALSE(qv::avc::rewriteUnit(bytesOf(Buffer{0x65, 0x88}), {}, out).fault);
}

// Main profile, 640x480.
Buffer sps() {
    BitWriter bits;
    bits.u(4, "sps_video_parameter_set_id", 0).u(3, "sps_max_sub_layers_minus1", 0);
    bits.u(1, "sps_temporal_id_nesting_flag", 1).u(8, "profile space, tier, idc", 1);
    bits.u(32, "general_profile_compatibility_flag", 0x60000000).u(32, "constraint flags", 0x90000000);
    bits.u(16, "constraint flags", 0).u(8, "general_level_idc", 93);
    bits.ue("sps_seq_parameter_set_id", 0).ue("chroma_format_idc", 1);
    bits.ue("pic_width_in_luma_samples", 640).ue("pic_height_in_luma_samples", 480);
    bits.u(1, "conformance_window_flag", 0);
    bits.ue("bit_depth_luma_minus8", 0).ue("bit_depth_chroma_minus8", 0);
    bits.ue("log2_max_pic_order_cnt_lsb_minus4", 4).u(1, "sps_sub_layer_ordering_info_present_flag", 1);
    bits.ue("max_dec_pic_buffering_minus1", 4).ue("max_num_reorder_pics", 2).ue("max_latency_increase", 0);
    bits.ue("log2_min_cb_minus3", 0).ue("log2_diff_cb", 3).ue("log2_min_tb_minus2", 0).ue("log2_diff_tb", 3);
    bits.ue("max_transform_hierarchy_depth_inter", 0).ue("max_transform_hierarchy_depth_intra", 0);
    bits.bits("scaling lists, AMP, SAO, PCM", "0100").ue("num_short_term_ref_pic_sets", 0);
    return hevcUnit(33, bits.bits("long-term, temporal MVP, smoothing, VUI, extension", "01100"));
}

TEST(HevcUnit, UnitsAreAppendedAsTheyWere) {
    const Buffer filler = {0x4C, 0x01, 0xFF, 0x80};
    const Buffer delimiter = hevcUnit(35, BitWriter().u(3, "pic_type", 2));
    const Buffer vps = hex("40010C01FFFF02200000030090000003000003003C959809");
    const Buffer pps = hex("4401C172B46240");
    for (const Buffer& unit : {delimiter, Buffer{0x48, 0x01}, Buffer{0x4A, 0x01}, filler, vps, pps, sps()}) {
        EXPECT_TRUE(tracedHevc(unit).trace.isWhole);
        Buffer out = {0xAA};
        EXPECT_TRUE(qv::hevc::rewriteUnit(bytesOf(unit), {}, out).isRewritten) << int{unit[0]};
        EXPECT_EQ(Buffer(out.begin() + 1, out.end()), unit);
    }
    Buffer out;
    EXPECT_FALSE(qv::hevc::rewriteUnit(bytesOf(Buffer{0x26, 0x01, 0x80}), {}, out).isRewritten);
    EXPECT_TRUE(qv::hevc::rewriteUnit(bytesOf(Buffer{0x42, 0x01, 0x01}), {}, out).fault);
    EXPECT_TRUE(out.empty());
}

}  // namespace
