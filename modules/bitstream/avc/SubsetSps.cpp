// The subset sequence parameter set of H.264, read, traced, written and sized.
#include "bitstream/avc/SubsetSps.h"

#include <cstddef>

#include "bitstream/avc/SubsetSpsSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto kUnit = [](auto& s, auto& sps) { subset_seq_parameter_set_unit(s, sps); };

}  // namespace

}  // namespace qv::avc

template <>
constexpr size_t qv::detail::kClearedBytes<qv::avc::SubsetSps> = offsetof(qv::avc::SubsetSps,
                                                                          data.offset_for_ref_frame);

namespace qv::avc {

Read<SubsetSps> readSubsetSps(Bytes unit) noexcept {
    return detail::readUnit<SubsetSps>(unit, kUnit);
}

Read<SubsetSps> traceSubsetSps(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<SubsetSps>(unit, visitor, kUnit);
}

Written writeSubsetSps(const SubsetSps& sps, std::vector<uint8_t>& out) {
    return detail::writeUnit(sps, out, kUnit);
}

Sized sizeOf(const SubsetSps& sps) noexcept {
    return detail::sizeUnit(sps, kUnit);
}

}  // namespace qv::avc
