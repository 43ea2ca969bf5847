// Loads and counts that compilers have instructions for, with portable forms.
#ifndef QV_BITSTREAM_SYNTAX_BITS_H
#define QV_BITSTREAM_SYNTAX_BITS_H

#include <cstdint>
#include <cstring>

#if defined(__GNUC__)
#define QV_ALWAYS_INLINE [[gnu::always_inline]] inline
#define QV_NEVER_INLINE [[gnu::noinline, gnu::cold]]
#else
#define QV_ALWAYS_INLINE inline
#define QV_NEVER_INLINE
#endif

namespace qv::detail {

// Eight bytes as a number, the first byte on top.
QV_ALWAYS_INLINE uint64_t loadBigEndian64(const uint8_t* bytes) noexcept {
#if defined(__GNUC__)
    uint64_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    value = __builtin_bswap64(value);
#endif
    return value;
#else
    uint64_t value = 0;
    for (int i = 0; i < 8; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
#endif
}

// Four bytes as a number, the first byte on top.
QV_ALWAYS_INLINE uint32_t loadBigEndian32(const uint8_t* bytes) noexcept {
#if defined(__GNUC__)
    uint32_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    value = __builtin_bswap32(value);
#endif
    return value;
#else
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
#endif
}

// Zero bits before the first 1 bit. The value must not be 0.
QV_ALWAYS_INLINE uint32_t leadingZeroBits(uint64_t value) noexcept {
#if defined(__GNUC__)
    return static_cast<uint32_t>(__builtin_clzll(value));
#else
    uint32_t count = 0;
    for (; value >> 63 == 0; value <<= 1) {
        ++count;
    }
    return count;
#endif
}

// Zero bits after the last 1 bit. The value must not be 0.
QV_ALWAYS_INLINE uint32_t trailingZeroBits(uint64_t value) noexcept {
#if defined(__GNUC__)
    return static_cast<uint32_t>(__builtin_ctzll(value));
#else
    uint32_t count = 0;
    for (; (value & 1) == 0; value >>= 1) {
        ++count;
    }
    return count;
#endif
}

// How many bits are 1.
constexpr uint32_t countOfOnes(uint64_t bits) noexcept {
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<uint32_t>(bits * 0x0101010101010101 >> 56);
}

// The 32 bits in reverse order.
constexpr uint32_t reversed(uint32_t bits) noexcept {
    bits = (bits >> 1 & 0x55555555) | (bits & 0x55555555) << 1;
    bits = (bits >> 2 & 0x33333333) | (bits & 0x33333333) << 2;
    bits = (bits >> 4 & 0x0F0F0F0F) | (bits & 0x0F0F0F0F) << 4;
    bits = (bits >> 8 & 0x00FF00FF) | (bits & 0x00FF00FF) << 8;
    return bits >> 16 | bits << 16;
}

constexpr uint64_t eightTimes(uint8_t byte) {
    return uint64_t{0x0101010101010101} * byte;
}

constexpr uint64_t kTopByte = 0xFF00000000000000;

// The top bit of each of the eight bytes that is 0x03, and at times of the byte before one.
QV_ALWAYS_INLINE uint64_t bytesOf03(uint64_t bytes) noexcept {
    const uint64_t difference = bytes ^ eightTimes(0x03);
    return (difference - eightTimes(0x01)) & ~difference & eightTimes(0x80);
}

// Ceil(Log2(x)) of the standards: the bits that distinguish x values. 0 for x of 0 and 1.
constexpr uint32_t ceilLog2(uint64_t x) noexcept {
    uint32_t bits = 0;
    for (uint64_t greatest = x > 0 ? x - 1 : 0; greatest != 0; greatest >>= 1) {
        ++bits;
    }
    return bits;
}

}  // namespace qv::detail

#endif
