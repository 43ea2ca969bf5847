/// \file
/// The player's allocators. Declarations only: a host links its own definitions or the stand-alone core's.
#ifndef QV_CORE_QVMEMORY_H
#define QV_CORE_QVMEMORY_H

#include <stddef.h>

#include "QVCoreExport.h"

extern "C" {

/// Allocates a block that the library returns to its caller. The caller releases it with the host's matching
/// free function (qvFree in the stand-alone core).
///
/// \param size  bytes; the library always asks for at least 1
/// \return uninitialised memory aligned for any type, or null on failure
QV_CORE_API void* qvMalloc(size_t size);

/// Like qvMalloc, but sets every byte to zero.
///
/// \param size  bytes; the library always asks for at least 1
/// \return zeroed memory aligned for any type, or null on failure
QV_CORE_API void* qvMallocz(size_t size);
}

#endif
