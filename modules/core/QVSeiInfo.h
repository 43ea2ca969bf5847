// The player's side-data description. Contract only: a host links its own definitions or the stand-alone
// core's.
#ifndef QV_CORE_QVSEIINFO_H
#define QV_CORE_QVSEIINFO_H

#include <stdint.h>

#include "QVCoreExport.h"

struct QVSeiItem;

// Describes the SEI messages of one access unit to the side-data serialiser. A host's description may be
// longer; these two fields come first.
struct QVSeiInfo {
    uint32_t itemCount;  // number of entries in items
    QVSeiItem* items;    // itemCount entries, made zeroed by createQVSeiInfo
};

extern "C" {

// Makes a description with itemCount zeroed entries; null on failure. Released with freepQVSeiInfo.
QV_CORE_API QVSeiInfo* createQVSeiInfo(uint32_t itemCount);

// Serialises info into one new buffer and stores its length in bytes in *size. The buffer is the caller's.
// Returns null on failure. info is only read; payload bytes are copied.
QV_CORE_API unsigned char* createSideDataFromQVSeiInfo(QVSeiInfo* info, int* size);

// Releases *info and sets it to null. Payload pointers in the entries are borrowed and not released.
QV_CORE_API void freepQVSeiInfo(QVSeiInfo** info);
}

#endif
