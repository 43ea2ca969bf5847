#include "analysis/SeiNames.h"

#include <algorithm>
#include <initializer_list>

#include "bitstream/names/Colour.h"

namespace qvinspect {

namespace {

constexpr uint8_t kCountryUnitedStates = 0xB5;
constexpr uint8_t kCountryChina = 0x26;
constexpr uint8_t kCountryExtended = 0xFF;

const char* avcOnlySeiName(uint32_t payloadType) {
    switch (payloadType) {
        case 7:
            return "dec_ref_pic_marking_repetition";
        case 8:
            return "spare_pic";
        case 10:
            return "sub_seq_info";
        case 11:
            return "sub_seq_layer_characteristics";
        case 12:
            return "sub_seq_characteristics";
        case 13:
            return "full_frame_freeze";
        case 14:
            return "full_frame_freeze_release";
        case 18:
            return "motion_constrained_slice_group_set";
        case 20:
            return "deblocking_filter_display_preference";
        case 21:
            return "stereo_video_info";
        case 24:
            return "scalability_info";
        case 37:
            return "mvc_scalable_nesting";
        case 38:
            return "view_scalability_info";
        default:
            return "reserved";
    }
}

const char* hevcOnlySeiName(uint32_t payloadType) {
    switch (payloadType) {
        case 128:
            return "structure_of_pictures_info";
        case 129:
            return "active_parameter_sets";
        case 130:
            return "decoding_unit_info";
        case 131:
            return "temporal_sub_layer_zero_idx";
        case 132:
            return "decoded_picture_hash";
        case 133:
            return "scalable_nesting";
        case 134:
            return "region_refresh_info";
        case 135:
            return "no_display";
        case 136:
            return "time_code";
        case 138:
            return "segmented_rect_frame_packing_arrangement";
        case 139:
            return "temporal_motion_constrained_tile_sets";
        case 140:
            return "chroma_resampling_filter_hint";
        case 141:
            return "knee_function_info";
        case 143:
            return "deinterlaced_field_identification";
        case 145:
            return "dependent_rap_indication";
        case 146:
            return "coded_region_completion";
        case 160:
            return "layers_not_present";
        case 165:
            return "alpha_channel_info";
        case 176:
            return "three_dimensional_reference_displays_info";
        case 178:
            return "multiview_scene_info";
        case 179:
            return "multiview_acquisition_info";
        case 180:
            return "multiview_view_position";
        default:
            return "reserved";
    }
}

uint32_t identifierAt(const std::vector<uint8_t>& payload, size_t at) {
    if (payload.size() < at + 4) {
        return 0;
    }
    return uint32_t{payload[at]} << 24 | uint32_t{payload[at + 1]} << 16 | uint32_t{payload[at + 2]} << 8 |
           payload[at + 3];
}

bool startsWith(const std::vector<uint8_t>& payload, std::initializer_list<uint8_t> bytes) {
    return payload.size() >= bytes.size() && std::equal(bytes.begin(), bytes.end(), payload.begin());
}

}  // namespace

const char* seiName(QVCodecID codec, uint32_t payloadType) {
    switch (payloadType) {
        case 0:
            return "buffering_period";
        case 1:
            return "pic_timing";
        case 2:
            return "pan_scan_rect";
        case 3:
            return "filler_payload";
        case 4:
            return "user_data_registered_itu_t_t35";
        case 5:
            return "user_data_unregistered";
        case 6:
            return "recovery_point";
        case 9:
            return "scene_info";
        case 15:
            return codec == QVCodecIDAvc ? "full_frame_snapshot" : "picture_snapshot";
        case 16:
            return "progressive_refinement_segment_start";
        case 17:
            return "progressive_refinement_segment_end";
        case 19:
            return "film_grain_characteristics";
        case 22:
            return "post_filter_hint";
        case 23:
            return "tone_mapping_info";
        case 45:
            return "frame_packing_arrangement";
        case 47:
            return "display_orientation";
        case 56:
            return "green_metadata";
        case 137:
            return "mastering_display_colour_volume";
        case 142:
            return "colour_remapping_info";
        case 144:
            return "content_light_level_info";
        case 147:
            return "alternative_transfer_characteristics";
        case 148:
            return "ambient_viewing_environment";
        case 149:
            return "content_colour_volume";
        default:
            return codec == QVCodecIDAvc ? avcOnlySeiName(payloadType) : hevcOnlySeiName(payloadType);
    }
}

T35Kind t35Kind(const std::vector<uint8_t>& payload) {
    constexpr uint32_t kGa94 = 0x47413934;
    constexpr uint32_t kDtg1 = 0x44544731;
    // T/UWA 005.1 and SMPTE ST 2094-40 are identified by country, provider and provider-oriented code.
    if (startsWith(payload, {kCountryChina, 0x00, 0x04, 0x00, 0x05})) {
        return T35Kind::HdrVivid;
    }
    if (startsWith(payload, {kCountryUnitedStates, 0x00, 0x3C, 0x00, 0x01})) {
        return T35Kind::Hdr10Plus;
    }
    const size_t country = startsWith(payload, {kCountryExtended}) ? 2 : 1;
    switch (identifierAt(payload, country + 2)) {
        case kGa94:
            return T35Kind::A53Captions;
        case kDtg1:
            return T35Kind::Afd;
        default:
            return T35Kind::Unknown;
    }
}

const char* t35KindName(T35Kind kind) {
    switch (kind) {
        case T35Kind::A53Captions:
            return "A/53 user data (GA94)";
        case T35Kind::Afd:
            return "active format description (DTG1)";
        case T35Kind::Hdr10Plus:
            return "HDR10+ (ST 2094-40)";
        case T35Kind::HdrVivid:
            return "HDR Vivid (T/UWA 005.1)";
        case T35Kind::Unknown:
            break;
    }
    return "unknown";
}

const char* transferName(uint32_t transfer_characteristics) {
    return qv::transferCharacteristicsName(transfer_characteristics).name;
}

const char* activeFormatName(uint32_t active_format) {
    switch (active_format) {
        case 2:
            return "box 16:9, top";
        case 3:
            return "box 14:9, top";
        case 4:
            return "box wider than 16:9, centre";
        case 8:
            return "as the coded frame";
        case 9:
            return "4:3, centre";
        case 10:
            return "16:9, centre";
        case 11:
            return "14:9, centre";
        case 13:
            return "4:3 with shoot and protect 14:9 centre";
        case 14:
            return "16:9 with shoot and protect 14:9 centre";
        case 15:
            return "16:9 with shoot and protect 4:3 centre";
        default:
            return "reserved";
    }
}

const char* framePackingName(uint32_t frame_packing_arrangement_type) {
    switch (frame_packing_arrangement_type) {
        case 0:
            return "checkerboard";
        case 1:
            return "column interleaving";
        case 2:
            return "row interleaving";
        case 3:
            return "side by side";
        case 4:
            return "top and bottom";
        case 5:
            return "temporal interleaving";
        case 6:
            return "2D";
        case 7:
            return "tiles";
        default:
            return "reserved";
    }
}

const char* avcPicStructName(uint32_t pic_struct) {
    switch (pic_struct) {
        case 0:
            return "frame";
        case 1:
            return "top field";
        case 2:
            return "bottom field";
        case 3:
            return "top, bottom field";
        case 4:
            return "bottom, top field";
        case 5:
            return "top, bottom, top field repeated";
        case 6:
            return "bottom, top, bottom field repeated";
        case 7:
            return "frame doubling";
        case 8:
            return "frame tripling";
        default:
            return "reserved";
    }
}

}  // namespace qvinspect
