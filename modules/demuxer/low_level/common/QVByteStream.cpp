// The bit reader. Bit descriptors u(n), ue(v), se(v) as in ITU-T H.264 (08/2021) 7.2 and 9.1.
#include "QVByteStream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "detail/BitWindow.h"
#include "detail/PlainBits.h"
#include "detail/WorkingCopy.h"

using namespace qv_detail;

QVByteStream::QVByteStream(const uint8_t* source, size_t sourceSize)
    : data(makeWorkingCopy(source, sourceSize).release()) {
    if (data != nullptr) {
        size = sourceSize;
        capacity = sourceSize;
    }
}

// --- RBSP cursor ---

namespace {

// Steps over an emulation prevention byte, if the byte position is at one.
void passEmulationPrevention(QVByteStream& stream) {
    if (stream.hasData() && isEmulationPrevention(stream.data, stream.bytePos)) {
        ++stream.bytePos;
    }
}

// Moves on from the last bit of a byte.
void leaveRbspByte(QVByteStream& stream) {
    stream.rbspBitIndex = 7;
    ++stream.bytePos;
    passEmulationPrevention(stream);
}

// Shorter pieces are not worth a call of memcpy.
constexpr uint64_t kWorthAPiece = 32;

// Where a piece ends that begins at position and is copied whole, at end at the latest: at an emulation
// prevention byte, or at a 03 that closely follows another one, where taking single bytes is faster than a
// search. The first byte was reached already: it is data.
uint64_t endOfRbspPiece(const uint8_t* data, uint64_t position, uint64_t end) {
    uint64_t searched = position + 1;
    while (const void* const next03 =
               std::memchr(data + searched, 0x03, static_cast<size_t>(end - searched))) {
        const auto at = static_cast<uint64_t>(static_cast<const uint8_t*>(next03) - data);
        if (at - searched < kWorthAPiece || isEmulationPrevention(data, at)) {
            return at;
        }
        searched = at + 1;
    }
    return end;
}

// Reads count bytes one by one, as far as there are any. In locals: as far as a compiler knows, a store
// through out may change the reader.
[[gnu::noinline]] uint8_t* readRbspBytewise(QVByteStream& stream, uint8_t* out, uint64_t count) {
    const uint8_t* const bytes = stream.data;
    const uint64_t size = stream.size;
    uint64_t position = stream.bytePos;
    uint64_t end = position + std::min(count, stream.bytesLeft());
    for (; position < end; ++position) {
        const uint8_t byte = bytes[position];
        if (isEmulationPrevention(bytes, position)) {
            end += end < size ? 1 : 0;
        } else {
            *out++ = byte;
        }
    }
    stream.bytePos = position;
    passEmulationPrevention(stream);
    return out;
}

}  // namespace

uint32_t QVByteStream::readRbspBits(unsigned long n) {
    const bool isSkip = n > 32;
    uint32_t value = 0;
    while (n > 0 && bytePos < size) {
        if (rbspBitIndex > 7) {  // set by a caller: no bit of a byte has this index
            --n;
            if (--rbspBitIndex >= 9) {
                leaveRbspByte(*this);
            }
            continue;
        }
        const uint32_t available = rbspBitIndex + 1;
        const uint32_t taken = n < available ? static_cast<uint32_t>(n) : available;
        const uint32_t byte = data != nullptr ? data[bytePos] : 0U;
        const uint32_t bits = byte >> (available - taken) & ((1U << taken) - 1);
        n -= taken;
        if (!isSkip) {
            value |= bits << n;
        }
        rbspBitIndex -= taken;
        if (taken == available) {
            leaveRbspByte(*this);
        }
    }
    return value;
}

void QVByteStream::readRbspBytes(uint8_t* out, size_t count) {
    constexpr uint64_t kBytesBetweenPieces = 64;
    uint8_t* const end = out + count;
    while (out != end && rbspBitIndex == 7 && hasData()) {
        const uint64_t most = std::min(static_cast<uint64_t>(end - out), bytesLeft());
        const uint64_t length = endOfRbspPiece(data, bytePos, bytePos + most) - bytePos;
        std::memcpy(out, data + bytePos, static_cast<size_t>(length));
        out += length;
        bytePos += length;
        passEmulationPrevention(*this);
        // Where 03 bytes are close together, the search for the next one costs more than the bytes.
        if (length < kWorthAPiece) {
            out =
                readRbspBytewise(*this, out, std::min(kBytesBetweenPieces, static_cast<uint64_t>(end - out)));
        }
    }
    while (out != end && bytePos < size) {
        *out++ = static_cast<uint8_t>(readRbspBits(8));
    }
    std::fill(out, end, uint8_t{0});
}

// --- Plain cursor ---

uint32_t QVByteStream::readBits(uint32_t n) {
    return PlainBits(*this).u(n);
}

uint32_t QVByteStream::readGolombUe() {
    return PlainBits(*this).ue();
}

int32_t QVByteStream::readGolombSe() {
    return PlainBits(*this).se();
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
