#include "QVSpsCompletion.h"

#include <stddef.h>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/HrdRates.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/hevc/Sps.h"

// The player's records hold flags as integers, 0 or 1.
// NOLINTBEGIN(readability-implicit-bool-conversion)

namespace {

bool isBuffer(const unsigned char* data, int size) {
    return data != nullptr && size >= 1;
}

// The result for a parameter set that could not be read to its end.
int resultOf(const qv::Fault& fault) {
    const bool isUnusable = fault.kind == qv::FaultKind::EndOfData || fault.kind == qv::FaultKind::OtherUnit;
    return isUnusable ? QVResultInvalidData : QVResultFailed;
}

// Lengths, counts and table entries are small: their ranges end far below 2^31.
int32_t signedOf(uint32_t value) {
    return static_cast<int32_t>(value);
}

// vui_parameters() of H.264, E.1.1.
void fillVui(QVAvcSps& sps, const qv::avc::Vui& vui) {
    sps.video_signal_type_present_flag = vui.video_signal_type_present_flag;
    sps.full_range = vui.video_full_range_flag;
    sps.colour_description_present_flag = vui.colour_description_present_flag;
    sps.colour_primaries = signedOf(vui.colour_primaries);
    sps.transfer_characteristics = signedOf(vui.transfer_characteristics);
    sps.colorspace = signedOf(vui.matrix_coefficients);

    sps.timing_info_present_flag = vui.timing_info_present_flag;
    sps.num_units_in_tick = vui.num_units_in_tick;
    sps.time_scale = vui.time_scale;
    sps.fixed_frame_rate_flag = vui.fixed_frame_rate_flag;

    sps.pic_struct_present_flag = vui.pic_struct_present_flag;
}

// hrd_parameters() of H.264, E.1.2.
void fillHrd(QVAvcSps& sps, const qv::avc::Vui& vui) {
    sps.nal_hrd_parameters_present_flag = vui.nal_hrd_parameters_present_flag;
    sps.vcl_hrd_parameters_present_flag = vui.vcl_hrd_parameters_present_flag;
    const qv::avc::Hrd& hrd =
        vui.nal_hrd_parameters_present_flag ? vui.nal_hrd_parameters : vui.vcl_hrd_parameters;
    sps.cpb_cnt = signedOf(hrd.cpb_cnt_minus1) + 1;

    const qv::avc::DelayLengths lengths = qv::avc::delayLengthsOf(vui);
    sps.initial_cpb_removal_delay_length = signedOf(lengths.initial_cpb_removal_delay);
    sps.cpb_removal_delay_length = signedOf(lengths.cpb_removal_delay);
    sps.dpb_output_delay_length = signedOf(lengths.dpb_output_delay);
    sps.time_offset_length = signedOf(lengths.time_offset);
}

// vui_parameters() of H.265, E.2.1.
void fillVui(QVHevcSps& sps, const qv::hevc::Vui& vui) {
    sps.aspect_ratio_info_present_flag = vui.aspect_ratio_info_present_flag;
    sps.aspect_ratio_idc = signedOf(vui.aspect_ratio_idc);
    sps.sar_width = signedOf(vui.sar_width);
    sps.sar_height = signedOf(vui.sar_height);

    sps.overscan_info_present_flag = vui.overscan_info_present_flag;
    sps.overscan_appropriate_flag = vui.overscan_appropriate_flag;

    sps.video_signal_type_present_flag = vui.video_signal_type_present_flag;
    sps.video_format = signedOf(vui.video_format);
    sps.video_full_range_flag = vui.video_full_range_flag;
    sps.colour_description_present_flag = vui.colour_description_present_flag;
    sps.colour_primaries = signedOf(vui.colour_primaries);
    sps.transfer_characteristics = signedOf(vui.transfer_characteristics);
    sps.matrix_coeffs = signedOf(vui.matrix_coeffs);

    sps.chroma_loc_info_present_flag = vui.chroma_loc_info_present_flag;
    sps.chroma_sample_loc_type_top_field = signedOf(vui.chroma_sample_loc_type_top_field);
    sps.chroma_sample_loc_type_bottom_field = signedOf(vui.chroma_sample_loc_type_bottom_field);

    sps.neutral_chroma_indication_flag = vui.neutral_chroma_indication_flag;
    sps.field_seq_flag = vui.field_seq_flag;
    sps.frame_field_info_present_flag = vui.frame_field_info_present_flag;
}

}  // namespace

int completeAvcSps(QVAvcSps* sps, const unsigned char* data, int size) {
    if (sps == nullptr) {
        return QVResultFailed;
    }
    if (!isBuffer(data, size)) {
        return QVResultInvalidData;
    }
    const qv::Read<qv::avc::Sps> read = qv::avc::readSps({data, static_cast<size_t>(size)});
    if (!read.ok()) {
        return resultOf(read.fault);
    }
    fillVui(*sps, read.record.data.vui);
    fillHrd(*sps, read.record.data.vui);
    return QVResultOk;
}

int completeHevcSps(QVHevcSps* sps, const unsigned char* data, int size) {
    if (sps == nullptr) {
        return QVResultFailed;
    }
    if (!isBuffer(data, size)) {
        return QVResultInvalidData;
    }
    const qv::Read<qv::hevc::Sps> read = qv::hevc::readSps({data, static_cast<size_t>(size)});
    if (!read.ok()) {
        return resultOf(read.fault);
    }
    sps->vui_parameters_present_flag = read.record.vui_parameters_present_flag;
    fillVui(*sps, read.record.vui);
    return QVResultOk;
}

// NOLINTEND(readability-implicit-bool-conversion)
