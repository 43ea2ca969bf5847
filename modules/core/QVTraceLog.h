/// \file
/// The player's log. Contract only: a host links its own definition or the stand-alone core's.
#ifndef QV_CORE_QVTRACELOG_H
#define QV_CORE_QVTRACELOG_H

#include "QVCoreExport.h"

/// Has the compiler compare a printf format with its arguments.
#if defined(__GNUC__)
#define QV_PRINTF_FORMAT(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define QV_PRINTF_FORMAT(formatIndex, firstArgument)
#endif

/// Levels, as passed to qvTraceLog.
enum QVTraceLevel {
    QVTraceError = 0,        ///< rejected input, null records, failed framing
    QVTraceWarning = 1,      ///< an SEI payload truncated
    QVTraceInformation = 2,  ///< stream properties such as the HEVC profile
    QVTraceDebug = 3         ///< detail: SPS summary, crop notice, decoded picture timing
};

extern "C" {

/// Writes one log line. May be called from any thread. All strings are borrowed for the duration of the call.
///
/// Never fails observably. It may throw: callers release what they own and let the exception pass.
///
/// \param level     a QVTraceLevel, passed through as a number; any other value is the host's to interpret
/// \param file      source file name, never null
/// \param line      source line
/// \param function  name of the operation or of its sub-step, never null
/// \param tag       component tag, never null
/// \param format    printf format; most texts end in a line feed, a few do not
QV_CORE_API void qvTraceLog(int level, const char* file, int line, const char* function, const char* tag,
                            const char* format, ...) QV_PRINTF_FORMAT(6, 7);
}

#endif
