#include <atomic>

#include "QVCoreStandalone.h"

namespace {
std::atomic<int> traceLevel{QVTraceWarning};
}

extern "C" void qvSetTraceLevel(int level) {
    traceLevel.store(level, std::memory_order_relaxed);
}

extern "C" int qvGetTraceLevel(void) {
    return traceLevel.load(std::memory_order_relaxed);
}
