/// \file
/// Codec strings: the `codecs` parameter of RFC 6381, ISO/IEC 14496-15 Annex E.
#ifndef QV_BITSTREAM_UNITS_CODECSTRING_H
#define QV_BITSTREAM_UNITS_CODECSTRING_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/Read.h"
#include "bitstream/units/AvcConfigurationRecord.h"
#include "bitstream/units/HevcConfigurationRecord.h"

namespace qv {

/// The type of a sample entry in small letters: "avc1".
struct SampleEntry {
    char type[5];  ///< four characters and a zero

    /// The four characters.
    constexpr std::string_view text() const { return {type, 4}; }
};

/// A sample entry from four characters; fewer are filled up with blanks.
constexpr SampleEntry sampleEntryOf(std::string_view type) {
    SampleEntry entry = {"    "};
    for (size_t i = 0; i < 4 && i < type.size(); ++i) {
        const char c = type[i];
        entry.type[i] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return entry;
}

namespace avc {

/// `avc1.64001f`: the sample entry and three bytes of the SPS in hexadecimal.
struct CodecString {
    SampleEntry sampleEntry;        ///< `avc1` to `avc4`, `svc1`, `svc2`, `mvc1` to `mvc4`
    uint32_t profile_idc;           ///< 0..255
    uint32_t constraint_set_flags;  ///< 0..255, constraint_set0_flag in the most significant bit
    uint32_t level_idc;             ///< 0..255
};

/// The string of a stream.
CodecString codecStringOf(const ConfigurationRecord& record, std::string_view sampleEntry = "avc1") noexcept;

/// The string of a sequence parameter set: one NAL unit from its header on. A set that is cut before its
/// level is a fault.
Read<CodecString> codecStringOfSps(Bytes unit, std::string_view sampleEntry = "avc1") noexcept;

/// The string as text: hexadecimal digits are small letters.
std::string textOf(const CodecString& string);

}  // namespace avc

namespace hevc {

/// `hvc1.2.4.L153.B0`: the sample entry, the profile, the compatibility flags in reverse order, tier and
/// level, and the bytes of the constraint flags.
struct CodecString {
    SampleEntry sampleEntry;                       ///< `hvc1`, `hev1`, `hvc2`, `hev2`, `lhv1`, `lhe1`
    uint32_t general_profile_space;                ///< 0..3; 1 to 3 are written as A, B and C
    uint32_t general_profile_idc;                  ///< 0..31
    uint32_t general_profile_compatibility_flags;  ///< as coded: flag 0 in the most significant bit
    bool general_tier_flag;                        ///< L, or H when true
    uint32_t general_level_idc;                    ///< 0..255
    uint64_t general_constraint_indicator_flags;   ///< 48 bits as coded
};

/// The string of a stream.
CodecString codecStringOf(const ConfigurationRecord& record, std::string_view sampleEntry = "hvc1") noexcept;

/// The string of a sequence parameter set of the base layer: one NAL unit from its header on. A set that is
/// cut before its level is a fault.
Read<CodecString> codecStringOfSps(Bytes unit, std::string_view sampleEntry = "hvc1") noexcept;

/// The string as text. Zero bytes at the end of the constraint flags are left out, all of them included.
std::string textOf(const CodecString& string);

}  // namespace hevc

/// `dvh1.05.06`: Dolby Vision over either codec.
struct DolbyVisionCodecString {
    SampleEntry sampleEntry;  ///< `dvh1`, `dvhe` (H.265), `dva1`, `dvav` (H.264)
    uint32_t dv_profile;      ///< 0..127
    uint32_t dv_level;        ///< 0..63
};

/// The string as text: profile and level have two digits.
std::string textOf(const DolbyVisionCodecString& string);

/// What a codec string says. monostate: it is none of these.
using CodecString = std::variant<std::monostate, avc::CodecString, hevc::CodecString, DolbyVisionCodecString>;

/// What is wrong with a codec string.
struct CodecStringFault {
    const char* expected = nullptr;  ///< what should be there; null without a fault
    size_t offset = 0;               ///< the character where it should be

    /// True when there is a fault.
    explicit operator bool() const { return expected != nullptr; }
};

/// What parseCodecString() returns.
struct ParsedCodecString {
    CodecString string;      ///< monostate with a fault
    CodecStringFault fault;  ///< what is wrong

    /// True when there is no fault.
    bool ok() const { return !fault; }
};

/// Reads one codec string. Letters may be of either case, blanks may be around it. Accepted beside the forms
/// that textOf() writes: H.264 profile and level in decimal (`avc1.66.30`), which have no constraint flags;
/// H.265 constraint bytes that are 0, and numbers with leading zeros. A string of another codec, and a sample
/// entry alone, are faults.
ParsedCodecString parseCodecString(std::string_view text) noexcept;

/// The text of a string; empty for monostate.
std::string textOf(const CodecString& string);

/// The codec of a string's samples; \p string must not be monostate.
Codec codecOf(const CodecString& string) noexcept;

}  // namespace qv

#endif
