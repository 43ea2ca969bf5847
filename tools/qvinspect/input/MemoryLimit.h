// Limits the memory of the program while a container is read.
#ifndef QVINSPECT_MEMORYLIMIT_H
#define QVINSPECT_MEMORYLIMIT_H

#include <sys/resource.h>

#include <cstdint>
#include <optional>

namespace qvinspect {

// During its lifetime, allocations fail that would raise the data of the process by more than the limit above
// its size at construction (RLIMIT_DATA, on Linux). This includes allocations in libraries. It has no effect
// if the system does not report the size of the process, and under sanitizers, which end the program when an
// allocation fails.
class MemoryLimit {
public:
    explicit MemoryLimit(uint64_t bytes);
    ~MemoryLimit();
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

    // Changes the limit to bytes above the size at construction.
    void allow(uint64_t bytes);

private:
    std::optional<uint64_t> start_;  // bytes of data at the start
    rlimit before_{};
};

}  // namespace qvinspect

#endif
