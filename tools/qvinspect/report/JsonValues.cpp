#include "report/JsonValues.h"

#include <utility>
#include <variant>

namespace qvinspect {

namespace {

using Json = nlohmann::ordered_json;

Json jsonField(const Field& field) {
    Json json = {{"name", field.name}};
    json["value"] = std::visit([](const auto& value) { return Json(value); }, field.value);
    if (!field.note.empty()) {
        json["note"] = field.note;
    }
    if (!field.derived.empty()) {
        json["derived"] = field.derived.size() == 1 ? Json(field.derived.front()) : Json(field.derived);
    }
    if (!field.unit.empty()) {
        json["unit"] = field.unit;
    }
    return json;
}

// Samples of luma for each of chroma, H.264 and H.265 Table 6-1.
struct ChromaSteps {
    int64_t horizontal;
    int64_t vertical;
};

ChromaSteps chromaSteps(int chroma_format_idc, bool isPlanes) {
    const bool isSubsampled = !isPlanes && (chroma_format_idc == 1 || chroma_format_idc == 2);
    return {isSubsampled ? 2 : 1, isSubsampled && chroma_format_idc == 1 ? 2 : 1};
}

const char* chromaText(int chroma_format_idc) {
    static constexpr const char* kTexts[] = {"4:0:0", "4:2:0", "4:2:2", "4:4:4"};
    return chroma_format_idc >= 0 && chroma_format_idc <= 3 ? kTexts[chroma_format_idc] : nullptr;
}

Json jsonCrop(const ChromaSteps& steps, int64_t left, int64_t right, int64_t top, int64_t bottom) {
    return {{"left", left * steps.horizontal},
            {"right", right * steps.horizontal},
            {"top", top * steps.vertical},
            {"bottom", bottom * steps.vertical}};
}

void addChroma(Json& json, int chroma_format_idc) {
    const char* const text = chromaText(chroma_format_idc);
    json["chroma_format_idc"] = chroma_format_idc;
    json["chroma"] = text != nullptr ? Json(text) : Json();
}

Json jsonAvcVideo(const SequenceParameterSet& set) {
    const QVAvcSps& sps = set.avc;
    Json json;
    json["profile"] = avcProfileName(sps.profile_idc, sps.constraint_set_flags);
    json["profile_idc"] = sps.profile_idc;
    json["level"] = avcLevelName(sps.level_idc, sps.profile_idc, sps.constraint_set_flags);
    json["level_idc"] = sps.level_idc;
    json["tier"] = nullptr;
    json["width"] = sps.width;
    json["height"] = sps.height;
    json["coded_width"] = int64_t{16} * sps.mb_width;
    json["coded_height"] = int64_t{16} * sps.mb_height * (2 - sps.frame_mbs_only_flag);
    // Vertical steps are twice as long where fields may be coded: H.264 7-20, 7-22.
    ChromaSteps steps = chromaSteps(sps.chroma_format_idc, sps.residual_color_transform_flag != 0);
    steps.vertical *= 2 - sps.frame_mbs_only_flag;
    json["crop"] = jsonCrop(steps, sps.crop_left, sps.crop_right, sps.crop_top, sps.crop_bottom);
    addChroma(json, sps.chroma_format_idc);
    json["bit_depth_luma"] = sps.bit_depth_luma;
    json["bit_depth_chroma"] = sps.bit_depth_chroma;
    const bool isTimed = sps.timing_info_present_flag != 0 && sps.num_units_in_tick != 0;
    json["frame_rate"] = isTimed ? Json(sps.time_scale / (2.0 * sps.num_units_in_tick)) : Json();
    return json;
}

Json jsonHevcVideo(const SequenceParameterSet& set) {
    const QVHevcSps& sps = set.hevc;
    Json json;
    json["profile"] = hevcProfileName(set.profile);
    json["profile_idc"] = set.profile;
    json["level"] = hevcLevelName(set.level);
    json["level_idc"] = set.level;
    json["tier"] = set.tier != 0 ? "high" : "main";
    json["width"] = sps.display_width;
    json["height"] = sps.display_height;
    json["coded_width"] = sps.pic_width_in_luma_samples;
    json["coded_height"] = sps.pic_height_in_luma_samples;
    const ChromaSteps steps = chromaSteps(sps.chroma_format_idc, sps.separate_colour_plane_flag != 0);
    json["crop"] = jsonCrop(steps, sps.conf_win_left_offset, sps.conf_win_right_offset,
                            sps.conf_win_top_offset, sps.conf_win_bottom_offset);
    addChroma(json, sps.chroma_format_idc);
    json["bit_depth_luma"] = int64_t{sps.bit_depth_luma_minus8} + 8;
    json["bit_depth_chroma"] = int64_t{sps.bit_depth_chroma_minus8} + 8;
    json["frame_rate"] = nullptr;
    return json;
}

}  // namespace

Json jsonFindings(const std::vector<Finding>& findings) {
    Json json = Json::array();
    for (const Finding& finding : findings) {
        json.push_back({{"severity", finding.severity == Severity::Error ? "error" : "note"},
                        {"offset", jsonOptional(finding.offset)},
                        {"text", finding.text}});
    }
    return json;
}

Json jsonFields(const Block& block) {
    Json json = Json::array();
    for (const Field& field : block.fields) {
        json.push_back(jsonField(field));
    }
    return json;
}

Json jsonVideo(const SequenceParameterSet& sps) {
    return sps.codec == QVCodecIDAvc ? jsonAvcVideo(sps) : jsonHevcVideo(sps);
}

}  // namespace qvinspect
