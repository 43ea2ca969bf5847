// Inspects one file from its opening to its summary.
#ifndef QVINSPECT_INSPECT_H
#define QVINSPECT_INSPECT_H

#include <optional>
#include <string>

#include "Output.h"
#include "QVCodecParameters.h"

namespace qvinspect {

// Throws InputError, with nothing printed, when the file cannot be inspected at all.
void inspectFile(const std::string& path, std::optional<QVCodecID> codec, Output& output);

}  // namespace qvinspect

#endif
