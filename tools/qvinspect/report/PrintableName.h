// File names are arbitrary bytes, which may not all be sent to a terminal.
#ifndef QVINSPECT_PRINTABLENAME_H
#define QVINSPECT_PRINTABLENAME_H

#include <string>

namespace qvinspect {

// The name with \xNN for every byte of a control character, of a line separator or of a bidirectional control
// (U+061C, U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069), and for every byte that is not part of a
// UTF-8 character.
std::string printableName(const std::string& name);

}  // namespace qvinspect

#endif
