#include "input/StartCode.h"

#include "startcode/StartCodeSearch.h"

namespace qvinspect {

std::optional<StartCode> findStartCode(const unsigned char* data, size_t size, size_t from,
                                       size_t zeroByteFrom) {
    if (size <= kStartCodeLength || from >= size - kStartCodeLength) {
        return std::nullopt;
    }
    size_t prefixAt = 0;
    if (qv_detail::listPrefixes(data, from, size - kStartCodeLength, &prefixAt, 1) == 0) {
        return std::nullopt;
    }
    const bool hasZeroByte = prefixAt > zeroByteFrom && data[prefixAt - 1] == 0x00;
    return StartCode{hasZeroByte ? prefixAt - 1 : prefixAt, prefixAt + kStartCodeLength};
}

}  // namespace qvinspect
