#include "report/JsonRecords.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "analysis/Hex.h"
#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"
#include "report/JsonSummary.h"
#include "report/JsonValues.h"
#include "report/UnitTexts.h"

namespace qvinspect {

namespace {

const char* levelName(Level level) {
    switch (level) {
        case Level::Summary:
            return "summary";
        case Level::Samples:
            return "samples";
        case Level::Nalus:
            return "nalus";
        case Level::Sei:
            return "sei";
        case Level::Fields:
        case Level::Elements:
            break;
    }
    return "fields";
}

const char* deliveryName(Delivery delivery) {
    switch (delivery) {
        case Delivery::Kept:
            return "kept";
        case Delivery::Requested:
            return "requested";
        case Delivery::Text:
            return "text";
        case Delivery::NotKept:
            break;
    }
    return "not_kept";
}

// The name of --format.
std::string framingName(const QVCodecParameters& parameters) {
    return parameters.isAnnexB != 0 ? std::string("annexb") : fmt::format("lp{}", parameters.nalLengthSize);
}

JsonRecord jsonSps(const SequenceParameterSet& sps, Level level) {
    JsonRecord json = {{"repeated", false}, {"accepted", sps.isAccepted}};
    json["video"] = sps.video ? jsonVideo(*sps.video) : JsonRecord();
    if (level == Level::Fields) {
        json["fields"] = jsonFields(describe(sps));
    }
    return json;
}

JsonRecord jsonMessage(const SeiMessage& message, QVCodecID codec, Level level) {
    JsonRecord json = {{"type", message.payloadType},
                       {"name", seiName(codec, message.payloadType)},
                       {"payload_offset", message.offset},
                       {"size", message.payloadSize},
                       {"delivery", deliveryName(message.delivery)}};
    if (level == Level::Fields) {
        json["payload"] = hexText(message.payload.data(), message.payload.size());
        json["fields"] = jsonFields(message.block);
    }
    return json;
}

JsonRecord jsonSei(const UnitView& unit, QVCodecID codec, Level level) {
    const SeiUnit& sei = *unit.details->sei;
    JsonRecord json = {{"result", sei.result}, {"log", sei.log}, {"messages", JsonRecord::array()}};
    for (const SeiMessage* message : unit.messages) {
        json["messages"].push_back(jsonMessage(*message, codec, level));
    }
    return json;
}

JsonRecord jsonUnit(const UnitView& unit, QVCodecID codec, Level level) {
    const UnitReport& report = *unit.report;
    const bool isTyped = report.state == UnitState::Typed;
    JsonRecord json;
    json["offset"] = report.offset;
    json["length"] = report.length;
    json["state"] = stateName(report.state);
    json["type"] = isTyped ? JsonRecord(report.type) : JsonRecord();
    json["name"] = isTyped ? JsonRecord(nalUnitName(codec, report.type)) : JsonRecord();
    json["non_reference"] = isTyped ? JsonRecord(report.isNonReference) : JsonRecord();
    json["header"] = hexText(unit.data, std::min<size_t>(report.length, headerSize(codec)));
    if (unit.details->newSps) {
        json["sps"] = jsonSps(*unit.details->newSps, level);
    } else if (unit.details->isRepeatedSps) {
        json["sps"] = {{"repeated", true}};
    }
    if (level >= Level::Sei && unit.details->sei) {
        json["sei"] = jsonSei(unit, codec, level);
    }
    return json;
}

JsonRecord jsonChecks(const std::vector<CheckResult>& checks) {
    JsonRecord json = JsonRecord::array();
    for (const CheckResult& check : checks) {
        json.push_back({{"rule", check.rule}, {"ok", check.isMet}, {"evidence", check.evidence}});
    }
    return json;
}

}  // namespace

void addGenerator(JsonRecord& record, const JsonOptions& options) {
    record["schema_version"] = kJsonSchemaVersion;
    record["generator"] = {{"name", "qvinspect"}, {"version", QVINSPECT_VERSION}};
    if (!options.date.empty()) {
        record["date"] = options.date;
    }
    record["level"] = levelName(options.level);
}

void addName(JsonRecord& record, const char* key, const std::string& name, const JsonOptions& options) {
    record[key] = name.substr(name.rfind('/') + 1);
    if (!options.date.empty()) {
        record["path"] = name;
    }
}

void addHead(JsonRecord& record, const StreamHead& head, Level level) {
    record["format"] = head.info.format;
    record["codec"] = head.info.parameters.codecId == QVCodecIDAvc ? "h264" : "h265";
    record["framing"] = framingName(head.info.parameters);
    record["offsets_in"] = head.isRaw ? "file" : "access_unit";
    record["configuration_sps"] = JsonRecord::array();
    for (const SequenceParameterSet& sps : head.parameterSets) {
        record["configuration_sps"].push_back(jsonSps(sps, level));
    }
    record["configuration_sei"] = JsonRecord::array();
    for (const SeiUnit& unit : head.seiUnits) {
        for (const SeiMessage& message : unit.messages) {
            record["configuration_sei"].push_back(jsonMessage(message, head.info.parameters.codecId, level));
        }
    }
}

void addAccessUnit(JsonRecord& record, const AccessUnitView& view, Level level) {
    record["number"] = view.number;
    record["time"] = jsonOptional(view.time);
    record["decode_time"] = jsonOptional(view.decodeTime);
    record["duration"] = jsonOptional(view.duration);
    record["offset"] = jsonOptional(view.accessUnit.fileOffset);
    record["size"] = view.accessUnit.size;
    record["key"] = view.report.isKey;
    record["errors"] = view.errors;
    std::vector<Finding> findings = view.accessUnit.findings;
    findings.insert(findings.end(), view.report.findings.begin(), view.report.findings.end());
    record["findings"] = jsonFindings(findings);
    if (level >= Level::Sei) {
        record["sei_items"] = view.details.seiItems;
        record["side_data_size"] = view.details.sideDataSize;
    }
    if (level >= Level::Nalus) {
        JsonRecord units = JsonRecord::array();
        for (const UnitView& unit : view.units) {
            units.push_back(jsonUnit(unit, view.accessUnit.parameters.codecId, level));
        }
        record["units"] = std::move(units);
    }
}

void addEnd(JsonRecord& record, const StreamEnd& end) {
    record["findings"] = jsonFindings(end.findings);
    record["summary"] = jsonSummary(end.totals);
    record["checks"] = jsonChecks(end.checks);
    record["interrupted"] = end.isInterrupted;
}

std::string jsonText(const JsonRecord& record) {
    return record.dump(-1, ' ', false, JsonRecord::error_handler_t::replace);
}

}  // namespace qvinspect
