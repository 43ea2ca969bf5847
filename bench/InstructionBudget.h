// Compares instruction counts with a budget.
//
// A budget is a text of "COUNT OPERATION" lines. Empty lines and lines that begin with '#' are ignored.
#ifndef QV_BENCH_INSTRUCTIONBUDGET_H
#define QV_BENCH_INSTRUCTIONBUDGET_H

#include <istream>
#include <string>

#include "CallgrindCounts.h"

namespace qv_bench {

// A count may exceed its budget by this percentage.
constexpr uint64_t kBudgetSlack = 2;

struct BudgetReport {
    std::string text;  // one line for each operation
    bool isKept = true;
};

// Throws std::runtime_error on a malformed line.
InstructionCounts readBudget(std::istream& text);

// The budget is kept if every operation has a budget, every budget has an operation, and no count exceeds its
// budget by more than kBudgetSlack. A count that is lower by more than kBudgetSlack is marked, so that the
// budget can be renewed and the gain is not lost again.
BudgetReport compare(const InstructionCounts& counts, const InstructionCounts& budget);

// Returns a budget with exactly these counts, without comments.
std::string budgetText(const InstructionCounts& counts);

}  // namespace qv_bench

#endif
