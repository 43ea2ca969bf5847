// The inspector's side of the platform functions: it defines qvTraceLog and QVDumpData::dumpActualData, so
// that the library's log lines become part of the listing.
#ifndef QVINSPECT_COREHOOKS_H
#define QVINSPECT_COREHOOKS_H

#include <string>
#include <vector>

namespace qvinspect {

struct LogLine {
    int level;  // QVTraceLevel
    std::string text;
};

// Keeps what the library logs on this thread during its lifetime. The innermost capture receives the lines;
// without one they are dropped. Dumps are always dropped: a listing shows where a sample is broken.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<LogLine>& lines() const { return lines_; }
    void add(LogLine line) { lines_.push_back(std::move(line)); }

private:
    LogCapture* outer_;
    std::vector<LogLine> lines_;
};

}  // namespace qvinspect

#endif
