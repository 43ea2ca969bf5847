#include "input/UnescapedUnit.h"

#include <algorithm>

namespace qvinspect {

// nal_unit(), H.264 (08/2021) 7.3.1 and H.265 (08/2021) 7.3.1.1.
std::vector<uint8_t> unescapedUnit(const unsigned char* unit, size_t size, size_t limit) {
    const size_t end = std::min(size, limit);
    std::vector<uint8_t> bytes;
    bytes.reserve(end);
    int zeroBytes = 0;
    for (size_t i = 0; i < end; ++i) {
        if (zeroBytes >= 2 && unit[i] == 0x03) {
            zeroBytes = 0;
            continue;
        }
        zeroBytes = unit[i] == 0x00 ? zeroBytes + 1 : 0;
        bytes.push_back(unit[i]);
    }
    return bytes;
}

}  // namespace qvinspect
