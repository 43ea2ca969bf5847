#include "report/ElementLines.h"

#include <nlohmann/json.hpp>

namespace qvinspect {

namespace {

// A string as JSON. The texts are the library's: ASCII without control characters.
std::string quoted(const std::string& text) {
    return nlohmann::json(text).dump();
}

// Writes elements as they are read: a unit may have millions of them.
class ElementArray : public qv::TraceVisitor {
public:
    explicit ElementArray(Output& output) : output_(output) {}

    void element(const qv::TracedElement& element) override {
        output_.print("{}[\"{}\",{},{},{}]", isFirst_ ? "" : ",", qv::textOf(element.element),
                      element.firstBit, element.width, element.value);
        isFirst_ = false;
    }

private:
    Output& output_;
    bool isFirst_ = true;
};

std::string faultText(const qv::Fault& fault) {
    if (!fault) {
        return "null";
    }
    return fmt::format(R"({{"element":{},"bit":{},"text":{}}})", quoted(qv::textOf(fault.element)),
                       fault.firstBit, quoted(qv::textOf(fault)));
}

}  // namespace

ElementLines::ElementLines(const std::string& path, bool severalInputs)
    : output_(path), severalInputs_(severalInputs) {}

void ElementLines::fail(const std::string&, const std::string&) {
    output_.flush();  // the message on standard error comes after the lines so far
    ++fileIndex_;
}

void ElementLines::begin(const StreamHead& head) {
    walk_.emplace(head.info.parameters.codecId);
    addRecord(head.info.configuration);
}

void ElementLines::addRecord(const std::vector<uint8_t>& record) {
    walk_->record(record, [this](const UnitBytes& unit) { addUnit(0, unit); });
}

void ElementLines::add(const AccessUnitView& view) {
    addRecord(view.accessUnit.newConfiguration);
    walk_->accessUnit(view,
                      [&](const UnitBytes& unit, const UnitView& /*shown*/) { addUnit(view.number, unit); });
}

void ElementLines::addUnit(uint64_t accessUnit, const UnitBytes& unit) {
    output_.write("{");
    if (severalInputs_) {
        output_.print("\"file_index\":{},", fileIndex_);
    }
    output_.print(R"("au":{},"unit":{},"offset":{},"length":{},)", accessUnit, unit.number, unit.offset,
                  unit.bytes.size);
    const char* const structure = walk_->sets().structureOf(unit.bytes);
    output_.print(R"("type":{},"structure":{},"elements":[)", walk_->sets().typeOf(unit.bytes),
                  structure != nullptr ? quoted(structure) : "null");
    ElementArray elements(output_);
    const qv::UnitTrace trace = walk_->sets().trace(unit.bytes, elements);
    output_.print("],\"fault\":{}}}\n", faultText(trace.fault));
}

void ElementLines::end(const StreamEnd&) {
    ++fileIndex_;
}

void ElementLines::finish() {
    output_.close();
}

}  // namespace qvinspect
