// Platform functions that read all of their arguments: they format log lines and read dumps to the end. The
// stand-alone core provides the others.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "QVDumpData.h"
#include "QVTraceLog.h"

namespace {

// The only text that is passed without a value for its "%d".
constexpr const char* kPlainText =
    "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n";

// Prevents the compiler from removing the reads that compute the value.
void use(size_t value) {
    asm volatile("" : : "r"(value) : "memory");
}

}  // namespace

extern "C" void qvTraceLog(int level, const char* file, int line, const char* function, const char* tag,
                           const char* format, ...) {
    use(std::strlen(file) + std::strlen(function) + std::strlen(tag) + static_cast<size_t>(line + level));
    if (std::strcmp(format, kPlainText) == 0) {
        return;
    }
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    use(static_cast<size_t>(std::vsnprintf(text, sizeof text, format, arguments)));
    va_end(arguments);
}

void QVDumpData::dumpActualData(const char* label, const unsigned char* data, int size) {
    size_t sum = std::strlen(label);
    for (int i = 0; i < size; ++i) {
        sum += data[i];
    }
    use(sum);
}
