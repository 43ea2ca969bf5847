// Owners of T.35 messages.
#include "bitstream/sei/T35.h"

#include "bitstream/syntax/Reader.h"

namespace qv::sei {

namespace {

constexpr size_t kCountryDigits = 2;
constexpr size_t kProviderDigits = 4;

void appendHex(uint32_t value, size_t digits, std::string& text) {
    while (digits-- > 0) {
        text += "0123456789ABCDEF"[value >> 4 * digits & 0xFU];
    }
}

// The value of a hexadecimal digit; 16 for another character.
uint32_t digitOf(char c) {
    constexpr std::string_view kLower = "0123456789abcdef";
    constexpr std::string_view kUpper = "0123456789ABCDEF";
    const size_t lower = kLower.find(c);
    const size_t upper = kUpper.find(c);
    const size_t digit = lower < upper ? lower : upper;
    return digit < kLower.size() ? static_cast<uint32_t>(digit) : 16;
}

// Takes a number of that many digits off the text.
bool takeHex(std::string_view& text, size_t digits, uint32_t& value) {
    value = 0;
    if (text.size() < digits) {
        return false;
    }
    for (const char c : text.substr(0, digits)) {
        const uint32_t digit = digitOf(c);
        if (digit > 0xF) {
            return false;
        }
        value = value << 4 | digit;
    }
    text.remove_prefix(digits);
    return true;
}

CodedBits restOf(Reader reader) {
    CodedBits rest;
    reader.payload_bytes("", rest);
    return rest;
}

}  // namespace

std::string textOf(const T35Code& code) {
    std::string text;
    appendHex(code.itu_t_t35_country_code, kCountryDigits, text);
    if (code.itu_t_t35_country_code == T35Code::kExtendedCountry) {
        appendHex(code.itu_t_t35_country_code_extension_byte, kCountryDigits, text);
    }
    text += ':';
    appendHex(code.itu_t_t35_terminal_provider_code, kProviderDigits, text);
    return text;
}

std::optional<T35Code> t35CodeOf(std::string_view text) noexcept {
    T35Code code;
    bool isCode = takeHex(text, kCountryDigits, code.itu_t_t35_country_code);
    if (isCode && code.itu_t_t35_country_code == T35Code::kExtendedCountry) {
        isCode = takeHex(text, kCountryDigits, code.itu_t_t35_country_code_extension_byte);
    }
    if (!isCode || text.empty() || text.front() != ':') {
        return std::nullopt;
    }
    text.remove_prefix(1);
    if (!takeHex(text, kProviderDigits, code.itu_t_t35_terminal_provider_code) || !text.empty()) {
        return std::nullopt;
    }
    return code;
}

T35 t35Of(const UserDataRegistered& message) noexcept {
    T35 t35;
    t35.code.itu_t_t35_country_code = message.itu_t_t35_country_code;
    t35.code.itu_t_t35_country_code_extension_byte = message.itu_t_t35_country_code_extension_byte;
    Reader reader(message.itu_t_t35_payload_byte);
    t35.body = message.itu_t_t35_payload_byte;
    reader.u(16, "itu_t_t35_terminal_provider_code", t35.code.itu_t_t35_terminal_provider_code);
    if (reader.failed()) {
        t35.owner = T35Owner::Cut;
        return t35;
    }
    t35.body = restOf(reader);
    for (const T35OwnerName& row : kT35Owners) {
        Reader ahead = reader;
        uint64_t identifier = 0;
        ahead.u(row.identifierBits, "itu_t_t35_terminal_provider_oriented_code", identifier);
        if (row.code == t35.code && !ahead.failed() && identifier == row.identifier) {
            t35.owner = row.owner;
            t35.identifierBits = row.identifierBits;
            t35.identifier = identifier;
            t35.body = restOf(ahead);
            return t35;
        }
    }
    return t35;
}

}  // namespace qv::sei
