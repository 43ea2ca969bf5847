// The kind of high dynamic range of a stream.
#include "bitstream/sei/HdrClass.h"

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/T35.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/units/FaultTexts.h"

namespace qv::sei {

namespace {

constexpr uint32_t kUnspecified = 2;  // colour_primaries, transfer_characteristics and matrix_coeffs
constexpr uint32_t kBt2020 = 9;       // colour_primaries
constexpr uint32_t kPq = 16;          // transfer_characteristics
constexpr uint32_t kHlg = 18;         // transfer_characteristics

constexpr uint32_t kUserDataRegistered = 4;
constexpr uint32_t kMasteringDisplay = 137;
constexpr uint32_t kContentLightLevel = 144;
constexpr uint32_t kAlternativeTransfer = 147;

constexpr uint64_t kMasteringDisplayBytes = 24;
constexpr uint64_t kContentLightLevelBytes = 4;

constexpr uint32_t kRpuUnit = 62;
constexpr uint32_t kEnhancementUnit = 63;
constexpr uint8_t kRpuPrefix = 25;
constexpr uint32_t kRpuType = 2;

// The nal_unit_type of H.265 of a header without the forbidden bit, of layer 0 and with a temporal sub-layer.
std::optional<uint32_t> baseUnitType(Bytes unit) {
    constexpr size_t kHeaderBytes = 2;
    if (unit.size < kHeaderBytes || (unit[0] & 0x81U) != 0 || unit[1] >> 3 != 0 || (unit[1] & 7U) == 0) {
        return std::nullopt;
    }
    return unit[0] >> 1;
}

void takeRegistered(const SeiMessage& message, const Context& context, HdrFacts& facts) {
    switch (t35Of(readPayload<UserDataRegistered>(message, context).record).owner) {
        case T35Owner::Hdr10Plus:
            facts.hasHdr10Plus = true;
            break;
        case T35Owner::HdrVivid:
            facts.hasHdrVivid = true;
            break;
        case T35Owner::SlHdr:
            facts.hasSlHdr = true;
            break;
        case T35Owner::St2094App10:
            facts.hasSt2094App10 = true;
            break;
        default:
            break;
    }
}

// A value that the container specifies applies, then that of the VUI.
uint32_t specified(const HdrFacts& facts, uint32_t ColourDescription::*value) {
    for (const ColourDescription* description : {&facts.container, &facts.vui}) {
        if (description->isPresent && description->*value != kUnspecified) {
            return description->*value;
        }
    }
    return kUnspecified;
}

bool specifiesTransfer(const ColourDescription& description) {
    return description.isPresent && description.transfer_characteristics != kUnspecified;
}

void setTransfer(const HdrFacts& facts, HdrClass& hdr) {
    const bool hasContainer = specifiesTransfer(facts.container);
    const bool hasVui = specifiesTransfer(facts.vui);
    hdr.isTransferDisputed = hasContainer && hasVui &&
                             facts.container.transfer_characteristics != facts.vui.transfer_characteristics;
    if (facts.hasPreferredTransfer && facts.preferred_transfer_characteristics != kUnspecified) {
        hdr.transfer_characteristics = facts.preferred_transfer_characteristics;
        hdr.transferSource.add(HdrSource::Sei);
    } else if (hasContainer || hasVui) {
        hdr.transfer_characteristics = specified(facts, &ColourDescription::transfer_characteristics);
        hdr.transferSource.add(hasContainer ? HdrSource::Container : HdrSource::Vui);
    }
}

Hdr10Lacks lacksOf(const HdrFacts& facts) {
    Hdr10Lacks lacks;
    const uint32_t primaries = specified(facts, &ColourDescription::colour_primaries);
    const uint32_t matrix = specified(facts, &ColourDescription::matrix_coeffs);
    if (primaries != kUnspecified && primaries != kBt2020) {
        lacks.add(Hdr10Lack::Primaries);
    }
    if (matrix != kUnspecified && matrix != 9 && matrix != 10 && matrix != 14) {
        lacks.add(Hdr10Lack::Matrix);
    }
    if (facts.bitDepthLuma != 0 && facts.bitDepthLuma < 10) {
        lacks.add(Hdr10Lack::BitDepth);
    }
    if (!facts.masteringDisplay) {
        lacks.add(Hdr10Lack::MasteringDisplay);
    }
    return lacks;
}

void setBase(const HdrFacts& facts, HdrClass& hdr) {
    switch (hdr.transfer_characteristics) {
        case kUnspecified:
            hdr.base = HdrBase::Unknown;
            break;
        case kPq:
            hdr.lacks = lacksOf(facts);
            hdr.base = hdr.lacks ? HdrBase::Pq : HdrBase::Hdr10;
            break;
        case kHlg:
            hdr.base = HdrBase::Hlg;
            break;
        default:
            hdr.base = HdrBase::Sdr;
            break;
    }
}

void setDolbyVision(const HdrFacts& facts, HdrClass& hdr) {
    if (facts.dolbyVision) {
        hdr.dolbyVisionSource.add(HdrSource::ConfigurationRecord);
        hdr.dolbyVisionProfile = profileNameOf(*facts.dolbyVision);
        hdr.hasDolbyVisionEnhancement = facts.dolbyVision->el_present_flag;
    }
    if (facts.hasDolbyVisionRpu) {
        hdr.dolbyVisionSource.add(HdrSource::Units);
        hdr.hasDolbyVisionEnhancement = hdr.hasDolbyVisionEnhancement || facts.hasDolbyVisionEnhancementLayer;
    }
    hdr.isDolbyVision = static_cast<bool>(hdr.dolbyVisionSource);
}

void append(const char* name, std::string& text) {
    text += text.empty() ? "" : ", ";
    text += name;
}

constexpr detail::FaultText<HdrSource> kSourceTexts[] = {
    {HdrSource::Vui, "VUI"},
    {HdrSource::Sei, "SEI"},
    {HdrSource::Container, "container"},
    {HdrSource::ConfigurationRecord, "Dolby Vision configuration record"},
    {HdrSource::Units, "NAL units"},
};

constexpr detail::FaultText<Hdr10Lack> kLackTexts[] = {
    {Hdr10Lack::Primaries, "BT.2020 colour primaries"},
    {Hdr10Lack::Matrix, "BT.2020 matrix coefficients"},
    {Hdr10Lack::BitDepth, "10 bits"},
    {Hdr10Lack::MasteringDisplay, "mastering display colour volume"},
};

const char* textOf(HdrBase base) {
    switch (base) {
        case HdrBase::Sdr:
            return "SDR";
        case HdrBase::Pq:
            return "PQ";
        case HdrBase::Hdr10:
            return "HDR10";
        case HdrBase::Hlg:
            return "HLG";
        default:
            return "unknown";
    }
}

}  // namespace

bool isDolbyVisionRpu(Bytes unit) noexcept {
    constexpr size_t kTypeByte = 3;
    return baseUnitType(unit) == kRpuUnit && unit.size > kTypeByte && unit[2] == kRpuPrefix &&
           unit[kTypeByte] >> 2 == kRpuType;
}

bool isDolbyVisionEnhancementLayer(Bytes unit) noexcept {
    return baseUnitType(unit) == kEnhancementUnit && baseUnitType(unit.from(2)).value_or(kRpuUnit) < kRpuUnit;
}

void HdrFacts::take(const SeiMessage& message, const Context& context) noexcept {
    if (message.faults.has(SeiFault::HeaderCut) || message.faults.has(SeiFault::PayloadCut)) {
        return;
    }
    if (message.payloadType == kUserDataRegistered) {
        takeRegistered(message, context, *this);
    } else if (message.payloadType == kMasteringDisplay && message.payloadSize >= kMasteringDisplayBytes) {
        masteringDisplay.add(HdrSource::Sei);
    } else if (message.payloadType == kContentLightLevel && message.payloadSize >= kContentLightLevelBytes) {
        contentLightLevel.add(HdrSource::Sei);
    } else if (message.payloadType == kAlternativeTransfer && message.payloadSize >= 1) {
        hasPreferredTransfer = true;
        message.reader().u(8, "preferred_transfer_characteristics", preferred_transfer_characteristics);
    }
}

void HdrFacts::take(Bytes unit, Codec codec) noexcept {
    if (codec == Codec::Hevc) {
        hasDolbyVisionRpu = hasDolbyVisionRpu || isDolbyVisionRpu(unit);
        hasDolbyVisionEnhancementLayer =
            hasDolbyVisionEnhancementLayer || isDolbyVisionEnhancementLayer(unit);
    }
}

HdrClass hdrClassOf(const HdrFacts& facts) {
    HdrClass hdr;
    setTransfer(facts, hdr);
    setBase(facts, hdr);
    setDolbyVision(facts, hdr);
    const bool isHdr = hdr.base != HdrBase::Unknown && hdr.base != HdrBase::Sdr;
    hdr.isHdr10Plus = hdr.base == HdrBase::Hdr10 && facts.hasHdr10Plus;
    hdr.isHdrVivid = isHdr && facts.hasHdrVivid;
    hdr.isSlHdr = facts.hasSlHdr;
    return hdr;
}

std::string textOf(const HdrClass& hdr) {
    std::string text = textOf(hdr.base);
    if (hdr.isHdr10Plus) {
        append("HDR10+", text);
    }
    if (hdr.isHdrVivid) {
        append("HDR Vivid", text);
    }
    if (hdr.isSlHdr) {
        append("SL-HDR", text);
    }
    if (hdr.isDolbyVision) {
        append("Dolby Vision", text);
        text += hdr.dolbyVisionProfile.empty() ? "" : " " + hdr.dolbyVisionProfile;
    }
    return text;
}

std::string textOf(HdrSources sources) {
    return detail::textOf(sources, kSourceTexts);
}

std::string textOf(Hdr10Lacks lacks) {
    return detail::textOf(lacks, kLackTexts);
}

}  // namespace qv::sei
