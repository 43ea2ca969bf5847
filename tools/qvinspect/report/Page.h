// Lines of text for people, on a terminal or in a file.
#ifndef QVINSPECT_PAGE_H
#define QVINSPECT_PAGE_H

#include <fmt/format.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/Output.h"
#include "report/Terminal.h"

namespace qvinspect {

enum class Style { Plain, Heading, Good, Bad, Faint };

// A line is assembled from pieces. Control characters and bytes that are not UTF-8 in a piece never reach the
// output.
class Page {
public:
    // path as for Output.
    Page(const std::string& path, PageFormat format);

    template <typename... Values>
    Page& add(fmt::format_string<Values...> format, Values&&... values) {
        return add(Style::Plain, format, std::forward<Values>(values)...);
    }

    template <typename... Values>
    Page& add(Style style, fmt::format_string<Values...> format, Values&&... values) {
        piece_.clear();
        fmt::format_to(std::back_inserter(piece_), format, std::forward<Values>(values)...);
        addPiece(style);
        return *this;
    }

    // Ends the line without trailing blanks; "..." replaces what exceeds the width.
    void endLine();

    const std::optional<size_t>& width() const { return format_.width; }

    void flush() { output_.flush(); }
    void close() { output_.close(); }

private:
    struct Piece {
        Style style;
        size_t end;  // in line_
    };

    void addPiece(Style style);
    size_t cut();
    void print(Style style, std::string_view text);

    Output output_;
    PageFormat format_;
    fmt::memory_buffer piece_;
    std::string line_;
    std::vector<Piece> pieces_;
};

}  // namespace qvinspect

#endif
