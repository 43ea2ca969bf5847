// The bit reader. Bit descriptors u(n), ue(v), se(v) as in ITU-T H.264 (08/2021) 7.2 and 9.1.
#include "QVByteStream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "detail/WorkingCopy.h"

QVByteStream::QVByteStream(const uint8_t* source, size_t sourceSize)
    : data(qv_detail::makeWorkingCopy(source, sourceSize).release()) {
    if (data != nullptr) {
        size = sourceSize;
        capacity = sourceSize;
    }
}

QVByteStream::~QVByteStream() {
    if (ownsData) {
        std::free(data);
    }
}

// --- RBSP cursor ---

uint32_t QVByteStream::readRbspBits(unsigned long n) {
    const bool isSkip = n > 32;
    uint32_t value = 0;
    while (n > 0 && bytePos < size) {
        if (rbspBitIndex > 7) {  // a caller's own index: no bit of a byte has it
            --n;
            if (--rbspBitIndex >= 9) {
                leaveRbspByte();
            }
            continue;
        }
        const uint32_t available = rbspBitIndex + 1;
        const uint32_t taken = n < available ? static_cast<uint32_t>(n) : available;
        const uint32_t bits = byteAt(bytePos) >> (available - taken) & ((1U << taken) - 1);
        n -= taken;
        if (!isSkip) {
            value |= bits << n;
        }
        rbspBitIndex -= taken;
        if (taken == available) {
            leaveRbspByte();
        }
    }
    return value;
}

// D03: a zero pair that begins the buffer is not taken for one in front of an emulation prevention byte.
void QVByteStream::leaveRbspByte() {
    rbspBitIndex = 7;
    const uint64_t left = bytePos++;
    if (left >= 2 && left + 1 < size && byteAt(left + 1) == 0x03 && byteAt(left) == 0x00 &&
        byteAt(left - 1) == 0x00) {
        bytePos = left + 2;
    }
}

// Bytes from the byte position on that hold no 03 behind the first one: they can be taken in one piece.
uint64_t QVByteStream::rbspPieceLength(uint64_t most) const {
    const uint64_t length = std::min(most, size - bytePos);
    const auto* const first = data + bytePos;
    const void* const next03 = std::memchr(first + 1, 0x03, static_cast<size_t>(length - 1));
    return next03 != nullptr ? static_cast<uint64_t>(static_cast<const uint8_t*>(next03) - first) : length;
}

void QVByteStream::readRbspBytes(uint8_t* out, size_t count) {
    constexpr uint64_t kWorthAPiece = 32;
    constexpr int kBytesBetweenPieces = 64;
    uint8_t* const end = out + count;
    while (out != end && bytePos < size && isAlignedRbsp()) {
        const uint64_t length = rbspPieceLength(static_cast<uint64_t>(end - out));
        std::memcpy(out, data + bytePos, static_cast<size_t>(length));
        out += length;
        bytePos += length - 1;
        leaveRbspByte();
        // Where 03 bytes stand close together, looking for the next one costs more than the bytes do.
        const int bytewise = length < kWorthAPiece ? kBytesBetweenPieces : 0;
        for (int i = 0; i < bytewise && out != end && bytePos < size; ++i) {
            *out++ = data[bytePos];
            leaveRbspByte();
        }
    }
    while (out != end && bytePos < size) {
        *out++ = static_cast<uint8_t>(readRbspBits(8));
    }
    std::fill(out, end, uint8_t{0});
}

// --- Plain cursor ---

uint64_t QVByteStream::windowOfShortStream() const {
    uint64_t value = 0;
    for (uint64_t i = 0; i < 8; ++i) {
        value = value << 8 | (bytePos + i < size ? byteAt(bytePos + i) : 0U);
    }
    return value;
}

uint32_t QVByteStream::readManyBits(uint32_t n) {
    advance(n - 32);
    return readBits(32);
}

// Moves one bit on whether or not data is left.
void QVByteStream::advancePlainBit() {
    if (++bitOffset >= 8) {
        bitOffset = 0;
        ++bytePos;
    }
}

// D04: Exp-Golomb codes, long or short, are read without a look at emulation prevention bytes.
uint32_t QVByteStream::readLongGolombUe() {
    uint64_t leadingZeroBits = 0;
    if (countLeadingZeroBits(leadingZeroBits) != GolombPrefix::Counted) {
        return 0;
    }
    const uint32_t codeNumPlus1 = readGolombBits(leadingZeroBits + 1);
    return codeNumPlus1 != 0 ? codeNumPlus1 - 1 : 0;
}

int32_t QVByteStream::readLongGolombSe() {
    uint64_t leadingZeroBits = 0;
    if (countLeadingZeroBits(leadingZeroBits) != GolombPrefix::Counted) {
        return 0;
    }
    const uint32_t magnitude = readGolombBits(leadingZeroBits);
    const bool isNegative = readBit() != 0;
    return static_cast<int32_t>(isNegative ? 0U - magnitude : magnitude);
}

// leadingZeroBits of 9.1. Anything but Counted is the value 0, already consumed as far as it is consumed:
// Ended, no 1 bit before the end of the data; Empty, the code is the single bit 1.
QVByteStream::GolombPrefix QVByteStream::countLeadingZeroBits(uint64_t& leadingZeroBits) {
    if (bytePos >= size) {
        advancePlainBit();
        return GolombPrefix::Ended;
    }
    while (bytePos < size && (byteAt(bytePos) & bitMask[(7 - bitOffset) & 7]) == 0) {
        advancePlainBit();
        ++leadingZeroBits;
    }
    if (leadingZeroBits == 0) {
        advancePlainBit();
        return GolombPrefix::Empty;
    }
    return bytePos < size ? GolombPrefix::Counted : GolombPrefix::Ended;
}

// Reads count bits, bit i landing at (count - 1 - i) modulo 32 (D05: codes of any length).
uint32_t QVByteStream::readGolombBits(uint64_t count) {
    uint32_t value = 0;
    for (; count > 0 && bytePos < size; --count) {
        value |= readBit() << ((count - 1) & 31U);
    }
    return value;
}

void QVByteStream::skipBits(uint64_t n) {
    const uint64_t bits = bitOffset + n % 8;
    const uint64_t bytes = n / 8 + bits / 8;
    if (bytePos > size || bytes > size - bytePos) {
        return;
    }
    bytePos += bytes;
    bitOffset = static_cast<uint8_t>(bits % 8);
}

void QVByteStream::skipBytes(uint64_t n) {
    if (size == 0 || bytePos + n > size) {
        return;
    }
    bytePos += n;
    bitOffset = 0;
}

uint32_t QVByteStream::readByte() {
    return bytePos < size ? byteAt(bytePos++) : 0U;
}

void QVByteStream::seekBytes(int64_t n) {
    // Whole bytes and the truncation of what the bit offset adds to a negative distance.
    const int64_t distance = n < 0 && bitOffset > 0 ? n + 1 : n;
    if (distance < 0 ? 0U - static_cast<uint64_t>(distance) > bytePos
                     : bytePos > size || static_cast<uint64_t>(distance) > size - bytePos) {
        return;
    }
    bytePos += static_cast<uint64_t>(distance);
}
