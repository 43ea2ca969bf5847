// What a whole stream adds up to.
#ifndef QVINSPECT_SUMMARY_H
#define QVINSPECT_SUMMARY_H

#include <cstdint>
#include <map>

#include "analysis/Analysis.h"
#include "input/AccessUnit.h"

namespace qvinspect {

struct Summary {
    uint64_t accessUnits = 0;
    uint64_t keyAccessUnits = 0;
    uint64_t units = 0;         // NAL units, typed or not
    uint64_t untypedUnits = 0;  // of them, those with forbidden_zero_bit set and empty ones
    std::map<uint32_t, uint64_t> unitsByType;
    uint64_t bytes = 0;  // of all access units, start codes and length fields included
    uint64_t errors = 0;

    void add(const AccessUnit& accessUnit, const AccessUnitReport& report);
    void add(const std::vector<Finding>& findings);
};

}  // namespace qvinspect

#endif
