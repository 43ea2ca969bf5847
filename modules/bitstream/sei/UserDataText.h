/// \file
/// What user_data_unregistered() holds (H.264 D.2.7, H.265 D.3.7): who writes it, the settings of encoders,
/// precision time stamps.
#ifndef QV_BITSTREAM_SEI_USERDATATEXT_H
#define QV_BITSTREAM_SEI_USERDATATEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "bitstream/sei/UserData.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/units/ItemIterator.h"

namespace qv::sei {

// --- Owners ---

/// Who writes a user_data_unregistered() message.
enum class UserDataOwner : uint8_t {
    Unknown,           ///< any other UUID
    X264,              ///< x264, text with settings
    X265,              ///< x265, text with settings
    Kvazaar,           ///< Kvazaar, text with settings
    Ateme,             ///< Ateme, text
    Eavc,              ///< eavc, text
    AvcIntra,          ///< AVC-Intra, binary
    Avchd,             ///< AVCHD and Blu-ray, an identifier of four bytes and binary data
    MispMicroseconds,  ///< MISP precision time stamp in microseconds
    MispNanoseconds,   ///< MISP nano precision time stamp
    VideoToolbox,      ///< VideoToolbox, binary
    OlderApple,        ///< an older encoder of the same maker, one byte
    Xmp,               ///< XMP, XML text
};

/// A UUID, its owner and the owner's name.
struct UserDataOwnerName {
    uint8_t uuid_iso_iec_11578[UserDataUnregistered::kUuidBytes];  ///< the first byte first
    uint32_t uuidBytes;   ///< how many of these bytes identify the owner, the first ones: 8 or 16
    UserDataOwner owner;  ///< whose it is
    const char* name;     ///< what its messages hold
    const char* source;   ///< the document that defines it
    bool isText;          ///< true when the user data is text
};

/// The row of a message's UUID; null for one that is not known.
const UserDataOwnerName* userDataOwnerOf(const UserDataUnregistered& message) noexcept;

// --- Bytes ---

/// Copies bits as bytes without emulation prevention bytes; the last byte is filled up with zero bits.
///
/// \param out       the caller's
/// \param capacity  bytes of \p out
/// \return the bytes that there are. When that is more than the capacity, only the first ones are copied.
size_t copyBytes(const CodedBits& bits, uint8_t* out, size_t capacity) noexcept;

/// All of the bits as bytes without emulation prevention bytes.
std::vector<uint8_t> bytesOf(const CodedBits& bits);

// --- Settings of encoders ---

/// One setting of an encoder.
struct EncoderSetting {
    std::string_view key;    ///< what comes before '=', or all of it
    std::string_view value;  ///< what comes after '='; empty without one
    bool hasValue = false;   ///< true when there is a '='
};

/// The text of an encoder, `name - version - ... - options: key=value key ...`, in memory that is borrowed.
///
///     for (const EncoderSetting& setting : EncoderText(text)) { ... }
///
/// It ends before the first zero byte. Nothing is allocated; work is linear in the size of the text.
class EncoderText {
public:
    class Iterator;

    /// \p text is borrowed.
    explicit EncoderText(std::string_view text) noexcept;

    /// The whole text.
    std::string_view text() const noexcept { return text_; }

    /// What comes before the first " - ": the name of the encoder, with its build or version where that is
    /// part of it.
    std::string_view encoder() const noexcept;

    /// The part after the name, up to the next " - ": the version in texts of x264 and x265. Empty without
    /// one.
    std::string_view version() const noexcept;

    /// What comes after "options: "; empty without it.
    std::string_view options() const noexcept;

    /// The first setting.
    Iterator begin() const noexcept;

    /// The end: after the last setting.
    static EndOfItems end() noexcept { return {}; }

private:
    std::string_view text_;
};

/// An iterator over the settings of an encoder.
class EncoderText::Iterator : public ItemIterator<EncoderText::Iterator, EncoderSetting> {
public:
    using ItemIterator::operator++;

    /// Goes on to the next setting. Not allowed at the end.
    Iterator& operator++() noexcept;

private:
    friend class EncoderText;

    explicit Iterator(std::string_view options) noexcept;

    std::string_view left_;
};

/// The value of the first setting with a key; none when no setting has it. Empty for a setting without '='.
std::optional<std::string_view> settingOf(const EncoderText& text, std::string_view key) noexcept;

// --- Time stamps ---

/// A MISP precision time stamp (MISB ST 0604).
struct MispTimeStamp {
    /// Bit 7: the clock is not locked, or it is not known whether it is. Bit 6: a discontinuity. Bit 5: that
    /// goes back. The others are reserved, 1.
    uint32_t time_stamp_status = 0;

    uint64_t time = 0;           ///< since 1970-01-01 00:00:00 UTC, leap seconds not counted
    bool isNanoseconds = false;  ///< true for nanoseconds, false for microseconds

    /// True when the clock was locked to its reference.
    constexpr bool isLocked() const { return (time_stamp_status & 0x80U) == 0; }

    /// True after a discontinuity.
    constexpr bool isDiscontinuous() const { return (time_stamp_status & 0x40U) != 0; }

    /// True after a discontinuity that went back.
    constexpr bool isReverse() const { return (time_stamp_status & 0x20U) != 0; }
};

/// The time stamp of a message. None for another UUID, for fewer than 12 bytes, and where the bytes between
/// the parts of the time are not 0xFF.
std::optional<MispTimeStamp> mispTimeStampOf(const UserDataUnregistered& message) noexcept;

}  // namespace qv::sei

#endif
