#include "HevcSpsRecord.h"

#include <cstring>
#include <string>

namespace qv_test {

namespace {

struct NamedField {
    const char* name;
    int32_t QVHevcSps::*field;
};

constexpr NamedField kFields[] = {
    {"sps_video_parameter_set_id", &QVHevcSps::sps_video_parameter_set_id},
    {"sps_max_sub_layers_minus1", &QVHevcSps::sps_max_sub_layers_minus1},
    {"sps_temporal_id_nesting_flag", &QVHevcSps::sps_temporal_id_nesting_flag},
    {"sps_seq_parameter_set_id", &QVHevcSps::sps_seq_parameter_set_id},
    {"chroma_format_idc", &QVHevcSps::chroma_format_idc},
    {"separate_colour_plane_flag", &QVHevcSps::separate_colour_plane_flag},
    {"display_width", &QVHevcSps::display_width},
    {"display_height", &QVHevcSps::display_height},
    {"pic_width_in_luma_samples", &QVHevcSps::pic_width_in_luma_samples},
    {"pic_height_in_luma_samples", &QVHevcSps::pic_height_in_luma_samples},
    {"conformance_window_flag", &QVHevcSps::conformance_window_flag},
    {"conf_win_left_offset", &QVHevcSps::conf_win_left_offset},
    {"conf_win_right_offset", &QVHevcSps::conf_win_right_offset},
    {"conf_win_top_offset", &QVHevcSps::conf_win_top_offset},
    {"conf_win_bottom_offset", &QVHevcSps::conf_win_bottom_offset},
    {"bit_depth_luma_minus8", &QVHevcSps::bit_depth_luma_minus8},
    {"bit_depth_chroma_minus8", &QVHevcSps::bit_depth_chroma_minus8},
    {"log2_max_pic_order_cnt_lsb_minus4", &QVHevcSps::log2_max_pic_order_cnt_lsb_minus4},
    {"sps_sub_layer_ordering_info_present_flag", &QVHevcSps::sps_sub_layer_ordering_info_present_flag},
    {"vui_parameters_present_flag", &QVHevcSps::vui_parameters_present_flag},
    {"aspect_ratio_info_present_flag", &QVHevcSps::aspect_ratio_info_present_flag},
    {"aspect_ratio_idc", &QVHevcSps::aspect_ratio_idc},
    {"sar_width", &QVHevcSps::sar_width},
    {"sar_height", &QVHevcSps::sar_height},
    {"overscan_info_present_flag", &QVHevcSps::overscan_info_present_flag},
    {"overscan_appropriate_flag", &QVHevcSps::overscan_appropriate_flag},
    {"video_signal_type_present_flag", &QVHevcSps::video_signal_type_present_flag},
    {"video_format", &QVHevcSps::video_format},
    {"video_full_range_flag", &QVHevcSps::video_full_range_flag},
    {"colour_description_present_flag", &QVHevcSps::colour_description_present_flag},
    {"colour_primaries", &QVHevcSps::colour_primaries},
    {"transfer_characteristics", &QVHevcSps::transfer_characteristics},
    {"matrix_coeffs", &QVHevcSps::matrix_coeffs},
    {"chroma_loc_info_present_flag", &QVHevcSps::chroma_loc_info_present_flag},
    {"chroma_sample_loc_type_top_field", &QVHevcSps::chroma_sample_loc_type_top_field},
    {"chroma_sample_loc_type_bottom_field", &QVHevcSps::chroma_sample_loc_type_bottom_field},
    {"neutral_chroma_indication_flag", &QVHevcSps::neutral_chroma_indication_flag},
    {"field_seq_flag", &QVHevcSps::field_seq_flag},
    {"frame_field_info_present_flag", &QVHevcSps::frame_field_info_present_flag},
};

}  // namespace

QVHevcSps patternHevcSps() {
    QVHevcSps sps;
    std::memset(&sps, 0xA5, sizeof sps);
    return sps;
}

::testing::AssertionResult sameHevcSps(const QVHevcSps& actual, const QVHevcSps& expected) {
    std::string differences;
    for (const NamedField& field : kFields) {
        if (actual.*field.field != expected.*field.field) {
            differences += std::string("\n  ") + field.name + " is " + std::to_string(actual.*field.field) +
                           ", expected " + std::to_string(expected.*field.field);
        }
    }
    if (!differences.empty()) {
        return ::testing::AssertionFailure() << "the records differ:" << differences;
    }
    if (std::memcmp(&actual, &expected, sizeof actual) != 0) {
        return ::testing::AssertionFailure() << "the records differ in a field that has no name here";
    }
    return ::testing::AssertionSuccess();
}

QVHevcSps hevcSpsOfZeroBits() {
    QVHevcSps sps = patternHevcSps();
    sps.sps_video_parameter_set_id = 0;
    sps.sps_max_sub_layers_minus1 = 0;
    sps.sps_temporal_id_nesting_flag = 0;
    sps.sps_seq_parameter_set_id = 0;
    sps.chroma_format_idc = 0;
    sps.separate_colour_plane_flag = 0;
    sps.display_width = sps.display_height = 0;
    sps.pic_width_in_luma_samples = sps.pic_height_in_luma_samples = 0;
    sps.conformance_window_flag = 0;
    sps.bit_depth_luma_minus8 = sps.bit_depth_chroma_minus8 = 0;
    sps.log2_max_pic_order_cnt_lsb_minus4 = 0;
    sps.sps_sub_layer_ordering_info_present_flag = 0;
    return sps;
}

QVHevcSps defaultHevcSps() {
    QVHevcSps sps = hevcSpsOfZeroBits();
    sps.sps_temporal_id_nesting_flag = 1;
    sps.chroma_format_idc = 1;
    sps.display_width = sps.display_height = 8;
    sps.pic_width_in_luma_samples = sps.pic_height_in_luma_samples = 8;
    sps.sps_sub_layer_ordering_info_present_flag = 1;
    return sps;
}

ExpectedLine hevcProfileLine(int space, int tier, int profile, int level) {
    return {2, "parseHevcSpsForProfile",
            "parseHevcSpsForProfile, profile:" + std::to_string(space) + "/" + std::to_string(tier) + "/" +
                std::to_string(profile) + "/" + std::to_string(level) + " \n"};
}

bool HevcSpsTest::parseBytes(const Bytes& bytes) {
    sps = patternHevcSps();
    return parseOver(bytes);
}

bool HevcSpsTest::parseOver(const Bytes& bytes) {
    core().lines.clear();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    return parseHevcSps(&sps, stream);
}

void HevcSpsTest::expectOutcome(const QVHevcSps& record, const std::vector<ExpectedLine>& lines) const {
    EXPECT_TRUE(sameHevcSps(sps, record));
    expectLines(lines);
    EXPECT_EQ(stream.use_count(), 1) << "a reference on the stream is left over";
}

}  // namespace qv_test
