// The emulation_prevention_three_byte (H.264 7.4.1, H.265 7.4.2.1).
#ifndef QV_BITSTREAM_SYNTAX_EMULATIONPREVENTION_H
#define QV_BITSTREAM_SYNTAX_EMULATIONPREVENTION_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bitstream/Bytes.h"
#include "bitstream/syntax/Bits.h"

namespace qv::detail {

constexpr uint8_t kEmulationPreventionThreeByte = 0x03;

// The greatest byte that an encoder may not write after two zero bytes.
constexpr uint8_t kGreatestEmulatingByte = 0x03;

// True when the byte at the position of a unit follows two zero bytes and is not data. Two zero bytes at the
// start of the unit count.
inline bool isEmulationPrevention(const uint8_t* unit, size_t position) noexcept {
    return unit[position] == kEmulationPreventionThreeByte && position >= 2 && unit[position - 1] == 0x00 &&
           unit[position - 2] == 0x00;
}

// How many bytes mayHoldEmulationPrevention() tests at once.
constexpr ptrdiff_t kEmulationBlock = 128;

// False when none of the kEmulationBlock bytes after the one at before is an emulation prevention byte. Each
// of these has a pair of bytes 00 00 or 00 03 in an even 16-bit lane: the pair before it, or the one that it
// ends. Compilers make vector instructions of this loop; the masked bits keep the lanes from being negative.
inline bool mayHoldEmulationPrevention(const uint8_t* before) noexcept {
    constexpr uint8_t kMaskBytes[2] = {0x7F, 0x7C};
    constexpr ptrdiff_t kLane = 2;
    int16_t mask = 0;
    std::memcpy(&mask, kMaskBytes, sizeof mask);
    int16_t least = INT16_MAX;
    for (ptrdiff_t i = 0; i < kEmulationBlock; i += kLane) {
        int16_t lane = 0;
        std::memcpy(&lane, before + i, sizeof lane);
        lane = static_cast<int16_t>(lane & mask);
        least = lane < least ? lane : least;
    }
    return least == 0;
}

// Calls found(byte) with each emulation prevention byte of [begin, end), of which two bytes of the unit come
// before, until it returns true; the byte where it does, otherwise the end.
template <class Found>
const uint8_t* findEmulationPreventionByWords(const uint8_t* unit, const uint8_t* begin, const uint8_t* end,
                                              const Found& found) noexcept {
    constexpr ptrdiff_t kWordBytes = 8;
    const uint8_t* next = begin;
    for (; end - next >= kWordBytes; next += kWordBytes) {
        uint64_t candidates = bytesOf03(loadBigEndian64(next));
        while (candidates != 0) {
            const uint32_t byte = leadingZeroBits(candidates) / 8;
            if (isEmulationPrevention(unit, static_cast<size_t>(next + byte - unit)) && found(next + byte)) {
                return next + byte;
            }
            candidates &= ~(kTopByte >> 8 * byte);
        }
    }
    for (; next != end; ++next) {
        if (isEmulationPrevention(unit, static_cast<size_t>(next - unit)) && found(next)) {
            return next;
        }
    }
    return end;
}

// As above, for any part of a unit.
template <class Found>
const uint8_t* findEmulationPrevention(const uint8_t* unit, const uint8_t* begin, const uint8_t* end,
                                       const Found& found) noexcept {
    constexpr ptrdiff_t kZeroBytes = 2;
    if (end - unit <= kZeroBytes) {
        return end;
    }
    const uint8_t* next = begin - unit < kZeroBytes ? unit + kZeroBytes : begin;
    for (; end - next >= kEmulationBlock; next += kEmulationBlock) {
        if (!mayHoldEmulationPrevention(next - 1)) {
            continue;
        }
        const uint8_t* const blockEnd = next + kEmulationBlock;
        const uint8_t* const byte = findEmulationPreventionByWords(unit, next, blockEnd, found);
        if (byte != blockEnd) {
            return byte;
        }
    }
    return findEmulationPreventionByWords(unit, next, end, found);
}

inline uint64_t countEmulationPrevention(const uint8_t* unit, const uint8_t* begin,
                                         const uint8_t* end) noexcept {
    uint64_t count = 0;
    findEmulationPrevention(unit, begin, end, [&count](const uint8_t*) {
        ++count;
        return false;
    });
    return count;
}

// The end of the last byte of [begin, end) that is not zero: cabac_zero_words, the emulation prevention byte
// that ends a unit after one (H.264 7.4.1, H.265 7.4.2.1), and trailing_zero_8bits are past it.
inline const uint8_t* endOfStopBit(const uint8_t* unit, const uint8_t* begin, const uint8_t* end) noexcept {
    for (;;) {
        while (end != begin && end[-1] == 0x00) {
            --end;
        }
        if (end == begin || !isEmulationPrevention(unit, static_cast<size_t>(end - 1 - unit))) {
            return end;
        }
        --end;
    }
}

}  // namespace qv::detail

#endif
