/// \file
/// The two standards that this library covers.
#ifndef QV_BITSTREAM_CODEC_H
#define QV_BITSTREAM_CODEC_H

#include <cstdint>

namespace qv {

/// A video coding standard.
enum class Codec : uint8_t {
    Avc,   ///< ITU-T H.264
    Hevc,  ///< ITU-T H.265
};

}  // namespace qv

#endif
