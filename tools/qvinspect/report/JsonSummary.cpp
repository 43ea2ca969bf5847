#include "report/JsonSummary.h"

#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "analysis/HdrValues.h"
#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"
#include "report/JsonValues.h"

namespace qvinspect {

namespace {

using Json = nlohmann::ordered_json;
using Counts = std::map<uint32_t, uint64_t>;
using NameOfType = const char* (*)(QVCodecID codec, uint32_t type);

Json jsonCounts(const Counts& counts, QVCodecID codec, NameOfType nameOf) {
    Json json = Json::array();
    for (const auto& [type, count] : counts) {
        json.push_back({{"type", type}, {"name", nameOf(codec, type)}, {"count", count}});
    }
    return json;
}

// null if nothing was counted.
Json jsonAverage(double sum, uint64_t count) {
    return count > 0 ? Json(sum / static_cast<double>(count)) : Json();
}

Json jsonKeyIntervals(const KeyIntervals& intervals) {
    const bool isCounted = intervals.count > 0;
    return {{"count", intervals.count},
            {"least", isCounted ? Json(intervals.least) : Json()},
            {"average", jsonAverage(static_cast<double>(intervals.sum), intervals.count)},
            {"most", intervals.most},
            {"most_at", intervals.mostAt > 0 ? Json(intervals.mostAt) : Json()},
            {"least_seconds", jsonOptional(intervals.leastSeconds)},
            {"average_seconds", jsonAverage(intervals.sumSeconds, intervals.timed)},
            {"most_seconds", jsonOptional(intervals.mostSeconds)}};
}

// H.265 D.3.28: chromaticities in steps of 0.00002, luminances in steps of 0.0001 cd/m2.
Json jsonChromaticity(uint32_t x, uint32_t y) {
    constexpr double kSteps = 50000;
    return {{"x", x}, {"y", y}, {"chromaticity_x", x / kSteps}, {"chromaticity_y", y / kSteps}};
}

Json jsonLuminance(uint32_t code) {
    return {{"code", code}, {"cd_m2", code / 10000.0}};
}

Json jsonMasteringDisplay(const qv::sei::MasteringDisplayColourVolume& display) {
    Json primaries = Json::array();
    for (int c = 0; c < 3; ++c) {
        primaries.push_back(jsonChromaticity(display.display_primaries_x[c], display.display_primaries_y[c]));
    }
    return {{"display_primaries", std::move(primaries)},
            {"white_point", jsonChromaticity(display.white_point_x, display.white_point_y)},
            {"max_display_mastering_luminance", jsonLuminance(display.max_display_mastering_luminance)},
            {"min_display_mastering_luminance", jsonLuminance(display.min_display_mastering_luminance)}};
}

Json jsonContentLight(const qv::sei::ContentLightLevelInfo& light) {
    return {{"max_content_light_level", light.max_content_light_level},
            {"max_pic_average_light_level", light.max_pic_average_light_level}};
}

Json jsonTransfer(std::optional<uint32_t> transfer_characteristics) {
    if (!transfer_characteristics) {
        return nullptr;
    }
    return {{"code", *transfer_characteristics}, {"name", transferName(*transfer_characteristics)}};
}

Json jsonPq(uint32_t code) {
    return {{"code", code}, {"cd_m2", pqLuminance(code)}};
}

// The mean of the codes, and the luminance of the code nearest to it.
Json jsonMeanPq(uint64_t sum, uint64_t count) {
    const double mean = static_cast<double>(sum) / static_cast<double>(count);
    return {{"code", mean}, {"cd_m2", pqLuminance(static_cast<uint32_t>(std::lround(mean)))}};
}

Json jsonHdrVivid(const HdrVividTotals& vivid) {
    const bool isRead = vivid.read > 0;
    return {{"messages", vivid.messages},
            {"read", vivid.read},
            {"minimum_maxrgb_pq", isRead ? jsonPq(vivid.minimum_maxrgb_pq) : Json()},
            {"average_maxrgb_pq", isRead ? jsonMeanPq(vivid.average_maxrgb_pq_sum, vivid.read) : Json()},
            {"maximum_maxrgb_pq", isRead ? jsonPq(vivid.maximum_maxrgb_pq) : Json()}};
}

Json jsonDolbyVision(const qv::sei::HdrClass& hdr) {
    if (!hdr.isDolbyVision) {
        return Json();
    }
    return {{"profile", hdr.dolbyVisionProfile.empty() ? Json() : Json(hdr.dolbyVisionProfile)},
            {"enhancement_layer", hdr.hasDolbyVisionEnhancement},
            {"source", qv::sei::textOf(hdr.dolbyVisionSource)}};
}

Json jsonHdr(const Signals& signals) {
    const auto& display = signals.masteringDisplay;
    const auto& light = signals.contentLight;
    const qv::sei::HdrClass hdr = signals.hdrClass();
    return {{"classes", signals.hdrClasses()},
            {"mastering_display", display ? jsonMasteringDisplay(*display) : Json()},
            {"content_light", light ? jsonContentLight(*light) : Json()},
            {"preferred_transfer", jsonTransfer(signals.preferredTransfer)},
            {"transfer_characteristics",
             jsonTransfer(signals.transfer_characteristics ? signals.transfer_characteristics
                                                           : signals.containerTransfer)},
            {"transfer_source", hdr.transferSource ? Json(qv::sei::textOf(hdr.transferSource)) : Json()},
            {"dolby_vision", jsonDolbyVision(hdr)},
            {"hdr_vivid", jsonHdrVivid(signals.hdrVivid)},
            {"hdr10_plus_messages", signals.hdr10PlusMessages}};
}

void addUnits(Json& json, const StreamTotals& totals) {
    json["access_units"] = totals.accessUnits;
    json["key_access_units"] = totals.keyAccessUnits;
    json["units"] = totals.units;
    json["untyped_units"] = totals.untypedUnits;
    json["units_by_type"] = jsonCounts(totals.unitsByType, totals.codec, nalUnitName);
    json["size"] = totals.bytes;
    json["largest_access_unit"] = {{"number", totals.largestAccessUnitAt},
                                   {"size", totals.largestAccessUnit}};
    json["largest_unit"] = {{"access_unit", totals.largestUnit.accessUnit},
                            {"offset", totals.largestUnit.offset},
                            {"length", totals.largestUnit.bytes}};
}

void addTiming(Json& json, const StreamTotals& totals) {
    json["key_intervals"] = jsonKeyIntervals(totals.keyIntervals);
    json["duration"] = jsonOptional(totals.duration);
    json["average_bitrate"] = jsonOptional(totals.averageBitrate);
    json["peak_bitrate"] = jsonOptional(totals.peakBitrate);
}

void addParameterSets(Json& json, const StreamTotals& totals) {
    json["video"] = totals.sps ? jsonVideo(*totals.sps->video) : Json();
    json["distinct_sps"] = totals.distinctSps;
    json["repeated_sps"] = totals.repeatedSps;
    json["refused_sps"] = totals.refusedSps;
    json["has_configuration"] = totals.hasConfiguration;
    json["key_without_parameter_sets"] =
        totals.keyWithoutParameterSets > 0 ? Json(totals.keyWithoutParameterSets) : Json();
}

void addSei(Json& json, const StreamTotals& totals) {
    json["sei_by_type"] = jsonCounts(totals.messagesByType, totals.codec, seiName);
    json["hdr"] = jsonHdr(totals.signals);
    json["caption_messages"] = totals.signals.captionMessages;
    json["caption_types"] = captionTypeNames(totals.signals);
    json["active_format_messages"] = totals.signals.activeFormatMessages;
    json["sei_items"] = totals.seiItems;
    json["side_data_size"] = totals.sideDataBytes;
}

}  // namespace

Json jsonSummary(const StreamTotals& totals) {
    Json json;
    addParameterSets(json, totals);
    addUnits(json, totals);
    addTiming(json, totals);
    addSei(json, totals);
    json["errors"] = totals.errors;
    json["first_error"] = totals.errors > 0 ? Json(totals.firstError) : Json();
    json["notes"] = jsonFindings(totals.notes);
    return json;
}

}  // namespace qvinspect
