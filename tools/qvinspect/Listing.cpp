#include "Listing.h"

#include <fmt/format.h>

#include <utility>

#include "NalUnitNames.h"

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

}  // namespace

Listing::Listing(Output& output, std::string name, StreamInfo info, bool isRaw)
    : output_(output), name_(std::move(name)), info_(std::move(info)), isRaw_(isRaw) {}

void Listing::begin() {
    output_.print("File     {}\n", name_);
    output_.print("Stream   {}, {}, {}\n", codecName(info_.parameters.codecId), info_.format,
                  framingName(info_.parameters));
    output_.print("Offsets  in the {}\n\n", isRaw_ ? "file" : "access unit");
    output_.print("AU       {:>14}  {:>10}\n", isRaw_ ? "offset" : "time [s]", "bytes");
    output_.print("         {:>14}  {:>10}  type\n", "offset", "length");
}

void Listing::add(const AccessUnit& accessUnit, const AccessUnitReport& report) {
    ++number_;
    output_.print("AU {:<6}{:>14}  {:>10}{}\n", number_, placeOf(accessUnit), accessUnit.size,
                  report.isKey ? "  key" : "");
    addFindings(accessUnit.findings);
    for (const UnitReport& unit : report.units) {
        addUnit(unit);
    }
    addFindings(report.findings);
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

void Listing::end(const std::vector<Finding>& findings, const Summary& summary) {
    addFindings(findings);
    output_.print("\nSummary of {}\n", name_);
    output_.print("  codec             {}\n", codecName(info_.parameters.codecId));
    output_.print("  container         {}\n", isRaw_ ? std::string("none, ") + info_.format : info_.format);
    output_.print("  framing           {}\n", framingName(info_.parameters));
    output_.print("  access units      {}\n", summary.accessUnits);
    output_.print("  key access units  {}\n", summary.keyAccessUnits);
    endUnits(summary);
    output_.print("  bytes             {}\n", summary.bytes);
    output_.print("  errors            {}\n", summary.errors);
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
