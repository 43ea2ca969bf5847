// The caption constructs of a picture.
#include "bitstream/sei/Captions.h"

#include <algorithm>
#include <string_view>

namespace qv::sei {

namespace {

// Elements of a construct have its number as subscript. Of the elements between cc_count and the constructs
// there is em_data alone; with a fault before them cc_count is 0.
uint32_t constructsBefore(const CcData& cc_data, const Fault& fault) noexcept {
    if (fault.element.subscriptCount == 1) {
        return std::min(fault.element.subscripts[0], uint32_t{cc_data.cc_count});
    }
    const bool isBeforeThem = fault && std::string_view(fault.element.name) == "em_data";
    return isBeforeThem ? 0 : cc_data.cc_count;
}

template <class Payload>
void addPayload(const SeiMessage& message, const Context& context, CaptionedPicture& picture) noexcept {
    const Read<Payload> read = readPayload<Payload>(message, context);
    picture.add(read.record.cc_data, read.fault);
}

}  // namespace

void CaptionedPicture::add(const CcData& cc_data, const Fault& fault) noexcept {
    add(cc_data, constructsBefore(cc_data, fault));
}

bool CaptionedPicture::add(const SeiMessage& message, const Context& context) noexcept {
    switch (a53KindOf(message)) {
        case A53Kind::Captions:
            addPayload<AtscCaptions>(message, context, *this);
            return true;
        case A53Kind::SatelliteCaptions:
            addPayload<SatelliteCaptions>(message, context, *this);
            return true;
        default:
            return false;
    }
}

void CaptionedPicture::add(const CcData& cc_data, uint32_t constructsRead) noexcept {
    if (!cc_data.process_cc_data_flag) {
        return;
    }
    const uint32_t coded = std::min(constructsRead, CcData::kMostConstructs);
    const uint32_t kept = std::min(coded, kMostConstructs - count);
    std::copy_n(cc_data.constructs, kept, constructs + count);
    count += kept;
    dropped += coded - kept;
}

}  // namespace qv::sei
