/// \file
/// A complete core for use without a player. Each platform function has its own object file, so a program may
/// define any of them itself and take the rest from here.
#ifndef QV_CORE_STANDALONE_QVCORESTANDALONE_H
#define QV_CORE_STANDALONE_QVCORESTANDALONE_H

#include "QVDumpData.h"
#include "QVHDRVivid.h"
#include "QVHDRVividDynamicMetadata.h"
#include "QVMemory.h"
#include "QVSeiInfo.h"
#include "QVSideData.h"
#include "QVTraceLog.h"

extern "C" {

/// Sets the highest level that qvTraceLog prints. The initial level is QVTraceWarning. Only this function
/// changes it; there is no configuration file and no environment variable. May be called from any thread.
///
/// \param level  a QVTraceLevel; -1 silences the log
void qvSetTraceLevel(int level);

/// Returns the current level. May be called from any thread.
///
/// \return the level that was last set
int qvGetTraceLevel(void);

/// Releases memory that qvMalloc or qvMallocz allocated.
///
/// \param memory  the block; null is allowed and has no effect
void qvFree(void* memory);
}

#endif
