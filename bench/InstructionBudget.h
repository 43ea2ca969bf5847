// Holds instruction counts against a budget.
//
// A budget is text: "COUNT OPERATION" lines; empty lines and lines that begin with '#' are comments.
#ifndef QV_BENCH_INSTRUCTIONBUDGET_H
#define QV_BENCH_INSTRUCTIONBUDGET_H

#include <istream>
#include <string>

#include "CallgrindCounts.h"

namespace qv_bench {

// A count may exceed its budget by so many hundredths of it.
constexpr uint64_t kBudgetSlack = 2;

struct BudgetReport {
    std::string text;  // a line for each operation
    bool isKept = true;
};

// Throws std::runtime_error on a line that is none of a budget.
InstructionCounts readBudget(std::istream& text);

// Kept when every operation has a budget, every budget its operation, and no count is more than kBudgetSlack
// above its budget. One that is as far below is pointed out: renewing the budget keeps the gain.
BudgetReport compare(const InstructionCounts& counts, const InstructionCounts& budget);

// The budget that counts are, without a comment.
std::string budgetText(const InstructionCounts& counts);

}  // namespace qv_bench

#endif
