// Where listings go.
#ifndef QVINSPECT_OUTPUT_H
#define QVINSPECT_OUTPUT_H

#include <fmt/format.h>

#include <cstdio>
#include <system_error>
#include <utility>

namespace qvinspect {

// Collects text and writes it out in large pieces. Throws std::system_error when it cannot be written; the
// code is std::errc::broken_pipe when nobody reads it any more.
class Output {
public:
    explicit Output(std::FILE* file) : file_(file) {}

    template <typename... Values>
    void print(fmt::format_string<Values...> format, Values&&... values) {
        fmt::format_to(std::back_inserter(text_), format, std::forward<Values>(values)...);
        if (text_.size() >= kPiece) {
            flush();
        }
    }

    void flush();

private:
    static constexpr size_t kPiece = size_t{64} * 1024;

    std::FILE* file_;
    fmt::memory_buffer text_;
};

}  // namespace qvinspect

#endif
