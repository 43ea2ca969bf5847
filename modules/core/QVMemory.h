/// \file
/// The player's allocators. Contract only: a host links its own definitions or the stand-alone core's.
#ifndef QV_CORE_QVMEMORY_H
#define QV_CORE_QVMEMORY_H

#include <stddef.h>

#include "QVCoreExport.h"

extern "C" {

/// Allocates what the library hands to its caller. The caller releases it with the host's matching free
/// function (qvFree in the stand-alone core).
///
/// \param size  bytes, at least 1 where the library calls it
/// \return uninitialised memory aligned for any type, or null on failure
QV_CORE_API void* qvMalloc(size_t size);

/// As qvMalloc, with every byte zero.
///
/// \param size  bytes, at least 1 where the library calls it
/// \return zeroed memory aligned for any type, or null on failure
QV_CORE_API void* qvMallocz(size_t size);
}

#endif
