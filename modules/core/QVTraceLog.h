// The player's log. Contract only: a host links its own definition or the stand-alone core's.
#ifndef QV_CORE_QVTRACELOG_H
#define QV_CORE_QVTRACELOG_H

#include "QVCoreExport.h"

#if defined(__GNUC__)
#define QV_PRINTF_FORMAT(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define QV_PRINTF_FORMAT(formatIndex, firstArgument)
#endif

// Levels, as passed to qvTraceLog.
enum QVTraceLevel {
    QVTraceError = 0,        // rejected input, null records, failed framing
    QVTraceWarning = 1,      // an SEI payload truncated
    QVTraceInformation = 2,  // stream properties such as the HEVC profile
    QVTraceDebug = 3         // detail: SPS summary, crop notice, decoded picture timing
};

extern "C" {

// Writes one log line. May be called from any thread.
//
// level     QVTraceLevel, passed through as a number; any other value is the host's to interpret.
// file      source file name, never null.
// line      source line.
// function  name of the operation or of its sub-step, never null.
// tag       component tag, never null.
// format    printf format; most texts end in '\n', a few do not.
//
// Never fails observably. It may throw: callers release what they own and let the exception pass.
// All strings are borrowed for the duration of the call.
QV_CORE_API void qvTraceLog(int level, const char* file, int line, const char* function, const char* tag,
                            const char* format, ...) QV_PRINTF_FORMAT(6, 7);
}

#endif
