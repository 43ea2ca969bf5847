// The bit reader. Bit descriptors u(n), ue(v), se(v) as in ITU-T H.264 (08/2021) 7.2 and 9.1.
#include "QVByteStream.h"

#include <cstdlib>

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

uint32_t QVByteStream::readRbspBits(unsigned long n) {
    const bool isSkip = n > 32;
    uint32_t value = 0;
    for (; n > 0 && bytePos < size; --n) {
        const uint32_t bit = rbspBitIndex < 8 ? (byteAt(bytePos) >> rbspBitIndex) & 1U : 0U;
        if (!isSkip) {
            value |= bit << (n - 1);
        }
        if (--rbspBitIndex >= 9) {
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

uint32_t QVByteStream::readBit() {
    if (bytePos >= size) {
        return 0;
    }
    const uint32_t bit = (byteAt(bytePos) & bitMask[(7 - bitOffset) & 7]) != 0 ? 1U : 0U;
    advancePlainBit();
    return bit;
}

uint32_t QVByteStream::readBits(uint32_t n) {
    uint32_t value = 0;
    for (; n > 0 && bytePos < size; --n) {
        const uint32_t bit = readBit();
        value |= n <= 32 ? bit << (n - 1) : 0U;
    }
    return value;
}

// Moves one bit on whether or not data is left.
void QVByteStream::advancePlainBit() {
    if (++bitOffset >= 8) {
        bitOffset = 0;
        ++bytePos;
    }
}

// D04: Exp-Golomb codes are read without a look at emulation prevention bytes.
uint32_t QVByteStream::readGolombUe() {
    uint64_t leadingZeroBits = 0;
    if (countLeadingZeroBits(leadingZeroBits) != GolombPrefix::Counted) {
        return 0;
    }
    const uint32_t codeNumPlus1 = readGolombBits(leadingZeroBits + 1);
    return codeNumPlus1 != 0 ? codeNumPlus1 - 1 : 0;
}

int32_t QVByteStream::readGolombSe() {
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
