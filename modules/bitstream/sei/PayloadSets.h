// The parameter sets that the syntax of a payload depends on.
#ifndef QV_BITSTREAM_SEI_PAYLOADSETS_H
#define QV_BITSTREAM_SEI_PAYLOADSETS_H

#include <cstdint>

#include "bitstream/sei/SeiContext.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

// The SPS of the picture that the message belongs to; null without one, which is a fault.
template <class Syntax>
const avc::SpsData* avcSpsOf(Syntax& s, const Context& context) {
    if (context.avcSps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "seq_parameter_set_id", 0);
    }
    return context.avcSps;
}

template <class Syntax>
const hevc::Sps* hevcSpsOf(Syntax& s, const Context& context) {
    if (context.hevcSps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "sps_seq_parameter_set_id", 0);
    }
    return context.hevcSps;
}

// The SPS that the message names; null without one, which is a fault.
template <class Syntax>
const avc::SpsData* avcSpsOf(Syntax& s, const Context& context, uint32_t id) {
    const avc::Sps* const sps = context.avcSets != nullptr ? context.avcSets->sps(id) : nullptr;
    if (sps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "seq_parameter_set_id", id);
        return nullptr;
    }
    return &sps->data;
}

template <class Syntax>
const hevc::Sps* hevcSpsOf(Syntax& s, const Context& context, uint32_t id) {
    const hevc::Sps* const sps = context.hevcSets != nullptr ? context.hevcSets->sps(id) : nullptr;
    if (sps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "sps_seq_parameter_set_id", id);
    }
    return sps;
}

}  // namespace qv::sei

#endif
