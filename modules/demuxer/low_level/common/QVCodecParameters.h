/// \file
/// The codec identifiers and the per-stream parameters that the framing operations read.
#ifndef QV_DEMUXER_QVCODECPARAMETERS_H
#define QV_DEMUXER_QVCODECPARAMETERS_H

#include <stdint.h>

/// Codec identifier. Any other number may be cast to it and means an unsupported codec.
enum QVCodecID : uint32_t {
    QVCodecIDAvc = 26,   ///< ITU-T H.264
    QVCodecIDHevc = 172  ///< ITU-T H.265
};

/// A stream's codec and framing, from its container or the caller. Owned by the caller; zero-initialise with
/// {}.
struct QVCodecParameters {
    QVCodecID codecId;  ///< the stream's codec

    /// Non-zero: a start code precedes each NAL unit (H.264/H.265 Annex B). Zero: a length field does.
    uint32_t isAnnexB;

    /// Bytes in each length field: lengthSizeMinusOne + 1 of the decoder configuration record (ISO/IEC
    /// 14496-15). 1, 2 and 4 are valid, everything else means 4. Not read when isAnnexB is set.
    uint8_t nalLengthSize;
};

#endif
