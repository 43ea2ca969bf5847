// The emulation_prevention_three_byte (H.264 7.4.1, H.265 7.4.2.1).
#ifndef QV_BITSTREAM_SYNTAX_EMULATIONPREVENTION_H
#define QV_BITSTREAM_SYNTAX_EMULATIONPREVENTION_H

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

// Calls found(byte) with each emulation prevention byte of [begin, end) until it returns true; the byte where
// it does, otherwise the end.
template <class Found>
const uint8_t* findEmulationPrevention(const uint8_t* unit, const uint8_t* begin, const uint8_t* end,
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
