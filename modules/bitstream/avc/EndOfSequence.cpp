// The end of sequence and the end of stream of H.264, read, traced, written and sized.
#include "bitstream/avc/EndOfSequence.h"

#include "bitstream/avc/EndOfSequenceSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto kSequenceUnit = [](auto& s, auto& end) { end_of_seq_unit(s, end); };
constexpr auto kStreamUnit = [](auto& s, auto& end) { end_of_stream_unit(s, end); };

}  // namespace

Read<EndOfSequence> readEndOfSequence(Bytes unit) noexcept {
    return detail::readUnit<EndOfSequence>(unit, kSequenceUnit);
}

Read<EndOfSequence> traceEndOfSequence(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<EndOfSequence>(unit, visitor, kSequenceUnit);
}

Written writeEndOfSequence(const EndOfSequence& end, std::vector<uint8_t>& out) {
    return detail::writeUnit(end, out, kSequenceUnit);
}

Sized sizeOf(const EndOfSequence& end) noexcept {
    return detail::sizeUnit(end, kSequenceUnit);
}

Read<EndOfStream> readEndOfStream(Bytes unit) noexcept {
    return detail::readUnit<EndOfStream>(unit, kStreamUnit);
}

Read<EndOfStream> traceEndOfStream(Bytes unit, TraceVisitor& visitor) {
    return detail::traceUnit<EndOfStream>(unit, visitor, kStreamUnit);
}

Written writeEndOfStream(const EndOfStream& end, std::vector<uint8_t>& out) {
    return detail::writeUnit(end, out, kStreamUnit);
}

Sized sizeOf(const EndOfStream& end) noexcept {
    return detail::sizeUnit(end, kStreamUnit);
}

}  // namespace qv::avc
