// A short list of the NAL units of an access unit.
#ifndef QVINSPECT_UNITTYPELIST_H
#define QVINSPECT_UNITTYPELIST_H

#include <string>
#include <vector>

#include "analysis/AccessUnitView.h"

namespace qvinspect {

// Their types in order, with the lengths of runs: "AUD SEI IDR x4".
std::string unitTypeList(QVCodecID codec, const std::vector<UnitView>& units);

}  // namespace qvinspect

#endif
