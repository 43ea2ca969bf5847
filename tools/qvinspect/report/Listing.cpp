#include "report/Listing.h"

#include <fmt/format.h>

#include <algorithm>

#include "analysis/ElementMeaning.h"
#include "analysis/FirstBytes.h"
#include "analysis/NalUnitNames.h"
#include "analysis/SeiNames.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "report/FramingName.h"
#include "report/SummaryScreen.h"
#include "report/UnitTypeList.h"

namespace qvinspect {

namespace {

constexpr size_t kMostHexBytes = 512;
constexpr const char* kFieldIndent = "             ";

std::string timeText(const std::optional<double>& time) {
    return time ? fmt::format("{:.6f}", *time) : "-";
}

const char* deliveryText(Delivery delivery) {
    switch (delivery) {
        case Delivery::Kept:
            return ", kept";
        case Delivery::Requested:
            return ", kept on request";
        case Delivery::Text:
            return ", kept as text";
        case Delivery::NotKept:
            break;
    }
    return "";
}

bool isParameterSet(QVCodecID codec, uint32_t nal_unit_type) {
    return codec == QVCodecIDAvc
               ? nal_unit_type == qv::avc::kNalSps || nal_unit_type == qv::avc::kNalPps ||
                     nal_unit_type == qv::avc::kNalSpsExtension || nal_unit_type == qv::avc::kNalSubsetSps
               : nal_unit_type >= qv::hevc::kNalVps && nal_unit_type <= qv::hevc::kNalPps;
}

// Whether no other picture refers to it: it has slices, and none of them is of a reference picture.
bool isNonReference(QVCodecID codec, const AccessUnitReport& report) {
    bool hasPicture = false;
    for (const UnitReport& unit : report.units) {
        if (unit.state == UnitState::Typed && isVcl(codec, unit.type)) {
            if (!unit.isNonReference) {
                return false;
            }
            hasPicture = true;
        }
    }
    return hasPicture;
}

const char* errorOf(const UnitReport& unit) {
    return unit.state == UnitState::Empty ? "empty unit" : "forbidden_zero_bit is set";
}

// The fields of nal_unit_header() besides the type. H.264 (08/2021) 7.3.1, H.265 (08/2021) 7.3.1.2.
std::string headerText(QVCodecID codec, const UnitView& unit) {
    const uint32_t first = unit.data[0];
    if (codec == QVCodecIDAvc) {
        return fmt::format("nal_ref_idc {}", first >> 5U & 3U);
    }
    if (unit.report->length < 2) {
        return "the second byte of the header is missing";
    }
    const uint32_t second = unit.data[1];
    return fmt::format("nuh_layer_id {}, nuh_temporal_id_plus1 {}", (first & 1U) << 5U | second >> 3U,
                       second & 7U);
}

// A line for each element: bit, name, bits as coded, value, and what it means.
class ElementTable : public qv::TraceVisitor {
public:
    ElementTable(Page& page, QVCodecID codec) : page_(page), codec_(codec) {}

    void begin(const qv::Structure& structure) override {
        page_.add(Style::Faint, "{}{:<48}{}", kFieldIndent, structure.name, structure.clause).endLine();
    }

