// The small NAL units of H.265, read, traced, written and sized.
#include "bitstream/hevc/SmallUnits.h"

#include "bitstream/hevc/SmallUnitsSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::hevc {

namespace {

constexpr auto kDelimiter = [](auto& s, auto& unit) { access_unit_delimiter_unit(s, unit); };
constexpr auto kEndOfSequence = [](auto& s, auto& unit) { end_of_sequence_unit(s, unit); };
constexpr auto kEndOfBitstream = [](auto& s, auto& unit) { end_of_bitstream_unit(s, unit); };
constexpr auto kFillerData = [](auto& s, auto& unit) { filler_data_unit(s, unit); };

}  // namespace

Read<AccessUnitDelimiter> readAccessUnitDelimiter(Bytes unit) noexcept {
    return detail::readUnit<AccessUnitDelimiter>(unit, kDelimiter);
}

Read<EndOfSequence> readEndOfSequence(Bytes unit) noexcept {
    return detail::readUnit<EndOfSequence>(unit, kEndOfSequence);
}

Read<EndOfBitstream> readEndOfBitstream(Bytes unit) noexcept {
    return detail::readUnit<EndOfBitstream>(unit, kEndOfBitstream);
}

Read<FillerData> readFillerData(Bytes unit) noexcept {
    return detail::readUnit<FillerData>(unit, kFillerData);
}

Read<AccessUnitDelimiter> traceAccessUnitDelimiter(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<AccessUnitDelimiter>(unit, visitor, kDelimiter);
}

Read<EndOfSequence> traceEndOfSequence(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<EndOfSequence>(unit, visitor, kEndOfSequence);
}

Read<EndOfBitstream> traceEndOfBitstream(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<EndOfBitstream>(unit, visitor, kEndOfBitstream);
}

Read<FillerData> traceFillerData(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<FillerData>(unit, visitor, kFillerData);
}

Written writeAccessUnitDelimiter(const AccessUnitDelimiter& delimiter, std::vector<uint8_t>& out) {
    return detail::writeUnit(delimiter, out, kDelimiter);
}

Written writeEndOfSequence(const EndOfSequence& end, std::vector<uint8_t>& out) {
    return detail::writeUnit(end, out, kEndOfSequence);
}

Written writeEndOfBitstream(const EndOfBitstream& end, std::vector<uint8_t>& out) {
    return detail::writeUnit(end, out, kEndOfBitstream);
}

Written writeFillerData(const FillerData& filler, std::vector<uint8_t>& out) {
    return detail::writeUnit(filler, out, kFillerData);
}

Sized sizeOf(const AccessUnitDelimiter& delimiter) noexcept {
    return detail::sizeUnit(delimiter, kDelimiter);
}

Sized sizeOf(const EndOfSequence& end) noexcept {
    return detail::sizeUnit(end, kEndOfSequence);
}

Sized sizeOf(const EndOfBitstream& end) noexcept {
    return detail::sizeUnit(end, kEndOfBitstream);
}

Sized sizeOf(const FillerData& filler) noexcept {
    return detail::sizeUnit(filler, kFillerData);
}

}  // namespace qv::hevc
