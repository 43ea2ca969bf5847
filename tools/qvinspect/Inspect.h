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

// Throws InputError, with nothing presented, if the input cannot be inspected at all. Returns early if the
// program is interrupted.
Outcome inspectFile(const std::string& path, const CommandLine& line, const Presenters& presenters);

// False if no output can be written any more, and the exit code depends on nothing else.
bool isAnythingWanted(const CommandLine& line, const Presenters& presenters);

// The name of an input in reports: without its folder, unless --stamp is given.
std::string reportedName(const std::string& path, const CommandLine& line);

}  // namespace qvinspect

#endif
