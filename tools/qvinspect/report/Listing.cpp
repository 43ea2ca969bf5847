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

Listing::Listing(const std::string& path, Level level) : output_(path), level_(level) {}

void Listing::fail(const std::string&, const std::string&) {
    output_.flush();  // what is said of it on standard error comes behind what was listed so far
}

void Listing::begin(const StreamHead& head) {
    head_ = head;
    if (!isFirst_) {
        output_.print("\n");
    }
    isFirst_ = false;
    output_.print("File     {}\n", head_.name);
    output_.print("Stream   {}, {}, {}\n", codecName(head_.info.parameters.codecId), head_.info.format,
                  framingName(head_.info.parameters));
    if (level_ == Level::Summary) {
        return;
    }
    output_.print("Offsets  in the {}\n\n", head_.isRaw ? "file" : "access unit");
    output_.print("AU       {:>14}  {:>10}\n", head_.isRaw ? "offset" : "time [s]", "bytes");
    if (level_ >= Level::Nalus) {
        output_.print("         {:>14}  {:>10}  type\n", "offset", "length");
    }
    if (level_ == Level::Fields) {
        for (const SequenceParameterSet& sps : head_.parameterSets) {
            output_.print("configuration record\n");
            addSps(sps);
        }
    }
}

void Listing::add(const AccessUnitView& view) {
    if (level_ == Level::Summary || !view.isShown) {
        return;
    }
    output_.print("AU {:<6}{:>14}  {:>10}{}\n", view.number, placeOf(view.accessUnit), view.accessUnit.size,
                  view.report.isKey ? "  key" : "");
    addFindings(view.accessUnit.findings);
    if (level_ >= Level::Nalus) {
        for (const UnitView& unit : view.units) {
            addUnit(unit);
        }
    }
    addFindings(view.report.findings);
    if (level_ >= Level::Sei && view.details.seiItems > 0) {
        output_.print("         {} SEI item{}, {} bytes of side data\n", view.details.seiItems,
                      view.details.seiItems == 1 ? "" : "s", view.details.sideDataSize);
    }
}

void Listing::addUnit(const UnitView& unit) {
    const UnitReport& report = *unit.report;
    output_.print("         {:>14}  {:>10}  ", report.offset, report.length);
    switch (report.state) {
        case UnitState::Typed:
            output_.print("{:>4}  {}{}\n", report.type,
                          nalUnitName(head_.info.parameters.codecId, report.type),
                          report.isNonReference ? ", non-reference" : "");
            break;
        case UnitState::ForbiddenBit:
            output_.print("   -  error: forbidden_zero_bit is set\n");
            break;
        case UnitState::Empty:
            output_.print("   -  error: empty unit\n");
            break;
    }
    if (level_ == Level::Fields && unit.details->newSps) {
        addSps(*unit.details->newSps);
    }
    if (level_ < Level::Sei || !unit.details->sei) {
        return;
    }
    for (const SeiMessage* message : unit.messages) {
        addMessage(*message);
    }
    for (const std::string& line : unit.details->sei->log) {
        output_.print("{}library: {}\n", kIndent, line);
    }
    if (unit.details->sei->result != QVResultOk) {
        output_.print("{}library: the walk ended with {}\n", kIndent, unit.details->sei->result);
    }
}

void Listing::addSps(const SequenceParameterSet& sps) {
    output_.print("{}SPS {}\n", kIndent, sps.isAccepted ? sps.summary : "refused by the library");
    addBlock(describe(sps));
}

void Listing::addMessage(const SeiMessage& message) {
    output_.print("{}SEI {} {}, {} bytes{}{}{}\n", kIndent, message.payloadType,
                  seiName(head_.info.parameters.codecId, message.payloadType), message.payloadSize,
                  deliveryText(message.delivery), message.payload.empty() ? "" : ": ",
                  firstBytes(message.payload.data(), message.payload.size()));
    if (level_ == Level::Fields) {
        addBlock(message.block);
    }
}

void Listing::addBlock(const Block& block) {
    for (const Field& field : block.fields) {
        output_.print("{}  {:<44}  {}{}{}{}\n", kIndent, field.name, valueText(field),
                      field.note.empty() ? "" : "  (", field.note, field.note.empty() ? "" : ")");
    }
}

void Listing::addFindings(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        const char* severity = finding.severity == Severity::Error ? "error" : "note";
        const std::string place = finding.offset ? fmt::format(" at {}", *finding.offset) : std::string();
        output_.print("         {}{}: {}\n", severity, place, finding.text);
    }
}

void Listing::end(const StreamEnd& end) {
    if (level_ != Level::Summary) {
        addFindings(end.findings);
        output_.print("\nSummary of {}\n", head_.name);
    }
    addSummary(end.totals);
    addChecks(end.checks);
    if (end.isInterrupted) {
        output_.print("interrupted: this is what was read so far\n");
    }
}

void Listing::addChecks(const std::vector<CheckResult>& checks) {
    for (const CheckResult& check : checks) {
        output_.print("{} {}: {}\n", check.isMet ? "[OK]" : "[FAIL]", check.rule, check.evidence);
    }
}

void Listing::addSummary(const StreamTotals& totals) {
    output_.print("  access units      {}\n", totals.accessUnits);
    output_.print("  key access units  {}\n", totals.keyAccessUnits);
    addUnitCounts(totals);
    output_.print("  parameter sets    {} SPS, {} repeated unchanged\n", totals.distinctSps,
                  totals.repeatedSps);
    output_.print("  SEI messages{}\n", totals.messagesByType.empty() ? "      none" : "");
    for (const auto& [type, count] : totals.messagesByType) {
        output_.print("    type {:>3}        {:<8}  {}\n", type, count,
                      seiName(head_.info.parameters.codecId, type));
    }
    output_.print("  HDR               {}\n", fmt::join(totals.signals.hdrClasses(), ", "));
    output_.print("  captions          {}\n", totals.signals.captionMessages > 0 ? "A/53" : "none");
    output_.print("  active format     {}\n", totals.signals.activeFormatMessages > 0 ? "signalled" : "none");
    output_.print("  side data         {} bytes\n", totals.sideDataBytes);
    output_.print("  bytes             {}\n", totals.bytes);
    output_.print("  errors            {}\n", totals.errors);
}

void Listing::addUnitCounts(const StreamTotals& totals) {
    output_.print("  NAL units         {}\n", totals.units);
    for (const auto& [type, count] : totals.unitsByType) {
        output_.print("    type {:>2}         {:<8}  {}\n", type, count,
                      nalUnitName(head_.info.parameters.codecId, type));
    }
    if (totals.untypedUnits > 0) {
        output_.print("    no type         {:<8}  forbidden_zero_bit set, or empty\n", totals.untypedUnits);
    }
}

void Listing::finish() {
    output_.close();
}

}  // namespace qvinspect
