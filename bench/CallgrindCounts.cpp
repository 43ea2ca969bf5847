#include "CallgrindCounts.h"

#include <cstdlib>

namespace qv_bench {

namespace {

bool startsWith(const std::string& line, const std::string& beginning) {
    return line.compare(0, beginning.size(), beginning) == 0;
}

}  // namespace

InstructionCounts readCallgrind(std::istream& profile) {
    static const std::string kPart = "part: ";
    static const std::string kTrigger = "desc: Trigger: Client Request: ";
    static const std::string kTotals = "totals: ";
    InstructionCounts counts;
    std::string operation;
    for (std::string line; std::getline(profile, line);) {
        if (startsWith(line, kPart)) {
            operation.clear();
        } else if (startsWith(line, kTrigger)) {
            operation = line.substr(kTrigger.size());
        } else if (startsWith(line, kTotals) && !operation.empty()) {
            counts[operation] = std::strtoull(line.c_str() + kTotals.size(), nullptr, 10);
        }
    }
    return counts;
}

}  // namespace qv_bench