    void element(const qv::TracedElement& element) override {
        page_.add("{:>21}  {:<44}  {:>18}  {:>10}", element.firstBit, qv::textOf(element.element),
                  codedBits(element), element.value);
        const std::string meaning = elementMeaning(codec_, element);
        if (!meaning.empty()) {
            page_.add("  {}", meaning);
        }
        page_.endLine();
    }

private:
    Page& page_;
    QVCodecID codec_;
};

// The text of an encoder's settings fills a screen; JSON has all of it.
std::string shortened(const std::string& text) {
    constexpr size_t kMostText = 240;
    return text.size() <= kMostText
               ? text
               : fmt::format("{}... ({} characters)", text.substr(0, kMostText), text.size());
}

}  // namespace

Listing::Listing(const std::string& path, Level level, PageFormat format)
    : page_(path, format), level_(level) {}

void Listing::fail(const std::string&, const std::string&) {
    page_.flush();  // the message on standard error follows what was listed so far
}

void Listing::begin(const StreamHead& head) {
    head_ = head;
    hasShown_ = false;
    if (!isFirst_) {
        page_.endLine();
    }
    isFirst_ = false;
    page_.add("File     ").add(Style::Heading, "{}", head_.name).endLine();
    if (level_ == Level::Summary) {
        return;
    }
    page_.add("Stream   {}, {}, {}", codecName(head_.info.parameters.codecId), head_.info.format,
              framingName(head_.info.parameters));
    page_.endLine();
    if (level_ >= Level::Nalus) {
        page_.add("Offsets  in the {}", head_.isRaw ? "file" : "access unit").endLine();
    }
    page_.endLine();
    addColumns();
    if (level_ == Level::Fields) {
        for (const SequenceParameterSet& sps : head_.parameterSets) {
            page_.add(Style::Heading, "configuration record").endLine();
            addSps(sps);
        }
    }
    if (showsSei()) {
        addRecordSei();
    }
    if (level_ == Level::Elements) {
        walk_.emplace(head_.info.parameters.codecId);
        addRecordElements(head_.info.configuration);
    }
}

// Offsets begin at the units of the record.
void Listing::addRecordSei() {
    for (const SeiUnit& unit : head_.seiUnits) {
        page_.add(Style::Heading, "configuration record").endLine();
        for (const SeiMessage& message : unit.messages) {
            addMessageLine(message);
            if (level_ == Level::Fields) {
                addBlock(message.block);
                addHex(message.payload.data(), message.payload.size(), message.offset);
            }
        }
        addSeiLog(unit);
    }
}

void Listing::addColumns() {
    const char* const place = head_.isRaw ? "offset" : "time [s]";
    page_.add(Style::Faint, "{:<11}{:>12}  {:>10}", "AU", place, "bytes");
    if (level_ == Level::Samples) {
        page_.add(Style::Faint, "  {}{:<6}  NAL units", head_.isRaw ? "      time [s]  " : "", "");
    }
    page_.endLine();
    if (level_ >= Level::Nalus) {
        page_.add(Style::Faint, "           {:>12}  {:>10}  type", "offset", "length").endLine();
    }
    if (level_ == Level::Elements) {
        page_.add(Style::Faint, "{:>21}  {:<44}  {:>18}  {:>10}  meaning", "bit", "element", "coded",
                  "value");
        page_.endLine();
    }
}

void Listing::add(const AccessUnitView& view) {
    if (level_ == Level::Elements) {
        addRecordElements(view.accessUnit.newConfiguration);
    }
    if (level_ == Level::Summary) {
        return;
    }
    if (!view.isShown) {
        if (level_ == Level::Elements) {
            addUnitElements(view);  // none, but its parameter sets count
        }
        return;
    }
    hasShown_ = true;
    addAccessUnit(view);
    addFindings(view.accessUnit.findings);
    if (level_ == Level::Elements) {
        addUnitElements(view);
    } else if (level_ >= Level::Nalus) {
        for (const UnitView& unit : view.units) {
            addUnit(unit);
        }
    } else {
        addBrokenUnits(view);
    }
    addFindings(view.report.findings);
    if (showsSei() && view.details.seiItems > 0) {
        page_.add("         {} SEI item{}, {} bytes of side data", view.details.seiItems,
                  view.details.seiItems == 1 ? "" : "s", view.details.sideDataSize);
        page_.endLine();
    }
}

void Listing::addAccessUnit(const AccessUnitView& view) {
    const std::optional<uint64_t>& offset = view.accessUnit.fileOffset;
    page_.add(level_ == Level::Samples ? Style::Plain : Style::Heading, "AU {:<8}{:>12}  {:>10}", view.number,
              offset ? fmt::format("{}", *offset) : timeText(view.time), view.accessUnit.size);
    if (level_ == Level::Samples && offset) {
        page_.add("  {:>14}", timeText(view.time));
    }
    const QVCodecID codec = head_.info.parameters.codecId;
    if (view.report.isKey) {
        page_.add("  ").add(Style::Good, "{:<6}", "key");
    } else {
        page_.add("  {:<6}", isNonReference(codec, view.report) ? "nonref" : "");
    }
    if (level_ == Level::Samples) {
        page_.add("  {}", unitTypeList(codec, view.units));
    }
    page_.endLine();
}

// At levels without lines for units, broken units still have one.
void Listing::addBrokenUnits(const AccessUnitView& view) {
    for (const UnitView& unit : view.units) {
        if (!isBroken(unit)) {
            continue;
        }
        const char* const text = unit.report->state != UnitState::Typed
                                     ? errorOf(*unit.report)
                                     : "the library refuses the parameter set";
        addFindings({{Severity::Error, unit.report->offset, text}});
    }
}

void Listing::addUnit(const UnitView& unit) {
    const UnitReport& report = *unit.report;
    page_.add("         {:>14}  {:>10}  ", report.offset, report.length);
    if (report.state == UnitState::Typed) {
        page_.add("{:>4}  {}{}", report.type, nalUnitName(head_.info.parameters.codecId, report.type),
                  report.isNonReference ? ", non-reference" : "");
    } else {
        page_.add("   -  ").add(Style::Bad, "error: {}", errorOf(report));
    }
    page_.endLine();
    if (level_ == Level::Fields && report.length > 0) {
        addUnitFields(unit);
    }
    if (showsSei() && unit.details->sei) {
        addSei(unit);
    }
}

void Listing::addUnitElements(const AccessUnitView& view) {
    walk_->accessUnit(view, [this](const UnitBytes& unit, const UnitView& shown) {
        addUnit(shown);
        addElements(unit.bytes);
    });
}

void Listing::addRecordElements(const std::vector<uint8_t>& record) {
    walk_->record(record, [this](const UnitBytes& unit) {
        page_.add(Style::Heading, "configuration record").endLine();
        const uint32_t type = walk_->sets().typeOf(unit.bytes);
        page_.add("         {:>14}  {:>10}  {:>4}  {}", unit.offset, unit.bytes.size, type,
                  nalUnitName(head_.info.parameters.codecId, type));
        page_.endLine();
        addElements(unit.bytes);
    });
}

void Listing::addElements(qv::Bytes unit) {
    ElementTable table(page_, head_.info.parameters.codecId);
    const qv::UnitTrace trace = walk_->sets().trace(unit, table);
    if (trace.fault) {
        page_.add("{}", kFieldIndent).add(Style::Bad, "error: {}", qv::textOf(trace.fault)).endLine();
    }
    if (trace.trailing.bits > 0) {
        page_.add("{}{} bits before rbsp_trailing_bits() that no element covers", kFieldIndent,
                  trace.trailing.bits);
        page_.endLine();
    }
}

void Listing::addUnitFields(const UnitView& unit) {
    const QVCodecID codec = head_.info.parameters.codecId;
    const UnitReport& report = *unit.report;
    const bool isTyped = report.state == UnitState::Typed;
    if (isTyped) {
        page_.add("{}{}", kFieldIndent, headerText(codec, unit)).endLine();
    }
    if (unit.details->newSps) {
        addSps(*unit.details->newSps);
    } else if (unit.details->isRepeatedSps) {
        page_.add("{}as sent before", kFieldIndent).endLine();
    }
    if (unit.details->sei && !unit.details->sei->messages.empty()) {
        return;  // its messages show their bytes
    }
    if (isTyped && (isParameterSet(codec, report.type) || unit.details->sei)) {
        addHex(unit.data, report.length, report.offset);
    } else {
        page_.add(Style::Faint, "{:>23}  {}", report.offset, firstBytes(unit.data, report.length)).endLine();
    }
}

void Listing::addSps(const SequenceParameterSet& sps) {
    page_.add("{}", kFieldIndent);
    page_.add(sps.isAccepted ? Style::Plain : Style::Bad, "SPS {}",
              sps.isAccepted ? sps.summary : "refused by the library");
    page_.endLine();
    addBlock(describe(sps));
}

void Listing::addSei(const UnitView& unit) {
    for (const SeiMessage* message : unit.messages) {
        addMessage(unit, *message);
    }
    addSeiLog(*unit.details->sei);
}

// Findings are listed with those of the access unit.
void Listing::addSeiLog(const SeiUnit& sei) {
    for (const std::string& line : sei.log) {
        page_.add("{}library: {}", kFieldIndent, line).endLine();
    }
}

void Listing::addMessageLine(const SeiMessage& message) {
    page_.add("         {:>14}  {:>10}      SEI {} {}{}", message.offset, message.payloadSize,
              message.payloadType, seiName(head_.info.parameters.codecId, message.payloadType),
              deliveryText(message.delivery));
    if (level_ == Level::Sei && !message.payload.empty()) {
        page_.add(": ").add(Style::Faint, "{}", firstBytes(message.payload.data(), message.payload.size()));
    }
    page_.endLine();
}

void Listing::addMessage(const UnitView& unit, const SeiMessage& message) {
    addMessageLine(message);
    if (level_ == Level::Fields) {
        addBlock(message.block);
        addHex(unit.data + (message.offset - unit.report->offset), message.codedSize, message.offset);
    }
}

void Listing::addBlock(const Block& block) {
    size_t width = 0;
    for (const Field& field : block.fields) {
        width = std::max(width, field.name.size());
    }
    for (const Field& field : block.fields) {
        page_.add("{}{:<{}}  {}", kFieldIndent, field.name, width, shortened(valueText(field)));
        if (!field.note.empty()) {
            page_.add("  ({})", field.note);
        }
        page_.endLine();
    }
}

// Coded bytes, including emulation prevention bytes.
void Listing::addHex(const unsigned char* bytes, size_t size, uint64_t offset) {
    constexpr size_t kBytesPerLine = 16;
    const size_t shown = std::min(size, kMostHexBytes);
    for (size_t at = 0; at < shown; at += kBytesPerLine) {
        page_.add(Style::Faint, "{:>23}  {}", offset + at,
                  firstBytes(bytes + at, std::min(kBytesPerLine, shown - at)));
        page_.endLine();
    }
    if (shown < size) {
        page_.add(Style::Faint, "{:>23}  {} more bytes", "...", size - shown).endLine();
    }
}

void Listing::addFindings(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        const bool isError = finding.severity == Severity::Error;
        const std::string place = finding.offset ? fmt::format(" at {}", *finding.offset) : std::string();
        page_.add("         ").add(isError ? Style::Bad : Style::Plain, "{}", isError ? "error" : "note");
        page_.add("{}: {}", place, finding.text).endLine();
    }
}

void Listing::end(const StreamEnd& end) {
    if (level_ != Level::Summary) {
        if (!hasShown_) {
            page_.add("nothing matches the filters").endLine();
        }
        addFindings(end.findings);
        page_.endLine();
        page_.add("Summary of ").add(Style::Heading, "{}", head_.name).endLine();
    }
    addSummary(page_, head_, end);
}

void Listing::finish() {
    page_.close();
}

}  // namespace qvinspect
