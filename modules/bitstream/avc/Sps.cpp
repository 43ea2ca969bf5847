// The sequence parameter set of H.264, read, traced, written and sized.
#include "bitstream/avc/Sps.h"

#include <cstddef>

#include "bitstream/avc/SpsSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto kUnit = [](auto& s, auto& sps) { seq_parameter_set_unit(s, sps); };

}  // namespace

}  // namespace qv::avc

template <>
constexpr size_t qv::detail::kClearedBytes<qv::avc::Sps> = offsetof(qv::avc::Sps, data.offset_for_ref_frame);

namespace qv::avc {

Read<Sps> readSps(Bytes unit) noexcept {
    return detail::readUnit<Sps>(unit, kUnit);
}

Read<Sps> traceSps(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<Sps>(unit, visitor, kUnit);
}

Written writeSps(const Sps& sps, std::vector<uint8_t>& out) {
    return detail::writeUnit(sps, out, kUnit);
}

Sized sizeOf(const Sps& sps) noexcept {
    return detail::sizeUnit(sps, kUnit);
}

}  // namespace qv::avc
