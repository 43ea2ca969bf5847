// The sequence parameter set of H.264.
#include "bitstream/avc/Sps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

#include "BitWriter.h"
#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/avc/Dpb.h"
#include "bitstream/avc/FrameRate.h"
#include "bitstream/avc/HrdRates.h"
#include "bitstream/avc/PictureFormat.h"
#include "bitstream/avc/ScalingFactors.h"
#include "bitstream/avc/SpsSyntax.h"
#include "bitstream/syntax/EmulationPrevention.h"

namespace {

using namespace qv_test;
using qv::avc::Sps;
using testing::ElementsAre;
using testing::IsSupersetOf;

StructureUnderTest<Sps> sps() {
    StructureUnderTest<Sps> structure;
    structure.generate = [](RandomUnit& s, Sps& record) { qv::avc::seq_parameter_set_unit(s, record); };
    structure.read = qv::avc::readSps;
    structure.trace = qv::avc::traceSps;
    structure.write = qv::avc::writeSps;
    structure.size = [](const Sps& record) { return sizeOf(record); };
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("nal_unit_type", {qv::avc::kNalSps});
        unit.choose("profile_idc",
                    {66, 77, 88, 100, 110, 122, 244, 44, 83, 86, 118, 128, 134, 135, 138, 139, 144});
    };
    return structure;
}

TEST(AvcSps, roundTrips) {
    checkRoundTrips(sps(), unitRounds());
}

TEST(AvcSps, everyRange) {
    EXPECT_THAT(checkRanges(sps(), unitRounds()), IsSupersetOf({"forbidden_zero_bit",
                                                                "seq_parameter_set_id",
                                                                "chroma_format_idc",
                                                                "bit_depth_luma_minus8",
                                                                "bit_depth_chroma_minus8",
                                                                "delta_scale",
                                                                "log2_max_frame_num_minus4",
                                                                "pic_order_cnt_type",
                                                                "log2_max_pic_order_cnt_lsb_minus4",
                                                                "num_ref_frames_in_pic_order_cnt_cycle",
                                                                "max_num_ref_frames",
                                                                "chroma_sample_loc_type_top_field",
                                                                "chroma_sample_loc_type_bottom_field",
                                                                "num_units_in_tick",
                                                                "time_scale",
                                                                "cpb_cnt_minus1",
                                                                "max_bytes_per_pic_denom",
                                                                "max_bits_per_mb_denom",
                                                                "log2_max_mv_length_horizontal",
                                                                "log2_max_mv_length_vertical",
                                                                "max_num_reorder_frames",
                                                                "max_dec_frame_buffering"}));
}

TEST(AvcSps, cutAtEveryBit) {
    checkCuts(sps(), unitRounds(50));
}

uint64_t sumOf(const qv::avc::ScalingFactors& factors) {
    uint64_t sum = 0;
    for (const auto& list : factors.list4x4) {
        sum = std::accumulate(std::begin(list), std::end(list), sum);
    }
    for (const auto& list : factors.list8x8) {
        sum = std::accumulate(std::begin(list), std::end(list), sum);
    }
    return sum;
}

uint64_t sumOf(const qv::avc::Hrd& hrd) {
    uint64_t sum = 0;
    for (uint32_t i = 0; i <= hrd.cpb_cnt_minus1; ++i) {
        sum += qv::avc::bitRate(hrd, i) + qv::avc::cpbSize(hrd, i);
    }
    return sum;
}

const std::vector<Derivation<Sps>> kDerivations = {
    {"pictureFormatOf",
     [](const Sps& sps) {
         const qv::avc::PictureFormat format = qv::avc::pictureFormatOf(sps.data);
         return format.codedWidth + format.crop.width + format.sampleAspectRatio.numerator;
     }},
    {"frameRateOf",
     [](const Sps& sps) { return qv::avc::frameRateOf(sps.data.vui).framesPerSecond.numerator; }},
    {"maxDpbFrames", [](const Sps& sps) { return qv::avc::maxDpbFrames(sps.data).value_or(0); }},
    {"maxDecFrameBuffering",
     [](const Sps& sps) { return qv::avc::maxDecFrameBuffering(sps.data).value_or(0); }},
    {"maxNumReorderFrames",
     [](const Sps& sps) { return qv::avc::maxNumReorderFrames(sps.data).value_or(0); }},
    {"profileOf",
     [](const Sps& sps) -> uint64_t {
         const qv::avc::ProfileEntry* const profile = qv::avc::profileOf(sps.data);
         const qv::avc::LevelEntry* const level = qv::avc::levelOf(sps.data);
         return profile == nullptr || level == nullptr
                    ? 0
                    : qv::avc::maxBitRate(*profile, *level, qv::avc::HrdType::Nal) +
                          qv::avc::maxCpbSize(*profile, *level, qv::avc::HrdType::Vcl);
     }},
    {"bitRate",
     [](const Sps& sps) {
         const qv::avc::Vui& vui = sps.data.vui;
         return (vui.nal_hrd_parameters_present_flag ? sumOf(vui.nal_hrd_parameters) : 0) +
                (vui.vcl_hrd_parameters_present_flag ? sumOf(vui.vcl_hrd_parameters) : 0) +
                qv::avc::delayLengthsOf(vui).time_offset;
     }},
    {"scalingFactorsOf", [](const Sps& sps) { return sumOf(qv::avc::scalingFactorsOf(sps.data)); }},
};

