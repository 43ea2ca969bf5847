// Inspects one input from its opening to its end.
#ifndef QVINSPECT_INSPECT_H
#define QVINSPECT_INSPECT_H

#include <memory>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "report/Presenter.h"

namespace qvinspect {

using Presenters = std::vector<std::unique_ptr<Presenter>>;

struct Outcome {
    bool hasErrors = false;
    bool hasFailedCheck = false;
};

// Throws InputError, with nothing presented, when the input cannot be inspected at all. Ends early, in good
// order, when the program is interrupted.
Outcome inspectFile(const std::string& path, const CommandLine& line, const Presenters& presenters);

// False when no output can be written any more, and the exit code depends on nothing else.
bool isAnythingWanted(const CommandLine& line, const Presenters& presenters);

// As reports name an input: without its folder, unless that is asked for with --stamp.
std::string reportedName(const std::string& path, const CommandLine& line);

}  // namespace qvinspect

#endif
