#include "Inspect.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "Interrupt.h"
#include "analysis/Analysis.h"
#include "analysis/Clock.h"
#include "analysis/StreamDetails.h"
#include "analysis/StreamTotals.h"
#include "input/InputError.h"
#include "input/OpenInput.h"
#include "report/PrintableName.h"

namespace qvinspect {

namespace {

[[noreturn]] void refuseEmpty(const std::vector<Finding>& findings) {
    const std::string reason = findings.empty() ? "its video has no samples" : findings.front().text;
    throw InputError(fmt::format("nothing to list: {}; check that it is the right file and whole", reason));
}

// The part of the stream that is asked for, in decoding order.
class Part {
public:
    explicit Part(const InputOptions& options) : options_(options) {}

    enum class Place { Ahead, Inside, Behind };

    Place placeOf(const AccessUnitView& view) {
        if (options_.mostAccessUnits && taken_ == *options_.mostAccessUnits) {
            return Place::Behind;
        }
        if (!options_.start && !options_.duration) {
            ++taken_;
            return Place::Inside;
        }
        const std::optional<double> time = view.decodeTime ? view.decodeTime : view.time;
        if (!time) {
            throw InputError(
                "has no times that --start and --duration could count by; for a raw stream give "
                "--frame-rate, or use --limit");
        }
        const double begin = begin_.value_or(*time);
        begin_ = begin;
        const double sinceStart = *time - begin - options_.start.value_or(0);
        if (sinceStart < 0) {
            return Place::Ahead;
        }
        if (options_.duration && sinceStart >= *options_.duration) {
            return Place::Behind;
        }
        ++taken_;
        return Place::Inside;
    }

    bool isEmpty() const { return taken_ == 0; }

private:
    const InputOptions& options_;
    std::optional<double> begin_;
    uint64_t taken_ = 0;
};

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
          name_(reportedName(path, line)) {}

    Outcome run() {
        AccessUnit accessUnit;
        if (!reader_->next(accessUnit)) {
            refuseEmpty(accessUnit.findings);
        }
        const StreamHead head = begin(accessUnit.fileOffset.has_value());
        bool isMore = true;
        for (uint64_t number = 1; isMore && !isInterrupted() && take(number, accessUnit, head); ++number) {
            isMore = reader_->next(accessUnit);
        }
        if (!hasBegun_) {
            throw InputError("holds nothing of the part that --start, --duration and --limit ask for");
        }
        return end(isMore ? std::vector<Finding>{} : accessUnit.findings);
    }

private:
    StreamHead begin(bool isRaw) {
        ConfigurationDetails configuration = details_.addConfiguration(reader_->info().configuration);
        counter_.addConfiguration(configuration);
        return {name_, reader_->info(), isRaw, std::move(configuration.parameterSets)};
    }

    // False when no more is asked for.
    bool take(uint64_t number, const AccessUnit& accessUnit, const StreamHead& head) {
        const AccessUnitReport report = analyse(accessUnit);
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
        }
        return place != Part::Place::Behind;
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
    std::string name_;
    bool hasBegun_ = false;
};

}  // namespace

Outcome inspectFile(const std::string& path, const CommandLine& line, const Presenters& presenters) {
    return Inspection(path, line, presenters).run();
}

std::string reportedName(const std::string& path, const CommandLine& line) {
    if (path == "-") {
        return "standard input";
    }
    return printableName(line.stamp ? path : std::filesystem::path(path).filename().string());
}

}  // namespace qvinspect
