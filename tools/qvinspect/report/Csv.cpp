#include "report/Csv.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

#include "analysis/NalUnitNames.h"
#include "report/UnitTexts.h"

namespace qvinspect {

namespace {

// Spreadsheets treat such a cell as a formula, which may run programs: the characters themselves and, in
// UTF-8, their full-width forms.
bool beginsLikeFormula(const std::string& text) {
    static constexpr const char* kBegins[] = {
        "=", "+", "-", "@", "\t", "\r", "\n", "\xEF\xBC\x9D", "\xEF\xBC\x8B", "\xEF\xBC\x8D", "\xEF\xBC\xA0"};
    return std::any_of(std::begin(kBegins), std::end(kBegins),
                       [&](const char* begin) { return text.rfind(begin, 0) == 0; });
}

// RFC 4180 section 2: a field with a comma, a quote or an end of line is quoted, with its quotes doubled. So
// is one with a semicolon or a tab, which some programs treat as separators. Not for numbers, which may be
// negative.
std::string csvField(const std::string& cell) {
    const std::string text = beginsLikeFormula(cell) ? "'" + cell : cell;
    if (text.find_first_of(",;\t\"\r\n") == std::string::npos) {
        return text;
    }
    std::string field = "\"";
    for (const char character : text) {
        field.append(character == '"' ? 2 : 1, character);
    }
    return field + "\"";
}

const char* flagText(bool flag) {
    return flag ? "true" : "false";
}

// Seconds; empty if unknown.
std::string timeText(const std::optional<double>& time) {
    return time && std::isfinite(*time) ? fmt::format("{}", *time) : std::string();
}

// payloadTypes with blanks between them.
std::string seiTypes(const UnitView& unit) {
    std::string text;
    for (const SeiMessage* message : unit.messages) {
        text += fmt::format("{}{}", text.empty() ? "" : " ", message->payloadType);
    }
    return text;
}

}  // namespace

Csv::Csv(const std::string& path) : output_(path) {
    output_.print(
        "file,access_unit,time,key,offset,length,type,name,state,non_reference,sei_types,error,"
        "access_unit_errors\r\n");
}

void Csv::begin(const StreamHead& head) {
    name_ = csvField(head.name);
}

void Csv::add(const AccessUnitView& view) {
    for (const UnitView& unit : view.units) {
        addUnit(view, unit);
    }
}

void Csv::addUnit(const AccessUnitView& view, const UnitView& unit) {
    const UnitReport& report = *unit.report;
    const QVCodecID codec = view.accessUnit.parameters.codecId;
    output_.print("{},{},{},{},{},{},", name_, view.number, timeText(view.time), flagText(view.report.isKey),
                  report.offset, report.length);
    if (report.state == UnitState::Typed) {
        output_.print("{},{},{},{},", report.type, csvField(nalUnitName(codec, report.type)),
                      stateName(report.state), flagText(report.isNonReference));
    } else {
        output_.print(",,{},,", stateName(report.state));
    }
    output_.print("{},{},{}\r\n", seiTypes(unit), csvField(unitError(unit)), view.errors);
}

void Csv::end(const StreamEnd&) {}

void Csv::fail(const std::string&, const std::string&) {}

void Csv::finish() {
    output_.close();
}

}  // namespace qvinspect
