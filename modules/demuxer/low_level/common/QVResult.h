/// \file
/// Result codes of the operations that return int.
#ifndef QV_DEMUXER_QVRESULT_H
#define QV_DEMUXER_QVRESULT_H

/// The values that the operations return as int.
enum QVResult : int {
    /// Success. The end of the data inside a payload is not a failure: missing bits read as zero.
    QVResultOk = 0,

    /// A missing parameter or record, an unsupported codec, an SEI payload that runs past its NAL unit, a
    /// syntax value out of range, or a failed raw capture.
    QVResultFailed = 11000001,

    /// Unusable input: null or too short, no start code, no units, length-prefixed units that do not end at
    /// the end of the buffer, an unusable SEI item, an output pointer that is null or already set.
    QVResultInvalidData = 11000012,

    /// An output buffer could not be allocated.
    QVResultNoMemory = 11000050
};

#endif
