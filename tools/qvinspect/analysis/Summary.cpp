#include "analysis/Summary.h"

#include <algorithm>

namespace qvinspect {

void Summary::add(const AccessUnit& accessUnit, const AccessUnitReport& report) {
    ++accessUnits;
    keyAccessUnits += report.isKey ? 1 : 0;
    bytes += accessUnit.size;
    for (const UnitReport& unit : report.units) {
        ++units;
        if (unit.state == UnitState::Typed) {
            ++unitsByType[unit.type];
        } else {
            ++untypedUnits;
            ++errors;
        }
    }
    add(accessUnit.findings);
    add(report.findings);
}

void Summary::add(const std::vector<Finding>& findings) {
    errors +=
        static_cast<uint64_t>(std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
            return finding.severity == Severity::Error;
        }));
}

}  // namespace qvinspect
