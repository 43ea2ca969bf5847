// What user_data_unregistered() holds.
#include "bitstream/sei/UserDataText.h"

#include <algorithm>
#include <iterator>

#include "bitstream/syntax/EmulationPrevention.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

namespace {

constexpr UserDataOwnerName kOwners[] = {
    {{0xDC, 0x45, 0xE9, 0xBD, 0xE6, 0xD9, 0x48, 0xB7, 0x96, 0x2C, 0xD8, 0x20, 0xD9, 0x23, 0xEE, 0xEF},
     16,
     UserDataOwner::X264,
     "x264 settings",
     "x264",
     true},
    {{0x2C, 0xA2, 0xDE, 0x09, 0xB5, 0x17, 0x47, 0xDB, 0xBB, 0x55, 0xA4, 0xFE, 0x7F, 0xC2, 0xFC, 0x4E},
     16,
     UserDataOwner::X265,
     "x265 settings",
     "x265",
     true},
    {{0x32, 0xFE, 0x46, 0x6C, 0x98, 0x41, 0x42, 0x69, 0xAE, 0x35, 0x6A, 0x91, 0x54, 0x9E, 0xF3, 0xF1},
     16,
     UserDataOwner::Kvazaar,
     "Kvazaar settings",
     "Kvazaar",
     true},
    {{0x42, 0x7F, 0xCC, 0x9B, 0xB8, 0x92, 0x48, 0x21}, 8, UserDataOwner::Ateme, "Ateme text", "Ateme", true},
    {{0xFB, 0x57, 0x4A, 0x60, 0xAC, 0x92, 0x4E, 0x68}, 8, UserDataOwner::Eavc, "eavc text", "eavc", true},
    {{0xF7, 0x49, 0x3E, 0xB3, 0xD4, 0x00, 0x47, 0x96, 0x86, 0x86, 0xC9, 0x70, 0x7B, 0x64, 0x37, 0x2A},
     16,
     UserDataOwner::AvcIntra,
     "AVC-Intra",
     "SMPTE RP 2027",
     false},
    {{0x17, 0xEE, 0x8C, 0x60, 0xF8, 0x4D, 0x11, 0xD9, 0x8C, 0xD6, 0x08, 0x00, 0x20, 0x0C, 0x9A, 0x66},
     16,
     UserDataOwner::Avchd,
     "AVCHD and Blu-ray metadata",
     "AVCHD",
     false},
    {{0x4D, 0x49, 0x53, 0x50, 0x6D, 0x69, 0x63, 0x72, 0x6F, 0x73, 0x65, 0x63, 0x74, 0x69, 0x6D, 0x65},
     16,
     UserDataOwner::MispMicroseconds,
     "MISP precision time stamp",
     "MISB ST 0604",
     false},
    {{0xA8, 0x68, 0x7D, 0xD4, 0xD7, 0x59, 0x37, 0x58, 0xA5, 0xCE, 0xF0, 0x33, 0x8B, 0x65, 0x45, 0xF1},
     16,
     UserDataOwner::MispMicroseconds,
     "MISP precision time stamp",
     "MISB ST 0604",
     false},
    {{0xCF, 0x84, 0x82, 0x78, 0xEE, 0x23, 0x30, 0x6C, 0x92, 0x65, 0xE8, 0xFE, 0xF2, 0x2F, 0xB8, 0xB8},
     16,
     UserDataOwner::MispNanoseconds,
     "MISP nano precision time stamp",
     "MISB ST 0604",
     false},
    {{0x47, 0x56, 0x4A, 0xDC, 0x5C, 0x4C, 0x43, 0x3F, 0x94, 0xEF, 0xC5, 0x11, 0x3C, 0xD1, 0x43, 0xA8},
     16,
     UserDataOwner::VideoToolbox,
     "VideoToolbox",
     "private to the encoder",
     false},
    {{0x03, 0x87, 0xF4, 0x4E, 0xCD, 0x0A, 0x4B, 0xDC, 0xA1, 0x94, 0x3A, 0xC3, 0xD4, 0x9B, 0x17, 0x1F},
     16,
     UserDataOwner::OlderApple,
     "older Apple encoder",
     "private to the encoder",
     false},
    {{0xBE, 0x7A, 0xCF, 0xCB, 0x97, 0xA9, 0x42, 0xE8, 0x9C, 0x71, 0x99, 0x94, 0x91, 0xE3, 0xAF, 0xAC},
     16,
     UserDataOwner::Xmp,
     "XMP",
     "ISO 16684-1",
     true},
};

constexpr std::string_view kSeparator = " - ";
constexpr std::string_view kOptions = "options: ";

// The text up to the next separator, or all of it.
std::string_view partOf(std::string_view text) {
    return text.substr(0, text.find(kSeparator));
}

// The runs of bytes between emulation prevention bytes.
void copyRuns(const CodedBits& bits, uint8_t* out, size_t size) {
    const uint8_t* next = bits.unit.data + bits.byte;
    while (size > 0) {
        const uint8_t* const end = detail::findEmulationPrevention(
            bits.unit.data, next, bits.unit.end(), [](const uint8_t* /*byte*/) { return true; });
        const size_t run = std::min(static_cast<size_t>(end - next), size);
        out = std::copy_n(next, run, out);
        size -= run;
        next = end + (size > 0 ? 1 : 0);
    }
}

}  // namespace

