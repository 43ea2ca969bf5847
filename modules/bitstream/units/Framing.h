/// \file
/// How NAL units are laid out in a buffer.
#ifndef QV_BITSTREAM_UNITS_FRAMING_H
#define QV_BITSTREAM_UNITS_FRAMING_H

#include <cstddef>
#include <cstdint>

namespace qv {

/// The byte stream format (H.264 and H.265 Annex B), or the sample format of ISO/IEC 14496-15, where each
/// unit follows a NALUnitLength of 1 to 4 bytes, big-endian. A value without a name here is treated as
/// Lengths4.
enum class Framing : uint8_t {
    StartCodes = 0,  ///< Annex B of both standards
    Lengths1 = 1,    ///< lengths of 1 byte
    Lengths2 = 2,    ///< lengths of 2 bytes
    Lengths3 = 3,    ///< of 3 bytes: not allowed by ISO/IEC 14496-15, and found in files
    Lengths4 = 4,    ///< lengths of 4 bytes
};

/// Bytes of each NALUnitLength; 0 with start codes.
constexpr size_t lengthSizeOf(Framing framing) {
    return framing <= Framing::Lengths4 ? static_cast<size_t>(framing) : 4;
}

/// The framing of samples with lengthSizeMinusOne, 0 to 3, of a decoder configuration record. Only its two
/// low bits count.
constexpr Framing framingOfLengthSizeMinusOne(uint32_t lengthSizeMinusOne) {
    return static_cast<Framing>((lengthSizeMinusOne & 3) + 1);
}

/// "start codes" or "lengths of 4 bytes".
constexpr const char* textOf(Framing framing) {
    switch (framing) {
        case Framing::StartCodes:
            return "start codes";
        case Framing::Lengths1:
            return "lengths of 1 byte";
        case Framing::Lengths2:
            return "lengths of 2 bytes";
        case Framing::Lengths3:
            return "lengths of 3 bytes";
        case Framing::Lengths4:
            return "lengths of 4 bytes";
    }
    return "";
}

}  // namespace qv

#endif
