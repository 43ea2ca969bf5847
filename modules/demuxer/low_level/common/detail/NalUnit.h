// NAL unit headers, ITU-T H.264 (08/2021) 7.3.1 and H.265 (08/2021) 7.3.1.2, and big-endian fields.
#ifndef QV_DEMUXER_DETAIL_NALUNIT_H
#define QV_DEMUXER_DETAIL_NALUNIT_H

#include <cstddef>
#include <cstdint>

#include "QVCodecParameters.h"

namespace qv_detail {

constexpr uint32_t kForbiddenZeroBit = 0x80;

constexpr bool isSupported(QVCodecID codec) {
    return codec == QVCodecIDAvc || codec == QVCodecIDHevc;
}

// nal_unit_type from the first byte of a unit of a supported codec.
constexpr uint32_t nalUnitType(QVCodecID codec, unsigned char firstByte) {
    return codec == QVCodecIDAvc ? firstByte & 0x1FU : (firstByte >> 1) & 0x3FU;
}

inline uint32_t readBigEndian(const unsigned char* bytes, size_t count) {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

// The size that a caller passed as an int; a negative one means an empty buffer.
constexpr size_t bufferSize(int size) {
    return size > 0 ? static_cast<size_t>(size) : 0;
}

}  // namespace qv_detail

#endif
