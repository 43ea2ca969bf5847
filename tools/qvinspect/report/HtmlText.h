// Text and figures as the HTML report writes them.
#ifndef QVINSPECT_HTMLTEXT_H
#define QVINSPECT_HTMLTEXT_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace qvinspect {

// Any bytes as the content of an element or of a quoted attribute: printable, markup escaped.
std::string htmlText(const std::string& text);

// A document as the content of a script element, in ASCII: nothing in it can end the element.
std::string scriptJson(const nlohmann::ordered_json& document);

std::string groupedDigits(uint64_t number);  // 1,234,567

// As a person reads it, with three digits or so: "4.31 Mbit/s", "12.5 kB", "1.2 s (0:01)".
std::string bitrateText(double bitsPerSecond);
std::string bytesText(double bytes);
std::string durationText(double seconds);

// Three digits, or all ahead of the point.
std::string shortNumber(double number);

}  // namespace qvinspect

#endif
