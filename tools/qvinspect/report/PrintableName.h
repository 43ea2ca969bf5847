// File names are bytes; terminals are not to be sent any byte.
#ifndef QVINSPECT_PRINTABLENAME_H
#define QVINSPECT_PRINTABLENAME_H

#include <string>

namespace qvinspect {

// The name with every control character, and every byte that is not part of a UTF-8 character, as \xNN.
std::string printableName(const std::string& name);

}  // namespace qvinspect

#endif
