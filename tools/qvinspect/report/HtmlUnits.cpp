#include "report/HtmlUnits.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"
#include "analysis/SeiTypes.h"
#include "report/HtmlText.h"
#include "report/PrintableName.h"

namespace qvinspect {

namespace {

using Json = nlohmann::ordered_json;

constexpr size_t kMostBytes = 64;     // shown of a unit
constexpr size_t kMostNamed = 4;      // SEI messages in a row
constexpr size_t kMostMessages = 64;  // SEI messages in the drawer
constexpr int64_t kNoType = -1;

std::string hexDigits(const unsigned char* bytes, size_t size) {
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        text += fmt::format("{:02x}", bytes[i]);
    }
    return text;
}

int64_t typeOf(const UnitReport& report) {
    return report.state == UnitState::Typed ? int64_t{report.type} : kNoType;
}

Json lines(const std::vector<std::string>& log) {
    Json array = Json::array();
    for (size_t i = 0; i < log.size() && i < kMostMessages; ++i) {
        array.push_back(printableName(log[i]));
    }
    return array;
}

// ITU-T T.35 messages by their sender, if known.
std::string messageName(QVCodecID codec, const SeiMessage& message) {
    const qv::sei::T35OwnerName* const sender =
        message.facts && message.facts->owner ? qv::sei::t35OwnerNameOf(*message.facts->owner) : nullptr;
    return fmt::format("{} {}", message.payloadType,
                       sender == nullptr ? seiName(codec, message.payloadType) : sender->name);
}

const char* deliveryText(Delivery delivery) {
    switch (delivery) {
        case Delivery::Kept:
            return ", kept by the library";
        case Delivery::Requested:
            return ", kept on request";
        case Delivery::Text:
            return ", kept as text";
        case Delivery::NotKept:
            break;
    }
    return "";
}

}  // namespace

HtmlUnits::HtmlUnits(QVCodecID codec, bool isRaw, const HtmlLimits& limits)
    : codec_(codec), isRaw_(isRaw), limits_(limits) {}

void HtmlUnits::add(const AccessUnitView& view) {
    if (!view.isShown) {
        return;
    }
    for (const UnitView& unit : view.units) {
        ++count_;
        if (kept_ < limits_.mostUnits) {
            ++kept_;
            addRow(view, unit);
            units_.push_back(describeUnit(unit));
        }
    }
}

void HtmlUnits::addRow(const AccessUnitView& view, const UnitView& unit) {
    const UnitReport& report = *unit.report;
    const int64_t type = typeOf(report);
    const std::string name = typeName(report);
    types_.emplace(type, name);
    isTimed_ |= view.time.has_value();
    rows_ += fmt::format(
        "<tr data-type=\"{0}\" data-key=\"{1}\" data-error=\"{2}\"><td><button type=\"button\" "
        "class=\"unit\" "
        "tabindex=\"{3}\" aria-label=\"Bytes and fields of unit {4}\">{4}</button></td><td>{5}</td>"
        "<td class=\"time\">{6}</td><td>{7}</td><td>{8}</td><td>{9}</td><td>{10}</td><td>{11}</td></tr>\n",
        type, view.report.isKey ? 1 : 0, isBroken(unit) ? 1 : 0, kept_ == 1 ? 0 : -1, kept_, view.number,
        view.time ? fmt::format("{:.6f}", *view.time) : std::string(), report.offset, report.length,
        type == kNoType ? std::string() : fmt::format("{}", type), htmlText(name), remarks(view, unit));
}

std::string HtmlUnits::typeName(const UnitReport& report) const {
    switch (report.state) {
        case UnitState::ForbiddenBit:
            return "forbidden_zero_bit is set";
        case UnitState::Empty:
            return "empty unit";
        case UnitState::Typed:
            break;
    }
    return nalUnitName(codec_, report.type);
}

std::string HtmlUnits::remarks(const AccessUnitView& view, const UnitView& unit) const {
    std::string text;
    const auto add = [&](const char* className, const std::string& remark) {
        text += fmt::format("<span class=\"tag {}\">{}</span> ", className, htmlText(remark));
    };
    if (isBroken(unit)) {
        add("bad", "error");
    }
    if (view.report.isKey && unit.report == view.report.units.data()) {
        add("key", "key access unit");
    }
    if (unit.report->isNonReference) {
        add("", "non-reference");
    }
    if (unit.details->newSps) {
        add("", unit.details->newSps->isAccepted ? unit.details->newSps->summary : "refused");
    }
    if (unit.details->isRepeatedSps) {
        add("", "repeated unchanged");
    }
    for (size_t i = 0; i < unit.messages.size() && i < kMostNamed; ++i) {
        add("sei", messageName(codec_, *unit.messages[i]));
    }
    if (unit.messages.size() > kMostNamed) {
        add("sei", fmt::format("and {} more", unit.messages.size() - kMostNamed));
    }
    return text;
}

