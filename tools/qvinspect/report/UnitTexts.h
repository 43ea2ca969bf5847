// How machine-readable reports call what a NAL unit is.
#ifndef QVINSPECT_UNITTEXTS_H
#define QVINSPECT_UNITTEXTS_H

#include <string>

#include "analysis/AccessUnitView.h"

namespace qvinspect {

const char* stateName(UnitState state);

// What is wrong with the unit; empty when nothing is.
std::string unitError(const UnitView& unit);

}  // namespace qvinspect

#endif
