// The bit reader: one payload buffer, two bit cursors over one shared byte position.
//
// The RBSP cursor (readRbspBits) steps over emulation_prevention_three_byte (H.264/H.265 7.4.1.1); the plain
// cursor (everything else) does not. Their bit counters are never brought in line with each other: the byte
// position is all they share.
//
// No operation fails. A read past the end gives zero bits, a skip past the end is not made, and a null data
// reads as zero bytes. A reader is used by one thread at a time.
#ifndef QV_DEMUXER_QVBYTESTREAM_H
#define QV_DEMUXER_QVBYTESTREAM_H

#include <stddef.h>
#include <stdint.h>

#include <cstring>

class QVByteStream {
public:
    // An empty stream.
    QVByteStream() {}

    // A stream over a malloc'd copy of the sourceSize bytes at source, owned by the stream. Empty when source
    // is null, sourceSize is 0 or the allocation fails.
    QVByteStream(const uint8_t* source, size_t sourceSize);

    ~QVByteStream();

    QVByteStream(const QVByteStream&) = delete;
    QVByteStream& operator=(const QVByteStream&) = delete;

    // --- RBSP cursor ---

    // Reads n bits, most significant first, stepping over emulation prevention bytes: when a byte is left,
    // it and the byte before it are zero, the byte before is not the first of the buffer, and 0x03 follows,
    // that 0x03 is passed.
    // n == 0 touches nothing. n > 32 consumes n bits and returns 0. Past the end nothing moves.
    uint32_t readRbspBits(unsigned long n);

    // Reads count bytes, each as readRbspBits(8).
    void readRbspBytes(uint8_t* out, size_t count);

    // --- Plain cursor ---

    // u(1). At the end of the data 0, and nothing moves.
    uint32_t readBit();

    // u(n), most significant bit first. Stops at the end of the data and leaves the missing low bits 0.
    // For n > 32 all n bits are consumed and the last 32 are returned.
    uint32_t readBits(uint32_t n);

    // ue(v) of H.264 9.1 / H.265 9.2. 0 when the data ends before the first 1 bit. At the end of the data on
    // entry the bit offset still moves by one, past the end if need be. Codes with 32 or more leading zero
    // bits are consumed whole; their value is meaningless, shifts being taken modulo 32.
    uint32_t readGolombUe();

    // se(v), as readGolombUe.
    int32_t readGolombSe();

    // Skips n bits if the byte position stays at most size, otherwise moves nothing.
    void skipBits(uint64_t n);

    // Skips n bytes from the byte position and clears the bit offset, if bytePos + n (64 bits, wrapping) is
    // at most size and the stream is not empty; otherwise moves nothing.
    void skipBytes(uint64_t n);

    // Reads the whole byte at the byte position, wherever the bit offset stands, and leaves that as it is.
    // At the end of the data 0, and nothing moves.
    uint32_t readByte();

    // Moves n whole bytes forward, or backward for a negative n, and keeps the bit offset: the byte position
    // changes by (bitOffset + 8 * n) / 8, truncated towards zero. A target before the start or past the end
    // moves nothing.
    void seekBytes(int64_t n);

    // size - bytePos, unsigned: wraps when the byte position has passed the end.
    uint64_t bytesLeft() const { return size - bytePos; }

    // True when no byte is left to read.
    bool atEnd() const { return bytePos >= size; }

    // True when there is a buffer with a byte left to read.
    bool hasData() const { return data != nullptr && !atEnd(); }

    // --- State ---

    // bitMask[b] selects the bit of weight 2^b.
    const uint8_t bitMask[8] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80};

    // RBSP cursor: the next bit of the current byte, 7 the most significant, counting down.
    uint32_t rbspBitIndex = 7;

    // True when data came from malloc and the destructor frees it.
    bool ownsData = true;

    uint8_t* data = nullptr;

    // Valid bytes at data.
    uint64_t size = 0;

    // Allocated bytes at data; equal to size in every stream that this module builds.
    uint64_t capacity = 0;

    // The current byte, shared by both cursors.
    uint64_t bytePos = 0;

    // Plain cursor: bits of the current byte already consumed, 0..7.
    uint8_t bitOffset = 0;

    // Starts at 1; nothing here reads it.
    uint32_t extraFlag = 1;

