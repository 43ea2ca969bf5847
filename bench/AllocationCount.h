// Counts the memory blocks that the program allocates, and their bytes. The linker wraps malloc, calloc and
// realloc (--wrap); operator new is replaced.
#ifndef QV_BENCH_ALLOCATIONCOUNT_H
#define QV_BENCH_ALLOCATIONCOUNT_H

namespace qv_bench {

// Returns the number of blocks requested since the program began.
unsigned long allocations();

// Returns the total size of those blocks in bytes, released ones included.
unsigned long allocatedBytes();

}  // namespace qv_bench

#endif
