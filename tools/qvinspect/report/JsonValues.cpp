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

Json jsonRate(const qv::Ratio& rate) {
    return rate.isKnown() ? Json(static_cast<double>(rate.numerator) / static_cast<double>(rate.denominator))
                          : Json();
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

Json jsonVideo(const VideoFormat& video) {
    Json json;
    json["profile"] = video.profile;
    json["profile_idc"] = video.profile_idc;
    json["level"] = video.level;
    json["level_idc"] = video.level_idc;
    json["tier"] = video.tier == nullptr ? Json() : Json(*video.tier == 'H' ? "high" : "main");
    json["width"] = video.width;
    json["height"] = video.height;
    json["coded_width"] = video.codedWidth;
    json["coded_height"] = video.codedHeight;
    json["crop"] = {{"left", video.cropLeft},
                    {"right", video.cropRight},
                    {"top", video.cropTop},
                    {"bottom", video.cropBottom}};
    json["chroma_format_idc"] = video.chroma.chroma_format_idc;
    json["chroma"] = video.chroma.name;
    json["bit_depth_luma"] = video.bitDepthLuma;
    json["bit_depth_chroma"] = video.bitDepthChroma;
    json["frame_rate"] = jsonRate(video.frameRate);
    return json;
}

}  // namespace qvinspect
