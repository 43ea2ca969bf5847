// Bytes in hexadecimal.
#ifndef QVINSPECT_HEX_H
#define QVINSPECT_HEX_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace qvinspect {

// Two lower-case digits for each byte, without separators.
std::string hexText(const uint8_t* bytes, size_t size);

}  // namespace qvinspect

#endif
