// A line on the terminal about how far the reading of an input has come.
#ifndef QVINSPECT_PROGRESS_H
#define QVINSPECT_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

#include "input/AccessUnitReader.h"

namespace qvinspect {

class Progress {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Now = std::function<TimePoint()>;

    // terminal: a file to write to, or -1 for no progress line at all.
    explicit Progress(int terminal, Now now = std::chrono::steady_clock::now);

    // Erases the line.
    ~Progress() { erase(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Behind every access unit; looks at the clock only now and then. The line first shows after a second
    // and is written at most five times a second.
    void update(const AccessUnitReader& reader) {
        if (terminal_ >= 0 && ++updates_ % kUpdatesPerLook == 0) {
            look(reader.progress());
        }
    }

    // Leaves the terminal as it was; ahead of anything else that is written there.
    void erase();

private:
    static constexpr unsigned kUpdatesPerLook = 16;

    void look(const ReadProgress& progress);
    void show(const std::string& text);

    int terminal_;
    Now now_;
    TimePoint begin_;
    TimePoint next_;  // the line is not written again ahead of this
    unsigned updates_ = 0;
    size_t shown_ = 0;  // characters on the line
};

// "37% at 512.0 MB/s, 0:42 left", or "1530 MB at 512.0 MB/s" when the size is not known.
std::string progressText(const ReadProgress& progress, double seconds);

}  // namespace qvinspect

#endif
