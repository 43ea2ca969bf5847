/// \file
/// One kept SEI message.
#ifndef QV_DEMUXER_QVSEIITEM_H
#define QV_DEMUXER_QVSEIITEM_H

#include <stdint.h>

#include "QVCodecParameters.h"

/// One kept SEI message (H.264 7.3.2.3.1, H.265 7.3.5). A plain record without behaviour. The caller owns
/// lists of items, and each payload buffer once its item is in the list: nothing in this module removes or
/// frees one.
struct QVSeiItem {
    QVCodecID codecId;     ///< the codec of the stream that carried the message
    uint32_t payloadType;  ///< payloadType as summed from the message header
    uint32_t payloadSize;  ///< number of bytes at payloadData

    /// True when the item exists because its type is in the caller's requested-type list.
    bool isRequested;

    /// From qvMalloc (qvMallocz for the display orientation text), without emulation prevention bytes. Null
    /// only in items that other code made.
    uint8_t* payloadData;
};

#endif