TEST(AvcSps, noAllocationAndNoByteOutside) {
    checkMemory(sps(), unitRounds(50), kDerivations);
}

// --- By hand ---

// The elements up to chroma_format_idc, or to log2_max_frame_num_minus4 in the profiles without it.
BitWriter front(uint32_t profile_idc, uint32_t level_idc = 40) {
    BitWriter bits;
    bits.u(8, "header", 0x67).u(8, "profile_idc", profile_idc).u(8, "constraint flags", 0);
    bits.u(8, "level_idc", level_idc).ue("seq_parameter_set_id", 0);
    return bits;
}

void chroma(BitWriter& bits, uint32_t chroma_format_idc, uint32_t lumaDepth = 8, uint32_t chromaDepth = 8,
            bool seq_scaling_matrix_present_flag = false, bool separate_colour_plane_flag = false) {
    bits.ue("chroma_format_idc", chroma_format_idc);
    if (chroma_format_idc == 3) {
        bits.u(1, "separate_colour_plane_flag", separate_colour_plane_flag ? 1 : 0);
    }
    bits.ue("bit_depth_luma_minus8", lumaDepth - 8).ue("bit_depth_chroma_minus8", chromaDepth - 8);
    bits.u(1, "qpprime_y_zero_transform_bypass_flag", 0);
    bits.u(1, "seq_scaling_matrix_present_flag", seq_scaling_matrix_present_flag ? 1 : 0);
}

// The elements from log2_max_frame_num_minus4 to vui_parameters_present_flag: 1920x1088, frames only.
void picture(BitWriter& bits, bool vui_parameters_present_flag = false) {
    bits.ue("log2_max_frame_num_minus4", 5).ue("pic_order_cnt_type", 2).ue("max_num_ref_frames", 4);
    bits.u(1, "gaps_in_frame_num_value_allowed_flag", 0).ue("pic_width_in_mbs_minus1", 119);
    bits.ue("pic_height_in_map_units_minus1", 67).u(1, "frame_mbs_only_flag", 1);
    bits.u(1, "direct_8x8_inference_flag", 1).u(1, "frame_cropping_flag", 0);
    bits.u(1, "vui_parameters_present_flag", vui_parameters_present_flag ? 1 : 0);
}

// Ends the unit, reads it without a fault and writes it as it was.
struct ReadBack {
    explicit ReadBack(BitWriter bits) : ReadBack(withEmulationPrevention(bits.trailingBits().bytes())) {}

    explicit ReadBack(std::vector<uint8_t> bytes)
        : unit(std::move(bytes)), read(qv::avc::readSps(bytesOf(unit))), sps(read.record.data) {
        EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.trailing.bits, 0U);
        std::vector<uint8_t> written;
        EXPECT_TRUE(qv::avc::writeSps(read.record, written).ok());
        EXPECT_EQ(written, unit);
    }

    std::vector<uint8_t> unit;
    qv::Read<Sps> read;
    const qv::avc::SpsData& sps;
};

std::vector<uint8_t> withoutEmulationPrevention(const std::vector<uint8_t>& unit) {
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < unit.size(); ++i) {
        if (!qv::detail::isEmulationPrevention(unit.data(), i)) {
            bytes.push_back(unit[i]);
        }
    }
    return bytes;
}

// The first fault of a unit.
qv::Fault faultOf(BitWriter bits) {
    const std::vector<uint8_t> unit = withEmulationPrevention(bits.trailingBits().bytes());
    return qv::avc::readSps(bytesOf(unit)).fault;
}

void hrd(BitWriter& bits, uint32_t base) {
    bits.ue("cpb_cnt_minus1", 1).u(4, "bit_rate_scale", 4).u(4, "cpb_size_scale", 6);
    for (uint32_t i = 0; i <= 1; ++i) {
        bits.ue("bit_rate_value_minus1", base + i).ue("cpb_size_value_minus1", base + 10 + i);
        bits.u(1, "cbr_flag", i);
    }
    bits.u(5, "initial_cpb_removal_delay_length_minus1", 23).u(5, "cpb_removal_delay_length_minus1", 22);
    bits.u(5, "dpb_output_delay_length_minus1", 21).u(5, "time_offset_length", 20);
}

