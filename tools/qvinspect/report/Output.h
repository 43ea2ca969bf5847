// Outputs of reports.
#ifndef QVINSPECT_OUTPUT_H
#define QVINSPECT_OUTPUT_H

#include <fmt/format.h>

#include <cerrno>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

#include "report/OutputFile.h"

namespace qvinspect {

// Thrown if an output cannot be written, or not all of it. The text is one line that names the output and the
// reason.
class OutputError : public std::runtime_error {
public:
    explicit OutputError(const std::string& text, int error = 0)
        : std::runtime_error(text), isBrokenPipe_(error == EPIPE) {}

    // The reader of standard output stopped: nothing is wrong.
    bool isBrokenPipe() const { return isBrokenPipe_; }

private:
    bool isBrokenPipe_;
};

// The name of an output, which may be "-", in messages.
std::string outputName(const std::string& path);

// Collects text and writes it in large pieces. Every member may throw OutputError.
class Output {
public:
    // path as for OutputFile.
    explicit Output(const std::string& path);

    // Without close(), what is left is written to a directly written output if possible, without a message; a
    // file is not changed.
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    template <typename... Values>
    void print(fmt::format_string<Values...> format, Values&&... values) {
        fmt::format_to(std::back_inserter(text_), format, std::forward<Values>(values)...);
        flushPiece();
    }

    // Writes bytes unchanged.
    void write(const void* bytes, size_t size);
    void write(const std::string& text) { write(text.data(), text.size()); }

    void flush();

    // Writes what is left and renames a file to its final name. Some disk errors are reported only here.
    void close();

private:
    static constexpr size_t kPiece = size_t{64} * 1024;

    void flushPiece() {
        if (text_.size() >= kPiece) {
            flush();
        }
    }
    void check(int error);

    std::string name_;
    OutputFile file_;
    bool isClosed_ = false;
    fmt::memory_buffer text_;
};

}  // namespace qvinspect

#endif
