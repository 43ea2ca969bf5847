#include "report/CheckLines.h"

#include <fmt/format.h>

#include "report/Diagnostics.h"

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
        printDiagnostic(fmt::format("{}: {}", name_, checkLine(check)));
    }
}

void CheckLines::finish() {}

}  // namespace qvinspect
