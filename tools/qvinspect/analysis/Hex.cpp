#include "analysis/Hex.h"

namespace qvinspect {

std::string hexText(const uint8_t* bytes, size_t size) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text(2 * size, '0');
    for (size_t i = 0; i < size; ++i) {
        text[2 * i] = kDigits[bytes[i] >> 4];
        text[2 * i + 1] = kDigits[bytes[i] & 0x0F];
    }
    return text;
}

}  // namespace qvinspect
