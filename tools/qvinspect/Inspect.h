// Inspects one file from its opening to its summary.
#ifndef QVINSPECT_INSPECT_H
#define QVINSPECT_INSPECT_H

#include <string>

#include "CommandLine.h"
#include "report/Output.h"

namespace qvinspect {

// Throws InputError, with nothing printed, when the file cannot be inspected at all.
void inspectFile(const std::string& path, const CommandLine& line, Output& output);

}  // namespace qvinspect

#endif
