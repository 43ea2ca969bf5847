// Text and numbers of the HTML report.
#ifndef QVINSPECT_HTMLTEXT_H
#define QVINSPECT_HTMLTEXT_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace qvinspect {

// Any bytes as the content of an element or of a quoted attribute: made printable, with markup escaped.
std::string htmlText(const std::string& text);

// A document as the content of a script element, in ASCII, so that nothing in it ends the element.
std::string scriptJson(const nlohmann::ordered_json& document);

std::string groupedDigits(uint64_t number);  // 1,234,567

// For people, with about three digits: "4.31 Mbit/s", "12.5 kB", "1.2 s (0:01)".
std::string bitrateText(double bitsPerSecond);
std::string bytesText(double bytes);
std::string durationText(double seconds);

// Three digits, or all before the decimal point.
std::string shortNumber(double number);

}  // namespace qvinspect

#endif
