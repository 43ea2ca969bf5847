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

// Bytes that are worth a copy of their own.
constexpr uint64_t kWorthAPiece = 32;

// Bytes from the byte position on, most at most, that can be taken in one piece: up to an emulation
// prevention byte, or to a 03 close behind another one, where bytes are faster than a search. The first byte
// was come to already: it is data.
uint64_t QVByteStream::rbspPieceLength(uint64_t most) const {
    const uint64_t length = std::min(most, size - bytePos);
    const uint8_t* const first = data + bytePos;
    uint64_t searched = 1;
    while (const void* const next03 =
               std::memchr(first + searched, 0x03, static_cast<size_t>(length - searched))) {
        const auto at = static_cast<uint64_t>(static_cast<const uint8_t*>(next03) - first);
        if (at < searched + kWorthAPiece || (first[at - 1] == 0x00 && data[bytePos + at - 2] == 0x00)) {
            return at;
        }
        searched = at + 1;
    }
    return length;
}

// Takes count bytes one by one, as far as there are any, behind a piece: so two bytes are there to look back
// at, and a zero pair that begins the data (D03) is behind. In locals: a store through out may be one into
// the reader, as far as a compiler knows.
uint8_t* QVByteStream::readRbspBytewise(uint8_t* out, uint64_t count) {
    const uint8_t* const bytes = data;
    const uint64_t end = size;
    uint64_t position = bytePos;
    for (; count > 0 && position < end; --count) {
        const uint8_t left = bytes[position];
        *out++ = left;
        ++position;
        if (left == 0x00 && position < end && bytes[position] == 0x03 && bytes[position - 2] == 0x00) {
            ++position;
        }
    }
    bytePos = position;
    return out;
}

void QVByteStream::readRbspBytes(uint8_t* out, size_t count) {
    constexpr uint64_t kBytesBetweenPieces = 64;
    uint8_t* const end = out + count;
    while (out != end && bytePos < size && isAlignedRbsp()) {
        const uint64_t length = rbspPieceLength(static_cast<uint64_t>(end - out));
        std::memcpy(out, data + bytePos, static_cast<size_t>(length));
        out += length;
        bytePos += length - 1;
        leaveRbspByte();
        // Where 03 bytes stand close together, looking for the next one costs more than the bytes do.
        if (length < kWorthAPiece) {
            out = readRbspBytewise(out, std::min(kBytesBetweenPieces, static_cast<uint64_t>(end - out)));
        }
    }
    while (out != end && bytePos < size) {
        *out++ = static_cast<uint8_t>(readRbspBits(8));
    }
    std::fill(out, end, uint8_t{0});
}

// --- Plain cursor ---

// The plain cursor by itself, for the reads that the window does not hold.
class QVByteStream::PlainCursor {
public:
    PlainCursor(const uint8_t* data, uint64_t size, uint64_t bytePos, uint32_t bitOffset)
        : data_(data), size_(size), bytePos_(bytePos), bitOffset_(bitOffset) {}

    uint32_t readBits(uint32_t n);
    uint32_t readGolombUe();
    int32_t readGolombSe();

    PlainRead result(uint32_t value) const { return {bytePos_, value, static_cast<uint8_t>(bitOffset_)}; }

private:
    uint32_t byteAt(uint64_t position) const { return data_ != nullptr ? data_[position] : 0U; }
    bool atEnd() const { return bytePos_ >= size_; }
    uint64_t window() const;
    void advance(uint64_t bits);
    void advanceBit();
    bool readShortGolombCode(uint32_t& code);
    bool countLeadingZeroBits(uint64_t& leadingZeroBits);
    uint32_t readGolombBits(uint64_t count);

    const uint8_t* data_;
    uint64_t size_;
    uint64_t bytePos_;
    uint32_t bitOffset_;
};

// The bits from the position on, 57 at least, zero bits standing for what lies past the end. The byte
// position must be before the end.
uint64_t QVByteStream::PlainCursor::window() const {
    const uint64_t left = size_ - bytePos_;
    uint64_t value = 0;
    if (left >= 8 && data_ != nullptr) {
        value = bytesAt(data_ + bytePos_);
    } else if (size_ >= 8 && data_ != nullptr) {
        value = bytesAt(data_ + size_ - 8) << 8 * (8 - left);
    } else {
        for (uint64_t i = 0; i < left && i < 8; ++i) {
            value |= static_cast<uint64_t>(byteAt(bytePos_ + i)) << (56 - 8 * i);
        }
    }
    return value << (bitOffset_ & 7U);
}

// Moves bits on, but not past the end.
void QVByteStream::PlainCursor::advance(uint64_t bits) {
    const uint64_t total = (bitOffset_ & 7U) + bits;
    if (total / 8 >= size_ - bytePos_) {
        bytePos_ = size_;
        bitOffset_ = 0;
        return;
    }
    bytePos_ += total / 8;
    bitOffset_ = static_cast<uint32_t>(total % 8);
}

