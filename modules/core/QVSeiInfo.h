/// \file
/// The player's side-data description. Declarations only: a host links its own definitions or the stand-alone
/// core's.
#ifndef QV_CORE_QVSEIINFO_H
#define QV_CORE_QVSEIINFO_H

#include <stdint.h>

#include "QVCoreExport.h"

struct QVSeiItem;

/// Describes the SEI messages of one access unit to the side-data serialiser. A host may append fields of its
/// own; these two come first.
struct QVSeiInfo {
    uint32_t itemCount;  ///< number of entries in items
    QVSeiItem* items;    ///< itemCount entries, zeroed by createQVSeiInfo
};

extern "C" {

/// Creates a description. The caller releases it with freepQVSeiInfo.
///
/// \param itemCount  number of entries; 0 is allowed
/// \return the description with itemCount zeroed entries, or null on failure
QV_CORE_API QVSeiInfo* createQVSeiInfo(uint32_t itemCount);

/// Serialises a description, payload bytes included, into one new buffer. The caller owns the buffer.
///
/// \param info       the description; read only
/// \param[out] size  size of the buffer in bytes
/// \return the buffer, or null on failure
QV_CORE_API unsigned char* createSideDataFromQVSeiInfo(QVSeiInfo* info, int* size);

/// Releases a description. Its entries borrow their payloads, which are not released.
///
/// \param[in,out] info  the description; set to null
QV_CORE_API void freepQVSeiInfo(QVSeiInfo** info);
}

#endif
