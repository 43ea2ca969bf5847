// The table of NAL units of the HTML report, with the bytes and fields of its drawer.
#ifndef QVINSPECT_HTMLUNITS_H
#define QVINSPECT_HTMLUNITS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "analysis/AccessUnitView.h"
#include "report/Output.h"

namespace qvinspect {

struct HtmlLimits {
    size_t mostBins = 2048;
    size_t mostUnits = 2000;                          // rows of the table
    size_t mostFieldBytes = size_t{2} * 1024 * 1024;  // of the text of all fields together
    size_t mostErrors = 500;                          // texts
    size_t mostLanes = 32;                            // SEI payload types
};

class HtmlUnits {
public:
    HtmlUnits(QVCodecID codec, bool isRaw, const HtmlLimits& limits);

    // Adds the units that the filter selects.
    void add(const AccessUnitView& view);

    // total: units of the stream. id: of the section, for the names of elements.
    void write(Output& out, const std::string& id, uint64_t total) const;

private:
    void addRow(const AccessUnitView& view, const UnitView& unit);
    nlohmann::ordered_json describeUnit(const UnitView& unit);
    nlohmann::ordered_json describeFields(const Block& block);
    std::string typeName(const UnitReport& report) const;
    std::string remarks(const AccessUnitView& view, const UnitView& unit) const;
    void writeControls(Output& out, const std::string& id) const;

    QVCodecID codec_;
    bool isRaw_;
    HtmlLimits limits_;
    uint64_t count_ = 0;  // units that were added, kept or not
    size_t kept_ = 0;
    size_t fieldBytes_ = 0;
    bool isTimed_ = false;
    std::string rows_;
    std::map<int64_t, std::string> types_;  // of the rows; -1: none
    nlohmann::ordered_json units_ = nlohmann::ordered_json::array();
};

}  // namespace qvinspect

#endif
