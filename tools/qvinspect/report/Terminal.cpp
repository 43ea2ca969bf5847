#include "report/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>

namespace qvinspect {

namespace {

constexpr size_t kUsualWidth = 80;
constexpr size_t kLeastWidth = 20;  // smaller values are errors of the terminal

std::string environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// 0 if the text is not a number.
size_t columnsIn(const std::string& text) {
    size_t columns = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, columns);
    return error == std::errc() && stop == end ? columns : 0;
}

size_t widthOf(const Terminal& terminal) {
    for (const size_t columns : {columnsIn(terminal.COLUMNS), terminal.columns}) {
        if (columns >= kLeastWidth) {
            return columns;
        }
    }
    return kUsualWidth;
}

}  // namespace

Terminal terminalOf(int fileDescriptor) {
    Terminal terminal;
    terminal.isTerminal = isatty(fileDescriptor) != 0;
    struct winsize size = {};
    if (terminal.isTerminal && ioctl(fileDescriptor, TIOCGWINSZ, &size) == 0) {
        terminal.columns = size.ws_col;
    }
    terminal.COLUMNS = environment("COLUMNS");
    terminal.NO_COLOR = environment("NO_COLOR");
    terminal.TERM = environment("TERM");
    return terminal;
}

PageFormat pageFormat(const Terminal& terminal, ColorUse color) {
    PageFormat format;
    const bool takesColor = terminal.isTerminal && terminal.NO_COLOR.empty() && terminal.TERM != "dumb";
    format.isColored = color == ColorUse::Always || (color == ColorUse::Auto && takesColor);
    if (terminal.isTerminal) {
        format.width = widthOf(terminal);
    }
    return format;
}

}  // namespace qvinspect
