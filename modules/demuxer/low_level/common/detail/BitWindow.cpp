// The bits that a window holds at a reader's cursor, and the reads that work without a window.
#include "detail/BitWindow.h"

#include <algorithm>

namespace qv_detail {

namespace {

constexpr uint64_t kWindowBytes = 8;

// Bytes at the byte position, 8 at most.
uint64_t bytesInWindow(const QVByteStream& stream) {
    return stream.hasData() ? std::min(kWindowBytes, stream.bytesLeft()) : 0;
}

// The count bytes at the byte position, 1 to 8, in the most significant bytes of the result. Where there is
// room for it, fewer than 8 are part of a load of 8 bytes that ends with them.
uint64_t bytesOnTop(const QVByteStream& stream, uint64_t count) {
    const uint8_t* const bytes = stream.data + stream.bytePos;
    if (count == kWindowBytes) {
        return readBigEndian64(bytes);
    }
    if (stream.bytePos + count >= kWindowBytes) {
        return readBigEndian64(bytes + count - kWindowBytes) << 8 * (kWindowBytes - count);
    }
    uint64_t value = 0;
    for (uint64_t i = 0; i < count; ++i) {
        value |= uint64_t{bytes[i]} << (56 - 8 * i);
    }
    return value;
}

// The window of the bytes at the byte position after their first bitsUsed bits.
WindowBits windowOf(const QVByteStream& stream, uint64_t bytes, uint32_t bitsUsed) {
    const uint32_t count = static_cast<uint32_t>(8 * bytes) - bitsUsed;
    return {bytesOnTop(stream, bytes) << bitsUsed, count, count};
}

// --- The plain cursor ---

// Bits that a window has at any bit offset.
constexpr uint32_t kSureBits = 57;

// The next bits, kSureBits or more, zero bits after the end and in place of a null buffer.
uint64_t nextBits(const QVByteStream& stream) {
    const uint64_t bytes = bytesInWindow(stream);
    return bytes > 0 ? windowOf(stream, bytes, stream.bitOffset & 7U).bits : 0;
}

// Moves n bits, but not past the end.
void advance(QVByteStream& stream, uint64_t n) {
    const uint64_t total = (stream.bitOffset & 7U) + n;
    if (total / 8 >= stream.bytesLeft()) {
        stream.bytePos = stream.size;
        stream.bitOffset = 0;
        return;
    }
    stream.bytePos += total / 8;
    stream.bitOffset = static_cast<uint8_t>(total % 8);
}

// Moves one bit, also past the end.
void advanceBit(QVByteStream& stream) {
    if (stream.bitOffset < 7) {
        ++stream.bitOffset;
        return;
    }
    stream.bitOffset = 0;
    ++stream.bytePos;
}

// Moves to the next 1 bit or to the end. Returns the number of zero bits before it.
uint64_t skipZeroBits(QVByteStream& stream) {
    uint64_t count = 0;
    uint64_t bits = 0;
    while (bits == 0 && !stream.atEnd()) {
        bits = nextBits(stream);
        const uint32_t zeroBits = bits != 0 ? leadingZeroBits(bits) : kSureBits;
        advance(stream, zeroBits);
        count += zeroBits;
    }
    return count;
}

// The bits of the Exp-Golomb code at the cursor, those after the end 0; the code of the value 0 where there
// is no 1 bit. At the end of the data the bit offset moves all the same. D04: emulation prevention bytes are
// data. D05: of a code of 32 or more leading zero bits, all but the last bit are placed modulo 32.
uint64_t readCode(QVByteStream& stream) {
    constexpr uint64_t kCodeOfZero = 1;
    if (stream.atEnd()) {
        advanceBit(stream);
        return kCodeOfZero;
    }
    const uint64_t zeroBits = skipZeroBits(stream);
    if (stream.atEnd()) {
        return kCodeOfZero;
    }
    if (zeroBits < 32) {
        return PlainSide::u(stream, static_cast<uint32_t>(zeroBits) + 1);
    }
    uint32_t magnitude = 0;
    for (uint64_t n = zeroBits; n > 0 && !stream.atEnd(); --n) {
        magnitude |= PlainSide::u(stream, 1) << ((n - 1) & 31U);
    }
    return uint64_t{magnitude} << 1 | PlainSide::u(stream, 1);
}

// --- The RBSP cursor ---

bool holds03(uint64_t bytes) {
    const uint64_t difference = bytes ^ 0x0303030303030303;
    return ((difference - 0x0101010101010101) & ~difference & 0x8080808080808080) != 0;
}

// Of count bytes at the byte position those before an emulation prevention byte. The first byte was reached
// already: it is data.
uint64_t bytesInOnePiece(const QVByteStream& stream, uint64_t count) {
    if (count == kWindowBytes && !holds03(readBigEndian64(stream.data + stream.bytePos))) {
        return count;
    }
    for (uint64_t i = 1; i < count; ++i) {
        if (isEmulationPrevention(stream.data, stream.bytePos + i)) {
            return i;
        }
    }
    return count;
}

}  // namespace

// --- The plain cursor ---

WindowBits PlainSide::take(const QVByteStream& stream) {
    const uint64_t bytes = bytesInWindow(stream);
    if (bytes == 0 || stream.bitOffset > 7) {
        return {0, 0, 0};
    }
    return windowOf(stream, bytes, stream.bitOffset);
}

void PlainSide::move(QVByteStream& stream, uint32_t moved) {
    if (moved == 0) {  // a bit offset above 7, set by a caller, is not changed
        return;
    }
    movePlain(stream, moved);
}

WindowBits PlainSide::refill(QVByteStream& stream, uint32_t moved) {
    move(stream, moved);
    return take(stream);
}

uint32_t PlainSide::u(QVByteStream& stream, uint32_t n) {
    if (n > 32 && !stream.atEnd()) {
        advance(stream, n - 32);
        n = 32;
    }
    if (stream.atEnd() || n == 0) {
        return 0;
    }
    const uint64_t bits = nextBits(stream);
    advance(stream, n);
    return static_cast<uint32_t>(bits >> (64 - n));
}

uint32_t PlainSide::ue(QVByteStream& stream) {
    const uint64_t code = readCode(stream);
    return ueOf(code | code >> 32);
}

int32_t PlainSide::se(QVByteStream& stream) {
    return seOf(readCode(stream));
}

void PlainSide::skip(QVByteStream& stream, uint32_t n) {
    stream.skipBits(n);
}

// --- The RBSP cursor ---

WindowBits RbspSide::take(const QVByteStream& stream) {
    const uint64_t bytes = bytesInWindow(stream);
    if (bytes == 0 || stream.rbspBitIndex > 7) {
        return {0, 0, 0};
    }
    return windowOf(stream, bytesInOnePiece(stream, bytes), 7 - stream.rbspBitIndex);
}

void RbspSide::move(QVByteStream& stream, uint32_t moved) {
    if (moved == 0) {  // a bit index above 7, set by a caller, is not changed
        return;
    }
    const uint32_t bits = 7 - stream.rbspBitIndex + moved;
    stream.bytePos += bits / 8;
    stream.rbspBitIndex = 7 - bits % 8;
}

// No window: what ends one is mostly an emulation prevention byte, which would end the next one as well.
WindowBits RbspSide::refill(QVByteStream& stream, uint32_t moved) {
    move(stream, moved);
    return {0, 0, 0};
}

uint32_t RbspSide::u(QVByteStream& stream, uint32_t n) {
    return stream.readRbspBits(n);
}

// ue(v), H.265 9.2. Unlike the plain cursor's: a code of 32 zero bits still has its value modulo 2^32, and
// the value is 0 after 33 of them, with one more bit consumed (D05).
uint32_t RbspSide::ue(QVByteStream& stream) {
    constexpr uint32_t kMostLeadingZeroBits = 32;
    uint32_t zeroBits = 0;
    while (stream.readRbspBits(1) == 0) {
        if (++zeroBits > kMostLeadingZeroBits) {
            stream.readRbspBits(1);
            return 0;
        }
    }
    const uint64_t base = (uint64_t{1} << zeroBits) - 1;
    return static_cast<uint32_t>(base + stream.readRbspBits(zeroBits));
}

}  // namespace qv_detail
