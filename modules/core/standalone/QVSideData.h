/// \file
/// The side-data buffer of the stand-alone core: its layout, its reader, its release.
///
/// One buffer carries the SEI items of one access unit. All integers are big-endian.
///
/// \code{.unparsed}
/// offset  width  content
/// 0       4      'Q' 'V' 'S' 'D'
/// 4       2      version, 1
/// 6       2      0, part of what a reader compares as the version
/// 8       4      size of the whole buffer in bytes
/// 12      4      number of items
/// 16             the items, one behind the other
/// size-4  4      CRC-32 (IEEE 802.3) of everything before it
///
/// each item:
/// 0       4      codec (QVCodecID)
/// 4       4      payloadType
/// 8       4      payloadSize in bytes
/// 12      1      bit 0: requested; bit 1: the item has payload bytes; other bits 0
/// 13      3      0
/// 16             payloadSize bytes, if bit 1 is set; otherwise the whole item is 0
/// \endcode
///
/// Ownership: createSideDataFromQVSeiInfo copies the payload bytes into one new block, which is its caller's
/// to release with freepQVSideData. The description borrows the payload pointers of the items: freepQVSeiInfo
/// releases the description alone, and whoever kept the items keeps and frees their payloads (qvFree).
#ifndef QV_CORE_STANDALONE_QVSIDEDATA_H
#define QV_CORE_STANDALONE_QVSIDEDATA_H

#include <vector>

#include "QVSeiItem.h"

/// What qvReadSideData found.
enum QVSideDataStatus {
    QVSideDataOk = 0,             ///< the items were read
    QVSideDataNoBuffer = 1,       ///< null, or shorter than an empty buffer
    QVSideDataNotSideData = 2,    ///< does not begin with the signature
    QVSideDataOtherVersion = 3,   ///< a version that this reader does not know
    QVSideDataWrongSize = 4,      ///< the size it names is not the size handed in
    QVSideDataWrongChecksum = 5,  ///< changed since it was written
    QVSideDataBrokenItems = 6  ///< items that do not fill the buffer, or hold what the layout does not allow
};

/// Reads the items of a buffer. Their payload pointers point into data; items without payload bytes are all
/// zero. Any bytes may be handed in.
///
/// \param data        the buffer, which stays the caller's and is only read; null is no buffer
/// \param size        bytes at data
/// \param[out] items  replaced by what was read, untouched on any status but QVSideDataOk; not null
/// \return QVSideDataOk, or the first thing found wrong
QVSideDataStatus qvReadSideData(unsigned char* data, int size, std::vector<QVSeiItem>* items);

/// Releases a buffer of createSideDataFromQVSeiInfo.
///
/// \param[in,out] data  the buffer; set to null. Null, and a pointer to null, are allowed.
void freepQVSideData(unsigned char** data);

#endif
