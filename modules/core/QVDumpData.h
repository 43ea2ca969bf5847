/// \file
/// The player's debug dump. Declaration only: a host links its own definition or the stand-alone core's.
#ifndef QV_CORE_QVDUMPDATA_H
#define QV_CORE_QVDUMPDATA_H

#include "QVCoreExport.h"

/// The player's debug dump.
class QV_CORE_API QVDumpData {
public:
    /// Dumps a buffer for a developer to read. The library calls it when length-prefixed framing is broken.
    ///
    /// \param label  description of the buffer; never null, borrowed for the duration of the call
    /// \param data   the bytes, borrowed for the duration of the call
    /// \param size   number of bytes at data, all of them; the host limits how many it prints
    static void dumpActualData(const char* label, const unsigned char* data, int size);
};

#endif
