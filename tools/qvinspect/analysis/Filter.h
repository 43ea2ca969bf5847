// Selects the access units, NAL units and messages that are shown. Totals always cover the whole stream.
#ifndef QVINSPECT_FILTER_H
#define QVINSPECT_FILTER_H

#include <cstdint>
#include <vector>

#include "analysis/AccessUnitView.h"
#include "bitstream/sei/T35.h"

namespace qvinspect {

// Conditions of one kind are alternatives; conditions of different kinds apply together. Without any,
// everything is shown.
struct Filter {
    std::vector<uint32_t> unitTypes;
    std::vector<uint32_t> seiTypes;
    std::vector<qv::sei::T35Code> t35;
    bool keyOnly = false;
    bool errorsOnly = false;

    // Removes from view the units and messages that are not shown, and sets whether the access unit is shown.
    void apply(AccessUnitView& view) const;
};

}  // namespace qvinspect

#endif
