// The picture parameter set of H.265, read, traced, written and sized.
#include "bitstream/hevc/Pps.h"

#include <cstddef>
#include <cstring>

#include "bitstream/hevc/PpsSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::hevc {

namespace {

constexpr auto kUnit = [](auto& s, auto& pps) { pic_parameter_set_unit(s, pps); };

}  // namespace

}  // namespace qv::hevc

template <>
constexpr size_t qv::detail::kClearedBytes<qv::hevc::Pps> = offsetof(qv::hevc::Pps, column_width_minus1);

namespace qv::hevc {

Read<Pps> readPps(Bytes unit) noexcept {
    return detail::readUnit<Pps>(unit, kUnit);
}

Read<Pps> tracePps(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<Pps>(unit, visitor, kUnit);
}

Written writePps(const Pps& pps, std::vector<uint8_t>& out) {
    return detail::writeUnit(pps, out, kUnit);
}

Sized sizeOf(const Pps& pps) noexcept {
    return detail::sizeUnit(pps, kUnit);
}

bool colourMappingOf(const Pps& pps, ColourMapping& mapping) noexcept {
    mapping = {};
    const PpsMultilayerExtension& ext = pps.multilayer;
    const ColourMappingTable& table = ext.colour_mapping_table;
    if (!pps.pps_multilayer_extension_flag || !ext.colour_mapping_enabled_flag) {
        return false;
    }
    Reader reader(table.colour_mapping_octants);
    colour_mapping_cube(reader, table, mapping);
    return !reader.failed();
}

bool depthLookupTableOf(const Pps& pps, uint32_t i, DepthLookupTable& table) noexcept {
    table = {};
    const Pps3dExtension& ext = pps.three_d;
    if (!pps.pps_3d_extension_flag || !ext.dlts_present_flag || i > ext.pps_depth_layers_minus1) {
        return false;
    }
    Reader reader(ext.dlts);
    for (uint32_t before = 0; before <= i; ++before) {
        table = {};
        depth_lookup_table(reader, before, ext.pps_bit_depth_for_depth_layers_minus8 + 8, table);
    }
    return !reader.failed();
}

}  // namespace qv::hevc