Json HtmlUnits::describeUnit(const UnitView& unit) {
    const size_t shown = std::min<size_t>(unit.report->length, kMostBytes);
    Json json = {{"hex", hexDigits(unit.data, shown)}};
    Json parts = Json::array();
    if (unit.details->newSps) {
        const SequenceParameterSet& sps = *unit.details->newSps;
        parts.push_back({{"title", printableName("Sequence parameter set: " +
                                                 (sps.isAccepted ? sps.summary : "refused"))},
                         {"fields", describeFields(describe(sps))}});
        json["log"] = lines(sps.log);
    }
    for (size_t i = 0; i < unit.messages.size() && i < kMostMessages; ++i) {
        const SeiMessage& message = *unit.messages[i];
        parts.push_back({{"title", fmt::format("SEI {} {}, {} bytes{}", message.payloadType,
                                               seiName(codec_, message.payloadType), message.payloadSize,
                                               deliveryText(message.delivery))},
                         {"fields", describeFields(message.block)}});
    }
    if (unit.messages.size() > kMostMessages) {
        parts.push_back(
            {{"title", fmt::format("{} more messages, see --ndjson", unit.messages.size() - kMostMessages)},
             {"fields", Json::array()}});
    }
    if (!parts.empty()) {
        json["parts"] = std::move(parts);
    }
    if (unit.details->sei && !unit.details->sei->log.empty()) {
        json["log"] = lines(unit.details->sei->log);
    }
    return json;
}

// [name, value, note] of each field; null beyond the limit of the report.
Json HtmlUnits::describeFields(const Block& block) {
    for (const Field& field : block.fields) {
        fieldBytes_ += field.name.size() + valueText(field).size() + field.note.size();
    }
    if (fieldBytes_ > limits_.mostFieldBytes) {
        return nullptr;
    }
    Json fields = Json::array();
    for (const Field& field : block.fields) {
        fields.push_back(
            {printableName(field.name), printableName(valueText(field)), printableName(field.note)});
    }
    return fields;
}

void HtmlUnits::write(Output& out, const std::string& id, uint64_t total) const {
    out.print(
        "<section class=\"units{}\" aria-labelledby=\"{}-units\">\n<h3 id=\"{}-units\">NAL units</h3>\n",
        isTimed_ ? "" : " timeless", id, id);
    out.print("<p class=\"note\">");
    if (kept_ < count_) {
        out.print("The first {} of {} units; the full data is in <code>--ndjson</code>.",
                  groupedDigits(kept_), groupedDigits(count_));
    } else {
        out.print("{} unit{}.", groupedDigits(count_), count_ == 1 ? "" : "s");
    }
    if (count_ < total) {
        out.print(" The filter options selected {} of the stream's {} units; the plots show all of them.",
                  groupedDigits(count_), groupedDigits(total));
    }
    out.print(
        "<span class=\"script-only\"> The number of a unit opens its bytes and fields; the arrow keys go "
        "from "
        "unit to unit.</span></p>\n");
    writeControls(out, id);
    out.print(
        "<div class=\"scroll tall\" tabindex=\"0\" role=\"region\" aria-label=\"Table of NAL units\">"
        "<table class=\"sortable\"><thead><tr>");
    const char* const offset = isRaw_ ? "Offset in file" : "Offset in access unit";
    for (const char* column :
         {"Unit", "Access unit", "Time [s]", offset, "Bytes", "Type", "Name", "Remarks"}) {
        out.print("<th scope=\"col\" aria-sort=\"none\"><button type=\"button\">{}</button></th>", column);
    }
    out.print("</tr></thead><tbody>\n");
    out.write(rows_);
    out.print("</tbody></table></div>\n<script type=\"application/json\" class=\"unit-data\">");
    out.write(scriptJson(units_));
    out.print("</script>\n</section>\n");
}

void HtmlUnits::writeControls(Output& out, const std::string& id) const {
    out.print(
        "<form class=\"controls script-only\">"
        "<label for=\"{0}-find\">Find</label> <input id=\"{0}-find\" class=\"find\" type=\"search\" "
        "placeholder=\"name, SEI, offset\"> "
        "<label for=\"{0}-type\">Type</label> <select id=\"{0}-type\" class=\"type\">"
        "<option value=\"\">all</option>",
        id);
    for (const auto& [type, name] : types_) {
        out.print("<option value=\"{0}\">{1}</option>", type,
                  type == kNoType ? std::string("none") : fmt::format("{} {}", type, htmlText(name)));
    }
    out.print(
        "</select> "
        "<label><input type=\"checkbox\" class=\"keys\"> in key access units</label> "
        "<label><input type=\"checkbox\" class=\"errors\"> with errors</label> "
        "<output class=\"shown\" aria-live=\"polite\">{} shown</output></form>\n",
        kept_);
}

}  // namespace qvinspect
