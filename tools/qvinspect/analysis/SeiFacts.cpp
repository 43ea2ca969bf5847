#include "analysis/SeiFacts.h"

#include "analysis/SeiTypes.h"
#include "bitstream/sei/Captions.h"
#include "bitstream/sei/HdrVivid.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/UserData.h"

namespace qvinspect {

namespace {

// The record of a message; none when it has a fault.
template <class Payload>
std::optional<Payload> recordOf(const qv::SeiMessage& message, const qv::sei::Context& context) {
    const auto read = qv::sei::readPayload<Payload>(message, context);
    return read.ok() ? std::optional<Payload>(read.record) : std::nullopt;
}

uint32_t captionTypesOf(const qv::SeiMessage& message, const qv::sei::Context& context) {
    qv::sei::CaptionedPicture captions;
    captions.add(message, context);
    uint32_t types = 0;
    for (const qv::sei::CcConstruct& construct : captions) {
        types |= construct.cc_valid ? 1U << construct.cc_type : 0U;
    }
    return types;
}

void addRegistered(const qv::SeiMessage& message, const qv::sei::Context& context, SeiFacts& facts) {
    const auto registered = recordOf<qv::sei::UserDataRegistered>(message, context);
    if (!registered) {
        return;
    }
    facts.owner = qv::sei::t35Of(*registered).owner;
    switch (*facts.owner) {
        case qv::sei::T35Owner::HdrVivid:
            if (const auto vivid = recordOf<qv::sei::HdrVivid>(message, context)) {
                facts.hdrVivid = {vivid->minimum_maxrgb_pq, vivid->average_maxrgb_pq,
                                  vivid->maximum_maxrgb_pq};
            }
            break;
        case qv::sei::T35Owner::ActiveFormat: {
            const auto format = recordOf<qv::sei::ActiveFormatDescription>(message, context);
            facts.hasActiveFormat = format && format->active_format_flag;
            break;
        }
        case qv::sei::T35Owner::AtscUserData:
        case qv::sei::T35Owner::SatelliteUserData:
            facts.captionTypes = captionTypesOf(message, context);
            break;
        default:
            break;
    }
}

}  // namespace

std::shared_ptr<const SeiFacts> factsOf(const qv::SeiMessage& message, const qv::sei::Context& context) {
    SeiFacts facts;
    switch (message.payloadType) {
        case kUserDataRegistered:
            addRegistered(message, context, facts);
            break;
        case kMasteringDisplay:
            facts.masteringDisplay = recordOf<qv::sei::MasteringDisplayColourVolume>(message, context);
            break;
        case kContentLight:
            facts.contentLight = recordOf<qv::sei::ContentLightLevelInfo>(message, context);
            break;
        case kAlternativeTransfer:
            if (const auto transfer =
                    recordOf<qv::sei::AlternativeTransferCharacteristics>(message, context)) {
                facts.preferred_transfer_characteristics = transfer->preferred_transfer_characteristics;
            }
            break;
        default:
            return nullptr;
    }
    return std::make_shared<const SeiFacts>(facts);
}

}  // namespace qvinspect
