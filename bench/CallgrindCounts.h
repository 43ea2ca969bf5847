// Reads the instruction counts that callgrind writes.
#ifndef QV_BENCH_CALLGRINDCOUNTS_H
#define QV_BENCH_CALLGRINDCOUNTS_H

#include <cstdint>
#include <istream>
#include <map>
#include <string>

namespace qv_bench {

// Instructions by operation.
using InstructionCounts = std::map<std::string, uint64_t>;

// The parts of a profile that a client request with a name made the program dump, with their totals. Parts
// that were dumped for another reason are left out.
InstructionCounts readCallgrind(std::istream& profile);

}  // namespace qv_bench

#endif