void expectHrd(const qv::avc::Hrd& hrd, uint32_t base) {
    EXPECT_EQ(hrd.cpb_cnt_minus1, 1U);
    EXPECT_EQ(hrd.bit_rate_scale, 4U);
    EXPECT_EQ(hrd.cpb_size_scale, 6U);
    EXPECT_EQ(hrd.bit_rate_value_minus1[0], base);
    EXPECT_EQ(hrd.bit_rate_value_minus1[1], base + 1);
    EXPECT_EQ(hrd.cpb_size_value_minus1[0], base + 10);
    EXPECT_EQ(hrd.cpb_size_value_minus1[1], base + 11);
    EXPECT_FALSE(hrd.cbr_flag[0]);
    EXPECT_TRUE(hrd.cbr_flag[1]);
    EXPECT_EQ(hrd.initial_cpb_removal_delay_length_minus1, 23U);
    EXPECT_EQ(hrd.cpb_removal_delay_length_minus1, 22U);
    EXPECT_EQ(hrd.dpb_output_delay_length_minus1, 21U);
    EXPECT_EQ(hrd.time_offset_length, 20U);
}

// Everything that is optional is present, and each element differs from its neighbours.
TEST(AvcSps, everyElement) {
    BitWriter bits;
    bits.u(8, "header", 0x47).u(8, "profile_idc", 122).u(1, "constraint_set0_flag", 1);
    bits.u(1, "constraint_set1_flag", 0).u(1, "constraint_set2_flag", 1).u(1, "constraint_set3_flag", 0);
    bits.u(1, "constraint_set4_flag", 1).u(1, "constraint_set5_flag", 0).u(2, "reserved_zero_2bits", 2);
    bits.u(8, "level_idc", 51).ue("seq_parameter_set_id", 31);
    bits.ue("chroma_format_idc", 2).ue("bit_depth_luma_minus8", 2).ue("bit_depth_chroma_minus8", 1);
    bits.u(1, "qpprime_y_zero_transform_bypass_flag", 1).u(1, "seq_scaling_matrix_present_flag", 0);
    bits.ue("log2_max_frame_num_minus4", 12).ue("pic_order_cnt_type", 1);
    bits.u(1, "delta_pic_order_always_zero_flag", 1).se("offset_for_non_ref_pic", -2147483647);
    bits.se("offset_for_top_to_bottom_field", 2147483647).ue("num_ref_frames_in_pic_order_cnt_cycle", 2);
    bits.se("offset_for_ref_frame", 6).se("offset_for_ref_frame", -7);
    bits.ue("max_num_ref_frames", 16).u(1, "gaps_in_frame_num_value_allowed_flag", 1);
    bits.ue("pic_width_in_mbs_minus1", 44).ue("pic_height_in_map_units_minus1", 17);
    bits.u(1, "frame_mbs_only_flag", 0).u(1, "mb_adaptive_frame_field_flag", 1);
    bits.u(1, "direct_8x8_inference_flag", 1).u(1, "frame_cropping_flag", 1);
    bits.ue("frame_crop_left_offset", 1).ue("frame_crop_right_offset", 2);
    bits.ue("frame_crop_top_offset", 3).ue("frame_crop_bottom_offset", 4);
    bits.u(1, "vui_parameters_present_flag", 1);
    bits.u(1, "aspect_ratio_info_present_flag", 1).u(8, "aspect_ratio_idc", 255);
    bits.u(16, "sar_width", 64).u(16, "sar_height", 33);
    bits.u(1, "overscan_info_present_flag", 1).u(1, "overscan_appropriate_flag", 1);
    bits.u(1, "video_signal_type_present_flag", 1).u(3, "video_format", 1).u(1, "video_full_range_flag", 1);
    bits.u(1, "colour_description_present_flag", 1).u(8, "colour_primaries", 9);
    bits.u(8, "transfer_characteristics", 18).u(8, "matrix_coefficients", 10);
    bits.u(1, "chroma_loc_info_present_flag", 1).ue("chroma_sample_loc_type_top_field", 2);
    bits.ue("chroma_sample_loc_type_bottom_field", 5);
    bits.u(1, "timing_info_present_flag", 1).u(32, "num_units_in_tick", 1).u(32, "time_scale", 0xFFFFFFFF);
    bits.u(1, "fixed_frame_rate_flag", 1);
    bits.u(1, "nal_hrd_parameters_present_flag", 1);
    hrd(bits, 1000);
    bits.u(1, "vcl_hrd_parameters_present_flag", 1);
    hrd(bits, 0xFFFFFF00);
    bits.u(1, "low_delay_hrd_flag", 1).u(1, "pic_struct_present_flag", 1);
    bits.u(1, "bitstream_restriction_flag", 1).u(1, "motion_vectors_over_pic_boundaries_flag", 0);
    bits.ue("max_bytes_per_pic_denom", 3).ue("max_bits_per_mb_denom", 4);
    bits.ue("log2_max_mv_length_horizontal", 16).ue("log2_max_mv_length_vertical", 9);
    bits.ue("max_num_reorder_frames", 6).ue("max_dec_frame_buffering", 7);

    const ReadBack back(bits);
    const qv::avc::SpsData& sps = back.sps;
    EXPECT_EQ(back.read.record.header.nal_ref_idc, 2U);
    EXPECT_EQ(back.read.record.header.nal_unit_type, 7U);
    EXPECT_EQ(sps.profile_idc, 122U);
    EXPECT_TRUE(sps.constraint_set0_flag && sps.constraint_set2_flag && sps.constraint_set4_flag);
    EXPECT_FALSE(sps.constraint_set1_flag || sps.constraint_set3_flag || sps.constraint_set5_flag);
    EXPECT_EQ(sps.reserved_zero_2bits, 2U);
    EXPECT_EQ(sps.level_idc, 51U);
    EXPECT_EQ(sps.seq_parameter_set_id, 31U);
    EXPECT_EQ(sps.chroma_format_idc, 2U);
    EXPECT_EQ(sps.bit_depth_luma_minus8, 2U);
    EXPECT_EQ(sps.bit_depth_chroma_minus8, 1U);
    EXPECT_TRUE(sps.qpprime_y_zero_transform_bypass_flag);
    EXPECT_EQ(sps.log2_max_frame_num_minus4, 12U);
    EXPECT_EQ(sps.pic_order_cnt_type, 1U);
    EXPECT_TRUE(sps.delta_pic_order_always_zero_flag);
    EXPECT_EQ(sps.offset_for_non_ref_pic, -2147483647);
    EXPECT_EQ(sps.offset_for_top_to_bottom_field, 2147483647);
    EXPECT_EQ(sps.num_ref_frames_in_pic_order_cnt_cycle, 2U);
    EXPECT_EQ(sps.offset_for_ref_frame[0], 6);
    EXPECT_EQ(sps.offset_for_ref_frame[1], -7);
    EXPECT_EQ(sps.max_num_ref_frames, 16U);
    EXPECT_TRUE(sps.gaps_in_frame_num_value_allowed_flag);
    EXPECT_EQ(sps.pic_width_in_mbs_minus1, 44U);
    EXPECT_EQ(sps.pic_height_in_map_units_minus1, 17U);
    EXPECT_FALSE(sps.frame_mbs_only_flag);
    EXPECT_TRUE(sps.mb_adaptive_frame_field_flag);
    EXPECT_TRUE(sps.direct_8x8_inference_flag);
    EXPECT_EQ(sps.frame_crop_left_offset, 1U);
    EXPECT_EQ(sps.frame_crop_right_offset, 2U);
    EXPECT_EQ(sps.frame_crop_top_offset, 3U);
    EXPECT_EQ(sps.frame_crop_bottom_offset, 4U);
    const qv::avc::Vui& vui = sps.vui;
    EXPECT_EQ(vui.aspect_ratio_idc, 255U);
    EXPECT_EQ(vui.sar_width, 64U);
    EXPECT_EQ(vui.sar_height, 33U);
    EXPECT_TRUE(vui.overscan_appropriate_flag);
    EXPECT_EQ(vui.video_format, 1U);
    EXPECT_TRUE(vui.video_full_range_flag);
    EXPECT_EQ(vui.colour_primaries, 9U);
    EXPECT_EQ(vui.transfer_characteristics, 18U);
    EXPECT_EQ(vui.matrix_coefficients, 10U);
    EXPECT_EQ(vui.chroma_sample_loc_type_top_field, 2U);
    EXPECT_EQ(vui.chroma_sample_loc_type_bottom_field, 5U);
    EXPECT_EQ(vui.num_units_in_tick, 1U);
    EXPECT_EQ(vui.time_scale, 0xFFFFFFFF);
    EXPECT_TRUE(vui.fixed_frame_rate_flag);
    expectHrd(vui.nal_hrd_parameters, 1000);
    expectHrd(vui.vcl_hrd_parameters, 0xFFFFFF00);
    EXPECT_TRUE(vui.low_delay_hrd_flag);
    EXPECT_TRUE(vui.pic_struct_present_flag);
    EXPECT_FALSE(vui.motion_vectors_over_pic_boundaries_flag);
    EXPECT_EQ(vui.max_bytes_per_pic_denom, 3U);
    EXPECT_EQ(vui.max_bits_per_mb_denom, 4U);
    EXPECT_EQ(vui.log2_max_mv_length_horizontal, 16U);
    EXPECT_EQ(vui.log2_max_mv_length_vertical, 9U);
    EXPECT_EQ(vui.max_num_reorder_frames, 6U);
    EXPECT_EQ(vui.max_dec_frame_buffering, 7U);
}

