// Platform functions that look at all they are given: log lines are formatted, dumps are read to their end.
// The rest is the stand-alone core's.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "QVDumpData.h"
#include "QVTraceLog.h"

namespace {

// The one text that comes without a value for its "%d".
constexpr const char* kPlainText =
    "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n";

// Keeps the compiler from leaving out the reads that make the value.
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
