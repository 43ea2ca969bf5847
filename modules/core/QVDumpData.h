/// \file
/// The player's debug dump. Contract only: a host links its own definition or the stand-alone core's.
#ifndef QV_CORE_QVDUMPDATA_H
#define QV_CORE_QVDUMPDATA_H

#include "QVCoreExport.h"

/// The player's debug dump.
class QV_CORE_API QVDumpData {
public:
    /// Dumps a buffer for a developer to read. The library calls it where length-prefixed framing is broken.
    ///
    /// \param label  what the buffer is; never null, borrowed for the duration of the call
    /// \param data   the bytes, borrowed for the duration of the call
    /// \param size   all bytes at data; the host bounds what it prints
    static void dumpActualData(const char* label, const unsigned char* data, int size);
};

#endif
