/// \file
/// The codec identifiers and the per-stream parameters that the framing operations read.
#ifndef QV_DEMUXER_QVCODECPARAMETERS_H
#define QV_DEMUXER_QVCODECPARAMETERS_H

#include <stdint.h>

/// Codec identifier. Any other number may be cast to it and is an unsupported codec.
enum QVCodecID : uint32_t {
    QVCodecIDAvc = 26,   ///< ITU-T H.264
    QVCodecIDHevc = 172  ///< ITU-T H.265
};

/// A stream's framing, as its container or the caller knows it. Owned by the caller; zero-initialise with {}.
struct QVCodecParameters {
    QVCodecID codecId;  ///< the stream's codec

    /// Non-zero: NAL units stand behind start codes (H.264/H.265 Annex B). Zero: behind length fields.
    uint32_t isAnnexB;

    /// Bytes in each length field: lengthSizeMinusOne + 1 of the decoder configuration record
    /// (ISO/IEC 14496-15). 1, 2 and 4 are taken as they are, everything else means 4. Not read when isAnnexB.
    uint8_t nalLengthSize;
};

#endif
