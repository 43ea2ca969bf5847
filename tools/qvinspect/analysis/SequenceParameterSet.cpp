#include "analysis/SequenceParameterSet.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>

#include "QVTraceLog.h"
#include "analysis/AvcVui.h"
#include "analysis/CoreHooks.h"
#include "analysis/HevcVui.h"
#include "input/UnescapedUnit.h"

namespace qvinspect {

namespace {

// Any real one is far shorter; the bound is for broken ones.
constexpr size_t kMostBytes = 64 * 1024;

std::string sizes(int width, int height, int codedWidth, int codedHeight) {
    return width == codedWidth && height == codedHeight
               ? fmt::format("{}x{}", width, height)
               : fmt::format("{}x{} (coded {}x{})", width, height, codedWidth, codedHeight);
}

int avcCodedHeight(const QVAvcSps& sps) {
    return 16 * sps.mb_height * (2 - sps.frame_mbs_only_flag);
}

// The library logs profile, tier and level and keeps them in no field.
void takeHevcProfile(SequenceParameterSet& sps) {
    for (const std::string& line : sps.log) {
        int space = 0;
        if (std::sscanf(line.c_str(), "parseHevcSpsForProfile, profile:%d/%d/%d/%d", &space, &sps.tier,
                        &sps.profile, &sps.level) == 4) {
            return;
        }
    }
}

void summarise(SequenceParameterSet& sps) {
    if (sps.codec == QVCodecIDAvc) {
        const QVAvcSps& avc = sps.avc;
        sps.profile = avc.profile_idc;
        sps.level = avc.level_idc;
        sps.summary = fmt::format("{}, level {}, {}, {}, {} bit",
                                  avcProfileName(avc.profile_idc, avc.constraint_set_flags),
                                  avcLevelName(avc.level_idc, avc.profile_idc, avc.constraint_set_flags),
                                  sizes(avc.width, avc.height, 16 * avc.mb_width, avcCodedHeight(avc)),
                                  chromaName(avc.chroma_format_idc), avc.bit_depth_luma);
        return;
    }
    takeHevcProfile(sps);
    const QVHevcSps& hevc = sps.hevc;
    sps.summary = fmt::format("{}, level {}{}, {}, {}, {} bit", hevcProfileName(sps.profile),
                              hevcLevelName(sps.level), sps.tier != 0 ? " high tier" : "",
                              sizes(hevc.display_width, hevc.display_height, hevc.pic_width_in_luma_samples,
                                    hevc.pic_height_in_luma_samples),
                              chromaName(hevc.chroma_format_idc), int64_t{8} + hevc.bit_depth_luma_minus8);
}

void describeVui(const QVAvcSps& sps, Block& block) {
    if (sps.vui_parameters_present_flag == 0) {
        return;
    }
    block.add("video_full_range_flag", sps.full_range, sps.full_range < 0 ? "not sent" : "");
    if (sps.colour_description_present_flag != 0) {
        block.add("colour_primaries", sps.colour_primaries);
        block.add("transfer_characteristics", sps.transfer_characteristics);
        block.add("matrix_coefficients", sps.colorspace);
    }
    if (sps.timing_info_present_flag != 0) {
        const double ticks = 2.0 * sps.num_units_in_tick;
        block.add("num_units_in_tick", sps.num_units_in_tick);
        Field& scale = block.add("time_scale", sps.time_scale);
        if (ticks > 0) {
            scale.note = fmt::format("{:.3f} frames/s", sps.time_scale / ticks);
            scale.derive({sps.time_scale / ticks}, "frames/s");
        }
        block.add("fixed_frame_rate_flag", sps.fixed_frame_rate_flag);
    }
    block.add("nal_hrd_parameters_present_flag", sps.nal_hrd_parameters_present_flag);
    block.add("vcl_hrd_parameters_present_flag", sps.vcl_hrd_parameters_present_flag);
    if (sps.nal_hrd_parameters_present_flag != 0 || sps.vcl_hrd_parameters_present_flag != 0) {
        block.add("cpb_cnt_minus1", sps.cpb_cnt - 1);
        block.add("initial_cpb_removal_delay_length_minus1", sps.initial_cpb_removal_delay_length - 1);
        block.add("cpb_removal_delay_length_minus1", sps.cpb_removal_delay_length - 1);
        block.add("dpb_output_delay_length_minus1", sps.dpb_output_delay_length - 1);
        block.add("time_offset_length", sps.time_offset_length);
    }
    block.add("pic_struct_present_flag", sps.pic_struct_present_flag);
}

void describePoc(const QVAvcSps& sps, Block& block) {
    block.add("pic_order_cnt_type", sps.poc_type);
    if (sps.poc_type == 0) {
        block.add("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_poc_lsb - 4);
    } else if (sps.poc_type == 1) {
        block.add("delta_pic_order_always_zero_flag", sps.delta_pic_order_always_zero_flag);
        block.add("offset_for_non_ref_pic", sps.offset_for_non_ref_pic);
        block.add("offset_for_top_to_bottom_field", sps.offset_for_top_to_bottom_field);
        block.add("num_ref_frames_in_pic_order_cnt_cycle", sps.poc_cycle_length);
    }
}

Block describeAvc(const SequenceParameterSet& set) {
    const QVAvcSps& sps = set.avc;
    Block block;
    block.add("profile_idc", sps.profile_idc, avcProfileName(sps.profile_idc, sps.constraint_set_flags));
    block.addHex("constraint_set_flags", sps.constraint_set_flags, 2, "set0 in bit 0");
    block.add("level_idc", sps.level_idc,
              avcLevelName(sps.level_idc, sps.profile_idc, sps.constraint_set_flags));
    block.add("seq_parameter_set_id", sps.sps_id);
    block.add("chroma_format_idc", sps.chroma_format_idc, chromaName(sps.chroma_format_idc));
    block.add("bit_depth_luma_minus8", sps.bit_depth_luma - 8);
    block.add("bit_depth_chroma_minus8", sps.bit_depth_chroma - 8);
    block.add("qpprime_y_zero_transform_bypass_flag", sps.transform_bypass);
    block.add("scaling lists", set.hasScalingLists ? "sent" : "none");
    block.add("log2_max_frame_num_minus4", sps.log2_max_frame_num - 4);
    describePoc(sps, block);
    block.add("max_num_ref_frames", sps.ref_frame_count);
    block.add("gaps_in_frame_num_value_allowed_flag", sps.gaps_in_frame_num_allowed_flag);
    block.add("pic_width_in_mbs_minus1", sps.mb_width - 1);
    block.add("pic_height_in_map_units_minus1", sps.mb_height - 1);
    block.add("frame_mbs_only_flag", sps.frame_mbs_only_flag);
    block.add("mb_adaptive_frame_field_flag", sps.mb_aff);
    block.add("direct_8x8_inference_flag", sps.direct_8x8_inference_flag);
    block.add("frame_cropping_flag", sps.crop);
    block.add("frame_crop_offsets", FieldList{sps.crop_left, sps.crop_right, sps.crop_top, sps.crop_bottom},
              "left, right, top, bottom, in crop units");
    block.add("picture size", sizes(sps.width, sps.height, 16 * sps.mb_width, avcCodedHeight(sps)));
    block.add("vui_parameters_present_flag", sps.vui_parameters_present_flag);
    describeVui(sps, block);
    return block;
}

Block describeHevc(const SequenceParameterSet& set) {
    const QVHevcSps& sps = set.hevc;
    Block block;
    block.add("sps_video_parameter_set_id", sps.sps_video_parameter_set_id);
    block.add("sps_max_sub_layers_minus1", sps.sps_max_sub_layers_minus1);
    block.add("sps_temporal_id_nesting_flag", sps.sps_temporal_id_nesting_flag);
    block.add("general_tier_flag", set.tier, set.tier != 0 ? "High" : "Main");
    block.add("general_profile_idc", set.profile, hevcProfileName(set.profile));
    block.add("general_level_idc", set.level, hevcLevelName(set.level));
    block.add("sps_seq_parameter_set_id", sps.sps_seq_parameter_set_id);
    block.add("chroma_format_idc", sps.chroma_format_idc, chromaName(sps.chroma_format_idc));
    block.add("separate_colour_plane_flag", sps.separate_colour_plane_flag);
    block.add("pic_width_in_luma_samples", sps.pic_width_in_luma_samples);
    block.add("pic_height_in_luma_samples", sps.pic_height_in_luma_samples);
    block.add("conformance_window_flag", sps.conformance_window_flag);
    if (sps.conformance_window_flag != 0) {
        block.add("conf_win_offsets",
                  FieldList{sps.conf_win_left_offset, sps.conf_win_right_offset, sps.conf_win_top_offset,
                            sps.conf_win_bottom_offset},
                  "left, right, top, bottom, in chroma units");
    }
    block.add("picture size", sizes(sps.display_width, sps.display_height, sps.pic_width_in_luma_samples,
                                    sps.pic_height_in_luma_samples));
    block.add("bit_depth_luma_minus8", sps.bit_depth_luma_minus8);
    block.add("bit_depth_chroma_minus8", sps.bit_depth_chroma_minus8);
    block.add("log2_max_pic_order_cnt_lsb_minus4", sps.log2_max_pic_order_cnt_lsb_minus4);
    block.add("sps_sub_layer_ordering_info_present_flag", sps.sps_sub_layer_ordering_info_present_flag);
    return block;
}

// seq_scaling_matrix_present_flag, which the library reads and keeps in no field. The profiles whose head
// carries it are those that the parser gives a chroma_format_idc from the bitstream.
bool readsScalingLists(const std::vector<uint8_t>& unit, const QVAvcSps& sps) {
    static constexpr int kProfiles[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 144};
    if (std::find(std::begin(kProfiles), std::end(kProfiles), sps.profile_idc) == std::end(kProfiles)) {
        return false;
    }
    QVByteStream in(unit.data(), unit.size());
    in.skipBytes(4);    // header, profile_idc, constraint flags, level_idc
    in.readGolombUe();  // seq_parameter_set_id
    const uint32_t chroma_format_idc = in.readGolombUe();
    if (chroma_format_idc == 3) {
        in.readBit();  // separate_colour_plane_flag
    }
    in.readGolombUe();  // bit_depth_luma_minus8
    in.readGolombUe();  // bit_depth_chroma_minus8
    in.readBit();       // qpprime_y_zero_transform_bypass_flag
    return in.readBit() != 0;
}

// The H.264 parser takes the bytes as they stand, so they are unescaped for it; the H.265 one unescapes.
void parseAvc(SequenceParameterSet& sps, const unsigned char* unit, size_t size) {
    const std::vector<uint8_t> bytes = unescapedUnit(unit, size, kMostBytes);
    const auto stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    sps.isAccepted = parseAvcSps(&sps.avc, stream);
    sps.hasScalingLists = sps.isAccepted && readsScalingLists(bytes, sps.avc);
    if (sps.isAccepted && sps.avc.vui_parameters_present_flag != 0) {
        readAvcVui(*stream, sps.avc);
    }
    if (sps.isAccepted && sps.avc.colour_description_present_flag != 0) {
        sps.transfer_characteristics = static_cast<uint32_t>(sps.avc.transfer_characteristics);
    }
}

void parseHevc(SequenceParameterSet& sps, const unsigned char* unit, size_t size) {
    sps.isAccepted =
        parseHevcSps(&sps.hevc, std::make_shared<QVByteStream>(unit, std::min(size, kMostBytes)));
    if (sps.isAccepted) {
        sps.transfer_characteristics = hevcTransferCharacteristics(unescapedUnit(unit, size, kMostBytes));
    }
}

}  // namespace

SequenceParameterSet readSequenceParameterSet(QVCodecID codec, const unsigned char* unit, size_t size) {
    SequenceParameterSet sps{};
    sps.codec = codec;
    const LogCapture log;
    if (codec == QVCodecIDAvc) {
        parseAvc(sps, unit, size);
    } else {
        parseHevc(sps, unit, size);
    }
    for (const LogLine& line : log.lines()) {
        if (line.level != QVTraceDebug) {
            sps.log.push_back(line.text);
        }
    }
    if (sps.isAccepted) {
        summarise(sps);
    }
    return sps;
}

Block describe(const SequenceParameterSet& sps) {
    if (!sps.isAccepted) {
        Block block;
        for (const std::string& line : sps.log) {
            block.add("refused", line);
        }
        return block;
    }
    return sps.codec == QVCodecIDAvc ? describeAvc(sps) : describeHevc(sps);
}

const char* chromaName(int chroma_format_idc) {
    switch (chroma_format_idc) {
        case 0:
            return "4:0:0";
        case 1:
            return "4:2:0";
        case 2:
            return "4:2:2";
        case 3:
            return "4:4:4";
        default:
            return "reserved";
    }
}

// H.264 (08/2021) Annex A.2, with the constraint flags that make a profile another one.
std::string avcProfileName(int profile_idc, int constraint_set_flags) {
    const bool isSet1 = (constraint_set_flags & 1 << 1) != 0;
    const bool isSet3 = (constraint_set_flags & 1 << 3) != 0;
    switch (profile_idc) {
        case 66:
            return isSet1 ? "Constrained Baseline" : "Baseline";
        case 77:
            return "Main";
        case 88:
            return "Extended";
        case 100:
            return "High";
        case 110:
            return isSet3 ? "High 10 Intra" : "High 10";
        case 122:
            return isSet3 ? "High 4:2:2 Intra" : "High 4:2:2";
        case 244:
            return isSet3 ? "High 4:4:4 Intra" : "High 4:4:4 Predictive";
        case 44:
            return "CAVLC 4:4:4 Intra";
        case 83:
            return "Scalable Baseline";
        case 86:
            return "Scalable High";
        case 118:
            return "Multiview High";
        case 128:
            return "Stereo High";
        case 134:
            return "MFC High";
        case 135:
            return "MFC Depth High";
        case 138:
            return "Multiview Depth High";
        case 139:
            return "Enhanced Multiview Depth High";
        default:
            return fmt::format("profile {}", profile_idc);
    }
}

// H.264 (08/2021) A.3: level 1b is level_idc 11 with constraint_set3_flag in the older profiles, else 9.
std::string avcLevelName(int level_idc, int profile_idc, int constraint_set_flags) {
    const bool isOlder = profile_idc == 66 || profile_idc == 77 || profile_idc == 88;
    if (level_idc == 9 || (level_idc == 11 && isOlder && (constraint_set_flags & 1 << 3) != 0)) {
        return "1b";
    }
    return level_idc % 10 == 0 ? fmt::format("{}", level_idc / 10)
                               : fmt::format("{}.{}", level_idc / 10, level_idc % 10);
}

// H.265 (08/2021) Annex A.3, G, H, I.
std::string hevcProfileName(int general_profile_idc) {
    switch (general_profile_idc) {
        case 1:
            return "Main";
        case 2:
            return "Main 10";
        case 3:
            return "Main Still Picture";
        case 4:
            return "Format Range Extensions";
        case 5:
            return "High Throughput";
        case 6:
            return "Multiview Main";
        case 7:
            return "Scalable Main";
        case 8:
            return "3D Main";
        case 9:
            return "Screen Content Coding Extensions";
        case 10:
            return "Scalable Format Range Extensions";
        case 11:
            return "High Throughput Screen Content Coding Extensions";
        default:
            return fmt::format("profile {}", general_profile_idc);
    }
}

// H.265 (08/2021) A.4.1: general_level_idc is 30 times the level.
std::string hevcLevelName(int general_level_idc) {
    return general_level_idc % 30 == 0 ? fmt::format("{}", general_level_idc / 30)
                                       : fmt::format("{:.1f}", general_level_idc / 30.0);
}

}  // namespace qvinspect
