#include "input/MemoryLimit.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace qvinspect {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif
#else
constexpr bool kIsSanitized = false;
#endif

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// The sixth number of /proc/self/statm is the size of data and stack in pages, proc(5).
std::optional<uint64_t> dataOfProcess() {
    const std::unique_ptr<std::FILE, CloseFile> statm(std::fopen("/proc/self/statm", "re"));
    unsigned long long data = 0;
    if (statm == nullptr || std::fscanf(statm.get(), "%*u %*u %*u %*u %*u %llu", &data) != 1) {
        return std::nullopt;
    }
    const long page = sysconf(_SC_PAGESIZE);
    return page > 0 ? std::optional<uint64_t>(data * static_cast<uint64_t>(page)) : std::nullopt;
}

}  // namespace

MemoryLimit::MemoryLimit(uint64_t bytes) {
    if (!kIsSanitized && getrlimit(RLIMIT_DATA, &before_) == 0) {
        start_ = dataOfProcess();
    }
    allow(bytes);
}

MemoryLimit::~MemoryLimit() {
    if (start_) {
        setrlimit(RLIMIT_DATA, &before_);
    }
}

void MemoryLimit::allow(uint64_t bytes) {
    if (start_) {
        const rlimit limit = {std::min<rlim_t>(*start_ + bytes, before_.rlim_cur), before_.rlim_max};
        setrlimit(RLIMIT_DATA, &limit);
    }
}

}  // namespace qvinspect
