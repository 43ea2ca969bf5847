// The reports that a command line asks for.
#ifndef QVINSPECT_PRESENTERS_H
#define QVINSPECT_PRESENTERS_H

#include "CommandLine.h"
#include "Inspect.h"

namespace qvinspect {

// Opens their outputs. Throws OutputError when one cannot be.
Presenters makePresenters(const CommandLine& line);

}  // namespace qvinspect

#endif
