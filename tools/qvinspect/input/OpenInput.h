// Opens a file as a raw stream or a container, whichever it is.
#ifndef QVINSPECT_OPENINPUT_H
#define QVINSPECT_OPENINPUT_H

#include <memory>
#include <string>

#include "input/AccessUnitReader.h"
#include "input/InputOptions.h"

namespace qvinspect {

// The options for a raw stream are trusted. Throws InputError if the input cannot be read.
std::unique_ptr<AccessUnitReader> openInput(const std::string& path, const InputOptions& options);

}  // namespace qvinspect

#endif
