/// \file
/// The bit reader.
#ifndef QV_DEMUXER_QVBYTESTREAM_H
#define QV_DEMUXER_QVBYTESTREAM_H

#include <stddef.h>
#include <stdint.h>

#include <cstdlib>
#include <cstring>

#include "QVNaluExport.h"

/// The bit reader: one payload buffer, two bit cursors over one shared byte position.
///
/// The RBSP cursor (readRbspBits) steps over emulation_prevention_three_byte (H.264 7.4.1, H.265 7.4.2); the
/// plain cursor (everything else) does not. Their bit counters are never brought in line with each other: the
/// byte position is all they share.
///
/// No operation fails. A read past the end gives zero bits, a skip past the end is not made, and a null data
/// reads as zero bytes. A reader is used by one thread at a time.
class QVByteStream {
public:
    /// An empty stream.
    QVByteStream() {}

    /// A stream over a malloc'd copy of some bytes, owned by the stream. Empty when source is null,
    /// sourceSize is 0 or the allocation fails.
    ///
    /// \param source      borrowed for the duration of the call; null is allowed
    /// \param sourceSize  bytes at source
    QV_NALU_API QVByteStream(const uint8_t* source, size_t sourceSize);

    /// Frees data when ownsData.
    ~QVByteStream() {
        if (ownsData) {
            std::free(data);
        }
    }

    QVByteStream(const QVByteStream&) = delete;
    QVByteStream& operator=(const QVByteStream&) = delete;

    // --- RBSP cursor ---

    /// u(n) of H.264 7.2 / H.265 7.2 over the RBSP: reads bits, most significant first, stepping over
    /// emulation prevention bytes: when a byte is left, it and the byte before it are zero, the byte before
    /// is not the first of the buffer, and 0x03 follows, that 0x03 is passed.
    ///
    /// \param n  bits; 0 touches nothing, more than 32 are consumed for a value of 0
    /// \return the bits; those past the end are 0, and nothing moves there
    QV_NALU_API uint32_t readRbspBits(unsigned long n);

    /// Reads bytes, each as readRbspBits(8).
    ///
    /// \param[out] out  count bytes, the caller's
    /// \param count     bytes to read
    QV_NALU_API void readRbspBytes(uint8_t* out, size_t count);

    // --- Plain cursor ---

    /// u(1) of H.264 7.2 / H.265 7.2.
    ///
    /// \return the bit; at the end of the data 0, and nothing moves
    uint32_t readBit();

    /// u(n) of H.264 7.2 / H.265 7.2, most significant bit first.
    ///
    /// \param n  bits; of more than 32 all are consumed and the last 32 returned
    /// \return the bits; those past the end are 0, and the cursor stops there
    uint32_t readBits(uint32_t n);

    /// ue(v) of H.264 9.1 / H.265 9.2. At the end of the data on entry the bit offset still moves by one,
    /// past the end if need be. Codes with 32 or more leading zero bits are consumed whole; their value is
    /// meaningless, shifts being taken modulo 32.
    ///
    /// \return the value; 0 when the data ends before the first 1 bit
    uint32_t readGolombUe();

    /// se(v) of H.264 9.1.1 / H.265 9.2.2, as readGolombUe.
    ///
    /// \return the value; 0 when the data ends before the first 1 bit
    int32_t readGolombSe();

    /// Skips bits if the byte position stays at most size, otherwise moves nothing.
    ///
    /// \param n  bits
    void skipBits(uint64_t n);

    /// Skips bytes from the byte position and clears the bit offset, if bytePos + n (64 bits, wrapping) is
    /// at most size and the stream is not empty; otherwise moves nothing.
    ///
    /// \param n  bytes
    void skipBytes(uint64_t n);

    /// Reads the whole byte at the byte position, wherever the bit offset stands, and leaves that as it is.
    ///
    /// \return the byte; at the end of the data 0, and nothing moves
    uint32_t readByte();

