// The player's allocators. Contract only: a host links its own definitions or the stand-alone core's.
#ifndef QV_CORE_QVMEMORY_H
#define QV_CORE_QVMEMORY_H

#include <stddef.h>

#include "QVCoreExport.h"

extern "C" {

// Returns size bytes of uninitialised memory aligned for any type, or null on failure.
// The caller releases it with the host's matching free function (qvFree in the stand-alone core).
QV_CORE_API void* qvMalloc(size_t size);

// As qvMalloc, with every byte zero.
QV_CORE_API void* qvMallocz(size_t size);
}

#endif
