// Bounds the memory of the program while a container is read.
#ifndef QVINSPECT_MEMORYLIMIT_H
#define QVINSPECT_MEMORYLIMIT_H

#include <sys/resource.h>

#include <cstdint>
#include <optional>

namespace qvinspect {

// While it lives, allocations fail that would take the data of the process more than so many bytes above what
// it had at the start (RLIMIT_DATA, on Linux). This reaches allocations in libraries, of any number. It does
// nothing where the system does not say how much memory the process has, and under sanitizers, which end the
// program when an allocation fails.
class MemoryLimit {
public:
    explicit MemoryLimit(uint64_t bytes);
    ~MemoryLimit();
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

    // From now on so many bytes above the start.
    void allow(uint64_t bytes);

private:
    std::optional<uint64_t> start_;  // bytes of data at the start
    rlimit before_{};
};

}  // namespace qvinspect

#endif
