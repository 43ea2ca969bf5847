// Executes a command line, from its first input to its exit code.
#ifndef QVINSPECT_INSPECTALL_H
#define QVINSPECT_INSPECTALL_H

#include "CommandLine.h"

namespace qvinspect {

// Inspects the inputs in sequence and returns one of the codes of ExitCode.h. Throws OutputError if an output
// cannot be opened.
int inspectAll(const CommandLine& line);

}  // namespace qvinspect

#endif