    /// Moves whole bytes and keeps the bit offset: adds (bitOffset + 8 * n) / 8, truncated towards zero, to
    /// the byte position. Has no effect if the target is before the start or past the end, in either
    /// direction.
    ///
    /// \param n  bytes, forward, or backward when negative
    QV_NALU_API void seekBytes(int64_t n);

    /// Tells how many bytes stand behind the byte position.
    ///
    /// \return size - bytePos, unsigned: wraps when the byte position has passed the end
    uint64_t bytesLeft() const { return size - bytePos; }

    /// Tells the end of the data.
    ///
    /// \return true when no byte is left to read
    bool atEnd() const { return bytePos >= size; }

    /// Tells whether there is something to read from.
    ///
    /// \return true when there is a buffer with a byte left to read
    bool hasData() const { return data != nullptr && !atEnd(); }

    // --- State ---

    /// bitMask[b] selects the bit of weight 2^b.
    const uint8_t bitMask[8] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80};

    /// RBSP cursor: the next bit of the current byte, 7 the most significant, counting down.
    uint32_t rbspBitIndex = 7;

    /// True when data came from malloc and the destructor frees it.
    bool ownsData = true;

    /// The bytes read from; null reads as zero bytes.
    uint8_t* data = nullptr;

    /// Valid bytes at data.
    uint64_t size = 0;

    /// Allocated bytes at data; equal to size in every stream that this module builds.
    uint64_t capacity = 0;

    /// The current byte, shared by both cursors.
    uint64_t bytePos = 0;

    /// Plain cursor: bits of the current byte already consumed, 0..7.
    uint8_t bitOffset = 0;

    /// Starts at 1; nothing here reads it.
    uint32_t extraFlag = 1;

private:
    // What a read of the plain cursor comes to. Passed in registers: no address of a reader is taken where
    // its plain cursor runs, so that a loop may keep all of it in registers.
    struct PlainRead {
        uint64_t bytePos;
        uint32_t value;
        uint8_t bitOffset;
    };
    class PlainCursor;

    uint32_t byteAt(uint64_t position) const { return data != nullptr ? data[position] : 0U; }
    bool isAlignedRbsp() const { return rbspBitIndex == 7 && data != nullptr; }
    void leaveRbspByte();
    uint64_t rbspPieceLength(uint64_t most) const;
    uint8_t* readRbspBytewise(uint8_t* out, uint64_t count);

    bool hasBytes(uint64_t count) const;
    static uint64_t bytesAt(const uint8_t* bytes) noexcept;
    uint64_t window() const noexcept { return bytesAt(data + bytePos); }
    PlainRead readTo(uint32_t bits, uint32_t value) const;
    uint32_t finish(const PlainRead& read);
    bool findGolombCode(uint32_t& firstOne) const;
    PlainRead readGolombCode(uint32_t firstOne) const;

    // Any read at any place, also near the end of the data and behind it.
    [[gnu::pure]] QV_NALU_API static PlainRead readAnyBits(const uint8_t* data, uint64_t size,
                                                           uint64_t bytePos, uint32_t bitOffset,
                                                           uint32_t n) noexcept;
    [[gnu::pure]] QV_NALU_API static PlainRead readAnyGolombUe(const uint8_t* data, uint64_t size,
                                                               uint64_t bytePos, uint32_t bitOffset) noexcept;
    [[gnu::pure]] QV_NALU_API static PlainRead readAnyGolombSe(const uint8_t* data, uint64_t size,
                                                               uint64_t bytePos, uint32_t bitOffset) noexcept;
};

// --- Inline, because every syntax element passes here ---
//
// Each read stores the cursor in one place, whichever way it went: so compilers keep it in registers from one
// read to the next.

// True when count bytes stand between the byte position and the end of the data.
inline bool QVByteStream::hasBytes(uint64_t count) const {
    return size >= count && bytePos <= size - count && data != nullptr;
}

