#include "analysis/SequenceParameterSet.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "QVSpsCompletion.h"
#include "QVTraceLog.h"
#include "analysis/CoreHooks.h"
#include "bitstream/avc/ProfileLevel.h"
#include "bitstream/names/Colour.h"
#include "bitstream/units/Rbsp.h"

namespace qvinspect {

namespace {

// Real ones are far shorter; the limit is for broken ones.
constexpr size_t kMostBytes = 64 * 1024;

// The elements of a damaged set that come before its fault.
class ElementNames final : public qv::TraceVisitor {
public:
    void element(const qv::TracedElement& element) override { names_.insert(element.element.name); }

    bool has(std::string_view name) const { return names_.count(name) > 0; }

private:
    std::set<std::string_view> names_;
};

// What a damaged set still says. afterPicture: the element after those of the picture.
std::optional<VideoFormat> undamaged(const VideoFormat& video, const ElementNames& names,
                                     const char* afterPicture, const char* lastOfColour) {
    if (!names.has(afterPicture)) {
        return std::nullopt;
    }
    VideoFormat read = video;
    if (!names.has(lastOfColour)) {
        read.colour.reset();
    }
    return read;
}

void readAvcRecord(qv::Bytes unit, SequenceParameterSet& set) {
    const qv::Read<qv::avc::Sps> read = qv::avc::readSps(unit);
    set.avcRecord = std::make_shared<const qv::avc::Sps>(read.record);
    set.fault = textOf(read.fault);
    set.video = videoFormatOf(read.record);
    if (!read.ok()) {
        ElementNames names;
        qv::avc::traceSps(unit, names);
        set.video = undamaged(*set.video, names, "vui_parameters_present_flag", "matrix_coefficients");
    }
}

void readHevcRecord(qv::Bytes unit, const qv::hevc::Vps* vps, SequenceParameterSet& set) {
    qv::Read<qv::hevc::Sps> read = qv::hevc::readSps(unit, vps);
    // Of hrd_parameters() that a fault cuts off, entries may be missing.
    read.record.vui.vui_hrd_parameters_present_flag &= read.ok();
    set.fault = textOf(read.fault);
    set.video = videoFormatOf(read.record, vps);
    if (!read.ok()) {
        ElementNames names;
        qv::hevc::traceSps(unit, names, vps);
        set.video = undamaged(*set.video, names, "log2_max_pic_order_cnt_lsb_minus4", "matrix_coeffs");
    }
    set.hevcRecord = std::make_shared<const qv::hevc::Sps>(read.record);
}

// The player's H.264 parser takes bytes as they are, so it is given those without emulation prevention.
bool isAcceptedAvc(qv::Bytes unit, QVAvcSps& sps) {
    std::vector<uint8_t> bytes(unit.size);
    bytes.resize(qv::unescape(unit, 1, bytes.data(), bytes.size()));
    if (!parseAvcSps(&sps, std::make_shared<QVByteStream>(bytes.data(), bytes.size()))) {
        return false;
    }
    // Without it the record keeps the values that it has, and no SEI message is read with HRD fields.
    static_cast<void>(completeAvcSps(&sps, unit.data, static_cast<int>(unit.size)));
    return true;
}

bool isAcceptedHevc(qv::Bytes unit, QVHevcSps& sps) {
    return parseHevcSps(&sps, std::make_shared<QVByteStream>(unit.data, unit.size));
}

std::string nameIn(const qv::Name& name) {
    return name.name;
}

// The part of vui_parameters() that both codecs have.
template <class Vui>
void describeSignal(const Vui& vui, const VideoFormat& video, const char* matrix, Block& block) {
    if (vui.aspect_ratio_info_present_flag) {
        const qv::Ratio& ratio = video.sampleAspectRatio;
        block.add("aspect_ratio_idc", int64_t{vui.aspect_ratio_idc},
                  ratio.isKnown() ? fmt::format("{}:{}", ratio.numerator, ratio.denominator) : "unspecified");
    }
    block.add("video_full_range_flag", int64_t{vui.video_full_range_flag},
              vui.video_signal_type_present_flag ? "" : "not sent");
    if (video.colour) {
        block.add("colour_primaries", int64_t{video.colour->colour_primaries},
                  nameIn(qv::colourPrimariesName(video.colour->colour_primaries)));
        block.add("transfer_characteristics", int64_t{video.colour->transfer_characteristics},
                  nameIn(qv::transferCharacteristicsName(video.colour->transfer_characteristics)));
        block.add(matrix, int64_t{video.colour->matrix_coefficients},
                  nameIn(qv::matrixCoefficientsName(video.colour->matrix_coefficients)));
    }
}

void describeRate(const qv::Ratio& rate, Field& field) {
    if (rate.isKnown()) {
        const double framesPerSecond =
            static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator);
        field.note = fmt::format("{:.3f} frames/s", framesPerSecond);
        field.derive({framesPerSecond}, "frames/s");
    }
}

void describeHrd(const qv::avc::Hrd& hrd, Block& block) {
    block.add("cpb_cnt_minus1", int64_t{hrd.cpb_cnt_minus1});
    block.add("initial_cpb_removal_delay_length_minus1",
              int64_t{hrd.initial_cpb_removal_delay_length_minus1});
    block.add("cpb_removal_delay_length_minus1", int64_t{hrd.cpb_removal_delay_length_minus1});
    block.add("dpb_output_delay_length_minus1", int64_t{hrd.dpb_output_delay_length_minus1});
    block.add("time_offset_length", int64_t{hrd.time_offset_length});
}

void describeVui(const qv::avc::SpsData& sps, const VideoFormat& video, Block& block) {
    block.add("vui_parameters_present_flag", int64_t{sps.vui_parameters_present_flag});
    if (!sps.vui_parameters_present_flag) {
        return;
    }
    const qv::avc::Vui& vui = sps.vui;
    describeSignal(vui, video, "matrix_coefficients", block);
    if (vui.timing_info_present_flag) {
        block.add("num_units_in_tick", int64_t{vui.num_units_in_tick});
        describeRate(video.frameRate, block.add("time_scale", int64_t{vui.time_scale}));
        block.add("fixed_frame_rate_flag", int64_t{vui.fixed_frame_rate_flag});
    }
    block.add("nal_hrd_parameters_present_flag", int64_t{vui.nal_hrd_parameters_present_flag});
    block.add("vcl_hrd_parameters_present_flag", int64_t{vui.vcl_hrd_parameters_present_flag});
    if (vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag) {
        describeHrd(vui.nal_hrd_parameters_present_flag ? vui.nal_hrd_parameters : vui.vcl_hrd_parameters,
                    block);
    }
    block.add("pic_struct_present_flag", int64_t{vui.pic_struct_present_flag});
}

void describeVui(const qv::hevc::Sps& sps, const VideoFormat& video, Block& block) {
    block.add("vui_parameters_present_flag", int64_t{sps.vui_parameters_present_flag});
    if (sps.vui_parameters_present_flag) {
        const qv::hevc::Vui& vui = sps.vui;
        describeSignal(vui, video, "matrix_coeffs", block);
        block.add("field_seq_flag", int64_t{vui.field_seq_flag});
        block.add("frame_field_info_present_flag", int64_t{vui.frame_field_info_present_flag});
        block.add("vui_timing_info_present_flag", int64_t{vui.vui_timing_info_present_flag});
        if (vui.vui_timing_info_present_flag) {
            block.add("vui_num_units_in_tick", int64_t{vui.vui_num_units_in_tick});
            describeRate(video.frameRate, block.add("vui_time_scale", int64_t{vui.vui_time_scale}));
            return;
        }
    }
    if (video.frameRate.isKnown()) {
        describeRate(video.frameRate, block.add("frame rate", std::string("by the VPS")));
    }
}

void describePoc(const qv::avc::SpsData& sps, Block& block) {
    block.add("pic_order_cnt_type", int64_t{sps.pic_order_cnt_type});
    if (sps.pic_order_cnt_type == 0) {
        block.add("log2_max_pic_order_cnt_lsb_minus4", int64_t{sps.log2_max_pic_order_cnt_lsb_minus4});
    } else if (sps.pic_order_cnt_type == 1) {
        block.add("delta_pic_order_always_zero_flag", int64_t{sps.delta_pic_order_always_zero_flag});
        block.add("offset_for_non_ref_pic", sps.offset_for_non_ref_pic);
        block.add("offset_for_top_to_bottom_field", sps.offset_for_top_to_bottom_field);
        block.add("num_ref_frames_in_pic_order_cnt_cycle",
                  int64_t{sps.num_ref_frames_in_pic_order_cnt_cycle});
    }
}

// constraint_set0_flag in the lowest bit.
int64_t constraintSetFlags(const qv::avc::SpsData& sps) {
    const uint32_t coded = qv::avc::constraintsOf(sps);
    int64_t flags = 0;
    for (uint32_t i = 0; i < 6; ++i) {
        flags |= static_cast<int64_t>(coded >> (7 - i) & 1U) << i;
    }
    return flags;
}

void describeAvc(const qv::avc::SpsData& sps, const VideoFormat& video, Block& block) {
    block.add("profile_idc", int64_t{sps.profile_idc}, video.profile);
    block.addHex("constraint_set_flags", constraintSetFlags(sps), 2, "set0 in bit 0");
    block.add("level_idc", int64_t{sps.level_idc}, video.level);
    block.add("seq_parameter_set_id", int64_t{sps.seq_parameter_set_id});
    block.add("chroma_format_idc", int64_t{sps.chroma_format_idc}, video.chroma.name);
    block.add("bit_depth_luma_minus8", int64_t{sps.bit_depth_luma_minus8});
    block.add("bit_depth_chroma_minus8", int64_t{sps.bit_depth_chroma_minus8});
    block.add("qpprime_y_zero_transform_bypass_flag", int64_t{sps.qpprime_y_zero_transform_bypass_flag});
    block.add("scaling lists", sps.seq_scaling_matrix_present_flag ? "sent" : "none");
    block.add("log2_max_frame_num_minus4", int64_t{sps.log2_max_frame_num_minus4});
    describePoc(sps, block);
    block.add("max_num_ref_frames", int64_t{sps.max_num_ref_frames});
    block.add("gaps_in_frame_num_value_allowed_flag", int64_t{sps.gaps_in_frame_num_value_allowed_flag});
    block.add("pic_width_in_mbs_minus1", int64_t{sps.pic_width_in_mbs_minus1});
    block.add("pic_height_in_map_units_minus1", int64_t{sps.pic_height_in_map_units_minus1});
    block.add("frame_mbs_only_flag", int64_t{sps.frame_mbs_only_flag});
    block.add("mb_adaptive_frame_field_flag", int64_t{sps.mb_adaptive_frame_field_flag});
    block.add("direct_8x8_inference_flag", int64_t{sps.direct_8x8_inference_flag});
    block.add("frame_cropping_flag", int64_t{sps.frame_cropping_flag});
    block.add("frame_crop_offsets",
              FieldList{sps.frame_crop_left_offset, sps.frame_crop_right_offset, sps.frame_crop_top_offset,
                        sps.frame_crop_bottom_offset},
              "left, right, top, bottom, in crop units");
    block.add("picture size", sizeText(video));
    describeVui(sps, video, block);
}

void describeHevc(const qv::hevc::Sps& sps, const VideoFormat& video, Block& block) {
    block.add("sps_video_parameter_set_id", int64_t{sps.sps_video_parameter_set_id});
    block.add("sps_max_sub_layers_minus1", int64_t{sps.sps_max_sub_layers_minus1});
    block.add("sps_temporal_id_nesting_flag", int64_t{sps.sps_temporal_id_nesting_flag});
    block.add("general_tier_flag", int64_t{sps.profile_tier_level.general.tier_flag}, video.tier);
    block.add("general_profile_idc", int64_t{video.profile_idc}, video.profile);
    block.add("general_level_idc", int64_t{video.level_idc}, video.level);
    block.add("sps_seq_parameter_set_id", int64_t{sps.sps_seq_parameter_set_id});
    block.add("chroma_format_idc", int64_t{sps.chroma_format_idc}, video.chroma.name);
    block.add("separate_colour_plane_flag", int64_t{sps.separate_colour_plane_flag});
    block.add("pic_width_in_luma_samples", int64_t{sps.pic_width_in_luma_samples});
    block.add("pic_height_in_luma_samples", int64_t{sps.pic_height_in_luma_samples});
    block.add("conformance_window_flag", int64_t{sps.conformance_window_flag});
    if (sps.conformance_window_flag) {
        block.add("conf_win_offsets",
                  FieldList{sps.conf_win_left_offset, sps.conf_win_right_offset, sps.conf_win_top_offset,
                            sps.conf_win_bottom_offset},
                  "left, right, top, bottom, in chroma units");
    }
    block.add("picture size", sizeText(video));
    block.add("bit_depth_luma_minus8", int64_t{sps.bit_depth_luma_minus8});
    block.add("bit_depth_chroma_minus8", int64_t{sps.bit_depth_chroma_minus8});
    block.add("log2_max_pic_order_cnt_lsb_minus4", int64_t{sps.log2_max_pic_order_cnt_lsb_minus4});
    block.add("sps_sub_layer_ordering_info_present_flag",
              int64_t{sps.sps_sub_layer_ordering_info_present_flag});
    describeVui(sps, video, block);
}

}  // namespace

