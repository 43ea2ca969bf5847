// Writes one line to stderr for each call. The line is composed first and passed to stdio in one call, so
// lines of several threads do not mix.
#include "QVTraceLog.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "QVCoreStandalone.h"

namespace {

// The only text that is passed without a value for its "%d". Formatting it would read an argument that does
// not exist.
constexpr const char* kPlainText =
    "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n";

bool isPlainText(const char* format) {
    return std::strcmp(format, kPlainText) == 0;
}

QV_PRINTF_FORMAT(1, 0)
std::string formatted(const char* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    // va_copy has initialised it.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0) {
        return format;
    }
    std::string text(static_cast<size_t>(length) + 1, '\0');
    static_cast<void>(std::vsnprintf(text.data(), text.size(), format, arguments));
    text.pop_back();
    return text;
}

char levelLetter(int level) {
    switch (level) {
        case QVTraceError:
            return 'E';
        case QVTraceWarning:
            return 'W';
        case QVTraceInformation:
            return 'I';
        default:
            return 'D';
    }
}

// Makes text end in exactly one line feed and replaces inner line feeds with spaces, so each call is one
// line.
void endLine(std::string& text) {
    while (!text.empty() && text.back() == '\n') {
        text.pop_back();
    }
    for (char& c : text) {
        c = c == '\n' ? ' ' : c;
    }
    text += '\n';
}

}  // namespace

extern "C" void qvTraceLog(int level, const char* file, int line, const char* function, const char* tag,
                           const char* format, ...) {
    if (level > qvGetTraceLevel()) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    std::string text = isPlainText(format) ? format : formatted(format, arguments);
    va_end(arguments);

    endLine(text);
    const std::string whole = std::string("[") + levelLetter(level) + "] " + tag + " " + file + ":" +
                              std::to_string(line) + " " + function + ": " + text;
    static_cast<void>(std::fwrite(whole.data(), 1, whole.size(), stderr));
}
