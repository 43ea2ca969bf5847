#include "analysis/CoreHooks.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

#include "QVDumpData.h"
#include "QVTraceLog.h"

namespace qvinspect {

namespace {

thread_local LogCapture* innermost = nullptr;

// A text of the library with a conversion and no argument for it.
constexpr const char* kPlainText =
    "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n";

QV_PRINTF_FORMAT(1, 0)
std::string formatted(const char* format, va_list arguments) {
    if (std::strcmp(format, kPlainText) == 0) {
        return format;
    }
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) {
        return format;
    }
    std::string text(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    text.pop_back();
    return text;
}

std::string withoutLineEnd(std::string text) {
    text.erase(text.find_last_not_of(" \n") + 1);
    return text;
}

}  // namespace

LogCapture::LogCapture() : outer_(std::exchange(innermost, this)) {}

LogCapture::~LogCapture() {
    innermost = outer_;
}

}  // namespace qvinspect

extern "C" void qvTraceLog(int level, const char* /*file*/, int /*line*/, const char* /*function*/,
                           const char* /*tag*/, const char* format, ...) {
    using namespace qvinspect;
    if (innermost == nullptr) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    std::string text = formatted(format, arguments);
    va_end(arguments);
    innermost->add({level, withoutLineEnd(std::move(text))});
}

void QVDumpData::dumpActualData(const char* /*label*/, const unsigned char* /*data*/, int /*size*/) {}
