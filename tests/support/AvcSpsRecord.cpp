#include "AvcSpsRecord.h"

#include <cstring>

namespace qv_test {

namespace {

struct NamedField {
    const char* name;
    int32_t QVAvcSps::*field;
};

constexpr NamedField kFields[] = {
    {"sps_id", &QVAvcSps::sps_id},
    {"profile_idc", &QVAvcSps::profile_idc},
    {"level_idc", &QVAvcSps::level_idc},
    {"chroma_format_idc", &QVAvcSps::chroma_format_idc},
    {"transform_bypass", &QVAvcSps::transform_bypass},
    {"log2_max_frame_num", &QVAvcSps::log2_max_frame_num},
    {"poc_type", &QVAvcSps::poc_type},
    {"log2_max_poc_lsb", &QVAvcSps::log2_max_poc_lsb},
    {"delta_pic_order_always_zero_flag", &QVAvcSps::delta_pic_order_always_zero_flag},
    {"offset_for_non_ref_pic", &QVAvcSps::offset_for_non_ref_pic},
    {"offset_for_top_to_bottom_field", &QVAvcSps::offset_for_top_to_bottom_field},
    {"poc_cycle_length", &QVAvcSps::poc_cycle_length},
    {"ref_frame_count", &QVAvcSps::ref_frame_count},
    {"gaps_in_frame_num_allowed_flag", &QVAvcSps::gaps_in_frame_num_allowed_flag},
    {"width", &QVAvcSps::width},
    {"height", &QVAvcSps::height},
    {"mb_width", &QVAvcSps::mb_width},
    {"mb_height", &QVAvcSps::mb_height},
    {"frame_mbs_only_flag", &QVAvcSps::frame_mbs_only_flag},
    {"mb_aff", &QVAvcSps::mb_aff},
    {"direct_8x8_inference_flag", &QVAvcSps::direct_8x8_inference_flag},
    {"crop", &QVAvcSps::crop},
    {"crop_left", &QVAvcSps::crop_left},
    {"crop_right", &QVAvcSps::crop_right},
    {"crop_top", &QVAvcSps::crop_top},
    {"crop_bottom", &QVAvcSps::crop_bottom},
    {"vui_parameters_present_flag", &QVAvcSps::vui_parameters_present_flag},
    {"video_signal_type_present_flag", &QVAvcSps::video_signal_type_present_flag},
    {"full_range", &QVAvcSps::full_range},
    {"colour_description_present_flag", &QVAvcSps::colour_description_present_flag},
    {"colour_primaries", &QVAvcSps::colour_primaries},
    {"transfer_characteristics", &QVAvcSps::transfer_characteristics},
    {"colorspace", &QVAvcSps::colorspace},
    {"timing_info_present_flag", &QVAvcSps::timing_info_present_flag},
    {"fixed_frame_rate_flag", &QVAvcSps::fixed_frame_rate_flag},
    {"scaling_matrix_present", &QVAvcSps::scaling_matrix_present},
    {"nal_hrd_parameters_present_flag", &QVAvcSps::nal_hrd_parameters_present_flag},
    {"vcl_hrd_parameters_present_flag", &QVAvcSps::vcl_hrd_parameters_present_flag},
    {"pic_struct_present_flag", &QVAvcSps::pic_struct_present_flag},
    {"time_offset_length", &QVAvcSps::time_offset_length},
    {"cpb_cnt", &QVAvcSps::cpb_cnt},
    {"initial_cpb_removal_delay_length", &QVAvcSps::initial_cpb_removal_delay_length},
    {"cpb_removal_delay_length", &QVAvcSps::cpb_removal_delay_length},
    {"dpb_output_delay_length", &QVAvcSps::dpb_output_delay_length},
    {"bit_depth_luma", &QVAvcSps::bit_depth_luma},
    {"bit_depth_chroma", &QVAvcSps::bit_depth_chroma},
    {"residual_color_transform_flag", &QVAvcSps::residual_color_transform_flag},
    {"constraint_set_flags", &QVAvcSps::constraint_set_flags},
};

template <class Value>
void compare(std::string& differences, const std::string& name, Value actual, Value expected) {
    if (actual != expected) {
        differences +=
            "\n  " + name + " is " + std::to_string(actual) + ", expected " + std::to_string(expected);
    }
}

template <class Entry, size_t count>
void compareList(std::string& differences, const std::string& name, const Entry (&actual)[count],
                 const Entry (&expected)[count]) {
    for (size_t i = 0; i < count; ++i) {
        compare(differences, name + "[" + std::to_string(i) + "]", actual[i], expected[i]);
    }
}

void storeHead(QVAvcSps& sps) {
    sps.sps_id = 0;
    sps.time_offset_length = 24;
    sps.profile_idc = 66;
    sps.constraint_set_flags = 0;
    sps.level_idc = 10;
    sps.full_range = -1;
    std::memset(sps.scaling_matrix4, 16, sizeof sps.scaling_matrix4);
    std::memset(sps.scaling_matrix8, 16, sizeof sps.scaling_matrix8);
    sps.scaling_matrix_present = 0;
    sps.colorspace = 2;
}

void storeProfile(QVAvcSps& sps) {
    sps.chroma_format_idc = 1;
    sps.bit_depth_luma = sps.bit_depth_chroma = 8;
}

void storePoc(QVAvcSps& sps) {
    sps.poc_type = 0;
    sps.log2_max_poc_lsb = 4;
}

void storeMbSize(QVAvcSps& sps) {
    sps.gaps_in_frame_num_allowed_flag = 0;
    sps.mb_width = sps.mb_height = 1;
}

void storeFrameCoding(QVAvcSps& sps) {
    sps.frame_mbs_only_flag = 1;
    sps.mb_aff = 0;
    sps.direct_8x8_inference_flag = 0;
}

void storeCrop(QVAvcSps& sps) {
    sps.crop = sps.crop_left = sps.crop_right = sps.crop_top = sps.crop_bottom = 0;
    sps.width = sps.height = 16;
}

}  // namespace

QVAvcSps patternAvcSps() {
    QVAvcSps sps;
    std::memset(&sps, 0xA5, sizeof sps);
    return sps;
}

::testing::AssertionResult sameAvcSps(const QVAvcSps& actual, const QVAvcSps& expected) {
    std::string differences;
    for (const NamedField& field : kFields) {
        compare(differences, field.name, actual.*field.field, expected.*field.field);
    }
    compare(differences, "num_units_in_tick", actual.num_units_in_tick, expected.num_units_in_tick);
    compare(differences, "time_scale", actual.time_scale, expected.time_scale);
    compareList(differences, "offset_for_ref_frame", actual.offset_for_ref_frame,
                expected.offset_for_ref_frame);
    for (size_t list = 0; list < 6; ++list) {
        const std::string index = "[" + std::to_string(list) + "]";
        compareList(differences, "scaling_matrix4" + index, actual.scaling_matrix4[list],
                    expected.scaling_matrix4[list]);
        compareList(differences, "scaling_matrix8" + index, actual.scaling_matrix8[list],
                    expected.scaling_matrix8[list]);
    }
    if (!differences.empty()) {
        return ::testing::AssertionFailure() << "the records differ:" << differences;
    }
    if (std::memcmp(&actual, &expected, sizeof actual) != 0) {
        return ::testing::AssertionFailure() << "the records differ in a field that has no name here";
    }
    return ::testing::AssertionSuccess();
}

QVAvcSps avcSpsAfter(AvcSpsStep last) {
    QVAvcSps sps = patternAvcSps();
    const auto reaches = [&](AvcSpsStep step) { return last >= step; };
    if (reaches(AvcSpsStep::Head)) {
        storeHead(sps);
    }
    if (reaches(AvcSpsStep::Profile)) {
        storeProfile(sps);
    }
    if (reaches(AvcSpsStep::FrameNum)) {
        sps.log2_max_frame_num = 4;
    }
    if (reaches(AvcSpsStep::Poc)) {
        storePoc(sps);
    }
    if (reaches(AvcSpsStep::RefFrames)) {
        sps.ref_frame_count = 0;
    }
    if (reaches(AvcSpsStep::MbSize)) {
        storeMbSize(sps);
    }
    if (reaches(AvcSpsStep::FrameCoding)) {
        storeFrameCoding(sps);
    }
    if (reaches(AvcSpsStep::Crop)) {
        storeCrop(sps);
    }
    if (reaches(AvcSpsStep::Vui)) {
        sps.vui_parameters_present_flag = 0;
    }
    return sps;
}

QVAvcSps highAvcSpsAfter(AvcSpsStep last) {
    QVAvcSps sps = avcSpsAfter(last);
    if (last >= AvcSpsStep::Head) {
        sps.profile_idc = 100;
    }
    if (last >= AvcSpsStep::Profile) {
        sps.transform_bypass = 0;
    }
    return sps;
}

ExpectedLine avcSummary(const std::string& text) {
    return {3, "parseAvcSps", "parseAvcCDecoderSps, " + text + " \n"};
}

ExpectedLine avcCropNotice(const std::string& offsets) {
    return {3, "parseAvcSpsForCrop",
            "parseAvcCDecoderSps, discarding sps cropping, original values are " + offsets + "\n"};
}

ExpectedLine avcError(const std::string& function, const std::string& text) {
    return {0, function, text};
}

bool AvcSpsTest::parse(const Bytes& bytes) {
    sps = patternAvcSps();
    return parseOver(bytes);
}

bool AvcSpsTest::parseOver(const Bytes& bytes) {
    core().lines.clear();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    return parseAvcSps(&sps, stream);
}

void AvcSpsTest::expectOutcome(const QVAvcSps& record, const std::vector<ExpectedLine>& lines) const {
    EXPECT_TRUE(sameAvcSps(sps, record));
    expectLines(lines);
    EXPECT_EQ(stream.use_count(), 1) << "a reference on the stream is left over";
}

}  // namespace qv_test
