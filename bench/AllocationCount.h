// Counts the memory blocks that the program asks for, and their bytes: malloc, calloc and realloc are reached
// through the linker (--wrap), operator new is replaced.
#ifndef QV_BENCH_ALLOCATIONCOUNT_H
#define QV_BENCH_ALLOCATIONCOUNT_H

namespace qv_bench {

// Blocks asked for since the program began.
unsigned long allocations();

// And their bytes, whether they were given back or not.
unsigned long allocatedBytes();

}  // namespace qv_bench

#endif
