// Opens a file as what it is: a raw byte stream or a container.
#ifndef QVINSPECT_OPENINPUT_H
#define QVINSPECT_OPENINPUT_H

#include <memory>
#include <optional>
#include <string>

#include "input/AccessUnitReader.h"

namespace qvinspect {

// codec: what the caller says the file holds, if anything. For a container it chooses among its videos, for
// a raw byte stream it is taken at its word. Throws InputError when the file can be read as neither.
std::unique_ptr<AccessUnitReader> openInput(const std::string& path, std::optional<QVCodecID> codec);

}  // namespace qvinspect

#endif