// Eight bytes as a number, the first one on top.
inline uint64_t QVByteStream::bytesAt(const uint8_t* bytes) noexcept {
    uint64_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    value = __builtin_bswap64(value);
#endif
    return value;
}

// value, and a plain cursor bits behind the beginning of the window.
inline QVByteStream::PlainRead QVByteStream::readTo(uint32_t bits, uint32_t value) const {
    return {bytePos + bits / 8, value, static_cast<uint8_t>(bits % 8)};
}

inline uint32_t QVByteStream::finish(const PlainRead& read) {
    bytePos = read.bytePos;
    bitOffset = read.bitOffset;
    return read.value;
}

inline uint32_t QVByteStream::readBit() {
    return readBits(1);
}

inline uint32_t QVByteStream::readBits(uint32_t n) {
    const uint32_t offset = bitOffset & 7U;
    return finish(hasBytes(8) && n - 1 < 32
                      ? readTo(offset + n, static_cast<uint32_t>(window() << offset >> (64 - n)))
                      : readAnyBits(data, size, bytePos, bitOffset, n));
}

// Finds the 1 bit of a code of at most 31 leading zero bits, as every legal one is: firstOne counts from the
// window's last bit. Such a code, 63 bits, may end in the ninth byte.
inline bool QVByteStream::findGolombCode(uint32_t& firstOne) const {
    constexpr uint32_t kMostLeadingZeroBits = 31;
    if (!hasBytes(9)) {
        return false;
    }
    const uint64_t bits = window();
    const uint32_t offset = bitOffset & 7U;
    if (bits << offset >> (63 - kMostLeadingZeroBits) == 0) {
        return false;
    }
    firstOne = 63U ^ static_cast<uint32_t>(__builtin_clzll(bits & UINT64_MAX >> offset));
    return true;
}

// The code whose 1 bit was found, 1 bit and information bits.
inline QVByteStream::PlainRead QVByteStream::readGolombCode(uint32_t firstOne) const {
    const uint32_t offset = bitOffset & 7U;
    const uint32_t end = 127 - offset - 2 * firstOne;  // as many information bits as leading zero bits
    const uint64_t ninth = data[bytePos + 8];
    const uint64_t bits = window() << offset | ninth >> (8 - offset);
    return readTo(end, static_cast<uint32_t>(bits >> (64 + offset - end)));
}

inline uint32_t QVByteStream::readGolombUe() {
    uint32_t firstOne = 0;
    PlainRead read;  // NOLINT(cppcoreguidelines-pro-type-member-init): either way of reading sets it
    if (findGolombCode(firstOne)) {
        read = readGolombCode(firstOne);
        --read.value;
    } else {
        read = readAnyGolombUe(data, size, bytePos, bitOffset);
    }
    return finish(read);
}

inline int32_t QVByteStream::readGolombSe() {
    uint32_t firstOne = 0;
    PlainRead read;  // NOLINT(cppcoreguidelines-pro-type-member-init): either way of reading sets it
    if (findGolombCode(firstOne)) {
        read = readGolombCode(firstOne);
        const uint32_t magnitude = read.value >> 1;
        read.value = (read.value & 1U) != 0 ? 0U - magnitude : magnitude;
    } else {
        read = readAnyGolombSe(data, size, bytePos, bitOffset);
    }
    return static_cast<int32_t>(finish(read));
}

inline void QVByteStream::skipBits(uint64_t n) {
    const uint64_t bits = bitOffset + n % 8;
    const uint64_t bytes = n / 8 + bits / 8;
    if (bytePos > size || bytes > size - bytePos) {
        return;
    }
    bytePos += bytes;
    bitOffset = static_cast<uint8_t>(bits % 8);
}

inline void QVByteStream::skipBytes(uint64_t n) {
    if (size == 0 || bytePos + n > size) {
        return;
    }
    bytePos += n;
    bitOffset = 0;
}

inline uint32_t QVByteStream::readByte() {
    return bytePos < size ? byteAt(bytePos++) : 0U;
}

#endif
