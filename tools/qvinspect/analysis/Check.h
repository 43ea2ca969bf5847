// Rules that a stream is checked against.
#ifndef QVINSPECT_CHECK_H
#define QVINSPECT_CHECK_H

#include <string>
#include <vector>

#include "analysis/StreamTotals.h"

namespace qvinspect {

// A rule as given, e.g. "max-key-interval=2s".
struct Check {
    std::string text;
    std::string rule;   // before the "="
    std::string value;  // after it; empty if the rule takes none
};

struct CheckResult {
    std::string rule;  // as given
    bool isMet;
    std::string evidence;  // what the stream has, and where it violates the rule
};

struct CheckRule {
    const char* name;
    const char* value;  // what follows the "=", e.g. "BYTES"; empty for none
    const char* help;
};

// All rules, in the order in which they are documented.
const std::vector<CheckRule>& checkRules();

// Throws std::invalid_argument, which says what to do, if there is no such rule or its value is wrong.
Check parseCheck(const std::string& text);

CheckResult evaluate(const Check& check, const StreamTotals& totals);

}  // namespace qvinspect

#endif
