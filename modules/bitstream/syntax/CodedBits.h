/// \file
/// Bits that a record refers to instead of holding them.
#ifndef QV_BITSTREAM_SYNTAX_CODEDBITS_H
#define QV_BITSTREAM_SYNTAX_CODEDBITS_H

#include <cstddef>
#include <cstdint>

#include "bitstream/Bytes.h"

namespace qv {

/// A run of bits of a NAL unit, left in the coded bytes of that unit and borrowed from it. Records keep the
/// parts of a structure in this form that have no practical upper bound, and data of extensions that the
/// standard reserves. A writer copies the bits; a Reader reads them.
struct CodedBits {
    /// The NAL unit from its header up to the byte that holds the last bit, emulation prevention bytes
    /// included.
    Bytes unit;

    /// The byte of the unit that holds the first bit.
    size_t byte = 0;

    /// The bit of that byte that comes first; 0 is the most significant one.
    uint32_t bitOfByte = 0;

    /// The first bit, counted in the unit without emulation prevention bytes.
    uint64_t firstBit = 0;

    /// Bits of the RBSP in the run.
    uint64_t count = 0;

    /// True when there are no bits.
    bool empty() const { return count == 0; }
};

}  // namespace qv

#endif
