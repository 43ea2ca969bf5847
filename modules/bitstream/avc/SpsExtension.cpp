// The sequence parameter set extension of H.264, read, traced, written and sized.
#include "bitstream/avc/SpsExtension.h"

#include "bitstream/avc/SpsExtensionSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto kUnit = [](auto& s, auto& extension) { seq_parameter_set_extension_unit(s, extension); };

}  // namespace

Read<SpsExtension> readSpsExtension(Bytes unit) noexcept {
    return detail::readUnit<SpsExtension>(unit, kUnit);
}

Read<SpsExtension> traceSpsExtension(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<SpsExtension>(unit, visitor, kUnit);
}

Written writeSpsExtension(const SpsExtension& extension, std::vector<uint8_t>& out) {
    return detail::writeUnit(extension, out, kUnit);
}

Sized sizeOf(const SpsExtension& extension) noexcept {
    return detail::sizeUnit(extension, kUnit);
}

}  // namespace qv::avc
