/// \file
/// A run of bytes that belongs to somebody else.
#ifndef QV_BITSTREAM_BYTES_H
#define QV_BITSTREAM_BYTES_H

#include <cstddef>
#include <cstdint>

namespace qv {

/// A borrowed run of bytes: a pointer and a size. The bytes must outlive every use of it. A null pointer is
/// allowed with size 0.
struct Bytes {
    const uint8_t* data = nullptr;  ///< the first byte
    size_t size = 0;                ///< how many there are

    /// No bytes.
    constexpr Bytes() = default;

    /// \p count bytes from \p first on.
    constexpr Bytes(const uint8_t* first, size_t count) : data(first), size(count) {}

    /// True when there are none.
    constexpr bool empty() const { return size == 0; }

    /// The first byte.
    constexpr const uint8_t* begin() const { return data; }

    /// The end: after the last byte.
    constexpr const uint8_t* end() const { return data + size; }

    /// The byte at \p position, which must be less than size.
    constexpr uint8_t operator[](size_t position) const { return data[position]; }

    /// The bytes from \p position on; none when \p position is at or past the end.
    constexpr Bytes from(size_t position) const {
        return position < size ? Bytes(data + position, size - position) : Bytes();
    }

    /// The first \p count bytes, or all of them when there are fewer.
    constexpr Bytes first(size_t count) const { return {data, count < size ? count : size}; }
};

}  // namespace qv

#endif
