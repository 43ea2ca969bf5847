// A line on the terminal that shows the progress of reading an input.
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

    // terminal: the descriptor to write to, or -1 for no progress line.
    explicit Progress(int terminal, Now now = std::chrono::steady_clock::now);

    // Erases the line.
    ~Progress() { erase(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Called after every access unit. Reads the clock only occasionally. The line first appears after a
    // second and is written at most five times a second.
    void update(const AccessUnitReader& reader) {
        if (terminal_ >= 0 && ++updates_ % kUpdatesPerLook == 0) {
            look(reader.progress());
        }
    }

    // Erases the line. Called before anything else is written to the terminal.
    void erase();

private:
    static constexpr unsigned kUpdatesPerLook = 16;

    void look(const ReadProgress& progress);
    void show(const std::string& text);

    int terminal_;
    Now now_;
    TimePoint begin_;
    TimePoint next_;  // the line is not written again before this
    unsigned updates_ = 0;
    size_t shown_ = 0;  // characters on the line
};

// "37% at 512.0 MB/s, 0:42 left", or "1530 MB at 512.0 MB/s" if the size is not known.
std::string progressText(const ReadProgress& progress, double seconds);

}  // namespace qvinspect

#endif