// Moves one bit on whether or not data is left.
void QVByteStream::PlainCursor::advanceBit() {
    if (++bitOffset_ >= 8) {
        bitOffset_ = 0;
        ++bytePos_;
    }
}

uint32_t QVByteStream::PlainCursor::readBits(uint32_t n) {
    if (n > 32 && !atEnd()) {
        advance(n - 32);
        n = 32;
    }
    if (atEnd() || n == 0) {
        return 0;
    }
    const uint64_t bits = window();
    advance(n);
    return static_cast<uint32_t>(bits >> (64 - n));
}

// A code of at most 31 leading zero bits, as every legal one is: its 1 bit and the information bits behind
// it.
bool QVByteStream::PlainCursor::readShortGolombCode(uint32_t& code) {
    constexpr uint32_t kMostLeadingZeroBits = 31;
    const uint64_t bits = atEnd() ? 0 : window();
    if (bits >> (63 - kMostLeadingZeroBits) == 0) {
        return false;
    }
    const auto leadingZeroBits = static_cast<uint32_t>(__builtin_clzll(bits));
    advance(leadingZeroBits);
    code = readBits(leadingZeroBits + 1);
    return true;
}

// D04: Exp-Golomb codes, long or short, are read without a look at emulation prevention bytes.
uint32_t QVByteStream::PlainCursor::readGolombUe() {
    uint32_t code = 0;
    if (readShortGolombCode(code)) {
        return code - 1;
    }
    uint64_t leadingZeroBits = 0;
    return countLeadingZeroBits(leadingZeroBits) ? readGolombBits(leadingZeroBits + 1) - 1 : 0;
}

int32_t QVByteStream::PlainCursor::readGolombSe() {
    uint32_t code = 0;
    uint32_t magnitude = 0;
    if (readShortGolombCode(code)) {
        magnitude = code >> 1;
    } else {
        uint64_t leadingZeroBits = 0;
        if (!countLeadingZeroBits(leadingZeroBits)) {
            return 0;
        }
        magnitude = readGolombBits(leadingZeroBits);
        code = readBits(1);
    }
    const bool isNegative = (code & 1U) != 0;
    return static_cast<int32_t>(isNegative ? 0U - magnitude : magnitude);
}

// leadingZeroBits of 9.1, where readShortGolombCode() found too many or no data. False when there is no 1 bit
// before the end of the data: the value is 0, already consumed as far as it is consumed.
bool QVByteStream::PlainCursor::countLeadingZeroBits(uint64_t& leadingZeroBits) {
    if (atEnd()) {
        advanceBit();
        return false;
    }
    while (!atEnd() && (byteAt(bytePos_) & (0x80U >> (bitOffset_ & 7U))) == 0) {
        advanceBit();
        ++leadingZeroBits;
    }
    return !atEnd();
}

// Reads count bits, bit i landing at (count - 1 - i) modulo 32 (D05: codes of any length).
uint32_t QVByteStream::PlainCursor::readGolombBits(uint64_t count) {
    uint32_t value = 0;
    for (; count > 0 && !atEnd(); --count) {
        value |= readBits(1) << ((count - 1) & 31U);
    }
    return value;
}

QVByteStream::PlainRead QVByteStream::readAnyBits(const uint8_t* data, uint64_t size, uint64_t bytePos,
                                                  uint32_t bitOffset, uint32_t n) noexcept {
    PlainCursor cursor(data, size, bytePos, bitOffset);
    const uint32_t value = cursor.readBits(n);
    return cursor.result(value);
}

QVByteStream::PlainRead QVByteStream::readAnyGolombUe(const uint8_t* data, uint64_t size, uint64_t bytePos,
                                                      uint32_t bitOffset) noexcept {
    PlainCursor cursor(data, size, bytePos, bitOffset);
    const uint32_t value = cursor.readGolombUe();
    return cursor.result(value);
}

QVByteStream::PlainRead QVByteStream::readAnyGolombSe(const uint8_t* data, uint64_t size, uint64_t bytePos,
                                                      uint32_t bitOffset) noexcept {
    PlainCursor cursor(data, size, bytePos, bitOffset);
    const auto value = static_cast<uint32_t>(cursor.readGolombSe());
    return cursor.result(value);
}

void QVByteStream::seekBytes(int64_t n) {
    // (bitOffset + 8 * n) / 8, truncated towards zero.
    const int64_t distance = n < 0 && bitOffset > 0 ? n + 1 : n;
    const uint64_t target = bytePos + static_cast<uint64_t>(distance);
    const bool isWrapped = (target > bytePos) != (distance > 0);
    if (!isWrapped && target <= size) {
        bytePos = target;
    }
}
