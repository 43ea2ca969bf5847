// The filler data of H.264, read, traced, written and sized.
#include "bitstream/avc/FillerData.h"

#include "bitstream/avc/FillerDataSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto kUnit = [](auto& s, auto& filler) { filler_data_unit(s, filler); };

}  // namespace

Read<FillerData> readFillerData(Bytes unit) noexcept {
    return detail::readUnit<FillerData>(unit, kUnit);
}

Read<FillerData> traceFillerData(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<FillerData>(unit, visitor, kUnit);
}

Written writeFillerData(const FillerData& filler, std::vector<uint8_t>& out) {
    return detail::writeUnit(filler, out, kUnit);
}

Sized sizeOf(const FillerData& filler) noexcept {
    return detail::sizeUnit(filler, kUnit);
}

}  // namespace qv::avc
