// One access unit with all that was found in it, as the reports receive it.
#ifndef QVINSPECT_ACCESSUNITVIEW_H
#define QVINSPECT_ACCESSUNITVIEW_H

#include <cstdint>
#include <optional>
#include <vector>

#include "analysis/Analysis.h"
#include "analysis/StreamDetails.h"
#include "input/AccessUnit.h"

namespace qvinspect {

struct UnitView {
    const UnitReport* report;
    const UnitDetails* details;
    const unsigned char* data;  // report->length bytes

    std::vector<const SeiMessage*> messages;  // those that are shown
    std::vector<const SeiItem*> items;        // those that are shown
};

// An SEI item of the configuration record, which is counted with the first access unit.
struct RecordItemView {
    uint32_t nalUnitType;
    const SeiItem* item;
};

// Whether the library does not type the unit or refuses it.
bool isBroken(const UnitView& unit);

// References and pointers are valid until the next access unit is read.
struct AccessUnitView {
    uint64_t number;  // from 1
    const AccessUnit& accessUnit;
    const AccessUnitReport& report;
    const AccessUnitDetails& details;

    // Seconds, if known. Those of a raw stream are counted in decoding order.
    std::optional<double> time;
    std::optional<double> decodeTime;
    std::optional<double> duration;

    uint64_t errors;                            // found in this access unit, including broken units
    bool isShown = true;                        // by the filter
    std::vector<UnitView> units;                // those that are shown
    std::vector<RecordItemView> recordItems{};  // those that are shown
};

// All of its units and messages, shown or not.
AccessUnitView viewOf(uint64_t number, const AccessUnit& accessUnit, const AccessUnitReport& report,
                      const AccessUnitDetails& details);

}  // namespace qvinspect

#endif
