// Tells from counts at growing sizes whether work grows more than in proportion.
//
// Counts have names "OPERATION @ SIZE"; each operation has them at a size, at twice and at four times as
// much.
#ifndef QV_BENCH_GROWTH_H
#define QV_BENCH_GROWTH_H

#include <cstdint>
#include <istream>
#include <map>
#include <string>

namespace qv_bench {

using Counts = std::map<std::string, uint64_t>;

struct GrowthReport {
    std::string text;  // a line for each operation
    bool isLinear = true;
};

// From size to four times size the count may grow by three times what it grows by from size to twice size,
// and a tenth of that more: what does not depend on the size drops out, and work in proportion to the square
// would grow by five times as much. What grows by less than a twentieth in all is constant.
bool isLinear(uint64_t atSize, uint64_t atTwice, uint64_t atFourTimes);

// "COUNT OPERATION @ SIZE" lines. Throws std::runtime_error on any other.
Counts readCounts(std::istream& text);

// Linear when all the instructions and all the allocated bytes are. Throws std::runtime_error when an
// operation lacks a size or a count of the other kind, and when there is none.
GrowthReport reportGrowth(const Counts& instructions, const Counts& bytes);

}  // namespace qv_bench

#endif
