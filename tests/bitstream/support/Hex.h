// Bytes from text, and bytes as the library borrows them.
#ifndef QV_TESTS_BITSTREAM_HEX_H
#define QV_TESTS_BITSTREAM_HEX_H

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "bitstream/Bytes.h"

namespace qv_test {

// "00 00 03" as bytes. Blanks do not count.
inline std::vector<uint8_t> hex(const std::string& text) {
    std::string digits;
    for (const char c : text) {
        if (c != ' ') {
            digits += c;
        }
    }
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    }
    if (digits.size() % 2 != 0) {
        throw std::invalid_argument("an odd number of digits: " + text);
    }
    return bytes;
}

// Bytes as text, for messages.
inline std::string hexOf(qv::Bytes bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        text += text.empty() ? "" : " ";
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

inline qv::Bytes bytesOf(const std::vector<uint8_t>& bytes) {
    return {bytes.data(), bytes.size()};
}

inline std::vector<uint8_t> copyOf(qv::Bytes bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace qv_test

#endif
