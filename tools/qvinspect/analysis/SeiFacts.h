// What the totals take from an SEI message.
#ifndef QVINSPECT_SEIFACTS_H
#define QVINSPECT_SEIFACTS_H

#include <cstdint>
#include <memory>
#include <optional>

#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/sei/T35.h"

namespace qvinspect {

// The maxRGB values of HDR Vivid: 12-bit PQ codes.
struct VividLevels {
    uint32_t minimum_maxrgb_pq;
    uint32_t average_maxrgb_pq;
    uint32_t maximum_maxrgb_pq;
};

// Nothing is set of a message with a fault but its owner.
struct SeiFacts {
    std::optional<qv::sei::MasteringDisplayColourVolume> masteringDisplay;
    std::optional<qv::sei::ContentLightLevelInfo> contentLight;
    std::optional<uint32_t> preferred_transfer_characteristics;

    // Of user_data_registered_itu_t_t35().
    std::optional<qv::sei::T35Owner> owner;
    std::optional<VividLevels> hdrVivid;
    bool hasActiveFormat = false;
    uint32_t captionTypes = 0;  // of constructs with cc_valid: bit n is set for cc_type n
};

// Null for a message of another type, which most are.
std::shared_ptr<const SeiFacts> factsOf(const qv::SeiMessage& message, const qv::sei::Context& context);

}  // namespace qvinspect

#endif
