// The reports that a command line asks for.
#ifndef QVINSPECT_PRESENTERS_H
#define QVINSPECT_PRESENTERS_H

#include "CommandLine.h"
#include "Inspect.h"

namespace qvinspect {

// Opens their outputs. Throws OutputError when one cannot be.
Presenters makePresenters(const CommandLine& line);

// Standard output is written to while an input is read, not only at its end.
bool writesWhileReading(const CommandLine& line);

}  // namespace qvinspect

#endif
