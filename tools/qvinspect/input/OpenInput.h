// Opens a file as what it is: a raw byte stream or a container.
#ifndef QVINSPECT_OPENINPUT_H
#define QVINSPECT_OPENINPUT_H

#include <memory>
#include <string>

#include "input/AccessUnitReader.h"
#include "input/InputOptions.h"

namespace qvinspect {

// The caller is taken at its word about a raw stream. Throws InputError when the input cannot be read.
std::unique_ptr<AccessUnitReader> openInput(const std::string& path, const InputOptions& options);

}  // namespace qvinspect

#endif
