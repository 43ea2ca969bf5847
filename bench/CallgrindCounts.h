// Reads the instruction counts that callgrind writes.
#ifndef QV_BENCH_CALLGRINDCOUNTS_H
#define QV_BENCH_CALLGRINDCOUNTS_H

#include <cstdint>
#include <istream>
#include <map>
#include <string>

namespace qv_bench {

// Number of instructions by operation.
using InstructionCounts = std::map<std::string, uint64_t>;

// Returns the totals of the parts of a profile that were dumped by a named client request, by that name.
// Other parts are ignored.
InstructionCounts readCallgrind(std::istream& profile);

}  // namespace qv_bench

#endif