// Without VUI the elements have the values that their semantics infer, as they have with an empty one.
TEST(AvcSps, elementsThatAreNotPresentAreInferred) {
    for (const bool vui_parameters_present_flag : {false, true}) {
        SCOPED_TRACE(vui_parameters_present_flag);
        BitWriter bits = front(77);
        picture(bits, vui_parameters_present_flag);
        if (vui_parameters_present_flag) {
            bits.u(9, "flags", 0);
        }
        const ReadBack back(bits);
        EXPECT_EQ(back.sps.chroma_format_idc, 1U);
        EXPECT_EQ(back.sps.bit_depth_luma_minus8, 0U);
        const qv::avc::Vui& vui = back.sps.vui;
        EXPECT_EQ(vui.aspect_ratio_idc, 0U);
        EXPECT_EQ(vui.video_format, 5U);
        EXPECT_FALSE(vui.video_full_range_flag);
        EXPECT_EQ(vui.colour_primaries, 2U);
        EXPECT_EQ(vui.transfer_characteristics, 2U);
        EXPECT_EQ(vui.matrix_coefficients, 2U);
        EXPECT_EQ(vui.chroma_sample_loc_type_top_field, 0U);
        EXPECT_TRUE(vui.motion_vectors_over_pic_boundaries_flag);
        EXPECT_EQ(vui.max_bytes_per_pic_denom, 2U);
        EXPECT_EQ(vui.max_bits_per_mb_denom, 1U);
        EXPECT_EQ(vui.log2_max_mv_length_horizontal, 15U);
        EXPECT_EQ(vui.log2_max_mv_length_vertical, 15U);
    }
}

