/// \file
/// The player's side-data description. Contract only: a host links its own definitions or the stand-alone
/// core's.
#ifndef QV_CORE_QVSEIINFO_H
#define QV_CORE_QVSEIINFO_H

#include <stdint.h>

#include "QVCoreExport.h"

struct QVSeiItem;

/// Describes the SEI messages of one access unit to the side-data serialiser. A host's description may be
/// longer; these two fields come first.
struct QVSeiInfo {
    uint32_t itemCount;  ///< number of entries in items
    QVSeiItem* items;    ///< itemCount entries, made zeroed by createQVSeiInfo
};

extern "C" {

/// Makes a description, which is released with freepQVSeiInfo.
///
/// \param itemCount  number of entries; 0 is allowed
/// \return the description with itemCount zeroed entries, or null on failure
QV_CORE_API QVSeiInfo* createQVSeiInfo(uint32_t itemCount);

/// Serialises a description into one new buffer, which is the caller's. Payload bytes are copied into it.
///
/// \param info       the description, only read
/// \param[out] size  bytes of the buffer
/// \return the buffer, or null on failure
QV_CORE_API unsigned char* createSideDataFromQVSeiInfo(QVSeiInfo* info, int* size);

/// Releases a description. The payloads that its entries point at are borrowed and not released.
///
/// \param[in,out] info  the description; set to null
QV_CORE_API void freepQVSeiInfo(QVSeiInfo** info);
}

#endif
