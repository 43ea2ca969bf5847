// Makes the n-th allocation of one kind fail while it exists.
//
// malloc and free are reached through the linker (--wrap), so only calls from objects of the test program
// count; operator new and the non-throwing operator new[] are replaced.
#ifndef QV_TESTS_ALLOCATIONFAULT_H
#define QV_TESTS_ALLOCATIONFAULT_H

#include <cstddef>

namespace qv_test {

enum class Allocator { Malloc, New, NothrowNewArray };

class AllocationFault {
public:
    // nth counts from 1. 0 only counts.
    AllocationFault(Allocator allocator, int nth);
    ~AllocationFault();
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;

    // Allocations of the kind since construction, and the bytes they asked for.
    int seen() const;
    size_t bytes() const;

    // True once the n-th allocation was refused.
    bool triggered() const;

private:
    Allocator allocator_;
};

// While one exists, nothing fails and nothing is counted: what the core of the tests allocates is not an
// allocation of the operation under test.
class AllocationExemption {
public:
    AllocationExemption();
    ~AllocationExemption();
    AllocationExemption(const AllocationExemption&) = delete;
    AllocationExemption& operator=(const AllocationExemption&) = delete;
};

// Blocks of all kinds that are allocated and not yet released.
long liveBlocks();

}  // namespace qv_test

#endif
