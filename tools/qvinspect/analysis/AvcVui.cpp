#include "analysis/AvcVui.h"

#include <algorithm>

namespace qvinspect {

namespace {

constexpr uint32_t kExtendedSar = 255;
constexpr uint32_t kMostCpbs = 32;

int32_t flag(QVByteStream& in) {
    return static_cast<int32_t>(in.readBit());
}

void skipAspectRatio(QVByteStream& in) {
    if (in.readBit() != 0 && in.readBits(8) == kExtendedSar) {
        in.readBits(32);  // sar_width, sar_height
    }
}

void skipOverscan(QVByteStream& in) {
    if (in.readBit() != 0) {
        in.readBit();  // overscan_appropriate_flag
    }
}

void readVideoSignalType(QVByteStream& in, QVAvcSps& sps) {
    sps.video_signal_type_present_flag = flag(in);
    if (sps.video_signal_type_present_flag == 0) {
        return;
    }
    in.readBits(3);  // video_format
    sps.full_range = flag(in);
    sps.colour_description_present_flag = flag(in);
    if (sps.colour_description_present_flag != 0) {
        sps.colour_primaries = static_cast<int32_t>(in.readBits(8));
        sps.transfer_characteristics = static_cast<int32_t>(in.readBits(8));
        sps.colorspace = static_cast<int32_t>(in.readBits(8));
    }
}

void skipChromaLocation(QVByteStream& in) {
    if (in.readBit() != 0) {
        in.readGolombUe();  // chroma_sample_loc_type_top_field
        in.readGolombUe();  // chroma_sample_loc_type_bottom_field
    }
}

void readTiming(QVByteStream& in, QVAvcSps& sps) {
    sps.timing_info_present_flag = flag(in);
    if (sps.timing_info_present_flag != 0) {
        sps.num_units_in_tick = in.readBits(32);
        sps.time_scale = in.readBits(32);
        sps.fixed_frame_rate_flag = flag(in);
    }
}

// hrd_parameters(), E.1.2. The lengths are the same in both HRDs of a stream.
void readHrd(QVByteStream& in, QVAvcSps& sps) {
    const uint32_t cpbCnt = std::min(in.readGolombUe(), kMostCpbs - 1) + 1;
    sps.cpb_cnt = static_cast<int32_t>(cpbCnt);
    in.readBits(4 + 4);  // bit_rate_scale, cpb_size_scale
    for (uint32_t SchedSelIdx = 0; SchedSelIdx < cpbCnt; ++SchedSelIdx) {
        in.readGolombUe();  // bit_rate_value_minus1
        in.readGolombUe();  // cpb_size_value_minus1
        in.readBit();       // cbr_flag
    }
    sps.initial_cpb_removal_delay_length = static_cast<int32_t>(in.readBits(5) + 1);
    sps.cpb_removal_delay_length = static_cast<int32_t>(in.readBits(5) + 1);
    sps.dpb_output_delay_length = static_cast<int32_t>(in.readBits(5) + 1);
    sps.time_offset_length = static_cast<int32_t>(in.readBits(5));
}

}  // namespace

void readAvcVui(QVByteStream& stream, QVAvcSps& sps) {
    skipAspectRatio(stream);
    skipOverscan(stream);
    readVideoSignalType(stream, sps);
    skipChromaLocation(stream);
    readTiming(stream, sps);
    sps.nal_hrd_parameters_present_flag = flag(stream);
    if (sps.nal_hrd_parameters_present_flag != 0) {
        readHrd(stream, sps);
    }
    sps.vcl_hrd_parameters_present_flag = flag(stream);
    if (sps.vcl_hrd_parameters_present_flag != 0) {
        readHrd(stream, sps);
    }
    if (sps.nal_hrd_parameters_present_flag != 0 || sps.vcl_hrd_parameters_present_flag != 0) {
        stream.readBit();  // low_delay_hrd_flag
    }
    sps.pic_struct_present_flag = flag(stream);
}

}  // namespace qvinspect