SequenceParameterSet readSequenceParameterSet(QVCodecID codec, const unsigned char* unit, size_t size,
                                              const qv::hevc::Vps* vps) {
    SequenceParameterSet sps{};
    sps.codec = codec;
    const bool isAvc = codec == QVCodecIDAvc;
    const qv::Bytes bytes(unit, std::min(size, kMostBytes));
    {
        const LogCapture log;
        sps.isAccepted = isAvc ? isAcceptedAvc(bytes, sps.avc) : isAcceptedHevc(bytes, sps.hevc);
        for (const LogLine& line : log.lines()) {
            if (line.level != QVTraceDebug) {
                sps.log.push_back(line.text);
            }
        }
    }
    if (!sps.isAccepted) {
        return sps;
    }
    if (isAvc) {
        readAvcRecord(bytes, sps);
    } else {
        readHevcRecord(bytes, vps, sps);
    }
    sps.summary = sps.video ? summaryOf(*sps.video) : sps.fault;
    return sps;
}

Block describe(const SequenceParameterSet& sps) {
    Block block;
    if (!sps.isAccepted) {
        for (const std::string& line : sps.log) {
            block.add("refused", line);
        }
        return block;
    }
    if (sps.video && sps.avcRecord) {
        describeAvc(sps.avcRecord->data, *sps.video, block);
    } else if (sps.video && sps.hevcRecord) {
        describeHevc(*sps.hevcRecord, *sps.video, block);
    }
    if (!sps.fault.empty()) {
        block.add("fault", sps.fault);
    }
    return block;
}

}  // namespace qvinspect
