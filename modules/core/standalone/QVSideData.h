/// \file
/// The stand-alone core's side-data buffer: its layout, the function that reads it and the one that frees it.
///
/// One buffer carries the SEI items of one access unit. All integers are big-endian.
///
/// \code{.unparsed}
/// offset  width  content
/// 0       4      'Q' 'V' 'S' 'D'
/// 4       2      version, 1
/// 6       2      0; readers compare it as part of the version
/// 8       4      size of the whole buffer in bytes
/// 12      4      number of items
/// 16             the items in sequence
/// size-4  4      CRC-32 (IEEE 802.3) of everything before it
///
/// each item:
/// 0       4      codec (QVCodecID)
/// 4       4      payloadType
/// 8       4      payloadSize in bytes
/// 12      1      bit 0: requested; bit 1: the item has payload bytes; other bits 0
/// 13      3      0
/// 16             payloadSize bytes if bit 1 is set; if it is not, bytes 0 to 15 are all 0
/// \endcode
///
/// Ownership: createSideDataFromQVSeiInfo copies the payload bytes into one new block, which its caller
/// releases with freepQVSideData. The description borrows the payload pointers of the items: freepQVSeiInfo
/// releases only the description, and the owner of the items still has to free their payloads (qvFree).
#ifndef QV_CORE_STANDALONE_QVSIDEDATA_H
#define QV_CORE_STANDALONE_QVSIDEDATA_H

#include <vector>

#include "QVSeiItem.h"

/// The result of qvReadSideData.
enum QVSideDataStatus {
    QVSideDataOk = 0,             ///< the items were read
    QVSideDataNoBuffer = 1,       ///< the buffer is null, or shorter than a buffer without items
    QVSideDataNotSideData = 2,    ///< the buffer does not begin with the signature
    QVSideDataOtherVersion = 3,   ///< the version is not supported
    QVSideDataWrongSize = 4,      ///< the size field differs from the size passed in
    QVSideDataWrongChecksum = 5,  ///< the checksum does not match: the bytes were changed
    QVSideDataBrokenItems = 6     ///< the items do not fill the buffer exactly, or one violates the layout
};

/// Reads the items of a buffer. Their payload pointers point into data. An item without a payload has all
/// fields zero. Any bytes may be passed in.
///
/// \param data        the buffer; read only, the caller keeps it; null gives QVSideDataNoBuffer
/// \param size        bytes at data
/// \param[out] items  replaced by the items of the buffer; unchanged for any status but QVSideDataOk; must
///                    not be null
/// \return QVSideDataOk, or the first error found
QVSideDataStatus qvReadSideData(unsigned char* data, int size, std::vector<QVSeiItem>* items);

/// Releases a buffer that createSideDataFromQVSeiInfo returned.
///
/// \param[in,out] data  the buffer; set to null. Null and a pointer to null are allowed and have no effect.
void freepQVSideData(unsigned char** data);

#endif
