// The head of the H.265 sequence parameter set: seq_parameter_set_rbsp() and profile_tier_level(), ITU-T
// H.265 (08/2021) 7.3.2.2.1 and 7.3.3. No value is checked against its range (D12), nuh_layer_id is not
// examined (D30), and bits past the end are read as 0 (D39).
#include "QVHevcSps.h"

#include "detail/BitWindow.h"
#include "detail/Log.h"
#include "detail/RecordField.h"

using namespace qv_detail;

namespace {

constexpr int kMostSubLayers = 8;

// The general part of profile_tier_level(), with profilePresentFlag 1. Holds its own reference on the stream
// while it runs.
void parseHevcSpsForProfile(std::shared_ptr<QVByteStream> /*held*/, RbspWindow& in) {
    const uint32_t general_profile_space = in.u(2);
    const uint32_t general_tier_flag = in.u(1);
    const uint32_t general_profile_idc = in.u(5);
    in.drop(32);             // general_profile_compatibility_flag[32]
    in.drop(1 + 1 + 1 + 1);  // progressive, interlaced, non_packed and frame_only source or constraint flags
    in.drop(43 + 1);         // general constraint flags of the profile, inbld or reserved bit
    const uint32_t general_level_idc = in.u(8);
    QV_LOG(QVTraceInformation, "parseHevcSpsForProfile", "parseHevcSpsForProfile, profile:%d/%d/%d/%d \n",
           asField(general_profile_space), asField(general_tier_flag), asField(general_profile_idc),
           asField(general_level_idc));
}

// The sub-layer part of profile_tier_level().
void skipSubLayers(RbspWindow& in, int maxNumSubLayersMinus1) {
    bool sub_layer_profile_present_flag[kMostSubLayers - 1] = {};
    bool sub_layer_level_present_flag[kMostSubLayers - 1] = {};
    for (int i = 0; i < maxNumSubLayersMinus1; ++i) {
        sub_layer_profile_present_flag[i] = in.u(1) != 0;
        sub_layer_level_present_flag[i] = in.u(1) != 0;
    }
    if (maxNumSubLayersMinus1 > 0) {
        for (int i = maxNumSubLayersMinus1; i < kMostSubLayers; ++i) {
            in.drop(2);  // reserved_zero_2bits
        }
    }
    for (int i = 0; i < maxNumSubLayersMinus1; ++i) {
        if (sub_layer_profile_present_flag[i]) {
            in.drop(8 + 32 + 48);  // sub-layer profile, compatibility flags, constraint flags
        }
        if (sub_layer_level_present_flag[i]) {
            in.drop(8);  // sub_layer_level_idc
        }
    }
}

void parseChromaFormat(QVHevcSps* sps, RbspWindow& in) {
    constexpr int32_t kChromaFormat444 = 3;
    sps->chroma_format_idc = asField(in.ue());
    sps->separate_colour_plane_flag = sps->chroma_format_idc == kChromaFormat444 ? in.flag() : 0;
}

// The size inside the conformance window, with SubWidthC and SubHeightC of Table 6-1, and 1 for a
// chroma_format_idc that is not in it. The window is not compared with the picture: an oversize one wraps
// (D10).
void deriveDisplaySize(QVHevcSps* sps, uint32_t width, uint32_t height) {
    const uint32_t SubWidthC = sps->chroma_format_idc == 1 || sps->chroma_format_idc == 2 ? 2 : 1;
    const uint32_t SubHeightC = sps->chroma_format_idc == 1 ? 2 : 1;
    const uint32_t columns = asElement(sps->conf_win_left_offset) + asElement(sps->conf_win_right_offset);
    const uint32_t rows = asElement(sps->conf_win_top_offset) + asElement(sps->conf_win_bottom_offset);
    sps->display_width = asField(width - SubWidthC * columns);
    sps->display_height = asField(height - SubHeightC * rows);
}

// Picture size and conformance window. Without a window, the offsets of an earlier parameter set stay.
void parsePictureSize(QVHevcSps* sps, RbspWindow& in) {
    const uint32_t pic_width_in_luma_samples = in.ue();
    const uint32_t pic_height_in_luma_samples = in.ue();
    sps->pic_width_in_luma_samples = asField(pic_width_in_luma_samples);
    sps->pic_height_in_luma_samples = asField(pic_height_in_luma_samples);
    sps->conformance_window_flag = in.flag();
    if (sps->conformance_window_flag == 0) {
        sps->display_width = sps->pic_width_in_luma_samples;
        sps->display_height = sps->pic_height_in_luma_samples;
        return;
    }
    sps->conf_win_left_offset = asField(in.ue());
    sps->conf_win_right_offset = asField(in.ue());
    sps->conf_win_top_offset = asField(in.ue());
    sps->conf_win_bottom_offset = asField(in.ue());
    deriveDisplaySize(sps, pic_width_in_luma_samples, pic_height_in_luma_samples);
}

}  // namespace

bool parseHevcSps(QVHevcSps* sps, std::shared_ptr<QVByteStream> stream) {
    if (sps == nullptr || stream == nullptr || stream->size == 0) {
        return false;
    }
    RbspWindow in(*stream);
    in.drop(16);  // nal_unit_header() (D40)
    sps->sps_video_parameter_set_id = asField(in.u(4));
    sps->sps_max_sub_layers_minus1 = asField(in.u(3));
    sps->sps_temporal_id_nesting_flag = in.flag();
    parseHevcSpsForProfile(stream, in);
    skipSubLayers(in, sps->sps_max_sub_layers_minus1);
    sps->sps_seq_parameter_set_id = asField(in.ue());
    parseChromaFormat(sps, in);
    parsePictureSize(sps, in);
    sps->bit_depth_luma_minus8 = asField(in.ue());
    sps->bit_depth_chroma_minus8 = asField(in.ue());
    sps->log2_max_pic_order_cnt_lsb_minus4 = asField(in.ue());
    sps->sps_sub_layer_ordering_info_present_flag = in.flag();
    return true;
}
