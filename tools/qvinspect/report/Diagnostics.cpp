#include "report/Diagnostics.h"

#include <unistd.h>

#include <exception>
#include <initializer_list>
#include <string>

#include "report/WriteAll.h"

namespace qvinspect {

namespace {

void writeLine(std::initializer_list<std::string_view> pieces) noexcept {
    try {
        // In one call, so that lines of several programs are not mixed.
        std::string line;
        for (const std::string_view piece : pieces) {
            line += piece;
        }
        writeAll(STDERR_FILENO, line.data(), line.size());
    } catch (const std::exception&) {  // no memory for the line
        for (const std::string_view piece : pieces) {
            writeAll(STDERR_FILENO, piece.data(), piece.size());
        }
    }
}

}  // namespace

void printDiagnostic(std::string_view text, std::string_view detail) noexcept {
    writeLine({text, detail, "\n"});
}

void complain(std::string_view text, std::string_view detail) noexcept {
    writeLine({"qvinspect: ", text, detail, "\n"});
}

}  // namespace qvinspect
