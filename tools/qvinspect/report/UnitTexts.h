// Texts about NAL units in machine-readable reports.
#ifndef QVINSPECT_UNITTEXTS_H
#define QVINSPECT_UNITTEXTS_H

#include <string>

#include "analysis/AccessUnitView.h"

namespace qvinspect {

const char* stateName(UnitState state);

// The error of the unit; empty if there is none.
std::string unitError(const UnitView& unit);

}  // namespace qvinspect

#endif
