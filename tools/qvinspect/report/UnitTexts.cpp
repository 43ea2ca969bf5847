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

std::string unitError(const UnitView& unit) {
    if (!isBroken(unit)) {
        return {};
    }
    if (unit.report->state == UnitState::Typed) {
        return "the library refuses the parameter set";
    }
    return unit.report->state == UnitState::Empty ? "empty unit" : "forbidden_zero_bit is set";
}

}  // namespace qvinspect
