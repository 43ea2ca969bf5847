// The reports of a command line.
#ifndef QVINSPECT_PRESENTERS_H
#define QVINSPECT_PRESENTERS_H

#include "CommandLine.h"
#include "Inspect.h"

namespace qvinspect {

// Opens their outputs. Throws OutputError if one cannot be opened.
Presenters makePresenters(const CommandLine& line);

// Whether standard output is written while an input is read, not only at its end.
bool writesWhileReading(const CommandLine& line);

}  // namespace qvinspect

#endif
