// The player's debug dump. Contract only: a host links its own definition or the stand-alone core's.
#ifndef QV_CORE_QVDUMPDATA_H
#define QV_CORE_QVDUMPDATA_H

#include "QVCoreExport.h"

class QV_CORE_API QVDumpData {
public:
    // Dumps size bytes at data under label, for a developer to read. data and label are borrowed for the
    // duration of the call; size is the full size of the buffer in bytes, the host bounds what it prints.
    static void dumpActualData(const char* label, const unsigned char* data, int size);
};

#endif