const UserDataOwnerName* userDataOwnerOf(const UserDataUnregistered& message) noexcept {
    for (const UserDataOwnerName& row : kOwners) {
        if (std::equal(row.uuid_iso_iec_11578, row.uuid_iso_iec_11578 + row.uuidBytes,
                       message.uuid_iso_iec_11578)) {
            return &row;
        }
    }
    return nullptr;
}

size_t copyBytes(const CodedBits& bits, uint8_t* out, size_t capacity) noexcept {
    const auto size = static_cast<size_t>(bits.count / 8 + (bits.count % 8 != 0 ? 1 : 0));
    const size_t wanted = size < capacity ? size : capacity;
    if (bits.bitOfByte == 0 && bits.count % 8 == 0) {
        copyRuns(bits, out, wanted);
        return size;
    }
    Reader reader(bits);
    uint64_t left = bits.count;
    for (size_t i = 0; i < wanted; ++i) {
        const auto n = static_cast<uint32_t>(left < 8 ? left : 8);
        uint32_t byte = 0;
        reader.u(n, "", byte);
        out[i] = static_cast<uint8_t>(byte << (8 - n));
        left -= n;
    }
    return size;
}

std::vector<uint8_t> bytesOf(const CodedBits& bits) {
    std::vector<uint8_t> bytes(copyBytes(bits, nullptr, 0));
    copyBytes(bits, bytes.data(), bytes.size());
    return bytes;
}

EncoderText::EncoderText(std::string_view text) noexcept : text_(text.substr(0, text.find('\0'))) {}

std::string_view EncoderText::encoder() const noexcept {
    return partOf(text_);
}

std::string_view EncoderText::version() const noexcept {
    const size_t after = encoder().size() + kSeparator.size();
    return after < text_.size() ? partOf(text_.substr(after)) : std::string_view();
}

std::string_view EncoderText::options() const noexcept {
    const size_t found = text_.find(kOptions);
    return found != std::string_view::npos ? text_.substr(found + kOptions.size()) : std::string_view();
}

EncoderText::Iterator EncoderText::begin() const noexcept {
    return Iterator(options());
}

EncoderText::Iterator::Iterator(std::string_view options) noexcept : left_(options) {
    ++*this;
}

EncoderText::Iterator& EncoderText::Iterator::operator++() noexcept {
    left_.remove_prefix(std::min(left_.find_first_not_of(' '), left_.size()));
    if (left_.empty()) {
        isAtEnd_ = true;
        return *this;
    }
    const std::string_view word = left_.substr(0, left_.find(' '));
    left_.remove_prefix(word.size());
    const size_t equals = word.find('=');
    EncoderSetting& setting = item_;
    setting.key = word.substr(0, equals);
    setting.hasValue = equals != std::string_view::npos;
    setting.value = setting.hasValue ? word.substr(equals + 1) : std::string_view();
    return *this;
}

std::optional<std::string_view> settingOf(const EncoderText& text, std::string_view key) noexcept {
    for (const EncoderSetting& setting : text) {
        if (setting.key == key) {
            return setting.value;
        }
    }
    return std::nullopt;
}

std::optional<MispTimeStamp> mispTimeStampOf(const UserDataUnregistered& message) noexcept {
    constexpr uint32_t kParts = 4;
    const UserDataOwnerName* const row = userDataOwnerOf(message);
    if (row == nullptr ||
        (row->owner != UserDataOwner::MispMicroseconds && row->owner != UserDataOwner::MispNanoseconds)) {
        return std::nullopt;
    }
    MispTimeStamp stamp;
    stamp.isNanoseconds = row->owner == UserDataOwner::MispNanoseconds;
    Reader reader(message.user_data_payload_byte);
    reader.u(8, "time_stamp_status", stamp.time_stamp_status);
    for (uint32_t i = 0; i < kParts; ++i) {
        if (i > 0) {
            reader.f(8, "start_code_emulation_prevention_byte", 0xFF);
        }
        uint64_t part = 0;
        reader.u(16, "time_stamp", part);
        stamp.time = stamp.time << 16 | part;
    }
    return reader.failed() ? std::nullopt : std::optional<MispTimeStamp>(stamp);
}

}  // namespace qv::sei
