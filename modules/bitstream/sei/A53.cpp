// User data of ATSC A/53.
#include "bitstream/sei/A53.h"

#include <algorithm>

#include "bitstream/sei/A53Syntax.h"
#include "bitstream/sei/T35BodyTemplates.h"

namespace qv::sei {

namespace {

// The next bytes as one number; 0 when the payload ends within them.
uint64_t numberOf(Reader& reader, uint32_t bytes) noexcept {
    uint64_t number = 0;
    reader.u(8 * bytes, "user_data", number);
    return number;
}

A53Kind kindOfAtsc1Data(Reader& reader) noexcept {
    switch (numberOf(reader, 1)) {
        case kUserDataTypeCaptions:
            return A53Kind::Captions;
        case kUserDataTypeBarData:
            return A53Kind::BarData;
        default:
            return A53Kind::None;
    }
}

A53Kind kindOfAtsc(Reader& reader) noexcept {
    switch (numberOf(reader, 4)) {
        case kAtscIdentifier:
            return kindOfAtsc1Data(reader);
        case kAfdIdentifier:
            return A53Kind::ActiveFormat;
        default:
            return A53Kind::None;
    }
}

}  // namespace

bool hasMarkerBits(const CcData& cc_data) noexcept {
    return cc_data.marker_bits == kMarkerBitsAfterConstructs &&
           std::all_of(
               cc_data.constructs,
               cc_data.constructs + std::min(uint32_t{cc_data.cc_count}, CcData::kMostConstructs),
               [](const CcConstruct& construct) { return construct.marker_bits == kMarkerBitsOfConstruct; });
}

A53Kind a53KindOf(const SeiMessage& message) noexcept {
    if (message.payloadType != AtscCaptions::kPayloadTypes.avc) {
        return A53Kind::None;
    }
    Reader reader = message.reader();
    if (numberOf(reader, 1) != kT35CountryUnitedStates) {
        return A53Kind::None;
    }
    switch (numberOf(reader, 2)) {
        case kT35ProviderAtsc:
            return kindOfAtsc(reader);
        case kT35ProviderSatellite:
            return numberOf(reader, 1) == kUserDataTypeCaptions ? A53Kind::SatelliteCaptions : A53Kind::None;
        default:
            return A53Kind::None;
    }
}

QV_T35_BODY(AtscCaptions);
QV_T35_BODY(SatelliteCaptions);
QV_T35_BODY(AtscBarData);
QV_T35_BODY(ActiveFormatDescription);

}  // namespace qv::sei
