#include "report/UnitTypeList.h"

#include <fmt/format.h>

#include <string_view>

#include "analysis/NalUnitNames.h"

namespace qvinspect {

namespace {

// ITU-T H.264 (08/2021) Table 7-1 has no names: those that are in use.
std::string avcShortName(uint32_t nal_unit_type) {
    static constexpr const char* kNames[] = {
        nullptr, "slice", "A",      "B",   "C",    "IDR", "SEI",   "SPS",   "PPS", "AUD",      "EOSEQ",
        "EOSTR", "fill",  "SPSEXT", "PFX", "SSPS", "DPS", nullptr, nullptr, "AUX", "SLICEEXT", "SLICE3D"};
    const char* const name = nal_unit_type < std::size(kNames) ? kNames[nal_unit_type] : nullptr;
    return name != nullptr ? name : fmt::format("{}", nal_unit_type);
}

std::string shortName(QVCodecID codec, const UnitReport& unit) {
    if (unit.state != UnitState::Typed) {
        return unit.state == UnitState::Empty ? "empty" : "forbidden";
    }
    if (codec == QVCodecIDAvc) {
        return avcShortName(unit.type);
    }
    constexpr std::string_view kSuffix = "_NUT";
    std::string name = nalUnitName(codec, unit.type);
    if (name.size() > kSuffix.size() && name.compare(name.size() - kSuffix.size(), name.npos, kSuffix) == 0) {
        name.resize(name.size() - kSuffix.size());
    }
    return name;
}

bool isSame(const UnitReport& a, const UnitReport& b) {
    return a.state == b.state && a.type == b.type;
}

}  // namespace

std::string unitTypeList(QVCodecID codec, const std::vector<UnitView>& units) {
    std::string text;
    for (size_t i = 0; i < units.size();) {
        size_t end = i + 1;
        while (end < units.size() && isSame(*units[i].report, *units[end].report)) {
            ++end;
        }
        text += (i == 0 ? "" : " ") + shortName(codec, *units[i].report);
        if (end - i > 1) {
            text += fmt::format(" x{}", end - i);
        }
        i = end;
    }
    return text;
}

}  // namespace qvinspect
