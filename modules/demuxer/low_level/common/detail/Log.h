// The calls of the player's log.
#ifndef QV_DEMUXER_DETAIL_LOG_H
#define QV_DEMUXER_DETAIL_LOG_H

#include "QVTraceLog.h"

namespace qv_detail {

// Every line names the module's main source, whichever file it comes from: hosts filter by it.
constexpr const char* kLogFile = "QVNaluParser.cpp";
constexpr const char* kLogTag = "QVPlayerCore.DecoderConfigurationRecord";

}  // namespace qv_detail

// QV_LOG(level, function, format, arguments...)
#define QV_LOG(level, function, ...) \
    qvTraceLog(level, qv_detail::kLogFile, __LINE__, function, qv_detail::kLogTag, __VA_ARGS__)

// For the few texts that do not match their arguments but must not change, because hosts know them: the same
// call without the compiler's check of the format. Each use gives its reason.
namespace qv_detail {

using UncheckedTraceLog = void (*)(int level, const char* file, int line, const char* function,
                                   const char* tag, const char* format, ...);
constexpr UncheckedTraceLog kUncheckedTraceLog = &qvTraceLog;

}  // namespace qv_detail

#define QV_LOG_UNCHECKED(level, function, ...)                                                        \
    qv_detail::kUncheckedTraceLog(level, qv_detail::kLogFile, __LINE__, function, qv_detail::kLogTag, \
                                  __VA_ARGS__)

#endif
