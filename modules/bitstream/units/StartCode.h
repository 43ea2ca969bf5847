/// \file
/// Start codes in data that arrives in pieces (H.264 B.1.1, H.265 B.2.1). NalUnits walks over data that is
/// there as a whole.
#ifndef QV_BITSTREAM_UNITS_STARTCODE_H
#define QV_BITSTREAM_UNITS_STARTCODE_H

#include <cstddef>
#include <optional>

#include "bitstream/Bytes.h"

namespace qv {

/// Bytes of start_code_prefix_one_3bytes. As many bytes at the end of a piece may become a start code with
/// the byte after it.
constexpr size_t kStartCodePrefixSize = 3;

/// A start code and the byte after it.
struct StartCode {
    size_t offset;      ///< of its first byte, zero_byte included
    size_t unitOffset;  ///< of the byte after it, which is in the data
};

/// Finds the first start_code_prefix_one_3bytes at \p from or after it that a byte follows. No value when
/// there is none; \p from may be past the end.
///
/// \param zeroByteFrom  the first byte that may be the zero_byte before the prefix: bytes before it belong to
///                      an earlier unit
std::optional<StartCode> findStartCode(Bytes data, size_t from, size_t zeroByteFrom) noexcept;

}  // namespace qv

#endif
