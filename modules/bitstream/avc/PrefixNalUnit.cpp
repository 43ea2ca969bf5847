// The prefix NAL unit of H.264, read, traced, written and sized.
#include "bitstream/avc/PrefixNalUnit.h"

#include <cstddef>

#include "bitstream/avc/PrefixNalUnitSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto kUnit = [](auto& s, auto& prefix) { prefix_nal_unit(s, prefix); };

}  // namespace

}  // namespace qv::avc

template <>
constexpr size_t qv::detail::kClearedBytes<qv::avc::PrefixNalUnit> =
    offsetof(qv::avc::PrefixNalUnit, dec_ref_base_pic_marking.operations);

namespace qv::avc {

Read<PrefixNalUnit> readPrefixNalUnit(Bytes unit) noexcept {
    return detail::readUnit<PrefixNalUnit>(unit, kUnit);
}

Read<PrefixNalUnit> tracePrefixNalUnit(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<PrefixNalUnit>(unit, visitor, kUnit);
}

Written writePrefixNalUnit(const PrefixNalUnit& prefix, std::vector<uint8_t>& out) {
    return detail::writeUnit(prefix, out, kUnit);
}

Sized sizeOf(const PrefixNalUnit& prefix) noexcept {
    return detail::sizeUnit(prefix, kUnit);
}

}  // namespace qv::avc
