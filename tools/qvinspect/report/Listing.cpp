#include "report/Listing.h"

#include <fmt/format.h>

#include <utility>

#include "analysis/FirstBytes.h"
#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"

namespace qvinspect {

namespace {

std::string framingName(const QVCodecParameters& parameters) {
    return parameters.isAnnexB != 0 ? std::string("Annex B start codes")
                                    : fmt::format("{}-byte length fields", parameters.nalLengthSize);
}

std::string placeOf(const AccessUnit& accessUnit) {
    if (accessUnit.fileOffset) {
        return fmt::format("{}", *accessUnit.fileOffset);
    }
    return accessUnit.time ? fmt::format("{:.6f}", *accessUnit.time) : "-";
}

constexpr const char* kIndent = "                         ";  // under the offset of a unit

const char* deliveryText(Delivery delivery) {
    switch (delivery) {
        case Delivery::Kept:
            return ", kept";
        case Delivery::Requested:
            return ", kept on request";
        case Delivery::Text:
            return ", kept as text";
        case Delivery::NotKept:
            break;
    }
    return "";
}

}  // namespace

Listing::Listing(Output& output, std::string name, StreamInfo info, bool isRaw)
    : output_(output), name_(std::move(name)), info_(std::move(info)), isRaw_(isRaw) {}

void Listing::begin(const std::vector<SequenceParameterSet>& parameterSets) {
    output_.print("File     {}\n", name_);
    output_.print("Stream   {}, {}, {}\n", codecName(info_.parameters.codecId), info_.format,
                  framingName(info_.parameters));
    output_.print("Offsets  in the {}\n\n", isRaw_ ? "file" : "access unit");
    output_.print("AU       {:>14}  {:>10}\n", isRaw_ ? "offset" : "time [s]", "bytes");
    output_.print("         {:>14}  {:>10}  type\n", "offset", "length");
    for (const SequenceParameterSet& sps : parameterSets) {
        output_.print("configuration record\n");
        addSps(sps);
    }
}

void Listing::add(const AccessUnit& accessUnit, const AccessUnitReport& report,
                  const AccessUnitDetails& details) {
    ++number_;
    output_.print("AU {:<6}{:>14}  {:>10}{}\n", number_, placeOf(accessUnit), accessUnit.size,
                  report.isKey ? "  key" : "");
    addFindings(accessUnit.findings);
    for (size_t i = 0; i < report.units.size(); ++i) {
        addUnit(report.units[i]);
        addDetails(details.units[i]);
    }
    addFindings(report.findings);
    if (details.seiItems > 0) {
        output_.print("         {} SEI item{}, {} bytes of side data\n", details.seiItems,
                      details.seiItems == 1 ? "" : "s", details.sideDataSize);
    }
}

void Listing::addDetails(const UnitDetails& details) {
    if (details.newSps) {
        addSps(*details.newSps);
    }
    if (!details.sei) {
        return;
    }
    for (const SeiMessage& message : details.sei->messages) {
        addMessage(message);
    }
    for (const std::string& line : details.sei->log) {
        output_.print("{}library: {}\n", kIndent, line);
    }
    if (details.sei->result != QVResultOk) {
        output_.print("{}library: the walk ended with {}\n", kIndent, details.sei->result);
    }
}

void Listing::addSps(const SequenceParameterSet& sps) {
    output_.print("{}SPS {}\n", kIndent, sps.isAccepted ? sps.summary : "refused by the library");
    addBlock(describe(sps));
}

void Listing::addMessage(const SeiMessage& message) {
    output_.print("{}SEI {} {}, {} bytes{}{}{}\n", kIndent, message.payloadType,
                  seiName(info_.parameters.codecId, message.payloadType), message.payloadSize,
                  deliveryText(message.delivery), message.payload.empty() ? "" : ": ",
                  firstBytes(message.payload.data(), message.payload.size()));
    addBlock(message.block);
}

void Listing::addBlock(const Block& block) {
    for (const Field& field : block.fields) {
        output_.print("{}  {:<44}  {}{}{}{}\n", kIndent, field.name, field.value,
                      field.note.empty() ? "" : "  (", field.note, field.note.empty() ? "" : ")");
    }
}

void Listing::addUnit(const UnitReport& unit) {
    output_.print("         {:>14}  {:>10}  ", unit.offset, unit.length);
    switch (unit.state) {
        case UnitState::Typed:
            output_.print("{:>4}  {}{}\n", unit.type, nalUnitName(info_.parameters.codecId, unit.type),
                          unit.isNonReference ? ", non-reference" : "");
            break;
        case UnitState::ForbiddenBit:
            output_.print("   -  error: forbidden_zero_bit is set\n");
            break;
        case UnitState::Empty:
            output_.print("   -  error: empty unit\n");
            break;
    }
}

void Listing::addFindings(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        const char* severity = finding.severity == Severity::Error ? "error" : "note";
        const std::string place = finding.offset ? fmt::format(" at {}", *finding.offset) : std::string();
        output_.print("         {}{}: {}\n", severity, place, finding.text);
    }
}

void Listing::end(const std::vector<Finding>& findings, const Summary& summary,
                  const StreamDetails& details) {
    addFindings(findings);
    output_.print("\nSummary of {}\n", name_);
    output_.print("  codec             {}\n", codecName(info_.parameters.codecId));
    output_.print("  container         {}\n", isRaw_ ? std::string("none, ") + info_.format : info_.format);
    output_.print("  framing           {}\n", framingName(info_.parameters));
    output_.print("  access units      {}\n", summary.accessUnits);
    output_.print("  key access units  {}\n", summary.keyAccessUnits);
    endUnits(summary);
    endDetails(details);
    output_.print("  bytes             {}\n", summary.bytes);
    output_.print("  errors            {}\n", summary.errors);
}

void Listing::endDetails(const StreamDetails& details) {
    output_.print("  parameter sets    {} SPS, {} repeated unchanged\n", details.distinctSps(),
                  details.repeatedSps());
    output_.print("  SEI messages{}\n", details.messagesByType().empty() ? "      none" : "");
    for (const auto& [type, count] : details.messagesByType()) {
        output_.print("    type {:>3}        {:<8}  {}\n", type, count,
                      seiName(info_.parameters.codecId, type));
    }
    const SeiSignals& signals = details.signals();
    output_.print("  HDR               {}\n", signals.hdr());
    output_.print("  captions          {}\n", signals.hasCaptions ? "A/53" : "none");
    output_.print("  active format     {}\n", signals.hasActiveFormat ? "signalled" : "none");
    output_.print("  side data         {} bytes\n", details.sideDataBytes());
}

void Listing::endUnits(const Summary& summary) {
    output_.print("  NAL units         {}\n", summary.units);
    for (const auto& [type, count] : summary.unitsByType) {
        output_.print("    type {:>2}         {:<8}  {}\n", type, count,
                      nalUnitName(info_.parameters.codecId, type));
    }
    if (summary.untypedUnits > 0) {
        output_.print("    no type         {:<8}  forbidden_zero_bit set, or empty\n", summary.untypedUnits);
    }
}

}  // namespace qvinspect
