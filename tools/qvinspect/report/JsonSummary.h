// The totals of a stream as JSON.
#ifndef QVINSPECT_JSONSUMMARY_H
#define QVINSPECT_JSONSUMMARY_H

#include <nlohmann/json.hpp>

#include "analysis/StreamTotals.h"

namespace qvinspect {

nlohmann::ordered_json jsonSummary(const StreamTotals& totals);

}  // namespace qvinspect

#endif
