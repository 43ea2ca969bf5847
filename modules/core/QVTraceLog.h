/// \file
/// The player's log. Declaration only: a host links its own definition or the stand-alone core's.
#ifndef QV_CORE_QVTRACELOG_H
#define QV_CORE_QVTRACELOG_H

#include "QVCoreExport.h"

/// Makes the compiler check a printf format against its arguments.
#if defined(__GNUC__)
#define QV_PRINTF_FORMAT(formatIndex, firstArgument) \
    __attribute__((format(printf, formatIndex, firstArgument)))
#else
#define QV_PRINTF_FORMAT(formatIndex, firstArgument)
#endif

/// The levels that the library passes to qvTraceLog.
enum QVTraceLevel {
    QVTraceError = 0,        ///< rejected input, null records, failed framing
    QVTraceWarning = 1,      ///< an SEI payload truncated
    QVTraceInformation = 2,  ///< stream properties such as the HEVC profile
    QVTraceDebug = 3         ///< detail: SPS summary, crop notice, decoded picture timing
};

extern "C" {

/// Writes one log line. May be called from any thread. All strings are borrowed for the duration of the call.
///
/// The function reports no failure. It may throw: callers release what they own and let the exception pass.
///
/// \param level     a QVTraceLevel as a number; the host decides how to handle any other value
/// \param file      source file name, never null
/// \param line      source line
/// \param function  name of the operation or of one of its sub-steps, never null
/// \param tag       component tag, never null
/// \param format    printf format; most texts end in a line feed, a few do not
QV_CORE_API void qvTraceLog(int level, const char* file, int line, const char* function, const char* tag,
                            const char* format, ...) QV_PRINTF_FORMAT(6, 7);
}

#endif