TEST(AvcSps, chromaSyntaxByProfile) {
    for (uint32_t profile_idc = 0; profile_idc <= 255; ++profile_idc) {
        SCOPED_TRACE(profile_idc);
        const std::set<uint32_t> withChroma = {44, 83, 86, 100, 110, 118, 122, 128, 134, 135, 138, 139, 244};
        BitWriter bits = front(profile_idc);
        if (withChroma.count(profile_idc) != 0) {
            chroma(bits, 2, 10, 9);
        }
        picture(bits);
        const ReadBack back(bits);
        EXPECT_EQ(back.sps.chroma_format_idc, withChroma.count(profile_idc) != 0 ? 2U : 1U);
        EXPECT_EQ(back.sps.bit_depth_luma_minus8, withChroma.count(profile_idc) != 0 ? 2U : 0U);
        EXPECT_EQ(back.sps.pic_width_in_mbs_minus1, 119U);
    }
}

TEST(AvcSps, separateColourPlanes) {
    for (const bool separate_colour_plane_flag : {false, true}) {
        BitWriter bits = front(244);
        chroma(bits, 3, 8, 8, false, separate_colour_plane_flag);
        picture(bits);
        const ReadBack back(bits);
        EXPECT_EQ(back.sps.chroma_format_idc, 3U);
        EXPECT_EQ(back.sps.separate_colour_plane_flag, separate_colour_plane_flag);
        EXPECT_EQ(back.sps.pic_width_in_mbs_minus1, 119U);
    }
}

TEST(AvcSps, lumaAndChromaOfDifferentDepths) {
    for (const auto& [luma, chromaDepth] : {std::pair(8U, 14U), std::pair(14U, 8U), std::pair(9U, 12U)}) {
        BitWriter bits = front(244);
        chroma(bits, 1, luma, chromaDepth);
        picture(bits);
        const ReadBack back(bits);
        EXPECT_EQ(back.sps.bit_depth_luma_minus8 + 8, luma);
        EXPECT_EQ(back.sps.bit_depth_chroma_minus8 + 8, chromaDepth);
    }
    BitWriter bits = front(244);
    chroma(bits, 1, 8, 15);
    picture(bits);
    const qv::Fault fault = faultOf(bits);
    EXPECT_EQ(qv::textOf(fault),
              "bit_depth_chroma_minus8 in seq_parameter_set_data() (7.3.2.1.1) at bit 37: 7 is not in 0..6");
}

// --- Scaling lists ---

