// Rules that a stream is held against.
#ifndef QVINSPECT_CHECK_H
#define QVINSPECT_CHECK_H

#include <string>
#include <vector>

#include "analysis/StreamTotals.h"

namespace qvinspect {

// A rule as it was asked for, e.g. "max-key-interval=2s".
struct Check {
    std::string text;
    std::string rule;   // ahead of the "="
    std::string value;  // behind it; empty when the rule takes none
};

struct CheckResult {
    std::string rule;  // as it was asked for
    bool isMet;
    std::string evidence;  // what the stream holds, and where it breaks the rule
};

struct CheckRule {
    const char* name;
    const char* value;  // what stands behind "=", e.g. "BYTES"; empty for none
    const char* help;
};

// All rules, in the order in which they are documented.
const std::vector<CheckRule>& checkRules();

// Throws std::invalid_argument, with what to do about it, when there is no such rule or its value is wrong.
Check parseCheck(const std::string& text);

CheckResult evaluate(const Check& check, const StreamTotals& totals);

}  // namespace qvinspect

#endif
