/// \file
/// Who sends a message registered by ITU-T T.35: its codes, and the owners that are known.
#ifndef QV_BITSTREAM_SEI_T35_H
#define QV_BITSTREAM_SEI_T35_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "bitstream/sei/UserData.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// The owners of T.35 messages that are known. One provider may have several, told apart by an identifier.
enum class T35Owner : uint8_t {
    Unknown,            ///< any other provider or identifier
    Cut,                ///< the message ends within its codes
    St2094App10,        ///< SMPTE ST 2094-10 in ATSC user data
    AtscUserData,       ///< ATSC A/53 captions and bar data, "GA94"
    ActiveFormat,       ///< active format description, "DTG1"
    Scte20,             ///< captions in the style of ANSI/SCTE 20
    SatelliteUserData,  ///< captions of satellite services
    SlHdr,              ///< ETSI TS 103 433
    DolbyVisionRpu,     ///< Dolby Vision RPU in an EMDF container
    Hdr10Plus,          ///< SMPTE ST 2094-40
    Smpte,              ///< SMPTE, other applications
    AomFilmGrain,       ///< AOM film grain
    HdrVivid,           ///< T/UWA 005.1
    Lcevc,              ///< ISO/IEC 23094-2 (MPEG-5 LCEVC)
};

/// The country and the provider of a T.35 message (ITU-T T.35 3).
struct T35Code {
    static constexpr uint32_t kExtendedCountry = 0xFF;  ///< a country code that an extension byte follows

    uint32_t itu_t_t35_country_code = 0;  ///< 8 bits

    /// 8 bits, with a country code of 0xFF, otherwise 0. 0 in a code that covers every extension.
    uint32_t itu_t_t35_country_code_extension_byte = 0;

    /// 16 bits; none in a message that ends before it, and in a code that covers every provider of a country.
    std::optional<uint32_t> itu_t_t35_terminal_provider_code;

    /// True for a code of the same country, with the same extension and provider unless this one has none.
    constexpr bool covers(const T35Code& code) const {
        return itu_t_t35_country_code == code.itu_t_t35_country_code &&
               (itu_t_t35_country_code_extension_byte == 0 ||
                itu_t_t35_country_code_extension_byte == code.itu_t_t35_country_code_extension_byte) &&
               (!itu_t_t35_terminal_provider_code ||
                itu_t_t35_terminal_provider_code == code.itu_t_t35_terminal_provider_code);
    }

    /// True for the same country and provider.
    friend constexpr bool operator==(const T35Code& a, const T35Code& b) {
        return a.covers(b) && b.covers(a);
    }

    /// True for another country or provider.
    friend constexpr bool operator!=(const T35Code& a, const T35Code& b) { return !(a == b); }
};

/// Codes as text: country and provider in hexadecimal, `26:0004`; with an extension byte `FF12:0004`; without
/// a provider `26`.
std::string textOf(const T35Code& code);

/// The codes of such a text. Digits may be of either case, and leading zeros of each number left out. None
/// for any other text.
std::optional<T35Code> t35CodeOf(std::string_view text) noexcept;

/// How an owner is recognised, and its name.
struct T35OwnerName {
    T35Owner owner;           ///< the owner
    T35Code code;             ///< its country and provider
    uint32_t identifierBits;  ///< bits of the identifier after the provider code, 0 to 40
    uint64_t identifier;      ///< the identifier, as an unsigned number
    const char* name;         ///< what its messages are called
    const char* source;       ///< the document that defines them
};

/// Every owner that is known. Where several rows match a message, the first one applies.
constexpr T35OwnerName kT35Owners[] = {
    {T35Owner::St2094App10, {0xB5, 0, 0x0031}, 40, 0x4741393409, "ST 2094-10", "SMPTE ST 2094-10"},
    {T35Owner::St2094App10, {0xB5, 0, 0x0031}, 40, 0x4741393408, "ST 2094-10", "SMPTE ST 2094-10"},
    {T35Owner::AtscUserData, {0xB5, 0, 0x0031}, 32, 0x47413934, "ATSC user data", "ATSC A/53 Part 4"},
    {T35Owner::ActiveFormat,
     {0xB5, 0, 0x0031},
     32,
     0x44544731,
     "active format description",
     "ETSI TS 101 154 Annex B"},
    {T35Owner::Scte20, {0xB5, 0, 0x0031}, 8, 0x03, "SCTE 20 captions", "ANSI/SCTE 20"},
    {T35Owner::SatelliteUserData,
     {0xB5, 0, 0x002F},
     8,
     0x03,
     "satellite captions",
     "private to the provider"},
    {T35Owner::SlHdr, {0xB5, 0, 0x003A}, 0, 0, "SL-HDR", "ETSI TS 103 433-1"},
    {T35Owner::DolbyVisionRpu,
     {0xB5, 0, 0x003B},
     32,
     0x00000800,
     "Dolby Vision RPU",
     "ETSI TS 102 366 Annex H"},
    {T35Owner::Hdr10Plus, {0xB5, 0, 0x003C}, 16, 0x0001, "HDR10+", "SMPTE ST 2094-40, CTA-861.4"},
    {T35Owner::Smpte, {0xB5, 0, 0x0090}, 0, 0, "SMPTE metadata", "SMPTE ST 2094"},
    {T35Owner::AomFilmGrain, {0xB5, 0, 0x5890}, 16, 0x0001, "AOM film grain", "AOM AFGS1"},
    {T35Owner::HdrVivid, {0x26, 0, 0x0004}, 16, 0x0005, "HDR Vivid", "T/UWA 005.1"},
    {T35Owner::Lcevc, {0xB4, 0, 0x5000}, 0, 0, "LCEVC", "ISO/IEC 23094-2"},
};

/// The name and the source of an owner, of the first of its rows; null for Unknown and Cut.
constexpr const T35OwnerName* t35OwnerNameOf(T35Owner owner) {
    for (const T35OwnerName& row : kT35Owners) {
        if (row.owner == owner) {
            return &row;
        }
    }
    return nullptr;
}

/// Who sends a message, and what.
struct T35 {
    T35Owner owner = T35Owner::Unknown;  ///< Cut when the message ends before or within the provider code
    T35Code code;                        ///< of the message
    uint32_t identifierBits = 0;         ///< bits of the identifier of a known owner
    uint64_t identifier = 0;             ///< the identifier of a known owner
    CodedBits body;                      ///< the bytes after the codes and the identifier, borrowed
};

/// Who sends a message. Nothing is copied.
T35 t35Of(const UserDataRegistered& message) noexcept;

}  // namespace qv::sei

#endif
