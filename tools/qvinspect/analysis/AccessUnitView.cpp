#include "analysis/AccessUnitView.h"

#include <algorithm>

namespace qvinspect {

namespace {

uint64_t errorsIn(const std::vector<Finding>& findings) {
    return static_cast<uint64_t>(std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::Error;
    }));
}

}  // namespace

bool isBroken(const UnitView& unit) {
    return unit.report->state != UnitState::Typed ||
           (unit.details->newSps && !unit.details->newSps->isAccepted);
}

AccessUnitView viewOf(uint64_t number, const AccessUnit& accessUnit, const AccessUnitReport& report,
                      const AccessUnitDetails& details) {
    AccessUnitView view{number,
                        accessUnit,
                        report,
                        details,
                        accessUnit.time,
                        accessUnit.decodeTime,
                        accessUnit.duration,
                        errorsIn(accessUnit.findings) + errorsIn(report.findings),
                        true,
                        {}};
    for (const SeiUnit& sei : details.recordSei) {
        for (const SeiItem& item : sei.items) {
            view.recordItems.push_back({sei.nalUnitType, &item});
        }
    }
    const uint64_t start = accessUnit.fileOffset.value_or(0);
    view.units.reserve(report.units.size());
    for (size_t i = 0; i < report.units.size(); ++i) {
        UnitView unit{
            &report.units[i], &details.units[i], accessUnit.data + (report.units[i].offset - start), {}, {}};
        if (unit.details->sei) {
            for (const SeiMessage& message : unit.details->sei->messages) {
                unit.messages.push_back(&message);
            }
            for (const SeiItem& item : unit.details->sei->items) {
                unit.items.push_back(&item);
            }
        }
        view.errors += isBroken(unit) ? 1U : 0U;
        view.units.push_back(std::move(unit));
    }
    return view;
}

}  // namespace qvinspect
