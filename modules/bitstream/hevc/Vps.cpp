// The video parameter set of H.265, read, traced, written and sized.
#include "bitstream/hevc/Vps.h"

#include <cstddef>

#include "bitstream/hevc/VpsSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::hevc {

namespace {

constexpr auto kUnit = [](auto& s, auto& vps) { video_parameter_set_unit(s, vps); };

}  // namespace

}  // namespace qv::hevc

template <>
constexpr size_t qv::detail::kClearedBytes<qv::hevc::Vps> = offsetof(qv::hevc::Vps,
                                                                     extension.layer_id_in_nuh);

namespace qv::hevc {

Read<Vps> readVps(Bytes unit) noexcept {
    return detail::readUnit<Vps>(unit, kUnit);
}

Read<Vps> traceVps(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<Vps>(unit, visitor, kUnit);
}

Written writeVps(const Vps& vps, std::vector<uint8_t>& out) {
    return detail::writeUnit(vps, out, kUnit);
}

Sized sizeOf(const Vps& vps) noexcept {
    return detail::sizeUnit(vps, kUnit);
}

}  // namespace qv::hevc
