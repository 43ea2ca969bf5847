// Where reports go.
#ifndef QVINSPECT_OUTPUT_H
#define QVINSPECT_OUTPUT_H

#include <fmt/format.h>

#include <cstdio>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace qvinspect {

// Thrown when an output cannot be written; name() is that of the output, printable.
class OutputError : public std::system_error {
public:
    OutputError(std::string name, int error)
        : std::system_error(error, std::generic_category()), name_(std::move(name)) {}

    const std::string& name() const { return name_; }

private:
    std::string name_;
};

// Collects text and writes it out in large pieces. Every member may throw OutputError.
class Output {
public:
    // "-" is standard output. Any other file is made anew.
    explicit Output(const std::string& path);

    // Writes what is left, as far as that is possible, without a word about it: close() tells.
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    template <typename... Values>
    void print(fmt::format_string<Values...> format, Values&&... values) {
        fmt::format_to(std::back_inserter(text_), format, std::forward<Values>(values)...);
        flushPiece();
    }

    // Bytes as they are.
    void write(const void* bytes, size_t size);
    void write(const std::string& text) { write(text.data(), text.size()); }

    void flush();

    // Writes what is left. An error of the disk may show here only.
    void close();

    bool isTerminal() const;

private:
    static constexpr size_t kPiece = size_t{64} * 1024;

    void flushPiece() {
        if (text_.size() >= kPiece) {
            flush();
        }
    }
    [[noreturn]] void fail(int error) const;

    std::string name_;
    std::FILE* file_ = nullptr;
    bool isOwned_;
    fmt::memory_buffer text_;
};

}  // namespace qvinspect

#endif
