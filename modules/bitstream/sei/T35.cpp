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

// The value of a number of at most that many digits; none for another text.
std::optional<uint32_t> hexNumberOf(std::string_view text, size_t mostDigits) {
    if (text.empty() || text.size() > mostDigits) {
        return std::nullopt;
    }
    uint32_t value = 0;
    for (const char c : text) {
        const uint32_t digit = digitOf(c);
        if (digit > 0xF) {
            return std::nullopt;
        }
        value = value << 4 | digit;
    }
    return value;
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
    if (code.itu_t_t35_terminal_provider_code) {
        text += ':';
        appendHex(*code.itu_t_t35_terminal_provider_code, kProviderDigits, text);
    }
    return text;
}

std::optional<T35Code> t35CodeOf(std::string_view text) noexcept {
    const size_t colon = text.find(':');
    const std::optional<uint32_t> country = hexNumberOf(text.substr(0, colon), 2 * kCountryDigits);
    if (!country) {
        return std::nullopt;
    }
    T35Code code;
    if (*country >> 8 == T35Code::kExtendedCountry) {
        code.itu_t_t35_country_code = T35Code::kExtendedCountry;
        code.itu_t_t35_country_code_extension_byte = *country & 0xFFU;
    } else if (*country < T35Code::kExtendedCountry) {
        code.itu_t_t35_country_code = *country;
    } else {
        return std::nullopt;
    }
    if (colon != std::string_view::npos) {
        code.itu_t_t35_terminal_provider_code = hexNumberOf(text.substr(colon + 1), kProviderDigits);
        if (!code.itu_t_t35_terminal_provider_code) {
            return std::nullopt;
        }
    }
    return code;
}

T35 t35Of(const UserDataRegistered& message) noexcept {
    T35 t35;
    t35.code.itu_t_t35_country_code = message.itu_t_t35_country_code;
    t35.code.itu_t_t35_country_code_extension_byte = message.itu_t_t35_country_code_extension_byte;
    Reader reader(message.itu_t_t35_payload_byte);
    t35.body = message.itu_t_t35_payload_byte;
    uint32_t provider = 0;
    reader.u(16, "itu_t_t35_terminal_provider_code", provider);
    if (reader.failed()) {
        t35.owner = T35Owner::Cut;
        return t35;
    }
    t35.code.itu_t_t35_terminal_provider_code = provider;
    t35.body = restOf(reader);
    for (const T35OwnerName& row : kT35Owners) {
        if (row.code != t35.code) {
            continue;
        }
        Reader ahead = reader;
        uint64_t identifier = 0;
        ahead.u(row.identifierBits, "itu_t_t35_terminal_provider_oriented_code", identifier);
        if (!ahead.failed() && identifier == row.identifier) {
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
