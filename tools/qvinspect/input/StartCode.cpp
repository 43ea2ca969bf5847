#include "input/StartCode.h"

namespace qvinspect {

std::optional<StartCode> findStartCode(const unsigned char* data, size_t size, size_t from,
                                       size_t zeroByteFrom) {
    // The search looks at the third byte: anything above 01 there rules out three places at once.
    for (size_t third = from + 2; third + 1 < size;) {
        const unsigned char byte = data[third];
        if (byte == 0x01 && data[third - 1] == 0x00 && data[third - 2] == 0x00) {
            const size_t prefixAt = third - 2;
            const bool hasZeroByte = prefixAt > zeroByteFrom && data[prefixAt - 1] == 0x00;
            return StartCode{hasZeroByte ? prefixAt - 1 : prefixAt, third + 1};
        }
        third += byte == 0x00 ? 1 : 3;
    }
    return std::nullopt;
}

}  // namespace qvinspect