TEST(AvcSps, listsEndWhereNextScaleIs0) {
    BitWriter bits = front(100);
    chroma(bits, 1, 8, 8, true);
    bits.u(1, "seq_scaling_list_present_flag", 1).se("delta_scale", -8);
    bits.u(1, "seq_scaling_list_present_flag", 1).se("delta_scale", 2).se("delta_scale", -10);
    bits.u(1, "seq_scaling_list_present_flag", 1);
    for (int j = 0; j < 16; ++j) {
        bits.se("delta_scale", j % 2 == 0 ? 127 : -128);
    }
    bits.u(5, "seq_scaling_list_present_flag", 0b00001);
    for (int j = 0; j < 64; ++j) {
        bits.se("delta_scale", 1);
    }
    picture(bits);
    const ReadBack back(bits);
    const qv::avc::ScalingMatrix& matrix = back.sps.scaling_matrix;
    EXPECT_EQ(matrix.scaling_list[0].deltaCount, 1U);
    EXPECT_EQ(matrix.scaling_list[0].delta_scale[0], -8);
    EXPECT_EQ(matrix.scaling_list[1].deltaCount, 2U);
    EXPECT_EQ(matrix.scaling_list[1].delta_scale[1], -10);
    EXPECT_EQ(matrix.scaling_list[2].deltaCount, 16U);
    EXPECT_FALSE(matrix.scaling_list_present_flag[3]);
    EXPECT_TRUE(matrix.scaling_list_present_flag[7]);
    EXPECT_EQ(matrix.scaling_list[7].deltaCount, 64U);
    EXPECT_EQ(back.sps.pic_width_in_mbs_minus1, 119U);
}

TEST(AvcSps, twelveListsIn444) {
    for (uint32_t chroma_format_idc = 0; chroma_format_idc <= 3; ++chroma_format_idc) {
        BitWriter bits = front(244);
        chroma(bits, chroma_format_idc, 8, 8, true);
        const uint32_t lists = chroma_format_idc == 3 ? 12 : 8;
        for (uint32_t i = 0; i < lists; ++i) {
            bits.u(1, "seq_scaling_list_present_flag", i % 2);
            if (i % 2 != 0) {
                bits.se("delta_scale", 0);
                bits.se("delta_scale", -8);
            }
        }
        picture(bits);
        const ReadBack back(bits);
        EXPECT_TRUE(back.sps.scaling_matrix.scaling_list_present_flag[lists - 1]);
        EXPECT_EQ(back.sps.pic_width_in_mbs_minus1, 119U);
    }
}

TEST(AvcSps, deltaScaleOutOfRange) {
    for (const int32_t delta_scale : {-129, 128, -2147483647, 2147483647}) {
        BitWriter bits = front(100);
        chroma(bits, 1, 8, 8, true);
        bits.u(1, "seq_scaling_list_present_flag", 1).se("delta_scale", 0).se("delta_scale", delta_scale);
        picture(bits);
        const qv::Fault fault = faultOf(bits);
        EXPECT_EQ(fault.kind, qv::FaultKind::OutOfRange);
        EXPECT_STREQ(fault.element.name, "delta_scale");
        EXPECT_STREQ(fault.structure->name, "scaling_list()");
        EXPECT_EQ(fault.value, delta_scale);
        EXPECT_EQ(fault.least, -128);
        EXPECT_EQ(fault.most, 127);
    }
}

// --- Ranges ---

TEST(AvcSps, theDpbOfSeveralViewsIsLarger) {
    for (const uint32_t profile_idc : {100U, 118U, 128U}) {
        for (const uint32_t max_dec_frame_buffering : {16U, 17U, 160U, 161U}) {
            SCOPED_TRACE(std::to_string(profile_idc) + " " + std::to_string(max_dec_frame_buffering));
            BitWriter bits = front(profile_idc);
            chroma(bits, 1);
            picture(bits, true);
            bits.u(8, "flags", 0).u(1, "bitstream_restriction_flag", 1);
            bits.u(1, "motion_vectors_over_pic_boundaries_flag", 1);
            bits.ue("max_bytes_per_pic_denom", 0).ue("max_bits_per_mb_denom", 0);
            bits.ue("log2_max_mv_length_horizontal", 0).ue("log2_max_mv_length_vertical", 0);
            bits.ue("max_num_reorder_frames", 1).ue("max_dec_frame_buffering", max_dec_frame_buffering);
            const qv::Fault fault = faultOf(bits);
            const bool isLegal = max_dec_frame_buffering <= (profile_idc == 100 ? 16U : 160U);
            EXPECT_EQ(static_cast<bool>(fault), !isLegal) << qv::textOf(fault);
        }
    }
}

TEST(AvcSps, aTickAndATimeScaleOf0AreFaults) {
    for (const bool isScale : {false, true}) {
        BitWriter bits = front(66);
        picture(bits, true);
        bits.u(4, "flags", 0).u(1, "timing_info_present_flag", 1);
        bits.u(32, "num_units_in_tick", isScale ? 1 : 0).u(32, "time_scale", isScale ? 0 : 1);
        bits.u(1, "fixed_frame_rate_flag", 0).u(4, "flags", 0);
        const qv::Fault fault = faultOf(bits);
        EXPECT_EQ(fault.kind, qv::FaultKind::OutOfRange);
        EXPECT_STREQ(fault.element.name, isScale ? "time_scale" : "num_units_in_tick");
        EXPECT_EQ(fault.least, 1);
    }
}

