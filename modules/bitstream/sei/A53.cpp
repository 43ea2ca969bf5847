// What user data of ATSC A/53 holds.
#include "bitstream/sei/A53.h"

#include <algorithm>

#include "bitstream/sei/UserData.h"

namespace qv::sei {

namespace {

// Of the data after user_identifier "GA94"; none when there is none.
A53Kind kindOfAtsc1Data(const CodedBits& body) noexcept {
    uint32_t user_data_type_code = 0;
    Reader reader(body);
    reader.u(8, "user_data_type_code", user_data_type_code);
    switch (user_data_type_code) {
        case kUserDataTypeCaptions:
            return A53Kind::Captions;
        case kUserDataTypeBarData:
            return A53Kind::BarData;
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
    if (message.payloadType != UserDataRegistered::kPayloadTypes.avc) {
        return A53Kind::None;
    }
    // The type and the syntax are those of both codecs.
    const T35 sender = t35Of(readPayload<UserDataRegistered>(message, Context(Codec::Avc)).record);
    switch (sender.owner) {
        case T35Owner::AtscUserData:
            return kindOfAtsc1Data(sender.body);
        case T35Owner::ActiveFormat:
            return A53Kind::ActiveFormat;
        case T35Owner::SatelliteUserData:
            return A53Kind::SatelliteCaptions;
        default:
            return A53Kind::None;
    }
}

}  // namespace qv::sei
