// What a command line asks for, from its first input to its exit code.
#ifndef QVINSPECT_INSPECTALL_H
#define QVINSPECT_INSPECTALL_H

#include "CommandLine.h"

namespace qvinspect {

// Inspects the inputs one after the other and returns one of the codes of ExitCode.h. Throws OutputError when
// an output cannot be opened.
int inspectAll(const CommandLine& line);

}  // namespace qvinspect

#endif