TEST(AvcSps, anotherUnitIsAFault) {
    const std::vector<uint8_t> unit = {0x68, 0xCE, 0x3C, 0x80};
    const auto read = qv::avc::readSps(bytesOf(unit));
    EXPECT_EQ(read.fault.kind, qv::FaultKind::OtherUnit);
    EXPECT_EQ(read.fault.value, 8);
    EXPECT_EQ(read.record.data.profile_idc, 0U);
}

// --- Bytes ---

// profile_idc 0, constraint flags 0 and level_idc 1 make the start of a start code of the first three bytes.
TEST(AvcSps, emulationPreventionInFront) {
    BitWriter bits = front(0, 1);
    picture(bits);
    const ReadBack back(bits);
    EXPECT_THAT(std::vector<uint8_t>(back.unit.begin(), back.unit.begin() + 6),
                ElementsAre(0x67, 0x00, 0x00, 0x03, 0x01, 0x99));
    EXPECT_EQ(back.sps.profile_idc, 0U);
    EXPECT_EQ(back.sps.level_idc, 1U);
    EXPECT_EQ(back.sps.log2_max_frame_num_minus4, 5U);

    RecordingVisitor visitor;
    qv::avc::traceSps(bytesOf(back.unit), visitor);
    for (const qv::TracedElement& element : visitor.elements) {
        if (element.element.name == std::string("level_idc")) {
            EXPECT_EQ(element.firstBit, 24U) << "without the emulation prevention byte";
            EXPECT_EQ(element.codedByte, 4U);
        }
    }
}

// An encoder's set with three emulation prevention bytes in num_units_in_tick and time_scale.
TEST(AvcSps, readsTheBytesOfAnEncoder) {
    const ReadBack back(std::vector<uint8_t>{0x67, 0x64, 0x00, 0x28, 0xAC, 0xD9, 0x40, 0x78, 0x02,
                                             0x27, 0xE5, 0xC0, 0x44, 0x00, 0x00, 0x03, 0x00, 0x04,
                                             0x00, 0x00, 0x03, 0x00, 0xF2, 0x3C, 0x60, 0xC6, 0x58});
    EXPECT_EQ(back.sps.profile_idc, 100U);
    EXPECT_EQ(back.sps.level_idc, 40U);
    EXPECT_EQ(back.sps.max_num_ref_frames, 4U);
    EXPECT_EQ(back.sps.pic_width_in_mbs_minus1, 119U);
    EXPECT_EQ(back.sps.pic_height_in_map_units_minus1, 67U);
    EXPECT_EQ(back.sps.frame_crop_bottom_offset, 4U);
    EXPECT_EQ(back.sps.vui.num_units_in_tick, 1U);
    EXPECT_EQ(back.sps.vui.time_scale, 60U);
    EXPECT_EQ(back.sps.vui.max_num_reorder_frames, 2U);
    EXPECT_EQ(back.sps.vui.max_dec_frame_buffering, 4U);
}

TEST(AvcSps, zeroWordsAndZeroBytesAfterTheSetAreTrailing) {
    BitWriter bits = front(66);
    picture(bits);
    std::vector<uint8_t> unit = withEmulationPrevention(bits.trailingBits().bytes());
    const size_t size = unit.size();
    const std::vector<uint8_t> trailing = {0x00, 0x00, 0x03, 0x00, 0x00, 0x03, 0x00};
    unit.insert(unit.end(), trailing.begin(), trailing.end());
    const auto read = qv::avc::readSps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 0U);
    EXPECT_EQ(read.trailing.bytes.size, 7U);
    EXPECT_EQ(read.trailing.bytes.data, unit.data() + size);
}

TEST(AvcSps, elementsAfterTheSetAreTrailing) {
    BitWriter bits = front(66);
    picture(bits);
    bits.u(11, "unknown", 0x2A);
    const std::vector<uint8_t> unit = withEmulationPrevention(bits.trailingBits().bytes());
    const auto read = qv::avc::readSps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.trailing.bits, 11U);
}

// --- Writing ---

