// The Dolby Vision decoder configuration record.
#include "bitstream/units/DolbyVisionConfiguration.h"

#include "bitstream/syntax/Uses.h"
#include "bitstream/units/DolbyVisionConfigurationSyntax.h"

namespace qv {

namespace {

constexpr auto kTable = [](auto& s, auto& record) { dolby_vision_configuration(s, record); };

// The first profile whose name has the compatibility of the base layer.
constexpr uint32_t kFirstWithCompatibility = 8;

}  // namespace

Read<DolbyVisionConfiguration> readDolbyVisionConfiguration(Bytes bytes) noexcept {
    return detail::readUnit<DolbyVisionConfiguration>(bytes, kTable);
}

Read<DolbyVisionConfiguration> traceDolbyVisionConfiguration(Bytes bytes, TraceVisitor& visitor) {
    return detail::traceUnit<DolbyVisionConfiguration>(bytes, visitor, kTable);
}

Written writeDolbyVisionConfiguration(const DolbyVisionConfiguration& record, std::vector<uint8_t>& out) {
    return detail::writeUnit(record, out, kTable);
}

Sized sizeOf(const DolbyVisionConfiguration& record) noexcept {
    return detail::sizeUnit(record, kTable);
}

std::string profileNameOf(const DolbyVisionConfiguration& record) {
    std::string name = std::to_string(record.dv_profile);
    if (record.dv_profile >= kFirstWithCompatibility) {
        name += '.' + std::to_string(record.dv_bl_signal_compatibility_id);
    }
    return name;
}

}  // namespace qv
