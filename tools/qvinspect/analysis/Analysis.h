// The library's results for one access unit.
#ifndef QVINSPECT_ANALYSIS_H
#define QVINSPECT_ANALYSIS_H

#include <cstdint>
#include <vector>

#include "input/AccessUnit.h"

namespace qvinspect {

enum class UnitState {
    Typed,
    ForbiddenBit,  // forbidden_zero_bit is set: the library does not type it
    Empty          // a length field of 0: there is no header to type
};

struct UnitReport {
    UnitState state;
    uint64_t offset;  // in the file for a raw stream, otherwise in the access unit
    uint32_t length;
    uint32_t type;        // nal_unit_type, when typed
    bool isNonReference;  // when typed
};

struct AccessUnitReport {
    bool isKey = false;
    std::vector<UnitReport> units;
    std::vector<Finding> findings;  // of the analysis; the reader's are in the access unit
};

AccessUnitReport analyse(const AccessUnit& accessUnit);

}  // namespace qvinspect

#endif
