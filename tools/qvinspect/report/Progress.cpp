#include "report/Progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace qvinspect {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kUnseen{1000};
constexpr milliseconds kBetween{200};
constexpr double kMegabyte = 1e6;

std::string timeText(double seconds) {
    constexpr double kMostSeconds = 359999;  // 99:59:59
    const auto whole = static_cast<unsigned>(std::min(seconds, kMostSeconds));
    const unsigned hours = whole / 3600;
    const unsigned minutes = whole / 60 % 60;
    return hours > 0 ? fmt::format("{}:{:02}:{:02}", hours, minutes, whole % 60)
                     : fmt::format("{}:{:02}", minutes, whole % 60);
}

}  // namespace

std::string progressText(const ReadProgress& progress, double seconds) {
    const auto bytes = static_cast<double>(progress.bytes);
    const double rate = seconds > 0 ? bytes / seconds : 0;
    const std::string rateText = fmt::format("{:.1f} MB/s", rate / kMegabyte);
    if (!progress.size || *progress.size == 0) {
        return fmt::format("{:.0f} MB at {}", bytes / kMegabyte, rateText);
    }
    // A file can grow while it is read.
    const auto size = static_cast<double>(std::max(*progress.size, progress.bytes));
    const auto percent = static_cast<unsigned>(bytes / size * 100);
    return rate > 0 ? fmt::format("{}% at {}, {} left", percent, rateText, timeText((size - bytes) / rate))
                    : fmt::format("{}%", percent);
}

Progress::Progress(int terminal, Now now)
    : terminal_(terminal), now_(std::move(now)), begin_(now_()), next_(begin_ + kUnseen) {}

void Progress::look(const ReadProgress& progress) {
    const TimePoint now = now_();
    if (now >= next_) {
        next_ = now + kBetween;
        show(progressText(progress, std::chrono::duration<double>(now - begin_).count()));
    }
}

void Progress::erase() {
    if (shown_ > 0) {
        show("");
    }
}

// Blanks erase the rest of the previous line, and the cursor returns to its beginning, so that the next
// output overwrites it.
void Progress::show(const std::string& text) {
    const std::string line = fmt::format("\r{:<{}}\r{}", text, shown_, text);
    shown_ = text.size();
    [[maybe_unused]] const ssize_t written = write(terminal_, line.data(), line.size());
}

}  // namespace qvinspect
