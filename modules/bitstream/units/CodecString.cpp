// Codec strings, written and parsed: RFC 6381, ISO/IEC 14496-15 Annex E.
#include "bitstream/units/CodecString.h"

#include <algorithm>
#include <iterator>

#include "bitstream/units/SpsHead.h"

namespace qv {

namespace {

constexpr std::string_view kAvcSampleEntries[] = {"avc1", "avc2", "avc3", "avc4", "svc1",
                                                  "svc2", "mvc1", "mvc2", "mvc3", "mvc4"};
constexpr std::string_view kHevcSampleEntries[] = {"hvc1", "hev1", "hvc2", "hev2", "lhv1", "lhe1"};
constexpr std::string_view kDolbyVisionSampleEntries[] = {"dvh1", "dvhe", "dva1", "dvav"};

constexpr uint32_t kConstraintBytes = 6;

// --- Writing ---

constexpr const char* kSmallDigits = "0123456789abcdef";
constexpr const char* kCapitalDigits = "0123456789ABCDEF";

// Two hexadecimal digits.
std::string byteText(uint32_t value, const char* digits) {
    return {digits[value >> 4 & 15], digits[value & 15]};
}

// Without leading zeros.
std::string hexText(uint32_t value) {
    std::string text;
    do {
        text.insert(text.begin(), kCapitalDigits[value & 15]);
        value >>= 4;
    } while (value != 0);
    return text;
}

std::string twoDigits(uint32_t value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

uint32_t reversed(uint32_t bits) {
    uint32_t result = 0;
    for (int i = 0; i < 32; ++i) {
        result = result << 1 | (bits >> i & 1);
    }
    return result;
}

uint32_t constraintByte(uint64_t flags, uint32_t number) {
    return static_cast<uint32_t>(flags >> 8 * (kConstraintBytes - 1 - number)) & 0xFF;
}

// --- Parsing ---

bool isDigit(char c, uint32_t base, uint32_t& digit) {
    if (c >= '0' && c <= '9') {
        digit = static_cast<uint32_t>(c - '0');
        return true;
    }
    const char small = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    if (base == 16 && small >= 'a' && small <= 'f') {
        digit = static_cast<uint32_t>(small - 'a') + 10;
        return true;
    }
    return false;
}

// Walks a text. The first thing that is not as expected is kept.
class Parser {
public:
    explicit Parser(std::string_view text) noexcept : text_(text) {
        while (at_ < text_.size() && text_[at_] == ' ') {
            ++at_;
        }
        while (!text_.empty() && text_.back() == ' ') {
            text_.remove_suffix(1);
        }
    }

    bool atEnd() const noexcept { return at_ >= text_.size(); }
    char next() const noexcept { return atEnd() ? '\0' : text_[at_]; }
    bool ok() const noexcept { return !fault_; }
    const CodecStringFault& fault() const noexcept { return fault_; }

    void expect(bool isRight, const char* expected) noexcept {
        if (!isRight && !fault_) {
            fault_ = {expected, at_};
        }
    }

    // One of the letters, of either case, or none. Its place among them.
    bool letter(std::string_view letters, uint32_t& place) noexcept {
        const char c = next();
        const char capital = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        const size_t found = letters.find(capital);
        if (atEnd() || found == std::string_view::npos) {
            return false;
        }
        ++at_;
        place = static_cast<uint32_t>(found);
        return true;
    }

    void point(const char* expected) noexcept {
        expect(next() == '.', expected);
        ++at_;
    }

    // A number up to most.
    uint32_t number(uint32_t base, uint32_t most, const char* expected) noexcept {
        const size_t first = at_;
        uint64_t value = 0;
        uint32_t digit = 0;
        while (isDigit(next(), base, digit) && value <= most) {
            value = value * base + digit;
            ++at_;
        }
        if ((at_ == first || value > most) && ok()) {
            fault_ = {expected, first};
        }
        return ok() ? static_cast<uint32_t>(value) : 0;
    }

    // Two hexadecimal digits.
    uint32_t byte(const char* expected) noexcept {
        const size_t first = at_;
        uint32_t high = 0;
        uint32_t low = 0;
        const bool isByte =
            first + 1 < text_.size() && isDigit(text_[first], 16, high) && isDigit(text_[first + 1], 16, low);
        expect(isByte, expected);
        at_ += 2;
        return high << 4 | low;
    }

    std::string_view rest() const noexcept { return atEnd() ? std::string_view() : text_.substr(at_); }
    void skip(size_t count) noexcept { at_ += count; }

private:
    std::string_view text_;
    size_t at_ = 0;
    CodecStringFault fault_;
};

template <size_t size>
bool contains(const std::string_view (&list)[size], const SampleEntry& entry) noexcept {
    return std::find(std::begin(list), std::end(list), entry.text()) != std::end(list);
}

// PPCCLL, or profile and level in decimal.
avc::CodecString parseAvc(Parser& parser, const SampleEntry& entry) noexcept {
    avc::CodecString string = {entry, 0, 0, 0};
    parser.point("a point after the sample entry");
    if (parser.rest().find('.') != std::string_view::npos) {
        string.profile_idc = parser.number(10, 255, "profile_idc, 0 to 255");
        parser.point("a point before level_idc");
        string.level_idc = parser.number(10, 255, "level_idc, 0 to 255");
    } else {
        string.profile_idc = parser.byte("profile_idc in two hexadecimal digits");
        string.constraint_set_flags = parser.byte("constraint flags in two hexadecimal digits");
        string.level_idc = parser.byte("level_idc in two hexadecimal digits");
    }
    return string;
}

hevc::CodecString parseHevc(Parser& parser, const SampleEntry& entry) noexcept {
    hevc::CodecString string = {entry, 0, 0, 0, false, 0, 0};
    parser.point("a point after the sample entry");
    uint32_t place = 0;
    if (parser.letter("ABC", place)) {
        string.general_profile_space = place + 1;
    }
    string.general_profile_idc = parser.number(10, 31, "general_profile_idc, 0 to 31");
    parser.point("a point before the compatibility flags");
    string.general_profile_compatibility_flags =
        reversed(parser.number(16, 0xFFFFFFFF, "32 compatibility flags in hexadecimal"));
    parser.point("a point before the tier");
    parser.expect(parser.letter("LH", place), "a tier: L or H");
    string.general_tier_flag = place == 1;
    string.general_level_idc = parser.number(10, 255, "general_level_idc, 0 to 255");
    for (uint32_t i = 0; i < kConstraintBytes && parser.ok() && !parser.atEnd(); ++i) {
        parser.point("a point before a constraint byte");
        const uint64_t byte = parser.number(16, 0xFF, "a constraint byte in hexadecimal");
        string.general_constraint_indicator_flags |= byte << 8 * (kConstraintBytes - 1 - i);
    }
    return string;
}

DolbyVisionCodecString parseDolbyVision(Parser& parser, const SampleEntry& entry) noexcept {
    DolbyVisionCodecString string = {entry, 0, 0};
    parser.point("a point after the sample entry");
    string.dv_profile = parser.number(10, 127, "dv_profile, 0 to 127");
    parser.point("a point before dv_level");
    string.dv_level = parser.number(10, 63, "dv_level, 0 to 63");
    return string;
}

CodecString parse(Parser& parser) noexcept {
    const SampleEntry entry = sampleEntryOf(parser.rest().substr(0, 4));
    const bool isAvc = contains(kAvcSampleEntries, entry);
    const bool isHevc = contains(kHevcSampleEntries, entry);
    const bool isDolbyVision = contains(kDolbyVisionSampleEntries, entry);
    parser.expect(isAvc || isHevc || isDolbyVision, "a sample entry of H.264 or H.265");
    parser.skip(4);
    if (isAvc) {
        return parseAvc(parser, entry);
    }
    if (isHevc) {
        return parseHevc(parser, entry);
    }
    return parseDolbyVision(parser, entry);
}

}  // namespace

// --- H.264 ---

namespace avc {

CodecString codecStringOf(const ConfigurationRecord& record, std::string_view sampleEntry) noexcept {
    return {sampleEntryOf(sampleEntry), record.AVCProfileIndication, record.profile_compatibility,
            record.AVCLevelIndication};
}

Read<CodecString> codecStringOfSps(Bytes unit, std::string_view sampleEntry) noexcept {
    SpsHead sps = {};
    Read<CodecString> read = {};
    read.fault = readSpsHead(unit, sps);
    read.record = {sampleEntryOf(sampleEntry), sps.profile_idc, sps.constraint_set_flags, sps.level_idc};
    return read;
}

std::string textOf(const CodecString& string) {
    return std::string(string.sampleEntry.text()) + "." + byteText(string.profile_idc, kSmallDigits) +
           byteText(string.constraint_set_flags, kSmallDigits) + byteText(string.level_idc, kSmallDigits);
}

}  // namespace avc

// --- H.265 ---

namespace hevc {

CodecString codecStringOf(const ConfigurationRecord& record, std::string_view sampleEntry) noexcept {
    return {sampleEntryOf(sampleEntry),
            record.general_profile_space,
            record.general_profile_idc,
            record.general_profile_compatibility_flags,
            record.general_tier_flag,
            record.general_level_idc,
            record.general_constraint_indicator_flags};
}

Read<CodecString> codecStringOfSps(Bytes unit, std::string_view sampleEntry) noexcept {
    SpsHead sps = {};
    Read<CodecString> read = {};
    read.fault = readSpsHead(unit, sps);
    read.record = {sampleEntryOf(sampleEntry),
                   sps.general_profile_space,
                   sps.general_profile_idc,
                   sps.general_profile_compatibility_flags,
                   sps.general_tier_flag,
                   sps.general_level_idc,
                   sps.general_constraint_indicator_flags};
    return read;
}

std::string textOf(const CodecString& string) {
    std::string text(string.sampleEntry.text());
    text += ".";
    if (string.general_profile_space > 0) {
        text += static_cast<char>('A' + (string.general_profile_space - 1) % 3);
    }
    text += std::to_string(string.general_profile_idc) + "." +
            hexText(reversed(string.general_profile_compatibility_flags)) +
            (string.general_tier_flag ? ".H" : ".L") + std::to_string(string.general_level_idc);
    uint32_t bytes = kConstraintBytes;
    while (bytes > 0 && constraintByte(string.general_constraint_indicator_flags, bytes - 1) == 0) {
        --bytes;
    }
    for (uint32_t i = 0; i < bytes; ++i) {
        text += "." + hexText(constraintByte(string.general_constraint_indicator_flags, i));
    }
    return text;
}

}  // namespace hevc

// --- Both ---

std::string textOf(const DolbyVisionCodecString& string) {
    return std::string(string.sampleEntry.text()) + "." + twoDigits(string.dv_profile) + "." +
           twoDigits(string.dv_level);
}

ParsedCodecString parseCodecString(std::string_view text) noexcept {
    Parser parser(text);
    ParsedCodecString parsed;
    CodecString string = parse(parser);
    parser.expect(parser.atEnd(), "the end of the string");
    parsed.fault = parser.fault();
    if (parsed.ok()) {
        parsed.string = string;
    }
    return parsed;
}

std::string textOf(const CodecString& string) {
    if (const auto* const avc = std::get_if<avc::CodecString>(&string)) {
        return avc::textOf(*avc);
    }
    if (const auto* const hevc = std::get_if<hevc::CodecString>(&string)) {
        return hevc::textOf(*hevc);
    }
    const auto* const dolbyVision = std::get_if<DolbyVisionCodecString>(&string);
    return dolbyVision != nullptr ? textOf(*dolbyVision) : std::string();
}

Codec codecOf(const CodecString& string) noexcept {
    if (const auto* const dolbyVision = std::get_if<DolbyVisionCodecString>(&string)) {
        return dolbyVision->sampleEntry.text().substr(0, 3) == "dva" ? Codec::Avc : Codec::Hevc;
    }
    return std::holds_alternative<avc::CodecString>(string) ? Codec::Avc : Codec::Hevc;
}

}  // namespace qv
