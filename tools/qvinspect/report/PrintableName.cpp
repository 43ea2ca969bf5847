// UTF-8: RFC 3629 section 4.
#include "report/PrintableName.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace qvinspect {

namespace {

// Characters that are not shown: control characters, and those that change the order or the lines in which
// other characters are shown.
struct CodeRange {
    unsigned first;
    unsigned last;
};
constexpr CodeRange kUnprintable[] = {
    {0x0000, 0x001F},  // C0
    {0x007F, 0x009F},  // DEL, C1
    {0x061C, 0x061C},  // ARABIC LETTER MARK
    {0x200E, 0x200F},  // LEFT-TO-RIGHT MARK, RIGHT-TO-LEFT MARK
    {0x2028, 0x202E},  // LINE and PARAGRAPH SEPARATOR; bidirectional embeddings and overrides
    {0x2066, 0x2069},  // bidirectional isolates
};

unsigned byteAt(const std::string& name, size_t at) {
    return at < name.size() ? static_cast<unsigned char>(name[at]) : 0;
}

// Bytes of a character by its first byte; 0 if no character begins with it.
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

// The second byte excludes overlong forms, surrogates and values above U+10FFFF.
bool isSecondByteOf(unsigned lead, unsigned second) {
    const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    return second >= low && second <= high;
}

bool isCharacter(const std::string& name, size_t at, size_t length) {
    if (length == 0 || (length > 1 && !isSecondByteOf(byteAt(name, at), byteAt(name, at + 1)))) {
        return false;
    }
    for (size_t i = 2; i < length; ++i) {
        if ((byteAt(name, at + i) & 0xC0) != 0x80) {
            return false;
        }
    }
    return true;
}

unsigned codeOf(const std::string& name, size_t at, size_t length) {
    constexpr unsigned kLeadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    unsigned code = byteAt(name, at) & kLeadBits[length];
    for (size_t i = 1; i < length; ++i) {
        code = code << 6 | (byteAt(name, at + i) & 0x3F);
    }
    return code;
}

bool isPrintable(const std::string& name, size_t at, size_t length) {
    if (!isCharacter(name, at, length)) {
        return false;
    }
    const unsigned code = codeOf(name, at, length);
    return std::none_of(std::begin(kUnprintable), std::end(kUnprintable),
                        [&](const CodeRange& range) { return code >= range.first && code <= range.last; });
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
