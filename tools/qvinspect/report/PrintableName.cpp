// UTF-8: RFC 3629 section 4.
#include "report/PrintableName.h"

#include <fmt/format.h>

#include <cstddef>

namespace qvinspect {

namespace {

constexpr unsigned kFirstPrintableBeyondAscii = 0xA0;  // U+0080 to U+009F are control characters

unsigned byteAt(const std::string& name, size_t at) {
    return at < name.size() ? static_cast<unsigned char>(name[at]) : 0;
}

// Bytes of a character by its first byte; 0 when no character begins so.
size_t lengthByLeadByte(unsigned lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// The second byte rules out overlong forms, surrogates and what lies beyond U+10FFFF.
bool isSecondByteOf(unsigned lead, unsigned second) {
    const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return second >= low && second <= high;
}

bool isPrintable(const std::string& name, size_t at, size_t length) {
    const unsigned lead = byteAt(name, at);
    if (length == 1) {
        return lead >= 0x20 && lead != 0x7F;
    }
    const unsigned second = byteAt(name, at + 1);
    if (length == 0 || !isSecondByteOf(lead, second)) {
        return false;
    }
    for (size_t i = 2; i < length; ++i) {
        if ((byteAt(name, at + i) & 0xC0) != 0x80) {
            return false;
        }
    }
    return length > 2 || ((lead & 0x1F) << 6 | (second & 0x3F)) >= kFirstPrintableBeyondAscii;
}

}  // namespace

std::string printableName(const std::string& name) {
    std::string text;
    for (size_t at = 0; at < name.size();) {
        const size_t length = lengthByLeadByte(byteAt(name, at));
        if (isPrintable(name, at, length)) {
            text.append(name, at, length);
            at += length;
        } else {
            text += fmt::format("\\x{:02X}", byteAt(name, at));
            ++at;
        }
    }
    return text;
}

}  // namespace qvinspect
