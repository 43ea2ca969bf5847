// What windows hold at a reader's cursor.
#include "detail/BitWindow.h"

#include <algorithm>
#include <cstring>

namespace qv_detail {

namespace {

constexpr uint64_t kWindowBytes = 8;

uint64_t readBigEndian64(const uint8_t* bytes) {
    uint64_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    value = __builtin_bswap64(value);
#endif
    return value;
}

// The count bytes at the byte position, 1 to 8, on top of the number. Fewer than 8 are cut out of a whole
// load ahead of them where there is room for one.
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
        value |= static_cast<uint64_t>(bytes[i]) << (56 - 8 * i);
    }
    return value;
}

// Bytes at the byte position, 8 at most.
uint64_t bytesInWindow(const QVByteStream& stream) {
    return stream.hasData() ? std::min(kWindowBytes, stream.bytesLeft()) : 0;
}

// The window of the bytes at the byte position of which bitsUsed bits are past.
WindowBits windowOf(const QVByteStream& stream, uint64_t bytes, uint32_t bitsUsed) {
    const uint32_t count = static_cast<uint32_t>(8 * bytes) - bitsUsed;
    return {bytesOnTop(stream, bytes) << bitsUsed, count, count};
}

bool holds03(uint64_t bytes) {
    const uint64_t difference = bytes ^ 0x0303030303030303;
    return ((difference - 0x0101010101010101) & ~difference & 0x8080808080808080) != 0;
}

// D03: a zero pair that begins the buffer is not taken for one in front of an emulation prevention byte.
bool isEmulationPrevention(const QVByteStream& stream, uint64_t position) {
    const uint8_t* const data = stream.data;
    return position >= 3 && data[position] == 0x03 && data[position - 1] == 0x00 &&
           data[position - 2] == 0x00;
}

// Of count bytes at the byte position those ahead of an emulation prevention byte. The first one was come to
// already: it is data.
uint64_t bytesInOnePiece(const QVByteStream& stream, uint64_t count) {
    if (count == kWindowBytes && !holds03(readBigEndian64(stream.data + stream.bytePos))) {
        return count;
    }
    for (uint64_t i = 1; i < count; ++i) {
        if (isEmulationPrevention(stream, stream.bytePos + i)) {
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
    if (moved == 0) {  // a caller's own bit offset, above 7, stays what it is
        return;
    }
    const uint32_t bits = stream.bitOffset + moved;
    stream.bytePos += bits / 8;
    stream.bitOffset = static_cast<uint8_t>(bits % 8);
}

WindowBits PlainSide::refill(QVByteStream& stream, uint32_t moved) {
    move(stream, moved);
    return take(stream);
}

uint32_t PlainSide::u(QVByteStream& stream, uint32_t n) {
    return stream.readBits(n);
}

uint32_t PlainSide::ue(QVByteStream& stream) {
    return stream.readGolombUe();
}

int32_t PlainSide::se(QVByteStream& stream) {
    return stream.readGolombSe();
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
    if (moved == 0) {  // a caller's own bit index, above 7, stays what it is
        return;
    }
    const uint32_t bits = 7 - stream.rbspBitIndex + moved;
    stream.bytePos += bits / 8;
    stream.rbspBitIndex = 7 - bits % 8;
}

// None: what ends a window is mostly an emulation prevention byte, which ends the next one as well.
WindowBits RbspSide::refill(QVByteStream& stream, uint32_t moved) {
    move(stream, moved);
    return {0, 0, 0};
}

uint32_t RbspSide::u(QVByteStream& stream, uint32_t n) {
    return stream.readRbspBits(n);
}

// ue(v), H.265 9.2. Unlike the plain cursor's: a code of 32 zero bits still has its value modulo 2^32, and
// the value 0 is given up to after 33 of them, with one more bit consumed (D05).
uint32_t RbspSide::ue(QVByteStream& stream) {
    constexpr uint32_t kMostLeadingZeroBits = 32;
    uint32_t leadingZeroBits = 0;
    while (stream.readRbspBits(1) == 0) {
        if (++leadingZeroBits > kMostLeadingZeroBits) {
            stream.readRbspBits(1);
            return 0;
        }
    }
    const uint64_t base = (uint64_t{1} << leadingZeroBits) - 1;
    return static_cast<uint32_t>(base + stream.readRbspBits(leadingZeroBits));
}

}  // namespace qv_detail