// An element that does not fit is the fault, and the output stays as it was.
TEST(AvcSps, aValueOutOfRangeIsNotWritten) {
    BitWriter bits = front(100);
    chroma(bits, 1, 8, 8, true);
    bits.u(1, "seq_scaling_list_present_flag", 1).se("delta_scale", 1).se("delta_scale", -9);
    bits.u(7, "seq_scaling_list_present_flag", 0);
    picture(bits, true);
    bits.u(9, "flags", 0);
    const ReadBack back(bits);
    const struct {
        const char* element;
        void (*set)(qv::avc::SpsData& sps);
        int64_t value;
    } cases[] = {
        {"profile_idc", [](qv::avc::SpsData& sps) { sps.profile_idc = 256; }, 256},
        {"seq_parameter_set_id", [](qv::avc::SpsData& sps) { sps.seq_parameter_set_id = 32; }, 32},
        {"chroma_format_idc", [](qv::avc::SpsData& sps) { sps.chroma_format_idc = 4; }, 4},
        {"delta_scale",
         [](qv::avc::SpsData& sps) { sps.scaling_matrix.scaling_list[0].delta_scale[1] = 128; }, 128},
        {"pic_width_in_mbs_minus1", [](qv::avc::SpsData& sps) { sps.pic_width_in_mbs_minus1 = 0xFFFFFFFF; },
         0xFFFFFFFF},
        {"num_units_in_tick", [](qv::avc::SpsData& sps) { sps.vui.timing_info_present_flag = true; }, 0},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.element);
        Sps sps = back.read.record;
        one.set(sps.data);
        std::vector<uint8_t> out = {1, 2, 3};
        const qv::Written written = qv::avc::writeSps(sps, out);
        EXPECT_EQ(written.fault.kind, qv::FaultKind::OutOfRange);
        EXPECT_STREQ(written.fault.element.name, one.element);
        EXPECT_EQ(written.fault.value, one.value);
        EXPECT_EQ(written.size, 0U);
        EXPECT_THAT(out, ElementsAre(1, 2, 3));
        EXPECT_EQ(sizeOf(sps).fault.kind, qv::FaultKind::OutOfRange);
        EXPECT_EQ(sizeOf(sps).bits, 0U);
    }
}

// A count out of range does not lead the writer out of its arrays.
TEST(AvcSps, aCountOutOfRangeIsNotFollowed) {
    BitWriter bits = front(66);
    picture(bits);
    Sps sps = ReadBack(bits).read.record;
    sps.data.pic_order_cnt_type = 1;
    sps.data.num_ref_frames_in_pic_order_cnt_cycle = 0xFFFFFFFF;
    std::vector<uint8_t> out;
    EXPECT_STREQ(qv::avc::writeSps(sps, out).fault.element.name, "num_ref_frames_in_pic_order_cnt_cycle");
    sps.data.pic_order_cnt_type = 2;
    sps.data.vui_parameters_present_flag = true;
    sps.data.vui.vcl_hrd_parameters_present_flag = true;
    sps.data.vui.vcl_hrd_parameters.cpb_cnt_minus1 = 32;
    EXPECT_STREQ(qv::avc::writeSps(sps, out).fault.element.name, "cpb_cnt_minus1");
    EXPECT_TRUE(out.empty());
}

// A parameter set that is changed is written as it is then.
TEST(AvcSps, aChangedSetIsWrittenAnew) {
    BitWriter bits = front(66);
    picture(bits);
    Sps sps = ReadBack(bits).read.record;
    sps.data.vui_parameters_present_flag = true;
    sps.data.vui.timing_info_present_flag = true;
    sps.data.vui.num_units_in_tick = 1;
    sps.data.vui.time_scale = 50;
    std::vector<uint8_t> unit;
    ASSERT_TRUE(qv::avc::writeSps(sps, unit).ok());
    const auto read = qv::avc::readSps(bytesOf(unit));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.data.vui.time_scale, 50U);
    EXPECT_EQ(sizeOf(sps).bits, 8 * withoutEmulationPrevention(unit).size());
}

// --- Trace ---

TEST(AvcSps, structuresAreNested) {
    class Structures : public qv::TraceVisitor {
    public:
        void begin(const qv::Structure& structure) override {
            text += std::string(structure.name) + " " + structure.clause + " { ";
        }
        void element(const qv::TracedElement& element) override { static_cast<void>(element); }
        void end() override { text += "} "; }
        std::string text;
    };
    BitWriter bits = front(66);
    picture(bits, true);
    bits.u(6, "flags", 0).u(1, "vcl_hrd_parameters_present_flag", 1);
    hrd(bits, 5);
    bits.u(3, "flags", 0);
    const std::vector<uint8_t> unit = withEmulationPrevention(bits.trailingBits().bytes());
    Structures structures;
    ASSERT_TRUE(qv::avc::traceSps(bytesOf(unit), structures).ok());
    EXPECT_EQ(structures.text,
              "nal_unit() 7.3.1 { } seq_parameter_set_rbsp() 7.3.2.1 { "
              "seq_parameter_set_data() 7.3.2.1.1 { vui_parameters() E.1.1 { hrd_parameters() E.1.2 { } } } "
              "rbsp_trailing_bits() 7.3.2.11 { } } ");
}

}  // namespace
