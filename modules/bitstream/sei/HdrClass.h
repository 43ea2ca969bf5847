/// \file
/// What kind of high dynamic range a stream has, from facts whose sources are known.
#ifndef QV_BITSTREAM_SEI_HDRCLASS_H
#define QV_BITSTREAM_SEI_HDRCLASS_H

#include <cstdint>
#include <optional>
#include <string>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/units/DolbyVisionConfiguration.h"
#include "bitstream/units/FaultSet.h"

namespace qv::sei {

// --- Facts ---

/// Where a fact is from.
enum class HdrSource : uint32_t {
    Vui = 1U << 0,                  ///< vui_parameters() (H.264 E.1.1, H.265 E.2.1)
    Sei = 1U << 1,                  ///< an SEI message
    Container = 1U << 2,            ///< a box or element beside the stream
    ConfigurationRecord = 1U << 3,  ///< the Dolby Vision decoder configuration record
    Units = 1U << 4,                ///< NAL units of unspecified types
};

/// Where a fact is from; empty when it is not known.
using HdrSources = FaultSet<HdrSource>;

/// A colour description, of vui_parameters() or of a container (ISO/IEC 23091-2).
struct ColourDescription {
    bool isPresent = false;                 ///< false: the values below say nothing
    uint32_t colour_primaries = 2;          ///< 2 is unspecified
    uint32_t transfer_characteristics = 2;  ///< 2 is unspecified
    uint32_t matrix_coeffs = 2;             ///< 2 is unspecified
};

/// What is known about a stream. take() adds facts; the rest is set by the caller.
struct HdrFacts {
    ColourDescription vui;        ///< of the SPS
    ColourDescription container;  ///< of the container, a colr box for example
    uint32_t bitDepthLuma = 0;    ///< bits, 0 when it is not known

    bool hasPreferredTransfer = false;                ///< alternative_transfer_characteristics() is present
    uint32_t preferred_transfer_characteristics = 2;  ///< of that message

    HdrSources masteringDisplay;   ///< mastering display colour volume
    HdrSources contentLightLevel;  ///< content light level

    bool hasHdr10Plus = false;    ///< SMPTE ST 2094-40 messages
    bool hasHdrVivid = false;     ///< T/UWA 005.1 messages
    bool hasSlHdr = false;        ///< ETSI TS 103 433 messages
    bool hasSt2094App10 = false;  ///< SMPTE ST 2094-10 messages

    std::optional<DolbyVisionConfiguration> dolbyVision;  ///< of a box dvcC, dvvC or dvwC
    bool hasDolbyVisionRpu = false;                       ///< units of type 62 with its metadata header
    bool hasDolbyVisionEnhancementLayer = false;          ///< units of type 63 that hold another unit

    /// Takes what an SEI message says: types 4, 137, 144 and 147 in both codecs. One with a fault, and
    /// others, change nothing.
    void take(const SeiMessage& message, const Context& context) noexcept;

    /// Takes what a NAL unit says, from its header on: types 62 and 63 of H.265. Others change nothing.
    void take(Bytes unit, Codec codec) noexcept;
};

/// True for a unit of H.265 of type 62 that begins with the prefix and the type of Dolby Vision metadata.
bool isDolbyVisionRpu(Bytes unit) noexcept;

/// True for a unit of H.265 of type 63 that holds another unit, that of a Dolby Vision enhancement layer.
bool isDolbyVisionEnhancementLayer(Bytes unit) noexcept;

// --- Classes ---

/// What a stream's samples mean, without dynamic metadata.
enum class HdrBase : uint8_t {
    Unknown,  ///< nothing says which transfer characteristics it has
    Sdr,      ///< neither PQ nor HLG
    Pq,       ///< SMPTE ST 2084, and something that HDR10 needs is missing
    Hdr10,    ///< SMPTE ST 2084 with a mastering display colour volume, as CTA-861 defines HDR10
    Hlg,      ///< ARIB STD-B67, whatever static metadata there is
};

/// Something that a stream of PQ lacks to be HDR10.
enum class Hdr10Lack : uint32_t {
    Primaries = 1U << 0,         ///< colour_primaries is known and not 9 (BT.2020)
    Matrix = 1U << 1,            ///< matrix_coeffs is known and not 9, 10 or 14 (BT.2020, BT.2100)
    BitDepth = 1U << 2,          ///< the bit depth is known and less than 10
    MasteringDisplay = 1U << 3,  ///< there is no mastering display colour volume
};

/// What a stream of PQ lacks to be HDR10.
using Hdr10Lacks = FaultSet<Hdr10Lack>;

/// The class of a stream. Several may apply at once.
struct HdrClass {
    HdrBase base = HdrBase::Unknown;  ///< what the samples mean

    uint32_t transfer_characteristics = 2;  ///< those that apply, 2 when they are not known
    HdrSources transferSource;              ///< where they are from

    /// True when container and VUI both specify transfer characteristics, and not the same.
    bool isTransferDisputed = false;

    Hdr10Lacks lacks;  ///< with base Pq, what HDR10 needs besides

    bool isHdr10Plus = false;    ///< HDR10 with SMPTE ST 2094-40 messages
    bool isHdrVivid = false;     ///< PQ or HLG with T/UWA 005.1 messages
    bool isSlHdr = false;        ///< with ETSI TS 103 433 messages
    bool isDolbyVision = false;  ///< by its configuration record or its units

    HdrSources dolbyVisionSource;            ///< what says so
    std::string dolbyVisionProfile;          ///< by the configuration record, `8.4`; empty without one
    bool hasDolbyVisionEnhancement = false;  ///< an enhancement layer, by the record or by units
};

/// The class of a stream. alternative_transfer_characteristics() comes first (H.265 E.3.1 and D.3.39), then
/// the container (ISO/IEC 14496-12 12.1.5), then the VUI.
HdrClass hdrClassOf(const HdrFacts& facts);

/// The classes as text, for example `HDR10, HDR10+, Dolby Vision 8.1`; `unknown` when nothing is known.
std::string textOf(const HdrClass& hdr);

/// The sources as text, for example `VUI; SEI`; empty for none.
std::string textOf(HdrSources sources);

/// What is missing as text, separated by "; "; empty for nothing.
std::string textOf(Hdr10Lacks lacks);

}  // namespace qv::sei

#endif
