// The layout of every public record. Programs compiled with earlier headers of the same major version depend
// on it. If this file does not compile, extend the record in another way or change the library's major
// version.
#include <cstddef>
#include <type_traits>

#include "QVNaluParser.h"
#include "QVSeiInfo.h"
#include "QVTraceLog.h"

namespace {

// On 32-bit machines, pointers and the alignment of 64-bit integers differ, and so does the layout of records
// that contain them.
constexpr bool k64Bit = sizeof(void*) == 8;

static_assert(std::is_standard_layout<QVCodecParameters>::value);
static_assert(sizeof(QVCodecParameters) == 12 && alignof(QVCodecParameters) == 4);
static_assert(offsetof(QVCodecParameters, codecId) == 0);
static_assert(offsetof(QVCodecParameters, isAnnexB) == 4);
static_assert(offsetof(QVCodecParameters, nalLengthSize) == 8);

static_assert(std::is_standard_layout<QVSeiItem>::value);
static_assert(!k64Bit || (sizeof(QVSeiItem) == 24 && alignof(QVSeiItem) == 8));
static_assert(!k64Bit || offsetof(QVSeiItem, codecId) == 0);
static_assert(!k64Bit || offsetof(QVSeiItem, payloadType) == 4);
static_assert(!k64Bit || offsetof(QVSeiItem, payloadSize) == 8);
static_assert(!k64Bit || offsetof(QVSeiItem, isRequested) == 12);
static_assert(!k64Bit || offsetof(QVSeiItem, payloadData) == 16);

static_assert(std::is_standard_layout<QVHDR10StaticMetadata>::value);
static_assert(sizeof(QVHDR10StaticMetadata) == 24 && alignof(QVHDR10StaticMetadata) == 4);
static_assert(offsetof(QVHDR10StaticMetadata, display_primaries_x) == 0);
static_assert(offsetof(QVHDR10StaticMetadata, display_primaries_y) == 6);
static_assert(offsetof(QVHDR10StaticMetadata, white_point_x) == 12);
static_assert(offsetof(QVHDR10StaticMetadata, white_point_y) == 14);
static_assert(offsetof(QVHDR10StaticMetadata, max_display_mastering_luminance) == 16);
static_assert(offsetof(QVHDR10StaticMetadata, min_display_mastering_luminance) == 20);

static_assert(std::is_standard_layout<QVAvcSps>::value);
static_assert(sizeof(QVAvcSps) == 936 && alignof(QVAvcSps) == 4);
static_assert(offsetof(QVAvcSps, sps_id) == 0);
static_assert(offsetof(QVAvcSps, profile_idc) == 4);
static_assert(offsetof(QVAvcSps, level_idc) == 8);
static_assert(offsetof(QVAvcSps, chroma_format_idc) == 12);
static_assert(offsetof(QVAvcSps, transform_bypass) == 16);
static_assert(offsetof(QVAvcSps, log2_max_frame_num) == 20);
static_assert(offsetof(QVAvcSps, poc_type) == 24);
static_assert(offsetof(QVAvcSps, log2_max_poc_lsb) == 28);
static_assert(offsetof(QVAvcSps, delta_pic_order_always_zero_flag) == 32);
static_assert(offsetof(QVAvcSps, offset_for_non_ref_pic) == 36);
static_assert(offsetof(QVAvcSps, offset_for_top_to_bottom_field) == 40);
static_assert(offsetof(QVAvcSps, poc_cycle_length) == 44);
static_assert(offsetof(QVAvcSps, ref_frame_count) == 48);
static_assert(offsetof(QVAvcSps, gaps_in_frame_num_allowed_flag) == 52);
static_assert(offsetof(QVAvcSps, width) == 56);
static_assert(offsetof(QVAvcSps, height) == 60);
static_assert(offsetof(QVAvcSps, mb_width) == 64);
static_assert(offsetof(QVAvcSps, mb_height) == 68);
static_assert(offsetof(QVAvcSps, frame_mbs_only_flag) == 72);
static_assert(offsetof(QVAvcSps, mb_aff) == 76);
static_assert(offsetof(QVAvcSps, direct_8x8_inference_flag) == 80);
static_assert(offsetof(QVAvcSps, crop) == 84);
static_assert(offsetof(QVAvcSps, crop_left) == 88);
static_assert(offsetof(QVAvcSps, crop_right) == 92);
static_assert(offsetof(QVAvcSps, crop_top) == 96);
static_assert(offsetof(QVAvcSps, crop_bottom) == 100);
static_assert(offsetof(QVAvcSps, vui_parameters_present_flag) == 104);
static_assert(offsetof(QVAvcSps, video_signal_type_present_flag) == 108);
static_assert(offsetof(QVAvcSps, full_range) == 112);
static_assert(offsetof(QVAvcSps, colour_description_present_flag) == 116);
static_assert(offsetof(QVAvcSps, colour_primaries) == 120);
static_assert(offsetof(QVAvcSps, transfer_characteristics) == 124);
static_assert(offsetof(QVAvcSps, colorspace) == 128);
static_assert(offsetof(QVAvcSps, timing_info_present_flag) == 132);
static_assert(offsetof(QVAvcSps, num_units_in_tick) == 136);
static_assert(offsetof(QVAvcSps, time_scale) == 140);
static_assert(offsetof(QVAvcSps, fixed_frame_rate_flag) == 144);
static_assert(offsetof(QVAvcSps, offset_for_ref_frame) == 148);
static_assert(offsetof(QVAvcSps, scaling_matrix_present) == 404);
static_assert(offsetof(QVAvcSps, scaling_matrix4) == 408);
static_assert(offsetof(QVAvcSps, scaling_matrix8) == 504);
static_assert(offsetof(QVAvcSps, nal_hrd_parameters_present_flag) == 888);
static_assert(offsetof(QVAvcSps, vcl_hrd_parameters_present_flag) == 892);
static_assert(offsetof(QVAvcSps, pic_struct_present_flag) == 896);
static_assert(offsetof(QVAvcSps, time_offset_length) == 900);
static_assert(offsetof(QVAvcSps, cpb_cnt) == 904);
static_assert(offsetof(QVAvcSps, initial_cpb_removal_delay_length) == 908);
static_assert(offsetof(QVAvcSps, cpb_removal_delay_length) == 912);
static_assert(offsetof(QVAvcSps, dpb_output_delay_length) == 916);
static_assert(offsetof(QVAvcSps, bit_depth_luma) == 920);
static_assert(offsetof(QVAvcSps, bit_depth_chroma) == 924);
static_assert(offsetof(QVAvcSps, residual_color_transform_flag) == 928);
static_assert(offsetof(QVAvcSps, constraint_set_flags) == 932);

static_assert(std::is_standard_layout<QVHevcSps>::value);
static_assert(sizeof(QVHevcSps) == 156 && alignof(QVHevcSps) == 4);
static_assert(offsetof(QVHevcSps, sps_video_parameter_set_id) == 0);
static_assert(offsetof(QVHevcSps, sps_max_sub_layers_minus1) == 4);
static_assert(offsetof(QVHevcSps, sps_temporal_id_nesting_flag) == 8);
static_assert(offsetof(QVHevcSps, sps_seq_parameter_set_id) == 12);
static_assert(offsetof(QVHevcSps, chroma_format_idc) == 16);
static_assert(offsetof(QVHevcSps, separate_colour_plane_flag) == 20);
static_assert(offsetof(QVHevcSps, display_width) == 24);
static_assert(offsetof(QVHevcSps, display_height) == 28);
static_assert(offsetof(QVHevcSps, pic_width_in_luma_samples) == 32);
static_assert(offsetof(QVHevcSps, pic_height_in_luma_samples) == 36);
static_assert(offsetof(QVHevcSps, conformance_window_flag) == 40);
static_assert(offsetof(QVHevcSps, conf_win_left_offset) == 44);
static_assert(offsetof(QVHevcSps, conf_win_right_offset) == 48);
static_assert(offsetof(QVHevcSps, conf_win_top_offset) == 52);
static_assert(offsetof(QVHevcSps, conf_win_bottom_offset) == 56);
static_assert(offsetof(QVHevcSps, bit_depth_luma_minus8) == 60);
static_assert(offsetof(QVHevcSps, bit_depth_chroma_minus8) == 64);
static_assert(offsetof(QVHevcSps, log2_max_pic_order_cnt_lsb_minus4) == 68);
static_assert(offsetof(QVHevcSps, sps_sub_layer_ordering_info_present_flag) == 72);
static_assert(offsetof(QVHevcSps, vui_parameters_present_flag) == 76);
static_assert(offsetof(QVHevcSps, aspect_ratio_info_present_flag) == 80);
static_assert(offsetof(QVHevcSps, aspect_ratio_idc) == 84);
static_assert(offsetof(QVHevcSps, sar_width) == 88);
static_assert(offsetof(QVHevcSps, sar_height) == 92);
static_assert(offsetof(QVHevcSps, overscan_info_present_flag) == 96);
static_assert(offsetof(QVHevcSps, overscan_appropriate_flag) == 100);
static_assert(offsetof(QVHevcSps, video_signal_type_present_flag) == 104);
static_assert(offsetof(QVHevcSps, video_format) == 108);
static_assert(offsetof(QVHevcSps, video_full_range_flag) == 112);
static_assert(offsetof(QVHevcSps, colour_description_present_flag) == 116);
static_assert(offsetof(QVHevcSps, colour_primaries) == 120);
static_assert(offsetof(QVHevcSps, transfer_characteristics) == 124);
static_assert(offsetof(QVHevcSps, matrix_coeffs) == 128);
static_assert(offsetof(QVHevcSps, chroma_loc_info_present_flag) == 132);
static_assert(offsetof(QVHevcSps, chroma_sample_loc_type_top_field) == 136);
static_assert(offsetof(QVHevcSps, chroma_sample_loc_type_bottom_field) == 140);
static_assert(offsetof(QVHevcSps, neutral_chroma_indication_flag) == 144);
static_assert(offsetof(QVHevcSps, field_seq_flag) == 148);
static_assert(offsetof(QVHevcSps, frame_field_info_present_flag) == 152);

static_assert(std::is_standard_layout<QVAvcSeiRecoveryPoint>::value);
static_assert(sizeof(QVAvcSeiRecoveryPoint) == 4 && alignof(QVAvcSeiRecoveryPoint) == 4);
static_assert(offsetof(QVAvcSeiRecoveryPoint, recovery_frame_cnt) == 0);

static_assert(std::is_standard_layout<QVAvcSeiBufferingPeriod>::value);
static_assert(sizeof(QVAvcSeiBufferingPeriod) == 132 && alignof(QVAvcSeiBufferingPeriod) == 4);
static_assert(offsetof(QVAvcSeiBufferingPeriod, isValid) == 0);
static_assert(offsetof(QVAvcSeiBufferingPeriod, initial_cpb_removal_delay) == 4);

static_assert(std::is_standard_layout<QVAvcClockTimestamp>::value);
static_assert(sizeof(QVAvcClockTimestamp) == 24 && alignof(QVAvcClockTimestamp) == 4);
static_assert(offsetof(QVAvcClockTimestamp, full_timestamp_flag) == 0);
static_assert(offsetof(QVAvcClockTimestamp, n_frames) == 4);
static_assert(offsetof(QVAvcClockTimestamp, seconds_value) == 8);
static_assert(offsetof(QVAvcClockTimestamp, minutes_value) == 12);
static_assert(offsetof(QVAvcClockTimestamp, hours_value) == 16);
static_assert(offsetof(QVAvcClockTimestamp, isDropFrame) == 20);

static_assert(std::is_standard_layout<QVAvcSeiPictureTiming>::value);
static_assert(sizeof(QVAvcSeiPictureTiming) == 96 && alignof(QVAvcSeiPictureTiming) == 4);
static_assert(offsetof(QVAvcSeiPictureTiming, isValid) == 0);
static_assert(offsetof(QVAvcSeiPictureTiming, pic_struct) == 4);
static_assert(offsetof(QVAvcSeiPictureTiming, ctTypeMask) == 8);
static_assert(offsetof(QVAvcSeiPictureTiming, dpb_output_delay) == 12);
static_assert(offsetof(QVAvcSeiPictureTiming, cpb_removal_delay) == 16);
static_assert(offsetof(QVAvcSeiPictureTiming, clockTimestamps) == 20);
static_assert(offsetof(QVAvcSeiPictureTiming, numClockTimestamps) == 92);

static_assert(std::is_standard_layout<QVAvcSeiAfd>::value);
static_assert(sizeof(QVAvcSeiAfd) == 8 && alignof(QVAvcSeiAfd) == 4);
static_assert(offsetof(QVAvcSeiAfd, isValid) == 0);
static_assert(offsetof(QVAvcSeiAfd, active_format) == 4);

static_assert(std::is_standard_layout<QVAvcSeiFramePacking>::value);
static_assert(sizeof(QVAvcSeiFramePacking) == 32 && alignof(QVAvcSeiFramePacking) == 4);
static_assert(offsetof(QVAvcSeiFramePacking, isValid) == 0);
static_assert(offsetof(QVAvcSeiFramePacking, frame_packing_arrangement_id) == 4);
static_assert(offsetof(QVAvcSeiFramePacking, frame_packing_arrangement_cancel_flag) == 8);
static_assert(offsetof(QVAvcSeiFramePacking, frame_packing_arrangement_type) == 12);
static_assert(offsetof(QVAvcSeiFramePacking, frame_packing_arrangement_repetition_period) == 16);
static_assert(offsetof(QVAvcSeiFramePacking, content_interpretation_type) == 20);
static_assert(offsetof(QVAvcSeiFramePacking, quincunx_sampling_flag) == 24);
static_assert(offsetof(QVAvcSeiFramePacking, current_frame_is_frame0_flag) == 28);

static_assert(std::is_standard_layout<QVAvcSeiDisplayOrientation>::value);
static_assert(sizeof(QVAvcSeiDisplayOrientation) == 16 && alignof(QVAvcSeiDisplayOrientation) == 4);
static_assert(offsetof(QVAvcSeiDisplayOrientation, isValid) == 0);
static_assert(offsetof(QVAvcSeiDisplayOrientation, anticlockwise_rotation) == 4);
static_assert(offsetof(QVAvcSeiDisplayOrientation, hor_flip) == 8);
static_assert(offsetof(QVAvcSeiDisplayOrientation, ver_flip) == 12);

static_assert(std::is_standard_layout<QVAvcSeiAlternativeTransfer>::value);
static_assert(sizeof(QVAvcSeiAlternativeTransfer) == 8 && alignof(QVAvcSeiAlternativeTransfer) == 4);
static_assert(offsetof(QVAvcSeiAlternativeTransfer, isValid) == 0);
static_assert(offsetof(QVAvcSeiAlternativeTransfer, preferred_transfer_characteristics) == 4);

static_assert(std::is_standard_layout<QVAvcSeiGreenMetaData>::value);
static_assert(sizeof(QVAvcSeiGreenMetaData) == 14 && alignof(QVAvcSeiGreenMetaData) == 2);
static_assert(offsetof(QVAvcSeiGreenMetaData, green_metadata_type) == 0);
static_assert(offsetof(QVAvcSeiGreenMetaData, period_type) == 1);
static_assert(offsetof(QVAvcSeiGreenMetaData, num_seconds) == 2);
static_assert(offsetof(QVAvcSeiGreenMetaData, num_pictures) == 4);
static_assert(offsetof(QVAvcSeiGreenMetaData, percent_non_zero_macroblocks) == 6);
static_assert(offsetof(QVAvcSeiGreenMetaData, percent_intra_coded_macroblocks) == 7);
static_assert(offsetof(QVAvcSeiGreenMetaData, percent_six_tap_filtering) == 8);
static_assert(offsetof(QVAvcSeiGreenMetaData, percent_alpha_point_deblocking_instance) == 9);
static_assert(offsetof(QVAvcSeiGreenMetaData, xsd_metric_type) == 10);
static_assert(offsetof(QVAvcSeiGreenMetaData, xsd_metric_value) == 12);

static_assert(std::is_standard_layout<QVHevcSeiMasteringDisplay>::value);
static_assert(sizeof(QVHevcSeiMasteringDisplay) == 32 && alignof(QVHevcSeiMasteringDisplay) == 4);
static_assert(offsetof(QVHevcSeiMasteringDisplay, isValid) == 0);
static_assert(offsetof(QVHevcSeiMasteringDisplay, display_primaries_x) == 4);
static_assert(offsetof(QVHevcSeiMasteringDisplay, display_primaries_y) == 4);
static_assert(offsetof(QVHevcSeiMasteringDisplay, white_point_x) == 16);
static_assert(offsetof(QVHevcSeiMasteringDisplay, white_point_y) == 20);
static_assert(offsetof(QVHevcSeiMasteringDisplay, max_display_mastering_luminance) == 24);
static_assert(offsetof(QVHevcSeiMasteringDisplay, min_display_mastering_luminance) == 28);

static_assert(std::is_standard_layout<QVHevcSeiContentLight>::value);
static_assert(sizeof(QVHevcSeiContentLight) == 8 && alignof(QVHevcSeiContentLight) == 4);
static_assert(offsetof(QVHevcSeiContentLight, isValid) == 0);
static_assert(offsetof(QVHevcSeiContentLight, max_content_light_level) == 4);
static_assert(offsetof(QVHevcSeiContentLight, max_pic_average_light_level) == 6);

static_assert(std::is_standard_layout<QVHevcSeiAlternativeTransfer>::value);
static_assert(sizeof(QVHevcSeiAlternativeTransfer) == 8 && alignof(QVHevcSeiAlternativeTransfer) == 4);
static_assert(offsetof(QVHevcSeiAlternativeTransfer, isValid) == 0);
static_assert(offsetof(QVHevcSeiAlternativeTransfer, preferred_transfer_characteristics) == 4);

static_assert(std::is_standard_layout<QVHevcSeiPictureTiming>::value);
static_assert(sizeof(QVHevcSeiPictureTiming) == 4 && alignof(QVHevcSeiPictureTiming) == 4);
static_assert(offsetof(QVHevcSeiPictureTiming, fieldParity) == 0);

static_assert(std::is_standard_layout<QVHevcSeiPictureHash>::value);
static_assert(sizeof(QVHevcSeiPictureHash) == 49 && alignof(QVHevcSeiPictureHash) == 1);
static_assert(offsetof(QVHevcSeiPictureHash, picture_md5) == 0);
static_assert(offsetof(QVHevcSeiPictureHash, md5Present) == 48);

static_assert(std::is_standard_layout<QVHevcSeiFramePacking>::value);
static_assert(sizeof(QVHevcSeiFramePacking) == 20 && alignof(QVHevcSeiFramePacking) == 4);
static_assert(offsetof(QVHevcSeiFramePacking, isValid) == 0);
static_assert(offsetof(QVHevcSeiFramePacking, frame_packing_arrangement_type) == 4);
static_assert(offsetof(QVHevcSeiFramePacking, content_interpretation_type) == 8);
static_assert(offsetof(QVHevcSeiFramePacking, quincunx_sampling_flag) == 12);
static_assert(offsetof(QVHevcSeiFramePacking, current_frame_is_frame0_flag) == 16);

static_assert(std::is_standard_layout<QVHevcSeiDisplayOrientation>::value);
static_assert(sizeof(QVHevcSeiDisplayOrientation) == 16 && alignof(QVHevcSeiDisplayOrientation) == 4);
static_assert(offsetof(QVHevcSeiDisplayOrientation, isValid) == 0);
static_assert(offsetof(QVHevcSeiDisplayOrientation, anticlockwise_rotation) == 4);
static_assert(offsetof(QVHevcSeiDisplayOrientation, hor_flip) == 8);
static_assert(offsetof(QVHevcSeiDisplayOrientation, ver_flip) == 12);

static_assert(std::is_standard_layout<QVHevcSeiA53Caption>::value);
static_assert(sizeof(QVHevcSeiA53Caption) == 4 && alignof(QVHevcSeiA53Caption) == 4);
static_assert(offsetof(QVHevcSeiA53Caption, isValid) == 0);

static_assert(std::is_standard_layout<QVNaluParser::NaluInfo>::value);
static_assert(sizeof(QVNaluParser::NaluInfo) == 16 && alignof(QVNaluParser::NaluInfo) == 4);
static_assert(offsetof(QVNaluParser::NaluInfo, naluType) == 0);
static_assert(offsetof(QVNaluParser::NaluInfo, offset) == 4);
static_assert(offsetof(QVNaluParser::NaluInfo, length) == 8);
static_assert(offsetof(QVNaluParser::NaluInfo, isNonReference) == 12);

static_assert(std::is_standard_layout<QVSeiInfo>::value);
static_assert(!k64Bit || (sizeof(QVSeiInfo) == 16 && alignof(QVSeiInfo) == 8));
static_assert(!k64Bit || offsetof(QVSeiInfo, itemCount) == 0);
static_assert(!k64Bit || offsetof(QVSeiInfo, items) == 8);

static_assert(std::is_standard_layout<QVByteStream>::value);
static_assert(!k64Bit || (sizeof(QVByteStream) == 56 && alignof(QVByteStream) == 8));
static_assert(!k64Bit || offsetof(QVByteStream, bitMask) == 0);
static_assert(!k64Bit || offsetof(QVByteStream, rbspBitIndex) == 8);
static_assert(!k64Bit || offsetof(QVByteStream, ownsData) == 12);
static_assert(!k64Bit || offsetof(QVByteStream, data) == 16);
static_assert(!k64Bit || offsetof(QVByteStream, size) == 24);
static_assert(!k64Bit || offsetof(QVByteStream, capacity) == 32);
static_assert(!k64Bit || offsetof(QVByteStream, bytePos) == 40);
static_assert(!k64Bit || offsetof(QVByteStream, bitOffset) == 48);
static_assert(!k64Bit || offsetof(QVByteStream, extraFlag) == 52);

static_assert(std::is_same<std::underlying_type<QVCodecID>::type, uint32_t>::value);
static_assert(QVCodecIDAvc == 26 && QVCodecIDHevc == 172);
static_assert(std::is_same<std::underlying_type<QVResult>::type, int>::value);
static_assert(QVResultOk == 0 && QVResultFailed == 11000001);
static_assert(QVResultInvalidData == 11000012 && QVResultNoMemory == 11000050);
static_assert(QVTraceError == 0 && QVTraceWarning == 1 && QVTraceInformation == 2 && QVTraceDebug == 3);

}  // namespace
