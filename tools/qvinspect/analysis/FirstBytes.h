// The beginning of a payload in hexadecimal.
#ifndef QVINSPECT_FIRSTBYTES_H
#define QVINSPECT_FIRSTBYTES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace qvinspect {

// At most 16 bytes, separated by blanks; "..." if there are more.
std::string firstBytes(const uint8_t* bytes, size_t size);

}  // namespace qvinspect

#endif
