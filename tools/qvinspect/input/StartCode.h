// Start codes of the byte stream format, ITU-T H.264 (08/2021) and H.265 (08/2021) Annex B.
#ifndef QVINSPECT_STARTCODE_H
#define QVINSPECT_STARTCODE_H

#include <cstddef>
#include <optional>

namespace qvinspect {

// Bytes at the end of searched data that may become a start code and the byte after it.
constexpr size_t kStartCodeLength = 3;

struct StartCode {
    size_t codeAt;  // its first byte, the zero byte of a 4-byte start code included
    size_t unitAt;  // the byte after it, always inside the data
};

// Finds the first 00 00 01 at or after from that is followed by a byte. A zero byte before it belongs to it,
// unless it is before zeroByteFrom and so belongs to an earlier unit. Finds the same start codes as
// QVNaluParser::parserDataToNaluIdx in one buffer, but for data that arrives in pieces and need not begin
// with one.
std::optional<StartCode> findStartCode(const unsigned char* data, size_t size, size_t from,
                                       size_t zeroByteFrom);

}  // namespace qvinspect

#endif
