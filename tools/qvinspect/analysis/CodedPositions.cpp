#include "analysis/CodedPositions.h"

#include <algorithm>

namespace qvinspect {

// As in unescapedUnit(): nal_unit(), H.264 (08/2021) 7.3.1 and H.265 (08/2021) 7.3.1.1.
CodedPositions::CodedPositions(const unsigned char* unit, size_t size) {
    int zeroBytes = 0;
    for (size_t i = 0; i < size; ++i) {
        if (zeroBytes >= 2 && unit[i] == 0x03) {
            zeroBytes = 0;
            escaped_.push_back(i - escaped_.size());
            continue;
        }
        zeroBytes = unit[i] == 0x00 ? zeroBytes + 1 : 0;
    }
}

size_t CodedPositions::of(size_t position) const {
    const auto behind = std::upper_bound(escaped_.begin(), escaped_.end(), position);
    return position + static_cast<size_t>(behind - escaped_.begin());
}

}  // namespace qvinspect
