#include "report/UnitTexts.h"

namespace qvinspect {

const char* stateName(UnitState state) {
    switch (state) {
        case UnitState::ForbiddenBit:
            return "forbidden_bit";
        case UnitState::Empty:
            return "empty";
        case UnitState::Typed:
            break;
    }
    return "typed";
}

namespace {

// The first of the faults of an SEI unit, which are counted among the findings of the access unit.
std::string seiError(const UnitView& unit) {
    if (unit.details->sei) {
        for (const Finding& finding : unit.details->sei->findings) {
            if (finding.severity == Severity::Error) {
                return finding.text;
            }
        }
    }
    return {};
}

}  // namespace

std::string unitError(const UnitView& unit) {
    if (!isBroken(unit)) {
        return seiError(unit);
    }
    if (unit.report->state == UnitState::Typed) {
        return "the library refuses the parameter set";
    }
    return unit.report->state == UnitState::Empty ? "empty unit" : "forbidden_zero_bit is set";
}

}  // namespace qvinspect
