/// \file
/// A complete core for use without a player. Each platform function stands in an object file of its own, so
/// that a program may define any one of them itself and take the rest from here.
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

/// Sets the highest level that qvTraceLog prints. The start value is QVTraceWarning; nothing else (no file,
/// no environment) changes it. May be called from any thread.
///
/// \param level  a QVTraceLevel; -1 silences the log
void qvSetTraceLevel(int level);

/// Tells the level in force. May be called from any thread.
///
/// \return the level that was set last
int qvGetTraceLevel(void);

/// Releases memory of qvMalloc or qvMallocz.
///
/// \param memory  null is allowed
void qvFree(void* memory);
}

#endif
