// Selects the access units, NAL units and messages that are shown. Totals always cover the whole stream.
#ifndef QVINSPECT_FILTER_H
#define QVINSPECT_FILTER_H

#include <cstdint>
#include <optional>
#include <vector>

#include "analysis/AccessUnitView.h"

namespace qvinspect {

// An ITU-T T.35 message by its codes.
struct T35Codes {
    uint8_t itu_t_t35_country_code;
    std::optional<uint16_t> itu_t_t35_provider_code;  // any if not set
};

// Conditions of one kind are alternatives; conditions of different kinds apply together. Without any,
// everything is shown.
struct Filter {
    std::vector<uint32_t> unitTypes;
    std::vector<uint32_t> seiTypes;
    std::vector<T35Codes> t35;
    bool keyOnly = false;
    bool errorsOnly = false;

    // Removes from view the units and messages that are not shown, and sets whether the access unit is shown.
    void apply(AccessUnitView& view) const;
};

}  // namespace qvinspect

#endif
