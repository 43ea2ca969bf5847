// The search for start codes in pieces of a stream.
#include "bitstream/units/StartCode.h"

#include "startcode/StartCodeSearch.h"

namespace qv {

std::optional<StartCode> findStartCode(Bytes data, size_t from, size_t zeroByteFrom) noexcept {
    if (data.size <= kStartCodePrefixSize || from >= data.size - kStartCodePrefixSize) {
        return std::nullopt;
    }
    size_t prefix = 0;
    if (qv_detail::listPrefixes(data.data, from, data.size - kStartCodePrefixSize, &prefix, 1) == 0) {
        return std::nullopt;
    }
    const bool hasZeroByte = prefix > zeroByteFrom && data[prefix - 1] == 0x00;
    return StartCode{hasZeroByte ? prefix - 1 : prefix, prefix + kStartCodePrefixSize};
}

}  // namespace qv
