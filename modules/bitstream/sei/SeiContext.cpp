// The parameter sets that SEI messages refer to.
#include "bitstream/sei/SeiContext.h"

#include "bitstream/sei/AnnouncedSps.h"

namespace qv::sei {

namespace {

constexpr uint64_t kBufferingPeriod = 0;
constexpr uint64_t kActiveParameterSets = 129;

const avc::SpsData* dataOf(const avc::Sps* sps) noexcept {
    return sps != nullptr ? &sps->data : nullptr;
}

}  // namespace

bool namesSps(const SeiMessage& message, Codec codec, uint32_t& id) noexcept {
    const bool isSets = message.payloadType == kActiveParameterSets && codec == Codec::Hevc;
    if (message.isNested || message.payload.empty() || (!isSets && message.payloadType != kBufferingPeriod)) {
        return false;
    }
    Reader reader = message.reader();
    if (isSets) {
        uint32_t passed = 0;
        reader.u(4, "active_video_parameter_set_id", passed);
        reader.u(1, "self_contained_cvs_flag", passed);
        reader.u(1, "no_parameter_set_update_flag", passed);
        reader.ue("num_sps_ids_minus1", passed);
    }
    reader.ue("seq_parameter_set_id", id);
    return !reader.failed();
}

Context::Context(const avc::ParameterSets& sets) noexcept
    : codec(Codec::Avc),
      avcSets(&sets),
      avcSps(dataOf(sets.ofNextPicture())),
      avcPps(sets.ppsOfNextPicture()) {}

Context::Context(const hevc::ParameterSets& sets) noexcept
    : codec(Codec::Hevc), hevcSets(&sets), hevcSps(sets.ofNextPicture()) {}

void Context::take(const SeiMessage& message) noexcept {
    uint32_t id = 0;
    if (!namesSps(message, codec, id)) {
        return;
    }
    if (avcSets != nullptr && avcSets->sps(id) != nullptr) {
        avcSps = dataOf(avcSets->sps(id));
    }
    if (hevcSets != nullptr && hevcSets->sps(id) != nullptr) {
        hevcSps = hevcSets->sps(id);
    }
}

}  // namespace qv::sei
