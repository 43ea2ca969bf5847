// Parameter sets as they are shown: whole, refused by the player's library, and damaged.
#include "analysis/SequenceParameterSet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "BitWriter.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"

namespace qv_test {
namespace {

using namespace qvinspect;
using ::testing::HasSubstr;

qv::avc::Sps avcRecord() {
    qv::avc::Sps sps{};
    sps.header.nal_ref_idc = 3;
    sps.header.nal_unit_type = qv::avc::kNalSps;
    sps.data.profile_idc = 100;
    sps.data.level_idc = 40;
    sps.data.chroma_format_idc = 1;
    sps.data.max_num_ref_frames = 4;
    sps.data.pic_width_in_mbs_minus1 = 119;
    sps.data.pic_height_in_map_units_minus1 = 67;
    sps.data.frame_mbs_only_flag = true;
    sps.data.direct_8x8_inference_flag = true;
    sps.data.frame_cropping_flag = true;
    sps.data.frame_crop_bottom_offset = 4;
    sps.data.vui_parameters_present_flag = true;
    qv::avc::Vui& vui = sps.data.vui;
    vui.aspect_ratio_info_present_flag = true;
    vui.aspect_ratio_idc = 14;
    vui.video_signal_type_present_flag = true;
    vui.video_format = 5;
    vui.colour_description_present_flag = true;
    vui.colour_primaries = 9;
    vui.transfer_characteristics = 16;
    vui.matrix_coefficients = 9;
    vui.timing_info_present_flag = true;
    vui.num_units_in_tick = 1001;
    vui.time_scale = 60000;
    return sps;
}

qv::hevc::Sps hevcRecord() {
    qv::hevc::Sps sps{};
    sps.header.nal_unit_type = qv::hevc::kNalSps;
    sps.header.nuh_temporal_id_plus1 = 1;
    sps.profile_tier_level.general.profile_idc = 2;
    sps.profile_tier_level.general.tier_flag = true;
    sps.profile_tier_level.general_level_idc = 153;
    sps.chroma_format_idc = 1;
    sps.pic_width_in_luma_samples = 3840;
    sps.pic_height_in_luma_samples = 2160;
    sps.bit_depth_luma_minus8 = 2;
    sps.bit_depth_chroma_minus8 = 2;
    sps.log2_diff_max_min_luma_coding_block_size = 3;
    sps.log2_diff_max_min_luma_transform_block_size = 3;
    sps.vui_parameters_present_flag = true;
    sps.vui.video_signal_type_present_flag = true;
    sps.vui.video_format = 5;
    sps.vui.colour_description_present_flag = true;
    sps.vui.colour_primaries = 9;
    sps.vui.transfer_characteristics = 18;
    sps.vui.matrix_coeffs = 9;
    return sps;
}

qv::hevc::Vps vpsAt50() {
    qv::hevc::Vps vps{};
    vps.vps_timing_info_present_flag = true;
    vps.vps_num_units_in_tick = 1;
    vps.vps_time_scale = 50;
    return vps;
}

Bytes unitOf(const qv::avc::Sps& sps) {
    Bytes unit;
    EXPECT_TRUE(writeSps(sps, unit).ok());
    return unit;
}

Bytes unitOf(const qv::hevc::Sps& sps) {
    Bytes unit;
    EXPECT_TRUE(writeSps(sps, unit).ok());
    return unit;
}

SequenceParameterSet read(QVCodecID codec, const Bytes& unit, const qv::hevc::Vps* vps = nullptr) {
    return readSequenceParameterSet(codec, unit.data(), unit.size(), vps);
}

std::string fieldOf(const SequenceParameterSet& sps, const std::string& name) {
    const Block block = describe(sps);
    const auto field = std::find_if(block.fields.begin(), block.fields.end(),
                                    [&](const Field& candidate) { return candidate.name == name; });
    return field == block.fields.end() ? "absent" : valueText(*field) + " " + field->note;
}

TEST(SequenceParameterSet, avc) {
    const SequenceParameterSet sps = read(QVCodecIDAvc, unitOf(avcRecord()));
    ASSERT_TRUE(sps.isAccepted);
    ASSERT_TRUE(sps.video);
    EXPECT_EQ(sps.summary, "High, level 4, 1920x1080 (coded 1920x1088), 4:2:0, 8 bit");
    EXPECT_EQ(sps.fault, "");
    EXPECT_EQ(sps.video->cropBottom, 8U);
    EXPECT_EQ(sps.video->frameRate, qv::ratioOf(30000, 1001));
    EXPECT_DOUBLE_EQ(secondsPerPicture(*sps.video).value_or(0), 1001 / 30000.0);
    EXPECT_EQ(sps.video->sampleAspectRatio, qv::ratioOf(4, 3));
    EXPECT_EQ(fieldOf(sps, "aspect_ratio_idc"), "14 4:3");
    EXPECT_EQ(fieldOf(sps, "transfer_characteristics"), "16 SMPTE ST 2084 (PQ)");
    EXPECT_EQ(fieldOf(sps, "time_scale"), "60000 29.970 frames/s");
}

TEST(SequenceParameterSet, constraintFlagsNameTheAvcProfile) {
    qv::avc::Sps record = avcRecord();
    record.data.constraint_set4_flag = true;
    record.data.constraint_set5_flag = true;
    const SequenceParameterSet sps = read(QVCodecIDAvc, unitOf(record));
    EXPECT_EQ(fieldOf(sps, "profile_idc"), "100 Constrained High");
    EXPECT_EQ(fieldOf(sps, "constraint_set_flags"), "0x30 set0 in bit 0");
}

TEST(SequenceParameterSet, profilesAndLevelsThatTheStandardDoesNotDefine) {
    qv::avc::Sps record = avcRecord();
    record.data.profile_idc = 99;
    record.data.level_idc = 43;
    EXPECT_THAT(read(QVCodecIDAvc, unitOf(record)).summary, HasSubstr("profile 99, level 4.3, "));

    qv::hevc::Sps hevc = hevcRecord();
    hevc.profile_tier_level.general.profile_idc = 31;
    hevc.profile_tier_level.general_level_idc = 100;
    EXPECT_THAT(read(QVCodecIDHevc, unitOf(hevc)).summary, HasSubstr("profile 31, level 3.3 high tier, "));
}

TEST(SequenceParameterSet, hevc) {
    const SequenceParameterSet sps = read(QVCodecIDHevc, unitOf(hevcRecord()));
    ASSERT_TRUE(sps.isAccepted);
    ASSERT_TRUE(sps.video);
    EXPECT_EQ(sps.summary, "Main 10, level 5.1 high tier, 3840x2160, 4:2:0, 10 bit");
    EXPECT_FALSE(sps.video->frameRate.isKnown());
    EXPECT_EQ(fieldOf(sps, "transfer_characteristics"), "18 ARIB STD-B67 (HLG)");
    EXPECT_EQ(fieldOf(sps, "vui_timing_info_present_flag"), "0 ");
}

TEST(SequenceParameterSet, hevcFrameRateOfTheVuiComesBeforeThatOfTheVps) {
    const qv::hevc::Vps vps = vpsAt50();
    qv::hevc::Sps record = hevcRecord();
    const SequenceParameterSet byVps = read(QVCodecIDHevc, unitOf(record), &vps);
    EXPECT_EQ(byVps.video->frameRate, qv::ratioOf(50, 1));
    EXPECT_EQ(fieldOf(byVps, "frame rate"), "by the VPS 50.000 frames/s");

    record.vui.vui_timing_info_present_flag = true;
    record.vui.vui_num_units_in_tick = 1;
    record.vui.vui_time_scale = 25;
    const SequenceParameterSet byVui = read(QVCodecIDHevc, unitOf(record), &vps);
    EXPECT_EQ(byVui.video->frameRate, qv::ratioOf(25, 1));
    EXPECT_EQ(fieldOf(byVui, "vui_time_scale"), "25 25.000 frames/s");
    EXPECT_EQ(fieldOf(byVui, "frame rate"), "absent");
}

// Two pictures make a frame.
TEST(SequenceParameterSet, hevcFields) {
    const qv::hevc::Vps vps = vpsAt50();
    qv::hevc::Sps record = hevcRecord();
    record.vui.field_seq_flag = true;
    record.vui.frame_field_info_present_flag = true;
    const SequenceParameterSet sps = read(QVCodecIDHevc, unitOf(record), &vps);
    EXPECT_EQ(sps.video->frameRate, qv::ratioOf(25, 1));
    EXPECT_DOUBLE_EQ(secondsPerPicture(*sps.video).value_or(0), 1 / 50.0);
}

TEST(SequenceParameterSet, differentBitDepths) {
    qv::hevc::Sps record = hevcRecord();
    record.bit_depth_chroma_minus8 = 0;
    const SequenceParameterSet sps = read(QVCodecIDHevc, unitOf(record));
    EXPECT_EQ(bitDepthText(*sps.video), "10 bit luma, 8 bit chroma");
}

// The player's library reads no separate colour planes.
TEST(SequenceParameterSet, refused) {
    qv::avc::Sps record = avcRecord();
    record.data.profile_idc = 244;
    record.data.chroma_format_idc = 3;
    record.data.separate_colour_plane_flag = true;
    const SequenceParameterSet sps = read(QVCodecIDAvc, unitOf(record));
    EXPECT_FALSE(sps.isAccepted);
    EXPECT_FALSE(sps.video);
    EXPECT_NE(fieldOf(sps, "refused"), "absent");
}

VideoFormat videoOf(const qv::avc::Sps& sps) {
    return videoFormatOf(sps);
}

VideoFormat videoOf(const qv::hevc::Sps& sps) {
    return videoFormatOf(sps, nullptr);
}

// The end is missing: the fault is shown, with the picture where it comes before the fault, and the colour
// description where that is whole.
template <class Record>
void checkCuts(QVCodecID codec, const Record& record, size_t leastWithColour) {
    const Bytes whole = unitOf(record);
    size_t withVideo = 0;
    size_t withColour = 0;
    for (size_t size = 1; size + 1 < whole.size(); ++size) {
        SCOPED_TRACE(size);
        const SequenceParameterSet sps = read(codec, Bytes(whole.data(), whole.data() + size));
        if (!sps.isAccepted) {
            EXPECT_FALSE(sps.video);
            continue;
        }
        EXPECT_NE(fieldOf(sps, "fault"), "absent");
        if (!sps.video) {
            EXPECT_EQ(sps.summary, sps.fault);
            continue;
        }
        ++withVideo;
        EXPECT_EQ(sizeText(*sps.video), sizeText(videoOf(record)));
        if (sps.video->colour) {
            ++withColour;
            EXPECT_EQ(sps.video->colour->matrix_coefficients, 9U);
        }
    }
    EXPECT_GT(withVideo, 0U);
    EXPECT_GE(withColour, leastWithColour);
    EXPECT_LT(withColour, withVideo);
}

TEST(SequenceParameterSet, avcCutAnywhere) {
    checkCuts(QVCodecIDAvc, avcRecord(), 4);
}

TEST(SequenceParameterSet, hevcCutAnywhere) {
    qv::hevc::Sps record = hevcRecord();
    record.vui.vui_timing_info_present_flag = true;
    record.vui.vui_num_units_in_tick = 1;
    record.vui.vui_time_scale = 25;
    checkCuts(QVCodecIDHevc, record, 4);
}

}  // namespace
}  // namespace qv_test
