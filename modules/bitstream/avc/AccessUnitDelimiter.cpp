// The access unit delimiter of H.264, read, traced, written and sized.
#include "bitstream/avc/AccessUnitDelimiter.h"

#include "bitstream/avc/AccessUnitDelimiterSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto kUnit = [](auto& s, auto& delimiter) { access_unit_delimiter_unit(s, delimiter); };

}  // namespace

Read<AccessUnitDelimiter> readAccessUnitDelimiter(Bytes unit) noexcept {
    return detail::readUnit<AccessUnitDelimiter>(unit, kUnit);
}

Read<AccessUnitDelimiter> traceAccessUnitDelimiter(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<AccessUnitDelimiter>(unit, visitor, kUnit);
}

Written writeAccessUnitDelimiter(const AccessUnitDelimiter& delimiter, std::vector<uint8_t>& out) {
    return detail::writeUnit(delimiter, out, kUnit);
}

Sized sizeOf(const AccessUnitDelimiter& delimiter) noexcept {
    return detail::sizeUnit(delimiter, kUnit);
}

}  // namespace qv::avc
