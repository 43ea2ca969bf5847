/// \file
/// NAL units without their emulation prevention bytes, and back (H.264 7.3.1 and 7.4.1, H.265 7.3.1.1 and
/// 7.4.2).
///
/// A unit is given as coded, from its header on. Its header holds no emulation prevention bytes and stays as
/// it is; how many bytes it has is in NalUnit::headerBytes. Zero bytes at the end of a header count, as they
/// do for the reader and the writer of this library.
#ifndef QV_BITSTREAM_UNITS_RBSP_H
#define QV_BITSTREAM_UNITS_RBSP_H

#include <cstddef>
#include <cstdint>

#include "bitstream/Bytes.h"

namespace qv {

/// Where the first emulation prevention byte of a unit is, at \p from or after it; the size of the unit when
/// there is none.
size_t findEmulationPrevention(Bytes unit, size_t headerBytes, size_t from) noexcept;

/// Bytes of a unit without its emulation prevention bytes: header and RBSP.
size_t unescapedSize(Bytes unit, size_t headerBytes) noexcept;

/// Writes a unit without its emulation prevention bytes: header and RBSP.
///
/// \param out       the caller's; it may be where the unit is, or have no byte in common with it
/// \param capacity  bytes of \p out. The size of the unit is always enough.
/// \return unescapedSize(). When that is more than the capacity, only the first bytes are written.
size_t unescape(Bytes unit, size_t headerBytes, uint8_t* out, size_t capacity) noexcept;

/// The greatest escapedSize() of a unit of \p size bytes, which one of zero bytes has.
constexpr size_t mostEscapedSize(size_t size) {
    return size + size / 2 + size % 2;
}

/// Bytes of a unit, given as header and RBSP, with emulation prevention bytes.
size_t escapedSize(Bytes unit, size_t headerBytes) noexcept;

/// Writes a unit, given as header and RBSP, with emulation prevention bytes: one between two zero bytes and a
/// byte of 0 to 3, and one at the end when the RBSP ends with a zero byte, that is, with cabac_zero_words.
/// unescape() restores a unit whose RBSP ends with whole cabac_zero_words or with none.
///
/// \param out       the caller's; no byte of it may be the unit's
/// \param capacity  bytes of \p out. mostEscapedSize() of the unit's size is always enough.
/// \return escapedSize(). When that is more than the capacity, only the first bytes are written.
size_t escape(Bytes unit, size_t headerBytes, uint8_t* out, size_t capacity) noexcept;

/// Maps positions between a coded unit and the same unit without its emulation prevention bytes, header
/// included in both, in bytes and in bits from 0. Faults and traces count in the latter.
///
/// Nothing is allocated. A map remembers its last place: positions that are asked for in increasing order
/// take time linear in the size of the unit altogether, one that goes back begins again at the header.
class RbspPositions {
public:
    /// \p unit is borrowed.
    RbspPositions(Bytes unit, size_t headerBytes) noexcept;

    /// A map of a unit's bytes from a data byte on whose place is known in both forms. It is not asked for
    /// positions before that byte.
    RbspPositions(Bytes unit, size_t codedByte, size_t unescapedByte) noexcept;

    /// The byte of the coded unit that holds a byte of the unescaped one; the coded size for one past the
    /// end.
    size_t codedByte(size_t unescapedByte) noexcept;

    /// The byte of the unescaped unit that a byte of the coded one is; for an emulation prevention byte the
    /// one after it, for one past the end the unescaped size.
    size_t unescapedByte(size_t codedByte) noexcept;

    /// As codedByte(), in bits.
    uint64_t codedBit(uint64_t unescapedBit) noexcept;

    /// As unescapedByte(), in bits. Each bit of an emulation prevention byte is the first bit of the byte
    /// after it.
    uint64_t unescapedBit(uint64_t codedBit) noexcept;

private:
    void restart() noexcept;
    void pass() noexcept;

    Bytes unit_;
    size_t headerBytes_;
    size_t firstByte_ = 0;
    size_t passedBeforeFirst_ = 0;
    size_t begin_ = 0;   // the byte after the emulation prevention byte that was passed last
    size_t next_ = 0;    // the next emulation prevention byte, or the size of the unit
    size_t passed_ = 0;  // emulation prevention bytes before begin_
};

}  // namespace qv

#endif
