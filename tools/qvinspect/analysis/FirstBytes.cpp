#include "analysis/FirstBytes.h"

#include <fmt/format.h>

namespace qvinspect {

std::string firstBytes(const uint8_t* bytes, size_t size) {
    constexpr size_t kMostBytes = 16;
    std::string text;
    for (size_t i = 0; i < size && i < kMostBytes; ++i) {
        text += fmt::format("{}{:02x}", i > 0 ? " " : "", bytes[i]);
    }
    return size > kMostBytes ? text + " ..." : text;
}

}  // namespace qvinspect
