#include "report/Page.h"

#include <fmt/color.h>

#include <algorithm>

#include "report/PrintableName.h"

namespace qvinspect {

namespace {

bool isPrintableAscii(char c) {
    return c >= 0x20 && c < 0x7F;
}

// Every byte of a UTF-8 character except the first.
bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

fmt::text_style textStyle(Style style) {
    switch (style) {
        case Style::Heading:
            return fmt::emphasis::bold;
        case Style::Good:
            return fmt::fg(fmt::terminal_color::green);
        case Style::Bad:
            return fmt::fg(fmt::terminal_color::red) | fmt::emphasis::bold;
        case Style::Faint:
            return fmt::emphasis::faint;
        case Style::Plain:
            break;
    }
    return {};
}

// The offset of the character number `characters` of the text, or its size if there are fewer.
size_t beginOfCharacter(std::string_view text, size_t characters) {
    for (size_t i = 0; i < text.size(); ++i) {
        if (!isContinuation(text[i]) && characters-- == 0) {
            return i;
        }
    }
    return text.size();
}

}  // namespace

Page::Page(const std::string& path, PageFormat format) : output_(path), format_(format) {}

void Page::addPiece(Style style) {
    const std::string_view text(piece_.data(), piece_.size());
    if (std::all_of(text.begin(), text.end(), isPrintableAscii)) {
        line_.append(text);
    } else {
        line_ += printableName(std::string(text));
    }
    pieces_.push_back({style, line_.size()});
}

// The bytes of the line that are shown; a cut line ends in "...".
size_t Page::cut() {
    constexpr std::string_view kDots = "...";
    const size_t size = line_.find_last_not_of(' ') + 1;
    if (!format_.width || beginOfCharacter({line_.data(), size}, *format_.width) == size) {
        return size;
    }
    const size_t kept = beginOfCharacter(line_, *format_.width - kDots.size());
    line_.replace(kept, kDots.size(), kDots);
    return kept + kDots.size();
}

void Page::endLine() {
    const size_t end = cut();
    size_t begin = 0;
    for (const Piece& piece : pieces_) {
        const size_t stop = std::min(piece.end, end);
        if (begin < stop) {
            print(piece.style, {line_.data() + begin, stop - begin});
            begin = stop;
        }
    }
    output_.print("\n");
    line_.clear();
    pieces_.clear();
}

void Page::print(Style style, std::string_view text) {
    if (format_.isColored && style != Style::Plain) {
        output_.print("{}", fmt::styled(text, textStyle(style)));
    } else {
        output_.print("{}", text);
    }
}

}  // namespace qvinspect
