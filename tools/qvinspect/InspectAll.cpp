#include "InspectAll.h"

#include <fmt/format.h>

#include <memory>
#include <new>
#include <string>
#include <utility>

#include "ExitCode.h"
#include "Inspect.h"
#include "Interrupt.h"
#include "Presenters.h"
#include "input/InputError.h"
#include "report/Diagnostics.h"
#include "report/GuardedPresenter.h"
#include "report/Output.h"
#include "report/PrintableName.h"

namespace qvinspect {

namespace {

struct Totals {
    bool hasFailedOutput = false;
    bool hasFailedInput = false;
    bool hasErrors = false;
    bool hasFailedCheck = false;
};

void inspect(const std::string& file, const CommandLine& line, const Presenters& presenters, Totals& totals) {
    const auto fail = [&](const char* reason) {
        totals.hasFailedInput = true;
        for (const auto& presenter : presenters) {
            presenter->fail(reportedName(file, line), reason);
        }
        complain(fmt::format("{}: {}", file == "-" ? "standard input" : printableName(file), reason));
    };
    try {
        const Outcome outcome = inspectFile(file, line, presenters);
        totals.hasErrors |= outcome.hasErrors;
        totals.hasFailedCheck |= outcome.hasFailedCheck;
    } catch (const InputError& error) {
        fail(error.what());
    } catch (const std::bad_alloc&) {
        // The memory of the file is free again.
        fail(
            "needs more memory than is available, or than the limit for a file of its size; what was read "
            "before is reported");
    }
}

int exitCodeOf(const Totals& totals, const CommandLine& line) {
    if (isInterrupted()) {
        return kExitInterrupted;
    }
    if (totals.hasFailedOutput) {
        return kExitOutput;
    }
    if (totals.hasFailedInput) {
        return kExitInput;
    }
    if (totals.hasFailedCheck) {
        return kExitCheck;
    }
    return totals.hasErrors && line.strict ? kExitErrors : kExitOk;
}

// A failing output does not affect the others.
Presenters guarded(Presenters presenters, Totals& totals) {
    const auto report = [&totals](const OutputError& error) {
        if (!error.isBrokenPipe()) {
            totals.hasFailedOutput = true;
            complain(error.what());
        }
    };
    for (auto& presenter : presenters) {
        presenter = std::make_unique<GuardedPresenter>(std::move(presenter), report);
    }
    return presenters;
}

}  // namespace

int inspectAll(const CommandLine& line) {
    Totals totals;
    const Presenters presenters = guarded(makePresenters(line), totals);
    for (const std::string& file : line.files) {
        if (isInterrupted() || !isAnythingWanted(line, presenters)) {
            break;
        }
        inspect(file, line, presenters, totals);
    }
    for (const auto& presenter : presenters) {
        presenter->finish();
    }
    return exitCodeOf(totals, line);
}

}  // namespace qvinspect
