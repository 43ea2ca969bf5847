#include "InstructionBudget.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace qv_bench {

namespace {

std::string line(const std::string& count, const std::string& budget, const std::string& change,
                 const std::string& operation, const std::string& remark) {
    char text[512];
    std::snprintf(text, sizeof text, "%12s %12s %8s  %-54s %s", count.c_str(), budget.c_str(), change.c_str(),
                  operation.c_str(), remark.c_str());
    std::string result = text;
    result.erase(result.find_last_not_of(' ') + 1);
    return result + '\n';
}

std::string changeText(uint64_t count, uint64_t budget) {
    char text[32];
    std::snprintf(text, sizeof text, "%+.2f %%",
                  100 * (static_cast<double>(count) / static_cast<double>(budget) - 1));
    return text;
}

bool isExceeded(uint64_t count, uint64_t budget) {
    return 100 * count > (100 + kBudgetSlack) * budget;
}

const char* remarkOn(uint64_t count, uint64_t budget) {
    if (isExceeded(count, budget)) {
        return "TOO MANY";
    }
    return 100 * count < (100 - kBudgetSlack) * budget ? "fewer: renew the budget" : "";
}

}  // namespace

InstructionCounts readBudget(std::istream& text) {
    InstructionCounts budget;
    for (std::string line; std::getline(text, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::istringstream fields(line);
        uint64_t count = 0;
        std::string operation;
        if (!(fields >> count) || count == 0 || !std::getline(fields >> std::ws, operation)) {
            throw std::runtime_error("malformed line of a budget: " + line);
        }
        budget[operation] = count;
    }
    return budget;
}

BudgetReport compare(const InstructionCounts& counts, const InstructionCounts& budget) {
    BudgetReport report;
    report.text = line("instructions", "budget", "", "operation", "");
    for (const auto& [operation, count] : counts) {
        const auto known = budget.find(operation);
        if (known == budget.end()) {
            report.isKept = false;
            report.text += line(std::to_string(count), "", "", operation, "HAS NO BUDGET");
            continue;
        }
        report.isKept = report.isKept && !isExceeded(count, known->second);
        report.text += line(std::to_string(count), std::to_string(known->second),
                            changeText(count, known->second), operation, remarkOn(count, known->second));
    }
    for (const auto& [operation, limit] : budget) {
        if (counts.count(operation) == 0) {
            report.isKept = false;
            report.text += line("", std::to_string(limit), "", operation, "WAS NOT COUNTED");
        }
    }
    return report;
}

std::string budgetText(const InstructionCounts& counts) {
    std::string text;
    for (const auto& [operation, count] : counts) {
        char number[32];
        std::snprintf(number, sizeof number, "%12llu ", static_cast<unsigned long long>(count));
        text += number + operation + '\n';
    }
    return text;
}

}  // namespace qv_bench
