#include "report/HtmlText.h"

#include <fmt/format.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "report/PrintableName.h"

namespace qvinspect {

namespace {

// In powers of 1000, followed by the unit.
std::string scaled(double number, const char* unit) {
    static constexpr const char* kPrefixes[] = {"", "k", "M", "G", "T"};
    size_t prefix = 0;
    while (number >= 1000 && prefix + 1 < std::size(kPrefixes)) {
        number /= 1000;
        ++prefix;
    }
    return fmt::format("{} {}{}", shortNumber(number), kPrefixes[prefix], unit);
}

}  // namespace

std::string htmlText(const std::string& text) {
    std::string escaped;
    for (const char c : printableName(text)) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                escaped += c;
                break;
        }
    }
    return escaped;
}

std::string scriptJson(const nlohmann::ordered_json& document) {
    std::string text;
    for (const char c : document.dump(-1, ' ', true, nlohmann::ordered_json::error_handler_t::replace)) {
        if (c == '<') {
            text += "\\u003c";
        } else {
            text += c;
        }
    }
    return text;
}

std::string groupedDigits(uint64_t number) {
    std::string digits = fmt::format("{}", number);
    for (size_t left = digits.size(); left > 3;) {
        left -= 3;
        digits.insert(left, ",");
    }
    return digits;
}

std::string shortNumber(double number) {
    return number >= 100 ? fmt::format("{:.0f}", number) : fmt::format("{:.3g}", number);
}

std::string bitrateText(double bitsPerSecond) {
    return scaled(bitsPerSecond, "bit/s");
}

std::string bytesText(double bytes) {
    return scaled(bytes, "B");
}

std::string durationText(double seconds) {
    constexpr double kMinute = 60;
    const std::string exact = fmt::format("{:.3f} s", seconds);
    constexpr double kMostSeconds = 1e9;  // longer durations are not shown as a clock
    if (seconds < kMinute || seconds > kMostSeconds) {
        return exact;
    }
    const auto whole = static_cast<uint64_t>(seconds);
    const uint64_t hours = whole / 3600;
    const std::string clock = fmt::format("{:02}:{:02}", whole / 60 % 60, whole % 60);
    return hours > 0 ? fmt::format("{} ({}:{})", exact, hours, clock) : fmt::format("{} ({})", exact, clock);
}

}  // namespace qvinspect
