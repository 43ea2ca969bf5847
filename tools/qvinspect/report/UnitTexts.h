// How machine-readable reports call what a NAL unit is.
#ifndef QVINSPECT_UNITTEXTS_H
#define QVINSPECT_UNITTEXTS_H

#include <cstddef>
#include <string>

#include "analysis/AccessUnitView.h"

namespace qvinspect {

// Bytes of the NAL unit header.
size_t headerSize(QVCodecID codec);

const char* stateName(UnitState state);

// What is wrong with the unit; empty when nothing is.
std::string unitError(const UnitView& unit);

}  // namespace qvinspect

#endif
