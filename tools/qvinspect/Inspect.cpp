#include "Inspect.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "Interrupt.h"
#include "Presenters.h"
#include "analysis/Analysis.h"
#include "analysis/Clock.h"
#include "analysis/StreamDetails.h"
#include "analysis/StreamTotals.h"
#include "input/InputError.h"
#include "input/OpenInput.h"
#include "report/PrintableName.h"
#include "report/Progress.h"

namespace qvinspect {

namespace {

[[noreturn]] void refuseEmpty(const std::vector<Finding>& findings) {
    if (isInterrupted()) {
        throw InputError("interrupted before the end of its first access unit; nothing is listed");
    }
    const std::string reason = findings.empty() ? "its video has no samples" : findings.front().text;
    throw InputError(fmt::format("nothing to list: {}; check that it is the right file and whole", reason));
}

// The part of the stream to inspect.
class Part {
public:
    explicit Part(const InputOptions& options)
        : options_(options), isTimed_(options.start.has_value() || options.duration.has_value()) {}

    enum class Place { Before, Inside, After };

    // In decoding order.
    Place placeOf(const AccessUnitView& view) {
        if (isTimed_) {
            place_ = placeByTime(view);
        }
        taken_ += place_ == Place::Inside ? 1U : 0U;
        return place_;
    }

    // The part ends before the next access unit.
    bool isOver() const {
        return after_ > kMostReordered || (options_.mostAccessUnits && taken_ == *options_.mostAccessUnits);
    }

private:
    // Seconds: less than the duration of any access unit, more than the rounding error of sums at a border.
    static constexpr double kTimeTolerance = 1e-6;

    // Pictures that precede one in decoding order and follow it in output order are at most 16, each of two
    // fields (H.264 E.2.1 max_num_reorder_frames, H.265 7.4.3.2.1 sps_max_num_reorder_pics).
    static constexpr unsigned kMostReordered = 32;

    Place placeByTime(const AccessUnitView& view) {
        const std::optional<double> time = view.decodeTime ? view.decodeTime : view.time;
        if (!time && !begin_) {
            throw InputError(
                "has no times for --start and --duration; for a raw stream give "
                "--frame-rate, or use --limit");
        }
        if (!time) {
            return place_;  // the place of the one before it
        }
        begin_ = begin_.value_or(*time);
        const double sinceStart = *time - *begin_ - options_.start.value_or(0) + kTimeTolerance;
        if (sinceStart < 0) {
            return Place::Before;
        }
        if (!options_.duration || sinceStart < *options_.duration) {
            return Place::Inside;
        }
        after_ += view.decodeTime ? kMostReordered + 1 : 1;
        return Place::After;
    }

    const InputOptions& options_;
    bool isTimed_;
    std::optional<double> begin_;
    Place place_ = Place::Inside;  // of the last one
    unsigned after_ = 0;           // by presentation times; by decoding times the first one decides
    uint64_t taken_ = 0;
};

[[noreturn]] void refuseMissed() {
    throw InputError(isInterrupted() ? "interrupted before the part that --start selects; nothing is listed"
                                     : "ends before the part that --start selects; give an earlier time");
}

// Not on a terminal with another output at the same time.
bool showsProgress(const CommandLine& line) {
    return isatty(STDERR_FILENO) != 0 && !(writesWhileReading(line) && isatty(STDOUT_FILENO) != 0);
}

class Inspection {
public:
    Inspection(const std::string& path, const CommandLine& line, const Presenters& presenters)
        : line_(line),
          presenters_(presenters),
          reader_(openInput(path, line.input)),
          details_(reader_->info().parameters.codecId, line.requested),
          counter_(reader_->info()),
          clock_(line.input.frameRate),
          part_(line.input),
          progress_(showsProgress(line) ? STDERR_FILENO : -1),
          name_(reportedName(path, line)) {}

    Outcome run() {
        AccessUnit accessUnit;
        if (!reader_->next(accessUnit)) {
            refuseEmpty(accessUnit.findings);
        }
        const StreamHead head = begin(accessUnit);
        bool isMore = true;
        for (uint64_t number = 1; isMore && isWanted() && take(number, accessUnit, head); ++number) {
            progress_.update(*reader_);
            isMore = reader_->next(accessUnit);
        }
        progress_.erase();
        if (!hasBegun_) {
            refuseMissed();
        }
        return end(isMore ? std::vector<Finding>{} : accessUnit.findings);
    }

private:
    bool isWanted() const { return isAnythingWanted(line_, presenters_); }

    // Findings of the configuration record are counted with the first access unit.
    StreamHead begin(AccessUnit& first) {
        ConfigurationDetails configuration = details_.addConfiguration(reader_->info().configuration);
        counter_.addConfiguration(configuration);
        first.findings.insert(first.findings.begin(), configuration.findings.begin(),
                              configuration.findings.end());
        return {name_, reader_->info(), first.fileOffset.has_value(), std::move(configuration.parameterSets),
                std::move(configuration.seiUnits)};
    }

    // False at the end of the part.
    bool take(uint64_t number, const AccessUnit& accessUnit, const StreamHead& head) {
        AccessUnitReport report = analyse(accessUnit);
        const AccessUnitDetails details = details_.add(accessUnit, report);
        AccessUnitView view = viewOf(number, accessUnit, report, details);
        clock_.apply(view);
        const Part::Place place = part_.placeOf(view);
        if (place == Part::Place::Inside) {
            if (!std::exchange(hasBegun_, true)) {
                present([&](Presenter& presenter) { presenter.begin(head); });
            }
            counter_.add(view);
            line_.filter.apply(view);
            present([&](Presenter& presenter) { presenter.add(view); });
        } else if (place == Part::Place::Before) {
            counter_.addBeforePart(view);
        }
        return !part_.isOver();
    }

    Outcome end(const std::vector<Finding>& findings) {
        counter_.finish(findings);
        std::vector<CheckResult> checks;
        for (const Check& check : line_.checks) {
            checks.push_back(evaluate(check, counter_.totals()));
        }
        const StreamEnd streamEnd{counter_.totals(), findings, checks, isInterrupted()};
        present([&](Presenter& presenter) { presenter.end(streamEnd); });
        return {
            counter_.totals().errors > 0,
            std::any_of(checks.begin(), checks.end(), [](const CheckResult& check) { return !check.isMet; })};
    }

    template <typename Call>
    void present(const Call& call) {
        for (const auto& presenter : presenters_) {
            call(*presenter);
        }
    }

    const CommandLine& line_;
    const Presenters& presenters_;
    std::unique_ptr<AccessUnitReader> reader_;
    StreamDetails details_;
    StreamCounter counter_;
    Clock clock_;
    Part part_;
    Progress progress_;
    std::string name_;
    bool hasBegun_ = false;
};

}  // namespace

Outcome inspectFile(const std::string& path, const CommandLine& line, const Presenters& presenters) {
    return Inspection(path, line, presenters).run();
}

bool isAnythingWanted(const CommandLine& line, const Presenters& presenters) {
    return !line.checks.empty() || line.strict ||
           std::any_of(presenters.begin(), presenters.end(),
                       [](const auto& presenter) { return presenter->isWritable(); });
}

std::string reportedName(const std::string& path, const CommandLine& line) {
    if (path == "-") {
        return "standard input";
    }
    return printableName(line.stamp ? path : std::filesystem::path(path).filename().string());
}

}  // namespace qvinspect
