// Detects work that grows faster than the input.
//
// Counts are named "OPERATION @ SIZE". Each operation has a count for a size, twice the size and four times
// the size.
#ifndef QV_BENCH_GROWTH_H
#define QV_BENCH_GROWTH_H

#include <cstdint>
#include <istream>
#include <map>
#include <string>

namespace qv_bench {

using Counts = std::map<std::string, uint64_t>;

struct GrowthReport {
    std::string text;  // one line for each operation
    bool isLinear = true;
};

// Linear work grows three times as much from size to 4 size as from size to 2 size; quadratic work grows five
// times as much. A constant part cancels out. The limit is three times, plus a tenth. A count that grows by
// less than a twentieth overall is constant and passes.
bool isLinear(uint64_t atSize, uint64_t atTwice, uint64_t atFourTimes);

// Reads "COUNT OPERATION @ SIZE" lines. Throws std::runtime_error on any other line.
Counts readCounts(std::istream& text);

// The report is linear if all instruction counts and all counts of allocated bytes are. Throws
// std::runtime_error if an operation has no count for one of the sizes, if it has a count of only one kind,
// or if there are no counts.
GrowthReport reportGrowth(const Counts& instructions, const Counts& bytes);

}  // namespace qv_bench

#endif
