/// \file
/// The bit reader.
#ifndef QV_DEMUXER_QVBYTESTREAM_H
#define QV_DEMUXER_QVBYTESTREAM_H

#include <stddef.h>
#include <stdint.h>

#include <cstdlib>

#include "QVNaluExport.h"

/// The bit reader: one payload buffer and two bit cursors over one shared byte position.
///
/// The RBSP cursor (readRbspBits, readRbspBytes) steps over emulation_prevention_three_byte (H.264 7.4.1,
/// H.265 7.4.2.1); the plain cursor (everything else) does not. Their bit counters are never synchronised:
/// the byte position is all they share.
///
/// No operation fails. A read past the end returns zero bits, a skip past the end has no effect, and null
/// data reads as zero bytes. One thread at a time may use a reader.
class QVByteStream {
public:
    /// Makes an empty stream.
    QVByteStream() {}

    /// Makes a stream over a malloc'd copy of some bytes. The stream owns the copy. It is empty when source
    /// is null, sourceSize is 0 or the allocation fails.
    ///
    /// \param source      borrowed for the duration of the call; null is allowed
    /// \param sourceSize  bytes at source
    QV_NALU_API QVByteStream(const uint8_t* source, size_t sourceSize);

    /// Frees data when ownsData is true.
    ~QVByteStream() {
        if (ownsData) {
            std::free(data);
        }
    }

    QVByteStream(const QVByteStream&) = delete;
    QVByteStream& operator=(const QVByteStream&) = delete;

    // --- RBSP cursor ---

    /// u(n) of H.264 7.2 / H.265 7.2 over the RBSP: reads bits, most significant first, and steps over
    /// emulation prevention bytes. When the cursor leaves a byte, it skips a following 0x03 if the byte and
    /// the one before it are zero; not if these two are the first of the buffer.
    ///
    /// \param n  bits; 0 has no effect, more than 32 are consumed for a value of 0
    /// \return the bits; those past the end are 0, and the cursor stops at the end
    QV_NALU_API uint32_t readRbspBits(unsigned long n);

    /// Reads bytes, each as readRbspBits(8).
    ///
    /// \param[out] out  count bytes, owned by the caller
    /// \param count     bytes to read
    QV_NALU_API void readRbspBytes(uint8_t* out, size_t count);

    // --- Plain cursor ---

    /// u(1) of H.264 7.2 / H.265 7.2.
    ///
    /// \return the bit; at the end of the data 0, and nothing moves
    uint32_t readBit() { return readBits(1); }

    /// u(n) of H.264 7.2 / H.265 7.2, most significant bit first.
    ///
    /// \param n  bits; of more than 32 all are consumed and the last 32 returned
    /// \return the bits; those past the end are 0, and the cursor stops at the end
    QV_NALU_API uint32_t readBits(uint32_t n);

    /// ue(v) of H.264 9.1 / H.265 9.2. If no data is left, the bit offset still moves by one, past the end if
    /// necessary. Codes with 32 or more leading zero bits are consumed whole; their value is meaningless,
    /// because shifts are taken modulo 32.
    ///
    /// \return the value; 0 when the data ends before the first 1 bit
    QV_NALU_API uint32_t readGolombUe();

    /// se(v) of H.264 9.1.1 / H.265 9.2.2. The end of the data and long codes are treated as in readGolombUe.
    ///
    /// \return the value; 0 when the data ends before the first 1 bit
    QV_NALU_API int32_t readGolombSe();

    /// Skips bits. Has no effect if the new byte position would be above size.
    ///
    /// \param n  bits
    void skipBits(uint64_t n);

    /// Skips bytes from the byte position and clears the bit offset. Has no effect if bytePos + n (64 bits,
    /// wrapping) is above size or the stream is empty.
    ///
    /// \param n  bytes
    void skipBytes(uint64_t n);

    /// Reads the whole byte at the byte position. The bit offset is neither used nor changed.
    ///
    /// \return the byte; at the end of the data 0, and nothing moves
    uint32_t readByte();

    /// Moves whole bytes and keeps the bit offset: adds (bitOffset + 8 * n) / 8, truncated towards zero, to
    /// the byte position. Has no effect if the target is before the start or past the end, in either
    /// direction.
    ///
    /// \param n  bytes, forward, or backward when negative
    QV_NALU_API void seekBytes(int64_t n);

    /// Returns the number of bytes from the byte position to the end.
    ///
    /// \return size - bytePos, unsigned: wraps when the byte position is past the end
    uint64_t bytesLeft() const { return size - bytePos; }

    /// Reports the end of the data.
    ///
    /// \return true when no byte is left to read
    bool atEnd() const { return bytePos >= size; }

    /// Reports whether there is anything to read from.
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

    /// The bytes to read; null reads as zero bytes.
    uint8_t* data = nullptr;

    /// Valid bytes at data.
    uint64_t size = 0;

    /// Allocated bytes at data; equal to size in every stream that this module builds.
    uint64_t capacity = 0;

    /// The current byte, shared by both cursors.
    uint64_t bytePos = 0;

    /// Plain cursor: bits of the current byte already consumed, 0..7.
    uint8_t bitOffset = 0;

    /// Starts at 1; nothing in this module reads it.
    uint32_t extraFlag = 1;
};

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
    if (atEnd()) {
        return 0;
    }
    const uint64_t position = bytePos++;
    return data != nullptr ? data[position] : 0U;
}

#endif
