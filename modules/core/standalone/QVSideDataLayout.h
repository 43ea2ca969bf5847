// Constants and helpers of the side-data layout. Private to its writer and its reader.
#ifndef QV_CORE_STANDALONE_QVSIDEDATALAYOUT_H
#define QV_CORE_STANDALONE_QVSIDEDATALAYOUT_H

#include <cstddef>
#include <cstdint>

namespace qv_side_data {

constexpr uint32_t kSignature = 0x51565344;  // "QVSD"
constexpr uint32_t kVersion = 1;
constexpr size_t kHeaderSize = 16;
constexpr size_t kItemHeaderSize = 16;
constexpr size_t kChecksumSize = 4;
constexpr uint32_t kIsRequested = 1U << 0;
constexpr uint32_t kHasPayload = 1U << 1;

// CRC-32 of IEEE 802.3 with the reflected polynomial, four bits at a time.
inline uint32_t checksum(const unsigned char* data, size_t size) {
    static constexpr uint32_t kTable[16] = {
        0x00000000, 0x1DB71064, 0x3B6E20C8, 0x26D930AC, 0x76DC4190, 0x6B6B51F4, 0x4DB26158, 0x5005713C,
        0xEDB88320, 0xF00F9344, 0xD6D6A3E8, 0xCB61B38C, 0x9B64C2B0, 0x86D3D2D4, 0xA00AE278, 0xBDBDF21C};
    uint32_t crc = 0xFFFFFFFF;
    for (size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        crc = crc >> 4 ^ kTable[crc & 0xF];
        crc = crc >> 4 ^ kTable[crc & 0xF];
    }
    return ~crc;
}

inline uint32_t readU32(const unsigned char* at) {
    return uint32_t{at[0]} << 24 | uint32_t{at[1]} << 16 | uint32_t{at[2]} << 8 | uint32_t{at[3]};
}

inline unsigned char* writeU32(unsigned char* at, uint32_t value) {
    at[0] = static_cast<unsigned char>(value >> 24);
    at[1] = static_cast<unsigned char>(value >> 16);
    at[2] = static_cast<unsigned char>(value >> 8);
    at[3] = static_cast<unsigned char>(value);
    return at + 4;
}

}  // namespace qv_side_data

#endif