private:
    uint32_t byteAt(uint64_t position) const { return data != nullptr ? data[position] : 0U; }
    bool isAlignedRbsp() const { return rbspBitIndex == 7 && data != nullptr; }
    void leaveRbspByte();
    uint64_t rbspPieceLength(uint64_t most) const;

    uint64_t window() const;
    uint64_t windowOfShortStream() const;
    void advance(uint64_t bits);
    uint32_t readManyBits(uint32_t n);

    enum class GolombPrefix { Ended, Empty, Counted };
    bool readShortGolombCode(uint32_t& code);
    uint32_t readLongGolombUe();
    int32_t readLongGolombSe();
    GolombPrefix countLeadingZeroBits(uint64_t& leadingZeroBits);
    uint32_t readGolombBits(uint64_t count);
    void advancePlainBit();
};

// --- Inline, because every syntax element passes here ---

// The next 64 bits from the byte position on, zero bits standing for what lies past the end. Reads nothing
// outside the data. The byte position must be before the end.
inline uint64_t QVByteStream::window() const {
    if (size < 8 || data == nullptr) {
        return windowOfShortStream();
    }
    const uint64_t left = size - bytePos;
    const uint8_t* const bytes = left >= 8 ? data + bytePos : data + size - 8;
    uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    value = __builtin_bswap64(value);
#endif
    return left >= 8 ? value : value << (64 - 8 * left);
}

// Moves bits on, but not past the end.
inline void QVByteStream::advance(uint64_t bits) {
    const uint64_t total = (bitOffset & 7U) + bits;
    const uint64_t left = size - bytePos;
    if (total / 8 >= left) {
        bytePos = size;
        bitOffset = 0;
        return;
    }
    bytePos += total / 8;
    bitOffset = static_cast<uint8_t>(total % 8);
}

inline uint32_t QVByteStream::readBit() {
    return readBits(1);
}

inline uint32_t QVByteStream::readBits(uint32_t n) {
    if (bytePos >= size || n == 0) {
        return 0;
    }
    if (n > 32) {
        return readManyBits(n);
    }
    const uint64_t bits = window() << (bitOffset & 7U);
    advance(n);
    return static_cast<uint32_t>(bits >> (64 - n));
}

// A code of at most 31 leading zero bits, as every legal one is: its 1 bit and the information bits behind
// it.
inline bool QVByteStream::readShortGolombCode(uint32_t& code) {
    constexpr int kMostInOneWindow = 28;  // 2 * 28 + 1 bits behind an offset of 7 are in the window
    constexpr int kMostLeadingZeroBits = 31;
    if (bytePos >= size) {
        return false;
    }
    const uint64_t bits = window() << (bitOffset & 7U);
    const int leadingZeroBits = bits != 0 ? __builtin_clzll(bits) : 64;
    if (leadingZeroBits > kMostLeadingZeroBits) {
        return false;
    }
    if (leadingZeroBits > kMostInOneWindow) {
        advance(static_cast<uint64_t>(leadingZeroBits));
        code = readBits(static_cast<uint32_t>(leadingZeroBits + 1));
        return true;
    }
    code = static_cast<uint32_t>(bits >> (63 - 2 * leadingZeroBits));
    advance(static_cast<uint64_t>(2 * leadingZeroBits + 1));
    return true;
}

inline uint32_t QVByteStream::readGolombUe() {
    uint32_t code = 0;
    return readShortGolombCode(code) ? code - 1 : readLongGolombUe();
}

inline int32_t QVByteStream::readGolombSe() {
    uint32_t code = 0;
    if (!readShortGolombCode(code)) {
        return readLongGolombSe();
    }
    const auto magnitude = static_cast<int32_t>(code >> 1);
    return (code & 1U) != 0 ? -magnitude : magnitude;
}

#endif
