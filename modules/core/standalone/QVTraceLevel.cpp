#include <atomic>

#include "QVCoreStandalone.h"

namespace {
// The level applies to the whole program.
std::atomic<int> traceLevel{QVTraceWarning};  // NOLINT(cppcoreguidelines-avoid-non-const-global-variables)
}  // namespace

extern "C" void qvSetTraceLevel(int level) {
    traceLevel.store(level, std::memory_order_relaxed);
}

extern "C" int qvGetTraceLevel(void) {
    return traceLevel.load(std::memory_order_relaxed);
}
