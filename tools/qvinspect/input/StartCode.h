// Start codes of the byte stream format, ITU-T H.264 (08/2021) and H.265 (08/2021) Annex B.
#ifndef QVINSPECT_STARTCODE_H
#define QVINSPECT_STARTCODE_H

#include <cstddef>
#include <optional>

namespace qvinspect {

// Bytes at the end of searched data that may yet become a start code with a byte behind it.
constexpr size_t kStartCodeLength = 3;

struct StartCode {
    size_t codeAt;  // its first byte, the zero byte of a 4-byte start code included
    size_t unitAt;  // the byte behind it, always inside the data
};

// Finds the first 00 00 01 at or behind from that has a byte behind it. A zero byte ahead of it belongs to
// it unless that byte lies ahead of zeroByteFrom, being spoken for. The same start codes, one after the
// other, as QVNaluParser::parserDataToNaluIdx finds in one buffer, for data that comes in pieces and need not
// begin with one.
std::optional<StartCode> findStartCode(const unsigned char* data, size_t size, size_t from,
                                       size_t zeroByteFrom);

}  // namespace qvinspect

#endif
