#include "report/CheckLines.h"

#include <fmt/format.h>

#include <cstdio>

namespace qvinspect {

std::string checkLine(const CheckResult& check) {
    return fmt::format("{} {}: {}", check.isMet ? "[OK]" : "[FAIL]", check.rule, check.evidence);
}

void CheckLines::fail(const std::string&, const std::string&) {}

void CheckLines::begin(const StreamHead& head) {
    name_ = head.name;
}

void CheckLines::add(const AccessUnitView&) {}

void CheckLines::end(const StreamEnd& end) {
    for (const CheckResult& check : end.checks) {
        fmt::print(stderr, "{}: {}\n", name_, checkLine(check));
    }
}

void CheckLines::finish() {}

}  // namespace qvinspect
